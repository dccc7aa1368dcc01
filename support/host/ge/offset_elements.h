// Inside of the offset: the raw pieces of a parallel curve, before they are cut and chosen from.
#pragma once

#include "host/ge/bulge_polyline.h"

#include <vector>

namespace host::offset {

// The lengths below which things count as equal, all derived from the distance and the size of the path.
struct Tolerances {
    double point;  // two computed points are one
    double node;   // ends of pieces are joined
    double margin; // a point this much nearer than the distance is not too near yet
    double corner; // a gap at a corner that needs no joint

    Tolerances(double distance, double extent);
};

// A raw piece: the parallel of a segment with its extensions, or the arc around a corner.
struct Element {
    PathSegment geometry;
    int startNode = -1; // -1 for pieces that only cut others
    int endNode = -1;
    bool isResult() const { return startNode >= 0; }
};

struct Node {
    AcGePoint2d point;
    // The end of a parallel at an inner corner: never the end of a result.
    bool isLoose = false;
};

struct RawOffset {
    std::vector<Element> elements; // results first, in the order of the path
    std::vector<Node> nodes;
    // The areas added beyond the distance by extending segments at outer corners: closed paths that begin at
    // the corner, and whose first and last segment are the perpendiculars there.
    std::vector<BulgePath> mitres;
    // The path is closed and does not meet itself, so that every result is closed too. Otherwise a result may
    // end where it comes near the other side of the path.
    bool isSimpleClosed = false;
};

// `path` has no segments without length; `index` is over its segments.
RawOffset rawOffset(const BulgePath& path, const PathIndex& index, double distance,
                    const Tolerances& tolerances);

} // namespace host::offset
