// The module state and the list of extension libraries.
#include "host/mfc/modulestate.h"

#include "host/mfc/widgets/dialogwindow.h"
#include "host/mfc/winapp.h"

#include <algorithm>
#include <utility>

namespace {

AFX_MODULE_STATE& programState() {
    static AFX_MODULE_STATE state = [] {
        AFX_MODULE_STATE made;
        made.m_pCurrentWinApp = acedGetAcadWinApp();
        made.m_lpszCurrentAppName = made.m_pCurrentWinApp->m_pszAppName;
        return made;
    }();
    return state;
}

thread_local AFX_MODULE_STATE* currentState = nullptr;

} // namespace

BOOL AfxInitExtensionModule(AFX_EXTENSION_MODULE& state, HMODULE module) {
    if (state.bInitialized != FALSE)
        return TRUE;
    if (module == nullptr)
        return FALSE;
    state.bInitialized = TRUE;
    state.hModule = module;
    if (state.hResource == nullptr)
        state.hResource = module;
    return TRUE;
}

void AfxTermExtensionModule(AFX_EXTENSION_MODULE& state, BOOL all) {
    if (state.bInitialized == FALSE)
        return;
    host::closeDialogsOf(state.hModule);
    const std::vector<CDynLinkLibrary*> libraries = AfxGetModuleState()->m_libraryList;
    for (CDynLinkLibrary* const library : libraries)
        if (library->m_hModule == state.hModule || (all != FALSE && library->m_hResource == state.hResource))
            delete library;
    // Nothing may look for resources in a library that goes.
    if (AfxGetResourceHandle() == state.hResource)
        AfxSetResourceHandle(nullptr);
    state.bInitialized = FALSE;
}

CDynLinkLibrary::CDynLinkLibrary(AFX_EXTENSION_MODULE& state, BOOL system)
    : m_hModule(state.hModule), m_hResource(state.hResource), m_bSystem(system) {
    auto& list = AfxGetModuleState()->m_libraryList;
    list.insert(list.begin(), this);
}

CDynLinkLibrary::CDynLinkLibrary(HINSTANCE module, HINSTANCE resource)
    : m_hModule(module), m_hResource(resource), m_bSystem(FALSE) {
    auto& list = AfxGetModuleState()->m_libraryList;
    list.insert(list.begin(), this);
}

CDynLinkLibrary::~CDynLinkLibrary() {
    std::erase(AfxGetModuleState()->m_libraryList, this);
}

AFX_MODULE_STATE* AfxGetModuleState() {
    return currentState != nullptr ? currentState : &programState();
}
AFX_MODULE_STATE* AfxGetStaticModuleState() {
    return &programState();
}

AFX_MODULE_STATE* AfxSetModuleState(AFX_MODULE_STATE* state) noexcept {
    return std::exchange(currentState, state);
}

CWinApp* AfxGetApp() {
    return AfxGetModuleState()->m_pCurrentWinApp;
}
LPCTSTR AfxGetAppName() {
    return AfxGetModuleState()->m_lpszCurrentAppName;
}
HINSTANCE AfxGetInstanceHandle() {
    return AfxGetModuleState()->m_hCurrentInstanceHandle;
}
HINSTANCE AfxGetResourceHandle() {
    return AfxGetModuleState()->m_hCurrentResourceHandle;
}
void AfxSetResourceHandle(HINSTANCE resource) {
    AfxGetModuleState()->m_hCurrentResourceHandle = resource;
}

BOOL InitAcUiDLL() {
    auto& list = AfxGetModuleState()->m_libraryList;
    const bool there =
        std::ranges::any_of(list, [](const CDynLinkLibrary* library) { return library->m_bSystem != FALSE; });
    if (!there) {
        // The library is part of the program, whose handle is null; it lives as long.
        AFX_EXTENSION_MODULE program{};
        static CDynLinkLibrary library(program, TRUE);
    }
    return TRUE;
}

namespace host {

std::vector<HINSTANCE> resourceModules() {
    std::vector<HINSTANCE> modules;
    const auto add = [&](HINSTANCE module) {
        if (std::ranges::find(modules, module) == modules.end())
            modules.push_back(module);
    };
    const AFX_MODULE_STATE& state = *AfxGetModuleState();
    if (state.m_hCurrentResourceHandle != nullptr)
        add(state.m_hCurrentResourceHandle);
    for (const BOOL system : {FALSE, TRUE})
        for (const CDynLinkLibrary* library : state.m_libraryList)
            if ((library->m_bSystem != FALSE) == (system != FALSE))
                add(library->m_hResource);
    add(nullptr);
    return modules;
}

} // namespace host
