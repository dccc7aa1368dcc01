// AcDbObject: what every resident of a drawing has - identity, open state, owner, extended data, reactors,
// filing - and the calls that open objects by id.
#pragma once

#include "host/db/dbfiler.h"
#include "host/gi/gi.h"

#include <memory>

class AcDbIdMapping;
class AcDbObjectReactor;

namespace host {

class DatabaseImpl;
class UndoLog;

/// The rarely used parts of an object, held apart so that a plain line stays small.
struct ObjectExtras {
    GroupList xdata; ///< groups 1001 to 1071, as in files
    AcDbObjectId extensionDictionary;
    std::vector<AcDbObjectId> reactors; ///< persistent reactors
    std::vector<AcDbObjectReactor*> transientReactors;
    /// Groups of a file that the object's class does not know, by the subclass they came under. Those under
    /// an unknown marker carry the marker themselves and have an empty key.
    struct Kept {
        std::string subclass;
        GroupList groups;
    };
    std::vector<Kept> kept;
};

/// Thrown when code touches an object it has not opened for that: a fault of the caller, told at the
/// boundary of the command or function that ran.
class OpenStateError : public std::logic_error {
public:
    using std::logic_error::logic_error;
};

} // namespace host

class AcDbObject : public AcGiDrawable {
    ACRX_DECLARE_MEMBERS(AcDbObject);

public:
    AcDbObject() = default;
    AcDbObject(const AcDbObject&) = delete;
    AcDbObject& operator=(const AcDbObject&) = delete;
    ~AcDbObject() override;

    AcDbObjectId objectId() const { return mStub; }
    AcDbObjectId id() const override { return mStub; }
    AcDbObjectId ownerId() const { return mOwner; }
    virtual Acad::ErrorStatus setOwnerId(AcDbObjectId owner);
    void getAcDbHandle(AcDbHandle& handle) const;
    AcDbHandle handle() const { return AcDbHandle(mStub != nullptr ? mStub->handle : 0); }
    AcDbDatabase* database() const { return mStub != nullptr ? mStub->database : nullptr; }

    // Open state. An object in no database may always be read and written.

    Acad::ErrorStatus upgradeOpen();
    Acad::ErrorStatus downgradeOpen();
    Acad::ErrorStatus close();
    Acad::ErrorStatus closeAndPage(bool = true) { return close(); }
    /// Closes and gives back the state from before the object was opened for write.
    Acad::ErrorStatus cancel();
    Acad::ErrorStatus erase(bool erasing = true);
    bool isErased() const { return mStub != nullptr && mStub->erased; }
    bool isEraseStatusToggled() const { return mEraseToggled; }
    bool isReadEnabled() const;
    bool isWriteEnabled() const;
    bool isNotifyEnabled() const { return mStub != nullptr && mStub->openForNotify; }
    bool isModified() const { return mModified; }
    bool isNewObject() const { return mNew; }
    bool isTransactionResident() const { return mStub != nullptr && mStub->transactionOpen; }
    void assertReadEnabled() const {
        if (!isReadEnabled()) {
            refuseAccess(false);
        }
    }
    /// To be called before a change: with `autoUndo` the state until now is kept for undo.
    void assertWriteEnabled(bool autoUndo = true, bool recordModified = true);
    void assertNotifyEnabled() const {}
    virtual void disableUndoRecording(bool disable) { mUndoDisabled = disable; }
    bool isUndoRecordingDisabled() const { return mUndoDisabled; }
    Acad::ErrorStatus handOverTo(AcDbObject* replacement, bool keepXData = true,
                                 bool keepExtensionDictionary = true);
    Acad::ErrorStatus swapIdWith(AcDbObjectId other, bool swapXData = false,
                                 bool swapExtensionDictionary = false);

    // Filing.

    Acad::ErrorStatus dwgIn(AcDbDwgFiler* filer);
    Acad::ErrorStatus dwgOut(AcDbDwgFiler* filer) const;
    virtual Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer);
    virtual Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const;
    Acad::ErrorStatus dxfIn(AcDbDxfFiler* filer);
    Acad::ErrorStatus dxfOut(AcDbDxfFiler* filer) const;
    virtual Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer);
    virtual Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const;
    virtual Acad::ErrorStatus audit(AcDbAuditInfo*) { return Acad::eOk; }
    /// Name of the object in DXF files, UTF-8.
    virtual const std::string& dxfRecordName() const { return isA()->dxfNameUtf8(); }

    // Extended data: result buffers from 1001 on. Null name: that of all applications.

    virtual resbuf* xData(const ACHAR* application = nullptr) const;
    virtual Acad::ErrorStatus setXData(const resbuf* data);
    const host::GroupList& xdataGroups() const;
    void setXdataGroups(host::GroupList groups);

    AcDbObjectId extensionDictionary() const;
    Acad::ErrorStatus createExtensionDictionary();
    Acad::ErrorStatus releaseExtensionDictionary();
    /// For readers: takes an existing dictionary as it is.
    void setExtensionDictionary(AcDbObjectId id);

    void addPersistentReactor(AcDbObjectId reactor);
    Acad::ErrorStatus removePersistentReactor(AcDbObjectId reactor);
    bool hasPersistentReactor(AcDbObjectId reactor) const;
    const std::vector<AcDbObjectId>& persistentReactors() const;
    Acad::ErrorStatus addReactor(AcDbObjectReactor* reactor) const;
    Acad::ErrorStatus removeReactor(AcDbObjectReactor* reactor) const;

    /// Groups that the class did not understand when the object was read, kept for writing back.
    void keepGroup(std::string_view subclass, const host::DxfGroup& group);
    const host::GroupList* keptGroups(std::string_view subclass) const;
    void replaceKeptGroups(std::string_view subclass, host::GroupList groups);
    const host::ObjectExtras* extras() const { return mExtras.get(); }

    // Cloning. The overridable steps; databases clone whole sets with AcDbDatabase::deepCloneObjects.

    AcRxObject* clone() const override;
    Acad::ErrorStatus copyFrom(const AcRxObject* other) override;
    Acad::ErrorStatus deepClone(AcDbObject* owner, AcDbObject*& cloned, AcDbIdMapping& mapping,
                                bool primary = true) const {
        return subDeepClone(owner, cloned, mapping, primary);
    }
    Acad::ErrorStatus wblockClone(AcRxObject* owner, AcDbObject*& cloned, AcDbIdMapping& mapping,
                                  bool primary = true) const {
        return subWblockClone(owner, cloned, mapping, primary);
    }
    virtual void modified(const AcDbObject*) {}
    virtual void erased(const AcDbObject*, bool) {}

    // AcGiDrawable.
    bool isPersistent() const override { return mStub != nullptr; }

protected:
    virtual Acad::ErrorStatus subErase(bool erasing);
    /// The object has come into a database, or taken another's place there: owners bring their parts along.
    virtual void subBecameResident() {}
    virtual Acad::ErrorStatus subOpen(AcDb::OpenMode) { return Acad::eOk; }
    virtual Acad::ErrorStatus subClose() { return Acad::eOk; }
    virtual Acad::ErrorStatus subCancel() { return Acad::eOk; }
    virtual Acad::ErrorStatus subDeepClone(AcDbObject* owner, AcDbObject*& cloned, AcDbIdMapping& mapping,
                                           bool primary) const;
    virtual Acad::ErrorStatus subWblockClone(AcRxObject* owner, AcDbObject*& cloned, AcDbIdMapping& mapping,
                                             bool primary) const;
    bool subWorldDraw(AcGiWorldDraw*) override { return true; }
    void subViewportDraw(AcGiViewportDraw*) override {}
    Adesk::UInt32 subSetAttributes(AcGiDrawableTraits*) override { return 0; }

    /// copyFrom where the source is of a class that this one comes from (a plain polyline into a kind of
    /// polyline). Overridden by classes that others derive from.
    virtual Acad::ErrorStatus copyFromBase(const AcDbObject& source);

    /// Takes a group that any object may have, wherever a file put it: handle, owner, reactors and extension
    /// dictionary; true when the group was one of these.
    bool takeObjectGroup(AcDbDxfFiler* filer, const host::DxfGroup& group);
    /// Keeps all groups that are left, markers included.
    void keepRest(AcDbDxfFiler* filer);
    /// Writes what was kept under the subclass.
    void writeKeptGroups(AcDbDxfFiler* filer, std::string_view subclass) const;
    host::ObjectExtras& needExtras();

private:
    friend class host::DatabaseImpl;
    friend class host::UndoLog;
    friend class AcDbDatabase;
    friend struct host_object_access;

    [[noreturn]] void refuseAccess(bool write) const;

    AcDbStub* mStub = nullptr;
    AcDbStub* mOwner = nullptr;
    std::unique_ptr<host::ObjectExtras> mExtras;
    Adesk::UInt32 mImageEpoch = 0; ///< undo epoch in which the state was last kept
    bool mNew : 1 = false;
    bool mModified : 1 = false;
    bool mEraseToggled : 1 = false;
    bool mUndoDisabled : 1 = false;
};

/// Told of changes to one object.
class AcDbObjectReactor : public AcRxObject {
    ACRX_DECLARE_MEMBERS(AcDbObjectReactor);

public:
    virtual void cancelled(const AcDbObject*) {}
    virtual void copied(const AcDbObject*, const AcDbObject*) {}
    virtual void erased(const AcDbObject*, bool) {}
    virtual void goodbye(const AcDbObject*) {}
    virtual void openedForModify(const AcDbObject*) {}
    virtual void modified(const AcDbObject*) {}
    virtual void objectClosed(const AcDbObjectId) {}
};

Acad::ErrorStatus acdbOpenAcDbObject(AcDbObject*& object, AcDbObjectId id, AcDb::OpenMode mode,
                                     bool openErased = false);
inline Acad::ErrorStatus acdbOpenObject(AcDbObject*& object, AcDbObjectId id,
                                        AcDb::OpenMode mode = AcDb::kForRead, bool openErased = false) {
    return acdbOpenAcDbObject(object, id, mode, openErased);
}
template <class T>
Acad::ErrorStatus acdbOpenObject(T*& object, AcDbObjectId id, AcDb::OpenMode mode = AcDb::kForRead,
                                 bool openErased = false) {
    object = nullptr;
    AcDbObject* opened = nullptr;
    if (const Acad::ErrorStatus status = acdbOpenAcDbObject(opened, id, mode, openErased);
        status != Acad::eOk) {
        return status;
    }
    object = T::cast(opened);
    if (object == nullptr) {
        opened->close();
        return Acad::eNotThatKindOfClass;
    }
    return Acad::eOk;
}

namespace host {

/// For containers: erases a part with its owner, or brings back one that was erased so. What was erased by
/// itself before stays erased.
Acad::ErrorStatus eraseWithOwner(AcDbStub* stub, bool erasing);

/// The object is an entity whose layer is locked.
bool isOnLockedLayer(const AcDbObject& object);

/// Reads an object without the open protocol: for the host's own traversals on the main thread. Null for a
/// null, erased or unresolved id, or one of another class.
template <class T>
T* peek(AcDbObjectId id, bool evenErased = false) {
    AcDbStub* stub = id.stub();
    if (stub == nullptr || stub->object == nullptr || (stub->erased && !evenErased)) {
        return nullptr;
    }
    return T::cast(stub->object);
}

/// Lets the host's own traversals read an object whatever its open state is.
class ReadAccess {
public:
    explicit ReadAccess(const AcDbObject& object) : mStub(object.objectId().stub()) {
        if (mStub != nullptr) {
            ++mStub->readers;
        }
    }
    ~ReadAccess() {
        if (mStub != nullptr) {
            --mStub->readers;
        }
    }
    ReadAccess(const ReadAccess&) = delete;
    ReadAccess& operator=(const ReadAccess&) = delete;

private:
    AcDbStub* mStub;
};

/// Holds an object open and closes it at the end of the scope.
template <class T>
class Opened {
public:
    Opened(AcDbObjectId id, AcDb::OpenMode mode, bool openErased = false) {
        mStatus = acdbOpenObject(mObject, id, mode, openErased);
    }
    ~Opened() { close(); }
    Opened(const Opened&) = delete;
    Opened& operator=(const Opened&) = delete;
    explicit operator bool() const { return mObject != nullptr; }
    T* operator->() const { return mObject; }
    T* get() const { return mObject; }
    Acad::ErrorStatus status() const { return mStatus; }
    void close() {
        if (mObject != nullptr) {
            mObject->close();
            mObject = nullptr;
        }
    }

private:
    T* mObject = nullptr;
    Acad::ErrorStatus mStatus;
};

} // namespace host

/// The interface's own scoped opener.
template <class T>
class AcDbObjectPointer {
public:
    AcDbObjectPointer() = default;
    AcDbObjectPointer(AcDbObjectId id, AcDb::OpenMode mode, bool openErased = false) {
        open(id, mode, openErased);
    }
    ~AcDbObjectPointer() { close(); }
    AcDbObjectPointer(const AcDbObjectPointer&) = delete;
    AcDbObjectPointer& operator=(const AcDbObjectPointer&) = delete;
    Acad::ErrorStatus open(AcDbObjectId id, AcDb::OpenMode mode, bool openErased = false) {
        close();
        return mStatus = acdbOpenObject(mObject, id, mode, openErased);
    }
    Acad::ErrorStatus openStatus() const { return mStatus; }
    Acad::ErrorStatus close();
    Acad::ErrorStatus create();
    T* object() const { return mObject; }
    T* operator->() const { return mObject; }
    operator T*() const { return mObject; }

private:
    T* mObject = nullptr;
    Acad::ErrorStatus mStatus = Acad::eNullObjectPointer;
};
template <class T>
using AcDbSmartObjectPointer = AcDbObjectPointer<T>;

template <class T>
Acad::ErrorStatus AcDbObjectPointer<T>::close() {
    Acad::ErrorStatus status = Acad::eOk;
    if (mObject != nullptr) {
        if (mObject->objectId().isNull()) {
            delete mObject;
        } else {
            status = mObject->close();
        }
        mObject = nullptr;
    }
    return status;
}
template <class T>
Acad::ErrorStatus AcDbObjectPointer<T>::create() {
    close();
    mObject = new T;
    return mStatus = Acad::eOk;
}
