// Open state, identity, extended data and filing of AcDbObject.
#include "host/db/dbobject.h"

#include "host/db/dbtrans.h"
#include "host/rx/text.h"

#include <algorithm>

ACRX_NO_CONS_DEFINE_MEMBERS(AcDbObject, AcGiDrawable)
ACRX_NO_CONS_DEFINE_MEMBERS(AcDbObjectReactor, AcRxObject)

namespace {

constexpr int maximumReaders = 256;

/// Fields beyond those of the class travel with images and clones, not in the class's own data.
enum class Part : Adesk::UInt8 {
    none = 0,
    xdata = 1,
    extensionDictionary = 2,
    reactors = 4,
    kept = 8,
    owner = 16
};

bool has(Adesk::UInt8 parts, Part part) {
    return (parts & static_cast<Adesk::UInt8>(part)) != 0;
}

Adesk::UInt8 partsFor(const AcDbDwgFiler& filer) {
    constexpr auto carried = static_cast<Adesk::UInt8>(Part::xdata) | static_cast<Adesk::UInt8>(Part::kept);
    switch (filer.filerType()) {
    case AcDb::kUndoFiler:
        return 31;
    case AcDb::kCopyFiler:
        return carried;
    default:
        return carried | static_cast<Adesk::UInt8>(Part::extensionDictionary) |
               static_cast<Adesk::UInt8>(Part::reactors);
    }
}

const std::vector<AcDbObjectId> noIds;
const host::GroupList noGroups;

} // namespace

AcDbObject::~AcDbObject() {
    if (mExtras != nullptr) {
        for (AcDbObjectReactor* reactor : mExtras->transientReactors) {
            reactor->goodbye(this);
        }
    }
}

Acad::ErrorStatus AcDbObject::setOwnerId(AcDbObjectId owner) {
    assertWriteEnabled();
    mOwner = owner.stub();
    return Acad::eOk;
}

void AcDbObject::getAcDbHandle(AcDbHandle& handle) const {
    handle = this->handle();
}

bool AcDbObject::isReadEnabled() const {
    return mStub == nullptr || mStub->readers > 0 || mStub->openForWrite || mStub->openForNotify ||
           mStub->database->undoLog().isApplying();
}

bool AcDbObject::isWriteEnabled() const {
    return mStub == nullptr || mStub->openForWrite || mStub->database->undoLog().isApplying();
}

void AcDbObject::refuseAccess(bool write) const {
    throw host::OpenStateError(std::string(write ? "eNotOpenForWrite: " : "eNotOpenForRead: ") +
                               host::toUtf8(isA()->name()) + " " + host::toUtf8(handle().toString()));
}

void AcDbObject::assertWriteEnabled(bool autoUndo, bool recordModified) {
    if (mStub == nullptr) {
        return;
    }
    host::UndoLog& undo = mStub->database->undoLog();
    if (!mStub->openForWrite && !undo.isApplying()) {
        refuseAccess(true);
    }
    ++mStub->database->impl().changeStamp;
    if (autoUndo && !mUndoDisabled && mImageEpoch != undo.epoch()) {
        undo.recordImage(*this);
    }
    if (recordModified && !mModified) {
        mModified = true;
        mStub->database->impl().places.touch(mStub);
        for (AcDbDatabaseReactor* reactor : mStub->database->impl().reactors) {
            reactor->objectOpenedForModify(mStub->database, this);
        }
    }
}

Acad::ErrorStatus acdbOpenAcDbObject(AcDbObject*& object, AcDbObjectId id, AcDb::OpenMode mode,
                                     bool openErased) {
    object = nullptr;
    AcDbStub* stub = id.stub();
    if (stub == nullptr) {
        return Acad::eNullObjectId;
    }
    if (stub->object == nullptr) {
        return Acad::eUnknownHandle;
    }
    if (stub->erased && !openErased) {
        return Acad::eWasErased;
    }
    if (stub->openForWrite) {
        return Acad::eWasOpenForWrite;
    }
    if (stub->openForNotify) {
        return Acad::eWasOpenForNotify;
    }
    switch (mode) {
    case AcDb::kForRead:
        if (stub->readers >= maximumReaders) {
            return Acad::eAtMaxReaders;
        }
        ++stub->readers;
        break;
    case AcDb::kForWrite:
        if (stub->readers > 0) {
            return Acad::eWasOpenForRead;
        }
        if (host::isOnLockedLayer(*stub->object)) {
            return Acad::eOnLockedLayer;
        }
        stub->openForWrite = true;
        break;
    case AcDb::kForNotify:
        stub->openForNotify = true;
        break;
    }
    object = stub->object;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbObject::upgradeOpen() {
    if (mStub == nullptr || mStub->openForWrite) {
        return mStub == nullptr ? Acad::eOk : Acad::eWasOpenForWrite;
    }
    if (mStub->openForNotify) {
        mStub->openForNotify = false;
        mStub->openForWrite = true;
        return Acad::eOk;
    }
    if (mStub->readers == 0) {
        return Acad::eNotOpenForRead;
    }
    if (mStub->readers > 1) {
        return Acad::eHadMultipleReaders;
    }
    if (host::isOnLockedLayer(*this)) {
        return Acad::eOnLockedLayer;
    }
    mStub->readers = 0;
    mStub->openForWrite = true;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbObject::downgradeOpen() {
    if (mStub == nullptr) {
        return Acad::eOk;
    }
    if (!mStub->openForWrite) {
        return Acad::eNotOpenForWrite;
    }
    const bool transactional = mStub->transactionOpen;
    mStub->transactionOpen = false;
    const Acad::ErrorStatus status = close();
    mStub->transactionOpen = transactional;
    mStub->readers = 1;
    return status;
}

Acad::ErrorStatus AcDbObject::close() {
    if (mStub == nullptr) {
        return Acad::eOk;
    }
    if (mStub->openForNotify) {
        mStub->openForNotify = false;
        return Acad::eOk;
    }
    if (!mStub->openForWrite) {
        if (mStub->readers == 0) {
            return Acad::eNotOpened;
        }
        --mStub->readers;
        return subClose();
    }
    const Acad::ErrorStatus status = subClose();
    mStub->openForWrite = false;
    mNew = false;
    const bool modified = mModified;
    mModified = false;
    const bool toggled = mEraseToggled;
    mEraseToggled = false;
    host::DatabaseImpl& database = mStub->database->impl();
    if (modified) {
        database.notifyModified(*this);
    }
    if (toggled) {
        database.notifyErased(*this, mStub->erased);
    }
    if (mExtras != nullptr && (modified || toggled)) {
        for (AcDbObjectReactor* reactor : std::vector(mExtras->transientReactors)) {
            toggled ? reactor->erased(this, mStub->erased) : reactor->modified(this);
        }
        for (AcDbObjectId reactor : std::vector(mExtras->reactors)) {
            if (AcDbObject* object = host::peek<AcDbObject>(reactor)) {
                toggled ? object->erased(this, mStub->erased) : object->modified(this);
            }
        }
    }
    return status;
}

Acad::ErrorStatus AcDbObject::cancel() {
    if (mStub == nullptr || !mStub->openForWrite) {
        return close();
    }
    mStub->database->undoLog().restoreLatestImage(*this);
    mStub->database->impl().places.touch(mStub);
    mModified = false;
    mEraseToggled = false;
    subCancel();
    return close();
}

Acad::ErrorStatus AcDbObject::erase(bool erasing) {
    if (mStub == nullptr) {
        return Acad::eNoDatabase;
    }
    if (!isWriteEnabled()) {
        return Acad::eNotOpenForWrite;
    }
    if (mStub->erased == erasing) {
        return erasing ? Acad::eWasErased : Acad::eOk;
    }
    if (const Acad::ErrorStatus status = subErase(erasing); status != Acad::eOk) {
        return status;
    }
    mStub->database->undoLog().recordErase(*mStub);
    ++mStub->database->impl().changeStamp;
    mStub->erased = erasing;
    mStub->erasedWithOwner = false;
    mEraseToggled = true;
    return Acad::eOk;
}

namespace host {

Acad::ErrorStatus eraseWithOwner(AcDbStub* stub, bool erasing) {
    if (stub == nullptr || stub->erased == erasing || (!erasing && !stub->erasedWithOwner)) {
        return Acad::eOk;
    }
    AcDbObject* object = nullptr;
    Acad::ErrorStatus status = acdbOpenAcDbObject(object, AcDbObjectId(stub), AcDb::kForWrite, true);
    if (status == Acad::eOk) {
        status = object->erase(erasing);
        stub->erasedWithOwner = erasing && status == Acad::eOk;
        object->close();
    }
    return status;
}

} // namespace host

Acad::ErrorStatus AcDbObject::subErase(bool) {
    return Acad::eOk;
}

Acad::ErrorStatus AcDbObject::handOverTo(AcDbObject* replacement, bool keepXData,
                                         bool keepExtensionDictionary) {
    if (mStub == nullptr) {
        return Acad::eNoDatabase;
    }
    if (!mStub->openForWrite) {
        return Acad::eNotOpenForWrite;
    }
    if (replacement == nullptr || replacement->mStub != nullptr) {
        return Acad::eIllegalReplacement;
    }
    mStub->database->undoLog().recordReplaced(*mStub, *this);
    AcDbStub* stub = mStub;
    const bool keepExtras = keepXData || keepExtensionDictionary;
    stub->database->impl().replaceObject(stub, replacement, keepExtras);
    if (keepExtras && replacement->mExtras != nullptr) {
        if (!keepXData) {
            replacement->mExtras->xdata.clear();
        }
        if (!keepExtensionDictionary) {
            replacement->mExtras->extensionDictionary.setNull();
        }
    }
    replacement->mModified = true;
    replacement->subBecameResident();
    return Acad::eOk;
}

Acad::ErrorStatus AcDbObject::swapIdWith(AcDbObjectId other, bool swapXData, bool swapExtensionDictionary) {
    AcDbObject* partner = host::peek<AcDbObject>(other);
    if (mStub == nullptr || partner == nullptr || partner->database() != database()) {
        return Acad::eWrongDatabase;
    }
    assertWriteEnabled();
    partner->assertWriteEnabled();
    std::swap(mStub->object, partner->mStub->object);
    std::swap(mStub, partner->mStub);
    std::swap(mOwner, partner->mOwner);
    if (!swapXData && !swapExtensionDictionary) {
        std::swap(mExtras, partner->mExtras);
    }
    return Acad::eOk;
}

Acad::ErrorStatus AcDbObject::dwgIn(AcDbDwgFiler* filer) {
    assertWriteEnabled();
    return dwgInFields(filer);
}

Acad::ErrorStatus AcDbObject::dwgOut(AcDbDwgFiler* filer) const {
    assertReadEnabled();
    return dwgOutFields(filer);
}

Acad::ErrorStatus AcDbObject::dwgOutFields(AcDbDwgFiler* filer) const {
    assertReadEnabled();
    if (!filer->filesCommonData()) {
        return filer->filerStatus();
    }
    Adesk::UInt8 parts = 0;
    const Adesk::UInt8 wanted = partsFor(*filer);
    if (mExtras != nullptr) {
        const auto add = [&](Part part, bool present) {
            if (present && has(wanted, part)) {
                parts |= static_cast<Adesk::UInt8>(part);
            }
        };
        add(Part::xdata, !mExtras->xdata.empty());
        add(Part::extensionDictionary, !mExtras->extensionDictionary.isNull());
        add(Part::reactors, !mExtras->reactors.empty());
        add(Part::kept, !mExtras->kept.empty());
    }
    parts |= wanted & static_cast<Adesk::UInt8>(Part::owner);
    filer->writeUInt8(parts);
    if (has(parts, Part::owner)) {
        filer->writeSoftPointerId(AcDbSoftPointerId(mOwner));
    }
    if (has(parts, Part::xdata)) {
        mExtras->xdata.dwgOut(filer, database());
    }
    if (has(parts, Part::extensionDictionary)) {
        filer->writeHardOwnershipId(mExtras->extensionDictionary);
    }
    if (has(parts, Part::reactors)) {
        filer->writeUInt32(static_cast<Adesk::UInt32>(mExtras->reactors.size()));
        for (AcDbObjectId reactor : mExtras->reactors) {
            filer->writeSoftPointerId(reactor);
        }
    }
    if (has(parts, Part::kept)) {
        filer->writeUInt32(static_cast<Adesk::UInt32>(mExtras->kept.size()));
        for (const host::ObjectExtras::Kept& kept : mExtras->kept) {
            filer->writeString(host::fromUtf8(kept.subclass).c_str());
            kept.groups.dwgOut(filer, database());
        }
    }
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbObject::dwgInFields(AcDbDwgFiler* filer) {
    assertWriteEnabled();
    if (!filer->filesCommonData()) {
        return filer->filerStatus();
    }
    Adesk::UInt8 parts = 0;
    filer->readUInt8(&parts);
    if (has(parts, Part::owner)) {
        AcDbSoftPointerId owner;
        filer->readSoftPointerId(&owner);
        mOwner = owner.stub();
    }
    constexpr Adesk::UInt8 extraParts = 15;
    if (mExtras == nullptr && (parts & extraParts) == 0) {
        return filer->filerStatus();
    }
    host::ObjectExtras& extras = needExtras();
    extras.xdata.clear();
    extras.extensionDictionary.setNull();
    extras.reactors.clear();
    extras.kept.clear();
    if (has(parts, Part::xdata)) {
        extras.xdata.dwgIn(filer);
    }
    if (has(parts, Part::extensionDictionary)) {
        AcDbHardOwnershipId dictionary;
        filer->readHardOwnershipId(&dictionary);
        extras.extensionDictionary = dictionary;
    }
    if (has(parts, Part::reactors)) {
        Adesk::UInt32 count = 0;
        filer->readUInt32(&count);
        for (; count > 0 && filer->filerStatus() == Acad::eOk; --count) {
            AcDbSoftPointerId reactor;
            filer->readSoftPointerId(&reactor);
            if (!reactor.isNull()) {
                extras.reactors.push_back(reactor);
            }
        }
    }
    if (has(parts, Part::kept)) {
        Adesk::UInt32 count = 0;
        filer->readUInt32(&count);
        for (; count > 0 && filer->filerStatus() == Acad::eOk; --count) {
            AcString subclass;
            filer->readString(subclass);
            host::GroupList groups;
            groups.dwgIn(filer);
            extras.kept.push_back({host::toUtf8(subclass.kwszPtr()), std::move(groups)});
        }
    }
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbObject::dxfIn(AcDbDxfFiler* filer) {
    assertWriteEnabled();
    if (const Acad::ErrorStatus status = dxfInFields(filer); status != Acad::eOk) {
        return status;
    }
    // Subclasses that no class of the object knows.
    while (const host::DxfGroup* group = filer->nextGroup()) {
        if (group->code < 1000 || !takeObjectGroup(filer, *group)) {
            keepGroup("", *group);
        }
    }
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbObject::dxfOut(AcDbDxfFiler* filer) const {
    assertReadEnabled();
    if (const Acad::ErrorStatus status = dxfOutFields(filer); status != Acad::eOk) {
        return status;
    }
    writeKeptGroups(filer, "");
    return mExtras != nullptr ? filer->writeKept(mExtras->xdata) : Acad::eOk;
}

Acad::ErrorStatus AcDbObject::dxfInFields(AcDbDxfFiler* filer) {
    while (const host::DxfGroup* group = filer->nextGroup()) {
        if (!takeObjectGroup(filer, *group)) {
            filer->pushBackItem();
            break;
        }
    }
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbObject::dxfOutFields(AcDbDxfFiler* filer) const {
    if (mStub != nullptr) {
        filer->writeAcDbHandle(isKindOf(AcDbDimStyleTableRecord::desc()) ? 105 : 5, handle());
    }
    if (mExtras != nullptr && !mExtras->extensionDictionary.isErased()) {
        filer->writeText(102, "{ACAD_XDICTIONARY");
        filer->writeReference(360, mExtras->extensionDictionary.stub());
        filer->writeText(102, "}");
    }
    const auto isThere = [](AcDbObjectId reactor) { return !reactor.isErased(); };
    if (mExtras != nullptr && std::ranges::any_of(mExtras->reactors, isThere)) {
        filer->writeText(102, "{ACAD_REACTORS");
        for (const AcDbObjectId reactor : mExtras->reactors) {
            if (isThere(reactor)) {
                filer->writeReference(330, reactor.stub());
            }
        }
        filer->writeText(102, "}");
    }
    writeKeptGroups(filer, "102");
    if (mStub != nullptr) {
        filer->writeReference(330, mOwner);
    }
    return filer->filerStatus();
}

bool AcDbObject::takeObjectGroup(AcDbDxfFiler* filer, const host::DxfGroup& group) {
    if (group.code >= 1000 && group.code <= 1071) {
        needExtras().xdata.add(group);
        return true;
    }
    switch (group.code) {
    case 0:
    case 5:
    case 105:
        return true; // name and handle are the reader's business
    case 330:
        if (mOwner == nullptr) {
            mOwner = group.id;
            return true;
        }
        return false;
    case 102:
        break;
    default:
        return false;
    }
    if (group.text.empty() || group.text.front() != '{') {
        return false;
    }
    const bool reactors = group.text == "{ACAD_REACTORS";
    const bool dictionary = group.text == "{ACAD_XDICTIONARY";
    host::GroupList unknown;
    if (!reactors && !dictionary) {
        unknown.add(group);
    }
    bool end = false;
    while (const host::DxfGroup* inner = end ? nullptr : filer->nextGroup()) {
        end = inner->code == 102 && inner->text == "}";
        if (inner->code == 0 || inner->code == 100 || inner->code >= 1000) {
            filer->pushBackItem(); // the closing brace is missing
            break;
        }
        if (reactors && inner->code == 330) {
            if (inner->id != nullptr) {
                needExtras().reactors.push_back(inner->id);
            }
        } else if (dictionary && (inner->code == 360 || inner->code == 330)) {
            needExtras().extensionDictionary = inner->id;
        } else if (!reactors && !dictionary) {
            unknown.add(*inner);
        }
    }
    if (!unknown.empty()) {
        if (!end) {
            unknown.add(102, "}");
        }
        needExtras().kept.push_back({"102", std::move(unknown)});
    }
    return true;
}

host::ObjectExtras& AcDbObject::needExtras() {
    if (mExtras == nullptr) {
        mExtras = std::make_unique<host::ObjectExtras>();
    }
    return *mExtras;
}

void AcDbObject::keepGroup(std::string_view subclass, const host::DxfGroup& group) {
    std::vector<host::ObjectExtras::Kept>& kept = needExtras().kept;
    if (kept.empty() || kept.back().subclass != subclass) {
        kept.push_back({std::string(subclass), {}});
    }
    kept.back().groups.add(group);
}

void AcDbObject::keepRest(AcDbDxfFiler* filer) {
    while (const host::DxfGroup* group = filer->nextGroup()) {
        if (group->code < 1000 || !takeObjectGroup(filer, *group)) {
            keepGroup("", *group);
        }
    }
}

const host::GroupList* AcDbObject::keptGroups(std::string_view subclass) const {
    if (mExtras != nullptr) {
        for (const host::ObjectExtras::Kept& kept : mExtras->kept) {
            if (kept.subclass == subclass) {
                return &kept.groups;
            }
        }
    }
    return nullptr;
}

void AcDbObject::replaceKeptGroups(std::string_view subclass, host::GroupList groups) {
    std::vector<host::ObjectExtras::Kept>& kept = needExtras().kept;
    std::erase_if(kept, [&](const host::ObjectExtras::Kept& one) { return one.subclass == subclass; });
    if (!groups.empty()) {
        kept.push_back({std::string(subclass), std::move(groups)});
    }
}

void AcDbObject::writeKeptGroups(AcDbDxfFiler* filer, std::string_view subclass) const {
    if (mExtras == nullptr) {
        return;
    }
    for (const host::ObjectExtras::Kept& kept : mExtras->kept) {
        if (kept.subclass == subclass) {
            filer->writeKept(kept.groups);
        }
    }
}

const host::GroupList& AcDbObject::xdataGroups() const {
    return mExtras != nullptr ? mExtras->xdata : noGroups;
}

void AcDbObject::setXdataGroups(host::GroupList groups) {
    if (groups.empty() && mExtras == nullptr) {
        return;
    }
    assertWriteEnabled();
    needExtras().xdata = std::move(groups);
}

namespace {

/// The groups of one application, its name included.
host::GroupList groupsOf(const host::GroupList& all, std::string_view application) {
    host::GroupList own;
    bool inside = false;
    for (const host::GroupList::Group group : all) {
        if (group.code == 1001) {
            inside = host::equalNoCase(host::fromUtf8(group.text), host::fromUtf8(application));
        }
        if (inside) {
            own.add(group.code, group.text);
        }
    }
    return own;
}

} // namespace

resbuf* AcDbObject::xData(const ACHAR* application) const {
    assertReadEnabled();
    const host::GroupList& all = xdataGroups();
    if (application == nullptr || *application == L'\0') {
        return all.toResbuf(database()).release();
    }
    return groupsOf(all, host::toUtf8(application)).toResbuf(database()).release();
}

Acad::ErrorStatus AcDbObject::setXData(const resbuf* data) {
    assertWriteEnabled();
    const host::GroupList given = host::GroupList::fromResbuf(data);
    std::vector<std::string> applications;
    for (const host::GroupList::Group group : given) {
        if (group.code == 1001) {
            if (database() != nullptr && !host::peek<AcDbRegAppTable>(database()->regAppTableId())
                                              ->has(host::fromUtf8(group.text).c_str())) {
                return Acad::eRegappIdNotFound;
            }
            applications.emplace_back(group.text);
        }
    }
    if (applications.empty()) {
        return given.empty() ? Acad::eOk : Acad::eBadDxfSequence;
    }
    // Applications that are given are replaced; one with its name alone is removed.
    host::GroupList result;
    const auto isGiven = [&](std::string_view name) {
        return std::any_of(applications.begin(), applications.end(), [&](const std::string& application) {
            return host::equalNoCase(host::fromUtf8(application), host::fromUtf8(name));
        });
    };
    bool keep = false;
    for (const host::GroupList::Group group : xdataGroups()) {
        if (group.code == 1001) {
            keep = !isGiven(group.text);
        }
        if (keep) {
            result.add(group.code, group.text);
        }
    }
    for (const std::string& application : applications) {
        const host::GroupList own = groupsOf(given, application);
        if (auto second = own.begin(); ++second != own.end()) {
            result.append(own);
        }
    }
    needExtras().xdata = std::move(result);
    return Acad::eOk;
}

AcDbObjectId AcDbObject::extensionDictionary() const {
    return mExtras != nullptr ? mExtras->extensionDictionary : AcDbObjectId();
}

void AcDbObject::setExtensionDictionary(AcDbObjectId id) {
    assertWriteEnabled();
    needExtras().extensionDictionary = id;
}

Acad::ErrorStatus AcDbObject::createExtensionDictionary() {
    assertWriteEnabled();
    if (database() == nullptr) {
        return Acad::eNoDatabase;
    }
    if (const AcDbObjectId existing = extensionDictionary(); !existing.isNull()) {
        if (!existing.isErased()) {
            return Acad::eAlreadyInDb;
        }
        AcDbObject* dictionary = nullptr;
        if (acdbOpenAcDbObject(dictionary, existing, AcDb::kForWrite, true) == Acad::eOk) {
            dictionary->erase(false);
            dictionary->close();
        }
        return Acad::eOk;
    }
    auto* dictionary = new AcDbDictionary;
    dictionary->setTreatElementsAsHard(true);
    AcDbObjectId id;
    database()->addAcDbObject(id, dictionary);
    dictionary->mOwner = mStub;
    dictionary->close();
    needExtras().extensionDictionary = id;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbObject::releaseExtensionDictionary() {
    assertWriteEnabled();
    const host::Opened<AcDbDictionary> dictionary(extensionDictionary(), AcDb::kForWrite);
    if (!dictionary) {
        return Acad::eKeyNotFound;
    }
    if (dictionary->numEntries() != 0) {
        return Acad::eContainerNotEmpty;
    }
    return dictionary->erase();
}

void AcDbObject::addPersistentReactor(AcDbObjectId reactor) {
    assertWriteEnabled();
    if (!hasPersistentReactor(reactor)) {
        needExtras().reactors.push_back(reactor);
    }
}

Acad::ErrorStatus AcDbObject::removePersistentReactor(AcDbObjectId reactor) {
    assertWriteEnabled();
    return mExtras != nullptr && std::erase(mExtras->reactors, reactor) > 0 ? Acad::eOk : Acad::eKeyNotFound;
}

bool AcDbObject::hasPersistentReactor(AcDbObjectId reactor) const {
    const std::vector<AcDbObjectId>& all = persistentReactors();
    return std::find(all.begin(), all.end(), reactor) != all.end();
}

const std::vector<AcDbObjectId>& AcDbObject::persistentReactors() const {
    return mExtras != nullptr ? mExtras->reactors : noIds;
}

Acad::ErrorStatus AcDbObject::addReactor(AcDbObjectReactor* reactor) const {
    const_cast<AcDbObject*>(this)->needExtras().transientReactors.push_back(reactor);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbObject::removeReactor(AcDbObjectReactor* reactor) const {
    return mExtras != nullptr && std::erase(mExtras->transientReactors, reactor) > 0 ? Acad::eOk
                                                                                     : Acad::eKeyNotFound;
}

AcRxObject* AcDbObject::clone() const {
    std::unique_ptr<AcRxObject> copy(isA()->create());
    if (copy == nullptr || copy->copyFrom(this) != Acad::eOk) {
        return nullptr;
    }
    return copy.release();
}

Acad::ErrorStatus AcDbObject::copyFrom(const AcRxObject* other) {
    // An object may take the fields of one of its class or of a class it comes from.
    if (other == nullptr || !isKindOf(other->isA())) {
        return Acad::eWrongObjectType;
    }
    assertWriteEnabled();
    host::MemoryDwgFiler filer(AcDb::kCopyFiler, database());
    const auto* source = static_cast<const AcDbObject*>(other);
    if (source->isA() != isA()) {
        return copyFromBase(*source);
    }
    if (const Acad::ErrorStatus status = source->dwgOutFields(&filer); status != Acad::eOk) {
        return status;
    }
    filer.rewind();
    return dwgInFields(&filer);
}

Acad::ErrorStatus AcDbObject::copyFromBase(const AcDbObject&) {
    return Acad::eWrongObjectType;
}
