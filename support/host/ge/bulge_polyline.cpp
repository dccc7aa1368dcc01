// Measures, conversions and cutting of polylines with bulges.
#include "host/ge/bulge_polyline.h"

#include <cmath>

namespace host {

namespace {

struct Place {
    int segment;
    double fraction;
};

Place placeOf(const BulgePath& path, double parameter) {
    const int count = path.segmentCount();
    if (!(parameter > 0.0))
        return {0, 0.0};
    if (parameter >= count)
        return {count - 1, 1.0};
    const double whole = std::floor(parameter);
    return {static_cast<int>(whole), parameter - whole};
}

double clampedParameter(const BulgePath& path, double parameter) {
    return parameter > 0.0 ? std::min(parameter, path.endParameter()) : 0.0;
}

AcGePoint2d onlyPoint(const BulgePath& path) {
    return path.vertices.empty() ? AcGePoint2d::kOrigin : path.vertices.front().point;
}

} // namespace

double length(const BulgePath& path) {
    double sum = 0.0;
    for (int i = 0; i < path.segmentCount(); ++i)
        sum += path.segment(i).length();
    return sum;
}

double signedArea(const BulgePath& path) {
    if (path.segmentCount() == 0)
        return 0.0;
    // Relative to the first vertex: far from the origin the products would swallow the area.
    const AcGePoint2d origin = path.vertices.front().point;
    double twice = 0.0, arcs = 0.0;
    for (int i = 0; i < path.segmentCount(); ++i) {
        const PathSegment segment = path.segment(i);
        twice += (segment.start - origin).crossProduct(segment.end - origin);
        arcs += segment.areaBeyondChord();
    }
    return 0.5 * twice + arcs;
}

Box2d extents(const BulgePath& path) {
    Box2d box;
    for (const BulgeVertex& vertex : path.vertices)
        box.add(vertex.point);
    for (int i = 0; i < path.segmentCount(); ++i)
        if (const PathSegment segment = path.segment(i); segment.isArc())
            box.add(segment.extents());
    return box;
}

AcGePoint2d pointAt(const BulgePath& path, double parameter) {
    if (path.segmentCount() == 0)
        return onlyPoint(path);
    const Place place = placeOf(path, parameter);
    return path.segment(place.segment).pointAt(place.fraction);
}

AcGeVector2d firstDerivativeAt(const BulgePath& path, double parameter) {
    if (path.segmentCount() == 0)
        return {};
    const Place place = placeOf(path, parameter);
    return path.segment(place.segment).firstDerivative(place.fraction);
}

AcGeVector2d secondDerivativeAt(const BulgePath& path, double parameter) {
    if (path.segmentCount() == 0)
        return {};
    const Place place = placeOf(path, parameter);
    return path.segment(place.segment).secondDerivative(place.fraction);
}

double closestParameter(const BulgePath& path, const AcGePoint2d& point) {
    double best = 0.0, bestSquared = std::numeric_limits<double>::infinity();
    for (int i = 0; i < path.segmentCount(); ++i) {
        const PathSegment segment = path.segment(i);
        const double fraction = segment.closestFraction(point);
        const double squared = segment.pointAt(fraction).distanceSqrdTo(point);
        if (squared < bestSquared) {
            bestSquared = squared;
            best = i + fraction;
        }
    }
    return best;
}

double distanceAtParameter(const BulgePath& path, double parameter) {
    if (path.segmentCount() == 0)
        return 0.0;
    const Place place = placeOf(path, parameter);
    double sum = path.segment(place.segment).length() * place.fraction;
    for (int i = 0; i < place.segment; ++i)
        sum += path.segment(i).length();
    return sum;
}

std::optional<double> parameterAtDistance(const BulgePath& path, double distance, double tolerance) {
    return PathMeasure(path).parameterAtDistance(distance, tolerance);
}

PathMeasure::PathMeasure(const BulgePath& path) {
    m_distances.reserve(static_cast<std::size_t>(path.segmentCount()) + 1);
    m_distances.push_back(0.0);
    for (int i = 0; i < path.segmentCount(); ++i)
        m_distances.push_back(m_distances.back() + path.segment(i).length());
}

double PathMeasure::distanceAtParameter(double parameter) const {
    const double last = static_cast<double>(m_distances.size() - 1);
    if (!(parameter > 0.0))
        return 0.0;
    if (parameter >= last)
        return length();
    const auto index = static_cast<std::size_t>(parameter);
    const double fraction = parameter - static_cast<double>(index);
    return m_distances[index] + (m_distances[index + 1] - m_distances[index]) * fraction;
}

std::optional<double> PathMeasure::parameterAtDistance(double distance, double tolerance) const {
    if (!(distance >= -tolerance && distance <= length() + tolerance))
        return std::nullopt;
    const double last = static_cast<double>(m_distances.size() - 1);
    if (distance >= length())
        return last;
    // The first vertex beyond the distance ends the segment; segments without length are never chosen.
    const auto beyond = std::upper_bound(m_distances.begin(), m_distances.end(), std::max(distance, 0.0));
    if (beyond == m_distances.end() || beyond == m_distances.begin())
        return 0.0;
    const auto before = beyond - 1;
    return static_cast<double>(before - m_distances.begin()) +
           (std::max(distance, 0.0) - *before) / (*beyond - *before);
}

BulgePath reversed(const BulgePath& path) {
    BulgePath result;
    result.closed = path.closed;
    result.vertices.assign(path.vertices.rbegin(), path.vertices.rend());
    // The bulge of a segment now belongs to the vertex that used to end it.
    const std::size_t count = result.vertices.size();
    for (std::size_t i = 0; i < count; ++i)
        result.vertices[i].bulge = 0.0 - path.vertices[(2 * count - 2 - i) % count].bulge; // never -0
    return result;
}

BulgePath subPath(const BulgePath& path, double from, double to) {
    BulgePath result;
    if (path.segmentCount() == 0)
        return result;
    from = clampedParameter(path, from);
    to = clampedParameter(path, to);
    if (to < from) {
        if (!path.closed) {
            std::swap(from, to);
        } else {
            result = subPath(path, from, path.endParameter());
            const BulgePath rest = subPath(path, 0.0, to);
            if (result.vertices.size() < 2)
                return rest;
            result.vertices.pop_back();
            result.vertices.insert(result.vertices.end(), rest.vertices.begin(), rest.vertices.end());
            if (rest.vertices.empty())
                result.add(path.vertices.front().point);
            return result;
        }
    }
    for (double at = from; at < to;) {
        const int index = placeOf(path, at).segment;
        const double end = std::min(to, index + 1.0);
        const PathSegment part = path.segment(index).part(at - index, end - index);
        result.add(part.start, part.bulge);
        at = end;
        if (at >= to)
            result.add(part.end);
    }
    return result;
}

std::vector<BulgePath> splitAt(const BulgePath& path, std::span<const double> parameters) {
    std::vector<double> cuts;
    for (const double parameter : parameters) {
        const double cut = clampedParameter(path, parameter);
        if (path.closed)
            cuts.push_back(cut == path.endParameter() ? 0.0 : cut);
        else if (cut > 0.0 && cut < path.endParameter())
            cuts.push_back(cut);
    }
    std::sort(cuts.begin(), cuts.end());
    cuts.erase(std::unique(cuts.begin(), cuts.end()), cuts.end());
    std::vector<BulgePath> result;
    if (path.segmentCount() == 0 || (path.closed && cuts.empty())) {
        result.push_back(path);
        return result;
    }
    if (path.closed) {
        for (std::size_t i = 0; i + 1 < cuts.size(); ++i)
            result.push_back(subPath(path, cuts[i], cuts[i + 1]));
        if (cuts.size() > 1 || cuts.front() > 0.0) {
            // From the last cut around to the first; with a single cut all the way round.
            BulgePath part = subPath(path, cuts.back(), path.endParameter());
            const BulgePath rest = subPath(path, 0.0, cuts.front());
            if (!rest.vertices.empty()) {
                part.vertices.pop_back();
                part.vertices.insert(part.vertices.end(), rest.vertices.begin(), rest.vertices.end());
            }
            result.push_back(std::move(part));
        } else {
            result.push_back(subPath(path, 0.0, path.endParameter()));
        }
        return result;
    }
    double from = 0.0;
    for (const double cut : cuts) {
        result.push_back(subPath(path, from, cut));
        from = cut;
    }
    result.push_back(subPath(path, from, path.endParameter()));
    return result;
}

BulgePath withoutRepeatedVertices(const BulgePath& path, double tolerance) {
    BulgePath result;
    result.closed = path.closed;
    for (const BulgeVertex& vertex : path.vertices) {
        if (!result.vertices.empty() && result.vertices.back().point.distanceTo(vertex.point) <= tolerance)
            result.vertices.back().bulge = vertex.bulge;
        else
            result.vertices.push_back(vertex);
    }
    while (result.closed && result.vertices.size() > 1 &&
           result.vertices.back().point.distanceTo(result.vertices.front().point) <= tolerance)
        result.vertices.pop_back();
    return result;
}

namespace {

// A point on the chord itself counts as a little above and, more than that, to the right of where it is, as
// the crossings of the ray count it.
bool isBetweenChordAndArc(const PathSegment& segment, const AcGePoint2d& point) {
    const AcGeVector2d a = segment.start - point, b = segment.end - point;
    const double side = a.crossProduct(b);
    if (!segment.isArc() || std::fabs(side) > 1e-14 * a.length() * b.length())
        return segment.isBeyondChord(point);
    const AcGeVector2d chord = b - a;
    const bool isLeft = side != 0.0 ? side > 0.0 : chord.y != 0.0 ? chord.y < 0.0 : chord.x > 0.0;
    return a.dotProduct(b) < 0.0 && isLeft != (segment.bulge > 0.0);
}

} // namespace

int windingNumber(const BulgePath& path, const AcGePoint2d& point) {
    int winding = 0;
    const int count = path.vertexCount();
    for (int i = 0; i < count; ++i) {
        PathSegment segment = {path.vertices[static_cast<std::size_t>(i)].point,
                               path.vertices[static_cast<std::size_t>((i + 1) % count)].point,
                               path.closed || i + 1 < count ? path.vertices[static_cast<std::size_t>(i)].bulge
                                                            : 0.0};
        // The chord's crossing of the ray to the right, then the region between the chord and the arc.
        const AcGeVector2d a = segment.start - point, b = segment.end - point;
        if ((a.y <= 0.0) != (b.y <= 0.0)) {
            const double side = a.crossProduct(b);
            if (a.y <= 0.0 && side > 0.0)
                ++winding;
            else if (a.y > 0.0 && side < 0.0)
                --winding;
        }
        if (isBetweenChordAndArc(segment, point))
            winding += segment.bulge > 0.0 ? 1 : -1;
    }
    return winding;
}

AcGe::PointContainment containment(const BulgePath& path, const AcGePoint2d& point, double tolerance) {
    for (int i = 0; i < path.segmentCount(); ++i)
        if (path.segment(i).distanceTo(point) <= tolerance)
            return AcGe::kOnBoundary;
    return windingNumber(path, point) != 0 ? AcGe::kInside : AcGe::kOutside;
}

} // namespace host
