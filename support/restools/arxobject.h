// Owning wrappers of database objects: what they hold open is closed when they end, and a new object that
// was given to no database is deleted.
#pragma once

#include "host/arx.h"

/// Holds one object of any class. Moves, but does not copy.
class QDV_EXPORT CArxObject {
public:
    CArxObject() = default;
    /// Takes over an object that is open, or new and in no database. Null holds nothing.
    explicit CArxObject(AcDbObject* object) : mObject(object) {}
    CArxObject(const CArxObject&) = delete;
    CArxObject& operator=(const CArxObject&) = delete;
    CArxObject(CArxObject&& other) noexcept : mObject(other.Release()) {}
    CArxObject& operator=(CArxObject&& other) noexcept;
    ~CArxObject() { Close(); }

    /// Closes what was held and opens another object. False, holding nothing, when that fails.
    bool OpenObject(AcDbObjectId id, bool forWrite, bool openErased = false);
    /// Makes an object of type T, in no database yet, the one held.
    template <class T>
    T* New() {
        T* object = new T;
        Attach(object);
        return object;
    }
    /// Holds this object instead of the one before, which is closed.
    void Attach(AcDbObject* object);
    /// Closes a resident, deletes an object in no database; holds nothing afterwards.
    Acad::ErrorStatus Close();
    /// Gives up the pointer, which is neither closed nor deleted.
    AcDbObject* Release();

    AcDbObject* Get() const { return mObject; }
    AcDbObject* operator->() const { return mObject; }
    bool IsNull() const { return mObject == nullptr; }
    explicit operator bool() const { return mObject != nullptr; }
    /// The object as a T; null when it is of another class.
    template <class T>
    T* As() const {
        return T::cast(mObject);
    }

private:
    AcDbObject* mObject = nullptr;
};

/// A wrapper that holds objects of class T (or derived from it) only.
template <class Base, class T>
class CArxObjTemplateBase : public Base {
public:
    CArxObjTemplateBase() = default;
    explicit CArxObjTemplateBase(T* object) : Base(object) {}
    CArxObjTemplateBase(AcDbObjectId id, bool forWrite, bool openErased = false) {
        OpenObject(id, forWrite, openErased);
    }

    /// Also false, with the object closed again, when it is of another class.
    bool OpenObject(AcDbObjectId id, bool forWrite, bool openErased = false) {
        if (Base::OpenObject(id, forWrite, openErased) && T::cast(Base::Get()) == nullptr) {
            Base::Close();
        }
        return !Base::IsNull();
    }
    T* New() { return Base::template New<T>(); }
    void Attach(T* object) { Base::Attach(object); }
    T* Release() { return static_cast<T*>(Base::Release()); }
    T* Get() const { return static_cast<T*>(Base::Get()); }
    T* operator->() const { return Get(); }
    T& operator*() const { return *Get(); }
};

template <class T>
using CArxObjTemplate = CArxObjTemplateBase<CArxObject, T>;

/// Holds an entity.
class QDV_EXPORT CArxEntity : public CArxObjTemplateBase<CArxObject, AcDbEntity> {
public:
    using CArxObjTemplateBase::CArxObjTemplateBase;
};
