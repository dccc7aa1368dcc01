// Drawing order.
#include "host/db/dbsortents.h"

#include "host/db/dbdatabase.h"
#include "host/db/entities/hatchboundary.h"

#include <algorithm>
#include <unordered_set>

ACRX_DXF_DEFINE_MEMBERS(AcDbSortentsTable, AcDbObject, AcDb::kDHL_CURRENT, AcDb::kMReleaseCurrent, 0,
                        SORTENTSTABLE, ObjectDBX Classes)

namespace {

constexpr const ACHAR* entryName = L"ACAD_SORTENTS";

/// The entities named by ids, in the order of the list given.
std::vector<AcDbStub*> inOrder(const std::vector<AcDbStub*>& order, const AcDbObjectIdArray& ids) {
    std::unordered_set<AcDbStub*> wanted;
    for (const AcDbObjectId& id : ids) {
        wanted.insert(id.stub());
    }
    std::vector<AcDbStub*> found;
    std::copy_if(order.begin(), order.end(), std::back_inserter(found),
                 [&](AcDbStub* stub) { return wanted.contains(stub); });
    return found;
}

} // namespace

Acad::ErrorStatus AcDbSortentsTable::setBlockId(AcDbObjectId block) {
    assertWriteEnabled();
    mBlock = block;
    return Acad::eOk;
}

Adesk::UInt64 AcDbSortentsTable::keyOf(AcDbStub* entity) const {
    const auto found = mIndex.find(entity);
    return found != mIndex.end() ? mEntries[found->second].handle : entity->handle;
}

void AcDbSortentsTable::set(AcDbStub* entity, Adesk::UInt64 handle) {
    const auto [found, added] = mIndex.try_emplace(entity, mEntries.size());
    if (added) {
        mEntries.push_back({entity, handle});
    } else {
        mEntries[found->second].handle = handle;
    }
}

void AcDbSortentsTable::reindex() {
    mIndex.clear();
    for (std::size_t index = 0; index < mEntries.size(); ++index) {
        if (mEntries[index].entity != nullptr) { // a file may have entries for nobody
            mIndex.insert_or_assign(mEntries[index].entity, index);
        }
    }
}

Acad::ErrorStatus AcDbSortentsTable::sortAs(AcDbObjectId id, const AcDbHandle& handle) {
    if (id.isNull() || handle.isNull()) {
        return Acad::eInvalidInput;
    }
    assertWriteEnabled();
    set(id.stub(), handle);
    return Acad::eOk;
}

void AcDbSortentsTable::getSortHandle(AcDbObjectId id, AcDbHandle& handle) const {
    handle = id.isNull() ? AcDbHandle() : AcDbHandle(keyOf(id.stub()));
}

Acad::ErrorStatus AcDbSortentsTable::remove(AcDbObjectId id) {
    const auto found = mIndex.find(id.stub());
    if (found == mIndex.end()) {
        return Acad::eInvalidInput;
    }
    assertWriteEnabled();
    mEntries.erase(mEntries.begin() + static_cast<std::ptrdiff_t>(found->second));
    reindex();
    return Acad::eOk;
}

std::vector<AcDbStub*> AcDbSortentsTable::drawOrder(const AcDbBlockTableRecord& block) const {
    using Keyed = std::pair<Adesk::UInt64, AcDbStub*>;
    std::vector<Keyed> plain;
    std::vector<Keyed> moved;
    for (AcDbStub* stub : block.entities()) {
        const auto found = mIndex.find(stub);
        if (found == mIndex.end()) {
            plain.emplace_back(stub->handle, stub);
        } else {
            moved.emplace_back(mEntries[found->second].handle, stub);
        }
    }
    const auto byKey = [](const Keyed& a, const Keyed& b) { return a.first < b.first; };
    if (!std::is_sorted(plain.begin(), plain.end(), byKey)) {
        std::stable_sort(plain.begin(), plain.end(), byKey);
    }
    std::stable_sort(moved.begin(), moved.end(), byKey);
    std::vector<Keyed> all(plain.size() + moved.size());
    std::merge(plain.begin(), plain.end(), moved.begin(), moved.end(), all.begin(), byKey);
    std::vector<AcDbStub*> order(all.size());
    std::transform(all.begin(), all.end(), order.begin(), [](const Keyed& keyed) { return keyed.second; });
    return order;
}

std::vector<AcDbStub*> AcDbSortentsTable::present() const {
    const auto* block = host::peek<AcDbBlockTableRecord>(mBlock);
    std::vector<AcDbStub*> order = block != nullptr ? drawOrder(*block) : std::vector<AcDbStub*>();
    std::erase_if(order, [](const AcDbStub* stub) { return stub->erased || stub->object == nullptr; });
    return order;
}

bool AcDbSortentsTable::allInBlock(const AcDbObjectIdArray& ids) const {
    return !ids.isEmpty() && std::all_of(ids.begin(), ids.end(), [&](const AcDbObjectId& id) {
        const auto* entity = host::peek<AcDbEntity>(id);
        return entity != nullptr && entity->ownerId() == mBlock;
    });
}

void AcDbSortentsTable::giveKeys(const std::vector<AcDbStub*>& before, const std::vector<AcDbStub*>& order) {
    std::vector<Adesk::UInt64> keys;
    keys.reserve(before.size());
    for (AcDbStub* stub : before) {
        keys.push_back(keyOf(stub));
    }
    for (std::size_t index = 0; index < order.size(); ++index) {
        if (keyOf(order[index]) != keys[index]) {
            set(order[index], keys[index]);
        }
    }
}

Acad::ErrorStatus AcDbSortentsTable::moveToEnd(const AcDbObjectIdArray& ids, bool top) {
    if (!allInBlock(ids)) {
        return Acad::eInvalidInput;
    }
    assertWriteEnabled();
    const std::vector<AcDbStub*> order = present();
    const std::vector<AcDbStub*> moved = inOrder(order, ids);
    const auto count = static_cast<Adesk::UInt64>(moved.size());
    if (top) {
        // Handles above all that are in use, so that nothing else needs an entry.
        host::DatabaseImpl& database = this->database()->impl();
        Adesk::UInt64 key = std::max(database.nextHandle(), keyOf(order.back()) + 1);
        for (AcDbStub* stub : moved) {
            set(stub, key++);
        }
        database.raiseNextHandle(key);
        return Acad::eOk;
    }
    if (Adesk::UInt64 key = keyOf(order.front()); key > count) {
        key -= count;
        for (AcDbStub* stub : moved) {
            set(stub, key++);
        }
        return Acad::eOk;
    }
    std::vector<AcDbStub*> after = moved;
    const std::unordered_set<AcDbStub*> taken(moved.begin(), moved.end());
    std::copy_if(order.begin(), order.end(), std::back_inserter(after),
                 [&](AcDbStub* stub) { return !taken.contains(stub); });
    giveKeys(order, after);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbSortentsTable::moveToTop(const AcDbObjectIdArray& ids) {
    return moveToEnd(ids, true);
}
Acad::ErrorStatus AcDbSortentsTable::moveToBottom(const AcDbObjectIdArray& ids) {
    return moveToEnd(ids, false);
}

Acad::ErrorStatus AcDbSortentsTable::moveBeside(const AcDbObjectIdArray& ids, AcDbObjectId target,
                                                bool above) {
    AcDbObjectIdArray all = ids;
    all.append(target);
    if (ids.isEmpty() || !allInBlock(all) || ids.contains(target)) {
        return Acad::eInvalidInput;
    }
    assertWriteEnabled();
    const std::vector<AcDbStub*> order = present();
    const std::vector<AcDbStub*> moved = inOrder(order, ids);
    const std::unordered_set<AcDbStub*> taken(moved.begin(), moved.end());
    std::vector<AcDbStub*> after;
    after.reserve(order.size());
    for (AcDbStub* stub : order) {
        if (stub == target.stub()) {
            if (above) {
                after.push_back(stub);
            }
            after.insert(after.end(), moved.begin(), moved.end());
            if (!above) {
                after.push_back(stub);
            }
        } else if (!taken.contains(stub)) {
            after.push_back(stub);
        }
    }
    giveKeys(order, after);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbSortentsTable::moveAbove(const AcDbObjectIdArray& ids, AcDbObjectId target) {
    return moveBeside(ids, target, true);
}
Acad::ErrorStatus AcDbSortentsTable::moveBelow(const AcDbObjectIdArray& ids, AcDbObjectId target) {
    return moveBeside(ids, target, false);
}

Acad::ErrorStatus AcDbSortentsTable::swapOrder(AcDbObjectId first, AcDbObjectId second) {
    AcDbObjectIdArray both;
    both.append(first);
    both.append(second);
    if (!allInBlock(both)) {
        return Acad::eInvalidInput;
    }
    assertWriteEnabled();
    const Adesk::UInt64 key = keyOf(first.stub());
    set(first.stub(), keyOf(second.stub()));
    set(second.stub(), key);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbSortentsTable::setRelativeDrawOrder(const AcDbObjectIdArray& ids) {
    if (!allInBlock(ids)) {
        return Acad::eInvalidInput;
    }
    const std::vector<AcDbStub*> before = inOrder(present(), ids);
    if (std::ssize(before) != ids.length()) {
        return Acad::eInvalidInput; // one is named twice
    }
    assertWriteEnabled();
    std::vector<AcDbStub*> wanted;
    for (const AcDbObjectId& id : ids) {
        wanted.push_back(id.stub());
    }
    giveKeys(before, wanted);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbSortentsTable::getFullDrawOrder(AcDbObjectIdArray& ids, Adesk::UInt8) const {
    for (AcDbStub* stub : present()) {
        ids.append(AcDbObjectId(stub));
    }
    return Acad::eOk;
}

Acad::ErrorStatus AcDbSortentsTable::getRelativeDrawOrder(AcDbObjectIdArray& ids, Adesk::UInt8) const {
    if (!allInBlock(ids)) {
        return Acad::eInvalidInput;
    }
    const std::vector<AcDbStub*> order = inOrder(present(), ids);
    ids.setLogicalLength(0);
    for (AcDbStub* stub : order) {
        ids.append(AcDbObjectId(stub));
    }
    return Acad::eOk;
}

Acad::ErrorStatus AcDbSortentsTable::firstEntityIsDrawnBeforeSecond(AcDbObjectId first, AcDbObjectId second,
                                                                    bool& before) const {
    if (first.isNull() || second.isNull()) {
        return Acad::eInvalidInput;
    }
    before = keyOf(first.stub()) < keyOf(second.stub());
    return Acad::eOk;
}

Acad::ErrorStatus AcDbSortentsTable::dwgOutFields(AcDbDwgFiler* filer) const {
    if (const Acad::ErrorStatus status = AcDbObject::dwgOutFields(filer); status != Acad::eOk) {
        return status;
    }
    filer->writeSoftPointerId(AcDbSoftPointerId(mBlock));
    filer->writeUInt32(static_cast<Adesk::UInt32>(mEntries.size()));
    for (const Entry& entry : mEntries) {
        filer->writeSoftPointerId(AcDbSoftPointerId(entry.entity));
        filer->writeUInt64(entry.handle);
    }
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbSortentsTable::dwgInFields(AcDbDwgFiler* filer) {
    if (const Acad::ErrorStatus status = AcDbObject::dwgInFields(filer); status != Acad::eOk) {
        return status;
    }
    AcDbSoftPointerId block;
    Adesk::UInt32 count = 0;
    filer->readSoftPointerId(&block);
    filer->readUInt32(&count);
    std::vector<Entry> entries;
    for (; count > 0 && filer->filerStatus() == Acad::eOk; --count) {
        AcDbSoftPointerId entity;
        Entry entry;
        filer->readSoftPointerId(&entity);
        filer->readUInt64(&entry.handle);
        entry.entity = entity.stub();
        entries.push_back(entry);
    }
    if (filer->filerStatus() == Acad::eOk) {
        mBlock = block;
        mEntries = std::move(entries);
        reindex();
    }
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbSortentsTable::dxfInFields(AcDbDxfFiler* filer) {
    assertWriteEnabled();
    mBlock.setNull();
    mEntries.clear();
    const Acad::ErrorStatus status = readDxfGroups(filer);
    reindex();
    return status;
}

std::string_view AcDbSortentsTable::dxfSubclass(std::string_view marker) const {
    return marker == "AcDbSortentsTable" ? "AcDbSortentsTable" : std::string_view();
}

bool AcDbSortentsTable::takeDxfGroup(AcDbDxfFiler*, const host::DxfGroup& group, std::string_view subclass) {
    if (subclass.empty()) {
        return false;
    }
    switch (group.code) {
    case 330:
        mBlock = AcDbObjectId(group.id);
        return true;
    case 331:
        mEntries.push_back({group.id, 0});
        return true;
    case 5:
        // The handle that stands for the entity before it.
        if (!mEntries.empty()) {
            mEntries.back().handle = AcDbHandle(group.string().kwszPtr());
        }
        return true;
    default:
        return false;
    }
}

Acad::ErrorStatus AcDbSortentsTable::dxfOutFields(AcDbDxfFiler* filer) const {
    if (const Acad::ErrorStatus status = AcDbObject::dxfOutFields(filer); status != Acad::eOk) {
        return status;
    }
    filer->writeText(100, "AcDbSortentsTable");
    filer->writeObjectId(330, mBlock);
    for (const Entry& entry : mEntries) {
        if (entry.entity == nullptr || !entry.entity->erased) {
            filer->writeReference(331, entry.entity);
            filer->writeAcDbHandle(5, AcDbHandle(entry.handle));
        }
    }
    writeKeptGroups(filer, "AcDbSortentsTable");
    return filer->filerStatus();
}

AcDbSortentsTable* host::sortentsOf(const AcDbBlockTableRecord& block) {
    const auto* dictionary = peek<AcDbDictionary>(block.extensionDictionary());
    AcDbObjectId id;
    return dictionary != nullptr && dictionary->getAt(entryName, id) == Acad::eOk
               ? peek<AcDbSortentsTable>(id)
               : nullptr;
}

std::vector<AcDbStub*> host::drawOrder(const AcDbBlockTableRecord& block) {
    const AcDbSortentsTable* table = sortentsOf(block);
    return table != nullptr ? table->drawOrder(block) : block.entities();
}

Acad::ErrorStatus AcDbBlockTableRecord::getSortentsTable(AcDbSortentsTable*& table, AcDb::OpenMode mode,
                                                         bool createIfNecessary) {
    table = host::sortentsOf(*this);
    if (table != nullptr) {
        return acdbOpenObject(table, table->objectId(), mode);
    }
    if (!createIfNecessary) {
        return Acad::eKeyNotFound;
    }
    if (extensionDictionary().isErased()) {
        if (const Acad::ErrorStatus status = createExtensionDictionary(); status != Acad::eOk) {
            return status;
        }
    }
    const host::Opened<AcDbDictionary> dictionary(extensionDictionary(), AcDb::kForWrite);
    if (!dictionary) {
        return dictionary.status();
    }
    AcDbObjectId id;
    auto made = std::make_unique<AcDbSortentsTable>();
    made->setBlockId(objectId());
    if (const Acad::ErrorStatus status = dictionary->setAt(entryName, made.get(), id); status != Acad::eOk) {
        return status;
    }
    made.release()->close();
    return acdbOpenObject(table, id, mode);
}
