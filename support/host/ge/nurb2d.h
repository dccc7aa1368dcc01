// AcGeNurbCurve2d: NURBS curves of the plane, by the curve of space that lies in it.
#pragma once

#include "host/ge/curve2d.h"
#include "host/ge/nurb3d.h"

class AcGeNurbCurve2d : public AcGeCurve2d {
public:
    AcGeNurbCurve2d() = default;
    // The number of knots is the number of points plus the degree plus one.
    AcGeNurbCurve2d(int degree, const AcGeKnotVector& knots, const AcGePoint2dArray& controlPoints,
                    bool isPeriodic = false)
        : m_space(degree, knots, raised(controlPoints), isPeriodic) {}
    // Rational: one positive weight a point.
    AcGeNurbCurve2d(int degree, const AcGeKnotVector& knots, const AcGePoint2dArray& controlPoints,
                    const AcGeDoubleArray& weights, bool isPeriodic = false)
        : m_space(degree, knots, raised(controlPoints), weights, isPeriodic) {}
    // Through the points, as AcGeNurbCurve3d's.
    AcGeNurbCurve2d(const AcGePoint2dArray& fitPoints, const AcGeVector2d& startTangent,
                    const AcGeVector2d& endTangent, bool startTangentDefined = true,
                    bool endTangentDefined = true, const AcGeTol& fitTolerance = AcGeContext::gTol)
        : m_space(raised(fitPoints), {startTangent.x, startTangent.y, 0.0}, {endTangent.x, endTangent.y, 0.0},
                  startTangentDefined, endTangentDefined, fitTolerance) {}

    AcGe::EntityId type() const override { return AcGe::kNurbCurve2d; }
    bool isKindOf(AcGe::EntityId entityType) const override {
        return entityType == AcGe::kNurbCurve2d || entityType == AcGe::kSplineEnt2d ||
               AcGeCurve2d::isKindOf(entityType);
    }
    AcGeNurbCurve2d* copy() const override { return new AcGeNurbCurve2d(*this); }
    AcGeNurbCurve2d& transformBy(const AcGeMatrix2d& matrix) override;
    AcGeNurbCurve2d& reverseParam() override {
        m_space.reverseParam();
        return *this;
    }
    void getInterval(AcGeInterval& interval) const override { m_space.getInterval(interval); }
    bool setInterval(const AcGeInterval& range) override { return m_space.setInterval(range); }
    AcGePoint2d evaluate(double parameter, int derivativeCount, AcGeVector2d* derivatives) const override;
    double closestParameter(const AcGePoint2d& point) const override {
        return m_space.closestParameter({point.x, point.y, 0.0});
    }
    std::vector<double> sampleParameters(double from, double to) const override {
        return m_space.sampleParameters(from, to);
    }
    bool isPeriodic(double& period) const override { return m_space.isPeriodic(period); }

    bool isValid() const { return m_space.isValid(); }
    int degree() const { return m_space.degree(); }
    int order() const { return m_space.order(); }
    bool isRational() const { return m_space.isRational(); }
    int numKnots() const { return m_space.numKnots(); }
    int numControlPoints() const { return m_space.numControlPoints(); }
    int numWeights() const { return m_space.numWeights(); }
    const AcGeKnotVector& knots() const { return m_space.knots(); }
    double knotAt(int index) const { return m_space.knotAt(index); }
    double weightAt(int index) const { return m_space.weightAt(index); }
    AcGePoint2d controlPointAt(int index) const {
        const AcGePoint3d point = m_space.controlPointAt(index);
        return {point.x, point.y};
    }
    AcGeNurbCurve2d& setControlPointAt(int index, const AcGePoint2d& point) {
        m_space.setControlPointAt(index, {point.x, point.y, 0.0});
        return *this;
    }
    double startParam() const { return m_space.startParam(); }
    double endParam() const { return m_space.endParam(); }
    AcGePoint2d startPoint() const { return evalPoint(startParam()); }
    AcGePoint2d endPoint() const { return evalPoint(endParam()); }
    AcGeNurbCurve2d& insertKnot(double parameter) {
        m_space.insertKnot(parameter);
        return *this;
    }
    AcGeNurbCurve2d& elevateDegree(int plusDegree) {
        m_space.elevateDegree(plusDegree);
        return *this;
    }

private:
    static AcGePoint3dArray raised(const AcGePoint2dArray& points);

    AcGeNurbCurve3d m_space; // at z = 0
};
