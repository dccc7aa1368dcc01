// Joining of two light polylines that touch at an end.
#pragma once

#include "host/arx.h"

/// Joins two polylines whose ends touch within the global tolerance, keeping their arcs. `result` is replaced
/// by a copy of one of them, with its properties, to which the other is added; its widths stay unset.
/// `how` tells the kind of join: -1 none (the result is unchanged), 0 start to start, 1 start of the first at
/// the end of the second, 2 end to end, 3 end of the first at the start of the second.
/// Gives 1 for kinds above 0. Lines that only meet at their starts are joined too, but give 0, on which
/// callers that chain lines rely.
QDV_EXPORT int LinkTwoPolyline(AcDbPolyline& result, const AcDbPolyline& first, const AcDbPolyline& second,
                               int& how);
