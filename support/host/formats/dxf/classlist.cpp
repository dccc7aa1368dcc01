// Finding and adding entries of the CLASSES section.
#include "host/formats/dxf/classlist.h"

#include "host/formats/dxf/recordclasses.h"
#include "host/rx/text.h"

namespace host::dxf {
namespace {

constexpr int firstClassNumber = 500;

const ProxyData* proxyOf(const AcDbObject& object) {
    if (const auto* entity = AcDbProxyEntity::cast(&object)) {
        return &entity->proxy;
    }
    const auto* proxy = AcDbProxyObject::cast(&object);
    return proxy != nullptr ? &proxy->proxy : nullptr;
}

DatabaseImpl::FileClass listedAs(const KnownClass& known) {
    DatabaseImpl::FileClass listed;
    listed.dxfName = known.dxfName;
    listed.className = known.className;
    listed.appName = known.appName;
    listed.proxyFlags = known.proxyFlags;
    listed.isEntity = known.isEntity;
    return listed;
}

} // namespace

ClassList::ClassList(const AcDbDatabase& database, const Chosen& isWritten)
    : mClasses(database.impl().classes) {
    for (DatabaseImpl::FileClass& listed : mClasses) {
        listed.instances = 0;
    }
    database.impl().forEachStub([&](AcDbStub& stub) {
        if (stub.object == nullptr || stub.erased || !isWritten(*stub.object)) {
            return;
        }
        if (const int index = indexFor(*stub.object); index != none) {
            ++mClasses[static_cast<std::size_t>(index)].instances;
        }
    });
}

int ClassList::find(const AcString& className, const AcString& dxfName) const {
    for (std::size_t index = 0; index < mClasses.size() && !(className.isEmpty() && dxfName.isEmpty());
         ++index) {
        if (mClasses[index].className == className && mClasses[index].dxfName == dxfName) {
            return static_cast<int>(index);
        }
    }
    return none;
}

int ClassList::add(DatabaseImpl::FileClass listed) {
    mClasses.push_back(std::move(listed));
    return static_cast<int>(mClasses.size()) - 1;
}

int ClassList::indexForClass(const AcRxClass& objectClass) {
    const auto [found, added] = mByClass.try_emplace(&objectClass, none);
    if (!added || objectClass.dxfName() == nullptr) {
        return found->second;
    }
    if (objectClass.isCustom()) {
        DatabaseImpl::FileClass listed;
        listed.dxfName = objectClass.dxfName();
        listed.className = objectClass.name();
        listed.appName = objectClass.appName();
        listed.proxyFlags = objectClass.proxyFlags();
        listed.isEntity = objectClass.isDerivedFrom(AcDbEntity::desc());
        listed.wasProxy = true;
        const int index = find(listed.className, listed.dxfName);
        found->second = index != none ? index : add(std::move(listed));
    } else {
        found->second =
            indexForRecord(objectClass.dxfNameUtf8(), objectClass.isDerivedFrom(AcDbEntity::desc()));
    }
    return found->second;
}

int ClassList::indexForRecord(const std::string& recordName, bool isEntity) {
    const auto [found, added] = mByRecord.try_emplace(recordName, none);
    if (!added || recordName.empty()) {
        return found->second;
    }
    const std::wstring name = fromUtf8(recordName);
    for (std::size_t index = 0; index < mClasses.size(); ++index) {
        if (mClasses[index].dxfName == name.c_str()) {
            return found->second = static_cast<int>(index);
        }
    }
    if (const KnownClass* known = knownClass(name); known != nullptr && known->isEntity == isEntity) {
        found->second = add(listedAs(*known));
    }
    return found->second;
}

int ClassList::indexForProxy(const ProxyData& proxy, bool isEntity) {
    const bool isNamed = !proxy.className.isEmpty() || !proxy.dxfName.isEmpty();
    if (const int index = find(proxy.className, proxy.dxfName); index != none || !isNamed) {
        return index;
    }
    DatabaseImpl::FileClass listed;
    listed.dxfName = proxy.dxfName;
    listed.className = proxy.className;
    listed.appName = proxy.appName;
    listed.proxyFlags = proxy.proxyFlags;
    listed.isEntity = isEntity;
    listed.wasProxy = true;
    return add(std::move(listed));
}

int ClassList::indexFor(const AcDbObject& object) {
    const AcRxClass& objectClass = *object.isA();
    if (&objectClass == mLastClass) {
        return mLastIndex;
    }
    if (&objectClass == KeptEntity::desc() || &objectClass == KeptObject::desc()) {
        return indexForRecord(object.dxfRecordName(), &objectClass == KeptEntity::desc());
    }
    const bool isProxy = &objectClass == AcDbProxyEntity::desc() || &objectClass == AcDbProxyObject::desc();
    if (isProxy) {
        return indexForProxy(*proxyOf(object), &objectClass == AcDbProxyEntity::desc());
    }
    mLastClass = &objectClass;
    return mLastIndex = indexForClass(objectClass);
}

int ClassList::classNumber(const AcDbObject& object) const {
    int index = none;
    if (const ProxyData* proxy = proxyOf(object)) {
        index = find(proxy->className, proxy->dxfName);
    } else if (const auto found = mByClass.find(object.isA()); found != mByClass.end()) {
        index = found->second;
    }
    return index == none ? 0 : firstClassNumber + index;
}

} // namespace host::dxf
