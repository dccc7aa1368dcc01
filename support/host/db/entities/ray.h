// AcDbRay and AcDbXline: lines without end, one way and both ways.
#pragma once

#include "host/db/dbentity.h"

namespace host {

struct RayData {
    AcGePoint3d base;
    AcGeVector3d direction = AcGeVector3d::kXAxis; ///< of unit length

    template <class Self, class Walk>
    static void fields(Self& data, Walk& walk) {
        walk(data.base, data.direction);
    }
};

/// What rays and construction lines share. The parameter is the distance from the base point. They have no
/// extents: a drawing's do not depend on them.
class InfiniteLine : public AcDbCurve {
public:
    AcGePoint3d basePoint() const;
    Acad::ErrorStatus setBasePoint(const AcGePoint3d& point);
    AcGeVector3d unitDir() const;
    /// eInvalidInput for a direction without length.
    Acad::ErrorStatus setUnitDir(const AcGeVector3d& direction);
    AcGePoint3d secondPoint() const;
    Acad::ErrorStatus setSecondPoint(const AcGePoint3d& point);

    Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
    Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
    Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;
    Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;

    using AcDbCurve::getFirstDeriv;
    using AcDbCurve::getSecondDeriv;
    using AcDbCurve::getSplitCurves;
    Acad::ErrorStatus getPointAtParam(double parameter, AcGePoint3d& point) const override;
    Acad::ErrorStatus getParamAtPoint(const AcGePoint3d& point, double& parameter) const override;
    Acad::ErrorStatus getDistAtParam(double parameter, double& distance) const override;
    Acad::ErrorStatus getParamAtDist(double distance, double& parameter) const override;
    Acad::ErrorStatus getFirstDeriv(double parameter, AcGeVector3d& derivative) const override;
    Acad::ErrorStatus getSecondDeriv(double parameter, AcGeVector3d& derivative) const override;
    Acad::ErrorStatus getOffsetCurves(double distance, AcDbVoidPtrArray& curves) const override;
    /// Parallel in the plane of the normal; positive to the right of the direction.
    Acad::ErrorStatus getOffsetCurvesGivenPlaneNormal(const AcGeVector3d& normal, double distance,
                                                      AcDbVoidPtrArray& curves) const;
    /// Lines between the parameters and rays beyond them.
    Acad::ErrorStatus getSplitCurves(const AcGeDoubleArray& parameters,
                                     AcDbVoidPtrArray& pieces) const override;
    bool isPlanar() const override { return true; }
    Acad::ErrorStatus getPlane(AcGePlane& plane, AcDb::Planarity& planarity) const override;

protected:
    explicit InfiniteLine(bool isBothWays) : mIsBothWays(isBothWays) {}
    bool contains(double parameter) const { return mIsBothWays ? true : parameter >= -1e-10; }
    virtual std::string_view subclassMarker() const = 0;

    bool subCurvePieces(std::vector<CurvePiece>& pieces) const override;
    Acad::ErrorStatus subGetExtentsUnder(const AcGeMatrix3d& transform, AcDbExtents& extents) const override;
    Acad::ErrorStatus subTransformBy(const AcGeMatrix3d& transform) override;
    /// Base point and a point one unit on; moving the base moves all, the other one turns the line.
    Acad::ErrorStatus subGetGripPoints(AcGePoint3dArray& points, AcDbIntArray& snapModes,
                                       AcDbIntArray& geometryIds) const override;
    Acad::ErrorStatus subMoveGripPointsAt(const AcDbIntArray& indices, const AcGeVector3d& offset) override;
    Acad::ErrorStatus subGetStretchPoints(AcGePoint3dArray& points) const override;
    Acad::ErrorStatus subMoveStretchPointsAt(const AcDbIntArray& indices,
                                             const AcGeVector3d& offset) override;
    Acad::ErrorStatus subGetOsnapPoints(AcDb::OsnapMode mode, Adesk::GsMarker marker, const AcGePoint3d& pick,
                                        const AcGePoint3d& last, const AcGeMatrix3d& view,
                                        AcGePoint3dArray& points, AcDbIntArray& geometryIds) const override;
    bool subWorldDraw(AcGiWorldDraw* draw) override;
    std::string_view dxfSubclass(std::string_view marker) const override;
    bool takeDxfGroup(AcDbDxfFiler* filer, const DxfGroup& group, std::string_view subclass) override;
    Acad::ErrorStatus dxfGroupsRead(AcDbDxfFiler* filer) override;

    RayData m;

private:
    bool mIsBothWays;
};

} // namespace host

class AcDbRay : public host::InfiniteLine {
    ACRX_DECLARE_MEMBERS(AcDbRay);

public:
    AcDbRay() : InfiniteLine(false) {}

    Acad::ErrorStatus getStartParam(double& parameter) const override;
    Acad::ErrorStatus getStartPoint(AcGePoint3d& point) const override;

protected:
    std::string_view subclassMarker() const override { return "AcDbRay"; }
};

class AcDbXline : public host::InfiniteLine {
    ACRX_DECLARE_MEMBERS(AcDbXline);

public:
    AcDbXline() : InfiniteLine(true) {}

    Acad::ErrorStatus reverseCurve() override;

protected:
    std::string_view subclassMarker() const override { return "AcDbXline"; }
};
