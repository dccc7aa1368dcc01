// Groups of entities.
#include "host/db/dbgroup.h"

#include "host/db/dbdatabase.h"
#include "host/db/entities/hatchboundary.h"

#include <algorithm>
#include <utility>

ACRX_DXF_DEFINE_MEMBERS(AcDbGroup, AcDbObject, AcDb::kDHL_CURRENT, AcDb::kMReleaseCurrent, 0, GROUP,
                        ObjectDBX Classes)

namespace {

/// The entity tells that it is in the group, or no longer.
void tell(AcDbObjectId entity, AcDbObjectId group, bool isMember) {
    AcDbObject* object = nullptr;
    if (group.isNull() || acdbOpenAcDbObject(object, entity, AcDb::kForWrite) != Acad::eOk) {
        return; // open elsewhere or on a locked layer: the group knows its members itself
    }
    if (isMember) {
        object->addPersistentReactor(group);
    } else {
        object->removePersistentReactor(group);
    }
    object->close();
}

} // namespace

AcString AcDbGroup::getName() const {
    AcString name;
    if (const auto* owner = host::peek<AcDbDictionary>(ownerId())) {
        owner->nameAt(objectId(), name);
    }
    return name;
}

Acad::ErrorStatus AcDbGroup::setDescription(const ACHAR* description) {
    assertWriteEnabled();
    mDescription = description;
    return Acad::eOk;
}
Acad::ErrorStatus AcDbGroup::setSelectable(bool selectable) {
    assertWriteEnabled();
    mSelectable = selectable;
    return Acad::eOk;
}
Acad::ErrorStatus AcDbGroup::setAnonymous(bool anonymous) {
    assertWriteEnabled();
    mAnonymous = anonymous;
    return Acad::eOk;
}

bool AcDbGroup::has(AcDbObjectId id) const {
    return std::find(mIds.begin(), mIds.end(), id) != mIds.end();
}

Acad::ErrorStatus AcDbGroup::append(AcDbObjectId id) {
    return insertAt(static_cast<Adesk::UInt32>(mIds.size()), id);
}

Acad::ErrorStatus AcDbGroup::append(const AcDbObjectIdArray& ids) {
    assertWriteEnabled();
    std::unordered_map<AcDbStub*, bool> known;
    for (const AcDbObjectId& id : mIds) {
        known.emplace(id.stub(), true);
    }
    for (const AcDbObjectId& id : ids) {
        if (host::peek<AcDbEntity>(id) == nullptr) {
            return Acad::eInvalidInput;
        }
    }
    for (const AcDbObjectId& id : ids) {
        if (known.emplace(id.stub(), true).second) {
            mIds.push_back(id);
            tell(id, objectId(), true);
        }
    }
    return Acad::eOk;
}

Acad::ErrorStatus AcDbGroup::insertAt(Adesk::UInt32 index, AcDbObjectId id) {
    if (index > mIds.size()) {
        return Acad::eInvalidIndex;
    }
    if (host::peek<AcDbEntity>(id) == nullptr) {
        return Acad::eInvalidInput;
    }
    if (has(id)) {
        return Acad::eAlreadyInGroup;
    }
    assertWriteEnabled();
    mIds.insert(mIds.begin() + index, id);
    tell(id, objectId(), true);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbGroup::remove(AcDbObjectId id) {
    Adesk::UInt32 index = 0;
    const Acad::ErrorStatus status = getIndex(id, index);
    return status == Acad::eOk ? removeAt(index) : status;
}

Acad::ErrorStatus AcDbGroup::removeAt(Adesk::UInt32 index) {
    if (index >= mIds.size()) {
        return Acad::eInvalidIndex;
    }
    assertWriteEnabled();
    const AcDbObjectId removed = mIds[index];
    mIds.erase(mIds.begin() + index);
    tell(removed, objectId(), false);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbGroup::replace(AcDbObjectId old, AcDbObjectId id) {
    Adesk::UInt32 index = 0;
    if (const Acad::ErrorStatus status = getIndex(old, index); status != Acad::eOk) {
        return status;
    }
    if (host::peek<AcDbEntity>(id) == nullptr || has(id)) {
        return has(id) ? Acad::eAlreadyInGroup : Acad::eInvalidInput;
    }
    assertWriteEnabled();
    mIds[index] = id;
    tell(old, objectId(), false);
    tell(id, objectId(), true);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbGroup::transfer(Adesk::UInt32 from, Adesk::UInt32 to, Adesk::UInt32 count) {
    if (from + count > mIds.size() || to + count > mIds.size()) {
        return Acad::eInvalidIndex;
    }
    assertWriteEnabled();
    const auto begin = mIds.begin();
    if (to < from) {
        std::rotate(begin + to, begin + from, begin + from + count);
    } else {
        std::rotate(begin + from, begin + from + count, begin + to + count);
    }
    return Acad::eOk;
}

Acad::ErrorStatus AcDbGroup::clear() {
    assertWriteEnabled();
    for (const AcDbObjectId& id : std::exchange(mIds, {})) {
        tell(id, objectId(), false);
    }
    return Acad::eOk;
}

Acad::ErrorStatus AcDbGroup::reverse() {
    assertWriteEnabled();
    std::reverse(mIds.begin(), mIds.end());
    return Acad::eOk;
}

Acad::ErrorStatus AcDbGroup::getIndex(AcDbObjectId id, Adesk::UInt32& index) const {
    const auto found = std::find(mIds.begin(), mIds.end(), id);
    if (found == mIds.end()) {
        return Acad::eNotInGroup;
    }
    index = static_cast<Adesk::UInt32>(found - mIds.begin());
    return Acad::eOk;
}

Adesk::UInt32 AcDbGroup::allEntityIds(AcDbObjectIdArray& ids) const {
    for (const AcDbObjectId& id : mIds) {
        if (!id.isErased()) {
            ids.append(id);
        }
    }
    return numEntities();
}

Adesk::UInt32 AcDbGroup::numEntities() const {
    return static_cast<Adesk::UInt32>(
        std::count_if(mIds.begin(), mIds.end(), [](const AcDbObjectId& id) { return !id.isErased(); }));
}

Acad::ErrorStatus AcDbGroup::dwgOutFields(AcDbDwgFiler* filer) const {
    if (const Acad::ErrorStatus status = AcDbObject::dwgOutFields(filer); status != Acad::eOk) {
        return status;
    }
    host::FieldWriter walk(*filer);
    walk(mDescription, mSelectable, mAnonymous);
    host::walkList(walk, mIds, [&](const AcDbObjectId& id) { walk.hardPointer(id); });
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbGroup::dwgInFields(AcDbDwgFiler* filer) {
    if (const Acad::ErrorStatus status = AcDbObject::dwgInFields(filer); status != Acad::eOk) {
        return status;
    }
    AcString description;
    bool selectable = true;
    bool anonymous = false;
    std::vector<AcDbObjectId> ids;
    host::FieldReader walk(*filer);
    walk(description, selectable, anonymous);
    host::walkList(walk, ids, [&](AcDbObjectId& id) { walk.hardPointer(id); });
    if (filer->filerStatus() == Acad::eOk) {
        mDescription = description;
        mSelectable = selectable;
        mAnonymous = anonymous;
        std::erase_if(ids, [](const AcDbObjectId& id) { return id.isNull(); });
        mIds = std::move(ids);
    }
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbGroup::dxfInFields(AcDbDxfFiler* filer) {
    assertWriteEnabled();
    mDescription = L"";
    mSelectable = true;
    mAnonymous = false;
    mIds.clear();
    return readDxfGroups(filer);
}

std::string_view AcDbGroup::dxfSubclass(std::string_view marker) const {
    return marker == "AcDbGroup" ? "AcDbGroup" : std::string_view();
}

bool AcDbGroup::takeDxfGroup(AcDbDxfFiler*, const host::DxfGroup& group, std::string_view) {
    switch (group.code) {
    case 300:
        mDescription = group.string();
        return true;
    case 70:
        mAnonymous = group.boolean();
        return true;
    case 71:
        mSelectable = group.boolean();
        return true;
    case 340:
        if (group.id != nullptr) {
            mIds.emplace_back(group.id);
        }
        return true;
    default:
        return false;
    }
}

Acad::ErrorStatus AcDbGroup::dxfOutFields(AcDbDxfFiler* filer) const {
    if (const Acad::ErrorStatus status = AcDbObject::dxfOutFields(filer); status != Acad::eOk) {
        return status;
    }
    filer->writeText(100, "AcDbGroup");
    filer->writeString(300, mDescription);
    filer->writeInt16(70, mAnonymous ? 1 : 0);
    filer->writeInt16(71, mSelectable ? 1 : 0);
    for (const AcDbObjectId& id : mIds) {
        if (!id.isErased()) {
            filer->writeObjectId(340, id);
        }
    }
    writeKeptGroups(filer, "AcDbGroup");
    return filer->filerStatus();
}
