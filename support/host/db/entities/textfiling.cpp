// Texts in files.
#include "host/db/dbdatabase.h"
#include "host/db/entities/fields.h"
#include "host/db/entities/recordlookup.h"
#include "host/db/entities/text.h"
#include "host/db/entities/transforms.h"

#include <limits>

Acad::ErrorStatus AcDbText::copyFromBase(const AcDbObject& source) {
    return source.isKindOf(AcDbText::desc()) ? host::copyFieldsAs<AcDbText>(*this, source)
                                             : AcDbEntity::copyFromBase(source);
}

Acad::ErrorStatus AcDbText::dwgOutFields(AcDbDwgFiler* filer) const {
    const Acad::ErrorStatus status = AcDbEntity::dwgOutFields(filer);
    return status == Acad::eOk ? host::writeFields(filer, m) : status;
}

Acad::ErrorStatus AcDbText::dwgInFields(AcDbDwgFiler* filer) {
    const Acad::ErrorStatus status = AcDbEntity::dwgInFields(filer);
    return status == Acad::eOk ? host::readFields(filer, m) : status;
}

Acad::ErrorStatus AcDbText::dxfInFields(AcDbDxfFiler* filer) {
    assertWriteEnabled();
    m = {};
    m.alignment.x = std::numeric_limits<double>::quiet_NaN(); // not given yet
    const Acad::ErrorStatus status = AcDbEntity::dxfInFields(filer);
    return status == Acad::eOk ? readDxfGroups(filer) : status;
}

std::string_view AcDbText::dxfSubclass(std::string_view marker) const {
    return marker.empty() || marker == "AcDbText" ? "AcDbText" : std::string_view();
}

bool AcDbText::takeDxfGroup(AcDbDxfFiler* filer, const host::DxfGroup& group, std::string_view) {
    switch (group.code) {
    case 1:
        m.text = group.string();
        return true;
    case 7:
        m.style = AcDbObjectId(
            host::namedRecord<AcDbTextStyleTable>(group, filer->database(), &AcDbDatabase::textStyleTableId));
        return true;
    case 10:
        m.position = group.point();
        return true;
    case 11:
        m.alignment = group.point();
        return true;
    case 39:
        m.thickness = group.real;
        return true;
    case 40:
        m.height = group.real;
        return true;
    case 41:
        m.widthFactor = group.real;
        return true;
    case 50:
        m.rotation = host::radiansOf(group.real);
        return true;
    case 51:
        m.oblique = host::signedAngle(host::radiansOf(group.real));
        return true;
    case 71:
        m.generation = static_cast<Adesk::UInt8>(group.integer);
        return true;
    case 72:
        m.horizontal =
            static_cast<Adesk::UInt8>(group.integer >= 0 && group.integer <= 5 ? group.integer : 0);
        return true;
    case 73:
        m.vertical = static_cast<Adesk::UInt8>(group.integer >= 0 && group.integer <= 3 ? group.integer : 0);
        return true;
    case 210:
        m.normal = host::unitNormal(group.vector());
        return true;
    default:
        return false;
    }
}

Acad::ErrorStatus AcDbText::dxfGroupsRead(AcDbDxfFiler* filer) {
    if (std::isnan(m.alignment.x)) {
        m.alignment = isDefaultAlignment() ? AcGePoint3d::kOrigin : m.position;
    }
    if (m.style.isNull() && filer->database() != nullptr) {
        m.style = filer->database()->impl().containers.standardTextStyle;
    }
    const double sum = m.thickness + m.height + m.widthFactor + m.rotation + m.oblique;
    return host::isFinite(m.position) && host::isFinite(m.alignment) && std::isfinite(sum)
               ? Acad::eOk
               : Acad::eInvalidInput;
}

void AcDbText::writeTextGroups(AcDbDxfFiler* filer) const {
    const bool all = filer->includesDefaultValues();
    filer->writeText(100, "AcDbText");
    if (m.thickness != 0.0) {
        filer->writeReal(39, m.thickness);
    }
    filer->writePoint3d(10, m.position);
    filer->writeReal(40, m.height);
    filer->writeString(1, m.text);
    host::writeAngleUnlessZero(filer, 50, m.rotation);
    host::writeUnlessDefault(filer, 41, m.widthFactor, 1.0);
    host::writeAngleUnlessZero(filer, 51, m.oblique);
    const auto* style = host::peek<AcDbTextStyleTableRecord>(m.style, true);
    if (style != nullptr && (all || style->name().compareNoCase(L"Standard") != 0)) {
        filer->writeString(7, style->name());
    }
    host::writeUnlessZero(filer, 71, m.generation);
    host::writeUnlessZero(filer, 72, m.horizontal);
    const bool aligned = m.horizontal != AcDb::kTextLeft || m.vertical != AcDb::kTextBase;
    if (aligned || all || !(m.alignment == AcGePoint3d::kOrigin)) {
        filer->writePoint3d(11, m.alignment);
    }
    host::writeNormal(filer, m.normal);
    writeKeptGroups(filer, "AcDbText");
}

Acad::ErrorStatus AcDbText::dxfOutFields(AcDbDxfFiler* filer) const {
    if (const Acad::ErrorStatus status = AcDbEntity::dxfOutFields(filer); status != Acad::eOk) {
        return status;
    }
    writeTextGroups(filer);
    filer->writeText(100, "AcDbText");
    host::writeUnlessZero(filer, 73, m.vertical);
    return filer->filerStatus();
}
