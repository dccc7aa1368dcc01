// Erasing that OOPS brings back.
#pragma once

#include "host/db/db.h"

namespace host {

/// Erases the entities of the current drawing; gives those that could be. OOPS brings them back.
AcDbObjectIdArray eraseForOops(const AcDbObjectIdArray& ids);

} // namespace host
