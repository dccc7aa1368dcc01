// Circular and elliptical arcs of the plane. A parameter is an angle from the reference vector or major axis,
// in the direction of the arc; a whole curve runs over a full turn.
#pragma once

#include "host/ge/conics.h"
#include "host/ge/curve2d.h"

class AcGeLinearEnt2d;

namespace host {

// What both kinds share: center + cos t * major + sin t * minor with axes at right angles.
class ConicArc2d : public AcGeCurve2d {
public:
    AcGePoint2d center() const { return m_shape.center; }
    double startAng() const { return m_startAngle; }
    double endAng() const { return m_endAngle; }
    AcGePoint2d startPoint() const { return evalPoint(m_startAngle); }
    AcGePoint2d endPoint() const { return evalPoint(m_endAngle); }
    bool isClockWise() const { return m_shape.major.crossProduct(m_shape.minor) < 0.0; }
    // Whether the point lies inside the whole curve.
    bool isInside(const AcGePoint2d& point, const AcGeTol& tolerance = AcGeContext::gTol) const;

    void getInterval(AcGeInterval& interval) const override {
        interval = AcGeInterval(m_startAngle, m_endAngle);
    }
    bool setInterval(const AcGeInterval& range) override;
    AcGePoint2d evaluate(double parameter, int derivativeCount, AcGeVector2d* derivatives) const override;
    double closestParameter(const AcGePoint2d& point) const override;
    bool isClosed(const AcGeTol& tolerance = AcGeContext::gTol) const override;
    bool isPeriodic(double& period) const override;
    AcGeBoundBlock2d orthoBoundBlock(const AcGeInterval& range) const override;
    using AcGeCurve2d::orthoBoundBlock;
    // Up to two common points; the count tells how many.
    bool intersectWith(const AcGeLinearEnt2d& line, int& count, AcGePoint2d& first, AcGePoint2d& second,
                       const AcGeTol& tolerance = AcGeContext::gTol) const;

protected:
    ConicArc2d() : m_shape(EllipseShape::circle({0.0, 0.0}, 1.0)) {}

    void setAngleRange(double startAngle, double endAngle);
    void reverse();

    EllipseShape m_shape;
    double m_startAngle = 0.0;
    double m_endAngle = twoPi;
};

} // namespace host

class AcGeCircArc2d : public host::ConicArc2d {
public:
    using host::ConicArc2d::intersectWith;

    // The unit circle.
    AcGeCircArc2d() = default;
    AcGeCircArc2d(const AcGePoint2d& center, double radius) { set(center, radius, 0.0, host::twoPi); }
    AcGeCircArc2d(const AcGePoint2d& center, double radius, double startAngle, double endAngle,
                  const AcGeVector2d& refVec = AcGeVector2d::kXAxis, bool isClockWise = false) {
        set(center, radius, startAngle, endAngle, refVec, isClockWise);
    }
    // Through three points, in their order.
    AcGeCircArc2d(const AcGePoint2d& start, const AcGePoint2d& middle, const AcGePoint2d& end) {
        set(start, middle, end);
    }
    // With the bulge as in polylines, or, when bulgeFlag is false, with the height of the arc over the chord.
    AcGeCircArc2d(const AcGePoint2d& start, const AcGePoint2d& end, double bulge, bool bulgeFlag = true) {
        set(start, end, bulge, bulgeFlag);
    }

    AcGe::EntityId type() const override { return AcGe::kCircArc2d; }
    bool isKindOf(AcGe::EntityId entityType) const override {
        return entityType == AcGe::kCircArc2d || AcGeCurve2d::isKindOf(entityType);
    }
    AcGeCircArc2d* copy() const override { return new AcGeCircArc2d(*this); }
    // A map that is not uniform leaves a circle with the mean radius.
    AcGeCircArc2d& transformBy(const AcGeMatrix2d& matrix) override;
    AcGeCircArc2d& reverseParam() override {
        reverse();
        return *this;
    }
    double length(double from, double to, double tolerance = 1e-10) const override;
    double paramAtLength(double datum, double distance, bool forward = true,
                         double tolerance = 1e-10) const override;
    bool getTrimmedOffset(double distance, AcGeVoidPointerArray& offsets,
                          AcGe::OffsetCrvExtType extension = AcGe::kFillet,
                          const AcGeTol& tolerance = AcGeContext::gTol) const override;

    double radius() const { return m_shape.major.length(); }
    AcGeVector2d refVec() const { return m_shape.major.normal(); }
    AcGeCircArc2d& setCenter(const AcGePoint2d& center) {
        m_shape.center = center;
        return *this;
    }
    AcGeCircArc2d& setRadius(double radius);
    AcGeCircArc2d& setAngles(double startAngle, double endAngle) {
        setAngleRange(startAngle, endAngle);
        return *this;
    }
    AcGeCircArc2d& set(const AcGePoint2d& center, double radius, double startAngle, double endAngle,
                       const AcGeVector2d& refVec = AcGeVector2d::kXAxis, bool isClockWise = false);
    // Unchanged when the points lie in line.
    AcGeCircArc2d& set(const AcGePoint2d& start, const AcGePoint2d& middle, const AcGePoint2d& end);
    AcGeCircArc2d& set(const AcGePoint2d& start, const AcGePoint2d& end, double bulge, bool bulgeFlag = true);

    bool intersectWith(const AcGeCircArc2d& other, int& count, AcGePoint2d& first, AcGePoint2d& second,
                       const AcGeTol& tolerance = AcGeContext::gTol) const;
    bool tangent(const AcGePoint2d& point, AcGeLine2d& line,
                 const AcGeTol& tolerance = AcGeContext::gTol) const;
};

class AcGeEllipArc2d : public host::ConicArc2d {
public:
    AcGeEllipArc2d() = default;
    // minorAxis is made orthogonal; on the right of majorAxis it makes a clockwise curve.
    AcGeEllipArc2d(const AcGePoint2d& center, const AcGeVector2d& majorAxis, const AcGeVector2d& minorAxis,
                   double majorRadius, double minorRadius, double startAngle = 0.0,
                   double endAngle = host::twoPi) {
        set(center, majorAxis, minorAxis, majorRadius, minorRadius, startAngle, endAngle);
    }

    AcGe::EntityId type() const override { return AcGe::kEllipArc2d; }
    bool isKindOf(AcGe::EntityId entityType) const override {
        return entityType == AcGe::kEllipArc2d || AcGeCurve2d::isKindOf(entityType);
    }
    AcGeEllipArc2d* copy() const override { return new AcGeEllipArc2d(*this); }
    AcGeEllipArc2d& transformBy(const AcGeMatrix2d& matrix) override;
    AcGeEllipArc2d& reverseParam() override {
        reverse();
        return *this;
    }

    double majorRadius() const { return m_shape.major.length(); }
    double minorRadius() const { return m_shape.minor.length(); }
    AcGeVector2d majorAxis() const { return m_shape.major.normal(); }
    AcGeVector2d minorAxis() const { return m_shape.minor.normal(); }
    const host::EllipseShape& shape() const { return m_shape; }
    AcGeEllipArc2d& setAngles(double startAngle, double endAngle) {
        setAngleRange(startAngle, endAngle);
        return *this;
    }
    AcGeEllipArc2d& set(const AcGePoint2d& center, const AcGeVector2d& majorAxis,
                        const AcGeVector2d& minorAxis, double majorRadius, double minorRadius,
                        double startAngle = 0.0, double endAngle = host::twoPi);
};
