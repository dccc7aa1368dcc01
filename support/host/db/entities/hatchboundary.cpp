// Geometry of hatch boundaries.
#include "host/db/entities/hatchboundary.h"

#include <algorithm>

namespace host {
namespace {

BoundaryPiece lineBetween(const AcGePoint2d& start, const AcGePoint2d& end) {
    BoundaryPiece piece;
    piece.start = start;
    piece.end = end;
    return piece;
}

BoundaryPiece arcPiece(const AcGePoint2d& center, const AcGeVector2d& u, const AcGeVector2d& v, double from,
                       double to) {
    BoundaryPiece piece;
    piece.isArc = true;
    piece.center = center;
    piece.u = u;
    piece.v = v;
    piece.from = from;
    piece.to = to;
    piece.start = piece.pointAt(from);
    piece.end = piece.pointAt(to);
    return piece;
}

BoundaryPiece segmentPiece(const PathSegment& segment) {
    BoundaryPiece piece;
    if (segment.isArc()) {
        const double sweep = segment.sweep();
        piece.isArc = true;
        piece.center = segment.center();
        piece.u = segment.start - piece.center;
        piece.v = sweep > 0.0 ? piece.u.perpVector() : -piece.u.perpVector();
        piece.to = std::fabs(sweep);
    }
    piece.start = segment.start;
    piece.end = segment.end;
    return piece;
}

/// Of an edge whose angles are the same, or a whole turn apart, the whole curve.
BoundaryPiece conicPiece(const HatchEdge& edge) {
    const AcGeVector2d minor = edge.major.perpVector() * edge.ratio;
    double sweep = edge.endAngle - edge.startAngle;
    if (std::fabs(sweep) > twoPi - 1e-9) {
        sweep = twoPi;
    } else if (sweep <= 0.0) {
        sweep += twoPi;
    }
    return arcPiece(edge.start, edge.major, edge.counterclockwise ? minor : -minor, edge.startAngle,
                    edge.startAngle + sweep);
}

/// Chords of a stretch of a curve, halved until the middle lies close enough to them.
void addChords(const AcGeNurbCurve3d& curve, double from, double to, double deviation, int depth,
               std::vector<AcGePoint2d>& points) {
    const double middle = (from + to) / 2.0;
    const AcGePoint2d a = to2d(curve.evalPoint(from));
    const AcGePoint2d b = to2d(curve.evalPoint(to));
    const AcGePoint2d m = to2d(curve.evalPoint(middle));
    const AcGePoint2d quarter = to2d(curve.evalPoint((from + middle) / 2.0));
    const bool close =
        PathSegment(a, b).distanceTo(m) <= deviation && PathSegment(a, b).distanceTo(quarter) <= deviation;
    if (depth == 0 || close) {
        points.push_back(b);
        return;
    }
    addChords(curve, from, middle, deviation, depth - 1, points);
    addChords(curve, middle, to, deviation, depth - 1, points);
}

std::vector<AcGePoint2d> splinePoints(const HatchSpline& spline) {
    AcGePoint3dArray points;
    Box2d box;
    for (const AcGePoint2d& point : spline.controlPoints) {
        points.append(to3d(point));
        box.add(point);
    }
    AcGeKnotVector knots;
    for (const double knot : spline.knots) {
        knots.append(knot);
    }
    AcGeDoubleArray weights;
    for (const double weight : spline.weights) {
        weights.append(weight);
    }
    const AcGeNurbCurve3d curve =
        spline.rational && weights.length() == points.length()
            ? AcGeNurbCurve3d(spline.degree, knots, points, weights, spline.periodic)
            : AcGeNurbCurve3d(spline.degree, knots, points, spline.periodic);
    if (points.isEmpty() || !curve.isValid()) {
        return spline.fitPoints.empty() ? spline.controlPoints : spline.fitPoints;
    }
    const double deviation = 1e-5 * (box.maximum - box.minimum).length();
    constexpr int deepest = 9;
    std::vector<AcGePoint2d> chords{to2d(curve.startPoint())};
    double last = curve.startParam();
    for (const double knot : spline.knots) {
        if (knot > last && knot <= curve.endParam()) {
            addChords(curve, last, knot, deviation, deepest, chords);
            last = knot;
        }
    }
    return chords;
}

using Pieces = std::vector<BoundaryPiece>;

void reverse(Pieces& pieces) {
    std::reverse(pieces.begin(), pieces.end());
    for (BoundaryPiece& piece : pieces) {
        std::swap(piece.start, piece.end);
        piece.v = -piece.v;
        const double from = piece.from;
        piece.from = -piece.to;
        piece.to = -from;
    }
}

double squared(const AcGePoint2d& a, const AcGePoint2d& b) {
    return (b - a).lengthSqrd();
}

/// Appends the next edge, turned round when it fits better that way.
void chain(Pieces& pieces, Pieces next) {
    if (next.empty()) {
        return;
    }
    if (!pieces.empty()) {
        const AcGePoint2d at = pieces.back().end;
        if (squared(at, next.back().end) < squared(at, next.front().start)) {
            reverse(next);
        }
    }
    pieces.insert(pieces.end(), next.begin(), next.end());
}

/// Of the two ends of the first edge the one nearer to the second edge comes last.
void turnFirst(Pieces& first, const Pieces& second) {
    const auto gap = [&](const AcGePoint2d& point) {
        return std::min(squared(point, second.front().start), squared(point, second.back().end));
    };
    if (!first.empty() && !second.empty() && gap(first.front().start) < gap(first.back().end)) {
        reverse(first);
    }
}

void bridgeGaps(Pieces& pieces) {
    Pieces closed;
    closed.reserve(pieces.size());
    for (std::size_t index = 0; index < pieces.size(); ++index) {
        const BoundaryPiece& piece = pieces[index];
        const AcGePoint2d& next = pieces[(index + 1) % pieces.size()].start;
        if (piece.isArc || piece.start.x != piece.end.x || piece.start.y != piece.end.y) {
            closed.push_back(piece);
        }
        if (piece.end.x != next.x || piece.end.y != next.y) {
            closed.push_back(lineBetween(piece.end, next));
        }
    }
    pieces = std::move(closed);
}

} // namespace

std::vector<BoundaryPiece> edgeChords(const HatchEdge& edge) {
    switch (edge.kind) {
    case HatchEdge::Kind::line:
        return {lineBetween(edge.start, edge.end)};
    case HatchEdge::Kind::arc:
    case HatchEdge::Kind::ellipse:
        return {conicPiece(edge)};
    case HatchEdge::Kind::spline:
        break;
    }
    Pieces pieces;
    if (edge.spline != nullptr) {
        const std::vector<AcGePoint2d> points = splinePoints(*edge.spline);
        for (std::size_t index = 1; index < points.size(); ++index) {
            pieces.push_back(lineBetween(points[index - 1], points[index]));
        }
    }
    return pieces;
}

void BoundaryPiece::addExtents(Box2d& box) const {
    box.add(start);
    box.add(end);
    if (!isArc) {
        return;
    }
    for (const double extreme : {std::atan2(v.x, u.x), std::atan2(v.y, u.y)}) {
        for (double t = extreme + pi * std::ceil((from - extreme) / pi); t <= to; t += pi) {
            box.add(pointAt(t));
        }
    }
}

std::vector<BoundaryPiece> boundaryPieces(const HatchLoop& loop) {
    Pieces pieces;
    if (loop.isPolyline()) {
        BulgePath path = loop.path;
        path.closed = true;
        for (int index = 0; index < path.segmentCount(); ++index) {
            pieces.push_back(segmentPiece(path.segment(index)));
        }
    } else {
        Pieces first;
        for (std::size_t index = 0; index < loop.edges.size(); ++index) {
            Pieces next = edgeChords(loop.edges[index]);
            if (index == 0) {
                first = std::move(next);
                continue;
            }
            if (index == 1) {
                turnFirst(first, next);
                chain(pieces, std::move(first));
            }
            chain(pieces, std::move(next));
        }
        if (loop.edges.size() == 1) {
            chain(pieces, std::move(first));
        }
    }
    bridgeGaps(pieces);
    return pieces;
}

Box2d extents(std::span<const BoundaryPiece> pieces) {
    Box2d box;
    for (const BoundaryPiece& piece : pieces) {
        piece.addExtents(box);
    }
    return box;
}

double signedArea(std::span<const BoundaryPiece> pieces) {
    double twice = 0.0;
    if (pieces.empty()) {
        return twice;
    }
    const AcGePoint2d origin = pieces.front().start; // far coordinates keep their digits
    for (const BoundaryPiece& piece : pieces) {
        const AcGeVector2d start = piece.start - origin;
        const AcGeVector2d end = piece.end - origin;
        if (piece.isArc) {
            twice += (piece.center - origin).crossProduct(end - start) +
                     piece.u.crossProduct(piece.v) * (piece.to - piece.from);
        } else {
            twice += start.crossProduct(end);
        }
    }
    return twice / 2.0;
}

bool isInside(std::span<const BoundaryPiece> pieces, const AcGePoint2d& point) {
    const LineFamily lines{point, AcGeVector2d::kXAxis, AcGeVector2d::kYAxis};
    bool inside = false;
    for (const BoundaryPiece& piece : pieces) {
        forMonotone(piece, lines, [&](double begin, double end, auto&& alongAt) {
            // A stretch holds its lower end, not its upper one.
            if ((begin <= 0.0) != (end <= 0.0) && alongAt(0.0) > 0.0) {
                inside = !inside;
            }
        });
    }
    return inside;
}

std::vector<AcGePoint2d> polygonOf(std::span<const BoundaryPiece> pieces, double deviation) {
    std::vector<AcGePoint2d> points;
    for (const BoundaryPiece& piece : pieces) {
        points.push_back(piece.start);
        if (!piece.isArc) {
            continue;
        }
        const double radius = std::max(piece.u.length(), piece.v.length());
        const double step =
            deviation < radius ? 2.0 * std::acos(1.0 - std::max(deviation, 1e-7 * radius) / radius) : halfPi;
        const int count = std::max(1, static_cast<int>(std::ceil((piece.to - piece.from) / step)));
        for (int index = 1; index < count; ++index) {
            points.push_back(piece.pointAt(piece.from + (piece.to - piece.from) * index / count));
        }
    }
    return points;
}

std::vector<int> nestingDepths(std::span<const std::vector<BoundaryPiece>> loops) {
    std::vector<Box2d> boxes;
    boxes.reserve(loops.size());
    for (const Pieces& loop : loops) {
        boxes.push_back(extents(loop));
    }
    const BoxIndex index(boxes);
    std::vector<int> depths(loops.size(), 0);
    for (std::size_t own = 0; own < loops.size(); ++own) {
        if (loops[own].empty()) {
            continue;
        }
        // The middle of a piece: a corner may touch the loop around.
        const BoundaryPiece& piece = loops[own].front();
        const AcGePoint2d point = piece.isArc ? piece.pointAt((piece.from + piece.to) / 2.0)
                                              : piece.start + (piece.end - piece.start) / 2.0;
        Box2d spot;
        spot.add(point);
        index.search(spot, [&](std::uint32_t other) {
            depths[own] += other != own && isInside(loops[other], point) ? 1 : 0;
        });
    }
    return depths;
}

namespace {

/// The edges that a polyline with arcs comes to under a map that makes ellipses of them.
std::vector<HatchEdge> edgesOf(const BulgePath& path) {
    BulgePath closed = path;
    closed.closed = true;
    std::vector<HatchEdge> edges;
    for (int index = 0; index < closed.segmentCount(); ++index) {
        const PathSegment segment = closed.segment(index);
        if (segment.kind() == PathSegment::Kind::Point) {
            continue;
        }
        HatchEdge& edge = edges.emplace_back();
        if (!segment.isArc()) {
            edge.start = segment.start;
            edge.end = segment.end;
            continue;
        }
        edge.kind = HatchEdge::Kind::arc;
        edge.start = segment.center();
        edge.major.set(segment.radius(), 0.0);
        edge.counterclockwise = segment.bulge > 0.0;
        const double angle = (segment.start - edge.start).angle();
        edge.startAngle = edge.counterclockwise ? angle : -angle;
        edge.endAngle = edge.startAngle + std::fabs(segment.sweep());
    }
    return edges;
}

void transformConic(HatchEdge& edge, const AcGeMatrix2d& transform, bool uniform) {
    const AcGeVector2d minor = edge.major.perpVector() * edge.ratio;
    const AcGeVector2d u = transform * edge.major;
    const AcGeVector2d v = transform * (edge.counterclockwise ? minor : -minor);
    edge.start = transform * edge.start;
    if (uniform && edge.kind == HatchEdge::Kind::arc) {
        // An arc's angles count from the X axis, in the direction of the arc.
        edge.counterclockwise = u.crossProduct(v) > 0.0;
        const double turn = edge.counterclockwise ? u.angle() : -u.angle();
        edge.startAngle += turn;
        edge.endAngle += turn;
        edge.major.set(u.length(), 0.0);
        return;
    }
    const PrincipalAxes axes = principalAxes(to3d(u), to3d(v));
    const double size = axes.major.length();
    edge.kind = HatchEdge::Kind::ellipse;
    edge.counterclockwise = to2d(axes.major).crossProduct(to2d(axes.minor)) > 0.0;
    if (uniform) {
        edge.major = u;
        edge.counterclockwise = u.crossProduct(v) > 0.0;
        return;
    }
    edge.major = to2d(axes.major);
    edge.ratio = size > 0.0 ? axes.minor.length() / size : 1.0;
    edge.startAngle -= axes.shift;
    edge.endAngle -= axes.shift;
}

void transformEdge(HatchEdge& edge, const AcGeMatrix2d& transform, bool uniform) {
    switch (edge.kind) {
    case HatchEdge::Kind::line:
        edge.start = transform * edge.start;
        edge.end = transform * edge.end;
        break;
    case HatchEdge::Kind::arc:
    case HatchEdge::Kind::ellipse:
        transformConic(edge, transform, uniform);
        break;
    case HatchEdge::Kind::spline:
        if (HatchSpline* spline = edge.spline.get()) {
            for (AcGePoint2d& point : spline->controlPoints) {
                point = transform * point;
            }
            for (AcGePoint2d& point : spline->fitPoints) {
                point = transform * point;
            }
            spline->startTangent = transform * spline->startTangent;
            spline->endTangent = transform * spline->endTangent;
        }
        break;
    }
}

} // namespace

void transformLoop(HatchLoop& loop, const AcGeMatrix2d& transform, bool uniform) {
    if (loop.isPolyline()) {
        const bool curved = std::any_of(loop.path.vertices.begin(), loop.path.vertices.end(),
                                        [](const BulgeVertex& vertex) { return vertex.bulge != 0.0; });
        if (uniform || !curved) {
            const double sign = transform.det() < 0.0 ? -1.0 : 1.0;
            for (BulgeVertex& vertex : loop.path.vertices) {
                vertex.point = transform * vertex.point;
                vertex.bulge *= sign;
            }
            return;
        }
        loop.edges = edgesOf(loop.path);
        loop.path = {};
        loop.type &= ~HatchLoop::polylineFlag;
    }
    for (HatchEdge& edge : loop.edges) {
        transformEdge(edge, transform, uniform);
    }
}

} // namespace host
