// Block table records: the entities they own, and their filing.
#include "host/db/dbdatabase.h"
#include "host/db/entities/blockextents.h"
#include "host/db/entities/blockreference.h"

#include <algorithm>

AcDbBlockTableRecord::AcDbBlockTableRecord() = default;
AcDbBlockTableRecord::~AcDbBlockTableRecord() = default;

host::BlockExtents& AcDbBlockTableRecord::measuredExtents() const {
    if (mMeasured == nullptr) {
        mMeasured = std::make_unique<host::BlockExtents>();
    }
    return *mMeasured;
}

Acad::ErrorStatus AcDbBlockTableRecord::appendAcDbEntity(AcDbEntity* entity) {
    AcDbObjectId id;
    return appendAcDbEntity(id, entity);
}

Acad::ErrorStatus AcDbBlockTableRecord::appendAcDbEntity(AcDbObjectId& id, AcDbEntity* entity) {
    if (entity == nullptr) {
        return Acad::eNullEntityPointer;
    }
    assertWriteEnabled(false);
    AcDbDatabase* target = database();
    if (target == nullptr) {
        // A definition that is built before it is added: its entities follow it into the database.
        mPending.emplace_back(entity);
        id.setNull();
        return Acad::eOk;
    }
    // A layout cannot be part of a block, so only itself may not stand in it.
    if (const auto* reference = AcDbBlockReference::cast(entity)) {
        const AcDbObjectId shown = reference->data().block;
        if (isLayout() ? shown == objectId() : host::blockContains(shown, objectId())) {
            return Acad::eSelfReference;
        }
    }
    // Properties that were never set come from the drawing's current ones.
    entity->completeProperties(*target);
    if (const Acad::ErrorStatus status = target->addAcDbObject(id, entity); status != Acad::eOk) {
        return status;
    }
    entity->setOwnerId(objectId());
    mEntities.push_back(id.stub());
    return Acad::eOk;
}

Acad::ErrorStatus AcDbBlockTableRecord::newIterator(AcDbBlockTableRecordIterator*& iterator, bool atBeginning,
                                                    bool skipDeleted) const {
    iterator = new AcDbBlockTableRecordIterator(*this, atBeginning, skipDeleted);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbBlockTableRecord::setOrigin(const AcGePoint3d& origin) {
    assertWriteEnabled();
    mOrigin = origin;
    return Acad::eOk;
}
Acad::ErrorStatus AcDbBlockTableRecord::comments(AcString& text) const {
    text = mComments;
    return Acad::eOk;
}
Acad::ErrorStatus AcDbBlockTableRecord::setComments(const ACHAR* text) {
    assertWriteEnabled();
    mComments = text;
    return Acad::eOk;
}
Acad::ErrorStatus AcDbBlockTableRecord::pathName(AcString& path) const {
    path = mPathName;
    return Acad::eOk;
}
Acad::ErrorStatus AcDbBlockTableRecord::setPathName(const ACHAR* path) {
    assertWriteEnabled();
    mPathName = path;
    return Acad::eOk;
}
Acad::ErrorStatus AcDbBlockTableRecord::setLayoutId(AcDbObjectId layout) {
    assertWriteEnabled();
    mLayout = layout;
    return Acad::eOk;
}
Acad::ErrorStatus AcDbBlockTableRecord::setExplodable(bool explodable) {
    assertWriteEnabled();
    mExplodable = explodable;
    return Acad::eOk;
}
Acad::ErrorStatus AcDbBlockTableRecord::setBlockInsertUnits(Adesk::Int16 units) {
    assertWriteEnabled();
    mInsertUnits = units;
    return Acad::eOk;
}

bool AcDbBlockTableRecord::hasAttributeDefinitions() const {
    return std::any_of(mEntities.begin(), mEntities.end(), [](AcDbStub* stub) {
        return !stub->erased && stub->object != nullptr && stub->object->dxfRecordName() == "ATTDEF";
    });
}

bool AcDbBlockTableRecord::isModelSpace() const {
    return database() != nullptr ? database()->modelSpaceId() == objectId()
                                 : mName.compareNoCase(ACDB_MODEL_SPACE) == 0;
}
bool AcDbBlockTableRecord::isPaperSpace() const {
    return isLayout() && !isModelSpace();
}

Acad::ErrorStatus AcDbBlockTableRecord::getBlockReferenceIds(AcDbObjectIdArray& ids, bool, bool) {
    if (database() == nullptr) {
        return Acad::eNoDatabase;
    }
    database()->impl().forEachStub([&](AcDbStub& stub) {
        if (stub.object == nullptr || stub.erased || stub.object->dxfRecordName() != "INSERT") {
            return;
        }
        host::IdCollector collector(AcDb::kPurgeFiler);
        const host::ReadAccess access(*stub.object);
        stub.object->dwgOutFields(&collector);
        const bool refers = std::any_of(collector.references.begin(), collector.references.end(),
                                        [&](const auto& reference) { return reference.id == objectId(); });
        if (refers) {
            ids.append(AcDbObjectId(&stub));
        }
    });
    return Acad::eOk;
}

Acad::ErrorStatus AcDbBlockTableRecord::subErase(bool erasing) {
    const auto toggle = [erasing](AcDbStub* stub) { host::eraseWithOwner(stub, erasing); };
    std::for_each(mEntities.begin(), mEntities.end(), toggle);
    toggle(mBlockBegin.stub());
    toggle(mBlockEnd.stub());
    return Acad::eOk;
}

void AcDbBlockTableRecord::setBlockData(Adesk::Int16 flags, const AcGePoint3d& origin, AcString comments,
                                        AcString pathName) {
    mFlags = flags;
    mOrigin = origin;
    mComments = std::move(comments);
    mPathName = std::move(pathName);
}

void AcDbBlockTableRecord::appendPending() {
    for (std::unique_ptr<AcDbEntity>& entity : std::exchange(mPending, {})) {
        AcDbObjectId id;
        AcDbEntity* given = entity.release();
        if (appendAcDbEntity(id, given) == Acad::eOk) {
            given->close();
        }
    }
}

namespace {

/// The entities are filed with a record only where something follows them: an undo image does without.
bool filesEntities(const AcDbDwgFiler& filer) {
    return filer.filerType() != AcDb::kUndoFiler && filer.filerType() != AcDb::kCopyFiler;
}

} // namespace

Acad::ErrorStatus AcDbBlockTableRecord::dwgOutFields(AcDbDwgFiler* filer) const {
    if (const Acad::ErrorStatus status = AcDbSymbolTableRecord::dwgOutFields(filer); status != Acad::eOk) {
        return status;
    }
    filer->writePoint3d(mOrigin);
    filer->writeString(mComments);
    filer->writeString(mPathName);
    filer->writeInt16(mInsertUnits);
    filer->writeBool(mExplodable);
    filer->writeBool(mUniformScaling);
    filer->writeSoftPointerId(mLayout);
    filer->writeHardOwnershipId(mBlockBegin);
    filer->writeHardOwnershipId(mBlockEnd);
    if (filesEntities(*filer)) {
        std::vector<AcDbStub*> present;
        std::copy_if(mEntities.begin(), mEntities.end(), std::back_inserter(present),
                     [](const AcDbStub* stub) { return !stub->erased; });
        filer->writeUInt32(static_cast<Adesk::UInt32>(present.size()));
        for (AcDbStub* entity : present) {
            filer->writeHardOwnershipId(AcDbHardOwnershipId(entity));
        }
    }
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbBlockTableRecord::dwgInFields(AcDbDwgFiler* filer) {
    if (const Acad::ErrorStatus status = AcDbSymbolTableRecord::dwgInFields(filer); status != Acad::eOk) {
        return status;
    }
    filer->readPoint3d(&mOrigin);
    filer->readString(mComments);
    filer->readString(mPathName);
    filer->readInt16(&mInsertUnits);
    filer->readBool(&mExplodable);
    filer->readBool(&mUniformScaling);
    AcDbSoftPointerId layout;
    filer->readSoftPointerId(&layout);
    mLayout = layout;
    AcDbHardOwnershipId begin;
    AcDbHardOwnershipId end;
    filer->readHardOwnershipId(&begin);
    filer->readHardOwnershipId(&end);
    setBlockBeginAndEnd(begin, end);
    if (filesEntities(*filer)) {
        Adesk::UInt32 count = 0;
        filer->readUInt32(&count);
        mEntities.clear();
        for (; count > 0 && filer->filerStatus() == Acad::eOk; --count) {
            AcDbHardOwnershipId entity;
            filer->readHardOwnershipId(&entity);
            if (!entity.isNull()) {
                mEntities.push_back(entity.stub());
            }
        }
    }
    return filer->filerStatus();
}

bool AcDbBlockTableRecord::takeRecordGroup(AcDbDxfFiler*, const host::DxfGroup& group) {
    switch (group.code) {
    case 340:
        mLayout = AcDbObjectId(group.id);
        return true;
    case 280:
        mExplodable = group.boolean();
        return true;
    case 281:
        mUniformScaling = group.boolean();
        return true;
    default:
        return false; // 70, the insertion units, stands where other records have their flags
    }
}

void AcDbBlockTableRecord::writeRecordGroups(AcDbDxfFiler* filer) const {
    filer->writeObjectId(340, mLayout);
    filer->writeInt16(70, mInsertUnits);
    filer->writeInt16(280, mExplodable ? 1 : 0);
    filer->writeInt16(281, mUniformScaling ? 1 : 0);
}

Acad::ErrorStatus AcDbBlockTableRecord::dxfInFields(AcDbDxfFiler* filer) {
    const Adesk::Int16 flags = mFlags;
    const Acad::ErrorStatus status = AcDbSymbolTableRecord::dxfInFields(filer);
    mInsertUnits = mFlags;
    mFlags = flags;
    return status;
}

Acad::ErrorStatus AcDbBlockTableRecord::dxfOutFields(AcDbDxfFiler* filer) const {
    AcDbObject::dxfOutFields(filer);
    filer->writeText(100, "AcDbSymbolTableRecord");
    filer->writeText(100, recordSubclass());
    filer->writeString(2, mName);
    writeRecordGroups(filer);
    writeKeptGroups(filer, recordSubclass());
    return filer->filerStatus();
}

AcDbBlockTableRecordIterator::AcDbBlockTableRecordIterator(const AcDbBlockTableRecord& block,
                                                           bool atBeginning, bool skipDeleted)
    : mBlock(block), mSkipDeleted(skipDeleted) {
    start(atBeginning, skipDeleted);
}

bool AcDbBlockTableRecordIterator::skipped() const {
    const AcDbStub* stub = mBlock.entities()[static_cast<std::size_t>(mIndex)];
    return stub->object == nullptr || (mSkipDeleted && stub->erased);
}

void AcDbBlockTableRecordIterator::start(bool atBeginning, bool skipDeleted) {
    mSkipDeleted = skipDeleted;
    mIndex = atBeginning ? 0 : std::ssize(mBlock.entities()) - 1;
    if (!done() && skipped()) {
        step(atBeginning, skipDeleted);
    }
}

void AcDbBlockTableRecordIterator::step(bool forward, bool skipDeleted) {
    mSkipDeleted = skipDeleted;
    do {
        mIndex += forward ? 1 : -1;
    } while (!done() && skipped());
}

Acad::ErrorStatus AcDbBlockTableRecordIterator::getEntityId(AcDbObjectId& id) const {
    if (done()) {
        return Acad::eIteratorDone;
    }
    id = AcDbObjectId(mBlock.entities()[static_cast<std::size_t>(mIndex)]);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbBlockTableRecordIterator::getEntity(AcDbEntity*& entity, AcDb::OpenMode mode,
                                                          bool openErased) const {
    AcDbObjectId id;
    entity = nullptr;
    const Acad::ErrorStatus status = getEntityId(id);
    return status == Acad::eOk ? acdbOpenObject(entity, id, mode, openErased) : status;
}

Acad::ErrorStatus AcDbBlockTableRecordIterator::seek(AcDbObjectId id) {
    const auto found = std::find(mBlock.entities().begin(), mBlock.entities().end(), id.stub());
    if (found == mBlock.entities().end()) {
        return Acad::eInvalidInput;
    }
    mIndex = found - mBlock.entities().begin();
    return Acad::eOk;
}
