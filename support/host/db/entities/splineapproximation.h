// Splines near points that they need not run through.
#pragma once

#include "host/ge/nurb3d.h"

#include <optional>

namespace host {

/// A cubic curve of few control points that is within the tolerance of every point, and runs through the
/// first and the last one; tangents of no length leave it free there, a curve that returns to its first point
/// does so smoothly then. Nothing when only a curve through all points is near enough. About n log n.
std::optional<AcGeNurbCurve3d> approximatingCurve(const AcGePoint3dArray& points,
                                                  const AcGeVector3d& startTangent,
                                                  const AcGeVector3d& endTangent, double tolerance);

} // namespace host
