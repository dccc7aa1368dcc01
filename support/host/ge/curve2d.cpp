// Curves of the plane: straight ones, polylines, and questions any curve answers.
#include "host/ge/curve2d.h"

#include "host/ge/line2d.h"
#include "host/ge/polyline2d.h"
#include "host/ge/polyline_points.h"

bool AcGeCurve2d::isLinear(AcGeLine2d& line, const AcGeTol& tolerance) const {
    const AcGeInterval range = interval();
    const AcGePoint2d start = evalPoint(range.lowerBound());
    AcGePoint2d farthest = start;
    std::vector<AcGePoint2d> points;
    for (const double parameter : sampleParameters(range.lowerBound(), range.upperBound())) {
        points.push_back(evalPoint(parameter));
        if (start.distanceTo(points.back()) > start.distanceTo(farthest))
            farthest = points.back();
    }
    if (start.isEqualTo(farthest, tolerance))
        return false;
    const AcGeLine2d candidate(start, farthest);
    if (!std::all_of(points.begin(), points.end(),
                     [&](const AcGePoint2d& p) { return candidate.isOn(p, tolerance); }))
        return false;
    line = candidate;
    return true;
}

bool AcGeCurve2d::getTrimmedOffset(double, AcGeVoidPointerArray&, AcGe::OffsetCrvExtType,
                                   const AcGeTol&) const {
    return false;
}

AcGeLinearEnt2d& AcGeLinearEnt2d::transformBy(const AcGeMatrix2d& matrix) {
    m_point.transformBy(matrix);
    m_vector.transformBy(matrix);
    return *this;
}

AcGePoint2d AcGeLinearEnt2d::evaluate(double parameter, int derivativeCount,
                                      AcGeVector2d* derivatives) const {
    for (int i = 0; i < derivativeCount; ++i)
        derivatives[i] = i == 0 ? m_vector : AcGeVector2d();
    return parameter == 1.0 ? m_point + m_vector : m_point + m_vector * parameter;
}

double AcGeLinearEnt2d::closestParameter(const AcGePoint2d& point) const {
    const double size = m_vector.lengthSqrd();
    return size > 0.0 ? interval().clamp((point - m_point).dotProduct(m_vector) / size) : 0.0;
}

double AcGeLinearEnt2d::length(double from, double to, double) const {
    return std::fabs(to - from) * m_vector.length();
}

double AcGeLinearEnt2d::paramAtLength(double datum, double distance, bool forward, double) const {
    const double size = m_vector.length();
    return size > 0.0 ? interval().clamp(datum + (forward ? distance : -distance) / size) : datum;
}

AcGeBoundBlock2d AcGeLinearEnt2d::orthoBoundBlock(const AcGeInterval& range) const {
    return {evalPoint(range.lowerBound()), evalPoint(range.upperBound())};
}

bool AcGeLinearEnt2d::isLinear(AcGeLine2d& line, const AcGeTol& tolerance) const {
    getLine(line);
    return !m_vector.isZeroLength(tolerance);
}

bool AcGeLinearEnt2d::getTrimmedOffset(double distance, AcGeVoidPointerArray& offsets, AcGe::OffsetCrvExtType,
                                       const AcGeTol& tolerance) const {
    if (m_vector.isZeroLength(tolerance))
        return false;
    AcGeLinearEnt2d* moved = copy();
    moved->m_point -= direction().perpVector() * distance;
    offsets.append(static_cast<AcGeCurve2d*>(moved));
    return true;
}

void AcGeLinearEnt2d::getLine(AcGeLine2d& line) const {
    line.set(m_point, m_vector);
}

void AcGeLinearEnt2d::getPerpLine(const AcGePoint2d& point, AcGeLine2d& line) const {
    line.set(point, m_vector.perpVector());
}

bool AcGeLinearEnt2d::intersectWith(const AcGeLinearEnt2d& other, AcGePoint2d& point,
                                    const AcGeTol& tolerance) const {
    const double area = m_vector.crossProduct(other.m_vector);
    if (area == 0.0 || isParallelTo(other, tolerance))
        return false;
    const AcGeVector2d between = other.m_point - m_point;
    const AcGePoint2d own = evalPoint(interval().clamp(between.crossProduct(other.m_vector) / area));
    const AcGePoint2d others = other.evalPoint(other.interval().clamp(between.crossProduct(m_vector) / area));
    if (own.distanceTo(others) > tolerance.equalPoint())
        return false;
    point = own;
    return true;
}

bool AcGeLinearEnt2d::isColinearTo(const AcGeLinearEnt2d& other, const AcGeTol& tolerance) const {
    return isParallelTo(other, tolerance) && AcGeLine2d(m_point, m_vector).isOn(other.m_point, tolerance);
}

bool AcGeLineSeg2d::setInterval(const AcGeInterval& range) {
    if (!range.isBounded())
        return false;
    set(evalPoint(range.lowerBound()), evalPoint(range.upperBound()));
    return true;
}

AcGePolyline2d& AcGePolyline2d::transformBy(const AcGeMatrix2d& matrix) {
    for (AcGePoint2d& point : m_points)
        point.transformBy(matrix);
    return *this;
}

AcGePolyline2d& AcGePolyline2d::reverseParam() {
    m_points.reverse();
    return *this;
}

void AcGePolyline2d::getInterval(AcGeInterval& interval) const {
    interval = AcGeInterval(0.0, std::max(m_points.length() - 1, 0));
}

bool AcGePolyline2d::setInterval(const AcGeInterval& range) {
    if (!range.isBounded() || range.length() < 0.0 || m_points.isEmpty())
        return false;
    m_points = host::polyline::part<AcGePoint2d>(*this, range.lowerBound(), range.upperBound());
    return true;
}

AcGePoint2d AcGePolyline2d::evaluate(double parameter, int derivativeCount, AcGeVector2d* derivatives) const {
    return host::polyline::evaluate(m_points, parameter, derivativeCount, derivatives);
}

double AcGePolyline2d::closestParameter(const AcGePoint2d& point) const {
    return host::polyline::closestParameter(m_points, point);
}

double AcGePolyline2d::length(double from, double to, double) const {
    return host::polyline::length(*this, from, to);
}

std::vector<double> AcGePolyline2d::sampleParameters(double from, double to) const {
    return host::polyline::vertexParameters(from, to);
}

AcGePoint2d& AcGePoint2d::mirror(const AcGeLine2d& line) {
    return transformBy(AcGeMatrix2d::mirroring(line));
}

AcGeMatrix2d& AcGeMatrix2d::setToMirroring(const AcGeLine2d& line) {
    const AcGeVector2d along = line.direction();
    const AcGePoint2d point = line.pointOnLine();
    AcGeVector2d x = AcGeVector2d::kXAxis, y = AcGeVector2d::kYAxis;
    setCoordSystem(AcGePoint2d::kOrigin, x.mirror(along), y.mirror(along));
    return setTranslation(point - *this * point);
}
