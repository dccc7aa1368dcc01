// Fitting of polylines.
#include "host/ge/polyline_fit.h"

#include "host/ge/angles.h"
#include "host/ge/nurb3d.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace host {

namespace {

AcGeVector2d unitAt(double angle) {
    return {std::cos(angle), std::sin(angle)};
}

double angleBetween(const AcGeVector2d& from, const AcGeVector2d& to) {
    return std::atan2(from.crossProduct(to), from.dotProduct(to));
}

// Of the circle through three points, at the middle one.
AcGeVector2d circleTangent(const AcGePoint2d& before, const AcGePoint2d& at, const AcGePoint2d& after) {
    const AcGeVector2d in = at - before, out = after - at;
    const double inSize = in.lengthSqrd(), outSize = out.lengthSqrd();
    if (inSize == 0.0 || outSize == 0.0)
        return inSize == 0.0 ? out.normal() : in.normal();
    const AcGeVector2d sum = in / inSize + out / outSize;
    // A polyline that turns back on itself goes round in a half circle.
    return sum.length() > 1e-12 / std::sqrt(std::min(inSize, outSize)) ? sum.normal()
                                                                       : in.normal().perpVector();
}

// The direction at the other end of a chord, on the one arc that has the given direction at this end.
AcGeVector2d mirrored(const AcGeVector2d& direction, const AcGeVector2d& chord) {
    const AcGeVector2d axis = chord.normal();
    return axis * (2.0 * axis.dotProduct(direction)) - direction;
}

// For every vertex the nearest one before it, or after it, that stands elsewhere; the vertex itself where
// there is none.
std::vector<std::size_t> elsewhere(std::span<const FitVertex> vertices, bool closed, bool before) {
    const std::size_t count = vertices.size();
    std::vector<std::size_t> result(count);
    std::iota(result.begin(), result.end(), std::size_t{0});
    // A closed polyline is gone round twice, as its first vertices know nothing yet of the last ones.
    for (std::size_t step = 0; step < (closed ? 2 * count : count); ++step) {
        const std::size_t place = step % count;
        const std::size_t at = before ? place : count - 1 - place;
        if (!closed && place == 0)
            continue;
        const std::size_t next = before ? (at + count - 1) % count : (at + 1) % count;
        if (!vertices[at].point.isEqualTo(vertices[next].point))
            result[at] = next;
        else if (result[next] != next)
            result[at] = result[next];
    }
    return result;
}

// The directions at all vertices; nothing tells them where there are two only. Vertices that repeat the one
// before them have its direction.
std::vector<AcGeVector2d> directions(std::span<const FitVertex> vertices, bool closed) {
    const std::size_t count = vertices.size();
    const std::vector<std::size_t> before = elsewhere(vertices, closed, true);
    const std::vector<std::size_t> after = elsewhere(vertices, closed, false);
    std::vector<AcGeVector2d> result(count);
    for (std::size_t i = 0; i < count; ++i) {
        if (vertices[i].tangent)
            result[i] = unitAt(*vertices[i].tangent);
        else if (before[i] != i && after[i] != i)
            result[i] = circleTangent(vertices[before[i]].point, vertices[i].point, vertices[after[i]].point);
    }
    // The ends of an open polyline go on as the arc next to them.
    for (std::size_t i = 0; i < count; ++i) {
        if (vertices[i].tangent || (before[i] != i) == (after[i] != i))
            continue;
        const bool isStart = before[i] == i;
        const std::size_t next = isStart ? after[i] : before[i];
        const AcGeVector2d chord = vertices[next].point - vertices[i].point;
        const bool isKnown = vertices[next].tangent || (before[next] != next && after[next] != next);
        result[i] = isKnown ? mirrored(result[next], chord) : isStart ? chord.normal() : -chord.normal();
    }
    return result;
}

// Appends two arcs that leave and arrive in the given directions; the last point is left to the next pair.
void appendPair(BulgePath& path, const AcGePoint2d& from, const AcGeVector2d& leaving, const AcGePoint2d& to,
                const AcGeVector2d& arriving) {
    const AcGeVector2d chord = to - from;
    // The joint is the middle of the ends of two tangents of equal length d:
    // 2 d^2 (1 - leaving . arriving) + 2 d chord . (leaving + arriving) - chord^2 = 0
    const double a = 2.0 * (1.0 - leaving.dotProduct(arriving));
    const double b = chord.dotProduct(leaving + arriving);
    const double c = chord.lengthSqrd();
    const double divisor = b + std::sqrt(b * b + a * c);
    if (!(divisor > 1e-9 * std::sqrt(c))) {
        // Both directions point back along the chord: two half circles.
        const double bulge = leaving.crossProduct(chord) < 0.0 ? -1.0 : 1.0;
        path.add(from, bulge);
        path.add(from + chord * 0.5, -bulge);
        return;
    }
    const double d = c / divisor;
    const AcGePoint2d joint = from + (chord + (leaving - arriving) * d) * 0.5;
    path.add(from, std::tan(0.5 * angleBetween(leaving, joint - from)));
    path.add(joint, std::tan(0.5 * angleBetween(to - joint, arriving)));
}

} // namespace

BulgePath fitArcs(std::span<const FitVertex> vertices, bool closed) {
    BulgePath path;
    path.closed = closed;
    const std::size_t count = vertices.size();
    if (count < 2) {
        for (const FitVertex& vertex : vertices)
            path.add(vertex.point);
        return path;
    }
    const std::vector<AcGeVector2d> along = directions(vertices, closed);
    const std::size_t segments = closed ? count : count - 1;
    for (std::size_t i = 0; i < segments; ++i) {
        const std::size_t next = (i + 1) % count;
        if (vertices[i].point.isEqualTo(vertices[next].point))
            path.add(vertices[i].point);
        else
            appendPair(path, vertices[i].point, along[i], vertices[next].point, along[next]);
    }
    if (!closed)
        path.add(vertices.back().point);
    return path;
}

int splineFrameSegments(int frameVertices, bool closed) {
    return closed && frameVertices > 2 ? frameVertices : std::max(frameVertices - 1, 0);
}

std::vector<AcGePoint3d> splineVertices(std::span<const AcGePoint3d> frame, bool closed, int degree,
                                        int segments) {
    const int count = static_cast<int>(frame.size());
    const bool goesAround = closed && count > 2;
    const int p = std::clamp(degree, 1, std::max(count - (goesAround ? 0 : 1), 1));
    if (count < 2 || segments < 1)
        return {frame.begin(), frame.end()};
    AcGePoint3dArray points;
    AcGeKnotVector knots;
    const int spans = goesAround ? count : count - p;
    for (int i = 0; i < spans + p; ++i)
        points.append(frame[static_cast<std::size_t>(i % count)]);
    for (int i = -p; i <= spans + p; ++i)
        knots.append(goesAround ? i : std::clamp(i, 0, spans));
    const AcGeNurbCurve3d curve(p, knots, points);
    std::vector<AcGePoint3d> result;
    const int last = splineFrameSegments(count, closed) * segments;
    for (int i = 0; i < last + (goesAround ? 0 : 1); ++i)
        result.push_back(!goesAround && i == last ? frame.back()
                                                  : curve.evalPoint(static_cast<double>(spans) * i / last));
    return result;
}

} // namespace host
