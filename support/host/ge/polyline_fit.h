// Smooth curves from the vertices of a polyline: pairs of arcs through them, or the chords of a B-spline that
// has them as its frame.
#pragma once

#include "host/ge/bulge_polyline.h"
#include "host/ge/point3d.h"

#include <optional>
#include <span>
#include <vector>

namespace host {

// A vertex that arcs are to run through; the direction of the curve there (radians) where it is given.
struct FitVertex {
    AcGePoint2d point;
    std::optional<double> tangent;
};

// Two arcs between each pair of vertices, with common tangents everywhere: vertex, joint, vertex, joint ...
// Directions that are not given are those of the circle through a vertex and its neighbours. With fewer than
// three vertices, where nothing tells a direction, the segments are straight.
BulgePath fitArcs(std::span<const FitVertex> vertices, bool closed);

// Points of the uniform B-spline over a frame, `segments` chords for each of its segments. An open curve
// begins and ends with the frame, a closed one does not repeat its first point. A frame with too few vertices
// lowers the degree.
std::vector<AcGePoint3d> splineVertices(std::span<const AcGePoint3d> frame, bool closed, int degree,
                                        int segments);
// The number of segments of that frame.
int splineFrameSegments(int frameVertices, bool closed);

} // namespace host
