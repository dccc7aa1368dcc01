// Leaders: vertices, annotation, drawing.
#include "host/db/entities/leader.h"

#include "host/db/dbents.h"
#include "host/db/entities/arrowheads.h"
#include "host/db/entities/curvepiece.h"
#include "host/db/entities/fields.h"
#include "host/db/entities/recordlookup.h"
#include "host/db/entities/transforms.h"

ACRX_DXF_DEFINE_MEMBERS(AcDbLeader, AcDbCurve, AcDb::kDHL_CURRENT, AcDb::kMReleaseCurrent, 0, LEADER,
                        ObjectDBX Classes)

namespace {

double scaleOf(const host::DimVariables& variables) {
    return variables.scale > 0.0 ? variables.scale : 1.0;
}

/// Second derivatives of the natural cubic spline through values at the given parameters.
std::vector<AcGeVector3d> splineMoments(const std::vector<AcGePoint3d>& points,
                                        const std::vector<double>& at) {
    const std::size_t count = points.size();
    std::vector<AcGeVector3d> moments(count);
    std::vector<double> upper(count, 0.0);
    for (std::size_t i = 1; i + 1 < count; ++i) {
        const double before = at[i] - at[i - 1];
        const double after = at[i + 1] - at[i];
        const AcGeVector3d bend =
            ((points[i + 1] - points[i]) / after - (points[i] - points[i - 1]) / before) * 6.0;
        const double pivot = 2.0 * (before + after) - before * upper[i - 1];
        upper[i] = after / pivot;
        moments[i] = (bend - moments[i - 1] * before) / pivot;
    }
    for (std::size_t i = count - 1; i-- > 1;) {
        moments[i] -= moments[i + 1] * upper[i];
    }
    return moments;
}

/// Points along the natural cubic spline through the vertices.
std::vector<AcGePoint3d> splinePoints(const std::vector<AcGePoint3d>& given) {
    constexpr int pieces = 24;
    std::vector<AcGePoint3d> points;
    std::vector<double> at;
    for (const AcGePoint3d& point : given) { // vertices on one place are one
        const double step = points.empty() ? 0.0 : points.back().distanceTo(point);
        if (points.empty() || step > 0.0) {
            at.push_back(points.empty() ? 0.0 : at.back() + step);
            points.push_back(point);
        }
    }
    if (points.size() < 3) {
        return points;
    }
    const std::vector<AcGeVector3d> moments = splineMoments(points, at);
    std::vector<AcGePoint3d> result{points.front()};
    for (std::size_t i = 0; i + 1 < points.size(); ++i) {
        const double h = at[i + 1] - at[i];
        for (int piece = 1; piece <= pieces; ++piece) {
            const double b = static_cast<double>(piece) / pieces;
            const double a = 1.0 - b;
            const AcGeVector3d bend =
                (moments[i] * (a * a * a - a) + moments[i + 1] * (b * b * b - b)) * (h * h / 6.0);
            result.push_back(points[i] + (points[i + 1] - points[i]) * b + bend);
        }
    }
    return result;
}

} // namespace

AcGeVector3d AcDbLeader::normal() const {
    assertReadEnabled();
    return m.normal;
}
Acad::ErrorStatus AcDbLeader::setPlane(const AcGePlane& plane) {
    assertWriteEnabled();
    m.normal = host::unitNormal(plane.normal());
    m.horizontal = host::toWorld(m.normal, AcGeVector3d::kXAxis);
    return Acad::eOk;
}

int AcDbLeader::numVertices() const {
    assertReadEnabled();
    return static_cast<int>(m.vertices.size());
}
bool AcDbLeader::appendVertex(const AcGePoint3d& point) {
    if (!host::isFinite(point) || (!m.vertices.empty() && m.vertices.back() == point)) {
        return false;
    }
    assertWriteEnabled();
    m.vertices.push_back(point);
    return true;
}
void AcDbLeader::removeLastVertex() {
    assertWriteEnabled();
    if (!m.vertices.empty()) {
        m.vertices.pop_back();
    }
}
AcGePoint3d AcDbLeader::firstVertex() const {
    return vertexAt(0);
}
AcGePoint3d AcDbLeader::lastVertex() const {
    return vertexAt(numVertices() - 1);
}
AcGePoint3d AcDbLeader::vertexAt(int index) const {
    assertReadEnabled();
    return index >= 0 && index < numVertices() ? m.vertices[static_cast<std::size_t>(index)]
                                               : AcGePoint3d::kOrigin;
}
Acad::ErrorStatus AcDbLeader::setVertexAt(int index, const AcGePoint3d& point) {
    if (index < 0 || index >= numVertices()) {
        return Acad::eInvalidIndex;
    }
    if (!host::isFinite(point)) {
        return Acad::eInvalidInput;
    }
    assertWriteEnabled();
    m.vertices[static_cast<std::size_t>(index)] = point;
    return Acad::eOk;
}

bool AcDbLeader::hasArrowHead() const {
    assertReadEnabled();
    return m.arrow;
}
void AcDbLeader::enableArrowHead() {
    assertWriteEnabled();
    m.arrow = true;
}
void AcDbLeader::disableArrowHead() {
    assertWriteEnabled();
    m.arrow = false;
}
bool AcDbLeader::hasHookLine() const {
    assertReadEnabled();
    return m.hookLine;
}
bool AcDbLeader::isSplined() const {
    assertReadEnabled();
    return m.splined;
}
Acad::ErrorStatus AcDbLeader::setToSplineLeader() {
    assertWriteEnabled();
    m.splined = true;
    return Acad::eOk;
}
void AcDbLeader::setToStraightLeader() {
    assertWriteEnabled();
    m.splined = false;
}
AcDbObjectId AcDbLeader::dimensionStyle() const {
    assertReadEnabled();
    return m.style;
}
void AcDbLeader::setDimensionStyle(AcDbObjectId style) {
    assertWriteEnabled();
    if (host::peek<AcDbDimStyleTableRecord>(style) != nullptr) {
        m.style = style;
    }
}
AcGeVector3d AcDbLeader::annotationOffset() const {
    assertReadEnabled();
    return m.annotationOffset;
}
Acad::ErrorStatus AcDbLeader::setAnnotationOffset(const AcGeVector3d& offset) {
    assertWriteEnabled();
    m.annotationOffset = offset;
    return Acad::eOk;
}
double AcDbLeader::annoHeight() const {
    assertReadEnabled();
    return m.annotationHeight;
}
double AcDbLeader::annoWidth() const {
    assertReadEnabled();
    return m.annotationWidth;
}

host::DimVariables AcDbLeader::dimVariables() const {
    assertReadEnabled();
    return host::annotationVariables(*this, m.style);
}
Acad::ErrorStatus AcDbLeader::setDimVariable(const host::DimVariables& values, std::size_t index) {
    assertWriteEnabled();
    setXdataGroups(host::withDimOverride(xdataGroups(), values, index));
    return Acad::eOk;
}

// Annotation.

AcDbLeader::AnnoType AcDbLeader::annoType() const {
    assertReadEnabled();
    return static_cast<AnnoType>(m.annotationType);
}
AcDbObjectId AcDbLeader::annotationObjId() const {
    assertReadEnabled();
    return m.annotation;
}

Acad::ErrorStatus AcDbLeader::attachAnnotation(AcDbObjectId annotation) {
    AcDbEntity* entity = host::peek<AcDbEntity>(annotation);
    const AnnoType type = AcDbMText::cast(entity) != nullptr            ? kMText
                          : AcDbFcf::cast(entity) != nullptr            ? kFcf
                          : AcDbBlockReference::cast(entity) != nullptr ? kBlockRef
                                                                        : kNoAnno;
    if (type == kNoAnno) {
        return Acad::eInvalidInput;
    }
    assertWriteEnabled();
    m.annotation = annotation;
    m.annotationType = static_cast<Adesk::Int16>(type);
    if (!objectId().isNull() && !entity->hasPersistentReactor(objectId())) {
        const host::Opened<AcDbEntity> opened(annotation, AcDb::kForWrite);
        if (opened) {
            opened->addPersistentReactor(objectId());
        }
    }
    return evaluateLeader();
}

Acad::ErrorStatus AcDbLeader::detachAnnotation() {
    assertWriteEnabled();
    const AcDbObjectId before = std::exchange(m.annotation, AcDbObjectId());
    m.annotationType = kNoAnno;
    m.hookLine = false;
    const host::Opened<AcDbEntity> opened(before, AcDb::kForWrite);
    if (opened) {
        opened->removePersistentReactor(objectId());
    }
    return Acad::eOk;
}

Acad::ErrorStatus AcDbLeader::evaluateLeader() {
    assertWriteEnabled();
    const auto* entity = host::peek<AcDbEntity>(m.annotation);
    if (entity == nullptr || m.vertices.size() < 2) {
        return Acad::eOk;
    }
    const host::ReadAccess access(*entity);
    const host::DimVariables variables = dimVariables();
    const double gap = std::fabs(variables.gap) * scaleOf(variables);
    AcGePoint3d last = m.vertices.back();
    const AcGePoint3d before = m.vertices[m.vertices.size() - 2];
    if (const auto* text = AcDbMText::cast(entity)) {
        AcGePoint3dArray corners;
        text->boundingPoints(corners);
        const AcGePoint3d middle = corners[0] + (corners[3] - corners[0]) * 0.5;
        // The leader comes to the side of the text that is nearer to it.
        const bool fromLeft = (before - middle).dotProduct(m.horizontal) <= 0.0;
        const AcGePoint3d side = corners[fromLeft ? 0 : 1];
        const AcGeVector3d toSide =
            m.horizontal * ((side - text->location()).dotProduct(m.horizontal) + (fromLeft ? -gap : gap));
        last = text->location() + toSide + m.annotationOffset;
        m.hookAlongHorizontal = !fromLeft;
        m.annotationHeight = text->textHeight();
        m.annotationWidth = text->actualWidth();
    } else if (const auto* frame = AcDbFcf::cast(entity)) {
        last = frame->location() + m.annotationOffset;
        m.hookAlongHorizontal = (last - before).dotProduct(m.horizontal) < 0.0;
    } else if (const auto* block = AcDbBlockReference::cast(entity)) {
        last = block->position() + m.blockOffset;
    }
    m.vertices.back() = last;
    const AcGeVector3d arrival = last - before;
    const double level = std::fabs(arrival.dotProduct(m.horizontal));
    // A leader that comes in level needs no hook line, save one that goes on below its text; nor does a
    // spline.
    const bool isBelowText = variables.tad != 0 && m.annotationType == kMText;
    m.hookLine = m.annotationType != kBlockRef && !m.splined && arrival.length() > 0.0 &&
                 (isBelowText || level < std::cos(15.0 * host::pi / 180.0) * arrival.length());
    return Acad::eOk;
}

void AcDbLeader::modified(const AcDbObject* annotation) {
    if (annotation == nullptr || annotation->objectId() != m.annotation || database() == nullptr ||
        database()->undoLog().isApplying()) {
        return;
    }
    const host::Opened<AcDbLeader> opened(objectId(), AcDb::kForWrite);
    if (opened) { // one that is being changed itself finds its place then
        opened->evaluateLeader();
    }
}

void AcDbLeader::subBecameResident() {
    if (m.style.isNull()) {
        m.style = database()->dimstyle();
    }
}

void AcDbLeader::subSetDatabaseDefaults(AcDbDatabase* database) {
    m.style = database->dimstyle();
}

// Drawing.

std::vector<AcGePoint3d> AcDbLeader::path() const {
    assertReadEnabled();
    std::vector<AcGePoint3d> points = m.splined ? splinePoints(m.vertices) : m.vertices;
    if (m.hookLine && !points.empty()) {
        const host::DimVariables variables = dimVariables();
        const double scale = scaleOf(variables);
        const double sign = m.hookAlongHorizontal ? -1.0 : 1.0;
        double length = variables.asz * scale;
        if (variables.tad != 0 && m.annotationType == kMText) { // on below the text
            length = std::fabs(variables.gap) * scale + m.annotationWidth;
            points.push_back(points.back() + m.horizontal * (sign * length));
        } else if (points.size() > 1) {
            // The hook line ends at the vertex and the path comes to its other end, unless a last piece that
            // is level already is the hook line.
            const AcGePoint3d end = points.back();
            const AcGeVector3d last = end - points[points.size() - 2];
            if (std::fabs(last.dotProduct(m.horizontal)) < last.length() * (1.0 - 1e-9)) {
                points.back() = end - m.horizontal * (sign * length);
                points.push_back(end);
            }
        }
    }
    return points;
}

std::vector<std::unique_ptr<AcDbEntity>> AcDbLeader::parts() const {
    const host::DimVariables variables = dimVariables();
    std::vector<std::unique_ptr<AcDbEntity>> made;
    std::vector<AcGePoint3d> points = path();
    if (points.size() < 2) {
        return made;
    }
    AcCmEntityColor color = entityColor();
    if (variables.clrd != 0) {
        color.setColorIndex(variables.clrd);
    }
    const auto add = [&](std::unique_ptr<AcDbEntity> entity) {
        entity->setPropertiesFrom(this);
        entity->setEntityColor(color);
        made.push_back(std::move(entity));
    };
    const double size = variables.asz * scaleOf(variables);
    const AcGeVector3d first = points[1] - points[0];
    const double length = m.vertices.size() > 1 ? m.vertices[0].distanceTo(m.vertices[1]) : 0.0;
    const AcDbObjectId block = variables.ldrblk;
    if (m.arrow && size > 0.0 && length >= 2.0 * size && !host::isNoArrow(block)) {
        const AcGeVector3d flat = host::toObject(m.normal, first);
        std::unique_ptr<AcDbEntity> head =
            host::makeArrow(block, host::toObject(m.normal, points[0]),
                            host::normalizedAngle(std::atan2(-flat.y, -flat.x)), size);
        if (!host::isWorldNormal(m.normal)) {
            head->transformBy(AcGeMatrix3d::planeToWorld(m.normal));
        }
        add(std::move(head));
        if (!host::arrowKeepsLine(block)) {
            double left = size; // to be taken off the path's beginning
            while (points.size() > 2 && points[0].distanceTo(points[1]) < left) {
                left -= points[0].distanceTo(points[1]);
                points.erase(points.begin());
            }
            points[0] += (points[1] - points[0]).normal() * left;
        }
    }
    for (std::size_t index = 0; index + 1 < points.size(); ++index) {
        auto line = std::make_unique<AcDbLine>(points[index], points[index + 1]);
        line->setNormal(m.normal);
        add(std::move(line));
    }
    return made;
}

bool AcDbLeader::subWorldDraw(AcGiWorldDraw* draw) {
    assertReadEnabled();
    std::vector<AcGePoint3d> line;
    for (const std::unique_ptr<AcDbEntity>& part : parts()) {
        if (const auto* segment = AcDbLine::cast(part.get())) {
            if (line.empty()) {
                line.push_back(segment->startPoint());
            }
            line.push_back(segment->endPoint());
        } else {
            draw->geometry().draw(part.get());
        }
    }
    if (line.size() > 1) {
        AcGiSubEntityTraits& traits = draw->subEntityTraits();
        const host::DimVariables variables = dimVariables();
        if (variables.clrd != 0) {
            traits.setColor(static_cast<Adesk::UInt16>(variables.clrd));
        }
        draw->geometry().polyline(static_cast<Adesk::UInt32>(line.size()), line.data());
    }
    return true;
}

bool AcDbLeader::subCurvePieces(std::vector<host::CurvePiece>& pieces) const {
    const std::vector<AcGePoint3d> points = path();
    for (std::size_t index = 0; index + 1 < points.size(); ++index) {
        pieces.push_back(host::CurvePiece::line(points[index], points[index + 1]));
    }
    return true;
}

Acad::ErrorStatus AcDbLeader::subExplode(AcDbVoidPtrArray& made) const {
    for (std::unique_ptr<AcDbEntity>& part : parts()) {
        made.append(part.release());
    }
    return Acad::eOk;
}

Acad::ErrorStatus AcDbLeader::getStartPoint(AcGePoint3d& point) const {
    point = firstVertex();
    return m.vertices.empty() ? Acad::eDegenerateGeometry : Acad::eOk;
}
Acad::ErrorStatus AcDbLeader::getEndPoint(AcGePoint3d& point) const {
    point = lastVertex();
    return m.vertices.empty() ? Acad::eDegenerateGeometry : Acad::eOk;
}

Acad::ErrorStatus AcDbLeader::subTransformBy(const AcGeMatrix3d& transform) {
    const host::PlanarTransform planar(transform, m.normal, 0.0);
    if (planar.isSingular) {
        return Acad::eDegenerateGeometry;
    }
    assertWriteEnabled();
    for (AcGePoint3d& vertex : m.vertices) {
        vertex = transform * vertex;
    }
    m.normal = planar.normal;
    m.annotationOffset = transform * m.annotationOffset;
    m.blockOffset = transform * m.blockOffset;
    const AcGeVector3d turned = transform * m.horizontal;
    m.horizontal = turned.isZeroLength() ? m.horizontal : host::unitNormal(turned);
    m.annotationHeight *= planar.scale;
    m.annotationWidth *= planar.scale;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbLeader::subGetGripPoints(AcGePoint3dArray& points, AcDbIntArray&, AcDbIntArray&) const {
    assertReadEnabled();
    for (const AcGePoint3d& vertex : m.vertices) {
        points.append(vertex);
    }
    return Acad::eOk;
}

Acad::ErrorStatus AcDbLeader::subMoveGripPointsAt(const AcDbIntArray& indices, const AcGeVector3d& offset) {
    assertWriteEnabled();
    return host::forGrips(indices, numVertices(),
                          [&](int index) { m.vertices[static_cast<std::size_t>(index)] += offset; });
}

// Files.

Acad::ErrorStatus AcDbLeader::dwgOutFields(AcDbDwgFiler* filer) const {
    const Acad::ErrorStatus status = AcDbEntity::dwgOutFields(filer);
    return status == Acad::eOk ? host::writeFields(filer, m) : status;
}
Acad::ErrorStatus AcDbLeader::dwgInFields(AcDbDwgFiler* filer) {
    const Acad::ErrorStatus status = AcDbEntity::dwgInFields(filer);
    return status == Acad::eOk ? host::readFields(filer, m) : status;
}

Acad::ErrorStatus AcDbLeader::dxfInFields(AcDbDxfFiler* filer) {
    assertWriteEnabled();
    m = {};
    const Acad::ErrorStatus status = AcDbEntity::dxfInFields(filer);
    return status == Acad::eOk ? readDxfGroups(filer) : status;
}

std::string_view AcDbLeader::dxfSubclass(std::string_view marker) const {
    return marker.empty() || marker == "AcDbLeader" ? "AcDbLeader" : std::string_view();
}

bool AcDbLeader::takeDxfGroup(AcDbDxfFiler* filer, const host::DxfGroup& group, std::string_view) {
    switch (group.code) {
    case 3:
        m.style = AcDbObjectId(
            host::namedRecord<AcDbDimStyleTable>(group, filer->database(), &AcDbDatabase::dimStyleTableId));
        return true;
    case 10:
        m.vertices.push_back(group.point());
        return true;
    case 40:
        m.annotationHeight = group.real;
        return true;
    case 41:
        m.annotationWidth = group.real;
        return true;
    case 71:
        m.arrow = group.boolean();
        return true;
    case 72:
        m.splined = group.boolean();
        return true;
    case 73:
        m.annotationType = group.integer >= 0 && group.integer <= 3 ? group.int16() : Adesk::Int16{kNoAnno};
        return true;
    case 74:
        m.hookAlongHorizontal = group.boolean();
        return true;
    case 75:
        m.hookLine = group.boolean();
        return true;
    case 76:
        return true; // the number of vertices
    case 77:
        m.color = group.int16();
        return true;
    case 210:
        m.normal = host::unitNormal(group.vector());
        return true;
    case 211:
        m.horizontal = host::unitNormal(group.vector());
        return true;
    case 212:
        m.blockOffset = group.vector();
        return true;
    case 213:
        m.annotationOffset = group.vector();
        return true;
    case 340:
        m.annotation = AcDbObjectId(group.id);
        return true;
    default:
        return false;
    }
}

Acad::ErrorStatus AcDbLeader::dxfGroupsRead(AcDbDxfFiler* filer) {
    const bool isGood = std::all_of(m.vertices.begin(), m.vertices.end(),
                                    [](const AcGePoint3d& vertex) { return host::isFinite(vertex); });
    if (!isGood || !host::isFinite(m.blockOffset) || !host::isFinite(m.annotationOffset) ||
        !std::isfinite(m.annotationHeight + m.annotationWidth)) {
        return Acad::eInvalidInput;
    }
    if (m.style.isNull() && filer->database() != nullptr) {
        m.style = filer->database()->dimstyle();
    }
    return Acad::eOk;
}

Acad::ErrorStatus AcDbLeader::dxfOutFields(AcDbDxfFiler* filer) const {
    if (const Acad::ErrorStatus status = AcDbEntity::dxfOutFields(filer); status != Acad::eOk) {
        return status;
    }
    const bool all = filer->includesDefaultValues();
    filer->writeText(100, "AcDbLeader");
    if (const AcString style = host::recordName(m.style); !style.isEmpty()) {
        filer->writeString(3, style);
    }
    filer->writeInteger(71, m.arrow ? 1 : 0);
    filer->writeInteger(72, m.splined ? 1 : 0);
    filer->writeInteger(73, m.annotationType);
    filer->writeInteger(74, m.hookAlongHorizontal ? 1 : 0);
    host::writeUnlessZero(filer, 75, m.hookLine ? 1 : 0);
    filer->writeReal(40, m.annotationHeight);
    filer->writeReal(41, m.annotationWidth);
    filer->writeInteger(76, static_cast<Adesk::Int64>(m.vertices.size()));
    for (const AcGePoint3d& vertex : m.vertices) {
        filer->writePoint3d(10, vertex);
    }
    host::writeUnlessZero(filer, 77, m.color);
    if (!m.annotation.isNull()) {
        filer->writeObjectId(340, m.annotation);
    }
    host::writeNormal(filer, m.normal);
    if (!(m.horizontal == AcGeVector3d::kXAxis) || all) {
        filer->writeVector3d(211, m.horizontal);
    }
    if (!(m.blockOffset == AcGeVector3d()) || all) {
        filer->writeVector3d(212, m.blockOffset);
    }
    filer->writeVector3d(213, m.annotationOffset);
    writeKeptGroups(filer, "AcDbLeader");
    return filer->filerStatus();
}
