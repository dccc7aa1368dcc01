// Parallel curves on the side of a point.
#include "host/commands/edit/parallels.h"

#include "host/commands/edit/editing.h"

#include <limits>

namespace host {
namespace {

/// The point seen in the plane of the curve, along its normal.
AcGePoint3d inPlane(const AcDbCurve& curve, const AcGePoint3d& point) {
    AcGePlane plane;
    AcDb::Planarity planarity = AcDb::kNonPlanar;
    if (curve.getPlane(plane, planarity) != Acad::eOk || planarity == AcDb::kNonPlanar) {
        return point;
    }
    const AcGeVector3d off = plane.normal() * plane.normal().dotProduct(point - plane.pointOnPlane());
    return point - off;
}

double distanceTo(const AcDbCurve& curve, const AcGePoint3d& point) {
    AcGePoint3d closest;
    return curve.getClosestPointTo(point, closest) == Acad::eOk ? closest.distanceTo(point)
                                                                : std::numeric_limits<double>::infinity();
}

double distanceTo(const std::vector<std::unique_ptr<AcDbCurve>>& curves, const AcGePoint3d& point) {
    double nearest = std::numeric_limits<double>::infinity();
    for (const std::unique_ptr<AcDbCurve>& curve : curves) {
        nearest = std::min(nearest, distanceTo(*curve, point));
    }
    return nearest;
}

std::vector<std::unique_ptr<AcDbCurve>> parallels(const AcDbCurve& curve, double distance) {
    AcDbVoidPtrArray made;
    if (curve.getOffsetCurves(distance, made) != Acad::eOk) {
        return {};
    }
    return ownCurves(made);
}

} // namespace

std::vector<std::unique_ptr<AcDbCurve>> parallelsTowards(const AcDbCurve& curve, double distance,
                                                         const AcGePoint3d& side) {
    const AcGePoint3d point = inPlane(curve, side);
    std::vector<std::unique_ptr<AcDbCurve>> right = parallels(curve, distance);
    std::vector<std::unique_ptr<AcDbCurve>> left = parallels(curve, -distance);
    // The parallel on the point's own side is the nearer one. Where a side has none, the point must be nearer
    // to the other's parallel than the source is to it, or it lies on the empty side.
    const double toRight = distanceTo(right, point);
    const double toLeft = distanceTo(left, point);
    if (right.empty() || left.empty()) {
        const double toOther = std::min(toRight, toLeft);
        const double fromSource = distanceTo(curve, point);
        const bool onEmptySide = toOther > distance * (1.0 - 1e-9) && toOther > fromSource;
        return onEmptySide ? std::vector<std::unique_ptr<AcDbCurve>>()
                           : std::move(right.empty() ? left : right);
    }
    return std::move(toRight <= toLeft ? right : left);
}

std::vector<std::unique_ptr<AcDbCurve>> parallelsThrough(const AcDbCurve& curve, const AcGePoint3d& through) {
    const AcGePoint3d point = inPlane(curve, through);
    AcGePoint3d closest;
    // A line may be passed beyond its ends.
    const bool straight = AcDbLine::cast(&curve) != nullptr;
    if (curve.getClosestPointTo(point, closest, straight) != Acad::eOk) {
        return {};
    }
    const double distance = closest.distanceTo(point);
    if (distance <= 1e-10 * (1.0 + point.asVector().length())) {
        return {};
    }
    return parallelsTowards(curve, distance, point);
}

} // namespace host
