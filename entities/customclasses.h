// Registration of the module's database classes.
#pragma once

#include "host/arx.h"

#include <span>

/// What a class is registered with.
struct CustomClass {
    const ACHAR* name;
    const ACHAR* parent;
    int dwgVersion; ///< AcDb::AcDbDwgVersion
    int maintenanceVersion;
    int proxyFlags; ///< 0: a proxy allows nothing
    const ACHAR* dxfName;
    AcRxObject* (*create)();
    AcRxClass** descriptor; ///< the class's own cache
};

/// In the order of registration.
std::span<const CustomClass> CustomClasses();

/// The cached descriptor; looked up by name, and cached, while there is none.
AcRxClass* FindDescriptor(const CustomClass& row);
/// Registers the class unless its cached descriptor is registered already. Another class of the name ends the
/// program with "Class mismatch".
void RegisterCustomClass(const CustomClass& row);
void DeleteCustomClass(const CustomClass& row);
