// The table of the module's classes, and how a class comes and goes.
#include "entities/customclasses.h"

#include "entities/blockpline.h"
#include "entities/lineentity.h"
#include "entities/softmark.h"

namespace {

constexpr const ACHAR* applicationName = L"QDVCommonTools";

template <class T>
AcRxObject* create() {
    return new T;
}

const CustomClass classes[] = {
    {L"CQDVAcDbPolyline", L"AcDbEntity", AcDb::kDHL_1024, 0, 0, L"QDV线实体", create<CQDVAcDbPolyline>,
     &CQDVAcDbPolyline::gpDesc},
    {L"CQDVAcDbSoftMark", L"AcDbObject", AcDb::kDHL_1014, 0, 0, L"QDVSoftMark", create<CQDVAcDbSoftMark>,
     &CQDVAcDbSoftMark::gpDesc},
    {L"CQDVBlockPline", L"AcDbPolyline", AcDb::kDHL_1014, 0, 0, L"QDV块_线实体", create<CQDVBlockPline>,
     &CQDVBlockPline::gpDesc},
};

} // namespace

std::span<const CustomClass> CustomClasses() {
    return classes;
}

AcRxClass* FindDescriptor(const CustomClass& row) {
    if (*row.descriptor == nullptr) {
        *row.descriptor = acrxFindAcRxClass(row.name);
    }
    return *row.descriptor;
}

void RegisterCustomClass(const CustomClass& row) {
    AcRxClass* cached = *row.descriptor;
    AcRxClass* found = cached != nullptr ? acrxFindAcRxClass(row.name) : nullptr;
    if (found == nullptr) {
        *row.descriptor = newAcRxClass(row.name, row.parent, row.dwgVersion, row.maintenanceVersion,
                                       row.proxyFlags, row.create, row.dxfName, applicationName);
    } else if (found != cached) {
        acrx_abort(L"Class mismatch");
    }
}

void DeleteCustomClass(const CustomClass& row) {
    if (AcRxClass* found = FindDescriptor(row)) {
        deleteAcRxClass(found);
        *row.descriptor = nullptr;
    }
}
