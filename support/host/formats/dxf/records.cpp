// One record of a DXF file to one resident of the database.
#include "host/formats/dxf/reader.h"
#include "host/rx/format.h"
#include "host/rx/text.h"

namespace host::dxf {

void Reader::reportFault(Done done) {
    if (!mFiler.fault().what.empty()) {
        report(fromUtf8(mFiler.recordName()) + L": " + mFiler.fault().what, done, mFiler.fault().line,
               mFiler.handle());
    }
}

std::unique_ptr<AcDbObject> Reader::readKept(bool isEntity) {
    const std::string name = mFiler.recordName();
    if (isEntity) {
        auto entity = std::make_unique<KeptEntity>();
        entity->record.recordName = name;
        entity->dxfIn(&mFiler);
        return entity;
    }
    auto object = std::make_unique<KeptObject>();
    object->record.recordName = name;
    object->dxfIn(&mFiler);
    return object;
}

namespace {

/// Geometry stands under the marker that all entities have: read as it stands, the entity would have none.
bool hasStrayGeometry(const AcDbObject& object) {
    const GroupList* groups = object.keptGroups("AcDbEntity");
    const auto isGeometry = [](short code) {
        return (code >= 10 && code < 60) || (code >= 210 && code < 240);
    };
    if (groups != nullptr) {
        for (const GroupList::Group group : *groups) {
            if (isGeometry(group.code)) {
                return true;
            }
        }
    }
    return false;
}

} // namespace

std::unique_ptr<AcDbObject> Reader::readObject(AcRxClass* recordClass, bool isEntity) {
    const bool fits = recordClass != nullptr && recordClass->isDerivedFrom(AcDbEntity::desc()) == isEntity;
    std::unique_ptr<AcDbObject> object;
    if (fits) {
        const FileFiler::Place place = mFiler.place();
        object.reset(static_cast<AcDbObject*>(recordClass->create()));
        mHasProxies =
            mHasProxies || recordClass == AcDbProxyEntity::desc() || recordClass == AcDbProxyObject::desc();
        const Acad::ErrorStatus status = object->dxfIn(&mFiler);
        const bool isUnmarked = isEntity && mFiler.hasBaseMarkerOnly() && hasStrayGeometry(*object);
        if ((status != Acad::eOk || isUnmarked) && mFiler.fault().what.empty()) {
            std::wstring why = mFiler.errorMessage();
            mFiler.resetFilerStatus();
            report(fromUtf8(mFiler.recordName()) + L" 的数据不完整" + (why.empty() ? L"" : L": " + why),
                   Done::kept);
            mFiler.seek(place);
            mFiler.nextRecord();
            object.reset();
        }
    }
    if (object == nullptr) {
        object = readKept(isEntity);
    }
    mFiler.resetFilerStatus();
    if (!mFiler.fault().what.empty()) {
        reportFault(Done::leftOut);
        if (isEntity) {
            return nullptr;
        }
    }
    return object;
}

AcDbStub* Reader::freshStub() {
    if (!mHandlesKnown) {
        // What a file says of the next free handle may be wrong: look at all.
        mHandlesKnown = true;
        const GroupScanner::Position here = mScanner.position();
        mScanner.seek({});
        std::uint64_t greatest = 0;
        Token token;
        while (mScanner.next(token)) {
            std::uint64_t handle = 0;
            if ((token.code == 5 || token.code == 105) && parseHandle(token.text, handle) &&
                handle <= greatestHandle) {
                greatest = std::max(greatest, handle);
            }
        }
        mScanner.seek(here);
        mImpl.raiseNextHandle(greatest + 1);
    }
    return mImpl.newStub();
}

AcDbStub* Reader::adopt(std::unique_ptr<AcDbObject> object, AcDbStub* owner) {
    AcDbStub* stub = nullptr;
    if (const std::uint64_t handle = mFiler.handle(); handle != 0) {
        stub = mImpl.stubFor(handle);
        if (stub->object != nullptr) {
            stub = freshStub();
            report(formatted(L"%s 的句柄已被另一个对象占用, 改为 %I64X",
                             fromUtf8(mFiler.recordName()).c_str(), static_cast<long long>(stub->handle)),
                   Done::repaired);
        }
    } else {
        stub = freshStub();
        if (mFiler.hasBadHandle()) {
            report(formatted(L"%s 的句柄无效, 改为 %I64X", fromUtf8(mFiler.recordName()).c_str(),
                             static_cast<long long>(stub->handle)),
                   Done::repaired);
        }
    }
    mImpl.adopt(stub, object.release(), owner);
    return stub;
}

} // namespace host::dxf
