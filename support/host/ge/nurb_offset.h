// Curves at a distance from a plane NURBS curve, and the area a plane curve encloses.
#pragma once

#include "host/ge/nurb3d.h"

#include <vector>

namespace host {

// The curves at a distance to the right of a curve (to the left for a negative one), seen against the plane's
// normal. Nothing of them is nearer to the curve: loops and dips of the parallel are left out, corners of the
// curve are rounded on their outer side. Every point lies at the distance within its ten-millionth part.
std::vector<AcGeNurbCurve3d> offsetCurves(const AcGeNurbCurve3d& curve, bool isClosed,
                                          const AcGeVector3d& planeNormal, double distance);

// The area between a curve and the chord of its ends, as a vector along the normal about which it turns
// counterclockwise. Right for plane curves.
AcGeVector3d enclosedArea(const AcGeCurve3d& curve);

} // namespace host
