// Planes.
#include "host/ge/plane.h"

void AcGePlanarEnt::assign(const AcGePoint3d& origin, const AcGeVector3d& normal) {
    AcGePoint3d ignored;
    AcGeVector3d zAxis;
    host::arbitraryAxes(normal).getCoordSystem(ignored, m_uAxis, m_vAxis, zAxis);
    m_origin = origin;
}

void AcGePlanarEnt::assign(const AcGePoint3d& origin, const AcGeVector3d& uAxis, const AcGeVector3d& vAxis) {
    const AcGeVector3d normal = uAxis.crossProduct(vAxis);
    if (normal.length() == 0.0)
        return assign(origin, uAxis.length() > 0.0 ? uAxis.perpVector() : AcGeVector3d::kZAxis);
    m_origin = origin;
    m_uAxis = uAxis / uAxis.length();
    m_vAxis = (normal / normal.length()).crossProduct(m_uAxis);
}

void AcGePlanarEnt::get(AcGePoint3d& uPoint, AcGePoint3d& origin, AcGePoint3d& vPoint) const {
    origin = m_origin;
    uPoint = m_origin + m_uAxis;
    vPoint = m_origin + m_vAxis;
}

void AcGePlanarEnt::getCoefficients(double& a, double& b, double& c, double& d) const {
    const AcGeVector3d unit = normal();
    a = unit.x;
    b = unit.y;
    c = unit.z;
    d = -unit.dotProduct(m_origin.asVector());
}

AcGePoint3d AcGePlanarEnt::closestPointTo(const AcGePoint3d& point) const {
    const AcGeVector3d unit = normal();
    return point - unit * unit.dotProduct(point - m_origin);
}

AcGePoint3d AcGePlanarEnt::project(const AcGePoint3d& point, const AcGeVector3d& direction) const {
    const AcGeVector3d unit = normal();
    if (unit.isPerpendicularTo(direction) || direction.isZeroLength())
        return point;
    return point - direction * (unit.dotProduct(point - m_origin) / unit.dotProduct(direction));
}

bool AcGePlanarEnt::isOn(const AcGePoint3d& point, const AcGeTol& tolerance) const {
    return distanceTo(point) <= tolerance.equalPoint();
}

bool AcGePlanarEnt::isParallelTo(const AcGePlanarEnt& other, const AcGeTol& tolerance) const {
    return normal().isParallelTo(other.normal(), tolerance);
}

bool AcGePlanarEnt::isPerpendicularTo(const AcGePlanarEnt& other, const AcGeTol& tolerance) const {
    return normal().isPerpendicularTo(other.normal(), tolerance);
}

bool AcGePlanarEnt::isCoplanarTo(const AcGePlanarEnt& other, const AcGeTol& tolerance) const {
    return isParallelTo(other, tolerance) && isOn(other.m_origin, tolerance);
}

AcGePlane& AcGePlane::transformBy(const AcGeMatrix3d& matrix) {
    const AcGePoint3d origin = matrix * m_origin;
    assign(origin, matrix * m_uAxis, matrix * m_vAxis);
    return *this;
}

AcGePlane& AcGePlane::set(double a, double b, double c, double d) {
    const AcGeVector3d normal(a, b, c);
    const double size = normal.lengthSqrd();
    assign(size > 0.0 ? AcGePoint3d::kOrigin + normal * (-d / size) : AcGePoint3d::kOrigin, normal);
    return *this;
}

AcGePlane& AcGePlane::reverseNormal() {
    std::swap(m_uAxis, m_vAxis);
    return *this;
}

bool AcGePlane::isEqualTo(const AcGePlane& other, const AcGeTol& tolerance) const {
    return normal().isCodirectionalTo(other.normal(), tolerance) && isOn(other.m_origin, tolerance);
}
