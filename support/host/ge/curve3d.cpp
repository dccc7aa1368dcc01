// Curves of space: questions between two of them, and straight curves.
#include "host/ge/curve3d.h"

#include "host/ge/angles.h"
#include "host/ge/line3d.h"

AcGePoint3d AcGeCurve3d::closestPointTo(const AcGeCurve3d& other, AcGePoint3d& pointOnOther,
                                        const AcGeTol&) const {
    const AcGeInterval own = interval();
    const auto project = [&](double parameter, AcGePoint3d& foot) {
        const AcGePoint3d point = evalPoint(parameter);
        foot = other.closestPointTo(point);
        return point.distanceTo(foot);
    };
    // Alternating projections from several starts: each step comes no further apart.
    std::vector<double> starts;
    if (own.isBounded()) {
        starts = sampleParameters(own.lowerBound(), own.upperBound());
    } else {
        AcGePoint3d end;
        starts.push_back(closestParameter(other.hasStartPoint(end) ? end : other.evalPoint(0.0)));
        if (other.hasEndPoint(end))
            starts.push_back(closestParameter(end));
        starts.push_back(own.element());
    }
    double best = 0.0, bestDistance = -1.0;
    for (const double start : starts) {
        double parameter = start, distance = project(parameter, pointOnOther);
        for (int step = 0; step < 200; ++step) {
            const double next = closestParameter(pointOnOther);
            AcGePoint3d foot;
            const double nextDistance = project(next, foot);
            if (!(nextDistance < distance - 1e-15 * (1.0 + distance)))
                break;
            parameter = next;
            distance = nextDistance;
            pointOnOther = foot;
        }
        if (bestDistance < 0.0 || distance < bestDistance) {
            best = parameter;
            bestDistance = distance;
        }
    }
    project(best, pointOnOther);
    return evalPoint(best);
}

double AcGeCurve3d::distanceTo(const AcGeCurve3d& other, const AcGeTol& tolerance) const {
    AcGePoint3d onOther;
    return closestPointTo(other, onOther, tolerance).distanceTo(onOther);
}

bool AcGeCurve3d::isLinear(AcGeLine3d& line, const AcGeTol& tolerance) const {
    const AcGeInterval range = interval();
    const AcGePoint3d start = evalPoint(range.lowerBound());
    AcGePoint3d farthest = start;
    std::vector<AcGePoint3d> points;
    for (const double parameter : sampleParameters(range.lowerBound(), range.upperBound())) {
        points.push_back(evalPoint(parameter));
        if (start.distanceTo(points.back()) > start.distanceTo(farthest))
            farthest = points.back();
    }
    if (start.isEqualTo(farthest, tolerance))
        return false;
    const AcGeLine3d candidate(start, farthest);
    if (!std::all_of(points.begin(), points.end(),
                     [&](const AcGePoint3d& p) { return candidate.isOn(p, tolerance); }))
        return false;
    line = candidate;
    return true;
}

bool AcGeCurve3d::isPlanar(AcGePlane& plane, const AcGeTol& tolerance) const {
    AcGeLine3d line;
    if (isLinear(line, tolerance))
        return line.isPlanar(plane, tolerance);
    const AcGeInterval range = interval();
    std::vector<AcGePoint3d> points;
    for (const double parameter : sampleParameters(range.lowerBound(), range.upperBound()))
        points.push_back(evalPoint(parameter));
    // The widest triangle with the start decides the plane.
    AcGeVector3d normal;
    for (std::size_t i = 1; i + 1 < points.size(); ++i) {
        const AcGeVector3d candidate = (points[i] - points[0]).crossProduct(points[i + 1] - points[0]);
        if (candidate.lengthSqrd() > normal.lengthSqrd())
            normal = candidate;
    }
    if (normal.isZeroLength())
        return false;
    const AcGePlane candidate(points[0], normal);
    if (!std::all_of(points.begin(), points.end(),
                     [&](const AcGePoint3d& p) { return candidate.isOn(p, tolerance); }))
        return false;
    plane = candidate;
    return true;
}

bool AcGeCurve3d::isCoplanarWith(const AcGeCurve3d& other, AcGePlane& plane, const AcGeTol& tolerance) const {
    AcGeLine3d own, others;
    const bool ownLine = isLinear(own, tolerance), otherLine = other.isLinear(others, tolerance);
    if (ownLine && otherLine) {
        const AcGeVector3d between = others.pointOnLine() - own.pointOnLine();
        AcGeVector3d normal = own.direction().crossProduct(others.direction());
        if (own.isParallelTo(others, tolerance))
            normal = own.direction().crossProduct(between);
        if (normal.isZeroLength(tolerance))
            return own.isPlanar(plane, tolerance);
        const AcGePlane candidate(own.pointOnLine(), normal);
        if (!candidate.isOn(others.pointOnLine(), tolerance))
            return false;
        plane = candidate;
        return true;
    }
    AcGePlane candidate;
    if (!(ownLine ? other : *this).isPlanar(candidate, tolerance))
        return false;
    const AcGeCurve3d& second = ownLine ? *this : other;
    if (ownLine || otherLine) {
        const AcGeLine3d& line = ownLine ? own : others;
        if (!candidate.isOn(line.pointOnLine(), tolerance) || !line.isParallelTo(candidate, tolerance))
            return false;
    } else {
        AcGePlane otherPlane;
        if (!second.isPlanar(otherPlane, tolerance) || !candidate.isCoplanarTo(otherPlane, tolerance))
            return false;
    }
    plane = candidate;
    return true;
}

bool AcGeCurve3d::getTrimmedOffset(double, const AcGeVector3d&, AcGeVoidPointerArray&, AcGe::OffsetCrvExtType,
                                   const AcGeTol&) const {
    return false;
}

AcGeLinearEnt3d& AcGeLinearEnt3d::transformBy(const AcGeMatrix3d& matrix) {
    m_point.transformBy(matrix);
    m_vector.transformBy(matrix);
    return *this;
}

AcGePoint3d AcGeLinearEnt3d::evaluate(double parameter, int derivativeCount,
                                      AcGeVector3d* derivatives) const {
    for (int i = 0; i < derivativeCount; ++i)
        derivatives[i] = i == 0 ? m_vector : AcGeVector3d();
    return parameter == 1.0 ? m_point + m_vector : m_point + m_vector * parameter;
}

double AcGeLinearEnt3d::closestParameter(const AcGePoint3d& point) const {
    const double size = m_vector.lengthSqrd();
    return size > 0.0 ? interval().clamp((point - m_point).dotProduct(m_vector) / size) : 0.0;
}

double AcGeLinearEnt3d::length(double from, double to, double) const {
    return std::fabs(to - from) * m_vector.length();
}

double AcGeLinearEnt3d::paramAtLength(double datum, double distance, bool forward, double) const {
    const double size = m_vector.length();
    return size > 0.0 ? interval().clamp(datum + (forward ? distance : -distance) / size) : datum;
}

AcGeBoundBlock3d AcGeLinearEnt3d::orthoBoundBlock(const AcGeInterval& range) const {
    return {evalPoint(range.lowerBound()), evalPoint(range.upperBound())};
}

bool AcGeLinearEnt3d::isPlanar(AcGePlane& plane, const AcGeTol&) const {
    plane.set(m_point, m_vector.perpVector());
    return true;
}

bool AcGeLinearEnt3d::isLinear(AcGeLine3d& line, const AcGeTol& tolerance) const {
    getLine(line);
    return !m_vector.isZeroLength(tolerance);
}

bool AcGeLinearEnt3d::getTrimmedOffset(double distance, const AcGeVector3d& planeNormal,
                                       AcGeVoidPointerArray& offsets, AcGe::OffsetCrvExtType,
                                       const AcGeTol& tolerance) const {
    const AcGeVector3d side = m_vector.crossProduct(planeNormal);
    if (side.isZeroLength(tolerance))
        return false;
    AcGeLinearEnt3d* moved = copy();
    moved->m_point += side.normal() * distance;
    offsets.append(static_cast<AcGeCurve3d*>(moved));
    return true;
}

void AcGeLinearEnt3d::getLine(AcGeLine3d& line) const {
    line.set(m_point, m_vector);
}

bool AcGeLinearEnt3d::intersectWith(const AcGeLinearEnt3d& other, AcGePoint3d& point,
                                    const AcGeTol& tolerance) const {
    if (!m_vector.isZeroLength() && !other.m_vector.isZeroLength() && isParallelTo(other, tolerance))
        return false;
    // The feet of the common perpendicular, then only as far as both reach.
    const AcGeVector3d normal = m_vector.crossProduct(other.m_vector);
    const double size = normal.lengthSqrd();
    if (!(size > 0.0))
        return false;
    const AcGeVector3d between = other.m_point - m_point;
    const double own = between.crossProduct(other.m_vector).dotProduct(normal) / size;
    const double others = between.crossProduct(m_vector).dotProduct(normal) / size;
    const AcGePoint3d ownPoint = evalPoint(interval().clamp(own));
    if (ownPoint.distanceTo(other.evalPoint(other.interval().clamp(others))) > tolerance.equalPoint())
        return false;
    point = ownPoint;
    return true;
}

bool AcGeLinearEnt3d::intersectWith(const AcGePlanarEnt& plane, AcGePoint3d& point,
                                    const AcGeTol& tolerance) const {
    if (isParallelTo(plane, tolerance))
        return false;
    const AcGeVector3d normal = plane.normal();
    const double rate = m_vector.dotProduct(normal);
    if (rate == 0.0)
        return false;
    const AcGePoint3d candidate =
        evalPoint(interval().clamp((plane.pointOnPlane() - m_point).dotProduct(normal) / rate));
    if (!plane.isOn(candidate, tolerance))
        return false;
    point = candidate;
    return true;
}

bool AcGeLinearEnt3d::isColinearTo(const AcGeLinearEnt3d& other, const AcGeTol& tolerance) const {
    return isParallelTo(other, tolerance) && AcGeLine3d(m_point, m_vector).isOn(other.m_point, tolerance);
}

bool AcGeLinearEnt3d::overlap(const AcGeLinearEnt3d& other, AcGeLinearEnt3d*& common,
                              const AcGeTol& tolerance) const {
    common = nullptr;
    if (!isColinearTo(other, tolerance))
        return false;
    // The other's bounds in this one's parameters.
    const double size = m_vector.lengthSqrd();
    const auto own = [&](double parameter) {
        return (other.evalPoint(parameter) - m_point).dotProduct(m_vector) / size;
    };
    AcGeInterval range = interval();
    const AcGeInterval theirs = other.interval();
    const bool sameWay = m_vector.dotProduct(other.m_vector) > 0.0;
    const auto limit = [&](bool isBounded, double bound, bool isLower) {
        if (!isBounded)
            return;
        const double value = own(bound);
        if (isLower)
            range.setLower(range.isBoundedBelow() ? std::max(range.lowerBound(), value) : value);
        else
            range.setUpper(range.isBoundedAbove() ? std::min(range.upperBound(), value) : value);
    };
    limit(theirs.isBoundedBelow(), theirs.lowerBound(), sameWay);
    limit(theirs.isBoundedAbove(), theirs.upperBound(), !sameWay);
    if (range.isBounded() &&
        (range.upperBound() - range.lowerBound()) * std::sqrt(size) <= tolerance.equalPoint())
        return false;
    if (range.isBounded())
        common = new AcGeLineSeg3d(evalPoint(range.lowerBound()), evalPoint(range.upperBound()));
    else if (range.isBoundedBelow())
        common = new AcGeRay3d(evalPoint(range.lowerBound()), m_vector);
    else if (range.isBoundedAbove())
        common = new AcGeRay3d(evalPoint(range.upperBound()), -m_vector);
    else
        common = new AcGeLine3d(m_point, m_vector);
    return true;
}

bool AcGeLineSeg3d::setInterval(const AcGeInterval& range) {
    if (!range.isBounded())
        return false;
    set(evalPoint(range.lowerBound()), evalPoint(range.upperBound()));
    return true;
}

bool AcGePlanarEnt::intersectWith(const AcGeLinearEnt3d& line, AcGePoint3d& point,
                                  const AcGeTol& tolerance) const {
    return line.intersectWith(*this, point, tolerance);
}
bool AcGePlanarEnt::isParallelTo(const AcGeLinearEnt3d& line, const AcGeTol& tolerance) const {
    return line.isParallelTo(*this, tolerance);
}
bool AcGePlanarEnt::isPerpendicularTo(const AcGeLinearEnt3d& line, const AcGeTol& tolerance) const {
    return line.isPerpendicularTo(*this, tolerance);
}

bool AcGePlane::intersectWith(const AcGePlane& other, AcGeLine3d& line, const AcGeTol& tolerance) const {
    if (isParallelTo(other, tolerance))
        return false;
    const AcGeVector3d own = normal(), others = other.normal(), along = own.crossProduct(others);
    // The point of the line nearest to this plane's origin lies across the line within this plane.
    const AcGeVector3d across = along.crossProduct(own);
    const double step =
        (other.pointOnPlane() - pointOnPlane()).dotProduct(others) / across.dotProduct(others);
    line.set(pointOnPlane() + across * step, along.normal());
    return true;
}

AcGeMatrix3d& AcGeMatrix3d::setToMirroring(const AcGeLine3d& line) {
    return setToRotation(host::pi, line.direction(), line.pointOnLine());
}
