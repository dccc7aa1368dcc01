// The parallel is followed in tracks: one along each smooth part of the curve, one around each outer corner.
// What lies too near to the curve is cut out; what is left is approximated by cubic pieces and joined.
#include "host/ge/nurb_offset.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <optional>

namespace host {

namespace {

struct PlacedDerivative {
    AcGePoint3d point;
    AcGeVector3d derivative;
};

// The parallel of a smooth part of the curve, or an arc around a corner, over the parameters low to high.
class Track {
public:
    Track(const AcGeNurbCurve3d& curve, double low, double high, const AcGeVector3d& up, double distance)
        : m_curve(&curve), m_up(up), m_distance(distance), m_low(low), m_high(high) {}
    // Around a corner: the parameter is the angle from the radius at 0.
    Track(const AcGePoint3d& center, const AcGeVector3d& radius, double angle, const AcGeVector3d& up)
        : m_up(up), m_distance(0.0), m_low(0.0), m_high(std::fabs(angle)), m_center(center), m_radius(radius),
          m_across((up * (angle < 0.0 ? -1.0 : 1.0)).crossProduct(radius)) {}

    double low() const { return m_low; }
    double high() const { return m_high; }

    PlacedDerivative at(double t) const {
        if (m_curve == nullptr)
            return {m_center + m_radius * std::cos(t) + m_across * std::sin(t),
                    m_across * std::cos(t) - m_radius * std::sin(t)};
        // At a corner the derivatives are those within the part.
        const double inside = 1e-9 * (m_high - m_low);
        const double safe = std::clamp(t, m_low + inside, m_high - inside);
        std::array<AcGeVector3d, 2> d;
        const AcGePoint3d onCurve = m_curve->evaluate(safe, 2, d.data());
        const AcGePoint3d point = safe == t ? onCurve : m_curve->evalPoint(t);
        const double speed = d[0].length();
        if (!(speed > 0.0))
            return {point, AcGeVector3d()};
        const AcGeVector3d along = d[0] / speed;
        const AcGeVector3d turning = (d[1] - along * along.dotProduct(d[1])) / speed;
        return {point + along.crossProduct(m_up) * m_distance,
                d[0] + turning.crossProduct(m_up) * m_distance};
    }

private:
    const AcGeNurbCurve3d* m_curve = nullptr;
    AcGeVector3d m_up;
    double m_distance;
    double m_low, m_high;
    AcGePoint3d m_center;
    AcGeVector3d m_radius, m_across;
};

// A part of the parallel that is nowhere too near, in cubic pieces.
struct Run {
    std::vector<std::array<AcGePoint3d, 4>> pieces;
    std::vector<double> widths; // of the pieces' parameters
    const AcGePoint3d& start() const { return pieces.front()[0]; }
    const AcGePoint3d& end() const { return pieces.back()[3]; }
};

class ParallelBuilder {
public:
    ParallelBuilder(const AcGeNurbCurve3d& curve, bool isClosed, const AcGeVector3d& up, double distance)
        : m_curve(curve), m_isClosed(isClosed), m_up(up.normal()), m_distance(distance),
          m_spans(bezierSpans(curve)) {
        for (const BezierSpan& span : m_spans)
            m_boxes.push_back(span.curve.hull());
        double size = std::fabs(distance);
        for (const AcGeBoundBlock3d& box : m_boxes)
            for (unsigned int axis = 0; axis < 3; ++axis)
                size = std::max({size, std::fabs(box.minPoint()[axis]), std::fabs(box.maxPoint()[axis])});
        m_slack = 1e-9 * std::fabs(distance) + 1e-13 * size;
        m_same = 1e-5 * std::fabs(distance) + 1e-11 * size;
    }

    std::vector<AcGeNurbCurve3d> build() {
        for (const Track& track : tracks())
            follow(track);
        return joined();
    }

private:
    // The curve between its corners, and the arcs around those that it turns away from.
    std::vector<Track> tracks() const {
        AcGeDoubleArray corners;
        m_curve.getParamsOfC1Discontinuity(corners);
        std::vector<double> bounds{m_curve.startParam()};
        bounds.insert(bounds.end(), corners.begin(), corners.end());
        bounds.push_back(m_curve.endParam());
        std::vector<Track> result;
        for (std::size_t i = 0; i + 1 < bounds.size(); ++i) {
            result.emplace_back(m_curve, bounds[i], bounds[i + 1], m_up, m_distance);
            const bool isLast = i + 2 == bounds.size();
            if (!isLast || m_isClosed) {
                const double next = isLast ? bounds.front() : bounds[i + 1];
                if (const std::optional<Track> corner = around(bounds[i + 1], next, bounds))
                    result.push_back(*corner);
            }
        }
        return result;
    }

    std::optional<Track> around(double before, double after, const std::vector<double>& bounds) const {
        const double inside = 1e-9 * (bounds.back() - bounds.front());
        const AcGeVector3d in = m_curve.firstDerivative(before - inside).normal();
        const AcGeVector3d out = m_curve.firstDerivative(after + inside).normal();
        const double angle = std::atan2(in.crossProduct(out).dotProduct(m_up), in.dotProduct(out));
        // The outer side of a left turn is the right one.
        if (std::fabs(angle) < 1e-6 || (angle > 0.0) != (m_distance > 0.0))
            return std::nullopt;
        return Track(m_curve.evalPoint(after), in.crossProduct(m_up) * m_distance, angle, m_up);
    }

    double distanceFrom(const AcGePoint3d& point) const {
        double best = std::numeric_limits<double>::infinity();
        for (std::size_t i = 0; i < m_spans.size(); ++i) {
            double least = 0.0;
            for (unsigned int axis = 0; axis < 3; ++axis) {
                const double away = std::max({m_boxes[i].minPoint()[axis] - point[axis],
                                              point[axis] - m_boxes[i].maxPoint()[axis], 0.0});
                least += away * away;
            }
            if (least >= best * best)
                continue;
            const BezierCurve& piece = m_spans[i].curve;
            best = std::min(best, piece.pointAt(piece.closestParameter(point)).distanceTo(point));
        }
        return best;
    }
    bool isFree(const Track& track, double t) const {
        return distanceFrom(track.at(t).point) >= std::fabs(m_distance) - m_slack;
    }
    // The last free place between a free one and one that is not.
    double border(const Track& track, double free, double blocked) const {
        for (int step = 0; step < 50; ++step) {
            const double middle = 0.5 * (free + blocked);
            (isFree(track, middle) ? free : blocked) = middle;
        }
        return free;
    }

    void follow(const Track& track) {
        constexpr int samples = 12; // a span of the curve
        std::vector<double> grid;
        const double low = track.low(), high = track.high();
        std::vector<double> breaks{low};
        for (const BezierSpan& span : m_spans)
            if (span.low > low && span.low < high)
                breaks.push_back(span.low);
        breaks.push_back(high);
        for (std::size_t i = 0; i + 1 < breaks.size(); ++i)
            for (int k = 0; k < samples; ++k)
                grid.push_back(breaks[i] + (breaks[i + 1] - breaks[i]) * k / samples);
        grid.push_back(high);
        double begin = low;
        bool isRunning = false;
        for (std::size_t i = 0; i < grid.size(); ++i) {
            const bool isOpen = isFree(track, grid[i]);
            if (isOpen && !isRunning) {
                begin = i == 0 ? low : border(track, grid[i], grid[i - 1]);
                isRunning = true;
            }
            if (isRunning && (!isOpen || i + 1 == grid.size())) {
                addRun(track, begin, isOpen ? grid[i] : border(track, grid[i - 1], grid[i]), grid);
                isRunning = false;
            }
        }
    }

    void addRun(const Track& track, double from, double to, const std::vector<double>& grid) {
        if (!(to - from > 1e-12 * (track.high() - track.low())))
            return;
        Run run;
        double at = from;
        for (const double next : grid) {
            if (next <= from + 1e-12 * (to - from))
                continue;
            const double end = std::min(next, to);
            if (end > at)
                approximate(track, at, end, 0, run);
            at = end;
        }
        if (run.pieces.empty() || (run.start().distanceTo(run.end()) <= m_same && run.pieces.size() == 1))
            return;
        // A part that follows on the one before goes on with it.
        m_runs.push_back(std::move(run));
    }

    void approximate(const Track& track, double low, double high, int depth, Run& run) const {
        const PlacedDerivative a = track.at(low), b = track.at(high);
        const double width = high - low;
        const std::array<AcGePoint3d, 4> piece = {a.point, a.point + a.derivative * (width / 3.0),
                                                  b.point - b.derivative * (width / 3.0), b.point};
        const BezierCurve cubic({WeightedPoint(piece[0], 1.0), WeightedPoint(piece[1], 1.0),
                                 WeightedPoint(piece[2], 1.0), WeightedPoint(piece[3], 1.0)},
                                false);
        bool isGood = true;
        for (const double part : {0.2, 0.5, 0.8})
            isGood = isGood && cubic.pointAt(part).distanceTo(track.at(low + part * width).point) <=
                                   0.5e-7 * std::fabs(m_distance) + m_slack;
        if (!isGood && depth < 14) {
            approximate(track, low, 0.5 * (low + high), depth + 1, run);
            approximate(track, 0.5 * (low + high), high, depth + 1, run);
            return;
        }
        run.pieces.push_back(piece);
        run.widths.push_back(width);
    }

    // Runs that meet, in a row; each run's end has one follower at most.
    std::vector<AcGeNurbCurve3d> joined() const {
        const std::size_t count = m_runs.size();
        const std::size_t none = count;
        std::vector<std::size_t> next(count, none);
        std::vector<bool> hasBefore(count, false);
        for (std::size_t i = 0; i < count; ++i) {
            double nearest = m_same;
            for (std::size_t k = 1; k <= count; ++k) { // the following ones first
                const std::size_t j = (i + k) % count;
                const double gap = m_runs[i].end().distanceTo(m_runs[j].start());
                if (!hasBefore[j] && gap < nearest && (j != i || m_runs[i].pieces.size() > 2)) {
                    nearest = gap;
                    next[i] = j;
                }
            }
            if (next[i] != none)
                hasBefore[next[i]] = true;
        }
        std::vector<AcGeNurbCurve3d> curves;
        std::vector<bool> isUsed(count, false);
        for (const bool startsOnly : {true, false})
            for (std::size_t i = 0; i < count; ++i) {
                if (isUsed[i] || (startsOnly && hasBefore[i]))
                    continue;
                Run whole;
                for (std::size_t at = i; at != none && !isUsed[at]; at = next[at]) {
                    isUsed[at] = true;
                    append(whole, m_runs[at]);
                }
                curves.push_back(curveOf(whole, !startsOnly));
            }
        return curves;
    }

    static void append(Run& whole, const Run& part) {
        const std::size_t first = whole.pieces.size();
        whole.pieces.insert(whole.pieces.end(), part.pieces.begin(), part.pieces.end());
        whole.widths.insert(whole.widths.end(), part.widths.begin(), part.widths.end());
        if (first > 0)
            whole.pieces[first][0] = whole.pieces[first - 1][3];
    }

    static AcGeNurbCurve3d curveOf(Run& run, bool isClosed) {
        if (isClosed)
            run.pieces.back()[3] = run.pieces.front()[0];
        AcGePoint3dArray points;
        AcGeKnotVector knots;
        double at = 0.0;
        const auto addKnots = [&](int times) {
            for (int i = 0; i < times; ++i)
                knots.append(at);
        };
        points.append(run.start());
        addKnots(4);
        for (std::size_t i = 0; i < run.pieces.size(); ++i) {
            points.append(run.pieces[i][1]);
            points.append(run.pieces[i][2]);
            points.append(run.pieces[i][3]);
            at += run.widths[i];
            addKnots(i + 1 < run.pieces.size() ? 3 : 4);
        }
        return {3, knots, points};
    }

    const AcGeNurbCurve3d& m_curve;
    bool m_isClosed;
    AcGeVector3d m_up;
    double m_distance;
    double m_slack; // of the distance, when it is asked whether a point is free
    double m_same;  // ends this near to each other are one
    std::vector<BezierSpan> m_spans;
    std::vector<AcGeBoundBlock3d> m_boxes;
    std::vector<Run> m_runs;
};

} // namespace

std::vector<AcGeNurbCurve3d> offsetCurves(const AcGeNurbCurve3d& curve, bool isClosed,
                                          const AcGeVector3d& planeNormal, double distance) {
    if (!curve.isValid() || distance == 0.0 || planeNormal.isZeroLength())
        return {};
    return ParallelBuilder(curve, isClosed, planeNormal, distance).build();
}

AcGeVector3d enclosedArea(const AcGeCurve3d& curve) {
    // Gauss and Legendre with five points; exact for polynomials up to a degree of nine.
    constexpr double nodes[] = {0.0, 0.5384693101056831, -0.5384693101056831, 0.9061798459386640,
                                -0.9061798459386640};
    constexpr double weights[] = {0.5688888888888889, 0.4786286704993665, 0.4786286704993665,
                                  0.2369268850561891, 0.2369268850561891};
    const AcGeInterval range = curve.interval();
    const AcGePoint3d start = curve.evalPoint(range.lowerBound());
    const std::vector<double> grid = curve.sampleParameters(range.lowerBound(), range.upperBound());
    AcGeVector3d sum;
    for (std::size_t i = 0; i + 1 < grid.size(); ++i) {
        const double middle = 0.5 * (grid[i] + grid[i + 1]), half = 0.5 * (grid[i + 1] - grid[i]);
        for (int k = 0; k < 5; ++k) {
            AcGeVector3d derivative;
            const AcGePoint3d point = curve.evaluate(middle + nodes[k] * half, 1, &derivative);
            sum += (point - start).crossProduct(derivative) * (weights[k] * half);
        }
    }
    return sum * 0.5;
}

} // namespace host
