// Bezier curves: evaluation, and the polynomials behind the questions about them.
#include "host/ge/bezier.h"

#include "host/ge/nurb3d.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace host {

namespace {

using Row = std::array<WeightedPoint, highestDegree + 1>;

// The polynomial of one linear function of the control points.
template <class Function>
BernsteinPolynomial polynomialOf(const std::vector<WeightedPoint>& points, Function&& function) {
    std::vector<double> coefficients;
    coefficients.reserve(points.size());
    for (const WeightedPoint& point : points)
        coefficients.push_back(function(point));
    return BernsteinPolynomial(std::move(coefficients));
}

// h' w - h w' for a height h times the weight w: the derivative of the height times the weight's square.
BernsteinPolynomial slopeOf(const BernsteinPolynomial& height, const BernsteinPolynomial& weight) {
    BernsteinPolynomial slope = height.derivative() * weight;
    slope -= height * weight.derivative();
    return slope;
}

} // namespace

AcGePoint3d BezierCurve::evaluate(double t, int derivativeCount, AcGeVector3d* derivatives) const {
    const int p = degree();
    Row d;
    std::copy(m_points.begin(), m_points.end(), d.begin());
    // The last levels of de Casteljau's scheme hold the differences that the derivatives are made of.
    WeightedPoint first, second;
    const double s = 1.0 - t;
    for (int level = p; level > 0; --level) {
        const auto at = [&](int i) -> const WeightedPoint& { return d[static_cast<std::size_t>(i)]; };
        if (level == 2)
            second = (at(2) - at(1) * 2.0 + at(0)) * (p * (p - 1.0));
        if (level == 1)
            first = (at(1) - at(0)) * p;
        for (int i = 0; i < level; ++i)
            d[static_cast<std::size_t>(i)] = at(i) * s + at(i + 1) * t;
    }
    if (!m_isRational) {
        if (derivativeCount > 0)
            derivatives[0].set(first.x, first.y, first.z);
        if (derivativeCount > 1)
            derivatives[1].set(second.x, second.y, second.z);
        return {d[0].x, d[0].y, d[0].z};
    }
    const AcGePoint3d point = d[0].point();
    const double w = d[0].w;
    if (derivativeCount > 0)
        derivatives[0] = (AcGeVector3d(first.x, first.y, first.z) - point.asVector() * first.w) / w;
    if (derivativeCount > 1)
        derivatives[1] = (AcGeVector3d(second.x, second.y, second.z) - derivatives[0] * (2.0 * first.w) -
                          point.asVector() * second.w) /
                         w;
    return point;
}

BezierCurve BezierCurve::transformed(const AcGeMatrix3d& matrix) const {
    BezierCurve result(*this);
    const auto& m = matrix.entry;
    for (WeightedPoint& p : result.m_points) {
        const WeightedPoint old = p;
        p.x = m[0][0] * old.x + m[0][1] * old.y + m[0][2] * old.z + m[0][3] * old.w;
        p.y = m[1][0] * old.x + m[1][1] * old.y + m[1][2] * old.z + m[1][3] * old.w;
        p.z = m[2][0] * old.x + m[2][1] * old.y + m[2][2] * old.z + m[2][3] * old.w;
    }
    return result;
}

std::pair<BezierCurve, BezierCurve> BezierCurve::split(double t) const {
    std::pair<BezierCurve, BezierCurve> parts(*this, *this);
    std::vector<WeightedPoint>& left = parts.first.m_points;
    std::vector<WeightedPoint>& right = parts.second.m_points;
    for (std::size_t level = 0; level < left.size(); ++level) {
        right[right.size() - 1 - level] = left.back();
        for (std::size_t i = left.size() - 1; i > level; --i)
            left[i] = left[i - 1] * (1.0 - t) + left[i] * t;
    }
    return parts;
}

BezierCurve BezierCurve::elevated() const {
    const std::size_t p = m_points.size() - 1;
    std::vector<WeightedPoint> points{m_points.front()};
    for (std::size_t i = 1; i <= p; ++i) {
        const double share = static_cast<double>(i) / static_cast<double>(p + 1);
        points.push_back(m_points[i - 1] * share + m_points[i] * (1.0 - share));
    }
    points.push_back(m_points.back());
    return {std::move(points), m_isRational};
}

BernsteinPolynomial BezierCurve::weights() const {
    return polynomialOf(m_points, [](const WeightedPoint& p) { return p.w; });
}

BernsteinPolynomial BezierCurve::heights(const AcGePoint3d& origin, const AcGeVector3d& normal) const {
    return polynomialOf(m_points, [&](const WeightedPoint& p) {
        return (p.x - origin.x * p.w) * normal.x + (p.y - origin.y * p.w) * normal.y +
               (p.z - origin.z * p.w) * normal.z;
    });
}

std::vector<double> BezierCurve::turns(const AcGeVector3d& direction) const {
    // Heights over a point of the curve keep their digits far from the origin.
    const BernsteinPolynomial height = heights(m_points.front().point(), direction);
    return (m_isRational ? slopeOf(height, weights()) : height.derivative()).roots();
}

std::vector<double> BezierCurve::feet(const AcGePoint3d& point) const {
    const AcGeVector3d axes[] = {AcGeVector3d::kXAxis, AcGeVector3d::kYAxis, AcGeVector3d::kZAxis};
    BernsteinPolynomial sum;
    for (const AcGeVector3d& axis : axes) {
        const BernsteinPolynomial arm = heights(point, axis);
        const BernsteinPolynomial product = arm * (m_isRational ? slopeOf(arm, weights()) : arm.derivative());
        if (sum.degree() < 0)
            sum = product;
        else
            sum += product;
    }
    return sum.roots();
}

std::vector<double> BezierCurve::touches(const AcGePoint3d& point, const AcGeVector3d& normal) const {
    const AcGeVector3d x = normal.perpVector(), y = normal.crossProduct(x);
    const BernsteinPolynomial armX = heights(point, x), armY = heights(point, y);
    // The cross product of the arm and the derivative; the weight's derivative cancels out of it.
    BernsteinPolynomial cross = armX * armY.derivative();
    cross -= armY * armX.derivative();
    return cross.roots();
}

double BezierCurve::closestParameter(const AcGePoint3d& point) const {
    double best = 0.0, bestSquared = pointAt(0.0).distanceSqrdTo(point);
    const auto consider = [&](double t) {
        const double squared = pointAt(t).distanceSqrdTo(point);
        if (squared < bestSquared) {
            best = t;
            bestSquared = squared;
        }
    };
    for (double t : feet(point)) {
        // A last step on the curve itself: the polynomial has lost digits where the point is on the curve.
        std::array<AcGeVector3d, 2> derivatives;
        const AcGeVector3d arm = evaluate(t, 2, derivatives.data()) - point;
        const double slope = derivatives[0].lengthSqrd() + arm.dotProduct(derivatives[1]);
        consider(t);
        if (slope > 0.0)
            consider(std::clamp(t - arm.dotProduct(derivatives[0]) / slope, 0.0, 1.0));
    }
    consider(1.0);
    return best;
}

AcGeBoundBlock3d BezierCurve::hull() const {
    AcGeBoundBlock3d block;
    for (const WeightedPoint& p : m_points)
        block.extend(m_isRational ? p.point() : AcGePoint3d(p.x, p.y, p.z));
    return block;
}

AcGeVector3d BezierCurve::planeNormal() const {
    const AcGePoint3d origin = m_points.front().point();
    AcGeVector3d widest;
    double size = 0.0;
    for (std::size_t i = 1; i + 1 < m_points.size(); ++i) {
        const AcGeVector3d a = m_points[i].point() - origin, b = m_points[i + 1].point() - origin;
        const AcGeVector3d normal = a.crossProduct(b);
        if (normal.lengthSqrd() > widest.lengthSqrd())
            widest = normal;
        size = std::max({size, a.lengthSqrd(), b.lengthSqrd()});
    }
    const double length = widest.length();
    return length > 1e-12 * size ? widest / length : AcGeVector3d();
}

void BezierCurve::appendChords(double deviation, std::vector<AcGePoint3d>& points) const {
    // A chord of a step h lies within h^2 / 8 times the largest second derivative.
    constexpr int most = 4096;
    const int p = degree();
    double bend = 0.0;
    if (m_isRational) {
        const int probes = 4 * p;
        for (int i = 0; i <= probes; ++i) {
            std::array<AcGeVector3d, 2> derivatives;
            evaluate(static_cast<double>(i) / probes, 2, derivatives.data());
            bend = std::max(bend, 1.2 * derivatives[1].length());
        }
    } else {
        for (std::size_t i = 0; i + 2 < m_points.size(); ++i) {
            const WeightedPoint d = m_points[i + 2] - m_points[i + 1] * 2.0 + m_points[i];
            bend = std::max(bend, p * (p - 1.0) * std::sqrt(d.x * d.x + d.y * d.y + d.z * d.z));
        }
    }
    const double steps = std::ceil(std::sqrt(bend / (8.0 * std::max(deviation, 1e-12))));
    const int count = static_cast<int>(std::clamp(steps, 1.0, static_cast<double>(most)));
    for (int i = 1; i <= count; ++i)
        points.push_back(pointAt(i == count ? 1.0 : static_cast<double>(i) / count));
}

std::vector<BezierSpan> bezierSpans(const AcGeNurbCurve3d& curve) {
    std::vector<BezierSpan> spans;
    const int p = curve.degree();
    std::array<double, highestDegree> arguments{};
    for (int k = p; curve.isValid() && k < curve.numControlPoints(); ++k) {
        const double low = curve.knotAt(k), high = curve.knotAt(k + 1);
        if (!(low < high))
            continue;
        std::vector<WeightedPoint> points;
        for (int j = 0; j <= p; ++j) {
            std::fill_n(arguments.begin(), p - j, low);
            std::fill_n(arguments.begin() + (p - j), j, high);
            points.push_back(curve.blossom(k, arguments.data()));
        }
        spans.push_back({BezierCurve(std::move(points), curve.isRational()), low, high});
    }
    return spans;
}

namespace {

// The search for common points of two curves: halving while the boxes of the control points touch, then
// Newton's method.
class BezierMeeting {
public:
    BezierMeeting(const BezierCurve& first, const BezierCurve& second, double tolerance)
        : m_first(first), m_second(second), m_tolerance(tolerance) {}

    void search() { search(Part(m_first), Part(m_second), 0); }

    void consider(double s, double t) {
        const AcGePoint3d p = m_first.pointAt(s);
        if (p.distanceTo(m_second.pointAt(t)) > m_tolerance)
            return;
        // Where curves only touch, the place is known no better than the root of the tolerance.
        const double same =
            std::max(2.0 * m_tolerance, crossFairly(s, t) ? 0.0 : 10.0 * std::sqrt(m_tolerance));
        for (const auto& known : found)
            if (m_first.pointAt(known.first).distanceTo(p) <= same)
                return;
        found.emplace_back(s, t);
    }

    std::vector<std::pair<double, double>> found;

private:
    static constexpr int deepest = 26;
    static constexpr int mostVisits = 60'000; // only curves that share a stretch come so far

    // A part of a curve by its own control points.
    struct Part {
        Row points;
        int degree = 0;
        double low = 0.0, high = 1.0;

        Part() = default;
        explicit Part(const BezierCurve& curve) : degree(curve.degree()) {
            std::copy(curve.points().begin(), curve.points().end(), points.begin());
        }
        const WeightedPoint& at(int i) const { return points[static_cast<std::size_t>(i)]; }
        double middle() const { return 0.5 * (low + high); }
        std::array<Part, 2> halves() const {
            std::array<Part, 2> parts{*this, *this};
            Row& d = parts[0].points;
            for (int level = 0; level <= degree; ++level) {
                const auto last = static_cast<std::size_t>(degree);
                parts[1].points[last - static_cast<std::size_t>(level)] = d[last];
                for (std::size_t i = last; i > static_cast<std::size_t>(level); --i)
                    d[i] = (d[i - 1] + d[i]) * 0.5;
            }
            parts[0].high = parts[1].low = middle();
            return parts;
        }
        AcGeBoundBlock3d box(double margin) const {
            AcGeBoundBlock3d block;
            for (int i = 0; i <= degree; ++i)
                block.extend(at(i).point());
            block.swell(margin);
            return block;
        }
        bool isStraight() const {
            double bend = 0.0;
            for (int i = 0; i + 2 <= degree; ++i) {
                const AcGePoint3d a = at(i).point(), b = at(i + 1).point(), c = at(i + 2).point();
                bend = std::max(bend, ((c - b) - (b - a)).length());
            }
            return bend <= 0.02 * at(0).point().distanceTo(at(degree).point()) / degree;
        }
    };

    void search(const Part& a, const Part& b, int depth) {
        if (a.box(m_tolerance).isDisjoint(b.box(m_tolerance)) || m_visits++ > mostVisits)
            return;
        if (depth >= deepest || (a.isStraight() && b.isStraight() && crossFairly(a.middle(), b.middle()))) {
            refine(a.middle(), b.middle());
            return;
        }
        const std::array<Part, 2> ofA = a.halves(), ofB = b.halves();
        for (const Part& partOfA : ofA)
            for (const Part& partOfB : ofB)
                search(partOfA, partOfB, depth + 1);
    }

    bool crossFairly(double s, double t) const {
        AcGeVector3d a, b;
        m_first.evaluate(s, 1, &a);
        m_second.evaluate(t, 1, &b);
        return a.crossProduct(b).length() > 0.1 * a.length() * b.length();
    }

    void refine(double s, double t) {
        for (int step = 0; step < 40; ++step) {
            std::array<AcGeVector3d, 2> a, b;
            const AcGeVector3d gap = m_first.evaluate(s, 2, a.data()) - m_second.evaluate(t, 2, b.data());
            const double gs = gap.dotProduct(a[0]), gt = -gap.dotProduct(b[0]);
            double ss = a[0].lengthSqrd() + gap.dotProduct(a[1]);
            double tt = b[0].lengthSqrd() - gap.dotProduct(b[1]);
            const double st = -a[0].dotProduct(b[0]);
            if (!(ss > 0.0 && tt > 0.0 && ss * tt > st * st)) {
                ss = a[0].lengthSqrd() * (1.0 + 1e-9);
                tt = b[0].lengthSqrd() * (1.0 + 1e-9);
            }
            const double det = ss * tt - st * st;
            if (!(det > 0.0))
                break;
            const double nextS = std::clamp(s - (gs * tt - gt * st) / det, 0.0, 1.0);
            const double nextT = std::clamp(t - (gt * ss - gs * st) / det, 0.0, 1.0);
            const double moved = std::fabs(nextS - s) * std::sqrt(ss) + std::fabs(nextT - t) * std::sqrt(tt);
            s = nextS;
            t = nextT;
            if (moved <= 1e-4 * m_tolerance)
                break;
        }
        consider(s, t);
    }

    const BezierCurve& m_first;
    const BezierCurve& m_second;
    double m_tolerance;
    int m_visits = 0;
};

} // namespace

std::vector<std::pair<double, double>> intersectBeziers(const BezierCurve& first, const BezierCurve& second,
                                                        double tolerance) {
    BezierMeeting meeting(first, second, tolerance);
    meeting.search();
    for (const double end : {0.0, 1.0}) {
        meeting.consider(end, second.closestParameter(first.pointAt(end)));
        meeting.consider(first.closestParameter(second.pointAt(end)), end);
    }
    std::sort(meeting.found.begin(), meeting.found.end());
    return meeting.found;
}

} // namespace host
