// Properties that several kinds of entities have without a common interface.
#pragma once

#include "host/db/db.h"

#include <optional>

namespace host {

/// Nothing for kinds without a thickness.
std::optional<double> thicknessOf(const AcDbEntity& entity);
/// False for kinds without one. The entity is open for writing.
bool setThicknessOf(AcDbEntity& entity, double thickness);

/// Height over the XY plane, when all of the entity lies at one.
std::optional<double> elevationOf(const AcDbEntity& entity);

} // namespace host
