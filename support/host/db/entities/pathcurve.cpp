// The curve interface over a path.
#include "host/db/entities/pathcurve.h"

#include "host/db/entities/circle.h"
#include "host/db/entities/curvepiece.h"
#include "host/db/entities/fields.h"
#include "host/db/entities/line.h"
#include "host/db/entities/transforms.h"
#include "host/ge/path_offset.h"

#include <algorithm>

namespace host {
namespace {

constexpr double parameterTolerance = 1e-10;

SegmentWidths partOf(const SegmentWidths& whole, double from, double to) {
    return {whole.start + (whole.end - whole.start) * from, whole.start + (whole.end - whole.start) * to};
}

/// Appends the part between two parameters, from before to.
void appendPart(WidePath& part, const BulgePath& path, const std::vector<SegmentWidths>& widths, double from,
                double to) {
    const BulgePath piece = subPath(path, from, to);
    if (piece.vertices.empty()) {
        return;
    }
    if (!part.path.vertices.empty()) {
        part.path.vertices.pop_back();
    }
    part.path.vertices.insert(part.path.vertices.end(), piece.vertices.begin(), piece.vertices.end());
    for (double at = from; !widths.empty() && at < to;) {
        const double index = std::min(std::floor(at), path.endParameter() - 1.0);
        const double end = std::min(to, index + 1.0);
        part.widths.push_back(partOf(widths[static_cast<std::size_t>(index)], at - index, end - index));
        at = end;
    }
}

/// Widths for a curve beside the path: those of the path where it is nearest.
std::vector<SegmentWidths> widthsBeside(const BulgePath& source, const PathIndex& index,
                                        const std::vector<SegmentWidths>& widths, const BulgePath& beside) {
    std::vector<SegmentWidths> result;
    for (int i = 0; i < beside.segmentCount(); ++i) {
        const PathSegment segment = beside.segment(i);
        const int nearest = std::clamp(static_cast<int>(index.closestParameter(segment.pointAt(0.5))), 0,
                                       source.segmentCount() - 1);
        const PathSegment origin = source.segment(nearest);
        result.push_back(partOf(widths[static_cast<std::size_t>(nearest)],
                                origin.closestFraction(segment.start), origin.closestFraction(segment.end)));
    }
    return result;
}

} // namespace

bool inRange(const BulgePath& path, double& parameter) {
    const double end = path.endParameter();
    if (path.vertices.empty() ||
        !(parameter >= -parameterTolerance && parameter <= end + parameterTolerance)) {
        return false;
    }
    parameter = std::clamp(parameter, 0.0, end);
    return true;
}

std::vector<WidePath> splitWidePath(const BulgePath& path, const std::vector<SegmentWidths>& widths,
                                    std::vector<double> parameters) {
    const double end = path.endParameter();
    std::vector<double> cuts;
    for (double parameter : parameters) {
        if (path.closed) {
            cuts.push_back(
                parameter >= end - parameterTolerance || parameter <= parameterTolerance ? 0.0 : parameter);
        } else if (parameter > parameterTolerance && parameter < end - parameterTolerance) {
            cuts.push_back(parameter);
        }
    }
    std::sort(cuts.begin(), cuts.end());
    cuts.erase(
        std::unique(cuts.begin(), cuts.end(), [](double a, double b) { return b - a <= parameterTolerance; }),
        cuts.end());
    std::vector<WidePath> parts;
    if (!path.closed) {
        cuts.insert(cuts.begin(), 0.0);
        cuts.push_back(end);
    }
    for (std::size_t index = 0; index + 1 < cuts.size(); ++index) {
        appendPart(parts.emplace_back(), path, widths, cuts[index], cuts[index + 1]);
    }
    if (path.closed && !cuts.empty()) {
        WidePath& last = parts.emplace_back();
        appendPart(last, path, widths, cuts.back(), end);
        appendPart(last, path, widths, 0.0, cuts.front());
    }
    return parts;
}

void appendPieces(const BulgePath& path, const AcGeVector3d& normal, double elevation,
                  std::vector<CurvePiece>& pieces) {
    const AcGeMatrix3d plane = AcGeMatrix3d::planeToWorld(normal);
    const AcGeVector3d x = plane * AcGeVector3d::kXAxis;
    const AcGeVector3d y = plane * AcGeVector3d::kYAxis;
    pieces.reserve(pieces.size() + static_cast<std::size_t>(path.segmentCount()));
    // An arc that rises from its chord by less than this part of it is drawn as the chord.
    constexpr double flatBulge = 1e-9;
    for (int i = 0; i < path.segmentCount(); ++i) {
        const PathSegment segment = path.segment(i);
        if (segment.kind() == PathSegment::Kind::Point) {
            continue;
        }
        if (!segment.isArc() || std::fabs(segment.bulge) < flatBulge) {
            pieces.push_back(CurvePiece::line(plane * to3d(segment.start, elevation),
                                              plane * to3d(segment.end, elevation)));
            continue;
        }
        const AcGePoint2d center = segment.center();
        const double radius = segment.radius();
        // Clockwise arcs run through falling angles: rising ones with Y turned over.
        const double side = segment.bulge > 0.0 ? 1.0 : -1.0;
        const double from = normalizedAngle(side * (segment.start - center).angle());
        pieces.push_back(CurvePiece::arc(plane * to3d(center, elevation), x * radius, y * (side * radius),
                                         from, from + std::fabs(segment.sweep())));
    }
}

void explodePath(const AcDbEntity& entity, const BulgePath& path, const AcGeVector3d& normal,
                 double elevation, double thickness, AcDbVoidPtrArray& parts) {
    for (int i = 0; i < path.segmentCount(); ++i) {
        const PathSegment segment = path.segment(i);
        if (segment.kind() == PathSegment::Kind::Point) {
            continue;
        }
        const auto world = [&](const AcGePoint2d& point) { return toWorld(normal, to3d(point, elevation)); };
        if (!segment.isArc()) {
            auto line = newLike<AcDbLine>(entity);
            line->setStartPoint(world(segment.start));
            line->setEndPoint(world(segment.end));
            line->setNormal(normal);
            line->setThickness(thickness);
            parts.append(line.release());
            continue;
        }
        const AcGePoint2d center = segment.center();
        const double start = (segment.start - center).angle();
        const double end = (segment.end - center).angle();
        auto arc = newLike<AcDbArc>(entity);
        arc->setNormal(normal);
        arc->setCenter(world(center));
        arc->setRadius(segment.radius());
        arc->setStartAngle(segment.bulge > 0.0 ? start : end);
        arc->setEndAngle(segment.bulge > 0.0 ? end : start);
        arc->setThickness(thickness);
        parts.append(arc.release());
    }
}

AcGePoint3d PathCurve::toWorldPoint(const AcGePoint2d& point) const {
    return toWorld(subEcsNormal(), to3d(point, pathElevation()));
}

AcGePoint2d PathCurve::toPlanePoint(const AcGePoint3d& point) const {
    return to2d(toObject(subEcsNormal(), point));
}

Acad::ErrorStatus PathCurve::getStartParam(double& parameter) const {
    assertReadEnabled();
    parameter = 0.0;
    return Acad::eOk;
}

Acad::ErrorStatus PathCurve::getEndParam(double& parameter) const {
    assertReadEnabled();
    parameter = path()->endParameter();
    return Acad::eOk;
}

Acad::ErrorStatus PathCurve::getPointAtParam(double parameter, AcGePoint3d& point) const {
    assertReadEnabled();
    const PathView own = path();
    if (!inRange(*own, parameter)) {
        return Acad::eInvalidInput;
    }
    point = toWorldPoint(pointAt(*own, parameter));
    return Acad::eOk;
}

Acad::ErrorStatus PathCurve::getParamAtPoint(const AcGePoint3d& point, double& parameter) const {
    assertReadEnabled();
    const PathView own = path();
    if (own->vertices.empty()) {
        return Acad::eInvalidInput;
    }
    const double nearest = closestParameter(*own, toPlanePoint(point));
    if (toWorldPoint(pointAt(*own, nearest)).distanceTo(point) > onCurveTolerance(point)) {
        return Acad::eInvalidInput;
    }
    // A point that is a vertex to all accuracy has the vertex's own parameter.
    parameter = std::fabs(nearest - std::round(nearest)) <= 1e-12 ? std::round(nearest) : nearest;
    return Acad::eOk;
}

Acad::ErrorStatus PathCurve::getDistAtParam(double parameter, double& distance) const {
    assertReadEnabled();
    const PathView own = path();
    if (!inRange(*own, parameter)) {
        return Acad::eInvalidInput;
    }
    distance = distanceAtParameter(*own, parameter);
    return Acad::eOk;
}

Acad::ErrorStatus PathCurve::getParamAtDist(double distance, double& parameter) const {
    assertReadEnabled();
    const std::optional<double> found = parameterAtDistance(*path(), distance);
    if (!found) {
        return Acad::eInvalidInput;
    }
    parameter = *found;
    return Acad::eOk;
}

Acad::ErrorStatus PathCurve::getFirstDeriv(double parameter, AcGeVector3d& derivative) const {
    assertReadEnabled();
    const PathView own = path();
    if (!inRange(*own, parameter) || own->segmentCount() == 0) {
        return Acad::eInvalidInput;
    }
    derivative = toWorld(subEcsNormal(), to3d(firstDerivativeAt(*own, parameter)));
    return Acad::eOk;
}

Acad::ErrorStatus PathCurve::getSecondDeriv(double parameter, AcGeVector3d& derivative) const {
    assertReadEnabled();
    const PathView own = path();
    if (!inRange(*own, parameter) || own->segmentCount() == 0) {
        return Acad::eInvalidInput;
    }
    derivative = toWorld(subEcsNormal(), to3d(secondDerivativeAt(*own, parameter)));
    return Acad::eOk;
}

Acad::ErrorStatus PathCurve::getClosestPointTo(const AcGePoint3d& given, AcGePoint3d& closest,
                                               bool extend) const {
    assertReadEnabled();
    const PathView own = path();
    if (own->vertices.empty()) {
        return Acad::eDegenerateGeometry;
    }
    const AcGePoint2d point = toPlanePoint(given);
    AcGePoint2d best = pointAt(*own, closestParameter(*own, point));
    if (extend && !own->closed && own->segmentCount() > 0) {
        const auto consider = [&](const PathSegment& segment, bool before) {
            const double fraction = segment.unboundedFraction(point);
            const bool beyond = segment.isArc() ? fraction < 0.0 || fraction > 1.0
                                                : (before ? fraction < 0.0 : fraction > 1.0);
            const AcGePoint2d candidate = segment.pointAt(fraction);
            if (beyond && candidate.distanceSqrdTo(point) < best.distanceSqrdTo(point)) {
                best = candidate;
            }
        };
        consider(own->segment(0), true);
        consider(own->segment(own->segmentCount() - 1), false);
    }
    closest = toWorldPoint(best);
    return Acad::eOk;
}

Acad::ErrorStatus PathCurve::getOffsetCurves(double distance, AcDbVoidPtrArray& curves) const {
    assertReadEnabled();
    const PathView own = path();
    if (own->segmentCount() == 0 || !std::isfinite(distance)) {
        return Acad::eInvalidInput;
    }
    // Outwards is to the right of a counterclockwise path.
    const bool flipped = own->closed && signedArea(*own) < 0.0;
    const std::vector<BulgePath> offsets = offsetPath(*own, flipped ? -distance : distance);
    if (offsets.empty()) {
        return Acad::eInvalidOffset;
    }
    const std::vector<SegmentWidths> widths = segmentWidths();
    const PathIndex index(widths.empty() ? BulgePath() : *own);
    for (const BulgePath& offset : offsets) {
        WidePath shape{offset, {}};
        if (!widths.empty()) {
            shape.widths = widthsBeside(*own, index, widths, offset);
        }
        curves.append(newSimilar(std::move(shape)).release());
    }
    return Acad::eOk;
}

Acad::ErrorStatus PathCurve::getSplitCurves(const AcGeDoubleArray& parameters,
                                            AcDbVoidPtrArray& pieces) const {
    assertReadEnabled();
    const PathView own = path();
    std::vector<double> cuts;
    for (double parameter : parameters) {
        if (!inRange(*own, parameter)) {
            return Acad::eInvalidInput;
        }
        cuts.push_back(parameter);
    }
    if (own->segmentCount() == 0 || cuts.empty()) {
        return Acad::eInvalidInput;
    }
    for (WidePath& part : splitWidePath(*own, segmentWidths(), std::move(cuts))) {
        pieces.append(newSimilar(std::move(part)).release());
    }
    return Acad::eOk;
}

Acad::ErrorStatus PathCurve::extend(double parameter) {
    const PathView own = path();
    const int count = own->segmentCount();
    if (own->closed || count == 0 || !std::isfinite(parameter) || (parameter >= 0.0 && parameter <= count)) {
        return Acad::eInvalidInput;
    }
    const bool start = parameter < 0.0;
    const PathSegment last = own->segment(start ? 0 : count - 1);
    const PathSegment longer =
        start ? last.part(parameter, 1.0) : last.part(0.0, 1.0 + parameter - static_cast<double>(count));
    if (std::fabs(last.sweep()) * (start ? 1.0 - parameter : 1.0 + parameter - count) >= twoPi) {
        return Acad::eInvalidInput;
    }
    return changeEnd(start, start ? longer.start : longer.end, longer.bulge);
}

Acad::ErrorStatus PathCurve::extend(bool extendStart, const AcGePoint3d& toPoint) {
    const PathView own = path();
    const int count = own->segmentCount();
    if (own->closed || count == 0) {
        return Acad::eInvalidInput;
    }
    const PathSegment segment = own->segment(extendStart ? 0 : count - 1);
    double fraction = segment.unboundedFraction(toPlanePoint(toPoint));
    if (segment.isArc()) {
        // The other way round the circle.
        const double turn = twoPi / std::fabs(segment.sweep());
        if (extendStart && fraction > 1.0) {
            fraction -= turn;
        } else if (!extendStart && fraction < 0.0) {
            fraction += turn;
        }
    }
    return extend(extendStart ? std::min(fraction, 0.0) : count - 1 + std::max(fraction, 0.0));
}

Acad::ErrorStatus PathCurve::getArea(double& area) const {
    assertReadEnabled();
    area = std::fabs(signedArea(*path()));
    return Acad::eOk;
}

Acad::ErrorStatus PathCurve::getPlane(AcGePlane& plane, AcDb::Planarity& planarity) const {
    assertReadEnabled();
    planarity = AcDb::kPlanar;
    plane.set(toWorldPoint(pointAt(*path(), 0.0)), subEcsNormal());
    return Acad::eOk;
}

bool PathCurve::subCurvePieces(std::vector<CurvePiece>& pieces) const {
    appendPieces(*path(), subEcsNormal(), pathElevation(), pieces);
    return true;
}

Acad::ErrorStatus PathCurve::subGetExtentsUnder(const AcGeMatrix3d& transform, AcDbExtents& extents) const {
    assertReadEnabled();
    const PathView own = path();
    AcDbExtents box;
    const AcGeVector3d normal = subEcsNormal();
    const AcGeVector3d extrusion = transform * (normal * pathThickness());
    if (isWorldNormal(normal) && transform == AcGeMatrix3d::kIdentity) {
        const Box2d flat = host::extents(*own);
        if (!flat.isEmpty()) {
            box.addPoint(to3d(flat.minimum, pathElevation()));
            box.addPoint(to3d(flat.maximum, pathElevation()));
        }
    } else {
        const AcGeMatrix3d plane = transform * AcGeMatrix3d::planeToWorld(normal);
        for (const BulgeVertex& vertex : own->vertices) {
            box.addPoint(plane * to3d(vertex.point, pathElevation()));
        }
        if (std::any_of(own->vertices.begin(), own->vertices.end(),
                        [](const BulgeVertex& vertex) { return vertex.bulge != 0.0; })) {
            std::vector<CurvePiece> pieces;
            appendPieces(*own, normal, pathElevation(), pieces);
            for (const CurvePiece& piece : pieces) {
                piece.transformed(transform).addExtents(box);
            }
        }
    }
    if (box.isEmpty()) {
        return Acad::eInvalidExtents;
    }
    box.expandBy(extrusion);
    extents = box;
    return Acad::eOk;
}

Acad::ErrorStatus PathCurve::subExplode(AcDbVoidPtrArray& parts) const {
    assertReadEnabled();
    explodePath(*this, *path(), subEcsNormal(), pathElevation(), pathThickness(), parts);
    return Acad::eOk;
}

} // namespace host
