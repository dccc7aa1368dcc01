// PEDIT of a polyline in space.
#pragma once

#include "host/db/db.h"

namespace host {

/// The options' dialogue, until the user leaves it.
void edit3dPolyline(AcDbObjectId id);

} // namespace host
