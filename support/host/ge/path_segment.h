// One segment of a polyline: a straight line, or a circular arc given by its bulge (the tangent of a quarter
// of the swept angle, positive counterclockwise). All computations are made from the chord, never from a far
// centre, so that bulges close to zero and very large ones keep full precision.
#pragma once

#include "host/ge/angles.h"
#include "host/ge/box2d.h"

#include <array>
#include <optional>

namespace host {

class PathSegment {
public:
    enum class Kind { Point, Line, Arc };

    constexpr PathSegment() = default;
    constexpr PathSegment(const AcGePoint2d& startPoint, const AcGePoint2d& endPoint, double bulgeValue = 0.0)
        : start(startPoint), end(endPoint), bulge(bulgeValue) {}

    // A segment with equal ends is a point whatever its bulge; a bulge too small to leave the chord by more
    // than rounding is a line.
    Kind kind() const;
    bool isArc() const { return kind() == Kind::Arc; }

    double length() const;
    // The signed swept angle, in (-2 pi, 2 pi); 0 for a line.
    double sweep() const { return isArc() ? 4.0 * std::atan(bulge) : 0.0; }
    // Only for arcs.
    double radius() const;
    AcGePoint2d center() const;

    // The point at a fraction of the length (for an arc also of the angle); outside [0, 1] the segment is
    // continued along its line or circle.
    AcGePoint2d pointAt(double fraction) const;
    // First and second derivative with respect to the fraction.
    AcGeVector2d firstDerivative(double fraction) const;
    AcGeVector2d secondDerivative(double fraction) const;
    // Unit direction; the X axis for a point.
    AcGeVector2d tangent(double fraction) const;

    // Fraction of the closest point, in [0, 1].
    double closestFraction(const AcGePoint2d& point) const;
    double distanceTo(const AcGePoint2d& point) const {
        return pointAt(closestFraction(point)).distanceTo(point);
    }
    // Fraction of the closest point of the continued line or circle; an arc's angle counts from its middle,
    // half a turn to either side.
    double unboundedFraction(const AcGePoint2d& point) const;

    // Twice signed area between the chord and the arc has the sign of the bulge.
    double areaBeyondChord() const;
    // Whether the point lies strictly between chord and arc.
    bool isBeyondChord(const AcGePoint2d& point) const;

    Box2d extents() const;
    PathSegment reversed() const { return {end, start, -bulge}; }
    // The part between two fractions, which may lie outside [0, 1].
    PathSegment part(double from, double to) const;
    // The parallel segment at a distance to the right (left when negative), with the same swept angle.
    // Nothing when an arc's radius would vanish or turn over.
    std::optional<PathSegment> parallel(double distance) const;

    AcGePoint2d start;
    AcGePoint2d end;
    double bulge = 0.0;
};

// An arc's bulge from its signed swept angle.
inline double bulgeOfSweep(double sweep) {
    return std::tan(sweep / 4.0);
}

struct SegmentIntersection {
    double firstFraction;
    double secondFraction;
    AcGePoint2d point;
};

// At most two crossings; where the segments overlap, the ends of the common parts (an arc may share two).
struct SegmentIntersections {
    std::array<SegmentIntersection, 6> items;
    int count = 0;
    bool overlap = false; // the segments share a stretch longer than the tolerance

    const SegmentIntersection* begin() const { return items.data(); }
    const SegmentIntersection* end() const { return items.data() + count; }
    bool empty() const { return count == 0; }
};

// Points common to both segments within the tolerance (a distance): crossings, tangency, ends that touch.
SegmentIntersections intersect(const PathSegment& first, const PathSegment& second, double tolerance = 1e-10);

// Intersections of the continued lines and circles, ends not regarded; up to two points.
struct CarrierIntersections {
    std::array<AcGePoint2d, 2> points;
    int count = 0;
};
CarrierIntersections intersectCarriers(const PathSegment& first, const PathSegment& second);

} // namespace host
