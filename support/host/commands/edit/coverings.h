// Which segments lie on one line, and which arcs on one circle, so that one can stand for several.
#pragma once

#include "host/ge/ge.h"

#include <cstdint>
#include <vector>

namespace host {

struct CoverOptions {
    double tolerance = 1e-6;
    bool joinsEnds = true; ///< those that only touch too
};

struct Segment {
    AcGePoint3d start, end;
    int kind = 0; ///< only those of one kind go together
};
/// Members that one segment can stand for: positions in the list, the first one given first.
struct SegmentCover {
    std::vector<std::uint32_t> members;
    AcGePoint3d start, end; ///< in the direction of the first member
};
/// Covers of two members and more. Segments without a length in the plan have no part in it. O(n log n) and
/// the pairs that touch.
std::vector<SegmentCover> coverSegments(const std::vector<Segment>& segments, const CoverOptions& options);

struct CircleArc {
    static constexpr double full = twoPi;
    AcGePoint3d center;
    AcGeVector3d normal;
    double radius = 0.0;
    double start = 0.0; ///< radians in the plane of the normal
    double sweep = 0.0; ///< counterclockwise; `full` for a circle
    int kind = 0;
};
struct ArcCover {
    std::vector<std::uint32_t> members;
    double start = 0.0;
    double sweep = 0.0;
};
std::vector<ArcCover> coverArcs(std::vector<CircleArc> arcs, const CoverOptions& options);

} // namespace host
