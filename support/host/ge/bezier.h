// Rational Bezier curves of space: the pieces of NURBS curves between their knots. They stay what they are
// under every affine map, and what is asked about them becomes the roots of polynomials, so that nothing is
// missed.
#pragma once

#include "host/ge/bernstein.h"
#include "host/ge/boundblock.h"
#include "host/ge/matrix3d.h"

#include <array>
#include <utility>
#include <vector>

class AcGeNurbCurve3d;

namespace host {

// A control point in homogeneous coordinates: its place times its weight, and the weight.
struct WeightedPoint {
    double x = 0.0, y = 0.0, z = 0.0, w = 0.0;

    WeightedPoint() = default;
    WeightedPoint(double px, double py, double pz, double weight) : x(px), y(py), z(pz), w(weight) {}
    WeightedPoint(const AcGePoint3d& point, double weight)
        : x(point.x * weight), y(point.y * weight), z(point.z * weight), w(weight) {}
    AcGePoint3d point() const { return {x / w, y / w, z / w}; }

    WeightedPoint operator+(const WeightedPoint& o) const { return {x + o.x, y + o.y, z + o.z, w + o.w}; }
    WeightedPoint operator-(const WeightedPoint& o) const { return {x - o.x, y - o.y, z - o.z, w - o.w}; }
    WeightedPoint operator*(double f) const { return {x * f, y * f, z * f, w * f}; }
};

// The highest degree of curves that are computed with.
inline constexpr int highestDegree = 25;

class BezierCurve {
public:
    BezierCurve() = default;
    // Not rational: all weights are 1.
    BezierCurve(std::vector<WeightedPoint> points, bool isRational)
        : m_points(std::move(points)), m_isRational(isRational) {}

    int degree() const { return static_cast<int>(m_points.size()) - 1; }
    bool isRational() const { return m_isRational; }
    const std::vector<WeightedPoint>& points() const { return m_points; }

    // The point at t, and up to two derivatives.
    AcGePoint3d evaluate(double t, int derivativeCount, AcGeVector3d* derivatives) const;
    AcGePoint3d pointAt(double t) const { return evaluate(t, 0, nullptr); }
    BezierCurve transformed(const AcGeMatrix3d& matrix) const;
    std::pair<BezierCurve, BezierCurve> split(double t) const;
    // The same curve, of a degree higher by one.
    BezierCurve elevated() const;

    // The weight along the curve, and the height over a plane times the weight: polynomials in t. The normal
    // need not have unit length.
    BernsteinPolynomial weights() const;
    BernsteinPolynomial heights(const AcGePoint3d& origin, const AcGeVector3d& normal) const;
    // Parameters at which the curve runs across the direction: where it lies farthest along it.
    std::vector<double> turns(const AcGeVector3d& direction) const;
    // Parameters at which the line from the point stands at right angles to the curve.
    std::vector<double> feet(const AcGePoint3d& point) const;
    // Parameters at which the line from the point, seen along the normal, touches the curve.
    std::vector<double> touches(const AcGePoint3d& point, const AcGeVector3d& normal) const;
    double closestParameter(const AcGePoint3d& point) const;
    // The box of the control points, which holds the curve.
    AcGeBoundBlock3d hull() const;
    // The normal of the plane the control points span, of unit length; zero for a straight curve.
    AcGeVector3d planeNormal() const;
    // Appends points, without the first, whose chords stay within the deviation.
    void appendChords(double deviation, std::vector<AcGePoint3d>& points) const;

private:
    std::vector<WeightedPoint> m_points;
    bool m_isRational = false;
};

// A piece of a NURBS curve: its curve runs over [0, 1] while the parameter does from low to high.
struct BezierSpan {
    BezierCurve curve;
    double low = 0.0;
    double high = 1.0;
};
// The pieces between the knots of a valid curve, in order.
std::vector<BezierSpan> bezierSpans(const AcGeNurbCurve3d& curve);

// Parameters (s of the first, t of the second) of common points. A touch is told once; curves that share a
// stretch give any number of points on it.
std::vector<std::pair<double, double>> intersectBeziers(const BezierCurve& first, const BezierCurve& second,
                                                        double tolerance);

} // namespace host
