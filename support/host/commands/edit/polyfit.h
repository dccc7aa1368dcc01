// Fitted curves of polylines: arcs through the vertices, and B-splines along the frame of the vertices.
#pragma once

#include "host/commands/edit/editpolyline.h"

namespace host {

struct FittedVertex {
    AcGePoint2d point;
    double bulge = 0.0;
    SegmentWidths widths;
    double tangent = 0.0;
    bool isOwn = true; ///< a vertex of the polyline, not one that fitting added
};

/// Pairs of arcs through the vertices that touch each other everywhere. Between two vertices stands one more.
/// Tangents that are not given are those of the circle through the neighbours.
std::vector<FittedVertex> fitArcs(const EditPolyline& polyline);

/// Points on the uniform B-spline of degree 2 or 3 whose frame are the vertices; an open one starts and ends
/// in its first and last vertex. `segments` lines for each vertex of the frame.
std::vector<FittedVertex> fitSpline(const EditPolyline& polyline, int degree, int segments);

} // namespace host
