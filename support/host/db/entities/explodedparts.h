// Copies of entities under transforms that not all of them can keep their kind under.
#pragma once

#include "host/db/dbentity.h"

#include <memory>
#include <vector>

namespace host {

/// A transformed copy of an entity. One that cannot take the transform is replaced by its parts, `depth`
/// levels down; a curve of arcs by lines, arcs and curves through the pieces it is drawn with. The status
/// says when that does not help either.
Acad::ErrorStatus transformedParts(const AcDbEntity& entity, const AcGeMatrix3d& transform,
                                   std::vector<std::unique_ptr<AcDbEntity>>& parts, int depth);

} // namespace host
