#include "host/gi/geometryadapter.h"

#include <cmath>
#include <numbers>

namespace host {

namespace {
constexpr double fullTurn = 2 * std::numbers::pi;
}

bool arcThrough(const AcGePoint3d& start, const AcGePoint3d& point, const AcGePoint3d& end, Arc& arc) {
    // Centre of the circumscribed circle, from the two sides that meet at start.
    const AcGeVector3d a = point - start, b = end - start;
    const AcGeVector3d normal = a.crossProduct(b);
    const double area = normal.lengthSqrd(), scale = a.lengthSqrd() * b.lengthSqrd();
    if (!(area > 1e-20 * scale) || !std::isfinite(scale))
        return false;
    const AcGeVector3d toCenter =
        (normal.crossProduct(a) * b.lengthSqrd() + b.crossProduct(normal) * a.lengthSqrd()) / (2 * area);
    arc.center = start + toCenter;
    arc.u = -toCenter;
    arc.v = (normal / std::sqrt(area)).crossProduct(arc.u);
    arc.start = 0;
    const AcGeVector3d last = end - arc.center;
    const double angle = std::atan2(last.dotProduct(arc.v), last.dotProduct(arc.u));
    arc.sweep = angle > 0 ? angle : angle + fullTurn;
    return true;
}

Arc circularArc(const AcGePoint3d& center, double radius, const AcGeVector3d& normal,
                const AcGeVector3d& startVector, double sweepAngle) {
    const AcGeVector3d axis = normal.isZeroLength() ? AcGeVector3d::kZAxis : normal.normal();
    AcGeVector3d u = (startVector - axis * axis.dotProduct(startVector)).normal();
    if (u.isZeroLength())
        u = axis.perpVector();
    u *= radius;
    return {center, u, axis.crossProduct(u), 0, std::fmod(sweepAngle, 1e6)};
}

Arc fullCircle(const AcGePoint3d& center, double radius, const AcGeVector3d& normal) {
    const AcGeVector3d axis = normal.isZeroLength() ? AcGeVector3d::kZAxis : normal.normal();
    return circularArc(center, radius, axis, axis.perpVector(), fullTurn);
}

Arc ellipticalArc(const AcGePoint3d& center, const AcGeVector3d& normal, double majorRadius,
                  double minorRadius, double startParameter, double endParameter, double tilt) {
    AcGePoint3d origin;
    AcGeVector3d x, y, z;
    arbitraryAxes(normal).getCoordSystem(origin, x, y, z);
    const AcGeVector3d major = x * std::cos(tilt) + y * std::sin(tilt), minor = z.crossProduct(major);
    double sweep = std::fmod(endParameter - startParameter, fullTurn);
    if (sweep <= 1e-12)
        sweep += fullTurn;
    return {center, major * majorRadius, minor * minorRadius, startParameter, sweep};
}

} // namespace host
