// Lines and points.
#include "host/db/entities/line.h"

#include "host/db/dbdatabase.h"
#include "host/db/entities/curvepiece.h"
#include "host/db/entities/fields.h"
#include "host/db/entities/pointmark.h"
#include "host/db/entities/transforms.h"
#include "host/gi/gi.h"

#include <algorithm>

ACRX_DXF_DEFINE_MEMBERS(AcDbLine, AcDbCurve, AcDb::kDHL_CURRENT, AcDb::kMReleaseCurrent, 0, LINE,
                        ObjectDBX Classes)
ACRX_DXF_DEFINE_MEMBERS(AcDbPoint, AcDbEntity, AcDb::kDHL_CURRENT, AcDb::kMReleaseCurrent, 0, POINT,
                        ObjectDBX Classes)

using host::LineData;

AcDbLine::AcDbLine(const AcGePoint3d& start, const AcGePoint3d& end) {
    m.start = start;
    m.end = end;
}

AcGePoint3d AcDbLine::startPoint() const {
    assertReadEnabled();
    return m.start;
}
Acad::ErrorStatus AcDbLine::setStartPoint(const AcGePoint3d& point) {
    assertWriteEnabled();
    m.start = point;
    return Acad::eOk;
}
AcGePoint3d AcDbLine::endPoint() const {
    assertReadEnabled();
    return m.end;
}
Acad::ErrorStatus AcDbLine::setEndPoint(const AcGePoint3d& point) {
    assertWriteEnabled();
    m.end = point;
    return Acad::eOk;
}
double AcDbLine::thickness() const {
    assertReadEnabled();
    return m.thickness;
}
Acad::ErrorStatus AcDbLine::setThickness(double thickness) {
    assertWriteEnabled();
    m.thickness = thickness;
    return Acad::eOk;
}
AcGeVector3d AcDbLine::normal() const {
    assertReadEnabled();
    return m.normal;
}
Acad::ErrorStatus AcDbLine::setNormal(const AcGeVector3d& normal) {
    assertWriteEnabled();
    m.normal = host::unitNormal(normal);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbLine::copyFromBase(const AcDbObject& source) {
    return source.isKindOf(AcDbLine::desc()) ? host::copyFieldsAs<AcDbLine>(*this, source)
                                             : AcDbCurve::copyFromBase(source);
}

Acad::ErrorStatus AcDbLine::dwgOutFields(AcDbDwgFiler* filer) const {
    const Acad::ErrorStatus status = AcDbCurve::dwgOutFields(filer);
    return status == Acad::eOk ? host::writeFields(filer, m) : status;
}

Acad::ErrorStatus AcDbLine::dwgInFields(AcDbDwgFiler* filer) {
    const Acad::ErrorStatus status = AcDbCurve::dwgInFields(filer);
    return status == Acad::eOk ? host::readFields(filer, m) : status;
}

Acad::ErrorStatus AcDbLine::dxfInFields(AcDbDxfFiler* filer) {
    assertWriteEnabled();
    m = {};
    const Acad::ErrorStatus status = AcDbCurve::dxfInFields(filer);
    return status == Acad::eOk ? readDxfGroups(filer) : status;
}

std::string_view AcDbLine::dxfSubclass(std::string_view marker) const {
    return marker.empty() || marker == "AcDbLine" ? "AcDbLine" : std::string_view();
}

bool AcDbLine::takeDxfGroup(AcDbDxfFiler*, const host::DxfGroup& group, std::string_view) {
    switch (group.code) {
    case 10:
        m.start = group.point();
        return true;
    case 11:
        m.end = group.point();
        return true;
    case 39:
        m.thickness = group.real;
        return true;
    case 210:
        m.normal = host::unitNormal(group.vector());
        return true;
    default:
        return false;
    }
}

Acad::ErrorStatus AcDbLine::dxfGroupsRead(AcDbDxfFiler*) {
    return host::isFinite(m.start) && host::isFinite(m.end) && std::isfinite(m.thickness)
               ? Acad::eOk
               : Acad::eInvalidInput;
}

Acad::ErrorStatus AcDbLine::dxfOutFields(AcDbDxfFiler* filer) const {
    if (const Acad::ErrorStatus status = AcDbCurve::dxfOutFields(filer); status != Acad::eOk) {
        return status;
    }
    filer->writeText(100, "AcDbLine");
    if (m.thickness != 0.0) {
        filer->writeReal(39, m.thickness);
    }
    filer->writePoint3d(10, m.start);
    filer->writePoint3d(11, m.end);
    host::writeNormal(filer, m.normal);
    writeKeptGroups(filer, "AcDbLine");
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbLine::getStartParam(double& parameter) const {
    assertReadEnabled();
    parameter = 0.0;
    return Acad::eOk;
}
Acad::ErrorStatus AcDbLine::getEndParam(double& parameter) const {
    assertReadEnabled();
    parameter = m.start.distanceTo(m.end);
    return Acad::eOk;
}
Acad::ErrorStatus AcDbLine::getStartPoint(AcGePoint3d& point) const {
    point = startPoint();
    return Acad::eOk;
}
Acad::ErrorStatus AcDbLine::getEndPoint(AcGePoint3d& point) const {
    point = endPoint();
    return Acad::eOk;
}

Acad::ErrorStatus AcDbLine::getPointAtParam(double parameter, AcGePoint3d& point) const {
    assertReadEnabled();
    const double length = m.start.distanceTo(m.end);
    if (length == 0.0) {
        point = m.start;
        return parameter == 0.0 ? Acad::eOk : Acad::eDegenerateGeometry;
    }
    // A line goes on beyond its ends.
    point = parameter == length ? m.end : m.start + (m.end - m.start) * (parameter / length);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbLine::getParamAtPoint(const AcGePoint3d& point, double& parameter) const {
    assertReadEnabled();
    const AcGeVector3d along = m.end - m.start;
    const double length = along.length();
    const double place =
        length > 0.0 ? std::clamp((point - m.start).dotProduct(along) / length, 0.0, length) : 0.0;
    AcGePoint3d nearest;
    getPointAtParam(place, nearest);
    if (nearest.distanceTo(point) > host::onCurveTolerance(point)) {
        return Acad::eInvalidInput;
    }
    parameter = place;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbLine::getDistAtParam(double parameter, double& distance) const {
    assertReadEnabled();
    const double length = m.start.distanceTo(m.end);
    if (!(parameter >= -1e-10 && parameter <= length + 1e-10)) {
        return Acad::eInvalidInput;
    }
    distance = std::clamp(parameter, 0.0, length);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbLine::getParamAtDist(double distance, double& parameter) const {
    return getDistAtParam(distance, parameter);
}

Acad::ErrorStatus AcDbLine::getFirstDeriv(double, AcGeVector3d& derivative) const {
    assertReadEnabled();
    derivative = (m.end - m.start).normal();
    return Acad::eOk;
}

Acad::ErrorStatus AcDbLine::getSecondDeriv(double, AcGeVector3d& derivative) const {
    assertReadEnabled();
    derivative = AcGeVector3d::kIdentity;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbLine::getOrthoProjectedCurve(const AcGePlane& plane, AcDbCurve*& curve) const {
    assertReadEnabled();
    auto projected = host::newLike<AcDbLine>(*this);
    projected->m = m;
    projected->m.start = m.start.orthoProject(plane);
    projected->m.end = m.end.orthoProject(plane);
    curve = projected.release();
    return Acad::eOk;
}

Acad::ErrorStatus AcDbLine::getOffsetCurves(double distance, AcDbVoidPtrArray& curves) const {
    return getOffsetCurvesGivenPlaneNormal(m.normal, distance, curves);
}

Acad::ErrorStatus AcDbLine::getOffsetCurvesGivenPlaneNormal(const AcGeVector3d& normal, double distance,
                                                            AcDbVoidPtrArray& curves) const {
    assertReadEnabled();
    AcGeVector3d right = (m.end - m.start).crossProduct(normal);
    const double size = right.length();
    if (!(size > 0.0) || !std::isfinite(distance)) {
        return Acad::eInvalidInput;
    }
    right *= distance / size;
    auto parallel = host::newLike<AcDbLine>(*this);
    parallel->m = m;
    parallel->m.start += right;
    parallel->m.end += right;
    curves.append(parallel.release());
    return Acad::eOk;
}

Acad::ErrorStatus AcDbLine::getSplitCurves(const AcGeDoubleArray& parameters,
                                           AcDbVoidPtrArray& pieces) const {
    assertReadEnabled();
    const double length = m.start.distanceTo(m.end);
    std::vector<double> cuts;
    for (const double parameter : parameters) {
        if (!(parameter >= -1e-10 && parameter <= length + 1e-10)) {
            return Acad::eInvalidInput;
        }
        if (parameter > 1e-10 && parameter < length - 1e-10) {
            cuts.push_back(parameter);
        }
    }
    std::sort(cuts.begin(), cuts.end());
    AcGePoint3d from = m.start;
    cuts.push_back(length);
    for (const double cut : cuts) {
        auto piece = host::newLike<AcDbLine>(*this);
        piece->m = m;
        piece->m.start = from;
        getPointAtParam(cut, piece->m.end);
        from = piece->m.end;
        pieces.append(piece.release());
    }
    return Acad::eOk;
}

Acad::ErrorStatus AcDbLine::extend(double parameter) {
    const double length = m.start.distanceTo(m.end);
    if (length == 0.0 || (parameter >= 0.0 && parameter <= length) || !std::isfinite(parameter)) {
        return Acad::eInvalidInput;
    }
    AcGePoint3d point;
    getPointAtParam(parameter, point);
    return parameter < 0.0 ? setStartPoint(point) : setEndPoint(point);
}

Acad::ErrorStatus AcDbLine::extend(bool extendStart, const AcGePoint3d& toPoint) {
    const AcGeVector3d along = m.end - m.start;
    const double square = along.lengthSqrd();
    if (square == 0.0) {
        return Acad::eDegenerateGeometry;
    }
    const double place = (toPoint - m.start).dotProduct(along) / square;
    if (extendStart ? place > 0.0 : place < 1.0) {
        return Acad::eInvalidInput;
    }
    const AcGePoint3d point = m.start + along * place;
    return extendStart ? setStartPoint(point) : setEndPoint(point);
}

Acad::ErrorStatus AcDbLine::reverseCurve() {
    assertWriteEnabled();
    std::swap(m.start, m.end);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbLine::getPlane(AcGePlane& plane, AcDb::Planarity& planarity) const {
    assertReadEnabled();
    planarity = AcDb::kLinear;
    const AcGeVector3d along = m.end - m.start;
    const AcGeVector3d across = m.normal.crossProduct(along);
    if (across.isZeroLength()) {
        plane.set(m.start, along.isZeroLength() ? m.normal : along.perpVector());
    } else {
        plane.set(m.start, along.normal(), across.normal());
    }
    return Acad::eOk;
}

bool AcDbLine::subCurvePieces(std::vector<host::CurvePiece>& pieces) const {
    pieces.push_back(host::CurvePiece::line(m.start, m.end));
    return true;
}

Acad::ErrorStatus AcDbLine::subGetExtentsUnder(const AcGeMatrix3d& transform, AcDbExtents& extents) const {
    assertReadEnabled();
    extents = AcDbExtents();
    for (const AcGePoint3d& point : {m.start, m.end}) {
        extents.addPoint(transform * point);
        if (m.thickness != 0.0) {
            extents.addPoint(transform * (point + m.normal * m.thickness));
        }
    }
    return Acad::eOk;
}

Acad::ErrorStatus AcDbLine::subTransformBy(const AcGeMatrix3d& transform) {
    assertWriteEnabled();
    m.start.transformBy(transform);
    m.end.transformBy(transform);
    const AcGeVector3d extrusion = transform * m.normal;
    const double size = extrusion.length();
    if (size > 0.0) {
        m.thickness *= size;
        m.normal = extrusion / size;
    }
    return Acad::eOk;
}

Acad::ErrorStatus AcDbLine::subGetGripPoints(AcGePoint3dArray& points, AcDbIntArray&, AcDbIntArray&) const {
    assertReadEnabled();
    points.append(m.start);
    points.append(m.end);
    points.append(m.start + (m.end - m.start) * 0.5);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbLine::subMoveGripPointsAt(const AcDbIntArray& indices, const AcGeVector3d& offset) {
    assertWriteEnabled();
    const bool whole = indices.contains(2);
    return host::forGrips(indices, 3, [&](int index) {
        if (index == 2 || (!whole && index == 0)) {
            m.start += offset;
        }
        if (index == 2 || (!whole && index == 1)) {
            m.end += offset;
        }
    });
}

Acad::ErrorStatus AcDbLine::subGetStretchPoints(AcGePoint3dArray& points) const {
    assertReadEnabled();
    points.append(m.start);
    points.append(m.end);
    return Acad::eOk;
}

bool AcDbLine::subWorldDraw(AcGiWorldDraw* draw) {
    assertReadEnabled();
    if (m.thickness != 0.0) {
        draw->subEntityTraits().setThickness(m.thickness);
    }
    const AcGePoint3d points[] = {m.start, m.end};
    draw->geometry().polyline(2, points, &m.normal);
    return true;
}

AcDbPoint::AcDbPoint(const AcGePoint3d& position) {
    m.position = position;
}

AcGePoint3d AcDbPoint::position() const {
    assertReadEnabled();
    return m.position;
}
Acad::ErrorStatus AcDbPoint::setPosition(const AcGePoint3d& position) {
    assertWriteEnabled();
    m.position = position;
    return Acad::eOk;
}
double AcDbPoint::thickness() const {
    assertReadEnabled();
    return m.thickness;
}
Acad::ErrorStatus AcDbPoint::setThickness(double thickness) {
    assertWriteEnabled();
    m.thickness = thickness;
    return Acad::eOk;
}
AcGeVector3d AcDbPoint::normal() const {
    assertReadEnabled();
    return m.normal;
}
Acad::ErrorStatus AcDbPoint::setNormal(const AcGeVector3d& normal) {
    assertWriteEnabled();
    m.normal = host::unitNormal(normal);
    return Acad::eOk;
}
double AcDbPoint::ecsRotation() const {
    assertReadEnabled();
    return m.rotation;
}
Acad::ErrorStatus AcDbPoint::setEcsRotation(double angle) {
    assertWriteEnabled();
    m.rotation = angle;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbPoint::dwgOutFields(AcDbDwgFiler* filer) const {
    const Acad::ErrorStatus status = AcDbEntity::dwgOutFields(filer);
    return status == Acad::eOk ? host::writeFields(filer, m) : status;
}

Acad::ErrorStatus AcDbPoint::dwgInFields(AcDbDwgFiler* filer) {
    const Acad::ErrorStatus status = AcDbEntity::dwgInFields(filer);
    return status == Acad::eOk ? host::readFields(filer, m) : status;
}

Acad::ErrorStatus AcDbPoint::dxfInFields(AcDbDxfFiler* filer) {
    assertWriteEnabled();
    m = {};
    const Acad::ErrorStatus status = AcDbEntity::dxfInFields(filer);
    return status == Acad::eOk ? readDxfGroups(filer) : status;
}

std::string_view AcDbPoint::dxfSubclass(std::string_view marker) const {
    return marker.empty() || marker == "AcDbPoint" ? "AcDbPoint" : std::string_view();
}

bool AcDbPoint::takeDxfGroup(AcDbDxfFiler*, const host::DxfGroup& group, std::string_view) {
    switch (group.code) {
    case 10:
        m.position = group.point();
        return true;
    case 39:
        m.thickness = group.real;
        return true;
    case 50:
        m.rotation = host::radiansOf(group.real);
        return true;
    case 210:
        m.normal = host::unitNormal(group.vector());
        return true;
    default:
        return false;
    }
}

Acad::ErrorStatus AcDbPoint::dxfGroupsRead(AcDbDxfFiler*) {
    return host::isFinite(m.position) && std::isfinite(m.thickness + m.rotation) ? Acad::eOk
                                                                                 : Acad::eInvalidInput;
}

Acad::ErrorStatus AcDbPoint::dxfOutFields(AcDbDxfFiler* filer) const {
    if (const Acad::ErrorStatus status = AcDbEntity::dxfOutFields(filer); status != Acad::eOk) {
        return status;
    }
    filer->writeText(100, "AcDbPoint");
    filer->writePoint3d(10, m.position);
    if (m.thickness != 0.0) {
        filer->writeReal(39, m.thickness);
    }
    host::writeNormal(filer, m.normal);
    host::writeAngleUnlessZero(filer, 50, m.rotation);
    writeKeptGroups(filer, "AcDbPoint");
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbPoint::getPlane(AcGePlane& plane, AcDb::Planarity& planarity) const {
    assertReadEnabled();
    planarity = AcDb::kPlanar;
    plane.set(m.position, m.normal);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbPoint::subGetExtentsUnder(const AcGeMatrix3d& transform, AcDbExtents& extents) const {
    assertReadEnabled();
    extents = AcDbExtents();
    extents.addPoint(transform * m.position);
    if (m.thickness != 0.0) {
        extents.addPoint(transform * (m.position + m.normal * m.thickness));
    }
    return Acad::eOk;
}

Acad::ErrorStatus AcDbPoint::subTransformBy(const AcGeMatrix3d& transform) {
    assertWriteEnabled();
    m.position.transformBy(transform);
    const AcGeVector3d extrusion = transform * m.normal;
    const double size = extrusion.length();
    if (size > 0.0) {
        const AcGeVector3d axis =
            transform *
            host::toWorld(m.normal, AcGeVector3d(std::cos(m.rotation), std::sin(m.rotation), 0.0));
        m.thickness *= size;
        m.normal = extrusion / size;
        if (m.rotation != 0.0) {
            const AcGeVector3d turned = host::toObject(m.normal, axis);
            m.rotation = std::atan2(turned.y, turned.x);
        }
    }
    return Acad::eOk;
}

Acad::ErrorStatus AcDbPoint::subGetGripPoints(AcGePoint3dArray& points, AcDbIntArray&, AcDbIntArray&) const {
    assertReadEnabled();
    points.append(m.position);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbPoint::subMoveGripPointsAt(const AcDbIntArray& indices, const AcGeVector3d& offset) {
    assertWriteEnabled();
    return host::forGrips(indices, 1, [&](int) { m.position += offset; });
}

Acad::ErrorStatus AcDbPoint::subGetOsnapPoints(AcDb::OsnapMode mode, Adesk::GsMarker, const AcGePoint3d&,
                                               const AcGePoint3d&, const AcGeMatrix3d&,
                                               AcGePoint3dArray& points, AcDbIntArray&) const {
    assertReadEnabled();
    if (mode == AcDb::kOsModeNode || mode == AcDb::kOsModeNear) {
        points.append(m.position);
    }
    return Acad::eOk;
}

bool AcDbPoint::subWorldDraw(AcGiWorldDraw* draw) {
    assertReadEnabled();
    if (m.thickness != 0.0) {
        draw->subEntityTraits().setThickness(m.thickness);
    }
    const auto mark = host::PointMark::of(database());
    if (mark.needsView()) {
        return false;
    }
    showMarkByLine(draw->subEntityTraits());
    mark.draw(draw->geometry(), m.position, mark.isDot() ? 0.0 : mark.size);
    return true;
}

void AcDbPoint::subViewportDraw(AcGiViewportDraw* draw) {
    assertReadEnabled();
    AcGePoint2d low;
    AcGePoint2d high;
    draw->viewport().getViewportDcCorners(low, high);
    const auto mark = host::PointMark::of(database());
    showMarkByLine(draw->subEntityTraits());
    mark.draw(draw->geometry(), m.position, mark.sizeIn(high.y - low.y));
}

/// Marks are lines without a pattern.
void AcDbPoint::showMarkByLine(AcGiSubEntityTraits& traits) const {
    if (database() != nullptr) {
        traits.setLineType(database()->continuousLinetype());
    }
}
