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

bool CurvePiece::isCircular() const {
    const double uu = u.lengthSqrd();
    const double vv = v.lengthSqrd();
    return std::fabs(uu - vv) <= 1e-12 * uu && std::fabs(u.dotProduct(v)) <= 1e-12 * uu;
}

bool CurvePiece::isFull() const {
    return isArc() && to - from >= twoPi - 1e-12;
}

AcGePoint3d CurvePiece::pointAt(double t) const {
    return isArc() ? origin + u * std::cos(t) + v * std::sin(t) : origin + u * t;
}

AcGeVector3d CurvePiece::derivativeAt(double t) const {
    return isArc() ? v * std::cos(t) - u * std::sin(t) : u;
}

CurvePiece CurvePiece::transformed(const AcGeMatrix3d& transform) const {
    CurvePiece piece(*this);
    piece.origin = transform * origin;
    piece.u = transform * u;
    piece.v = transform * v;
    return piece;
}

void CurvePiece::addExtents(AcDbExtents& extents) const {
    extents.addPoint(start());
    extents.addPoint(end());
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
    return trigonometricZeros(0.0, -arm.dotProduct(v), arm.dotProduct(u), u.dotProduct(v),
                              0.5 * (v.lengthSqrd() - u.lengthSqrd()), 0.0);
}

std::vector<double> CurvePiece::tangentParameters(const AcGePoint3d& point) const {
    std::vector<double> result;
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

namespace {

struct Trigonometric {
    double a0, a1, b1, a2, b2;
    double operator()(double t) const {
        const double c = std::cos(t);
        const double s = std::sin(t);
        return a0 + a1 * c + b1 * s + a2 * (c * c - s * s) + b2 * 2.0 * s * c;
    }
    Trigonometric derivative() const { return {0.0, b1, -a1, 2.0 * b2, -2.0 * a2}; }
};

/// The zero between two places where the function has different signs.
double bisect(const Trigonometric& f, double low, double high) {
    const bool rising = f(low) < 0.0;
    for (int step = 0; step < 60 && high - low > 1e-16; ++step) {
        const double middle = 0.5 * (low + high);
        ((f(middle) < 0.0) == rising ? low : high) = middle;
    }
    return 0.5 * (low + high);
}

} // namespace

std::vector<double> trigonometricZeros(double a0, double a1, double b1, double a2, double b2,
                                       double tolerance) {
    const Trigonometric f{a0, a1, b1, a2, b2};
    const Trigonometric slope = f.derivative();
    // Between its extremes the function is monotonous. A degree of two leaves at most four extremes, which
    // lie far enough apart to show in the samples or are no extremes that matter.
    constexpr int samples = 128;
    constexpr double step = twoPi / samples;
    constexpr double begin = 0.1234567; // off the axes, where symmetric cases have their extremes
    std::vector<double> extremes;
    bool before = slope(begin) < 0.0;
    for (int index = 1; index <= samples; ++index) {
        const double t = begin + index * step;
        const bool now = slope(t) < 0.0;
        if (now != before) {
            extremes.push_back(bisect(slope, t - step, t));
        }
        before = now;
    }
    std::vector<double> zeros;
    for (std::size_t index = 0; index < extremes.size(); ++index) {
        const double low = extremes[index];
        const bool last = index + 1 == extremes.size();
        const double high = last ? extremes.front() + twoPi : extremes[index + 1];
        const double atLow = f(low);
        const double atHigh = f(high);
        if (std::fabs(atLow) <= tolerance) {
            zeros.push_back(normalizedAngle(low));
        } else if (std::fabs(atHigh) > tolerance && (atLow < 0.0) != (atHigh < 0.0)) {
            zeros.push_back(normalizedAngle(bisect(f, low, high)));
        }
    }
    std::sort(zeros.begin(), zeros.end());
    return zeros;
}

double pointTolerance(double magnitude) {
    return 1e-9 + 1e-14 * magnitude;
}

double pointTolerance(std::span<const CurvePiece> pieces) {
    double largest = 0.0;
    for (const CurvePiece& piece : pieces) {
        largest = std::max({largest, std::fabs(piece.origin.x), std::fabs(piece.origin.y),
                            std::fabs(piece.origin.z), std::fabs(piece.u.x), std::fabs(piece.u.y),
                            std::fabs(piece.u.z)});
    }
    return pointTolerance(std::isfinite(largest) ? largest : 0.0);
}

} // namespace host
