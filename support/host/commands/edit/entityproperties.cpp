// Properties that several kinds of entities have without a common interface.
#include "host/commands/edit/entityproperties.h"

#include <cmath>

namespace host {
namespace {

/// Calls visit(kind) for the first of the kinds that the entity is.
template <class... Kinds, class Entity, class Visit>
bool visitKind(Entity& entity, Visit&& visit) {
    const auto attempt = [&](auto* kind) {
        if (kind != nullptr) {
            visit(*kind);
        }
        return kind != nullptr;
    };
    return (attempt(Kinds::cast(&entity)) || ...);
}

template <class Entity, class Visit>
bool visitThick(Entity& entity, Visit&& visit) {
    return visitKind<AcDbLine, AcDbCircle, AcDbArc, AcDbPolyline, AcDb2dPolyline, AcDbText, AcDbTrace,
                     AcDbSolid, AcDbPoint>(entity, std::forward<Visit>(visit));
}

} // namespace

std::optional<double> thicknessOf(const AcDbEntity& entity) {
    std::optional<double> thickness;
    visitThick(entity, [&](const auto& kind) { thickness = kind.thickness(); });
    return thickness;
}

bool setThicknessOf(AcDbEntity& entity, double thickness) {
    return visitThick(entity, [&](auto& kind) { kind.setThickness(thickness); });
}

std::optional<double> elevationOf(const AcDbEntity& entity) {
    AcDbExtents extents;
    if (entity.getGeomExtents(extents) != Acad::eOk ||
        std::fabs(extents.maxPoint().z - extents.minPoint().z) >
            1e-8 * (1.0 + std::fabs(extents.minPoint().z))) {
        return std::nullopt;
    }
    return extents.minPoint().z;
}

} // namespace host
