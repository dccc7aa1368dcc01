// Objects as result lists, as LISP and modules see them.
#pragma once

#include "host/db/db.h"

namespace host {

/// The object's groups with -1 in front, angles in radians; with `applications` (wildcards) its extended data
/// behind -3. Null for one that is erased or not there.
ResbufList objectList(AcDbObjectId id, const resbuf* applications = nullptr);

/// The next main entity of the drawing after the given one (null: the first): model space, then paper space.
AcDbObjectId nextMainEntity(AcDbObjectId after);
AcDbObjectId lastMainEntity();

} // namespace host
