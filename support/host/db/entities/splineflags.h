// What the flags of a spline in files mean, and which curves can be held.
#pragma once

#include "host/ge/nurb3d.h"

#include <algorithm>
#include <cmath>

namespace host {

/// Bits of group 70.
namespace SplineFlag {
inline constexpr int closed = 1;
inline constexpr int periodic = 2;
inline constexpr int rational = 4;
inline constexpr int planar = 8;
inline constexpr int linear = 16;
inline constexpr int fitMethod = 1024; ///< edited by its fit points
} // namespace SplineFlag

/// Numbers that make a curve: finite, and fitting together.
inline bool isUsable(const AcGeNurbCurve3d& curve) {
    const auto isFiniteAt = [&](int index) {
        const AcGePoint3d point = curve.controlPointAt(index);
        return std::isfinite(point.x + point.y + point.z + curve.weightAt(index));
    };
    const double* knots = curve.knots().asArrayPtr();
    if (!curve.isValid() ||
        !std::all_of(knots, knots + curve.numKnots(), [](double knot) { return std::isfinite(knot); })) {
        return false;
    }
    for (int index = 0; index < curve.numControlPoints(); ++index) {
        if (!isFiniteAt(index)) {
            return false;
        }
    }
    return true;
}

} // namespace host
