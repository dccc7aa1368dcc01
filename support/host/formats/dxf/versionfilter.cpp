// The filter, and the objects that older releases cannot hold.
#include "host/formats/dxf/versionfilter.h"

#include "host/formats/dxf/groupscanner.h"
#include "host/formats/dxf/versions.h"
#include "host/formats/ownerchain.h"
#include "host/rx/format.h"
#include "host/rx/text.h"

#include <algorithm>

namespace host::dxf {
namespace {

const GroupList* keptGroupsOf(const AcDbObject& object) {
    if (const auto* entity = KeptEntity::cast(&object)) {
        return &entity->record.groups;
    }
    const auto* kept = KeptObject::cast(&object);
    return kept != nullptr ? &kept->record.groups : nullptr;
}

bool hasGroup(const GroupList& groups, std::string_view subclass, short code) {
    bool inside = false;
    for (const GroupList::Group group : groups) {
        inside = group.code == 100 ? group.text == subclass : inside;
        if (inside && group.code == code) {
            return true;
        }
    }
    return false;
}

/// Since release 2013 the shape of a solid stands in a section of its own, and visual styles have other
/// groups.
Loss lossOf(const AcDbObject& object) {
    const GroupList* groups = keptGroupsOf(object);
    if (groups == nullptr) {
        return Loss::none;
    }
    constexpr std::string_view geometry = "AcDbModelerGeometry";
    if (hasGroup(*groups, geometry, 290) && !hasGroup(*groups, geometry, 1)) {
        return Loss::solid;
    }
    const bool isStyle = object.dxfRecordName() == "VISUALSTYLE";
    return isStyle && !hasGroup(*groups, "AcDbVisualStyle", 170) ? Loss::visualStyle : Loss::none;
}

const wchar_t* lossText(Loss loss) {
    switch (loss) {
    case Loss::trueColor:
        return L"真彩色 (改用最接近的颜色号)";
    case Loss::transparency:
        return L"透明度";
    case Loss::shadow:
        return L"阴影设置";
    case Loss::material:
        return L"材质";
    case Loss::visualStyle:
        return L"视觉样式";
    case Loss::lighting:
        return L"视口的光照设置";
    case Loss::blockUnits:
        return L"块的单位";
    case Loss::dimensionFormat:
        return L"新的标注设置";
    case Loss::textBackground:
        return L"多行文字的背景";
    case Loss::textColumns:
        return L"多行文字的分栏";
    case Loss::multilineAttribute:
        return L"多行属性的格式";
    case Loss::lockedPosition:
        return L"属性的锁定位置";
    case Loss::gradient:
        return L"渐变填充 (改为实心填充)";
    case Loss::clipInside:
        return L"反向剪裁";
    case Loss::leaderFormat:
        return L"多重引线的新设置";
    case Loss::solid:
        return L"三维实体";
    case Loss::none:
        break;
    }
    return L"";
}

} // namespace

VersionFilter::VersionFilter(AcDbDatabase& database, GroupWriter& out)
    : GroupWriter(database, out.version(), out.codePage()), mOut(out) {
    if (version() < AcDb::kDHL_1027) {
        findLeftOut();
    }
}

void VersionFilter::findLeftOut() {
    const DatabaseImpl& impl = database()->impl();
    impl.forEachStub([this](AcDbStub& stub) {
        if (stub.object != nullptr && !stub.erased) {
            if (const Loss loss = lossOf(*stub.object); loss != Loss::none) {
                mLeftOut.insert(stub.handle);
                note(loss, stub.handle);
            }
        }
    });
    if (mLeftOut.empty()) {
        return;
    }
    OwnerChain owners([roots = mLeftOut](const AcDbStub& stub) { return roots.contains(stub.handle); });
    impl.forEachStub([&](AcDbStub& stub) {
        if (stub.object != nullptr && !stub.erased && owners.reachesMarked(stub)) {
            mLeftOut.insert(stub.handle);
        }
    });
}

void VersionFilter::note(Loss loss, Adesk::UInt64 handle) {
    if (loss != Loss::none) {
        Count& count = mLosses[loss];
        count.first = count.count++ == 0 ? handle : count.first;
    }
}

void VersionFilter::reportTo(ReadReport& report) const {
    const std::wstring release = fromUtf8(releaseName(version()));
    for (const auto& [loss, count] : mLosses) {
        std::wstring what = release + L" 版没有" + lossText(loss);
        what += count.count > 1 ? formatted(L", 共 %I64d 处", static_cast<long long>(count.count)) : L"";
        report.add({0, count.first, std::move(what), ReadEntry::Done::leftOut});
    }
    if (!mVariables.empty()) {
        std::wstring what = release + L" 版没有系统变量";
        for (const std::string& name : mVariables) {
            what += L" " + fromUtf8(name);
        }
        report.add({0, 0, std::move(what), ReadEntry::Done::leftOut});
    }
}

void VersionFilter::beginRecord(std::string_view name) {
    mHandle = 0;
    mRules.clear();
    mEmbedded = false;
    mInDictionary = false;
    mInBraces = false;
    mName.reset();
    mOut.beginRecord(name);
}

void VersionFilter::enterSubclass(std::string_view marker) {
    mRules.clear();
    std::ranges::copy_if(versionRules(marker), std::back_inserter(mRules),
                         [this](const VersionRule& rule) { return version() < rule.since; });
    mSeen.assign(mRules.size(), 0);
    mInDictionary = marker == "AcDbDictionary";
}

template <class Harmless>
std::optional<short> VersionFilter::take(short code, Harmless&& harmless) {
    if (code >= 1000) {
        mEmbedded = false;
        return code;
    }
    if (mEmbedded) {
        return std::nullopt;
    }
    for (std::size_t index = 0; index < mRules.size(); ++index) {
        const VersionRule& rule = mRules[index];
        if (code < rule.first || code > rule.last) {
            continue;
        }
        if (const int seen = ++mSeen[index]; rule.occurrence != 0 && rule.occurrence != seen) {
            continue;
        }
        if (rule.instead >= 0) {
            return rule.instead;
        }
        if (rule.loss != Loss::none && !harmless(rule)) {
            note(rule.loss, mHandle);
        }
        mEmbedded = code == 101;
        return std::nullopt;
    }
    return code;
}

Acad::ErrorStatus VersionFilter::writeReal(short code, double value) {
    const auto taken = take(code, [&](const VersionRule& rule) { return value == rule.standard; });
    return taken ? mOut.writeReal(*taken, value) : Acad::eOk;
}

Acad::ErrorStatus VersionFilter::writeInteger(short code, Adesk::Int64 value) {
    const auto taken =
        take(code, [&](const VersionRule& rule) { return static_cast<double>(value) == rule.standard; });
    return taken ? mOut.writeInteger(*taken, value) : Acad::eOk;
}

/// The plain style of drawings in two dimensions, which older releases mean anyway.
bool VersionFilter::isPlainVisualStyle(Adesk::UInt64 handle) const {
    const AcDbStub* stub = database()->impl().findStub(handle);
    const auto* style = stub != nullptr ? KeptObject::cast(stub->object) : nullptr;
    if (style == nullptr) {
        return true;
    }
    for (const GroupList::Group group : style->record.groups) {
        if (group.code == 2) {
            return equalNoCase(fromUtf8(group.text), std::wstring_view(L"2dWireframe"));
        }
    }
    return true;
}

VersionFilter::Fate VersionFilter::fateOf(short code, Adesk::UInt64 handle) {
    const auto taken = take(code, [&](const VersionRule& rule) {
        return handle == 0 || (rule.loss == Loss::visualStyle && isPlainVisualStyle(handle));
    });
    const bool dangles = mLeftOut.contains(handle);
    Fate fate = !taken ? Fate::leftOut : dangles ? Fate::null : Fate::stays;
    if (dangles && (mName.has_value() || mInBraces)) {
        fate = Fate::leftOut;
    }
    if (mName.has_value()) {
        if (fate == Fate::stays) {
            mOut.writeKept(3, *mName);
        }
        mName.reset();
    }
    return fate;
}

Acad::ErrorStatus VersionFilter::writeReference(short code, AcDbStub* id) {
    const Fate fate = fateOf(code, id != nullptr ? id->handle : 0);
    return fate == Fate::leftOut ? Acad::eOk : mOut.writeReference(code, fate == Fate::stays ? id : nullptr);
}

Acad::ErrorStatus VersionFilter::writeBinary(short code, const void* bytes, std::size_t count) {
    const auto taken = take(code, [](const VersionRule&) { return false; });
    return taken ? mOut.writeBinary(*taken, bytes, count) : Acad::eOk;
}

Acad::ErrorStatus VersionFilter::writeKept(short code, std::string_view text) {
    if (code == 0) {
        beginRecord(text);
        return Acad::eOk;
    }
    if (code == 100 && !mEmbedded) {
        enterSubclass(text);
        return mOut.writeKept(code, text);
    }
    if (joinsPoint(code)) {
        return Acad::eOk;
    }
    if (referenceKind(code) != ReferenceKind::none) {
        std::uint64_t handle = 0;
        parseHandle(text, handle);
        const Fate fate = fateOf(code, handle);
        return fate == Fate::leftOut ? Acad::eOk : mOut.writeKept(code, fate == Fate::stays ? text : "0");
    }
    if (code == 102) {
        mInBraces = text.starts_with('{');
    }
    if (mInDictionary && code == 3) {
        mName = text;
        return Acad::eOk;
    }
    if ((code == 5 || code == 105) && mHandle == 0) {
        parseHandle(text, mHandle);
    }
    const auto taken = take(code, [&](const VersionRule& rule) {
        double value = 0.0;
        return text.empty() || (parseReal(text, value) && value == rule.standard);
    });
    return taken ? mOut.writeKept(*taken, text) : Acad::eOk;
}

void VersionFilter::writeHandle(short code, Adesk::UInt64 handle) {
    mOut.writeHandle(code, handle);
}

} // namespace host::dxf
