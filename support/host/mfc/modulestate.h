// The state by which MFC knows the running program and its extension libraries: application object, instance
// and resource handles, and the list of libraries in which resources are looked for.
#pragma once

#include "host/mfc/cstring.h"
#include "host/mfc/object.h"
#include "host/win/types.h"

#include <memory>
#include <vector>

class CWinApp;
class CDynLinkLibrary;

// What an extension library keeps about itself; zero it before AfxInitExtensionModule.
struct AFX_EXTENSION_MODULE {
    BOOL bInitialized;
    HMODULE hModule;
    HMODULE hResource; // where its resources are: the library itself, unless it says otherwise
};

// Fills the record at attach; FALSE without an instance handle. Once initialised, calling again does nothing.
BOOL AfxInitExtensionModule(AFX_EXTENSION_MODULE& state, HMODULE module);
// Ends it at detach: its CDynLinkLibrary objects are deleted. `all` also those of other libraries with this
// resource handle.
void AfxTermExtensionModule(AFX_EXTENSION_MODULE& state, BOOL all = FALSE);

// A library in the list of the module state. Made with new at attach; AfxTermExtensionModule deletes it.
class CDynLinkLibrary : public CCmdTarget {
public:
    explicit CDynLinkLibrary(AFX_EXTENSION_MODULE& state, BOOL system = FALSE);
    CDynLinkLibrary(HINSTANCE module, HINSTANCE resource);
    ~CDynLinkLibrary() override;

    HMODULE m_hModule;
    HMODULE m_hResource;
    BOOL m_bSystem;
};

class AFX_MODULE_STATE {
public:
    CWinApp* m_pCurrentWinApp = nullptr;
    HINSTANCE m_hCurrentInstanceHandle = nullptr; // null is the program
    HINSTANCE m_hCurrentResourceHandle = nullptr;
    LPCTSTR m_lpszCurrentAppName = L"";

    // Last added first.
    std::vector<CDynLinkLibrary*> m_libraryList;
};

// All libraries extend one program, so there is one state.
AFX_MODULE_STATE* AfxGetModuleState();
AFX_MODULE_STATE* AfxGetStaticModuleState();
AFX_MODULE_STATE* AfxSetModuleState(AFX_MODULE_STATE* state) noexcept; // gives the one before

// Makes a state the current one for a scope.
class AFX_MAINTAIN_STATE2 {
public:
    explicit AFX_MAINTAIN_STATE2(AFX_MODULE_STATE* state) noexcept : previous_(AfxSetModuleState(state)) {}
    ~AFX_MAINTAIN_STATE2() { AfxSetModuleState(previous_); }
    AFX_MAINTAIN_STATE2(const AFX_MAINTAIN_STATE2&) = delete;
    AFX_MAINTAIN_STATE2& operator=(const AFX_MAINTAIN_STATE2&) = delete;

private:
    AFX_MODULE_STATE* previous_;
};
#define AFX_MANAGE_STATE(state) const AFX_MAINTAIN_STATE2 afxManagedState(state)

CWinApp* AfxGetApp();
LPCTSTR AfxGetAppName();
HINSTANCE AfxGetInstanceHandle();
HINSTANCE AfxGetResourceHandle();
void AfxSetResourceHandle(HINSTANCE resource);

// Makes another library's resources the first to be looked at, for a scope.
class CAcModuleResourceOverride {
public:
    explicit CAcModuleResourceOverride(HINSTANCE resource) : previous_(AfxGetResourceHandle()) {
        AfxSetResourceHandle(resource);
    }
    ~CAcModuleResourceOverride() { AfxSetResourceHandle(previous_); }
    CAcModuleResourceOverride(const CAcModuleResourceOverride&) = delete;
    CAcModuleResourceOverride& operator=(const CAcModuleResourceOverride&) = delete;

private:
    HINSTANCE previous_;
};

// Sets up the host's user-interface library: its resources are found after those of modules. Always TRUE;
// once is enough, more does no harm.
BOOL InitAcUiDLL();

namespace host {

// The libraries to look for a resource in, first to last, each once: the current resource handle, the
// extension libraries, the host's own.
std::vector<HINSTANCE> resourceModules();

} // namespace host
