// Building the indexes and following changes.
#include "host/db/spatialindex.h"

#include "host/db/dbdatabase.h"
#include "host/db/dbents.h"
#include "host/db/drawingsource.h"

#include <algorithm>
#include <utility>

namespace host {
namespace {

constexpr std::uint32_t none = ~std::uint32_t{0};
/// Entities changed since packing that are scanned one by one before the tree is packed anew.
constexpr std::size_t fewRecent = 4096;
constexpr std::size_t recentShare = 16;

/// The extents follow from a block definition, which may change by itself.
bool followsOthers(const AcDbEntity& entity) {
    const std::string& name = entity.dxfRecordName();
    return name == "INSERT" || name == "DIMENSION" || name == "ACAD_TABLE" || name == "MULTILEADER" ||
           name == "LEADER" || name == "TOLERANCE";
}

bool isInfinite(const AcDbEntity& entity) {
    return entity.dxfRecordName() == "XLINE" || entity.dxfRecordName() == "RAY";
}

/// Styles and definitions that entities take their size from.
bool sizesEntities(const AcDbObject& object) {
    const std::string& name = object.dxfRecordName();
    return name.ends_with("STYLE") || name.ends_with("DEF") || name.ends_with("DEFINITION");
}

Acad::ErrorStatus extentsOf(const AcDbEntity& entity, ReferenceBoxes& boxes, AcDbExtents& extents) {
    return entity.isA() == AcDbBlockReference::desc()
               ? boxes.extents(static_cast<const AcDbBlockReference&>(entity), extents)
               : entity.getGeomExtents(extents);
}

/// To the last digit.
bool isSame(const Box2d& a, const Box2d& b) {
    return a.minimum.x == b.minimum.x && a.minimum.y == b.minimum.y && a.maximum.x == b.maximum.x &&
           a.maximum.y == b.maximum.y;
}

} // namespace

void SpatialIndex::measure(Entry& entry, ReferenceBoxes& boxes) {
    const auto* entity = peek<AcDbEntity>(AcDbObjectId(entry.stub));
    entry.box = {};
    entry.isUnbounded = false;
    if (entity == nullptr) {
        return; // erased: it is measured when it comes back
    }
    const ReadAccess access(*entity);
    AcDbExtents extents;
    entry.layer = entity->layerId().stub();
    entry.isInvisible = entity->visibility() == AcDb::kInvisible;
    if (extentsOf(*entity, boxes, extents) != Acad::eOk) {
        entry.isUnbounded = isInfinite(*entity);
        if (entry.isUnbounded || drawnExtents(const_cast<AcDbEntity&>(*entity), extents) != Acad::eOk) {
            return; // without a box and nothing drawn: it can't be found by place
        }
    }
    const AcGePoint3d min = extents.minPoint();
    const AcGePoint3d max = extents.maxPoint();
    entry.box = {{min.x, min.y}, {max.x, max.y}};
    entry.minZ = min.z;
    entry.maxZ = max.z;
}

void SpatialIndex::build(const AcDbBlockTableRecord& block, ReferenceBoxes& boxes) {
    *this = SpatialIndex();
    grow(block, boxes);
    pack();
}

bool SpatialIndex::grow(const AcDbBlockTableRecord& block, ReferenceBoxes& boxes) {
    const std::vector<AcDbStub*>& stubs = block.entities();
    if (stubs.size() < mEntries.size() ||
        (!mEntries.empty() && stubs[mEntries.size() - 1] != mEntries.back().stub)) {
        return false;
    }
    mEntries.reserve(stubs.size());
    for (std::size_t i = mEntries.size(); i < stubs.size(); ++i) {
        const auto index = static_cast<std::uint32_t>(i);
        mHandlesAscend =
            mHandlesAscend && (mEntries.empty() || mEntries.back().stub->handle < stubs[i]->handle);
        // New entities have the greatest handles.
        if (!mByHandle.empty() && mByHandle.size() == i &&
            mEntries[mByHandle.back()].stub->handle < stubs[i]->handle) {
            mByHandle.push_back(index);
        }
        Entry& entry = mEntries.emplace_back();
        entry.stub = stubs[i];
        const auto* entity = peek<AcDbEntity>(AcDbObjectId(entry.stub), true);
        entry.isDependent = entity != nullptr && followsOthers(*entity);
        if (entry.isDependent) {
            mDependents.push_back(index);
        }
        measure(entry, boxes);
        entry.isRecent = true;
        mRecent.push_back(index);
    }
    return true;
}

std::uint32_t SpatialIndex::indexOf(const AcDbStub* stub) {
    const auto handleAt = [&](std::uint32_t index) { return mEntries[index].stub->handle; };
    if (mHandlesAscend) {
        const auto found = std::lower_bound(
            mEntries.begin(), mEntries.end(), stub->handle,
            [](const Entry& entry, Adesk::UInt64 handle) { return entry.stub->handle < handle; });
        return found != mEntries.end() && found->stub == stub
                   ? static_cast<std::uint32_t>(found - mEntries.begin())
                   : none;
    }
    if (mByHandle.size() != mEntries.size()) {
        mByHandle.resize(mEntries.size());
        for (std::uint32_t i = 0; i < mByHandle.size(); ++i) {
            mByHandle[i] = i;
        }
        std::sort(mByHandle.begin(), mByHandle.end(),
                  [&](std::uint32_t a, std::uint32_t b) { return handleAt(a) < handleAt(b); });
    }
    const auto found =
        std::lower_bound(mByHandle.begin(), mByHandle.end(), stub->handle,
                         [&](std::uint32_t index, Adesk::UInt64 handle) { return handleAt(index) < handle; });
    return found != mByHandle.end() && mEntries[*found].stub == stub ? *found : none;
}

void SpatialIndex::change(AcDbStub* stub, ReferenceBoxes& boxes) {
    if (const std::uint32_t index = indexOf(stub); index != none) {
        refresh(index, boxes);
    }
}

void SpatialIndex::changeDependents(ReferenceBoxes& boxes) {
    for (const std::uint32_t index : mDependents) {
        refresh(index, boxes);
    }
}

void SpatialIndex::refresh(std::uint32_t index, ReferenceBoxes& boxes) {
    Entry& entry = mEntries[index];
    const Box2d before = entry.box;
    measure(entry, boxes);
    if (entry.isInTree && isSame(entry.box, before)) {
        return;
    }
    entry.isInTree = false;
    if (!entry.isRecent) {
        entry.isRecent = true;
        mRecent.push_back(index);
    }
}

void SpatialIndex::keepPacked() {
    if (mRecent.size() - mAlwaysRecent > std::max(fewRecent, mEntries.size() / recentShare)) {
        pack();
    }
}

void SpatialIndex::pack() {
    std::vector<Box2d> boxes(mEntries.size());
    mRecent.clear();
    for (std::uint32_t i = 0; i < mEntries.size(); ++i) {
        Entry& entry = mEntries[i];
        boxes[i] = entry.box;
        entry.isInTree = !entry.box.isEmpty();
        entry.isRecent = entry.isUnbounded;
        if (entry.isRecent) {
            mRecent.push_back(i);
        }
    }
    mAlwaysRecent = mRecent.size();
    mTree = BoxIndex(boxes);
}

std::vector<Placed> SpatialIndex::search(const Box2d& box) const {
    std::vector<std::uint32_t> hits;
    mTree.search(box, [&](std::uint32_t index) {
        if (mEntries[index].isInTree) {
            hits.push_back(index);
        }
    });
    for (const std::uint32_t index : mRecent) {
        const Entry& entry = mEntries[index];
        if (entry.isUnbounded || (!entry.isInTree && entry.box.touches(box))) {
            hits.push_back(index);
        }
    }
    std::sort(hits.begin(), hits.end());
    std::vector<Placed> found;
    found.reserve(hits.size());
    for (const std::uint32_t index : hits) {
        const Entry& entry = mEntries[index];
        if (!entry.stub->erased) {
            found.push_back({entry.stub, entry.box});
        }
    }
    return found;
}

AcDbExtents SpatialIndex::extents(const std::unordered_set<AcDbStub*>& withoutLayers) const {
    AcDbExtents whole;
    for (const Entry& entry : mEntries) {
        if (entry.stub->erased || entry.isInvisible || entry.box.isEmpty() ||
            (!withoutLayers.empty() && withoutLayers.contains(entry.layer))) {
            continue;
        }
        whole.addPoint({entry.box.minimum.x, entry.box.minimum.y, entry.minZ});
        whole.addPoint({entry.box.maximum.x, entry.box.maximum.y, entry.maxZ});
    }
    return whole;
}

void SpatialIndexes::note(AcDbStub* stub) {
    mTouched.push_back(stub);
    // Beyond this measuring everything anew is no more work.
    constexpr std::size_t most = 1 << 16;
    if (mTouched.size() > most && mTouched.size() > 4 * mDatabase.impl().stubCount()) {
        mTouched.clear();
        mAllStale = true;
    }
}

void SpatialIndexes::settle(AcDbStub* stub) {
    constexpr int deepest = 16; // a vertex or attribute is one step below its entity
    for (int depth = 0; depth < deepest && stub != nullptr && stub->object != nullptr; ++depth) {
        const AcDbObject& object = *stub->object;
        if (AcDbEntity::cast(&object) == nullptr) {
            const auto* block = AcDbBlockTableRecord::cast(&object);
            mDependentsStale = mDependentsStale || (block != nullptr && !block->isLayout());
            mAllStale = mAllStale || (block == nullptr && sizesEntities(object));
            return;
        }
        AcDbStub* owner = object.ownerId().stub();
        const auto* block = owner != nullptr ? AcDbBlockTableRecord::cast(owner->object) : nullptr;
        if (block != nullptr) {
            if (const auto found = mIndexes.find(owner); found != mIndexes.end()) {
                found->second.change(stub, mBoxes);
            }
            mDependentsStale = mDependentsStale || !block->isLayout();
            return;
        }
        stub = owner;
    }
}

void SpatialIndexes::settle() {
    std::vector<AcDbStub*> touched = std::exchange(mTouched, {});
    std::sort(touched.begin(), touched.end());
    touched.erase(std::unique(touched.begin(), touched.end()), touched.end());
    for (AcDbStub* stub : touched) {
        if (mAllStale) {
            break;
        }
        settle(stub);
        if (stub->openForWrite) {
            mTouched.push_back(stub); // it may go on changing
        }
    }
    if (mAllStale) {
        mIndexes.clear();
        mTouched.clear();
        mAllStale = mDependentsStale = false;
        return;
    }
    if (std::exchange(mDependentsStale, false)) {
        mBoxes.clear();
        for (auto& [block, index] : mIndexes) {
            index.changeDependents(mBoxes);
        }
    }
    for (auto& [block, index] : mIndexes) {
        index.keepPacked();
    }
}

const SpatialIndex& SpatialIndexes::of(AcDbObjectId block) {
    static const SpatialIndex empty;
    const auto* record = peek<AcDbBlockTableRecord>(block);
    if (record == nullptr) {
        return empty;
    }
    settle();
    const auto [found, isNew] = mIndexes.try_emplace(block.stub());
    if (isNew || !found->second.grow(*record, mBoxes)) {
        found->second.build(*record, mBoxes);
    } else {
        found->second.keepPacked();
    }
    mBoxes.clear();
    return found->second;
}

} // namespace host
