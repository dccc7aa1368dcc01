// Curves of space given by points: polylines and NURBS curves, and their knot vector.
#pragma once

#include "host/ge/bezier.h"
#include "host/ge/curve3d.h"

#include <initializer_list>

class AcGeLineSeg3d;
class AcGeEllipArc3d;

// Ascending parameters; knots closer than the tolerance count as one of higher multiplicity.
class AcGeKnotVector {
public:
    explicit AcGeKnotVector(double tolerance = 1e-9) : m_tolerance(tolerance) {}
    AcGeKnotVector(std::initializer_list<double> knots, double tolerance = 1e-9)
        : m_knots(knots), m_tolerance(tolerance) {}
    explicit AcGeKnotVector(const AcGeDoubleArray& knots, double tolerance = 1e-9)
        : m_knots(knots), m_tolerance(tolerance) {}
    AcGeKnotVector(int count, const double* knots, double tolerance = 1e-9);

    int length() const { return m_knots.length(); }
    int logicalLength() const { return m_knots.length(); }
    bool isEmpty() const { return m_knots.isEmpty(); }
    double operator[](int index) const { return m_knots[index]; }
    double& operator[](int index) { return m_knots[index]; }
    double startParam() const { return m_knots.first(); }
    double endParam() const { return m_knots.last(); }
    double tolerance() const { return m_tolerance; }
    AcGeKnotVector& setTolerance(double tolerance) {
        m_tolerance = tolerance;
        return *this;
    }
    AcGeKnotVector& append(double knot) {
        m_knots.append(knot);
        return *this;
    }
    // Keeps the order.
    AcGeKnotVector& insert(double knot);
    bool isOn(double parameter) const;
    int multiplicityAt(double parameter) const;
    // The number of spans that are not empty.
    int numIntervals() const;
    // Scales the knots to a new range.
    AcGeKnotVector& setRange(double lower, double upper);
    void reverse();
    const double* asArrayPtr() const { return m_knots.asArrayPtr(); }
    bool isEqualTo(const AcGeKnotVector& other) const;

private:
    AcGeDoubleArray m_knots;
    double m_tolerance;
};

// The common part of the curves given by control points.
class AcGeSplineEnt3d : public AcGeCurve3d {
public:
    bool isKindOf(AcGe::EntityId entityType) const override {
        return entityType == AcGe::kSplineEnt3d || AcGeCurve3d::isKindOf(entityType);
    }
    virtual int degree() const = 0;
    int order() const { return degree() + 1; }
    int numControlPoints() const { return m_points.length(); }
    AcGePoint3d controlPointAt(int index) const { return m_points[index]; }
    double startParam() const { return interval().lowerBound(); }
    double endParam() const { return interval().upperBound(); }
    AcGePoint3d startPoint() const { return evalPoint(startParam()); }
    AcGePoint3d endPoint() const { return evalPoint(endParam()); }

protected:
    AcGeSplineEnt3d() = default;
    explicit AcGeSplineEnt3d(const AcGePoint3dArray& points) : m_points(points) {}

    AcGePoint3dArray m_points;
};

// A parameter is the index of a vertex plus the fraction of the chord after it.
class AcGePolyline3d : public AcGeSplineEnt3d {
public:
    AcGePolyline3d() = default;
    explicit AcGePolyline3d(const AcGePoint3dArray& points) : AcGeSplineEnt3d(points) {}

    AcGe::EntityId type() const override { return AcGe::kPolyline3d; }
    bool isKindOf(AcGe::EntityId entityType) const override {
        return entityType == AcGe::kPolyline3d || AcGeSplineEnt3d::isKindOf(entityType);
    }
    AcGePolyline3d* copy() const override { return new AcGePolyline3d(*this); }
    AcGePolyline3d& transformBy(const AcGeMatrix3d& matrix) override;
    AcGePolyline3d& reverseParam() override;
    void getInterval(AcGeInterval& interval) const override;
    bool setInterval(const AcGeInterval& range) override;
    AcGePoint3d evaluate(double parameter, int derivativeCount, AcGeVector3d* derivatives) const override;
    double closestParameter(const AcGePoint3d& point) const override;
    double length(double from, double to, double tolerance = 1e-10) const override;
    std::vector<double> sampleParameters(double from, double to) const override;
    int degree() const override { return 1; }
    int numFitPoints() const { return m_points.length(); }
    AcGePoint3d fitPointAt(int index) const { return m_points[index]; }
};

class AcGeNurbCurve3d : public AcGeSplineEnt3d {
public:
    AcGeNurbCurve3d() = default;
    // The number of knots is the number of points plus the degree plus one.
    AcGeNurbCurve3d(int degree, const AcGeKnotVector& knots, const AcGePoint3dArray& controlPoints,
                    bool isPeriodic = false);
    // Rational: one positive weight a point.
    AcGeNurbCurve3d(int degree, const AcGeKnotVector& knots, const AcGePoint3dArray& controlPoints,
                    const AcGeDoubleArray& weights, bool isPeriodic = false);
    explicit AcGeNurbCurve3d(const AcGeLineSeg3d& line);
    // Exact, quadratic and rational, with the arc's angles as the range of the knots.
    explicit AcGeNurbCurve3d(const AcGeEllipArc3d& arc);
    // Through the points: cubic, its curvature continuous, the knots at the distances along the chords. Where
    // a tangent is not defined the curve runs out without curvature. Repeated points count once.
    AcGeNurbCurve3d(const AcGePoint3dArray& fitPoints, const AcGeVector3d& startTangent,
                    const AcGeVector3d& endTangent, bool startTangentDefined = true,
                    bool endTangentDefined = true, const AcGeTol& fitTolerance = AcGeContext::gTol);
    // The same for a closed curve, as smooth at its first point as anywhere; the last point need not be the
    // first one again.
    static AcGeNurbCurve3d throughClosed(const AcGePoint3dArray& fitPoints);

    AcGe::EntityId type() const override { return AcGe::kNurbCurve3d; }
    bool isKindOf(AcGe::EntityId entityType) const override {
        return entityType == AcGe::kNurbCurve3d || AcGeSplineEnt3d::isKindOf(entityType);
    }
    AcGeNurbCurve3d* copy() const override { return new AcGeNurbCurve3d(*this); }
    AcGeNurbCurve3d& transformBy(const AcGeMatrix3d& matrix) override;
    AcGeNurbCurve3d& reverseParam() override;
    void getInterval(AcGeInterval& interval) const override;
    bool setInterval(const AcGeInterval& range) override;
    // Outside its interval the curve is continued with its first or last piece.
    AcGePoint3d evaluate(double parameter, int derivativeCount, AcGeVector3d* derivatives) const override;
    double closestParameter(const AcGePoint3d& point) const override;
    std::vector<double> sampleParameters(double from, double to) const override;
    bool isPeriodic(double& period) const override;

    // Whether degree, knots, points and weights fit together; another curve evaluates to the origin.
    bool isValid() const;
    int degree() const override { return m_degree; }
    bool isRational() const { return !m_weights.isEmpty(); }
    int numKnots() const { return m_knots.length(); }
    int numWeights() const { return m_weights.length(); }
    const AcGeKnotVector& knots() const { return m_knots; }
    double knotAt(int index) const { return m_knots[index]; }
    double weightAt(int index) const { return m_weights.isEmpty() ? 1.0 : m_weights[index]; }
    bool getParamsOfC1Discontinuity(AcGeDoubleArray& parameters,
                                    const AcGeTol& tolerance = AcGeContext::gTol) const;
    AcGeNurbCurve3d& setControlPointAt(int index, const AcGePoint3d& point) {
        m_points[index] = point;
        return *this;
    }
    // Adds a knot without changing the curve (Boehm's algorithm); only within the interval.
    AcGeNurbCurve3d& insertKnot(double parameter);
    // Raises the degree without changing the curve.
    AcGeNurbCurve3d& elevateDegree(int plusDegree);
    // Appends a curve that begins where this one ends; its parameters go on from this one's end.
    AcGeNurbCurve3d& joinWith(const AcGeNurbCurve3d& curve);
    // The blossom of the piece between the knots span and span + 1: what control points are values of. The
    // arguments are as many as the degree.
    host::WeightedPoint blossom(int span, const double* arguments) const;
    void getDefinitionData(int& degree, bool& rational, bool& periodic, AcGeKnotVector& knots,
                           AcGePoint3dArray& controlPoints, AcGeDoubleArray& weights) const;

private:
    bool hasShape() const; // the counts fit together
    int spanOf(double parameter) const;
    host::WeightedPoint weightedAt(int index) const { return {m_points[index], weightAt(index)}; }

    int m_degree = 0;
    AcGeKnotVector m_knots;
    AcGeDoubleArray m_weights;
    bool m_isPeriodic = false;
};
