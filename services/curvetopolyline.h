// Conversion of drawn curves to light polylines of one width.
#pragma once

#include "restools/arxobject.h"

/// Adds an arc's two vertices, as seen in plan, to an empty polyline; widths stay unset.
QDV_EXPORT void ConvertArc2Polyline(AcDbPolyline* polyline, const AcDbArc* arc);

/// Gives an entity, open for write, a width in drawing units. A light or 2D polyline keeps its place; lines,
/// arcs and circles, and for a positive width ellipses, are erased and a new light polyline with their
/// properties is put into the working database's model space. Only those made from ellipses, which are
/// chains of straight segments, are added to `ellipseResults`. Other entities stay as they are.
QDV_EXPORT void MultiplePEDIT(AcArray<AcDbObjectId>& ellipseResults, CArxEntity& entity, double width);

/// Fits curves through polylines (those that MultiplePEDIT made from ellipses) with the host's command.
QDV_EXPORT void MultiplePEDITAcDbEllipse(const AcArray<AcDbObjectId>& ids);
