// Curves are taken from the drawing entity by entity, references with what they hold.
#include "host/commands/edit/curvenet.h"

#include "host/db/dbents.h"
#include "host/ed/selection.h"

#include <algorithm>
#include <cmath>

namespace host {
namespace {

constexpr int deepestReference = 50;
constexpr std::size_t mostPieces = 5'000'000; ///< of one entity
constexpr std::size_t mostWork = 100'000'000; ///< some seconds

bool isBoundaryKind(const AcDbEntity& entity) {
    return entity.isKindOf(AcDbCurve::desc()) || entity.isKindOf(AcDbMline::desc()) ||
           entity.isKindOf(AcDbSolid::desc());
}

void gather(const AcDbEntity& entity, const AcGeMatrix3d& transform, int depth, bool evenHidden,
            std::vector<CurvePiece>& pieces) {
    if ((!evenHidden && !isSelectable(entity)) || pieces.size() > mostPieces) {
        return;
    }
    const ReadAccess access(entity);
    if (const auto* reference = AcDbBlockReference::cast(&entity)) {
        const auto* block = peek<AcDbBlockTableRecord>(reference->blockTableRecord());
        if (block == nullptr || depth >= deepestReference) {
            return;
        }
        const AcGeMatrix3d inner = transform * reference->blockTransform();
        for (AcDbStub* stub : block->entities()) {
            if (const auto* part = peek<AcDbEntity>(AcDbObjectId(stub))) {
                gather(*part, inner, depth + 1, evenHidden, pieces);
            }
        }
        return;
    }
    std::vector<CurvePiece> own;
    if (!isBoundaryKind(entity) || !entity.curvePieces(own)) {
        return;
    }
    for (const CurvePiece& piece : own) {
        if (!piece.openBefore && !piece.openAfter) {
            pieces.push_back(piece.transformed(transform));
        }
    }
}

AcGeMatrix3d flattening(const AcGeVector3d& normal) {
    AcGeMatrix3d flat;
    flat.entry[2][2] = 0.0;
    return flat * AcGeMatrix3d::worldToPlane(normal);
}

Box2d boxOf(const CurvePiece& piece) {
    AcDbExtents extents;
    piece.addExtents(extents);
    return {to2d(extents.minPoint()), to2d(extents.maxPoint())};
}

/// A whole circle as two halves, so that every piece has two ends.
void addHalves(const CurvePiece& piece, std::vector<CurvePiece>& pieces) {
    if (!piece.isFull()) {
        pieces.push_back(piece);
        return;
    }
    CurvePiece half = piece;
    half.to = (piece.from + piece.to) / 2.0;
    pieces.push_back(half);
    half.from = half.to;
    half.to = piece.to;
    pieces.push_back(half);
}

bool isBoundary(const Placed& place) {
    const auto* entity = peek<AcDbEntity>(AcDbObjectId(place.stub));
    return entity != nullptr && !place.box.isEmpty() &&
           (isBoundaryKind(*entity) || entity->isKindOf(AcDbBlockReference::desc())) && isSelectable(*entity);
}

/// Whether both points lie beyond the tolerance on one side of the line through two others.
bool isBeside(const AcGePoint2d& from, const AcGePoint2d& to, const AcGePoint2d& a, const AcGePoint2d& b,
              double tolerance) {
    const AcGeVector2d along = to - from;
    const double slack = tolerance * (std::fabs(along.x) + std::fabs(along.y));
    const double first = along.crossProduct(a - from);
    const double second = along.crossProduct(b - from);
    return (first > slack && second > slack) || (first < -slack && second < -slack);
}

/// Whether the line stays beyond the tolerance outside the circle or within it.
bool isBeside(const CurveNet::Piece& line, const CurvePiece& circle, double tolerance) {
    const AcGePoint2d center = to2d(circle.origin);
    const double radius = circle.radius();
    const AcGeVector2d along = line.end - line.start;
    const double distance = std::fabs(along.crossProduct(center - line.start));
    const double inner = radius - tolerance;
    return distance > (radius + tolerance) * along.length() ||
           (center.distanceTo(line.start) < inner && center.distanceTo(line.end) < inner);
}

/// Pieces that do not come near each other, as most of those whose boxes overlap.
bool areApart(const CurveNet::Piece& one, const CurveNet::Piece& other, double tolerance) {
    const bool isLine = one.curve.kind == CurvePiece::Kind::line;
    const bool isOtherLine = other.curve.kind == CurvePiece::Kind::line;
    if (isLine && isOtherLine) {
        return isBeside(one.start, one.end, other.start, other.end, tolerance) ||
               isBeside(other.start, other.end, one.start, one.end, tolerance);
    }
    if (isLine && other.isCircle) {
        return isBeside(one, other.curve, tolerance);
    }
    if (isOtherLine && one.isCircle) {
        return isBeside(other, one.curve, tolerance);
    }
    if (one.isCircle && other.isCircle) {
        const double distance = to2d(one.curve.origin).distanceTo(to2d(other.curve.origin));
        const double first = one.curve.radius();
        const double second = other.curve.radius();
        return distance > first + second + tolerance || distance + tolerance < std::fabs(first - second);
    }
    return false;
}

/// Tells cheaply of most points that they do not lie on a curve. A point whose image under the map of an
/// ellipse to the unit circle is d off the circle is at least d times the ellipse's least radius away.
class NearCurve {
public:
    NearCurve(const CurvePiece& curve, double tolerance)
        : mIsArc(curve.isArc()), mCenter(to2d(curve.origin)), mU(to2d(curve.u)), mV(to2d(curve.v)),
          mTolerance(tolerance) {
        mDeterminant = mU.crossProduct(mV);
        const double sum = mU.lengthSqrd() + mV.lengthSqrd();
        const double root = std::sqrt(std::max(sum * sum - 4.0 * mDeterminant * mDeterminant, 0.0));
        mLeastRadius = std::sqrt(std::max((sum - root) / 2.0, 0.0));
    }
    bool isPossible(const AcGePoint2d& point) const {
        if (!mIsArc || mDeterminant == 0.0) {
            return true;
        }
        const AcGeVector2d way = point - mCenter;
        const double along = way.crossProduct(mV) / mDeterminant;
        const double across = mU.crossProduct(way) / mDeterminant;
        return std::fabs(std::hypot(along, across) - 1.0) * mLeastRadius <= 2.0 * mTolerance;
    }

private:
    bool mIsArc;
    AcGePoint2d mCenter;
    AcGeVector2d mU, mV;
    double mTolerance;
    double mDeterminant = 0.0;
    double mLeastRadius = 0.0;
};

double turned(double angle) {
    return angle - twoPi * std::floor(angle / twoPi);
}

} // namespace

CurveNet::CurveNet(AcDbObjectId block, const AcGeVector3d& normal)
    : mBlock(block), mToPlane(flattening(normal)), mIsPlan(normal.isEqualTo(AcGeVector3d::kZAxis)) {}

CurveNet::CurveNet(std::vector<AcDbStub*> entities, const AcGeVector3d& normal)
    : mEntities(std::move(entities)), mToPlane(flattening(normal)), mIsPlan(false) {}

void CurveNet::findEntities() {
    if (mHasEntityIndex) {
        return;
    }
    if (!mBlock.isNull()) {
        constexpr double endless = 1e300;
        for (const Placed& place :
             spatialQuery().overlapping(mBlock, {{-endless, -endless}, {endless, endless}})) {
            if (isBoundary(place)) {
                mEntities.push_back(place.stub);
            }
        }
    }
    std::vector<Box2d> boxes(mEntities.size());
    for (std::size_t i = 0; i < boxes.size(); ++i) {
        for (const Piece& piece : curvesOf(mEntities[i]).pieces) {
            boxes[i].add(piece.box);
        }
    }
    mEntityIndex = BoxIndex(boxes);
    mHasEntityIndex = true;
}

std::vector<AcDbStub*> CurveNet::entitiesIn(const Box2d& box) {
    std::vector<AcDbStub*> found;
    if (mIsPlan) {
        for (const Placed& place : spatialQuery().overlapping(mBlock, box)) {
            if (isBoundary(place)) {
                found.push_back(place.stub);
            }
        }
    } else {
        findEntities();
        mEntityIndex.search(box, [&](std::uint32_t index) { found.push_back(mEntities[index]); });
    }
    return found;
}

CurveNet::Curves& CurveNet::curvesOf(AcDbStub* stub) {
    const auto [found, added] = mCurves.try_emplace(stub);
    Curves& curves = found->second;
    if (!added) {
        return curves;
    }
    std::vector<CurvePiece> pieces;
    gather(*peek<AcDbEntity>(AcDbObjectId(stub)), mToPlane, 0, mBlock.isNull(), pieces);
    std::vector<CurvePiece> halves;
    for (const CurvePiece& piece : pieces) {
        addHalves(piece, halves);
    }
    std::vector<Box2d> boxes;
    for (CurvePiece& piece : halves) {
        const Box2d box = boxOf(piece);
        const bool isPoint = !(std::max(box.width(), box.height()) > mTolerance);
        if (!isPoint && std::isfinite(box.width()) && std::isfinite(box.height())) {
            const AcGePoint2d start = to2d(piece.start());
            const AcGePoint2d end = to2d(piece.end());
            const bool isCircle = piece.isArc() && piece.isCircular();
            curves.pieces.push_back({std::move(piece), start, end, isCircle, box, {}});
            boxes.push_back(box);
        }
    }
    curves.index = BoxIndex(boxes);
    return curves;
}

void CurveNet::countWork(std::size_t work) {
    constexpr std::size_t betweenQuestions = 100'000;
    mWork += work;
    if (mWork > mNextQuestion) {
        mNextQuestion = mWork + betweenQuestions;
        if (acdbHostApplicationServices()->userBreak()) {
            throw NetUnfinished{true};
        }
    }
    if (mWork > mostWork) {
        throw NetUnfinished{false};
    }
}

const std::vector<double>& CurveNet::nodesOf(AcDbStub* stub, std::uint32_t index) {
    Piece& piece = curvesOf(stub).pieces[index];
    if (!piece.nodes.empty()) {
        return piece.nodes;
    }
    const CurvePiece& curve = piece.curve;
    const Box2d box = piece.box.grownBy(mTolerance);
    const NearCurve near(curve, mTolerance);
    std::vector<double> cuts;
    forPieces(box, [&](AcDbStub* otherStub, std::uint32_t otherIndex) {
        const Piece& other = curvesOf(otherStub).pieces[otherIndex];
        countWork(1);
        if (&other == &piece || areApart(piece, other, mTolerance)) {
            return;
        }
        constexpr std::size_t workOfLines = 20, workOfCurves = 200;
        const bool areLines =
            curve.kind == CurvePiece::Kind::line && other.curve.kind == CurvePiece::Kind::line;
        countWork(areLines ? workOfLines : workOfCurves);
        for (const PieceHit& hit : intersect(std::span(&curve, 1), std::span(&other.curve, 1))) {
            cuts.push_back(hit.firstParameter);
        }
        // Ends of the other that lie on this one, where the two share a stretch.
        for (const AcGePoint2d& end : {other.start, other.end}) {
            if (!box.contains(end) || !near.isPossible(end)) {
                continue;
            }
            const double at = curve.closestParameter(to3d(end));
            if (to2d(curve.pointAt(at)).distanceTo(end) <= mTolerance) {
                cuts.push_back(at);
            }
        }
    });
    std::ranges::sort(cuts);
    std::vector<double> nodes{curve.from};
    const AcGePoint3d end = curve.end();
    for (const double cut : cuts) {
        const AcGePoint3d at = curve.pointAt(cut);
        if (cut > curve.from && cut < curve.to && at.distanceTo(curve.pointAt(nodes.back())) > mTolerance &&
            at.distanceTo(end) > mTolerance) {
            nodes.push_back(cut);
        }
    }
    nodes.push_back(curve.to);
    piece.nodes = std::move(nodes);
    return piece.nodes;
}

std::pair<double, double> CurveNet::rangeOf(const NetEdge& edge) {
    const std::vector<double>& nodes = nodesOf(edge.stub, edge.piece);
    const double low = nodes[edge.node];
    const double high = nodes[edge.node + 1];
    return edge.isForward ? std::pair(low, high) : std::pair(high, low);
}

CurveNet::Branch CurveNet::branch(const NetEdge& edge) {
    const auto [from, to] = rangeOf(edge);
    const CurvePiece& curve = pieceOf(edge).curve;
    // A little way along tells how it bends, and its direction where the derivative vanishes.
    constexpr double little = 1e-3;
    const AcGePoint2d start = to2d(curve.pointAt(from));
    const AcGeVector2d first = to2d(curve.pointAt(from + (to - from) * little)) - start;
    const AcGeVector2d second = to2d(curve.pointAt(from + (to - from) * 2.0 * little)) - start;
    const double sign = edge.isForward ? 1.0 : -1.0;
    AcGeVector2d tangent = to2d(curve.derivativeAt(from)) * sign;
    if (!(tangent.length() > little * little * first.length())) {
        tangent = first;
    }
    Branch result{edge, tangent.angle(), 0.0};
    const double chord = second.length();
    if (curve.kind != CurvePiece::Kind::line && chord > 0.0) {
        result.curvature = 2.0 * tangent.crossProduct(second) / (tangent.length() * chord * chord);
    }
    return result;
}

void CurveNet::addBranches(AcDbStub* stub, std::uint32_t index, const AcGePoint2d& at,
                           std::vector<Branch>& branches) {
    const std::vector<double>& nodes = nodesOf(stub, index);
    const CurvePiece& curve = curvesOf(stub).pieces[index].curve;
    const double t = curve.closestParameter(to3d(at));
    const auto above = std::ranges::lower_bound(nodes, t);
    std::size_t best = nodes.size();
    double distance = 8.0 * mTolerance;
    for (std::ptrdiff_t i = above - nodes.begin() - 1; i <= above - nodes.begin(); ++i) {
        if (i >= 0 && i < std::ssize(nodes)) {
            const double own = to2d(curve.pointAt(nodes[static_cast<std::size_t>(i)])).distanceTo(at);
            if (own <= distance) {
                distance = own;
                best = static_cast<std::size_t>(i);
            }
        }
    }
    if (best == nodes.size()) {
        return;
    }
    const auto node = static_cast<std::uint32_t>(best);
    const bool isLast = best + 1 == nodes.size();
    if (!isLast) {
        branches.push_back(branch({stub, index, node, true}));
    }
    if (best > 0) {
        branches.push_back(branch({stub, index, node - 1, false}));
    }
}

NetEdge CurveNet::next(const NetEdge& edge) {
    const AcGePoint2d at = to2d(pieceOf(edge).curve.pointAt(rangeOf(edge).second));
    std::vector<std::pair<AcDbStub*, std::uint32_t>> near;
    forPieces(Box2d{at, at}.grownBy(4.0 * mTolerance),
              [&](AcDbStub* stub, std::uint32_t piece) { near.emplace_back(stub, piece); });
    std::vector<Branch> branches;
    for (const auto& [stub, piece] : near) {
        addBranches(stub, piece, at, branches);
    }
    // The first one clockwise from the way back keeps the face to the left.
    const Branch back = branch(edge.twin());
    constexpr double sameAngle = 1e-7;
    const auto clockwise = [&](const Branch& one) {
        const double angle = turned(back.angle - one.angle);
        const bool isAlong = angle < sameAngle || angle > twoPi - sameAngle;
        if (!isAlong) {
            return angle;
        }
        // Along the way back: beside it, or the same curve once more.
        const double bend = one.curvature - back.curvature;
        const double slack = 1e-6 * (std::fabs(one.curvature) + std::fabs(back.curvature));
        return bend < -slack ? 0.0 : bend > slack ? twoPi : twoPi + 1.0;
    };
    NetEdge best = edge.twin();
    double bestAngle = twoPi + 2.0;
    double bestCurvature = 0.0;
    for (const Branch& one : branches) {
        if (one.edge == edge.twin()) {
            continue;
        }
        const double angle = clockwise(one);
        if (angle > twoPi) {
            continue; // a double of what was come along on: it leads back as the twin does
        }
        const bool isSame = std::fabs(angle - bestAngle) < sameAngle;
        if (isSame ? one.curvature > bestCurvature : angle < bestAngle) {
            best = one.edge;
            bestAngle = angle;
            bestCurvature = one.curvature;
        }
    }
    return best;
}

} // namespace host
