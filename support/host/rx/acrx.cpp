// The registries of classes and services, and the order in which classes come and go.
#include "host/rx/acrx.h"

#include "host/rx/format.h"
#include "host/rx/text.h"

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <utility>

AcRxClass* AcRxObject::gpDesc = nullptr;
AcRxClass* AcRxClass::gpDesc = nullptr;

AcRxClass* AcRxObject::desc() {
    return gpDesc;
}
AcRxClass* AcRxObject::isA() const {
    return gpDesc;
}

void AcRxObject::rxInit() {
    if (gpDesc == nullptr) {
        gpDesc = newAcRxClass(L"AcRxObject", static_cast<const AcRxClass*>(nullptr));
    }
}

AcRxObject* AcRxObject::queryX(const AcRxClass* ancestor) const {
    for (const AcRxClass* cls = isA(); cls != nullptr; cls = cls->myParent()) {
        if (AcRxObject* extension = cls->getX(ancestor)) {
            return extension;
        }
    }
    return nullptr;
}

AcRxObject* AcRxObject::clone() const {
    return nullptr;
}
Acad::ErrorStatus AcRxObject::copyFrom(const AcRxObject*) {
    return Acad::eNotApplicable;
}

AcRxClass::AcRxClass(const ACHAR* name, AcRxClass* parent, int dwgVersion, int maintenanceVersion,
                     int proxyFlags, AcRxPseudoConstructor pseudoConstructor, const ACHAR* dxfName,
                     const ACHAR* appName)
    : mName(name), mDxfName(dxfName != nullptr ? dxfName : L""), mDxfNameUtf8(host::toUtf8(mDxfName)),
      mAppName(appName != nullptr ? appName : L""), mParent(parent), mConstructor(pseudoConstructor),
      mDwgVersion(dwgVersion), mMaintenanceVersion(maintenanceVersion), mProxyFlags(proxyFlags) {}

AcRxClass* AcRxClass::desc() {
    return gpDesc;
}
AcRxClass* AcRxClass::isA() const {
    return gpDesc;
}
AcRxClass* AcRxClass::cast(const AcRxObject* object) {
    return object != nullptr && object->isKindOf(gpDesc)
               ? static_cast<AcRxClass*>(const_cast<AcRxObject*>(object))
               : nullptr;
}

void AcRxClass::getClassVersion(int& dwgVersion, int& maintenanceVersion) const {
    dwgVersion = mDwgVersion;
    maintenanceVersion = mMaintenanceVersion;
}

AcRxObject* AcRxClass::addX(AcRxClass* protocol, AcRxObject* object) {
    AcRxObject* previous = getX(protocol);
    mExtensions[protocol] = object;
    return previous;
}

AcRxObject* AcRxClass::delX(AcRxClass* protocol) {
    AcRxObject* previous = getX(protocol);
    mExtensions.erase(protocol);
    return previous;
}

AcRxObject* AcRxClass::getX(const AcRxClass* protocol) const {
    const auto found = mExtensions.find(protocol);
    return found != mExtensions.end() ? found->second : nullptr;
}

ACRX_NO_CONS_DEFINE_MEMBERS(AcRxDictionary, AcRxObject)
ACRX_NO_CONS_DEFINE_MEMBERS(AcRxService, AcRxObject)

namespace host {
namespace {

struct FoldedLess {
    using is_transparent = void;
    bool operator()(std::wstring_view a, std::wstring_view b) const { return compareNoCase(a, b) < 0; }
};

/// Keys compare without regard to case, as service names do.
class Dictionary : public AcRxDictionary {
public:
    AcRxObject* at(const ACHAR* key) const override {
        const auto found = mEntries.find(std::wstring_view(key));
        return found != mEntries.end() ? found->second : nullptr;
    }
    AcRxObject* atPut(const ACHAR* key, AcRxObject* object) override {
        AcRxObject* previous = at(key);
        mEntries[key] = object;
        return previous;
    }
    AcRxObject* remove(const ACHAR* key) override {
        AcRxObject* previous = at(key);
        mEntries.erase(std::wstring(key));
        return previous;
    }
    bool has(const ACHAR* key) const override {
        return mEntries.find(std::wstring_view(key)) != mEntries.end();
    }
    unsigned numEntries() const override { return static_cast<unsigned>(mEntries.size()); }
    const auto& entries() const { return mEntries; }

private:
    std::map<std::wstring, AcRxObject*, FoldedLess> mEntries;
};

Dictionary& classDictionary() {
    static Dictionary dictionary;
    return dictionary;
}

std::vector<AcRxClass*>& pendingClasses() {
    static std::vector<AcRxClass*> classes;
    return classes;
}

} // namespace

std::vector<ClassEvents>& classEvents() {
    static std::vector<ClassEvents> events;
    return events;
}

AcRxClass* classOfDxfName(std::wstring_view dxfName) {
    for (const auto& [name, object] : classDictionary().entries()) {
        auto* descriptor = static_cast<AcRxClass*>(object);
        if (descriptor->constructor() != nullptr && descriptor->dxfName() != nullptr &&
            equalNoCase(descriptor->dxfName(), dxfName)) {
            return descriptor;
        }
    }
    return nullptr;
}

} // namespace host

AcRxClass* newAcRxClass(const ACHAR* name, const AcRxClass* parent, int dwgVersion, int maintenanceVersion,
                        int proxyFlags, AcRxPseudoConstructor constructor, const ACHAR* dxfName,
                        const ACHAR* appName, AppNameChangeFuncPtr) {
    if (name == nullptr || acrxFindAcRxClass(name) != nullptr) {
        return nullptr;
    }
    auto* created = new AcRxClass(name, const_cast<AcRxClass*>(parent), dwgVersion, maintenanceVersion,
                                  proxyFlags, constructor, dxfName, appName);
    created->setCustom(host::currentModule() != nullptr);
    host::classDictionary().atPut(name, created);
    host::pendingClasses().push_back(created);
    return created;
}

AcRxClass* newAcRxClass(const ACHAR* name, const ACHAR* parentName, int dwgVersion, int maintenanceVersion,
                        int proxyFlags, AcRxPseudoConstructor constructor, const ACHAR* dxfName,
                        const ACHAR* appName, AppNameChangeFuncPtr appNameChange) {
    const AcRxClass* parent = parentName != nullptr ? acrxFindAcRxClass(parentName) : nullptr;
    if (parent == nullptr && parentName != nullptr) {
        return nullptr;
    }
    return newAcRxClass(name, parent, dwgVersion, maintenanceVersion, proxyFlags, constructor, dxfName,
                        appName, appNameChange);
}

void deleteAcRxClass(AcRxClass* descriptor) {
    if (descriptor == nullptr) {
        return;
    }
    for (const host::ClassEvents& events : host::classEvents()) {
        if (events.deleting) {
            events.deleting(descriptor);
        }
    }
    host::classDictionary().remove(descriptor->name());
    std::erase(host::pendingClasses(), descriptor);
    delete descriptor;
}

void acrxBuildClassHierarchy() {
    const std::vector<AcRxClass*> added = std::exchange(host::pendingClasses(), {});
    for (AcRxClass* cls : added) {
        cls->putInHierarchy();
    }
    if (added.empty()) {
        return;
    }
    for (const host::ClassEvents& events : host::classEvents()) {
        if (events.hierarchyBuilt) {
            events.hierarchyBuilt();
        }
    }
}

AcRxClass* acrxFindAcRxClass(const ACHAR* name) {
    return name != nullptr ? static_cast<AcRxClass*>(host::classDictionary().at(name)) : nullptr;
}

void acrx_abort(const ACHAR* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    const std::wstring message = host::formatWide(format, arguments);
    va_end(arguments);
    std::fprintf(stderr, "%s\n", host::toUtf8(message).c_str());
    std::abort();
}

AcRxDictionary* acrxSysRegistry() {
    static host::Dictionary registry;
    return &registry;
}

AcRxDictionary* acrxClassDictionary() {
    return &host::classDictionary();
}

const ACHAR* acrxProductKey() {
    return L"Software\\QDVHost\\R24.0\\QDVHost-0001:804";
}
