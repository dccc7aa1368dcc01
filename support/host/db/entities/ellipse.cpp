// Ellipses: values, filing, change by transforms and grips, the curve interface.
#include "host/db/entities/ellipse.h"

#include "host/db/entities/fields.h"
#include "host/db/entities/spline.h"
#include "host/db/entities/transforms.h"
#include "host/gi/gi.h"

#include <algorithm>

ACRX_DXF_DEFINE_MEMBERS(AcDbEllipse, AcDbCurve, AcDb::kDHL_CURRENT, AcDb::kMReleaseCurrent, 0, ELLIPSE,
                        ObjectDBX Classes)

using host::EllipseData;
using host::twoPi;

namespace {

/// Files round the parameters of whole ellipses.
constexpr double fullTurnSlack = 1e-8;
constexpr double smallestRatio = 1e-6;

double parameterOfAngle(double angle, double ratio) {
    // Whole quarters stay what they are.
    const double parameter = std::atan2(std::sin(angle), ratio * std::cos(angle));
    return parameter + twoPi * std::round((angle - parameter) / twoPi);
}

double angleOfParameter(double parameter, double ratio) {
    const double angle = std::atan2(ratio * std::sin(parameter), std::cos(parameter));
    return angle + twoPi * std::round((parameter - angle) / twoPi);
}

} // namespace

double EllipseData::sweep() const {
    const double difference = endParam - startParam;
    if (std::fabs(std::fabs(difference) - twoPi) <= fullTurnSlack) {
        return twoPi;
    }
    const double turned = normalizedAngle(difference);
    return turned <= 1e-12 ? twoPi : turned;
}

AcGePoint3d EllipseData::pointAt(double parameter) const {
    return center + majorAxis * std::cos(parameter) + minorAxis() * std::sin(parameter);
}

host::CurvePiece EllipseData::piece() const {
    return CurvePiece::arc(center, majorAxis, minorAxis(), startParam, startParam + sweep());
}

AcGeEllipArc3d EllipseData::arc() const {
    const double radius = majorAxis.length();
    return {center, majorAxis, minorAxis(), radius, radius * radiusRatio, startParam, startParam + sweep()};
}

double EllipseData::parameterTowards(const AcGePoint3d& point) const {
    const AcGeVector3d arm = point - center;
    const AcGeVector3d minor = minorAxis();
    return normalizedAngle(std::atan2(arm.dotProduct(minor) / minor.lengthSqrd(),
                                      arm.dotProduct(majorAxis) / majorAxis.lengthSqrd()));
}

bool EllipseData::setConjugate(const AcGePoint3d& newCenter, const AcGeVector3d& u, const AcGeVector3d& v,
                               double from, double sweepAngle, const AcGeVector3d& up) {
    const AcGeVector3d cross = u.crossProduct(v);
    const double size = std::max(u.lengthSqrd(), v.lengthSqrd());
    if (!(cross.length() > 1e-12 * size) || !std::isfinite(size)) {
        return false;
    }
    AcGeVector3d major = u;
    AcGeVector3d minor = v;
    double shift = 0.0;
    if (std::fabs(u.dotProduct(v)) > 1e-14 * u.length() * v.length() ||
        u.lengthSqrd() < v.lengthSqrd() * (1.0 - 1e-14)) {
        const PrincipalAxes axes = principalAxes(u, v);
        major = axes.major;
        minor = axes.minor;
        shift = axes.shift;
    }
    const bool turned = cross.dotProduct(up) < 0.0;
    const bool isWhole = sweepAngle >= twoPi;
    center = newCenter;
    majorAxis = major;
    radiusRatio = std::clamp(minor.length() / major.length(), smallestRatio, 1.0);
    normal = (turned ? -cross : cross).normal();
    const double start = turned ? shift - from - sweepAngle : from - shift;
    if (isWhole && shift == 0.0 && !turned) {
        startParam = from;
    } else {
        startParam = isWhole ? 0.0 : normalizedAngle(start);
    }
    endParam = startParam + sweepAngle;
    return true;
}

bool EllipseData::isGood() const {
    return isFinite(center) && isFinite(majorAxis) && majorAxis.length() > 0.0 && radiusRatio > 0.0 &&
           std::isfinite(radiusRatio + startParam + endParam) &&
           std::fabs(majorAxis.dotProduct(normal)) <= 1e-4 * majorAxis.length();
}

AcDbEllipse::AcDbEllipse(const AcGePoint3d& center, const AcGeVector3d& unitNormal,
                         const AcGeVector3d& majorAxis, double radiusRatio, double startAngle,
                         double endAngle) {
    set(center, unitNormal, majorAxis, radiusRatio, startAngle, endAngle);
}

void AcDbEllipse::setData(const EllipseData& data) {
    assertWriteEnabled();
    m = data;
}

AcGePoint3d AcDbEllipse::center() const {
    assertReadEnabled();
    return m.center;
}
Acad::ErrorStatus AcDbEllipse::setCenter(const AcGePoint3d& center) {
    assertWriteEnabled();
    m.center = center;
    return Acad::eOk;
}
AcGeVector3d AcDbEllipse::normal() const {
    assertReadEnabled();
    return m.normal;
}
AcGeVector3d AcDbEllipse::majorAxis() const {
    assertReadEnabled();
    return m.majorAxis;
}
AcGeVector3d AcDbEllipse::minorAxis() const {
    assertReadEnabled();
    return m.minorAxis();
}
double AcDbEllipse::majorRadius() const {
    return majorAxis().length();
}
double AcDbEllipse::minorRadius() const {
    return majorRadius() * m.radiusRatio;
}
Acad::ErrorStatus AcDbEllipse::setMinorRadius(double radius) {
    return setRadiusRatio(radius / majorRadius());
}
Acad::ErrorStatus AcDbEllipse::setMajorRadius(double radius) {
    const double old = majorRadius();
    const double ratio = m.radiusRatio * old / radius;
    if (!(radius > 0.0 && ratio <= 1.0 && ratio >= smallestRatio)) {
        return Acad::eInvalidInput;
    }
    assertWriteEnabled();
    m.majorAxis *= radius / old;
    m.radiusRatio = ratio;
    return Acad::eOk;
}
double AcDbEllipse::radiusRatio() const {
    assertReadEnabled();
    return m.radiusRatio;
}
Acad::ErrorStatus AcDbEllipse::setRadiusRatio(double ratio) {
    if (!(ratio >= smallestRatio && ratio <= 1.0 + 1e-12)) {
        return Acad::eInvalidInput;
    }
    assertWriteEnabled();
    m.radiusRatio = std::min(ratio, 1.0);
    return Acad::eOk;
}
double AcDbEllipse::startAngle() const {
    assertReadEnabled();
    return angleOfParameter(m.startParam, m.radiusRatio);
}
Acad::ErrorStatus AcDbEllipse::setStartAngle(double angle) {
    return setStartParam(parameterOfAngle(angle, m.radiusRatio));
}
double AcDbEllipse::endAngle() const {
    assertReadEnabled();
    return angleOfParameter(m.endParam, m.radiusRatio);
}
Acad::ErrorStatus AcDbEllipse::setEndAngle(double angle) {
    return setEndParam(parameterOfAngle(angle, m.radiusRatio));
}
Acad::ErrorStatus AcDbEllipse::setStartParam(double parameter) {
    if (!std::isfinite(parameter)) {
        return Acad::eInvalidInput;
    }
    assertWriteEnabled();
    m.startParam = parameter;
    return Acad::eOk;
}
Acad::ErrorStatus AcDbEllipse::setEndParam(double parameter) {
    if (!std::isfinite(parameter)) {
        return Acad::eInvalidInput;
    }
    assertWriteEnabled();
    m.endParam = parameter;
    return Acad::eOk;
}
Acad::ErrorStatus AcDbEllipse::paramAtAngle(double angle, double& parameter) const {
    assertReadEnabled();
    parameter = parameterOfAngle(angle, m.radiusRatio);
    return Acad::eOk;
}
Acad::ErrorStatus AcDbEllipse::angleAtParam(double parameter, double& angle) const {
    assertReadEnabled();
    angle = angleOfParameter(parameter, m.radiusRatio);
    return Acad::eOk;
}

void AcDbEllipse::get(AcGePoint3d& center, AcGeVector3d& unitNormal, AcGeVector3d& majorAxis,
                      double& radiusRatio, double& startAngle, double& endAngle) const {
    center = this->center();
    unitNormal = m.normal;
    majorAxis = m.majorAxis;
    radiusRatio = m.radiusRatio;
    startAngle = this->startAngle();
    endAngle = this->endAngle();
}

Acad::ErrorStatus AcDbEllipse::set(const AcGePoint3d& center, const AcGeVector3d& unitNormal,
                                   const AcGeVector3d& majorAxis, double radiusRatio, double startAngle,
                                   double endAngle) {
    EllipseData data;
    data.center = center;
    data.normal = host::unitNormal(unitNormal);
    data.majorAxis = majorAxis;
    data.radiusRatio = radiusRatio;
    data.startParam = parameterOfAngle(startAngle, radiusRatio);
    data.endParam = parameterOfAngle(endAngle, radiusRatio);
    if (!data.isGood() || !(radiusRatio >= smallestRatio && radiusRatio <= 1.0 + 1e-12)) {
        return Acad::eInvalidInput;
    }
    setData(data);
    return Acad::eOk;
}

bool AcDbEllipse::isNull() const {
    assertReadEnabled();
    return !m.isGood();
}

Acad::ErrorStatus AcDbEllipse::dwgOutFields(AcDbDwgFiler* filer) const {
    const Acad::ErrorStatus status = AcDbCurve::dwgOutFields(filer);
    return status == Acad::eOk ? host::writeFields(filer, m) : status;
}

Acad::ErrorStatus AcDbEllipse::dwgInFields(AcDbDwgFiler* filer) {
    const Acad::ErrorStatus status = AcDbCurve::dwgInFields(filer);
    return status == Acad::eOk ? host::readFields(filer, m) : status;
}

Acad::ErrorStatus AcDbEllipse::dxfInFields(AcDbDxfFiler* filer) {
    assertWriteEnabled();
    m = {};
    const Acad::ErrorStatus status = AcDbCurve::dxfInFields(filer);
    return status == Acad::eOk ? readDxfGroups(filer) : status;
}

std::string_view AcDbEllipse::dxfSubclass(std::string_view marker) const {
    return marker.empty() || marker == "AcDbEllipse" ? "AcDbEllipse" : std::string_view();
}

bool AcDbEllipse::takeDxfGroup(AcDbDxfFiler*, const host::DxfGroup& group, std::string_view) {
    switch (group.code) {
    case 10:
        m.center = group.point();
        return true;
    case 11:
        m.majorAxis = group.vector();
        return true;
    case 40:
        m.radiusRatio = group.real;
        return true;
    case 41:
        m.startParam = group.real;
        return true;
    case 42:
        m.endParam = group.real;
        return true;
    case 210:
        m.normal = host::unitNormal(group.vector());
        return true;
    default:
        return false;
    }
}

Acad::ErrorStatus AcDbEllipse::dxfGroupsRead(AcDbDxfFiler*) {
    return m.isGood() ? Acad::eOk : Acad::eInvalidInput;
}

Acad::ErrorStatus AcDbEllipse::dxfOutFields(AcDbDxfFiler* filer) const {
    if (const Acad::ErrorStatus status = AcDbCurve::dxfOutFields(filer); status != Acad::eOk) {
        return status;
    }
    filer->writeText(100, "AcDbEllipse");
    filer->writePoint3d(10, m.center);
    filer->writeVector3d(11, m.majorAxis);
    filer->writeVector3d(210, m.normal);
    filer->writeReal(40, m.radiusRatio);
    filer->writeReal(41, m.startParam);
    filer->writeReal(42, m.endParam);
    writeKeptGroups(filer, "AcDbEllipse");
    return filer->filerStatus();
}

host::CurveView AcDbEllipse::geometry() const {
    return host::CurveView(std::make_unique<AcGeEllipArc3d>(m.arc()));
}

bool AcDbEllipse::isClosed() const {
    assertReadEnabled();
    return m.sweep() >= twoPi - 1e-12;
}

Acad::ErrorStatus AcDbEllipse::getParamAtPoint(const AcGePoint3d& point, double& parameter) const {
    const Acad::ErrorStatus status = SpaceCurve::getParamAtPoint(point, parameter);
    // The start of a whole ellipse is its end too.
    if (status == Acad::eOk && isClosed() && parameter >= m.startParam + twoPi - 1e-12) {
        parameter = m.startParam;
    }
    return status;
}

std::unique_ptr<AcDbCurve> AcDbEllipse::newPart(double from, double to) const {
    auto part = host::newLike<AcDbEllipse>(*this);
    part->m = m;
    part->m.startParam = from;
    part->m.endParam = to;
    if (from >= twoPi) {
        part->m.startParam -= twoPi;
        part->m.endParam -= twoPi;
    }
    return part;
}

Acad::ErrorStatus AcDbEllipse::getOffsetCurves(double distance, AcDbVoidPtrArray& curves) const {
    assertReadEnabled();
    if (m.radiusRatio < 1.0 - 1e-12) {
        return SpaceCurve::getOffsetCurves(distance, curves);
    }
    const double radius = m.majorAxis.length() + distance;
    if (!(radius > 1e-12 * std::fabs(distance)) || !std::isfinite(radius)) {
        return Acad::eInvalidInput;
    }
    auto offset = host::newLike<AcDbEllipse>(*this);
    offset->m = m;
    offset->m.majorAxis = m.majorAxis.normal() * radius;
    curves.append(offset.release());
    return Acad::eOk;
}

Acad::ErrorStatus AcDbEllipse::getOrthoProjectedCurve(const AcGePlane& plane, AcDbCurve*& curve) const {
    assertReadEnabled();
    auto projected =
        host::newEllipse(*this, m.piece(), m.normal, AcGeMatrix3d::projection(plane, plane.normal()));
    if (projected == nullptr) {
        return Acad::eDegenerateGeometry;
    }
    curve = projected.release();
    return Acad::eOk;
}

Acad::ErrorStatus AcDbEllipse::extend(double parameter) {
    assertReadEnabled();
    const double end = m.startParam + m.sweep();
    if (!isClosed() && parameter > end && parameter < m.startParam + twoPi) {
        return setEndParam(parameter);
    }
    return !isClosed() && parameter < m.startParam && parameter > end - twoPi ? setStartParam(parameter)
                                                                              : Acad::eInvalidInput;
}

Acad::ErrorStatus AcDbEllipse::extend(bool extendStart, const AcGePoint3d& toPoint) {
    assertReadEnabled();
    double parameter = m.parameterTowards(toPoint);
    if (isClosed() || m.piece().contains(parameter, host::angleTolerance)) {
        return Acad::eInvalidInput;
    }
    const double end = m.startParam + m.sweep();
    return extendStart ? setStartParam(m.startParam - host::normalizedAngle(m.startParam - parameter))
                       : setEndParam(end + host::normalizedAngle(parameter - end));
}

Acad::ErrorStatus AcDbEllipse::getArea(double& area) const {
    assertReadEnabled();
    const double sweep = m.sweep();
    area = 0.5 * m.majorAxis.lengthSqrd() * m.radiusRatio * (sweep - std::sin(sweep));
    return Acad::eOk;
}

Acad::ErrorStatus AcDbEllipse::reverseCurve() {
    assertWriteEnabled();
    const double start = -m.startParam - m.sweep();
    const double turn = twoPi * std::floor(start / twoPi + 1e-12);
    m.normal.negate();
    m.endParam = -m.startParam - turn;
    m.startParam = start - turn;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbEllipse::getPlane(AcGePlane& plane, AcDb::Planarity& planarity) const {
    assertReadEnabled();
    planarity = AcDb::kPlanar;
    plane.set(m.center, m.normal);
    return Acad::eOk;
}

bool AcDbEllipse::subCurvePieces(std::vector<host::CurvePiece>& pieces) const {
    pieces.push_back(m.piece());
    return true;
}

Acad::ErrorStatus AcDbEllipse::subTransformBy(const AcGeMatrix3d& transform) {
    EllipseData moved = m;
    if (!moved.setConjugate(transform * m.center, transform * m.majorAxis, transform * m.minorAxis(),
                            m.startParam, m.sweep(), transform * m.normal)) {
        return Acad::eDegenerateGeometry;
    }
    setData(moved);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbEllipse::subGetGripPoints(AcGePoint3dArray& points, AcDbIntArray&,
                                                AcDbIntArray&) const {
    assertReadEnabled();
    points.append(m.center);
    for (int quarter = 0; quarter < 4; ++quarter) {
        points.append(m.pointAt(quarter * host::halfPi));
    }
    if (!isClosed()) {
        points.append(m.pointAt(m.startParam));
        points.append(m.pointAt(m.startParam + m.sweep()));
    }
    return Acad::eOk;
}

void AcDbEllipse::moveAxisEnd(int index, const AcGeVector3d& offset) {
    const bool isMajor = index % 2 == 1;
    const AcGePoint3d to = m.pointAt((index - 1) * host::halfPi) + offset;
    const double radius = to.distanceTo(m.center);
    const AcGeVector3d major = isMajor ? m.majorAxis.normal() * radius : m.majorAxis;
    const AcGeVector3d minor = isMajor ? m.minorAxis() : m.minorAxis().normal() * radius;
    m.setConjugate(m.center, major, minor, m.startParam, m.sweep(), m.normal);
}

Acad::ErrorStatus AcDbEllipse::subMoveGripPointsAt(const AcDbIntArray& indices, const AcGeVector3d& offset) {
    assertWriteEnabled();
    const bool whole = indices.contains(0);
    const EllipseData old = m;
    return host::forGrips(indices, isClosed() ? 5 : 7, [&](int index) {
        if (index == 0) {
            m.center += offset;
        } else if (whole) {
            return;
        } else if (index < 5) {
            moveAxisEnd(index, offset);
        } else if (index == 5) {
            m.startParam = m.parameterTowards(old.pointAt(old.startParam) + offset);
        } else {
            m.endParam = m.parameterTowards(old.pointAt(old.startParam + old.sweep()) + offset);
        }
    });
}

Acad::ErrorStatus AcDbEllipse::subGetStretchPoints(AcGePoint3dArray& points) const {
    points.append(center());
    return Acad::eOk;
}

Acad::ErrorStatus AcDbEllipse::subMoveStretchPointsAt(const AcDbIntArray& indices,
                                                      const AcGeVector3d& offset) {
    assertWriteEnabled();
    return host::forGrips(indices, 1, [&](int) { m.center += offset; });
}

Acad::ErrorStatus AcDbEllipse::subGetOsnapPoints(AcDb::OsnapMode mode, Adesk::GsMarker marker,
                                                 const AcGePoint3d& pick, const AcGePoint3d& last,
                                                 const AcGeMatrix3d& view, AcGePoint3dArray& points,
                                                 AcDbIntArray& geometryIds) const {
    assertReadEnabled();
    if (isClosed() && (mode == AcDb::kOsModeEnd || mode == AcDb::kOsModeStart || mode == AcDb::kOsModeMid)) {
        return Acad::eOk;
    }
    return SpaceCurve::subGetOsnapPoints(mode, marker, pick, last, view, points, geometryIds);
}

bool AcDbEllipse::subWorldDraw(AcGiWorldDraw* draw) {
    assertReadEnabled();
    const AcGeVector3d axis = host::toObject(m.normal, m.majorAxis);
    const double radius = m.majorAxis.length();
    draw->geometry().ellipticalArc(m.center, m.normal, radius, radius * m.radiusRatio, m.startParam,
                                   m.startParam + m.sweep(), std::atan2(axis.y, axis.x));
    return true;
}

std::unique_ptr<AcDbEllipse> host::newEllipse(const AcDbEntity& like, const CurvePiece& arc,
                                              const AcGeVector3d& normal, const AcGeMatrix3d& transform) {
    EllipseData data;
    AcGeVector3d up = transform * normal;
    if (up.isZeroLength()) {
        up = normal;
    }
    if (!data.setConjugate(transform * arc.origin, transform * arc.u, transform * arc.v, arc.from,
                           arc.to - arc.from, up)) {
        return nullptr;
    }
    auto ellipse = newLike<AcDbEllipse>(like);
    ellipse->setData(data);
    return ellipse;
}
