// The library's own entry: sets up the MFC extension module, in which the module's resources are found.
#include "restools/ownmodule.h"

#include "host/arx.h"

namespace {

AFX_EXTENSION_MODULE extensionModule{};
bool isInitialised = false;

void attach(HINSTANCE instance) {
    if (!isInitialised) {
        isInitialised = AfxInitExtensionModule(extensionModule, instance) != FALSE;
        if (isInitialised) {
            GetOwnModule() = {instance, AfxGetResourceHandle()};
            new CDynLinkLibrary(extensionModule); // owned by MFC
        }
    }
    InitAcUiDLL();
}

void detach() {
    if (isInitialised) {
        AfxTermExtensionModule(extensionModule);
        isInitialised = false;
        GetOwnModule() = {};
    }
}

} // namespace

extern "C" __declspec(dllexport) BOOL APIENTRY DllMain(HINSTANCE instance, DWORD reason, LPVOID) {
    if (reason == DLL_PROCESS_ATTACH) {
        attach(instance);
    } else if (reason == DLL_PROCESS_DETACH) {
        detach();
    }
    return TRUE;
}
