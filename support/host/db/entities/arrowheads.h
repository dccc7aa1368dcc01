// Arrowheads of dimensions and leaders: the filled arrow drawn directly, the standard arrow blocks and any
// block of the drawing.
#pragma once

#include "host/db/dbsymtb.h"

namespace host {

/// The block of a standard arrow (".", "_Dot", "_ArchTick", ...; with or without the underscore), made when
/// the drawing lacks it; a block of the drawing by its name else. Null for the filled arrow ("" or "."), and
/// for a name of nothing.
AcDbObjectId arrowBlock(AcDbDatabase& database, std::wstring_view name);
/// Whether the line goes on to the tip, through the arrow.
bool arrowKeepsLine(AcDbObjectId block);
/// The block shows nothing.
bool isNoArrow(AcDbObjectId block);
/// Name of a standard arrow; empty for other blocks.
std::wstring_view standardArrowName(AcDbObjectId block);

/// The arrow with its tip at a point of the XY plane, pointing in a direction; `block` null for the filled
/// one.
std::unique_ptr<AcDbEntity> makeArrow(AcDbObjectId block, const AcGePoint3d& tip, double angle, double size);

} // namespace host
