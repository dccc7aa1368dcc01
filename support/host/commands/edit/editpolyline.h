// A polyline as PEDIT works on it: its own vertices, apart from those that fitting adds, and how it is
// fitted.
#pragma once

#include "host/db/db.h"

#include <optional>
#include <vector>

namespace host {

struct EditVertex {
    AcGePoint2d point; ///< in the polyline's plane
    double bulge = 0.0;
    SegmentWidths widths;
    std::optional<double> tangent; ///< direction for fitting, radians

    bool operator==(const EditVertex&) const = default;
};

struct EditPolyline {
    std::vector<EditVertex> vertices;
    bool closed = false;
    bool linetypeGeneration = false;
    AcDb::Poly2dType fit = AcDb::k2dSimplePoly;
    int splineSegments = 8; ///< lines between two vertices of a spline frame; below zero they are fitted

    int segmentCount() const {
        const int count = static_cast<int>(vertices.size());
        return count < 2 ? 0 : count - (closed ? 0 : 1);
    }
    WidePath path() const;
    void setPath(const WidePath& path);
    bool isFitted() const { return fit != AcDb::k2dSimplePoly; }
    bool isSpline() const { return fit == AcDb::k2dQuadSplinePoly || fit == AcDb::k2dCubicSplinePoly; }
    void reverse();
    /// All widths.
    void setWidth(double width);
    /// Straight segments, no fitting.
    void decurve();
};

/// Nothing for what is no polyline in a plane.
std::optional<EditPolyline> loadPolyline(const AcDbEntity& entity);

/// Writes it back. A light polyline that is fitted is replaced by one with vertices of their own, and becomes
/// light again when it is no longer fitted and `lightWhenPlain`. False when it can't be opened for writing.
bool storePolyline(AcDbObjectId id, const EditPolyline& polyline, bool lightWhenPlain);

} // namespace host
