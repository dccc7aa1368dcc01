// The search for common points of two curves, the same in the plane and in space.
#include "host/ge/curve_intersection.h"

#include "host/ge/angles.h"
#include "host/ge/line2d.h"
#include "host/ge/line3d.h"

#include <array>

namespace host {

namespace {

// Spans are halved this often at most; then they are shorter than any curve bends.
constexpr int deepest = 14;

AcGe::EntityId straightKind(const AcGeCurve2d&) {
    return AcGe::kLinearEnt2d;
}
AcGe::EntityId straightKind(const AcGeCurve3d&) {
    return AcGe::kLinearEnt3d;
}

// The bounded part of a curve that can meet a block; everything of a bounded curve.
template <class Curve>
AcGeInterval usefulRange(const Curve& curve, const typename Curve::BoundBlock& block) {
    AcGeInterval range = curve.interval();
    if (range.isBounded())
        return range;
    // Only lines and rays are unbounded: every point of the block projects between its corners' projections.
    const typename Curve::Point origin = curve.evalPoint(0.0);
    const typename Curve::Vector along = curve.firstDerivative(0.0);
    const double middle =
        (block.minPoint() + (block.maxPoint() - block.minPoint()) * 0.5 - origin).dotProduct(along) /
        along.lengthSqrd();
    const double reach = (block.maxPoint() - block.minPoint()).length() / along.length() + 1.0;
    const double low = middle - reach, high = middle + reach;
    return {range.isBoundedBelow() ? std::max(low, range.lowerBound()) : low,
            range.isBoundedBelow() ? std::max(high, range.lowerBound()) : high};
}

} // namespace

template <class Curve>
class IntersectionSearch {
public:
    using Point = typename Curve::Point;
    using Vector = typename Curve::Vector;
    using Block = typename Curve::BoundBlock;
    using Result = CurveIntersection<Curve>;

    IntersectionSearch(const Curve& first, const Curve& second, const AcGeTol& tolerance, Result& result)
        : m_first(first), m_second(second), m_tolerance(tolerance.equalPoint()), m_result(result) {}

    void run() {
        AcGeInterval range1 = m_first.interval(), range2 = m_second.interval();
        if (!range1.isBounded() && !range2.isBounded()) {
            // Two unbounded lines: the closest points of both tell.
            const Point onFirst = m_first.closestPointTo(m_second.closestPointTo(m_first.evalPoint(0.0)));
            Block around(onFirst, onFirst);
            const Vector u = m_first.firstDerivative(0.0).normal(),
                         v = m_second.firstDerivative(0.0).normal();
            const double cosine = u.dotProduct(v), sine = 1.0 - cosine * cosine;
            if (sine > 1e-20) {
                const Vector between = m_second.evalPoint(0.0) - m_first.evalPoint(0.0);
                const double t = (between.dotProduct(u) - between.dotProduct(v) * cosine) / sine;
                const Point crossing = m_first.evalPoint(0.0) + u * t;
                around = Block(crossing, crossing);
            }
            around.swell(1.0);
            range1 = usefulRange(m_first, around);
            range2 = usefulRange(m_second, around);
        } else if (!range1.isBounded()) {
            range1 = usefulRange(m_first, m_second.orthoBoundBlock());
        } else if (!range2.isBounded()) {
            range2 = usefulRange(m_second, m_first.orthoBoundBlock());
        }
        m_range1 = range1;
        m_range2 = range2;
        m_isStraight = m_first.isKindOf(straightKind(m_first)) && m_second.isKindOf(straightKind(m_second));
        findOverlaps();
        const std::vector<double> grid1 = m_first.sampleParameters(range1.lowerBound(), range1.upperBound());
        const std::vector<double> grid2 = m_second.sampleParameters(range2.lowerBound(), range2.upperBound());
        for (std::size_t i = 0; i + 1 < grid1.size(); ++i)
            for (std::size_t j = 0; j + 1 < grid2.size(); ++j)
                search(grid1[i], grid1[i + 1], grid2[j], grid2[j + 1], 0);
        for (const double end : {range1.lowerBound(), range1.upperBound()})
            consider(end, m_second.closestParameter(m_first.evalPoint(end)));
        for (const double end : {range2.lowerBound(), range2.upperBound()})
            consider(m_first.closestParameter(m_second.evalPoint(end)), end);
        m_result.orderWrt1();
    }

private:
    struct Span {
        Block block;
        double bend; // of the middle away from the chord
        double chord;
    };

    Span spanOf(const Curve& curve, double low, double high) const {
        const Point start = curve.evalPoint(low), end = curve.evalPoint(high);
        const Point middle = curve.evalPoint(0.5 * (low + high));
        Span span{Block(start, end), middle.distanceTo(start + (end - start) * 0.5), start.distanceTo(end)};
        span.block.extend(middle);
        span.block.swell(span.bend + m_tolerance);
        return span;
    }

    bool isInOverlap(double first) const {
        return std::any_of(m_result.m_overlaps.begin(), m_result.m_overlaps.end(),
                           [&](const auto& overlap) { return overlap.first.contains(first); });
    }

    void search(double low1, double high1, double low2, double high2, int depth) {
        const Span a = spanOf(m_first, low1, high1), b = spanOf(m_second, low2, high2);
        if (a.block.isDisjoint(b.block) || (isInOverlap(low1) && isInOverlap(high1)))
            return;
        const double middle1 = 0.5 * (low1 + high1), middle2 = 0.5 * (low2 + high2);
        const bool nearlyStraight = a.bend <= 1e-3 * a.chord && b.bend <= 1e-3 * b.chord;
        if (m_isStraight || depth >= deepest || (nearlyStraight && crossFairly(middle1, middle2))) {
            refine(middle1, middle2);
            return;
        }
        search(low1, middle1, low2, middle2, depth + 1);
        search(low1, middle1, middle2, high2, depth + 1);
        search(middle1, high1, low2, middle2, depth + 1);
        search(middle1, high1, middle2, high2, depth + 1);
    }

    bool crossFairly(double first, double second) const {
        const double angle = m_first.firstDerivative(first).angleTo(m_second.firstDerivative(second));
        return std::min(angle, pi - angle) > 0.05;
    }

    // Newton's method for the smallest distance of the two points.
    void refine(double s, double t) {
        for (int step = 0; step < 60; ++step) {
            std::array<Vector, 2> a, b;
            const Point p = m_first.evaluate(s, 2, a.data()), q = m_second.evaluate(t, 2, b.data());
            const Vector gap = p - q;
            const double gs = gap.dotProduct(a[0]), gt = -gap.dotProduct(b[0]);
            double ss = a[0].lengthSqrd() + gap.dotProduct(a[1]),
                   tt = b[0].lengthSqrd() - gap.dotProduct(b[1]);
            const double st = -a[0].dotProduct(b[0]);
            if (!(ss > 0.0 && tt > 0.0 && ss * tt > st * st)) {
                ss = a[0].lengthSqrd() * (1.0 + 1e-9);
                tt = b[0].lengthSqrd() * (1.0 + 1e-9);
            }
            const double det = ss * tt - st * st;
            if (!(det > 0.0))
                break;
            const double nextS = m_range1.clamp(s - (gs * tt - gt * st) / det);
            const double nextT = m_range2.clamp(t - (gt * ss - gs * st) / det);
            const double moved = std::fabs(nextS - s) * std::sqrt(ss) + std::fabs(nextT - t) * std::sqrt(tt);
            s = nextS;
            t = nextT;
            if (moved <= 1e-3 * m_tolerance)
                break;
        }
        consider(s, t);
    }

    void consider(double s, double t) {
        const Point p = m_first.evalPoint(s);
        if (p.distanceTo(m_second.evalPoint(t)) > m_tolerance || isInOverlap(s))
            return;
        // Where curves only touch, the place is known no better than the root of the tolerance.
        const double same =
            std::max(2.0 * m_tolerance, crossFairly(s, t) ? 0.0 : 10.0 * std::sqrt(m_tolerance));
        for (const auto& known : m_result.m_points)
            if (known.point.distanceTo(p) <= same)
                return;
        m_result.m_points.push_back({s, t, p});
    }

    // Common stretches begin and end at ends of either curve; between neighbouring ends the middle decides.
    void findOverlaps() {
        std::vector<double> ends;
        for (const double end : {m_range1.lowerBound(), m_range1.upperBound()})
            if (m_second.distanceTo(m_first.evalPoint(end)) <= m_tolerance)
                ends.push_back(end);
        for (const double end : {m_range2.lowerBound(), m_range2.upperBound()}) {
            double parameter = 0.0;
            const Point point = m_second.evalPoint(end);
            if (m_first.closestPointTo(point, parameter).distanceTo(point) <= m_tolerance)
                ends.push_back(parameter);
        }
        std::sort(ends.begin(), ends.end());
        for (std::size_t i = 0; i + 1 < ends.size(); ++i) {
            const double low = ends[i], width = ends[i + 1] - low;
            bool isCommon =
                m_first.evalPoint(low).distanceTo(m_first.evalPoint(low + 0.5 * width)) > 2.0 * m_tolerance;
            for (const double part : {0.13, 0.37, 0.5, 0.71, 0.93})
                isCommon =
                    isCommon && m_second.distanceTo(m_first.evalPoint(low + part * width)) <= m_tolerance;
            if (!isCommon)
                continue;
            const double from = m_second.closestParameter(m_first.evalPoint(low));
            const double to = m_second.closestParameter(m_first.evalPoint(low + width));
            m_result.m_overlaps.push_back({AcGeInterval(low, low + width, 1e-9 * width),
                                           AcGeInterval(std::min(from, to), std::max(from, to))});
        }
    }

    const Curve& m_first;
    const Curve& m_second;
    double m_tolerance;
    Result& m_result;
    AcGeInterval m_range1, m_range2;
    bool m_isStraight = false;
};

template <class Curve>
void CurveIntersection<Curve>::set(const Curve& first, const Curve& second, const AcGeTol& tolerance) {
    m_points.clear();
    m_overlaps.clear();
    IntersectionSearch<Curve>(first, second, tolerance, *this).run();
}

template <class Curve>
bool CurveIntersection<Curve>::overlapRange(int index, AcGeInterval& firstRange,
                                            AcGeInterval& secondRange) const {
    if (index < 0 || index >= overlapCount())
        return false;
    firstRange = m_overlaps[static_cast<std::size_t>(index)].first;
    secondRange = m_overlaps[static_cast<std::size_t>(index)].second;
    return true;
}

template <class Curve>
CurveIntersection<Curve>& CurveIntersection<Curve>::orderWrt1() {
    std::sort(m_points.begin(), m_points.end(),
              [](const Common& a, const Common& b) { return a.first < b.first; });
    return *this;
}

template <class Curve>
CurveIntersection<Curve>& CurveIntersection<Curve>::orderWrt2() {
    std::sort(m_points.begin(), m_points.end(),
              [](const Common& a, const Common& b) { return a.second < b.second; });
    return *this;
}

template class CurveIntersection<AcGeCurve2d>;
template class CurveIntersection<AcGeCurve3d>;

} // namespace host
