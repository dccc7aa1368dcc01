// Rays and construction lines.
#include "host/db/entities/ray.h"

#include "host/db/entities/curvepiece.h"
#include "host/db/entities/fields.h"
#include "host/db/entities/line.h"
#include "host/db/entities/transforms.h"
#include "host/gi/gi.h"

#include <algorithm>

ACRX_DXF_DEFINE_MEMBERS(AcDbRay, AcDbCurve, AcDb::kDHL_CURRENT, AcDb::kMReleaseCurrent, 0, RAY,
                        ObjectDBX Classes)
ACRX_DXF_DEFINE_MEMBERS(AcDbXline, AcDbCurve, AcDb::kDHL_CURRENT, AcDb::kMReleaseCurrent, 0, XLINE,
                        ObjectDBX Classes)

Acad::ErrorStatus AcDbRay::getStartParam(double& parameter) const {
    parameter = 0.0;
    return Acad::eOk;
}
Acad::ErrorStatus AcDbRay::getStartPoint(AcGePoint3d& point) const {
    point = basePoint();
    return Acad::eOk;
}
Acad::ErrorStatus AcDbXline::reverseCurve() {
    assertWriteEnabled();
    m.direction.negate();
    return Acad::eOk;
}

namespace host {

AcGePoint3d InfiniteLine::basePoint() const {
    assertReadEnabled();
    return m.base;
}
Acad::ErrorStatus InfiniteLine::setBasePoint(const AcGePoint3d& point) {
    assertWriteEnabled();
    m.base = point;
    return Acad::eOk;
}
AcGeVector3d InfiniteLine::unitDir() const {
    assertReadEnabled();
    return m.direction;
}
Acad::ErrorStatus InfiniteLine::setUnitDir(const AcGeVector3d& direction) {
    const double size = direction.length();
    if (!(size > 0.0) || !std::isfinite(size)) {
        return Acad::eInvalidInput;
    }
    assertWriteEnabled();
    m.direction = unitNormal(direction);
    return Acad::eOk;
}
AcGePoint3d InfiniteLine::secondPoint() const {
    assertReadEnabled();
    return m.base + m.direction;
}
Acad::ErrorStatus InfiniteLine::setSecondPoint(const AcGePoint3d& point) {
    return setUnitDir(point - basePoint());
}

Acad::ErrorStatus InfiniteLine::dwgOutFields(AcDbDwgFiler* filer) const {
    const Acad::ErrorStatus status = AcDbCurve::dwgOutFields(filer);
    return status == Acad::eOk ? writeFields(filer, m) : status;
}

Acad::ErrorStatus InfiniteLine::dwgInFields(AcDbDwgFiler* filer) {
    const Acad::ErrorStatus status = AcDbCurve::dwgInFields(filer);
    return status == Acad::eOk ? readFields(filer, m) : status;
}

Acad::ErrorStatus InfiniteLine::dxfInFields(AcDbDxfFiler* filer) {
    assertWriteEnabled();
    m = {};
    const Acad::ErrorStatus status = AcDbCurve::dxfInFields(filer);
    return status == Acad::eOk ? readDxfGroups(filer) : status;
}

std::string_view InfiniteLine::dxfSubclass(std::string_view marker) const {
    return marker.empty() || marker == subclassMarker() ? subclassMarker() : std::string_view();
}

bool InfiniteLine::takeDxfGroup(AcDbDxfFiler*, const DxfGroup& group, std::string_view) {
    switch (group.code) {
    case 10:
        m.base = group.point();
        return true;
    case 11:
        m.direction = group.vector();
        return true;
    default:
        return false;
    }
}

Acad::ErrorStatus InfiniteLine::dxfGroupsRead(AcDbDxfFiler*) {
    const double size = m.direction.length();
    if (!isFinite(m.base) || !std::isfinite(size) || !(size > 0.0)) {
        return Acad::eInvalidInput;
    }
    m.direction = unitNormal(m.direction);
    return Acad::eOk;
}

Acad::ErrorStatus InfiniteLine::dxfOutFields(AcDbDxfFiler* filer) const {
    if (const Acad::ErrorStatus status = AcDbCurve::dxfOutFields(filer); status != Acad::eOk) {
        return status;
    }
    filer->writeText(100, subclassMarker());
    filer->writePoint3d(10, m.base);
    filer->writeVector3d(11, m.direction);
    writeKeptGroups(filer, subclassMarker());
    return filer->filerStatus();
}

Acad::ErrorStatus InfiniteLine::getPointAtParam(double parameter, AcGePoint3d& point) const {
    assertReadEnabled();
    if (!contains(parameter) || !std::isfinite(parameter)) {
        return Acad::eInvalidInput;
    }
    point = m.base + m.direction * parameter;
    return Acad::eOk;
}

Acad::ErrorStatus InfiniteLine::getParamAtPoint(const AcGePoint3d& point, double& parameter) const {
    assertReadEnabled();
    double place = (point - m.base).dotProduct(m.direction);
    if (!mIsBothWays) {
        place = std::max(place, 0.0);
    }
    if ((m.base + m.direction * place).distanceTo(point) > onCurveTolerance(point)) {
        return Acad::eInvalidInput;
    }
    parameter = place;
    return Acad::eOk;
}

Acad::ErrorStatus InfiniteLine::getDistAtParam(double parameter, double& distance) const {
    assertReadEnabled();
    if (mIsBothWays) {
        return Acad::eNotApplicable; // there is no start to count from
    }
    if (!contains(parameter) || !std::isfinite(parameter)) {
        return Acad::eInvalidInput;
    }
    distance = std::max(parameter, 0.0);
    return Acad::eOk;
}

Acad::ErrorStatus InfiniteLine::getParamAtDist(double distance, double& parameter) const {
    return getDistAtParam(distance, parameter);
}

Acad::ErrorStatus InfiniteLine::getFirstDeriv(double parameter, AcGeVector3d& derivative) const {
    assertReadEnabled();
    derivative = m.direction;
    return contains(parameter) ? Acad::eOk : Acad::eInvalidInput;
}

Acad::ErrorStatus InfiniteLine::getSecondDeriv(double parameter, AcGeVector3d& derivative) const {
    assertReadEnabled();
    derivative = AcGeVector3d::kIdentity;
    return contains(parameter) ? Acad::eOk : Acad::eInvalidInput;
}

Acad::ErrorStatus InfiniteLine::getOffsetCurves(double distance, AcDbVoidPtrArray& curves) const {
    AcGePlane plane;
    AcDb::Planarity planarity{};
    getPlane(plane, planarity);
    return getOffsetCurvesGivenPlaneNormal(plane.normal(), distance, curves);
}

Acad::ErrorStatus InfiniteLine::getOffsetCurvesGivenPlaneNormal(const AcGeVector3d& normal, double distance,
                                                                AcDbVoidPtrArray& curves) const {
    assertReadEnabled();
    const AcGeVector3d right = m.direction.crossProduct(normal);
    const double size = right.length();
    if (!(size > 1e-12) || !std::isfinite(distance)) {
        return Acad::eInvalidInput;
    }
    std::unique_ptr<InfiniteLine> parallel(static_cast<InfiniteLine*>(AcDbEntity::cast(isA()->create())));
    parallel->setPropertiesFrom(this);
    parallel->m = m;
    parallel->m.base += right * (distance / size);
    curves.append(static_cast<AcDbEntity*>(parallel.release()));
    return Acad::eOk;
}

Acad::ErrorStatus InfiniteLine::getSplitCurves(const AcGeDoubleArray& parameters,
                                               AcDbVoidPtrArray& pieces) const {
    assertReadEnabled();
    std::vector<double> cuts;
    for (const double parameter : parameters) {
        if (!contains(parameter) || !std::isfinite(parameter)) {
            return Acad::eInvalidInput;
        }
        if (mIsBothWays || parameter > 1e-10) {
            cuts.push_back(parameter);
        }
    }
    std::sort(cuts.begin(), cuts.end());
    const auto addRay = [&](double from, const AcGeVector3d& direction) {
        auto ray = newLike<AcDbRay>(*this);
        ray->setBasePoint(m.base + m.direction * from);
        ray->setUnitDir(direction);
        pieces.append(ray.release());
    };
    if (cuts.empty()) {
        return Acad::eInvalidInput;
    }
    if (mIsBothWays) {
        addRay(cuts.front(), -m.direction);
    } else {
        cuts.insert(cuts.begin(), 0.0);
    }
    for (std::size_t index = 0; index + 1 < cuts.size(); ++index) {
        auto line = newLike<AcDbLine>(*this);
        line->setStartPoint(m.base + m.direction * cuts[index]);
        line->setEndPoint(m.base + m.direction * cuts[index + 1]);
        pieces.append(line.release());
    }
    addRay(cuts.back(), m.direction);
    return Acad::eOk;
}

Acad::ErrorStatus InfiniteLine::getPlane(AcGePlane& plane, AcDb::Planarity& planarity) const {
    assertReadEnabled();
    planarity = AcDb::kLinear;
    const bool isFlat = std::fabs(m.direction.z) <= 1e-10;
    plane.set(m.base, isFlat ? AcGeVector3d::kZAxis : m.direction.perpVector());
    return Acad::eOk;
}

bool InfiniteLine::subCurvePieces(std::vector<CurvePiece>& pieces) const {
    CurvePiece piece = CurvePiece::line(m.base, m.base + m.direction);
    piece.openBefore = mIsBothWays;
    piece.openAfter = true;
    pieces.push_back(piece);
    return true;
}

Acad::ErrorStatus InfiniteLine::subGetExtentsUnder(const AcGeMatrix3d&, AcDbExtents&) const {
    return Acad::eInvalidExtents;
}

Acad::ErrorStatus InfiniteLine::subTransformBy(const AcGeMatrix3d& transform) {
    const AcGeVector3d direction = transform * m.direction;
    if (!(direction.length() > 0.0)) {
        return Acad::eDegenerateGeometry;
    }
    assertWriteEnabled();
    m.base.transformBy(transform);
    m.direction = unitNormal(direction);
    return Acad::eOk;
}

Acad::ErrorStatus InfiniteLine::subGetGripPoints(AcGePoint3dArray& points, AcDbIntArray&,
                                                 AcDbIntArray&) const {
    assertReadEnabled();
    points.append(m.base);
    points.append(m.base + m.direction);
    return Acad::eOk;
}

Acad::ErrorStatus InfiniteLine::subMoveGripPointsAt(const AcDbIntArray& indices, const AcGeVector3d& offset) {
    for (const int index : indices) {
        if (index < 0 || index > 1) {
            return Acad::eInvalidIndex;
        }
    }
    if (!indices.contains(0)) {
        return indices.isEmpty() ? Acad::eOk : setUnitDir(m.direction + offset);
    }
    assertWriteEnabled();
    m.base += offset;
    return Acad::eOk;
}

Acad::ErrorStatus InfiniteLine::subGetStretchPoints(AcGePoint3dArray& points) const {
    points.append(basePoint());
    return Acad::eOk;
}

Acad::ErrorStatus InfiniteLine::subMoveStretchPointsAt(const AcDbIntArray& indices,
                                                       const AcGeVector3d& offset) {
    assertWriteEnabled();
    return forGrips(indices, 1, [&](int) { m.base += offset; });
}

Acad::ErrorStatus InfiniteLine::subGetOsnapPoints(AcDb::OsnapMode mode, Adesk::GsMarker marker,
                                                  const AcGePoint3d& pick, const AcGePoint3d& last,
                                                  const AcGeMatrix3d& view, AcGePoint3dArray& points,
                                                  AcDbIntArray& geometryIds) const {
    assertReadEnabled();
    const bool isBase =
        mIsBothWays ? mode == AcDb::kOsModeMid : mode == AcDb::kOsModeEnd || mode == AcDb::kOsModeStart;
    if (isBase) {
        points.append(m.base);
        return Acad::eOk;
    }
    if (mode == AcDb::kOsModeMid || mode == AcDb::kOsModeEnd || mode == AcDb::kOsModeStart) {
        return Acad::eOk;
    }
    return AcDbCurve::subGetOsnapPoints(mode, marker, pick, last, view, points, geometryIds);
}

bool InfiniteLine::subWorldDraw(AcGiWorldDraw* draw) {
    assertReadEnabled();
    mIsBothWays ? draw->geometry().xline(m.base, m.base + m.direction)
                : draw->geometry().ray(m.base, m.base + m.direction);
    return true;
}

} // namespace host
