// Named user coordinate systems.
#include "host/db/dbdatabase.h"

Acad::ErrorStatus AcDbUCSTableRecord::setOrigin(const AcGePoint3d& origin) {
    assertWriteEnabled();
    mOrigin = origin;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbUCSTableRecord::setXAxis(const AcGeVector3d& axis) {
    if (axis.isZeroLength()) {
        return Acad::eInvalidInput;
    }
    assertWriteEnabled();
    mXAxis = axis.normal();
    return Acad::eOk;
}

Acad::ErrorStatus AcDbUCSTableRecord::setYAxis(const AcGeVector3d& axis) {
    if (axis.isZeroLength()) {
        return Acad::eInvalidInput;
    }
    assertWriteEnabled();
    mYAxis = axis.normal();
    return Acad::eOk;
}

Acad::ErrorStatus AcDbUCSTableRecord::dwgOutFields(AcDbDwgFiler* filer) const {
    if (const Acad::ErrorStatus status = AcDbSymbolTableRecord::dwgOutFields(filer); status != Acad::eOk) {
        return status;
    }
    filer->writePoint3d(mOrigin);
    filer->writeVector3d(mXAxis);
    filer->writeVector3d(mYAxis);
    filer->writeDouble(mElevation);
    filer->writeInt16(mOrthographicType);
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbUCSTableRecord::dwgInFields(AcDbDwgFiler* filer) {
    if (const Acad::ErrorStatus status = AcDbSymbolTableRecord::dwgInFields(filer); status != Acad::eOk) {
        return status;
    }
    filer->readPoint3d(&mOrigin);
    filer->readVector3d(&mXAxis);
    filer->readVector3d(&mYAxis);
    filer->readDouble(&mElevation);
    filer->readInt16(&mOrthographicType);
    return filer->filerStatus();
}

bool AcDbUCSTableRecord::takeRecordGroup(AcDbDxfFiler*, const host::DxfGroup& group) {
    switch (group.code) {
    case 10:
        mOrigin = group.point();
        return true;
    case 11:
        mXAxis = group.vector();
        return true;
    case 12:
        mYAxis = group.vector();
        return true;
    case 79:
        mOrthographicType = group.int16();
        return true;
    case 146:
        mElevation = group.real;
        return true;
    default:
        return false;
    }
}

void AcDbUCSTableRecord::writeRecordGroups(AcDbDxfFiler* filer) const {
    filer->writePoint(10, mOrigin.x, mOrigin.y, mOrigin.z, 3);
    filer->writePoint(11, mXAxis.x, mXAxis.y, mXAxis.z, 3);
    filer->writePoint(12, mYAxis.x, mYAxis.y, mYAxis.z, 3);
    filer->writeInt16(79, mOrthographicType);
    filer->writeDouble(146, mElevation);
}
