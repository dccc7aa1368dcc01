// Measuring references.
#include "host/db/referenceboxes.h"

#include "host/db/dbents.h"

#include <algorithm>
#include <cmath>

namespace host {
namespace {

/// Beyond this many turns and scales nothing more is remembered.
constexpr std::size_t mostBoxes = 10000;

AcDbExtents boxOf(AcDbObjectId block, const AcGeMatrix3d& transform) {
    AcDbBlockReference probe(AcGePoint3d::kOrigin, block);
    AcDbExtents extents;
    if (probe.setBlockTransform(transform) != Acad::eOk || probe.getGeomExtents(extents) != Acad::eOk) {
        return {};
    }
    return extents;
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
    const auto [found, isNew] = mBoxes.try_emplace(key);
    if (isNew) {
        found->second = boxOf(reference.blockTableRecord(), transform);
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
