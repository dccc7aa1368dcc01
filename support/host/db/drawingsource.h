// The database as what drawing needs to know of it: layers, linetypes and scales.
#pragma once

#include "host/db/dbentity.h"
#include "host/gi/looks.h"

#include <memory>

namespace host {

/// A source over a database; looks of layers and linetypes are taken when they are first asked for and stay
/// as they were then.
std::unique_ptr<DrawingSource> drawingSource(AcDbDatabase& database);

/// The box around what an entity draws.
Acad::ErrorStatus drawnExtents(AcDbEntity& entity, AcDbExtents& extents);

} // namespace host
