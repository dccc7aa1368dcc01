// The application entry point: what the module does at each message of the host.
#include "entities/customclasses.h"
#include "frame/commandtable.h"
#include "frame/lispfunctiontable.h"
#include "frame/loaddrawinghook.h"
#include "frame/profilereset.h"

namespace {

/// Lets the user unload the module.
void unlockModule(void* packet) {
    AcRxObject* service = acrxSysRegistry()->at(ACRX_DYNAMIC_LINKER);
    if (service != nullptr && service->isA()->isDerivedFrom(AcRxDynamicLinker::desc())) {
        static_cast<AcRxDynamicLinker*>(service)->unlockApplication(packet);
    }
}

void initialise() {
    for (const CustomClass& row : CustomClasses()) {
        RegisterCustomClass(row);
    }
    acrxBuildClassHierarchy();
    AddCommands();
    ResetProfile();
}

void unload() {
    for (const CustomClass& row : CustomClasses()) {
        DeleteCustomClass(row);
    }
    RemoveCommands();
    ResetProfile();
}

} // namespace

extern "C" __declspec(dllexport) AcRx::AppRetCode acrxEntryPoint(AcRx::AppMsgCode message, void* packet) {
    switch (message) {
    case AcRx::kInitAppMsg:
        unlockModule(packet);
        initialise();
        break;
    case AcRx::kUnloadAppMsg:
        unload();
        break;
    case AcRx::kLoadDwgMsg:
        if (RunLoadDrawingHook()) {
            DefineLispFunctions();
        }
        break;
    case AcRx::kUnloadDwgMsg:
        UndefineLispFunctions();
        break;
    case AcRx::kInvkSubrMsg:
        DispatchLispFunction();
        break;
    default:
        break;
    }
    return AcRx::kRetOK;
}
