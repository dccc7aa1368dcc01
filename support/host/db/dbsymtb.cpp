// Symbol tables and the filing of their records.
#include "host/db/dbsymtb.h"

#include "host/db/dbdatabase.h"
#include "host/rx/text.h"

#include <algorithm>
#include <cwchar>

ACRX_NO_CONS_DEFINE_MEMBERS(AcDbSymbolTableRecord, AcDbObject)
ACRX_NO_CONS_DEFINE_MEMBERS(AcDbSymbolTable, AcDbObject)
ACRX_DXF_DEFINE_MEMBERS(AcDbLayerTableRecord, AcDbSymbolTableRecord, AcDb::kDHL_CURRENT, 0, 0, LAYER, host)
ACRX_DXF_DEFINE_MEMBERS(AcDbLinetypeTableRecord, AcDbSymbolTableRecord, AcDb::kDHL_CURRENT, 0, 0, LTYPE, host)
ACRX_DXF_DEFINE_MEMBERS(AcDbTextStyleTableRecord, AcDbSymbolTableRecord, AcDb::kDHL_CURRENT, 0, 0, STYLE,
                        host)
ACRX_DXF_DEFINE_MEMBERS(AcDbRegAppTableRecord, AcDbSymbolTableRecord, AcDb::kDHL_CURRENT, 0, 0, APPID, host)
ACRX_DXF_DEFINE_MEMBERS(AcDbDimStyleTableRecord, AcDbSymbolTableRecord, AcDb::kDHL_CURRENT, 0, 0, DIMSTYLE,
                        host)
ACRX_DXF_DEFINE_MEMBERS(AcDbViewTableRecord, AcDbSymbolTableRecord, AcDb::kDHL_CURRENT, 0, 0, VIEW, host)
ACRX_DXF_DEFINE_MEMBERS(AcDbViewportTableRecord, AcDbSymbolTableRecord, AcDb::kDHL_CURRENT, 0, 0, VPORT, host)
ACRX_DXF_DEFINE_MEMBERS(AcDbUCSTableRecord, AcDbSymbolTableRecord, AcDb::kDHL_CURRENT, 0, 0, UCS, host)
ACRX_DXF_DEFINE_MEMBERS(AcDbBlockTableRecord, AcDbSymbolTableRecord, AcDb::kDHL_CURRENT, 0, 0, BLOCK_RECORD,
                        host)
ACRX_DXF_DEFINE_MEMBERS(AcDbBlockBegin, AcDbEntity, AcDb::kDHL_CURRENT, 0, 0, BLOCK, host)
ACRX_DXF_DEFINE_MEMBERS(AcDbBlockEnd, AcDbEntity, AcDb::kDHL_CURRENT, 0, 0, ENDBLK, host)
ACRX_CONS_DEFINE_MEMBERS(AcDbBlockTable, AcDbSymbolTable, 0)
ACRX_CONS_DEFINE_MEMBERS(AcDbLayerTable, AcDbSymbolTable, 0)
ACRX_CONS_DEFINE_MEMBERS(AcDbLinetypeTable, AcDbSymbolTable, 0)
ACRX_CONS_DEFINE_MEMBERS(AcDbTextStyleTable, AcDbSymbolTable, 0)
ACRX_CONS_DEFINE_MEMBERS(AcDbRegAppTable, AcDbSymbolTable, 0)
ACRX_CONS_DEFINE_MEMBERS(AcDbDimStyleTable, AcDbSymbolTable, 0)
ACRX_CONS_DEFINE_MEMBERS(AcDbViewTable, AcDbSymbolTable, 0)
ACRX_CONS_DEFINE_MEMBERS(AcDbViewportTable, AcDbSymbolTable, 0)
ACRX_CONS_DEFINE_MEMBERS(AcDbUCSTable, AcDbSymbolTable, 0)

namespace host {

void initializeSymbolTableClasses() {
    AcDbSymbolTableRecord::rxInit();
    AcDbSymbolTable::rxInit();
    AcDbLayerTableRecord::rxInit();
    AcDbLinetypeTableRecord::rxInit();
    AcDbTextStyleTableRecord::rxInit();
    AcDbRegAppTableRecord::rxInit();
    AcDbDimStyleTableRecord::rxInit();
    AcDbViewTableRecord::rxInit();
    AcDbViewportTableRecord::rxInit();
    AcDbUCSTableRecord::rxInit();
    AcDbBlockTableRecord::rxInit();
    AcDbBlockBegin::rxInit();
    AcDbBlockEnd::rxInit();
    AcDbBlockTable::rxInit();
    AcDbLayerTable::rxInit();
    AcDbLinetypeTable::rxInit();
    AcDbTextStyleTable::rxInit();
    AcDbRegAppTable::rxInit();
    AcDbDimStyleTable::rxInit();
    AcDbViewTable::rxInit();
    AcDbViewportTable::rxInit();
    AcDbUCSTable::rxInit();
}

} // namespace host

// Records.

Acad::ErrorStatus AcDbSymbolTableRecord::getName(ACHAR*& name) const {
    return acutNewString(mName.kwszPtr(), name);
}
Acad::ErrorStatus AcDbSymbolTableRecord::getName(const ACHAR*& name) const {
    name = mName.kwszPtr();
    return Acad::eOk;
}
Acad::ErrorStatus AcDbSymbolTableRecord::getName(AcString& name) const {
    name = mName;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbSymbolTableRecord::setName(const ACHAR* name) {
    if (name == nullptr || *name == L'\0' ||
        std::wcspbrk(name + (*name == L'*' ? 1 : 0), L"<>/\\\":;?*,=`") != nullptr) {
        return Acad::eInvalidInput;
    }
    assertWriteEnabled();
    AcDbSymbolTable* table = host::peek<AcDbSymbolTable>(ownerId());
    if (table != nullptr) {
        AcDbObjectId existing;
        const host::ReadAccess access(*table);
        if (table->getAt(name, existing) == Acad::eOk && existing != objectId()) {
            return Acad::eDuplicateRecordName;
        }
        table->renamed(objectId().stub(), mName, name);
    }
    mName = name;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbSymbolTableRecord::dwgOutFields(AcDbDwgFiler* filer) const {
    if (const Acad::ErrorStatus status = AcDbObject::dwgOutFields(filer); status != Acad::eOk) {
        return status;
    }
    filer->writeString(mName);
    filer->writeInt16(mFlags);
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbSymbolTableRecord::dwgInFields(AcDbDwgFiler* filer) {
    if (const Acad::ErrorStatus status = AcDbObject::dwgInFields(filer); status != Acad::eOk) {
        return status;
    }
    const AcString before = mName;
    filer->readString(mName);
    filer->readInt16(&mFlags);
    if (filer->filerType() == AcDb::kUndoFiler && mName != before) {
        if (AcDbSymbolTable* table = host::peek<AcDbSymbolTable>(ownerId())) {
            table->renamed(objectId().stub(), before, mName);
        }
    }
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbSymbolTableRecord::dxfInFields(AcDbDxfFiler* filer) {
    std::string unknownMarker;
    bool hasFlags = false;
    const AcString nameBefore = mName;
    while (const host::DxfGroup* group = filer->nextGroup()) {
        if (group->code == 100) {
            const bool known = group->text == "AcDbSymbolTableRecord" || group->text == recordSubclass();
            unknownMarker = known ? std::string() : std::string(group->text);
            if (!known) {
                keepGroup("", *group);
            }
        } else if (!unknownMarker.empty()) {
            keepGroup("", *group);
        } else if (group->code == 2) {
            mName = group->string();
        } else if (group->code == 70 && !std::exchange(hasFlags, true)) { // a style's 70 comes again
            mFlags = group->int16();
        } else if (!takeRecordGroup(filer, *group) && !takeObjectGroup(filer, *group)) {
            keepGroup(recordSubclass(), *group);
        }
    }
    // A record of a table takes another name there too.
    if (auto* table = host::peek<AcDbSymbolTable>(ownerId());
        table != nullptr && !nameBefore.isEmpty() && mName != nameBefore) {
        table->renamed(objectId().stub(), nameBefore, mName);
    }
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbSymbolTableRecord::dxfOutFields(AcDbDxfFiler* filer) const {
    AcDbObject::dxfOutFields(filer);
    filer->writeText(100, "AcDbSymbolTableRecord");
    filer->writeText(100, recordSubclass());
    filer->writeString(2, mName);
    filer->writeInt16(70, flagsForFile());
    writeRecordGroups(filer);
    writeKeptGroups(filer, recordSubclass());
    return filer->filerStatus();
}

// Tables.

Acad::ErrorStatus AcDbSymbolTable::getAt(const ACHAR* name, AcDbObjectId& id, bool getErased) const {
    id.setNull();
    const auto found = mByName.find(std::wstring_view(name != nullptr ? name : L""));
    if (found == mByName.end()) {
        return Acad::eKeyNotFound;
    }
    if (found->second->erased && !getErased) {
        return Acad::eWasErased;
    }
    id = AcDbObjectId(found->second);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbSymbolTable::getAt(const ACHAR* name, AcDbSymbolTableRecord*& record,
                                         AcDb::OpenMode mode, bool openErased) const {
    record = nullptr;
    AcDbObjectId id;
    const Acad::ErrorStatus status = getAt(name, id, openErased);
    return status == Acad::eOk ? acdbOpenObject(record, id, mode, openErased) : status;
}

bool AcDbSymbolTable::has(const ACHAR* name) const {
    AcDbObjectId id;
    return getAt(name, id) == Acad::eOk;
}

bool AcDbSymbolTable::has(AcDbObjectId id) const {
    const auto* record = host::peek<AcDbSymbolTableRecord>(id);
    return record != nullptr && record->ownerId() == objectId();
}

Acad::ErrorStatus AcDbSymbolTable::newIterator(AcDbSymbolTableIterator*& iterator, bool atBeginning,
                                               bool skipDeleted) const {
    iterator = new AcDbSymbolTableIterator(*this, skipDeleted);
    iterator->start(atBeginning, skipDeleted);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbSymbolTable::add(AcDbSymbolTableRecord* record) {
    AcDbObjectId id;
    return add(id, record);
}

Acad::ErrorStatus AcDbSymbolTable::add(AcDbObjectId& id, AcDbSymbolTableRecord* record) {
    if (record == nullptr) {
        return Acad::eNullObjectPointer;
    }
    if (record->mName.isEmpty()) {
        return Acad::eInvalidInput;
    }
    if (database() == nullptr) {
        return Acad::eNoDatabase;
    }
    assertWriteEnabled(false);
    // The host numbers blocks that are given the bare name of a kind of anonymous block.
    if (record->mName.length() == 2 && record->mName.kwszPtr()[0] == L'*') {
        const AcString prefix = record->mName;
        for (std::size_t number = mRecords.size(); has(record->mName.kwszPtr()) || record->mName == prefix;
             ++number) {
            record->mName = (std::wstring(prefix.kwszPtr()) + std::to_wstring(number)).c_str();
        }
    }
    if (has(record->mName.kwszPtr())) {
        return Acad::eDuplicateRecordName;
    }
    if (const Acad::ErrorStatus status = database()->addAcDbObject(id, record); status != Acad::eOk) {
        return status;
    }
    record->setOwnerId(objectId());
    adopt(id.stub());
    if (auto* layer = AcDbLayerTableRecord::cast(record);
        layer != nullptr && layer->linetypeObjectId().isNull()) {
        layer->setLinetypeObjectId(database()->continuousLinetype());
    }
    if (auto* block = AcDbBlockTableRecord::cast(record)) {
        host::ensureBlockEnds(*block);
        block->appendPending();
    }
    return Acad::eOk;
}

void AcDbSymbolTable::adopt(AcDbStub* stub) {
    mRecords.push_back(stub);
    mByName[static_cast<AcDbSymbolTableRecord*>(stub->object)->mName.kwszPtr()] = stub;
}

void AcDbSymbolTable::renamed(AcDbStub* record, const AcString& from, const AcString& to) {
    if (const auto found = mByName.find(std::wstring_view(from.kwszPtr()));
        found != mByName.end() && found->second == record) {
        mByName.erase(found);
    }
    mByName[to.kwszPtr()] = record;
}

// The members of a table come and go with their own records of the undo log; images leave them alone.

Acad::ErrorStatus AcDbSymbolTable::dwgOutFields(AcDbDwgFiler* filer) const {
    if (const Acad::ErrorStatus status = AcDbObject::dwgOutFields(filer); status != Acad::eOk) {
        return status;
    }
    if (filer->filerType() == AcDb::kIdFiler || filer->filerType() == AcDb::kPurgeFiler) {
        for (AcDbStub* record : mRecords) {
            filer->writeSoftOwnershipId(AcDbSoftOwnershipId(record));
        }
    }
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbSymbolTable::dwgInFields(AcDbDwgFiler* filer) {
    return AcDbObject::dwgInFields(filer);
}

Acad::ErrorStatus AcDbSymbolTable::dxfInFields(AcDbDxfFiler* filer) {
    bool isPastMarker = false; // where a reference no longer is the owner
    while (const host::DxfGroup* group = filer->nextGroup()) {
        isPastMarker = isPastMarker || group->code == 100;
        const bool marker = group->code == 100 && group->text == "AcDbSymbolTable";
        const bool kept = group->code != 2 && group->code != 70 && !marker;
        if (kept && ((isPastMarker && group->code == 330) || !takeObjectGroup(filer, *group))) {
            keepGroup("AcDbSymbolTable", *group);
        }
    }
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbSymbolTable::dxfOutFields(AcDbDxfFiler* filer) const {
    AcDbObject::dxfOutFields(filer);
    filer->writeText(100, "AcDbSymbolTable");
    const auto count =
        std::count_if(mRecords.begin(), mRecords.end(), [](const AcDbStub* r) { return !r->erased; });
    filer->writeInt16(70, static_cast<Adesk::Int16>(std::min<std::ptrdiff_t>(count, 32767)));
    writeKeptGroups(filer, "AcDbSymbolTable");
    return filer->filerStatus();
}

AcDbSymbolTableIterator::AcDbSymbolTableIterator(const AcDbSymbolTable& table, bool skipDeleted)
    : mTable(table), mSkipDeleted(skipDeleted) {
    start(true, skipDeleted);
}

bool AcDbSymbolTableIterator::skipped(std::size_t index) const {
    return mSkipDeleted && mTable.records()[index]->erased;
}

void AcDbSymbolTableIterator::start(bool atBeginning, bool skipDeleted) {
    mSkipDeleted = skipDeleted;
    mIndex = atBeginning ? 0 : std::ssize(mTable.records()) - 1;
    if (!done() && skipped(static_cast<std::size_t>(mIndex))) {
        step(atBeginning, skipDeleted);
    }
}

bool AcDbSymbolTableIterator::done() const {
    return mIndex < 0 || mIndex >= std::ssize(mTable.records());
}

void AcDbSymbolTableIterator::step(bool forward, bool skipDeleted) {
    mSkipDeleted = skipDeleted;
    do {
        mIndex += forward ? 1 : -1;
    } while (!done() && skipped(static_cast<std::size_t>(mIndex)));
}

Acad::ErrorStatus AcDbSymbolTableIterator::getRecordId(AcDbObjectId& id) const {
    if (done()) {
        return Acad::eIteratorDone;
    }
    id = AcDbObjectId(mTable.records()[static_cast<std::size_t>(mIndex)]);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbSymbolTableIterator::getRecord(AcDbSymbolTableRecord*& record, AcDb::OpenMode mode,
                                                     bool openErased) const {
    AcDbObjectId id;
    record = nullptr;
    const Acad::ErrorStatus status = getRecordId(id);
    return status == Acad::eOk ? acdbOpenObject(record, id, mode, openErased) : status;
}

Acad::ErrorStatus AcDbSymbolTableIterator::seek(AcDbObjectId id) {
    const auto found = std::find(mTable.records().begin(), mTable.records().end(), id.stub());
    if (found == mTable.records().end()) {
        return Acad::eInvalidInput;
    }
    mIndex = found - mTable.records().begin();
    return Acad::eOk;
}
