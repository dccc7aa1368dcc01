// Questions about curves that several map symbols ask: on which side a point lies, and where blocks stand
// along the curve. World coordinates.
#pragma once

#include "host/arx.h"

#include <vector>

/// Whether the point lies right of the curve: the angle from the curve's direction at its closest point to
/// the vector toward the point, measured about the negative Z axis, is less than pi. A point on the curve
/// counts as right; one straight behind its start or before its end as left and right by that rule.
bool IsRightOfCurve(const AcDbCurve& curve, const AcGePoint3d& point);

/// A place on a curve: the point, and the direction there as an angle from the X axis, counterclockwise, in
/// radians.
struct CurvePlacement {
    AcGePoint3d position;
    double rotation = 0.0;
};

/// Places at the distances 0, spacing, 2 spacing, ... from the curve's start, up to its end.
std::vector<CurvePlacement> PlacementsAlongCurve(const AcDbCurve& curve, double spacing);

/// Inserts a block at those places, aligned with the curve, at scale 1.
void InsertBlockAlongCurve(const AcDbCurve& curve, AcDbObjectId block, double spacing, const ACHAR* layer);
