// Dictionaries, records of free data and layouts.
#include "host/db/dbdict.h"

#include "host/db/dbdatabase.h"
#include "host/db/dbgroup.h"
#include "host/rx/text.h"

#include <algorithm>

ACRX_DXF_DEFINE_MEMBERS(AcDbDictionary, AcDbObject, AcDb::kDHL_CURRENT, 0, 0, DICTIONARY, host)
ACRX_DXF_DEFINE_MEMBERS(AcDbDictionaryWithDefault, AcDbDictionary, AcDb::kDHL_CURRENT, 0, 0,
                        ACDBDICTIONARYWDFLT, host)
ACRX_DXF_DEFINE_MEMBERS(AcDbXrecord, AcDbObject, AcDb::kDHL_CURRENT, 0, 0, XRECORD, host)
ACRX_DXF_DEFINE_MEMBERS(AcDbPlaceHolder, AcDbObject, AcDb::kDHL_CURRENT, 0, 0, ACDBPLACEHOLDER, host)

namespace host {

void initializeDictionaryClasses() {
    AcDbDictionary::rxInit();
    AcDbDictionaryWithDefault::rxInit();
    AcDbXrecord::rxInit();
    AcDbPlotSettings::rxInit();
    AcDbLayout::rxInit();
    AcDbPlaceHolder::rxInit();
    AcDbGroup::rxInit();
    KeptObject::rxInit();
    KeptEntity::rxInit();
    AcDbProxyEntity::rxInit();
    AcDbProxyObject::rxInit();
}

} // namespace host

// Dictionaries. Entries of erased objects stay, so that an undone erasure brings them back; they count as
// absent everywhere else.

std::ptrdiff_t AcDbDictionary::find(std::wstring_view name) const {
    const auto found = mIndex.find(name);
    return found != mIndex.end() ? static_cast<std::ptrdiff_t>(found->second) : -1;
}

Acad::ErrorStatus AcDbDictionary::getAt(const ACHAR* name, AcDbObjectId& id) const {
    id.setNull();
    const std::ptrdiff_t index = name != nullptr ? find(name) : -1;
    if (index < 0 || mEntries[static_cast<std::size_t>(index)].id.isErased()) {
        return Acad::eKeyNotFound;
    }
    id = mEntries[static_cast<std::size_t>(index)].id;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbDictionary::getAt(const ACHAR* name, AcDbObject*& object, AcDb::OpenMode mode) const {
    AcDbObjectId id;
    object = nullptr;
    const Acad::ErrorStatus status = getAt(name, id);
    return status == Acad::eOk ? acdbOpenAcDbObject(object, id, mode) : status;
}

bool AcDbDictionary::has(const ACHAR* name) const {
    AcDbObjectId id;
    return getAt(name, id) == Acad::eOk;
}

bool AcDbDictionary::has(AcDbObjectId id) const {
    AcString name;
    return nameAt(id, name) == Acad::eOk;
}

Acad::ErrorStatus AcDbDictionary::nameAt(AcDbObjectId id, AcString& name) const {
    const auto found =
        std::find_if(mEntries.begin(), mEntries.end(), [&](const Entry& e) { return e.id == id; });
    if (found == mEntries.end() || id.isErased()) {
        return Acad::eKeyNotFound;
    }
    name = found->name;
    return Acad::eOk;
}

Adesk::UInt32 AcDbDictionary::numEntries() const {
    return static_cast<Adesk::UInt32>(
        std::count_if(mEntries.begin(), mEntries.end(), [](const Entry& e) { return !e.id.isErased(); }));
}

void AcDbDictionary::adopt(AcString name, AcDbObjectId id) {
    const std::ptrdiff_t index = find(name.kwszPtr());
    if (index >= 0) {
        mEntries[static_cast<std::size_t>(index)] = {std::move(name), id};
        return;
    }
    mIndex.emplace(name.kwszPtr(), mEntries.size());
    mEntries.push_back({std::move(name), id});
}

Acad::ErrorStatus AcDbDictionary::setAt(const ACHAR* name, AcDbObject* value, AcDbObjectId& id) {
    if (name == nullptr || *name == L'\0' || value == nullptr) {
        return Acad::eInvalidInput;
    }
    if (database() == nullptr) {
        return Acad::eNoDatabase;
    }
    assertWriteEnabled();
    AcDbObjectId previous;
    const bool replaces = getAt(name, previous) == Acad::eOk;
    id = value->objectId();
    if (id.isNull()) {
        if (const Acad::ErrorStatus status = database()->addAcDbObject(id, value); status != Acad::eOk) {
            return status;
        }
    } else if (value->database() != database()) {
        return Acad::eWrongDatabase;
    }
    value->setOwnerId(objectId());
    if (replaces && previous != id) {
        AcDbObject* old = nullptr;
        if (acdbOpenAcDbObject(old, previous, AcDb::kForWrite) == Acad::eOk) {
            old->erase();
            old->close();
        }
    }
    adopt(name, id);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbDictionary::remove(const ACHAR* name) {
    AcDbObjectId id;
    return remove(name, id);
}

Acad::ErrorStatus AcDbDictionary::remove(const ACHAR* name, AcDbObjectId& id) {
    if (const Acad::ErrorStatus status = getAt(name, id); status != Acad::eOk) {
        return status;
    }
    assertWriteEnabled();
    mEntries.erase(mEntries.begin() + find(name));
    reindex();
    return Acad::eOk;
}

Acad::ErrorStatus AcDbDictionary::remove(AcDbObjectId id) {
    AcString name;
    const Acad::ErrorStatus status = nameAt(id, name);
    return status == Acad::eOk ? remove(name.kwszPtr()) : status;
}

bool AcDbDictionary::setName(const ACHAR* from, const ACHAR* to) {
    AcDbObjectId id;
    if (getAt(from, id) != Acad::eOk || has(to)) {
        return false;
    }
    assertWriteEnabled();
    mEntries[static_cast<std::size_t>(find(from))].name = to;
    reindex();
    return true;
}

void AcDbDictionary::reindex() {
    mIndex.clear();
    for (std::size_t index = 0; index < mEntries.size(); ++index) {
        mIndex.emplace(mEntries[index].name.kwszPtr(), index);
    }
}

AcDbDictionaryIterator* AcDbDictionary::newIterator() const {
    return new AcDbDictionaryIterator(*this);
}

void AcDbDictionary::setTreatElementsAsHard(bool hard) {
    assertWriteEnabled();
    mHard = hard;
}
void AcDbDictionary::setMergeStyle(Adesk::Int16 style) {
    assertWriteEnabled();
    mMergeStyle = style;
}

Acad::ErrorStatus AcDbDictionary::subErase(bool erasing) {
    for (const Entry& entry : mEntries) {
        host::eraseWithOwner(entry.id.stub(), erasing);
    }
    return Acad::eOk;
}

Acad::ErrorStatus AcDbDictionary::dwgOutFields(AcDbDwgFiler* filer) const {
    if (const Acad::ErrorStatus status = AcDbObject::dwgOutFields(filer); status != Acad::eOk) {
        return status;
    }
    filer->writeInt16(mMergeStyle);
    filer->writeBool(mHard);
    filer->writeUInt32(static_cast<Adesk::UInt32>(mEntries.size()));
    for (const Entry& entry : mEntries) {
        filer->writeString(entry.name);
        if (mHard) {
            filer->writeHardOwnershipId(entry.id);
        } else {
            filer->writeSoftOwnershipId(entry.id);
        }
    }
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbDictionary::dwgInFields(AcDbDwgFiler* filer) {
    if (const Acad::ErrorStatus status = AcDbObject::dwgInFields(filer); status != Acad::eOk) {
        return status;
    }
    filer->readInt16(&mMergeStyle);
    filer->readBool(&mHard);
    Adesk::UInt32 count = 0;
    filer->readUInt32(&count);
    mEntries.clear();
    mIndex.clear();
    for (; count > 0 && filer->filerStatus() == Acad::eOk; --count) {
        AcString name;
        filer->readString(name);
        AcDbObjectId id;
        if (mHard) {
            AcDbHardOwnershipId owned;
            filer->readHardOwnershipId(&owned);
            id = owned;
        } else {
            AcDbSoftOwnershipId owned;
            filer->readSoftOwnershipId(&owned);
            id = owned;
        }
        if (!id.isNull()) {
            adopt(std::move(name), id);
        }
    }
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbDictionary::readGroups(AcDbDxfFiler* filer) {
    AcString name;
    bool named = false;
    while (const host::DxfGroup* group = filer->nextGroup()) {
        switch (group->code) {
        case 100:
            if (group->text != "AcDbDictionary") {
                filer->pushBackItem();
                return filer->filerStatus();
            }
            break;
        case 280:
            mHard = group->boolean();
            break;
        case 281:
            mMergeStyle = group->int16();
            break;
        case 3:
            name = group->string();
            named = true;
            break;
        case 350:
        case 360:
            if (named) {
                adopt(name, AcDbObjectId(group->id));
                named = false;
                break;
            }
            [[fallthrough]];
        default:
            if (!takeObjectGroup(filer, *group)) {
                keepGroup("AcDbDictionary", *group);
            }
            break;
        }
    }
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbDictionary::dxfInFields(AcDbDxfFiler* filer) {
    mEntries.clear();
    mIndex.clear();
    AcDbObject::dxfInFields(filer);
    readGroups(filer);
    keepRest(filer);
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbDictionary::dxfOutFields(AcDbDxfFiler* filer) const {
    AcDbObject::dxfOutFields(filer);
    filer->writeText(100, "AcDbDictionary");
    if (mHard) {
        filer->writeInt16(280, 1);
    }
    filer->writeInt16(281, mMergeStyle);
    for (const Entry& entry : mEntries) {
        if (!entry.id.isErased()) {
            filer->writeString(3, entry.name);
            filer->writeObjectId(mHard ? 360 : 350, entry.id);
        }
    }
    writeKeptGroups(filer, "AcDbDictionary");
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbDictionaryIterator::getObject(AcDbObject*& object, AcDb::OpenMode mode) {
    return acdbOpenAcDbObject(object, objectId(), mode);
}

Acad::ErrorStatus AcDbDictionaryWithDefault::setDefaultId(AcDbObjectId id) {
    assertWriteEnabled();
    mDefault = id;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbDictionaryWithDefault::dwgOutFields(AcDbDwgFiler* filer) const {
    const Acad::ErrorStatus status = AcDbDictionary::dwgOutFields(filer);
    return status == Acad::eOk ? filer->writeHardPointerId(mDefault) : status;
}

Acad::ErrorStatus AcDbDictionaryWithDefault::dwgInFields(AcDbDwgFiler* filer) {
    if (const Acad::ErrorStatus status = AcDbDictionary::dwgInFields(filer); status != Acad::eOk) {
        return status;
    }
    AcDbHardPointerId id;
    filer->readHardPointerId(&id);
    mDefault = id;
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbDictionaryWithDefault::dxfInFields(AcDbDxfFiler* filer) {
    AcDbObject::dxfInFields(filer);
    readGroups(filer);
    if (filer->atSubclassData("AcDbDictionaryWithDefault")) {
        while (const host::DxfGroup* group = filer->nextGroup()) {
            if (group->code == 340) {
                mDefault = AcDbObjectId(group->id);
            } else if (!takeObjectGroup(filer, *group)) {
                keepGroup("AcDbDictionaryWithDefault", *group);
            }
        }
    }
    keepRest(filer);
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbDictionaryWithDefault::dxfOutFields(AcDbDxfFiler* filer) const {
    AcDbDictionary::dxfOutFields(filer);
    filer->writeText(100, "AcDbDictionaryWithDefault");
    filer->writeObjectId(340, mDefault);
    writeKeptGroups(filer, "AcDbDictionaryWithDefault");
    return filer->filerStatus();
}

// Records of free data.

Acad::ErrorStatus AcDbXrecord::rbChain(resbuf** list, AcDbDatabase* database) const {
    *list = mGroups.toResbuf(database != nullptr ? database : this->database()).release();
    return Acad::eOk;
}

Acad::ErrorStatus AcDbXrecord::setFromRbChain(const resbuf& list, AcDbDatabase*) {
    assertWriteEnabled();
    mGroups = host::GroupList::fromResbuf(&list);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbXrecord::dwgOutFields(AcDbDwgFiler* filer) const {
    if (const Acad::ErrorStatus status = AcDbObject::dwgOutFields(filer); status != Acad::eOk) {
        return status;
    }
    filer->writeInt16(mMergeStyle);
    mGroups.dwgOut(filer, database());
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbXrecord::dwgInFields(AcDbDwgFiler* filer) {
    if (const Acad::ErrorStatus status = AcDbObject::dwgInFields(filer); status != Acad::eOk) {
        return status;
    }
    filer->readInt16(&mMergeStyle);
    mGroups.dwgIn(filer);
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbXrecord::dxfInFields(AcDbDxfFiler* filer) {
    mGroups.clear();
    AcDbObject::dxfInFields(filer);
    filer->atSubclassData("AcDbXrecord");
    bool first = true;
    while (const host::DxfGroup* group = filer->nextGroup()) {
        if (first && group->code == 280) {
            mMergeStyle = group->int16();
        } else if (group->code < 1000 || !takeObjectGroup(filer, *group)) {
            mGroups.add(*group);
        }
        first = false;
    }
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbXrecord::dxfOutFields(AcDbDxfFiler* filer) const {
    AcDbObject::dxfOutFields(filer);
    filer->writeText(100, "AcDbXrecord");
    filer->writeInt16(280, mMergeStyle);
    return filer->writeKept(mGroups);
}
