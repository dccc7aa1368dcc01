// Entities that belong to another one: vertices of a polyline, attributes of a block reference.
#pragma once

#include "host/db/dbentity.h"

#include <memory>
#include <vector>

/// Runs over the parts of an entity. Parts of a resident entity are told by id, others by pointer.
class AcDbObjectIterator : public AcRxObject {
    ACRX_DECLARE_MEMBERS(AcDbObjectIterator);

public:
    virtual void start(bool atBeginning = true, bool skipErased = true) = 0;
    virtual bool done() const = 0;
    virtual AcDbObjectId objectId() const = 0;
    /// The part itself when it is in no database, else null.
    virtual AcDbEntity* entity() const = 0;
    virtual void step(bool backwards = false, bool skipErased = true) = 0;
    virtual bool setPosition(AcDbObjectId id) = 0;
    virtual bool setPosition(AcDbEntity* entity) = 0;
};

/// Ends a list of parts in files.
class AcDbSequenceEnd : public AcDbEntity {
    ACRX_DECLARE_MEMBERS(AcDbSequenceEnd);

public:
    Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;

protected:
    std::string_view dxfSubclass(std::string_view) const override { return {}; }
};

namespace host {

/// The parts of one entity, in order. While the owner is in no database it holds them itself.
class SubentityList {
public:
    SubentityList() = default;
    SubentityList(const SubentityList&) = delete;
    SubentityList& operator=(const SubentityList&) = delete;

    /// Ids of resident parts, erased ones included.
    const std::vector<AcDbStub*>& ids() const { return mIds; }
    AcDbStub* sequenceEnd() const { return mEnd; }
    bool empty() const { return mIds.empty() && mLoose.empty(); }

    /// For readers: links a part, or the end of the list, that already is in the database.
    void adopt(AcDbStub* part) { mIds.push_back(part); }
    void adoptSequenceEnd(AcDbStub* end) { mEnd = end; }

    /// Calls visit(const Part&) for every part of the class that is not erased.
    template <class Part, class Visit>
    void forEach(Visit&& visit) const {
        for (AcDbStub* stub : mIds) {
            if (const Part* part = peek<Part>(AcDbObjectId(stub))) {
                const ReadAccess access(*part);
                visit(*part);
            }
        }
        for (const std::unique_ptr<AcDbEntity>& part : mLoose) {
            if (const Part* own = Part::cast(part.get())) {
                visit(*own);
            }
        }
    }
    /// Calls visit(Part&) for every part that is not erased, opened for write while the call lasts. Gives the
    /// first failure to open one.
    template <class Part, class Visit>
    Acad::ErrorStatus change(Visit&& visit) {
        Acad::ErrorStatus status = Acad::eOk;
        for (AcDbStub* stub : mIds) {
            if (stub->erased) {
                continue;
            }
            const Opened<Part> part(AcDbObjectId(stub), AcDb::kForWrite);
            if (part) {
                visit(*part.get());
            } else if (status == Acad::eOk) {
                status = part.status();
            }
        }
        for (const std::unique_ptr<AcDbEntity>& part : mLoose) {
            if (Part* own = Part::cast(part.get())) {
                visit(*own);
            }
        }
        return status;
    }

    /// Appends a part. For a resident owner the part becomes a resident too and stays open for write; else
    /// the list owns it from now on. The owner must be open for write.
    Acad::ErrorStatus append(AcDbEntity& owner, AcDbObjectId& id, AcDbEntity* part);
    /// The same at a place among the parts. A position beyond the end appends.
    Acad::ErrorStatus insert(AcDbEntity& owner, std::size_t position, AcDbObjectId& id, AcDbEntity* part);
    /// Position of a part, or nothing.
    std::ptrdiff_t find(AcDbObjectId id) const;
    std::ptrdiff_t find(const AcDbEntity* part) const;
    /// Makes the parts residents when their owner has become one.
    void ownerBecameResident(AcDbEntity& owner);
    /// Erases residents and unerases them again, the end of the sequence with them.
    Acad::ErrorStatus erase(bool erasing);
    /// Takes all parts out; residents are erased. The owner must be open for write.
    void clear(AcDbEntity& owner) {
        removeIf<AcDbEntity>(owner, [](const AcDbEntity&) { return true; });
        mIds.clear();
    }
    /// Takes the parts out for which remove(const Part&) is true; residents are erased. The owner must be
    /// open for write.
    template <class Part, class Remove>
    void removeIf(AcDbEntity& owner, Remove&& remove) {
        owner.assertWriteEnabled();
        std::erase_if(mIds, [&](AcDbStub* stub) {
            if (stub->erased) {
                return false;
            }
            const Opened<Part> part(AcDbObjectId(stub), AcDb::kForWrite);
            const bool goes = part && remove(static_cast<const Part&>(*part.get()));
            if (goes) {
                part->erase();
            }
            return goes;
        });
        std::erase_if(mLoose, [&](const std::unique_ptr<AcDbEntity>& part) {
            const Part* own = Part::cast(part.get());
            return own != nullptr && remove(*own);
        });
    }

    /// Puts the parts that are not erased into a new order: order[k] is the place from which the k-th one
    /// comes.
    void reorder(AcDbEntity& owner, const std::vector<std::size_t>& order);

    /// Residents travel as owned ids; a plain copy carries the parts themselves.
    void dwgOut(AcDbDwgFiler* filer) const;
    void dwgIn(AcDbDwgFiler* filer);

    AcDbObjectIterator* newIterator() const;
    std::size_t size() const { return mIds.size() + mLoose.size(); }
    AcDbEntity* looseAt(std::size_t index) const { return mLoose[index].get(); }
    bool isLoose() const { return !mLoose.empty(); }

private:
    AcDbObjectId makeResident(AcDbEntity& owner, AcDbEntity* part);

    std::vector<AcDbStub*> mIds;
    AcDbStub* mEnd = nullptr;
    std::vector<std::unique_ptr<AcDbEntity>> mLoose;
};

} // namespace host
