// Modules: shared libraries whose entry points the host calls with its life-cycle messages.
#include "host/rx/acrx.h"
#include "host/rx/text.h"

#include <algorithm>
#include <dlfcn.h>

namespace host {
namespace {

std::vector<std::unique_ptr<LoadedModule>>& modules() {
    static std::vector<std::unique_ptr<LoadedModule>> loaded;
    return loaded;
}

LoadedModule*& current() {
    static LoadedModule* module = nullptr;
    return module;
}

void report(const std::wstring& line) {
    if (moduleEvents().report) {
        moduleEvents().report(line);
    }
}

constexpr unsigned processAttach = 1;
constexpr unsigned processDetach = 0;
using LibraryEntry = int (*)(void* instance, unsigned reason, void* reserved);

/// The library's own entry, which on the other platform the operating system calls.
void callLibraryEntry(LoadedModule& module, unsigned reason) {
    if (auto entry = reinterpret_cast<LibraryEntry>(dlsym(module.library, "DllMain"))) {
        const CurrentModuleScope scope(&module);
        entry(module.library, reason, nullptr);
    }
}

LoadedModule* findModule(std::wstring_view fileName) {
    const std::size_t separator = fileName.find_last_of(L"/\\");
    const std::wstring_view name =
        separator == std::wstring_view::npos ? fileName : fileName.substr(separator + 1);
    const auto found = std::find_if(modules().begin(), modules().end(), [&](const auto& module) {
        return compareNoCase(module->name, name) == 0;
    });
    return found != modules().end() ? found->get() : nullptr;
}

/// The service that the module's packet is handed to.
class DynamicLinker : public AcRxDynamicLinker {
public:
    bool loadModule(const ACHAR* fileName, bool, bool) override {
        if (fileName == nullptr) {
            return false;
        }
        if (!moduleEvents().locate) {
            return host::loadModule(toUtf8(fileName));
        }
        const std::filesystem::path file = moduleEvents().locate(fileName);
        if (file.empty()) {
            report(L"找不到模块文件: " + std::wstring(fileName));
        }
        return !file.empty() && host::loadModule(file);
    }
    bool unloadModule(const ACHAR* fileName, bool) override {
        LoadedModule* module = findModule(fileName);
        return module != nullptr && !module->locked && host::unloadModule(module->name);
    }
    bool isModuleLoaded(const ACHAR* fileName) const override { return findModule(fileName) != nullptr; }
    bool unlockApplication(void* appId) const override {
        return withModule(appId, [](LoadedModule& m) { m.locked = false; });
    }
    bool lockApplication(void* appId) const override {
        return withModule(appId, [](LoadedModule& m) { m.locked = true; });
    }
    bool isApplicationLocked(const ACHAR* fileName) const override {
        const LoadedModule* module = findModule(fileName);
        return module != nullptr && module->locked;
    }
    bool registerAppMDIAware(void* appId) const override {
        return withModule(appId, [](LoadedModule& m) { m.mdiAware = true; });
    }
    bool registerAppNotMDIAware(void* appId) const override {
        return withModule(appId, [](LoadedModule& m) { m.mdiAware = false; });
    }

private:
    template <class Change>
    static bool withModule(void* appId, Change change) {
        const auto found = std::find_if(modules().begin(), modules().end(),
                                        [&](const auto& module) { return module.get() == appId; });
        if (found == modules().end()) {
            return false;
        }
        change(**found);
        return true;
    }
};

} // namespace

ModuleEvents& moduleEvents() {
    static ModuleEvents events;
    return events;
}

const std::vector<std::unique_ptr<LoadedModule>>& loadedModules() {
    return modules();
}
LoadedModule* currentModule() {
    return current();
}

CurrentModuleScope::CurrentModuleScope(LoadedModule* module) : mModule(module), mPrevious(current()) {
    current() = module;
    if (mModule != nullptr) {
        ++mModule->running;
    }
}
CurrentModuleScope::~CurrentModuleScope() {
    current() = mPrevious;
    if (mModule != nullptr) {
        --mModule->running;
    }
}

int sendMessage(LoadedModule& module, AcRx::AppMsgCode message) {
    const CurrentModuleScope scope(&module);
    return module.entryPoint(message, &module);
}

bool loadModule(const std::filesystem::path& file) {
    const std::wstring shown = fromUtf8(file.string());
    std::error_code error;
    if (!std::filesystem::is_regular_file(file, error)) {
        report(L"找不到模块文件: " + shown);
        return false;
    }
    auto module = std::make_unique<LoadedModule>();
    module->file = std::filesystem::canonical(file, error);
    module->name = fromUtf8(file.filename().string());
    if (findModule(module->name) != nullptr) {
        report(L"模块已经加载: " + module->name);
        return false;
    }
    // Symbols stay visible: sibling modules link against each other's exports.
    module->library = dlopen(module->file.c_str(), RTLD_NOW | RTLD_GLOBAL);
    if (module->library == nullptr) {
        report(L"模块无法加载: " + shown + L": " + fromUtf8(dlerror()));
        return false;
    }
    module->entryPoint = reinterpret_cast<int (*)(int, void*)>(dlsym(module->library, "acrxEntryPoint"));
    if (module->entryPoint == nullptr) {
        report(L"不是可加载的模块（没有 acrxEntryPoint）: " + shown);
        dlclose(module->library);
        return false;
    }
    LoadedModule& loaded = *modules().emplace_back(std::move(module));
    callLibraryEntry(loaded, processAttach);
    if (sendMessage(loaded, AcRx::kInitAppMsg) == AcRx::kRetError) {
        report(L"模块初始化失败: " + shown);
        callLibraryEntry(loaded, processDetach);
        void* library = loaded.library;
        modules().pop_back();
        dlclose(library);
        return false;
    }
    if (moduleEvents().loaded) {
        moduleEvents().loaded(loaded);
    }
    return true;
}

bool unloadModule(const std::wstring& name) {
    LoadedModule* module = findModule(name);
    if (module == nullptr) {
        report(L"模块没有加载: " + name);
        return false;
    }
    if (module->running > 0) {
        report(L"模块正在运行，不能卸载: " + name);
        return false;
    }
    if (moduleEvents().unloading) {
        moduleEvents().unloading(*module);
    }
    sendMessage(*module, AcRx::kUnloadAppMsg);
    if (moduleEvents().unloaded) {
        moduleEvents().unloaded(*module);
    }
    callLibraryEntry(*module, processDetach);
    void* library = module->library;
    std::erase_if(modules(), [&](const auto& other) { return other.get() == module; });
    dlclose(library);
    return true;
}

void unloadAllModules() {
    std::vector<std::wstring> names;
    for (const auto& module : modules()) {
        names.insert(names.begin(), module->name);
    }
    for (const std::wstring& name : names) {
        unloadModule(name);
    }
}

void initializeRuntime() {
    if (AcRxObject::gpDesc != nullptr) {
        return;
    }
    AcRxObject::rxInit();
    AcRxClass::gpDesc = newAcRxClass(L"AcRxClass", L"AcRxObject");
    AcRxDictionary::rxInit();
    AcRxService::rxInit();
    AcRxDynamicLinker::rxInit();
    acrxBuildClassHierarchy();
    static DynamicLinker linker;
    acrxSysRegistry()->atPut(ACRX_DYNAMIC_LINKER, &linker);
    acrxSysRegistry()->atPut(ACRX_CLASS_DICTIONARY, acrxClassDictionary());
}

} // namespace host

ACRX_NO_CONS_DEFINE_MEMBERS(AcRxDynamicLinker, AcRxService)

bool acrxLoadModule(const ACHAR* fileName, bool printit, bool asCmd) {
    return acrxDynamicLinker()->loadModule(fileName, printit, asCmd);
}
bool acrxUnloadModule(const ACHAR* fileName, bool asCmd) {
    return acrxDynamicLinker()->unloadModule(fileName, asCmd);
}
bool acrxUnlockApplication(void* appId) {
    return acrxDynamicLinker()->unlockApplication(appId);
}
bool acrxRegisterAppMDIAware(void* appId) {
    return acrxDynamicLinker()->registerAppMDIAware(appId);
}
