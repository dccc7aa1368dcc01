// Parallel curves on the side of a point.
#pragma once

#include "host/db/db.h"

#include <memory>
#include <vector>

namespace host {

/// The parallels at a distance on the side where the point lies (world coordinates; seen along the normal of
/// the curve's plane). None when the curve has none there.
std::vector<std::unique_ptr<AcDbCurve>> parallelsTowards(const AcDbCurve& curve, double distance,
                                                         const AcGePoint3d& side);
/// The parallels that pass through the point.
std::vector<std::unique_ptr<AcDbCurve>> parallelsThrough(const AcDbCurve& curve, const AcGePoint3d& through);

} // namespace host
