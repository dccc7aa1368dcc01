// Measuring references.
#include "host/db/referenceboxes.h"

#include "host/db/dbents.h"

#include <algorithm>
#include <cmath>
#include <optional>

namespace host {
namespace {

/// Beyond this many turns and scales nothing more is remembered.
constexpr std::size_t mostBoxes = 10000;

/// The box of a reference whose block has the given place in the world; empty when it shows nothing. Nothing
/// when no reference can lie so.
std::optional<AcDbExtents> boxOf(AcDbObjectId block, const AcGeMatrix3d& transform) {
    AcDbBlockReference probe(AcGePoint3d::kOrigin, block);
    if (probe.setBlockTransform(transform) != Acad::eOk) {
        return std::nullopt;
    }
    AcDbExtents extents;
    return probe.getGeomExtents(extents) == Acad::eOk ? extents : AcDbExtents();
}

} // namespace

Acad::ErrorStatus ReferenceBoxes::extents(const AcDbBlockReference& reference, AcDbExtents& extents) {
    AcGeMatrix3d transform = reference.blockTransform();
    const AcGeVector3d shift = transform.translation();
    transform.setTranslation(AcGeVector3d());
    Key key{reference.blockTableRecord().stub(), {}};
    for (unsigned row = 0; row < 3; ++row) {
        for (unsigned column = 0; column < 3; ++column) {
            key.axes[3 * row + column] = transform.entry[row][column];
        }
    }
    if (!std::all_of(key.axes.begin(), key.axes.end(), [](double value) { return std::isfinite(value); })) {
        return reference.getGeomExtents(extents);
    }
    if (mBoxes.size() > mostBoxes) {
        mBoxes.clear();
    }
    auto found = mBoxes.find(key);
    if (found == mBoxes.end()) {
        const std::optional<AcDbExtents> box = boxOf(reference.blockTableRecord(), transform);
        if (!box) {
            return reference.getGeomExtents(extents);
        }
        found = mBoxes.emplace(key, *box).first;
    }
    AcDbExtents box;
    if (!found->second.isEmpty()) {
        box.addPoint(found->second.minPoint() + shift);
        box.addPoint(found->second.maxPoint() + shift);
    }
    if (const SubentityList* attributes = reference.AcDbEntity::subentities()) {
        attributes->forEach<AcDbAttribute>([&](const AcDbAttribute& attribute) {
            AcDbExtents own;
            const ReadAccess access(attribute);
            if (!attribute.isInvisible() && attribute.getGeomExtents(own) == Acad::eOk) {
                box.addExt(own);
            }
        });
    }
    if (box.isEmpty()) {
        return Acad::eInvalidExtents;
    }
    extents = box;
    return Acad::eOk;
}

} // namespace host
