// The wall: command V7_Enclose, and the parts of its picture.
#pragma once

#include "entities/blockpline.h"

#include <memory>

/// Draws an enclosing wall: a heavy polyline that grows with the points picked, then piers on one side of it,
/// as short ticks or as a dashed line.
void DrawEnclose();

namespace enclose {

/// A question with the keywords that answer it besides a point.
struct PointQuestion {
    const ACHAR* prompt;
    const ACHAR* keywords;
};
/// What is asked when this many points of the wall were picked.
PointQuestion QuestionAfter(int points);

/// Whether the segment picked last is long enough for piers.
bool IsLongEnough(const AcDbCurve& wall);

/// The tick block whose pier points to the given side of a wall.
const ACHAR* TickBlockName(bool right);
/// Its pier: a heavy line from (0,1) to (0,0), owned by the caller; and the block's base point.
std::unique_ptr<CQDVBlockPline> NewTick();
AcGePoint3d TickOrigin(bool right);

/// The line of vertices that stands beside the wall on the given side; null when the wall has no offset
/// there. Its looks are not set.
std::unique_ptr<CQDVBlockPline> NewSideLine(const AcDbCurve& wall, bool right);

} // namespace enclose
