// Common points of curve pieces, and of whole curves made of them.
#include "host/db/entities/curvepiece.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>

namespace host {
namespace {

using Hits = std::vector<PieceHit>;

struct Plain {
    double x, y;
};

/// Coordinates in the axes u and v of an arc, where it is one of the unit circle.
class ConicFrame {
public:
    explicit ConicFrame(const CurvePiece& piece) : mPiece(piece) {
        mUU = piece.u.lengthSqrd();
        mUV = piece.u.dotProduct(piece.v);
        mVV = piece.v.lengthSqrd();
        mDet = mUU * mVV - mUV * mUV;
        mNormal = piece.normal();
        const double size = mNormal.length();
        if (size > 0.0) {
            mNormal /= size;
        }
    }
    /// The arc is seen from its edge.
    bool isFlat() const { return !(mDet > 1e-20 * std::max(mUU * mUU, mVV * mVV)); }
    const AcGeVector3d& normal() const { return mNormal; }
    double height(const AcGePoint3d& point) const { return (point - mPiece.origin).dotProduct(mNormal); }
    Plain vector(const AcGeVector3d& arm) const {
        const double x = arm.dotProduct(mPiece.u);
        const double y = arm.dotProduct(mPiece.v);
        return {(x * mVV - y * mUV) / mDet, (y * mUU - x * mUV) / mDet};
    }
    Plain point(const AcGePoint3d& at) const { return vector(at - mPiece.origin); }
    double size() const { return std::sqrt(std::max(mUU, mVV)); }

private:
    const CurvePiece& mPiece;
    double mUU, mUV, mVV, mDet;
    AcGeVector3d mNormal;
};

double slackOf(const CurvePiece& piece, double tolerance) {
    const double size = piece.isBezier() ? 0.0 : piece.u.length();
    return size > 0.0 ? tolerance / size : 0.0;
}

void addHit(Hits& hits, const CurvePiece& first, const CurvePiece& second, double a, double b,
            double tolerance) {
    if (first.contains(a, slackOf(first, tolerance)) && second.contains(b, slackOf(second, tolerance))) {
        hits.push_back({0, 0, a, b, first.pointAt(a)});
    }
}

/// A point on the first piece that also is one of the second.
void addIfOnSecond(Hits& hits, const CurvePiece& first, const CurvePiece& second, double a,
                   double tolerance) {
    const AcGePoint3d point = first.pointAt(a);
    const double b = second.closestParameter(point);
    if (second.pointAt(b).distanceTo(point) <= tolerance) {
        addHit(hits, first, second, a, b, tolerance);
    }
}

bool isPoint(const CurvePiece& piece) {
    return piece.kind == CurvePiece::Kind::line && piece.u.lengthSqrd() == 0.0;
}

/// Two pieces on one line or circle: an end they share, when that is all.
void sharedEnds(Hits& hits, const CurvePiece& first, const CurvePiece& second, double tolerance) {
    Hits found;
    const auto consider = [&](double a) { addIfOnSecond(found, first, second, a, tolerance); };
    if (!first.isFull()) {
        if (!first.openBefore) {
            consider(first.from);
        }
        if (!first.openAfter) {
            consider(first.to);
        }
    }
    const auto considerSecond = [&](double b) {
        const AcGePoint3d point = second.pointAt(b);
        const double a = first.closestParameter(point);
        if (first.pointAt(a).distanceTo(point) <= tolerance) {
            addHit(found, first, second, a, b, tolerance);
        }
    };
    if (!second.isFull()) {
        if (!second.openBefore) {
            considerSecond(second.from);
        }
        if (!second.openAfter) {
            considerSecond(second.to);
        }
    }
    std::sort(found.begin(), found.end(),
              [](const PieceHit& a, const PieceHit& b) { return a.firstParameter < b.firstParameter; });
    // A stretch between two neighbouring points that lies on both is an overlap.
    for (std::size_t index = 0; index + 1 < found.size(); ++index) {
        const double middle = 0.5 * (found[index].firstParameter + found[index + 1].firstParameter);
        if (found[index].point.distanceTo(found[index + 1].point) <= 2.0 * tolerance) {
            continue;
        }
        const AcGePoint3d point = first.pointAt(middle);
        if (second.pointAt(second.closestParameter(point)).distanceTo(point) <= tolerance) {
            return;
        }
    }
    hits.insert(hits.end(), found.begin(), found.end());
}

void lineWithLine(Hits& hits, const CurvePiece& first, const CurvePiece& second, double tolerance) {
    const AcGeVector3d between = second.origin - first.origin;
    const double a = first.u.lengthSqrd();
    const double c = second.u.lengthSqrd();
    const AcGeVector3d cross = first.u.crossProduct(second.u);
    const double square = cross.lengthSqrd();
    if (square <= 1e-22 * a * c) {
        const double distance = between.crossProduct(first.u).length() / std::sqrt(a);
        if (distance <= tolerance) {
            sharedEnds(hits, first, second, tolerance);
        }
        return;
    }
    const double s = between.crossProduct(second.u).dotProduct(cross) / square;
    const double t = between.crossProduct(first.u).dotProduct(cross) / square;
    const double reach = std::max(std::fabs(s) * std::sqrt(a), std::fabs(t) * std::sqrt(c));
    if (first.pointAt(s).distanceTo(second.pointAt(t)) <= tolerance + 1e-14 * reach) {
        addHit(hits, first, second, s, t, tolerance);
    }
}

/// Parameters on a line within the plane of an arc where it meets the arc's whole conic.
std::vector<double> onConic(const ConicFrame& frame, const AcGePoint3d& from, const AcGeVector3d& along,
                            double tolerance) {
    const Plain p = frame.point(from);
    const Plain d = frame.vector(along);
    const double square = d.x * d.x + d.y * d.y;
    if (!(square > 0.0)) {
        return {};
    }
    const double length = std::sqrt(square);
    const double nearest = -(p.x * d.x + p.y * d.y) / square;
    const double height = std::fabs(p.x * d.y - p.y * d.x) / length;
    const double slack = tolerance / frame.size();
    if (height > 1.0 + slack) {
        return {};
    }
    if (height >= 1.0 - slack) {
        return {nearest};
    }
    const double half = std::sqrt((1.0 - height) * (1.0 + height)) / length;
    return {nearest - half, nearest + half};
}

void lineWithArc(Hits& hits, const CurvePiece& line, const CurvePiece& arc, double tolerance) {
    const ConicFrame frame(arc);
    const double atStart = frame.height(line.origin);
    const double atEnd = frame.height(line.origin + line.u);
    const auto angleAt = [&](double t) {
        const Plain p = frame.point(line.pointAt(t));
        return std::atan2(p.y, p.x);
    };
    if (std::fabs(atStart) <= tolerance && std::fabs(atEnd) <= tolerance) {
        for (const double t : onConic(frame, line.origin, line.u, tolerance)) {
            addHit(hits, line, arc, t, angleAt(t), tolerance);
        }
        return;
    }
    if (std::fabs(atEnd - atStart) <= 1e-14 * line.u.length()) {
        return;
    }
    const double t = atStart / (atStart - atEnd);
    const double angle = angleAt(t);
    if (line.pointAt(t).distanceTo(arc.pointAt(angle)) <= tolerance) {
        addHit(hits, line, arc, t, angle, tolerance);
    }
}

void circleWithCircle(Hits& hits, const CurvePiece& first, const CurvePiece& second, double tolerance) {
    const double r1 = first.radius();
    const double r2 = second.radius();
    const AcGeVector3d x = first.u / r1;
    const AcGeVector3d y = first.v / r1;
    const AcGeVector3d arm = second.origin - first.origin;
    const double dx = arm.dotProduct(x);
    const double dy = arm.dotProduct(y);
    const double distance = std::hypot(dx, dy);
    if (distance <= tolerance) {
        if (std::fabs(r1 - r2) <= tolerance) {
            sharedEnds(hits, first, second, tolerance);
        }
        return;
    }
    if (distance > r1 + r2 + tolerance || distance < std::fabs(r1 - r2) - tolerance) {
        return;
    }
    const double along = 0.5 * (distance + (r1 - r2) * (r1 + r2) / distance);
    const bool touching = distance >= r1 + r2 - tolerance || distance <= std::fabs(r1 - r2) + tolerance;
    const double across = touching ? 0.0 : std::sqrt(std::max(0.0, (r1 - along) * (r1 + along)));
    const ConicFrame frame(second);
    for (const double side : {-across, across}) {
        const double px = (dx * along - dy * side) / distance;
        const double py = (dy * along + dx * side) / distance;
        const double angle = std::atan2(py, px);
        const Plain other = frame.point(first.pointAt(angle));
        addHit(hits, first, second, angle, std::atan2(other.y, other.x), tolerance);
        if (touching) {
            break;
        }
    }
}

void conicWithConic(Hits& hits, const CurvePiece& first, const CurvePiece& second, double tolerance) {
    const ConicFrame frame(first);
    const Plain c = frame.point(second.origin);
    const Plain u = frame.vector(second.u);
    const Plain v = frame.vector(second.v);
    const double uu = u.x * u.x + u.y * u.y;
    const double vv = v.x * v.x + v.y * v.y;
    const double slack = 2.0 * tolerance / frame.size();
    const TrigonometricQuadratic condition{c.x * c.x + c.y * c.y - 1.0 + 0.5 * (uu + vv),
                                           2.0 * (c.x * u.x + c.y * u.y), 2.0 * (c.x * v.x + c.y * v.y),
                                           0.5 * (uu - vv), u.x * v.x + u.y * v.y};
    for (const double t : condition.roots(slack)) {
        const Plain at = frame.point(second.pointAt(t));
        addHit(hits, first, second, std::atan2(at.y, at.x), t, tolerance);
    }
}

void arcWithArc(Hits& hits, const CurvePiece& first, const CurvePiece& second, double tolerance) {
    const ConicFrame frame(first);
    const ConicFrame other(second);
    const bool inPlane = std::fabs(frame.height(second.origin)) <= tolerance &&
                         std::fabs(frame.height(second.origin + second.u)) <= tolerance &&
                         std::fabs(frame.height(second.origin + second.v)) <= tolerance;
    if (inPlane) {
        first.isCircular() && second.isCircular() ? circleWithCircle(hits, first, second, tolerance)
                                                  : conicWithConic(hits, first, second, tolerance);
        return;
    }
    // The line common to both planes.
    const AcGeVector3d along = frame.normal().crossProduct(other.normal());
    const double square = along.lengthSqrd();
    if (square <= 1e-20) {
        return;
    }
    const AcGeVector3d toLine = along.crossProduct(frame.normal());
    const double height = other.height(first.origin);
    const AcGePoint3d from = first.origin - toLine * (height / toLine.dotProduct(other.normal()));
    for (const double t : onConic(frame, from, along, tolerance)) {
        const AcGePoint3d point = from + along * t;
        const Plain onFirst = frame.point(point);
        const Plain onSecond = other.point(point);
        const double angle = std::atan2(onSecond.y, onSecond.x);
        if (second.pointAt(angle).distanceTo(point) <= tolerance) {
            addHit(hits, first, second, std::atan2(onFirst.y, onFirst.x), angle, tolerance);
        }
    }
}

/// Whether two curves share a stretch: it begins and ends at ends of either.
bool liesAlong(const CurvePiece& first, const CurvePiece& second, double tolerance) {
    std::vector<double> ends;
    const auto consider = [&](double a, const AcGePoint3d& point) {
        if (first.pointAt(a).distanceTo(point) <= tolerance) {
            ends.push_back(a);
        }
    };
    for (const double a : {first.from, first.to}) {
        const AcGePoint3d point = first.pointAt(a);
        consider(a, second.pointAt(second.closestParameter(point)));
    }
    for (const double b : {second.from, second.to}) {
        const AcGePoint3d point = second.pointAt(b);
        consider(first.closestParameter(point), point);
    }
    std::sort(ends.begin(), ends.end());
    for (std::size_t index = 0; index + 1 < ends.size(); ++index) {
        const double width = ends[index + 1] - ends[index];
        bool shared =
            first.pointAt(ends[index]).distanceTo(first.pointAt(ends[index] + 0.5 * width)) > 2.0 * tolerance;
        for (const double part : {0.17, 0.41, 0.5, 0.83}) {
            const AcGePoint3d point = first.pointAt(ends[index] + part * width);
            shared = shared && second.pointAt(second.closestParameter(point)).distanceTo(point) <= tolerance;
        }
        if (shared) {
            return true;
        }
    }
    return false;
}

Hits intersectPieces(const CurvePiece& first, const CurvePiece& second, double tolerance);

/// An arc seen from its edge is drawn over a straight stretch, once or twice.
void flatArcWith(Hits& hits, const CurvePiece& flat, const CurvePiece& second, double tolerance) {
    const AcGeVector3d longer = flat.u.lengthSqrd() >= flat.v.lengthSqrd() ? flat.u : flat.v;
    const double size = longer.length();
    if (!(size > 0.0)) {
        return;
    }
    const AcGeVector3d along = longer / size;
    const double alpha = flat.u.dotProduct(along);
    const double beta = flat.v.dotProduct(along);
    const double reach = std::hypot(alpha, beta);
    const double phase = std::atan2(beta, alpha);
    const CurvePiece stretch = CurvePiece::line(flat.origin - along * reach, flat.origin + along * reach);
    for (const PieceHit& hit : intersectPieces(stretch, second, tolerance)) {
        const double place = 2.0 * hit.firstParameter - 1.0;
        const double turn = std::acos(std::clamp(place, -1.0, 1.0));
        addHit(hits, flat, second, phase + turn, hit.secondParameter, tolerance);
        if (turn > 1e-9 && turn < pi - 1e-9) {
            addHit(hits, flat, second, phase - turn, hit.secondParameter, tolerance);
        }
    }
}

void swapSides(Hits& hits, const CurvePiece& first) {
    for (PieceHit& hit : hits) {
        std::swap(hit.firstParameter, hit.secondParameter);
        hit.point = first.pointAt(hit.firstParameter);
    }
}

/// The crossings of a Bezier curve at roots of a polynomial, as far as they are on the other piece.
void addRoots(Hits& hits, const CurvePiece& curve, const CurvePiece& other,
              const BernsteinPolynomial& heights, double slack, double tolerance) {
    for (const double root : heights.roots(slack)) {
        const double t = root == 1.0 ? curve.to : curve.from + (curve.to - curve.from) * root;
        addIfOnSecond(hits, curve, other, t, tolerance);
    }
}

/// The height of a Bezier curve over a line, in the plane in which it is seen best.
BernsteinPolynomial heightsOverLine(const BezierCurve& curve, const CurvePiece& line) {
    const AcGeVector3d along = line.u.normal();
    const AcGeVector3d across = along.perpVector();
    BernsteinPolynomial first = curve.heights(line.origin, across);
    BernsteinPolynomial second = curve.heights(line.origin, along.crossProduct(across));
    return first.bound() >= second.bound() ? first : second;
}

/// How far a Bezier curve is outside of an arc's conic, in its plane: |P|^2 - w^2 in the axes of the arc.
BernsteinPolynomial heightsOverConic(const BezierCurve& curve, const CurvePiece& arc) {
    const double uu = arc.u.lengthSqrd();
    const double uv = arc.u.dotProduct(arc.v);
    const double vv = arc.v.lengthSqrd();
    const double det = uu * vv - uv * uv;
    const BernsteinPolynomial x = curve.heights(arc.origin, (arc.u * vv - arc.v * uv) / det);
    const BernsteinPolynomial y = curve.heights(arc.origin, (arc.v * uu - arc.u * uv) / det);
    const BernsteinPolynomial w = curve.weights();
    BernsteinPolynomial result = x * x;
    result += y * y;
    result -= w * w;
    return result;
}

void bezierWithBezier(Hits& hits, const CurvePiece& first, const CurvePiece& second, double tolerance) {
    if (liesAlong(first, second, tolerance)) {
        sharedEnds(hits, first, second, tolerance);
        return;
    }
    for (const auto& [s, t] : intersectBeziers(first.bezier, second.bezier, tolerance)) {
        addHit(hits, first, second, first.from + (first.to - first.from) * s,
               second.from + (second.to - second.from) * t, tolerance);
    }
}

void bezierWith(Hits& hits, const CurvePiece& curve, const CurvePiece& other, double tolerance) {
    if (other.isBezier()) {
        bezierWithBezier(hits, curve, other, tolerance);
        return;
    }
    if (!other.isArc()) {
        const BernsteinPolynomial heights = heightsOverLine(curve.bezier, other);
        heights.bound() > tolerance ? addRoots(hits, curve, other, heights, tolerance, tolerance)
                                    : sharedEnds(hits, curve, other, tolerance);
        return;
    }
    const ConicFrame frame(other);
    const BernsteinPolynomial heights = curve.bezier.heights(other.origin, frame.normal());
    if (heights.bound() > tolerance) {
        addRoots(hits, curve, other, heights, tolerance, tolerance);
        return;
    }
    const BernsteinPolynomial outside = heightsOverConic(curve.bezier, other);
    const double slack = 2.0 * tolerance / frame.size();
    outside.bound() > slack ? addRoots(hits, curve, other, outside, slack, tolerance)
                            : sharedEnds(hits, curve, other, tolerance);
}

Hits intersectPieces(const CurvePiece& first, const CurvePiece& second, double tolerance) {
    Hits hits;
    if (isPoint(first)) {
        addIfOnSecond(hits, first, second, first.from, tolerance);
        return hits;
    }
    if (isPoint(second)) {
        addIfOnSecond(hits, second, first, second.from, tolerance);
        swapSides(hits, first);
        return hits;
    }
    const bool firstFlat = first.isArc() && ConicFrame(first).isFlat();
    const bool secondFlat = second.isArc() && ConicFrame(second).isFlat();
    if (firstFlat) {
        flatArcWith(hits, first, second, tolerance);
    } else if (secondFlat) {
        flatArcWith(hits, second, first, tolerance);
        swapSides(hits, first);
    } else if (second.isBezier()) {
        bezierWith(hits, second, first, tolerance);
        swapSides(hits, first);
    } else if (first.isBezier()) {
        bezierWith(hits, first, second, tolerance);
    } else if (!first.isArc() && !second.isArc()) {
        lineWithLine(hits, first, second, tolerance);
    } else if (!first.isArc()) {
        lineWithArc(hits, first, second, tolerance);
    } else if (!second.isArc()) {
        lineWithArc(hits, second, first, tolerance);
        swapSides(hits, first);
    } else {
        arcWithArc(hits, first, second, tolerance);
    }
    return hits;
}

struct Box {
    AcGePoint3d min, max;
    std::size_t piece;
};

std::vector<Box> boxesOf(std::span<const CurvePiece> pieces, double tolerance) {
    constexpr double infinity = std::numeric_limits<double>::infinity();
    std::vector<Box> boxes;
    boxes.reserve(pieces.size());
    const AcGeVector3d margin(tolerance, tolerance, tolerance);
    for (std::size_t index = 0; index < pieces.size(); ++index) {
        CurvePiece piece = pieces[index];
        if (piece.isBezier()) {
            const AcGeBoundBlock3d hull = piece.bezier.hull();
            boxes.push_back({hull.minPoint() - margin, hull.maxPoint() + margin, index});
            continue;
        }
        if (piece.openBefore || piece.openAfter) {
            if (!piece.isArc()) {
                boxes.push_back({{-infinity, -infinity, -infinity}, {infinity, infinity, infinity}, index});
                continue;
            }
            piece.from = 0.0;
            piece.to = twoPi;
        }
        AcDbExtents extents;
        piece.addExtents(extents);
        boxes.push_back({extents.minPoint() - margin, extents.maxPoint() + margin, index});
    }
    std::sort(boxes.begin(), boxes.end(), [](const Box& a, const Box& b) { return a.min.x < b.min.x; });
    return boxes;
}

bool touch(const Box& a, const Box& b) {
    return a.min.y <= b.max.y && b.min.y <= a.max.y && a.min.z <= b.max.z && b.min.z <= a.max.z &&
           a.min.x <= b.max.x && b.min.x <= a.max.x;
}

/// Calls visit(first, second) for pieces whose boxes touch: a sweep along x.
template <class Visit>
void forTouchingPairs(const std::vector<Box>& first, const std::vector<Box>& second, Visit&& visit) {
    std::vector<const Box*> activeFirst;
    std::vector<const Box*> activeSecond;
    std::size_t i = 0;
    std::size_t j = 0;
    const auto enter = [](const Box& box, std::vector<const Box*>& own, std::vector<const Box*>& others,
                          auto&& pair) {
        std::erase_if(others, [&](const Box* other) { return other->max.x < box.min.x; });
        for (const Box* other : others) {
            if (touch(box, *other)) {
                pair(*other);
            }
        }
        own.push_back(&box);
    };
    while (i < first.size() || j < second.size()) {
        if (j == second.size() || (i < first.size() && first[i].min.x <= second[j].min.x)) {
            const Box& box = first[i++];
            enter(box, activeFirst, activeSecond, [&](const Box& other) { visit(box.piece, other.piece); });
        } else {
            const Box& box = second[j++];
            enter(box, activeSecond, activeFirst, [&](const Box& other) { visit(other.piece, box.piece); });
        }
    }
}

/// Takes out points that repeat an earlier one: a crossing at a vertex is found on both sides of it.
void removeRepeated(Hits& hits, double tolerance) {
    std::vector<std::size_t> order(hits.size());
    for (std::size_t index = 0; index < order.size(); ++index) {
        order[index] = index;
    }
    std::sort(order.begin(), order.end(),
              [&](std::size_t a, std::size_t b) { return hits[a].point.x < hits[b].point.x; });
    std::vector<bool> repeated(hits.size(), false);
    for (std::size_t at = 0; at < order.size(); ++at) {
        for (std::size_t next = at + 1; next < order.size(); ++next) {
            const PieceHit& a = hits[order[at]];
            const PieceHit& b = hits[order[next]];
            if (b.point.x - a.point.x > tolerance) {
                break;
            }
            if (!repeated[order[at]] && a.point.distanceTo(b.point) <= tolerance) {
                repeated[std::max(order[at], order[next])] = true;
            }
        }
    }
    std::size_t kept = 0;
    for (std::size_t index = 0; index < hits.size(); ++index) {
        if (!repeated[index]) {
            hits[kept++] = hits[index];
        }
    }
    hits.resize(kept);
}

Hits collect(std::span<const CurvePiece> first, std::span<const CurvePiece> second) {
    const double tolerance = std::max(pointTolerance(first), pointTolerance(second));
    Hits hits;
    forTouchingPairs(boxesOf(first, tolerance), boxesOf(second, tolerance),
                     [&](std::size_t a, std::size_t b) {
                         for (PieceHit hit : intersectPieces(first[a], second[b], tolerance)) {
                             hit.first = a;
                             hit.second = b;
                             hits.push_back(hit);
                         }
                     });
    std::sort(hits.begin(), hits.end(), [](const PieceHit& a, const PieceHit& b) {
        return a.first != b.first ? a.first < b.first : a.firstParameter < b.firstParameter;
    });
    return hits;
}

} // namespace

std::vector<PieceHit> intersect(std::span<const CurvePiece> first, std::span<const CurvePiece> second) {
    Hits hits = collect(first, second);
    removeRepeated(hits, 4.0 * std::max(pointTolerance(first), pointTolerance(second)));
    return hits;
}

std::vector<PieceHit> intersectProjected(std::span<const CurvePiece> first,
                                         std::span<const CurvePiece> second, const AcGePlane& plane) {
    const AcGeMatrix3d projection = AcGeMatrix3d::projection(plane, plane.normal());
    std::vector<CurvePiece> flatFirst;
    std::vector<CurvePiece> flatSecond;
    for (const CurvePiece& piece : first) {
        flatFirst.push_back(piece.transformed(projection));
    }
    for (const CurvePiece& piece : second) {
        flatSecond.push_back(piece.transformed(projection));
    }
    Hits hits = collect(flatFirst, flatSecond);
    for (PieceHit& hit : hits) {
        hit.point = first[hit.first].pointAt(hit.firstParameter);
    }
    removeRepeated(hits, 4.0 * std::max(pointTolerance(first), pointTolerance(second)));
    return hits;
}

} // namespace host
