// Corners between lines and arcs of a plane: rounded, cut off, or just met.
#pragma once

#include "host/ge/path_segment.h"

#include <functional>
#include <optional>
#include <vector>

namespace host {

/// A line or arc (a whole circle as an arc of almost a turn is told by `isCircle`), and where it was picked.
struct CornerSide {
    PathSegment segment;
    AcGePoint2d pick;
    bool isCircle = false;
};

/// What becomes of two sides: the part of each up to the point where it ends at the corner, and what comes
/// between.
struct Corner {
    PathSegment first;
    PathSegment second;
    std::optional<PathSegment> between; ///< from the first side to the second
    bool firstEndsAtCorner = true;      ///< the end, not the start, of `first` was moved
    bool secondEndsAtCorner = true;
};

/// An arc of the radius that touches both; of several the one nearest to the picks. With radius 0 the sides
/// just meet. Parallel lines are joined by half a circle whatever the radius is. Nothing when there is none.
std::optional<Corner> roundCorner(const CornerSide& first, const CornerSide& second, double radius);

/// A line that cuts off the corner of two lines at the distances from it.
std::optional<Corner> cutCorner(const CornerSide& first, const CornerSide& second, double firstDistance,
                                double secondDistance);

using CornerMaker = std::function<std::optional<Corner>(const CornerSide&, const CornerSide&)>;
/// Treats every corner of a path between straight segments. Gives how many were made; `refused` counts those
/// whose segments are too short, or in one line.
int cornerAll(std::vector<PathSegment>& segments, bool closed, const CornerMaker& make, int& refused);

} // namespace host
