// The C-style functions of selection.
#include "host/db/dbents.h"
#include "host/ed/acdocman.h"
#include "host/ed/aced.h"
#include "host/ed/acedreactor.h"
#include "host/ed/documentstate.h"
#include "host/ed/entitylist.h"
#include "host/ed/question.h"
#include "host/ed/runcontext.h"
#include "host/ed/selection.h"
#include "host/ed/sysvars.h"
#include "host/rx/text.h"

#include <algorithm>

namespace host {
namespace {

constexpr int missedPick = 7;  // ERRNO: nothing was found at the point
constexpr int nullAnswer = 52; // ERRNO: Enter

void setErrno(int code) {
    setSystemVariable(L"ERRNO", code);
}

/// The options of acedSSGet: a way of selecting and the letters behind colons.
struct SsgetOptions {
    std::wstring way;
    bool prompts = false;
    bool single = false;
    bool everything = false;
    bool rejectLocked = false;

    explicit SsgetOptions(std::wstring_view text) {
        if (!text.empty() && text.front() == L'_') {
            text.remove_prefix(1);
        }
        const std::size_t colon = std::min(text.find(L':'), text.size());
        std::wstring_view front = text.substr(0, colon);
        // "+." and "-." say how a point in the arguments is taken; there is one way here.
        for (; !front.empty() && (front.front() == L'+' || front.front() == L'-' || front.front() == L'.');) {
            front.remove_prefix(1);
        }
        way = toUpper(front);
        for (const wchar_t c : text.substr(colon)) {
            prompts = prompts || c == L'$';
            single = single || toUpper(c) == L'S';
            everything = everything || toUpper(c) == L'E';
            rejectLocked = rejectLocked || toUpper(c) == L'L';
        }
    }
};

std::vector<AcGePoint3d> pointsOf(const resbuf* list) {
    std::vector<AcGePoint3d> points;
    for (const resbuf* at = list; at != nullptr; at = at->rbnext) {
        if (at->restype == RTPOINT || at->restype == RT3DPOINT) {
            points.push_back(asPoint3d(at->resval.rpoint));
        }
    }
    return points;
}

/// Main entities of a block that are not erased.
void addBlock(AcDbObjectId block, std::vector<AcDbObjectId>& ids, bool visibleOnly) {
    const auto* record = peek<AcDbBlockTableRecord>(block);
    if (record == nullptr) {
        return;
    }
    for (AcDbStub* stub : record->entities()) {
        const auto* entity = peek<AcDbEntity>(AcDbObjectId(stub));
        const auto* layer = entity != nullptr ? peek<AcDbLayerTableRecord>(entity->layerId()) : nullptr;
        const bool reachable = layer == nullptr || (!layer->isFrozen() && !layer->isLocked());
        if (entity != nullptr && (!visibleOnly || reachable)) {
            ids.emplace_back(stub);
        }
    }
}

/// Every entity of the drawing's spaces, or those that "all" means: thawed and not locked.
std::vector<AcDbObjectId> everything(AcDbDatabase& database, bool visibleOnly) {
    std::vector<AcDbObjectId> ids;
    addBlock(database.modelSpaceId(), ids, visibleOnly);
    const auto* blocks = peek<AcDbBlockTable>(database.blockTableId());
    for (AcDbStub* stub : blocks != nullptr ? blocks->records() : std::vector<AcDbStub*>()) {
        const auto* record = peek<AcDbBlockTableRecord>(AcDbObjectId(stub));
        if (record != nullptr && record->isLayout() && AcDbObjectId(stub) != database.modelSpaceId()) {
            addBlock(AcDbObjectId(stub), ids, visibleOnly);
        }
    }
    return ids;
}

int finishSet(PickSet found, ads_name set, bool remember) {
    if (found.empty()) {
        return RTERROR;
    }
    if (remember) {
        previousSelection() = found;
    }
    makePickSetName(std::move(found), set);
    return RTNORM;
}

/// What a way found, and how.
struct Found {
    std::vector<AcDbObjectId> ids;
    std::shared_ptr<const SelectedBy> how;
};

PickSet filtered(const Found& found, const SelectionFilter& filter) {
    PickSet set;
    for (const AcDbObjectId id : found.ids) {
        auto* entity = peek<AcDbEntity>(id);
        if (entity != nullptr && filter.accepts(*entity)) {
            set.add(id, found.how);
        }
    }
    return set;
}

Found byShape(SelectionShape::Kind kind, const std::vector<AcGePoint3d>& points) {
    return {entitiesIn(SelectionShape::through(kind, points)), selectedBy(kind, points)};
}

/// The kind of shape of a way that takes a list of points.
std::optional<SelectionShape::Kind> polygonKind(std::wstring_view way) {
    return way == L"WP"   ? std::optional(SelectionShape::Kind::window)
           : way == L"CP" ? std::optional(SelectionShape::Kind::crossing)
           : way == L"F"  ? std::optional(SelectionShape::Kind::fence)
                          : std::nullopt;
}

/// Windows between two corners; from left to right or the other way for a box.
Found byCorners(std::wstring_view way, const void* first, const void* second) {
    if (first == nullptr || second == nullptr) {
        return {};
    }
    const AcGePoint3d a = asPoint3d(static_cast<const double*>(first));
    const AcGePoint3d b = asPoint3d(static_cast<const double*>(second));
    const bool window = way == L"W" || (way != L"C" && b.x >= a.x);
    return byShape(window ? SelectionShape::Kind::window : SelectionShape::Kind::crossing,
                   rectangleCorners(a, b));
}

/// The last entity of the current space.
Found lastDrawn(const AcDbDatabase& database) {
    const AcDbObjectId space = database.currentSpaceId();
    const AcDbObjectId last = lastMainEntity();
    const auto* entity = peek<AcDbEntity>(last);
    if (entity != nullptr && entity->ownerId() == space) {
        return isSelectable(*entity) ? Found{{last}, nullptr} : Found();
    }
    const auto* block = peek<AcDbBlockTableRecord>(space);
    const auto isThere = [](AcDbStub* stub) { return peek<AcDbEntity>(AcDbObjectId(stub)) != nullptr; };
    const auto found = std::find_if(block->entities().rbegin(), block->entities().rend(), isThere);
    if (found == block->entities().rend() || !isSelectable(*peek<AcDbEntity>(AcDbObjectId(*found)))) {
        return {};
    }
    return {{AcDbObjectId(*found)}, nullptr};
}

/// Ways that need no dialogue; nothing for one that is none of them.
std::optional<Found> selectDirectly(const SsgetOptions& options, const void* first, const void* second) {
    AcDbDatabase* database = acdbCurDwg();
    if (database == nullptr) {
        return Found();
    }
    const std::wstring& way = options.way;
    if (way == L"X") {
        std::vector<AcDbObjectId> ids = everything(*database, false);
        std::reverse(ids.begin(), ids.end()); // the newest come first
        return Found{std::move(ids), nullptr};
    }
    if (way == L"A" || way == L"ALL") {
        return Found{everything(*database, true), nullptr};
    }
    if (way == L"P") {
        return Found{previousSelection().ids, nullptr};
    }
    if (way == L"I") {
        return Found{impliedSelection().ids, nullptr};
    }
    if (way == L"L") {
        return lastDrawn(*database);
    }
    if (way == L"W" || way == L"C" || way == L"B" || way == L"BOX") {
        return byCorners(way, first, second);
    }
    if (const auto kind = polygonKind(way)) {
        return byShape(*kind, pointsOf(static_cast<const resbuf*>(first)));
    }
    if (way == L"G" || way == L"GROUP") {
        const auto* name = static_cast<const ACHAR*>(first);
        return Found{groupMembers(name != nullptr ? name : L"").value_or(std::vector<AcDbObjectId>()),
                     nullptr};
    }
    if (way.empty() && first != nullptr && !options.prompts) {
        const AcGePoint3d point = asPoint3d(static_cast<const double*>(first));
        if (second != nullptr) {
            return byCorners(L"BOX", first, second);
        }
        if (options.everything) {
            return Found{entitiesAt(ucsToWorld(point), pickAperture()), selectedByPick(point)};
        }
        const AcDbObjectId id = entityAt(ucsToWorld(point), pickAperture());
        return id.isNull() ? Found() : Found{{id}, selectedByPick(point)};
    }
    return std::nullopt;
}

bool usesImplied() {
    const CommandFrame* frame = runContext().frame;
    return systemVariableInteger(L"PICKFIRST") != 0 && (frame == nullptr || frame->usesPickSet);
}

int selectByDialogue(const SsgetOptions& options, const void* prompts, const SelectionFilter& filter,
                     ads_name set) {
    SelectOptions dialogue;
    dialogue.single = options.single;
    dialogue.everythingInBox = options.everything;
    dialogue.rejectLocked = options.rejectLocked;
    dialogue.useImplied = usesImplied() && !options.single;
    if (options.prompts && prompts != nullptr) {
        const auto* texts = static_cast<const ACHAR* const*>(prompts);
        dialogue.addPrompt = texts[0] != nullptr ? texts[0] : L"";
        dialogue.removePrompt = texts[1] != nullptr ? texts[1] : L"";
    }
    PickSet found;
    const int code = selectEntities(dialogue, filter, found);
    if (code != RTNORM) {
        setErrno(code == RTNONE ? nullAnswer : missedPick);
        return code == RTNONE ? RTERROR : code;
    }
    return finishSet(std::move(found), set, false);
}

struct EntityPick {
    AcDbObjectId entity;
    AcGePoint3d point; ///< UCS
};

/// One entity by a point, or given by a program. RTNORM, RTERROR (nothing there, or Enter), RTCAN, RTKWORD.
int pickEntity(const ACHAR* prompt, EntityPick& pick) {
    const InitGet init = takeInitGet();
    bool missed = false;
    ValueQuestion question{prompt != nullptr ? prompt : L"\n选择对象: ", {}, L"无效选择。", {}};
    question.options.wantsPoint = true;
    question.options.picksObjects = true;
    question.take = [&](const InputItem& item) {
        if (item.kind == InputItem::Kind::value && item.value != nullptr) {
            const resbuf* value = item.value->restype == RTLB ? item.value->rbnext : item.value.get();
            if (value != nullptr && value->restype == RTENAME) {
                const bool known = acdbGetObjectId(pick.entity, value->resval.rlname) == Acad::eOk;
                const resbuf* point = value->rbnext;
                if (point != nullptr && (point->restype == RT3DPOINT || point->restype == RTPOINT)) {
                    pick.point = asPoint3d(point->resval.rpoint);
                }
                return known && peek<AcDbEntity>(pick.entity) != nullptr;
            }
            if (value != nullptr && value->restype == RTPICKS) {
                const PickSet* set = pickSetOf(value->resval.rlname);
                pick.entity = set != nullptr && !set->empty() ? set->ids.front() : AcDbObjectId();
                return !pick.entity.isNull();
            }
        }
        const std::wstring_view word = item.kind == InputItem::Kind::text ? item.text : std::wstring_view();
        if (equalNoCase(word, L"L") || equalNoCase(word, L"_L") || equalNoCase(word, L"LAST") ||
            equalNoCase(word, L"_LAST")) {
            pick.entity = lastMainEntity();
            missed = pick.entity.isNull();
            return true;
        }
        const std::optional<AcGePoint3d> point = pointIn(item, std::nullopt);
        if (!point) {
            return false;
        }
        pick.point = *point;
        pick.entity = entityAt(ucsToWorld(*point), pickAperture());
        setLastPoint(*point);
        missed = pick.entity.isNull();
        return true;
    };
    const int code = askValue(init, question);
    if (code == RTNONE || missed) {
        setErrno(missed ? missedPick : nullAnswer);
        return RTERROR;
    }
    return code;
}

/// Axes and origin of a transform as rows.
void setRows(const AcGeMatrix3d& matrix, ads_point rows[4]) {
    for (int row = 0; row < 4; ++row) {
        for (int i = 0; i < 3; ++i) {
            rows[row][i] = matrix.entry[i][row];
        }
    }
}

int nestedPick(const ACHAR* prompt, ads_name entity, ads_point point, bool pick, AcGeMatrix3d& transform,
               resbuf** containers) {
    EntityPick top;
    if (containers != nullptr) {
        *containers = nullptr;
    }
    if (pick) {
        if (const int code = pickEntity(prompt, top); code != RTNORM) {
            return code;
        }
        setPoint(point, top.point);
    } else {
        top.point = asPoint3d(point);
    }
    const std::optional<NestedPick> nested = nestedEntityAt(ucsToWorld(top.point), pickAperture());
    if (!nested) {
        if (top.entity.isNull()) {
            setErrno(missedPick);
            return RTERROR;
        }
        transform.setToIdentity();
        ads_name picked;
        acdbGetAdsName(picked, top.entity);
        ads_name_set(picked, entity);
        return RTNORM;
    }
    ads_name name;
    acdbGetAdsName(name, nested->entity);
    ads_name_set(name, entity);
    transform = nested->toWorld;
    if (containers != nullptr && !nested->containers.empty()) {
        ResbufBuilder builder;
        for (const AcDbObjectId id : nested->containers) {
            acdbGetAdsName(name, id);
            builder.name(RTENAME, name);
        }
        *containers = builder.release().release();
    }
    return RTNORM;
}

AcDbObjectId entityOf(const ads_name name) {
    AcDbObjectId id;
    return name != nullptr && pickSetOf(name) == nullptr && acdbGetObjectId(id, name) == Acad::eOk
               ? id
               : AcDbObjectId();
}

bool isNil(const ads_name name) {
    return name == nullptr || ads_name_nil(name);
}

} // namespace
} // namespace host

int acedEntSel(const ACHAR* prompt, ads_name entity, ads_point point) {
    host::EntityPick pick;
    const int code = host::pickEntity(prompt, pick);
    if (code == RTNORM) {
        ads_name name;
        acdbGetAdsName(name, pick.entity);
        ads_name_set(name, entity);
        host::setPoint(point, pick.point);
    }
    return code;
}

int acedNEntSel(const ACHAR* prompt, ads_name entity, ads_point point, ads_point transform[4],
                resbuf** containers) {
    AcGeMatrix3d matrix;
    const int code = host::nestedPick(prompt, entity, point, true, matrix, containers);
    if (code == RTNORM && transform != nullptr) {
        host::setRows(matrix, transform);
    }
    return code;
}

int acedNEntSelP(const ACHAR* prompt, ads_name entity, ads_point point, int pick, ads_matrix transform,
                 resbuf** containers) {
    AcGeMatrix3d matrix;
    const int code = host::nestedPick(prompt, entity, point, pick != 0, matrix, containers);
    if (code == RTNORM && transform != nullptr) {
        for (int row = 0; row < 4; ++row) {
            std::copy_n(matrix.entry[row], 4, transform[row]);
        }
    }
    return code;
}

int acedSSGet(const ACHAR* options, const void* first, const void* second, const resbuf* filterList,
              ads_name set) {
    ads_name_clear(set);
    const host::SelectionFilter filter(filterList);
    if (!filter.isValid() || curDoc() == nullptr) {
        return RTERROR;
    }
    const host::SsgetOptions parsed(options != nullptr ? options : L"");
    if (const auto found = host::selectDirectly(parsed, first, second)) {
        if (parsed.way == L"I") {
            host::impliedSelection().clear();
        }
        host::PickSet result = host::filtered(*found, filter);
        return host::finishSet(std::move(result), set, parsed.way != L"X");
    }
    return host::selectByDialogue(parsed, first, filter, set);
}

int acedSSAdd(const ads_name entity, const ads_name set, ads_name result) {
    if (host::isNil(entity)) {
        host::makePickSetName({}, result);
        return RTNORM;
    }
    const AcDbObjectId id = host::entityOf(entity);
    if (host::peek<AcDbEntity>(id) == nullptr) {
        return RTERROR;
    }
    if (host::isNil(set)) {
        host::PickSet made;
        made.add(id);
        host::makePickSetName(std::move(made), result);
        return RTNORM;
    }
    host::PickSet* existing = host::pickSetOf(set);
    if (existing == nullptr) {
        return RTERROR;
    }
    existing->add(id);
    if (result != nullptr && result != set) {
        ads_name_set(set, result);
    }
    return RTNORM;
}

int acedSSDel(const ads_name entity, const ads_name set) {
    host::PickSet* existing = host::pickSetOf(set);
    return existing != nullptr && existing->remove(host::entityOf(entity)) ? RTNORM : RTERROR;
}

int acedSSMemb(const ads_name entity, const ads_name set) {
    const host::PickSet* existing = host::pickSetOf(set);
    return existing != nullptr && existing->contains(host::entityOf(entity)) ? RTNORM : RTERROR;
}

int acedSSLength(const ads_name set, Adesk::Int32* length) {
    const host::PickSet* existing = host::pickSetOf(set);
    if (existing == nullptr || length == nullptr) {
        return RTERROR;
    }
    *length = static_cast<Adesk::Int32>(existing->size());
    return RTNORM;
}

int acedSSName(const ads_name set, int index, ads_name entity) {
    const host::PickSet* existing = host::pickSetOf(set);
    if (existing == nullptr || index < 0 || static_cast<std::size_t>(index) >= existing->size()) {
        return RTERROR;
    }
    ads_name name;
    acdbGetAdsName(name, existing->ids[static_cast<std::size_t>(index)]);
    ads_name_set(name, entity);
    return RTNORM;
}

namespace host {
namespace {

/// A point on a line of sight (0: endless both ways).
void appendSightPoint(ResbufBuilder& builder, const AcGePoint3d& point) {
    builder.mark(RTLB).integer(RTSHORT, 0).point(RT3DPOINT, point.x, point.y, point.z).mark(RTLE);
}

/// The polygons that entities were selected by, numbered from -1 downwards.
class PolygonNumbers {
public:
    int of(const SelectedBy* how) {
        const auto found = std::find(mSeen.begin(), mSeen.end(), how);
        if (found != mSeen.end()) {
            return -1 - static_cast<int>(found - mSeen.begin());
        }
        mSeen.push_back(how);
        return -static_cast<int>(mSeen.size());
    }
    void append(ResbufBuilder& builder) const {
        for (std::size_t i = 0; i < mSeen.size(); ++i) {
            builder.mark(RTLB).integer(RTSHORT, -1 - static_cast<int>(i));
            for (const AcGePoint3d& point : mSeen[i]->points) {
                appendSightPoint(builder, point);
            }
            builder.mark(RTLE);
        }
    }

private:
    std::vector<const SelectedBy*> mSeen;
};

/// (method name marker ...): behind a pick its point, behind a window the number of its polygon, behind a
/// fence its points.
void appendSelected(ResbufBuilder& builder, const PickSet& set, AcDbObjectId id, PolygonNumbers& polygons) {
    const std::shared_ptr<const SelectedBy> how = set.selectedBy(id);
    const SelectedBy::Method method = how != nullptr ? how->method : SelectedBy::Method::other;
    ads_name name;
    acdbGetAdsName(name, id);
    builder.mark(RTLB).integer(RTSHORT, static_cast<int>(method)).name(RTENAME, name).integer(RTSHORT, 0);
    switch (method) {
    case SelectedBy::Method::other:
        break;
    case SelectedBy::Method::pick:
    case SelectedBy::Method::fence:
        for (const AcGePoint3d& point : how->points) {
            appendSightPoint(builder, point);
        }
        break;
    case SelectedBy::Method::window:
    case SelectedBy::Method::crossing:
        builder.integer(RTSHORT, polygons.of(how.get()));
        break;
    }
    builder.mark(RTLE);
}

} // namespace
} // namespace host

int acedSSNameX(resbuf** result, const ads_name set, int index) {
    const host::PickSet* existing = host::pickSetOf(set);
    if (result == nullptr || existing == nullptr || index >= static_cast<int>(existing->size())) {
        return RTERROR;
    }
    host::ResbufBuilder builder;
    host::PolygonNumbers polygons;
    const std::size_t first = index < 0 ? 0 : static_cast<std::size_t>(index);
    const std::size_t end = index < 0 ? existing->size() : first + 1;
    for (std::size_t i = first; i < end; ++i) {
        host::appendSelected(builder, *existing, existing->ids[i], polygons);
    }
    polygons.append(builder);
    *result = builder.release().release();
    return *result != nullptr ? RTNORM : RTERROR;
}

int acedSSFree(const ads_name set) {
    return host::freePickSet(set) ? RTNORM : RTERROR;
}

int acedSSSetFirst(const ads_name, const ads_name pickFirst) {
    if (curDoc() == nullptr) {
        return RTERROR;
    }
    const host::PickSet* chosen = host::pickSetOf(pickFirst);
    host::impliedSelection() = chosen != nullptr ? *chosen : host::PickSet();
    acedEditor->notify([](AcEditorReactor& reactor) { reactor.pickfirstModified(); });
    return RTNORM;
}

int acedSSGetFirst(resbuf** grips, resbuf** pickFirst) {
    const auto name = [](resbuf** result, const host::PickSet& set) {
        if (result == nullptr) {
            return;
        }
        if (set.empty()) {
            *result = acutNewRb(RTNIL);
            return;
        }
        *result = acutNewRb(RTPICKS);
        host::makePickSetName(set, (*result)->resval.rlname);
    };
    name(grips, {});
    name(pickFirst, host::impliedSelection());
    return RTNORM;
}

Acad::ErrorStatus acedGetCurrentSelectionSet(AcDbObjectIdArray& ids) {
    ids.setLogicalLength(0);
    for (const AcDbObjectId id : host::impliedSelection().ids) {
        ids.append(id);
    }
    return Acad::eOk;
}
