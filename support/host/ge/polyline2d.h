// AcGePolyline2d: straight chords between points of the plane. A parameter is the index of a vertex plus the
// fraction of the chord after it.
#pragma once

#include "host/ge/curve2d.h"

class AcGePolyline2d : public AcGeCurve2d {
public:
    AcGePolyline2d() = default;
    explicit AcGePolyline2d(const AcGePoint2dArray& points) : m_points(points) {}

    AcGe::EntityId type() const override { return AcGe::kPolyline2d; }
    bool isKindOf(AcGe::EntityId entityType) const override {
        return entityType == AcGe::kPolyline2d || entityType == AcGe::kSplineEnt2d ||
               AcGeCurve2d::isKindOf(entityType);
    }
    AcGePolyline2d* copy() const override { return new AcGePolyline2d(*this); }
    AcGePolyline2d& transformBy(const AcGeMatrix2d& matrix) override;
    AcGePolyline2d& reverseParam() override;
    void getInterval(AcGeInterval& interval) const override;
    bool setInterval(const AcGeInterval& range) override;
    AcGePoint2d evaluate(double parameter, int derivativeCount, AcGeVector2d* derivatives) const override;
    double closestParameter(const AcGePoint2d& point) const override;
    double length(double from, double to, double tolerance = 1e-10) const override;
    std::vector<double> sampleParameters(double from, double to) const override;
    int numFitPoints() const { return m_points.length(); }
    AcGePoint2d fitPointAt(int index) const { return m_points[index]; }

private:
    AcGePoint2dArray m_points;
};
