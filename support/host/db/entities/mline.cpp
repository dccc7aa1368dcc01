// Multilines: layout of the elements, caps, joints, filling.
#include "host/db/entities/mline.h"

#include "host/db/dbents.h"
#include "host/db/entities/transforms.h"

#include <algorithm>

ACRX_DXF_DEFINE_MEMBERS(AcDbMline, AcDbEntity, AcDb::kDHL_CURRENT, AcDb::kMReleaseCurrent, 0, MLINE,
                        ObjectDBX Classes)

AcDbObjectId AcDbMline::style() const {
    assertReadEnabled();
    return m.style;
}
Acad::ErrorStatus AcDbMline::setStyle(AcDbObjectId style) {
    const auto* found = host::peek<AcDbMlineStyle>(style);
    if (found == nullptr || found->numElements() == 0) {
        return Acad::eInvalidInput;
    }
    assertWriteEnabled();
    m.style = style;
    m.styleName = found->name();
    layOut();
    return Acad::eOk;
}
Mline::MlineJustification AcDbMline::justification() const {
    assertReadEnabled();
    return static_cast<Mline::MlineJustification>(m.justification);
}
Acad::ErrorStatus AcDbMline::setJustification(Mline::MlineJustification justification) {
    assertWriteEnabled();
    m.justification = static_cast<Adesk::UInt8>(justification);
    layOut();
    return Acad::eOk;
}
double AcDbMline::scale() const {
    assertReadEnabled();
    return m.scale;
}
Acad::ErrorStatus AcDbMline::setScale(double scale) {
    if (!std::isfinite(scale)) {
        return Acad::eInvalidInput;
    }
    assertWriteEnabled();
    m.scale = scale;
    layOut();
    return Acad::eOk;
}
AcGeVector3d AcDbMline::normal() const {
    assertReadEnabled();
    return m.normal;
}
Acad::ErrorStatus AcDbMline::setNormal(const AcGeVector3d& normal) {
    assertWriteEnabled();
    m.normal = host::unitNormal(normal);
    layOut();
    return Acad::eOk;
}

void AcDbMline::setFlag(host::MlineData::Flag flag, bool on) {
    assertWriteEnabled();
    m.flags = static_cast<Adesk::Int16>(on ? m.flags | flag : m.flags & ~flag);
}
bool AcDbMline::closedMline() const {
    assertReadEnabled();
    return has(host::MlineData::closed);
}
Acad::ErrorStatus AcDbMline::setClosedMline(bool closed) {
    setFlag(host::MlineData::closed, closed);
    layOut();
    return Acad::eOk;
}
bool AcDbMline::supressStartCaps() const {
    assertReadEnabled();
    return has(host::MlineData::noStartCaps);
}
Acad::ErrorStatus AcDbMline::setSupressStartCaps(bool suppress) {
    setFlag(host::MlineData::noStartCaps, suppress);
    return Acad::eOk;
}
bool AcDbMline::supressEndCaps() const {
    assertReadEnabled();
    return has(host::MlineData::noEndCaps);
}
Acad::ErrorStatus AcDbMline::setSupressEndCaps(bool suppress) {
    setFlag(host::MlineData::noEndCaps, suppress);
    return Acad::eOk;
}

int AcDbMline::numVertices() const {
    assertReadEnabled();
    return static_cast<int>(m.vertices.size());
}
AcGePoint3d AcDbMline::vertexAt(int index) const {
    assertReadEnabled();
    return index >= 0 && index < numVertices() ? m.vertices[static_cast<std::size_t>(index)].point
                                               : AcGePoint3d();
}
AcGeVector3d AcDbMline::axisAt(int index) const {
    assertReadEnabled();
    return index >= 0 && index < numVertices() ? m.vertices[static_cast<std::size_t>(index)].direction
                                               : AcGeVector3d();
}
AcGeVector3d AcDbMline::miterAt(int index) const {
    assertReadEnabled();
    return index >= 0 && index < numVertices() ? m.vertices[static_cast<std::size_t>(index)].miter
                                               : AcGeVector3d();
}

Acad::ErrorStatus AcDbMline::appendSeg(const AcGePoint3d& vertex) {
    if (!host::isFinite(vertex)) {
        return Acad::eInvalidInput;
    }
    assertWriteEnabled();
    if (m.vertices.empty()) {
        m.start = vertex;
    }
    m.vertices.emplace_back().point = vertex;
    setFlag(host::MlineData::hasVertices, true);
    layOut();
    return Acad::eOk;
}

Acad::ErrorStatus AcDbMline::removeLastSeg(AcGePoint3d& removed) {
    if (m.vertices.empty()) {
        return Acad::eNotApplicable;
    }
    assertWriteEnabled();
    removed = m.vertices.back().point;
    m.vertices.pop_back();
    setFlag(host::MlineData::hasVertices, !m.vertices.empty());
    layOut();
    return Acad::eOk;
}

Acad::ErrorStatus AcDbMline::moveVertexAt(int index, const AcGePoint3d& to) {
    if (index < 0 || index >= numVertices()) {
        return Acad::eInvalidIndex;
    }
    assertWriteEnabled();
    m.vertices[static_cast<std::size_t>(index)].point = to;
    layOut();
    return Acad::eOk;
}

Acad::ErrorStatus AcDbMline::getParametersAt(int vertex, int element, AcGeDoubleArray& line,
                                             AcGeDoubleArray& fill) const {
    assertReadEnabled();
    if (vertex < 0 || vertex >= numVertices() || element < 0 ||
        element >= std::ssize(m.vertices[static_cast<std::size_t>(vertex)].runs)) {
        return Acad::eInvalidIndex;
    }
    const host::MlineElementRun& run =
        m.vertices[static_cast<std::size_t>(vertex)].runs[static_cast<std::size_t>(element)];
    for (const double value : run.line) {
        line.append(value);
    }
    for (const double value : run.fill) {
        fill.append(value);
    }
    return Acad::eOk;
}

Acad::ErrorStatus AcDbMline::setParametersAt(int vertex, int element, const AcGeDoubleArray& line) {
    if (vertex < 0 || vertex >= numVertices() || element < 0 ||
        element >= std::ssize(m.vertices[static_cast<std::size_t>(vertex)].runs)) {
        return Acad::eInvalidIndex;
    }
    if (line.length() < 2 || !std::is_sorted(line.begin() + 1, line.end())) {
        return Acad::eInvalidInput;
    }
    assertWriteEnabled();
    m.vertices[static_cast<std::size_t>(vertex)].runs[static_cast<std::size_t>(element)].line.assign(
        line.begin(), line.end());
    return Acad::eOk;
}

// Layout.

const AcDbMlineStyle* AcDbMline::styleObject() const {
    return host::peek<AcDbMlineStyle>(m.style);
}

void AcDbMline::subSetDatabaseDefaults(AcDbDatabase* database) {
    const auto* styles = host::peek<AcDbDictionary>(database->mLStyleDictionaryId());
    const host::HeaderValue current = database->variable(*host::findHeaderVariable("CMLSTYLE"));
    const auto* name = std::get_if<AcString>(&current);
    AcDbObjectId id;
    if (styles != nullptr && m.style.isNull() &&
        ((name != nullptr && styles->getAt(name->kwszPtr(), id) == Acad::eOk) ||
         styles->getAt(L"Standard", id) == Acad::eOk)) {
        setStyle(id);
    }
}

std::size_t AcDbMline::segmentCount() const {
    const std::size_t count = m.vertices.size();
    return count < 2 ? 0 : (has(host::MlineData::closed) && count > 2 ? count : count - 1);
}

void AcDbMline::layOut() {
    const AcDbMlineStyle* style = styleObject();
    if (style == nullptr || m.vertices.empty()) {
        return;
    }
    m.elementCount = static_cast<Adesk::Int16>(style->numElements());
    const bool closed = has(host::MlineData::closed);
    for (std::size_t index = 0; index < m.vertices.size(); ++index) {
        host::MlineVertex& vertex = m.vertices[index];
        const bool last = index + 1 == m.vertices.size();
        if (!last || closed) {
            const AcGeVector3d chord = m.vertices[next(index)].point - vertex.point;
            // A segment without length goes the way the one before it went.
            const AcGeVector3d before =
                index > 0 ? m.vertices[index - 1].direction : m.normal.perpVector().normal();
            vertex.direction = chord.isZeroLength() ? before : chord.normal();
        } else {
            vertex.direction = index > 0 ? m.vertices[index - 1].direction : m.normal.perpVector().normal();
        }
    }
    for (std::size_t index = 0; index < m.vertices.size(); ++index) {
        layVertex(index, style->data());
    }
}

void AcDbMline::layVertex(std::size_t index, const host::MlineStyleData& style) {
    host::MlineVertex& vertex = m.vertices[index];
    const bool closed = has(host::MlineData::closed);
    const bool first = index == 0;
    const bool last = index + 1 == m.vertices.size();
    const AcGeVector3d along = vertex.direction;
    const AcGeVector3d left = m.normal.crossProduct(along).normal();
    vertex.miter = left;
    if (!closed && (first || last)) {
        const double angle = first ? style.startAngle : style.endAngle;
        vertex.miter = angle == host::halfPi ? left : along * std::cos(angle) + left * std::sin(angle);
    } else {
        const AcGeVector3d before =
            m.normal.crossProduct(m.vertices[first ? m.vertices.size() - 1 : index - 1].direction).normal();
        const AcGeVector3d sum = before + left;
        // A path that turns back has no mitre.
        vertex.miter = sum.length() > 1e-6 ? sum.normal() : left;
    }
    const double slope = vertex.miter.dotProduct(left);
    double reference = 0.0;
    if (m.justification == Mline::kTop) {
        reference = style.elements.front().offset;
    } else if (m.justification == Mline::kBottom) {
        reference = style.elements.back().offset;
    }
    vertex.runs.resize(style.elements.size());
    for (std::size_t element = 0; element < style.elements.size(); ++element) {
        std::vector<double>& line = vertex.runs[element].line;
        line.resize(std::max<std::size_t>(line.size(), 2));
        line[0] = m.scale * (style.elements[element].offset - reference) / slope;
    }
}

AcGePoint3d AcDbMline::placeAt(std::size_t vertex, int element) const {
    const host::MlineVertex& at = m.vertices[vertex];
    const auto index = static_cast<std::size_t>(element);
    const double place =
        index < at.runs.size() && !at.runs[index].line.empty() ? at.runs[index].line.front() : 0.0;
    return at.point + at.miter * place;
}

// What is drawn.

void AcDbMline::forRuns(std::size_t vertex, int element, const Visit& visit) const {
    const host::MlineVertex& at = m.vertices[vertex];
    const AcGePoint3d start = placeAt(vertex, element);
    const AcGePoint3d end = placeAt(next(vertex), element);
    const double length = (end - start).dotProduct(at.direction);
    const std::vector<double>& cuts = at.runs[static_cast<std::size_t>(element)].line;
    if (cuts.size() <= 2 && (cuts.size() < 2 || cuts[1] == 0.0)) {
        visit(host::CurvePiece::line(start, end), element);
        return;
    }
    for (std::size_t index = 1; index < cuts.size(); index += 2) {
        const double from = cuts[index];
        const double to = index + 1 < cuts.size() ? std::min(cuts[index + 1], length) : length;
        if (to > from) {
            visit(host::CurvePiece::line(start + at.direction * from, start + at.direction * to), element);
        }
    }
}

host::CurvePiece AcDbMline::capArc(bool atStart, int first, int second) const {
    const std::size_t vertex = atStart ? 0 : m.vertices.size() - 1;
    const AcGePoint3d a = placeAt(vertex, first);
    const AcGePoint3d b = placeAt(vertex, second);
    const AcGeVector3d radius = (a - b) / 2.0;
    AcGeVector3d side = m.normal.crossProduct(radius);
    const AcGeVector3d outwards = m.vertices[vertex].direction * (atStart ? -1.0 : 1.0);
    if (side.dotProduct(outwards) < 0.0) {
        side = -side;
    }
    return host::CurvePiece::arc(b + radius, radius, side, 0.0, host::pi);
}

void AcDbMline::forCap(bool atStart, const host::MlineStyleData& style, const Visit& visit) const {
    using Data = host::MlineStyleData;
    const std::size_t vertex = atStart ? 0 : m.vertices.size() - 1;
    const int last = m.elementCount - 1;
    if (last < 1 || has(atStart ? host::MlineData::noStartCaps : host::MlineData::noEndCaps)) {
        return;
    }
    if (style.has(atStart ? Data::startLine : Data::endLine)) {
        visit(host::CurvePiece::line(placeAt(vertex, 0), placeAt(vertex, last)), 0);
    }
    if (style.has(atStart ? Data::startRound : Data::endRound)) {
        visit(capArc(atStart, 0, last), 0);
    }
    if (style.has(atStart ? Data::startInnerArcs : Data::endInnerArcs)) {
        for (int inner = 1; inner < last - inner; ++inner) {
            visit(capArc(atStart, inner, last - inner), inner);
        }
    }
}

void AcDbMline::forPieces(const Visit& visit) const {
    const std::size_t segments = segmentCount();
    if (segments == 0) {
        return;
    }
    for (int element = 0; element < m.elementCount; ++element) {
        for (std::size_t segment = 0; segment < segments; ++segment) {
            forRuns(segment, element, visit);
        }
    }
    const AcDbMlineStyle* style = styleObject();
    if (style == nullptr) {
        return;
    }
    const bool closed = segments == m.vertices.size();
    if (style->showMiters() && m.elementCount > 1) {
        for (std::size_t vertex = closed ? 0 : 1; vertex < m.vertices.size() - (closed ? 0 : 1); ++vertex) {
            visit(host::CurvePiece::line(placeAt(vertex, 0), placeAt(vertex, m.elementCount - 1)), 0);
        }
    }
    if (!closed) {
        forCap(true, style->data(), visit);
        forCap(false, style->data(), visit);
    }
}

bool AcDbMline::subCurvePieces(std::vector<host::CurvePiece>& pieces) const {
    forPieces([&](const host::CurvePiece& piece, int) { pieces.push_back(piece); });
    return true;
}

Acad::ErrorStatus AcDbMline::getPlane(AcGePlane& plane, AcDb::Planarity& planarity) const {
    assertReadEnabled();
    planarity = AcDb::kPlanar;
    plane.set(m.start, m.normal);
    return Acad::eOk;
}

namespace {

/// The look of an element: what it does not say itself is the multiline's.
void setLook(AcGiSubEntityTraits& traits, const AcDbMline& line, const AcDbMlineStyle* style, int element) {
    if (style == nullptr || element >= style->numElements()) {
        return;
    }
    const host::MlineElement& look = style->data().elements[static_cast<std::size_t>(element)];
    const bool ownColor = !look.color.isByLayer() && !look.color.isByBlock();
    traits.setTrueColor(ownColor ? look.color : line.entityColor());
    const AcDbDatabase* database = look.linetype.database();
    const bool ownLinetype = database != nullptr && look.linetype != database->byLayerLinetype() &&
                             look.linetype != database->byBlockLinetype();
    if (const AcDbObjectId linetype = ownLinetype ? look.linetype : line.linetypeId(); !linetype.isNull()) {
        traits.setLineType(linetype);
    }
}

void drawPiece(AcGiWorldDraw* draw, const host::CurvePiece& piece) {
    if (piece.isArc()) {
        draw->geometry().circularArc(piece.origin, piece.radius(), piece.normal().normal(), piece.u,
                                     piece.to - piece.from);
        return;
    }
    const AcGePoint3d ends[] = {piece.start(), piece.end()};
    draw->geometry().polyline(2, ends);
}

} // namespace

void AcDbMline::drawFilling(AcGiWorldDraw* draw, const host::MlineStyleData& style) const {
    const int last = m.elementCount - 1;
    if (last < 1) {
        return;
    }
    draw->subEntityTraits().setTrueColor(
        style.fillColor.isByLayer() || style.fillColor.isByBlock() ? entityColor() : style.fillColor);
    draw->subEntityTraits().setFillType(kAcGiFillAlways);
    for (std::size_t segment = 0; segment < segmentCount(); ++segment) {
        const AcGePoint3d corners[] = {placeAt(segment, 0), placeAt(next(segment), 0),
                                       placeAt(next(segment), last), placeAt(segment, last)};
        draw->geometry().polygon(4, corners);
    }
    using Data = host::MlineStyleData;
    const auto fillCap = [&](bool atStart) {
        const host::CurvePiece arc = capArc(atStart, 0, last);
        draw->geometry().circularArc(arc.origin, arc.radius(), arc.normal().normal(), arc.u, host::pi,
                                     kAcGiArcChord);
    };
    const bool closed = segmentCount() == m.vertices.size();
    if (!closed && style.has(Data::startRound) && !has(host::MlineData::noStartCaps)) {
        fillCap(true);
    }
    if (!closed && style.has(Data::endRound) && !has(host::MlineData::noEndCaps)) {
        fillCap(false);
    }
    draw->subEntityTraits().setFillType(kAcGiFillNever);
}

bool AcDbMline::subWorldDraw(AcGiWorldDraw* draw) {
    assertReadEnabled();
    const AcDbMlineStyle* style = styleObject();
    if (style != nullptr && style->filled()) {
        drawFilling(draw, style->data());
    }
    int shown = -1;
    forPieces([&](const host::CurvePiece& piece, int element) {
        if (element != shown) {
            setLook(draw->subEntityTraits(), *this, style, element);
            shown = element;
        }
        drawPiece(draw, piece);
    });
    return true;
}

Acad::ErrorStatus AcDbMline::subExplode(AcDbVoidPtrArray& parts) const {
    assertReadEnabled();
    const AcDbMlineStyle* style = styleObject();
    forPieces([&](const host::CurvePiece& piece, int element) {
        std::unique_ptr<AcDbEntity> made;
        if (piece.isArc()) {
            auto arc = host::newLike<AcDbArc>(*this);
            const AcGeVector3d normal = piece.normal().normal();
            const AcGeVector2d from = host::to2d(host::toObject(normal, piece.u));
            arc->setNormal(normal);
            arc->setCenter(piece.origin);
            arc->setRadius(piece.radius());
            arc->setStartAngle(from.angle());
            arc->setEndAngle(host::normalizedAngle(from.angle() + host::pi));
            made = std::move(arc);
        } else {
            auto line = host::newLike<AcDbLine>(*this);
            line->setStartPoint(piece.start());
            line->setEndPoint(piece.end());
            line->setNormal(m.normal);
            made = std::move(line);
        }
        if (style != nullptr && element < style->numElements()) {
            const host::MlineElement& look = style->data().elements[static_cast<std::size_t>(element)];
            const AcDbDatabase* home = look.linetype.database();
            if (!look.color.isByLayer() && !look.color.isByBlock()) {
                made->setEntityColor(look.color);
            }
            if (home != nullptr && look.linetype != home->byLayerLinetype() &&
                look.linetype != home->byBlockLinetype()) {
                made->setLinetype(look.linetype);
            }
        }
        parts.append(made.release());
    });
    return Acad::eOk;
}

// Changes.

Acad::ErrorStatus AcDbMline::subTransformBy(const AcGeMatrix3d& transform) {
    const AcGeMatrix3d plane = AcGeMatrix3d::planeToWorld(m.normal);
    const AcGeVector3d x = transform * (plane * AcGeVector3d::kXAxis);
    const AcGeVector3d y = transform * (plane * AcGeVector3d::kYAxis);
    AcGeVector3d normal = x.crossProduct(y);
    if (!(normal.length() > 1e-12 * x.length() * y.length())) {
        return Acad::eDegenerateGeometry;
    }
    assertWriteEnabled();
    // The normal stays on its side; a mirroring within the plane puts the elements on the other one.
    const bool mirrored = normal.dotProduct(transform * m.normal) < 0.0;
    normal = (mirrored ? -normal : normal).normal();
    const double factor = x.length();
    const bool uniform = std::fabs(y.length() - factor) <= 1e-10 * factor &&
                         std::fabs(x.dotProduct(y)) <= 1e-10 * factor * factor;
    const double scale = uniform ? factor : std::sqrt(x.crossProduct(y).length());
    const double sign = mirrored ? -1.0 : 1.0;
    const bool turns = !uniform || mirrored || !(x == plane * AcGeVector3d::kXAxis) || !(normal == m.normal);
    for (host::MlineVertex& vertex : m.vertices) {
        vertex.point = transform * vertex.point;
        if (!turns) {
            continue;
        }
        vertex.direction = (transform * vertex.direction).normal();
        vertex.miter = (transform * vertex.miter).normal() * sign;
        for (host::MlineElementRun& run : vertex.runs) {
            for (std::size_t index = 0; index < run.line.size(); ++index) {
                run.line[index] *= index == 0 ? scale * sign : scale;
            }
            for (double& value : run.fill) {
                value *= scale;
            }
        }
    }
    m.start = transform * m.start;
    if (turns) {
        m.normal = host::unitNormal(normal);
        m.scale *= scale * sign;
    }
    if (!uniform) {
        layOut();
    }
    return Acad::eOk;
}

Acad::ErrorStatus AcDbMline::subGetGripPoints(AcGePoint3dArray& points, AcDbIntArray&, AcDbIntArray&) const {
    assertReadEnabled();
    for (const host::MlineVertex& vertex : m.vertices) {
        points.append(vertex.point);
    }
    return Acad::eOk;
}

Acad::ErrorStatus AcDbMline::subMoveGripPointsAt(const AcDbIntArray& indices, const AcGeVector3d& offset) {
    assertWriteEnabled();
    const Acad::ErrorStatus status = host::forGrips(indices, numVertices(), [&](int index) {
        m.vertices[static_cast<std::size_t>(index)].point += offset;
        if (index == 0) {
            m.start += offset;
        }
    });
    if (status == Acad::eOk && indices.length() < numVertices()) {
        layOut();
    }
    return status;
}

Acad::ErrorStatus AcDbMline::subGetOsnapPoints(AcDb::OsnapMode mode, Adesk::GsMarker, const AcGePoint3d& pick,
                                               const AcGePoint3d& last, const AcGeMatrix3d& view,
                                               AcGePoint3dArray& points, AcDbIntArray&) const {
    assertReadEnabled();
    std::vector<host::CurvePiece> pieces;
    curvePieces(pieces);
    host::addOsnapPoints(pieces, mode, pick, last, view, points);
    return Acad::eOk;
}
