// The bridge: command V7_DrawBridge, and the shape of its parapets.
#pragma once

#include "host/arx.h"

#include <array>
#include <memory>

/// Draws a bridge about an axis: two parapet lines with wings at their ends.
void DrawBridge();

namespace bridge {

/// The corners of the parapet left of the axis, in order: wing, parapet, wing. The wings are half the bridge
/// wide and stand off at 45 degrees, away from the bridge and from the axis.
std::array<AcGePoint3d, 4> ParapetCorners(const AcGePoint3d& axisStart, const AcGePoint3d& axisEnd,
                                          double width);

} // namespace bridge
