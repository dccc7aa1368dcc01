// The common properties of entities in files.
#include "host/db/dbents.h"
#include "host/db/entities/recordlookup.h"

namespace {

constexpr std::string_view subclassName = "AcDbEntity";

/// The layout block that an entity or a part of one stands in; null within a block definition.
const AcDbBlockTableRecord* layoutOf(const AcDbObject* object) {
    for (int depth = 0; object != nullptr && depth < 8; ++depth) {
        object = host::peek<AcDbObject>(object->ownerId(), true);
        if (const auto* block = AcDbBlockTableRecord::cast(object)) {
            return block->isLayout() ? block : nullptr;
        }
    }
    return nullptr;
}

} // namespace

Acad::ErrorStatus AcDbEntity::dwgOutFields(AcDbDwgFiler* filer) const {
    if (const Acad::ErrorStatus status = AcDbObject::dwgOutFields(filer); status != Acad::eOk) {
        return status;
    }
    if (filer->filesCommonData()) {
        filer->writeHardPointerId(AcDbHardPointerId(mLayer));
        filer->writeHardPointerId(AcDbHardPointerId(mLinetype));
        filer->writeUInt32(mColor.color());
        filer->writeDouble(mLinetypeScale);
        filer->writeInt16(mLineWeight);
        filer->writeBool(mVisible);
    }
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbEntity::dwgInFields(AcDbDwgFiler* filer) {
    if (const Acad::ErrorStatus status = AcDbObject::dwgInFields(filer); status != Acad::eOk) {
        return status;
    }
    if (!filer->filesCommonData()) {
        return filer->filerStatus();
    }
    AcDbHardPointerId layer;
    AcDbHardPointerId linetype;
    Adesk::UInt32 color = 0;
    double scale = 1.0;
    Adesk::Int16 weight = -1;
    bool visible = true;
    filer->readHardPointerId(&layer);
    filer->readHardPointerId(&linetype);
    filer->readUInt32(&color);
    filer->readDouble(&scale);
    filer->readInt16(&weight);
    filer->readBool(&visible);
    if (filer->filerStatus() == Acad::eOk) {
        mLayer = layer.stub();
        mLinetype = linetype.stub();
        mColor.setColor(color);
        mLinetypeScale = scale > 0.0 && std::isfinite(scale) ? scale : 1.0;
        mLineWeight = weight;
        mVisible = visible;
        setAllGiven();
    }
    return filer->filerStatus();
}

bool AcDbEntity::takeEntityGroup(AcDbDxfFiler* filer, const host::DxfGroup& group) {
    AcDbDatabase* database = filer->database();
    switch (group.code) {
    case 6:
        mLinetype = host::namedRecord<AcDbLinetypeTable>(group, database, &AcDbDatabase::linetypeTableId);
        return true;
    case 8:
        mLayer = host::namedRecord<AcDbLayerTable>(group, database, &AcDbDatabase::layerTableId);
        return true;
    case 48:
        mLinetypeScale = group.real > 0.0 && std::isfinite(group.real) ? group.real : 1.0;
        return true;
    case 60:
        mVisible = !group.boolean();
        return true;
    case 62:
        // The index beside a true colour is the nearest one only.
        if (!mColor.isByColor()) {
            mColor.setColorIndex(group.int16());
        }
        return true;
    case 67:
        mPaperSpace = group.boolean();
        return true;
    case 370:
        mLineWeight = static_cast<Adesk::Int16>(group.integer >= -3 && group.integer <= 211
                                                    ? host::nearestLineWeight(static_cast<int>(group.integer))
                                                    : AcDb::kLnWtByLwDefault);
        return true;
    case 410:
        return true; // the layout is told by the owner
    case 420:
        mColor.setRGB(static_cast<Adesk::UInt8>(group.integer >> 16),
                      static_cast<Adesk::UInt8>(group.integer >> 8),
                      static_cast<Adesk::UInt8>(group.integer));
        return true;
    case 430:
        keepGroup(subclassName, group);
        return true;
    default:
        return false;
    }
}

Acad::ErrorStatus AcDbEntity::dxfInFields(AcDbDxfFiler* filer) {
    assertWriteEnabled();
    AcDbDatabase* database = filer->database();
    mLayer = nullptr;
    mLinetype = nullptr;
    mColor = AcCmEntityColor();
    mLinetypeScale = 1.0;
    mLineWeight = AcDb::kLnWtByLayer;
    mVisible = true;
    mPaperSpace = false;
    setAllGiven();
    bool inside = false;
    while (const host::DxfGroup* group = filer->nextGroup()) {
        if (group->code == 100) {
            if (!inside && group->text == subclassName) {
                inside = true;
                continue;
            }
            filer->pushBackItem();
            break;
        }
        if (takeEntityGroup(filer, *group) || takeObjectGroup(filer, *group)) {
            continue;
        }
        if (!inside || group->code == 101) {
            filer->pushBackItem();
            break;
        }
        keepGroup(subclassName, *group);
    }
    if (database != nullptr) {
        if (mLayer == nullptr) {
            mLayer = database->impl().containers.layerZero.stub();
        }
        if (mLinetype == nullptr) {
            mLinetype = database->impl().containers.byLayer.stub();
        }
    }
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbEntity::readDxfGroups(AcDbDxfFiler* filer) {
    std::string_view subclass;
    while (const host::DxfGroup* group = filer->nextGroup()) {
        if (group->code == 100) {
            const std::string_view own = dxfSubclass(group->text);
            if (own.empty()) {
                filer->pushBackItem();
                break;
            }
            subclass = own;
            continue;
        }
        if (group->code == 101) {
            filer->pushBackItem(); // an object embedded in this one has groups of its own
            break;
        }
        if (takeDxfGroup(filer, *group, subclass) || takeEntityGroup(filer, *group) ||
            ((subclass.empty() || group->code >= 1000) && takeObjectGroup(filer, *group))) {
            continue;
        }
        keepGroup(subclass.empty() ? dxfSubclass({}) : subclass, *group);
    }
    return filer->filerStatus() == Acad::eOk ? dxfGroupsRead(filer) : filer->filerStatus();
}

Acad::ErrorStatus AcDbEntity::dxfOutFields(AcDbDxfFiler* filer) const {
    if (const Acad::ErrorStatus status = AcDbObject::dxfOutFields(filer); status != Acad::eOk) {
        return status;
    }
    filer->writeText(100, subclassName);
    const AcDbBlockTableRecord* layout = layoutOf(this);
    const bool paper = layout != nullptr && layout->isPaperSpace();
    if (paper || filer->includesDefaultValues()) {
        filer->writeInteger(67, paper ? 1 : 0);
        const auto* sheet = layout != nullptr ? host::peek<AcDbLayout>(layout->getLayoutId()) : nullptr;
        if (sheet != nullptr) {
            filer->writeString(410, sheet->layoutName());
        }
    }
    filer->writeString(8, mLayer != nullptr ? host::recordName(AcDbObjectId(mLayer)) : AcString(L"0"));
    const AcDbDatabase* home = database();
    if (mLinetype != nullptr && (home == nullptr || home->impl().containers.byLayer.stub() != mLinetype)) {
        filer->writeString(6, host::recordName(AcDbObjectId(mLinetype)));
    }
    if (!mColor.isByLayer()) {
        filer->writeInteger(62, mColor.colorIndex());
    }
    if (mLineWeight != AcDb::kLnWtByLayer) {
        filer->writeInteger(370, mLineWeight);
    }
    if (mLinetypeScale != 1.0) {
        filer->writeReal(48, mLinetypeScale);
    }
    if (!mVisible) {
        filer->writeInteger(60, 1);
    }
    if (mColor.isByColor()) {
        filer->writeInteger(420, mColor.trueColor());
    }
    writeKeptGroups(filer, subclassName);
    return filer->filerStatus();
}
