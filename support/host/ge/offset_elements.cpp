// Parallels of the segments, joined at outer corners, and the pieces of the opposite side and the ends that
// bound the area nearer than the distance.
#include "host/ge/offset_elements.h"

#include <cmath>

namespace host::offset {

namespace {

// Corners whose extension would reach further than this many distances are rounded.
constexpr double mitreLimit = 1000.0;
// How far an arc may be continued to meet its neighbour, and how far it may reach altogether (radians).
constexpr double longestExtension = 0.5 * pi;
constexpr double widestArc = 1.9 * pi;
// Turns this close to half a turn are reversals.
constexpr double reversal = 1e-9;
// An extension reaching this little beyond the distance cannot meet anything that the distance does not.
constexpr double harmlessMitre = 1.02;

AcGePoint2d shifted(const PathSegment& segment, double fraction, double distance) {
    return segment.pointAt(fraction) - segment.tangent(fraction).perpVector() * distance;
}

// The turn from one segment to the next in [-pi, pi]. A path that turns back on itself turns to the side
// where it leaves itself; when it goes back exactly as it came, the corner counts as an outer one of either
// side.
double turnAt(const PathSegment& before, const PathSegment& after, double distance) {
    const AcGeVector2d in = before.tangent(1.0), out = after.tangent(0.0);
    const double turn = std::atan2(in.crossProduct(out), in.dotProduct(out));
    if (std::fabs(turn) < pi - reversal)
        return turn;
    const auto curvature = [](const PathSegment& segment) { return segment.sweep() / segment.length(); };
    const double side = curvature(before) + curvature(after);
    return std::fabs(side) * std::fabs(distance) > reversal ? std::copysign(pi, -side)
                                                            : std::copysign(pi, distance);
}

struct Mitre {
    AcGePoint2d tip;
    double beforeFraction; // of the parallels, at the tip
    double afterFraction;
};

// Where the parallel before a corner, continued, first meets the one after it, continued backward.
std::optional<Mitre> mitreOf(const PathSegment& before, const PathSegment& after, const AcGePoint2d& corner,
                             double distance) {
    std::optional<Mitre> best;
    double bestReach = mitreLimit * std::fabs(distance);
    const CarrierIntersections crossings = intersectCarriers(before, after);
    for (int i = 0; i < crossings.count; ++i) {
        Mitre mitre{crossings.points[static_cast<std::size_t>(i)], 0.0, 0.0};
        mitre.beforeFraction = before.unboundedFraction(mitre.tip);
        mitre.afterFraction = after.unboundedFraction(mitre.tip);
        // An arc's fractions count from its middle half a turn either way; a continuation goes forward only.
        if (before.isArc() && mitre.beforeFraction < 0.0)
            mitre.beforeFraction += twoPi / std::fabs(before.sweep());
        if (after.isArc() && mitre.afterFraction > 1.0)
            mitre.afterFraction -= twoPi / std::fabs(after.sweep());
        if (mitre.beforeFraction < 1.0 || mitre.afterFraction > 0.0 ||
            std::fabs(before.sweep()) * (mitre.beforeFraction - 1.0) > longestExtension ||
            std::fabs(after.sweep()) * -mitre.afterFraction > longestExtension)
            continue;
        // Where they only touch, the place is uncertain and the corner would end in a cusp.
        const double crossing =
            before.tangent(mitre.beforeFraction).crossProduct(after.tangent(mitre.afterFraction));
        const double reach = mitre.tip.distanceTo(corner);
        if (reach < bestReach && std::fabs(crossing) > 1e-5) {
            bestReach = reach;
            best = mitre;
        }
    }
    return best;
}

class Builder {
public:
    Builder(const BulgePath& path, const PathIndex& index, double distance, const Tolerances& tolerances)
        : m_path(path), m_index(index), m_segments(index.segments()), m_distance(distance),
          m_tolerances(tolerances) {}

    RawOffset build() {
        const int count = segmentCount();
        m_extensions.resize(static_cast<std::size_t>(count));
        m_ends.resize(static_cast<std::size_t>(count));
        for (const PathSegment& segment : m_segments)
            m_parallels.push_back(segment.parallel(m_distance));
        const int corners = m_path.closed ? count : count - 1;
        std::vector<std::optional<Element>> joints(static_cast<std::size_t>(count));
        for (int i = 0; i < corners; ++i)
            joints[static_cast<std::size_t>(i)] = joinCorner(i, (i + 1) % count);
        for (int i = 0; i < count; ++i) {
            addParallel(i);
            if (joints[static_cast<std::size_t>(i)])
                add(*joints[static_cast<std::size_t>(i)]);
        }
        addOppositeSide(corners);
        return std::move(m_result);
    }

private:
    int segmentCount() const { return static_cast<int>(m_segments.size()); }
    const PathSegment& source(int i) const { return m_segments[static_cast<std::size_t>(i)]; }

    int addNode(const AcGePoint2d& point, bool isLoose) {
        m_result.nodes.push_back({point, isLoose});
        return static_cast<int>(m_result.nodes.size()) - 1;
    }

    // A piece that lies wholly nearer than the distance neither shows nor bounds anything. The distance to
    // the path changes no faster than one moves along the piece.
    void add(const Element& element) {
        const double half = 0.5 * element.geometry.length();
        const double bound = std::fabs(m_distance) - m_tolerances.margin - half;
        if (bound > 0.0 && m_index.isNearerThan(element.geometry.pointAt(0.5), bound))
            return;
        m_result.elements.push_back(element);
    }

    struct Ends {
        int start = -1, end = -1; // nodes
    };
    struct Extensions {
        double from = 0.0, to = 1.0; // fractions of the parallel
    };

    // Joins the parallels of segments i and j; returns the arc of a rounded corner.
    std::optional<Element> joinCorner(int i, int j) {
        const auto& before = m_parallels[static_cast<std::size_t>(i)];
        const auto& after = m_parallels[static_cast<std::size_t>(j)];
        int& endNode = m_ends[static_cast<std::size_t>(i)].end;
        int& startNode = m_ends[static_cast<std::size_t>(j)].start;
        const AcGePoint2d corner = source(i).end;
        const AcGePoint2d from = shifted(source(i), 1.0, m_distance),
                          to = shifted(source(j), 0.0, m_distance);
        const double turn = turnAt(source(i), source(j), m_distance);
        if (from.distanceTo(to) <= m_tolerances.corner && std::fabs(turn) < halfPi) {
            endNode = startNode = addNode(from + (to - from) * 0.5, !before || !after);
            return std::nullopt;
        }
        if (turn * m_distance <= 0.0) {
            endNode = addNode(from, true);
            startNode = addNode(to, true);
            return std::nullopt;
        }
        if (before && after && std::fabs(turn) < pi - reversal && extendCorner(i, j, corner)) {
            endNode = startNode = addNode(m_tip, false);
            return std::nullopt;
        }
        Element arc;
        arc.geometry = PathSegment(from, to, bulgeOfSweep(turn));
        arc.startNode = endNode = addNode(from, !before);
        arc.endNode = startNode = addNode(to, !after);
        return arc;
    }

    bool extendCorner(int i, int j, const AcGePoint2d& corner) {
        const PathSegment& before = *m_parallels[static_cast<std::size_t>(i)];
        const PathSegment& after = *m_parallels[static_cast<std::size_t>(j)];
        const std::optional<Mitre> mitre = mitreOf(before, after, corner, m_distance);
        if (!mitre || !leavesGap(i, m_extensions[static_cast<std::size_t>(i)].from, mitre->beforeFraction) ||
            !leavesGap(j, mitre->afterFraction, m_extensions[static_cast<std::size_t>(j)].to))
            return false;
        const PathSegment first = before.part(1.0, mitre->beforeFraction),
                          second = after.part(mitre->afterFraction, 0.0);
        BulgePath area;
        area.closed = true;
        area.add(corner);
        area.add(first.start, first.bulge);
        area.add(mitre->tip, second.bulge);
        area.add(second.end);
        const double reach = std::fabs(mitre->tip.distanceTo(corner));
        if (reach > harmlessMitre * std::fabs(m_distance) && isObstructed(area, i, j))
            return false;
        if (reach > std::fabs(m_distance) + m_tolerances.margin)
            m_result.mitres.push_back(std::move(area));
        m_extensions[static_cast<std::size_t>(i)].to = mitre->beforeFraction;
        m_extensions[static_cast<std::size_t>(j)].from = mitre->afterFraction;
        m_tip = mitre->tip;
        return true;
    }

    // An arc extended at both ends must not close to a circle.
    bool leavesGap(int i, double from, double to) const {
        return std::fabs(source(i).sweep()) * (to - from) <= widestArc;
    }

    // Whether the path itself passes through the area of an extended corner.
    bool isObstructed(const BulgePath& area, int i, int j) const {
        const AcGePoint2d corner = area.vertices.front().point;
        bool obstructed = false;
        m_index.boxes().search(extents(area), [&](std::uint32_t k) {
            const PathSegment& segment = m_segments[k];
            const bool isNeighbour = static_cast<int>(k) == i || static_cast<int>(k) == j;
            if (isNeighbour && !segment.isArc())
                return true;
            for (int side = 0; side < area.segmentCount() && !obstructed; ++side)
                for (const SegmentIntersection& common :
                     intersect(segment, area.segment(side), m_tolerances.point))
                    obstructed = obstructed || !isNeighbour ||
                                 common.point.distanceTo(corner) > 1e-3 * std::fabs(m_distance);
            obstructed = obstructed || (!isNeighbour && windingNumber(area, segment.start) != 0);
            return !obstructed;
        });
        return obstructed;
    }

    void addParallel(int i) {
        const auto& parallel = m_parallels[static_cast<std::size_t>(i)];
        if (!parallel)
            return;
        Ends ends = m_ends[static_cast<std::size_t>(i)];
        const Extensions reach = m_extensions[static_cast<std::size_t>(i)];
        Element element;
        element.geometry =
            reach.from == 0.0 && reach.to == 1.0 ? *parallel : parallel->part(reach.from, reach.to);
        element.startNode = ends.start >= 0 ? ends.start : addNode(parallel->start, false);
        element.endNode = ends.end >= 0 ? ends.end : addNode(parallel->end, false);
        // The joints are exact; the computed ends differ from them by rounding.
        element.geometry.start = m_result.nodes[static_cast<std::size_t>(element.startNode)].point;
        element.geometry.end = m_result.nodes[static_cast<std::size_t>(element.endNode)].point;
        add(element);
    }

    // The rest of the outline of everything nearer than the distance, where a result may end.
    void addOppositeSide(int corners) {
        const int count = segmentCount();
        const auto addCutter = [&](const PathSegment& geometry) { add({geometry, -1, -1}); };
        if (!m_path.closed) {
            const PathSegment &first = source(0), &last = source(count - 1);
            const double half = m_distance > 0.0 ? 1.0 : -1.0;
            addCutter({shifted(first, 0.0, -m_distance), shifted(first, 0.0, m_distance), half});
            addCutter({shifted(last, 1.0, m_distance), shifted(last, 1.0, -m_distance), half});
        } else if (selfIntersections(m_path, m_tolerances.point).empty()) {
            m_result.isSimpleClosed = true;
            return; // what lies on the other side is never met
        }
        for (int i = 0; i < count; ++i) {
            if (const auto parallel = source(i).parallel(-m_distance))
                addCutter(*parallel);
            if (i >= corners)
                continue;
            const PathSegment& after = source((i + 1) % count);
            const double turn = turnAt(source(i), after, -m_distance);
            if (turn * m_distance < 0.0 && std::fabs(turn) > 1e-9)
                addCutter({shifted(source(i), 1.0, -m_distance), shifted(after, 0.0, -m_distance),
                           bulgeOfSweep(turn)});
        }
    }

    const BulgePath& m_path;
    const PathIndex& m_index;
    const std::vector<PathSegment>& m_segments;
    double m_distance;
    Tolerances m_tolerances;
    std::vector<std::optional<PathSegment>> m_parallels;
    std::vector<Extensions> m_extensions;
    std::vector<Ends> m_ends;
    AcGePoint2d m_tip;
    RawOffset m_result;
};

} // namespace

Tolerances::Tolerances(double distance, double extent)
    : point(std::max(1e-10 * std::fabs(distance), 2e-13 * extent)), node(30.0 * point), margin(10.0 * point),
      corner(std::max(1e-6 * std::fabs(distance), point)) {}

RawOffset rawOffset(const BulgePath& path, const PathIndex& index, double distance,
                    const Tolerances& tolerances) {
    return Builder(path, index, distance, tolerances).build();
}

} // namespace host::offset
