// Circular and elliptical arcs of the plane.
#include "host/ge/arc2d.h"

#include "host/ge/line2d.h"
#include "host/ge/path_segment.h"

namespace host {

void ConicArc2d::setAngleRange(double startAngle, double endAngle) {
    m_startAngle = startAngle;
    m_endAngle = endAngle > startAngle ? std::min(endAngle, startAngle + twoPi)
                                       : startAngle + normalizedAngle(endAngle - startAngle);
    if (m_endAngle <= m_startAngle)
        m_endAngle = m_startAngle + twoPi;
}

void ConicArc2d::reverse() {
    m_shape.minor.negate();
    const double sweep = m_endAngle - m_startAngle;
    m_startAngle = normalizedAngle(-m_endAngle);
    m_endAngle = m_startAngle + sweep;
}

bool ConicArc2d::setInterval(const AcGeInterval& range) {
    if (!range.isBounded() || range.length() <= 0.0)
        return false;
    setAngleRange(range.lowerBound(), range.upperBound());
    return true;
}

AcGePoint2d ConicArc2d::evaluate(double parameter, int derivativeCount, AcGeVector2d* derivatives) const {
    const AcGeVector2d arm = m_shape.pointAt(parameter) - m_shape.center,
                       ahead = m_shape.derivativeAt(parameter);
    const AcGeVector2d cycle[] = {ahead, -arm, -ahead, arm};
    for (int i = 0; i < derivativeCount; ++i)
        derivatives[i] = cycle[i % 4];
    return m_shape.center + arm;
}

double ConicArc2d::closestParameter(const AcGePoint2d& point) const {
    const double a = m_shape.major.length(), b = m_shape.minor.length();
    if (std::fabs(a - b) > 1e-12 * a)
        return closestEllipseAngle(m_shape, point, m_startAngle, m_endAngle);
    const double parameter = m_startAngle + normalizedAngle(m_shape.angleOf(point) - m_startAngle);
    if (parameter <= m_endAngle)
        return parameter;
    return startPoint().distanceSqrdTo(point) <= endPoint().distanceSqrdTo(point) ? m_startAngle : m_endAngle;
}

bool ConicArc2d::isClosed(const AcGeTol&) const {
    return m_endAngle - m_startAngle >= twoPi - 1e-12;
}

bool ConicArc2d::isPeriodic(double& period) const {
    period = twoPi;
    return isClosed();
}

bool ConicArc2d::isInside(const AcGePoint2d& point, const AcGeTol&) const {
    const AcGeVector2d arm = point - m_shape.center;
    const double x = arm.dotProduct(m_shape.major) / m_shape.major.lengthSqrd();
    const double y = arm.dotProduct(m_shape.minor) / m_shape.minor.lengthSqrd();
    return x * x + y * y <= 1.0;
}

AcGeBoundBlock2d ConicArc2d::orthoBoundBlock(const AcGeInterval& range) const {
    AcGeBoundBlock2d block(evalPoint(range.lowerBound()), evalPoint(range.upperBound()));
    for (unsigned int axis = 0; axis < 2; ++axis) {
        const double turning = std::atan2(m_shape.minor[axis], m_shape.major[axis]);
        for (const double angle : {turning, turning + pi})
            if (normalizedAngle(angle - range.lowerBound()) <= range.length())
                block.extend(evalPoint(angle));
    }
    return block;
}

bool ConicArc2d::intersectWith(const AcGeLinearEnt2d& line, int& count, AcGePoint2d& first,
                               AcGePoint2d& second, const AcGeTol& tolerance) const {
    count = 0;
    for (const LineEllipseCrossing& crossing :
         intersectLineEllipse(line.pointOnLine(), line.direction(), m_shape, tolerance.equalPoint())) {
        const AcGePoint2d point = evalPoint(crossing.angle);
        if (isOn(point, tolerance) && line.isOn(point, tolerance))
            (count++ == 0 ? first : second) = point;
    }
    return count > 0;
}

} // namespace host

AcGeCircArc2d& AcGeCircArc2d::set(const AcGePoint2d& center, double radius, double startAngle,
                                  double endAngle, const AcGeVector2d& refVec, bool isClockWise) {
    const AcGeVector2d unit = refVec.isZeroLength() ? AcGeVector2d::kXAxis : refVec / refVec.length();
    m_shape.center = center;
    m_shape.major = unit * radius;
    m_shape.minor = unit.perpVector() * (isClockWise ? -radius : radius);
    setAngleRange(startAngle, endAngle);
    return *this;
}

AcGeCircArc2d& AcGeCircArc2d::set(const AcGePoint2d& start, const AcGePoint2d& middle,
                                  const AcGePoint2d& end) {
    const AcGeVector2d a = middle - start, b = end - start;
    const double area = a.crossProduct(b);
    if (std::fabs(area) <= AcGeContext::gTol.equalVector() * a.length() * b.length())
        return *this;
    const AcGeVector2d toCenter =
        (b.perpVector() * -a.lengthSqrd() + a.perpVector() * b.lengthSqrd()) / (2.0 * area);
    const AcGePoint2d center = start + toCenter;
    const bool isClockWise = area < 0.0;
    const double turn = (end - center).angle() - (start - center).angle();
    return set(center, toCenter.length(), 0.0, host::normalizedAngle(isClockWise ? -turn : turn),
               start - center, isClockWise);
}

AcGeCircArc2d& AcGeCircArc2d::set(const AcGePoint2d& start, const AcGePoint2d& end, double bulge,
                                  bool bulgeFlag) {
    const double chord = start.distanceTo(end);
    const host::PathSegment arc(start, end, bulgeFlag || chord == 0.0 ? bulge : 2.0 * bulge / chord);
    if (!arc.isArc())
        return *this;
    return set(arc.center(), arc.radius(), 0.0, std::fabs(arc.sweep()), start - arc.center(),
               arc.bulge < 0.0);
}

AcGeCircArc2d& AcGeCircArc2d::setRadius(double radius) {
    const double scale = radius / m_shape.major.length();
    m_shape.major *= scale;
    m_shape.minor *= scale;
    return *this;
}

AcGeCircArc2d& AcGeCircArc2d::transformBy(const AcGeMatrix2d& matrix) {
    const AcGeVector2d u = matrix * m_shape.major, v = matrix * m_shape.minor;
    const double size = std::sqrt(std::fabs(u.crossProduct(v)));
    m_shape.center.transformBy(matrix);
    if (size > 0.0) {
        m_shape.major = u * (size / u.length());
        m_shape.minor = m_shape.major.perpVector() * (u.crossProduct(v) < 0.0 ? -1.0 : 1.0);
    }
    return *this;
}

double AcGeCircArc2d::length(double from, double to, double) const {
    return std::fabs(to - from) * radius();
}

double AcGeCircArc2d::paramAtLength(double datum, double distance, bool forward, double) const {
    return interval().clamp(datum + (forward ? distance : -distance) / radius());
}

bool AcGeCircArc2d::getTrimmedOffset(double distance, AcGeVoidPointerArray& offsets, AcGe::OffsetCrvExtType,
                                     const AcGeTol& tolerance) const {
    const double changed = radius() + (isClockWise() ? -distance : distance);
    if (changed <= tolerance.equalPoint())
        return false;
    AcGeCircArc2d* arc = copy();
    arc->setRadius(changed);
    offsets.append(static_cast<AcGeCurve2d*>(arc));
    return true;
}

bool AcGeCircArc2d::intersectWith(const AcGeCircArc2d& other, int& count, AcGePoint2d& first,
                                  AcGePoint2d& second, const AcGeTol& tolerance) const {
    count = 0;
    for (const AcGePoint2d& point :
         host::intersectCircles(center(), radius(), other.center(), other.radius(), tolerance.equalPoint()))
        if (isOn(point, tolerance) && other.isOn(point, tolerance))
            (count++ == 0 ? first : second) = point;
    return count > 0;
}

bool AcGeCircArc2d::tangent(const AcGePoint2d& point, AcGeLine2d& line, const AcGeTol& tolerance) const {
    double parameter = 0.0;
    if (!isOn(point, parameter, tolerance))
        return false;
    line.set(point, firstDerivative(parameter).normal());
    return true;
}

AcGeEllipArc2d& AcGeEllipArc2d::set(const AcGePoint2d& center, const AcGeVector2d& majorAxis,
                                    const AcGeVector2d& minorAxis, double majorRadius, double minorRadius,
                                    double startAngle, double endAngle) {
    const AcGeVector2d unit =
        majorAxis.isZeroLength() ? AcGeVector2d::kXAxis : majorAxis / majorAxis.length();
    m_shape.center = center;
    m_shape.major = unit * majorRadius;
    m_shape.minor = unit.perpVector() * (unit.crossProduct(minorAxis) < 0.0 ? -minorRadius : minorRadius);
    setAngleRange(startAngle, endAngle);
    return *this;
}

AcGeEllipArc2d& AcGeEllipArc2d::transformBy(const AcGeMatrix2d& matrix) {
    m_shape.center.transformBy(matrix);
    const AcGeVector2d u = matrix * m_shape.major, v = matrix * m_shape.minor;
    if (std::fabs(u.dotProduct(v)) <= 1e-14 * u.length() * v.length()) {
        m_shape.major = u;
        m_shape.minor = v;
        return *this;
    }
    const host::PrincipalAxes axes = host::principalAxes(host::to3d(u), host::to3d(v));
    m_shape.major = host::to2d(axes.major);
    m_shape.minor = host::to2d(axes.minor);
    const double sweep = m_endAngle - m_startAngle;
    m_startAngle = host::normalizedAngle(m_startAngle - axes.shift);
    m_endAngle = m_startAngle + sweep;
    return *this;
}
