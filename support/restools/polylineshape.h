// The shapes of lines, circles and arcs as vertices of light polylines.
#pragma once

#include "host/arx.h"

// Each adds the curve's vertices behind those that the polyline has, with unset widths, as the curve is seen
// in plan: only x and y count, and the curve's normal is not looked at.

void AddShape(AcDbPolyline& polyline, const AcDbLine& line);
/// Two half circles, beginning in the west; closes the polyline.
void AddShape(AcDbPolyline& polyline, const AcDbCircle& circle);
void AddShape(AcDbPolyline& polyline, const AcDbArc& arc);

/// One vertex; its segment bends by the bulge.
void AddVertex(AcDbPolyline& polyline, const AcGePoint3d& point, double bulge = 0.0);
