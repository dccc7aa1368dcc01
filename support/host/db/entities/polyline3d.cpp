// 3D polylines: vertices, fitting, the curve interface, filing.
#include "host/db/entities/polyline3d.h"

#include "host/db/entities/curvepiece.h"
#include "host/db/entities/fields.h"
#include "host/db/entities/line.h"
#include "host/db/entities/polylinefit.h"
#include "host/db/entities/transforms.h"
#include "host/gi/gi.h"

#include <algorithm>

ACRX_DXF_DEFINE_MEMBERS(AcDb3dPolyline, AcDbCurve, AcDb::kDHL_CURRENT, AcDb::kMReleaseCurrent, 0, POLYLINE,
                        ObjectDBX Classes)

using host::Vertex3dData;

namespace {

// Group 70 of a polyline.
constexpr int closedPolyline = 1;
constexpr int splineFitted = 4;
constexpr int polyline3d = 8;

} // namespace

AcDb3dPolyline::AcDb3dPolyline(AcDb::Poly3dType type, const AcGePoint3dArray& vertices, bool closed) {
    setFlag(closedPolyline, closed);
    for (const AcGePoint3d& point : vertices) {
        append(point, Vertex3dData::ofPolyline3d);
    }
    if (type != AcDb::k3dSimplePoly) {
        convertToPolyType(type);
    }
}

void AcDb3dPolyline::setFlag(int flag, bool on) {
    assertWriteEnabled();
    m.flags = static_cast<Adesk::Int16>(on ? m.flags | flag : m.flags & ~flag);
}

AcDb::Poly3dType AcDb3dPolyline::polyType() const {
    assertReadEnabled();
    if ((m.flags & splineFitted) == 0) {
        return AcDb::k3dSimplePoly;
    }
    return m.curveType == 5 ? AcDb::k3dQuadSplinePoly : AcDb::k3dCubicSplinePoly;
}

Acad::ErrorStatus AcDb3dPolyline::setPolyType(AcDb::Poly3dType type) {
    setFlag(splineFitted, type != AcDb::k3dSimplePoly);
    m.curveType = type == AcDb::k3dQuadSplinePoly ? 5 : type == AcDb::k3dCubicSplinePoly ? 6 : 0;
    return Acad::eOk;
}

Acad::ErrorStatus AcDb3dPolyline::makeClosed() {
    setFlag(closedPolyline, true);
    return Acad::eOk;
}
Acad::ErrorStatus AcDb3dPolyline::makeOpen() {
    setFlag(closedPolyline, false);
    return Acad::eOk;
}

Acad::ErrorStatus AcDb3dPolyline::length(double& length) const {
    assertReadEnabled();
    const std::vector<AcGePoint3d> points = outline();
    length = 0.0;
    for (std::size_t index = 0; index + 1 < points.size(); ++index) {
        length += points[index].distanceTo(points[index + 1]);
    }
    return Acad::eOk;
}

std::vector<AcGePoint3d> AcDb3dPolyline::drawn() const {
    std::vector<AcGePoint3d> points;
    mVertices.forEach<AcDb3dPolylineVertex>([&](const AcDb3dPolylineVertex& vertex) {
        if ((vertex.data().flags & Vertex3dData::splineControl) == 0) {
            points.push_back(vertex.data().position);
        }
    });
    return points;
}

std::vector<AcGePoint3d> AcDb3dPolyline::frame() const {
    std::vector<AcGePoint3d> points;
    mVertices.forEach<AcDb3dPolylineVertex>([&](const AcDb3dPolylineVertex& vertex) {
        if ((vertex.data().flags & Vertex3dData::splineFit) == 0) {
            points.push_back(vertex.data().position);
        }
    });
    return points;
}

std::vector<AcGePoint3d> AcDb3dPolyline::outline() const {
    std::vector<AcGePoint3d> points = drawn();
    if (isClosed() && points.size() > 1) {
        points.push_back(points.front());
    }
    return points;
}

Acad::ErrorStatus AcDb3dPolyline::append(const AcGePoint3d& position, int flags) {
    auto* vertex = new AcDb3dPolylineVertex(position);
    vertex->setVertexType((flags & Vertex3dData::splineFit) != 0 ? AcDb::k3dFitVertex
                                                                 : AcDb::k3dSimpleVertex);
    AcDbObjectId id;
    const Acad::ErrorStatus status = appendVertex(id, vertex);
    if (!id.isNull()) {
        vertex->close();
    }
    return status;
}

Acad::ErrorStatus AcDb3dPolyline::straighten() {
    assertWriteEnabled();
    mVertices.removeIf<AcDb3dPolylineVertex>(
        *this, [](const AcDb3dPolylineVertex& vertex) { return vertex.vertexType() == AcDb::k3dFitVertex; });
    setPolyType(AcDb::k3dSimplePoly);
    return mVertices.change<AcDb3dPolylineVertex>(
        [](AcDb3dPolylineVertex& vertex) { vertex.setVertexType(AcDb::k3dSimpleVertex); });
}

Acad::ErrorStatus AcDb3dPolyline::splineFit() {
    const host::SplineFitting fitting = host::splineFittingOf(database());
    return splineFit(fitting.degree == 2 ? AcDb::k3dQuadSplinePoly : AcDb::k3dCubicSplinePoly,
                     static_cast<Adesk::Int16>(fitting.segments));
}

Acad::ErrorStatus AcDb3dPolyline::splineFit(AcDb::Poly3dType type, Adesk::Int16 segments) {
    const std::vector<AcGePoint3d> own = frame();
    if (type == AcDb::k3dSimplePoly || segments == 0) {
        return Acad::eInvalidInput;
    }
    if (own.size() < 2) {
        return Acad::eDegenerateGeometry;
    }
    if (const Acad::ErrorStatus status = straighten(); status != Acad::eOk) {
        return status;
    }
    mVertices.change<AcDb3dPolylineVertex>(
        [](AcDb3dPolylineVertex& vertex) { vertex.setVertexType(AcDb::k3dControlVertex); });
    for (const AcGePoint3d& point :
         host::splineVertices(own, isClosed(), type == AcDb::k3dQuadSplinePoly ? 2 : 3, std::abs(segments))) {
        append(point, Vertex3dData::splineFit);
    }
    return setPolyType(type);
}

Acad::ErrorStatus AcDb3dPolyline::convertToPolyType(AcDb::Poly3dType type) {
    if (type == AcDb::k3dSimplePoly) {
        return straighten();
    }
    return splineFit(type, static_cast<Adesk::Int16>(host::splineFittingOf(database()).segments));
}

int AcDb3dPolyline::fittedSegments() const {
    const int own = host::splineFrameSegments(static_cast<int>(frame().size()), isClosed());
    return std::max(1, static_cast<int>(drawn().size()) / std::max(own, 1));
}

Acad::ErrorStatus AcDb3dPolyline::appendVertex(AcDb3dPolylineVertex* vertex) {
    AcDbObjectId id;
    return appendVertex(id, vertex);
}

Acad::ErrorStatus AcDb3dPolyline::appendVertex(AcDbObjectId& id, AcDb3dPolylineVertex* vertex) {
    return mVertices.append(*this, id, vertex);
}

Acad::ErrorStatus AcDb3dPolyline::insertVertexAt(const AcDb3dPolylineVertex* after,
                                                 AcDb3dPolylineVertex* vertex) {
    const std::ptrdiff_t place = after != nullptr ? mVertices.find(after) : -1;
    if (after != nullptr && place < 0) {
        return Acad::eInvalidInput;
    }
    AcDbObjectId id;
    return mVertices.insert(*this, static_cast<std::size_t>(place + 1), id, vertex);
}

Acad::ErrorStatus AcDb3dPolyline::insertVertexAt(AcDbObjectId& id, AcDbObjectId after,
                                                 AcDb3dPolylineVertex* vertex) {
    const std::ptrdiff_t place = mVertices.find(after);
    if (!after.isNull() && place < 0) {
        return Acad::eInvalidInput;
    }
    return mVertices.insert(*this, static_cast<std::size_t>(place + 1), id, vertex);
}

Acad::ErrorStatus AcDb3dPolyline::openVertex(AcDb3dPolylineVertex*& vertex, AcDbObjectId id,
                                             AcDb::OpenMode mode, bool openErased) const {
    vertex = nullptr;
    return mVertices.find(id) >= 0 ? acdbOpenObject(vertex, id, mode, openErased) : Acad::eInvalidInput;
}

Acad::ErrorStatus AcDb3dPolyline::openSequenceEnd(AcDbSequenceEnd*& end, AcDb::OpenMode mode) const {
    return acdbOpenObject(end, AcDbObjectId(mVertices.sequenceEnd()), mode);
}

Acad::ErrorStatus AcDb3dPolyline::dwgOutFields(AcDbDwgFiler* filer) const {
    if (const Acad::ErrorStatus status = AcDbCurve::dwgOutFields(filer); status != Acad::eOk) {
        return status;
    }
    host::writeFields(filer, m);
    mVertices.dwgOut(filer);
    return filer->filerStatus();
}

Acad::ErrorStatus AcDb3dPolyline::dwgInFields(AcDbDwgFiler* filer) {
    if (const Acad::ErrorStatus status = AcDbCurve::dwgInFields(filer); status != Acad::eOk) {
        return status;
    }
    host::Polyline3dData read;
    host::readFields(filer, read);
    mVertices.dwgIn(filer);
    if (filer->filerStatus() == Acad::eOk) {
        m = read;
    }
    return filer->filerStatus();
}

Acad::ErrorStatus AcDb3dPolyline::dxfInFields(AcDbDxfFiler* filer) {
    assertWriteEnabled();
    m = {};
    const Acad::ErrorStatus status = AcDbCurve::dxfInFields(filer);
    return status == Acad::eOk ? readDxfGroups(filer) : status;
}

std::string_view AcDb3dPolyline::dxfSubclass(std::string_view marker) const {
    return marker.empty() || marker == "AcDb3dPolyline" ? "AcDb3dPolyline" : std::string_view();
}

bool AcDb3dPolyline::takeDxfGroup(AcDbDxfFiler*, const host::DxfGroup& group, std::string_view) {
    switch (group.code) {
    case 10:
    case 66:
        return true; // a point of zeros; that parts follow
    case 70:
        m.flags = group.int16();
        return true;
    case 75:
        m.curveType = group.int16();
        return true;
    default:
        return false;
    }
}

Acad::ErrorStatus AcDb3dPolyline::dxfGroupsRead(AcDbDxfFiler*) {
    return (m.flags & polyline3d) != 0 ? Acad::eOk : Acad::eNotThatKindOfClass;
}

Acad::ErrorStatus AcDb3dPolyline::dxfOutFields(AcDbDxfFiler* filer) const {
    if (const Acad::ErrorStatus status = AcDbCurve::dxfOutFields(filer); status != Acad::eOk) {
        return status;
    }
    filer->writeText(100, "AcDb3dPolyline");
    filer->writeInteger(66, 1);
    filer->writePoint3d(10, AcGePoint3d::kOrigin);
    filer->writeInteger(70, m.flags);
    host::writeUnlessZero(filer, 75, m.curveType);
    writeKeptGroups(filer, "AcDb3dPolyline");
    return filer->filerStatus();
}

host::CurveView AcDb3dPolyline::geometry() const {
    AcGePoint3dArray points;
    for (const AcGePoint3d& point : outline()) {
        points.append(point);
    }
    return host::CurveView(std::make_unique<AcGePolyline3d>(points));
}

AcGeNurbCurve3d AcDb3dPolyline::asNurbs() const {
    AcGePoint3dArray points;
    AcGeKnotVector knots;
    knots.append(0.0);
    for (const AcGePoint3d& point : outline()) {
        knots.append(points.length());
        points.append(point);
    }
    knots.append(points.length() - 1);
    return {1, knots, points};
}

std::unique_ptr<AcDbCurve> AcDb3dPolyline::newPart(double from, double to) const {
    const std::vector<AcGePoint3d> points = outline();
    const auto count = static_cast<double>(points.size() - 1);
    auto part = host::newLike<AcDb3dPolyline>(*this);
    const auto at = [&](double parameter) {
        const double within = parameter > count ? parameter - count : parameter;
        const double index = std::min(std::floor(within), count - 1.0);
        const AcGePoint3d& start = points[static_cast<std::size_t>(index)];
        return start + (points[static_cast<std::size_t>(index) + 1] - start) * (within - index);
    };
    part->append(at(from), Vertex3dData::ofPolyline3d);
    for (double vertex = std::floor(from + 1e-10) + 1.0; vertex < to - 1e-10; vertex += 1.0) {
        part->append(at(vertex), Vertex3dData::ofPolyline3d);
    }
    part->append(at(to), Vertex3dData::ofPolyline3d);
    return part;
}

Acad::ErrorStatus AcDb3dPolyline::extend(double parameter) {
    const std::vector<AcGePoint3d> points = drawn();
    if (isClosed() || points.size() < 2 || polyType() != AcDb::k3dSimplePoly || !std::isfinite(parameter)) {
        return Acad::eInvalidInput;
    }
    const auto last = static_cast<double>(points.size() - 1);
    if (parameter >= 0.0 && parameter <= last) {
        return Acad::eInvalidInput;
    }
    const bool start = parameter < 0.0;
    const AcGePoint3d& end = start ? points.front() : points.back();
    const AcGePoint3d& inner = start ? points[1] : points[points.size() - 2];
    const AcGePoint3d reached = end + (end - inner) * (start ? -parameter : parameter - last);
    const std::size_t changed = start ? 0 : points.size() - 1;
    std::size_t at = 0;
    assertWriteEnabled();
    return mVertices.change<AcDb3dPolylineVertex>([&](AcDb3dPolylineVertex& vertex) {
        if (at++ == changed) {
            vertex.setPosition(reached);
        }
    });
}

Acad::ErrorStatus AcDb3dPolyline::extend(bool extendStart, const AcGePoint3d& toPoint) {
    const std::vector<AcGePoint3d> points = drawn();
    if (points.size() < 2) {
        return Acad::eInvalidInput;
    }
    const AcGePoint3d& end = extendStart ? points.front() : points.back();
    const AcGeVector3d along = end - (extendStart ? points[1] : points[points.size() - 2]);
    const double step = (toPoint - end).dotProduct(along) / along.lengthSqrd();
    if (!(step > 0.0)) {
        return Acad::eInvalidInput;
    }
    return extend(extendStart ? -step : static_cast<double>(points.size() - 1) + step);
}

Acad::ErrorStatus AcDb3dPolyline::reverseCurve() {
    assertWriteEnabled();
    std::vector<AcGePoint3d> ofFrame = frame();
    std::vector<AcGePoint3d> fitted = drawn();
    const auto turn = [&](std::vector<AcGePoint3d>& points) {
        std::reverse(points.begin(), points.end());
        if (isClosed() && !points.empty()) {
            std::rotate(points.begin(), points.end() - 1, points.end()); // the first vertex stays the first
        }
    };
    turn(ofFrame);
    turn(fitted);
    const bool isSimple = polyType() == AcDb::k3dSimplePoly;
    std::size_t inFrame = 0;
    std::size_t inFit = 0;
    return mVertices.change<AcDb3dPolylineVertex>([&](AcDb3dPolylineVertex& vertex) {
        const bool isFit = !isSimple && vertex.vertexType() == AcDb::k3dFitVertex;
        std::vector<AcGePoint3d>& points = isFit ? fitted : ofFrame;
        std::size_t& at = isFit ? inFit : inFrame;
        if (at < points.size()) {
            vertex.setPosition(points[at++]);
        }
    });
}

Acad::ErrorStatus AcDb3dPolyline::subErase(bool erasing) {
    const Acad::ErrorStatus status = AcDbCurve::subErase(erasing);
    return status == Acad::eOk ? mVertices.erase(erasing) : status;
}

bool AcDb3dPolyline::subCurvePieces(std::vector<host::CurvePiece>& pieces) const {
    const std::vector<AcGePoint3d> points = outline();
    for (std::size_t index = 0; index + 1 < points.size(); ++index) {
        if (points[index] != points[index + 1]) {
            pieces.push_back(host::CurvePiece::line(points[index], points[index + 1]));
        }
    }
    return true;
}

Acad::ErrorStatus AcDb3dPolyline::subTransformBy(const AcGeMatrix3d& transform) {
    assertWriteEnabled();
    return mVertices.change<AcDb3dPolylineVertex>(
        [&](AcDb3dPolylineVertex& vertex) { vertex.setPosition(transform * vertex.data().position); });
}

Acad::ErrorStatus AcDb3dPolyline::subGetGripPoints(AcGePoint3dArray& points, AcDbIntArray&,
                                                   AcDbIntArray&) const {
    assertReadEnabled();
    for (const AcGePoint3d& point : frame()) {
        points.append(point);
    }
    return Acad::eOk;
}

Acad::ErrorStatus AcDb3dPolyline::subMoveGripPointsAt(const AcDbIntArray& indices,
                                                      const AcGeVector3d& offset) {
    assertWriteEnabled();
    std::vector<AcGePoint3d> points = frame();
    const Acad::ErrorStatus status = host::forGrips(indices, static_cast<int>(points.size()), [&](int index) {
        points[static_cast<std::size_t>(index)] += offset;
    });
    if (status != Acad::eOk) {
        return status;
    }
    const AcDb::Poly3dType type = polyType();
    const int segments = fittedSegments();
    std::size_t at = 0;
    mVertices.change<AcDb3dPolylineVertex>([&](AcDb3dPolylineVertex& vertex) {
        if (vertex.vertexType() != AcDb::k3dFitVertex && at < points.size()) {
            vertex.setPosition(points[at++]);
        }
    });
    return type == AcDb::k3dSimplePoly ? Acad::eOk : splineFit(type, static_cast<Adesk::Int16>(segments));
}

Acad::ErrorStatus AcDb3dPolyline::subGetOsnapPoints(AcDb::OsnapMode mode, Adesk::GsMarker marker,
                                                    const AcGePoint3d& pick, const AcGePoint3d& last,
                                                    const AcGeMatrix3d& view, AcGePoint3dArray& points,
                                                    AcDbIntArray& geometryIds) const {
    // Ends and middles are those of the segments.
    return AcDbCurve::subGetOsnapPoints(mode, marker, pick, last, view, points, geometryIds);
}

Acad::ErrorStatus AcDb3dPolyline::subExplode(AcDbVoidPtrArray& parts) const {
    assertReadEnabled();
    const std::vector<AcGePoint3d> points = outline();
    for (std::size_t index = 0; index + 1 < points.size(); ++index) {
        auto line = host::newLike<AcDbLine>(*this);
        line->setStartPoint(points[index]);
        line->setEndPoint(points[index + 1]);
        parts.append(line.release());
    }
    return Acad::eOk;
}

bool AcDb3dPolyline::subWorldDraw(AcGiWorldDraw* draw) {
    assertReadEnabled();
    const std::vector<AcGePoint3d> points = outline();
    if (points.size() > 1) {
        draw->geometry().polyline(static_cast<Adesk::UInt32>(points.size()), points.data());
    }
    return true;
}
