// Header variables as files and comparisons show them.
#pragma once

#include "host/db/db.h"

namespace host {

/// The value of a variable; one that names a record and was never set gives the record that is used then.
HeaderValue effectiveHeaderValue(const AcDbDatabase& database, HeaderIndex index);

} // namespace host
