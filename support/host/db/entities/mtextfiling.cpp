// Multi-line texts in files. Long contents are cut into groups of 250 characters; columns stand in an
// embedded object behind the text's own groups.
#include "host/db/dbdatabase.h"
#include "host/db/entities/fields.h"
#include "host/db/entities/mtext.h"
#include "host/db/entities/recordlookup.h"
#include "host/db/entities/transforms.h"

namespace {

constexpr std::string_view embeddedObject = "Embedded Object";

} // namespace

Acad::ErrorStatus AcDbMText::dwgOutFields(AcDbDwgFiler* filer) const {
    if (const Acad::ErrorStatus status = AcDbEntity::dwgOutFields(filer); status != Acad::eOk) {
        return status;
    }
    filer->writeBool(mHasColumnData);
    return host::writeFields(filer, m);
}

Acad::ErrorStatus AcDbMText::dwgInFields(AcDbDwgFiler* filer) {
    if (const Acad::ErrorStatus status = AcDbEntity::dwgInFields(filer); status != Acad::eOk) {
        return status;
    }
    bool hasColumnData = false;
    filer->readBool(&hasColumnData);
    const Acad::ErrorStatus status = host::readFields(filer, m);
    if (status == Acad::eOk) {
        mHasColumnData = hasColumnData;
    }
    return status;
}

Acad::ErrorStatus AcDbMText::dxfInFields(AcDbDxfFiler* filer) {
    assertWriteEnabled();
    m = {};
    mRead.clear();
    mHasColumnData = false;
    Acad::ErrorStatus status = AcDbEntity::dxfInFields(filer);
    if (status == Acad::eOk) {
        status = readDxfGroups(filer);
    }
    if (status == Acad::eOk) {
        readColumns(filer);
        status = filer->filerStatus();
    }
    return status;
}

std::string_view AcDbMText::dxfSubclass(std::string_view marker) const {
    return marker.empty() || marker == "AcDbMText" ? "AcDbMText" : std::string_view();
}

bool AcDbMText::takeDxfGroup(AcDbDxfFiler* filer, const host::DxfGroup& group, std::string_view) {
    switch (group.code) {
    case 1:
    case 3:
        mRead += group.text; // a code may be cut in two: read as one text at the end
        return true;
    case 7:
        m.style = AcDbObjectId(
            host::namedRecord<AcDbTextStyleTable>(group, filer->database(), &AcDbDatabase::textStyleTableId));
        return true;
    case 10:
        m.location = group.point();
        return true;
    case 11:
        m.direction = group.vector();
        return true;
    case 40:
        m.textHeight = group.real;
        return true;
    case 41:
        m.width = group.real > 0.0 ? group.real : 0.0;
        return true;
    case 42:
    case 43:
        return true; // the actual size: it is computed
    case 44:
        m.spacingFactor = group.real;
        return true;
    case 45:
        m.fillScale = group.real;
        return true;
    case 46:
        m.definedHeight = group.real > 0.0 ? group.real : 0.0;
        return true;
    case 50: // instead of a direction; with the normal, which stands behind it
        m.direction =
            AcGeVector3d(std::cos(host::radiansOf(group.real)), std::sin(host::radiansOf(group.real)), 0.0);
        return true;
    case 63: {
        AcCmEntityColor color;
        color.setColorIndex(group.int16());
        m.fillColor = color.color();
        return true;
    }
    case 421: {
        AcCmEntityColor color;
        color.setRGB(static_cast<Adesk::UInt8>(group.integer >> 16),
                     static_cast<Adesk::UInt8>(group.integer >> 8), static_cast<Adesk::UInt8>(group.integer));
        m.fillColor = color.color();
        return true;
    }
    case 71:
        m.attachment = group.integer >= 1 && group.integer <= 9 ? group.int16() : Adesk::Int16{1};
        return true;
    case 72:
        m.flow = group.integer >= 1 && group.integer <= 5 ? group.int16() : Adesk::Int16{1};
        return true;
    case 73:
        m.spacingStyle = static_cast<Adesk::Int16>(group.integer == 2 ? AcDb::kExactly : AcDb::kAtLeast);
        return true;
    case 90:
        m.fill = group.int32();
        return true;
    case 210:
        m.normal = host::unitNormal(group.vector());
        return true;
    default:
        return false;
    }
}

Acad::ErrorStatus AcDbMText::dxfGroupsRead(AcDbDxfFiler* filer) {
    m.contents = host::fromUtf8(host::decodeDxfText(mRead)).c_str();
    mRead = {};
    if (m.style.isNull() && filer->database() != nullptr) {
        m.style = filer->database()->impl().containers.standardTextStyle;
    }
    const double sum = m.textHeight + m.width + m.spacingFactor + m.fillScale + m.definedHeight;
    if (!host::isFinite(m.location) || !host::isFinite(m.direction) || !std::isfinite(sum)) {
        return Acad::eInvalidInput;
    }
    if (!(m.spacingFactor > 0.0)) {
        m.spacingFactor = 1.0;
    }
    // A direction as given stays to the last digit when it is good; else it is brought into the plane.
    const bool isUnit = std::fabs(m.direction.length() - 1.0) <= 1e-9;
    if (!isUnit || std::fabs(m.direction.dotProduct(m.normal)) > 1e-9) {
        const AcGeVector3d across = m.direction - m.normal * m.direction.dotProduct(m.normal);
        m.direction =
            across.length() > 1e-9 ? host::unitNormal(across) : host::toWorld(m.normal, AcGeVector3d::kXAxis);
    }
    return Acad::eOk;
}

void AcDbMText::readColumns(AcDbDxfFiler* filer) {
    const host::DxfGroup* group = filer->nextGroup();
    if (group == nullptr || group->code != 101 || group->text != embeddedObject) {
        if (group != nullptr) {
            filer->pushBackItem();
        }
        return;
    }
    mHasColumnData = true;
    host::MTextColumnData& columns = m.columns;
    while ((group = filer->nextGroup()) != nullptr) {
        if (group->code >= 100 && (group->code < 370 || group->code >= 1000)) {
            filer->pushBackItem();
            return;
        }
        switch (group->code) {
        case 10: // direction, place, frame width: those of the text
        case 11:
        case 40:
        case 70:
            break;
        case 41:
            columns.definedHeight = group->real;
            break;
        case 42:
            columns.totalWidth = group->real;
            break;
        case 43:
            columns.totalHeight = group->real;
            break;
        case 44:
            columns.width = group->real;
            break;
        case 45:
            columns.gutter = group->real;
            break;
        case 46:
            columns.heights.push_back(group->real);
            break;
        case 71:
            columns.type = group->integer >= 0 && group->integer <= 2 ? group->int16() : Adesk::Int16{0};
            break;
        case 72:
            columns.count = group->int16();
            break;
        case 73:
            columns.autoHeight = group->boolean();
            break;
        case 74:
            columns.reversed = group->boolean();
            break;
        default:
            keepGroup(embeddedObject, *group);
            break;
        }
    }
}

void AcDbMText::writeColumns(AcDbDxfFiler* filer) const {
    const host::MTextColumnData& columns = m.columns;
    filer->writeText(101, embeddedObject);
    filer->writeInteger(70, 1);
    filer->writeVector3d(10, m.direction);
    filer->writePoint3d(11, m.location);
    filer->writeReal(40, m.width);
    filer->writeReal(41, columns.definedHeight);
    filer->writeReal(42, columns.totalWidth);
    filer->writeReal(43, columns.totalHeight);
    filer->writeInteger(71, columns.type);
    if (columns.type != kNoColumns) {
        filer->writeInteger(72, columns.count);
        filer->writeReal(44, columns.width);
        filer->writeReal(45, columns.gutter);
        filer->writeInteger(73, columns.autoHeight ? 1 : 0);
        filer->writeInteger(74, columns.reversed ? 1 : 0);
        for (const double height : columns.heights) {
            filer->writeReal(46, height);
        }
    }
    writeKeptGroups(filer, embeddedObject);
}

Acad::ErrorStatus AcDbMText::dxfOutFields(AcDbDxfFiler* filer) const {
    if (const Acad::ErrorStatus status = AcDbEntity::dxfOutFields(filer); status != Acad::eOk) {
        return status;
    }
    const bool all = filer->includesDefaultValues();
    filer->writeText(100, "AcDbMText");
    filer->writePoint3d(10, m.location);
    filer->writeReal(40, m.textHeight);
    filer->writeReal(41, m.width);
    if (m.definedHeight != 0.0 || all) {
        filer->writeReal(46, m.definedHeight);
    }
    filer->writeInteger(71, m.attachment);
    filer->writeInteger(72, m.flow);
    host::forContentsGroups(m.contents.view(), [&](short code, const std::wstring& part) {
        filer->writeString(code, part.c_str());
    });
    const auto* style = host::peek<AcDbTextStyleTableRecord>(m.style, true);
    if (style != nullptr && (all || style->name().compareNoCase(L"Standard") != 0)) {
        filer->writeString(7, style->name());
    }
    host::writeNormal(filer, m.normal);
    if (!(m.direction == AcGeVector3d::kXAxis) || !host::isWorldNormal(m.normal) || all) {
        filer->writeVector3d(11, m.direction);
    }
    filer->writeInteger(73, m.spacingStyle);
    filer->writeReal(44, m.spacingFactor);
    if (m.fill != 0) {
        AcCmEntityColor color;
        color.setColor(m.fillColor);
        filer->writeInteger(90, m.fill);
        filer->writeInteger(63, color.colorIndex());
        if (color.isByColor()) {
            filer->writeInteger(421, color.trueColor());
        }
        filer->writeReal(45, m.fillScale);
    }
    writeKeptGroups(filer, "AcDbMText");
    if (mHasColumnData || m.columns.type != kNoColumns) {
        writeColumns(filer);
    }
    return filer->filerStatus();
}
