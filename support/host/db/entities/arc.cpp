// Circular arcs.
#include "host/db/entities/circle.h"
#include "host/db/entities/curvepiece.h"
#include "host/db/entities/ellipse.h"
#include "host/db/entities/fields.h"
#include "host/db/entities/transforms.h"
#include "host/ge/path_segment.h"
#include "host/gi/gi.h"

#include <algorithm>

ACRX_DXF_DEFINE_MEMBERS(AcDbArc, AcDbCurve, AcDb::kDHL_CURRENT, AcDb::kMReleaseCurrent, 0, ARC,
                        ObjectDBX Classes)

using host::ArcData;
using host::twoPi;

double ArcData::sweep() const {
    const double angle = host::normalizedAngle(endAngle - startAngle);
    return angle <= 1e-12 ? twoPi : angle;
}

AcDbArc::AcDbArc(const AcGePoint3d& center, double radius, double startAngle, double endAngle)
    : AcDbArc(center, AcGeVector3d::kZAxis, radius, startAngle, endAngle) {}

AcDbArc::AcDbArc(const AcGePoint3d& center, const AcGeVector3d& normal, double radius, double startAngle,
                 double endAngle) {
    m.normal = host::unitNormal(normal);
    m.center = host::toObject(m.normal, center);
    m.radius = radius;
    m.startAngle = host::normalizedAngle(startAngle);
    m.endAngle = host::normalizedAngle(endAngle);
}

AcGePoint3d AcDbArc::center() const {
    assertReadEnabled();
    return m.worldCenter();
}
Acad::ErrorStatus AcDbArc::setCenter(const AcGePoint3d& center) {
    assertWriteEnabled();
    m.center = host::toObject(m.normal, center);
    return Acad::eOk;
}
double AcDbArc::radius() const {
    assertReadEnabled();
    return m.radius;
}
Acad::ErrorStatus AcDbArc::setRadius(double radius) {
    if (!(radius >= 0.0)) {
        return Acad::eInvalidInput;
    }
    assertWriteEnabled();
    m.radius = radius;
    return Acad::eOk;
}
double AcDbArc::startAngle() const {
    assertReadEnabled();
    return m.startAngle;
}
Acad::ErrorStatus AcDbArc::setStartAngle(double angle) {
    if (!std::isfinite(angle)) {
        return Acad::eInvalidInput;
    }
    assertWriteEnabled();
    m.startAngle = host::normalizedAngle(angle);
    return Acad::eOk;
}
double AcDbArc::endAngle() const {
    assertReadEnabled();
    return m.endAngle;
}
Acad::ErrorStatus AcDbArc::setEndAngle(double angle) {
    if (!std::isfinite(angle)) {
        return Acad::eInvalidInput;
    }
    assertWriteEnabled();
    m.endAngle = host::normalizedAngle(angle);
    return Acad::eOk;
}
double AcDbArc::totalAngle() const {
    assertReadEnabled();
    return m.sweep();
}
double AcDbArc::length() const {
    assertReadEnabled();
    return m.radius * m.sweep();
}
double AcDbArc::thickness() const {
    assertReadEnabled();
    return m.thickness;
}
Acad::ErrorStatus AcDbArc::setThickness(double thickness) {
    assertWriteEnabled();
    m.thickness = thickness;
    return Acad::eOk;
}
AcGeVector3d AcDbArc::normal() const {
    assertReadEnabled();
    return m.normal;
}
Acad::ErrorStatus AcDbArc::setNormal(const AcGeVector3d& normal) {
    assertWriteEnabled();
    m.changeNormal(normal);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbArc::copyFromBase(const AcDbObject& source) {
    return source.isKindOf(AcDbArc::desc()) ? host::copyFieldsAs<AcDbArc>(*this, source)
                                            : AcDbCurve::copyFromBase(source);
}

Acad::ErrorStatus AcDbArc::dwgOutFields(AcDbDwgFiler* filer) const {
    const Acad::ErrorStatus status = AcDbCurve::dwgOutFields(filer);
    return status == Acad::eOk ? host::writeFields(filer, m) : status;
}

Acad::ErrorStatus AcDbArc::dwgInFields(AcDbDwgFiler* filer) {
    const Acad::ErrorStatus status = AcDbCurve::dwgInFields(filer);
    return status == Acad::eOk ? host::readFields(filer, m) : status;
}

Acad::ErrorStatus AcDbArc::dxfInFields(AcDbDxfFiler* filer) {
    assertWriteEnabled();
    m = {};
    const Acad::ErrorStatus status = AcDbCurve::dxfInFields(filer);
    return status == Acad::eOk ? readDxfGroups(filer) : status;
}

std::string_view AcDbArc::dxfSubclass(std::string_view marker) const {
    if (marker.empty() || marker == "AcDbArc") {
        return "AcDbArc";
    }
    return marker == "AcDbCircle" ? "AcDbCircle" : std::string_view();
}

bool AcDbArc::takeDxfGroup(AcDbDxfFiler*, const host::DxfGroup& group, std::string_view) {
    switch (group.code) {
    case 50:
        m.startAngle = host::radiansOf(group.real);
        return true;
    case 51:
        m.endAngle = host::radiansOf(group.real);
        return true;
    default:
        return m.takeGroup(group);
    }
}

Acad::ErrorStatus AcDbArc::dxfGroupsRead(AcDbDxfFiler*) {
    if (!m.isGood() || !std::isfinite(m.startAngle + m.endAngle)) {
        return Acad::eInvalidInput;
    }
    // 360 degrees stays what the file says.
    for (double* angle : {&m.startAngle, &m.endAngle}) {
        if (*angle < 0.0 || *angle > twoPi) {
            *angle = host::normalizedAngle(*angle);
        }
    }
    return Acad::eOk;
}

Acad::ErrorStatus AcDbArc::dxfOutFields(AcDbDxfFiler* filer) const {
    if (const Acad::ErrorStatus status = AcDbCurve::dxfOutFields(filer); status != Acad::eOk) {
        return status;
    }
    m.writeGroups(filer);
    writeKeptGroups(filer, "AcDbCircle");
    filer->writeText(100, "AcDbArc");
    filer->writeAngle(50, m.startAngle);
    filer->writeAngle(51, m.endAngle);
    writeKeptGroups(filer, "AcDbArc");
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbArc::getStartParam(double& parameter) const {
    parameter = startAngle();
    return Acad::eOk;
}
Acad::ErrorStatus AcDbArc::getEndParam(double& parameter) const {
    assertReadEnabled();
    parameter = m.startAngle + m.sweep();
    return Acad::eOk;
}

Acad::ErrorStatus AcDbArc::getPointAtParam(double parameter, AcGePoint3d& point) const {
    assertReadEnabled();
    point = m.pointAt(parameter);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbArc::getParamAtPoint(const AcGePoint3d& point, double& parameter) const {
    assertReadEnabled();
    double angle = m.angleOf(point);
    const double tolerance = host::onCurveTolerance(point);
    const host::CurvePiece piece = m.piece(m.startAngle, m.startAngle + m.sweep());
    if (!piece.contains(angle, m.radius > 0.0 ? tolerance / m.radius : 0.0) ||
        m.pointAt(angle).distanceTo(point) > tolerance) {
        return Acad::eInvalidInput;
    }
    parameter = angle;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbArc::getDistAtParam(double parameter, double& distance) const {
    assertReadEnabled();
    const double angle = parameter - m.startAngle;
    const double sweep = m.sweep();
    if (!(angle >= -host::angleTolerance && angle <= sweep + host::angleTolerance)) {
        return Acad::eInvalidInput;
    }
    distance = m.radius * std::clamp(angle, 0.0, sweep);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbArc::getParamAtDist(double distance, double& parameter) const {
    assertReadEnabled();
    const double angle = m.radius > 0.0 ? distance / m.radius : 0.0;
    const double sweep = m.sweep();
    if (!(angle >= -host::angleTolerance && angle <= sweep + host::angleTolerance)) {
        return Acad::eInvalidInput;
    }
    parameter = m.startAngle + std::clamp(angle, 0.0, sweep);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbArc::getFirstDeriv(double parameter, AcGeVector3d& derivative) const {
    assertReadEnabled();
    derivative = m.directionAt(parameter + host::halfPi) * m.radius;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbArc::getSecondDeriv(double parameter, AcGeVector3d& derivative) const {
    assertReadEnabled();
    derivative = m.directionAt(parameter) * -m.radius;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbArc::getOffsetCurves(double distance, AcDbVoidPtrArray& curves) const {
    assertReadEnabled();
    const double radius = m.radius + distance;
    if (!(radius > 1e-12 * std::fabs(distance)) || !std::isfinite(radius)) {
        return Acad::eInvalidInput;
    }
    auto offset = host::newLike<AcDbArc>(*this);
    offset->m = m;
    offset->m.radius = radius;
    curves.append(offset.release());
    return Acad::eOk;
}

Acad::ErrorStatus AcDbArc::getSplitCurves(const AcGeDoubleArray& parameters, AcDbVoidPtrArray& pieces) const {
    assertReadEnabled();
    const double end = m.startAngle + m.sweep();
    std::vector<double> cuts;
    for (const double parameter : parameters) {
        if (!(parameter >= m.startAngle - host::angleTolerance && parameter <= end + host::angleTolerance)) {
            return Acad::eInvalidInput;
        }
        if (parameter > m.startAngle + host::angleTolerance && parameter < end - host::angleTolerance) {
            cuts.push_back(parameter);
        }
    }
    std::sort(cuts.begin(), cuts.end());
    double from = m.startAngle;
    for (const double cut : cuts) {
        pieces.append(host::newArc(*this, m, from, cut).release());
        from = cut;
    }
    pieces.append(host::newArc(*this, m, from, m.endAngle).release());
    return Acad::eOk;
}

Acad::ErrorStatus AcDbArc::extend(double parameter) {
    assertReadEnabled();
    const double end = m.startAngle + m.sweep();
    if (parameter > end && parameter < m.startAngle + twoPi) {
        return setEndAngle(parameter);
    }
    return parameter < m.startAngle && parameter > end - twoPi ? setStartAngle(parameter)
                                                               : Acad::eInvalidInput;
}

Acad::ErrorStatus AcDbArc::extend(bool extendStart, const AcGePoint3d& toPoint) {
    assertReadEnabled();
    double angle = m.angleOf(toPoint);
    if (m.piece(m.startAngle, m.startAngle + m.sweep()).contains(angle, host::angleTolerance)) {
        return Acad::eInvalidInput;
    }
    return extendStart ? setStartAngle(angle) : setEndAngle(angle);
}

Acad::ErrorStatus AcDbArc::getArea(double& area) const {
    assertReadEnabled();
    const double sweep = m.sweep();
    area = 0.5 * m.radius * m.radius * (sweep - std::sin(sweep));
    return Acad::eOk;
}

Acad::ErrorStatus AcDbArc::reverseCurve() {
    assertWriteEnabled();
    const AcGePoint3d start = m.pointAt(m.startAngle);
    const AcGePoint3d end = m.pointAt(m.endAngle);
    m.changeNormal(-m.normal);
    m.startAngle = m.angleOf(end);
    m.endAngle = m.angleOf(start);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbArc::getPlane(AcGePlane& plane, AcDb::Planarity& planarity) const {
    assertReadEnabled();
    planarity = AcDb::kPlanar;
    plane.set(m.worldCenter(), m.normal);
    return Acad::eOk;
}

bool AcDbArc::subCurvePieces(std::vector<host::CurvePiece>& pieces) const {
    pieces.push_back(m.piece(m.startAngle, m.startAngle + m.sweep()));
    return true;
}

Acad::ErrorStatus AcDbArc::subGetExtentsUnder(const AcGeMatrix3d& transform, AcDbExtents& extents) const {
    assertReadEnabled();
    return m.extentsUnder(m.piece(m.startAngle, m.startAngle + m.sweep()), transform, extents);
}

Acad::ErrorStatus AcDbArc::subGetTransformedCopy(const AcGeMatrix3d& transform, AcDbEntity*& copy) const {
    const Acad::ErrorStatus status = AcDbCurve::subGetTransformedCopy(transform, copy);
    if (status != Acad::eCannotScaleNonUniformly) {
        return status;
    }
    copy = host::newEllipse(*this, m.piece(m.startAngle, m.startAngle + m.sweep()), m.normal, transform)
               .release();
    return copy != nullptr ? Acad::eOk : status;
}

Acad::ErrorStatus AcDbArc::subTransformBy(const AcGeMatrix3d& transform) {
    assertWriteEnabled();
    const host::PlanarTransform planar(transform, m.normal, m.center.z);
    double turn = 0.0;
    if (const Acad::ErrorStatus status = m.transformBy(planar, turn); status != Acad::eOk) {
        return status;
    }
    if (planar.isMirrored) {
        const double start = host::normalizedAngle(turn - m.endAngle);
        m.endAngle = host::normalizedAngle(turn - m.startAngle);
        m.startAngle = start;
    } else if (turn != 0.0) {
        m.startAngle = host::normalizedAngle(m.startAngle + turn);
        m.endAngle = host::normalizedAngle(m.endAngle + turn);
    }
    return Acad::eOk;
}

AcGePoint2d AcDbArc::pointInPlane(double angle) const {
    return {m.center.x + m.radius * std::cos(angle), m.center.y + m.radius * std::sin(angle)};
}

void AcDbArc::setFromBulge(const AcGePoint2d& start, const AcGePoint2d& end, double bulge) {
    // An arc runs counterclockwise from start to end.
    const host::PathSegment segment =
        bulge > 0.0 ? host::PathSegment(start, end, bulge) : host::PathSegment(end, start, -bulge);
    if (!segment.isArc()) {
        return;
    }
    const AcGePoint2d center = segment.center();
    m.center.x = center.x;
    m.center.y = center.y;
    m.radius = segment.radius();
    m.startAngle = (segment.start - center).angle();
    m.endAngle = (segment.end - center).angle();
}

Acad::ErrorStatus AcDbArc::subGetGripPoints(AcGePoint3dArray& points, AcDbIntArray&, AcDbIntArray&) const {
    assertReadEnabled();
    points.append(m.pointAt(m.startAngle));
    points.append(m.pointAt(m.endAngle));
    points.append(m.pointAt(m.startAngle + 0.5 * m.sweep()));
    points.append(m.worldCenter());
    return Acad::eOk;
}

Acad::ErrorStatus AcDbArc::subMoveGripPointsAt(const AcDbIntArray& indices, const AcGeVector3d& offset) {
    assertWriteEnabled();
    const bool whole = indices.contains(3);
    const AcGeVector3d move = host::toObject(m.normal, offset);
    std::array<AcGePoint2d, 3> through = {pointInPlane(m.startAngle), pointInPlane(m.endAngle),
                                          pointInPlane(m.startAngle + 0.5 * m.sweep())};
    const Acad::ErrorStatus status = host::forGrips(indices, 4, [&](int index) {
        if (index < 3) {
            through[static_cast<std::size_t>(index)] += AcGeVector2d(move.x, move.y);
        }
    });
    if (status != Acad::eOk) {
        return status;
    }
    if (whole || (indices.contains(0) && indices.contains(1) && indices.contains(2))) {
        m.center += move;
        return Acad::eOk;
    }
    // The bulge of the arc through three points: the tangent of half the angle at which the middle one sees
    // the chord.
    const AcGeVector2d toStart = through[0] - through[2];
    const AcGeVector2d toEnd = through[1] - through[2];
    const double cross = toStart.crossProduct(toEnd);
    const double dot = toStart.dotProduct(toEnd);
    const double size = std::sqrt(toStart.lengthSqrd() * toEnd.lengthSqrd());
    if (cross == 0.0 || size == 0.0) {
        return Acad::eDegenerateGeometry;
    }
    setFromBulge(through[0], through[1], -(size + dot) / cross);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbArc::subGetStretchPoints(AcGePoint3dArray& points) const {
    assertReadEnabled();
    points.append(m.pointAt(m.startAngle));
    points.append(m.pointAt(m.endAngle));
    return Acad::eOk;
}

Acad::ErrorStatus AcDbArc::subMoveStretchPointsAt(const AcDbIntArray& indices, const AcGeVector3d& offset) {
    assertWriteEnabled();
    const AcGeVector3d move = host::toObject(m.normal, offset);
    std::array<AcGePoint2d, 2> ends = {pointInPlane(m.startAngle), pointInPlane(m.endAngle)};
    const double bulge = std::tan(0.25 * m.sweep());
    const double height = bulge * ends[0].distanceTo(ends[1]);
    const Acad::ErrorStatus status = host::forGrips(indices, 2, [&](int index) {
        ends[static_cast<std::size_t>(index)] += AcGeVector2d(move.x, move.y);
    });
    if (status != Acad::eOk) {
        return status;
    }
    if (indices.contains(0) && indices.contains(1)) {
        m.center += move;
        return Acad::eOk;
    }
    const double chord = ends[0].distanceTo(ends[1]);
    if (chord == 0.0) {
        return Acad::eDegenerateGeometry;
    }
    setFromBulge(ends[0], ends[1], height / chord);
    return Acad::eOk;
}

bool AcDbArc::subWorldDraw(AcGiWorldDraw* draw) {
    assertReadEnabled();
    if (m.thickness != 0.0) {
        draw->subEntityTraits().setThickness(m.thickness);
    }
    draw->geometry().circularArc(m.worldCenter(), m.radius, m.normal, m.directionAt(m.startAngle), m.sweep());
    return true;
}
