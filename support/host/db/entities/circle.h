// AcDbCircle and AcDbArc.
#pragma once

#include "host/db/entities/curvepiece.h"

#include <memory>

namespace host {

struct PlanarTransform;

/// Slack of parameters that are angles.
inline constexpr double angleTolerance = 1e-10;

/// The centre is in object coordinates, as files have it.
struct CircleData {
    AcGePoint3d center;
    double radius = 0.0;
    double thickness = 0.0;
    AcGeVector3d normal = AcGeVector3d::kZAxis;

    template <class Self, class Walk>
    static void fields(Self& data, Walk& walk) {
        walk(data.center, data.radius, data.thickness, data.normal);
    }

    AcGePoint3d worldCenter() const;
    AcGePoint3d pointAt(double angle) const;
    AcGeVector3d directionAt(double angle) const;
    /// Angle, in [0, 2 pi), of the direction from the centre to a point.
    double angleOf(const AcGePoint3d& point) const;
    /// The centre keeps its place.
    void changeNormal(const AcGeVector3d& newNormal);
    CurvePiece piece(double from, double to) const;
    Acad::ErrorStatus extentsUnder(const CurvePiece& piece, const AcGeMatrix3d& transform,
                                   AcDbExtents& extents) const;
    /// `turn` gets the new angle of the old X axis. eCannotScaleNonUniformly when it would become an ellipse.
    Acad::ErrorStatus transformBy(const PlanarTransform& planar, double& turn);
    bool takeGroup(const DxfGroup& group);
    bool isGood() const;
    void writeGroups(AcDbDxfFiler* filer) const;
};

/// Angles are radians from the X axis of the object coordinates, counterclockwise.
struct ArcData : CircleData {
    double startAngle = 0.0;
    double endAngle = 0.0;

    template <class Self, class Walk>
    static void fields(Self& data, Walk& walk) {
        CircleData::fields(data, walk);
        walk(data.startAngle, data.endAngle);
    }
    /// Angle swept from start to end; a whole turn when they are equal.
    double sweep() const;
};

} // namespace host

/// A circle. Its parameter is the angle, from 0 to 2 pi.
class AcDbCircle : public AcDbCurve {
    ACRX_DECLARE_MEMBERS(AcDbCircle);

public:
    AcDbCircle() = default;
    AcDbCircle(const AcGePoint3d& center, const AcGeVector3d& normal, double radius);

    AcGePoint3d center() const;
    Acad::ErrorStatus setCenter(const AcGePoint3d& center);
    double radius() const;
    /// eInvalidInput for a negative one.
    Acad::ErrorStatus setRadius(double radius);
    double diameter() const { return 2.0 * radius(); }
    Acad::ErrorStatus setDiameter(double diameter) { return setRadius(0.5 * diameter); }
    double circumference() const;
    Acad::ErrorStatus setCircumference(double length);
    double thickness() const;
    Acad::ErrorStatus setThickness(double thickness);
    AcGeVector3d normal() const;
    /// The centre keeps its place.
    Acad::ErrorStatus setNormal(const AcGeVector3d& normal);

    Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
    Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
    Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;
    Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;

    using AcDbCurve::getFirstDeriv;
    using AcDbCurve::getSecondDeriv;
    using AcDbCurve::getSplitCurves;
    bool isClosed() const override { return true; }
    bool isPeriodic() const override { return true; }
    Acad::ErrorStatus getStartParam(double& parameter) const override;
    Acad::ErrorStatus getEndParam(double& parameter) const override;
    Acad::ErrorStatus getPointAtParam(double parameter, AcGePoint3d& point) const override;
    Acad::ErrorStatus getParamAtPoint(const AcGePoint3d& point, double& parameter) const override;
    Acad::ErrorStatus getDistAtParam(double parameter, double& distance) const override;
    Acad::ErrorStatus getParamAtDist(double distance, double& parameter) const override;
    Acad::ErrorStatus getFirstDeriv(double parameter, AcGeVector3d& derivative) const override;
    Acad::ErrorStatus getSecondDeriv(double parameter, AcGeVector3d& derivative) const override;
    Acad::ErrorStatus getOffsetCurves(double distance, AcDbVoidPtrArray& curves) const override;
    Acad::ErrorStatus getSplitCurves(const AcGeDoubleArray& parameters,
                                     AcDbVoidPtrArray& pieces) const override;
    Acad::ErrorStatus getArea(double& area) const override;
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
    /// An ellipse where the transform does not keep circles.
    Acad::ErrorStatus subGetTransformedCopy(const AcGeMatrix3d& transform, AcDbEntity*& copy) const override;
    /// Centre, then the quadrants at 0, 90, 180 and 270 degrees.
    Acad::ErrorStatus subGetGripPoints(AcGePoint3dArray& points, AcDbIntArray& snapModes,
                                       AcDbIntArray& geometryIds) const override;
    Acad::ErrorStatus subMoveGripPointsAt(const AcDbIntArray& indices, const AcGeVector3d& offset) override;
    Acad::ErrorStatus subGetStretchPoints(AcGePoint3dArray& points) const override;
    bool subWorldDraw(AcGiWorldDraw* draw) override;
    std::string_view dxfSubclass(std::string_view marker) const override;
    bool takeDxfGroup(AcDbDxfFiler* filer, const host::DxfGroup& group, std::string_view subclass) override;
    Acad::ErrorStatus dxfGroupsRead(AcDbDxfFiler* filer) override;

private:
    host::CircleData m;
};

/// A circular arc. Its parameter is the angle, from the start angle on.
class AcDbArc : public AcDbCurve {
    ACRX_DECLARE_MEMBERS(AcDbArc);

public:
    AcDbArc() = default;
    AcDbArc(const AcGePoint3d& center, double radius, double startAngle, double endAngle);
    AcDbArc(const AcGePoint3d& center, const AcGeVector3d& normal, double radius, double startAngle,
            double endAngle);

    AcGePoint3d center() const;
    Acad::ErrorStatus setCenter(const AcGePoint3d& center);
    double radius() const;
    Acad::ErrorStatus setRadius(double radius);
    double startAngle() const;
    Acad::ErrorStatus setStartAngle(double angle);
    double endAngle() const;
    Acad::ErrorStatus setEndAngle(double angle);
    double totalAngle() const;
    double length() const;
    double thickness() const;
    Acad::ErrorStatus setThickness(double thickness);
    AcGeVector3d normal() const;
    Acad::ErrorStatus setNormal(const AcGeVector3d& normal);

    Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
    Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
    Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;
    Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;

    using AcDbCurve::getFirstDeriv;
    using AcDbCurve::getSecondDeriv;
    using AcDbCurve::getSplitCurves;
    Acad::ErrorStatus getStartParam(double& parameter) const override;
    Acad::ErrorStatus getEndParam(double& parameter) const override;
    Acad::ErrorStatus getPointAtParam(double parameter, AcGePoint3d& point) const override;
    Acad::ErrorStatus getParamAtPoint(const AcGePoint3d& point, double& parameter) const override;
    Acad::ErrorStatus getDistAtParam(double parameter, double& distance) const override;
    Acad::ErrorStatus getParamAtDist(double distance, double& parameter) const override;
    Acad::ErrorStatus getFirstDeriv(double parameter, AcGeVector3d& derivative) const override;
    Acad::ErrorStatus getSecondDeriv(double parameter, AcGeVector3d& derivative) const override;
    Acad::ErrorStatus getOffsetCurves(double distance, AcDbVoidPtrArray& curves) const override;
    Acad::ErrorStatus getSplitCurves(const AcGeDoubleArray& parameters,
                                     AcDbVoidPtrArray& pieces) const override;
    Acad::ErrorStatus extend(double parameter) override;
    Acad::ErrorStatus extend(bool extendStart, const AcGePoint3d& toPoint) override;
    /// Between the arc and its chord.
    Acad::ErrorStatus getArea(double& area) const override;
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
    /// An ellipse where the transform does not keep circles.
    Acad::ErrorStatus subGetTransformedCopy(const AcGeMatrix3d& transform, AcDbEntity*& copy) const override;
    /// Start, end, middle, centre. Moving one of the first three keeps the arc through the other two.
    Acad::ErrorStatus subGetGripPoints(AcGePoint3dArray& points, AcDbIntArray& snapModes,
                                       AcDbIntArray& geometryIds) const override;
    Acad::ErrorStatus subMoveGripPointsAt(const AcDbIntArray& indices, const AcGeVector3d& offset) override;
    /// The two ends; moving one keeps the height over the chord.
    Acad::ErrorStatus subGetStretchPoints(AcGePoint3dArray& points) const override;
    Acad::ErrorStatus subMoveStretchPointsAt(const AcDbIntArray& indices,
                                             const AcGeVector3d& offset) override;
    bool subWorldDraw(AcGiWorldDraw* draw) override;
    std::string_view dxfSubclass(std::string_view marker) const override;
    bool takeDxfGroup(AcDbDxfFiler* filer, const host::DxfGroup& group, std::string_view subclass) override;
    Acad::ErrorStatus dxfGroupsRead(AcDbDxfFiler* filer) override;

private:
    /// The arc from one point to another with a bulge, in the plane of the old one.
    void setFromBulge(const AcGePoint2d& start, const AcGePoint2d& end, double bulge);
    AcGePoint2d pointInPlane(double angle) const;

    host::ArcData m;
};

namespace host {

/// A new arc of a circle with the properties of an entity.
std::unique_ptr<AcDbArc> newArc(const AcDbEntity& like, const CircleData& circle, double from, double to);

} // namespace host
