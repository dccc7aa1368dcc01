// Runtime classes, dictionaries of services and classes, and the loading of modules.
#pragma once

#include "host/rx/acadstat.h"
#include "host/rx/acstring.h"

#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#ifndef ACRX_T
#define ACRX_T(text) L##text
#endif
using ACHAR = wchar_t;

class AcRxClass;
class AcRxObject;

using AppNameChangeFuncPtr = void (*)(const AcRxClass*, AcString&, int);
using AcRxPseudoConstructor = AcRxObject* (*)();

/// Base of everything that knows its class at run time.
class AcRxObject {
public:
    virtual ~AcRxObject() = default;

    static AcRxClass* gpDesc;
    static AcRxClass* desc();
    virtual AcRxClass* isA() const;
    static AcRxObject* cast(const AcRxObject* object) { return const_cast<AcRxObject*>(object); }
    static void rxInit();

    bool isKindOf(const AcRxClass* ancestor) const;
    AcRxObject* queryX(const AcRxClass* ancestor) const;
    virtual AcRxObject* clone() const;
    virtual Acad::ErrorStatus copyFrom(const AcRxObject* other);
    virtual bool isEqualTo(const AcRxObject* other) const { return this == other; }
};

/// Descriptor of a runtime class. The name is unique in the class dictionary; descriptors made by
/// newAcRxClass live until deleteAcRxClass.
class AcRxClass : public AcRxObject {
public:
    AcRxClass(const ACHAR* name, AcRxClass* parent, int dwgVersion, int maintenanceVersion, int proxyFlags,
              AcRxPseudoConstructor constructor, const ACHAR* dxfName, const ACHAR* appName);

    static AcRxClass* gpDesc;
    static AcRxClass* desc();
    AcRxClass* isA() const override;
    static AcRxClass* cast(const AcRxObject* object);

    const ACHAR* name() const { return mName.c_str(); }
    /// The name in DXF files; null for a class that has none.
    const ACHAR* dxfName() const { return mDxfName.empty() ? nullptr : mDxfName.c_str(); }
    const ACHAR* appName() const { return mAppName.c_str(); }
    const ACHAR* parentName() const { return mParent != nullptr ? mParent->name() : L""; }
    /// UTF-8 DXF name, as the file writer needs it.
    const std::string& dxfNameUtf8() const { return mDxfNameUtf8; }
    AcRxClass* myParent() const { return mParent; }
    int proxyFlags() const { return mProxyFlags; }
    void getClassVersion(int& dwgVersion, int& maintenanceVersion) const;
    /// A default instance, or null for an abstract class.
    AcRxObject* create() const { return mConstructor != nullptr ? mConstructor() : nullptr; }
    AcRxPseudoConstructor constructor() const { return mConstructor; }
    bool isDerivedFrom(const AcRxClass* ancestor) const;
    /// Set by acrxBuildClassHierarchy; kinship is known without it, creation by file readers is not.
    bool isInHierarchy() const { return mInHierarchy; }
    void putInHierarchy() { mInHierarchy = true; }
    /// Made by a loaded module rather than by the host.
    bool isCustom() const { return mCustom; }
    void setCustom(bool custom) { mCustom = custom; }

    /// Protocol extensions.
    AcRxObject* addX(AcRxClass* protocol, AcRxObject* object);
    AcRxObject* delX(AcRxClass* protocol);
    AcRxObject* getX(const AcRxClass* protocol) const;

private:
    std::wstring mName;
    std::wstring mDxfName;
    std::string mDxfNameUtf8;
    std::wstring mAppName;
    AcRxClass* mParent;
    AcRxPseudoConstructor mConstructor;
    int mDwgVersion;
    int mMaintenanceVersion;
    int mProxyFlags;
    bool mInHierarchy = false;
    bool mCustom = false;
    std::map<const AcRxClass*, AcRxObject*> mExtensions;
};

inline bool AcRxObject::isKindOf(const AcRxClass* ancestor) const {
    return isA()->isDerivedFrom(ancestor);
}

inline bool AcRxClass::isDerivedFrom(const AcRxClass* ancestor) const {
    for (const AcRxClass* cls = this; cls != nullptr; cls = cls->mParent) {
        if (cls == ancestor) {
            return true;
        }
    }
    return false;
}

// The members that every runtime class declares and defines, under the interface's own macro names.
#define ACRX_DECLARE_MEMBERS(CLASS)                                                                          \
public:                                                                                                      \
    static AcRxClass* gpDesc;                                                                                \
    static AcRxClass* desc();                                                                                \
    AcRxClass* isA() const override;                                                                         \
    static CLASS* cast(const AcRxObject* object) {                                                           \
        return object != nullptr && object->isKindOf(CLASS::desc())                                          \
                   ? static_cast<CLASS*>(const_cast<AcRxObject*>(object))                                    \
                   : nullptr;                                                                                \
    }                                                                                                        \
    static void rxInit()

#define ACRX_DEFINE_DESCRIPTOR(CLASS)                                                                        \
    AcRxClass* CLASS::gpDesc = nullptr;                                                                      \
    AcRxClass* CLASS::desc() {                                                                               \
        if (CLASS::gpDesc == nullptr) {                                                                      \
            CLASS::gpDesc = acrxFindAcRxClass(L## #CLASS);                                                   \
        }                                                                                                    \
        return CLASS::gpDesc;                                                                                \
    }                                                                                                        \
    AcRxClass* CLASS::isA() const {                                                                          \
        return CLASS::desc();                                                                                \
    }

#define ACRX_NO_CONS_DEFINE_MEMBERS(CLASS, PARENT)                                                           \
    ACRX_DEFINE_DESCRIPTOR(CLASS)                                                                            \
    void CLASS::rxInit() {                                                                                   \
        CLASS::gpDesc = newAcRxClass(L## #CLASS, L## #PARENT);                                               \
    }

#define ACRX_CONS_DEFINE_MEMBERS(CLASS, PARENT, VERSION)                                                     \
    ACRX_DEFINE_DESCRIPTOR(CLASS)                                                                            \
    void CLASS::rxInit() {                                                                                   \
        CLASS::gpDesc =                                                                                      \
            newAcRxClass(L## #CLASS, L## #PARENT, 0, 0, 0, []() -> AcRxObject* { return new CLASS; });       \
    }

#define ACRX_DXF_DEFINE_MEMBERS(CLASS, PARENT, DWG_VERSION, MAINTENANCE_VERSION, PROXY_FLAGS, DXF_NAME, APP) \
    ACRX_DEFINE_DESCRIPTOR(CLASS)                                                                            \
    void CLASS::rxInit() {                                                                                   \
        CLASS::gpDesc = newAcRxClass(                                                                        \
            L## #CLASS, L## #PARENT, DWG_VERSION, MAINTENANCE_VERSION, PROXY_FLAGS,                          \
            []() -> AcRxObject* { return new CLASS; }, L## #DXF_NAME, L## #APP);                             \
    }

/// Registers a class under a unique name. Returns the descriptor; null when the name is taken or the
/// parent is unknown.
AcRxClass* newAcRxClass(const ACHAR* name, const ACHAR* parentName, int dwgVersion = 0,
                        int maintenanceVersion = 0, int proxyFlags = 0,
                        AcRxPseudoConstructor constructor = nullptr, const ACHAR* dxfName = nullptr,
                        const ACHAR* appName = nullptr, AppNameChangeFuncPtr appNameChange = nullptr);
AcRxClass* newAcRxClass(const ACHAR* name, const AcRxClass* parent, int dwgVersion = 0,
                        int maintenanceVersion = 0, int proxyFlags = 0,
                        AcRxPseudoConstructor constructor = nullptr, const ACHAR* dxfName = nullptr,
                        const ACHAR* appName = nullptr, AppNameChangeFuncPtr appNameChange = nullptr);
/// Removes a class. Objects of it in open drawings become proxies first.
void deleteAcRxClass(AcRxClass* descriptor);
/// Links newly registered classes into the tree; proxies of those classes in open drawings come alive.
void acrxBuildClassHierarchy();
AcRxClass* acrxFindAcRxClass(const ACHAR* name);
/// Ends the program with a message on standard error.
[[noreturn]] void acrx_abort(const ACHAR* format, ...);

/// Name to object; the registry of services and of classes are such dictionaries.
class AcRxDictionary : public AcRxObject {
public:
    ACRX_DECLARE_MEMBERS(AcRxDictionary);
    virtual AcRxObject* at(const ACHAR* key) const = 0;
    virtual AcRxObject* atPut(const ACHAR* key, AcRxObject* object) = 0;
    virtual AcRxObject* remove(const ACHAR* key) = 0;
    virtual bool has(const ACHAR* key) const = 0;
    virtual unsigned numEntries() const = 0;
};

class AcRxService : public AcRxObject {
public:
    ACRX_DECLARE_MEMBERS(AcRxService);
};

/// The dictionary of services: "DynamicLinker", "ACAD_REGISTERED_COMMANDS", ...
AcRxDictionary* acrxSysRegistry();
AcRxDictionary* acrxClassDictionary();

namespace AcRx {
enum AppMsgCode {
    kNullMsg = 0,
    kInitAppMsg = 1,
    kUnloadAppMsg = 2,
    kLoadDwgMsg = 3,
    kUnloadDwgMsg = 4,
    kInvkSubrMsg = 5,
    kCfgMsg = 6,
    kEndMsg = 7,
    kQuitMsg = 8,
    kSaveMsg = 9,
    kDependencyMsg = 10,
    kNoDependencyMsg = 11,
    kOleUnloadAppMsg = 12,
    kPreQuitMsg = 13,
    kInitDialogMsg = 14,
    kEndDialogMsg = 15
};
enum AppRetCode { kRetOK = 0, kRetError = 3 };
} // namespace AcRx

/// Loads and unloads modules and tells them of the program's life.
class AcRxDynamicLinker : public AcRxService {
public:
    ACRX_DECLARE_MEMBERS(AcRxDynamicLinker);
    virtual bool loadModule(const ACHAR* fileName, bool printit, bool asCmd = false) = 0;
    virtual bool unloadModule(const ACHAR* fileName, bool asCmd = false) = 0;
    virtual bool isModuleLoaded(const ACHAR* fileName) const = 0;
    /// Lets the module with this packet be unloaded by the user.
    virtual bool unlockApplication(void* appId) const = 0;
    virtual bool lockApplication(void* appId) const = 0;
    virtual bool isApplicationLocked(const ACHAR* fileName) const = 0;
    /// Says that the module works with several documents open.
    virtual bool registerAppMDIAware(void* appId) const = 0;
    virtual bool registerAppNotMDIAware(void* appId) const = 0;
};

inline AcRxDynamicLinker* acrxDynamicLinker() {
    return static_cast<AcRxDynamicLinker*>(acrxSysRegistry()->at(L"DynamicLinker"));
}
bool acrxLoadModule(const ACHAR* fileName, bool printit, bool asCmd = false);
bool acrxUnloadModule(const ACHAR* fileName, bool asCmd = false);
bool acrxUnlockApplication(void* appId);
bool acrxRegisterAppMDIAware(void* appId);

/// The host's registry path below the current user's hive.
const ACHAR* acrxProductKey();
inline const ACHAR* acrxRegistryProductRootKey() {
    return acrxProductKey();
}

#define ACED_SERVICES L"ACED_SERVICES"
#define ACRX_CLASS_DICTIONARY L"CLASS_DICTIONARY"
#define ACRX_DYNAMIC_LINKER L"DynamicLinker"

namespace host {

/// Registers AcRxObject, AcRxClass, AcRxDictionary, services; to be called before any other class.
void initializeRuntime();

/// A module held in memory. The packet given to the module's entry point is its address.
struct LoadedModule {
    std::wstring name;          ///< file name without folders, as it was loaded
    std::filesystem::path file; ///< absolute path
    void* library = nullptr;    ///< dlopen handle
    int (*entryPoint)(int message, void* packet) = nullptr;
    bool locked = true;
    bool mdiAware = false;
    int running = 0; ///< calls into the module that have not returned; it can't be unloaded meanwhile
};

/// Hooks that upper layers hang into loading, so that rx knows nothing of documents and dialogs.
struct ModuleEvents {
    /// After kInitAppMsg: tell the module of each open document.
    std::function<void(LoadedModule&)> loaded;
    /// Before kUnloadAppMsg: kUnloadDwgMsg for each open document.
    std::function<void(LoadedModule&)> unloading;
    /// After kUnloadAppMsg, while the library still is there: takes away what the module has left.
    std::function<void(LoadedModule&)> unloaded;
    /// The file that a module's name means (a Windows path in any case, a name in the support folders); empty
    /// when there is none. Without it names are native paths.
    std::function<std::filesystem::path(const std::wstring& name)> locate;
    /// A line for the user (file missing, not a module, initialisation refused).
    std::function<void(const std::wstring&)> report;
};
ModuleEvents& moduleEvents();

/// Loads by native path. The reason for a failure is told through ModuleEvents::report.
bool loadModule(const std::filesystem::path& file);
bool unloadModule(const std::wstring& name);
void unloadAllModules();
const std::vector<std::unique_ptr<LoadedModule>>& loadedModules();
/// The module whose entry point runs now; null outside of one.
LoadedModule* currentModule();
/// Sends a message to one module, with currentModule() set while it runs.
int sendMessage(LoadedModule& module, AcRx::AppMsgCode message);
/// Makes `module` the current one while in scope (functions and commands run in their module).
class CurrentModuleScope {
public:
    explicit CurrentModuleScope(LoadedModule* module);
    ~CurrentModuleScope();
    CurrentModuleScope(const CurrentModuleScope&) = delete;
    CurrentModuleScope& operator=(const CurrentModuleScope&) = delete;

private:
    LoadedModule* mModule;
    LoadedModule* mPrevious;
};

/// Called when a class is about to go, and when newly registered classes have come into the tree.
struct ClassEvents {
    std::function<void(AcRxClass*)> deleting;
    std::function<void()> hierarchyBuilt;
};
std::vector<ClassEvents>& classEvents();

/// The first class, by name, that has the DXF name (in any case) and can be created; null when there is none.
AcRxClass* classOfDxfName(std::wstring_view dxfName);

} // namespace host
