// The line entity: its stored fields in order, then geometry and drawing by the polyline.
#include "entities/lineentity.h"

#include "entities/customclasses.h"
#include "entities/proxytext.h"
#include "restools/arxobject.h"

namespace {

constexpr Adesk::Int16 currentVersion = 1;

/// A width that is not given.
constexpr double noWidth = -1.0;

} // namespace

AcRxClass* CQDVAcDbPolyline::gpDesc = nullptr;

AcRxClass* CQDVAcDbPolyline::desc() {
    return FindDescriptor(CustomClasses()[0]);
}
AcRxClass* CQDVAcDbPolyline::isA() const {
    return desc();
}
void CQDVAcDbPolyline::rxInit() {
    RegisterCustomClass(CustomClasses()[0]);
}

// version, text, closed, constant width or not, the width, number of vertices; then for each vertex its
// point, bulge and, without a constant width, start and end width.

Acad::ErrorStatus CQDVAcDbPolyline::dwgOutFields(AcDbDwgFiler* filer) const {
    assertReadEnabled();
    if (const Acad::ErrorStatus status = AcDbEntity::dwgOutFields(filer); status != Acad::eOk) {
        return status;
    }
    filer->writeInt16(currentVersion);
    filer->writeString(mText);
    double width = 0.0;
    const bool hasConstantWidth = mPolyline.getConstantWidth(width) == Acad::eOk;
    filer->writeBoolean(mPolyline.isClosed());
    filer->writeBoolean(hasConstantWidth);
    if (hasConstantWidth) {
        filer->writeDouble(width);
    }
    writeVertices(filer, !hasConstantWidth);
    return filer->filerStatus();
}

Acad::ErrorStatus CQDVAcDbPolyline::dwgInFields(AcDbDwgFiler* filer) {
    assertWriteEnabled();
    if (const Acad::ErrorStatus status = AcDbEntity::dwgInFields(filer); status != Acad::eOk) {
        return status;
    }
    Adesk::Int16 version = 0;
    filer->readInt16(&version);
    if (version > currentVersion) {
        return Acad::eMakeMeProxy;
    }
    if (version == currentVersion) {
        filer->readString(mText);
        mPolyline.reset(Adesk::kFalse, 0);
        Adesk::Boolean isClosed = Adesk::kFalse;
        Adesk::Boolean hasConstantWidth = Adesk::kFalse;
        filer->readBoolean(&isClosed);
        filer->readBoolean(&hasConstantWidth);
        if (hasConstantWidth) {
            double width = 0.0;
            filer->readDouble(&width);
            mPolyline.setConstantWidth(width); // vertices added later take it
        }
        readVertices(filer, !hasConstantWidth);
        mPolyline.setClosed(isClosed);
    }
    return filer->filerStatus();
}

void CQDVAcDbPolyline::writeVertices(AcDbDwgFiler* filer, bool withWidths) const {
    const unsigned count = mPolyline.numVerts();
    filer->writeUInt32(count);
    for (unsigned i = 0; i < count; ++i) {
        AcGePoint2d point;
        double bulge = 0.0;
        mPolyline.getPointAt(i, point);
        mPolyline.getBulgeAt(i, bulge);
        filer->writePoint2d(point);
        filer->writeDouble(bulge);
        if (withWidths) {
            double startWidth = 0.0;
            double endWidth = 0.0;
            mPolyline.getWidthsAt(i, startWidth, endWidth);
            filer->writeDouble(startWidth);
            filer->writeDouble(endWidth);
        }
    }
}

void CQDVAcDbPolyline::readVertices(AcDbDwgFiler* filer, bool withWidths) {
    Adesk::UInt32 count = 0;
    filer->readUInt32(&count);
    // A damaged count ends with the data.
    for (Adesk::UInt32 i = 0; i < count && filer->filerStatus() == Acad::eOk; ++i) {
        AcGePoint2d point;
        double bulge = 0.0;
        double startWidth = noWidth;
        double endWidth = noWidth;
        filer->readPoint2d(&point);
        filer->readDouble(&bulge);
        if (withWidths) {
            filer->readDouble(&startWidth);
            filer->readDouble(&endWidth);
        }
        if (filer->filerStatus() == Acad::eOk) {
            mPolyline.addVertexAt(i, point, bulge, startWidth, endWidth);
        }
    }
}

Adesk::Boolean CQDVAcDbPolyline::subWorldDraw(AcGiWorldDraw* draw) {
    assertReadEnabled();
    if (draw->regenType() == kAcGiSaveWorldDrawForProxy) {
        const CArxObjTemplate<AcDbBlockTableRecord> owner(ownerId(), false);
        if (!owner || owner->isLayout() || owner->explodable()) {
            AcGePoint3d start;
            mPolyline.getStartPoint(start);
            drawProxyText(*draw, start, 3.0, 0.75);
            return Adesk::kTrue;
        }
    }
    return mPolyline.worldDraw(draw);
}

Acad::ErrorStatus CQDVAcDbPolyline::subTransformBy(const AcGeMatrix3d& transform) {
    assertWriteEnabled();
    return mPolyline.transformBy(transform);
}

Acad::ErrorStatus CQDVAcDbPolyline::subGetGripPoints(AcGePoint3dArray& points, AcDbIntArray& snapModes,
                                                     AcDbIntArray& geometryIds) const {
    assertReadEnabled();
    return mPolyline.getGripPoints(points, snapModes, geometryIds);
}

Acad::ErrorStatus CQDVAcDbPolyline::subMoveGripPointsAt(const AcDbIntArray& indices,
                                                        const AcGeVector3d& offset) {
    assertWriteEnabled();
    return mPolyline.moveGripPointsAt(indices, offset);
}

Acad::ErrorStatus CQDVAcDbPolyline::subGetGeomExtents(AcDbExtents& extents) const {
    assertReadEnabled();
    return mPolyline.getGeomExtents(extents);
}

Acad::ErrorStatus CQDVAcDbPolyline::subIntersectWith(const AcDbEntity* other, AcDb::Intersect type,
                                                     AcGePoint3dArray& points, Adesk::GsMarker thisMarker,
                                                     Adesk::GsMarker otherMarker) const {
    assertReadEnabled();
    return mPolyline.intersectWith(other, type, points, thisMarker, otherMarker);
}

Acad::ErrorStatus CQDVAcDbPolyline::subIntersectWith(const AcDbEntity* other, AcDb::Intersect type,
                                                     const AcGePlane& plane, AcGePoint3dArray& points,
                                                     Adesk::GsMarker thisMarker,
                                                     Adesk::GsMarker otherMarker) const {
    assertReadEnabled();
    return mPolyline.intersectWith(other, type, plane, points, thisMarker, otherMarker);
}
