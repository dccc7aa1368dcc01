// Closing and opening splines.
#pragma once

#include "host/db/db.h"

namespace host {

/// The curve comes to run smoothly from its end to its start, with new control points or, with fit data,
/// through its points. The spline is open for writing.
Acad::ErrorStatus closeSpline(AcDbSpline& spline);
/// The stretch from the last point to the first goes.
Acad::ErrorStatus openSpline(AcDbSpline& spline);

/// Moves a control point; of a curve that closes on itself, its copy beyond the end too.
Acad::ErrorStatus moveControlPoint(AcDbSpline& spline, int index, const AcGePoint3d& point);
Acad::ErrorStatus weighControlPoint(AcDbSpline& spline, int index, double weight);

} // namespace host
