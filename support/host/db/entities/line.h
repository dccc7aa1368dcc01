// AcDbLine and AcDbPoint.
#pragma once

#include "host/db/dbentity.h"

namespace host {

struct LineData {
    AcGePoint3d start;
    AcGePoint3d end;
    double thickness = 0.0;
    AcGeVector3d normal = AcGeVector3d::kZAxis;

    template <class Self, class Walk>
    static void fields(Self& data, Walk& walk) {
        walk(data.start, data.end, data.thickness, data.normal);
    }
};

struct PointData {
    AcGePoint3d position;
    double thickness = 0.0;
    AcGeVector3d normal = AcGeVector3d::kZAxis;
    double rotation = 0.0; ///< of the display symbol's X axis, radians

    template <class Self, class Walk>
    static void fields(Self& data, Walk& walk) {
        walk(data.position, data.thickness, data.normal, data.rotation);
    }
};

} // namespace host

/// A straight line in space. Its parameter is the distance from the start point.
class AcDbLine : public AcDbCurve {
    ACRX_DECLARE_MEMBERS(AcDbLine);

public:
    AcDbLine() = default;
    AcDbLine(const AcGePoint3d& start, const AcGePoint3d& end);

    AcGePoint3d startPoint() const;
    Acad::ErrorStatus setStartPoint(const AcGePoint3d& point);
    AcGePoint3d endPoint() const;
    Acad::ErrorStatus setEndPoint(const AcGePoint3d& point);
    double thickness() const;
    Acad::ErrorStatus setThickness(double thickness);
    AcGeVector3d normal() const;
    Acad::ErrorStatus setNormal(const AcGeVector3d& normal);
    /// Parallel in the plane of the normal; positive to the right of the direction.
    Acad::ErrorStatus getOffsetCurvesGivenPlaneNormal(const AcGeVector3d& normal, double distance,
                                                      AcDbVoidPtrArray& curves) const;

    Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
    Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
    Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;
    Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;

    using AcDbCurve::getFirstDeriv;
    using AcDbCurve::getSecondDeriv;
    using AcDbCurve::getSplitCurves;
    Acad::ErrorStatus getStartParam(double& parameter) const override;
    Acad::ErrorStatus getEndParam(double& parameter) const override;
    Acad::ErrorStatus getStartPoint(AcGePoint3d& point) const override;
    Acad::ErrorStatus getEndPoint(AcGePoint3d& point) const override;
    Acad::ErrorStatus getPointAtParam(double parameter, AcGePoint3d& point) const override;
    Acad::ErrorStatus getParamAtPoint(const AcGePoint3d& point, double& parameter) const override;
    Acad::ErrorStatus getDistAtParam(double parameter, double& distance) const override;
    Acad::ErrorStatus getParamAtDist(double distance, double& parameter) const override;
    Acad::ErrorStatus getFirstDeriv(double parameter, AcGeVector3d& derivative) const override;
    Acad::ErrorStatus getSecondDeriv(double parameter, AcGeVector3d& derivative) const override;
    Acad::ErrorStatus getOrthoProjectedCurve(const AcGePlane& plane, AcDbCurve*& curve) const override;
    Acad::ErrorStatus getOffsetCurves(double distance, AcDbVoidPtrArray& curves) const override;
    Acad::ErrorStatus getSplitCurves(const AcGeDoubleArray& parameters,
                                     AcDbVoidPtrArray& pieces) const override;
    Acad::ErrorStatus extend(double parameter) override;
    Acad::ErrorStatus extend(bool extendStart, const AcGePoint3d& toPoint) override;
    Acad::ErrorStatus reverseCurve() override;
    Acad::ErrorStatus getAcGeCurve(AcGeCurve3d*& curve) const override;
    bool isPlanar() const override { return true; }
    Acad::ErrorStatus getPlane(AcGePlane& plane, AcDb::Planarity& planarity) const override;

protected:
    Acad::ErrorStatus copyFromBase(const AcDbObject& source) override;
    AcGeVector3d subEcsNormal() const override { return m.normal; }
    bool subCurvePieces(std::vector<host::CurvePiece>& pieces) const override;
    Acad::ErrorStatus subGetExtentsUnder(const AcGeMatrix3d& transform, AcDbExtents& extents) const override;
    Acad::ErrorStatus subTransformBy(const AcGeMatrix3d& transform) override;
    Acad::ErrorStatus subGetGripPoints(AcGePoint3dArray& points, AcDbIntArray& snapModes,
                                       AcDbIntArray& geometryIds) const override;
    Acad::ErrorStatus subMoveGripPointsAt(const AcDbIntArray& indices, const AcGeVector3d& offset) override;
    Acad::ErrorStatus subGetStretchPoints(AcGePoint3dArray& points) const override;
    bool subWorldDraw(AcGiWorldDraw* draw) override;
    std::string_view dxfSubclass(std::string_view marker) const override;
    bool takeDxfGroup(AcDbDxfFiler* filer, const host::DxfGroup& group, std::string_view subclass) override;
    Acad::ErrorStatus dxfGroupsRead(AcDbDxfFiler* filer) override;

private:
    host::LineData m;
};

class AcDbPoint : public AcDbEntity {
    ACRX_DECLARE_MEMBERS(AcDbPoint);

public:
    AcDbPoint() = default;
    explicit AcDbPoint(const AcGePoint3d& position);

    AcGePoint3d position() const;
    Acad::ErrorStatus setPosition(const AcGePoint3d& position);
    double thickness() const;
    Acad::ErrorStatus setThickness(double thickness);
    AcGeVector3d normal() const;
    Acad::ErrorStatus setNormal(const AcGeVector3d& normal);
    double ecsRotation() const;
    Acad::ErrorStatus setEcsRotation(double angle);

    Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
    Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
    Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;
    Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;
    bool isPlanar() const override { return true; }
    Acad::ErrorStatus getPlane(AcGePlane& plane, AcDb::Planarity& planarity) const override;

protected:
    AcGeVector3d subEcsNormal() const override { return m.normal; }
    Acad::ErrorStatus subGetExtentsUnder(const AcGeMatrix3d& transform, AcDbExtents& extents) const override;
    Acad::ErrorStatus subTransformBy(const AcGeMatrix3d& transform) override;
    Acad::ErrorStatus subGetGripPoints(AcGePoint3dArray& points, AcDbIntArray& snapModes,
                                       AcDbIntArray& geometryIds) const override;
    Acad::ErrorStatus subMoveGripPointsAt(const AcDbIntArray& indices, const AcGeVector3d& offset) override;
    Acad::ErrorStatus subGetOsnapPoints(AcDb::OsnapMode mode, Adesk::GsMarker marker, const AcGePoint3d& pick,
                                        const AcGePoint3d& last, const AcGeMatrix3d& view,
                                        AcGePoint3dArray& points, AcDbIntArray& geometryIds) const override;
    bool subWorldDraw(AcGiWorldDraw* draw) override;
    void subViewportDraw(AcGiViewportDraw* draw) override;
    std::string_view dxfSubclass(std::string_view marker) const override;
    bool takeDxfGroup(AcDbDxfFiler* filer, const host::DxfGroup& group, std::string_view subclass) override;
    Acad::ErrorStatus dxfGroupsRead(AcDbDxfFiler* filer) override;

private:
    void showMarkByLine(AcGiSubEntityTraits& traits) const;

    host::PointData m;
};
