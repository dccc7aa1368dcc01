// Circles and ellipses: every question becomes the roots of a trigonometric polynomial of degree two.
#include "host/ge/conics.h"

#include "host/ge/rootsearch.h"

#include <algorithm>

namespace host {

namespace {

constexpr int sampleCount = 128;
// Values below this part of the coefficients are rounding.
constexpr double rounding = 1e-13;

} // namespace

double TrigonometricQuadratic::value(double t) const {
    const double c = std::cos(t), s = std::sin(t);
    return c0 + c1 * c + s1 * s + c2 * (c * c - s * s) + 2.0 * s2 * s * c;
}

double TrigonometricQuadratic::derivative(double t) const {
    const double c = std::cos(t), s = std::sin(t);
    return s1 * c - c1 * s + 2.0 * (s2 * (c * c - s * s) - 2.0 * c2 * s * c);
}

std::vector<double> TrigonometricQuadratic::roots(double tolerance) const {
    const double size = std::fabs(c0) + std::fabs(c1) + std::fabs(s1) + std::fabs(c2) + std::fabs(s2);
    const double slack = std::max(tolerance, rounding * size);
    if (!(size > 0.0) || !std::isfinite(size) ||
        std::max({std::fabs(c1), std::fabs(s1), std::fabs(c2), std::fabs(s2)}) <= rounding * size)
        return {};
    const auto f = [this](double t) { return value(t); };
    const auto slope = [this](double t) { return derivative(t); };
    const auto bend = [this](double t) {
        return -c1 * std::cos(t) - s1 * std::sin(t) - 4.0 * (c2 * std::cos(2.0 * t) + s2 * std::sin(2.0 * t));
    };
    // Between its extremes the function is monotonous. A degree of two leaves at most four extremes, which
    // lie far enough apart to show in the samples or are no extremes that matter.
    constexpr double step = twoPi / sampleCount;
    constexpr double begin = 0.1234567; // off the axes, where symmetric cases have their extremes
    std::vector<double> extremes;
    bool before = slope(begin) < 0.0;
    for (int i = 1; i <= sampleCount; ++i) {
        const double t = begin + i * step;
        const bool now = slope(t) < 0.0;
        if (now != before)
            extremes.push_back(bracketedRoot(slope, bend, t - step, t));
        before = now;
    }
    std::vector<double> result;
    for (std::size_t i = 0; i < extremes.size(); ++i) {
        const double low = extremes[i];
        const double high = i + 1 < extremes.size() ? extremes[i + 1] : extremes.front() + twoPi;
        const double atLow = f(low), atHigh = f(high);
        if (std::fabs(atLow) <= slack)
            result.push_back(normalizedAngle(low));
        else if (std::fabs(atHigh) > slack && (atLow < 0.0) != (atHigh < 0.0))
            result.push_back(normalizedAngle(bracketedRoot(f, slope, low, high)));
    }
    std::sort(result.begin(), result.end());
    return result;
}

std::vector<double> ellipseFeet(const EllipseShape& ellipse, const AcGePoint2d& point) {
    // (E(t) - p) . E'(t) = 0
    const AcGeVector2d arm = ellipse.center - point;
    TrigonometricQuadratic condition;
    condition.c1 = arm.dotProduct(ellipse.minor);
    condition.s1 = -arm.dotProduct(ellipse.major);
    condition.s2 = 0.5 * (ellipse.minor.lengthSqrd() - ellipse.major.lengthSqrd());
    return condition.roots();
}

double closestEllipseAngle(const EllipseShape& ellipse, const AcGePoint2d& point, double startAngle,
                           double endAngle) {
    double best = startAngle, bestSquared = ellipse.pointAt(startAngle).distanceSqrdTo(point);
    const auto consider = [&](double angle) {
        const double squared = ellipse.pointAt(angle).distanceSqrdTo(point);
        if (squared < bestSquared) {
            best = angle;
            bestSquared = squared;
        }
    };
    for (const double foot : ellipseFeet(ellipse, point))
        if (const double angle = startAngle + normalizedAngle(foot - startAngle); angle <= endAngle)
            consider(angle);
    consider(endAngle);
    return best;
}

std::vector<LineEllipseCrossing> intersectLineEllipse(const AcGePoint2d& origin,
                                                      const AcGeVector2d& direction,
                                                      const EllipseShape& ellipse, double tolerance) {
    std::vector<LineEllipseCrossing> result;
    const double size = direction.length();
    if (!(size > 0.0))
        return result;
    // The signed distance of E(t) from the line is a + r cos(t - phase).
    const AcGeVector2d unit = direction / size;
    const double a = unit.crossProduct(ellipse.center - origin);
    const double x = unit.crossProduct(ellipse.major), y = unit.crossProduct(ellipse.minor);
    const double r = std::hypot(x, y), phase = std::atan2(y, x);
    if (std::fabs(a) > r + tolerance)
        return result;
    const double half = std::acos(std::clamp(-a / r, -1.0, 1.0));
    const auto add = [&](double angle) {
        const double t = unit.dotProduct(ellipse.pointAt(angle) - origin) / size;
        result.push_back({t, normalizedAngle(angle)});
    };
    if (std::fabs(a) >= r - tolerance * 1e-3) {
        add(phase + (a > 0.0 ? pi : 0.0));
    } else {
        add(phase - half);
        add(phase + half);
    }
    return result;
}

std::vector<EllipseCrossing> intersectEllipses(const EllipseShape& first, const EllipseShape& second) {
    // In the axes of the second ellipse it is the unit circle: |F(t)|^2 = 1 for the first one's image F.
    const double major = second.major.lengthSqrd(), minor = second.minor.lengthSqrd();
    const auto image = [&](const AcGeVector2d& v) {
        return AcGeVector2d(v.dotProduct(second.major) / major, v.dotProduct(second.minor) / minor);
    };
    const AcGeVector2d m = image(first.center - second.center), u = image(first.major),
                       v = image(first.minor);
    TrigonometricQuadratic condition;
    condition.c0 = m.lengthSqrd() + 0.5 * (u.lengthSqrd() + v.lengthSqrd()) - 1.0;
    condition.c1 = 2.0 * m.dotProduct(u);
    condition.s1 = 2.0 * m.dotProduct(v);
    condition.c2 = 0.5 * (u.lengthSqrd() - v.lengthSqrd());
    condition.s2 = u.dotProduct(v);
    std::vector<EllipseCrossing> result;
    for (const double angle : condition.roots())
        result.push_back({angle, second.angleOf(first.pointAt(angle))});
    return result;
}

std::vector<AcGePoint2d> intersectCircles(const AcGePoint2d& firstCenter, double firstRadius,
                                          const AcGePoint2d& secondCenter, double secondRadius,
                                          double tolerance) {
    const AcGeVector2d between = secondCenter - firstCenter;
    const double distance = between.length();
    if (!(distance > tolerance) || distance > firstRadius + secondRadius + tolerance ||
        distance < std::fabs(firstRadius - secondRadius) - tolerance)
        return {};
    const AcGeVector2d unit = between / distance;
    // The foot of the common chord; the difference of squares as a product keeps its digits.
    const double along =
        0.5 * (distance + (firstRadius - secondRadius) * (firstRadius + secondRadius) / distance);
    const double squared = (firstRadius - along) * (firstRadius + along);
    const bool touches = distance >= firstRadius + secondRadius - tolerance * 1e-3 ||
                         distance <= std::fabs(firstRadius - secondRadius) + tolerance * 1e-3;
    if (touches || squared <= 0.0)
        return {firstCenter + unit * std::copysign(firstRadius, along)};
    const AcGeVector2d across = unit.perpVector() * std::sqrt(squared);
    const AcGePoint2d foot = firstCenter + unit * along;
    return {foot - across, foot + across};
}

PrincipalAxes principalAxes(const AcGeVector3d& first, const AcGeVector3d& second) {
    // The vectors at t = shift and a quarter turn on are at right angles there.
    const double shift =
        0.5 * std::atan2(2.0 * first.dotProduct(second), first.lengthSqrd() - second.lengthSqrd());
    const double c = std::cos(shift), s = std::sin(shift);
    return {first * c + second * s, second * c - first * s, shift};
}

} // namespace host
