// A closed curve has its first control points once more at its end, over knots that go on evenly.
#include "host/commands/edit/editspline.h"

#include <algorithm>

namespace host {
namespace {

struct Nurbs {
    int degree = 3;
    bool rational = false;
    bool closed = false;
    bool periodic = false;
    AcGePoint3dArray points;
    AcGeDoubleArray knots;
    AcGeDoubleArray weights;
    double pointTolerance = 0.0;
    double knotTolerance = 0.0;

    explicit Nurbs(const AcDbSpline& spline) {
        spline.getNurbsData(degree, rational, closed, periodic, points, knots, weights, pointTolerance,
                            knotTolerance);
    }
    Acad::ErrorStatus put(AcDbSpline& spline) const {
        return spline.setNurbsData(degree, rational, periodic, periodic, points, knots, weights,
                                   pointTolerance, knotTolerance);
    }
};

Acad::ErrorStatus changeFitPoints(AcDbSpline& spline, bool closes) {
    AcGePoint3dArray points;
    int degree = 3;
    double tolerance = 0.0;
    bool tangents = false;
    AcGeVector3d start;
    AcGeVector3d end;
    spline.getFitData(points, degree, tolerance, tangents, start, end);
    if (closes) {
        points.append(AcGePoint3d(points.first()));
        return spline.setFitData(points, degree, tolerance, AcGeVector3d(), AcGeVector3d());
    }
    points.removeAt(points.length() - 1);
    return spline.setFitData(points, degree, tolerance, start, end);
}

/// The same point once more; the index itself where there is none.
int copyOf(const AcDbSpline& spline, int index) {
    const int around = spline.numControlPoints() - spline.degree();
    return !spline.isPeriodic()      ? index
           : index < spline.degree() ? index + around
           : index >= around         ? index - around
                                     : index;
}

} // namespace

Acad::ErrorStatus moveControlPoint(AcDbSpline& spline, int index, const AcGePoint3d& point) {
    const int copy = copyOf(spline, index);
    const Acad::ErrorStatus status = spline.setControlPointAt(index, point);
    return status == Acad::eOk && copy != index ? spline.setControlPointAt(copy, point) : status;
}

Acad::ErrorStatus weighControlPoint(AcDbSpline& spline, int index, double weight) {
    const int copy = copyOf(spline, index);
    const Acad::ErrorStatus status = spline.setWeightAt(index, weight);
    return status == Acad::eOk && copy != index ? spline.setWeightAt(copy, weight) : status;
}

Acad::ErrorStatus closeSpline(AcDbSpline& spline) {
    if (spline.isClosed()) {
        return Acad::eNotApplicable;
    }
    if (spline.hasFitData()) {
        return spline.numFitPoints() > 2 ? changeFitPoints(spline, true) : Acad::eNotApplicable;
    }
    Nurbs nurbs(spline);
    if (nurbs.points.length() <= nurbs.degree) {
        return Acad::eNotApplicable;
    }
    for (int i = 0; i < nurbs.degree; ++i) {
        nurbs.points.append(AcGePoint3d(nurbs.points[i]));
        if (nurbs.rational) {
            nurbs.weights.append(double(nurbs.weights[i]));
        }
    }
    nurbs.knots.setLogicalLength(0);
    for (int i = 0; i <= nurbs.points.length() + nurbs.degree; ++i) {
        nurbs.knots.append(i);
    }
    nurbs.periodic = true;
    return nurbs.put(spline);
}

Acad::ErrorStatus openSpline(AcDbSpline& spline) {
    if (!spline.isClosed()) {
        return Acad::eNotApplicable;
    }
    if (spline.hasFitData()) {
        return spline.numFitPoints() > 3 ? changeFitPoints(spline, false) : Acad::eNotApplicable;
    }
    Nurbs nurbs(spline);
    const int removed = nurbs.periodic ? nurbs.degree : 1;
    const int count = nurbs.points.length() - removed;
    if (count <= nurbs.degree) {
        return Acad::eNotApplicable;
    }
    nurbs.points.setLogicalLength(count);
    nurbs.weights.setLogicalLength(nurbs.rational ? count : 0);
    // Clamped at both ends, with even knots between.
    nurbs.knots.setLogicalLength(0);
    for (int i = 0; i <= count + nurbs.degree; ++i) {
        nurbs.knots.append(std::clamp(i - nurbs.degree, 0, count - nurbs.degree));
    }
    nurbs.periodic = false;
    return nurbs.put(spline);
}

} // namespace host
