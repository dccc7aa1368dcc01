// Opening, closing and handing over of what the wrappers hold.
#include "restools/arxobject.h"

CArxObject& CArxObject::operator=(CArxObject&& other) noexcept {
    if (this != &other) {
        Attach(other.Release());
    }
    return *this;
}

bool CArxObject::OpenObject(AcDbObjectId id, bool forWrite, bool openErased) {
    Close();
    if (acdbOpenAcDbObject(mObject, id, forWrite ? AcDb::kForWrite : AcDb::kForRead, openErased) !=
        Acad::eOk) {
        mObject = nullptr;
    }
    return mObject != nullptr;
}

void CArxObject::Attach(AcDbObject* object) {
    if (object != mObject) {
        Close();
        mObject = object;
    }
}

Acad::ErrorStatus CArxObject::Close() {
    AcDbObject* object = Release();
    if (object == nullptr) {
        return Acad::eOk;
    }
    if (object->objectId().isNull()) {
        delete object;
        return Acad::eOk;
    }
    return object->close();
}

AcDbObject* CArxObject::Release() {
    AcDbObject* object = mObject;
    mObject = nullptr;
    return object;
}
