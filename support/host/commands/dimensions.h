// What the commands of dimensions share.
#pragma once

#include "host/db/db.h"

namespace host {

/// Gives a dimension made in UCS coordinates the current style and properties, appends it to the current
/// space, closes it, and tells what it measures.
void appendDimension(AcDbDimension* dimension);

} // namespace host
