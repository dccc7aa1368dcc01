// Cloning within and between databases. Objects are copied first, with the ids of their sources; when all
// are there, their fields are read again with every id replaced by that of its copy.
#include "host/db/dbtrans.h"
#include "host/db/entities/blockreference.h"
#include "host/db/entities/hatch.h"
#include "host/db/entities/leader.h"
#include "host/rx/text.h"

#include <algorithm>
#include <unordered_set>

Acad::ErrorStatus AcDbIdMapping::assign(const AcDbIdPair& pair) {
    const auto [found, added] = mIndex.emplace(pair.key().stub(), mPairs.size());
    if (added) {
        mPairs.push_back(pair);
    } else {
        mPairs[found->second] = pair;
    }
    return Acad::eOk;
}

bool AcDbIdMapping::compute(AcDbIdPair& pair) const {
    const auto found = mIndex.find(pair.key().stub());
    if (found == mIndex.end()) {
        return false;
    }
    pair = mPairs[found->second];
    return true;
}

bool AcDbIdMapping::change(const AcDbIdPair& pair) {
    const auto found = mIndex.find(pair.key().stub());
    if (found == mIndex.end()) {
        return false;
    }
    mPairs[found->second] = pair;
    return true;
}

namespace host {
namespace {

/// Reads what a source filed, with ids replaced.
class TranslatingFiler : public MemoryDwgFiler {
public:
    TranslatingFiler(const AcDbIdMapping& mapping, AcDb::FilerType type, std::string_view bytes,
                     bool crossing)
        : MemoryDwgFiler(type, mapping.destDb(), bytes), mMapping(mapping), mCrossing(crossing) {}

protected:
    Acad::ErrorStatus readId(ReferenceKind kind, AcDbObjectId& id) override {
        const Acad::ErrorStatus status = MemoryDwgFiler::readId(kind, id);
        AcDbIdPair pair(id, AcDbObjectId(), false);
        if (mMapping.compute(pair)) {
            id = pair.value();
        } else if (mCrossing) {
            id.setNull(); // nothing of the other drawing may be referred to
        }
        return status;
    }

private:
    const AcDbIdMapping& mMapping;
    bool mCrossing;
};

/// One cloning of a set of objects.
class Cloner {
public:
    Cloner(AcDbDatabase& destination, AcDbIdMapping& mapping, bool crossing)
        : mDestination(destination), mMapping(mapping), mCrossing(crossing),
          mType(crossing ? AcDb::kWblockCloneFiler : AcDb::kDeepCloneFiler) {
        mMapping.setDestDb(&destination);
    }

    Acad::ErrorStatus clone(const AcDbObjectIdArray& objects, AcDbObjectId owner);
    void mapTo(AcDbObjectId from, AcDbObjectId to) {
        mMapping.assign(AcDbIdPair(from, to, false, false, true));
    }
    AcDbObjectId copyOf(AcDbObjectId id) const {
        AcDbIdPair pair(id, AcDbObjectId(), false);
        return mMapping.compute(pair) ? pair.value() : AcDbObjectId();
    }

private:
    struct Copy {
        AcDbObject* object;
        std::string bytes;
    };

    AcDbObjectId copyObject(AcDbObjectId source, AcDbObjectId owner, bool primary);
    void copyOwned(const IdCollector& ids, AcDbObjectId owner);
    void copyNeeded(const IdCollector& ids);
    void copyRecord(AcDbObjectId source);
    void copyDictionaryEntry(AcDbObjectId source);
    void putInto(AcDbObjectId owner, AcDbObject& source, AcDbStub* copy);
    void translate();
    void settleAssociations();

    AcDbDatabase& mDestination;
    AcDbIdMapping& mMapping;
    bool mCrossing;
    AcDb::FilerType mType;
    std::vector<Copy> mCopies;
    std::vector<std::pair<AcDbBlockTableRecord*, AcString>> mRenamed; ///< anonymous blocks with new numbers
};

Acad::ErrorStatus Cloner::clone(const AcDbObjectIdArray& objects, AcDbObjectId owner) {
    for (int index = 0; index < objects.length(); ++index) {
        if (!copyOf(objects[index]).isNull() || !objects[index].isValid() || objects[index].isErased()) {
            continue;
        }
        if (mCrossing && peek<AcDbSymbolTableRecord>(objects[index]) != nullptr) {
            copyRecord(objects[index]); // goes into its kind's table, where one of its name stays
        } else {
            copyObject(objects[index], owner, true);
        }
    }
    translate();
    return Acad::eOk;
}

AcDbObjectId Cloner::copyObject(AcDbObjectId source, AcDbObjectId owner, bool primary) {
    AcDbObject* from = peek<AcDbObject>(source);
    AcDbObject* to = from != nullptr ? AcDbObject::cast(from->isA()->create()) : nullptr;
    if (to == nullptr) {
        return {};
    }
    const ReadAccess access(*from);
    MemoryDwgFiler filer(mType, from->database());
    IdCollector ids(mType);
    from->dwgOutFields(&filer);
    from->dwgOutFields(&ids);
    std::string bytes = filer.takeBytes();
    // Until the ids are replaced the copy only needs to be of its class and to have its name.
    MemoryDwgFiler reader(mType, &mDestination, bytes);
    to->dwgInFields(&reader);
    AcDbObjectId copy;
    mDestination.addAcDbObject(copy, to);
    to->setOwnerId(owner);
    mMapping.assign(AcDbIdPair(source, copy, true, primary, true));
    if (primary) {
        putInto(owner, *from, copy.stub());
    }
    mCopies.push_back({to, std::move(bytes)});
    copyOwned(ids, copy);
    if (mCrossing) {
        copyNeeded(ids);
    }
    return copy;
}

void Cloner::copyOwned(const IdCollector& ids, AcDbObjectId owner) {
    for (const IdCollector::Reference& reference : ids.references) {
        const bool owned =
            reference.kind == ReferenceKind::hardOwnership || reference.kind == ReferenceKind::softOwnership;
        if (owned && copyOf(reference.id).isNull() && !reference.id.isErased()) {
            copyObject(reference.id, owner, false);
        }
    }
}

void Cloner::copyNeeded(const IdCollector& ids) {
    for (const IdCollector::Reference& reference : ids.references) {
        if (reference.kind != ReferenceKind::hardPointer || !copyOf(reference.id).isNull() ||
            reference.id.isErased()) {
            continue;
        }
        const AcDbObject* object = peek<AcDbObject>(reference.id);
        if (object == nullptr) {
            continue;
        }
        if (object->isKindOf(AcDbSymbolTableRecord::desc())) {
            copyRecord(reference.id);
        } else if (peek<AcDbDictionary>(object->ownerId()) != nullptr) {
            copyDictionaryEntry(reference.id);
        }
    }
}

/// The table of the destination that holds records of the source's kind.
AcDbSymbolTable* tableFor(AcDbDatabase& database, const AcDbSymbolTableRecord& record) {
    const DatabaseImpl::Containers& containers = database.impl().containers;
    const std::pair<AcRxClass*, AcDbObjectId> tables[] = {
        {AcDbLayerTableRecord::desc(), containers.layerTable},
        {AcDbLinetypeTableRecord::desc(), containers.linetypeTable},
        {AcDbTextStyleTableRecord::desc(), containers.textStyleTable},
        {AcDbDimStyleTableRecord::desc(), containers.dimStyleTable},
        {AcDbRegAppTableRecord::desc(), containers.regAppTable},
        {AcDbViewTableRecord::desc(), containers.viewTable},
        {AcDbViewportTableRecord::desc(), containers.viewportTable},
        {AcDbUCSTableRecord::desc(), containers.ucsTable},
        {AcDbBlockTableRecord::desc(), containers.blockTable}};
    const auto found = std::find_if(std::begin(tables), std::end(tables),
                                    [&](const auto& table) { return record.isKindOf(table.first); });
    return found != std::end(tables) ? peek<AcDbSymbolTable>(found->second) : nullptr;
}

void Cloner::copyRecord(AcDbObjectId source) {
    const auto* record = peek<AcDbSymbolTableRecord>(source);
    AcDbSymbolTable* table = tableFor(mDestination, *record);
    if (table == nullptr) {
        return;
    }
    AcDbObjectId existing;
    const bool anonymous = !record->name().isEmpty() && record->name().kwszPtr()[0] == L'*' &&
                           record->isKindOf(AcDbBlockTableRecord::desc()) &&
                           !static_cast<const AcDbBlockTableRecord*>(record)->isLayout();
    if (!anonymous && table->getAt(record->name().kwszPtr(), existing) == Acad::eOk) {
        mapTo(source, existing);
        return;
    }
    const AcDbObjectId copy = copyObject(source, table->objectId(), false);
    if (anonymous) {
        // Numbers of anonymous blocks are the destination's own.
        auto* block = static_cast<AcDbBlockTableRecord*>(copy.stub()->object);
        const std::wstring prefix = std::wstring(block->name().kwszPtr()).substr(0, 2);
        for (std::size_t number = table->records().size(); table->has(block->name().kwszPtr()); ++number) {
            block->setName((prefix + std::to_wstring(number)).c_str());
        }
        mRenamed.emplace_back(block, block->name());
    }
    table->adopt(copy.stub());
}

void Cloner::copyDictionaryEntry(AcDbObjectId source) {
    // The path from the root dictionary is followed in the destination; what it lacks is copied.
    const AcDbObject* object = peek<AcDbObject>(source);
    const auto* dictionary = peek<AcDbDictionary>(object->ownerId());
    AcDbObjectId parent = copyOf(dictionary->objectId());
    if (parent.isNull()) {
        if (dictionary->objectId() == source.database()->namedObjectsDictionaryId()) {
            parent = mDestination.namedObjectsDictionaryId();
            mapTo(dictionary->objectId(), parent);
        } else if (peek<AcDbDictionary>(dictionary->ownerId()) != nullptr) {
            AcDbObjectId grandparent = dictionary->ownerId();
            const auto* above = peek<AcDbDictionary>(grandparent);
            AcString name;
            AcDbObjectId root;
            if (above->nameAt(dictionary->objectId(), name) == Acad::eOk &&
                grandparent == source.database()->namedObjectsDictionaryId() &&
                peek<AcDbDictionary>(mDestination.namedObjectsDictionaryId())->getAt(name.kwszPtr(), root) ==
                    Acad::eOk) {
                parent = root;
                mapTo(dictionary->objectId(), parent);
            }
        }
    }
    auto* target = peek<AcDbDictionary>(parent);
    AcString name;
    if (target == nullptr || dictionary->nameAt(source, name) != Acad::eOk) {
        return;
    }
    AcDbObjectId existing;
    if (target->getAt(name.kwszPtr(), existing) == Acad::eOk) {
        mapTo(source, existing);
        return;
    }
    const AcDbObjectId copy = copyObject(source, parent, false);
    const Opened<AcDbDictionary> opened(parent, AcDb::kForWrite);
    if (opened) {
        opened->assertWriteEnabled();
        opened->adopt(name, copy);
    }
}

void Cloner::putInto(AcDbObjectId owner, AcDbObject& source, AcDbStub* copy) {
    if (auto* block = peek<AcDbBlockTableRecord>(owner);
        block != nullptr && AcDbEntity::cast(&source) != nullptr) {
        block->entitiesForReaders().push_back(copy);
    } else if (auto* table = peek<AcDbSymbolTable>(owner)) {
        table->adopt(copy);
    }
}

void Cloner::translate() {
    for (Copy& copy : mCopies) {
        TranslatingFiler filer(mMapping, mType, copy.bytes, mCrossing);
        copy.object->dwgInFields(&filer);
    }
    for (const auto& [block, name] : mRenamed) {
        block->setName(name.kwszPtr());
    }
    settleAssociations();
    for (Copy& copy : mCopies) {
        copy.object->close();
    }
    mCopies.clear();
}

/// What follows entities that were not copied along does not follow anything; a copy is followed by copies.
void Cloner::settleAssociations() {
    std::unordered_set<AcDbStub*> copies;
    for (const Copy& copy : mCopies) {
        copies.insert(copy.object->objectId().stub());
    }
    for (const Copy& copy : mCopies) {
        const AcDbObjectId id = copy.object->objectId();
        const auto isFollowed = [&](AcDbObjectId source) {
            const auto* object = peek<AcDbObject>(source);
            return object != nullptr && object->hasPersistentReactor(id);
        };
        AcDbObjectIdArray sources;
        if (auto* hatch = AcDbHatch::cast(copy.object);
            hatch != nullptr && hatch->associative() && hatch->getAssocObjIds(sources) == Acad::eOk &&
            (sources.isEmpty() || !std::ranges::all_of(sources, isFollowed))) {
            hatch->removeAssocObjIds();
        }
        if (auto* leader = AcDbLeader::cast(copy.object);
            leader != nullptr && !leader->annotationObjId().isNull() &&
            !copies.contains(leader->annotationObjId().stub())) {
            leader->detachAnnotation();
        }
    }
    for (const Copy& copy : mCopies) {
        if (AcDbEntity::cast(copy.object) == nullptr) {
            continue;
        }
        for (const AcDbObjectId reactor : std::vector(copy.object->persistentReactors())) {
            const auto* hatch = peek<AcDbHatch>(reactor);
            if ((!mCrossing && !copies.contains(reactor.stub())) ||
                (hatch != nullptr && !hatch->data().associative)) {
                copy.object->removePersistentReactor(reactor);
            }
        }
    }
}

} // namespace
} // namespace host

Acad::ErrorStatus AcDbObject::subDeepClone(AcDbObject* owner, AcDbObject*& cloned, AcDbIdMapping& mapping,
                                           bool) const {
    cloned = nullptr;
    AcDbIdPair known(objectId(), AcDbObjectId(), false);
    if (mapping.compute(known)) {
        return Acad::eOk;
    }
    if (database() == nullptr || owner == nullptr) {
        return Acad::eNoDatabase;
    }
    AcDbObjectIdArray one;
    one.append(objectId());
    const Acad::ErrorStatus status = database()->deepCloneObjects(one, owner->objectId(), mapping);
    AcDbIdPair pair(objectId(), AcDbObjectId(), false);
    if (status == Acad::eOk && mapping.compute(pair)) {
        return acdbOpenAcDbObject(cloned, pair.value(), AcDb::kForWrite);
    }
    return status;
}

Acad::ErrorStatus AcDbObject::subWblockClone(AcRxObject* owner, AcDbObject*& cloned, AcDbIdMapping& mapping,
                                             bool) const {
    cloned = nullptr;
    AcDbObject* target = AcDbObject::cast(owner);
    AcDbDatabase* destination = target != nullptr ? target->database() : mapping.destDb();
    if (destination == nullptr) {
        return Acad::eNoDatabase;
    }
    AcDbObjectIdArray one;
    one.append(objectId());
    const AcDbObjectId into = target != nullptr ? target->objectId() : destination->modelSpaceId();
    const Acad::ErrorStatus status = destination->wblockCloneObjects(one, into, mapping, AcDb::kDrcIgnore);
    AcDbIdPair pair(objectId(), AcDbObjectId(), false);
    if (status == Acad::eOk && mapping.compute(pair)) {
        return acdbOpenAcDbObject(cloned, pair.value(), AcDb::kForWrite);
    }
    return status;
}

Acad::ErrorStatus AcDbDatabase::deepCloneObjects(const AcDbObjectIdArray& objects, const AcDbObjectId& owner,
                                                 AcDbIdMapping& mapping, bool) {
    mapping.setContext(AcDb::kDcCopy, AcDb::kDrcNotApplicable);
    host::Cloner cloner(*this, mapping, false);
    return cloner.clone(objects, owner);
}

Acad::ErrorStatus AcDbDatabase::wblockCloneObjects(const AcDbObjectIdArray& objects,
                                                   const AcDbObjectId& owner, AcDbIdMapping& mapping,
                                                   AcDb::DuplicateRecordCloning duplicates, bool) {
    if (objects.isEmpty()) {
        return Acad::eOk;
    }
    AcDbDatabase* source = objects[0].database();
    if (source == nullptr || source == this) {
        return Acad::eWrongDatabase;
    }
    mapping.setContext(AcDb::kDcWblock, duplicates);
    host::Cloner cloner(*this, mapping, true);
    // Records that every drawing has are the same in both, under whatever names.
    const host::DatabaseImpl::Containers& from = source->impl().containers;
    const host::DatabaseImpl::Containers& to = impl().containers;
    for (const auto member :
         {&host::DatabaseImpl::Containers::layerZero, &host::DatabaseImpl::Containers::continuous,
          &host::DatabaseImpl::Containers::byLayer, &host::DatabaseImpl::Containers::byBlock}) {
        cloner.mapTo(from.*member, to.*member);
    }
    return cloner.clone(objects, owner);
}

namespace {

AcDbObjectIdArray entitiesOf(const AcDbDatabase& database, AcDbObjectId block) {
    AcDbObjectIdArray ids;
    if (const auto* record = host::peek<AcDbBlockTableRecord>(block);
        record != nullptr && block.database() == &database) {
        for (AcDbStub* stub : record->entities()) {
            if (!stub->erased && stub->object != nullptr) {
                ids.append(AcDbObjectId(stub));
            }
        }
    }
    return ids;
}

/// What has a name in a drawing and comes along with its entities, used by them or not: an inserted drawing
/// may be a library.
AcDbObjectIdArray namedRecordsOf(const AcDbDatabase& database) {
    AcDbObjectIdArray ids;
    for (const AcDbObjectId table :
         {database.linetypeTableId(), database.layerTableId(), database.textStyleTableId(),
          database.dimStyleTableId(), database.blockTableId()}) {
        for (AcDbStub* stub : host::peek<AcDbSymbolTable>(table)->records()) {
            const auto* record = host::peek<AcDbSymbolTableRecord>(stub);
            const auto* block = AcDbBlockTableRecord::cast(record);
            const bool isOwn = block != nullptr && (block->isLayout() || block->isAnonymous() ||
                                                    block->isFromExternalReference());
            if (record != nullptr && !isOwn && !record->isDependent()) {
                ids.append(AcDbObjectId(stub));
            }
        }
    }
    return ids;
}

} // namespace

Acad::ErrorStatus AcDbDatabase::insert(AcDbObjectId& block, const ACHAR* blockName, AcDbDatabase* source,
                                       bool) {
    if (source == nullptr || source == this) {
        return Acad::eWrongDatabase;
    }
    if (host::wouldHoldItself(*this, blockName, *source)) {
        return Acad::eSelfReference;
    }
    const host::Opened<AcDbBlockTable> table(blockTableId(), AcDb::kForWrite);
    if (!table) {
        return table.status();
    }
    if (table->getAt(blockName, block) == Acad::eOk) {
        // The definition is filled anew; references to it stay.
        const host::Opened<AcDbBlockTableRecord> existing(block, AcDb::kForWrite);
        if (!existing) {
            return existing.status();
        }
        for (AcDbStub* stub : std::vector(existing->entities())) {
            const host::Opened<AcDbEntity> entity(stub, AcDb::kForWrite);
            if (entity) {
                entity->erase();
            }
        }
        existing->setOrigin(source->insbase());
    } else {
        auto* created = new AcDbBlockTableRecord;
        if (const Acad::ErrorStatus status = created->setName(blockName); status != Acad::eOk) {
            delete created;
            return status;
        }
        created->setOrigin(source->insbase());
        created->setBlockInsertUnits(source->insunits());
        if (const Acad::ErrorStatus status = table->add(block, created); status != Acad::eOk) {
            delete created;
            return status;
        }
        created->close();
    }
    AcDbIdMapping mapping;
    mapping.assign(AcDbIdPair(source->modelSpaceId(), block, false));
    AcDbObjectIdArray objects = entitiesOf(*source, source->modelSpaceId());
    objects.append(namedRecordsOf(*source));
    return wblockCloneObjects(objects, block, mapping, AcDb::kDrcIgnore);
}

Acad::ErrorStatus AcDbDatabase::insert(const AcGeMatrix3d& transform, AcDbDatabase* source, bool) {
    if (source == nullptr || source == this) {
        return Acad::eWrongDatabase;
    }
    AcDbIdMapping mapping;
    mapping.assign(AcDbIdPair(source->modelSpaceId(), modelSpaceId(), false));
    AcDbObjectIdArray objects = entitiesOf(*source, source->modelSpaceId());
    objects.append(namedRecordsOf(*source));
    const Acad::ErrorStatus status = wblockCloneObjects(objects, modelSpaceId(), mapping, AcDb::kDrcIgnore);
    for (const AcDbIdPair& pair : mapping.pairs()) {
        const host::Opened<AcDbEntity> entity(pair.isPrimary() ? pair.value() : AcDbObjectId(),
                                              AcDb::kForWrite);
        if (entity) {
            entity->transformBy(transform);
        }
    }
    return status;
}

Acad::ErrorStatus AcDbDatabase::wblock(AcDbDatabase*& output) {
    return wblock(output, modelSpaceId());
}

Acad::ErrorStatus AcDbDatabase::wblock(AcDbDatabase*& output, AcDbObjectId block) {
    const auto* record = host::peek<AcDbBlockTableRecord>(block);
    if (record == nullptr) {
        return Acad::eInvalidInput;
    }
    return wblock(output, entitiesOf(*this, block), record->origin());
}

Acad::ErrorStatus AcDbDatabase::wblock(AcDbDatabase*& output, const AcDbObjectIdArray& entities,
                                       const AcGePoint3d& base) {
    auto created = std::make_unique<AcDbDatabase>(true);
    const host::UndoLog::Suspend suspend(created->undoLog());
    // Settings travel along; what names records of this drawing starts as in a new one.
    for (host::HeaderIndex index = 0; index < impl().header.size(); ++index) {
        if (!std::holds_alternative<AcDbObjectId>(impl().header[index])) {
            created->impl().header[index] = impl().header[index];
        }
    }
    AcDbIdMapping mapping;
    if (!entities.isEmpty()) {
        mapping.assign(AcDbIdPair(entities[0].stub()->object->ownerId(), created->modelSpaceId(), false));
    }
    const Acad::ErrorStatus status =
        created->wblockCloneObjects(entities, created->modelSpaceId(), mapping, AcDb::kDrcIgnore);
    created->setInsbase(base);
    output = status == Acad::eOk ? created.release() : nullptr;
    return status;
}
