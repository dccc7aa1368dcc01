// NURBS curves made anew: through points, of a higher degree, of two curves in a row.
#include "host/ge/nurb3d.h"

#include <algorithm>
#include <array>
#include <numeric>

namespace {

// A cubic curve through points at given parameters, by its derivatives there.
class CubicThrough {
public:
    CubicThrough(std::vector<AcGePoint3d> points, bool isClosed)
        : m_points(std::move(points)), m_isClosed(isClosed) {
        if (m_isClosed)
            m_points.push_back(m_points.front());
        m_parameters.push_back(0.0);
        for (std::size_t i = 0; i + 1 < m_points.size(); ++i)
            m_parameters.push_back(m_parameters.back() + m_points[i].distanceTo(m_points[i + 1]));
    }

    // The derivatives that make the second ones continuous. The rows of the system have diagonals twice the
    // size of the rest, so that each sweep halves what is wrong at least.
    void solve(const AcGeVector3d* startTangent, const AcGeVector3d* endTangent) {
        const int last = segmentCount();
        m_derivatives.assign(m_points.size(), AcGeVector3d());
        for (int i = 0; i < last; ++i)
            m_derivatives[index(i)] = slope(i);
        m_derivatives[index(last)] = slope(last - 1);
        for (int sweep = 0; sweep < 120; ++sweep) {
            double change = 0.0;
            const auto put = [&](int i, const AcGeVector3d& value) {
                change = std::max(change, (m_derivatives[index(i)] - value).length());
                m_derivatives[index(i)] = value;
            };
            for (int i = 1; i < last; ++i)
                put(i, balanced(i - 1, i, at(i - 1), at(i + 1)));
            if (m_isClosed) {
                put(0, balanced(last - 1, 0, at(last - 1), at(1)));
                put(last, at(0));
            } else {
                put(0, startTangent != nullptr ? *startTangent : slope(0) * 1.5 - at(1) * 0.5);
                put(last, endTangent != nullptr ? *endTangent : slope(last - 1) * 1.5 - at(last - 1) * 0.5);
            }
            if (change <= 1e-16)
                break;
        }
    }

    int segmentCount() const { return static_cast<int>(m_points.size()) - 1; }
    // A knot of the curve; a closed one goes on around, an open one has its ends several times.
    double knot(int i) const {
        const int last = segmentCount();
        if (m_isClosed && (i < 0 || i > last)) { // more than once around with few points
            const int turns = i < 0 ? (i + 1) / last - 1 : i / last;
            return m_parameters[index(i - turns * last)] + turns * m_parameters.back();
        }
        return m_parameters[index(std::clamp(i, 0, last))];
    }
    // The control point that the knots i - 2, i - 1 and i belong to.
    AcGePoint3d controlPoint(int i) const {
        const int k = std::clamp(i - 1, 0, segmentCount() - 1);
        const double low = knot(k), width = knot(k + 1) - low;
        const AcGePoint3d& from = m_points[index(k)];
        const AcGePoint3d& to = m_points[index(k + 1)];
        std::array<AcGePoint3d, 4> d = {from, from + at(k) * (width / 3.0), to - at(k + 1) * (width / 3.0),
                                        to};
        for (int level = 3; level > 0; --level) {
            const double t = (knot(i - 3 + level) - low) / width;
            for (int j = 0; j < level; ++j)
                d[index(j)] += (d[index(j + 1)] - d[index(j)]) * t;
        }
        return d[0];
    }

private:
    static std::size_t index(int i) { return static_cast<std::size_t>(i); }
    const AcGeVector3d& at(int i) const { return m_derivatives[index(i)]; }
    double width(int i) const { return m_parameters[index(i + 1)] - m_parameters[index(i)]; }
    AcGeVector3d slope(int i) const { return (m_points[index(i + 1)] - m_points[index(i)]) / width(i); }
    // The derivative between two segments that suits those at their other ends.
    AcGeVector3d balanced(int before, int after, const AcGeVector3d& start, const AcGeVector3d& end) const {
        const double a = width(before), b = width(after);
        return ((slope(before) * b + slope(after) * a) * 3.0 - start * b - end * a) / (2.0 * (a + b));
    }

    std::vector<AcGePoint3d> m_points;
    std::vector<double> m_parameters;
    std::vector<AcGeVector3d> m_derivatives;
    bool m_isClosed;
};

std::vector<AcGePoint3d> withoutRepeats(const AcGePoint3dArray& points) {
    std::vector<AcGePoint3d> result;
    for (const AcGePoint3d& point : points)
        if (result.empty() || result.back().distanceTo(point) > 0.0)
            result.push_back(point);
    return result;
}

void define(const CubicThrough& cubic, AcGeKnotVector& knots, AcGePoint3dArray& points) {
    const int count = cubic.segmentCount() + 3;
    for (int i = -3; i <= count; ++i)
        knots.append(cubic.knot(i));
    for (int i = 0; i < count; ++i)
        points.append(cubic.controlPoint(i));
}

} // namespace

AcGeNurbCurve3d::AcGeNurbCurve3d(const AcGePoint3dArray& fitPoints, const AcGeVector3d& startTangent,
                                 const AcGeVector3d& endTangent, bool startTangentDefined,
                                 bool endTangentDefined, const AcGeTol&)
    : m_degree(3) {
    std::vector<AcGePoint3d> points = withoutRepeats(fitPoints);
    if (points.size() < 2)
        return;
    CubicThrough cubic(std::move(points), false);
    const AcGeVector3d start = startTangent.normal(), end = endTangent.normal();
    cubic.solve(startTangentDefined && start.lengthSqrd() > 0.0 ? &start : nullptr,
                endTangentDefined && end.lengthSqrd() > 0.0 ? &end : nullptr);
    define(cubic, m_knots, m_points);
}

AcGeNurbCurve3d AcGeNurbCurve3d::throughClosed(const AcGePoint3dArray& fitPoints) {
    AcGeNurbCurve3d curve;
    std::vector<AcGePoint3d> points = withoutRepeats(fitPoints);
    while (points.size() > 1 && points.back().distanceTo(points.front()) == 0.0)
        points.pop_back();
    if (points.size() < 2)
        return curve;
    CubicThrough cubic(std::move(points), true);
    cubic.solve(nullptr, nullptr);
    curve.m_degree = 3;
    curve.m_isPeriodic = true;
    define(cubic, curve.m_knots, curve.m_points);
    return curve;
}

AcGeNurbCurve3d& AcGeNurbCurve3d::elevateDegree(int plusDegree) {
    for (; plusDegree > 0 && isValid() && m_degree < host::highestDegree; --plusDegree) {
        setInterval(interval()); // with its ends as knots of full multiplicity
        const int p = m_degree;
        AcGeNurbCurve3d raised;
        raised.m_degree = p + 1;
        raised.m_knots.setTolerance(m_knots.tolerance());
        for (int i = 0; i < m_knots.length(); ++i) {
            raised.m_knots.append(m_knots[i]);
            if (i + 1 == m_knots.length() || m_knots[i + 1] > m_knots[i])
                raised.m_knots.append(m_knots[i]);
        }
        // Its blossom is the mean of the old one's, each time without one of the arguments.
        std::array<double, host::highestDegree> rest{};
        for (int i = 0; i + p + 2 < raised.m_knots.length(); ++i) {
            const double* arguments = raised.m_knots.asArrayPtr() + i + 1;
            const double middle = std::accumulate(arguments, arguments + p + 1, 0.0) / (p + 1);
            const int span = spanOf(std::clamp(middle, arguments[0], arguments[p]));
            host::WeightedPoint sum;
            for (int left = 0; left <= p; ++left) {
                std::copy(arguments, arguments + left, rest.begin());
                std::copy(arguments + left + 1, arguments + p + 1, rest.begin() + left);
                sum = sum + blossom(span, rest.data());
            }
            sum = sum * (1.0 / (p + 1));
            raised.m_points.append(sum.point());
            if (isRational())
                raised.m_weights.append(sum.w);
        }
        *this = std::move(raised);
    }
    return *this;
}

AcGeNurbCurve3d& AcGeNurbCurve3d::joinWith(const AcGeNurbCurve3d& curve) {
    AcGeNurbCurve3d next(curve);
    if (!isValid() || !next.isValid())
        return *this;
    elevateDegree(next.m_degree - m_degree);
    next.elevateDegree(m_degree - next.m_degree);
    setInterval(interval());
    next.setInterval(next.interval());
    const double shift = m_knots.endParam() - next.m_knots.startParam();
    if (isRational() != next.isRational()) {
        AcGeNurbCurve3d& plain = isRational() ? next : *this;
        for (int i = 0; i < plain.m_points.length(); ++i)
            plain.m_weights.append(1.0);
    }
    // Weights of both agree at the joint.
    const double factor = isRational() ? m_weights.last() / next.m_weights.first() : 1.0;
    m_knots = AcGeKnotVector(m_knots.length() - 1, m_knots.asArrayPtr(), m_knots.tolerance());
    for (int i = m_degree + 1; i < next.m_knots.length(); ++i)
        m_knots.append(next.m_knots[i] + shift);
    for (int i = 1; i < next.m_points.length(); ++i) {
        m_points.append(next.m_points[i]);
        if (isRational())
            m_weights.append(next.m_weights[i] * factor);
    }
    m_isPeriodic = false;
    return *this;
}

host::WeightedPoint AcGeNurbCurve3d::blossom(int span, const double* arguments) const {
    const int p = m_degree;
    std::array<host::WeightedPoint, host::highestDegree + 1> d;
    for (int i = 0; i <= p; ++i)
        d[static_cast<std::size_t>(i)] = weightedAt(span - p + i);
    for (int r = 1; r <= p; ++r) {
        const double u = arguments[r - 1];
        for (int j = p; j >= r; --j) {
            const double low = m_knots[span - p + j], high = m_knots[span + 1 + j - r];
            const double alpha = (u - low) / (high - low);
            d[static_cast<std::size_t>(j)] =
                d[static_cast<std::size_t>(j - 1)] * (1.0 - alpha) + d[static_cast<std::size_t>(j)] * alpha;
        }
    }
    return d[static_cast<std::size_t>(p)];
}

double AcGeNurbCurve3d::closestParameter(const AcGePoint3d& point) const {
    double best = interval().lowerBound(), bestSquared = evalPoint(best).distanceSqrdTo(point);
    for (const host::BezierSpan& span : host::bezierSpans(*this)) {
        // No point of the piece is nearer than the box of its control points.
        const AcGeBoundBlock3d box = span.curve.hull();
        double least = 0.0;
        for (unsigned int axis = 0; axis < 3; ++axis) {
            const double away =
                std::max({box.minPoint()[axis] - point[axis], point[axis] - box.maxPoint()[axis], 0.0});
            least += away * away;
        }
        if (least > bestSquared)
            continue;
        const double t = span.curve.closestParameter(point);
        const double squared = span.curve.pointAt(t).distanceSqrdTo(point);
        if (squared < bestSquared) {
            bestSquared = squared;
            best = t == 1.0 ? span.high : span.low + (span.high - span.low) * t;
        }
    }
    return best;
}
