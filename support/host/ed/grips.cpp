#include "host/ed/grips.h"

#include "host/ed/acdocman.h"
#include "host/ed/documentstate.h"

#include <algorithm>
#include <utility>

namespace host {

std::vector<EntityGrip> gripsOf(AcDbObjectId id) {
    std::vector<EntityGrip> grips;
    const auto* entity = peek<AcDbEntity>(id);
    if (entity == nullptr || isOnLockedLayer(*entity)) {
        return grips;
    }
    const ReadAccess access(*entity);
    AcGePoint3dArray points;
    AcDbIntArray snapModes;
    AcDbIntArray geometryIds;
    if (entity->getGripPoints(points, snapModes, geometryIds) == Acad::eOk) {
        for (int i = 0; i < points.length(); ++i) {
            grips.push_back({id, i, points[i]});
        }
    }
    return grips;
}

void showGrips(std::span<const AcDbObjectId> entities) {
    if (AcApDocument* document = curDoc()) {
        std::vector<EntityGrip>& shown = document->state().shownGrips;
        shown.clear();
        for (const AcDbObjectId id : entities) {
            const std::vector<EntityGrip> own = gripsOf(id);
            shown.insert(shown.end(), own.begin(), own.end());
        }
    }
}

const std::vector<EntityGrip>& shownGrips() {
    static const std::vector<EntityGrip> none;
    const AcApDocument* document = curDoc();
    return document != nullptr ? document->state().shownGrips : none;
}

std::vector<EntityGrip> gripsAt(const AcGePoint3d& point) {
    std::vector<EntityGrip> found;
    std::copy_if(shownGrips().begin(), shownGrips().end(), std::back_inserter(found),
                 [&](const EntityGrip& grip) { return grip.point.isEqualTo(point); });
    return found;
}

void setHotGrips(std::vector<EntityGrip> grips) {
    if (AcApDocument* document = curDoc()) {
        document->state().hotGrips = std::move(grips);
    }
}

std::vector<EntityGrip> takeHotGrips() {
    AcApDocument* document = curDoc();
    return document != nullptr ? std::exchange(document->state().hotGrips, {}) : std::vector<EntityGrip>();
}

} // namespace host
