// What editing commands have in common: copying, transforming and replacing entities, and polylines of either
// kind as paths in their plane.
#pragma once

#include "host/db/db.h"

#include <memory>
#include <optional>
#include <vector>

namespace host {

/// Layers that are locked can be worked on while in scope.
class UnlockedLayers {
public:
    UnlockedLayers() = default;
    ~UnlockedLayers();
    UnlockedLayers(const UnlockedLayers&) = delete;
    UnlockedLayers& operator=(const UnlockedLayers&) = delete;
    void unlock(AcDbObjectId layer);

private:
    std::vector<AcDbObjectId> mLocked;
};

/// Copies of entities beside them in the same block, in the same order.
std::vector<AcDbObjectId> copyEntities(const AcDbObjectIdArray& ids, AcDbObjectId owner);
/// Transforms each; gives how many could not be (locked, or not possible for the kind).
int transformEntities(const AcDbObjectIdArray& ids, const AcGeMatrix3d& transform);
/// Transforms copies just made, those on locked layers too. One that can't be transformed is taken back;
/// gives how many.
int placeCopies(const std::vector<AcDbObjectId>& copies, const AcGeMatrix3d& transform);
/// Copies under a transform into the block. A copy that can't be transformed is taken back; gives how many.
int copyTransformed(const AcDbObjectIdArray& ids, AcDbObjectId owner, const AcGeMatrix3d& transform);

/// Puts a new entity into the place of another, with handle, extended data and place in the drawing order.
/// False when the old one can't be opened for writing.
bool replaceEntity(AcDbObjectId id, std::unique_ptr<AcDbEntity> replacement);
/// Appends to the block; null when it can't be opened.
AcDbObjectId appendTo(AcDbObjectId block, std::unique_ptr<AcDbEntity> entity);
bool eraseEntity(AcDbObjectId id);

/// The lines and arcs a polyline of either kind is drawn with, in its plane.
struct FlatPath {
    WidePath shape;
    AcGeVector3d normal = AcGeVector3d::kZAxis;
    double elevation = 0.0;

    AcGePoint3d toWorld(const AcGePoint2d& point) const;
    AcGePoint2d toPlane(const AcGePoint3d& point) const;
};
/// Of a polyline; nothing for other entities.
std::optional<FlatPath> flatPathOf(const AcDbEntity& entity);
/// Of a polyline, a line or an arc, in the plane with this normal when it lies in one; the elevation is the
/// entity's own. Nothing for others.
std::optional<FlatPath> flatPathIn(const AcDbEntity& entity, const AcGeVector3d& normal);
/// Gives a polyline that is open for writing a new shape.
void setFlatPath(AcDbEntity& polyline, const WidePath& shape);

/// Owning list of the curves that a curve operation hands out.
std::vector<std::unique_ptr<AcDbCurve>> ownCurves(const AcDbVoidPtrArray& curves);

} // namespace host
