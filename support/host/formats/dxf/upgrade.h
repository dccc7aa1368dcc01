// What files before release 13 lack for being written as a new one: subclass markers in records the host only
// keeps, and references by handle in dimension styles.
#pragma once

#include "host/db/db.h"

namespace host::dxf {

/// Brings the kept records of a drawing read from release 12 or before to the form of later releases.
void upgradeFromRelease12(AcDbDatabase& database);

/// Groups of an entity without markers, with the markers that later releases have.
GroupList withMarkers(const std::string& recordName, const GroupList& groups);

} // namespace host::dxf
