// Areas cut into trapezoids between horizontal lines.
#pragma once

#include "host/formats/sld/slide.h"

#include <functional>

namespace host {

/// Closed contours; contour i ends before ends[i]. Calls for each piece with three or four corners. Areas
/// without any height have no pieces. Time: edges sorted, and once for every dot of height that edges pass.
void cutIntoTrapezoids(std::span<const SlidePoint> points, std::span<const std::uint32_t> ends, bool evenOdd,
                       const std::function<void(std::span<const SlidePoint>)>& piece);

} // namespace host
