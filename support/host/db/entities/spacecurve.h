// The curve interface of entities that are a single curve of the geometry interface: ellipses, splines, 3D
// polylines. Parameters, lengths, derivatives and parts are those of that curve.
#pragma once

#include "host/db/dbentity.h"

#include <memory>
#include <utility>

namespace host {

/// A geometric curve held by an entity, or made for the moment.
class CurveView {
public:
    explicit CurveView(const AcGeCurve3d& held) : mCurve(&held) {}
    explicit CurveView(std::unique_ptr<AcGeCurve3d> own) : mOwn(std::move(own)), mCurve(mOwn.get()) {}
    const AcGeCurve3d& operator*() const { return *mCurve; }
    const AcGeCurve3d* operator->() const { return mCurve; }

private:
    std::unique_ptr<AcGeCurve3d> mOwn;
    const AcGeCurve3d* mCurve;
};

class SpaceCurve : public AcDbCurve {
public:
    using AcDbCurve::getClosestPointTo;
    using AcDbCurve::getFirstDeriv;
    using AcDbCurve::getSecondDeriv;
    using AcDbCurve::getSplitCurves;
    Acad::ErrorStatus getStartParam(double& parameter) const override;
    Acad::ErrorStatus getEndParam(double& parameter) const override;
    Acad::ErrorStatus getPointAtParam(double parameter, AcGePoint3d& point) const override;
    Acad::ErrorStatus getParamAtPoint(const AcGePoint3d& point, double& parameter) const override;
    Acad::ErrorStatus getDistAtParam(double parameter, double& distance) const override;
    Acad::ErrorStatus getParamAtDist(double distance, double& parameter) const override;
    Acad::ErrorStatus getFirstDeriv(double parameter, AcGeVector3d& derivative) const override;
    Acad::ErrorStatus getSecondDeriv(double parameter, AcGeVector3d& derivative) const override;
    /// Parts between the parameters, given in any order. A closed curve is opened at the first.
    Acad::ErrorStatus getSplitCurves(const AcGeDoubleArray& parameters,
                                     AcDbVoidPtrArray& pieces) const override;
    /// New splines at the distance in the curve's plane; eNotApplicable for a curve without one.
    Acad::ErrorStatus getOffsetCurves(double distance, AcDbVoidPtrArray& curves) const override;
    Acad::ErrorStatus getOffsetCurvesGivenPlaneNormal(const AcGeVector3d& normal, double distance,
                                                      AcDbVoidPtrArray& curves) const;
    /// Enclosed by the curve, and by the straight line between its ends where it is open; eNotApplicable for
    /// a curve without a plane.
    Acad::ErrorStatus getArea(double& area) const override;
    Acad::ErrorStatus getAcGeCurve(AcGeCurve3d*& curve) const override;
    Acad::ErrorStatus getPlane(AcGePlane& plane, AcDb::Planarity& planarity) const override;
    bool isPlanar() const override;

protected:
    virtual CurveView geometry() const = 0;
    /// The same curve as NURBS; its parameters may be others.
    virtual AcGeNurbCurve3d asNurbs() const = 0;
    /// There is nothing to evaluate.
    virtual bool isEmpty() const { return false; }
    /// A curve of the same kind and properties that runs over a part of this one; of a closed curve `to` may
    /// lie beyond the end, as far as it goes on there.
    virtual std::unique_ptr<AcDbCurve> newPart(double from, double to) const = 0;
    /// Ends and the middle are those of the whole curve.
    Acad::ErrorStatus subGetOsnapPoints(AcDb::OsnapMode mode, Adesk::GsMarker marker, const AcGePoint3d& pick,
                                        const AcGePoint3d& last, const AcGeMatrix3d& view,
                                        AcGePoint3dArray& points, AcDbIntArray& geometryIds) const override;
    /// Puts the parameter into the curve's range when it is there within the slack.
    bool inRange(double& parameter) const;
};

} // namespace host
