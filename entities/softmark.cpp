// The mark object: its stored field is a version.
#include "entities/softmark.h"

#include "entities/customclasses.h"

namespace {

constexpr Adesk::Int16 currentVersion = 1;

} // namespace

AcRxClass* CQDVAcDbSoftMark::gpDesc = nullptr;

AcRxClass* CQDVAcDbSoftMark::desc() {
    return FindDescriptor(CustomClasses()[1]);
}
AcRxClass* CQDVAcDbSoftMark::isA() const {
    return desc();
}
void CQDVAcDbSoftMark::rxInit() {
    RegisterCustomClass(CustomClasses()[1]);
}

Acad::ErrorStatus CQDVAcDbSoftMark::dwgOutFields(AcDbDwgFiler* filer) const {
    assertReadEnabled();
    if (const Acad::ErrorStatus status = AcDbObject::dwgOutFields(filer); status != Acad::eOk) {
        return status;
    }
    filer->writeInt16(currentVersion);
    return filer->filerStatus();
}

Acad::ErrorStatus CQDVAcDbSoftMark::dwgInFields(AcDbDwgFiler* filer) {
    assertWriteEnabled();
    if (const Acad::ErrorStatus status = AcDbObject::dwgInFields(filer); status != Acad::eOk) {
        return status;
    }
    Adesk::Int16 version = 0;
    filer->readInt16(&version);
    return version > currentVersion ? Acad::eMakeMeProxy : filer->filerStatus();
}
