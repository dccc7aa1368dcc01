// Circles and ellipses in the plane: closest points and intersections, for whole curves. Callers limit the
// results to the arcs and segments they mean.
#pragma once

#include "host/ge/angles.h"

#include <vector>

namespace host {

// Points are center + cos t * major + sin t * minor. The axes are at right angles; neither is zero.
struct EllipseShape {
    AcGePoint2d center;
    AcGeVector2d major;
    AcGeVector2d minor;

    AcGePoint2d pointAt(double angle) const {
        return center + major * std::cos(angle) + minor * std::sin(angle);
    }
    AcGeVector2d derivativeAt(double angle) const {
        return minor * std::cos(angle) - major * std::sin(angle);
    }
    // The angle of a point on the ellipse, or of the point on its ray in the ellipse's own scaled axes.
    double angleOf(const AcGePoint2d& point) const {
        const AcGeVector2d arm = point - center;
        return normalizedAngle(std::atan2(arm.dotProduct(minor) / minor.lengthSqrd(),
                                          arm.dotProduct(major) / major.lengthSqrd()));
    }
    static EllipseShape circle(const AcGePoint2d& center, double radius) {
        return {center, {radius, 0.0}, {0.0, radius}};
    }
};

// c0 + c1 cos t + s1 sin t + c2 cos 2t + s2 sin 2t, a form to which all questions about ellipses reduce.
struct TrigonometricQuadratic {
    double c0 = 0.0, c1 = 0.0, s1 = 0.0, c2 = 0.0, s2 = 0.0;

    double value(double t) const;
    double derivative(double t) const;
    // The roots in [0, 2 pi), ascending. An extreme within the tolerance of zero (at least within rounding)
    // is one root, a touch. None when the function vanishes everywhere.
    std::vector<double> roots(double tolerance = 0.0) const;
};

// Angles at which the perpendicular from the point meets the ellipse: two to four; none when every angle
// does.
std::vector<double> ellipseFeet(const EllipseShape& ellipse, const AcGePoint2d& point);
// The angle of the closest point within [startAngle, endAngle] (endAngle may exceed 2 pi).
double closestEllipseAngle(const EllipseShape& ellipse, const AcGePoint2d& point, double startAngle = 0.0,
                           double endAngle = twoPi);

struct LineEllipseCrossing {
    double lineParameter; // of origin + t * direction
    double angle;
};
// Up to two; touching within the tolerance (a distance) gives one.
std::vector<LineEllipseCrossing> intersectLineEllipse(const AcGePoint2d& origin,
                                                      const AcGeVector2d& direction,
                                                      const EllipseShape& ellipse, double tolerance = 1e-10);

struct EllipseCrossing {
    double firstAngle;
    double secondAngle;
};
// Up to four; none for two ellipses that are the same.
std::vector<EllipseCrossing> intersectEllipses(const EllipseShape& first, const EllipseShape& second);

// Up to two points; touching within the tolerance gives one; concentric circles give none.
std::vector<AcGePoint2d> intersectCircles(const AcGePoint2d& firstCenter, double firstRadius,
                                          const AcGePoint2d& secondCenter, double secondRadius,
                                          double tolerance = 1e-10);

// The principal axes of the ellipse center + cos t * first + sin t * second, whose vectors need not be at
// right angles: the longer axis first, and the shift of the angle: the point at t is center + cos (t - shift)
// * major + sin (t - shift) * minor.
struct PrincipalAxes {
    AcGeVector3d major;
    AcGeVector3d minor;
    double shift;
};
PrincipalAxes principalAxes(const AcGeVector3d& first, const AcGeVector3d& second);

} // namespace host
