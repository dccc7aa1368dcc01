// The parts of points and vectors that are not on hot paths.
#include "host/ge/plane.h"

namespace {

enum class Relation { Parallel, Codirectional, Perpendicular };

template <class Vector>
bool related(const Vector& first, const Vector& second, Relation relation, const AcGeTol& tolerance,
             AcGeError& flag) {
    if (first.isZeroLength(tolerance) || second.isZeroLength(tolerance)) {
        flag = first.isZeroLength(tolerance) ? AcGe::k0This : AcGe::k0Arg1;
        return false;
    }
    flag = AcGe::kOk;
    const Vector a = first / first.length(), b = second / second.length();
    switch (relation) {
    case Relation::Perpendicular:
        return std::fabs(a.dotProduct(b)) <= tolerance.equalVector();
    case Relation::Codirectional:
        return (a - b).length() <= tolerance.equalVector();
    case Relation::Parallel:
        break;
    }
    return (a - b).length() <= tolerance.equalVector() || (a + b).length() <= tolerance.equalVector();
}

} // namespace

bool AcGeVector2d::isParallelTo(const AcGeVector2d& other, const AcGeTol& tolerance, AcGeError& flag) const {
    return related(*this, other, Relation::Parallel, tolerance, flag);
}
bool AcGeVector2d::isCodirectionalTo(const AcGeVector2d& other, const AcGeTol& tolerance,
                                     AcGeError& flag) const {
    return related(*this, other, Relation::Codirectional, tolerance, flag);
}
bool AcGeVector2d::isPerpendicularTo(const AcGeVector2d& other, const AcGeTol& tolerance,
                                     AcGeError& flag) const {
    return related(*this, other, Relation::Perpendicular, tolerance, flag);
}
bool AcGeVector2d::isParallelTo(const AcGeVector2d& other, const AcGeTol& tolerance) const {
    AcGeError flag;
    return isParallelTo(other, tolerance, flag);
}
bool AcGeVector2d::isCodirectionalTo(const AcGeVector2d& other, const AcGeTol& tolerance) const {
    AcGeError flag;
    return isCodirectionalTo(other, tolerance, flag);
}
bool AcGeVector2d::isPerpendicularTo(const AcGeVector2d& other, const AcGeTol& tolerance) const {
    AcGeError flag;
    return isPerpendicularTo(other, tolerance, flag);
}

AcGeVector2d& AcGeVector2d::mirror(const AcGeVector2d& line) {
    const double size = line.lengthSqrd();
    if (size == 0.0)
        return *this;
    return *this = line * (2.0 * dotProduct(line) / size) - *this;
}

bool AcGeVector3d::isParallelTo(const AcGeVector3d& other, const AcGeTol& tolerance, AcGeError& flag) const {
    return related(*this, other, Relation::Parallel, tolerance, flag);
}
bool AcGeVector3d::isCodirectionalTo(const AcGeVector3d& other, const AcGeTol& tolerance,
                                     AcGeError& flag) const {
    return related(*this, other, Relation::Codirectional, tolerance, flag);
}
bool AcGeVector3d::isPerpendicularTo(const AcGeVector3d& other, const AcGeTol& tolerance,
                                     AcGeError& flag) const {
    return related(*this, other, Relation::Perpendicular, tolerance, flag);
}
bool AcGeVector3d::isParallelTo(const AcGeVector3d& other, const AcGeTol& tolerance) const {
    AcGeError flag;
    return isParallelTo(other, tolerance, flag);
}
bool AcGeVector3d::isCodirectionalTo(const AcGeVector3d& other, const AcGeTol& tolerance) const {
    AcGeError flag;
    return isCodirectionalTo(other, tolerance, flag);
}
bool AcGeVector3d::isPerpendicularTo(const AcGeVector3d& other, const AcGeTol& tolerance) const {
    AcGeError flag;
    return isPerpendicularTo(other, tolerance, flag);
}

AcGeVector3d& AcGeVector3d::rotateBy(double angle, const AcGeVector3d& axis) {
    return transformBy(AcGeMatrix3d::rotation(angle, axis));
}

AcGeVector3d& AcGeVector3d::mirror(const AcGeVector3d& normalToPlane) {
    const double size = normalToPlane.lengthSqrd();
    if (size == 0.0)
        return *this;
    return *this -= normalToPlane * (2.0 * dotProduct(normalToPlane) / size);
}

AcGeVector3d AcGeVector3d::perpVector() const {
    constexpr double nearZ = 1.0 / 64.0;
    const double size = length();
    if (size == 0.0)
        return kXAxis;
    const AcGeVector3d unit = *this / size;
    const bool alongZ = std::fabs(unit.x) < nearZ && std::fabs(unit.y) < nearZ;
    const AcGeVector3d perpendicular = (alongZ ? kYAxis : kZAxis).crossProduct(unit);
    return perpendicular / perpendicular.length();
}

double AcGeVector3d::angleOnPlane(const AcGePlanarEnt& plane) const {
    return convert2d(plane).angle();
}

AcGeVector2d AcGeVector3d::convert2d(const AcGePlanarEnt& plane) const {
    AcGePoint3d origin;
    AcGeVector3d uAxis, vAxis;
    plane.getCoordSystem(origin, uAxis, vAxis);
    return {dotProduct(uAxis), dotProduct(vAxis)};
}

AcGeVector3d& AcGeVector3d::set(const AcGePlanarEnt& plane, const AcGeVector2d& vector) {
    AcGePoint3d origin;
    AcGeVector3d uAxis, vAxis;
    plane.getCoordSystem(origin, uAxis, vAxis);
    return *this = uAxis * vector.x + vAxis * vector.y;
}

unsigned int AcGeVector3d::largestElement() const {
    const double ax = std::fabs(x), ay = std::fabs(y), az = std::fabs(z);
    if (ax >= ay && ax >= az)
        return 0;
    return ay >= az ? 1 : 2;
}

AcGeVector3d AcGeVector3d::orthoProject(const AcGeVector3d& planeNormal) const {
    return project(planeNormal, planeNormal);
}
AcGeVector3d AcGeVector3d::orthoProject(const AcGeVector3d& planeNormal, const AcGeTol& tolerance) const {
    return project(planeNormal, planeNormal, tolerance);
}
AcGeVector3d AcGeVector3d::orthoProject(const AcGeVector3d& planeNormal, const AcGeTol& tolerance,
                                        AcGeError& flag) const {
    return project(planeNormal, planeNormal, tolerance, flag);
}
AcGeVector3d AcGeVector3d::project(const AcGeVector3d& planeNormal, const AcGeVector3d& direction) const {
    return project(planeNormal, direction, AcGeContext::gTol);
}
AcGeVector3d AcGeVector3d::project(const AcGeVector3d& planeNormal, const AcGeVector3d& direction,
                                   const AcGeTol& tolerance) const {
    AcGeError flag;
    return project(planeNormal, direction, tolerance, flag);
}
AcGeVector3d AcGeVector3d::project(const AcGeVector3d& planeNormal, const AcGeVector3d& direction,
                                   const AcGeTol& tolerance, AcGeError& flag) const {
    flag = planeNormal.isZeroLength(tolerance)                   ? AcGe::k0Arg1
           : direction.isZeroLength(tolerance)                   ? AcGe::k0Arg2
           : planeNormal.isPerpendicularTo(direction, tolerance) ? AcGe::kPerpendicularArg1Arg2
                                                                 : AcGe::kOk;
    if (flag != AcGe::kOk)
        return *this;
    return *this - direction * (dotProduct(planeNormal) / direction.dotProduct(planeNormal));
}

AcGePoint3d& AcGePoint3d::rotateBy(double angle, const AcGeVector3d& axis, const AcGePoint3d& center) {
    return transformBy(AcGeMatrix3d::rotation(angle, axis, center));
}
AcGePoint3d& AcGePoint3d::mirror(const AcGePlane& plane) {
    return transformBy(AcGeMatrix3d::mirroring(plane));
}

AcGePoint2d AcGePoint3d::convert2d(const AcGePlanarEnt& plane) const {
    const AcGeVector2d arm = (*this - plane.pointOnPlane()).convert2d(plane);
    return {arm.x, arm.y};
}

AcGePoint3d& AcGePoint3d::set(const AcGePlanarEnt& plane, const AcGePoint2d& point) {
    return *this = plane.pointOnPlane() + AcGeVector3d(plane, point.asVector());
}

AcGePoint3d AcGePoint3d::orthoProject(const AcGePlane& plane) const {
    return plane.closestPointTo(*this);
}
AcGePoint3d AcGePoint3d::project(const AcGePlane& plane, const AcGeVector3d& direction) const {
    return plane.project(*this, direction);
}
