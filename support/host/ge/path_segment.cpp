// Segment computations in the chord's own frame: u along the chord, v to its left, the origin in its middle.
#include "host/ge/path_segment.h"

namespace host {

namespace {

// Below this bulge the arc's rise is under the rounding of the chord's own coordinates.
constexpr double straightBulge = 1e-14;

AcGeVector2d rotated(const AcGeVector2d& vector, double angle) {
    const double c = std::cos(angle), s = std::sin(angle);
    return {vector.x * c - vector.y * s, vector.x * s + vector.y * c};
}

struct ChordFrame {
    AcGePoint2d middle;
    AcGeVector2d u;
    double chord;

    explicit ChordFrame(const PathSegment& segment)
        : middle(segment.start + (segment.end - segment.start) * 0.5), u(segment.end - segment.start),
          chord(u.length()) {
        u /= chord;
    }
    double along(const AcGePoint2d& point) const { return (point - middle).dotProduct(u); }
    double left(const AcGePoint2d& point) const { return u.crossProduct(point - middle); }
};

// The curve a |q|^2 + g.q + e = 0 that carries a segment, scaled so that its gradient has unit length on the
// curve: a is half the curvature and vanishes for a line. Coordinates are relative to a nearby origin.
struct Carrier {
    double a;
    AcGeVector2d g;
    double e;

    Carrier(const PathSegment& segment, const AcGePoint2d& origin) {
        const ChordFrame frame(segment);
        const AcGeVector2d m = frame.middle - origin, v = frame.u.perpVector();
        if (!segment.isArc()) {
            a = 0.0;
            g = -v;
            e = m.dotProduct(v);
            return;
        }
        const double b = segment.bulge, scale = 1.0 / (1.0 + b * b);
        const double side = (1.0 - b * b) * scale;
        a = 2.0 * b * scale / frame.chord;
        g = m * (-2.0 * a) - v * side;
        e = a * (m.lengthSqrd() - 0.25 * frame.chord * frame.chord) + side * m.dotProduct(v);
    }
    double value(const AcGeVector2d& q) const { return a * q.lengthSqrd() + g.dotProduct(q) + e; }
    // False when the point is certainly further from the curve than the tolerance: the value is the distance
    // times one plus half its ratio to the radius.
    bool mayCarry(const AcGeVector2d& q, double tolerance) const {
        return std::fabs(value(q)) <= 2.0 * tolerance * (1.0 + std::fabs(a) * tolerance) + 1e-12 * q.length();
    }
    AcGeVector2d gradient(const AcGeVector2d& q) const { return q * (2.0 * a) + g; }
};

// Newton steps toward the common zero of both carriers, where they cross at a fair angle.
AcGeVector2d polished(const Carrier& first, const Carrier& second, AcGeVector2d q) {
    for (int step = 0; step < 2; ++step) {
        const AcGeVector2d g1 = first.gradient(q), g2 = second.gradient(q);
        const double det = g1.crossProduct(g2);
        if (std::fabs(det) < 1e-7)
            break;
        const double f1 = first.value(q), f2 = second.value(q);
        q -= AcGeVector2d(f1 * g2.y - f2 * g1.y, g1.x * f2 - g2.x * f1) / det;
    }
    return q;
}

// On the shorter segment: seen from far away a small circle would lose its digits.
AcGePoint2d nearbyOrigin(const PathSegment& first, const PathSegment& second) {
    return first.length() <= second.length() ? first.start : second.start;
}

struct Candidates {
    std::array<AcGeVector2d, 2> points;
    int count = 0;
    bool isTangent = false; // no real crossing: the one point is where the carriers come closest
};

Candidates carrierCandidates(Carrier first, Carrier second) {
    Candidates result;
    if (std::fabs(first.a) < std::fabs(second.a))
        std::swap(first, second);
    // The line through the common points: the combination of both that has no quadratic part.
    const double ratio = first.a == 0.0 ? 0.0 : second.a / first.a;
    const AcGeVector2d g = second.g - first.g * ratio;
    const double e = second.e - first.e * ratio;
    const double size = g.length();
    if (!(size > 1e-14))
        return result; // concentric, or the same
    const AcGeVector2d foot = g * (-e / (size * size)), along = g.perpVector() / size;
    const double a = first.a;
    const double b = first.gradient(foot).dotProduct(along);
    const double c = first.value(foot);
    const auto add = [&](double t) {
        if (std::isfinite(t))
            result.points[static_cast<std::size_t>(result.count++)] =
                polished(first, second, foot + along * t);
    };
    if (a == 0.0) {
        if (std::fabs(b) > 1e-15)
            add(-c / b);
        return result;
    }
    const double discriminant = b * b - 4.0 * a * c;
    if (discriminant <= 0.0) {
        result.isTangent = true;
        const double t = -b / (2.0 * a);
        if (std::isfinite(t))
            result.points[static_cast<std::size_t>(result.count++)] = foot + along * t;
        return result;
    }
    const double q = -0.5 * (b + std::copysign(std::sqrt(discriminant), b));
    add(q / a);
    add(c / q);
    return result;
}

} // namespace

PathSegment::Kind PathSegment::kind() const {
    if (start.x == end.x && start.y == end.y)
        return Kind::Point;
    return std::fabs(bulge) > straightBulge && std::isfinite(bulge) ? Kind::Arc : Kind::Line;
}

double PathSegment::length() const {
    const double chord = start.distanceTo(end);
    return isArc() ? chord * (1.0 + bulge * bulge) * (std::atan(bulge) / bulge) : chord;
}

double PathSegment::radius() const {
    return start.distanceTo(end) * (1.0 + bulge * bulge) / (4.0 * std::fabs(bulge));
}

AcGePoint2d PathSegment::center() const {
    const AcGeVector2d chord = end - start;
    return start + chord * 0.5 + chord.perpVector() * ((1.0 - bulge * bulge) / (4.0 * bulge));
}

AcGePoint2d PathSegment::pointAt(double fraction) const {
    const AcGeVector2d chord = end - start;
    if (fraction == 0.0)
        return start;
    if (fraction == 1.0)
        return end;
    if (!isArc())
        return start + chord * fraction;
    // The chord from the start to the point has length 2 r sin(f h) and lies (1 - f) h before the whole
    // chord.
    const double half = 2.0 * std::atan(bulge);
    const double ratio = std::sin(fraction * half) * (1.0 + bulge * bulge) / (2.0 * bulge);
    return start + rotated(chord, (fraction - 1.0) * half) * ratio;
}

AcGeVector2d PathSegment::tangent(double fraction) const {
    const AcGeVector2d chord = end - start;
    switch (kind()) {
    case Kind::Point:
        return AcGeVector2d::kXAxis;
    case Kind::Line:
        return chord / chord.length();
    case Kind::Arc:
        break;
    }
    return rotated(chord / chord.length(), (2.0 * fraction - 1.0) * 2.0 * std::atan(bulge));
}

AcGeVector2d PathSegment::firstDerivative(double fraction) const {
    return isArc() ? tangent(fraction) * length() : end - start;
}

AcGeVector2d PathSegment::secondDerivative(double fraction) const {
    if (!isArc())
        return {};
    return tangent(fraction).perpVector() * (length() * 4.0 * std::atan(bulge));
}

double PathSegment::unboundedFraction(const AcGePoint2d& point) const {
    if (kind() == Kind::Point)
        return 0.0;
    const ChordFrame frame(*this);
    const double x = frame.along(point);
    if (!isArc())
        return 0.5 + x / frame.chord;
    const double toCenter = frame.chord * (1.0 - bulge * bulge) / (4.0 * bulge);
    const double depth = toCenter - frame.left(point);
    const double fromMiddle = std::atan2(x, bulge > 0.0 ? depth : -depth);
    return 0.5 + fromMiddle / (4.0 * std::fabs(std::atan(bulge)));
}

double PathSegment::closestFraction(const AcGePoint2d& point) const {
    const double fraction = unboundedFraction(point);
    if (fraction >= 0.0 && fraction <= 1.0)
        return fraction;
    if (!isArc())
        return fraction < 0.0 ? 0.0 : 1.0;
    return point.distanceSqrdTo(start) <= point.distanceSqrdTo(end) ? 0.0 : 1.0;
}

double PathSegment::areaBeyondChord() const {
    if (!isArc())
        return 0.0;
    const double angle = 4.0 * std::atan(std::fabs(bulge));
    const double squared = angle * angle;
    const double difference =
        angle < 0.05
            ? angle * squared / 6.0 * (1.0 - squared / 20.0 * (1.0 - squared / 42.0 * (1.0 - squared / 72.0)))
            : angle - std::sin(angle);
    const double r = radius();
    return std::copysign(0.5 * r * r * difference, bulge);
}

bool PathSegment::isBeyondChord(const AcGePoint2d& point) const {
    if (!isArc())
        return false;
    const ChordFrame frame(*this);
    const double y = frame.left(point);
    if (y * bulge >= 0.0)
        return false;
    const double h = 0.5 * frame.chord, x = frame.along(point);
    return bulge * (bulge * (x * x + y * y - h * h) / h - (1.0 - bulge * bulge) * y) < 0.0;
}

Box2d PathSegment::extents() const {
    Box2d box;
    box.add(start);
    box.add(end);
    if (!isArc())
        return box;
    // Extremes lie where the tangent is parallel to an axis.
    const AcGeVector2d chord = end - start;
    const double angle = std::atan2(chord.y, chord.x), swept = sweep();
    const double from = angle - 0.5 * swept, to = angle + 0.5 * swept;
    for (double quarter = std::ceil(std::min(from, to) / halfPi); quarter * halfPi < std::max(from, to);
         quarter += 1.0)
        box.add(pointAt((quarter * halfPi - from) / swept));
    return box;
}

PathSegment PathSegment::part(double from, double to) const {
    return {pointAt(from), pointAt(to), isArc() ? bulgeOfSweep(sweep() * (to - from)) : 0.0};
}

std::optional<PathSegment> PathSegment::parallel(double distance) const {
    if (kind() == Kind::Point)
        return std::nullopt;
    const auto shift = [&](double fraction) { return tangent(fraction).perpVector() * -distance; };
    if (!isArc())
        return PathSegment(start + shift(0.0), end + shift(0.0));
    const double newRadius = radius() + (bulge > 0.0 ? distance : -distance);
    if (newRadius <= 1e-12 * std::fabs(distance))
        return std::nullopt;
    return PathSegment(start + shift(0.0), end + shift(1.0), bulge);
}

SegmentIntersections intersect(const PathSegment& first, const PathSegment& second, double tolerance) {
    SegmentIntersections result;
    const auto add = [&](double firstFraction, double secondFraction, const AcGePoint2d& point) {
        for (const SegmentIntersection& known : result)
            if (known.point.distanceTo(point) <= 2.0 * tolerance)
                return;
        if (result.count < static_cast<int>(result.items.size()))
            result.items[static_cast<std::size_t>(result.count++)] = {firstFraction, secondFraction, point};
    };
    const auto addEndOf = [&](const PathSegment& segment, const PathSegment& other, bool swapped,
                              double fraction) {
        const AcGePoint2d point = segment.pointAt(fraction);
        double otherFraction = other.closestFraction(point);
        const AcGePoint2d otherPoint = other.pointAt(otherFraction);
        if (otherPoint.distanceTo(point) > tolerance)
            return;
        if (point.distanceTo(other.start) <= tolerance)
            otherFraction = 0.0;
        else if (point.distanceTo(other.end) <= tolerance)
            otherFraction = 1.0;
        swapped ? add(otherFraction, fraction, point) : add(fraction, otherFraction, point);
    };
    if (first.kind() == PathSegment::Kind::Point || second.kind() == PathSegment::Kind::Point) {
        for (const double fraction : {0.0, 1.0}) {
            addEndOf(first, second, false, fraction);
            addEndOf(second, first, true, fraction);
        }
        return result;
    }
    const AcGePoint2d origin = nearbyOrigin(first, second);
    const Carrier firstCarrier(first, origin), secondCarrier(second, origin);
    for (const double fraction : {0.0, 1.0}) {
        if (secondCarrier.mayCarry((fraction == 0.0 ? first.start : first.end) - origin, tolerance))
            addEndOf(first, second, false, fraction);
        if (firstCarrier.mayCarry((fraction == 0.0 ? second.start : second.end) - origin, tolerance))
            addEndOf(second, first, true, fraction);
    }
    const Candidates candidates = carrierCandidates(firstCarrier, secondCarrier);
    for (int i = 0; i < candidates.count; ++i) {
        const AcGePoint2d point = origin + candidates.points[static_cast<std::size_t>(i)];
        const double f1 = first.closestFraction(point), f2 = second.closestFraction(point);
        const AcGePoint2d p1 = first.pointAt(f1), p2 = second.pointAt(f2);
        if (p1.distanceTo(p2) <= tolerance &&
            p1.distanceTo(point) <= std::max(tolerance, 1e-6 * first.length()))
            add(f1, f2, p1);
    }

    // Two common points with all between them common: an overlap.
    for (int i = 0; i < result.count && !result.overlap; ++i)
        for (int j = i + 1; j < result.count && !result.overlap; ++j) {
            const double from = result.items[static_cast<std::size_t>(i)].firstFraction;
            const double to = result.items[static_cast<std::size_t>(j)].firstFraction;
            result.overlap = std::fabs(to - from) * first.length() > 2.0 * tolerance;
            for (const double part : {0.25, 0.5, 0.75})
                result.overlap = result.overlap &&
                                 second.distanceTo(first.pointAt(from + part * (to - from))) <= tolerance;
        }
    return result;
}

CarrierIntersections intersectCarriers(const PathSegment& first, const PathSegment& second) {
    CarrierIntersections result;
    if (first.kind() == PathSegment::Kind::Point || second.kind() == PathSegment::Kind::Point)
        return result;
    const AcGePoint2d origin = nearbyOrigin(first, second);
    const Candidates candidates = carrierCandidates(Carrier(first, origin), Carrier(second, origin));
    if (candidates.isTangent)
        return result;
    for (int i = 0; i < candidates.count; ++i)
        result.points[static_cast<std::size_t>(result.count++)] =
            origin + candidates.points[static_cast<std::size_t>(i)];
    return result;
}

} // namespace host
