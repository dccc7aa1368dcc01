// What is done when a whole DXF file has been read: names of header variables, containers, owners, what old
// releases did not have, and the list of what is missing.
#include "host/db/entities/blockreference.h"
#include "host/formats/dxf/reader.h"
#include "host/formats/dxf/upgrade.h"
#include "host/rx/format.h"
#include "host/rx/text.h"

#include <algorithm>

namespace host::dxf {

void Reader::finish() {
    if (!mHasTables) {
        completeTables();
    }
    findContainers();
    resolveHeader();
    addMissingApplications();
    for (const auto& [block, line] : mBlocksWithoutDefinition) {
        const auto* record = AcDbBlockTableRecord::cast(block->object);
        report(L"块 \"" + std::wstring(record->name().view()) + L"\" 没有定义, 按空块处理", Done::repaired,
               line, block->handle);
    }
    if (mFiler.version() < AcDb::kDHL_1012) {
        upgradeFromRelease12(mDatabase);
    }
    breakBlockCycles(
        mDatabase,
        [this](const std::wstring& what, Adesk::UInt64 handle) { report(what, Done::leftOut, 0, handle); },
        [this](const std::wstring& what, Adesk::UInt64 handle) { report(what, Done::kept, 0, handle); });
    reportDangling();
    if (mFiler.decoder().wrongEncoding()) {
        report(L"部分文字不是 UTF-8, 按代码页读取", Done::repaired, 0, 0);
    }
    if (mMadeDimStyle != nullptr) {
        setStandardDimVariables(*mMadeDimStyle);
    }
    const bool shouldBeComplete = mHasHeader && mFiler.version() >= AcDb::kDHL_1015;
    mImpl.completeDrawing([&](const std::wstring& added) {
        if (shouldBeComplete) {
            report(added, Done::repaired, 0, 0);
        }
    });
    inferOwners();
    if (mHasProxies) {
        reviveProxies(mDatabase);
    }
}

void Reader::findContainers() {
    const auto* root = peek<AcDbDictionary>(mImpl.containers.namedObjects);
    if (root == nullptr) {
        return;
    }
    const ReadAccess access(*root);
    const auto find = [&](const ACHAR* name, AcDbObjectId& place) {
        AcDbObjectId id;
        if (root->getAt(name, id) == Acad::eOk && peek<AcDbDictionary>(id) != nullptr) {
            place = id;
        }
    };
    find(L"ACAD_GROUP", mImpl.containers.groups);
    find(L"ACAD_LAYOUT", mImpl.containers.layouts);
    find(L"ACAD_MLINESTYLE", mImpl.containers.mlineStyles);
}

void Reader::resolveHeader() {
    const DatabaseImpl::Containers& known = mImpl.containers;
    for (const auto& [index, name] : mHeaderNames) {
        AcDbObjectId table;
        switch (headerVariables()[index].kind) {
        case HeaderKind::layer:
            table = known.layerTable;
            break;
        case HeaderKind::linetype:
            table = known.linetypeTable;
            break;
        case HeaderKind::textStyle:
            table = known.textStyleTable;
            break;
        default:
            table = known.dimStyleTable;
            break;
        }
        const auto* records = peek<AcDbSymbolTable>(table);
        const ReadAccess access(*records);
        AcDbObjectId id;
        if (records->getAt(name, id) == Acad::eOk) {
            mImpl.header[index] = id;
        } else if (!name.isEmpty() && mFiler.version() >= AcDb::kDHL_1012) {
            report(L"变量 $" + fromUtf8(headerVariables()[index].name) + L" 的值 \"" + name.constPtr() +
                       L"\" 不存在, 改为默认值",
                   Done::repaired, 0, 0);
        }
    }
}

/// Extended data of an application that is not registered would be refused by others.
void Reader::addMissingApplications() {
    std::vector<std::string> names(mFiler.applications().begin(), mFiler.applications().end());
    std::sort(names.begin(), names.end());
    for (const std::string& name : names) {
        const auto* table = peek<AcDbRegAppTable>(mImpl.containers.regAppTable);
        const AcString text(fromUtf8(decodeDxfText(name)).c_str());
        const ReadAccess access(*table);
        if (!text.isEmpty() && !table->has(text)) {
            report(L"应用程序名 \"" + std::wstring(text.view()) + L"\" 没有注册, 已注册", Done::repaired, 0,
                   0);
            addRecord(mImpl.containers.regAppTable, L"AcDbRegAppTableRecord", text);
        }
    }
}

/// Only what stands in the objects section can be without a valid owner: everything else was given one, and
/// tables need none.
bool Reader::isLost(const AcDbStub& stub) const {
    return stub.object != nullptr && !stub.object->ownerId().isValid() &&
           !stub.object->isKindOf(AcDbSymbolTable::desc()) &&
           AcDbObjectId(const_cast<AcDbStub*>(&stub)) != mImpl.containers.namedObjects;
}

void Reader::inferOwners() {
    breakOwnerCycles();
    const auto someLost = [this] {
        return std::any_of(mObjects.begin(), mObjects.end(),
                           [this](const AcDbStub* stub) { return isLost(*stub); });
    };
    if (someLost()) {
        takeByDictionaries();
    }
    AcDbStub* root = mImpl.containers.namedObjects.stub();
    for (AcDbStub* stub : mObjects) {
        if (isLost(*stub)) {
            report(fromUtf8(stub->object->dxfRecordName()) + L" 没有所有者", Done::repaired, 0, stub->handle);
            setOwner(*stub, root);
        }
    }
}

/// Old releases do not name owners: they are the dictionaries and objects that hold the lost ones.
void Reader::takeByDictionaries() {
    const auto take = [this](AcDbObjectId part, AcDbStub& owner) {
        if (part.isValid() && part.stub() != &owner && isLost(*part.stub())) {
            setOwner(*part.stub(), &owner);
        }
    };
    mImpl.forEachStub([&](AcDbStub& stub) {
        if (stub.object == nullptr) {
            return;
        }
        if (const ObjectExtras* extras = stub.object->extras()) {
            take(extras->extensionDictionary, stub);
        }
        if (const auto* dictionary = AcDbDictionary::cast(stub.object)) {
            for (const AcDbDictionary::Entry& entry : dictionary->entries()) {
                take(entry.id, stub);
            }
        }
    });
    breakOwnerCycles();
}

/// Objects that own each other in a circle would never lead to the drawing: one of them loses its owner.
void Reader::breakOwnerCycles() {
    std::unordered_map<const AcDbStub*, const AcDbStub*> reached; ///< from which start each stub was reached
    for (AcDbStub* start : mObjects) {
        for (AcDbStub* at = start; at != nullptr && at->object != nullptr;) {
            const auto [found, added] = reached.try_emplace(at, start);
            if (!added) {
                if (found->second == start) {
                    report(fromUtf8(at->object->dxfRecordName()) + L" 的所有者关系成环", Done::repaired, 0,
                           at->handle);
                    setOwner(*at, nullptr);
                }
                break;
            }
            at = at->object->ownerId().stub();
        }
    }
}

void Reader::setOwner(AcDbStub& stub, AcDbStub* owner) {
    const bool open = std::exchange(stub.openForWrite, true);
    stub.object->setOwnerId(AcDbObjectId(owner));
    stub.openForWrite = open;
}

void Reader::reportDangling() {
    struct Missing {
        std::uint64_t handle;
        FileFiler::Mention mention;
    };
    std::vector<Missing> missing;
    for (const auto& [stub, mention] : mFiler.mentions()) {
        if (stub->object == nullptr) {
            missing.push_back({stub->handle, mention});
        }
    }
    std::sort(missing.begin(), missing.end(),
              [](const Missing& a, const Missing& b) { return a.mention.line < b.mention.line; });
    for (const Missing& one : missing) {
        report(formatted(L"引用的对象 %I64X 不存在", static_cast<long long>(one.handle)), Done::kept,
               one.mention.line, one.mention.by);
    }
}

} // namespace host::dxf
