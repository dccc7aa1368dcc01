// Closing and opening splines.
#pragma once

#include "host/db/db.h"

namespace host {

/// The curve comes to run smoothly from its end to its start, with new control points or, with fit data,
/// through its points. The spline is open for writing.
Acad::ErrorStatus closeSpline(AcDbSpline& spline);
/// The stretch from the last point to the first goes.
Acad::ErrorStatus openSpline(AcDbSpline& spline);

} // namespace host
