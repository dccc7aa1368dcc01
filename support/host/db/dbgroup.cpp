// Groups of entities.
#include "host/db/dbgroup.h"

#include "host/db/dbdatabase.h"

#include <algorithm>

ACRX_DXF_DEFINE_MEMBERS(AcDbGroup, AcDbObject, AcDb::kDHL_CURRENT, 0, 0, GROUP, host)

namespace {

constexpr std::string_view subclassName = "AcDbGroup";

/// The entity tells that it is in the group, or no longer.
void tell(AcDbStub* entity, AcDbObjectId group, bool isMember) {
    AcDbObject* object = nullptr;
    if (group.isNull() || acdbOpenAcDbObject(object, AcDbObjectId(entity), AcDb::kForWrite) != Acad::eOk) {
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

Acad::ErrorStatus AcDbGroup::setAnonymous() {
    assertWriteEnabled();
    mAnonymous = true;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbGroup::getName(AcString& name) const {
    const auto* dictionary = host::peek<AcDbDictionary>(ownerId());
    if (dictionary == nullptr) {
        return Acad::eNoDatabase;
    }
    const host::ReadAccess access(*dictionary);
    return dictionary->nameAt(objectId(), name);
}

Acad::ErrorStatus AcDbGroup::append(AcDbObjectId entity) {
    if (host::peek<AcDbEntity>(entity) == nullptr) {
        return Acad::eInvalidInput;
    }
    if (std::find(mMembers.begin(), mMembers.end(), entity.stub()) != mMembers.end()) {
        return Acad::eDuplicateKey;
    }
    assertWriteEnabled();
    mMembers.push_back(entity.stub());
    tell(entity.stub(), objectId(), true);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbGroup::append(const AcDbObjectIdArray& entities) {
    std::vector<AcDbStub*> known = mMembers;
    std::sort(known.begin(), known.end());
    assertWriteEnabled();
    for (const AcDbObjectId id : entities) {
        if (host::peek<AcDbEntity>(id) != nullptr &&
            !std::binary_search(known.begin(), known.end(), id.stub())) {
            mMembers.push_back(id.stub());
            tell(id.stub(), objectId(), true);
        }
    }
    return Acad::eOk;
}

Acad::ErrorStatus AcDbGroup::remove(AcDbObjectId entity) {
    const auto found = std::find(mMembers.begin(), mMembers.end(), entity.stub());
    if (found == mMembers.end()) {
        return Acad::eKeyNotFound;
    }
    assertWriteEnabled();
    mMembers.erase(found);
    tell(entity.stub(), objectId(), false);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbGroup::clear() {
    assertWriteEnabled();
    for (AcDbStub* member : std::exchange(mMembers, {})) {
        tell(member, objectId(), false);
    }
    return Acad::eOk;
}

bool AcDbGroup::has(const AcDbEntity* entity) const {
    assertReadEnabled();
    return entity != nullptr &&
           std::find(mMembers.begin(), mMembers.end(), entity->objectId().stub()) != mMembers.end();
}

Adesk::UInt32 AcDbGroup::allEntityIds(AcDbObjectIdArray& ids) const {
    assertReadEnabled();
    for (AcDbStub* member : mMembers) {
        if (host::peek<AcDbEntity>(AcDbObjectId(member)) != nullptr) {
            ids.append(AcDbObjectId(member));
        }
    }
    return static_cast<Adesk::UInt32>(ids.length());
}

Adesk::UInt32 AcDbGroup::numEntities() const {
    assertReadEnabled();
    return static_cast<Adesk::UInt32>(std::count_if(mMembers.begin(), mMembers.end(), [](AcDbStub* member) {
        return host::peek<AcDbEntity>(AcDbObjectId(member)) != nullptr;
    }));
}

Acad::ErrorStatus AcDbGroup::dwgOutFields(AcDbDwgFiler* filer) const {
    if (const Acad::ErrorStatus status = AcDbObject::dwgOutFields(filer); status != Acad::eOk) {
        return status;
    }
    filer->writeString(mDescription);
    filer->writeBool(mAnonymous);
    filer->writeBool(mSelectable);
    filer->writeUInt32(static_cast<Adesk::UInt32>(mMembers.size()));
    for (AcDbStub* member : mMembers) {
        filer->writeHardPointerId(AcDbHardPointerId(member));
    }
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbGroup::dwgInFields(AcDbDwgFiler* filer) {
    if (const Acad::ErrorStatus status = AcDbObject::dwgInFields(filer); status != Acad::eOk) {
        return status;
    }
    Adesk::UInt32 count = 0;
    filer->readString(mDescription);
    filer->readBool(&mAnonymous);
    filer->readBool(&mSelectable);
    filer->readUInt32(&count);
    mMembers.clear();
    for (; count > 0 && filer->filerStatus() == Acad::eOk; --count) {
        AcDbHardPointerId member;
        filer->readHardPointerId(&member);
        if (!member.isNull()) {
            mMembers.push_back(member.stub());
        }
    }
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbGroup::dxfInFields(AcDbDxfFiler* filer) {
    AcDbObject::dxfInFields(filer);
    mMembers.clear();
    while (const host::DxfGroup* group = filer->nextGroup()) {
        switch (group->code) {
        case 300:
            mDescription = group->string();
            break;
        case 70:
            mAnonymous = group->boolean();
            break;
        case 71:
            mSelectable = group->boolean();
            break;
        case 340:
            if (group->id != nullptr) {
                mMembers.push_back(group->id);
            }
            break;
        default:
            if ((group->code != 100 || group->text != subclassName) && !takeObjectGroup(filer, *group)) {
                keepGroup(subclassName, *group);
            }
        }
    }
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbGroup::dxfOutFields(AcDbDxfFiler* filer) const {
    AcDbObject::dxfOutFields(filer);
    filer->writeText(100, subclassName);
    filer->writeString(300, mDescription);
    filer->writeInt16(70, mAnonymous ? 1 : 0);
    filer->writeInt16(71, mSelectable ? 1 : 0);
    for (AcDbStub* member : mMembers) {
        if (!member->erased) {
            filer->writeReference(340, member);
        }
    }
    writeKeptGroups(filer, subclassName);
    return filer->filerStatus();
}
