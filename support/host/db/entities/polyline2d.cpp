// 2D polylines: vertices, shape, curve operations, filing.
#include "host/db/entities/polyline2d.h"

#include "host/db/entities/fields.h"
#include "host/db/entities/polyline.h"
#include "host/db/entities/transforms.h"
#include "host/gi/gi.h"

#include <algorithm>

ACRX_DXF_DEFINE_MEMBERS(AcDb2dPolyline, AcDbCurve, AcDb::kDHL_CURRENT, AcDb::kMReleaseCurrent, 0, POLYLINE,
                        ObjectDBX Classes)

using host::Vertex2dData;

namespace {

// Group 70 of a polyline.
constexpr int closedPolyline = 1;
constexpr int curveFitted = 2;
constexpr int splineFitted = 4;
constexpr int otherKinds = 8 | 16 | 64; ///< 3D polyline, mesh, polyface mesh
constexpr int linetypeGeneration = 128;

} // namespace

AcDb2dPolyline::AcDb2dPolyline(AcDb::Poly2dType type, const AcGePoint3dArray& vertices, double elevation,
                               bool closed, double defaultStartWidth, double defaultEndWidth,
                               const AcGeDoubleArray* bulges, const AcGeDoubleArray* vertexWidths) {
    setFlag(closedPolyline, closed);
    m.elevation = elevation;
    m.startWidth = defaultStartWidth;
    m.endWidth = defaultEndWidth;
    for (int index = 0; index < vertices.length(); ++index) {
        Vertex2dData data;
        data.position = vertices[index];
        data.position.z = elevation;
        data.bulge = bulges != nullptr && index < bulges->length() ? (*bulges)[index] : 0.0;
        const bool hasWidths = vertexWidths != nullptr && 2 * index + 1 < vertexWidths->length();
        data.startWidth = hasWidths ? (*vertexWidths)[2 * index] : defaultStartWidth;
        data.endWidth = hasWidths ? (*vertexWidths)[2 * index + 1] : defaultEndWidth;
        auto* vertex = new AcDb2dVertex;
        vertex->setData(data);
        appendVertex(vertex);
    }
    if (type != AcDb::k2dSimplePoly) {
        convertToPolyType(type);
    }
}

void AcDb2dPolyline::setFlag(int flag, bool on) {
    assertWriteEnabled();
    m.flags = static_cast<Adesk::Int16>(on ? m.flags | flag : m.flags & ~flag);
}

AcDb::Poly2dType AcDb2dPolyline::polyType() const {
    assertReadEnabled();
    if ((m.flags & splineFitted) != 0) {
        return m.curveType == 5 ? AcDb::k2dQuadSplinePoly : AcDb::k2dCubicSplinePoly;
    }
    return (m.flags & curveFitted) != 0 ? AcDb::k2dFitCurvePoly : AcDb::k2dSimplePoly;
}

Acad::ErrorStatus AcDb2dPolyline::setPolyType(AcDb::Poly2dType type) {
    const bool spline = type == AcDb::k2dQuadSplinePoly || type == AcDb::k2dCubicSplinePoly;
    setFlag(curveFitted, type == AcDb::k2dFitCurvePoly);
    setFlag(splineFitted, spline);
    m.curveType = type == AcDb::k2dQuadSplinePoly ? 5 : spline ? 6 : 0;
    return Acad::eOk;
}

Acad::ErrorStatus AcDb2dPolyline::makeClosed() {
    setFlag(closedPolyline, true);
    return Acad::eOk;
}
Acad::ErrorStatus AcDb2dPolyline::makeOpen() {
    setFlag(closedPolyline, false);
    return Acad::eOk;
}
double AcDb2dPolyline::defaultStartWidth() const {
    assertReadEnabled();
    return m.startWidth;
}
Acad::ErrorStatus AcDb2dPolyline::setDefaultStartWidth(double width) {
    assertWriteEnabled();
    m.startWidth = width;
    return Acad::eOk;
}
double AcDb2dPolyline::defaultEndWidth() const {
    assertReadEnabled();
    return m.endWidth;
}
Acad::ErrorStatus AcDb2dPolyline::setDefaultEndWidth(double width) {
    assertWriteEnabled();
    m.endWidth = width;
    return Acad::eOk;
}

Acad::ErrorStatus AcDb2dPolyline::constantWidth(double& width) const {
    assertReadEnabled();
    const std::vector<host::SegmentWidths> widths = shape().widths;
    for (const host::SegmentWidths& one : widths) {
        if (one.start != widths.front().start || one.end != widths.front().start) {
            return Acad::eInvalidInput;
        }
    }
    width = widths.empty() ? 0.0 : widths.front().start;
    return Acad::eOk;
}

Acad::ErrorStatus AcDb2dPolyline::setConstantWidth(double width) {
    if (!(width >= 0.0)) {
        return Acad::eInvalidInput;
    }
    assertWriteEnabled();
    m.startWidth = width;
    m.endWidth = width;
    return mVertices.change<AcDb2dVertex>([&](AcDb2dVertex& vertex) {
        vertex.setStartWidth(width);
        vertex.setEndWidth(width);
    });
}

double AcDb2dPolyline::thickness() const {
    assertReadEnabled();
    return m.thickness;
}
Acad::ErrorStatus AcDb2dPolyline::setThickness(double thickness) {
    assertWriteEnabled();
    m.thickness = thickness;
    return Acad::eOk;
}
AcGeVector3d AcDb2dPolyline::normal() const {
    assertReadEnabled();
    return m.normal;
}
Acad::ErrorStatus AcDb2dPolyline::setNormal(const AcGeVector3d& normal) {
    assertWriteEnabled();
    m.normal = host::unitNormal(normal);
    return Acad::eOk;
}
double AcDb2dPolyline::elevation() const {
    assertReadEnabled();
    return m.elevation;
}

Acad::ErrorStatus AcDb2dPolyline::setElevation(double elevation) {
    assertWriteEnabled();
    m.elevation = elevation;
    return mVertices.change<AcDb2dVertex>([&](AcDb2dVertex& vertex) {
        const AcGePoint3d position = vertex.position();
        vertex.setPosition({position.x, position.y, elevation});
    });
}

bool AcDb2dPolyline::isLinetypeGenerationOn() const {
    assertReadEnabled();
    return (m.flags & linetypeGeneration) != 0;
}
Acad::ErrorStatus AcDb2dPolyline::setLinetypeGenerationOn() {
    setFlag(linetypeGeneration, true);
    return Acad::eOk;
}
Acad::ErrorStatus AcDb2dPolyline::setLinetypeGenerationOff() {
    setFlag(linetypeGeneration, false);
    return Acad::eOk;
}

Acad::ErrorStatus AcDb2dPolyline::length(double& length) const {
    assertReadEnabled();
    length = host::length(shape().path);
    return Acad::eOk;
}

Acad::ErrorStatus AcDb2dPolyline::appendVertex(AcDb2dVertex* vertex) {
    AcDbObjectId id;
    return appendVertex(id, vertex);
}

Acad::ErrorStatus AcDb2dPolyline::appendVertex(AcDbObjectId& id, AcDb2dVertex* vertex) {
    return mVertices.append(*this, id, vertex);
}

Acad::ErrorStatus AcDb2dPolyline::insertVertexAt(const AcDb2dVertex* after, AcDb2dVertex* vertex) {
    const std::ptrdiff_t place = after != nullptr ? mVertices.find(after) : -1;
    if (after != nullptr && place < 0) {
        return Acad::eInvalidInput;
    }
    AcDbObjectId id;
    return mVertices.insert(*this, static_cast<std::size_t>(place + 1), id, vertex);
}

Acad::ErrorStatus AcDb2dPolyline::insertVertexAt(AcDbObjectId& id, AcDbObjectId after, AcDb2dVertex* vertex) {
    const std::ptrdiff_t place = mVertices.find(after);
    if (!after.isNull() && place < 0) {
        return Acad::eInvalidInput;
    }
    return mVertices.insert(*this, static_cast<std::size_t>(place + 1), id, vertex);
}

Acad::ErrorStatus AcDb2dPolyline::openVertex(AcDb2dVertex*& vertex, AcDbObjectId id, AcDb::OpenMode mode,
                                             bool openErased) const {
    vertex = nullptr;
    return mVertices.find(id) >= 0 ? acdbOpenObject(vertex, id, mode, openErased) : Acad::eInvalidInput;
}

Acad::ErrorStatus AcDb2dPolyline::openSequenceEnd(AcDbSequenceEnd*& end, AcDb::OpenMode mode) const {
    return acdbOpenObject(end, AcDbObjectId(mVertices.sequenceEnd()), mode);
}

AcGePoint3d AcDb2dPolyline::vertexPosition(const AcDb2dVertex& vertex) const {
    assertReadEnabled();
    return host::toWorld(m.normal, vertex.position());
}

std::vector<Vertex2dData> AcDb2dPolyline::drawnVertices() const {
    std::vector<Vertex2dData> drawn;
    drawn.reserve(mVertices.size());
    mVertices.forEach<AcDb2dVertex>([&](const AcDb2dVertex& vertex) {
        if ((vertex.data().flags & Vertex2dData::splineControl) == 0) {
            drawn.push_back(vertex.data());
        }
    });
    return drawn;
}

Acad::ErrorStatus AcDb2dPolyline::assignVertices(const std::vector<Vertex2dData>& data) {
    assertWriteEnabled();
    std::size_t at = 0;
    return mVertices.change<AcDb2dVertex>([&](AcDb2dVertex& vertex) {
        if ((vertex.data().flags & Vertex2dData::splineControl) == 0 && at < data.size()) {
            vertex.setData(data[at++]);
        }
    });
}

host::WidePath AcDb2dPolyline::shape() const {
    host::WidePath shape;
    shape.path.closed = isClosed();
    bool wide = false;
    for (const Vertex2dData& vertex : drawnVertices()) {
        shape.path.add(host::to2d(vertex.position), vertex.bulge);
        const host::SegmentWidths widths{
            vertex.startWidth == Vertex2dData::widthNotGiven ? m.startWidth : vertex.startWidth,
            vertex.endWidth == Vertex2dData::widthNotGiven ? m.endWidth : vertex.endWidth};
        wide = wide || widths.start != 0.0 || widths.end != 0.0;
        shape.widths.push_back(widths);
    }
    shape.widths.resize(static_cast<std::size_t>(shape.path.segmentCount()));
    if (!wide) {
        shape.widths.clear();
    }
    return shape;
}

void AcDb2dPolyline::setShape(const host::WidePath& shape) {
    assertWriteEnabled();
    mVertices.clear(*this);
    setFlag(closedPolyline, shape.path.closed);
    const bool constant =
        std::all_of(shape.widths.begin(), shape.widths.end(), [&](const host::SegmentWidths& one) {
            return one.start == one.end && one.start == shape.widths.front().start;
        });
    m.startWidth = m.endWidth = constant && !shape.widths.empty() ? shape.widths.front().start : 0.0;
    for (std::size_t index = 0; index < shape.path.vertices.size(); ++index) {
        const host::BulgeVertex& from = shape.path.vertices[index];
        Vertex2dData data;
        data.position = host::to3d(from.point, m.elevation);
        data.bulge = from.bulge;
        if (!shape.widths.empty()) {
            const host::SegmentWidths& widths = shape.widths[std::min(index, shape.widths.size() - 1)];
            data.startWidth = widths.start;
            data.endWidth = widths.end;
        }
        auto* vertex = new AcDb2dVertex;
        vertex->setData(data);
        AcDbObjectId id;
        appendVertex(id, vertex);
        if (!id.isNull()) {
            vertex->close();
        }
    }
}

void AcDb2dPolyline::eraseVertices() {
    mVertices.erase(true);
}

std::unique_ptr<AcDbCurve> AcDb2dPolyline::newSimilar(host::WidePath shape) const {
    auto similar = host::newLike<AcDb2dPolyline>(*this);
    similar->m = m;
    similar->setPolyType(AcDb::k2dSimplePoly);
    similar->setShape(shape);
    return similar;
}

Acad::ErrorStatus AcDb2dPolyline::changeEnd(bool start, const AcGePoint2d& point, double bulge) {
    std::vector<Vertex2dData> vertices = drawnVertices();
    Vertex2dData& end = start ? vertices.front() : vertices.back();
    end.position.x = point.x;
    end.position.y = point.y;
    vertices[start ? 0 : vertices.size() - 2].bulge = bulge;
    return assignVertices(vertices);
}

Acad::ErrorStatus AcDb2dPolyline::reverseCurve() {
    const std::vector<Vertex2dData> old = drawnVertices();
    std::vector<Vertex2dData> turned(old.rbegin(), old.rend());
    const std::size_t count = old.size();
    for (std::size_t index = 0; index < count; ++index) {
        const Vertex2dData& segment = old[(2 * count - 2 - index) % count];
        turned[index].bulge = -segment.bulge;
        turned[index].startWidth = segment.endWidth;
        turned[index].endWidth = segment.startWidth;
        turned[index].tangent = host::normalizedAngle(turned[index].tangent + host::pi);
    }
    if (isClosed() && count > 0) {
        std::rotate(turned.begin(), turned.end() - 1, turned.end()); // the first vertex stays the first
    }
    std::vector<Vertex2dData> frame;
    mVertices.forEach<AcDb2dVertex>([&](const AcDb2dVertex& vertex) {
        if ((vertex.data().flags & Vertex2dData::splineControl) != 0) {
            frame.push_back(vertex.data());
        }
    });
    if (!frame.empty()) {
        std::reverse(frame.begin() + (isClosed() ? 1 : 0), frame.end());
        std::size_t at = 0;
        mVertices.change<AcDb2dVertex>([&](AcDb2dVertex& vertex) {
            if ((vertex.data().flags & Vertex2dData::splineControl) != 0) {
                vertex.setData(frame[at++]);
            }
        });
    }
    return assignVertices(turned);
}

Acad::ErrorStatus AcDb2dPolyline::dwgOutFields(AcDbDwgFiler* filer) const {
    if (const Acad::ErrorStatus status = AcDbCurve::dwgOutFields(filer); status != Acad::eOk) {
        return status;
    }
    host::writeFields(filer, m);
    mVertices.dwgOut(filer);
    return filer->filerStatus();
}

Acad::ErrorStatus AcDb2dPolyline::dwgInFields(AcDbDwgFiler* filer) {
    if (const Acad::ErrorStatus status = AcDbCurve::dwgInFields(filer); status != Acad::eOk) {
        return status;
    }
    host::Polyline2dData read;
    host::readFields(filer, read);
    mVertices.dwgIn(filer);
    if (filer->filerStatus() == Acad::eOk) {
        m = read;
    }
    return filer->filerStatus();
}

Acad::ErrorStatus AcDb2dPolyline::dxfInFields(AcDbDxfFiler* filer) {
    assertWriteEnabled();
    m = {};
    const Acad::ErrorStatus status = AcDbCurve::dxfInFields(filer);
    return status == Acad::eOk ? readDxfGroups(filer) : status;
}

std::string_view AcDb2dPolyline::dxfSubclass(std::string_view marker) const {
    return marker.empty() || marker == "AcDb2dPolyline" ? "AcDb2dPolyline" : std::string_view();
}

bool AcDb2dPolyline::takeDxfGroup(AcDbDxfFiler*, const host::DxfGroup& group, std::string_view) {
    switch (group.code) {
    case 10:
        m.elevation = group.z;
        return true;
    case 39:
        m.thickness = group.real;
        return true;
    case 40:
        m.startWidth = group.real;
        return true;
    case 41:
        m.endWidth = group.real;
        return true;
    case 66:
        return true;
    case 70:
        m.flags = group.int16();
        return true;
    case 75:
        m.curveType = group.int16();
        return true;
    case 210:
        m.normal = host::unitNormal(group.vector());
        return true;
    default:
        return false;
    }
}

Acad::ErrorStatus AcDb2dPolyline::dxfGroupsRead(AcDbDxfFiler*) {
    if ((m.flags & otherKinds) != 0) {
        return Acad::eNotThatKindOfClass;
    }
    return std::isfinite(m.elevation + m.thickness + m.startWidth + m.endWidth) ? Acad::eOk
                                                                                : Acad::eInvalidInput;
}

Acad::ErrorStatus AcDb2dPolyline::dxfOutFields(AcDbDxfFiler* filer) const {
    if (const Acad::ErrorStatus status = AcDbCurve::dxfOutFields(filer); status != Acad::eOk) {
        return status;
    }
    filer->writeText(100, "AcDb2dPolyline");
    filer->writeInteger(66, 1);
    filer->writePoint3d(10, {0.0, 0.0, m.elevation});
    if (m.thickness != 0.0) {
        filer->writeReal(39, m.thickness);
    }
    host::writeUnlessZero(filer, 70, m.flags);
    host::writeUnlessDefault(filer, 40, m.startWidth, 0.0);
    host::writeUnlessDefault(filer, 41, m.endWidth, 0.0);
    host::writeNormal(filer, m.normal);
    host::writeUnlessZero(filer, 75, m.curveType);
    writeKeptGroups(filer, "AcDb2dPolyline");
    return filer->filerStatus();
}

Acad::ErrorStatus AcDb2dPolyline::subErase(bool erasing) {
    const Acad::ErrorStatus status = AcDbCurve::subErase(erasing);
    return status == Acad::eOk ? mVertices.erase(erasing) : status;
}

Acad::ErrorStatus AcDb2dPolyline::subTransformBy(const AcGeMatrix3d& transform) {
    const host::PlanarTransform planar(transform, m.normal, m.elevation);
    if (planar.isSingular) {
        return Acad::eDegenerateGeometry;
    }
    bool hasBulges = false;
    mVertices.forEach<AcDb2dVertex>(
        [&](const AcDb2dVertex& vertex) { hasBulges = hasBulges || vertex.data().bulge != 0.0; });
    if (!planar.isUniform && hasBulges) {
        return Acad::eCannotScaleNonUniformly;
    }
    assertWriteEnabled();
    const double scale = planar.isUniform ? planar.scale : 1.0;
    const auto scaled = [&](double width) {
        return width == Vertex2dData::widthNotGiven ? width : width * scale;
    };
    const double turn = std::atan2(planar.local.entry[1][0], planar.local.entry[0][0]);
    const Acad::ErrorStatus status = mVertices.change<AcDb2dVertex>([&](AcDb2dVertex& vertex) {
        Vertex2dData data = vertex.data();
        const AcGePoint2d point = planar(host::to2d(data.position));
        data.position.set(point.x, point.y, planar.elevation);
        data.bulge = planar.isMirrored ? -data.bulge : data.bulge;
        data.startWidth = scaled(data.startWidth);
        data.endWidth = scaled(data.endWidth);
        if ((data.flags & Vertex2dData::tangentUsed) != 0) {
            data.tangent =
                host::normalizedAngle(planar.isMirrored ? turn - data.tangent : turn + data.tangent);
        }
        vertex.setData(data);
    });
    m.startWidth *= scale;
    m.endWidth *= scale;
    m.normal = planar.normal;
    m.elevation = planar.elevation;
    m.thickness *= planar.normalScale;
    return status;
}

bool AcDb2dPolyline::subWorldDraw(AcGiWorldDraw* draw) {
    assertReadEnabled();
    // The same picture as that of a light polyline.
    AcDbPolyline light;
    light.setNormal(m.normal);
    light.setElevation(m.elevation);
    light.setThickness(m.thickness);
    light.setPlinegen(isLinetypeGenerationOn());
    light.setShape(shape());
    if (light.numVerts() > 0) {
        draw->geometry().pline(light);
    }
    return true;
}
