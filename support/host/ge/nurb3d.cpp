// Polylines and NURBS curves of space.
#include "host/ge/nurb3d.h"

#include "host/ge/arc3d.h"
#include "host/ge/line3d.h"
#include "host/ge/polyline_points.h"

using host::WeightedPoint;

AcGeKnotVector::AcGeKnotVector(int count, const double* knots, double tolerance) : m_tolerance(tolerance) {
    for (int i = 0; i < count; ++i)
        m_knots.append(knots[i]);
}

AcGeKnotVector& AcGeKnotVector::insert(double knot) {
    const double* at = std::upper_bound(m_knots.begin(), m_knots.end(), knot);
    m_knots.insertAt(static_cast<int>(at - m_knots.begin()), knot);
    return *this;
}

bool AcGeKnotVector::isOn(double parameter) const {
    return !isEmpty() && parameter >= startParam() - m_tolerance && parameter <= endParam() + m_tolerance;
}

int AcGeKnotVector::multiplicityAt(double parameter) const {
    return static_cast<int>(std::count_if(m_knots.begin(), m_knots.end(), [&](double knot) {
        return std::fabs(knot - parameter) <= m_tolerance;
    }));
}

int AcGeKnotVector::numIntervals() const {
    int count = 0;
    for (int i = 0; i + 1 < length(); ++i)
        count += m_knots[i + 1] - m_knots[i] > m_tolerance;
    return count;
}

AcGeKnotVector& AcGeKnotVector::setRange(double lower, double upper) {
    if (isEmpty() || endParam() == startParam())
        return *this;
    const double first = startParam(), scale = (upper - lower) / (endParam() - first);
    for (double& knot : m_knots)
        knot = lower + (knot - first) * scale;
    return *this;
}

void AcGeKnotVector::reverse() {
    if (isEmpty())
        return;
    const double sum = startParam() + endParam();
    m_knots.reverse();
    for (double& knot : m_knots)
        knot = sum - knot;
}

bool AcGeKnotVector::isEqualTo(const AcGeKnotVector& other) const {
    return std::equal(m_knots.begin(), m_knots.end(), other.m_knots.begin(), other.m_knots.end(),
                      [&](double a, double b) { return std::fabs(a - b) <= m_tolerance; });
}

AcGePolyline3d& AcGePolyline3d::transformBy(const AcGeMatrix3d& matrix) {
    for (AcGePoint3d& point : m_points)
        point.transformBy(matrix);
    return *this;
}

AcGePolyline3d& AcGePolyline3d::reverseParam() {
    m_points.reverse();
    return *this;
}

void AcGePolyline3d::getInterval(AcGeInterval& interval) const {
    interval = AcGeInterval(0.0, std::max(m_points.length() - 1, 0));
}

bool AcGePolyline3d::setInterval(const AcGeInterval& range) {
    if (!range.isBounded() || range.length() < 0.0 || m_points.isEmpty())
        return false;
    m_points = host::polyline::part<AcGePoint3d>(*this, range.lowerBound(), range.upperBound());
    return true;
}

AcGePoint3d AcGePolyline3d::evaluate(double parameter, int derivativeCount, AcGeVector3d* derivatives) const {
    return host::polyline::evaluate(m_points, parameter, derivativeCount, derivatives);
}

double AcGePolyline3d::closestParameter(const AcGePoint3d& point) const {
    return host::polyline::closestParameter(m_points, point);
}

double AcGePolyline3d::length(double from, double to, double) const {
    return host::polyline::length(*this, from, to);
}

std::vector<double> AcGePolyline3d::sampleParameters(double from, double to) const {
    return host::polyline::vertexParameters(from, to);
}

AcGeNurbCurve3d::AcGeNurbCurve3d(int degree, const AcGeKnotVector& knots,
                                 const AcGePoint3dArray& controlPoints, bool isPeriodic)
    : AcGeSplineEnt3d(controlPoints), m_degree(degree), m_knots(knots), m_isPeriodic(isPeriodic) {}

AcGeNurbCurve3d::AcGeNurbCurve3d(int degree, const AcGeKnotVector& knots,
                                 const AcGePoint3dArray& controlPoints, const AcGeDoubleArray& weights,
                                 bool isPeriodic)
    : AcGeSplineEnt3d(controlPoints), m_degree(degree), m_knots(knots), m_weights(weights),
      m_isPeriodic(isPeriodic) {}

AcGeNurbCurve3d::AcGeNurbCurve3d(const AcGeLineSeg3d& line)
    : AcGeSplineEnt3d({line.startPoint(), line.endPoint()}), m_degree(1), m_knots({0.0, 0.0, 1.0, 1.0}) {}

AcGeNurbCurve3d::AcGeNurbCurve3d(const AcGeEllipArc3d& arc) : m_degree(2) {
    // Pieces of at most a quarter turn, each with the crossing of its end tangents as its middle point.
    const double start = arc.startAng(), sweep = arc.endAng() - start;
    const int pieces = std::max(1, static_cast<int>(std::ceil(sweep / host::halfPi - 1e-9)));
    const double step = sweep / pieces, weight = std::cos(0.5 * step);
    m_knots.append(start).append(start).append(start);
    m_points.append(arc.startPoint());
    m_weights.append(1.0);
    for (int i = 0; i < pieces; ++i) {
        const double from = start + i * step, to = i + 1 == pieces ? arc.endAng() : from + step;
        const AcGePoint3d middle = arc.evalPoint(0.5 * (from + to));
        m_points.append(arc.center() + (middle - arc.center()) / weight);
        m_weights.append(weight);
        m_points.append(arc.evalPoint(to));
        m_weights.append(1.0);
        m_knots.append(to).append(to);
    }
    m_knots.append(arc.endAng());
}

bool AcGeNurbCurve3d::hasShape() const {
    return m_degree >= 1 && m_degree <= host::highestDegree && m_points.length() > m_degree &&
           m_knots.length() == m_points.length() + m_degree + 1 &&
           (m_weights.isEmpty() || m_weights.length() == m_points.length());
}

bool AcGeNurbCurve3d::isValid() const {
    return hasShape() && std::is_sorted(m_knots.asArrayPtr(), m_knots.asArrayPtr() + m_knots.length()) &&
           m_knots[m_degree] < m_knots[m_points.length()] &&
           std::all_of(m_weights.begin(), m_weights.end(), [](double weight) { return weight > 0.0; });
}

AcGeNurbCurve3d& AcGeNurbCurve3d::transformBy(const AcGeMatrix3d& matrix) {
    for (AcGePoint3d& point : m_points)
        point.transformBy(matrix);
    return *this;
}

AcGeNurbCurve3d& AcGeNurbCurve3d::reverseParam() {
    m_points.reverse();
    m_weights.reverse();
    m_knots.reverse();
    return *this;
}

void AcGeNurbCurve3d::getInterval(AcGeInterval& interval) const {
    interval =
        hasShape() ? AcGeInterval(m_knots[m_degree], m_knots[m_points.length()]) : AcGeInterval(0.0, 0.0);
}

bool AcGeNurbCurve3d::setInterval(const AcGeInterval& range) {
    if (!isValid() || !range.isBounded() || range.length() <= m_knots.tolerance() ||
        !interval().contains(range))
        return false;
    const double lower = interval().clamp(range.lowerBound()), upper = interval().clamp(range.upperBound());
    // With knots of full multiplicity at both bounds the control points between them carry the part alone.
    AcGeNurbCurve3d whole(*this);
    const int p = m_degree;
    for (const double bound : {lower, upper})
        for (int i = whole.m_knots.multiplicityAt(bound); i < p; ++i)
            whole.insertKnot(bound);
    const double* knots = whole.m_knots.asArrayPtr();
    const double* knotsEnd = knots + whole.m_knots.length();
    const double slack = m_knots.tolerance();
    const int lastLower = static_cast<int>(std::upper_bound(knots, knotsEnd, lower + slack) - knots) - 1;
    const int firstUpper = static_cast<int>(std::lower_bound(knots, knotsEnd, upper - slack) - knots);
    AcGeNurbCurve3d part;
    part.m_degree = p;
    part.m_knots.setTolerance(slack);
    for (int i = lastLower - p; i < firstUpper; ++i) {
        part.m_points.append(whole.m_points[i]);
        if (isRational())
            part.m_weights.append(whole.m_weights[i]);
    }
    for (int i = 0; i <= p; ++i)
        part.m_knots.append(lower);
    for (int i = lastLower + 1; i < firstUpper; ++i)
        part.m_knots.append(knots[i]);
    for (int i = 0; i <= p; ++i)
        part.m_knots.append(upper);
    if (!part.isValid())
        return false;
    *this = std::move(part);
    return true;
}

int AcGeNurbCurve3d::spanOf(double parameter) const {
    const double* knots = m_knots.asArrayPtr();
    const int count = m_points.length();
    const int span =
        static_cast<int>(std::upper_bound(knots, knots + m_knots.length(), parameter) - knots) - 1;
    if (span >= count) { // the last span that is not empty
        int last = count - 1;
        while (last > m_degree && m_knots[last] >= m_knots[count])
            --last;
        return last;
    }
    int first = std::max(span, m_degree);
    while (first + 1 < count && m_knots[first + 1] <= m_knots[first])
        ++first;
    return first;
}

AcGePoint3d AcGeNurbCurve3d::evaluate(double parameter, int derivativeCount,
                                      AcGeVector3d* derivatives) const {
    std::fill_n(derivatives, derivativeCount, AcGeVector3d());
    if (!hasShape())
        return AcGePoint3d::kOrigin;
    const int p = m_degree, span = spanOf(parameter);
    const int orders = std::min(derivativeCount, p);
    using Row = std::array<WeightedPoint, host::highestDegree + 1>;
    Row local, homogeneousDerivatives;
    // The k-th derivative is a spline of degree p - k over differences of the control points; each is
    // evaluated with de Boor's algorithm.
    for (int i = 0; i <= p; ++i)
        local[static_cast<std::size_t>(i)] = weightedAt(span - p + i);
    for (int k = 0; k <= orders; ++k) {
        const int degree = p - k;
        Row d = local;
        for (int r = 1; r <= degree; ++r)
            for (int j = degree; j >= r; --j) {
                const double low = m_knots[span - degree + j], high = m_knots[span + 1 + j - r];
                const double alpha = (parameter - low) / (high - low);
                d[static_cast<std::size_t>(j)] = d[static_cast<std::size_t>(j - 1)] * (1.0 - alpha) +
                                                 d[static_cast<std::size_t>(j)] * alpha;
            }
        homogeneousDerivatives[static_cast<std::size_t>(k)] = d[static_cast<std::size_t>(degree)];
        for (int j = 0; j < degree; ++j) {
            const double width = m_knots[span + 1 + j] - m_knots[span - degree + 1 + j];
            local[static_cast<std::size_t>(j)] =
                (local[static_cast<std::size_t>(j + 1)] - local[static_cast<std::size_t>(j)]) *
                (degree / width);
        }
    }
    // The quotient rule for C = A / w: A(k) = sum of binomial(k, i) w(i) C(k - i).
    const WeightedPoint& a = homogeneousDerivatives[0];
    const AcGePoint3d point(a.x / a.w, a.y / a.w, a.z / a.w);
    for (int k = 1; k <= derivativeCount; ++k) {
        const WeightedPoint numerator =
            k <= orders ? homogeneousDerivatives[static_cast<std::size_t>(k)] : WeightedPoint();
        AcGeVector3d value(numerator.x, numerator.y, numerator.z);
        double binomial = 1.0;
        for (int i = 1; i <= k; ++i) {
            binomial *= static_cast<double>(k - i + 1) / i;
            if (i > orders)
                break;
            const AcGeVector3d lower = i == k ? point.asVector() : derivatives[k - i - 1];
            value -= lower * (binomial * homogeneousDerivatives[static_cast<std::size_t>(i)].w);
        }
        derivatives[k - 1] = value / a.w;
    }
    return point;
}

std::vector<double> AcGeNurbCurve3d::sampleParameters(double from, double to) const {
    // Each piece between knots turns less than its degree allows; a few steps a degree bracket every turn.
    std::vector<double> breaks{from};
    for (int i = m_degree; isValid() && i <= m_points.length(); ++i)
        if (m_knots[i] > breaks.back() + m_knots.tolerance() && m_knots[i] < to - m_knots.tolerance())
            breaks.push_back(m_knots[i]);
    breaks.push_back(to);
    const int steps = 4 * std::max(m_degree, 1);
    std::vector<double> result;
    for (std::size_t k = 0; k + 1 < breaks.size(); ++k)
        for (int i = 0; i < steps; ++i)
            result.push_back(breaks[k] + (breaks[k + 1] - breaks[k]) * i / steps);
    result.push_back(to);
    return result;
}

bool AcGeNurbCurve3d::isPeriodic(double& period) const {
    period = interval().length();
    return m_isPeriodic;
}

bool AcGeNurbCurve3d::getParamsOfC1Discontinuity(AcGeDoubleArray& parameters,
                                                 const AcGeTol& tolerance) const {
    parameters.setLogicalLength(0);
    for (int i = m_degree + 1; isValid() && i < m_points.length(); ++i) {
        const double knot = m_knots[i];
        if (m_knots.multiplicityAt(knot) < m_degree || (!parameters.isEmpty() && parameters.last() == knot))
            continue;
        const double step = 1e-9 * interval().length();
        if (!firstDerivative(knot - step).isEqualTo(firstDerivative(knot + step), tolerance))
            parameters.append(knot);
    }
    return !parameters.isEmpty();
}

AcGeNurbCurve3d& AcGeNurbCurve3d::insertKnot(double parameter) {
    if (!isValid() || !interval().contains(parameter))
        return *this;
    const int p = m_degree, span = spanOf(parameter);
    AcGePoint3dArray points;
    AcGeDoubleArray weights;
    const auto append = [&](const WeightedPoint& value) {
        points.append(value.point());
        weights.append(value.w);
    };
    const auto at = [&](int i) { return weightedAt(i); };
    for (int i = 0; i <= m_points.length(); ++i) {
        if (i <= span - p) {
            append(at(i));
        } else if (i > span) {
            append(at(i - 1));
        } else {
            const double width = m_knots[i + p] - m_knots[i];
            const double alpha = width > 0.0 ? (parameter - m_knots[i]) / width : 0.0;
            append(i < m_points.length() ? at(i - 1) * (1.0 - alpha) + at(i) * alpha : at(i - 1));
        }
    }
    m_points = std::move(points);
    if (isRational())
        m_weights = std::move(weights);
    m_knots.insert(parameter);
    return *this;
}

void AcGeNurbCurve3d::getDefinitionData(int& degree, bool& rational, bool& periodic, AcGeKnotVector& knots,
                                        AcGePoint3dArray& controlPoints, AcGeDoubleArray& weights) const {
    degree = m_degree;
    rational = isRational();
    periodic = m_isPeriodic;
    knots = m_knots;
    controlPoints = m_points;
    weights = m_weights;
}
