// Wide lines as areas: each stretch of segments becomes a strip with mitred corners.
#pragma once

#include "host/gi/dashes.h"

#include <cstdint>
#include <vector>

namespace host {

// Appends the strip's contours, to be filled by the non-zero rule. The run lies in a plane of constant z;
// width is measured in x and y. Corners sharper than about 29 degrees, and those where the width jumps, are
// not mitred: both segments end squarely there. A closed run's last point repeats its first.
void appendStrip(std::span<const RunPoint> run, bool isClosed, std::vector<AcGePoint3d>& points,
                 std::vector<std::uint32_t>& contourEnds);

} // namespace host
