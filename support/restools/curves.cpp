// Sides of curves and places along them.
#include "restools/curves.h"

#include "restools/drawing.h"

#include <numbers>

bool IsRightOfCurve(const AcDbCurve& curve, const AcGePoint3d& point) {
    AcGePoint3d closest;
    AcGeVector3d direction;
    if (curve.getClosestPointTo(point, closest, false) != Acad::eOk ||
        curve.getFirstDeriv(closest, direction) != Acad::eOk) {
        return false;
    }
    return direction.angleTo(point - closest, -AcGeVector3d::kZAxis) < std::numbers::pi;
}

std::vector<CurvePlacement> PlacementsAlongCurve(const AcDbCurve& curve, double spacing) {
    std::vector<CurvePlacement> places;
    if (!(spacing > 0.0)) {
        return places;
    }
    for (int k = 0;; ++k) {
        // By parameter: where the curve crosses itself a point alone has no one direction.
        double parameter = 0.0;
        AcGePoint3d position;
        AcGeVector3d direction;
        if (curve.getParamAtDist(spacing * k, parameter) != Acad::eOk ||
            curve.getPointAtParam(parameter, position) != Acad::eOk ||
            curve.getFirstDeriv(parameter, direction) != Acad::eOk) {
            return places;
        }
        places.push_back({position, direction.angleTo(AcGeVector3d::kXAxis, -AcGeVector3d::kZAxis)});
    }
}

void InsertBlockAlongCurve(const AcDbCurve& curve, AcDbObjectId block, double spacing, const ACHAR* layer) {
    for (const CurvePlacement& place : PlacementsAlongCurve(curve, spacing)) {
        InsertBlock(block, place.position, AcGeScale3d(1.0, 1.0, 1.0), layer, place.rotation);
    }
}
