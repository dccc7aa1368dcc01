// The interface's questions with their result codes turned into values.
#include "host/commands/ask.h"

namespace host {
namespace {

Answer::Kind kindOf(int result) {
    switch (result) {
    case RTNORM:
        return Answer::Kind::value;
    case RTKWORD:
        return Answer::Kind::keyword;
    case RTNONE:
        return Answer::Kind::none;
    default:
        return Answer::Kind::cancelled;
    }
}

void finish(Answer& answer, int result) {
    answer.kind = kindOf(result);
    if (answer.kind == Answer::Kind::keyword) {
        AcString word;
        acedGetInput(word);
        answer.keyword = word.kwszPtr();
    }
}

/// The base point as the interface takes it: null for none.
class Base {
public:
    explicit Base(const AcGePoint3d* point) : mHas(point != nullptr) {
        if (mHas) {
            setPoint(mPoint, *point);
        }
    }
    const ads_real* get() const { return mHas ? mPoint : nullptr; }

private:
    bool mHas;
    ads_point mPoint{};
};

} // namespace

PointAnswer askPoint(const std::wstring& prompt, const wchar_t* keywords, const AcGePoint3d* base,
                     int flags) {
    PointAnswer answer;
    ads_point point{};
    acedInitGet(flags, keywords);
    finish(answer, acedGetPoint(Base(base).get(), prompt.c_str(), point));
    if (answer.isValue()) {
        answer.ucs = asPoint3d(point);
        answer.world = ucsToWorld(answer.ucs);
    }
    return answer;
}

RealAnswer askDistance(const std::wstring& prompt, const wchar_t* keywords, const AcGePoint3d* base,
                       int flags) {
    RealAnswer answer;
    acedInitGet(flags, keywords);
    finish(answer, acedGetDist(Base(base).get(), prompt.c_str(), &answer.value));
    return answer;
}

RealAnswer askAngle(const std::wstring& prompt, const wchar_t* keywords, const AcGePoint3d* base, int flags) {
    RealAnswer answer;
    acedInitGet(flags, keywords);
    finish(answer, acedGetOrient(Base(base).get(), prompt.c_str(), &answer.value));
    return answer;
}

RealAnswer askReal(const std::wstring& prompt, const wchar_t* keywords, int flags) {
    RealAnswer answer;
    acedInitGet(flags, keywords);
    finish(answer, acedGetReal(prompt.c_str(), &answer.value));
    return answer;
}

IntegerAnswer askInteger(const std::wstring& prompt, const wchar_t* keywords, int flags) {
    IntegerAnswer answer;
    acedInitGet(flags, keywords);
    finish(answer, acedGetInt(prompt.c_str(), &answer.value));
    return answer;
}

Answer askKeyword(const std::wstring& prompt, const wchar_t* keywords, int flags) {
    Answer answer;
    AcString word;
    acedInitGet(flags, keywords);
    answer.kind = kindOf(acedGetKword(prompt.c_str(), word));
    if (answer.kind == Answer::Kind::value) {
        answer.kind = Answer::Kind::keyword;
        answer.keyword = word.kwszPtr();
    }
    return answer;
}

TextAnswer askText(const std::wstring& prompt, bool blanks) {
    TextAnswer answer;
    AcString text;
    answer.kind = kindOf(acedGetString(blanks ? 1 : 0, prompt.c_str(), text));
    answer.text = text.kwszPtr();
    if (answer.isValue() && answer.text.empty()) {
        answer.kind = Answer::Kind::none;
    }
    return answer;
}

Selection Selection::ask() {
    Selection selection;
    if (acedSSGet(nullptr, nullptr, nullptr, nullptr, selection.mSet) == RTNORM) {
        Adesk::Int32 length = 0;
        acedSSLength(selection.mSet, &length);
        for (Adesk::Int32 index = 0; index < length; ++index) {
            ads_name name;
            AcDbObjectId id;
            if (acedSSName(selection.mSet, index, name) == RTNORM && acdbGetObjectId(id, name) == Acad::eOk) {
                selection.mIds.append(id);
            }
        }
    }
    return selection;
}

Selection::Selection(Selection&& other) noexcept : mIds(std::move(other.mIds)) {
    ads_name_set(other.mSet, mSet);
    ads_name_clear(other.mSet);
}

Selection::~Selection() {
    if (mSet[0] != 0 || mSet[1] != 0) {
        acedSSFree(mSet);
    }
}

AcDbDatabase& currentDatabase() {
    return *acdbCurDwg();
}

std::wstring shown(double value) {
    AcString text;
    acdbRToS(value, -1, -1, text);
    return text.kwszPtr();
}

std::wstring shownAngle(double radians) {
    AcString text;
    acdbAngToS(radians, -1, -1, text);
    return text.kwszPtr();
}

AcDbObjectId appendToCurrentSpace(AcDbEntity* entity) {
    AcDbDatabase& database = currentDatabase();
    const Opened<AcDbBlockTableRecord> space(database.currentSpaceId(), AcDb::kForWrite);
    AcDbObjectId id;
    if (!space || space->appendAcDbEntity(id, entity) != Acad::eOk) {
        delete entity;
        return {};
    }
    entity->close();
    return id;
}

void forEachMatch(AcDbSymbolTable& table, const std::wstring& patterns,
                  const std::function<void(AcDbObjectId)>& matched,
                  const std::function<void(const std::wstring&)>& unmatched) {
    std::size_t begin = 0;
    while (begin <= patterns.size()) {
        const std::size_t end = std::min(patterns.find(L',', begin), patterns.size());
        const std::wstring pattern = patterns.substr(begin, end - begin);
        begin = end + 1;
        if (pattern.empty()) {
            continue;
        }
        bool any = false;
        AcDbObjectId exact;
        if (table.getAt(pattern.c_str(), exact) == Acad::eOk) {
            matched(exact);
            continue;
        }
        for (AcDbStub* stub : std::vector(table.records())) {
            const auto* record = peek<AcDbSymbolTableRecord>(stub);
            if (record != nullptr && wildcardMatch(record->name().kwszPtr(), pattern)) {
                any = true;
                matched(AcDbObjectId(stub));
            }
        }
        if (!any) {
            unmatched(pattern);
        }
    }
}

} // namespace host
