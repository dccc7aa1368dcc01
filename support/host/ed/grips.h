// The grips of the pick-first set: points of entities that can be taken and moved.
#pragma once

#include "host/db/db.h"

#include <span>
#include <vector>

namespace host {

struct EntityGrip {
    AcDbObjectId entity;
    int index = 0;     ///< for AcDbEntity::moveGripPointsAt
    AcGePoint3d point; ///< world
};

std::vector<EntityGrip> gripsOf(AcDbObjectId entity);

/// The grips that are shown in the current document: those of the given entities.
void showGrips(std::span<const AcDbObjectId> entities);
const std::vector<EntityGrip>& shownGrips();
/// Every shown grip at this very point: they move together.
std::vector<EntityGrip> gripsAt(const AcGePoint3d& point);

/// The grips that the next GRIP_STRETCH moves; taken by it.
void setHotGrips(std::vector<EntityGrip> grips);
std::vector<EntityGrip> takeHotGrips();

} // namespace host
