// Object ids, handles and open modes. An id names a stub: the place in a database that keeps an object's
// handle, its memory and its open state for as long as the database lives.
#pragma once

#include "host/ge/ge.h"
#include "host/rx/rx.h"

#include <cstdint>
#include <functional>

class AcDbDatabase;
class AcDbObject;

namespace AcDb {

enum OpenMode { kForRead = 0, kForWrite = 1, kForNotify = 2 };

enum FilerType {
    kFileFiler = 0,
    kCopyFiler = 1,
    kUndoFiler = 2,
    kBagFiler = 3,
    kIdXlateFiler = 4,
    kPageFiler = 5,
    kDeepCloneFiler = 6,
    kIdFiler = 7,
    kPurgeFiler = 8,
    kWblockCloneFiler = 9
};

/// Drawing versions; the numbers travel in class registrations.
enum AcDbDwgVersion {
    kDHL_Unknown = 254,
    kDHL_1002 = 11,
    kDHL_1004 = 13,
    kDHL_1006 = 14,
    kDHL_1009 = 16,
    kDHL_1012 = 19,
    kDHL_1014 = 21,
    kDHL_1015 = 23,
    kDHL_1800 = 25,
    kDHL_1021 = 27,
    kDHL_1024 = 29,
    kDHL_1027 = 31,
    kDHL_1032 = 33,
    kDHL_CURRENT = 33
};
enum MaintenanceReleaseVersion { kMReleaseCurrent = 0 };

enum Visibility { kInvisible = 1, kVisible = 0 };
enum CollisionType { kNullCollision = 0, kXrefBind };
enum DuplicateRecordCloning { kDrcNotApplicable = 0, kDrcIgnore = 1, kDrcReplace = 2 };
enum DeepCloneType {
    kDcCopy = 0,
    kDcExplode = 1,
    kDcBlock = 2,
    kDcXrefBind = 3,
    kDcInsert = 6,
    kDcWblock = 7,
    kDcObjects = 8
};

} // namespace AcDb

/// A 64-bit number that names an object in files; never used twice in one database.
class AcDbHandle {
public:
    constexpr AcDbHandle() = default;
    constexpr explicit AcDbHandle(Adesk::UInt64 value) : mValue(value) {}
    /// Hexadecimal digits; anything else gives the null handle.
    explicit AcDbHandle(const ACHAR* digits);
    constexpr operator Adesk::UInt64() const { return mValue; }
    Adesk::UInt32 low() const { return static_cast<Adesk::UInt32>(mValue); }
    Adesk::UInt32 high() const { return static_cast<Adesk::UInt32>(mValue >> 32); }
    bool isNull() const { return mValue == 0; }
    bool getIntoAsciiBuffer(ACHAR* buffer, std::size_t size) const;
    std::wstring toString() const;

private:
    Adesk::UInt64 mValue = 0;
};

namespace host {

/// Handles above this are taken for damaged when they come from a file, and never given out.
inline constexpr Adesk::UInt64 greatestHandle = Adesk::UInt64{1} << 60;

} // namespace host

/// Insides of an id. `object` is null while a file's reference has found no object (yet).
struct AcDbStub {
    Adesk::UInt64 handle = 0;
    AcDbObject* object = nullptr;
    AcDbDatabase* database = nullptr;
    Adesk::UInt16 readers = 0;
    bool openForWrite = false;
    bool openForNotify = false;
    bool transactionOpen = false;
    bool erased = false;
    bool erasedWithOwner = false; ///< and comes back with it
};

class AcDbObjectId {
public:
    constexpr AcDbObjectId() = default;
    constexpr AcDbObjectId(AcDbStub* stub) : mStub(stub) {}

    static const AcDbObjectId kNull;

    bool isNull() const { return mStub == nullptr; }
    void setNull() { mStub = nullptr; }
    /// The id belongs to an object that exists, erased or not.
    bool isValid() const { return mStub != nullptr && mStub->object != nullptr; }
    bool isResident() const { return isValid(); }
    bool isErased() const { return mStub == nullptr || mStub->erased; }
    /// Erased itself or owned by something erased.
    bool isEffectivelyErased() const;
    AcDbHandle handle() const { return AcDbHandle(mStub != nullptr ? mStub->handle : 0); }
    AcDbHandle nonForwardedHandle() const { return handle(); }
    AcDbDatabase* database() const { return mStub != nullptr ? mStub->database : nullptr; }
    AcDbDatabase* originalDatabase() const { return database(); }
    AcRxClass* objectClass() const;

    Adesk::IntDbId asOldId() const { return reinterpret_cast<Adesk::IntDbId>(mStub); }
    AcDbObjectId& setFromOldId(Adesk::IntDbId id) {
        mStub = reinterpret_cast<AcDbStub*>(id);
        return *this;
    }
    AcDbStub* stub() const { return mStub; }
    operator AcDbStub*() const { return mStub; }

    bool operator==(const AcDbObjectId& other) const { return mStub == other.mStub; }
    bool operator!=(const AcDbObjectId& other) const { return mStub != other.mStub; }
    bool operator<(const AcDbObjectId& other) const { return std::less<AcDbStub*>()(mStub, other.mStub); }

protected:
    AcDbStub* mStub = nullptr;
};

class AcDbHardOwnershipId : public AcDbObjectId {
public:
    using AcDbObjectId::AcDbObjectId;
    AcDbHardOwnershipId(const AcDbObjectId& id) : AcDbObjectId(id) {}
};
class AcDbSoftOwnershipId : public AcDbObjectId {
public:
    using AcDbObjectId::AcDbObjectId;
    AcDbSoftOwnershipId(const AcDbObjectId& id) : AcDbObjectId(id) {}
};
class AcDbHardPointerId : public AcDbObjectId {
public:
    using AcDbObjectId::AcDbObjectId;
    AcDbHardPointerId(const AcDbObjectId& id) : AcDbObjectId(id) {}
};
class AcDbSoftPointerId : public AcDbObjectId {
public:
    using AcDbObjectId::AcDbObjectId;
    AcDbSoftPointerId(const AcDbObjectId& id) : AcDbObjectId(id) {}
};

using AcDbObjectIdArray = AcArray<AcDbObjectId>;
using AcDbIntArray = AcArray<int>;

template <>
struct std::hash<AcDbObjectId> {
    std::size_t operator()(const AcDbObjectId& id) const noexcept {
        return std::hash<AcDbStub*>()(id.stub());
    }
};

Acad::ErrorStatus acdbGetObjectId(AcDbObjectId& id, const ads_name name);
Acad::ErrorStatus acdbGetAdsName(ads_name& name, AcDbObjectId id);
