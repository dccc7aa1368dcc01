// Objects whose code is not there: kept records of unknown kinds, and proxies that stand for the classes of
// modules, with their going and coming back.
#include "host/db/dbdatabase.h"
#include "host/db/drawingsource.h"
#include "host/db/entities/subentities.h"
#include "host/gi/proxygraphics.h"
#include "host/rx/text.h"

#include <algorithm>

ACRX_DXF_DEFINE_MEMBERS(AcDbProxyEntity, AcDbEntity, AcDb::kDHL_CURRENT, 0, 0, ACAD_PROXY_ENTITY, host)
ACRX_DXF_DEFINE_MEMBERS(AcDbProxyObject, AcDbObject, AcDb::kDHL_CURRENT, 0, 0, ACAD_PROXY_OBJECT, host)

namespace host {

ACRX_CONS_DEFINE_MEMBERS(KeptObject, AcDbObject, 0)
ACRX_CONS_DEFINE_MEMBERS(KeptEntity, AcDbEntity, 0)

void KeptRecord::dwgOut(AcDbDwgFiler* filer, AcDbDatabase* database) const {
    filer->writeString(fromUtf8(recordName).c_str());
    groups.dwgOut(filer, database);
}

void KeptRecord::dwgIn(AcDbDwgFiler* filer) {
    AcString name;
    filer->readString(name);
    recordName = toUtf8(name.kwszPtr());
    groups.dwgIn(filer);
}

Acad::ErrorStatus KeptObject::dwgOutFields(AcDbDwgFiler* filer) const {
    if (const Acad::ErrorStatus status = AcDbObject::dwgOutFields(filer); status != Acad::eOk) {
        return status;
    }
    record.dwgOut(filer, database());
    return filer->filerStatus();
}

Acad::ErrorStatus KeptObject::dwgInFields(AcDbDwgFiler* filer) {
    if (const Acad::ErrorStatus status = AcDbObject::dwgInFields(filer); status != Acad::eOk) {
        return status;
    }
    record.dwgIn(filer);
    return filer->filerStatus();
}

Acad::ErrorStatus KeptObject::dxfInFields(AcDbDxfFiler* filer) {
    AcDbObject::dxfInFields(filer);
    while (const DxfGroup* group = filer->nextGroup()) {
        if (group->code < 1000 || !takeObjectGroup(filer, *group)) {
            record.groups.add(*group);
        }
    }
    record.groups.shrink();
    return filer->filerStatus();
}

Acad::ErrorStatus KeptObject::dxfOutFields(AcDbDxfFiler* filer) const {
    AcDbObject::dxfOutFields(filer);
    return filer->writeKept(record.groups);
}

KeptEntity::KeptEntity() = default;
KeptEntity::~KeptEntity() = default;

SubentityList* KeptEntity::subentities() {
    const bool hasParts = record.recordName == "POLYLINE" || record.recordName == "INSERT";
    if (mParts == nullptr && hasParts) {
        mParts = std::make_unique<SubentityList>();
    }
    return mParts.get();
}

Acad::ErrorStatus KeptEntity::subErase(bool erasing) {
    SubentityList* parts = subentities();
    return parts != nullptr ? parts->erase(erasing) : Acad::eOk;
}

void KeptEntity::subBecameResident() {
    if (SubentityList* parts = subentities()) {
        parts->ownerBecameResident(*this);
    }
}

Acad::ErrorStatus KeptEntity::dwgOutFields(AcDbDwgFiler* filer) const {
    if (const Acad::ErrorStatus status = AcDbEntity::dwgOutFields(filer); status != Acad::eOk) {
        return status;
    }
    record.dwgOut(filer, database());
    if (const SubentityList* parts = static_cast<const AcDbEntity*>(this)->subentities()) {
        parts->dwgOut(filer);
    }
    return filer->filerStatus();
}

Acad::ErrorStatus KeptEntity::dwgInFields(AcDbDwgFiler* filer) {
    if (const Acad::ErrorStatus status = AcDbEntity::dwgInFields(filer); status != Acad::eOk) {
        return status;
    }
    record.dwgIn(filer);
    if (SubentityList* parts = subentities()) {
        parts->dwgIn(filer);
    }
    return filer->filerStatus();
}

Acad::ErrorStatus KeptEntity::dxfInFields(AcDbDxfFiler* filer) {
    AcDbEntity::dxfInFields(filer);
    bool unmarked = true; // before the first marker the common groups stand among the others
    while (const DxfGroup* group = filer->nextGroup()) {
        unmarked = unmarked && group->code != 100 && group->code != 101;
        const bool common = unmarked ? takeEntityGroup(filer, *group) || takeObjectGroup(filer, *group)
                                     : group->code >= 1000 && takeObjectGroup(filer, *group);
        if (!common) {
            record.groups.add(*group);
        }
    }
    record.groups.shrink();
    return filer->filerStatus();
}

Acad::ErrorStatus KeptEntity::dxfOutFields(AcDbDxfFiler* filer) const {
    AcDbEntity::dxfOutFields(filer);
    return filer->writeKept(record.groups);
}

// Proxy data.

void ProxyData::dwgOut(AcDbDwgFiler* filer, AcDbDatabase* database) const {
    filer->writeString(className);
    filer->writeString(dxfName);
    filer->writeString(appName);
    filer->writeInt32(proxyFlags);
    filer->writeInt32(dataBits);
    filer->writeInt32(format);
    filer->writeBool(fromDxf);
    for (const std::string* bytes : {&data, &graphics}) {
        filer->writeUInt32(static_cast<Adesk::UInt32>(bytes->size()));
        filer->writeBytes(bytes->data(), bytes->size());
    }
    filer->writeUInt32(static_cast<Adesk::UInt32>(references.size()));
    for (const ProxyDataFiler::Reference& reference : references) {
        filer->writeUInt8(static_cast<Adesk::UInt8>(reference.kind));
        switch (reference.kind) {
        case ReferenceKind::hardOwnership:
            filer->writeHardOwnershipId(reference.id);
            break;
        case ReferenceKind::softOwnership:
            filer->writeSoftOwnershipId(reference.id);
            break;
        case ReferenceKind::hardPointer:
            filer->writeHardPointerId(reference.id);
            break;
        default:
            filer->writeSoftPointerId(reference.id);
            break;
        }
    }
    groups.dwgOut(filer, database);
}

void ProxyData::dwgIn(AcDbDwgFiler* filer) {
    filer->readString(className);
    filer->readString(dxfName);
    filer->readString(appName);
    filer->readInt32(&proxyFlags);
    filer->readInt32(&dataBits);
    filer->readInt32(&format);
    filer->readBool(&fromDxf);
    for (std::string* bytes : {&data, &graphics}) {
        Adesk::UInt32 size = 0;
        filer->readUInt32(&size);
        bytes->assign(filer->filerStatus() == Acad::eOk ? size : 0, '\0');
        filer->readBytes(bytes->data(), bytes->size());
    }
    Adesk::UInt32 count = 0;
    filer->readUInt32(&count);
    references.clear();
    for (; count > 0 && filer->filerStatus() == Acad::eOk; --count) {
        Adesk::UInt8 kind = 0;
        filer->readUInt8(&kind);
        AcDbHardPointerId id;
        filer->readHardPointerId(&id);
        references.push_back({static_cast<ReferenceKind>(kind), id});
    }
    groups.dwgIn(filer);
}

namespace {

/// Bytes a group's line of digits holds at most, as other programs write them.
constexpr std::size_t chunkBytes = 127;

void writeChunks(AcDbDxfFiler* filer, short code, const std::string& bytes) {
    for (std::size_t at = 0; at < bytes.size(); at += chunkBytes) {
        filer->writeBinary(code, bytes.data() + at, std::min(chunkBytes, bytes.size() - at));
    }
}

short referenceCode(ReferenceKind kind) {
    switch (kind) {
    case ReferenceKind::hardOwnership:
        return 360;
    case ReferenceKind::softOwnership:
        return 350;
    case ReferenceKind::hardPointer:
        return 340;
    default:
        return 330;
    }
}

/// Group 95: the drawing format of the data and the maintenance release, in the two halves. A maintenance
/// release that no drawing format has marks data of our own filers, which are whole bytes.
constexpr Adesk::Int32 ourFormat = AcDb::kDHL_CURRENT | 0x5144 << 16;

} // namespace

void ProxyData::dxfIn(AcDbDxfFiler* filer, int& classNumber) {
    classNumber = 0;
    // Old files do not say the format of the data: it is their own.
    AcDb::AcDbDwgVersion version = AcDb::kDHL_1014;
    AcDb::MaintenanceReleaseVersion maintenance = AcDb::kMReleaseCurrent;
    filer->dwgVersion(version, maintenance);
    format = version;
    bool inGraphics = true; // chunks before group 93 are the picture
    fromDxf = false;
    while (const DxfGroup* group = filer->nextGroup()) {
        if (group->code >= 1000) {
            filer->pushBackItem(); // extended data is the object's
            break;
        }
        switch (group->code) {
        case 100:
            if (group->text != "AcDbProxyEntity" && group->text != "AcDbProxyObject") {
                groups.add(*group);
            }
            break;
        case 90: // the class number of the proxy class itself
        case 92: // sizes follow from the data
        case 160:
        case 94:
            break;
        case 91:
            classNumber = group->int32();
            break;
        case 93:
        case 161:
        case 162:
            dataBits = group->int32();
            inGraphics = false;
            break;
        case 310:
        case 311:
            (group->code == 310 && inGraphics ? graphics : data) += bytesFromHex(group->text);
            break;
        case 95:
        case 71:
            format = group->int32();
            break;
        case 70:
            fromDxf = group->boolean();
            break;
        case 330:
        case 340:
        case 350:
        case 360:
            references.push_back({referenceKind(group->code), AcDbObjectId(group->id)});
            break;
        default:
            groups.add(*group);
            break;
        }
    }
}

void ProxyData::dxfOut(AcDbDxfFiler* filer, int classNumber, bool entity) const {
    filer->writeText(100, entity ? "AcDbProxyEntity" : "AcDbProxyObject");
    filer->writeInt32(90, entity ? 498 : 499);
    filer->writeInt32(91, classNumber);
    if (entity) {
        filer->writeInt32(92, static_cast<Adesk::Int32>(graphics.size()));
        writeChunks(filer, 310, graphics);
    }
    filer->writeInt32(93, dataBits != 0 ? dataBits : static_cast<Adesk::Int32>(data.size() * 8));
    writeChunks(filer, 310, data);
    for (const ProxyDataFiler::Reference& reference : references) {
        filer->writeObjectId(referenceCode(reference.kind), reference.id);
    }
    filer->writeInt32(94, 0);
    filer->writeInt32(95, format != 0 ? format : ourFormat);
    filer->writeInt16(70, fromDxf ? 1 : 0);
    filer->writeKept(groups);
}

ProxyData proxyDataOf(AcDbObject& object, DrawingSource* source) {
    ProxyData proxy;
    const AcRxClass& cls = *object.isA();
    proxy.className = cls.name();
    proxy.dxfName = cls.dxfName() != nullptr ? cls.dxfName() : cls.name();
    proxy.appName = cls.appName();
    proxy.proxyFlags = cls.proxyFlags();
    ProxyDataFiler filer(object.database());
    const ReadAccess access(object);
    object.dwgOutFields(&filer);
    proxy.data = filer.bytes();
    proxy.references = filer.references();
    proxy.dataBits = static_cast<Adesk::Int32>(proxy.data.size() * 8);
    if (auto* entity = AcDbEntity::cast(&object); entity != nullptr && source != nullptr) {
        proxy.graphics = recordProxyGraphics(*entity, *source);
    }
    return proxy;
}

namespace {

/// What can't be carried by the class's own filing moves with the extras and these.
void takeEntityLook(AcDbEntity& to, const AcDbEntity& from) {
    MemoryDwgFiler filer(AcDb::kUndoFiler, from.database());
    from.AcDbEntity::dwgOutFields(&filer);
    filer.rewind();
    to.AcDbEntity::dwgInFields(&filer);
}

/// The object that a proxy stands for; null when its class can't read the data.
std::unique_ptr<AcDbObject> revive(const ProxyData& proxy, AcRxClass& cls, AcDbObject& from) {
    std::unique_ptr<AcDbObject> object(AcDbObject::cast(cls.create()));
    if (object == nullptr) {
        return nullptr;
    }
    ProxyDataFiler filer(from.database(), proxy.data, proxy.references);
    if (object->dwgInFields(&filer) != Acad::eOk) {
        return nullptr;
    }
    auto* entity = AcDbEntity::cast(object.get());
    const auto* carrier = AcDbEntity::cast(&from);
    if ((entity == nullptr) != (carrier == nullptr)) {
        return nullptr;
    }
    if (entity != nullptr) {
        takeEntityLook(*entity, *carrier);
    }
    return object;
}

const ProxyData* proxyOf(const AcDbObject& object) {
    if (const auto* entity = AcDbProxyEntity::cast(&object)) {
        return &entity->proxy;
    }
    const auto* record = AcDbProxyObject::cast(&object);
    return record != nullptr ? &record->proxy : nullptr;
}

} // namespace

int reviveProxies(AcDbDatabase& database) {
    int revived = 0;
    const UndoLog::Suspend suspend(database.undoLog());
    database.impl().forEachStub([&](AcDbStub& stub) {
        const ProxyData* proxy = stub.object != nullptr ? proxyOf(*stub.object) : nullptr;
        AcRxClass* cls = proxy != nullptr ? acrxFindAcRxClass(proxy->className.kwszPtr()) : nullptr;
        const bool ours = proxy != nullptr && (proxy->format == 0 || proxy->format == ourFormat);
        if (cls == nullptr || !ours || stub.readers > 0 || stub.openForWrite) {
            return;
        }
        const ReadAccess access(*stub.object);
        if (std::unique_ptr<AcDbObject> object = revive(*proxy, *cls, *stub.object)) {
            delete database.impl().replaceObject(&stub, object.release(), true);
            ++revived;
        }
    });
    return revived;
}

void makeProxies(AcRxClass* descriptor) {
    for (AcDbDatabase* database : openDatabases()) {
        const UndoLog::Suspend suspend(database->undoLog());
        bool any = false;
        database->impl().forEachStub([&](AcDbStub& stub) {
            if (stub.object == nullptr || !stub.object->isKindOf(descriptor)) {
                return;
            }
            any = true;
            ProxyData data = proxyDataOf(*stub.object, drawingSource(*database).get());
            AcDbObject* proxy = nullptr;
            if (const auto* entity = AcDbEntity::cast(stub.object)) {
                auto* stand = new AcDbProxyEntity;
                const ReadAccess access(*entity);
                takeEntityLook(*stand, *entity);
                stand->proxy = std::move(data);
                proxy = stand;
            } else {
                auto* stand = new AcDbProxyObject;
                stand->proxy = std::move(data);
                proxy = stand;
            }
            delete database->impl().replaceObject(&stub, proxy, true);
        });
        if (any) {
            // Recorded states speak of a class that is gone.
            database->undoLog().clear();
        }
    }
}

} // namespace host

Acad::ErrorStatus AcDbProxyEntity::dwgOutFields(AcDbDwgFiler* filer) const {
    if (const Acad::ErrorStatus status = AcDbEntity::dwgOutFields(filer); status != Acad::eOk) {
        return status;
    }
    proxy.dwgOut(filer, database());
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbProxyEntity::dwgInFields(AcDbDwgFiler* filer) {
    if (const Acad::ErrorStatus status = AcDbEntity::dwgInFields(filer); status != Acad::eOk) {
        return status;
    }
    proxy.dwgIn(filer);
    return filer->filerStatus();
}

namespace {

/// Names the class behind the number that a file gave.
void nameClass(host::ProxyData& proxy, AcDbDatabase* database, int classNumber) {
    constexpr int firstClassNumber = 500;
    if (database == nullptr) {
        return;
    }
    const std::vector<host::DatabaseImpl::FileClass>& classes = database->impl().classes;
    const auto index = static_cast<std::size_t>(classNumber - firstClassNumber);
    if (classNumber >= firstClassNumber && index < classes.size()) {
        proxy.className = classes[index].className;
        proxy.dxfName = classes[index].dxfName;
        proxy.appName = classes[index].appName;
        proxy.proxyFlags = classes[index].proxyFlags;
    }
}

int classNumberOf(const host::ProxyData& proxy, AcDbDatabase* database) {
    return database != nullptr ? database->impl().classNumber(proxy) : 0;
}

} // namespace

Acad::ErrorStatus AcDbProxyEntity::dxfInFields(AcDbDxfFiler* filer) {
    AcDbEntity::dxfInFields(filer);
    int classNumber = 0;
    proxy.dxfIn(filer, classNumber);
    nameClass(proxy, filer->database(), classNumber);
    while (const host::DxfGroup* group = filer->nextGroup()) {
        takeObjectGroup(filer, *group);
    }
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbProxyEntity::dxfOutFields(AcDbDxfFiler* filer) const {
    AcDbEntity::dxfOutFields(filer);
    proxy.dxfOut(filer, classNumberOf(proxy, database()), true);
    return filer->filerStatus();
}

bool AcDbProxyEntity::subWorldDraw(AcGiWorldDraw* draw) {
    const std::unique_ptr<host::DrawingSource> source =
        database() != nullptr ? host::drawingSource(*database()) : nullptr;
    host::ProxyGraphicsOptions options;
    options.source = source.get();
    host::playProxyGraphics(proxy.graphics, *draw, options);
    return true;
}

Acad::ErrorStatus AcDbProxyEntity::subGetGeomExtents(AcDbExtents& extents) const {
    return host::drawnExtents(const_cast<AcDbProxyEntity&>(*this), extents);
}

namespace {

// Bits of the proxy flags: what a program without the class may do.
constexpr Adesk::Int32 eraseAllowed = 1;
constexpr Adesk::Int32 transformAllowed = 2;

} // namespace

Acad::ErrorStatus AcDbProxyEntity::subTransformBy(const AcGeMatrix3d&) {
    // The picture could be moved, but not the data that only the class understands.
    return (proxy.proxyFlags & transformAllowed) != 0 ? Acad::eNotApplicable : Acad::eNotAllowedForThisProxy;
}

Acad::ErrorStatus AcDbProxyEntity::subErase(bool) {
    return (proxy.proxyFlags & eraseAllowed) != 0 ? Acad::eOk : Acad::eNotAllowedForThisProxy;
}

Acad::ErrorStatus AcDbProxyEntity::subExplode(AcDbVoidPtrArray&) const {
    return Acad::eNotApplicable;
}

Acad::ErrorStatus AcDbProxyObject::dwgOutFields(AcDbDwgFiler* filer) const {
    if (const Acad::ErrorStatus status = AcDbObject::dwgOutFields(filer); status != Acad::eOk) {
        return status;
    }
    proxy.dwgOut(filer, database());
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbProxyObject::dwgInFields(AcDbDwgFiler* filer) {
    if (const Acad::ErrorStatus status = AcDbObject::dwgInFields(filer); status != Acad::eOk) {
        return status;
    }
    proxy.dwgIn(filer);
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbProxyObject::dxfInFields(AcDbDxfFiler* filer) {
    AcDbObject::dxfInFields(filer);
    int classNumber = 0;
    proxy.dxfIn(filer, classNumber);
    nameClass(proxy, filer->database(), classNumber);
    while (const host::DxfGroup* group = filer->nextGroup()) {
        takeObjectGroup(filer, *group);
    }
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbProxyObject::dxfOutFields(AcDbDxfFiler* filer) const {
    AcDbObject::dxfOutFields(filer);
    proxy.dxfOut(filer, classNumberOf(proxy, database()), false);
    return filer->filerStatus();
}
