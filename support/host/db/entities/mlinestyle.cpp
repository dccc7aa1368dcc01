// Multiline styles.
#include "host/db/entities/mlinestyle.h"

#include "host/db/dbdatabase.h"
#include "host/db/entities/recordlookup.h"

#include <algorithm>

ACRX_DXF_DEFINE_MEMBERS(AcDbMlineStyle, AcDbObject, AcDb::kDHL_CURRENT, AcDb::kMReleaseCurrent, 0, MLINESTYLE,
                        ObjectDBX Classes)

namespace {

constexpr std::size_t mostElements = 16;

template <class Walk, class Color>
void walkColor(Walk& walk, Color& color) {
    Adesk::UInt32 value = color.color();
    walk(value);
    if constexpr (Walk::reads) {
        color.setColor(value);
    }
}

/// Groups 62 and 420; the index beside a true colour is the nearest one only.
bool takeColor(const host::DxfGroup& group, AcCmEntityColor& color) {
    if (group.code == 62 && !color.isByColor()) {
        color.setColorIndex(group.int16());
    } else if (group.code == 420) {
        color.setRGB(static_cast<Adesk::UInt8>(group.integer >> 16),
                     static_cast<Adesk::UInt8>(group.integer >> 8), static_cast<Adesk::UInt8>(group.integer));
    }
    return group.code == 62 || group.code == 420;
}

void writeColor(AcDbDxfFiler* filer, const AcCmEntityColor& color) {
    filer->writeInteger(62, color.colorIndex());
    if (color.isByColor()) {
        filer->writeInteger(420, color.trueColor());
    }
}

} // namespace

template <class Self, class Walk>
void host::MlineStyleData::fields(Self& data, Walk& walk) {
    walk(data.name, data.description, data.flags, data.startAngle, data.endAngle);
    walkColor(walk, data.fillColor);
    walkList(walk, data.elements, [&](auto& element) {
        walk(element.offset);
        walkColor(walk, element.color);
        walk.hardPointer(element.linetype);
    });
}

Acad::ErrorStatus AcDbMlineStyle::setName(const ACHAR* name) {
    if (name == nullptr || *name == L'\0') {
        return Acad::eInvalidInput;
    }
    assertWriteEnabled();
    m.name = name;
    return Acad::eOk;
}
Acad::ErrorStatus AcDbMlineStyle::setDescription(const ACHAR* description) {
    assertWriteEnabled();
    m.description = description;
    return Acad::eOk;
}
void AcDbMlineStyle::setFlag(host::MlineStyleData::Flag flag, bool on) {
    assertWriteEnabled();
    m.flags = static_cast<Adesk::Int16>(on ? m.flags | flag : m.flags & ~flag);
}

namespace {

bool isCapAngle(double angle) {
    return angle >= host::radiansOf(10.0) - 1e-9 && angle <= host::radiansOf(170.0) + 1e-9;
}

} // namespace

Acad::ErrorStatus AcDbMlineStyle::setStartAngle(double angle) {
    if (!isCapAngle(angle)) {
        return Acad::eInvalidInput;
    }
    assertWriteEnabled();
    m.startAngle = angle;
    return Acad::eOk;
}
Acad::ErrorStatus AcDbMlineStyle::setEndAngle(double angle) {
    if (!isCapAngle(angle)) {
        return Acad::eInvalidInput;
    }
    assertWriteEnabled();
    m.endAngle = angle;
    return Acad::eOk;
}
Acad::ErrorStatus AcDbMlineStyle::setFillColor(const AcCmColor& color) {
    assertWriteEnabled();
    m.fillColor = color.entityColor();
    return Acad::eOk;
}

Acad::ErrorStatus AcDbMlineStyle::addElement(int& index, double offset, const AcCmColor& color,
                                             AcDbObjectId linetype) {
    if (!std::isfinite(offset) || m.elements.size() >= mostElements) {
        return Acad::eInvalidInput;
    }
    assertWriteEnabled();
    const auto at = std::find_if(m.elements.begin(), m.elements.end(),
                                 [&](const host::MlineElement& element) { return element.offset < offset; });
    index = static_cast<int>(at - m.elements.begin());
    m.elements.insert(at, {offset, color.entityColor(), linetype});
    return Acad::eOk;
}

Acad::ErrorStatus AcDbMlineStyle::removeElementAt(int index) {
    if (index < 0 || index >= numElements()) {
        return Acad::eInvalidIndex;
    }
    assertWriteEnabled();
    m.elements.erase(m.elements.begin() + index);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbMlineStyle::getElementAt(int index, double& offset, AcCmColor& color,
                                               AcDbObjectId& linetype) const {
    if (index < 0 || index >= numElements()) {
        return Acad::eInvalidIndex;
    }
    const host::MlineElement& element = m.elements[static_cast<std::size_t>(index)];
    offset = element.offset;
    color = AcCmColor(element.color);
    linetype = element.linetype;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbMlineStyle::setElement(int index, const AcCmColor& color, AcDbObjectId linetype) {
    if (index < 0 || index >= numElements()) {
        return Acad::eInvalidIndex;
    }
    assertWriteEnabled();
    m.elements[static_cast<std::size_t>(index)].color = color.entityColor();
    m.elements[static_cast<std::size_t>(index)].linetype = linetype;
    return Acad::eOk;
}

void AcDbMlineStyle::setStandard(AcDbObjectId linetype) {
    assertWriteEnabled();
    m = {};
    m.name = L"STANDARD";
    m.elements = {{0.5, {}, linetype}, {-0.5, {}, linetype}};
}

Acad::ErrorStatus AcDbMlineStyle::dwgOutFields(AcDbDwgFiler* filer) const {
    const Acad::ErrorStatus status = AcDbObject::dwgOutFields(filer);
    return status == Acad::eOk ? host::writeFields(filer, m) : status;
}

Acad::ErrorStatus AcDbMlineStyle::dwgInFields(AcDbDwgFiler* filer) {
    const Acad::ErrorStatus status = AcDbObject::dwgInFields(filer);
    return status == Acad::eOk ? host::readFields(filer, m) : status;
}

Acad::ErrorStatus AcDbMlineStyle::dxfInFields(AcDbDxfFiler* filer) {
    assertWriteEnabled();
    m = {};
    return readDxfGroups(filer);
}

std::string_view AcDbMlineStyle::dxfSubclass(std::string_view marker) const {
    return marker == "AcDbMlineStyle" ? "AcDbMlineStyle" : std::string_view();
}

bool AcDbMlineStyle::takeDxfGroup(AcDbDxfFiler* filer, const host::DxfGroup& group, std::string_view) {
    // Groups that an element has too are the style's own in front of the first element.
    host::MlineElement* element = m.elements.empty() ? nullptr : &m.elements.back();
    if (takeColor(group, element != nullptr ? element->color : m.fillColor)) {
        return true;
    }
    switch (group.code) {
    case 2:
        m.name = group.string();
        return true;
    case 3:
        m.description = group.string();
        return true;
    case 70:
        m.flags = group.int16();
        return true;
    case 51:
        m.startAngle = host::radiansOf(group.real);
        return true;
    case 52:
        m.endAngle = host::radiansOf(group.real);
        return true;
    case 71:
        return true; // the number of elements
    case 49:
        m.elements.emplace_back().offset = group.real;
        return true;
    case 6:
        if (element == nullptr) {
            return false;
        }
        element->linetype = AcDbObjectId(
            host::namedRecord<AcDbLinetypeTable>(group, filer->database(), &AcDbDatabase::linetypeTableId));
        return true;
    default:
        return false;
    }
}

Acad::ErrorStatus AcDbMlineStyle::dxfGroupsRead(AcDbDxfFiler* filer) {
    double sum = m.startAngle + m.endAngle;
    for (host::MlineElement& element : m.elements) {
        sum += element.offset;
        if (element.linetype.isNull() && filer->database() != nullptr) {
            element.linetype = filer->database()->byLayerLinetype();
        }
    }
    return std::isfinite(sum) ? Acad::eOk : Acad::eInvalidInput;
}

Acad::ErrorStatus AcDbMlineStyle::dxfOutFields(AcDbDxfFiler* filer) const {
    if (const Acad::ErrorStatus status = AcDbObject::dxfOutFields(filer); status != Acad::eOk) {
        return status;
    }
    filer->writeText(100, "AcDbMlineStyle");
    filer->writeString(2, m.name);
    filer->writeInt16(70, m.flags);
    filer->writeString(3, m.description);
    writeColor(filer, m.fillColor);
    filer->writeAngle(51, m.startAngle);
    filer->writeAngle(52, m.endAngle);
    filer->writeInt16(71, static_cast<Adesk::Int16>(m.elements.size()));
    for (const host::MlineElement& element : m.elements) {
        filer->writeReal(49, element.offset);
        writeColor(filer, element.color);
        const AcString linetype = host::recordName(element.linetype);
        filer->writeString(6, linetype.isEmpty() ? AcString(L"ByLayer") : linetype);
    }
    writeKeptGroups(filer, "AcDbMlineStyle");
    return filer->filerStatus();
}
