// Symbol tables and dictionaries as lists.
#include "host/db/dbents.h"
#include "host/ed/acdocman.h"
#include "host/ed/aced.h"
#include "host/ed/documentstate.h"
#include "host/ed/entitylist.h"
#include "host/rx/text.h"

namespace host {
namespace {

AcDbObjectId tableOf(const AcDbDatabase& database, std::wstring_view name) {
    struct Named {
        std::wstring_view name;
        AcDbObjectId (AcDbDatabase::*id)() const;
    };
    static constexpr Named tables[] = {
        {L"LAYER", &AcDbDatabase::layerTableId},     {L"LTYPE", &AcDbDatabase::linetypeTableId},
        {L"STYLE", &AcDbDatabase::textStyleTableId}, {L"BLOCK", &AcDbDatabase::blockTableId},
        {L"APPID", &AcDbDatabase::regAppTableId},    {L"DIMSTYLE", &AcDbDatabase::dimStyleTableId},
        {L"VIEW", &AcDbDatabase::viewTableId},       {L"UCS", &AcDbDatabase::UCSTableId},
        {L"VPORT", &AcDbDatabase::viewportTableId},
    };
    for (const Named& table : tables) {
        if (equalNoCase(table.name, name)) {
            return (database.*table.id)();
        }
    }
    return {};
}

const AcDbSymbolTable* openTable(const ACHAR* name) {
    const AcDbDatabase* database = acdbCurDwg();
    return name != nullptr && database != nullptr ? peek<AcDbSymbolTable>(tableOf(*database, name)) : nullptr;
}

/// A block as its definition begins: name, flags, base point, first entity.
ResbufList blockList(const AcDbBlockTableRecord& block) {
    ResbufBuilder builder;
    builder.string(0, L"BLOCK").string(2, block.name().kwszPtr());
    const int flags = (block.isAnonymous() ? 1 : 0) | (block.hasAttributeDefinitions() ? 2 : 0) |
                      (block.isFromExternalReference() ? 4 : 0) | (block.isFromOverlayReference() ? 8 : 0);
    builder.integer(70, flags);
    const AcGePoint3d origin = block.origin();
    builder.point(10, origin.x, origin.y, origin.z);
    for (AcDbStub* stub : block.entities()) {
        if (!stub->erased) {
            const ads_name name = {AcDbObjectId(stub).asOldId(), 0};
            builder.name(-2, name);
            break;
        }
    }
    return builder.release();
}

/// A record's list as table functions give it: without identity, owner and subclass marks.
ResbufList recordList(AcDbObjectId id) {
    if (const auto* block = peek<AcDbBlockTableRecord>(id)) {
        const ReadAccess access(*block);
        return blockList(*block);
    }
    const ResbufList whole = objectList(id);
    ResbufBuilder builder;
    for (const resbuf* at = whole.get(); at != nullptr; at = at->rbnext) {
        const bool dimension = at->restype >= 140 && at->restype < 290;
        if ((at->restype >= 0 && at->restype < 100 && at->restype != 5) || dimension) {
            builder.take(copyResbuf(*at).release());
        }
    }
    return builder.release();
}

AcDbObjectId recordOf(const ACHAR* tableName, const ACHAR* name) {
    const AcDbSymbolTable* table = openTable(tableName);
    AcDbObjectId id;
    if (table != nullptr && name != nullptr) {
        const ReadAccess access(*table);
        table->getAt(name, id);
    }
    return id;
}

/// The records that table functions walk over: spaces are not blocks there.
bool isListed(AcDbStub* stub) {
    const auto* record = peek<AcDbSymbolTableRecord>(AcDbObjectId(stub));
    const auto* block = AcDbBlockTableRecord::cast(record);
    return record != nullptr && (block == nullptr || !block->isLayout());
}

const AcDbDictionary* dictionaryOf(const ads_name name) {
    AcDbObjectId id;
    return name != nullptr && acdbGetObjectId(id, name) == Acad::eOk ? peek<AcDbDictionary>(id) : nullptr;
}

int giveName(AcDbObjectId id, ads_name result) {
    if (id.isNull()) {
        return RTERROR;
    }
    ads_name name;
    acdbGetAdsName(name, id);
    ads_name_set(name, result);
    return RTNORM;
}

resbuf* entryList(const AcDbDictionary::Entry& entry) {
    ResbufBuilder builder;
    builder.take(objectList(entry.id).release());
    return builder.release().release();
}

std::size_t* cursorOf(const AcDbDictionary& dictionary) {
    AcApDocument* document = curDoc();
    return document != nullptr ? &document->state().dictionaryCursors[dictionary.objectId().stub()] : nullptr;
}

} // namespace
} // namespace host

resbuf* acdbTblSearch(const ACHAR* tableName, const ACHAR* name, int setNext) {
    const AcDbObjectId id = host::recordOf(tableName, name);
    if (id.isNull() || id.isErased()) {
        return nullptr;
    }
    if (setNext != 0 && curDoc() != nullptr) {
        const std::vector<AcDbStub*>& records = host::openTable(tableName)->records();
        const auto found = std::find(records.begin(), records.end(), id.stub());
        curDoc()->state().tableCursors[host::toUpper(tableName)] =
            static_cast<std::size_t>(found - records.begin()) + 1;
    }
    return host::recordList(id).release();
}

resbuf* acdbTblNext(const ACHAR* tableName, int rewind) {
    const AcDbSymbolTable* table = host::openTable(tableName);
    if (table == nullptr || curDoc() == nullptr) {
        return nullptr;
    }
    std::size_t& cursor = curDoc()->state().tableCursors[host::toUpper(tableName)];
    cursor = rewind != 0 ? 0 : cursor;
    for (; cursor < table->records().size(); ++cursor) {
        if (host::isListed(table->records()[cursor])) {
            return host::recordList(AcDbObjectId(table->records()[cursor++])).release();
        }
    }
    return nullptr;
}

int acdbTblObjName(const ACHAR* tableName, const ACHAR* name, ads_name object) {
    AcDbObjectId id = host::recordOf(tableName, name);
    if (id.isErased()) {
        return RTERROR;
    }
    // A block is named by the BLOCK entity that its definition begins with.
    if (const auto* block = host::peek<AcDbBlockTableRecord>(id);
        block != nullptr && block->blockBeginId().isValid()) {
        id = block->blockBeginId();
    }
    return host::giveName(id, object);
}

int acdbNamedObjDict(ads_name dictionary) {
    const AcDbDatabase* database = acdbCurDwg();
    return database != nullptr ? host::giveName(database->namedObjectsDictionaryId(), dictionary) : RTERROR;
}

int acdbDictAdd(const ads_name dictionary, const ACHAR* key, const ads_name object) {
    AcDbObjectId id;
    AcDbObjectId value;
    if (key == nullptr || acdbGetObjectId(id, dictionary) != Acad::eOk ||
        acdbGetObjectId(value, object) != Acad::eOk) {
        return RTERROR;
    }
    const host::Opened<AcDbDictionary> opened(id, AcDb::kForWrite);
    if (!opened || opened->has(key)) {
        return RTERROR;
    }
    const host::Opened<AcDbObject> added(value, AcDb::kForWrite);
    return added && opened->setAt(key, added.get(), value) == Acad::eOk ? RTNORM : RTERROR;
}

resbuf* acdbDictSearch(const ads_name name, const ACHAR* key, int setNext) {
    const AcDbDictionary* dictionary = host::dictionaryOf(name);
    if (dictionary == nullptr || key == nullptr) {
        return nullptr;
    }
    const host::ReadAccess access(*dictionary);
    AcDbObjectId id;
    if (dictionary->getAt(key, id) != Acad::eOk || id.isErased()) {
        return nullptr;
    }
    if (setNext != 0) {
        const auto& entries = dictionary->entries();
        for (std::size_t i = 0; i < entries.size(); ++i) {
            if (entries[i].id == id) {
                *host::cursorOf(*dictionary) = i + 1;
            }
        }
    }
    return host::objectList(id).release();
}

resbuf* acdbDictNext(const ads_name name, int rewind) {
    const AcDbDictionary* dictionary = host::dictionaryOf(name);
    std::size_t* cursor = dictionary != nullptr ? host::cursorOf(*dictionary) : nullptr;
    if (cursor == nullptr) {
        return nullptr;
    }
    *cursor = rewind != 0 ? 0 : *cursor;
    while (*cursor < dictionary->entries().size()) {
        const AcDbDictionary::Entry& entry = dictionary->entries()[(*cursor)++];
        if (!entry.id.isErased()) {
            return host::entryList(entry);
        }
    }
    return nullptr;
}

int acdbDictRemove(const ads_name dictionary, const ACHAR* key) {
    AcDbObjectId id;
    if (key == nullptr || acdbGetObjectId(id, dictionary) != Acad::eOk) {
        return RTERROR;
    }
    const host::Opened<AcDbDictionary> opened(id, AcDb::kForWrite);
    return opened && opened->remove(key) == Acad::eOk ? RTNORM : RTERROR;
}

int acdbDictRename(const ads_name dictionary, const ACHAR* from, const ACHAR* to) {
    AcDbObjectId id;
    if (from == nullptr || to == nullptr || acdbGetObjectId(id, dictionary) != Acad::eOk) {
        return RTERROR;
    }
    const host::Opened<AcDbDictionary> opened(id, AcDb::kForWrite);
    return opened && opened->setName(from, to) ? RTNORM : RTERROR;
}

int acdbRegApp(const ACHAR* application) {
    AcDbDatabase* database = acdbCurDwg();
    AcDbRegAppTable* table = nullptr;
    if (application == nullptr || acdbSNValid(application, 0) != RTNORM || database == nullptr ||
        database->getSymbolTable(table, AcDb::kForWrite) != Acad::eOk) {
        return RTERROR;
    }
    bool added = false;
    if (!table->has(application)) {
        auto* record = new AcDbRegAppTableRecord;
        record->setName(application);
        added = table->add(record) == Acad::eOk;
        if (added) {
            record->close();
        } else {
            delete record;
        }
    }
    table->close();
    return added ? RTNORM : RTERROR;
}

int acdbSNValid(const ACHAR* name, int allowBar) {
    if (name == nullptr || *name == L'\0') {
        return RTERROR;
    }
    const std::wstring_view text = name;
    constexpr std::size_t longest = 255;
    const bool bad = text.size() > longest ||
                     text.find_first_of(L"<>/\\\":;?*,=`") != std::wstring_view::npos ||
                     (allowBar == 0 && text.find(L'|') != std::wstring_view::npos) || text.front() == L' ';
    const bool controls = std::any_of(text.begin(), text.end(), [](wchar_t c) { return c < L' '; });
    return bad || controls ? RTERROR : RTNORM;
}

int acdbXDSize(const resbuf* xdata, Adesk::Int32* size) {
    if (size == nullptr) {
        return RTERROR;
    }
    *size = static_cast<Adesk::Int32>(host::GroupList::fromResbuf(xdata).bytes().size());
    return RTNORM;
}

int acdbXDRoom(const ads_name entity, Adesk::Int32* room) {
    AcDbObjectId id;
    const AcDbObject* object =
        acdbGetObjectId(id, entity) == Acad::eOk ? host::peek<AcDbObject>(id) : nullptr;
    if (object == nullptr || room == nullptr) {
        return RTERROR;
    }
    constexpr Adesk::Int32 most = 16383;
    *room = std::max<Adesk::Int32>(0, most - static_cast<Adesk::Int32>(object->xdataGroups().bytes().size()));
    return RTNORM;
}

int acdbXStrSave(ACHAR* text, ACHAR** saved) {
    if (text == nullptr || saved == nullptr) {
        return RTERROR;
    }
    return acutNewString(text, *saved) == Acad::eOk ? RTNORM : RTERROR;
}

int acdbXStrCase(ACHAR* text) {
    if (text == nullptr) {
        return RTERROR;
    }
    for (; *text != L'\0'; ++text) {
        *text = host::toUpper(*text);
    }
    return RTNORM;
}
