// Curves: conversions that follow from others, and what is computed from the curve's pieces.
#include "host/db/dbentity.h"
#include "host/db/entities/curvepiece.h"

#include <algorithm>
#include <limits>

ACRX_NO_CONS_DEFINE_MEMBERS(AcDbCurve, AcDbEntity)

Acad::ErrorStatus AcDbCurve::getStartPoint(AcGePoint3d& point) const {
    double parameter = 0.0;
    const Acad::ErrorStatus status = getStartParam(parameter);
    return status == Acad::eOk ? getPointAtParam(parameter, point) : status;
}

Acad::ErrorStatus AcDbCurve::getEndPoint(AcGePoint3d& point) const {
    double parameter = 0.0;
    const Acad::ErrorStatus status = getEndParam(parameter);
    return status == Acad::eOk ? getPointAtParam(parameter, point) : status;
}

Acad::ErrorStatus AcDbCurve::getDistAtPoint(const AcGePoint3d& point, double& distance) const {
    double parameter = 0.0;
    const Acad::ErrorStatus status = getParamAtPoint(point, parameter);
    return status == Acad::eOk ? getDistAtParam(parameter, distance) : status;
}

Acad::ErrorStatus AcDbCurve::getPointAtDist(double distance, AcGePoint3d& point) const {
    double parameter = 0.0;
    const Acad::ErrorStatus status = getParamAtDist(distance, parameter);
    return status == Acad::eOk ? getPointAtParam(parameter, point) : status;
}

Acad::ErrorStatus AcDbCurve::getFirstDeriv(const AcGePoint3d& point, AcGeVector3d& derivative) const {
    double parameter = 0.0;
    const Acad::ErrorStatus status = getParamAtPoint(point, parameter);
    return status == Acad::eOk ? getFirstDeriv(parameter, derivative) : status;
}

Acad::ErrorStatus AcDbCurve::getSecondDeriv(const AcGePoint3d& point, AcGeVector3d& derivative) const {
    double parameter = 0.0;
    const Acad::ErrorStatus status = getParamAtPoint(point, parameter);
    return status == Acad::eOk ? getSecondDeriv(parameter, derivative) : status;
}

Acad::ErrorStatus AcDbCurve::getSplitCurves(const AcGePoint3dArray& points, AcDbVoidPtrArray& pieces) const {
    AcGeDoubleArray parameters;
    for (const AcGePoint3d& point : points) {
        double parameter = 0.0;
        if (const Acad::ErrorStatus status = getParamAtPoint(point, parameter); status != Acad::eOk) {
            return status;
        }
        parameters.append(parameter);
    }
    std::sort(parameters.begin(), parameters.end());
    return getSplitCurves(parameters, pieces);
}

namespace {

/// The pieces, and the same seen along a direction when one is given.
Acad::ErrorStatus closestOnPieces(const AcDbCurve& curve, const AcGePoint3d& given,
                                  const AcGeVector3d* direction, AcGePoint3d& closest, bool extend) {
    std::vector<host::CurvePiece> pieces;
    if (!curve.curvePieces(pieces)) {
        return Acad::eNotApplicable;
    }
    if (pieces.empty()) {
        return Acad::eDegenerateGeometry;
    }
    if (extend && !curve.isClosed()) {
        host::openEnds(pieces);
    }
    AcGeMatrix3d projection;
    if (direction != nullptr) {
        if (direction->isZeroLength()) {
            return Acad::eInvalidInput;
        }
        projection.setToProjection(AcGePlane(given, *direction), *direction);
    }
    double nearest = std::numeric_limits<double>::infinity();
    for (const host::CurvePiece& piece : pieces) {
        const host::CurvePiece seen = direction != nullptr ? piece.transformed(projection) : piece;
        const double parameter = seen.closestParameter(given);
        const double distance = seen.pointAt(parameter).distanceSqrdTo(given);
        if (distance < nearest) {
            nearest = distance;
            closest = piece.pointAt(parameter);
        }
    }
    return std::isfinite(nearest) ? Acad::eOk : Acad::eInvalidInput;
}

} // namespace

Acad::ErrorStatus AcDbCurve::getClosestPointTo(const AcGePoint3d& given, AcGePoint3d& closest,
                                               bool extend) const {
    assertReadEnabled();
    return closestOnPieces(*this, given, nullptr, closest, extend);
}

Acad::ErrorStatus AcDbCurve::getClosestPointTo(const AcGePoint3d& given, const AcGeVector3d& direction,
                                               AcGePoint3d& closest, bool extend) const {
    assertReadEnabled();
    return closestOnPieces(*this, given, &direction, closest, extend);
}

namespace {

void addNearest(std::span<const host::CurvePiece> pieces, const AcGePoint3d& pick, const AcGeMatrix3d& view,
                AcGePoint3dArray& points) {
    // Nearest as seen in the view: its Z axis is the direction of sight.
    AcGeVector3d sight = view.inverse() * AcGeVector3d::kZAxis;
    if (view.isSingular() || sight.isZeroLength()) {
        sight = AcGeVector3d::kZAxis;
    }
    const AcGeMatrix3d projection = AcGeMatrix3d::projection(AcGePlane(pick, sight), sight);
    double nearest = std::numeric_limits<double>::infinity();
    AcGePoint3d found;
    for (const host::CurvePiece& piece : pieces) {
        const host::CurvePiece seen = piece.transformed(projection);
        const double parameter = seen.closestParameter(pick);
        const double distance = seen.pointAt(parameter).distanceSqrdTo(pick);
        if (distance < nearest) {
            nearest = distance;
            found = piece.pointAt(parameter);
        }
    }
    if (std::isfinite(nearest)) {
        points.append(found);
    }
}

void addUnlessKnown(AcGePoint3dArray& points, const AcGePoint3d& point, int begin) {
    for (int index = begin; index < points.length(); ++index) {
        if (points[index].distanceTo(point) <= 1e-9) {
            return;
        }
    }
    points.append(point);
}

void addFeet(const host::CurvePiece& piece, const AcGePoint3d& last, AcGePoint3dArray& points, int begin) {
    for (const double parameter : piece.perpendicularParameters(last)) {
        addUnlessKnown(points, piece.pointAt(parameter), begin);
    }
}

void addQuadrants(const host::CurvePiece& piece, AcGePoint3dArray& points, int begin) {
    if (!piece.isArc()) {
        return;
    }
    for (int quarter = 0; quarter < 4; ++quarter) {
        double parameter = quarter * host::halfPi;
        if (piece.contains(parameter, 1e-9)) {
            addUnlessKnown(points, piece.pointAt(parameter), begin);
        }
    }
}

} // namespace

Acad::ErrorStatus AcDbCurve::subGetOsnapPoints(AcDb::OsnapMode mode, Adesk::GsMarker marker,
                                               const AcGePoint3d& pick, const AcGePoint3d& last,
                                               const AcGeMatrix3d& view, AcGePoint3dArray& points,
                                               AcDbIntArray&) const {
    assertReadEnabled();
    std::vector<host::CurvePiece> all;
    if (!curvePieces(all)) {
        return Acad::eOk;
    }
    // A marker names one segment, counted from 1.
    std::span<const host::CurvePiece> pieces(all);
    if (marker > 0 && static_cast<std::size_t>(marker) <= all.size()) {
        pieces = pieces.subspan(static_cast<std::size_t>(marker) - 1, 1);
    }
    const int begin = points.length();
    if (mode == AcDb::kOsModeNear) {
        addNearest(pieces, pick, view, points);
        return Acad::eOk;
    }
    for (const host::CurvePiece& piece : pieces) {
        switch (mode) {
        case AcDb::kOsModeEnd:
        case AcDb::kOsModeStart:
            if (!piece.isFull()) {
                addUnlessKnown(points, piece.start(), begin);
                addUnlessKnown(points, piece.end(), begin);
            }
            break;
        case AcDb::kOsModeMid:
            if (!piece.isFull()) {
                addUnlessKnown(points, piece.pointAt(0.5 * (piece.from + piece.to)), begin);
            }
            break;
        case AcDb::kOsModeCen:
            if (piece.isArc()) {
                addUnlessKnown(points, piece.origin, begin);
            }
            break;
        case AcDb::kOsModeQuad:
            addQuadrants(piece, points, begin);
            break;
        case AcDb::kOsModePerp:
            addFeet(piece, last, points, begin);
            break;
        case AcDb::kOsModeTan:
            for (const double parameter : piece.tangentParameters(last)) {
                addUnlessKnown(points, piece.pointAt(parameter), begin);
            }
            break;
        default:
            break;
        }
    }
    return Acad::eOk;
}
