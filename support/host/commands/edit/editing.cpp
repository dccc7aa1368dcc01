// Copying, transforming and replacing entities; polylines as paths.
#include "host/commands/edit/editing.h"

#include "host/db/entities/fields.h"
#include "host/db/entities/transforms.h"

#include <algorithm>
#include <cmath>

namespace host {

UnlockedLayers::~UnlockedLayers() {
    for (const AcDbObjectId id : mLocked) {
        if (const Opened<AcDbLayerTableRecord> layer(id, AcDb::kForWrite); layer) {
            layer->setIsLocked(true);
        }
    }
}

void UnlockedLayers::unlock(AcDbObjectId id) {
    const auto* record = peek<AcDbLayerTableRecord>(id);
    if (record == nullptr || !record->isLocked()) {
        return;
    }
    if (const Opened<AcDbLayerTableRecord> layer(id, AcDb::kForWrite); layer) {
        layer->setIsLocked(false);
        mLocked.push_back(id);
    }
}

std::vector<AcDbObjectId> copyEntities(const AcDbObjectIdArray& ids, AcDbObjectId owner) {
    AcDbDatabase* database = owner.database();
    std::vector<AcDbObjectId> copies;
    AcDbIdMapping mapping;
    if (database == nullptr || database->deepCloneObjects(ids, owner, mapping) != Acad::eOk) {
        return copies;
    }
    for (const AcDbIdPair& pair : mapping.pairs()) {
        if (pair.isPrimary()) {
            copies.push_back(pair.value());
        }
    }
    return copies;
}

int transformEntities(const AcDbObjectIdArray& ids, const AcGeMatrix3d& transform) {
    int refused = 0;
    for (const AcDbObjectId id : ids) {
        const Opened<AcDbEntity> entity(id, AcDb::kForWrite);
        if (!entity || entity->transformBy(transform) != Acad::eOk) {
            ++refused;
        }
    }
    return refused;
}

int placeCopies(const std::vector<AcDbObjectId>& copies, const AcGeMatrix3d& transform) {
    UnlockedLayers unlocked;
    int refused = 0;
    for (const AcDbObjectId id : copies) {
        const auto* copy = peek<AcDbEntity>(id);
        unlocked.unlock(copy != nullptr ? copy->layerId() : AcDbObjectId());
        const Opened<AcDbEntity> entity(id, AcDb::kForWrite);
        if (entity && entity->transformBy(transform) != Acad::eOk) {
            entity->erase(); // a copy that can't go to its place is none
            ++refused;
        }
    }
    return refused;
}

int copyTransformed(const AcDbObjectIdArray& ids, AcDbObjectId owner, const AcGeMatrix3d& transform) {
    return placeCopies(copyEntities(ids, owner), transform);
}

bool replaceEntity(AcDbObjectId id, std::unique_ptr<AcDbEntity> replacement) {
    AcDbEntity* old = nullptr;
    if (acdbOpenObject(old, id, AcDb::kForWrite) != Acad::eOk) {
        return false;
    }
    if (SubentityList* parts = old->subentities()) {
        parts->erase(true);
    }
    if (old->handOverTo(replacement.get()) != Acad::eOk) {
        old->close();
        return false;
    }
    delete old;
    replacement.release()->close();
    return true;
}

AcDbObjectId appendTo(AcDbObjectId block, std::unique_ptr<AcDbEntity> entity) {
    const Opened<AcDbBlockTableRecord> space(block, AcDb::kForWrite);
    AcDbObjectId id;
    if (!space || space->appendAcDbEntity(id, entity.get()) != Acad::eOk) {
        return {};
    }
    entity.release()->close();
    return id;
}

bool eraseEntity(AcDbObjectId id) {
    const Opened<AcDbEntity> entity(id, AcDb::kForWrite);
    return entity && entity->erase() == Acad::eOk;
}

AcGePoint3d FlatPath::toWorld(const AcGePoint2d& point) const {
    return host::toWorld(normal, to3d(point, elevation));
}

AcGePoint2d FlatPath::toPlane(const AcGePoint3d& point) const {
    return to2d(toObject(normal, point));
}

std::optional<FlatPath> flatPathOf(const AcDbEntity& entity) {
    if (const auto* light = AcDbPolyline::cast(&entity)) {
        // Member by member: an object that is not open throws, half a braced list is cleaned up twice by
        // GCC 12.
        FlatPath path;
        path.normal = light->normal();
        path.elevation = light->elevation();
        path.shape.path = light->bulgePath();
        if (light->hasWidth()) {
            for (int i = 0; i < path.shape.path.segmentCount(); ++i) {
                SegmentWidths& widths = path.shape.widths.emplace_back();
                light->getWidthsAt(static_cast<unsigned>(i), widths.start, widths.end);
            }
        }
        return path;
    }
    if (const auto* heavy = AcDb2dPolyline::cast(&entity)) {
        FlatPath path;
        path.normal = heavy->normal();
        path.elevation = heavy->elevation();
        path.shape = heavy->shape();
        return path;
    }
    return std::nullopt;
}

namespace {

/// The path of a line or an arc between two points in the plane; nothing when it is not in such a plane.
std::optional<FlatPath> segmentIn(const AcGeVector3d& normal, const AcGePoint3d& start,
                                  const AcGePoint3d& end, double bulge) {
    const AcGePoint3d from = toObject(normal, start);
    const AcGePoint3d to = toObject(normal, end);
    if (std::fabs(from.z - to.z) > 1e-8 * (1.0 + std::fabs(from.z))) {
        return std::nullopt;
    }
    FlatPath path;
    path.normal = normal;
    path.elevation = from.z;
    path.shape.path.add(to2d(from), bulge);
    path.shape.path.add(to2d(to));
    return path;
}

} // namespace

std::optional<FlatPath> flatPathIn(const AcDbEntity& entity, const AcGeVector3d& normal) {
    if (const auto* line = AcDbLine::cast(&entity)) {
        return segmentIn(normal, line->startPoint(), line->endPoint(), 0.0);
    }
    if (const auto* arc = AcDbArc::cast(&entity)) {
        if (!arc->normal().isParallelTo(normal)) {
            return std::nullopt;
        }
        AcGePoint3d start;
        AcGePoint3d end;
        arc->getStartPoint(start);
        arc->getEndPoint(end);
        const double bulge = bulgeOfSweep(arc->totalAngle());
        return segmentIn(normal, start, end, arc->normal().dotProduct(normal) > 0.0 ? bulge : -bulge);
    }
    std::optional<FlatPath> path = flatPathOf(entity);
    return path && path->normal.isEqualTo(normal) ? path : std::nullopt;
}

void setFlatPath(AcDbEntity& polyline, const WidePath& shape) {
    if (auto* light = AcDbPolyline::cast(&polyline)) {
        light->setConstantWidth(0.0);
        light->setShape(shape);
    } else if (auto* heavy = AcDb2dPolyline::cast(&polyline)) {
        heavy->setPolyType(AcDb::k2dSimplePoly);
        heavy->setShape(shape);
    }
}

std::vector<std::unique_ptr<AcDbCurve>> ownCurves(const AcDbVoidPtrArray& curves) {
    std::vector<std::unique_ptr<AcDbCurve>> owned;
    for (void* curve : curves) {
        owned.emplace_back(static_cast<AcDbCurve*>(curve));
    }
    return owned;
}

} // namespace host
