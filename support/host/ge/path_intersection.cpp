// Intersections of whole polylines with bulges, and the segment index.
#include "host/ge/bulge_polyline.h"

#include <cmath>
#include <tuple>

namespace host {

namespace {

// A segment's end is the beginning of the next one, and of a closed path the beginning of all.
double joinedParameter(const BulgePath& path, int segment, double fraction) {
    const double parameter = segment + fraction;
    return path.closed && parameter >= path.endParameter() ? 0.0 : parameter;
}

void orderAndUnite(std::vector<PathIntersection>& found, double tolerance) {
    std::sort(found.begin(), found.end(), [](const PathIntersection& a, const PathIntersection& b) {
        return std::tie(a.firstParameter, a.secondParameter) < std::tie(b.firstParameter, b.secondParameter);
    });
    const auto same = [&](const PathIntersection& a, const PathIntersection& b) {
        return a.point.distanceTo(b.point) <= 2.0 * tolerance &&
               std::fabs(a.firstParameter - b.firstParameter) < 0.5 &&
               std::fabs(a.secondParameter - b.secondParameter) < 0.5;
    };
    std::vector<PathIntersection> result;
    for (const PathIntersection& item : found) {
        // Equal ones need not be neighbours, but differ little in the first parameter.
        bool known = false;
        for (auto other = result.rbegin(); other != result.rend() && !known; ++other) {
            if (item.firstParameter - other->firstParameter > 1e-3)
                break;
            if (same(item, *other)) {
                known = true;
                other->overlap = other->overlap || item.overlap;
            }
        }
        if (!known)
            result.push_back(item);
    }
    found = std::move(result);
}

} // namespace

std::vector<PathIntersection> intersect(const BulgePath& first, const BulgePath& second, double tolerance) {
    std::vector<PathIntersection> result;
    const PathIndex index(second);
    for (int i = 0; i < first.segmentCount(); ++i) {
        const PathSegment segment = first.segment(i);
        index.boxes().search(segment.extents().grownBy(tolerance), [&](std::uint32_t j) {
            const SegmentIntersections common = intersect(segment, index.segments()[j], tolerance);
            for (const SegmentIntersection& item : common)
                result.push_back({joinedParameter(first, i, item.firstFraction),
                                  joinedParameter(second, static_cast<int>(j), item.secondFraction),
                                  item.point, common.overlap});
        });
    }
    orderAndUnite(result, tolerance);
    return result;
}

std::vector<PathIntersection> selfIntersections(const BulgePath& path, double tolerance) {
    // Segments without length do not part their neighbours.
    std::vector<int> solid;
    std::vector<PathSegment> segments;
    std::vector<Box2d> boxes;
    for (int i = 0; i < path.segmentCount(); ++i)
        if (const PathSegment segment = path.segment(i); segment.kind() != PathSegment::Kind::Point) {
            solid.push_back(i);
            segments.push_back(segment);
            boxes.push_back(segment.extents());
        }
    const BoxIndex index(boxes);
    const std::size_t count = segments.size();
    std::vector<PathIntersection> result;
    for (std::size_t i = 0; i < count; ++i)
        index.search(boxes[i].grownBy(tolerance), [&](std::uint32_t j) {
            if (j <= i)
                return;
            const bool next = j == i + 1, around = path.closed && i == 0 && j + 1 == count;
            const SegmentIntersections common = intersect(segments[i], segments[j], tolerance);
            for (const SegmentIntersection& item : common) {
                if ((next && item.firstFraction == 1.0 && item.secondFraction == 0.0) ||
                    (around && item.firstFraction == 0.0 && item.secondFraction == 1.0))
                    continue;
                double a = joinedParameter(path, solid[i], item.firstFraction);
                double b = joinedParameter(path, solid[j], item.secondFraction);
                if (b < a)
                    std::swap(a, b);
                result.push_back({a, b, item.point, common.overlap});
            }
        });
    orderAndUnite(result, tolerance);
    return result;
}

PathIndex::PathIndex(const BulgePath& path) {
    std::vector<Box2d> boxes;
    for (int i = 0; i < path.segmentCount(); ++i) {
        m_segments.push_back(path.segment(i));
        boxes.push_back(m_segments.back().extents());
    }
    m_index = BoxIndex(boxes);
}

double PathIndex::closestParameter(const AcGePoint2d& point) const {
    const auto [item, distance] =
        m_index.nearest(point, [&](std::uint32_t i) { return m_segments[i].distanceTo(point); });
    if (item < 0)
        return 0.0;
    return static_cast<double>(item) + m_segments[static_cast<std::size_t>(item)].closestFraction(point);
}

double PathIndex::distanceTo(const AcGePoint2d& point) const {
    return m_index.nearest(point, [&](std::uint32_t i) { return m_segments[i].distanceTo(point); }).second;
}

bool PathIndex::isNearerThan(const AcGePoint2d& point, double distance) const {
    return m_index
               .nearest(
                   point, [&](std::uint32_t i) { return m_segments[i].distanceTo(point); }, distance,
                   distance)
               .first >= 0;
}

} // namespace host
