// Working in a layout's viewports: which one is active, and the view that belongs to it.
#pragma once

#include "host/db/db.h"

#include <vector>

namespace host {

/// The viewports of the current layout in drawing order, without the sheet's own; none in the model tab.
std::vector<AcDbObjectId> layoutViewports(const AcDbDatabase& database);
/// A number that none of them has.
Adesk::Int16 freeViewportNumber(const AcDbDatabase& database);
/// CVPORT: 1 on the sheet, 2 in the model tab.
int activeViewportNumber(const AcDbDatabase& database);

/// Makes a viewport of the current document's layout the one that is worked in; what it shows becomes the
/// current view. False for one that is off.
bool enterViewport(AcDbObjectId viewport);
/// Back to the sheet, as it was seen. False when no viewport was active.
bool leaveViewport();
/// The active viewport shows from now on what the current view shows, unless its view is locked.
void keepViewportView();

} // namespace host
