// The interface's questions with their result codes turned into values.
#include "host/commands/ask.h"

#include "host/ed/drive.h"
#include "host/ed/question.h"
#include "host/ed/runcontext.h"
#include "host/rx/text.h"

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

TextAnswer askName(const std::wstring& prompt) {
    TextAnswer answer = askText(prompt);
    std::erase(answer.text, L'"');
    if (answer.isValue() && answer.text.empty()) {
        answer.kind = Answer::Kind::none;
    }
    return answer;
}

namespace {

/// Takes what was answered to the question for an entity: a name, a name with a point, a set, "last", or a
/// point on it. False for anything else.
bool takeEntity(const InputItem& item, EntityAnswer& answer) {
    if (item.kind == InputItem::Kind::value && item.value != nullptr) {
        const resbuf* value = item.value->restype == RTLB ? item.value->rbnext : item.value.get();
        if (value != nullptr && value->restype == RTENAME) {
            const resbuf* point = value->rbnext;
            answer.hasPoint = point != nullptr && (point->restype == RT3DPOINT || point->restype == RTPOINT);
            if (answer.hasPoint) {
                answer.ucs = asPoint3d(point->resval.rpoint);
            }
            return acdbGetObjectId(answer.id, value->resval.rlname) == Acad::eOk;
        }
        if (value != nullptr && value->restype == RTPICKS) {
            const PickSet* set = pickSetOf(value->resval.rlname);
            for (const AcDbObjectId id : set != nullptr ? set->ids : std::vector<AcDbObjectId>()) {
                answer.set.append(id);
            }
            answer.id = answer.set.isEmpty() ? AcDbObjectId() : answer.set[0];
            return !answer.id.isNull();
        }
    }
    const std::wstring_view word = item.kind == InputItem::Kind::text ? item.text : std::wstring_view();
    if (equalNoCase(word, L"L") || equalNoCase(word, L"_L") || equalNoCase(word, L"_LAST")) {
        ads_name last;
        return acdbEntLast(last) == RTNORM && acdbGetObjectId(answer.id, last) == Acad::eOk;
    }
    const std::optional<AcGePoint3d> point = pointIn(item, std::nullopt);
    if (!point) {
        return false;
    }
    answer.ucs = *point;
    answer.hasPoint = true;
    answer.id = entityAt(ucsToWorld(*point), pickAperture());
    setLastPoint(*point);
    return true;
}

} // namespace

EntityAnswer askEntity(const std::wstring& prompt, const wchar_t* keywords,
                       const std::function<const wchar_t*(const AcDbEntity&)>& refusal) {
    for (;;) {
        EntityAnswer answer;
        acedInitGet(0, keywords);
        const InitGet init = takeInitGet();
        ValueQuestion question{prompt, {}, L"无效选择。", {}};
        question.options.wantsPoint = true;
        question.options.picksObjects = true;
        question.take = [&](const InputItem& item) { return takeEntity(item, answer); };
        finish(answer, askValue(init, question));
        if (!answer.isValue()) {
            return answer;
        }
        answer.world = ucsToWorld(answer.ucs);
        const auto* entity = peek<AcDbEntity>(answer.id);
        if (entity == nullptr) {
            acutPrintf(L"\n未找到对象。");
            continue;
        }
        const ReadAccess access(*entity);
        const wchar_t* line = refusal ? refusal(*entity) : nullptr;
        if (line == nullptr) {
            return answer;
        }
        acutPrintf(L"\n%s", line);
    }
}

Selection Selection::from(const wchar_t* options, const void* prompts) {
    Selection selection;
    const int code = acedSSGet(options, prompts, nullptr, nullptr, selection.mSet);
    selection.mCancelled = code == RTCAN;
    selection.mKeyword = code == RTKWORD;
    if (code == RTNORM) {
        if (const PickSet* set = pickSetOf(selection.mSet)) {
            selection.mIds.setPhysicalLength(static_cast<int>(set->size()));
            for (const AcDbObjectId id : set->ids) {
                selection.mIds.append(id);
            }
        }
    }
    return selection;
}

Selection Selection::ask() {
    return from(nullptr, nullptr);
}

Selection Selection::askEditable() {
    return from(L":L", nullptr);
}

Selection Selection::askSingle() {
    return from(L":S:L", nullptr);
}

Selection Selection::askWith(const wchar_t* prompt, bool editable) {
    const wchar_t* prompts[] = {prompt, L"\n删除对象: "};
    return from(editable ? L":$:L" : L":$", prompts);
}

Selection::Selection(Selection&& other) noexcept
    : mIds(std::move(other.mIds)), mCancelled(other.mCancelled), mKeyword(other.mKeyword) {
    ads_name_set(other.mSet, mSet);
    ads_name_clear(other.mSet);
}

Selection::~Selection() {
    if (mSet[0] != 0 || mSet[1] != 0) {
        acedSSFree(mSet);
    }
}

bool isProgramAnswering() {
    const Drive* drive = runContext().drive;
    return drive != nullptr && !drive->isUsers();
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

std::wstring shownPoint(const AcGePoint3d& ucs) {
    return L"X = " + shown(ucs.x) + L"     Y = " + shown(ucs.y) + L"     Z = " + shown(ucs.z);
}

std::optional<bool> askYesNo(const std::wstring& prompt, bool standard) {
    const Answer answer =
        askKeyword(prompt + (standard ? L" [是(Y)/否(N)] <Y>: " : L" [是(Y)/否(N)] <N>: "), L"Yes No");
    if (answer.isCancelled()) {
        return std::nullopt;
    }
    return answer.isNone() ? standard : answer.isKeyword(L"Yes");
}

std::wstring unquoted(std::wstring text) {
    if (text.size() >= 2 && text.front() == L'"' && text.back() == L'"') {
        text = text.substr(1, text.size() - 2);
    }
    return text;
}

AcGeVector3d ucsNormal() {
    return currentDatabase().ucsxdir().crossProduct(currentDatabase().ucsydir()).normal();
}

std::optional<AcGePoint3d> askOppositeCorner(const wchar_t* prompt, const AcGePoint3d& ucs) {
    ads_point base;
    ads_point opposite;
    setPoint(base, ucs);
    acedInitGet(RSG_NONULL, nullptr);
    return acedGetCorner(base, prompt, opposite) == RTNORM ? std::optional(ucsToWorld(asPoint3d(opposite)))
                                                           : std::nullopt;
}

const wchar_t* lockedRefusal(const AcDbEntity& entity) {
    return isOnLockedLayer(entity) ? L"对象在锁定的图层上。" : nullptr;
}

void transformFromUcs(AcDbEntity& entity) {
    if (const AcGeMatrix3d matrix = ucsMatrix(); matrix != AcGeMatrix3d::kIdentity) {
        entity.transformBy(matrix);
    }
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
