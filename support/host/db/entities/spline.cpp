// Splines: their data, change by transforms and grips, the parts of the curve interface that are their own.
#include "host/db/entities/spline.h"

#include "host/db/entities/curvepiece.h"
#include "host/db/entities/fields.h"
#include "host/db/entities/polyline.h"
#include "host/db/entities/polyline3d.h"
#include "host/db/entities/splineapproximation.h"
#include "host/db/entities/splineflags.h"
#include "host/db/entities/transforms.h"
#include "host/gi/gi.h"

#include <algorithm>

ACRX_DXF_DEFINE_MEMBERS(AcDbSpline, AcDbCurve, AcDb::kDHL_CURRENT, AcDb::kMReleaseCurrent, 0, SPLINE,
                        ObjectDBX Classes)

using host::SplineData;
namespace SplineFlag = host::SplineFlag;

AcDbSpline::AcDbSpline(const AcGePoint3dArray& fitPoints, const AcGeVector3d& startTangent,
                       const AcGeVector3d& endTangent, int order, double fitTolerance) {
    setFitData(fitPoints, order - 1, fitTolerance, startTangent, endTangent);
}

AcDbSpline::AcDbSpline(const AcGePoint3dArray& fitPoints, int order, double fitTolerance)
    : AcDbSpline(fitPoints, AcGeVector3d::kIdentity, AcGeVector3d::kIdentity, order, fitTolerance) {}

AcDbSpline::AcDbSpline(const AcGePoint3d& center, const AcGeVector3d& unitNormal,
                       const AcGeVector3d& majorAxis, double radiusRatio, double startAngle,
                       double endAngle) {
    const double radius = majorAxis.length();
    const AcGeVector3d minorAxis = unitNormal.crossProduct(majorAxis);
    setCurve(AcGeNurbCurve3d(
        AcGeEllipArc3d(center, majorAxis, minorAxis, radius, radius * radiusRatio, startAngle, endAngle)));
}

AcDbSpline::AcDbSpline(int degree, bool rational, bool closed, bool periodic,
                       const AcGePoint3dArray& controlPoints, const AcGeDoubleArray& knots,
                       const AcGeDoubleArray& weights, double controlPtTol, double knotTol) {
    setNurbsData(degree, rational, closed, periodic, controlPoints, knots, weights, controlPtTol, knotTol);
}

void AcDbSpline::updateFlags(SplineData& data) {
    AcGePlane plane;
    AcGeLine3d line;
    AcGeTol tolerance;
    tolerance.setEqualPoint(host::onCurveTolerance(data.curve.startPoint()));
    const bool isLinear = data.curve.isLinear(line, tolerance);
    const bool isPlanar = isLinear || data.curve.isPlanar(plane, tolerance);
    double period = 0.0;
    int flags = data.flags;
    const auto set = [&](int flag, bool on) { flags = on ? flags | flag : flags & ~flag; };
    set(SplineFlag::closed, data.curve.startPoint().isEqualTo(data.curve.endPoint(), tolerance));
    set(SplineFlag::periodic, data.curve.isPeriodic(period));
    set(SplineFlag::rational, data.curve.isRational());
    set(SplineFlag::planar, isPlanar);
    set(SplineFlag::linear, isLinear);
    data.flags = static_cast<Adesk::Int16>(flags);
    data.normal = AcGeVector3d();
    if (isPlanar) {
        data.normal = isLinear ? AcGeVector3d::kZAxis : plane.normal();
        if (isLinear && std::fabs(line.direction().z) > 1e-10) {
            data.normal = line.direction().perpVector();
        }
        if (data.normal.z < -1e-10) {
            data.normal.negate();
        }
        // Without the rounding of an even curve.
        if (data.normal.z > 1.0 - 1e-12) {
            data.normal = AcGeVector3d::kZAxis;
        }
    }
}

void AcDbSpline::setCurve(const AcGeNurbCurve3d& curve) {
    assertWriteEnabled();
    m.curve = curve;
    m.fitPoints.setLogicalLength(0);
    m.startTangent = m.endTangent = AcGeVector3d();
    m.flags = static_cast<Adesk::Int16>(m.flags & ~SplineFlag::fitMethod);
    updateFlags(m);
}

bool AcDbSpline::fit(SplineData& data) const {
    constexpr double through = 1e-8; // a curve through the points
    if (data.fitTolerance > through) {
        if (const std::optional<AcGeNurbCurve3d> near = host::approximatingCurve(
                data.fitPoints, data.startTangent, data.endTangent, data.fitTolerance)) {
            data.curve = *near;
            return true;
        }
    }
    if ((data.flags & SplineFlag::periodic) != 0) {
        data.curve = AcGeNurbCurve3d::throughClosed(data.fitPoints);
    } else {
        data.curve = AcGeNurbCurve3d(data.fitPoints, data.startTangent, data.endTangent);
    }
    return data.curve.isValid();
}

Acad::ErrorStatus AcDbSpline::changeFit(const SplineData& data) {
    SplineData changed = data;
    if (!fit(changed)) {
        return Acad::eInvalidInput;
    }
    updateFlags(changed);
    assertWriteEnabled();
    m = changed;
    return Acad::eOk;
}

bool AcDbSpline::isNull() const {
    assertReadEnabled();
    return isEmpty();
}
bool AcDbSpline::isRational() const {
    assertReadEnabled();
    return m.curve.isRational();
}
int AcDbSpline::degree() const {
    assertReadEnabled();
    return m.curve.degree();
}

Acad::ErrorStatus AcDbSpline::elevateDegree(int newDegree) {
    if (isEmpty() || newDegree <= degree() || newDegree > host::highestDegree) {
        return Acad::eInvalidInput;
    }
    AcGeNurbCurve3d raised = m.curve;
    raised.elevateDegree(newDegree - raised.degree());
    setCurve(raised);
    return Acad::eOk;
}

int AcDbSpline::numControlPoints() const {
    assertReadEnabled();
    return m.curve.numControlPoints();
}

Acad::ErrorStatus AcDbSpline::getControlPointAt(int index, AcGePoint3d& point) const {
    assertReadEnabled();
    if (index < 0 || index >= m.curve.numControlPoints()) {
        return Acad::eInvalidIndex;
    }
    point = m.curve.controlPointAt(index);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbSpline::setControlPointAt(int index, const AcGePoint3d& point) {
    if (index < 0 || index >= numControlPoints()) {
        return Acad::eInvalidIndex;
    }
    AcGeNurbCurve3d changed = m.curve;
    changed.setControlPointAt(index, point);
    setCurve(changed);
    return Acad::eOk;
}

double AcDbSpline::weightAt(int index) const {
    assertReadEnabled();
    return index >= 0 && index < m.curve.numControlPoints() ? m.curve.weightAt(index) : 0.0;
}

Acad::ErrorStatus AcDbSpline::setWeightAt(int index, double weight) {
    if (index < 0 || index >= numControlPoints()) {
        return Acad::eInvalidIndex;
    }
    int degree = 0;
    bool rational = false, periodic = false;
    AcGeKnotVector knots;
    AcGePoint3dArray points;
    AcGeDoubleArray weights;
    m.curve.getDefinitionData(degree, rational, periodic, knots, points, weights);
    for (int at = weights.length(); at < points.length(); ++at) {
        weights.append(1.0);
    }
    weights[index] = weight;
    const AcGeNurbCurve3d changed(degree, knots, points, weights, periodic);
    if (!changed.isValid() || !std::isfinite(weight)) {
        return Acad::eInvalidInput;
    }
    setCurve(changed);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbSpline::insertKnot(double parameter) {
    assertReadEnabled();
    if (isEmpty() || !inRange(parameter) || m.curve.knots().multiplicityAt(parameter) >= m.curve.degree()) {
        return Acad::eInvalidInput;
    }
    AcGeNurbCurve3d changed = m.curve;
    changed.insertKnot(parameter);
    setCurve(changed);
    return Acad::eOk;
}

int AcDbSpline::numFitPoints() const {
    assertReadEnabled();
    return m.fitPoints.length();
}

Acad::ErrorStatus AcDbSpline::getFitPointAt(int index, AcGePoint3d& point) const {
    assertReadEnabled();
    if (index < 0 || index >= m.fitPoints.length()) {
        return Acad::eInvalidIndex;
    }
    point = m.fitPoints[index];
    return Acad::eOk;
}

Acad::ErrorStatus AcDbSpline::setFitPointAt(int index, const AcGePoint3d& point) {
    if (index < 0 || index >= numFitPoints()) {
        return Acad::eInvalidIndex;
    }
    SplineData changed = m;
    changed.fitPoints[index] = point;
    return changeFit(changed);
}

Acad::ErrorStatus AcDbSpline::insertFitPointAt(int index, const AcGePoint3d& point) {
    if (!hasFitData()) {
        return Acad::eNotApplicable;
    }
    SplineData changed = m;
    changed.fitPoints.insertAt(std::clamp(index, 0, changed.fitPoints.length()), point);
    return changeFit(changed);
}

Acad::ErrorStatus AcDbSpline::removeFitPointAt(int index) {
    if (index < 0 || index >= numFitPoints()) {
        return Acad::eInvalidIndex;
    }
    SplineData changed = m;
    changed.fitPoints.removeAt(index);
    return changeFit(changed);
}

double AcDbSpline::fitTolerance() const {
    assertReadEnabled();
    return m.fitTolerance;
}

Acad::ErrorStatus AcDbSpline::setFitTol(double tolerance) {
    if (!(tolerance >= 0.0) || !std::isfinite(tolerance)) {
        return Acad::eInvalidInput;
    }
    if (hasFitData()) {
        SplineData changed = m;
        changed.fitTolerance = tolerance;
        return changeFit(changed);
    }
    assertWriteEnabled();
    m.fitTolerance = tolerance;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbSpline::getFitTangents(AcGeVector3d& startTangent, AcGeVector3d& endTangent) const {
    assertReadEnabled();
    startTangent = m.startTangent;
    endTangent = m.endTangent;
    return m.startTangent.isZeroLength() && m.endTangent.isZeroLength() ? Acad::eNotApplicable : Acad::eOk;
}

Acad::ErrorStatus AcDbSpline::setFitTangents(const AcGeVector3d& startTangent,
                                             const AcGeVector3d& endTangent) {
    if (!hasFitData()) {
        return Acad::eNotApplicable;
    }
    SplineData changed = m;
    changed.startTangent = startTangent.normal();
    changed.endTangent = endTangent.normal();
    return changeFit(changed);
}

bool AcDbSpline::hasFitData() const {
    assertReadEnabled();
    return m.fitPoints.length() > 1;
}

Acad::ErrorStatus AcDbSpline::getFitData(AcGePoint3dArray& fitPoints, int& degree, double& fitTolerance,
                                         bool& tangentsExist, AcGeVector3d& startTangent,
                                         AcGeVector3d& endTangent) const {
    if (!hasFitData()) {
        return Acad::eNotApplicable;
    }
    fitPoints = m.fitPoints;
    degree = m.curve.degree();
    fitTolerance = m.fitTolerance;
    tangentsExist = getFitTangents(startTangent, endTangent) == Acad::eOk;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbSpline::setFitData(const AcGePoint3dArray& fitPoints, int, double fitTolerance,
                                         const AcGeVector3d& startTangent, const AcGeVector3d& endTangent) {
    const bool finite = std::all_of(fitPoints.begin(), fitPoints.end(),
                                    [](const AcGePoint3d& point) { return host::isFinite(point); });
    if (!finite || !(fitTolerance >= 0.0)) {
        return Acad::eInvalidInput;
    }
    SplineData changed = m;
    changed.fitPoints = fitPoints;
    changed.fitTolerance = fitTolerance;
    changed.startTangent = startTangent.normal();
    changed.endTangent = endTangent.normal();
    const bool returns = fitPoints.length() > 3 && fitPoints.first().isEqualTo(fitPoints.last()) &&
                         changed.startTangent.isZeroLength() && changed.endTangent.isZeroLength();
    changed.flags = static_cast<Adesk::Int16>((changed.flags & ~SplineFlag::periodic) |
                                              SplineFlag::fitMethod | (returns ? SplineFlag::periodic : 0));
    return changeFit(changed);
}

Acad::ErrorStatus AcDbSpline::purgeFitData() {
    if (!hasFitData()) {
        return Acad::eNotApplicable;
    }
    setCurve(AcGeNurbCurve3d(m.curve));
    return Acad::eOk;
}

Acad::ErrorStatus AcDbSpline::updateFitData() {
    return hasFitData() ? changeFit(SplineData(m)) : Acad::eNotApplicable;
}

Acad::ErrorStatus AcDbSpline::getNurbsData(int& degree, bool& rational, bool& closed, bool& periodic,
                                           AcGePoint3dArray& controlPoints, AcGeDoubleArray& knots,
                                           AcGeDoubleArray& weights, double& controlPtTol,
                                           double& knotTol) const {
    assertReadEnabled();
    AcGeKnotVector vector;
    m.curve.getDefinitionData(degree, rational, periodic, vector, controlPoints, weights);
    knots.setLogicalLength(0);
    for (int index = 0; index < vector.length(); ++index) {
        knots.append(vector[index]);
    }
    closed = isClosed();
    controlPtTol = m.controlTolerance;
    knotTol = m.knotTolerance;
    return isEmpty() ? Acad::eDegenerateGeometry : Acad::eOk;
}

Acad::ErrorStatus AcDbSpline::setNurbsData(int degree, bool rational, bool, bool periodic,
                                           const AcGePoint3dArray& controlPoints,
                                           const AcGeDoubleArray& knots, const AcGeDoubleArray& weights,
                                           double controlPtTol, double knotTol) {
    const AcGeNurbCurve3d curve(degree, AcGeKnotVector(knots), controlPoints,
                                rational ? weights : AcGeDoubleArray(), periodic);
    if (!host::isUsable(curve)) {
        return Acad::eInvalidInput;
    }
    setCurve(curve);
    m.controlTolerance = controlPtTol > 0.0 ? controlPtTol : m.controlTolerance;
    m.knotTolerance = knotTol > 0.0 ? knotTol : m.knotTolerance;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbSpline::toPolyline(AcDbCurve*& polyline) const {
    assertReadEnabled();
    if (isEmpty()) {
        return Acad::eDegenerateGeometry;
    }
    // Chords within a ten-thousandth part of the curve's size.
    const AcGeBoundBlock3d box = m.curve.orthoBoundBlock();
    const double deviation = 1e-4 * box.maxPoint().distanceTo(box.minPoint());
    std::vector<AcGePoint3d> points{m.curve.startPoint()};
    for (const host::BezierSpan& span : host::bezierSpans(m.curve)) {
        span.curve.appendChords(deviation, points);
    }
    if (isClosed() && points.size() > 2) {
        points.pop_back();
    }
    AcGePlane plane;
    AcDb::Planarity planarity{};
    if (getPlane(plane, planarity) == Acad::eOk) {
        auto flat = host::newLike<AcDbPolyline>(*this);
        flat->setNormal(plane.normal());
        flat->setElevation(host::toObject(flat->normal(), points.front()).z);
        for (const AcGePoint3d& point : points) {
            flat->addVertexAt(flat->numVerts(), host::to2d(host::toObject(flat->normal(), point)));
        }
        flat->setClosed(isClosed());
        polyline = flat.release();
        return Acad::eOk;
    }
    auto spatial = host::newLike<AcDb3dPolyline>(*this);
    for (const AcGePoint3d& point : points) {
        spatial->appendVertex(new AcDb3dPolylineVertex(point));
    }
    if (isClosed()) {
        spatial->makeClosed();
    }
    polyline = spatial.release();
    return Acad::eOk;
}

bool AcDbSpline::isClosed() const {
    assertReadEnabled();
    return !isEmpty() &&
           m.curve.isClosed(AcGeTol().setEqualPoint(host::onCurveTolerance(m.curve.startPoint())));
}

bool AcDbSpline::isPeriodic() const {
    assertReadEnabled();
    double period = 0.0;
    return m.curve.isPeriodic(period);
}

std::unique_ptr<AcDbCurve> AcDbSpline::newPart(double from, double to) const {
    const AcGeInterval range = m.curve.interval();
    AcGeNurbCurve3d part = m.curve;
    if (to <= range.upperBound()) {
        if (!part.setInterval(AcGeInterval(from, to))) {
            return nullptr;
        }
    } else {
        AcGeNurbCurve3d rest = m.curve;
        const double beyond = to - range.length();
        const bool hasFirst = part.setInterval(AcGeInterval(from, range.upperBound()));
        if (beyond > range.lowerBound() && rest.setInterval(AcGeInterval(range.lowerBound(), beyond))) {
            hasFirst ? part.joinWith(rest) : part = rest;
        }
    }
    auto spline = host::newLike<AcDbSpline>(*this);
    spline->m.knotTolerance = m.knotTolerance;
    spline->m.controlTolerance = m.controlTolerance;
    spline->setCurve(part);
    return spline;
}

Acad::ErrorStatus AcDbSpline::extend(double parameter) {
    assertReadEnabled();
    const AcGeInterval range = m.curve.interval();
    const bool start = parameter < range.lowerBound();
    if (isEmpty() || isClosed() || range.contains(parameter) || !std::isfinite(parameter)) {
        return Acad::eInvalidInput;
    }
    const double end = start ? range.lowerBound() : range.upperBound();
    AcGeVector3d along;
    const AcGePoint3d at = m.curve.evaluate(end, 1, &along);
    const AcGePoint3d reached = at + along * (parameter - end);
    if (along.isZeroLength() || reached.isEqualTo(at)) {
        return Acad::eDegenerateGeometry;
    }
    AcGeNurbCurve3d line(1,
                         AcGeKnotVector({std::min(parameter, end), std::min(parameter, end),
                                         std::max(parameter, end), std::max(parameter, end)}),
                         start ? AcGePoint3dArray({reached, at}) : AcGePoint3dArray({at, reached}));
    if (start) {
        setCurve(line.joinWith(m.curve));
    } else {
        AcGeNurbCurve3d longer = m.curve;
        setCurve(longer.joinWith(line));
    }
    return Acad::eOk;
}

Acad::ErrorStatus AcDbSpline::extend(bool extendStart, const AcGePoint3d& toPoint) {
    assertReadEnabled();
    if (isEmpty() || isClosed()) {
        return Acad::eInvalidInput;
    }
    const AcGeInterval range = m.curve.interval();
    const double end = extendStart ? range.lowerBound() : range.upperBound();
    AcGeVector3d along;
    const AcGePoint3d at = m.curve.evaluate(end, 1, &along);
    const double step = (toPoint - at).dotProduct(along) / along.lengthSqrd();
    return (extendStart ? step < 0.0 : step > 0.0) ? extend(end + step) : Acad::eInvalidInput;
}

Acad::ErrorStatus AcDbSpline::reverseCurve() {
    assertWriteEnabled();
    m.curve.reverseParam();
    m.fitPoints.reverse();
    const AcGeVector3d start = m.startTangent;
    m.startTangent = -m.endTangent;
    m.endTangent = -start;
    return Acad::eOk;
}

AcGeVector3d AcDbSpline::subEcsNormal() const {
    return m.normal.isZeroLength() ? AcGeVector3d::kZAxis : m.normal;
}

bool AcDbSpline::subCurvePieces(std::vector<host::CurvePiece>& pieces) const {
    for (host::BezierSpan& span : host::bezierSpans(m.curve)) {
        pieces.push_back(host::CurvePiece::bezierCurve(std::move(span.curve), span.low, span.high));
    }
    return true;
}

Acad::ErrorStatus AcDbSpline::subTransformBy(const AcGeMatrix3d& transform) {
    assertWriteEnabled();
    m.curve.transformBy(transform);
    AcGeMatrix3d scaled = transform;
    if (hasFitData() && !scaled.isUniScaledOrtho()) {
        setCurve(AcGeNurbCurve3d(m.curve)); // the points would make another curve now
        return Acad::eOk;
    }
    for (AcGePoint3d& point : m.fitPoints) {
        point.transformBy(transform);
    }
    m.startTangent = (transform * m.startTangent).normal();
    m.endTangent = (transform * m.endTangent).normal();
    if (!m.normal.isZeroLength() && !isEmpty()) {
        updateFlags(m);
    }
    return Acad::eOk;
}

Acad::ErrorStatus AcDbSpline::subGetGripPoints(AcGePoint3dArray& points, AcDbIntArray&, AcDbIntArray&) const {
    assertReadEnabled();
    if (hasFitData()) {
        points.append(m.fitPoints);
        return Acad::eOk;
    }
    for (int index = 0; index < m.curve.numControlPoints(); ++index) {
        points.append(m.curve.controlPointAt(index));
    }
    return Acad::eOk;
}

Acad::ErrorStatus AcDbSpline::subMoveGripPointsAt(const AcDbIntArray& indices, const AcGeVector3d& offset) {
    SplineData changed = m;
    const int count = hasFitData() ? m.fitPoints.length() : m.curve.numControlPoints();
    int moved = 0;
    const Acad::ErrorStatus status = host::forGrips(indices, count, [&](int index) {
        ++moved;
        if (hasFitData()) {
            changed.fitPoints[index] += offset;
        } else {
            changed.curve.setControlPointAt(index, m.curve.controlPointAt(index) + offset);
        }
    });
    if (status != Acad::eOk) {
        return status;
    }
    if (moved == count) {
        return transformBy(AcGeMatrix3d::translation(offset));
    }
    if (hasFitData()) {
        return changeFit(changed);
    }
    setCurve(changed.curve);
    return Acad::eOk;
}

bool AcDbSpline::subWorldDraw(AcGiWorldDraw* draw) {
    assertReadEnabled();
    if (isEmpty()) {
        return true;
    }
    const double deviation = draw->deviation(kAcGiMaxDevForCurve, m.curve.startPoint());
    std::vector<AcGePoint3d> points{m.curve.startPoint()};
    for (const host::BezierSpan& span : host::bezierSpans(m.curve)) {
        span.curve.appendChords(deviation, points);
    }
    draw->geometry().polyline(static_cast<Adesk::UInt32>(points.size()), points.data());
    return true;
}
