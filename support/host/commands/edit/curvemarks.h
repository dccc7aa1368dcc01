// Points at distances along a curve.
#pragma once

#include "host/db/db.h"

#include <span>
#include <vector>

namespace host {

struct CurveMark {
    AcGePoint3d point;
    AcGeVector3d tangent; ///< unit length, in the direction of the curve
};

/// Length from start to end; nothing for a curve without one (a ray).
std::optional<double> curveLength(const AcDbCurve& curve);

/// The places at the distances from the start of the curve, in linear time with the vertices of a polyline.
/// Distances beyond the curve are left out.
std::vector<CurveMark> marksAlong(const AcDbCurve& curve, std::span<const double> distances);

} // namespace host
