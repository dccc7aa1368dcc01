// Circular and elliptical arcs of space.
#include "host/ge/arc3d.h"

#include "host/ge/line3d.h"

namespace host {

namespace {

constexpr double angleSlack = 1e-10;

// Keeps up to two different points that lie on both curves.
class CommonPoints {
public:
    CommonPoints(int& count, AcGePoint3d& first, AcGePoint3d& second)
        : m_count(count), m_first(first), m_second(second) {
        m_count = 0;
    }
    void add(const AcGePoint3d& point, const AcGeTol& tolerance) {
        if (m_count == 0)
            m_first = point;
        else if (m_count == 1 && !point.isEqualTo(m_first, tolerance))
            m_second = point;
        else
            return;
        ++m_count;
    }

private:
    int& m_count;
    AcGePoint3d& m_first;
    AcGePoint3d& m_second;
};

} // namespace

void ConicArc3d::setAngleRange(double startAngle, double endAngle) {
    m_startAngle = startAngle;
    m_endAngle = endAngle > startAngle ? std::min(endAngle, startAngle + twoPi)
                                       : startAngle + normalizedAngle(endAngle - startAngle);
    if (m_endAngle <= m_startAngle)
        m_endAngle = m_startAngle + twoPi;
}

void ConicArc3d::reverse() {
    m_minor.negate();
    const double sweep = m_endAngle - m_startAngle;
    m_startAngle = normalizedAngle(-m_endAngle);
    m_endAngle = m_startAngle + sweep;
}

bool ConicArc3d::containsAngle(double angle, double slack) const {
    return normalizedAngle(angle - m_startAngle + slack) <= m_endAngle - m_startAngle + 2.0 * slack;
}

bool ConicArc3d::setInterval(const AcGeInterval& range) {
    if (!range.isBounded() || range.length() <= 0.0)
        return false;
    setAngleRange(range.lowerBound(), range.upperBound());
    return true;
}

AcGePoint3d ConicArc3d::evaluate(double parameter, int derivativeCount, AcGeVector3d* derivatives) const {
    const AcGeVector3d arm = m_major * std::cos(parameter) + m_minor * std::sin(parameter);
    const AcGeVector3d ahead = m_minor * std::cos(parameter) - m_major * std::sin(parameter);
    const AcGeVector3d cycle[] = {ahead, -arm, -ahead, arm};
    for (int i = 0; i < derivativeCount; ++i)
        derivatives[i] = cycle[i % 4];
    return m_center + arm;
}

double ConicArc3d::closestParameter(const AcGePoint3d& point) const {
    const AcGeVector3d arm = point - m_center;
    const double a = m_major.length(), b = m_minor.length();
    const AcGePoint2d flat(arm.dotProduct(m_major) / a, arm.dotProduct(m_minor) / b);
    if (std::fabs(a - b) > 1e-12 * a)
        return closestEllipseAngle(flatShape(), flat, m_startAngle, m_endAngle);
    const double parameter = m_startAngle + normalizedAngle(std::atan2(flat.y, flat.x) - m_startAngle);
    if (parameter <= m_endAngle)
        return parameter;
    return startPoint().distanceSqrdTo(point) <= endPoint().distanceSqrdTo(point) ? m_startAngle : m_endAngle;
}

bool ConicArc3d::isClosed(const AcGeTol&) const {
    return m_endAngle - m_startAngle >= twoPi - 1e-12;
}

bool ConicArc3d::isPeriodic(double& period) const {
    period = twoPi;
    return isClosed();
}

bool ConicArc3d::isPlanar(AcGePlane& plane, const AcGeTol&) const {
    getPlane(plane);
    return true;
}

bool ConicArc3d::isInside(const AcGePoint3d& point, const AcGeTol& tolerance) const {
    AcGePlane plane;
    getPlane(plane);
    const AcGeVector3d arm = point - m_center;
    const double x = arm.dotProduct(m_major) / m_major.lengthSqrd(),
                 y = arm.dotProduct(m_minor) / m_minor.lengthSqrd();
    return plane.isOn(point, tolerance) && x * x + y * y <= 1.0;
}

AcGeBoundBlock3d ConicArc3d::orthoBoundBlock(const AcGeInterval& range) const {
    AcGeBoundBlock3d block(evalPoint(range.lowerBound()), evalPoint(range.upperBound()));
    for (unsigned int axis = 0; axis < 3; ++axis) {
        const double turning = std::atan2(m_minor[axis], m_major[axis]);
        for (const double angle : {turning, turning + pi})
            if (normalizedAngle(angle - range.lowerBound()) <= range.length())
                block.extend(evalPoint(angle));
    }
    return block;
}

bool ConicArc3d::intersectWith(const AcGeLinearEnt3d& line, int& count, AcGePoint3d& first,
                               AcGePoint3d& second, const AcGeTol& tolerance) const {
    CommonPoints common(count, first, second);
    AcGePlane plane;
    getPlane(plane);
    const auto add = [&](const AcGePoint3d& point) {
        if (isOn(point, tolerance) && line.isOn(point, tolerance))
            common.add(point, tolerance);
    };
    AcGePoint3d pierced;
    if (!plane.isOn(line.pointOnLine(), tolerance) || !line.isParallelTo(plane, tolerance)) {
        if (line.intersectWith(plane, pierced, tolerance))
            add(pierced);
        return count > 0;
    }
    const AcGePoint2d origin = line.pointOnLine().convert2d(plane);
    for (const LineEllipseCrossing& crossing :
         intersectLineEllipse(origin, line.direction().convert2d(plane), flatShape(), tolerance.equalPoint()))
        add(evalPoint(crossing.angle));
    return count > 0;
}

bool ConicArc3d::intersectWith(const AcGePlanarEnt& plane, int& count, AcGePoint3d& first,
                               AcGePoint3d& second, const AcGeTol& tolerance) const {
    CommonPoints common(count, first, second);
    const AcGeVector3d unit = plane.normal();
    // The distance from the plane along the curve: a + r cos(t - phase).
    const double a = (m_center - plane.pointOnPlane()).dotProduct(unit);
    const double x = m_major.dotProduct(unit), y = m_minor.dotProduct(unit);
    const double r = std::hypot(x, y), phase = std::atan2(y, x);
    if (r <= tolerance.equalPoint() || std::fabs(a) > r + tolerance.equalPoint())
        return false;
    const double half = std::acos(std::clamp(-a / r, -1.0, 1.0));
    for (const double angle : {phase - half, phase + half})
        if (containsAngle(angle, angleSlack))
            common.add(evalPoint(angle), tolerance);
    return count > 0;
}

} // namespace host

AcGeCircArc3d& AcGeCircArc3d::set(const AcGePoint3d& center, const AcGeVector3d& normal, double radius) {
    return set(center, normal, host::arbitraryAxes(normal) * AcGeVector3d::kXAxis, radius, 0.0, host::twoPi);
}

AcGeCircArc3d& AcGeCircArc3d::set(const AcGePoint3d& center, const AcGeVector3d& normal,
                                  const AcGeVector3d& refVec, double radius, double startAngle,
                                  double endAngle) {
    m_center = center;
    m_major = AcGeVector3d::kXAxis * radius;
    setAxes(normal, refVec);
    setAngleRange(startAngle, endAngle);
    return *this;
}

AcGeCircArc3d& AcGeCircArc3d::setAxes(const AcGeVector3d& normal, const AcGeVector3d& refVec) {
    const double size = radius();
    const AcGePlane plane(m_center, refVec, normal.crossProduct(refVec));
    AcGePoint3d origin;
    plane.getCoordSystem(origin, m_major, m_minor);
    m_major *= size;
    m_minor *= size;
    return *this;
}

AcGeCircArc3d& AcGeCircArc3d::setRadius(double radius) {
    const double old = m_major.length();
    const AcGeVector3d u = old > 0.0 ? m_major / old : AcGeVector3d::kXAxis;
    const AcGeVector3d v = old > 0.0 ? m_minor / old : AcGeVector3d::kYAxis;
    m_major = u * radius;
    m_minor = v * radius;
    return *this;
}

AcGeCircArc3d& AcGeCircArc3d::set(const AcGePoint3d& start, const AcGePoint3d& middle,
                                  const AcGePoint3d& end) {
    AcGeError flag;
    return set(start, middle, end, flag);
}

AcGeCircArc3d& AcGeCircArc3d::set(const AcGePoint3d& start, const AcGePoint3d& middle, const AcGePoint3d& end,
                                  AcGeError& flag) {
    const AcGeVector3d a = middle - start, b = end - start;
    const AcGeVector3d normal = a.crossProduct(b);
    const double size = normal.lengthSqrd();
    flag = start == middle ? AcGe::kEqualArg1Arg2
           : start == end  ? AcGe::kEqualArg1Arg3
           : middle == end ? AcGe::kEqualArg2Arg3
           : std::sqrt(size) <= AcGeContext::gTol.equalVector() * a.length() * b.length()
               ? AcGe::kLinearlyDependentArg1Arg2Arg3
               : AcGe::kOk;
    if (flag != AcGe::kOk)
        return *this;
    const AcGeVector3d toCenter =
        (normal.crossProduct(a) * b.lengthSqrd() + b.crossProduct(normal) * a.lengthSqrd()) / (2.0 * size);
    const AcGePoint3d center = start + toCenter;
    // Angles count from the start, so that the arc runs from 0 through the middle point to the end.
    const double sweep = (start - center).angleTo(end - center, normal);
    return set(center, normal, start - center, toCenter.length(), 0.0, sweep);
}

AcGeCircArc3d& AcGeCircArc3d::transformBy(const AcGeMatrix3d& matrix) {
    m_center.transformBy(matrix);
    const AcGeVector3d u = matrix * m_major, v = matrix * m_minor;
    const double size = std::sqrt(u.crossProduct(v).length());
    if (size > 0.0) {
        const AcGePlane plane(m_center, u, v);
        AcGePoint3d origin;
        plane.getCoordSystem(origin, m_major, m_minor);
        m_major *= size;
        m_minor *= size;
    }
    return *this;
}

double AcGeCircArc3d::length(double from, double to, double) const {
    return std::fabs(to - from) * radius();
}

double AcGeCircArc3d::paramAtLength(double datum, double distance, bool forward, double) const {
    return interval().clamp(datum + (forward ? distance : -distance) / radius());
}

bool AcGeCircArc3d::getTrimmedOffset(double distance, const AcGeVector3d& planeNormal,
                                     AcGeVoidPointerArray& offsets, AcGe::OffsetCrvExtType,
                                     const AcGeTol& tolerance) const {
    const double changed = radius() + (planeNormal.dotProduct(normal()) < 0.0 ? -distance : distance);
    if (changed <= tolerance.equalPoint())
        return false;
    AcGeCircArc3d* arc = copy();
    arc->setRadius(changed);
    offsets.append(static_cast<AcGeCurve3d*>(arc));
    return true;
}

bool AcGeCircArc3d::intersectWith(const AcGeCircArc3d& other, int& count, AcGePoint3d& first,
                                  AcGePoint3d& second, const AcGeTol& tolerance) const {
    AcGePlane plane, otherPlane;
    getPlane(plane);
    other.getPlane(otherPlane);
    AcGePoint3d points[2];
    int found = 0;
    if (plane.isCoplanarTo(otherPlane, tolerance)) {
        for (const AcGePoint2d& point :
             host::intersectCircles({0.0, 0.0}, radius(), other.center().convert2d(plane), other.radius(),
                                    tolerance.equalPoint()))
            points[found++] = AcGePoint3d(plane, point);
    } else {
        AcGeCircArc3d whole(*this);
        whole.setAngles(0.0, host::twoPi);
        whole.intersectWith(otherPlane, found, points[0], points[1], tolerance);
    }
    count = 0;
    for (int i = 0; i < found; ++i)
        if (isOn(points[i], tolerance) && other.isOn(points[i], tolerance))
            (count++ == 0 ? first : second) = points[i];
    return count > 0;
}

bool AcGeCircArc3d::tangent(const AcGePoint3d& point, AcGeLine3d& line, const AcGeTol& tolerance) const {
    double parameter = 0.0;
    if (!isOn(point, parameter, tolerance))
        return false;
    line.set(point, firstDerivative(parameter).normal());
    return true;
}

AcGeEllipArc3d& AcGeEllipArc3d::set(const AcGePoint3d& center, const AcGeVector3d& majorAxis,
                                    const AcGeVector3d& minorAxis, double majorRadius, double minorRadius,
                                    double startAngle, double endAngle) {
    m_center = center;
    m_major = AcGeVector3d::kXAxis * majorRadius;
    m_minor = AcGeVector3d::kYAxis * minorRadius;
    setAxes(majorAxis, minorAxis);
    setAngleRange(startAngle, endAngle);
    return *this;
}

AcGeEllipArc3d& AcGeEllipArc3d::set(const AcGeCircArc3d& arc) {
    return set(arc.center(), arc.refVec(), arc.normal().crossProduct(arc.refVec()), arc.radius(),
               arc.radius(), arc.startAng(), arc.endAng());
}

AcGeEllipArc3d& AcGeEllipArc3d::setAxes(const AcGeVector3d& majorAxis, const AcGeVector3d& minorAxis) {
    const double major = m_major.length(), minor = m_minor.length();
    const AcGePlane plane(m_center, majorAxis, minorAxis);
    AcGePoint3d origin;
    plane.getCoordSystem(origin, m_major, m_minor);
    m_major *= major;
    m_minor *= minor;
    return *this;
}

AcGeEllipArc3d& AcGeEllipArc3d::setMajorRadius(double radius) {
    m_major = m_major.normal() * radius;
    return *this;
}

AcGeEllipArc3d& AcGeEllipArc3d::setMinorRadius(double radius) {
    m_minor = m_minor.normal() * radius;
    return *this;
}

AcGeEllipArc3d& AcGeEllipArc3d::transformBy(const AcGeMatrix3d& matrix) {
    m_center.transformBy(matrix);
    m_major.transformBy(matrix);
    m_minor.transformBy(matrix);
    const double skew = std::fabs(m_major.dotProduct(m_minor));
    if (skew <= 1e-14 * m_major.length() * m_minor.length())
        return *this;
    const host::PrincipalAxes axes = host::principalAxes(m_major, m_minor);
    m_major = axes.major;
    m_minor = axes.minor;
    const double sweep = m_endAngle - m_startAngle;
    m_startAngle = host::normalizedAngle(m_startAngle - axes.shift);
    m_endAngle = m_startAngle + sweep;
    return *this;
}
