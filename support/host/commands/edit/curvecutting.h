// Cutting curves at others and lengthening them to others: the geometry of TRIM, EXTEND, BREAK and LENGTHEN.
#pragma once

#include "host/db/db.h"

#include <memory>
#include <optional>
#include <vector>

namespace host {

using OwnedCurves = std::vector<std::unique_ptr<AcDbCurve>>;

/// Parameters of the curve, ascending, where an edge crosses it as seen along the plane's normal. With
/// `extendEdge` the edge goes on beyond its ends.
std::vector<double> crossingParameters(const AcDbCurve& curve, const AcDbEntity& edge, bool extendEdge,
                                       const AcGePlane& view);
/// Where a polyline crosses itself.
std::vector<double> selfCrossingParameters(const AcDbCurve& curve);

/// What is left of the curve without the part between two parameters: one or two new curves, of a closed
/// curve what runs from `to` around to `from`. Equal parameters divide an open curve and open a closed
/// polyline. Nothing when that is not possible.
std::optional<OwnedCurves> withoutPart(const AcDbCurve& curve, double from, double to);
/// The same for the part around a place that ends at the nearest cuts to both sides. Nothing when no cut
/// bounds it (or, for a closed curve, only one).
std::optional<OwnedCurves> withoutPartAround(const AcDbCurve& curve, double place, std::vector<double> cuts);

/// The nearest point beyond an end of an open curve where the lengthened curve meets an edge; nothing when
/// it never does.
std::optional<AcGePoint3d> meetingBeyond(const AcDbCurve& curve, bool atStart, const AcDbEntity& edge,
                                         bool extendEdge, const AcGePlane& view);
/// How far beyond the end of the curve a point on its continuation lies, in units of the end piece's own
/// parameter; nothing when it does not.
std::optional<double> reachBeyond(const AcDbCurve& curve, bool atStart, const AcGePoint3d& point);

/// The parameter of the point of the curve nearest to a point, as seen along the plane's normal.
std::optional<double> nearestParameter(const AcDbCurve& curve, const AcGePoint3d& point,
                                       const AcGeVector3d& direction);

/// Moves an end of an open curve along it, so that its length grows (or shrinks) to `length`. False when it
/// can't be.
bool setCurveLength(std::unique_ptr<AcDbCurve>& curve, bool atStart, double length);

} // namespace host
