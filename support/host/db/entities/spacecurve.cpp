// The curve interface over a curve of the geometry interface.
#include "host/db/entities/spacecurve.h"

#include "host/db/entities/spline.h"
#include "host/db/entities/transforms.h"

#include <algorithm>

namespace host {
namespace {

/// Slack of parameters, as a part of their range.
constexpr double parameterTolerance = 1e-10;

} // namespace

bool SpaceCurve::inRange(double& parameter) const {
    if (isEmpty()) {
        return false;
    }
    const AcGeInterval range = geometry()->interval();
    const double slack = parameterTolerance * std::max(1.0, range.length());
    if (!(parameter >= range.lowerBound() - slack && parameter <= range.upperBound() + slack)) {
        return false;
    }
    parameter = range.clamp(parameter);
    return true;
}

Acad::ErrorStatus SpaceCurve::getStartParam(double& parameter) const {
    assertReadEnabled();
    parameter = geometry()->interval().lowerBound();
    return Acad::eOk;
}

Acad::ErrorStatus SpaceCurve::getEndParam(double& parameter) const {
    assertReadEnabled();
    parameter = geometry()->interval().upperBound();
    return Acad::eOk;
}

Acad::ErrorStatus SpaceCurve::getPointAtParam(double parameter, AcGePoint3d& point) const {
    assertReadEnabled();
    if (!inRange(parameter)) {
        return Acad::eInvalidInput;
    }
    point = geometry()->evalPoint(parameter);
    return Acad::eOk;
}

Acad::ErrorStatus SpaceCurve::getParamAtPoint(const AcGePoint3d& point, double& parameter) const {
    assertReadEnabled();
    if (isEmpty()) {
        return Acad::eInvalidInput;
    }
    const CurveView curve = geometry();
    const double nearest = curve->closestParameter(point);
    if (curve->evalPoint(nearest).distanceTo(point) > onCurveTolerance(point)) {
        return Acad::eInvalidInput;
    }
    parameter = nearest;
    return Acad::eOk;
}

Acad::ErrorStatus SpaceCurve::getDistAtParam(double parameter, double& distance) const {
    assertReadEnabled();
    if (!inRange(parameter)) {
        return Acad::eInvalidInput;
    }
    const CurveView curve = geometry();
    distance = curve->length(curve->interval().lowerBound(), parameter);
    return Acad::eOk;
}

Acad::ErrorStatus SpaceCurve::getParamAtDist(double distance, double& parameter) const {
    assertReadEnabled();
    if (isEmpty() || !(distance >= -parameterTolerance)) {
        return Acad::eInvalidInput;
    }
    const CurveView curve = geometry();
    const AcGeInterval range = curve->interval();
    const double found = curve->paramAtLength(range.lowerBound(), std::max(distance, 0.0));
    if (found == range.upperBound()) {
        const double whole = curve->length(range.lowerBound(), found);
        if (distance > whole + 1e-9 * std::max(1.0, whole)) {
            return Acad::eInvalidInput;
        }
    }
    parameter = found;
    return Acad::eOk;
}

Acad::ErrorStatus SpaceCurve::getFirstDeriv(double parameter, AcGeVector3d& derivative) const {
    assertReadEnabled();
    if (!inRange(parameter)) {
        return Acad::eInvalidInput;
    }
    derivative = geometry()->firstDerivative(parameter);
    return Acad::eOk;
}

Acad::ErrorStatus SpaceCurve::getSecondDeriv(double parameter, AcGeVector3d& derivative) const {
    assertReadEnabled();
    if (!inRange(parameter)) {
        return Acad::eInvalidInput;
    }
    std::array<AcGeVector3d, 2> derivatives;
    geometry()->evaluate(parameter, 2, derivatives.data());
    derivative = derivatives[1];
    return Acad::eOk;
}

Acad::ErrorStatus SpaceCurve::getSplitCurves(const AcGeDoubleArray& parameters,
                                             AcDbVoidPtrArray& pieces) const {
    assertReadEnabled();
    const AcGeInterval range = geometry()->interval();
    const double slack = parameterTolerance * std::max(1.0, range.length());
    std::vector<double> cuts;
    for (double parameter : parameters) {
        if (!inRange(parameter)) {
            return Acad::eInvalidInput;
        }
        const bool atEnd = parameter <= range.lowerBound() + slack || parameter >= range.upperBound() - slack;
        if (!atEnd) {
            cuts.push_back(parameter);
        } else if (isClosed()) {
            cuts.push_back(range.lowerBound());
        }
    }
    if (parameters.isEmpty() || isEmpty()) {
        return Acad::eInvalidInput;
    }
    std::sort(cuts.begin(), cuts.end());
    cuts.erase(std::unique(cuts.begin(), cuts.end(), [&](double a, double b) { return b - a <= slack; }),
               cuts.end());
    if (!isClosed()) {
        cuts.insert(cuts.begin(), range.lowerBound());
        cuts.push_back(range.upperBound());
    } else {
        cuts.push_back(cuts.front() + range.length());
    }
    for (std::size_t index = 0; index + 1 < cuts.size(); ++index) {
        if (std::unique_ptr<AcDbCurve> part = newPart(cuts[index], cuts[index + 1])) {
            pieces.append(part.release());
        }
    }
    return Acad::eOk;
}

Acad::ErrorStatus SpaceCurve::getOffsetCurves(double distance, AcDbVoidPtrArray& curves) const {
    AcGePlane plane;
    AcDb::Planarity planarity{};
    if (getPlane(plane, planarity) != Acad::eOk) {
        return Acad::eNotApplicable;
    }
    return getOffsetCurvesGivenPlaneNormal(plane.normal(), distance, curves);
}

Acad::ErrorStatus SpaceCurve::getOffsetCurvesGivenPlaneNormal(const AcGeVector3d& normal, double distance,
                                                              AcDbVoidPtrArray& curves) const {
    assertReadEnabled();
    AcGePlane plane;
    AcDb::Planarity planarity{};
    if (isEmpty() || !std::isfinite(distance) || normal.isZeroLength()) {
        return Acad::eInvalidInput;
    }
    if (getPlane(plane, planarity) != Acad::eOk ||
        (planarity == AcDb::kPlanar && !plane.normal().isParallelTo(normal))) {
        return Acad::eNotApplicable;
    }
    const CurveView curve = geometry();
    // Outwards is to the right of a counterclockwise curve.
    AcGeVector3d up = normal.normal();
    if (isClosed() && enclosedArea(*curve).dotProduct(up) < 0.0) {
        up.negate();
    }
    const std::vector<AcGeNurbCurve3d> offsets = offsetCurves(asNurbs(), isClosed(), up, distance);
    if (offsets.empty()) {
        return Acad::eInvalidOffset;
    }
    for (const AcGeNurbCurve3d& offset : offsets) {
        auto spline = newLike<AcDbSpline>(*this);
        spline->setCurve(offset);
        curves.append(spline.release());
    }
    return Acad::eOk;
}

Acad::ErrorStatus SpaceCurve::getArea(double& area) const {
    assertReadEnabled();
    if (isEmpty() || !isPlanar()) {
        return Acad::eNotApplicable;
    }
    area = enclosedArea(*geometry()).length();
    return Acad::eOk;
}

Acad::ErrorStatus SpaceCurve::getAcGeCurve(AcGeCurve3d*& curve) const {
    assertReadEnabled();
    if (isEmpty()) {
        return Acad::eDegenerateGeometry;
    }
    curve = geometry()->copy();
    return Acad::eOk;
}

bool SpaceCurve::isPlanar() const {
    AcGePlane plane;
    AcDb::Planarity planarity{};
    return getPlane(plane, planarity) == Acad::eOk;
}

Acad::ErrorStatus SpaceCurve::getPlane(AcGePlane& plane, AcDb::Planarity& planarity) const {
    assertReadEnabled();
    if (isEmpty()) {
        return Acad::eDegenerateGeometry;
    }
    const CurveView curve = geometry();
    const AcGePoint3d start = curve->evalPoint(curve->interval().lowerBound());
    AcGeTol tolerance;
    tolerance.setEqualPoint(onCurveTolerance(start));
    AcGeLine3d line;
    if (curve->isLinear(line, tolerance)) {
        planarity = AcDb::kLinear;
        const AcGeVector3d along = line.direction();
        const bool isFlat = std::fabs(along.z) <= 1e-10;
        plane.set(start, isFlat ? AcGeVector3d::kZAxis : along.perpVector());
        return Acad::eOk;
    }
    planarity = curve->isPlanar(plane, tolerance) ? AcDb::kPlanar : AcDb::kNonPlanar;
    if (planarity == AcDb::kPlanar && plane.normal().dotProduct(AcGeVector3d::kZAxis) < -1e-10) {
        plane.set(start, -plane.normal());
    }
    return planarity == AcDb::kPlanar ? Acad::eOk : Acad::eNotApplicable;
}

Acad::ErrorStatus SpaceCurve::subGetOsnapPoints(AcDb::OsnapMode mode, Adesk::GsMarker marker,
                                                const AcGePoint3d& pick, const AcGePoint3d& last,
                                                const AcGeMatrix3d& view, AcGePoint3dArray& points,
                                                AcDbIntArray& geometryIds) const {
    assertReadEnabled();
    if (isEmpty()) {
        return Acad::eOk;
    }
    const CurveView curve = geometry();
    const AcGeInterval range = curve->interval();
    switch (mode) {
    case AcDb::kOsModeEnd:
    case AcDb::kOsModeStart:
        points.append(curve->evalPoint(range.lowerBound()));
        if (!isClosed()) {
            points.append(curve->evalPoint(range.upperBound()));
        }
        return Acad::eOk;
    case AcDb::kOsModeMid: {
        const double whole = curve->length(range.lowerBound(), range.upperBound());
        points.append(curve->evalPoint(curve->paramAtLength(range.lowerBound(), 0.5 * whole)));
        return Acad::eOk;
    }
    default:
        return AcDbCurve::subGetOsnapPoints(mode, marker, pick, last, view, points, geometryIds);
    }
}

} // namespace host
