// From the point a ray looks for the curve around it; from there the face is gone round, turning at every
// node as far to its own side as possible. What is gone along twice is no boundary. A way that does not
// enclose the point is that round an island; the ray then goes on behind it.
#include "host/commands/edit/boundarytrace.h"

#include "host/commands/edit/curvenet.h"
#include "host/db/entities/hatchboundary.h"

#include <algorithm>
#include <cmath>
#include <unordered_set>

namespace host {
namespace {

constexpr std::size_t mostEdges = 20'000'000;

BoundaryPiece boundaryPiece(const CurvePiece& curve) {
    BoundaryPiece piece;
    piece.start = to2d(curve.pointAt(curve.from));
    piece.end = to2d(curve.pointAt(curve.to));
    if (curve.isArc()) {
        const bool isForward = curve.to > curve.from;
        piece.isArc = true;
        piece.center = to2d(curve.origin);
        piece.u = to2d(curve.u);
        piece.v = isForward ? to2d(curve.v) : -to2d(curve.v);
        piece.from = isForward ? curve.from : -curve.from;
        piece.to = isForward ? curve.to : -curve.to;
    }
    return piece;
}

/// Chords of a part of a Bezier curve, in the direction of the parameters.
void addChords(const CurvePiece& whole, double from, double to, std::vector<CurvePiece>& pieces) {
    const double span = whole.to - whole.from;
    const double high = (std::max(from, to) - whole.from) / span;
    const double low = (std::min(from, to) - whole.from) / span;
    BezierCurve curve = high < 1.0 ? whole.bezier.split(high).first : whole.bezier;
    curve = low > 0.0 ? curve.split(low / high).second : curve;
    std::vector<AcGePoint3d> points{curve.pointAt(0.0)};
    constexpr double share = 1e-5;
    const AcGeBoundBlock3d hull = curve.hull();
    curve.appendChords(share * hull.minPoint().distanceTo(hull.maxPoint()), points);
    if (to < from) {
        std::ranges::reverse(points);
    }
    for (std::size_t i = 1; i < points.size(); ++i) {
        pieces.push_back(CurvePiece::line(points[i - 1], points[i]));
    }
}

/// A closed loop for many questions whether a point is inside: O(log n + crossings) each.
class Region {
public:
    explicit Region(const std::vector<CurvePiece>& curves) {
        for (const CurvePiece& curve : curves) {
            mPieces.push_back(boundaryPiece(curve));
        }
        // Rounding may leave the ends of neighbours apart.
        for (std::size_t i = 0; i < mPieces.size(); ++i) {
            mPieces[(i + 1) % mPieces.size()].start = mPieces[i].end;
        }
        std::vector<Box2d> boxes;
        for (const BoundaryPiece& piece : mPieces) {
            Box2d box;
            piece.addExtents(box);
            boxes.push_back(box);
            mBox.add(box);
        }
        mIndex = BoxIndex(boxes);
    }

    const Box2d& box() const { return mBox; }
    double signedArea() const { return host::signedArea(mPieces); }
    bool contains(const AcGePoint2d& point) const {
        if (!mBox.contains(point)) {
            return false;
        }
        const LineFamily lines{point, AcGeVector2d::kXAxis, AcGeVector2d::kYAxis};
        bool inside = false;
        mIndex.search({point, {mBox.maximum.x, point.y}}, [&](std::uint32_t index) {
            forMonotone(mPieces[index], lines, [&](double begin, double end, auto&& alongAt) {
                if ((begin <= 0.0) != (end <= 0.0) && alongAt(0.0) > 0.0) {
                    inside = !inside;
                }
            });
        });
        return inside;
    }

private:
    std::vector<BoundaryPiece> mPieces;
    BoxIndex mIndex;
    Box2d mBox;
};

class Tracer {
public:
    Tracer(AcDbObjectId block, const AcGeVector3d& normal, const AcGePoint2d& point)
        : mNet(block, normal), mPoint(point) {
        mNet.setMagnitude(std::max(std::fabs(point.x), std::fabs(point.y)));
    }
    Tracer(std::vector<AcDbStub*> curves, const AcGeVector3d& normal, double magnitude)
        : mNet(std::move(curves), normal) {
        mNet.setMagnitude(magnitude);
    }

    TracedBoundary trace();
    std::vector<TracedLoop> allWays();

private:
    struct RayHit {
        double distance = 0.0;
        NetEdge edge; ///< with the point to its left
    };
    using Edges = std::vector<NetEdge>;

    std::optional<Edges> outerWay(const AcGeVector2d& direction, bool& isClear);
    bool hitsAlong(const AcGeVector2d& direction, double from, double to, std::vector<RayHit>& hits);
    bool addHits(AcDbStub* stub, std::uint32_t index, const CurvePiece& ray, std::vector<RayHit>& hits);
    Edges wayFrom(const NetEdge& start);
    Edges withoutSpurs(const Edges& way);
    TracedLoop loopOf(const Edges& way);
    void addIslands(const Region& region, TracedBoundary& boundary);
    void addComponent(const NetEdge& start, TracedBoundary& boundary);
    std::optional<TracedBoundary::Gap> narrowestGap() const;

    CurveNet mNet;
    AcGePoint2d mPoint;
    std::unordered_set<NetEdge, NetEdgeHash> mVisited;
    struct DeadEnd {
        AcGePoint2d point;
        NetEdge edge; ///< that leads there
    };
    std::vector<DeadEnd> mDeadEnds;
};

TracedBoundary Tracer::trace() {
    TracedBoundary boundary;
    // A ray through a corner or along a curve tells nothing; another one does.
    for (const double angle : {0.0123, 1.6011, 3.1717, 4.7301, 0.7512, 2.3457, 3.9001, 5.5003}) {
        mVisited.clear();
        mDeadEnds.clear();
        bool isClear = true;
        if (const std::optional<Edges> way =
                outerWay(AcGeVector2d(std::cos(angle), std::sin(angle)), isClear)) {
            boundary.loops.push_back(loopOf(*way));
            addIslands(Region(boundary.loops.front().pieces), boundary);
            return boundary;
        }
        if (isClear) {
            break;
        }
    }
    boundary.gap = narrowestGap();
    return boundary;
}

/// The way round the point; nothing when the ray meets none. `isClear` becomes false when it meets something
/// it can't judge.
std::optional<Tracer::Edges> Tracer::outerWay(const AcGeVector2d& direction, bool& isClear) {
    constexpr double farthest = 1e12;
    double from = 0.0;
    for (double to = 16.0; from < farthest; from = to, to *= 4.0) {
        std::vector<RayHit> hits;
        isClear = hitsAlong(direction, from, to, hits) && isClear;
        std::ranges::sort(hits, {}, &RayHit::distance);
        for (const RayHit& hit : hits) {
            if (mVisited.contains(hit.edge)) {
                continue;
            }
            const Edges way = withoutSpurs(wayFrom(hit.edge));
            if (way.empty()) {
                continue;
            }
            const Region region(loopOf(way).pieces);
            if (region.signedArea() > 0.0 && region.contains(mPoint)) {
                return way;
            }
        }
    }
    return std::nullopt;
}

bool Tracer::hitsAlong(const AcGeVector2d& direction, double from, double to, std::vector<RayHit>& hits) {
    const AcGePoint2d start = mPoint + direction * from;
    const AcGePoint2d end = mPoint + direction * to;
    const CurvePiece ray = CurvePiece::line(to3d(start), to3d(end));
    // In steps along the ray, so that its boxes stay narrow.
    constexpr int steps = 16;
    bool isClear = true;
    std::unordered_set<NetEdge, NetEdgeHash> seen;
    for (int step = 0; step < steps; ++step) {
        Box2d box;
        box.add(start + (end - start) * (static_cast<double>(step) / steps));
        box.add(start + (end - start) * (static_cast<double>(step + 1) / steps));
        std::vector<std::pair<AcDbStub*, std::uint32_t>> near;
        mNet.forPieces(box, [&](AcDbStub* stub, std::uint32_t piece) {
            if (seen.insert({stub, piece, 0, true}).second) {
                near.emplace_back(stub, piece);
            }
        });
        for (const auto& [stub, piece] : near) {
            isClear = addHits(stub, piece, ray, hits) && isClear;
        }
    }
    return isClear;
}

/// False when the ray touches the piece or meets it at a node.
bool Tracer::addHits(AcDbStub* stub, std::uint32_t index, const CurvePiece& ray, std::vector<RayHit>& hits) {
    const CurvePiece curve = mNet.curvesOf(stub).pieces[index].curve;
    const AcGeVector2d along = to2d(ray.u).normal();
    bool isClear = true;
    for (const PieceHit& hit : intersect(std::span(&ray, 1), std::span(&curve, 1))) {
        const AcGePoint2d at = to2d(hit.point);
        const std::vector<double>& nodes = mNet.nodesOf(stub, index);
        const AcGeVector2d tangent = to2d(curve.derivativeAt(hit.secondParameter));
        const double side = tangent.crossProduct(along);
        const auto above = std::ranges::upper_bound(nodes, hit.secondParameter);
        const bool isAtEnd = above == nodes.begin() || above == nodes.end();
        if (isAtEnd || std::fabs(side) < 1e-7 * tangent.length() ||
            to2d(curve.pointAt(*above)).distanceTo(at) < 16.0 * mNet.tolerance() ||
            to2d(curve.pointAt(*(above - 1))).distanceTo(at) < 16.0 * mNet.tolerance()) {
            isClear = false;
            continue;
        }
        // The point lies where the ray comes from: to the left when the ray crosses to the right.
        const auto node = static_cast<std::uint32_t>(above - nodes.begin() - 1);
        hits.push_back({at.distanceTo(mPoint), {stub, index, node, side < 0.0}});
    }
    return isClear;
}

Tracer::Edges Tracer::wayFrom(const NetEdge& start) {
    Edges way;
    NetEdge edge = start;
    do {
        way.push_back(edge);
        mVisited.insert(edge);
        const NetEdge next = mNet.next(edge);
        if (next == edge.twin()) {
            mDeadEnds.push_back({to2d(mNet.pieceOf(edge).curve.pointAt(mNet.rangeOf(edge).second)), edge});
        }
        edge = next;
    } while (edge != start && way.size() < mostEdges && !mVisited.contains(edge));
    return edge == start ? way : Edges();
}

/// Without what is gone along in both directions one after the other, at the ends of the way too.
Tracer::Edges Tracer::withoutSpurs(const Edges& way) {
    Edges kept;
    for (const NetEdge& edge : way) {
        if (!kept.empty() && kept.back() == edge.twin()) {
            kept.pop_back();
        } else {
            kept.push_back(edge);
        }
    }
    std::size_t first = 0;
    std::size_t last = kept.size();
    while (last - first >= 2 && kept[first] == kept[last - 1].twin()) {
        ++first;
        --last;
    }
    return {kept.begin() + static_cast<std::ptrdiff_t>(first),
            kept.begin() + static_cast<std::ptrdiff_t>(last)};
}

TracedLoop Tracer::loopOf(const Edges& way) {
    TracedLoop loop;
    std::unordered_set<AcDbStub*> sources;
    for (const NetEdge& edge : way) {
        const CurvePiece& whole = mNet.pieceOf(edge).curve;
        const auto [from, to] = mNet.rangeOf(edge);
        if (whole.isBezier()) {
            addChords(whole, from, to, loop.pieces);
        } else {
            CurvePiece& piece = loop.pieces.emplace_back(whole);
            piece.from = from;
            piece.to = to;
        }
        if (sources.insert(edge.stub).second) {
            loop.sources.emplace_back(edge.stub);
        }
    }
    return loop;
}

void Tracer::addIslands(const Region& region, TracedBoundary& boundary) {
    for (AcDbStub* stub : mNet.entitiesIn(region.box())) {
        const auto count = static_cast<std::uint32_t>(mNet.curvesOf(stub).pieces.size());
        for (std::uint32_t piece = 0; piece < count; ++piece) {
            // What hangs together with the boundary was gone round; the rest lies within or without as a
            // whole.
            const CurvePiece& curve = mNet.curvesOf(stub).pieces[piece].curve;
            if (!region.contains(to2d(curve.pointAt((curve.from + curve.to) / 2.0)))) {
                continue;
            }
            for (std::uint32_t node = 0; node < mNet.intervals(stub, piece); ++node) {
                const NetEdge edge{stub, piece, node, true};
                if (mVisited.contains(edge) || mVisited.contains(edge.twin())) {
                    continue;
                }
                const auto [from, to] = mNet.rangeOf(edge);
                if (region.contains(to2d(mNet.pieceOf(edge).curve.pointAt((from + to) / 2.0)))) {
                    addComponent(edge, boundary);
                }
            }
        }
    }
}

/// Goes round all faces of what hangs together; the way that is gone round the other way is its outline.
void Tracer::addComponent(const NetEdge& start, TracedBoundary& boundary) {
    Edges open{start, start.twin()};
    while (!open.empty()) {
        const NetEdge edge = open.back();
        open.pop_back();
        if (mVisited.contains(edge)) {
            continue;
        }
        const Edges way = wayFrom(edge);
        for (const NetEdge& passed : way) {
            if (!mVisited.contains(passed.twin())) {
                open.push_back(passed.twin());
            }
        }
        const Edges outline = withoutSpurs(way);
        if (!outline.empty()) {
            TracedLoop loop = loopOf(outline);
            if (Region(loop.pieces).signedArea() < 0.0) {
                boundary.loops.push_back(std::move(loop));
            }
        }
    }
}

std::vector<TracedLoop> Tracer::allWays() {
    constexpr double endless = 1e300;
    std::vector<TracedLoop> loops;
    for (AcDbStub* stub : mNet.entitiesIn({{-endless, -endless}, {endless, endless}})) {
        const auto count = static_cast<std::uint32_t>(mNet.curvesOf(stub).pieces.size());
        for (std::uint32_t piece = 0; piece < count; ++piece) {
            for (std::uint32_t node = 0; node < mNet.intervals(stub, piece); ++node) {
                const NetEdge edge{stub, piece, node, true};
                for (const NetEdge& start : {edge, edge.twin()}) {
                    const Edges way = mVisited.contains(start) ? Edges() : withoutSpurs(wayFrom(start));
                    if (!way.empty()) {
                        loops.push_back(loopOf(way));
                    }
                }
            }
        }
    }
    return loops;
}

std::optional<TracedBoundary::Gap> Tracer::narrowestGap() const {
    constexpr std::size_t mostEnds = 2000;
    std::optional<TracedBoundary::Gap> narrowest;
    double smallest = HUGE_VAL;
    const std::size_t count = std::min(mDeadEnds.size(), mostEnds);
    for (std::size_t i = 0; i < count; ++i) {
        for (std::size_t j = i + 1; j < count; ++j) {
            const DeadEnd& one = mDeadEnds[i];
            const DeadEnd& other = mDeadEnds[j];
            const double distance = one.point.distanceTo(other.point);
            // The two ends of one line are no gap.
            const bool isPiece = one.edge.stub == other.edge.stub && one.edge.piece == other.edge.piece;
            if (!isPiece && distance > 8.0 * mNet.tolerance() && distance < smallest) {
                smallest = distance;
                narrowest = TracedBoundary::Gap{one.point, other.point};
            }
        }
    }
    return narrowest;
}

} // namespace

TracedBoundary traceBoundary(AcDbObjectId block, const AcGeVector3d& normal, const AcGePoint2d& point) {
    try {
        return Tracer(block, normal, point).trace();
    } catch (const NetUnfinished& unfinished) {
        TracedBoundary none;
        none.end = unfinished.isByUser ? TracedBoundary::End::stopped : TracedBoundary::End::tooComplex;
        return none;
    }
}

std::vector<TracedLoop> closedWays(const std::vector<AcDbObjectId>& curves, const AcGeVector3d& normal) {
    std::vector<AcDbStub*> stubs;
    std::unordered_set<AcDbStub*> seen;
    double magnitude = 1.0;
    for (const AcDbObjectId id : curves) {
        const auto* entity = peek<AcDbEntity>(id);
        AcDbExtents box;
        if (entity == nullptr || !seen.insert(id.stub()).second) {
            continue;
        }
        const ReadAccess access(*entity);
        if (entity->getGeomExtents(box) == Acad::eOk) {
            for (const AcGePoint3d& corner : {box.minPoint(), box.maxPoint()}) {
                magnitude = std::max({magnitude, std::fabs(corner.x), std::fabs(corner.y)});
            }
        }
        stubs.push_back(id.stub());
    }
    try {
        return Tracer(std::move(stubs), normal, magnitude).allWays();
    } catch (const NetUnfinished&) {
        return {};
    }
}

double signedArea(const TracedLoop& loop) {
    return Region(loop.pieces).signedArea();
}

} // namespace host
