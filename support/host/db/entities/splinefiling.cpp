// Splines in files.
#include "host/db/entities/fields.h"
#include "host/db/entities/spline.h"
#include "host/db/entities/splineflags.h"
#include "host/db/entities/transforms.h"

#include <algorithm>

using host::SplineData;
namespace SplineFlag = host::SplineFlag;

namespace {

void writePoints(AcDbDwgFiler* filer, const AcGePoint3dArray& points) {
    filer->writeInt32(points.length());
    for (const AcGePoint3d& point : points) {
        filer->writePoint3d(point);
    }
}

void writeReals(AcDbDwgFiler* filer, const AcGeDoubleArray& values) {
    filer->writeInt32(values.length());
    for (const double value : values) {
        filer->writeDouble(value);
    }
}

template <class Array>
void readArray(host::FieldReader& get, Array& values) {
    Adesk::Int32 count = 0;
    get(count);
    if (get.isGood() && count < 0) {
        get.filer().setFilerStatus(Acad::eInvalidInput);
    }
    for (Adesk::Int32 index = 0; index < count && get.isGood(); ++index) {
        typename Array::value_type value{};
        get(value);
        values.append(value);
    }
}

AcGeDoubleArray knotsOf(const AcGeNurbCurve3d& curve) {
    AcGeDoubleArray knots;
    for (int index = 0; index < curve.numKnots(); ++index) {
        knots.append(curve.knotAt(index));
    }
    return knots;
}

} // namespace

Acad::ErrorStatus AcDbSpline::dwgOutFields(AcDbDwgFiler* filer) const {
    if (const Acad::ErrorStatus status = AcDbCurve::dwgOutFields(filer); status != Acad::eOk) {
        return status;
    }
    host::FieldWriter put(*filer);
    put(m.flags, static_cast<Adesk::Int16>(m.curve.degree()), m.knotTolerance, m.controlTolerance,
        m.fitTolerance, m.normal, m.startTangent, m.endTangent);
    AcGePoint3dArray points;
    AcGeDoubleArray weights;
    for (int index = 0; index < m.curve.numControlPoints(); ++index) {
        points.append(m.curve.controlPointAt(index));
        if (m.curve.isRational()) {
            weights.append(m.curve.weightAt(index));
        }
    }
    writeReals(filer, knotsOf(m.curve));
    writePoints(filer, points);
    writeReals(filer, weights);
    writePoints(filer, m.fitPoints);
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbSpline::dwgInFields(AcDbDwgFiler* filer) {
    if (const Acad::ErrorStatus status = AcDbCurve::dwgInFields(filer); status != Acad::eOk) {
        return status;
    }
    SplineData read;
    host::FieldReader get(*filer);
    Adesk::Int16 degree = 0;
    get(read.flags, degree, read.knotTolerance, read.controlTolerance, read.fitTolerance, read.normal,
        read.startTangent, read.endTangent);
    AcGeDoubleArray knots;
    AcGeDoubleArray weights;
    AcGePoint3dArray points;
    readArray(get, knots);
    readArray(get, points);
    readArray(get, weights);
    readArray(get, read.fitPoints);
    if (filer->filerStatus() != Acad::eOk) {
        return filer->filerStatus();
    }
    if (!points.isEmpty()) {
        const bool isPeriodic = (read.flags & SplineFlag::periodic) != 0;
        read.curve = AcGeNurbCurve3d(degree, AcGeKnotVector(knots), points, weights, isPeriodic);
        if (!host::isUsable(read.curve)) {
            filer->setFilerStatus(Acad::eInvalidInput);
            return Acad::eInvalidInput;
        }
    }
    m = read;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbSpline::dxfInFields(AcDbDxfFiler* filer) {
    assertWriteEnabled();
    m = SplineData();
    mReading = std::make_unique<Reading>();
    Acad::ErrorStatus status = AcDbCurve::dxfInFields(filer);
    if (status == Acad::eOk) {
        status = readDxfGroups(filer);
    }
    mReading.reset();
    return status;
}

std::string_view AcDbSpline::dxfSubclass(std::string_view marker) const {
    return marker.empty() || marker == "AcDbSpline" ? "AcDbSpline" : std::string_view();
}

bool AcDbSpline::takeDxfGroup(AcDbDxfFiler*, const host::DxfGroup& group, std::string_view) {
    switch (group.code) {
    case 10:
        mReading->controlPoints.append(group.point());
        return true;
    case 11:
        m.fitPoints.append(group.point());
        return true;
    case 12:
        m.startTangent = group.vector();
        return true;
    case 13:
        m.endTangent = group.vector();
        return true;
    case 40:
        mReading->knots.append(group.real);
        return true;
    case 41:
        mReading->weights.append(group.real);
        return true;
    case 42:
        m.knotTolerance = group.real;
        return true;
    case 43:
        m.controlTolerance = group.real;
        return true;
    case 44:
        m.fitTolerance = group.real;
        return true;
    case 70:
        m.flags = group.int16();
        return true;
    case 71:
        mReading->degree = group.int16();
        return true;
    case 72:
    case 73:
    case 74:
        return true; // numbers of knots and points: the lists tell
    case 210:
        m.normal = host::unitNormal(group.vector());
        return true;
    default:
        return false;
    }
}

Acad::ErrorStatus AcDbSpline::dxfGroupsRead(AcDbDxfFiler*) {
    const bool finite = std::all_of(m.fitPoints.begin(), m.fitPoints.end(),
                                    [](const AcGePoint3d& point) { return host::isFinite(point); });
    if (!finite || !host::isFinite(m.startTangent) || !host::isFinite(m.endTangent) ||
        !std::isfinite(m.knotTolerance + m.controlTolerance + m.fitTolerance)) {
        return Acad::eInvalidInput;
    }
    if (mReading->controlPoints.isEmpty()) {
        // Fit points alone tell the curve.
        if (!fit(m)) {
            return Acad::eInvalidInput;
        }
        updateFlags(m);
        return Acad::eOk;
    }
    const bool isPeriodic = (m.flags & SplineFlag::periodic) != 0;
    m.curve = AcGeNurbCurve3d(mReading->degree, AcGeKnotVector(mReading->knots), mReading->controlPoints,
                              mReading->weights, isPeriodic);
    return host::isUsable(m.curve) ? Acad::eOk : Acad::eInvalidInput;
}

Acad::ErrorStatus AcDbSpline::dxfOutFields(AcDbDxfFiler* filer) const {
    if (const Acad::ErrorStatus status = AcDbCurve::dxfOutFields(filer); status != Acad::eOk) {
        return status;
    }
    filer->writeText(100, "AcDbSpline");
    if (!m.normal.isZeroLength()) {
        filer->writeVector3d(210, m.normal);
    }
    filer->writeInteger(70, m.flags);
    filer->writeInteger(71, m.curve.degree());
    filer->writeInteger(72, m.curve.numKnots());
    filer->writeInteger(73, m.curve.numControlPoints());
    filer->writeInteger(74, m.fitPoints.length());
    filer->writeReal(42, m.knotTolerance);
    filer->writeReal(43, m.controlTolerance);
    if (!m.fitPoints.isEmpty()) {
        filer->writeReal(44, m.fitTolerance);
    }
    for (const auto& [code, tangent] : {std::pair{12, m.startTangent}, std::pair{13, m.endTangent}}) {
        if (!tangent.isZeroLength()) {
            filer->writeVector3d(static_cast<short>(code), tangent);
        }
    }
    for (int index = 0; index < m.curve.numKnots(); ++index) {
        filer->writeReal(40, m.curve.knotAt(index));
    }
    for (int index = 0; m.curve.isRational() && index < m.curve.numControlPoints(); ++index) {
        filer->writeReal(41, m.curve.weightAt(index));
    }
    for (int index = 0; index < m.curve.numControlPoints(); ++index) {
        filer->writePoint3d(10, m.curve.controlPointAt(index));
    }
    for (const AcGePoint3d& point : m.fitPoints) {
        filer->writePoint3d(11, point);
    }
    writeKeptGroups(filer, "AcDbSpline");
    return filer->filerStatus();
}
