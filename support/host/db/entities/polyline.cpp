// Light polylines: vertices, widths, editing and drawing.
#include "host/db/entities/polyline.h"

#include "host/db/entities/fields.h"
#include "host/db/entities/transforms.h"
#include "host/gi/gi.h"

#include <algorithm>

ACRX_DXF_DEFINE_MEMBERS(AcDbPolyline, AcDbCurve, AcDb::kDHL_CURRENT, AcDb::kMReleaseCurrent, 0, LWPOLYLINE,
                        ObjectDBX Classes)

using host::BulgeVertex;
using host::PathSegment;
using host::SegmentWidths;

Acad::ErrorStatus AcDbPolyline::getDistAtParam(double parameter, double& distance) const {
    assertReadEnabled();
    if (!host::inRange(*m.path, parameter)) {
        return Acad::eInvalidInput;
    }
    distance = m.path.measure().distanceAtParameter(parameter);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::getParamAtDist(double distance, double& parameter) const {
    assertReadEnabled();
    const std::optional<double> found = m.path.measure().parameterAtDistance(distance);
    if (!found) {
        return Acad::eInvalidInput;
    }
    parameter = *found;
    return Acad::eOk;
}

AcDbPolyline::AcDbPolyline(unsigned int vertexCount) {
    m.path.change().vertices.reserve(std::min(vertexCount, 1U << 20));
}

SegmentWidths AcDbPolyline::widthsOf(std::size_t index) const {
    return m.path.extras != nullptr && !m.path.extras->widths.empty()
               ? m.path.extras->widths[index]
               : SegmentWidths{m.rest->constantWidth, m.rest->constantWidth};
}

std::vector<SegmentWidths>& AcDbPolyline::varyingWidths() {
    if (m.path.extras == nullptr) {
        m.path.extras = std::make_unique<host::PolylineExtras>();
    }
    if (m.path.extras->widths.empty()) {
        m.path.extras->widths.assign(m.path->vertices.size(), {m.rest->constantWidth, m.rest->constantWidth});
    }
    return m.path.extras->widths;
}

void AcDbPolyline::simplify() {
    if (m.path.extras == nullptr) {
        return;
    }
    std::vector<SegmentWidths>& widths = m.path.extras->widths;
    const bool equal = std::all_of(widths.begin(), widths.end(), [&](const SegmentWidths& one) {
        return one.start == widths.front().start && one.end == widths.front().start;
    });
    if (equal && !widths.empty()) {
        m.rest.set(&host::PolylineRest::constantWidth, widths.front().start);
        widths.clear();
    }
    std::vector<Adesk::Int32>& identifiers = m.path.extras->identifiers;
    if (std::all_of(identifiers.begin(), identifiers.end(), [](Adesk::Int32 one) { return one == 0; })) {
        identifiers.clear();
    }
    if (widths.empty() && identifiers.empty()) {
        m.path.extras.reset();
    }
}

unsigned int AcDbPolyline::numVerts() const {
    assertReadEnabled();
    return static_cast<unsigned int>(m.path->vertices.size());
}

Acad::ErrorStatus AcDbPolyline::getPointAt(unsigned int index, AcGePoint3d& point) const {
    assertReadEnabled();
    if (!isVertex(index)) {
        return Acad::eInvalidIndex;
    }
    point = toWorldPoint(m.path->vertices[index].point);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::getPointAt(unsigned int index, AcGePoint2d& point) const {
    assertReadEnabled();
    if (!isVertex(index)) {
        return Acad::eInvalidIndex;
    }
    point = m.path->vertices[index].point;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::setPointAt(unsigned int index, const AcGePoint2d& point) {
    assertWriteEnabled();
    if (!isVertex(index)) {
        return Acad::eInvalidIndex;
    }
    m.path.change().vertices[index].point = point;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::getBulgeAt(unsigned int index, double& bulge) const {
    assertReadEnabled();
    if (!isVertex(index)) {
        return Acad::eInvalidIndex;
    }
    bulge = m.path->vertices[index].bulge;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::setBulgeAt(unsigned int index, double bulge) {
    assertWriteEnabled();
    if (!isVertex(index)) {
        return Acad::eInvalidIndex;
    }
    if (!std::isfinite(bulge)) {
        return Acad::eInvalidInput;
    }
    m.path.change().vertices[index].bulge = bulge;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::getWidthsAt(unsigned int index, double& startWidth, double& endWidth) const {
    assertReadEnabled();
    if (!isVertex(index)) {
        return Acad::eInvalidIndex;
    }
    const SegmentWidths widths = widthsOf(index);
    startWidth = widths.start;
    endWidth = widths.end;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::setWidthsAt(unsigned int index, double startWidth, double endWidth) {
    assertWriteEnabled();
    if (!isVertex(index)) {
        return Acad::eInvalidIndex;
    }
    if (!(startWidth >= 0.0 && endWidth >= 0.0)) {
        return Acad::eInvalidInput;
    }
    if (!(widthsOf(index) == SegmentWidths{startWidth, endWidth})) {
        varyingWidths()[index] = {startWidth, endWidth};
    }
    return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::getConstantWidth(double& width) const {
    assertReadEnabled();
    if (m.path.extras != nullptr && !m.path.extras->widths.empty()) {
        const std::vector<SegmentWidths>& widths = m.path.extras->widths;
        for (const SegmentWidths& one : widths) {
            if (one.start != widths.front().start || one.end != widths.front().start) {
                return Acad::eInvalidInput;
            }
        }
        width = widths.front().start;
        return Acad::eOk;
    }
    width = m.rest->constantWidth;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::setConstantWidth(double width) {
    if (!(width >= 0.0) || !std::isfinite(width)) {
        return Acad::eInvalidInput;
    }
    assertWriteEnabled();
    m.rest.set(&host::PolylineRest::constantWidth, width);
    if (m.path.extras != nullptr) {
        m.path.extras->widths.clear();
        simplify();
    }
    return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::addVertexAt(unsigned int index, const AcGePoint2d& point, double bulge,
                                            double startWidth, double endWidth,
                                            Adesk::Int32 vertexIdentifier) {
    if (index > m.path->vertices.size()) {
        return Acad::eInvalidIndex;
    }
    if (!std::isfinite(point.x + point.y + bulge)) {
        return Acad::eInvalidInput;
    }
    assertWriteEnabled();
    const auto at = static_cast<std::ptrdiff_t>(index);
    const bool varies = m.path.extras != nullptr && !m.path.extras->widths.empty();
    const double missing = varies ? 0.0 : m.rest->constantWidth;
    const SegmentWidths widths{startWidth >= 0.0 ? startWidth : missing,
                               endWidth >= 0.0 ? endWidth : missing};
    if (!varies && m.path->vertices.empty() && widths.start == widths.end) {
        m.rest.set(&host::PolylineRest::constantWidth, widths.start);
    }
    const bool differs = widths.start != m.rest->constantWidth || widths.end != m.rest->constantWidth;
    if (varies || differs) {
        std::vector<SegmentWidths>& all = varyingWidths();
        all.insert(all.begin() + at, widths);
    }
    if (vertexIdentifier != 0 || hasVertexIdentifiers()) {
        if (m.path.extras == nullptr) {
            m.path.extras = std::make_unique<host::PolylineExtras>();
        }
        m.path.extras->identifiers.resize(m.path->vertices.size());
        m.path.extras->identifiers.insert(m.path.extras->identifiers.begin() + at, vertexIdentifier);
    }
    m.path.change().vertices.insert(m.path->vertices.begin() + at, BulgeVertex{point, bulge});
    return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::removeVertexAt(unsigned int index) {
    if (!isVertex(index)) {
        return Acad::eInvalidIndex;
    }
    assertWriteEnabled();
    const auto at = static_cast<std::ptrdiff_t>(index);
    m.path.change().vertices.erase(m.path->vertices.begin() + at);
    if (m.path.extras != nullptr) {
        if (!m.path.extras->widths.empty()) {
            m.path.extras->widths.erase(m.path.extras->widths.begin() + at);
        }
        if (!m.path.extras->identifiers.empty()) {
            m.path.extras->identifiers.erase(m.path.extras->identifiers.begin() + at);
        }
    }
    return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::setVertexIdentifierAt(unsigned int index, Adesk::Int32 identifier) {
    assertWriteEnabled();
    if (!isVertex(index)) {
        return Acad::eInvalidIndex;
    }
    if (m.path.extras == nullptr) {
        m.path.extras = std::make_unique<host::PolylineExtras>();
    }
    m.path.extras->identifiers.resize(m.path->vertices.size());
    m.path.extras->identifiers[index] = identifier;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::getVertexIdentifierAt(unsigned int index, Adesk::Int32& identifier) const {
    assertReadEnabled();
    if (!isVertex(index)) {
        return Acad::eInvalidIndex;
    }
    identifier = hasVertexIdentifiers() ? m.path.extras->identifiers[index] : 0;
    return Acad::eOk;
}

bool AcDbPolyline::hasVertexIdentifiers() const {
    return m.path.extras != nullptr && !m.path.extras->identifiers.empty();
}

bool AcDbPolyline::hasBulges() const {
    assertReadEnabled();
    return std::any_of(m.path->vertices.begin(), m.path->vertices.end(),
                       [](const BulgeVertex& vertex) { return vertex.bulge != 0.0; });
}

bool AcDbPolyline::hasWidth() const {
    assertReadEnabled();
    if (m.path.extras == nullptr || m.path.extras->widths.empty()) {
        return m.rest->constantWidth != 0.0;
    }
    return std::any_of(m.path.extras->widths.begin(), m.path.extras->widths.end(),
                       [](const SegmentWidths& one) { return one.start != 0.0 || one.end != 0.0; });
}

bool AcDbPolyline::hasPlinegen() const {
    assertReadEnabled();
    return m.linetypeGeneration;
}

void AcDbPolyline::setPlinegen(bool generate) {
    assertWriteEnabled();
    m.linetypeGeneration = generate;
}

void AcDbPolyline::setClosed(bool closed) {
    assertWriteEnabled();
    m.path.change().closed = closed;
}

void AcDbPolyline::makeClosedIfStartAndEndVertexCoincide(double tolerance) {
    assertWriteEnabled();
    const std::size_t count = m.path->vertices.size();
    if (count > 2 && m.path->vertices.front().point.distanceTo(m.path->vertices.back().point) <= tolerance) {
        removeVertexAt(static_cast<unsigned int>(count) - 1);
        m.path.change().closed = true;
    }
}

double AcDbPolyline::elevation() const {
    assertReadEnabled();
    return m.rest->elevation;
}

void AcDbPolyline::setElevation(double elevation) {
    assertWriteEnabled();
    m.rest.set(&host::PolylineRest::elevation, elevation);
}

double AcDbPolyline::thickness() const {
    assertReadEnabled();
    return m.rest->thickness;
}

Acad::ErrorStatus AcDbPolyline::setThickness(double thickness) {
    assertWriteEnabled();
    m.rest.set(&host::PolylineRest::thickness, thickness);
    return Acad::eOk;
}

AcGeVector3d AcDbPolyline::normal() const {
    assertReadEnabled();
    return m.rest->normal;
}

Acad::ErrorStatus AcDbPolyline::setNormal(const AcGeVector3d& normal) {
    assertWriteEnabled();
    m.rest.set(&host::PolylineRest::normal, host::unitNormal(normal));
    return Acad::eOk;
}

AcDbPolyline::SegType AcDbPolyline::segType(unsigned int index) const {
    assertReadEnabled();
    if (!isVertex(index)) {
        return kEmpty;
    }
    if (static_cast<int>(index) >= m.path->segmentCount()) {
        return kPoint; // the last vertex of an open polyline
    }
    switch (m.path->segment(static_cast<int>(index)).kind()) {
    case PathSegment::Kind::Arc:
        return kArc;
    case PathSegment::Kind::Line:
        return kLine;
    case PathSegment::Kind::Point:
        break;
    }
    return kCoincident;
}

bool AcDbPolyline::onSegAt(unsigned int index, const AcGePoint2d& point, double& parameter) const {
    assertReadEnabled();
    if (static_cast<int>(index) >= m.path->segmentCount()) {
        return false;
    }
    const PathSegment segment = m.path->segment(static_cast<int>(index));
    const double nearest = segment.closestFraction(point);
    if (segment.pointAt(nearest).distanceTo(point) > host::onCurveTolerance(host::to3d(point))) {
        return false;
    }
    parameter = nearest;
    return true;
}

void AcDbPolyline::reset(bool reuse, unsigned int vertexCount) {
    assertWriteEnabled();
    if (!reuse) {
        m.path.change().vertices.clear();
        m.path.change().vertices.reserve(std::min(vertexCount, 1U << 20));
        m.path.extras.reset();
        m.rest.set(&host::PolylineRest::constantWidth, 0.0);
        return;
    }
    while (m.path->vertices.size() > vertexCount) {
        removeVertexAt(static_cast<unsigned int>(m.path->vertices.size()) - 1);
    }
}

void AcDbPolyline::maximizeMemory() {
    if (m.path->vertices.size() == m.path->vertices.capacity()) {
        m.path.change().vertices.reserve(m.path->vertices.size() * 2 + 8);
    }
}

void AcDbPolyline::minimizeMemory() {
    m.path.change().vertices.shrink_to_fit();
    simplify();
}

void AcDbPolyline::setShape(host::WidePath shape) {
    assertWriteEnabled();
    m.path.change() = std::move(shape.path);
    m.path.extras.reset();
    if (!shape.widths.empty() && !m.path->vertices.empty()) {
        m.path.extras = std::make_unique<host::PolylineExtras>();
        shape.widths.resize(m.path->vertices.size(), shape.widths.back());
        m.path.extras->widths = std::move(shape.widths);
        simplify();
    }
}

std::vector<SegmentWidths> AcDbPolyline::segmentWidths() const {
    std::vector<SegmentWidths> widths;
    if (hasWidth()) {
        for (int index = 0; index < m.path->segmentCount(); ++index) {
            widths.push_back(widthsOf(static_cast<std::size_t>(index)));
        }
    }
    return widths;
}

std::unique_ptr<AcDbCurve> AcDbPolyline::newSimilar(host::WidePath shape) const {
    auto similar = host::newLike<AcDbPolyline>(*this);
    similar->m.rest.set(&host::PolylineRest::normal, m.rest->normal);
    similar->m.rest.set(&host::PolylineRest::elevation, m.rest->elevation);
    similar->m.rest.set(&host::PolylineRest::thickness, m.rest->thickness);
    similar->m.linetypeGeneration = m.linetypeGeneration;
    similar->setShape(std::move(shape));
    return similar;
}

Acad::ErrorStatus AcDbPolyline::changeEnd(bool start, const AcGePoint2d& point, double bulge) {
    assertWriteEnabled();
    std::vector<BulgeVertex>& vertices = m.path.change().vertices;
    (start ? vertices.front() : vertices.back()).point = point;
    vertices[start ? 0 : vertices.size() - 2].bulge = bulge;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::reverseCurve() {
    assertWriteEnabled();
    const std::size_t count = m.path->vertices.size();
    // A closed polyline keeps its first vertex.
    const auto turn = [&](auto& list) {
        if (m.path->closed && !list.empty()) {
            std::rotate(list.begin(), list.end() - 1, list.end());
        }
    };
    m.path.change() = host::reversed(*m.path);
    turn(m.path.change().vertices);
    if (m.path.extras != nullptr) {
        std::reverse(m.path.extras->identifiers.begin(), m.path.extras->identifiers.end());
        turn(m.path.extras->identifiers);
        const std::vector<SegmentWidths> old = m.path.extras->widths;
        for (std::size_t index = 0; index < old.size(); ++index) {
            const SegmentWidths& from = old[(2 * count - 2 - index) % count];
            m.path.extras->widths[index] = {from.end, from.start};
        }
        turn(m.path.extras->widths);
    }
    return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::subTransformBy(const AcGeMatrix3d& transform) {
    const host::PlanarTransform planar(transform, m.rest->normal, m.rest->elevation);
    if (planar.isSingular) {
        return Acad::eDegenerateGeometry;
    }
    if (!planar.isUniform && hasBulges()) {
        return Acad::eCannotScaleNonUniformly;
    }
    assertWriteEnabled();
    for (BulgeVertex& vertex : m.path.change().vertices) {
        vertex.point = planar(vertex.point);
        if (planar.isMirrored) {
            vertex.bulge = -vertex.bulge;
        }
    }
    if (planar.isUniform && planar.scale != 1.0) {
        m.rest.set(&host::PolylineRest::constantWidth, m.rest->constantWidth * planar.scale);
        if (m.path.extras != nullptr) {
            for (SegmentWidths& widths : m.path.extras->widths) {
                widths = {widths.start * planar.scale, widths.end * planar.scale};
            }
        }
    }
    m.rest.set(&host::PolylineRest::normal, planar.normal);
    m.rest.set(&host::PolylineRest::elevation, planar.elevation);
    m.rest.set(&host::PolylineRest::thickness, m.rest->thickness * planar.normalScale);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::subGetGripPoints(AcGePoint3dArray& points, AcDbIntArray&,
                                                 AcDbIntArray&) const {
    assertReadEnabled();
    for (const BulgeVertex& vertex : m.path->vertices) {
        points.append(toWorldPoint(vertex.point));
    }
    for (int index = 0; index < m.path->segmentCount(); ++index) {
        if (const PathSegment segment = m.path->segment(index); segment.isArc()) {
            points.append(toWorldPoint(segment.pointAt(0.5)));
        }
    }
    return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::subMoveGripPointsAt(const AcDbIntArray& indices, const AcGeVector3d& offset) {
    assertWriteEnabled();
    std::vector<int> arcs;
    for (int index = 0; index < m.path->segmentCount(); ++index) {
        if (m.path->segment(index).isArc()) {
            arcs.push_back(index);
        }
    }
    const int vertexCount = m.path->vertexCount();
    const AcGeVector2d move = host::to2d(host::toObject(m.rest->normal, offset));
    const int gripCount = vertexCount + static_cast<int>(arcs.size());
    return host::forGrips(indices, gripCount, [&](int index) {
        if (index < vertexCount) {
            m.path.change().vertices[static_cast<std::size_t>(index)].point += move;
            return;
        }
        // The arc goes through the new middle, unless it moves along with an end.
        const int arc = arcs[static_cast<std::size_t>(index - vertexCount)];
        if (indices.contains(arc) || indices.contains((arc + 1) % vertexCount)) {
            return;
        }
        const PathSegment segment = m.path->segment(arc);
        const AcGePoint2d middle = segment.pointAt(0.5) + move;
        const AcGeVector2d toStart = segment.start - middle;
        const AcGeVector2d toEnd = segment.end - middle;
        const double cross = toStart.crossProduct(toEnd);
        const double size = std::sqrt(toStart.lengthSqrd() * toEnd.lengthSqrd());
        m.path.change().vertices[static_cast<std::size_t>(arc)].bulge =
            cross == 0.0 ? 0.0 : -(size + toStart.dotProduct(toEnd)) / cross;
    });
}

Acad::ErrorStatus AcDbPolyline::subGetStretchPoints(AcGePoint3dArray& points) const {
    assertReadEnabled();
    for (const BulgeVertex& vertex : m.path->vertices) {
        points.append(toWorldPoint(vertex.point));
    }
    return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::subMoveStretchPointsAt(const AcDbIntArray& indices,
                                                       const AcGeVector3d& offset) {
    assertWriteEnabled();
    const AcGeVector2d move = host::to2d(host::toObject(m.rest->normal, offset));
    std::vector<double> heights;
    for (int index = 0; index < m.path->segmentCount(); ++index) {
        const PathSegment segment = m.path->segment(index);
        heights.push_back(segment.isArc() ? segment.bulge * segment.start.distanceTo(segment.end) : 0.0);
    }
    const Acad::ErrorStatus status = host::forGrips(indices, m.path->vertexCount(), [&](int index) {
        m.path.change().vertices[static_cast<std::size_t>(index)].point += move;
    });
    for (int index = 0; status == Acad::eOk && index < m.path->segmentCount(); ++index) {
        const PathSegment segment = m.path->segment(index);
        const double chord = segment.start.distanceTo(segment.end);
        const double height = heights[static_cast<std::size_t>(index)];
        if (height != 0.0 && chord > 0.0 && std::fabs(height - segment.bulge * chord) > 1e-12 * chord) {
            m.path.change().vertices[static_cast<std::size_t>(index)].bulge = height / chord;
        }
    }
    return status;
}

bool AcDbPolyline::subWorldDraw(AcGiWorldDraw* draw) {
    assertReadEnabled();
    if (!m.path->vertices.empty()) {
        draw->geometry().pline(*this);
    }
    return true;
}
