// Circular and elliptical arcs of space. A parameter is an angle from the reference vector or major axis,
// counterclockwise seen against the normal; a whole curve runs over a full turn.
#pragma once

#include "host/ge/conics.h"
#include "host/ge/curve3d.h"

class AcGeLinearEnt3d;

namespace host {

// What both kinds share: center + cos t * major + sin t * minor with axes at right angles.
class ConicArc3d : public AcGeCurve3d {
public:
    AcGePoint3d center() const { return m_center; }
    AcGeVector3d normal() const { return m_major.crossProduct(m_minor).normal(); }
    double startAng() const { return m_startAngle; }
    double endAng() const { return m_endAngle; }
    AcGePoint3d startPoint() const { return evalPoint(m_startAngle); }
    AcGePoint3d endPoint() const { return evalPoint(m_endAngle); }
    void getPlane(AcGePlane& plane) const { plane.set(m_center, m_major, m_minor); }
    // Whether the point lies in the plane and inside the whole curve.
    bool isInside(const AcGePoint3d& point, const AcGeTol& tolerance = AcGeContext::gTol) const;

    void getInterval(AcGeInterval& interval) const override {
        interval = AcGeInterval(m_startAngle, m_endAngle);
    }
    bool setInterval(const AcGeInterval& range) override;
    AcGePoint3d evaluate(double parameter, int derivativeCount, AcGeVector3d* derivatives) const override;
    double closestParameter(const AcGePoint3d& point) const override;
    bool isClosed(const AcGeTol& tolerance = AcGeContext::gTol) const override;
    bool isPeriodic(double& period) const override;
    bool isPlanar(AcGePlane& plane, const AcGeTol& tolerance = AcGeContext::gTol) const override;
    AcGeBoundBlock3d orthoBoundBlock(const AcGeInterval& range) const override;
    using AcGeCurve3d::orthoBoundBlock;

    // Up to two common points; the count tells how many.
    bool intersectWith(const AcGeLinearEnt3d& line, int& count, AcGePoint3d& first, AcGePoint3d& second,
                       const AcGeTol& tolerance = AcGeContext::gTol) const;
    bool intersectWith(const AcGePlanarEnt& plane, int& count, AcGePoint3d& first, AcGePoint3d& second,
                       const AcGeTol& tolerance = AcGeContext::gTol) const;

protected:
    ConicArc3d() = default;

    void setAngleRange(double startAngle, double endAngle);
    // The arc taken the other way round: the same angles count from the mirrored axis.
    void reverse();
    bool containsAngle(double angle, double slack) const;
    EllipseShape flatShape() const { return {{0.0, 0.0}, {m_major.length(), 0.0}, {0.0, m_minor.length()}}; }

    AcGePoint3d m_center;
    AcGeVector3d m_major = AcGeVector3d::kXAxis;
    AcGeVector3d m_minor = AcGeVector3d::kYAxis;
    double m_startAngle = 0.0;
    double m_endAngle = twoPi;
};

} // namespace host

class AcGeCircArc3d : public host::ConicArc3d {
public:
    using host::ConicArc3d::intersectWith;

    // The unit circle of the XY plane.
    AcGeCircArc3d() = default;
    // A whole circle; its reference vector follows the arbitrary axis rule.
    AcGeCircArc3d(const AcGePoint3d& center, const AcGeVector3d& normal, double radius) {
        set(center, normal, radius);
    }
    AcGeCircArc3d(const AcGePoint3d& center, const AcGeVector3d& normal, const AcGeVector3d& refVec,
                  double radius, double startAngle, double endAngle) {
        set(center, normal, refVec, radius, startAngle, endAngle);
    }
    // Through three points, in their order.
    AcGeCircArc3d(const AcGePoint3d& start, const AcGePoint3d& middle, const AcGePoint3d& end) {
        set(start, middle, end);
    }

    AcGe::EntityId type() const override { return AcGe::kCircArc3d; }
    bool isKindOf(AcGe::EntityId entityType) const override {
        return entityType == AcGe::kCircArc3d || AcGeCurve3d::isKindOf(entityType);
    }
    AcGeCircArc3d* copy() const override { return new AcGeCircArc3d(*this); }
    // A map that is not uniform leaves a circle with the mean radius; use an elliptical arc for what it
    // really is.
    AcGeCircArc3d& transformBy(const AcGeMatrix3d& matrix) override;
    AcGeCircArc3d& reverseParam() override {
        reverse();
        return *this;
    }
    double length(double from, double to, double tolerance = 1e-10) const override;
    double paramAtLength(double datum, double distance, bool forward = true,
                         double tolerance = 1e-10) const override;
    bool getTrimmedOffset(double distance, const AcGeVector3d& planeNormal, AcGeVoidPointerArray& offsets,
                          AcGe::OffsetCrvExtType extension = AcGe::kFillet,
                          const AcGeTol& tolerance = AcGeContext::gTol) const override;

    double radius() const { return m_major.length(); }
    AcGeVector3d refVec() const { return m_major.normal(); }
    AcGeCircArc3d& setCenter(const AcGePoint3d& center) {
        m_center = center;
        return *this;
    }
    AcGeCircArc3d& setRadius(double radius);
    AcGeCircArc3d& setAxes(const AcGeVector3d& normal, const AcGeVector3d& refVec);
    AcGeCircArc3d& setAngles(double startAngle, double endAngle) {
        setAngleRange(startAngle, endAngle);
        return *this;
    }
    AcGeCircArc3d& set(const AcGePoint3d& center, const AcGeVector3d& normal, double radius);
    AcGeCircArc3d& set(const AcGePoint3d& center, const AcGeVector3d& normal, const AcGeVector3d& refVec,
                       double radius, double startAngle, double endAngle);
    AcGeCircArc3d& set(const AcGePoint3d& start, const AcGePoint3d& middle, const AcGePoint3d& end);
    // flag: kEqualArg... for equal points, kLinearlyDependentArg1Arg2Arg3 for points in line; the arc is
    // unchanged.
    AcGeCircArc3d& set(const AcGePoint3d& start, const AcGePoint3d& middle, const AcGePoint3d& end,
                       AcGeError& flag);

    bool intersectWith(const AcGeCircArc3d& other, int& count, AcGePoint3d& first, AcGePoint3d& second,
                       const AcGeTol& tolerance = AcGeContext::gTol) const;
    // The tangent at a point of the circle.
    bool tangent(const AcGePoint3d& point, AcGeLine3d& line,
                 const AcGeTol& tolerance = AcGeContext::gTol) const;
};

class AcGeEllipArc3d : public host::ConicArc3d {
public:
    AcGeEllipArc3d() = default;
    explicit AcGeEllipArc3d(const AcGeCircArc3d& arc) { set(arc); }
    // A whole ellipse. The axes need not have unit length; minorAxis is made orthogonal.
    AcGeEllipArc3d(const AcGePoint3d& center, const AcGeVector3d& majorAxis, const AcGeVector3d& minorAxis,
                   double majorRadius, double minorRadius) {
        set(center, majorAxis, minorAxis, majorRadius, minorRadius);
    }
    AcGeEllipArc3d(const AcGePoint3d& center, const AcGeVector3d& majorAxis, const AcGeVector3d& minorAxis,
                   double majorRadius, double minorRadius, double startAngle, double endAngle) {
        set(center, majorAxis, minorAxis, majorRadius, minorRadius, startAngle, endAngle);
    }

    AcGe::EntityId type() const override { return AcGe::kEllipArc3d; }
    bool isKindOf(AcGe::EntityId entityType) const override {
        return entityType == AcGe::kEllipArc3d || AcGeCurve3d::isKindOf(entityType);
    }
    AcGeEllipArc3d* copy() const override { return new AcGeEllipArc3d(*this); }
    // Right for every affine map that does not flatten the plane.
    AcGeEllipArc3d& transformBy(const AcGeMatrix3d& matrix) override;
    AcGeEllipArc3d& reverseParam() override {
        reverse();
        return *this;
    }

    double majorRadius() const { return m_major.length(); }
    double minorRadius() const { return m_minor.length(); }
    AcGeVector3d majorAxis() const { return m_major.normal(); }
    AcGeVector3d minorAxis() const { return m_minor.normal(); }
    bool isCircular(const AcGeTol& tolerance = AcGeContext::gTol) const {
        return std::fabs(majorRadius() - minorRadius()) <= tolerance.equalPoint();
    }
    AcGeEllipArc3d& setCenter(const AcGePoint3d& center) {
        m_center = center;
        return *this;
    }
    AcGeEllipArc3d& setMajorRadius(double radius);
    AcGeEllipArc3d& setMinorRadius(double radius);
    AcGeEllipArc3d& setAxes(const AcGeVector3d& majorAxis, const AcGeVector3d& minorAxis);
    AcGeEllipArc3d& setAngles(double startAngle, double endAngle) {
        setAngleRange(startAngle, endAngle);
        return *this;
    }
    AcGeEllipArc3d& set(const AcGePoint3d& center, const AcGeVector3d& majorAxis,
                        const AcGeVector3d& minorAxis, double majorRadius, double minorRadius,
                        double startAngle = 0.0, double endAngle = host::twoPi);
    AcGeEllipArc3d& set(const AcGeCircArc3d& arc);
};
