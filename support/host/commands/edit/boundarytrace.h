// Closed boundaries around a picked point: the face that visible curves enclose, cut at their crossings, and
// the islands within it. Nothing is looked at but what lies near the boundary and inside it: finding it takes
// about log n for each piece of curve on the way.
#pragma once

#include "host/db/db.h"
#include "host/db/entities/curvepiece.h"

#include <optional>
#include <vector>

namespace host {

/// A closed way along pieces that follow each other: lines and arcs; of other curves chords. In coordinates
/// of the plane, with Z 0.
struct TracedLoop {
    std::vector<CurvePiece> pieces; ///< each runs from `from` to `to`; `to` may be smaller
    std::vector<AcDbObjectId> sources;
};

struct TracedBoundary {
    std::vector<TracedLoop>
        loops; ///< the outer one, then islands of any depth; none when there is no boundary
    struct Gap {
        AcGePoint2d from;
        AcGePoint2d to;
    };
    std::optional<Gap> gap; ///< without a boundary: the narrowest place where the curves do not meet
    enum class End { whole, tooComplex, stopped };
    End end = End::whole; ///< nothing was found when it is not
};

/// In the plane through the origin with this normal, in which the point is given, too; of the curves that can
/// be selected in the block.
TracedBoundary traceBoundary(AcDbObjectId block, const AcGeVector3d& normal, const AcGePoint2d& point);

/// All closed ways that these curves make with each other in the plane, whether they can be selected or not:
/// faces counterclockwise, outlines of what hangs together clockwise.
std::vector<TracedLoop> closedWays(const std::vector<AcDbObjectId>& curves, const AcGeVector3d& normal);
/// Positive for a loop that runs counterclockwise.
double signedArea(const TracedLoop& loop);

} // namespace host
