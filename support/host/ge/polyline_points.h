// Inside of the polylines of the plane and of space: straight chords between points, in any dimension.
#pragma once

#include "host/ge/acarray.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

namespace host::polyline {

template <class Point, class Vector>
Point evaluate(const AcArray<Point>& points, double parameter, int derivativeCount, Vector* derivatives) {
    std::fill_n(derivatives, derivativeCount, Vector());
    const int last = points.length() - 1;
    if (last < 1)
        return last < 0 ? Point() : points[0];
    const int index = static_cast<int>(std::clamp(std::floor(parameter), 0.0, static_cast<double>(last - 1)));
    const Vector chord = points[index + 1] - points[index];
    if (derivativeCount > 0)
        derivatives[0] = chord;
    const double fraction = parameter - index;
    return fraction == 1.0 ? points[index + 1] : points[index] + chord * fraction;
}

template <class Point>
double closestParameter(const AcArray<Point>& points, const Point& point) {
    double best = 0.0, bestSquared = std::numeric_limits<double>::infinity();
    for (int i = 0; i + 1 < points.length(); ++i) {
        const auto chord = points[i + 1] - points[i];
        const double size = chord.lengthSqrd();
        const double fraction =
            size > 0.0 ? std::clamp((point - points[i]).dotProduct(chord) / size, 0.0, 1.0) : 0.0;
        const double squared = (points[i] + chord * fraction).distanceSqrdTo(point);
        if (squared < bestSquared) {
            bestSquared = squared;
            best = i + fraction;
        }
    }
    return best;
}

// Both bounds and the vertices between them.
inline std::vector<double> vertexParameters(double from, double to) {
    std::vector<double> result{from};
    for (double vertex = std::floor(from) + 1.0; vertex < to; vertex += 1.0)
        result.push_back(vertex);
    result.push_back(to);
    return result;
}

template <class Curve>
double length(const Curve& curve, double from, double to) {
    const std::vector<double> grid = vertexParameters(std::min(from, to), std::max(from, to));
    double sum = 0.0;
    for (std::size_t i = 0; i + 1 < grid.size(); ++i)
        sum += curve.evalPoint(grid[i]).distanceTo(curve.evalPoint(grid[i + 1]));
    return sum;
}

template <class Point, class Curve>
AcArray<Point> part(const Curve& curve, double from, double to) {
    AcArray<Point> points;
    for (const double parameter : vertexParameters(from, to))
        points.append(curve.evalPoint(parameter));
    return points;
}

} // namespace host::polyline
