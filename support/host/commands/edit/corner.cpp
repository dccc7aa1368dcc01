// Corners between lines and arcs of a plane.
#include "host/commands/edit/corner.h"

#include <algorithm>
#include <cmath>

namespace host {
namespace {

/// The line or circle that a segment lies on, moved to a side by a distance.
struct Carrier {
    bool isLine = true;
    AcGePoint2d origin; ///< a point of the line, or the centre
    AcGeVector2d along; ///< unit
    double radius = 0.0;
};

Carrier carrierOf(const PathSegment& segment) {
    if (segment.isArc()) {
        return {false, segment.center(), {1.0, 0.0}, segment.radius()};
    }
    return {true, segment.start, (segment.end - segment.start).normal(), 0.0};
}

/// Both parallels at the distance; of a circle the smaller one only when it exists.
std::vector<Carrier> parallels(const Carrier& carrier, double distance) {
    if (distance == 0.0) {
        return {carrier};
    }
    std::vector<Carrier> result;
    for (const double side : {-distance, distance}) {
        Carrier moved = carrier;
        if (carrier.isLine) {
            moved.origin += AcGeVector2d(-carrier.along.y, carrier.along.x) * side;
        } else {
            moved.radius = std::fabs(carrier.radius + side);
        }
        result.push_back(moved);
    }
    return result;
}

std::vector<AcGePoint2d> meet(const Carrier& a, const Carrier& b) {
    if (a.isLine && b.isLine) {
        const double cross = a.along.crossProduct(b.along);
        if (std::fabs(cross) < 1e-12) {
            return {};
        }
        return {a.origin + a.along * ((b.origin - a.origin).crossProduct(b.along) / cross)};
    }
    if (!a.isLine && b.isLine) {
        return meet(b, a);
    }
    const double size = std::max({1.0, a.radius, b.radius});
    if (a.isLine) {
        const double foot = (b.origin - a.origin).dotProduct(a.along);
        const AcGePoint2d nearest = a.origin + a.along * foot;
        const double rest = b.radius * b.radius - nearest.distanceTo(b.origin) * nearest.distanceTo(b.origin);
        if (rest < -1e-9 * size * size) {
            return {};
        }
        const double half = std::sqrt(std::max(rest, 0.0));
        return {nearest + a.along * half, nearest - a.along * half};
    }
    const AcGeVector2d way = b.origin - a.origin;
    const double distance = way.length();
    if (distance < 1e-12 * size) {
        return {};
    }
    const double x = (distance * distance + a.radius * a.radius - b.radius * b.radius) / (2.0 * distance);
    const double rest = a.radius * a.radius - x * x;
    if (rest < -1e-9 * size * size) {
        return {};
    }
    const AcGeVector2d unit = way * (1.0 / distance);
    const AcGeVector2d up = AcGeVector2d(-unit.y, unit.x) * std::sqrt(std::max(rest, 0.0));
    const AcGePoint2d middle = a.origin + unit * x;
    return {middle + up, middle - up};
}

AcGePoint2d footOn(const Carrier& carrier, const AcGePoint2d& point) {
    if (carrier.isLine) {
        return carrier.origin + carrier.along * (point - carrier.origin).dotProduct(carrier.along);
    }
    const AcGeVector2d arm = point - carrier.origin;
    const double size = arm.length();
    return size == 0.0 ? carrier.origin + AcGeVector2d(carrier.radius, 0.0)
                       : carrier.origin + arm * (carrier.radius / size);
}

/// The segment with the end that lies away from the pick moved to a point on its carrier.
PathSegment endedAt(const CornerSide& side, const AcGePoint2d& corner, bool& endMoved) {
    const PathSegment& segment = side.segment;
    const double at = segment.unboundedFraction(corner);
    const double pick = std::clamp(segment.unboundedFraction(side.pick), 0.0, 1.0);
    endMoved = at >= pick;
    if (!segment.isArc()) {
        return endMoved ? PathSegment(segment.start, corner) : PathSegment(corner, segment.end);
    }
    // On the continued circle either end may be the one to move: the way that stays longer is not wanted.
    if (at > 1.0 || at < 0.0) {
        endMoved = corner.distanceTo(segment.end) <= corner.distanceTo(segment.start);
        const double turn = twoPi / std::fabs(segment.sweep());
        const double forwards = at < 0.0 ? at + turn : at;
        const double backwards = at > 1.0 ? at - turn : at;
        return endMoved ? segment.part(0.0, forwards) : segment.part(backwards, 1.0);
    }
    return endMoved ? segment.part(0.0, at) : segment.part(at, 1.0);
}

/// A line that ends at a point on the pick's side of its crossing with the other one, and keeps its far end.
PathSegment lineEndedAt(const CornerSide& side, const AcGePoint2d& crossing, const AcGePoint2d& point,
                        bool& endMoved) {
    const AcGeVector2d toPoint = point - crossing;
    const AcGeVector2d direction = side.segment.end - side.segment.start;
    const bool atCrossing = toPoint.lengthSqrd() <= 1e-24 * direction.lengthSqrd();
    endMoved = (atCrossing ? side.pick - crossing : toPoint).dotProduct(direction) < 0.0;
    return endMoved ? PathSegment(side.segment.start, point) : PathSegment(point, side.segment.end);
}

/// Whether the point lies on the pick's side of the crossing.
bool isOnPickSide(const CornerSide& side, const AcGePoint2d& crossing, const AcGePoint2d& point) {
    return (point - crossing).dotProduct(side.pick - crossing) >= 0.0;
}

std::optional<Corner> joinParallel(const CornerSide& first, const CornerSide& second) {
    // The half circle begins at the end of the first line that is nearer to the pick.
    const bool end = first.pick.distanceTo(first.segment.end) <= first.pick.distanceTo(first.segment.start);
    const AcGePoint2d from = end ? first.segment.end : first.segment.start;
    const Carrier other = carrierOf(second.segment);
    const AcGePoint2d to = footOn(other, from);
    if (to.distanceTo(from) < 1e-12) {
        return std::nullopt;
    }
    Corner corner;
    corner.first = first.segment;
    corner.firstEndsAtCorner = end;
    const AcGeVector2d outward =
        (end ? first.segment.end - first.segment.start : first.segment.start - first.segment.end);
    // The other line keeps the end that lies behind.
    const bool startStays =
        (second.segment.start - to).dotProduct(outward) < (second.segment.end - to).dotProduct(outward);
    corner.second = startStays ? PathSegment(second.segment.start, to) : PathSegment(to, second.segment.end);
    corner.secondEndsAtCorner = startStays;
    corner.between = PathSegment(from, to, outward.crossProduct(to - from) > 0.0 ? 1.0 : -1.0);
    return corner;
}

std::optional<Corner> meetSharply(const CornerSide& first, const CornerSide& second) {
    const std::vector<AcGePoint2d> points = meet(carrierOf(first.segment), carrierOf(second.segment));
    const auto away = [&](const AcGePoint2d& point) {
        return point.distanceTo(first.pick) + point.distanceTo(second.pick);
    };
    const auto best = std::min_element(points.begin(), points.end(),
                                       [&](const auto& a, const auto& b) { return away(a) < away(b); });
    if (best == points.end()) {
        return std::nullopt;
    }
    const auto ended = [&](const CornerSide& side, bool& endMoved) {
        return side.segment.isArc() ? endedAt(side, *best, endMoved)
                                    : lineEndedAt(side, *best, *best, endMoved);
    };
    Corner corner;
    corner.first = ended(first, corner.firstEndsAtCorner);
    corner.second = ended(second, corner.secondEndsAtCorner);
    return corner;
}

} // namespace

std::optional<Corner> roundCorner(const CornerSide& first, const CornerSide& second, double radius) {
    const Carrier a = carrierOf(first.segment);
    const Carrier b = carrierOf(second.segment);
    const bool lines = a.isLine && b.isLine;
    if (lines && std::fabs(a.along.crossProduct(b.along)) < 1e-12) {
        return joinParallel(first, second);
    }
    if (radius == 0.0) {
        return meetSharply(first, second);
    }
    const AcGePoint2d crossing = lines ? meet(a, b).front() : AcGePoint2d();
    std::optional<Corner> best;
    double nearest = 0.0;
    for (const Carrier& one : parallels(a, radius)) {
        for (const Carrier& other : parallels(b, radius)) {
            for (const AcGePoint2d& center : meet(one, other)) {
                const AcGePoint2d from = footOn(a, center);
                const AcGePoint2d to = footOn(b, center);
                if (lines && (!isOnPickSide(first, crossing, from) || !isOnPickSide(second, crossing, to))) {
                    continue;
                }
                const double away = from.distanceTo(first.pick) + to.distanceTo(second.pick);
                if (best && away >= nearest) {
                    continue;
                }
                nearest = away;
                best.emplace();
                const auto ended = [&](const CornerSide& side, const AcGePoint2d& point, bool& endMoved) {
                    return lines ? lineEndedAt(side, crossing, point, endMoved)
                                 : endedAt(side, point, endMoved);
                };
                best->first = ended(first, from, best->firstEndsAtCorner);
                best->second = ended(second, to, best->secondEndsAtCorner);
                const double turn = signedAngle((to - center).angle() - (from - center).angle());
                best->between = PathSegment(from, to, bulgeOfSweep(turn));
            }
        }
    }
    return best;
}

std::optional<Corner> cutCorner(const CornerSide& first, const CornerSide& second, double firstDistance,
                                double secondDistance) {
    const std::vector<AcGePoint2d> crossing = meet(carrierOf(first.segment), carrierOf(second.segment));
    if (first.segment.isArc() || second.segment.isArc() || crossing.empty()) {
        return std::nullopt;
    }
    const auto along = [&](const CornerSide& side, double distance) {
        const AcGeVector2d direction = (side.segment.end - side.segment.start).normal();
        const double way = (side.pick - crossing.front()).dotProduct(direction);
        return crossing.front() + direction * (way >= 0.0 ? distance : -distance);
    };
    const AcGePoint2d from = along(first, firstDistance);
    const AcGePoint2d to = along(second, secondDistance);
    Corner corner;
    corner.first = lineEndedAt(first, crossing.front(), from, corner.firstEndsAtCorner);
    corner.second = lineEndedAt(second, crossing.front(), to, corner.secondEndsAtCorner);
    if (from.distanceTo(to) > 0.0) {
        corner.between = PathSegment(from, to);
    }
    return corner;
}

int cornerAll(std::vector<PathSegment>& segments, bool closed, const CornerMaker& make, int& refused) {
    int made = 0;
    const std::size_t corners = segments.size() - (closed ? 0 : 1);
    std::vector<std::optional<PathSegment>> between(segments.size());
    for (std::size_t i = 0; i < corners && segments.size() > 1; ++i) {
        PathSegment& before = segments[i];
        PathSegment& after = segments[(i + 1) % segments.size()];
        if (before.isArc() || after.isArc()) {
            continue;
        }
        const std::optional<Corner> corner = make({before, before.start, false}, {after, after.end, false});
        const bool fits = corner && corner->between && corner->firstEndsAtCorner &&
                          !corner->secondEndsAtCorner && before.unboundedFraction(corner->first.end) >= 0.0 &&
                          after.unboundedFraction(corner->second.start) <= 1.0;
        if (!fits) {
            ++refused;
            continue;
        }
        before.end = corner->first.end;
        after.start = corner->second.start;
        between[i] = corner->between;
        ++made;
    }
    std::vector<PathSegment> result;
    for (std::size_t i = 0; i < segments.size(); ++i) {
        if (!between[i] || segments[i].length() > 0.0) {
            result.push_back(segments[i]);
        }
        if (between[i]) {
            result.push_back(*between[i]);
        }
    }
    segments = std::move(result);
    return made;
}

} // namespace host
