// What curves of the plane and of space have in common: evaluation, closest points, length, splitting,
// bounds, by numerical methods where a curve does not know better. A curve's parameters run over its
// interval.
#pragma once

#include "host/ge/arrays.h"
#include "host/ge/boundblock.h"
#include "host/ge/interval.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <memory>
#include <vector>

namespace host {

// Traits names the types of a dimension: Entity, Curve, Point, Vector, PointArray, VectorArray, BoundBlock
// and the number of coordinates, dimension.
template <class Traits>
class CurveBase : public Traits::Entity {
public:
    using Curve = typename Traits::Curve;
    using Point = typename Traits::Point;
    using Vector = typename Traits::Vector;
    using PointArray = typename Traits::PointArray;
    using VectorArray = typename Traits::VectorArray;
    using BoundBlock = typename Traits::BoundBlock;

    virtual void getInterval(AcGeInterval& interval) const = 0;
    void getInterval(AcGeInterval& interval, Point& start, Point& end) const {
        getInterval(interval);
        if (interval.isBoundedBelow())
            start = evalPoint(interval.lowerBound());
        if (interval.isBoundedAbove())
            end = evalPoint(interval.upperBound());
    }
    AcGeInterval interval() const {
        AcGeInterval result;
        getInterval(result);
        return result;
    }
    // Limits the curve to a part of itself; false, and unchanged, when the curve can't be limited so.
    virtual bool setInterval(const AcGeInterval&) { return false; }
    // Turns the direction; the interval keeps its bounds where they are not angles.
    virtual Curve& reverseParam() = 0;

    // The point at a parameter, and as many derivatives (with respect to the parameter) as asked for.
    virtual Point evaluate(double parameter, int derivativeCount, Vector* derivatives) const = 0;
    Point evalPoint(double parameter) const { return evaluate(parameter, 0, nullptr); }
    Point evalPoint(double parameter, int derivativeCount, VectorArray& derivatives) const {
        derivatives.setLogicalLength(std::max(derivativeCount, 0));
        return evaluate(parameter, derivatives.length(), derivatives.asArrayPtr());
    }
    Vector firstDerivative(double parameter) const {
        Vector result;
        evaluate(parameter, 1, &result);
        return result;
    }

    // The parameter, within the interval, of the point closest to the given one.
    virtual double closestParameter(const Point& point) const {
        const AcGeInterval range = interval();
        return closestWithin(point, range.lowerBound(), range.upperBound());
    }
    Point closestPointTo(const Point& point, const AcGeTol& = AcGeContext::gTol) const {
        return evalPoint(closestParameter(point));
    }
    Point closestPointTo(const Point& point, double& parameter, const AcGeTol& = AcGeContext::gTol) const {
        parameter = closestParameter(point);
        return evalPoint(parameter);
    }
    double distanceTo(const Point& point, const AcGeTol& = AcGeContext::gTol) const {
        return closestPointTo(point).distanceTo(point);
    }
    double paramOf(const Point& point, const AcGeTol& = AcGeContext::gTol) const {
        return closestParameter(point);
    }
    bool isOn(const Point& point, const AcGeTol& tolerance = AcGeContext::gTol) const override {
        return distanceTo(point) <= tolerance.equalPoint();
    }
    bool isOn(const Point& point, double& parameter, const AcGeTol& tolerance = AcGeContext::gTol) const {
        return closestPointTo(point, parameter).distanceTo(point) <= tolerance.equalPoint();
    }
    bool isOn(double parameter, const AcGeTol& = AcGeContext::gTol) const {
        return interval().contains(parameter);
    }

    bool hasStartPoint(Point& point) const {
        const AcGeInterval range = interval();
        if (range.isBoundedBelow())
            point = evalPoint(range.lowerBound());
        return range.isBoundedBelow();
    }
    bool hasEndPoint(Point& point) const {
        const AcGeInterval range = interval();
        if (range.isBoundedAbove())
            point = evalPoint(range.upperBound());
        return range.isBoundedAbove();
    }
    virtual bool isClosed(const AcGeTol& tolerance = AcGeContext::gTol) const {
        Point start, end;
        return hasStartPoint(start) && hasEndPoint(end) && start.isEqualTo(end, tolerance);
    }
    virtual bool isPeriodic(double&) const { return false; }

    // The length between two parameters, never negative.
    virtual double length(double from, double to, double tolerance = 1e-10) const {
        return integratedLength(std::min(from, to), std::max(from, to), tolerance, 0);
    }
    // The parameter at a distance along the curve from the datum, forward or backward; an end of the interval
    // when the curve is not long enough.
    virtual double paramAtLength(double datum, double distance, bool forward = true,
                                 double tolerance = 1e-10) const {
        const AcGeInterval range = interval();
        const double end = forward ? range.upperBound() : range.lowerBound();
        // The span between samples that the place is in, then Newton's method within it.
        const std::vector<double> grid = sampleParameters(std::min(datum, end), std::max(datum, end));
        double rest = distance;
        for (std::size_t i = 0; i + 1 < grid.size(); ++i) {
            const std::size_t at = forward ? i : grid.size() - 1 - i;
            const double from = grid[at], to = grid[forward ? at + 1 : at - 1];
            const double whole = length(from, to, tolerance);
            if (whole > rest)
                return placeWithin(from, to, rest, tolerance);
            rest -= whole;
        }
        return end;
    }

    // Two new curves, owned by the caller; null where the parameter leaves nothing, or where the curve can't
    // be split.
    void getSplitCurves(double parameter, Curve*& first, Curve*& second) const {
        const AcGeInterval range = interval();
        const auto part = [&](bool hasPart, const AcGeInterval& limits) -> Curve* {
            if (!hasPart)
                return nullptr;
            std::unique_ptr<Curve> piece(static_cast<Curve*>(this->copy()));
            return piece->setInterval(limits) ? piece.release() : nullptr;
        };
        AcGeInterval before(range), after(range);
        before.setUpper(parameter);
        after.setLower(parameter);
        first = part(!range.isBoundedBelow() || parameter > range.lowerBound(), before);
        second = part(!range.isBoundedAbove() || parameter < range.upperBound(), after);
    }

    // The axis-parallel box of the curve, or of a part of it. Not for unbounded curves.
    BoundBlock orthoBoundBlock() const { return orthoBoundBlock(interval()); }
    virtual BoundBlock orthoBoundBlock(const AcGeInterval& range) const {
        BoundBlock block;
        block.extend(evalPoint(range.lowerBound()));
        block.extend(evalPoint(range.upperBound()));
        const std::vector<double> grid = sampleParameters(range.lowerBound(), range.upperBound());
        for (std::size_t i = 0; i + 1 < grid.size(); ++i)
            for (unsigned int axis = 0; axis < Traits::dimension; ++axis)
                extendToTurn(block, grid[i], grid[i + 1], axis);
        return block;
    }
    BoundBlock boundBlock() const { return orthoBoundBlock(); }
    BoundBlock boundBlock(const AcGeInterval& range) const { return orthoBoundBlock(range); }

    // Points at even steps of the parameter, ends included.
    void getSamplePoints(int count, PointArray& points) const {
        const AcGeInterval range = interval();
        points.setLogicalLength(0);
        for (int i = 0; i < count; ++i)
            points.append(
                evalPoint(range.lowerBound() + (count > 1 ? range.length() * i / (count - 1) : 0.0)));
    }
    // Points whose chords stay within a distance of the curve.
    void getSamplePoints(const AcGeInterval& range, double approximation, PointArray& points,
                         AcGeDoubleArray& parameters) const {
        points.setLogicalLength(0);
        parameters.setLogicalLength(0);
        const std::vector<double> grid = sampleParameters(range.lowerBound(), range.upperBound());
        for (std::size_t i = 0; i + 1 < grid.size(); ++i)
            appendSamples(grid[i], grid[i + 1], approximation, 0, points, parameters);
        parameters.append(range.upperBound());
        points.append(evalPoint(range.upperBound()));
    }

    // Parameters between which the curve is smooth and turns little: where searches start from.
    virtual std::vector<double> sampleParameters(double from, double to) const {
        std::vector<double> result;
        for (int i = 0; i <= 16; ++i)
            result.push_back(from + (to - from) * i / 16.0);
        return result;
    }

protected:
    // Global search on the samples, then Newton's method on the foot of the perpendicular.
    double closestWithin(const Point& point, double from, double to) const {
        const std::vector<double> grid = sampleParameters(from, to);
        double best = from, bestSquared = evalPoint(from).distanceSqrdTo(point);
        const auto consider = [&](double parameter) {
            const double squared = evalPoint(parameter).distanceSqrdTo(point);
            if (squared < bestSquared) {
                best = parameter;
                bestSquared = squared;
            }
        };
        for (std::size_t i = 0; i + 1 < grid.size(); ++i) {
            consider(refinedFoot(point, grid[i], grid[i + 1]));
            consider(grid[i + 1]);
        }
        return best;
    }

private:
    // The parameter between two at a length from the first; the whole length is more.
    double placeWithin(double from, double to, double distance, double tolerance) const {
        double low = from, high = to, t = from;
        double reached = 0.0; // length from `from` to t
        for (int step = 0; step < 80; ++step) {
            const double rest = distance - reached;
            (rest >= 0.0 ? low : high) = t;
            const double speed = firstDerivative(t).length();
            double next =
                speed > 0.0 ? t + std::copysign(rest / speed, (to - from) * rest) : 0.5 * (low + high);
            if (!((next - low) * (high - next) >= 0.0))
                next = 0.5 * (low + high);
            if (std::fabs(next - t) <= 1e-15 * (1.0 + std::fabs(t)))
                return next;
            reached +=
                (next - t) * (to - from) > 0.0 ? length(t, next, tolerance) : -length(t, next, tolerance);
            t = next;
        }
        return t;
    }

    double refinedFoot(const Point& point, double low, double high) const {
        double t = 0.5 * (low + high);
        for (int step = 0; step < 30; ++step) {
            std::array<Vector, 2> derivatives;
            const Vector arm = evaluate(t, 2, derivatives.data()) - point;
            const double f = arm.dotProduct(derivatives[0]);
            double slope = derivatives[0].lengthSqrd() + arm.dotProduct(derivatives[1]);
            if (!(slope > 0.0))
                slope = derivatives[0].lengthSqrd();
            if (!(slope > 0.0))
                break;
            const double next = std::clamp(t - f / slope, low, high);
            if (std::fabs(next - t) <= 1e-15 * (1.0 + std::fabs(t)))
                return next;
            t = next;
        }
        return t;
    }

    // Gauss and Legendre with five points, halved until both halves agree with the whole.
    double integratedLength(double from, double to, double tolerance, int depth) const {
        if (depth == 0) {
            const std::vector<double> grid = sampleParameters(from, to);
            double sum = 0.0;
            for (std::size_t i = 0; i + 1 < grid.size(); ++i)
                sum += refinedLength(grid[i], grid[i + 1], gaussLength(grid[i], grid[i + 1]),
                                     tolerance / static_cast<double>(grid.size()), 1);
            return sum;
        }
        return refinedLength(from, to, gaussLength(from, to), tolerance, depth);
    }
    double refinedLength(double from, double to, double whole, double tolerance, int depth,
                         double differenceBefore = HUGE_VAL) const {
        const double middle = 0.5 * (from + to);
        const double left = gaussLength(from, middle), right = gaussLength(middle, to);
        const double difference = std::fabs(left + right - whole);
        // Rounding does not shrink as fast with the width as even the error at a cusp.
        const bool isRounding = depth > 3 && difference > 0.35 * differenceBefore;
        if (!(difference > std::max(tolerance, 1e-15 * whole)) || isRounding || depth > 30)
            return left + right;
        return refinedLength(from, middle, left, 0.5 * tolerance, depth + 1, difference) +
               refinedLength(middle, to, right, 0.5 * tolerance, depth + 1, difference);
    }
    double gaussLength(double from, double to) const {
        constexpr double nodes[] = {0.0, 0.5384693101056831, 0.9061798459386640};
        constexpr double weights[] = {0.5688888888888889, 0.4786286704993665, 0.2369268850561891};
        const double middle = 0.5 * (from + to), half = 0.5 * (to - from);
        double sum = weights[0] * firstDerivative(middle).length();
        for (int i = 1; i < 3; ++i)
            sum += weights[i] * (firstDerivative(middle - nodes[i] * half).length() +
                                 firstDerivative(middle + nodes[i] * half).length());
        return sum * half;
    }

    void extendToTurn(BoundBlock& block, double low, double high, unsigned int axis) const {
        const auto slope = [&](double t) { return firstDerivative(t)[axis]; };
        block.extend(evalPoint(high));
        const bool falling = slope(low) < 0.0;
        if (falling == (slope(high) < 0.0))
            return;
        for (int step = 0; step < 60; ++step) {
            const double middle = 0.5 * (low + high);
            ((slope(middle) < 0.0) == falling ? low : high) = middle;
        }
        block.extend(evalPoint(low));
    }

    void appendSamples(double from, double to, double approximation, int depth, PointArray& points,
                       AcGeDoubleArray& parameters) const {
        const double middle = 0.5 * (from + to);
        const Point start = evalPoint(from), end = evalPoint(to);
        const auto deviation = [&](double fraction) {
            const Point chord = start + (end - start) * fraction;
            return evalPoint(from + (to - from) * fraction).distanceTo(chord);
        };
        if (depth < 20 && std::max({deviation(0.25), deviation(0.5), deviation(0.75)}) > approximation) {
            appendSamples(from, middle, approximation, depth + 1, points, parameters);
            appendSamples(middle, to, approximation, depth + 1, points, parameters);
            return;
        }
        points.append(start);
        parameters.append(from);
    }
};

} // namespace host
