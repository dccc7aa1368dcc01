// Parallel curves of polylines with bulges.
#pragma once

#include "host/ge/bulge_polyline.h"

#include <vector>

namespace host {

// The curves at a distance to the right of the path (left when negative), seen along its direction; so a
// counterclockwise closed path grows with a positive distance. Outer corners are extended to the intersection
// of the neighbouring segments, or rounded where these do not meet, meet further than a thousand distances
// from the corner, or where the path itself stands in the way. Parts nearer to the path than the distance are
// cut away, so that there may be several results or none. They have the direction of the path and are ordered
// by where they begin along it; a closed path that does not
// meet itself gives closed results. Distance 0 gives the path itself. About n
// log n unless the distance is many times the length of the segments.
std::vector<BulgePath> offsetPath(const BulgePath& path, double distance);

} // namespace host
