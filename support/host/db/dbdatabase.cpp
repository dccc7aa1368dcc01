// The drawing as a whole: handles, containers, header variables, reactors.
#include "host/db/dbdatabase.h"

#include "host/db/dbtrans.h"
#include "host/db/entities/classes.h"
#include "host/rx/text.h"

#include <algorithm>
#include <array>
#include <map>
#include <utility>

ACRX_NO_CONS_DEFINE_MEMBERS(AcDbDatabase, AcRxObject)
ACRX_NO_CONS_DEFINE_MEMBERS(AcDbDatabaseReactor, AcRxObject)
ACRX_NO_CONS_DEFINE_MEMBERS(AcDbHostApplicationServices, AcRxObject)

namespace host {

/// Stubs by handle, in small pages that stay where they are. Handles are mostly given out in order, so a
/// table of pages finds them without hashing; far-off handles of odd files go to a map of pages.
struct DatabaseImpl::Handles {
    static constexpr std::size_t pageSize = 8;
    static constexpr std::size_t densePages = std::size_t{1} << 22;
    using Page = std::array<AcDbStub, pageSize>; ///< a stub that nobody asked for has no handle

    std::vector<std::unique_ptr<Page>> dense;
    std::map<Adesk::UInt64, std::unique_ptr<Page>> sparse;
    std::size_t count = 0;
    Adesk::UInt64 next = 1;
    Adesk::UInt64 free = 1; ///< none below is free; only asked when `next` cannot go on

    /// The stub's place; null when there is none and none is to be made.
    AcDbStub* slot(Adesk::UInt64 handle, bool create) {
        const Adesk::UInt64 index = handle / pageSize;
        std::unique_ptr<Page>* page = nullptr;
        if (index < densePages) {
            if (index >= dense.size()) {
                if (!create) {
                    return nullptr;
                }
                dense.resize(std::max(static_cast<std::size_t>(index) + 1, dense.size() + dense.size() / 2));
            }
            page = &dense[index];
        } else if (create) {
            page = &sparse[index];
        } else if (const auto found = sparse.find(index); found != sparse.end()) {
            page = &found->second;
        }
        if (page == nullptr || (*page == nullptr && !create)) {
            return nullptr;
        }
        if (*page == nullptr) {
            *page = std::make_unique<Page>();
        }
        return &(**page)[handle % pageSize];
    }

    /// In order of handles.
    template <class Visit>
    void forEach(Visit&& visit) const {
        const auto visitPage = [&](Page* page) {
            for (std::size_t index = 0; page != nullptr && index < pageSize; ++index) {
                if (AcDbStub& stub = (*page)[index]; stub.handle != 0) {
                    visit(stub);
                }
            }
        };
        for (std::size_t index = 0; index < dense.size(); ++index) { // grows when visitors add objects
            visitPage(dense[index].get());
        }
        for (const auto& [index, page] : sparse) {
            visitPage(page.get());
        }
    }
};

namespace {

std::vector<AcDbDatabase*>& databases() {
    static std::vector<AcDbDatabase*> open;
    return open;
}

} // namespace

const std::vector<AcDbDatabase*>& openDatabases() {
    return databases();
}

DatabaseImpl::DatabaseImpl(AcDbDatabase& database)
    : undo(database), places(database), transactions(std::make_unique<AcDbTransactionManager>(database)),
      mDatabase(database), mHandles(std::make_unique<Handles>()) {
    initializeHeader();
}

DatabaseImpl::~DatabaseImpl() {
    mHandles->forEach([](AcDbStub& stub) { delete std::exchange(stub.object, nullptr); });
}

AcDbStub* DatabaseImpl::findStub(Adesk::UInt64 handle) const {
    AcDbStub* stub = handle != 0 ? mHandles->slot(handle, false) : nullptr;
    return stub != nullptr && stub->handle != 0 ? stub : nullptr;
}

AcDbStub* DatabaseImpl::stubFor(Adesk::UInt64 handle) {
    if (handle == 0) {
        return nullptr;
    }
    AcDbStub* stub = mHandles->slot(handle, true);
    if (stub->handle == 0) {
        stub->handle = handle;
        stub->database = &mDatabase;
        ++mHandles->count;
        if (handle >= mHandles->next && handle != ~Adesk::UInt64{0}) {
            mHandles->next = handle + 1;
        }
    }
    return stub;
}

AcDbStub* DatabaseImpl::newStub() {
    // A file may have used the greatest number: then those it left free.
    Handles& handles = *mHandles;
    if (handles.next > greatestHandle) {
        while (findStub(handles.free) != nullptr) {
            ++handles.free;
        }
        return stubFor(handles.free);
    }
    return stubFor(handles.next);
}

void DatabaseImpl::adopt(AcDbStub* stub, AcDbObject* object, AcDbStub* owner) {
    stub->object = object;
    object->mStub = stub;
    if (owner != nullptr) {
        object->mOwner = owner;
    }
}

AcDbObject* DatabaseImpl::replaceObject(AcDbStub* stub, AcDbObject* object, bool keepExtras) {
    AcDbObject* old = stub->object;
    stub->object = object;
    object->mStub = stub;
    object->mOwner = old->mOwner;
    object->mImageEpoch = old->mImageEpoch;
    if (keepExtras) {
        object->mExtras = std::move(old->mExtras);
    }
    old->mStub = nullptr;
    return old;
}

void DatabaseImpl::forEachStub(const std::function<void(AcDbStub&)>& visit) const {
    mHandles->forEach(visit);
}

std::size_t DatabaseImpl::stubCount() const {
    return mHandles->count;
}
void DatabaseImpl::reserve(std::size_t objects) {
    mHandles->dense.reserve(objects / Handles::pageSize + 1);
}
Adesk::UInt64 DatabaseImpl::nextHandle() const {
    return mHandles->next;
}
void DatabaseImpl::raiseNextHandle(Adesk::UInt64 handle) {
    mHandles->next = std::max(mHandles->next, handle);
}

int DatabaseImpl::classNumber(const ProxyData& proxy) {
    constexpr int first = 500;
    const auto found = std::find_if(classes.begin(), classes.end(), [&](const FileClass& c) {
        return c.className == proxy.className && c.dxfName == proxy.dxfName;
    });
    if (found != classes.end()) {
        return first + static_cast<int>(found - classes.begin());
    }
    FileClass added;
    added.dxfName = proxy.dxfName;
    added.className = proxy.className;
    added.appName = proxy.appName;
    added.proxyFlags = proxy.proxyFlags;
    classes.push_back(std::move(added));
    return first + static_cast<int>(classes.size()) - 1;
}

namespace {

/// Calls tell(reactor) for each, some of which may remove themselves meanwhile; a few without memory of their
/// own, as this happens for every object of every command.
template <class Tell>
void tellAll(const std::vector<AcDbDatabaseReactor*>& reactors, Tell&& tell) {
    std::array<AcDbDatabaseReactor*, 4> few{};
    if (reactors.size() <= few.size()) {
        const auto last = std::copy(reactors.begin(), reactors.end(), few.begin());
        std::for_each(few.begin(), last, [&](AcDbDatabaseReactor* reactor) { tell(*reactor); });
        return;
    }
    for (AcDbDatabaseReactor* reactor : std::vector(reactors)) {
        tell(*reactor);
    }
}

} // namespace

void DatabaseImpl::notifyAppended(const AcDbObject& object) {
    places.touch(object.objectId().stub());
    tellAll(reactors, [&](AcDbDatabaseReactor& reactor) { reactor.objectAppended(&mDatabase, &object); });
}
void DatabaseImpl::notifyModified(const AcDbObject& object) {
    places.touch(object.objectId().stub());
    tellAll(reactors, [&](AcDbDatabaseReactor& reactor) { reactor.objectModified(&mDatabase, &object); });
}
void DatabaseImpl::notifyErased(const AcDbObject& object, bool erased) {
    places.touch(object.objectId().stub());
    tellAll(reactors,
            [&](AcDbDatabaseReactor& reactor) { reactor.objectErased(&mDatabase, &object, erased); });
}

bool isOnLockedLayer(const AcDbObject& object) {
    const auto* entity = AcDbEntity::cast(&object);
    if (entity == nullptr || entity->database() == nullptr) {
        return false;
    }
    const auto* layer = peek<AcDbLayerTableRecord>(entity->layerId());
    return layer != nullptr && layer->isLocked();
}

LinetypeLoader& linetypeLoader() {
    static LinetypeLoader loader;
    return loader;
}

FileFormats& fileFormats() {
    static FileFormats formats;
    return formats;
}

} // namespace host

AcDbDatabase::AcDbDatabase(bool buildDefaultDrawing, bool)
    : mImpl(std::make_unique<host::DatabaseImpl>(*this)) {
    host::databases().push_back(this);
    if (buildDefaultDrawing) {
        const host::UndoLog::Suspend suspend(mImpl->undo);
        mImpl->completeDrawing();
    }
}

AcDbDatabase::~AcDbDatabase() {
    for (AcDbDatabaseReactor* reactor : std::vector(mImpl->reactors)) {
        reactor->goodbye(this);
    }
    std::erase(host::databases(), this);
    if (acdbHostApplicationServices()->workingDatabase() == this) {
        acdbHostApplicationServices()->setWorkingDatabase(nullptr);
    }
}

Acad::ErrorStatus AcDbDatabase::addAcDbObject(AcDbObject* object) {
    AcDbObjectId id;
    return addAcDbObject(id, object);
}

Acad::ErrorStatus AcDbDatabase::addAcDbObject(AcDbObjectId& id, AcDbObject* object) {
    if (object == nullptr) {
        return Acad::eNullObjectPointer;
    }
    if (object->mStub != nullptr) {
        return Acad::eAlreadyInDb;
    }
    AcDbStub* stub = mImpl->newStub();
    mImpl->adopt(stub, object, object->mOwner);
    stub->openForWrite = true;
    object->mNew = true;
    mImpl->undo.recordCreated(*stub);
    id = AcDbObjectId(stub);
    object->subBecameResident();
    mImpl->notifyAppended(*object);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbDatabase::getAcDbObjectId(AcDbObjectId& id, bool createIfNotFound,
                                                const AcDbHandle& handle) const {
    AcDbStub* stub = createIfNotFound ? mImpl->stubFor(handle) : mImpl->findStub(handle);
    id = AcDbObjectId(stub);
    return stub != nullptr ? Acad::eOk : Acad::eUnknownHandle;
}

AcDbHandle AcDbDatabase::handseed() const {
    return AcDbHandle(mImpl->nextHandle());
}

Acad::ErrorStatus AcDbDatabase::setHandseed(const AcDbHandle& handle) {
    mImpl->raiseNextHandle(handle);
    return Acad::eOk;
}

Adesk::Int32 AcDbDatabase::approxNumObjects() const {
    return static_cast<Adesk::Int32>(mImpl->stubCount());
}

AcDbObjectId AcDbDatabase::blockTableId() const {
    return mImpl->containers.blockTable;
}
AcDbObjectId AcDbDatabase::layerTableId() const {
    return mImpl->containers.layerTable;
}
AcDbObjectId AcDbDatabase::linetypeTableId() const {
    return mImpl->containers.linetypeTable;
}
AcDbObjectId AcDbDatabase::textStyleTableId() const {
    return mImpl->containers.textStyleTable;
}
AcDbObjectId AcDbDatabase::regAppTableId() const {
    return mImpl->containers.regAppTable;
}
AcDbObjectId AcDbDatabase::dimStyleTableId() const {
    return mImpl->containers.dimStyleTable;
}
AcDbObjectId AcDbDatabase::viewTableId() const {
    return mImpl->containers.viewTable;
}
AcDbObjectId AcDbDatabase::viewportTableId() const {
    return mImpl->containers.viewportTable;
}
AcDbObjectId AcDbDatabase::UCSTableId() const {
    return mImpl->containers.ucsTable;
}
AcDbObjectId AcDbDatabase::namedObjectsDictionaryId() const {
    return mImpl->containers.namedObjects;
}
AcDbObjectId AcDbDatabase::groupDictionaryId() const {
    return mImpl->containers.groups;
}
AcDbObjectId AcDbDatabase::layoutDictionaryId() const {
    return mImpl->containers.layouts;
}
AcDbObjectId AcDbDatabase::mLStyleDictionaryId() const {
    return mImpl->containers.mlineStyles;
}
AcDbObjectId AcDbDatabase::modelSpaceId() const {
    return mImpl->containers.modelSpace;
}
AcDbObjectId AcDbDatabase::currentSpaceId() const {
    return tilemode() ? modelSpaceId() : paperSpaceId();
}
AcDbObjectId AcDbDatabase::layerZero() const {
    return mImpl->containers.layerZero;
}
AcDbObjectId AcDbDatabase::continuousLinetype() const {
    return mImpl->containers.continuous;
}
AcDbObjectId AcDbDatabase::byLayerLinetype() const {
    return mImpl->containers.byLayer;
}
AcDbObjectId AcDbDatabase::byBlockLinetype() const {
    return mImpl->containers.byBlock;
}
AcDbObjectId AcDbDatabase::standardTextStyle() const {
    return mImpl->containers.standardTextStyle;
}

Acad::ErrorStatus AcDbDatabase::getNamedObjectsDictionary(AcDbDictionary*& dictionary,
                                                          AcDb::OpenMode mode) const {
    return acdbOpenObject(dictionary, namedObjectsDictionaryId(), mode);
}

Acad::ErrorStatus AcDbDatabase::updateExt(bool) {
    std::unordered_set<AcDbStub*> frozen;
    for (AcDbStub* stub : host::peek<AcDbLayerTable>(layerTableId())->records()) {
        const auto* layer = host::peek<AcDbLayerTableRecord>(stub);
        if (layer != nullptr && layer->isFrozen()) {
            frozen.insert(stub);
        }
    }
    const AcDbExtents extents = mImpl->places.of(modelSpaceId()).extents(frozen);
    const host::UndoLog::Suspend suspend(mImpl->undo);
    setVariable(*host::findHeaderVariable("EXTMIN"), extents.minPoint());
    setVariable(*host::findHeaderVariable("EXTMAX"), extents.maxPoint());
    mImpl->extentsHold();
    return extents.isEmpty() ? Acad::eInvalidExtents : Acad::eOk;
}

void AcDbDatabase::keepExtents() {
    // A file may have none.
    if (mImpl->mExtentsAt != mImpl->places.generation() || extmin().x > extmax().x) {
        updateExt();
    }
}

Acad::ErrorStatus AcDbDatabase::purge(AcDbObjectIdArray& ids) {
    // One pass over everything that refers, then over the candidates.
    std::unordered_map<AcDbStub*, bool> candidates;
    for (int index = 0; index < ids.length(); ++index) {
        candidates[ids[index].stub()] = false;
    }
    mImpl->forEachStub([&](AcDbStub& stub) {
        if (stub.object == nullptr || stub.erased) {
            return;
        }
        host::IdCollector collector(AcDb::kPurgeFiler);
        const host::ReadAccess access(*stub.object);
        stub.object->dwgOutFields(&collector);
        for (const host::IdCollector::Reference& reference : collector.references) {
            const bool hard = reference.kind == host::ReferenceKind::hardPointer;
            if (const auto found = candidates.find(reference.id.stub()); found != candidates.end() && hard) {
                found->second = true;
            }
        }
    });
    for (const AcDbObjectId id :
         {clayer(), celtype(), textstyle(), dimstyle(), layerZero(), continuousLinetype(), byLayerLinetype(),
          byBlockLinetype(), standardTextStyle()}) {
        if (const auto found = candidates.find(id.stub()); found != candidates.end()) {
            found->second = true;
        }
    }
    AcDbObjectIdArray kept;
    for (int index = 0; index < ids.length(); ++index) {
        if (!candidates[ids[index].stub()]) {
            kept.append(ids[index]);
        }
    }
    ids = kept;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbDatabase::readDwgFile(const ACHAR* fileName, int, bool, const ACHAR*) {
    std::wstring message;
    return host::fileFormats().read ? host::fileFormats().read(*this, fileName, message)
                                    : Acad::eNotImplementedYet;
}
Acad::ErrorStatus AcDbDatabase::dxfIn(const ACHAR* fileName, const ACHAR*) {
    return readDwgFile(fileName);
}
namespace {

Acad::ErrorStatus writeFile(AcDbDatabase& database, const ACHAR* fileName, const host::SaveFormat& format) {
    std::wstring message;
    return host::fileFormats().write ? host::fileFormats().write(database, fileName, format, message)
                                     : Acad::eNotImplementedYet;
}

} // namespace

Acad::ErrorStatus AcDbDatabase::saveAs(const ACHAR* fileName, bool backup) {
    host::SaveFormat format;
    format.backup = backup;
    return writeFile(*this, fileName, format);
}
Acad::ErrorStatus AcDbDatabase::dxfOut(const ACHAR* fileName, int, AcDb::AcDbDwgVersion version) {
    host::SaveFormat format;
    format.version = version;
    format.backup = false;
    return writeFile(*this, fileName, format);
}
Acad::ErrorStatus AcDbDatabase::getFilename(const ACHAR*& name) const {
    name = mImpl->fileName.c_str();
    return Acad::eOk;
}
void AcDbDatabase::setFilename(const std::wstring& name) {
    mImpl->fileName = name;
}

Acad::ErrorStatus AcDbDatabase::addReactor(AcDbDatabaseReactor* reactor) const {
    mImpl->reactors.push_back(reactor);
    return Acad::eOk;
}
Acad::ErrorStatus AcDbDatabase::removeReactor(AcDbDatabaseReactor* reactor) const {
    return std::erase(mImpl->reactors, reactor) > 0 ? Acad::eOk : Acad::eKeyNotFound;
}
void AcDbDatabase::disableUndoRecording(bool disable) {
    mImpl->undo.setRecording(!disable);
}
bool AcDbDatabase::undoRecording() const {
    return mImpl->undo.isRecording();
}
AcDbTransactionManager* AcDbDatabase::transactionManager() const {
    return mImpl->transactions.get();
}
host::UndoLog& AcDbDatabase::undoLog() const {
    return mImpl->undo;
}

Acad::ErrorStatus AcDbDatabase::getMLStyleDictionary(AcDbDictionary*& dictionary, AcDb::OpenMode mode) {
    return acdbOpenObject(dictionary, mLStyleDictionaryId(), mode);
}

Acad::ErrorStatus AcDbDatabase::getGroupDictionary(AcDbDictionary*& dictionary, AcDb::OpenMode mode) {
    return acdbOpenObject(dictionary, groupDictionaryId(), mode);
}

Acad::ErrorStatus AcDbDatabase::loadLineTypeFile(const ACHAR* linetypeName, const ACHAR* fileName) {
    return acdbLoadLineTypeFile(linetypeName, fileName, this);
}

Acad::ErrorStatus acdbLoadLineTypeFile(const ACHAR* linetypeName, const ACHAR* fileName,
                                       AcDbDatabase* database) {
    if (linetypeName == nullptr || fileName == nullptr || database == nullptr) {
        return Acad::eInvalidInput;
    }
    return host::linetypeLoader() ? host::linetypeLoader()(linetypeName, fileName, *database)
                                  : Acad::eFileNotFound;
}

Acad::ErrorStatus AcDbHostApplicationServices::findFile(ACHAR*, int, const ACHAR*, AcDbDatabase*, int) {
    return Acad::eFileNotFound;
}

namespace {

AcDbHostApplicationServices*& services() {
    static AcDbHostApplicationServices standard;
    static AcDbHostApplicationServices* current = &standard;
    return current;
}

} // namespace

AcDbHostApplicationServices* acdbHostApplicationServices() {
    return services();
}
void acdbSetHostApplicationServices(AcDbHostApplicationServices* replacement) {
    replacement->setWorkingDatabase(services()->workingDatabase());
    services() = replacement;
}

namespace host {

void initializeDatabaseClasses() {
    if (AcDbObject::gpDesc != nullptr) {
        return;
    }
    registerGiClasses();
    AcDbObject::rxInit();
    AcDbObjectReactor::rxInit();
    AcDbDatabaseReactor::rxInit();
    AcDbDatabase::rxInit();
    AcDbHostApplicationServices::rxInit();
    AcDbLayoutManager::rxInit();
    AcTransaction::rxInit();
    AcDbTransactionManager::rxInit();
    AcDbEntity::rxInit();
    AcDbCurve::rxInit();
    initializeSymbolTableClasses();
    initializeDictionaryClasses();
    initializeEntityClasses();
    acrxBuildClassHierarchy();
    classEvents().push_back({makeProxies, [] {
                                 for (AcDbDatabase* database : openDatabases()) {
                                     reviveProxies(*database);
                                 }
                             }});
}

} // namespace host
