// Block references in files.
#include "host/db/dbdatabase.h"
#include "host/db/entities/blockreference.h"
#include "host/db/entities/fields.h"
#include "host/db/entities/recordlookup.h"
#include "host/db/entities/transforms.h"

Acad::ErrorStatus AcDbBlockReference::copyFromBase(const AcDbObject& source) {
    return source.isKindOf(AcDbBlockReference::desc()) ? host::copyFieldsAs<AcDbBlockReference>(*this, source)
                                                       : AcDbEntity::copyFromBase(source);
}

Acad::ErrorStatus AcDbBlockReference::dwgOutFields(AcDbDwgFiler* filer) const {
    if (const Acad::ErrorStatus status = AcDbEntity::dwgOutFields(filer); status != Acad::eOk) {
        return status;
    }
    host::writeFields(filer, m);
    const bool hasAttributes = mAttributes != nullptr && !mAttributes->empty();
    filer->writeBool(hasAttributes);
    if (hasAttributes) {
        mAttributes->dwgOut(filer);
    }
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbBlockReference::dwgInFields(AcDbDwgFiler* filer) {
    if (const Acad::ErrorStatus status = AcDbEntity::dwgInFields(filer); status != Acad::eOk) {
        return status;
    }
    host::BlockReferenceData read;
    host::readFields(filer, read);
    bool hasAttributes = false;
    filer->readBool(&hasAttributes);
    std::unique_ptr<host::SubentityList> attributes;
    if (hasAttributes && filer->filerStatus() == Acad::eOk) {
        attributes = std::make_unique<host::SubentityList>();
        attributes->dwgIn(filer);
    }
    if (filer->filerStatus() == Acad::eOk) {
        m = read;
        mAttributes = std::move(attributes);
    }
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbBlockReference::dxfInFields(AcDbDxfFiler* filer) {
    assertWriteEnabled();
    m = {};
    const Acad::ErrorStatus status = AcDbEntity::dxfInFields(filer);
    return status == Acad::eOk ? readDxfGroups(filer) : status;
}

std::string_view AcDbBlockReference::dxfSubclass(std::string_view marker) const {
    return marker.empty() || marker == "AcDbBlockReference" ? "AcDbBlockReference" : std::string_view();
}

bool AcDbBlockReference::takeDxfGroup(AcDbDxfFiler* filer, const host::DxfGroup& group, std::string_view) {
    const auto factor = [&] { return group.real == 0.0 || !std::isfinite(group.real) ? 1.0 : group.real; };
    switch (group.code) {
    case 2:
        m.block = AcDbObjectId(
            host::namedRecord<AcDbBlockTable>(group, filer->database(), &AcDbDatabase::blockTableId));
        return true;
    case 10:
        m.position = group.point();
        return true;
    case 41:
        m.scale.sx = factor();
        return true;
    case 42:
        m.scale.sy = factor();
        return true;
    case 43:
        m.scale.sz = factor();
        return true;
    case 50:
        m.rotation = host::radiansOf(group.real);
        return true;
    case 66:
        return true;
    case 70:
    case 71:
        return group.integer <= 1 && group.integer >= 0; // rows and columns of a single reference
    case 44:
    case 45:
        return group.real == 0.0;
    case 210:
        m.normal = host::unitNormal(group.vector());
        return true;
    default:
        return false;
    }
}

Acad::ErrorStatus AcDbBlockReference::dxfGroupsRead(AcDbDxfFiler*) {
    if (!host::isFinite(m.position) || !std::isfinite(m.rotation)) {
        return Acad::eInvalidInput;
    }
    return m.block.isNull() ? Acad::eNullBlockName : Acad::eOk;
}

Acad::ErrorStatus AcDbBlockReference::dxfOutFields(AcDbDxfFiler* filer) const {
    if (const Acad::ErrorStatus status = AcDbEntity::dxfOutFields(filer); status != Acad::eOk) {
        return status;
    }
    filer->writeText(100, referenceSubclass());
    bool hasAttributes = false;
    if (mAttributes != nullptr) {
        mAttributes->forEach<AcDbEntity>([&](const AcDbEntity&) { hasAttributes = true; });
    }
    if (hasAttributes) {
        filer->writeInteger(66, 1);
    }
    filer->writeString(2, host::recordName(m.block));
    filer->writePoint3d(10, m.position);
    host::writeUnlessDefault(filer, 41, m.scale.sx, 1.0);
    host::writeUnlessDefault(filer, 42, m.scale.sy, 1.0);
    host::writeUnlessDefault(filer, 43, m.scale.sz, 1.0);
    host::writeAngleUnlessZero(filer, 50, m.rotation);
    writeArrayGroups(filer);
    host::writeNormal(filer, m.normal);
    writeKeptGroups(filer, referenceSubclass());
    return filer->filerStatus();
}

void AcDbBlockReference::writeArrayGroups(AcDbDxfFiler* filer) const {
    if (filer->includesDefaultValues()) {
        filer->writeInteger(70, 0);
        filer->writeInteger(71, 0);
        filer->writeReal(44, 0.0);
        filer->writeReal(45, 0.0);
    }
}
