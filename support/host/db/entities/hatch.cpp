// Hatches: boundary, pattern and style; what they measure and how they move.
#include "host/db/entities/hatch.h"

#include "host/db/dbents.h"
#include "host/db/entities/transforms.h"

#include <algorithm>

ACRX_DXF_DEFINE_MEMBERS(AcDbHatch, AcDbEntity, AcDb::kDHL_CURRENT, AcDb::kMReleaseCurrent, 0, HATCH,
                        ObjectDBX Classes)

double AcDbHatch::elevation() const {
    assertReadEnabled();
    return m.elevation;
}
Acad::ErrorStatus AcDbHatch::setElevation(double elevation) {
    assertWriteEnabled();
    m.elevation = elevation;
    return Acad::eOk;
}
AcGeVector3d AcDbHatch::normal() const {
    assertReadEnabled();
    return m.normal;
}
Acad::ErrorStatus AcDbHatch::setNormal(const AcGeVector3d& normal) {
    assertWriteEnabled();
    m.normal = host::unitNormal(normal);
    return Acad::eOk;
}

// Loops.

const host::HatchLoop* AcDbHatch::loopAt(int index) const {
    assertReadEnabled();
    return index >= 0 && index < std::ssize(m.loops) ? &m.loops[static_cast<std::size_t>(index)] : nullptr;
}

int AcDbHatch::numLoops() const {
    assertReadEnabled();
    return static_cast<int>(m.loops.size());
}

Adesk::Int32 AcDbHatch::loopTypeAt(int index) const {
    const host::HatchLoop* loop = loopAt(index);
    return loop != nullptr ? loop->type : 0;
}

Acad::ErrorStatus AcDbHatch::getLoopAt(int index, Adesk::Int32& type, AcGePoint2dArray& vertices,
                                       AcGeDoubleArray& bulges) const {
    const host::HatchLoop* loop = loopAt(index);
    if (loop == nullptr) {
        return Acad::eInvalidIndex;
    }
    if (!loop->isPolyline()) {
        return Acad::eNotApplicable;
    }
    type = loop->type;
    for (const host::BulgeVertex& vertex : loop->path.vertices) {
        vertices.append(vertex.point);
        bulges.append(vertex.bulge);
    }
    return Acad::eOk;
}

Acad::ErrorStatus AcDbHatch::getLoopAt(int index, Adesk::Int32& type, AcGeVoidPointerArray& edges,
                                       AcGeIntArray& edgeTypes) const {
    const host::HatchLoop* loop = loopAt(index);
    if (loop == nullptr) {
        return Acad::eInvalidIndex;
    }
    if (loop->isPolyline()) {
        return Acad::eNotApplicable;
    }
    type = loop->type;
    for (const host::HatchEdge& edge : loop->edges) {
        const AcGeVector2d minor = edge.major.perpVector() * (edge.counterclockwise ? 1.0 : -1.0);
        switch (edge.kind) {
        case host::HatchEdge::Kind::line:
            edges.append(new AcGeLineSeg2d(edge.start, edge.end));
            break;
        case host::HatchEdge::Kind::arc:
            edges.append(new AcGeCircArc2d(edge.start, edge.major.length(), edge.startAngle, edge.endAngle,
                                           edge.major, !edge.counterclockwise));
            break;
        case host::HatchEdge::Kind::ellipse:
            edges.append(new AcGeEllipArc2d(edge.start, edge.major, minor, edge.major.length(),
                                            edge.major.length() * edge.ratio, edge.startAngle,
                                            edge.endAngle));
            break;
        case host::HatchEdge::Kind::spline:
            for (const host::BoundaryPiece& chord : host::edgeChords(edge)) {
                edges.append(new AcGeLineSeg2d(chord.start, chord.end));
                edgeTypes.append(kLine);
            }
            continue;
        }
        edgeTypes.append(static_cast<int>(edge.kind));
    }
    return Acad::eOk;
}

Acad::ErrorStatus AcDbHatch::appendLoop(Adesk::Int32 type, const AcGePoint2dArray& vertices,
                                        const AcGeDoubleArray& bulges) {
    return insertLoopAt(numLoops(), type, vertices, bulges);
}

Acad::ErrorStatus AcDbHatch::insertLoopAt(int index, Adesk::Int32 type, const AcGePoint2dArray& vertices,
                                          const AcGeDoubleArray& bulges) {
    assertWriteEnabled();
    if (index < 0 || index > numLoops()) {
        return Acad::eInvalidIndex;
    }
    if (vertices.length() < 2 || (!bulges.isEmpty() && bulges.length() != vertices.length())) {
        return Acad::eInvalidInput;
    }
    host::HatchLoop loop;
    loop.type = type | kPolyline;
    loop.path.closed = true;
    for (int at = 0; at < vertices.length(); ++at) {
        loop.path.add(vertices[at], bulges.isEmpty() ? 0.0 : bulges[at]);
        loop.hasBulges = loop.hasBulges || loop.path.vertices.back().bulge != 0.0;
    }
    // A last vertex in the place of the first one says nothing.
    if (loop.path.vertexCount() > 2 && vertices.first().isEqualTo(vertices.last())) {
        loop.path.vertices.pop_back();
    }
    m.loops.insert(m.loops.begin() + index, std::move(loop));
    changed();
    return Acad::eOk;
}

namespace {

std::optional<host::HatchEdge> edgeOf(const AcGeCurve2d& curve) {
    host::HatchEdge edge;
    if (curve.isKindOf(AcGe::kLineSeg2d)) {
        const auto& line = static_cast<const AcGeLineSeg2d&>(curve);
        edge.start = line.startPoint();
        edge.end = line.endPoint();
        return edge;
    }
    if (curve.isKindOf(AcGe::kCircArc2d)) {
        const auto& arc = static_cast<const AcGeCircArc2d&>(curve);
        edge.kind = host::HatchEdge::Kind::arc;
        edge.start = arc.center();
        edge.major.set(arc.radius(), 0.0);
        edge.counterclockwise = !arc.isClockWise();
        const double turn = edge.counterclockwise ? arc.refVec().angle() : -arc.refVec().angle();
        edge.startAngle = arc.startAng() + turn;
        edge.endAngle = arc.endAng() + turn;
        return edge;
    }
    if (curve.isKindOf(AcGe::kEllipArc2d)) {
        const auto& arc = static_cast<const AcGeEllipArc2d&>(curve);
        edge.kind = host::HatchEdge::Kind::ellipse;
        edge.start = arc.center();
        edge.major = arc.majorAxis() * arc.majorRadius();
        edge.ratio = arc.minorRadius() / arc.majorRadius();
        edge.counterclockwise = !arc.isClockWise();
        edge.startAngle = arc.startAng();
        edge.endAngle = arc.endAng();
        return edge;
    }
    return std::nullopt;
}

host::HatchEdge splineEdge(const host::BezierCurve& curve) {
    host::HatchEdge edge;
    edge.kind = host::HatchEdge::Kind::spline;
    edge.spline = std::make_unique<host::HatchSpline>();
    host::HatchSpline& spline = *edge.spline;
    spline.degree = curve.degree();
    spline.rational = curve.isRational();
    for (const host::WeightedPoint& point : curve.points()) {
        spline.controlPoints.push_back(host::to2d(point.point()));
        if (spline.rational) {
            spline.weights.push_back(point.w);
        }
    }
    spline.knots.assign(curve.points().size(), 0.0);
    spline.knots.insert(spline.knots.end(), curve.points().size(), 1.0);
    return edge;
}

/// A piece of a curve as an edge in the plane of a hatch.
host::HatchEdge edgeOf(const host::CurvePiece& piece, const AcGeMatrix3d& toPlane) {
    const host::CurvePiece flat = piece.transformed(toPlane);
    if (flat.isBezier()) {
        return splineEdge(flat.bezier);
    }
    host::HatchEdge edge;
    if (!flat.isArc()) {
        edge.start = host::to2d(flat.start());
        edge.end = host::to2d(flat.end());
        return edge;
    }
    const host::PrincipalAxes axes = host::principalAxes(flat.u, flat.v);
    const AcGeVector2d major = host::to2d(axes.major);
    edge.start = host::to2d(flat.origin);
    edge.counterclockwise = major.crossProduct(host::to2d(axes.minor)) > 0.0;
    double turn = -axes.shift;
    if (flat.isCircular()) {
        edge.kind = host::HatchEdge::Kind::arc;
        edge.major.set(flat.radius(), 0.0);
        turn += edge.counterclockwise ? major.angle() : -major.angle();
    } else {
        edge.kind = host::HatchEdge::Kind::ellipse;
        edge.major = major;
        edge.ratio = axes.minor.length() / axes.major.length();
    }
    edge.startAngle = flat.from + turn;
    edge.endAngle = flat.to + turn;
    return edge;
}

} // namespace

Acad::ErrorStatus AcDbHatch::appendLoop(Adesk::Int32 type, const AcGeVoidPointerArray& edges,
                                        const AcGeIntArray&) {
    assertWriteEnabled();
    host::HatchLoop loop;
    loop.type = type & ~kPolyline;
    bool known = !edges.isEmpty();
    for (void* pointer : edges) {
        const std::unique_ptr<AcGeCurve2d> curve(static_cast<AcGeCurve2d*>(pointer));
        std::optional<host::HatchEdge> edge = curve != nullptr ? edgeOf(*curve) : std::nullopt;
        known = known && edge.has_value();
        if (edge.has_value()) {
            loop.edges.push_back(std::move(*edge));
        }
    }
    if (!known) {
        return Acad::eInvalidInput;
    }
    m.loops.push_back(std::move(loop));
    changed();
    return Acad::eOk;
}

namespace {

using ObjectPieces = std::vector<host::CurvePiece>;

/// Puts objects, and the pieces of each, into an order in which each goes on where the one before ends; those
/// that do are left as they are. Looking for an object's place takes as many steps as objects are left.
void orderByEnds(std::vector<ObjectPieces>& objects) {
    constexpr double touching = 1e-6;
    AcGePoint3d at = objects.front().back().end();
    const auto gap = [&at](const ObjectPieces& pieces) {
        return std::min(at.distanceTo(pieces.front().start()), at.distanceTo(pieces.back().end()));
    };
    for (auto place = objects.begin() + 1; place != objects.end(); ++place) {
        auto next = place;
        if (gap(*next) > touching) {
            next = std::min_element(place, objects.end(), [&](const ObjectPieces& a, const ObjectPieces& b) {
                return gap(a) < gap(b);
            });
        }
        const AcGePoint3d start = next->front().start();
        const AcGePoint3d end = next->back().end();
        const bool isForward = at.distanceTo(start) <= at.distanceTo(end);
        at = isForward ? end : start;
        if (!isForward) {
            std::reverse(next->begin(), next->end());
        }
        std::rotate(place, next, next + 1);
    }
}

} // namespace

Acad::ErrorStatus AcDbHatch::appendLoop(Adesk::Int32 type, const AcDbObjectIdArray& objects) {
    assertWriteEnabled();
    host::HatchLoop loop;
    loop.type = type & ~kPolyline;
    std::vector<ObjectPieces> ordered;
    for (const AcDbObjectId& id : objects) {
        const auto* entity = host::peek<AcDbEntity>(id);
        if (entity == nullptr) {
            return Acad::eInvalidInput;
        }
        const host::ReadAccess access(*entity);
        const auto* polyline = AcDbPolyline::cast(entity);
        if (polyline != nullptr && objects.length() == 1 && polyline->normal() == m.normal) {
            loop.type |= kPolyline;
            loop.path = polyline->bulgePath();
            loop.path.closed = true;
            loop.hasBulges = polyline->hasBulges();
        } else {
            std::vector<host::CurvePiece> pieces;
            if (!entity->curvePieces(pieces) || pieces.empty()) {
                return Acad::eInvalidInput;
            }
            ordered.push_back(std::move(pieces));
        }
        if (m.associative) {
            loop.sources.push_back(id);
        }
    }
    if (!ordered.empty()) {
        orderByEnds(ordered);
    }
    for (const ObjectPieces& pieces : ordered) {
        for (const host::CurvePiece& piece : pieces) {
            loop.edges.push_back(edgeOf(piece, AcGeMatrix3d::worldToPlane(m.normal)));
        }
    }
    if (loop.edges.empty() && loop.path.vertexCount() < 2) {
        return Acad::eInvalidInput;
    }
    m.loops.push_back(std::move(loop));
    changed();
    return Acad::eOk;
}

Acad::ErrorStatus AcDbHatch::removeLoopAt(int index) {
    assertWriteEnabled();
    if (loopAt(index) == nullptr) {
        return Acad::eInvalidIndex;
    }
    m.loops.erase(m.loops.begin() + index);
    changed();
    return Acad::eOk;
}

// Associativity.

bool AcDbHatch::associative() const {
    assertReadEnabled();
    return m.associative;
}
Acad::ErrorStatus AcDbHatch::setAssociative(bool associative) {
    assertWriteEnabled();
    m.associative = associative;
    return Acad::eOk;
}
Acad::ErrorStatus AcDbHatch::getAssocObjIds(AcDbObjectIdArray& ids) const {
    for (int loop = 0; loop < numLoops(); ++loop) {
        getAssocObjIdsAt(loop, ids);
    }
    return Acad::eOk;
}
Acad::ErrorStatus AcDbHatch::getAssocObjIdsAt(int loop, AcDbObjectIdArray& ids) const {
    const host::HatchLoop* found = loopAt(loop);
    if (found == nullptr) {
        return Acad::eInvalidIndex;
    }
    for (const AcDbObjectId& id : found->sources) {
        ids.append(id);
    }
    return Acad::eOk;
}
Acad::ErrorStatus AcDbHatch::setAssocObjIdsAt(int loop, const AcDbObjectIdArray& ids) {
    assertWriteEnabled();
    if (loopAt(loop) == nullptr) {
        return Acad::eInvalidIndex;
    }
    m.loops[static_cast<std::size_t>(loop)].sources.assign(ids.begin(), ids.end());
    return Acad::eOk;
}
Acad::ErrorStatus AcDbHatch::removeAssocObjIds() {
    assertWriteEnabled();
    for (host::HatchLoop& loop : m.loops) {
        loop.sources.clear();
    }
    m.associative = false;
    return Acad::eOk;
}

// Evaluation and measures.

AcDbHatch::Loops AcDbHatch::loopPieces() const {
    Loops loops;
    loops.reserve(m.loops.size());
    for (const host::HatchLoop& loop : m.loops) {
        loops.push_back(host::boundaryPieces(loop));
    }
    return loops;
}

Acad::ErrorStatus AcDbHatch::evaluateHatch(bool) {
    assertReadEnabled();
    mLines.clear();
    if (m.solid) {
        return Acad::eOk;
    }
    const auto style = static_cast<host::HatchStyleKind>(m.style);
    return host::hatchLines(loopPieces(), style, m.pattern, mLines) ? Acad::eOk : Acad::eHatchTooDense;
}

Acad::ErrorStatus AcDbHatch::getHatchLineDataAt(int index, AcGePoint2d& start, AcGePoint2d& end) const {
    assertReadEnabled();
    if (index < 0 || index >= numHatchLines()) {
        return Acad::eInvalidIndex;
    }
    start = mLines[static_cast<std::size_t>(index)].start;
    end = mLines[static_cast<std::size_t>(index)].end;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbHatch::getArea(double& area) const {
    assertReadEnabled();
    if (m.loops.empty()) {
        return Acad::eNotApplicable;
    }
    const Loops loops = loopPieces();
    const std::vector<int> depths = host::nestingDepths(loops);
    const auto style = static_cast<host::HatchStyleKind>(m.style);
    area = 0.0;
    for (std::size_t index = 0; index < loops.size(); ++index) {
        // Crossing a loop changes whether there is hatching, or it does not.
        const int change = static_cast<int>(host::isHatched(style, depths[index] + 1)) -
                           static_cast<int>(host::isHatched(style, depths[index]));
        area += change * std::fabs(host::signedArea(loops[index]));
    }
    return Acad::eOk;
}

Acad::ErrorStatus AcDbHatch::getPlane(AcGePlane& plane, AcDb::Planarity& planarity) const {
    assertReadEnabled();
    planarity = AcDb::kPlanar;
    plane.set(worldPoint({}), m.normal);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbHatch::subGetExtentsUnder(const AcGeMatrix3d& transform, AcDbExtents& extents) const {
    assertReadEnabled();
    AcDbExtents box;
    const AcGeMatrix3d plane =
        transform * AcGeMatrix3d::planeToWorld(m.normal) * AcGeMatrix3d::translation({0.0, 0.0, m.elevation});
    for (const host::HatchLoop& loop : m.loops) {
        for (const host::BoundaryPiece& piece : host::boundaryPieces(loop)) {
            const host::CurvePiece curve =
                piece.isArc ? host::CurvePiece::arc(host::to3d(piece.center), host::to3d(piece.u),
                                                    host::to3d(piece.v), piece.from, piece.to)
                            : host::CurvePiece::line(host::to3d(piece.start), host::to3d(piece.end));
            curve.transformed(plane).addExtents(box);
        }
    }
    if (box.isEmpty()) {
        return Acad::eInvalidExtents;
    }
    extents = box;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbHatch::subTransformBy(const AcGeMatrix3d& transform) {
    const host::PlanarTransform planar(transform, m.normal, m.elevation);
    if (planar.isSingular) {
        return Acad::eDegenerateGeometry;
    }
    assertWriteEnabled();
    for (host::HatchLoop& loop : m.loops) {
        host::transformLoop(loop, planar.local, planar.isUniform);
    }
    host::transformPattern(m.pattern, planar.local);
    for (AcGePoint2d& seed : m.seeds) {
        seed = planar(seed);
    }
    const AcGeVector2d old = host::direction(m.patternAngle);
    const AcGeVector2d turned = planar.local * old;
    if (!(turned.x == old.x && turned.y == old.y)) {
        m.patternAngle = turned.angle();
        m.patternScale *= std::sqrt(std::fabs(planar.local.det()));
    }
    m.normal = planar.normal;
    m.elevation = planar.elevation;
    changed();
    return Acad::eOk;
}

// Grips.

AcGePoint2d AcDbHatch::middle() const {
    host::Box2d box;
    for (const host::HatchLoop& loop : m.loops) {
        box.add(host::extents(host::boundaryPieces(loop)));
    }
    return box.minimum + (box.maximum - box.minimum) / 2.0;
}

namespace {

/// Calls visit(point) for the vertices of polylines and, if wanted, the ends of the other loops' lines.
template <class Loops, class Visit>
void forVertices(Loops& loops, bool polylinesOnly, Visit&& visit) {
    for (auto& loop : loops) {
        for (auto& vertex : loop.path.vertices) {
            visit(vertex.point);
        }
        if (polylinesOnly) {
            continue;
        }
        for (auto& edge : loop.edges) {
            visit(edge.start);
            if (edge.kind == host::HatchEdge::Kind::line) {
                visit(edge.end);
            }
        }
    }
}

} // namespace

std::vector<AcGePoint2d> AcDbHatch::vertices(bool polylinesOnly) const {
    std::vector<AcGePoint2d> points;
    forVertices(m.loops, polylinesOnly, [&](const AcGePoint2d& point) { points.push_back(point); });
    return points;
}

void AcDbHatch::moveVertices(const AcDbIntArray& indices, int first, bool polylinesOnly,
                             const AcGeVector2d& offset) {
    std::vector<bool> moved(vertices(polylinesOnly).size());
    for (const int index : indices) {
        if (index >= first) {
            moved[static_cast<std::size_t>(index - first)] = true;
        }
    }
    std::size_t at = 0;
    forVertices(m.loops, polylinesOnly, [&](AcGePoint2d& point) {
        if (moved[at++]) {
            point += offset;
        }
    });
    changed();
}

Acad::ErrorStatus AcDbHatch::subGetGripPoints(AcGePoint3dArray& points, AcDbIntArray&, AcDbIntArray&) const {
    assertReadEnabled();
    if (m.loops.empty()) {
        return Acad::eOk;
    }
    points.append(worldPoint(middle()));
    if (!m.associative) {
        for (const AcGePoint2d& vertex : vertices(true)) {
            points.append(worldPoint(vertex));
        }
    }
    return Acad::eOk;
}

Acad::ErrorStatus AcDbHatch::subMoveGripPointsAt(const AcDbIntArray& indices, const AcGeVector3d& offset) {
    const int count = m.loops.empty() ? 0 : 1 + (m.associative ? 0 : static_cast<int>(vertices(true).size()));
    if (const Acad::ErrorStatus status = host::forGrips(indices, count, [](int) {}); status != Acad::eOk) {
        return status;
    }
    if (indices.contains(0)) {
        return subTransformBy(AcGeMatrix3d::translation(offset));
    }
    assertWriteEnabled();
    moveVertices(indices, 1, true, host::to2d(host::toObject(m.normal, offset)));
    return Acad::eOk;
}

Acad::ErrorStatus AcDbHatch::subGetStretchPoints(AcGePoint3dArray& points) const {
    assertReadEnabled();
    for (const AcGePoint2d& vertex : vertices(false)) {
        points.append(worldPoint(vertex));
    }
    return Acad::eOk;
}

Acad::ErrorStatus AcDbHatch::subMoveStretchPointsAt(const AcDbIntArray& indices, const AcGeVector3d& offset) {
    const int count = static_cast<int>(vertices(false).size());
    if (const Acad::ErrorStatus status = host::forGrips(indices, count, [](int) {}); status != Acad::eOk) {
        return status;
    }
    // A hatch that lies inside the window as a whole moves as a whole.
    if (indices.length() == count) {
        return subTransformBy(AcGeMatrix3d::translation(offset));
    }
    assertWriteEnabled();
    moveVertices(indices, 0, false, host::to2d(host::toObject(m.normal, offset)));
    return Acad::eOk;
}
