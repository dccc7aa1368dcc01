// Angle arithmetic shared by the geometry code and the areas above. Angles are radians.
#pragma once

#include "host/ge/point3d.h"

#include <cmath>
#include <numbers>

namespace host {

inline constexpr double pi = std::numbers::pi;
inline constexpr double twoPi = 2.0 * std::numbers::pi;
inline constexpr double halfPi = 0.5 * std::numbers::pi;

// The same direction in [0, 2 pi).
inline double normalizedAngle(double angle) {
    if (angle >= 0.0 && angle < twoPi)
        return angle;
    const double value = angle - twoPi * std::floor(angle / twoPi);
    return value >= twoPi || value < 0.0 ? 0.0 : value;
}

// The same direction in (-pi, pi].
inline double signedAngle(double angle) {
    const double value = normalizedAngle(angle);
    return value > pi ? value - twoPi : value;
}

// The unit vector in a direction.
inline AcGeVector2d direction(double angle) {
    return {std::cos(angle), std::sin(angle)};
}

inline AcGePoint2d polar(const AcGePoint2d& from, double angle, double distance) {
    return {from.x + distance * std::cos(angle), from.y + distance * std::sin(angle)};
}
// In the plane z = from.z.
inline AcGePoint3d polar(const AcGePoint3d& from, double angle, double distance) {
    return {from.x + distance * std::cos(angle), from.y + distance * std::sin(angle), from.z};
}
// The direction from one point to the other in the XY plane, in [0, 2 pi).
inline double angleBetween(const AcGePoint2d& from, const AcGePoint2d& to) {
    return (to - from).angle();
}
inline double angleBetween(const AcGePoint3d& from, const AcGePoint3d& to) {
    return AcGeVector2d(to.x - from.x, to.y - from.y).angle();
}

inline AcGePoint2d to2d(const AcGePoint3d& point) {
    return {point.x, point.y};
}
inline AcGeVector2d to2d(const AcGeVector3d& vector) {
    return {vector.x, vector.y};
}
inline AcGePoint3d to3d(const AcGePoint2d& point, double z = 0.0) {
    return {point.x, point.y, z};
}
inline AcGeVector3d to3d(const AcGeVector2d& vector, double z = 0.0) {
    return {vector.x, vector.y, z};
}

} // namespace host
