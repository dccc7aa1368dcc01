// Parts of a drawing on their way to another place or drawing: a drawing of their own, with all they are made
// of, whose insertion base is the base point and whose UCS is the one they were taken in.
#pragma once

#include "host/db/db.h"

#include <memory>
#include <string>

namespace host {

/// The corner at the least X and Y, in world coordinates, of what the entities take up in the UCS.
AcGePoint3d lowerLeftOf(const AcDbObjectIdArray& entities, const AcGeMatrix3d& ucs);
/// `base` in world coordinates. Null when the entities can't be copied.
std::shared_ptr<AcDbDatabase> makeClip(AcDbDatabase& drawing, const AcDbObjectIdArray& entities,
                                       const AcGePoint3d& base);
AcDbObjectIdArray entitiesOf(const AcDbDatabase& clip);

/// From the clip's world to that of a drawing with the UCS, where its base comes to the point (world).
AcGeMatrix3d clipPlacing(const AcDbDatabase& clip, const AcGeMatrix3d& ucs, const AcGePoint3d& point);
/// Copies the clip's entities into a block under a transform. Definitions of the drawing win over those of
/// the clip. Gives how many could not be transformed, and are not there.
int pasteClip(AcDbDatabase& clip, AcDbObjectId block, const AcGeMatrix3d& placing);
/// Makes the clip a block with a name of its own, and gives a reference to it that stands where the clip was,
/// in no drawing yet. Null when it can't be made.
std::unique_ptr<AcDbEntity> blockOfClip(AcDbDatabase& clip, AcDbDatabase& drawing);

/// Plain text as the contents of a multi-line text: what would mean a code there stands for itself. Line ends
/// at the end are dropped.
std::wstring mtextContents(std::wstring_view plain);

} // namespace host
