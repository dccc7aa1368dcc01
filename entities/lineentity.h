// CQDVAcDbPolyline: a light polyline that carries a text, known in DXF files as "QDV线实体".
#pragma once

#include "host/arx.h"

/// Behaves as the polyline it owns; adds its filing format and its proxy image. The text is filed, not drawn.
class QDV_EXPORT CQDVAcDbPolyline : public AcDbEntity {
public:
    ACRX_DECLARE_MEMBERS(CQDVAcDbPolyline);

    CQDVAcDbPolyline() = default;
    ~CQDVAcDbPolyline() override = default;

    Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
    Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;

protected:
    Adesk::Boolean subWorldDraw(AcGiWorldDraw* draw) override;
    Acad::ErrorStatus subTransformBy(const AcGeMatrix3d& transform) override;
    Acad::ErrorStatus subGetGripPoints(AcGePoint3dArray& points, AcDbIntArray& snapModes,
                                       AcDbIntArray& geometryIds) const override;
    Acad::ErrorStatus subMoveGripPointsAt(const AcDbIntArray& indices, const AcGeVector3d& offset) override;
    Acad::ErrorStatus subGetGeomExtents(AcDbExtents& extents) const override;
    Acad::ErrorStatus subIntersectWith(const AcDbEntity* other, AcDb::Intersect type,
                                       AcGePoint3dArray& points, Adesk::GsMarker thisMarker,
                                       Adesk::GsMarker otherMarker) const override;
    Acad::ErrorStatus subIntersectWith(const AcDbEntity* other, AcDb::Intersect type, const AcGePlane& plane,
                                       AcGePoint3dArray& points, Adesk::GsMarker thisMarker,
                                       Adesk::GsMarker otherMarker) const override;

private:
    void writeVertices(AcDbDwgFiler* filer, bool withWidths) const;
    void readVertices(AcDbDwgFiler* filer, bool withWidths);

    AcString mText;
    AcDbPolyline mPolyline;
};
