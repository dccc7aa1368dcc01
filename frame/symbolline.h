// The polyline of a map symbol, drawn segment by segment.
#pragma once

#include "restools/entity.h"

/// Lets the user draw segments of a width (drawing units), joins them to one 2D polyline, fits a spline to it
/// and lets its linetype run through its vertices. Null when nothing was drawn or drawing was cancelled,
/// which erases what was there.
CEntity DrawSymbolLine(double width);
