// Polylines of lines and circular arcs in the plane, as a value type with pure functions: the geometry behind
// light polylines. A parameter is the vertex index plus the fraction of the segment after it: of the length
// for a line, of the angle for an arc. Parameters outside the path are clamped; a path without vertices has
// no points and yields the origin, zero lengths and empty boxes.
#pragma once

#include "host/ge/box_index.h"
#include "host/ge/path_segment.h"

#include <optional>
#include <span>
#include <vector>

namespace host {

struct BulgeVertex {
    AcGePoint2d point;
    double bulge = 0.0; // of the segment to the next vertex
};

struct BulgePath {
    std::vector<BulgeVertex> vertices;
    bool closed = false;

    int vertexCount() const { return static_cast<int>(vertices.size()); }
    // A closed path has a segment from its last vertex to the first, even when both are in one place.
    int segmentCount() const { return vertices.size() < 2 ? 0 : vertexCount() - (closed ? 0 : 1); }
    PathSegment segment(int index) const {
        const BulgeVertex& from = vertices[static_cast<std::size_t>(index)];
        const int next = index + 1 == vertexCount() ? 0 : index + 1;
        return {from.point, vertices[static_cast<std::size_t>(next)].point, from.bulge};
    }
    // The greatest parameter: the number of segments.
    double endParameter() const { return segmentCount(); }
    void add(const AcGePoint2d& point, double bulge = 0.0) { vertices.push_back({point, bulge}); }
};

double length(const BulgePath& path);
// Positive for a counterclockwise path; an open one counts as closed by a straight line.
double signedArea(const BulgePath& path);
Box2d extents(const BulgePath& path);

AcGePoint2d pointAt(const BulgePath& path, double parameter);
// Derivatives with respect to the parameter. At a vertex they belong to the segment that begins there.
AcGeVector2d firstDerivativeAt(const BulgePath& path, double parameter);
AcGeVector2d secondDerivativeAt(const BulgePath& path, double parameter);
// The parameter of the closest point; of several equally close ones the first.
double closestParameter(const BulgePath& path, const AcGePoint2d& point);

double distanceAtParameter(const BulgePath& path, double parameter);
// Nothing for a distance below zero or beyond the length, within the tolerance.
std::optional<double> parameterAtDistance(const BulgePath& path, double distance, double tolerance = 1e-10);

// The same conversions for many calls: O(n) once, then O(log n) each. Keeps no reference to the path.
class PathMeasure {
public:
    explicit PathMeasure(const BulgePath& path);
    double length() const { return m_distances.back(); }
    double distanceAtParameter(double parameter) const;
    std::optional<double> parameterAtDistance(double distance, double tolerance = 1e-10) const;

private:
    std::vector<double> m_distances; // at every vertex
};

// The vertices in the other order: a closed path then begins with what was its last vertex.
BulgePath reversed(const BulgePath& path);
// The open part between two parameters, in the path's direction; on a closed path `from` may lie behind `to`.
BulgePath subPath(const BulgePath& path, double from, double to);
// The parts between the parameters, given in any order. A closed path is opened at the first one.
std::vector<BulgePath> splitAt(const BulgePath& path, std::span<const double> parameters);
// Without vertices that repeat the one before them within the tolerance (nor, when closed, the first).
BulgePath withoutRepeatedVertices(const BulgePath& path, double tolerance);

// Where a point lies with respect to a closed path. A region wound several times counts as inside when its
// winding number is not zero.
AcGe::PointContainment containment(const BulgePath& path, const AcGePoint2d& point, double tolerance = 1e-10);
int windingNumber(const BulgePath& path, const AcGePoint2d& point);

struct PathIntersection {
    double firstParameter;
    double secondParameter;
    AcGePoint2d point;
    bool overlap; // an end of a stretch common to both
};
// All common points, ordered by the first parameter; each once, though it may be a vertex. About n log n for
// paths that cross in a few places.
std::vector<PathIntersection> intersect(const BulgePath& first, const BulgePath& second,
                                        double tolerance = 1e-10);
// Where the path meets itself otherwise than by passing from a segment to the next; firstParameter is
// smaller.
std::vector<PathIntersection> selfIntersections(const BulgePath& path, double tolerance = 1e-10);

// Segments of a path with an index over them, for many closest-point questions: O(log n) each.
class PathIndex {
public:
    explicit PathIndex(const BulgePath& path);
    const std::vector<PathSegment>& segments() const { return m_segments; }
    const BoxIndex& boxes() const { return m_index; }
    double closestParameter(const AcGePoint2d& point) const;
    double distanceTo(const AcGePoint2d& point) const;
    // Whether some point of the path is nearer than the distance; cheaper than the distance itself.
    bool isNearerThan(const AcGePoint2d& point, double distance) const;

private:
    std::vector<PathSegment> m_segments;
    BoxIndex m_index;
};

} // namespace host
