// AcDbSortentsTable: the drawing order of a block's entities, in the extension dictionary of the block's
// record.
#pragma once

#include "host/db/dbgroupedobject.h"
#include "host/db/dbsymtb.h"

#include <unordered_map>

/// Entities are drawn by their sort handles, the smallest first; one without an entry has its own handle.
class AcDbSortentsTable : public host::GroupedObject {
    ACRX_DECLARE_MEMBERS(AcDbSortentsTable);

public:
    AcDbObjectId blockId() const { return mBlock; }
    /// For the table's maker.
    Acad::ErrorStatus setBlockId(AcDbObjectId block);
    Acad::ErrorStatus sortAs(AcDbObjectId id, const AcDbHandle& handle);
    void getSortHandle(AcDbObjectId id, AcDbHandle& handle) const;
    Acad::ErrorStatus remove(AcDbObjectId id);

    // Moves keep the order of the moved among each other. eInvalidInput for what is not in the block.
    Acad::ErrorStatus moveToTop(const AcDbObjectIdArray& ids);
    Acad::ErrorStatus moveToBottom(const AcDbObjectIdArray& ids);
    Acad::ErrorStatus moveAbove(const AcDbObjectIdArray& ids, AcDbObjectId target);
    Acad::ErrorStatus moveBelow(const AcDbObjectIdArray& ids, AcDbObjectId target);
    Acad::ErrorStatus swapOrder(AcDbObjectId first, AcDbObjectId second);
    /// Puts the entities, in the given order, into the places that they hold together.
    Acad::ErrorStatus setRelativeDrawOrder(const AcDbObjectIdArray& ids);
    /// All entities of the block that are not erased, the lowest first.
    Acad::ErrorStatus getFullDrawOrder(AcDbObjectIdArray& ids, Adesk::UInt8 honorSortentsMask = 0) const;
    Acad::ErrorStatus getRelativeDrawOrder(AcDbObjectIdArray& ids, Adesk::UInt8 honorSortentsMask = 0) const;
    Acad::ErrorStatus firstEntityIsDrawnBeforeSecond(AcDbObjectId first, AcDbObjectId second,
                                                     bool& before) const;
    /// The block's entities in drawing order, erased ones included; n + m log m for m entries.
    std::vector<AcDbStub*> drawOrder(const AcDbBlockTableRecord& block) const;

    Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
    Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
    Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;
    Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;

protected:
    std::string_view dxfSubclass(std::string_view marker) const override;
    bool takeDxfGroup(AcDbDxfFiler* filer, const host::DxfGroup& group, std::string_view subclass) override;

private:
    struct Entry {
        AcDbStub* entity = nullptr;
        Adesk::UInt64 handle = 0;
    };
    Adesk::UInt64 keyOf(AcDbStub* entity) const;
    void set(AcDbStub* entity, Adesk::UInt64 handle);
    std::vector<AcDbStub*> present() const;
    /// Gives the entities of `order` the sort handles that `before`, the same entities, has, in its order.
    void giveKeys(const std::vector<AcDbStub*>& before, const std::vector<AcDbStub*>& order);
    Acad::ErrorStatus moveBeside(const AcDbObjectIdArray& ids, AcDbObjectId target, bool above);
    Acad::ErrorStatus moveToEnd(const AcDbObjectIdArray& ids, bool top);
    bool allInBlock(const AcDbObjectIdArray& ids) const;
    void reindex();

    AcDbObjectId mBlock;
    std::vector<Entry> mEntries; ///< in the order of the file
    std::unordered_map<AcDbStub*, std::size_t> mIndex;
};

namespace host {

/// The drawing order table of a block; null when it has none.
AcDbSortentsTable* sortentsOf(const AcDbBlockTableRecord& block);
/// The block's entities as they are drawn, erased ones included.
std::vector<AcDbStub*> drawOrder(const AcDbBlockTableRecord& block);

} // namespace host
