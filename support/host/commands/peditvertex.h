// Editing of the vertices of one polyline, a mode of PEDIT.
#pragma once

#include "host/commands/edit/editpolyline.h"

#include <functional>

namespace host {

/// What the mode needs of the polyline it edits.
struct VertexEditing {
    EditPolyline& polyline;
    std::function<AcGePoint2d(const AcGePoint3d& world)> toPlane;
    std::function<AcGePoint3d(const AcGePoint2d&)> toWorld;
    /// Called after every change.
    std::function<void()> changed;
    /// Makes a second polyline of a part that was broken off.
    std::function<void(const EditPolyline&)> append;
};

/// Asks until the user leaves the mode. False when he cancelled.
bool editVertices(const VertexEditing& editing);

/// The segments from one vertex to another replaced by one straight segment.
void straighten(EditPolyline& polyline, std::size_t from, std::size_t to);
/// Takes out what lies between two vertices; what remains behind the second one of an open polyline comes
/// back, the rest stays. A closed polyline becomes open.
std::optional<EditPolyline> breakBetween(EditPolyline& polyline, std::size_t from, std::size_t to);

} // namespace host
