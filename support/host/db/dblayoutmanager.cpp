// Layouts by name: making, copying, renaming, deleting, and which one is current.
#include "host/db/dbdatabase.h"
#include "host/db/dbents.h"
#include "host/rx/text.h"

#include <algorithm>

ACRX_NO_CONS_DEFINE_MEMBERS(AcDbLayoutManager, AcRxObject)

namespace {

constexpr std::size_t longestName = 255;

AcDbDatabase* databaseOr(const AcDbDatabase* database) {
    return database != nullptr ? const_cast<AcDbDatabase*>(database)
                               : acdbHostApplicationServices()->workingDatabase();
}

const AcDbDictionary* dictionaryOf(const AcDbDatabase* database) {
    return database != nullptr ? host::peek<AcDbDictionary>(database->layoutDictionaryId()) : nullptr;
}

bool isLayoutName(const ACHAR* name) {
    const std::wstring_view text(name != nullptr ? name : L"");
    return !text.empty() && text.size() <= longestName && text.find_first_of(L"<>/\\\":;?*|,=`") == text.npos;
}

/// Layouts of sheets, by tab order.
std::vector<const AcDbLayout*> sheets(const AcDbDatabase* database) {
    std::vector<const AcDbLayout*> found;
    const AcDbDictionary* dictionary = dictionaryOf(database);
    if (dictionary != nullptr) {
        for (const AcDbDictionary::Entry& entry : dictionary->entries()) {
            const auto* layout = host::peek<AcDbLayout>(entry.id);
            if (layout != nullptr && !layout->modelType()) {
                found.push_back(layout);
            }
        }
    }
    std::stable_sort(found.begin(), found.end(), [](const AcDbLayout* a, const AcDbLayout* b) {
        return a->getTabOrder() < b->getTabOrder();
    });
    return found;
}

/// The first free name of a paper space's block.
std::wstring freeBlockName(const AcDbDatabase& database) {
    const auto* table = host::peek<AcDbBlockTable>(database.blockTableId());
    for (int number = 0;; ++number) {
        std::wstring name = ACDB_PAPER_SPACE + std::to_wstring(number);
        if (!table->has(name.c_str())) {
            return name;
        }
    }
}

/// Gives a block the name *Paper_Space; the one that has it takes the other's name.
Acad::ErrorStatus makePaperSpace(AcDbDatabase& database, AcDbObjectId block) {
    const AcDbObjectId now = database.paperSpaceId();
    if (now == block) {
        return Acad::eOk;
    }
    const host::Opened<AcDbBlockTableRecord> next(block, AcDb::kForWrite);
    const host::Opened<AcDbBlockTableRecord> last(now, AcDb::kForWrite);
    if (!next || !last) {
        return next ? last.status() : next.status();
    }
    const AcString name = next->name();
    next->setName((freeBlockName(database) + L"_").c_str());
    last->setName(name.kwszPtr());
    const Acad::ErrorStatus status = next->setName(ACDB_PAPER_SPACE);
    database.paperSpaceId();
    return status;
}

const AcDbLayout* layoutOf(AcDbObjectId space) {
    const auto* block = host::peek<AcDbBlockTableRecord>(space);
    return block != nullptr ? host::peek<AcDbLayout>(block->getLayoutId()) : nullptr;
}

bool canBeActive(AcDbObjectId id, const AcDbDatabase& database) {
    const auto* viewport = host::peek<AcDbViewport>(id);
    if (viewport == nullptr) {
        return false;
    }
    const host::ReadAccess access(*viewport);
    return viewport->ownerId() == database.paperSpaceId() && viewport->isOn() && !viewport->isSheet();
}

/// The view of the sheet itself; null before a layout was shown.
AcDbObjectId sheetViewport(const AcDbDatabase& database) {
    const auto* sheet = host::peek<AcDbBlockTableRecord>(database.paperSpaceId());
    for (AcDbStub* stub : sheet != nullptr ? sheet->entities() : std::vector<AcDbStub*>()) {
        if (const auto* viewport = host::peek<AcDbViewport>(AcDbObjectId(stub))) {
            const host::ReadAccess access(*viewport);
            if (viewport->isSheet()) {
                return viewport->objectId();
            }
        }
    }
    return {};
}

/// The block of the tab that is shown.
AcDbObjectId shownBlock(const AcDbDatabase& database) {
    return database.tilemode() ? database.modelSpaceId() : database.paperSpaceId();
}

} // namespace

AcDbLayoutManager* AcDbHostApplicationServices::layoutManager() const {
    static AcDbLayoutManager manager; // it holds nothing
    return &manager;
}

AcDbObjectId AcDbDatabase::paperSpaceId() const {
    // Switching layouts and undoing that changes which block has the name.
    AcDbObjectId& known = mImpl->containers.paperSpace;
    const auto* block = host::peek<AcDbBlockTableRecord>(known);
    if (block == nullptr || block->name().compareNoCase(ACDB_PAPER_SPACE) != 0) {
        AcDbObjectId named;
        const auto* table = host::peek<AcDbBlockTable>(mImpl->containers.blockTable);
        if (table != nullptr && table->AcDbSymbolTable::getAt(ACDB_PAPER_SPACE, named) == Acad::eOk) {
            known = named;
        }
    }
    return known;
}

AcDbObjectId AcDbDatabase::activeViewportId() const {
    const AcDbLayout* layout = tilemode() ? nullptr : layoutOf(paperSpaceId());
    const AcDbObjectId id = layout != nullptr ? layout->activeViewportId() : AcDbObjectId();
    return canBeActive(id, *this) ? id : AcDbObjectId();
}

Acad::ErrorStatus AcDbDatabase::setActiveViewport(AcDbObjectId viewport) {
    const AcDbLayout* now = tilemode() ? nullptr : layoutOf(paperSpaceId());
    if (now == nullptr || (!viewport.isNull() && !canBeActive(viewport, *this))) {
        return Acad::eInvalidInput;
    }
    const host::Opened<AcDbLayout> layout(now->objectId(), AcDb::kForWrite);
    return layout ? layout->setActiveViewportId(viewport.isNull() ? sheetViewport(*this) : viewport)
                  : layout.status();
}

AcDbObjectId AcDbLayoutManager::findLayoutNamed(const ACHAR* name, const AcDbDatabase* database) const {
    const AcDbDictionary* dictionary = dictionaryOf(databaseOr(database));
    AcDbObjectId id;
    if (dictionary != nullptr && name != nullptr) {
        dictionary->getAt(name, id);
    }
    return host::peek<AcDbLayout>(id) != nullptr ? id : AcDbObjectId();
}

int AcDbLayoutManager::countLayouts(const AcDbDatabase* database) const {
    return static_cast<int>(layoutNames(database).size());
}

std::vector<AcString> AcDbLayoutManager::layoutNames(const AcDbDatabase* database) const {
    const AcDbDatabase* own = databaseOr(database);
    std::vector<AcString> names;
    const auto* model = own != nullptr ? host::peek<AcDbBlockTableRecord>(own->modelSpaceId()) : nullptr;
    if (const auto* layout = model != nullptr ? host::peek<AcDbLayout>(model->getLayoutId()) : nullptr) {
        names.push_back(layout->layoutName());
    }
    for (const AcDbLayout* layout : sheets(own)) {
        names.push_back(layout->layoutName());
    }
    return names;
}

AcDbObjectId AcDbLayoutManager::getActiveLayoutBTRId(const AcDbDatabase* database) const {
    const AcDbDatabase* own = databaseOr(database);
    return own != nullptr ? shownBlock(*own) : AcDbObjectId();
}

AcString AcDbLayoutManager::findActiveLayout(bool allowModel, const AcDbDatabase* database) const {
    const AcDbDatabase* own = databaseOr(database);
    if (own == nullptr) {
        return {};
    }
    const AcDbLayout* layout = layoutOf(allowModel ? shownBlock(*own) : own->paperSpaceId());
    return layout != nullptr ? layout->layoutName() : AcString();
}

Acad::ErrorStatus AcDbLayoutManager::setCurrentLayout(const ACHAR* name, AcDbDatabase* database) {
    const AcDbObjectId id = findLayoutNamed(name, database);
    return id.isNull() ? Acad::eKeyNotFound : setCurrentLayoutId(id);
}

Acad::ErrorStatus AcDbLayoutManager::setCurrentLayoutId(AcDbObjectId id) {
    const auto* layout = host::peek<AcDbLayout>(id);
    if (layout == nullptr) {
        return Acad::eInvalidInput;
    }
    AcDbDatabase& database = *layout->database();
    if (!database.activeViewportId().isNull()) {
        database.setActiveViewport({});
    }
    if (layout->modelType()) {
        return database.setTilemode(true);
    }
    const Acad::ErrorStatus status = makePaperSpace(database, layout->getBlockTableRecordId());
    return status == Acad::eOk ? database.setTilemode(false) : status;
}

Acad::ErrorStatus AcDbLayoutManager::createLayout(const ACHAR* name, AcDbObjectId& layout,
                                                  AcDbObjectId& block, AcDbDatabase* given) {
    AcDbDatabase* database = databaseOr(given);
    if (database == nullptr || !isLayoutName(name)) {
        return database == nullptr ? Acad::eNoDatabase : Acad::eInvalidInput;
    }
    const host::Opened<AcDbDictionary> layouts(database->layoutDictionaryId(), AcDb::kForWrite);
    const host::Opened<AcDbBlockTable> blocks(database->blockTableId(), AcDb::kForWrite);
    if (!layouts || !blocks) {
        return layouts ? blocks.status() : layouts.status();
    }
    if (layouts->has(name)) {
        return Acad::eDuplicateKey;
    }
    const std::vector<const AcDbLayout*> others = sheets(database);
    auto record = std::make_unique<AcDbBlockTableRecord>();
    record->setName(freeBlockName(*database).c_str());
    if (const Acad::ErrorStatus status = blocks->add(block, record.get()); status != Acad::eOk) {
        return status;
    }
    AcDbBlockTableRecord* space = record.release();
    auto* made = new AcDbLayout;
    made->setLayoutName(name);
    made->setTabOrder(others.empty() ? 1 : others.back()->getTabOrder() + 1);
    made->setBlockTableRecordId(block);
    layouts->setAt(name, made, layout);
    made->close();
    space->setLayoutId(layout);
    host::ensureBlockEnds(*space);
    space->close();
    return Acad::eOk;
}

Acad::ErrorStatus AcDbLayoutManager::renameLayout(const ACHAR* oldName, const ACHAR* newName,
                                                  AcDbDatabase* given) {
    AcDbDatabase* database = databaseOr(given);
    const AcDbObjectId id = findLayoutNamed(oldName, database);
    if (id.isNull()) {
        return Acad::eKeyNotFound;
    }
    if (!isLayoutName(newName) || host::peek<AcDbLayout>(id)->modelType()) {
        return Acad::eInvalidInput;
    }
    const AcDbObjectId other = findLayoutNamed(newName, database);
    if (!other.isNull() && other != id) {
        return Acad::eDuplicateKey;
    }
    const host::Opened<AcDbDictionary> layouts(database->layoutDictionaryId(), AcDb::kForWrite);
    const host::Opened<AcDbLayout> layout(id, AcDb::kForWrite);
    if (!layouts || !layout) {
        return layouts ? layout.status() : layouts.status();
    }
    if (other.isNull()) {
        layouts->setName(oldName, newName);
    }
    return layout->setLayoutName(newName);
}

Acad::ErrorStatus AcDbLayoutManager::deleteLayout(const ACHAR* name, AcDbDatabase* given) {
    AcDbDatabase* database = databaseOr(given);
    const AcDbObjectId id = findLayoutNamed(name, database);
    if (id.isNull()) {
        return Acad::eKeyNotFound;
    }
    const auto* doomed = host::peek<AcDbLayout>(id);
    if (doomed->modelType()) {
        return Acad::eInvalidInput;
    }
    const std::vector<const AcDbLayout*> all = sheets(database);
    AcDbObjectId next;
    if (all.size() > 1) {
        const auto at = std::find(all.begin(), all.end(), doomed);
        next = (at + 1 != all.end() ? *(at + 1) : *(at - 1))->objectId();
    } else {
        AcDbObjectId block;
        std::wstring fresh = L"布局1";
        for (int number = 2; layoutExists(fresh.c_str(), database); ++number) {
            fresh = L"布局" + std::to_wstring(number);
        }
        if (const Acad::ErrorStatus status = createLayout(fresh.c_str(), next, block, database);
            status != Acad::eOk) {
            return status;
        }
    }
    const AcDbObjectId block = doomed->getBlockTableRecordId();
    if (database->paperSpaceId() == block) {
        const Acad::ErrorStatus status =
            makePaperSpace(*database, host::peek<AcDbLayout>(next)->getBlockTableRecordId());
        if (status != Acad::eOk) {
            return status;
        }
    }
    const host::Opened<AcDbDictionary> layouts(database->layoutDictionaryId(), AcDb::kForWrite);
    const host::Opened<AcDbLayout> layout(id, AcDb::kForWrite);
    const host::Opened<AcDbBlockTableRecord> record(block, AcDb::kForWrite);
    if (!layouts || !layout || !record) {
        return Acad::eNotOpenForWrite;
    }
    layouts->remove(id);
    record->erase();
    return layout->erase();
}

Acad::ErrorStatus AcDbLayoutManager::copyLayout(const ACHAR* name, const ACHAR* newName,
                                                AcDbDatabase* given) {
    AcDbDatabase* database = databaseOr(given);
    const AcDbObjectId id = findLayoutNamed(name, database);
    if (id.isNull()) {
        return Acad::eKeyNotFound;
    }
    const auto* source = host::peek<AcDbLayout>(id);
    if (source->modelType()) {
        return Acad::eInvalidInput;
    }
    AcDbObjectId copy;
    AcDbObjectId block;
    if (const Acad::ErrorStatus status = createLayout(newName, copy, block, database); status != Acad::eOk) {
        return status;
    }
    {
        const host::Opened<AcDbLayout> layout(copy, AcDb::kForWrite);
        layout->copySettingsFrom(*source);
    }
    const auto* record = host::peek<AcDbBlockTableRecord>(source->getBlockTableRecordId());
    AcDbObjectIdArray entities;
    for (AcDbStub* stub : record != nullptr ? record->entities() : std::vector<AcDbStub*>()) {
        if (!stub->erased && stub->object != nullptr) {
            entities.append(AcDbObjectId(stub));
        }
    }
    AcDbIdMapping mapping;
    return entities.isEmpty() ? Acad::eOk : database->deepCloneObjects(entities, block, mapping);
}
