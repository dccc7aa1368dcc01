// Where entities lie. For each block that was asked about there is an index of its entities' boxes: a packed
// tree built in one go, and beside it the few entities that changed since. Changes are only noted when they
// happen and looked at when the next question comes.
#pragma once

#include "host/db/referenceboxes.h"
#include "host/ge/box_index.h"

#include <cstdint>
#include <memory>
#include <unordered_map>
#include <unordered_set>
#include <vector>

class AcDbBlockTableRecord;

namespace host {

/// An entity and its box in the plan; empty for an infinite line.
struct Placed {
    AcDbStub* stub = nullptr;
    Box2d box;
};

/// The boxes of one block's entities. A search costs O(log n + hits), plus a scan over what changed since the
/// tree was packed: at most a sixteenth of all, or a few thousand.
class SpatialIndex {
public:
    /// Entities whose box in the plan touches the given one, and those without a box (infinite lines); in
    /// drawing order, without erased ones.
    std::vector<Placed> search(const Box2d& box) const;
    /// World box of what is drawn: without erased and invisible entities and those on the given layers.
    AcDbExtents extents(const std::unordered_set<AcDbStub*>& withoutLayers) const;
    std::size_t size() const { return mEntries.size(); }

private:
    friend class SpatialIndexes;

    struct Entry {
        AcDbStub* stub = nullptr;
        AcDbStub* layer = nullptr;
        Box2d box; ///< empty when there is none
        double minZ = 0.0, maxZ = 0.0;
        bool isUnbounded = false; ///< drawn, but without a box
        bool isDependent = false; ///< its box follows from other objects (a block's)
        bool isInvisible = false;
        bool isInTree = false; ///< where the tree has it
        bool isRecent = false; ///< in mRecent
    };

    void build(const AcDbBlockTableRecord& block, ReferenceBoxes& boxes);
    /// Takes in what was appended to the block; false when its entities were otherwise rearranged.
    bool grow(const AcDbBlockTableRecord& block, ReferenceBoxes& boxes);
    void change(AcDbStub* stub, ReferenceBoxes& boxes);
    void changeDependents(ReferenceBoxes& boxes);
    void refresh(std::uint32_t index, ReferenceBoxes& boxes);
    void keepPacked();
    void pack();
    std::uint32_t indexOf(const AcDbStub* stub);
    static void measure(Entry& entry, ReferenceBoxes& boxes);

    std::vector<Entry> mEntries; ///< in drawing order, as the block lists them
    BoxIndex mTree;              ///< items are positions in mEntries
    std::vector<std::uint32_t> mRecent;
    std::size_t mAlwaysRecent = 0; ///< of those, what no tree can hold
    std::vector<std::uint32_t> mDependents;
    std::vector<std::uint32_t> mByHandle; ///< only when handles are not in drawing order
    bool mHandlesAscend = true;
};

/// The indexes of a database.
class SpatialIndexes {
public:
    explicit SpatialIndexes(AcDbDatabase& database) : mDatabase(database) {}

    /// Brought up to date; built when it is asked for first. The reference holds until the next call.
    const SpatialIndex& of(AcDbObjectId block);
    /// The object is being changed, was changed, erased or brought back. Constant time.
    void touch(AcDbStub* stub) {
        ++mGeneration;
        if (!mIndexes.empty() && !mAllStale) {
            note(stub);
        }
    }

    /// Grows with everything that changes in the drawing, appended objects included.
    Adesk::UInt64 generation() const { return mGeneration; }

private:
    void note(AcDbStub* stub);
    void settle();
    /// Finds the entity of a block that the object belongs to and notes what its change means.
    void settle(AcDbStub* stub);

    AcDbDatabase& mDatabase;
    std::unordered_map<AcDbStub*, SpatialIndex> mIndexes; ///< by block
    ReferenceBoxes mBoxes;                                ///< filled while indexes are brought up to date
    std::vector<AcDbStub*> mTouched;
    Adesk::UInt64 mGeneration = 0;
    bool mAllStale = false;
    bool mDependentsStale = false;
};

} // namespace host
