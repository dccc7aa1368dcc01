// Circles, and what circles and circular arcs have in common.
#include "host/db/entities/circle.h"

#include "host/db/entities/curvepiece.h"
#include "host/db/entities/ellipse.h"
#include "host/db/entities/fields.h"
#include "host/db/entities/transforms.h"
#include "host/gi/gi.h"

#include <algorithm>

ACRX_DXF_DEFINE_MEMBERS(AcDbCircle, AcDbCurve, AcDb::kDHL_CURRENT, AcDb::kMReleaseCurrent, 0, CIRCLE,
                        ObjectDBX Classes)

using host::twoPi;

namespace host {

AcGePoint3d CircleData::worldCenter() const {
    return toWorld(normal, center);
}

AcGePoint3d CircleData::pointAt(double angle) const {
    return toWorld(normal, center + AcGeVector3d(radius * std::cos(angle), radius * std::sin(angle), 0.0));
}

AcGeVector3d CircleData::directionAt(double angle) const {
    return toWorld(normal, AcGeVector3d(std::cos(angle), std::sin(angle), 0.0));
}

double CircleData::angleOf(const AcGePoint3d& point) const {
    const AcGeVector3d arm = toObject(normal, point) - center;
    return normalizedAngle(std::atan2(arm.y, arm.x));
}

void CircleData::changeNormal(const AcGeVector3d& newNormal) {
    const AcGePoint3d at = worldCenter();
    normal = unitNormal(newNormal);
    center = toObject(normal, at);
}

CurvePiece CircleData::piece(double from, double to) const {
    return CurvePiece::arc(worldCenter(), directionAt(0.0) * radius, directionAt(halfPi) * radius, from, to);
}

Acad::ErrorStatus CircleData::extentsUnder(const CurvePiece& piece, const AcGeMatrix3d& transform,
                                           AcDbExtents& extents) const {
    extents = AcDbExtents();
    piece.transformed(transform).addExtents(extents);
    extents.expandBy(transform * (normal * thickness));
    return Acad::eOk;
}

Acad::ErrorStatus CircleData::transformBy(const PlanarTransform& planar, double& turn) {
    if (planar.isSingular) {
        return Acad::eDegenerateGeometry;
    }
    if (!planar.isUniform) {
        return Acad::eCannotScaleNonUniformly;
    }
    const AcGePoint2d moved = planar({center.x, center.y});
    center.set(moved.x, moved.y, planar.elevation);
    normal = planar.normal;
    if (planar.scale != 1.0) {
        radius *= planar.scale;
    }
    thickness *= planar.normalScale;
    turn = std::atan2(planar.local.entry[1][0], planar.local.entry[0][0]);
    return Acad::eOk;
}

bool CircleData::takeGroup(const DxfGroup& group) {
    switch (group.code) {
    case 10:
        center = group.point();
        return true;
    case 39:
        thickness = group.real;
        return true;
    case 40:
        radius = group.real;
        return true;
    case 210:
        normal = unitNormal(group.vector());
        return true;
    default:
        return false;
    }
}

bool CircleData::isGood() const {
    return isFinite(center) && std::isfinite(radius + thickness);
}

void CircleData::writeGroups(AcDbDxfFiler* filer) const {
    filer->writeText(100, "AcDbCircle");
    if (thickness != 0.0) {
        filer->writeReal(39, thickness);
    }
    filer->writePoint3d(10, center);
    filer->writeReal(40, radius);
    writeNormal(filer, normal);
}

std::unique_ptr<AcDbArc> newArc(const AcDbEntity& like, const CircleData& circle, double from, double to) {
    auto arc = newLike<AcDbArc>(like);
    arc->setNormal(circle.normal);
    arc->setCenter(circle.worldCenter());
    arc->setRadius(circle.radius);
    arc->setThickness(circle.thickness);
    arc->setStartAngle(from);
    arc->setEndAngle(to);
    return arc;
}

} // namespace host

AcDbCircle::AcDbCircle(const AcGePoint3d& center, const AcGeVector3d& normal, double radius) {
    m.normal = host::unitNormal(normal);
    m.center = host::toObject(m.normal, center);
    m.radius = radius;
}

AcGePoint3d AcDbCircle::center() const {
    assertReadEnabled();
    return m.worldCenter();
}
Acad::ErrorStatus AcDbCircle::setCenter(const AcGePoint3d& center) {
    assertWriteEnabled();
    m.center = host::toObject(m.normal, center);
    return Acad::eOk;
}
double AcDbCircle::radius() const {
    assertReadEnabled();
    return m.radius;
}
Acad::ErrorStatus AcDbCircle::setRadius(double radius) {
    if (!(radius >= 0.0)) {
        return Acad::eInvalidInput;
    }
    assertWriteEnabled();
    m.radius = radius;
    return Acad::eOk;
}
double AcDbCircle::circumference() const {
    return twoPi * radius();
}
Acad::ErrorStatus AcDbCircle::setCircumference(double length) {
    return setRadius(length / twoPi);
}
double AcDbCircle::thickness() const {
    assertReadEnabled();
    return m.thickness;
}
Acad::ErrorStatus AcDbCircle::setThickness(double thickness) {
    assertWriteEnabled();
    m.thickness = thickness;
    return Acad::eOk;
}
AcGeVector3d AcDbCircle::normal() const {
    assertReadEnabled();
    return m.normal;
}
Acad::ErrorStatus AcDbCircle::setNormal(const AcGeVector3d& normal) {
    assertWriteEnabled();
    m.changeNormal(normal);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbCircle::copyFromBase(const AcDbObject& source) {
    return source.isKindOf(AcDbCircle::desc()) ? host::copyFieldsAs<AcDbCircle>(*this, source)
                                               : AcDbCurve::copyFromBase(source);
}

Acad::ErrorStatus AcDbCircle::dwgOutFields(AcDbDwgFiler* filer) const {
    const Acad::ErrorStatus status = AcDbCurve::dwgOutFields(filer);
    return status == Acad::eOk ? host::writeFields(filer, m) : status;
}

Acad::ErrorStatus AcDbCircle::dwgInFields(AcDbDwgFiler* filer) {
    const Acad::ErrorStatus status = AcDbCurve::dwgInFields(filer);
    return status == Acad::eOk ? host::readFields(filer, m) : status;
}

Acad::ErrorStatus AcDbCircle::dxfInFields(AcDbDxfFiler* filer) {
    assertWriteEnabled();
    m = {};
    const Acad::ErrorStatus status = AcDbCurve::dxfInFields(filer);
    return status == Acad::eOk ? readDxfGroups(filer) : status;
}

std::string_view AcDbCircle::dxfSubclass(std::string_view marker) const {
    return marker.empty() || marker == "AcDbCircle" ? "AcDbCircle" : std::string_view();
}

bool AcDbCircle::takeDxfGroup(AcDbDxfFiler*, const host::DxfGroup& group, std::string_view) {
    return m.takeGroup(group);
}

Acad::ErrorStatus AcDbCircle::dxfGroupsRead(AcDbDxfFiler*) {
    return m.isGood() ? Acad::eOk : Acad::eInvalidInput;
}

Acad::ErrorStatus AcDbCircle::dxfOutFields(AcDbDxfFiler* filer) const {
    if (const Acad::ErrorStatus status = AcDbCurve::dxfOutFields(filer); status != Acad::eOk) {
        return status;
    }
    m.writeGroups(filer);
    writeKeptGroups(filer, "AcDbCircle");
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbCircle::getStartParam(double& parameter) const {
    parameter = 0.0;
    return Acad::eOk;
}
Acad::ErrorStatus AcDbCircle::getEndParam(double& parameter) const {
    parameter = twoPi;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbCircle::getPointAtParam(double parameter, AcGePoint3d& point) const {
    assertReadEnabled();
    point = m.pointAt(parameter);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbCircle::getParamAtPoint(const AcGePoint3d& point, double& parameter) const {
    assertReadEnabled();
    const double angle = m.angleOf(point);
    if (m.pointAt(angle).distanceTo(point) > host::onCurveTolerance(point)) {
        return Acad::eInvalidInput;
    }
    parameter = angle;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbCircle::getDistAtParam(double parameter, double& distance) const {
    assertReadEnabled();
    if (!(parameter >= -host::angleTolerance && parameter <= twoPi + host::angleTolerance)) {
        return Acad::eInvalidInput;
    }
    distance = m.radius * std::clamp(parameter, 0.0, twoPi);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbCircle::getParamAtDist(double distance, double& parameter) const {
    assertReadEnabled();
    const double angle = m.radius > 0.0 ? distance / m.radius : 0.0;
    if (!(angle >= -host::angleTolerance && angle <= twoPi + host::angleTolerance)) {
        return Acad::eInvalidInput;
    }
    parameter = std::clamp(angle, 0.0, twoPi);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbCircle::getFirstDeriv(double parameter, AcGeVector3d& derivative) const {
    assertReadEnabled();
    derivative = m.directionAt(parameter + host::halfPi) * m.radius;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbCircle::getSecondDeriv(double parameter, AcGeVector3d& derivative) const {
    assertReadEnabled();
    derivative = m.directionAt(parameter) * -m.radius;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbCircle::getOffsetCurves(double distance, AcDbVoidPtrArray& curves) const {
    assertReadEnabled();
    const double radius = m.radius + distance;
    if (!(radius > 1e-12 * std::fabs(distance)) || !std::isfinite(radius)) {
        return Acad::eInvalidInput;
    }
    auto offset = host::newLike<AcDbCircle>(*this);
    offset->m = m;
    offset->m.radius = radius;
    curves.append(offset.release());
    return Acad::eOk;
}

Acad::ErrorStatus AcDbCircle::getSplitCurves(const AcGeDoubleArray& parameters,
                                             AcDbVoidPtrArray& pieces) const {
    assertReadEnabled();
    std::vector<double> cuts;
    for (const double parameter : parameters) {
        if (!std::isfinite(parameter)) {
            return Acad::eInvalidInput;
        }
        cuts.push_back(host::normalizedAngle(parameter));
    }
    if (cuts.empty()) {
        return Acad::eInvalidInput;
    }
    std::sort(cuts.begin(), cuts.end());
    cuts.erase(std::unique(cuts.begin(), cuts.end(),
                           [](double a, double b) { return b - a <= host::angleTolerance; }),
               cuts.end());
    for (std::size_t index = 0; index < cuts.size(); ++index) {
        const double to = index + 1 < cuts.size() ? cuts[index + 1] : cuts.front();
        pieces.append(host::newArc(*this, m, cuts[index], to).release());
    }
    return Acad::eOk;
}

Acad::ErrorStatus AcDbCircle::getArea(double& area) const {
    assertReadEnabled();
    area = host::pi * m.radius * m.radius;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbCircle::reverseCurve() {
    return setNormal(-m.normal);
}

Acad::ErrorStatus AcDbCircle::getPlane(AcGePlane& plane, AcDb::Planarity& planarity) const {
    assertReadEnabled();
    planarity = AcDb::kPlanar;
    plane.set(m.worldCenter(), m.normal);
    return Acad::eOk;
}

bool AcDbCircle::subCurvePieces(std::vector<host::CurvePiece>& pieces) const {
    pieces.push_back(m.piece(0.0, twoPi));
    return true;
}

Acad::ErrorStatus AcDbCircle::subGetExtentsUnder(const AcGeMatrix3d& transform, AcDbExtents& extents) const {
    assertReadEnabled();
    return m.extentsUnder(m.piece(0.0, twoPi), transform, extents);
}

Acad::ErrorStatus AcDbCircle::subGetTransformedCopy(const AcGeMatrix3d& transform, AcDbEntity*& copy) const {
    const Acad::ErrorStatus status = AcDbCurve::subGetTransformedCopy(transform, copy);
    if (status != Acad::eCannotScaleNonUniformly) {
        return status;
    }
    copy = host::newEllipse(*this, m.piece(0.0, twoPi), m.normal, transform).release();
    return copy != nullptr ? Acad::eOk : status;
}

Acad::ErrorStatus AcDbCircle::subTransformBy(const AcGeMatrix3d& transform) {
    assertWriteEnabled();
    double turn = 0.0;
    return m.transformBy(host::PlanarTransform(transform, m.normal, m.center.z), turn);
}

Acad::ErrorStatus AcDbCircle::subGetGripPoints(AcGePoint3dArray& points, AcDbIntArray&, AcDbIntArray&) const {
    assertReadEnabled();
    points.append(m.worldCenter());
    for (int quarter = 0; quarter < 4; ++quarter) {
        points.append(m.pointAt(quarter * host::halfPi));
    }
    return Acad::eOk;
}

Acad::ErrorStatus AcDbCircle::subMoveGripPointsAt(const AcDbIntArray& indices, const AcGeVector3d& offset) {
    assertWriteEnabled();
    const bool whole = indices.contains(0);
    return host::forGrips(indices, 5, [&](int index) {
        if (index == 0) {
            m.center = host::toObject(m.normal, m.worldCenter() + offset);
        } else if (!whole) {
            const AcGePoint3d to = m.pointAt((index - 1) * host::halfPi) + offset;
            const AcGeVector3d arm = host::toObject(m.normal, to) - m.center;
            m.radius = std::hypot(arm.x, arm.y);
        }
    });
}

Acad::ErrorStatus AcDbCircle::subGetStretchPoints(AcGePoint3dArray& points) const {
    points.append(center());
    return Acad::eOk;
}

bool AcDbCircle::subWorldDraw(AcGiWorldDraw* draw) {
    assertReadEnabled();
    if (m.thickness != 0.0) {
        draw->subEntityTraits().setThickness(m.thickness);
    }
    draw->geometry().circle(m.worldCenter(), m.radius, m.normal);
    return true;
}
