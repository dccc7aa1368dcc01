// The dialogue in which entities are selected.
#include "host/db/dbents.h"
#include "host/ed/acdocman.h"
#include "host/ed/aced.h"
#include "host/ed/console.h"
#include "host/ed/documentstate.h"
#include "host/ed/editorview.h"
#include "host/ed/entitylist.h"
#include "host/ed/question.h"
#include "host/ed/runcontext.h"
#include "host/ed/selection.h"
#include "host/ed/sysvars.h"
#include "host/rx/format.h"
#include "host/rx/text.h"

#include <algorithm>

namespace host {
namespace {

/// What may be typed while selecting, in the order of the enumeration.
enum class Way {
    window,
    last,
    crossing,
    box,
    all,
    fence,
    windowPolygon,
    crossingPolygon,
    add,
    remove,
    multiple,
    previous,
    undo,
    automatic,
    single,
    group,
};

const KeywordList& wayWords() {
    static const KeywordList words(
        L"Window Last Crossing BOX ALL Fence WPolygon CPolygon Add Remove Multiple "
        L"Previous Undo AUto SIngle Group");
    return words;
}

bool onLockedLayer(const AcDbEntity& entity) {
    const auto* layer = peek<AcDbLayerTableRecord>(entity.layerId());
    return layer != nullptr && layer->isLocked();
}

std::vector<AcDbObjectId> everythingSelectable() {
    std::vector<AcDbObjectId> ids;
    const AcDbDatabase* database = acdbCurDwg();
    const auto* block =
        database != nullptr ? peek<AcDbBlockTableRecord>(database->currentSpaceId()) : nullptr;
    if (block != nullptr) {
        for (AcDbStub* stub : block->entities()) {
            const auto* entity = peek<AcDbEntity>(AcDbObjectId(stub));
            const auto* layer = entity != nullptr ? peek<AcDbLayerTableRecord>(entity->layerId()) : nullptr;
            if (entity != nullptr && (layer == nullptr || (!layer->isFrozen() && !layer->isLocked()))) {
                ids.emplace_back(stub);
            }
        }
    }
    return ids;
}

/// One run of the dialogue.
class Selecting {
public:
    Selecting(const SelectOptions& options, const SelectionFilter& filter, PickSet& result, InitGet init)
        : mOptions(options), mFilter(filter), mResult(result), mInit(std::move(init)) {}
    ~Selecting() { editorView().highlight(mShown, false); }
    Selecting(const Selecting&) = delete;
    Selecting& operator=(const Selecting&) = delete;

    int run() {
        if (mOptions.useImplied && takeImplied()) {
            return finish();
        }
        while (!mDone) {
            const InputItem item = ask();
            if (item.isCancel()) {
                return RTCAN;
            }
            if (item.isEnter()) {
                break;
            }
            if (item.kind == InputItem::Kind::text) {
                if (const std::optional<std::wstring> keyword = mInit.keywords.matchGlobal(item.text)) {
                    lastInput() = *keyword;
                    return RTKWORD;
                }
            }
            if (!take(item)) {
                refuse(L"*无效选择*");
                refuse(L"需要点或窗口(W)/上一个(L)/窗交(C)/框(BOX)/全部(ALL)/栏选(F)/圈围(WP)/圈交(CP)/"
                       L"编组(G)/添加(A)/删除(R)/多个(M)/前一个(P)/放弃(U)/自动(AU)/单个(SI)");
            }
        }
        return finish();
    }

private:
    /// What one answer changed, for taking it back.
    struct Step {
        bool removed;
        std::vector<AcDbObjectId> ids;
    };

    InputItem ask() {
        AskOptions options;
        options.wantsPoint = true;
        options.picksObjects = true;
        const std::wstring& prompt = mRemoving ? mOptions.removePrompt : mOptions.addPrompt;
        if (!prompt.starts_with(L'\n')) {
            console().freshLine(); // a program's own prompt must not run on behind the count of the last pick
        }
        return inputStream().ask(prompt, options);
    }

    bool takeImplied() {
        PickSet& implied = impliedSelection();
        if (implied.empty()) {
            return false;
        }
        const std::vector<AcDbObjectId> ids = implied.ids;
        implied.clear();
        change(ids);
        return !mResult.empty();
    }

    int finish() {
        if (mResult.empty()) {
            return RTNONE;
        }
        previousSelection() = mResult;
        return RTNORM;
    }

    bool take(const InputItem& item) {
        if (item.kind == InputItem::Kind::value && item.value != nullptr) {
            if (takeValue(*item.value)) {
                return true;
            }
        }
        if (const std::optional<AcGePoint3d> point = pointIn(item, std::nullopt)) {
            pick(*point);
            return true;
        }
        if (item.kind != InputItem::Kind::text) {
            return false;
        }
        const std::optional<std::size_t> way = wayWords().match(item.text);
        return way && takeWay(static_cast<Way>(*way));
    }

    /// Entities and selection sets given by programs, also a list of an entity and a point.
    bool takeValue(const resbuf& value) {
        const resbuf* first = value.restype == RTLB ? value.rbnext : &value;
        if (first == nullptr) {
            return false;
        }
        if (first->restype == RTENAME) {
            AcDbObjectId id;
            if (acdbGetObjectId(id, first->resval.rlname) != Acad::eOk || peek<AcDbEntity>(id) == nullptr) {
                return false;
            }
            change({id});
            return true;
        }
        if (first->restype == RTPICKS) {
            const PickSet* set = pickSetOf(first->resval.rlname);
            if (set == nullptr) {
                return false;
            }
            change(std::vector(set->ids));
            return true;
        }
        return false;
    }

    /// A point on an entity, or the first corner of a window from the left, or of a crossing from the right.
    void pick(const AcGePoint3d& point) {
        const AcGePoint3d world = ucsToWorld(point);
        const double aperture = pickAperture();
        std::vector<AcDbObjectId> found;
        if (mOptions.everythingInBox) {
            found = entitiesAt(world, aperture);
        } else if (const AcDbObjectId id = entityAt(world, aperture); !id.isNull()) {
            found = {id};
        }
        setLastPoint(point);
        if (!found.empty() || mSingle || mOptions.everythingInBox ||
            systemVariableInteger(L"PICKAUTO") == 0) {
            addGroupMembers(found);
            change(found, selectedByPick(point));
            return;
        }
        AcGePoint3d corner;
        if (askCorner({}, L"\n指定对角点: ", point, Aim::Band::selection, corner) == RTNORM) {
            changeByShape(corner.x >= point.x ? SelectionShape::Kind::window : SelectionShape::Kind::crossing,
                          rectangleCorners(point, corner));
        }
    }

    void changeByShape(SelectionShape::Kind kind, const std::vector<AcGePoint3d>& points) {
        std::vector<AcDbObjectId> found = entitiesIn(SelectionShape::through(kind, points));
        addGroupMembers(found);
        change(std::move(found), selectedBy(kind, points));
    }

    bool byGroup() {
        AcString name;
        if (acedGetString(1, L"\n输入编组名: ", name) != RTNORM || name.isEmpty()) {
            return true;
        }
        if (const auto members = groupMembers(trim(name.kwszPtr()))) {
            change(*members);
        } else {
            refuse(L"无效的编组名。");
        }
        return true;
    }

    bool takeWay(Way way) {
        switch (way) {
        case Way::window:
            return byCorners(SelectionShape::Kind::window);
        case Way::crossing:
            return byCorners(SelectionShape::Kind::crossing);
        case Way::box:
            return byCorners(std::nullopt);
        case Way::last:
            lastVisible();
            return true;
        case Way::all:
            change(everythingSelectable());
            return true;
        case Way::fence:
            return byPoints(SelectionShape::Kind::fence);
        case Way::windowPolygon:
            return byPoints(SelectionShape::Kind::window);
        case Way::crossingPolygon:
            return byPoints(SelectionShape::Kind::crossing);
        case Way::previous:
            previous();
            return true;
        case Way::undo:
            undo();
            return true;
        case Way::add:
        case Way::remove:
            mRemoving = way == Way::remove;
            return true;
        case Way::single:
            mSingle = true;
            return true;
        case Way::group:
            return byGroup();
        case Way::multiple:
        case Way::automatic:
            mSingle = false;
            return true;
        }
        return false;
    }

    bool byCorners(std::optional<SelectionShape::Kind> kind) {
        AcGePoint3d first;
        AcGePoint3d second;
        InitGet init;
        init.flags = RSG_NONULL;
        if (askPoint(init, L"\n指定第一个角点: ", std::nullopt, first) == RTNORM &&
            askCorner(init, L"\n指定对角点: ", first, Aim::Band::selection, second) == RTNORM) {
            const auto fromLeft =
                second.x >= first.x ? SelectionShape::Kind::window : SelectionShape::Kind::crossing;
            changeByShape(kind.value_or(fromLeft), rectangleCorners(first, second));
        }
        return true;
    }

    bool byPoints(SelectionShape::Kind kind) {
        std::vector<AcGePoint3d> points;
        const bool fence = kind == SelectionShape::Kind::fence;
        std::optional<AcGePoint3d> last;
        for (;;) {
            const std::wstring prompt = !last ? (fence ? L"\n指定第一个栏选点: " : L"\n第一个圈围点: ")
                                        : fence ? L"\n指定下一个栏选点或 [放弃(U)]: "
                                                : L"\n指定直线的端点或 [放弃(U)]: ";
            InitGet init;
            init.keywords = KeywordList(L"Undo");
            AcGePoint3d point;
            const int code = askPoint(init, prompt, last, point);
            if (code == RTKWORD) {
                if (!points.empty()) {
                    points.pop_back();
                    last = points.empty() ? std::nullopt : std::optional(points.back());
                }
                continue;
            }
            if (code != RTNORM) {
                break;
            }
            points.push_back(point);
            last = point;
        }
        changeByShape(kind, points);
        return true;
    }

    void lastVisible() {
        const AcDbDatabase* database = acdbCurDwg();
        const auto* block =
            database != nullptr ? peek<AcDbBlockTableRecord>(database->currentSpaceId()) : nullptr;
        if (block == nullptr) {
            return;
        }
        const auto& entities = block->entities();
        const auto found = std::find_if(entities.rbegin(), entities.rend(), [](AcDbStub* stub) {
            const auto* entity = peek<AcDbEntity>(AcDbObjectId(stub));
            return entity != nullptr && isSelectable(*entity);
        });
        change(found != entities.rend() ? std::vector<AcDbObjectId>{AcDbObjectId(*found)}
                                        : std::vector<AcDbObjectId>{});
    }

    void previous() {
        if (previousSelection().empty()) {
            refuse(L"没有前一个选择集。");
            return;
        }
        change(std::vector(previousSelection().ids));
    }

    void undo() {
        if (mSteps.empty()) {
            refuse(L"没有可放弃的选择。");
            return;
        }
        const Step step = std::move(mSteps.back());
        mSteps.pop_back();
        if (step.removed) {
            for (const AcDbObjectId id : step.ids) {
                mResult.add(id);
            }
        } else {
            mResult.removeAll(step.ids);
        }
        highlight(step.ids, step.removed);
    }

    void highlight(const std::vector<AcDbObjectId>& ids, bool on) {
        editorView().highlight(ids, on);
        if (on) {
            mShown.insert(mShown.end(), ids.begin(), ids.end());
        }
    }

    /// Adds or removes what was found, with the counts that the user is told.
    void change(std::vector<AcDbObjectId> found, const std::shared_ptr<const SelectedBy>& how = nullptr) {
        std::size_t locked = 0;
        std::erase_if(found, [&](AcDbObjectId id) {
            auto* entity = peek<AcDbEntity>(id);
            if (entity == nullptr || !mFilter.accepts(*entity)) {
                return true;
            }
            if (mOptions.rejectLocked && onLockedLayer(*entity)) {
                ++locked;
                return true;
            }
            return false;
        });
        const std::size_t before = mResult.size();
        std::size_t repeated = 0;
        Step step{mRemoving, {}};
        if (mRemoving) {
            std::copy_if(found.begin(), found.end(), std::back_inserter(step.ids),
                         [&](AcDbObjectId id) { return mResult.contains(id); });
            mResult.removeAll(step.ids);
        } else {
            found = afterReactors(std::move(found));
            for (const AcDbObjectId id : found) {
                if (mResult.add(id, how)) {
                    step.ids.push_back(id);
                } else {
                    ++repeated;
                }
            }
        }
        highlight(step.ids, !mRemoving);
        mSteps.push_back(std::move(step));
        tell(found.size(), repeated, before, locked);
        mDone = mOptions.single || (mSingle && !mResult.empty());
    }

    std::vector<AcDbObjectId> afterReactors(std::vector<AcDbObjectId> found) const {
        AcApDocument* document = curDoc();
        if (document == nullptr || document->state().selectionFilters.empty()) {
            return found;
        }
        AcDbObjectIdArray set;
        for (const AcDbObjectId id : mResult.ids) {
            set.append(id);
        }
        for (AcEdSSGetFilter* filter : std::vector(document->state().selectionFilters)) {
            AcDbObjectIdArray subset;
            for (const AcDbObjectId id : found) {
                subset.append(id);
            }
            AcEdSelectionSetService service(subset);
            filter->ssgetAddFilter(0, service, set, subset);
            std::vector<AcDbObjectId> kept;
            for (std::size_t i = 0; i < found.size(); ++i) {
                if (!service.isRemoved(static_cast<int>(i))) {
                    kept.push_back(found[i]);
                }
            }
            found = std::move(kept);
        }
        return found;
    }

    void tell(std::size_t found, std::size_t repeated, std::size_t before, std::size_t locked) const {
        if (mOptions.silent) {
            return;
        }
        std::wstring line = formatted(L"找到 %zu 个", found);
        if (mRemoving) {
            line += formatted(L"，删除 %zu 个", before - mResult.size());
        } else if (repeated > 0) {
            line += formatted(L" (%zu 个重复)", repeated);
        }
        if (before > 0) {
            line += formatted(L"，总计 %zu 个", mResult.size());
        }
        refuse(line);
        if (locked > 0) {
            refuse(formatted(L"%zu 个在锁定的图层上。", locked));
        }
    }

    const SelectOptions& mOptions;
    const SelectionFilter& mFilter;
    PickSet& mResult;
    InitGet mInit;
    std::vector<Step> mSteps;
    std::vector<AcDbObjectId> mShown; ///< as selected
    bool mRemoving = false;
    bool mSingle = false;
    bool mDone = false;
};

} // namespace

int selectEntities(const SelectOptions& options, const SelectionFilter& filter, PickSet& result) {
    return Selecting(options, filter, result, takeInitGet()).run();
}

} // namespace host
