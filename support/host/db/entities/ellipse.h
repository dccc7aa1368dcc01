// AcDbEllipse: ellipses and their arcs.
#pragma once

#include "host/db/entities/circle.h"
#include "host/db/entities/spacecurve.h"

namespace host {

/// In world coordinates. A point at parameter t is center + cos t majorAxis + sin t minorAxis.
struct EllipseData {
    AcGePoint3d center;
    AcGeVector3d majorAxis = AcGeVector3d::kXAxis; ///< from the centre to the end of the axis
    AcGeVector3d normal = AcGeVector3d::kZAxis;
    double radiusRatio = 1.0; ///< minor to major radius, at most 1
    double startParam = 0.0;
    double endParam = twoPi;

    template <class Self, class Walk>
    static void fields(Self& data, Walk& walk) {
        walk(data.center, data.majorAxis, data.normal, data.radiusRatio, data.startParam, data.endParam);
    }

    AcGeVector3d minorAxis() const { return normal.crossProduct(majorAxis) * radiusRatio; }
    /// From the start to the end parameter; a whole turn when they are equal.
    double sweep() const;
    AcGePoint3d pointAt(double parameter) const;
    CurvePiece piece() const;
    AcGeEllipArc3d arc() const;
    /// The parameter, in [0, 2 pi), of the direction from the centre to a point.
    double parameterTowards(const AcGePoint3d& point) const;
    /// The ellipse center + cos t u + sin t v, whose vectors need not be at right angles, seen against the
    /// side `up` of its plane. False, and unchanged, when the vectors do not span a plane.
    bool setConjugate(const AcGePoint3d& newCenter, const AcGeVector3d& u, const AcGeVector3d& v, double from,
                      double sweep, const AcGeVector3d& up);
    bool isGood() const;
};

} // namespace host

/// An ellipse or an arc of one. Its parameter is that of the ellipse's equation, from the start parameter
/// on; the angles are those the points are seen under from the centre, from the major axis.
class AcDbEllipse : public host::SpaceCurve {
    ACRX_DECLARE_MEMBERS(AcDbEllipse);

public:
    AcDbEllipse() = default;
    /// Angles as startAngle and endAngle give them.
    AcDbEllipse(const AcGePoint3d& center, const AcGeVector3d& unitNormal, const AcGeVector3d& majorAxis,
                double radiusRatio, double startAngle = 0.0, double endAngle = host::twoPi);

    AcGePoint3d center() const;
    Acad::ErrorStatus setCenter(const AcGePoint3d& center);
    AcGeVector3d normal() const;
    AcGeVector3d majorAxis() const;
    AcGeVector3d minorAxis() const;
    double majorRadius() const;
    double minorRadius() const;
    /// eInvalidInput when it would be longer than the major axis is, or vanish.
    Acad::ErrorStatus setMinorRadius(double radius);
    Acad::ErrorStatus setMajorRadius(double radius);
    double radiusRatio() const;
    /// eInvalidInput outside (0, 1].
    Acad::ErrorStatus setRadiusRatio(double ratio);
    double startAngle() const;
    Acad::ErrorStatus setStartAngle(double angle);
    double endAngle() const;
    Acad::ErrorStatus setEndAngle(double angle);
    Acad::ErrorStatus setStartParam(double parameter);
    Acad::ErrorStatus setEndParam(double parameter);
    Acad::ErrorStatus paramAtAngle(double angle, double& parameter) const;
    Acad::ErrorStatus angleAtParam(double parameter, double& angle) const;
    void get(AcGePoint3d& center, AcGeVector3d& unitNormal, AcGeVector3d& majorAxis, double& radiusRatio,
             double& startAngle, double& endAngle) const;
    /// eInvalidInput, and unchanged, when the axis is not in the plane or has no length.
    Acad::ErrorStatus set(const AcGePoint3d& center, const AcGeVector3d& unitNormal,
                          const AcGeVector3d& majorAxis, double radiusRatio, double startAngle = 0.0,
                          double endAngle = host::twoPi);
    bool isNull() const;

    Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
    Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
    Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;
    Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;

    bool isClosed() const override;
    bool isPeriodic() const override { return isClosed(); }
    Acad::ErrorStatus getParamAtPoint(const AcGePoint3d& point, double& parameter) const override;
    Acad::ErrorStatus getOffsetCurves(double distance, AcDbVoidPtrArray& curves) const override;
    Acad::ErrorStatus getOrthoProjectedCurve(const AcGePlane& plane, AcDbCurve*& curve) const override;
    Acad::ErrorStatus extend(double parameter) override;
    Acad::ErrorStatus extend(bool extendStart, const AcGePoint3d& toPoint) override;
    /// Between the arc and its chord.
    Acad::ErrorStatus getArea(double& area) const override;
    Acad::ErrorStatus reverseCurve() override;
    bool isPlanar() const override { return true; }
    Acad::ErrorStatus getPlane(AcGePlane& plane, AcDb::Planarity& planarity) const override;

    void setData(const host::EllipseData& data);

protected:
    host::CurveView geometry() const override;
    AcGeNurbCurve3d asNurbs() const override { return AcGeNurbCurve3d(m.arc()); }
    std::unique_ptr<AcDbCurve> newPart(double from, double to) const override;
    AcGeVector3d subEcsNormal() const override { return m.normal; }
    bool subCurvePieces(std::vector<host::CurvePiece>& pieces) const override;
    Acad::ErrorStatus subTransformBy(const AcGeMatrix3d& transform) override;
    /// Centre, the four ends of the axes, and of an arc its start and its end.
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
    bool takeDxfGroup(AcDbDxfFiler* filer, const host::DxfGroup& group, std::string_view subclass) override;
    Acad::ErrorStatus dxfGroupsRead(AcDbDxfFiler* filer) override;

private:
    void moveAxisEnd(int index, const AcGeVector3d& offset);
    host::EllipseData m;
};

namespace host {

/// What a circle or an arc of one becomes under any transform that does not flatten it: a new ellipse with
/// the properties of the entity, or null.
std::unique_ptr<AcDbEllipse> newEllipse(const AcDbEntity& like, const CurvePiece& arc,
                                        const AcGeVector3d& normal, const AcGeMatrix3d& transform);

} // namespace host
