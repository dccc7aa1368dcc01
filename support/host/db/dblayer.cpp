// Layer records.
#include "host/db/dbdatabase.h"

#include <cmath>

AcDbLayerTableRecord::AcDbLayerTableRecord() {
    mColor.setColorIndex(7);
}

Acad::ErrorStatus AcDbLayerTableRecord::setIsFrozen(bool frozen) {
    if (frozen && database() != nullptr && database()->clayer() == objectId()) {
        return Acad::eInvalidLayer; // the current layer stays thawed
    }
    assertWriteEnabled();
    mFlags = static_cast<Adesk::Int16>(frozen ? mFlags | 1 : mFlags & ~1);
    return Acad::eOk;
}
void AcDbLayerTableRecord::setIsOff(bool off) {
    assertWriteEnabled();
    mOff = off;
}
void AcDbLayerTableRecord::setIsLocked(bool locked) {
    assertWriteEnabled();
    mFlags = static_cast<Adesk::Int16>(locked ? mFlags | 4 : mFlags & ~4);
}
void AcDbLayerTableRecord::setVPDFLT(bool frozen) {
    assertWriteEnabled();
    mFlags = static_cast<Adesk::Int16>(frozen ? mFlags | 2 : mFlags & ~2);
}
Acad::ErrorStatus AcDbLayerTableRecord::setIsPlottable(bool plottable) {
    assertWriteEnabled();
    mPlottable = plottable;
    return Acad::eOk;
}
void AcDbLayerTableRecord::setColor(const AcCmColor& color) {
    assertWriteEnabled();
    mColor = color.entityColor();
}
Acad::ErrorStatus AcDbLayerTableRecord::setLinetypeObjectId(AcDbObjectId linetype) {
    assertWriteEnabled();
    mLinetype = linetype;
    return Acad::eOk;
}
Acad::ErrorStatus AcDbLayerTableRecord::setLineWeight(AcDb::LineWeight weight) {
    assertWriteEnabled();
    mLineWeight = static_cast<Adesk::Int16>(weight);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbLayerTableRecord::dwgOutFields(AcDbDwgFiler* filer) const {
    if (const Acad::ErrorStatus status = AcDbSymbolTableRecord::dwgOutFields(filer); status != Acad::eOk) {
        return status;
    }
    filer->writeUInt32(mColor.color());
    filer->writeInt16(mLineWeight);
    filer->writeBool(mOff);
    filer->writeBool(mPlottable);
    filer->writeHardPointerId(mLinetype);
    filer->writeHardPointerId(mPlotStyle);
    filer->writeHardPointerId(mMaterial);
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbLayerTableRecord::dwgInFields(AcDbDwgFiler* filer) {
    if (const Acad::ErrorStatus status = AcDbSymbolTableRecord::dwgInFields(filer); status != Acad::eOk) {
        return status;
    }
    Adesk::UInt32 color = 0;
    filer->readUInt32(&color);
    mColor.setColor(color);
    filer->readInt16(&mLineWeight);
    filer->readBool(&mOff);
    filer->readBool(&mPlottable);
    for (AcDbObjectId* id : {&mLinetype, &mPlotStyle, &mMaterial}) {
        AcDbHardPointerId pointer;
        filer->readHardPointerId(&pointer);
        *id = pointer;
    }
    return filer->filerStatus();
}

bool AcDbLayerTableRecord::takeRecordGroup(AcDbDxfFiler* filer, const host::DxfGroup& group) {
    switch (group.code) {
    case 62:
        mOff = group.integer < 0;
        if (!mColor.isByColor()) {
            mColor.setColorIndex(static_cast<Adesk::Int16>(std::abs(group.int32())));
        }
        return true;
    case 420:
        mColor.setRGB(static_cast<Adesk::UInt8>(group.integer >> 16),
                      static_cast<Adesk::UInt8>(group.integer >> 8),
                      static_cast<Adesk::UInt8>(group.integer));
        return true;
    case 6:
        if (const auto* table = host::peek<AcDbLinetypeTable>(filer->database()->linetypeTableId())) {
            table->getAt(group.string().kwszPtr(), mLinetype);
        }
        return true;
    case 290:
        mPlottable = group.boolean();
        return true;
    case 370:
        mLineWeight = group.int16();
        return true;
    case 390:
        mPlotStyle = AcDbObjectId(group.id);
        return true;
    case 347:
        mMaterial = AcDbObjectId(group.id);
        return true;
    default:
        return false;
    }
}

void AcDbLayerTableRecord::writeRecordGroups(AcDbDxfFiler* filer) const {
    const Adesk::Int16 index = mColor.colorIndex();
    filer->writeInt16(62, static_cast<Adesk::Int16>(mOff ? -index : index));
    if (mColor.isByColor()) {
        filer->writeInt32(420, static_cast<Adesk::Int32>(mColor.color() & 0xFFFFFF));
    }
    const auto* linetype = host::peek<AcDbLinetypeTableRecord>(mLinetype);
    filer->writeString(6, linetype != nullptr ? linetype->name().kwszPtr() : L"Continuous");
    if (!mPlottable) {
        filer->writeBool(290, false);
    }
    filer->writeInt16(370, mLineWeight);
    AcDbObjectId plotStyle = mPlotStyle;
    if (plotStyle.isNull() && database() != nullptr) {
        plotStyle = database()->impl().normalPlotStyle();
    }
    if (!plotStyle.isNull()) {
        filer->writeObjectId(390, plotStyle);
    }
    if (!mMaterial.isNull()) {
        filer->writeObjectId(347, mMaterial);
    }
}
