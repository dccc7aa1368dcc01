// Single pieces: points, ranges, boxes, closest and touching points.
#include "host/db/entities/curvepiece.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace host {

CurvePiece CurvePiece::line(const AcGePoint3d& start, const AcGePoint3d& end) {
    CurvePiece piece;
    piece.origin = start;
    piece.u = end - start;
    return piece;
}

CurvePiece CurvePiece::arc(const AcGePoint3d& center, const AcGeVector3d& u, const AcGeVector3d& v,
                           double from, double to) {
    CurvePiece piece;
    piece.kind = Kind::arc;
    piece.origin = center;
    piece.u = u;
    piece.v = v;
    piece.from = from;
    piece.to = to;
    return piece;
}

CurvePiece CurvePiece::bezierCurve(BezierCurve curve, double from, double to) {
    CurvePiece piece;
    piece.kind = Kind::bezier;
    piece.bezier = std::move(curve);
    piece.from = from;
    piece.to = to;
    return piece;
}

bool CurvePiece::isCircular() const {
    const double uu = u.lengthSqrd();
    const double vv = v.lengthSqrd();
    return std::fabs(uu - vv) <= 1e-12 * uu && std::fabs(u.dotProduct(v)) <= 1e-12 * uu;
}

bool CurvePiece::isFull() const {
    return isArc() && to - from >= twoPi - 1e-12;
}

AcGePoint3d CurvePiece::pointAt(double t) const {
    if (isBezier()) {
        return bezier.pointAt(curveParameter(t));
    }
    return isArc() ? origin + u * std::cos(t) + v * std::sin(t) : origin + u * t;
}

AcGeVector3d CurvePiece::derivativeAt(double t) const {
    if (isBezier()) {
        AcGeVector3d derivative;
        bezier.evaluate(curveParameter(t), 1, &derivative);
        return derivative / (to - from);
    }
    return isArc() ? v * std::cos(t) - u * std::sin(t) : u;
}

CurvePiece CurvePiece::transformed(const AcGeMatrix3d& transform) const {
    CurvePiece piece(*this);
    if (isBezier()) {
        piece.bezier = bezier.transformed(transform);
        return piece;
    }
    piece.origin = transform * origin;
    piece.u = transform * u;
    piece.v = transform * v;
    return piece;
}

void CurvePiece::addExtents(AcDbExtents& extents) const {
    extents.addPoint(start());
    extents.addPoint(end());
    if (isBezier()) {
        addBezierExtents(extents);
    }
    if (!isArc()) {
        return;
    }
    for (unsigned int axis = 0; axis < 3; ++axis) {
        const double extreme = std::atan2(v[axis], u[axis]);
        for (const double side : {0.0, pi}) {
            double t = extreme + side;
            if (contains(t, 0.0)) {
                extents.addPoint(pointAt(t));
            }
        }
    }
}

void CurvePiece::addBezierExtents(AcDbExtents& extents) const {
    for (const AcGeVector3d& axis : {AcGeVector3d::kXAxis, AcGeVector3d::kYAxis, AcGeVector3d::kZAxis}) {
        for (const double t : bezier.turns(axis)) {
            extents.addPoint(bezier.pointAt(t));
        }
    }
}

void openEnds(std::vector<CurvePiece>& pieces) {
    if (pieces.empty()) {
        return;
    }
    // A spline's continuation has the parameters of the spline, as the spline's own piece would.
    const auto tangent = [](const CurvePiece& piece, double at) {
        const AcGeVector3d along = piece.derivativeAt(at);
        CurvePiece line =
            CurvePiece::line(piece.pointAt(at) - along * at, piece.pointAt(at) + along * (1.0 - at));
        line.from = line.to = at;
        return line;
    };
    if (pieces.front().isBezier()) {
        pieces.insert(pieces.begin(), tangent(pieces.front(), pieces.front().from));
    }
    if (pieces.back().isBezier()) {
        pieces.push_back(tangent(pieces.back(), pieces.back().to));
    }
    pieces.front().openBefore = true;
    pieces.back().openAfter = true;
}

bool CurvePiece::contains(double& t, double slack) const {
    if (!isArc()) {
        if ((t < from && !openBefore && t < from - slack) || (t > to && !openAfter && t > to + slack)) {
            return false;
        }
        if (!openBefore) {
            t = std::max(t, from);
        }
        if (!openAfter) {
            t = std::min(t, to);
        }
        return true;
    }
    t = from + normalizedAngle(t - from);
    if (t <= to || openBefore || openAfter) {
        return true;
    }
    if (t <= to + slack) {
        t = to;
        return true;
    }
    if (t >= from + twoPi - slack) {
        t = from;
        return true;
    }
    return false;
}

double CurvePiece::closestParameter(const AcGePoint3d& point) const {
    if (isBezier()) {
        return pieceParameter(bezier.closestParameter(point));
    }
    if (!isArc()) {
        const double square = u.lengthSqrd();
        double t = square > 0.0 ? (point - origin).dotProduct(u) / square : from;
        if (t < from && !openBefore) {
            t = from;
        }
        return t > to && !openAfter ? to : t;
    }
    double best = from;
    double nearest = point.distanceSqrdTo(start());
    const auto consider = [&](double t) {
        const double distance = point.distanceSqrdTo(pointAt(t));
        if (distance < nearest) {
            nearest = distance;
            best = t;
        }
    };
    consider(to);
    for (double t : perpendicularParameters(point)) {
        if (contains(t, 0.0)) {
            consider(t);
        }
    }
    return best;
}

std::vector<double> CurvePiece::perpendicularParameters(const AcGePoint3d& point) const {
    if (isBezier()) {
        std::vector<double> feet = bezier.feet(point);
        std::transform(feet.begin(), feet.end(), feet.begin(), [&](double t) { return pieceParameter(t); });
        return feet;
    }
    if (!isArc()) {
        const double square = u.lengthSqrd();
        return square > 0.0 ? std::vector<double>{(point - origin).dotProduct(u) / square}
                            : std::vector<double>{};
    }
    const AcGeVector3d arm = point - origin;
    if (isCircular()) {
        const double x = arm.dotProduct(u);
        const double y = arm.dotProduct(v);
        if (x == 0.0 && y == 0.0) {
            return {};
        }
        const double t = std::atan2(y, x);
        return {t, t + pi};
    }
    // (P - point) . P' = 0
    const TrigonometricQuadratic condition{0.0, -arm.dotProduct(v), arm.dotProduct(u), u.dotProduct(v),
                                           0.5 * (v.lengthSqrd() - u.lengthSqrd())};
    return condition.roots();
}

std::vector<double> CurvePiece::tangentParameters(const AcGePoint3d& point) const {
    std::vector<double> result;
    if (isBezier()) {
        const AcGeVector3d plane = bezier.planeNormal();
        for (const double t : plane.isZeroLength() ? std::vector<double>() : bezier.touches(point, plane)) {
            result.push_back(pieceParameter(t));
        }
        return result;
    }
    if (!isArc()) {
        return result;
    }
    // In the coordinates of u and v the arc is one of the unit circle, and touching stays touching.
    const AcGeVector3d arm = point - origin;
    const double uu = u.lengthSqrd();
    const double uv = u.dotProduct(v);
    const double vv = v.lengthSqrd();
    const double det = uu * vv - uv * uv;
    if (!(det > 0.0)) {
        return result;
    }
    const double x = (arm.dotProduct(u) * vv - arm.dotProduct(v) * uv) / det;
    const double y = (arm.dotProduct(v) * uu - arm.dotProduct(u) * uv) / det;
    const double distance = std::hypot(x, y);
    if (distance < 1.0) {
        return result;
    }
    for (const double side : {1.0, -1.0}) {
        double t = std::atan2(y, x) + side * std::acos(1.0 / distance);
        if (contains(t, 1e-9)) {
            result.push_back(t);
        }
    }
    return result;
}

double pointTolerance(double magnitude) {
    return 1e-9 + 1e-14 * magnitude;
}

double pointTolerance(std::span<const CurvePiece> pieces) {
    double largest = 0.0;
    for (const CurvePiece& piece : pieces) {
        for (const WeightedPoint& control : piece.bezier.points()) {
            const AcGePoint3d point = control.point();
            largest = std::max({largest, std::fabs(point.x), std::fabs(point.y), std::fabs(point.z)});
        }
        largest = std::max({largest, std::fabs(piece.origin.x), std::fabs(piece.origin.y),
                            std::fabs(piece.origin.z), std::fabs(piece.u.x), std::fabs(piece.u.y),
                            std::fabs(piece.u.z)});
    }
    return pointTolerance(std::isfinite(largest) ? largest : 0.0);
}

} // namespace host
