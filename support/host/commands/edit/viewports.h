// Viewports on the sheet of a layout.
#pragma once

#include "host/db/db.h"
#include "host/ge/box2d.h"

namespace host {

/// What can be printed of the current layout's sheet, in its units; the drawing's limits when it has no
/// paper.
Box2d printableArea(const AcDbDatabase& database);
/// A window of the current layout onto the whole of the model, from above. The first one of a layout brings
/// the viewport of the sheet itself along. Null when it can't be made.
AcDbObjectId addViewport(AcDbDatabase& database, const Box2d& frame);
/// Shows all of the model in a viewport that is open for writing.
void showWholeModel(AcDbViewport& viewport, AcDbDatabase& database);
/// Rows and columns of equal frames that fill the area, from the upper left one.
std::vector<Box2d> splitFrame(const Box2d& area, int rows, int columns);

} // namespace host
