// Reference counts of a drawing.
#include "host/commands/edit/references.h"

#include "host/rx/text.h"

namespace host {

std::wstring ReferenceCounts::fold(const std::wstring& name) {
    return host::fold(name);
}

/// Hard pointers, and soft ones of entities to anything but their owner.
template <class Visit>
void ReferenceCounts::forEachUse(const AcDbObject& object, Visit&& visit) {
    IdCollector collector(AcDb::kPurgeFiler);
    const ReadAccess access(object);
    object.dwgOutFields(&collector);
    const bool isEntity = AcDbEntity::cast(&object) != nullptr;
    for (const IdCollector::Reference& reference : collector.references) {
        const bool uses =
            reference.kind == ReferenceKind::hardPointer ||
            (isEntity && reference.kind == ReferenceKind::softPointer && reference.id != object.ownerId());
        if (uses && reference.id != object.objectId()) {
            visit(reference.id);
        }
    }
}

ReferenceCounts::ReferenceCounts(AcDbDatabase& database) {
    database.impl().forEachStub([&](AcDbStub& stub) {
        if (stub.object == nullptr || stub.erased || AcDbObjectId(&stub).isEffectivelyErased()) {
            return;
        }
        forEachUse(*stub.object, [&](AcDbObjectId id) { ++mCounts[id.stub()]; });
        addNames(*stub.object);
    });
    addHeader(database);
}

void ReferenceCounts::addNames(const GroupList& groups, bool isExtendedData) {
    for (const GroupList::Group group : groups) {
        switch (group.code) {
        case 2:
        case 3:
        case 6:
        case 7:
            if (isExtendedData) {
                break;
            }
            [[fallthrough]];
        case 1001:
        case 1003:
            mNames.emplace(group.code, fold(fromUtf8(decodeDxfText(group.text))));
            break;
        default:
            break;
        }
    }
}

void ReferenceCounts::addNames(const AcDbObject& object) {
    if (const auto* entity = KeptEntity::cast(&object)) {
        addNames(entity->record.groups, false);
    } else if (const auto* kept = KeptObject::cast(&object)) {
        addNames(kept->record.groups, false);
    }
    if (const ObjectExtras* extras = object.extras()) {
        addNames(extras->xdata, true);
        for (const ObjectExtras::Kept& part : extras->kept) {
            addNames(part.groups, false);
        }
    }
}

void ReferenceCounts::addHeader(AcDbDatabase& database) {
    for (const HeaderValue& value : database.impl().header) {
        if (const auto* id = std::get_if<AcDbObjectId>(&value)) {
            mCurrent.insert(id->stub());
        }
    }
    const DatabaseImpl::Containers& containers = database.impl().containers;
    for (const AcDbObjectId id :
         {containers.layerZero, containers.continuous, containers.byLayer, containers.byBlock,
          containers.standardTextStyle, containers.modelSpace, containers.paperSpace}) {
        mCurrent.insert(id.stub());
    }
}

bool ReferenceCounts::isNamed(AcDbObjectId id) const {
    const auto* record = peek<AcDbSymbolTableRecord>(id);
    if (record == nullptr) {
        return false;
    }
    const std::pair<const AcRxClass*, int> kinds[] = {
        {AcDbBlockTableRecord::desc(), 2},     {AcDbDimStyleTableRecord::desc(), 3},
        {AcDbLinetypeTableRecord::desc(), 6},  {AcDbTextStyleTableRecord::desc(), 7},
        {AcDbRegAppTableRecord::desc(), 1001}, {AcDbLayerTableRecord::desc(), 1003}};
    for (const auto& [kind, code] : kinds) {
        if (record->isKindOf(kind)) {
            return mNames.count({code, fold(record->name().kwszPtr())}) > 0;
        }
    }
    return false;
}

bool ReferenceCounts::isUsed(AcDbObjectId id) const {
    const auto found = mCounts.find(id.stub());
    return (found != mCounts.end() && found->second > 0) || mCurrent.count(id.stub()) > 0 || isNamed(id);
}

void ReferenceCounts::remove(AcDbObjectId id) {
    const auto* object = peek<AcDbObject>(id);
    if (object == nullptr) {
        return;
    }
    forEachUse(*object, [&](AcDbObjectId used) { --mCounts[used.stub()]; });
    IdCollector owned(AcDb::kPurgeFiler);
    {
        const ReadAccess access(*object);
        object->dwgOutFields(&owned);
    }
    for (const IdCollector::Reference& reference : owned.references) {
        if (reference.kind == ReferenceKind::hardOwnership ||
            reference.kind == ReferenceKind::softOwnership) {
            remove(reference.id);
        }
    }
}

} // namespace host
