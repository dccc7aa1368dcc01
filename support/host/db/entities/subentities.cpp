// Lists of parts: residence, erasing, filing and iteration.
#include "host/db/entities/subentities.h"

#include "host/db/dbdatabase.h"

#include <algorithm>
#include <iterator>

ACRX_NO_CONS_DEFINE_MEMBERS(AcDbObjectIterator, AcRxObject)
ACRX_DXF_DEFINE_MEMBERS(AcDbSequenceEnd, AcDbEntity, AcDb::kDHL_CURRENT, AcDb::kMReleaseCurrent, 0, SEQEND,
                        ObjectDBX Classes)

Acad::ErrorStatus AcDbSequenceEnd::dxfInFields(AcDbDxfFiler* filer) {
    const Acad::ErrorStatus status = AcDbEntity::dxfInFields(filer);
    return status == Acad::eOk ? readDxfGroups(filer) : status;
}

namespace host {

AcDbObjectId SubentityList::makeResident(AcDbEntity& owner, AcDbEntity* part) {
    AcDbDatabase* database = owner.database();
    AcDbObjectId id;
    if (part->layerId().isNull()) {
        part->setPropertiesFrom(&owner);
    }
    database->addAcDbObject(id, part);
    part->setOwnerId(owner.objectId());
    if (mEnd == nullptr) {
        auto* end = new AcDbSequenceEnd;
        end->setPropertiesFrom(&owner);
        AcDbObjectId endId;
        database->addAcDbObject(endId, end);
        end->setOwnerId(owner.objectId());
        end->close();
        mEnd = endId.stub();
    }
    return id;
}

Acad::ErrorStatus SubentityList::append(AcDbEntity& owner, AcDbObjectId& id, AcDbEntity* part) {
    return insert(owner, size(), id, part);
}

Acad::ErrorStatus SubentityList::insert(AcDbEntity& owner, std::size_t position, AcDbObjectId& id,
                                        AcDbEntity* part) {
    id.setNull();
    if (part == nullptr) {
        return Acad::eNullEntityPointer;
    }
    if (!part->objectId().isNull()) {
        return Acad::eAlreadyInDb;
    }
    owner.assertWriteEnabled();
    if (owner.database() == nullptr) {
        const auto at = static_cast<std::ptrdiff_t>(std::min(position, mLoose.size()));
        mLoose.insert(mLoose.begin() + at, std::unique_ptr<AcDbEntity>(part));
        return Acad::eOk;
    }
    id = makeResident(owner, part);
    const auto at = static_cast<std::ptrdiff_t>(std::min(position, mIds.size()));
    mIds.insert(mIds.begin() + at, id.stub());
    return Acad::eOk;
}

std::ptrdiff_t SubentityList::find(AcDbObjectId id) const {
    const auto found = std::find(mIds.begin(), mIds.end(), id.stub());
    return found != mIds.end() && !id.isNull() ? found - mIds.begin() : -1;
}

std::ptrdiff_t SubentityList::find(const AcDbEntity* part) const {
    if (part != nullptr && !part->objectId().isNull()) {
        return find(part->objectId());
    }
    const auto found =
        std::find_if(mLoose.begin(), mLoose.end(), [&](const auto& own) { return own.get() == part; });
    return found != mLoose.end() ? found - mLoose.begin() : -1;
}

void SubentityList::ownerBecameResident(AcDbEntity& owner) {
    std::vector<std::unique_ptr<AcDbEntity>> loose = std::move(mLoose);
    mLoose.clear();
    for (std::unique_ptr<AcDbEntity>& part : loose) {
        AcDbEntity* resident = part.release();
        mIds.push_back(makeResident(owner, resident).stub());
        resident->close();
    }
}

Acad::ErrorStatus SubentityList::erase(bool erasing) {
    Acad::ErrorStatus status = Acad::eOk;
    const auto eraseOne = [&](AcDbStub* stub) {
        if (const Acad::ErrorStatus one = eraseWithOwner(stub, erasing); one != Acad::eOk) {
            status = one;
        }
    };
    std::for_each(mIds.begin(), mIds.end(), eraseOne);
    eraseOne(mEnd);
    return status;
}

void SubentityList::reorder(AcDbEntity& owner, const std::vector<std::size_t>& order) {
    owner.assertWriteEnabled();
    std::vector<AcDbStub*> shown;
    std::copy_if(mIds.begin(), mIds.end(), std::back_inserter(shown),
                 [](const AcDbStub* stub) { return !stub->erased; });
    if (order.size() != shown.size() + mLoose.size()) {
        return;
    }
    auto from = order.begin();
    for (AcDbStub*& stub : mIds) {
        if (!stub->erased) {
            stub = shown[*from++];
        }
    }
    std::vector<std::unique_ptr<AcDbEntity>> loose(mLoose.size());
    for (std::size_t index = 0; index < loose.size(); ++index) {
        loose[index] = std::move(mLoose[order[index]]);
    }
    mLoose = std::move(loose);
}

void SubentityList::dwgOut(AcDbDwgFiler* filer) const {
    const bool carriesParts = filer->filerType() == AcDb::kCopyFiler;
    filer->writeBool(carriesParts);
    if (!carriesParts) {
        filer->writeUInt32(static_cast<Adesk::UInt32>(mIds.size()));
        for (AcDbStub* stub : mIds) {
            filer->writeHardOwnershipId(AcDbHardOwnershipId(stub));
        }
        filer->writeHardOwnershipId(AcDbHardOwnershipId(mEnd));
        return;
    }
    Adesk::UInt32 count = 0;
    forEach<AcDbEntity>([&](const AcDbEntity&) { ++count; });
    filer->writeUInt32(count);
    forEach<AcDbEntity>([&](const AcDbEntity& part) {
        filer->writeString(part.isA()->name());
        part.dwgOutFields(filer);
    });
}

void SubentityList::dwgIn(AcDbDwgFiler* filer) {
    bool carriesParts = false;
    Adesk::UInt32 count = 0;
    filer->readBool(&carriesParts);
    filer->readUInt32(&count);
    std::vector<AcDbStub*> ids;
    AcDbHardOwnershipId end;
    std::vector<std::unique_ptr<AcDbEntity>> loose;
    for (; count > 0 && filer->filerStatus() == Acad::eOk; --count) {
        if (!carriesParts) {
            AcDbHardOwnershipId id;
            filer->readHardOwnershipId(&id);
            if (!id.isNull()) {
                ids.push_back(id.stub());
            }
            continue;
        }
        AcString name;
        filer->readString(name);
        AcRxClass* descriptor = acrxFindAcRxClass(name.kwszPtr());
        std::unique_ptr<AcDbEntity> part(descriptor != nullptr ? AcDbEntity::cast(descriptor->create())
                                                               : nullptr);
        if (part == nullptr) {
            filer->setFilerStatus(Acad::eFilerError);
            return;
        }
        part->dwgInFields(filer);
        loose.push_back(std::move(part));
    }
    if (!carriesParts) {
        filer->readHardOwnershipId(&end);
    }
    if (filer->filerStatus() == Acad::eOk) {
        mIds = std::move(ids);
        mEnd = end.stub();
        mLoose = std::move(loose);
    }
}

namespace {

class ListIterator : public AcDbObjectIterator {
public:
    explicit ListIterator(const SubentityList& list) : mList(list) { start(); }

    void start(bool atBeginning = true, bool skipErased = true) override {
        mAt = atBeginning ? 0 : static_cast<std::ptrdiff_t>(mList.size()) - 1;
        skip(!atBeginning, skipErased);
    }
    bool done() const override { return mAt < 0 || mAt >= static_cast<std::ptrdiff_t>(mList.size()); }
    AcDbObjectId objectId() const override {
        return done() || mList.isLoose() ? AcDbObjectId() : AcDbObjectId(mList.ids()[index()]);
    }
    AcDbEntity* entity() const override {
        return done() || !mList.isLoose() ? nullptr : mList.looseAt(index());
    }
    void step(bool backwards = false, bool skipErased = true) override {
        mAt += backwards ? -1 : 1;
        skip(backwards, skipErased);
    }
    bool setPosition(AcDbObjectId id) override { return moveTo(mList.find(id)); }
    bool setPosition(AcDbEntity* entity) override { return moveTo(mList.find(entity)); }

private:
    std::size_t index() const { return static_cast<std::size_t>(mAt); }
    bool moveTo(std::ptrdiff_t position) {
        if (position < 0) {
            return false;
        }
        mAt = position;
        return true;
    }
    void skip(bool backwards, bool skipErased) {
        while (skipErased && !done() && !mList.isLoose() && mList.ids()[index()]->erased) {
            mAt += backwards ? -1 : 1;
        }
    }

    const SubentityList& mList;
    std::ptrdiff_t mAt = 0;
};

} // namespace

AcDbObjectIterator* SubentityList::newIterator() const {
    return new ListIterator(*this);
}

} // namespace host
