// Cutting and lengthening of curves.
#include "host/commands/edit/curvecutting.h"

#include "host/commands/edit/curvemarks.h"
#include "host/commands/edit/editing.h"

#include <algorithm>
#include <cmath>
#include <span>

namespace host {
namespace {

constexpr double sameParameter = 1e-9;

struct Range {
    double start = 0.0;
    double end = 0.0;
    bool closed = false;
};

std::optional<Range> rangeOf(const AcDbCurve& curve) {
    Range range;
    range.closed = curve.isClosed();
    const bool known =
        curve.getStartParam(range.start) == Acad::eOk && curve.getEndParam(range.end) == Acad::eOk;
    return known ? std::optional(range) : std::nullopt;
}

bool isSame(double a, double b, const Range& range) {
    return std::fabs(a - b) <= sameParameter * std::max(1.0, std::fabs(range.end - range.start));
}

bool boxesTouch(const AcDbEntity& first, const AcDbEntity& second) {
    AcDbExtents a;
    AcDbExtents b;
    if (first.getGeomExtents(a) != Acad::eOk || second.getGeomExtents(b) != Acad::eOk) {
        return true;
    }
    const double slack = 1e-6;
    return a.minPoint().x <= b.maxPoint().x + slack && b.minPoint().x <= a.maxPoint().x + slack &&
           a.minPoint().y <= b.maxPoint().y + slack && b.minPoint().y <= a.maxPoint().y + slack;
}

} // namespace

std::vector<double> crossingParameters(const AcDbCurve& curve, const AcDbEntity& edge, bool extendEdge,
                                       const AcGePlane& view) {
    std::vector<double> parameters;
    // Boxes only tell about what is seen from above.
    const bool fromAbove = std::fabs(view.normal().z) > 1.0 - 1e-9;
    if (!extendEdge && fromAbove && !boxesTouch(curve, edge)) {
        return parameters;
    }
    AcGePoint3dArray points;
    curve.intersectWith(&edge, extendEdge ? AcDb::kExtendArg : AcDb::kOnBothOperands, view, points);
    for (const AcGePoint3d& point : points) {
        double parameter = 0.0;
        if (curve.getParamAtPoint(point, parameter) == Acad::eOk) {
            parameters.push_back(parameter);
        }
    }
    std::sort(parameters.begin(), parameters.end());
    return parameters;
}

std::vector<double> selfCrossingParameters(const AcDbCurve& curve) {
    std::vector<double> parameters;
    if (const std::optional<FlatPath> flat = flatPathOf(curve)) {
        for (const PathIntersection& crossing : selfIntersections(flat->shape.path)) {
            parameters.push_back(crossing.firstParameter);
            parameters.push_back(crossing.secondParameter);
        }
    }
    return parameters;
}

std::optional<OwnedCurves> withoutPart(const AcDbCurve& curve, double from, double to) {
    const std::optional<Range> range = rangeOf(curve);
    if (!range) {
        return std::nullopt;
    }
    AcGeDoubleArray cuts;
    if (range->closed) {
        const bool opens = isSame(from, to, *range);
        if (opens && AcDbCircle::cast(&curve) != nullptr) {
            return std::nullopt; // an arc of a whole turn is no arc
        }
        cuts.append(std::min(from, to));
        if (!opens) {
            cuts.append(std::max(from, to));
        }
    } else {
        for (const double cut : {std::min(from, to), std::max(from, to)}) {
            const bool inside = !isSame(cut, range->start, *range) && !isSame(cut, range->end, *range);
            if (inside && (cuts.isEmpty() || !isSame(cut, cuts.last(), *range))) {
                cuts.append(cut);
            }
        }
        if (cuts.isEmpty()) {
            return isSame(from, to, *range) ? std::nullopt : std::optional(OwnedCurves());
        }
    }
    AcDbVoidPtrArray made;
    if (curve.getSplitCurves(cuts, made) != Acad::eOk) {
        return std::nullopt;
    }
    OwnedCurves parts = ownCurves(made);
    if (range->closed) {
        if (cuts.length() == 2 && parts.size() == 2) {
            parts.erase(parts.begin() + (from < to ? 0 : 1));
        }
        return parts;
    }
    if (isSame(from, to, *range)) {
        return parts;
    }
    // The part to go lies behind every cut that is not after its begin.
    const double low = std::min(from, to);
    const bool startsInside = !isSame(low, range->start, *range) && low > range->start;
    parts.erase(parts.begin() + (startsInside ? 1 : 0));
    return parts;
}

std::optional<OwnedCurves> withoutPartAround(const AcDbCurve& curve, double place, std::vector<double> cuts) {
    const std::optional<Range> range = rangeOf(curve);
    if (!range) {
        return std::nullopt;
    }
    std::sort(cuts.begin(), cuts.end());
    cuts.erase(
        std::unique(cuts.begin(), cuts.end(), [&](double a, double b) { return isSame(a, b, *range); }),
        cuts.end());
    if (range->closed) {
        // The seam is one place.
        if (cuts.size() > 1 && isSame(cuts.front(), range->start, *range) &&
            isSame(cuts.back(), range->end, *range)) {
            cuts.pop_back();
        }
        if (cuts.size() < 2) {
            return std::nullopt;
        }
        const auto after = std::upper_bound(cuts.begin(), cuts.end(), place);
        const double to = after == cuts.end() ? cuts.front() : *after;
        const double from = after == cuts.begin() ? cuts.back() : *std::prev(after);
        return withoutPart(curve, from, to);
    }
    std::erase_if(cuts, [&](double cut) {
        return isSame(cut, range->start, *range) || isSame(cut, range->end, *range);
    });
    if (cuts.empty()) {
        return std::nullopt;
    }
    const auto after = std::upper_bound(cuts.begin(), cuts.end(), place);
    const double to = after == cuts.end() ? range->end : *after;
    const double from = after == cuts.begin() ? range->start : *std::prev(after);
    return withoutPart(curve, from, to);
}

namespace {

/// How far a point on the continued piece lies beyond one of its ends.
std::optional<double> reach(const CurvePiece& piece, bool before, const AcGePoint3d& point) {
    const AcGeVector3d arm = point - piece.origin;
    if (!piece.isArc()) {
        const double t = arm.dotProduct(piece.u) / piece.u.lengthSqrd();
        const double beyond = before ? piece.from - t : t - piece.to;
        return beyond > sameParameter ? std::optional(beyond) : std::nullopt;
    }
    const double angle = std::atan2(arm.dotProduct(piece.v) / piece.v.lengthSqrd(),
                                    arm.dotProduct(piece.u) / piece.u.lengthSqrd());
    const double beyond = normalizedAngle(before ? piece.from - angle : angle - piece.to);
    const double room = twoPi - (piece.to - piece.from);
    return beyond > sameParameter && beyond < room - sameParameter ? std::optional(beyond) : std::nullopt;
}

std::optional<CurvePiece> endPiece(const AcDbCurve& curve, bool atStart) {
    std::vector<CurvePiece> pieces;
    if (curve.isClosed() || !curve.curvePieces(pieces) || pieces.empty()) {
        return std::nullopt;
    }
    CurvePiece piece = atStart ? pieces.front() : pieces.back();
    piece.openBefore = atStart;
    piece.openAfter = !atStart;
    return piece;
}

} // namespace

std::optional<double> reachBeyond(const AcDbCurve& curve, bool atStart, const AcGePoint3d& point) {
    const std::optional<CurvePiece> piece = endPiece(curve, atStart);
    return piece ? reach(*piece, atStart, point) : std::nullopt;
}

std::optional<AcGePoint3d> meetingBeyond(const AcDbCurve& curve, bool atStart, const AcDbEntity& edge,
                                         bool extendEdge, const AcGePlane& view) {
    const std::optional<CurvePiece> piece = endPiece(curve, atStart);
    std::vector<CurvePiece> edgePieces;
    if (!piece || !edge.curvePieces(edgePieces) || edgePieces.empty()) {
        return std::nullopt;
    }
    const auto* edgeCurve = AcDbCurve::cast(&edge);
    if (extendEdge && edgeCurve != nullptr && !edgeCurve->isClosed()) {
        edgePieces.front().openBefore = true;
        edgePieces.back().openAfter = true;
    }
    std::optional<AcGePoint3d> nearest;
    double shortest = 0.0;
    for (const PieceHit& hit : intersectProjected(std::span(&*piece, 1), edgePieces, view)) {
        const std::optional<double> beyond = reach(*piece, atStart, hit.point);
        if (beyond && (!nearest || *beyond < shortest)) {
            nearest = hit.point;
            shortest = *beyond;
        }
    }
    return nearest;
}

std::optional<double> nearestParameter(const AcDbCurve& curve, const AcGePoint3d& point,
                                       const AcGeVector3d& direction) {
    AcGePoint3d closest;
    double parameter = 0.0;
    const bool found = (curve.getClosestPointTo(point, direction, closest) == Acad::eOk ||
                        curve.getClosestPointTo(point, closest) == Acad::eOk) &&
                       curve.getParamAtPoint(closest, parameter) == Acad::eOk;
    return found ? std::optional(parameter) : std::nullopt;
}

bool setCurveLength(std::unique_ptr<AcDbCurve>& curve, bool atStart, double length) {
    const std::optional<double> now = curveLength(*curve);
    if (!now || curve->isClosed() || !(length > 0.0)) {
        return false;
    }
    if (length < *now) {
        double cut = 0.0;
        double end = 0.0;
        if (curve->getParamAtDist(atStart ? *now - length : length, cut) != Acad::eOk ||
            (atStart ? curve->getStartParam(end) : curve->getEndParam(end)) != Acad::eOk) {
            return false;
        }
        std::optional<OwnedCurves> left = withoutPart(*curve, cut, end);
        if (!left || left->size() != 1) {
            return false;
        }
        curve = std::move(left->front());
        return true;
    }
    const std::optional<CurvePiece> piece = endPiece(*curve, atStart);
    if (!piece || (piece->isArc() && !piece->isCircular())) {
        return false;
    }
    const double step = (length - *now) / piece->u.length();
    if (piece->isArc() && step >= twoPi - (piece->to - piece->from)) {
        return false;
    }
    return curve->extend(atStart, piece->pointAt(atStart ? piece->from - step : piece->to + step)) ==
           Acad::eOk;
}

} // namespace host
