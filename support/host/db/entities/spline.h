// AcDbSpline: NURBS curves, given by control points or by points they run through.
#pragma once

#include "host/db/entities/spacecurve.h"

namespace host {

struct SplineData {
    AcGeNurbCurve3d curve; ///< world coordinates; without points while there is none
    AcGePoint3dArray fitPoints;
    AcGeVector3d startTangent; ///< of the fit data; zero where it is left open
    AcGeVector3d endTangent;
    AcGeVector3d normal; ///< of the curve's plane as a file gave it; zero when it gave none
    double knotTolerance = 1e-9;
    double controlTolerance = 1e-10;
    double fitTolerance = 1e-10;
    Adesk::Int16 flags = 0; ///< group 70 of files
};

} // namespace host

/// A NURBS curve of a degree up to 25. Its parameter is that of its knots. While it has fit data, its control
/// points follow from them: a cubic curve through the fit points.
class AcDbSpline : public host::SpaceCurve {
    ACRX_DECLARE_MEMBERS(AcDbSpline);

public:
    AcDbSpline() = default;
    /// Through the points; the tangents are directions, a zero one leaves the curve free there.
    AcDbSpline(const AcGePoint3dArray& fitPoints, const AcGeVector3d& startTangent,
               const AcGeVector3d& endTangent, int order = 4, double fitTolerance = 0.0);
    explicit AcDbSpline(const AcGePoint3dArray& fitPoints, int order = 4, double fitTolerance = 0.0);
    /// An ellipse or an arc of one, exactly.
    AcDbSpline(const AcGePoint3d& center, const AcGeVector3d& unitNormal, const AcGeVector3d& majorAxis,
               double radiusRatio, double startAngle = 0.0, double endAngle = host::twoPi);
    AcDbSpline(int degree, bool rational, bool closed, bool periodic, const AcGePoint3dArray& controlPoints,
               const AcGeDoubleArray& knots, const AcGeDoubleArray& weights, double controlPtTol = 0.0,
               double knotTol = 0.0);

    bool isNull() const;
    bool isRational() const;
    int degree() const;
    Acad::ErrorStatus elevateDegree(int newDegree);
    int numControlPoints() const;
    Acad::ErrorStatus getControlPointAt(int index, AcGePoint3d& point) const;
    /// Fit data go.
    Acad::ErrorStatus setControlPointAt(int index, const AcGePoint3d& point);
    double weightAt(int index) const;
    Acad::ErrorStatus setWeightAt(int index, double weight);
    Acad::ErrorStatus insertKnot(double parameter);
    int numFitPoints() const;
    Acad::ErrorStatus getFitPointAt(int index, AcGePoint3d& point) const;
    Acad::ErrorStatus setFitPointAt(int index, const AcGePoint3d& point);
    /// An index beyond the last appends.
    Acad::ErrorStatus insertFitPointAt(int index, const AcGePoint3d& point);
    Acad::ErrorStatus removeFitPointAt(int index);
    double fitTolerance() const;
    Acad::ErrorStatus setFitTol(double tolerance);
    /// eNotApplicable where neither tangent is given.
    Acad::ErrorStatus getFitTangents(AcGeVector3d& startTangent, AcGeVector3d& endTangent) const;
    Acad::ErrorStatus setFitTangents(const AcGeVector3d& startTangent, const AcGeVector3d& endTangent);
    bool hasFitData() const;
    Acad::ErrorStatus getFitData(AcGePoint3dArray& fitPoints, int& degree, double& fitTolerance,
                                 bool& tangentsExist, AcGeVector3d& startTangent,
                                 AcGeVector3d& endTangent) const;
    Acad::ErrorStatus setFitData(const AcGePoint3dArray& fitPoints, int degree, double fitTolerance,
                                 const AcGeVector3d& startTangent, const AcGeVector3d& endTangent);
    Acad::ErrorStatus purgeFitData();
    /// Computes the curve from the fit points anew.
    Acad::ErrorStatus updateFitData();
    Acad::ErrorStatus getNurbsData(int& degree, bool& rational, bool& closed, bool& periodic,
                                   AcGePoint3dArray& controlPoints, AcGeDoubleArray& knots,
                                   AcGeDoubleArray& weights, double& controlPtTol, double& knotTol) const;
    /// eInvalidInput, and unchanged, when the numbers do not make a curve.
    Acad::ErrorStatus setNurbsData(int degree, bool rational, bool closed, bool periodic,
                                   const AcGePoint3dArray& controlPoints, const AcGeDoubleArray& knots,
                                   const AcGeDoubleArray& weights, double controlPtTol = 0.0,
                                   double knotTol = 0.0);
    /// A new polyline whose chords follow the curve: a light one for a curve in a plane, a 3D one else.
    Acad::ErrorStatus toPolyline(AcDbCurve*& polyline) const;

    Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
    Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
    Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;
    Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;

    bool isClosed() const override;
    bool isPeriodic() const override;
    /// The new part is straight and goes on along the tangent.
    Acad::ErrorStatus extend(double parameter) override;
    Acad::ErrorStatus extend(bool extendStart, const AcGePoint3d& toPoint) override;
    Acad::ErrorStatus reverseCurve() override;

    const AcGeNurbCurve3d& curve() const { return m.curve; }
    /// Takes a curve whole; there are no fit data then.
    void setCurve(const AcGeNurbCurve3d& curve);

protected:
    bool isEmpty() const override { return m.curve.numControlPoints() == 0; }
    host::CurveView geometry() const override { return host::CurveView(m.curve); }
    AcGeNurbCurve3d asNurbs() const override { return m.curve; }
    std::unique_ptr<AcDbCurve> newPart(double from, double to) const override;
    AcGeVector3d subEcsNormal() const override;
    bool subCurvePieces(std::vector<host::CurvePiece>& pieces) const override;
    Acad::ErrorStatus subTransformBy(const AcGeMatrix3d& transform) override;
    /// The fit points, or without fit data the control points.
    Acad::ErrorStatus subGetGripPoints(AcGePoint3dArray& points, AcDbIntArray& snapModes,
                                       AcDbIntArray& geometryIds) const override;
    Acad::ErrorStatus subMoveGripPointsAt(const AcDbIntArray& indices, const AcGeVector3d& offset) override;
    bool subWorldDraw(AcGiWorldDraw* draw) override;
    std::string_view dxfSubclass(std::string_view marker) const override;
    bool takeDxfGroup(AcDbDxfFiler* filer, const host::DxfGroup& group, std::string_view subclass) override;
    Acad::ErrorStatus dxfGroupsRead(AcDbDxfFiler* filer) override;

private:
    /// Lists of a file under way.
    struct Reading {
        AcGeDoubleArray knots, weights;
        AcGePoint3dArray controlPoints;
        int degree = 3;
    };
    /// The curve through the fit points; false when they do not make one.
    bool fit(host::SplineData& data) const;
    Acad::ErrorStatus changeFit(const host::SplineData& data);
    /// Sets the bits of the flags that follow from the curve.
    static void updateFlags(host::SplineData& data);

    host::SplineData m;
    std::unique_ptr<Reading> mReading;
};
