// PEDIT: changes one polyline or many: joins, widths, fitting, vertices.
#include "host/commands/ask.h"
#include "host/commands/edit/editing.h"
#include "host/commands/edit/editpolyline.h"
#include "host/commands/edit/pathjoin.h"
#include "host/commands/pedit3d.h"
#include "host/commands/peditvertex.h"
#include "host/commands/registry.h"
#include "host/db/entities/transforms.h"

#include <algorithm>
#include <cmath>
#include <unordered_set>

namespace host {
namespace {

bool isPolyline(const AcDbEntity& entity) {
    return AcDbPolyline::cast(&entity) != nullptr || AcDb2dPolyline::cast(&entity) != nullptr;
}

bool canBecomePolyline(const AcDbEntity& entity) {
    return AcDbLine::cast(&entity) != nullptr || AcDbArc::cast(&entity) != nullptr;
}

const wchar_t* refuseUnlessEditable(const AcDbEntity& entity) {
    if (isOnLockedLayer(entity)) {
        return L"该对象在锁定的图层上。";
    }
    return isPolyline(entity) || canBecomePolyline(entity) ? nullptr : L"选定的对象不是多段线。";
}

/// One in space is edited alone.
const wchar_t* refuseUnlessPickable(const AcDbEntity& entity) {
    const bool inSpace = AcDb3dPolyline::cast(&entity) != nullptr && !isOnLockedLayer(entity);
    return inSpace ? nullptr : refuseUnlessEditable(entity);
}

/// Puts a polyline of the kind that PLINETYPE asks for in the place of a line or an arc. False when the line
/// does not lie in a plane parallel to the UCS.
bool turnIntoPolyline(AcDbObjectId id) {
    const auto* entity = peek<AcDbEntity>(id);
    std::unique_ptr<AcDbEntity> made;
    {
        const ReadAccess access(*entity);
        const auto* arc = AcDbArc::cast(entity);
        const std::optional<FlatPath> flat =
            flatPathIn(*entity, arc != nullptr ? arc->normal() : ucsNormal());
        if (!flat) {
            return false;
        }
        const auto fill = [&](auto polyline) {
            polyline->setNormal(flat->normal);
            polyline->setElevation(flat->elevation);
            polyline->setShape(flat->shape);
            made = std::move(polyline);
        };
        if (systemVariableInteger(L"PLINETYPE") == 0) {
            fill(newLike<AcDb2dPolyline>(*entity));
        } else {
            fill(newLike<AcDbPolyline>(*entity));
        }
    }
    return replaceEntity(id, std::move(made));
}

class Editing {
public:
    void run();

private:
    struct Saved {
        AcDbObjectId id;
        EditPolyline before;
    };
    /// What one option changed, for taking it back.
    struct Step {
        std::vector<Saved> changed;
        std::vector<AcDbObjectId> erased;
        std::vector<AcDbObjectId> appended;
    };

    bool askTargets();
    bool addTargets(const AcDbObjectIdArray& ids, bool one);
    bool options();
    bool act(const Answer& answer);
    template <class Change>
    void changeAll(Change&& change);
    void changeOne(AcDbObjectId id, const EditPolyline& polyline);
    bool setWidth();
    bool setGeneration();
    bool joinOne();
    bool joinMany();
    bool askJoinOptions(JoinOptions& options) const;
    void joinAll(const JoinOptions& options);
    void joinOnto(AcDbObjectId base, const AcDbObjectIdArray& others);
    bool vertices();
    void undo();
    void store(AcDbObjectId id, const EditPolyline& polyline) {
        storePolyline(id, polyline, mLight.count(id.stub()) > 0);
    }
    EditPolyline loaded(AcDbObjectId id) const;

    std::vector<AcDbObjectId> mTargets;
    std::unordered_set<AcDbStub*> mLight; ///< polylines that are light when they are not fitted
    bool mMultiple = false;
    std::vector<Step> mSteps;
    Step mStep; ///< being made
};

EditPolyline Editing::loaded(AcDbObjectId id) const {
    const auto* entity = peek<AcDbEntity>(id);
    const ReadAccess access(*entity);
    EditPolyline polyline = *loadPolyline(*entity);
    polyline.splineSegments = systemVariableInteger(L"SPLINESEGS");
    return polyline;
}

bool Editing::askTargets() {
    const EntityAnswer picked = askEntity(L"\n选择多段线或 [多条(M)]: ", L"Multiple", refuseUnlessPickable);
    if (picked.isKeyword(L"Multiple")) {
        mMultiple = true;
        const Selection selection = Selection::askWith(L"\n选择对象: ", true);
        return addTargets(selection.ids(), false);
    }
    if (!picked.isValue()) {
        return false;
    }
    if (peek<AcDb3dPolyline>(picked.id) != nullptr) {
        edit3dPolyline(picked.id);
        return false;
    }
    AcDbObjectIdArray ids = picked.set;
    if (ids.isEmpty()) {
        ids.append(picked.id);
    }
    return addTargets(ids, ids.length() == 1);
}

/// Lines and arcs are turned into polylines when the user agrees.
bool Editing::addTargets(const AcDbObjectIdArray& ids, bool one) {
    std::vector<AcDbObjectId> plain;
    for (const AcDbObjectId id : ids) {
        const auto* entity = peek<AcDbEntity>(id);
        if (entity == nullptr || refuseUnlessEditable(*entity) != nullptr) {
            continue;
        }
        (isPolyline(*entity) ? mTargets : plain).push_back(id);
    }
    if (!plain.empty()) {
        std::optional<bool> turns = true;
        if (systemVariableInteger(L"PEDITACCEPT") == 0) {
            turns = askYesNo(one ? L"\n选定的对象不是多段线。\n是否将其转换为多段线?"
                                 : L"\n是否将直线和圆弧转换为多段线?",
                             true);
        }
        if (!turns) {
            return false;
        }
        for (const AcDbObjectId id : *turns ? plain : std::vector<AcDbObjectId>()) {
            if (turnIntoPolyline(id)) {
                mTargets.push_back(id);
            } else {
                acutPrintf(L"\n对象不在与 UCS 平行的平面内，无法转换。");
            }
        }
    }
    for (const AcDbObjectId id : mTargets) {
        const auto* heavy = peek<AcDb2dPolyline>(id);
        const bool fitted = heavy != nullptr && [&] {
            const ReadAccess access(*heavy);
            return heavy->polyType() != AcDb::k2dSimplePoly;
        }();
        if (heavy == nullptr || (fitted && systemVariableInteger(L"PLINETYPE") == 2)) {
            mLight.insert(id.stub());
        }
    }
    return !mTargets.empty();
}

void Editing::run() {
    if (askTargets()) {
        while (options()) {
        }
    }
}

bool Editing::options() {
    const bool closed = mTargets.size() == 1 && loaded(mTargets.front()).closed;
    std::wstring prompt = L"\n输入选项 [";
    std::wstring keywords = L"Join Width Fit Spline Decurve Ltype Reverse Undo eXit ";
    if (mTargets.size() > 1) {
        prompt += L"闭合(C)/打开(O)/";
        keywords += L"Close Open";
    } else {
        prompt += closed ? L"打开(O)/" : L"闭合(C)/";
        keywords += closed ? L"Open Edit" : L"Close Edit";
    }
    prompt += L"合并(J)/宽度(W)/";
    prompt += mTargets.size() > 1 ? L"" : L"编辑顶点(E)/";
    prompt += L"拟合(F)/样条曲线(S)/非曲线化(D)/线型生成(L)/反转(R)/放弃(U)]: ";
    const Answer answer = askKeyword(prompt, keywords.c_str());
    if (answer.kind != Answer::Kind::keyword || answer.isKeyword(L"eXit")) {
        return false;
    }
    return act(answer);
}

bool Editing::act(const Answer& answer) {
    if (answer.isKeyword(L"Undo")) {
        undo();
        return true;
    }
    mStep = {};
    bool goesOn = true;
    if (answer.isKeyword(L"Close") || answer.isKeyword(L"Open")) {
        const bool closes = answer.isKeyword(L"Close");
        changeAll([&](EditPolyline& polyline) { polyline.closed = closes; });
    } else if (answer.isKeyword(L"Fit")) {
        changeAll([](EditPolyline& polyline) { polyline.fit = AcDb::k2dFitCurvePoly; });
    } else if (answer.isKeyword(L"Spline")) {
        const auto type =
            systemVariableInteger(L"SPLINETYPE") == 5 ? AcDb::k2dQuadSplinePoly : AcDb::k2dCubicSplinePoly;
        changeAll([&](EditPolyline& polyline) { polyline.fit = type; });
    } else if (answer.isKeyword(L"Decurve")) {
        changeAll([](EditPolyline& polyline) { polyline.decurve(); });
    } else if (answer.isKeyword(L"Reverse")) {
        changeAll([](EditPolyline& polyline) { polyline.reverse(); });
    } else if (answer.isKeyword(L"Width")) {
        goesOn = setWidth();
    } else if (answer.isKeyword(L"Ltype")) {
        goesOn = setGeneration();
    } else if (answer.isKeyword(L"Join")) {
        goesOn = mMultiple ? joinMany() : joinOne();
    } else if (answer.isKeyword(L"Edit")) {
        goesOn = vertices();
    }
    if (!mStep.changed.empty()) {
        mSteps.push_back(std::move(mStep));
    }
    return goesOn;
}

template <class Change>
void Editing::changeAll(Change&& change) {
    for (const AcDbObjectId id : mTargets) {
        EditPolyline polyline = loaded(id);
        mStep.changed.push_back({id, polyline});
        change(polyline);
        store(id, polyline);
    }
}

void Editing::changeOne(AcDbObjectId id, const EditPolyline& polyline) {
    mStep.changed.push_back({id, loaded(id)});
    store(id, polyline);
}

bool Editing::setWidth() {
    const RealAnswer width =
        askDistance(L"\n指定所有线段的新宽度: ", nullptr, nullptr, RSG_NONULL | RSG_NONEG);
    if (width.isValue()) {
        changeAll([&](EditPolyline& polyline) { polyline.setWidth(width.value); });
    }
    return width.isValue();
}

bool Editing::setGeneration() {
    const bool on = loaded(mTargets.front()).linetypeGeneration;
    const Answer answer =
        askKeyword(std::wstring(L"\n输入多段线线型生成选项 [开(ON)/关(OFF)] <") + (on ? L"ON>: " : L"OFF>: "),
                   L"ON OFF");
    if (answer.kind == Answer::Kind::keyword) {
        changeAll([&](EditPolyline& polyline) { polyline.linetypeGeneration = answer.isKeyword(L"ON"); });
    }
    return !answer.isCancelled();
}

/// What takes part in joining: a polyline's own vertices, but arcs that were fitted as they are.
std::optional<FlatPath> joinable(AcDbObjectId id, const AcGeVector3d& normal) {
    const auto* entity = peek<AcDbEntity>(id);
    if (entity == nullptr || refuseUnlessEditable(*entity) != nullptr) {
        return std::nullopt;
    }
    const ReadAccess access(*entity);
    std::optional<FlatPath> flat = flatPathIn(*entity, normal);
    const std::optional<EditPolyline> polyline = loadPolyline(*entity);
    if (flat && polyline && polyline->isSpline()) {
        flat->shape = polyline->path();
    }
    return flat;
}

bool Editing::joinOne() {
    const Selection selection = Selection::askWith(L"\n选择对象: ", true);
    AcDbObjectIdArray others = selection.ids();
    for (std::size_t i = 1; i < mTargets.size(); ++i) {
        others.append(mTargets[i]);
    }
    joinOnto(mTargets.front(), others);
    return true;
}

void Editing::joinOnto(AcDbObjectId base, const AcDbObjectIdArray& others) {
    const std::optional<FlatPath> own = [&] {
        const auto* entity = peek<AcDbEntity>(base);
        const ReadAccess access(*entity);
        return joinable(base, flatPathOf(*entity)->normal);
    }();
    if (own->shape.path.closed) {
        acutPrintf(L"\n闭合的多段线不能合并。");
        return;
    }
    std::vector<AcDbObjectId> ids{base};
    std::vector<WidePath> paths{own->shape};
    std::unordered_set<AcDbStub*> known{base.stub()};
    for (const AcDbObjectId id : others) {
        const std::optional<FlatPath> flat = joinable(id, own->normal);
        if (!flat || std::fabs(flat->elevation - own->elevation) > 1e-8 * (1.0 + std::fabs(own->elevation)) ||
            !known.insert(id.stub()).second) {
            continue;
        }
        ids.push_back(id);
        paths.push_back(flat->shape);
    }
    std::vector<int> segments;
    std::transform(paths.begin(), paths.end(), std::back_inserter(segments),
                   [](const WidePath& path) { return path.path.segmentCount(); });
    const JoinedPath joined = growPath(std::move(paths), {});
    int added = 0;
    EditPolyline polyline = loaded(base);
    polyline.fit = AcDb::k2dSimplePoly;
    polyline.setPath(joined.shape);
    if (joined.sources.size() > 1) {
        changeOne(base, polyline);
        for (const std::size_t source : joined.sources) {
            if (source != 0 && eraseEntity(ids[source])) {
                added += segments[source];
                mStep.erased.push_back(ids[source]);
            }
        }
        std::erase_if(mTargets, [](AcDbObjectId id) { return id.isErased(); });
    }
    acutPrintf(L"\n已将 %d 条线段添加到多段线", added);
}

bool Editing::askJoinOptions(JoinOptions& options) const {
    constexpr std::pair<const wchar_t*, JoinType> types[] = {
        {L"Extend", JoinType::extend}, {L"Add", JoinType::add}, {L"Both", JoinType::both}};
    constexpr const wchar_t* names[] = {L"延伸", L"添加", L"两者都"};
    for (;;) {
        const std::wstring current = names[static_cast<std::size_t>(options.type)];
        acutPrintf(L"\n合并类型 = %s", current.c_str());
        const RealAnswer fuzz =
            askDistance(L"\n输入模糊距离或 [合并类型(J)] <" + shown(options.fuzz) + L">: ", L"Jointype",
                        nullptr, RSG_NONEG);
        if (!fuzz.isKeyword(L"Jointype")) {
            options.fuzz = fuzz.isValue() ? fuzz.value : options.fuzz;
            return !fuzz.isCancelled();
        }
        const Answer type = askKeyword(L"\n输入合并类型 [延伸(E)/添加(A)/两者都(B)] <" + current + L">: ",
                                       L"Extend Add Both");
        if (type.isCancelled()) {
            return false;
        }
        for (const auto& [name, value] : types) {
            options.type = type.isKeyword(name) ? value : options.type;
        }
    }
}

bool Editing::joinMany() {
    JoinOptions options;
    if (!askJoinOptions(options)) {
        return false;
    }
    joinAll(options);
    return true;
}

/// All targets that lie in one plane are joined with each other.
void Editing::joinAll(const JoinOptions& options) {
    struct Plane {
        AcGeVector3d normal;
        double elevation = 0.0;
        std::vector<AcDbObjectId> ids;
        std::vector<WidePath> paths;
    };
    std::vector<Plane> planes;
    for (const AcDbObjectId id : mTargets) {
        const auto* entity = peek<AcDbEntity>(id);
        const ReadAccess access(*entity);
        const FlatPath flat = *joinable(id, flatPathOf(*entity)->normal);
        auto plane = std::find_if(planes.begin(), planes.end(), [&](const Plane& known) {
            return known.normal.isEqualTo(flat.normal) &&
                   std::fabs(known.elevation - flat.elevation) <= 1e-8 * (1.0 + std::fabs(flat.elevation));
        });
        if (plane == planes.end()) {
            planes.push_back({flat.normal, flat.elevation, {}, {}});
            plane = std::prev(planes.end());
        }
        plane->ids.push_back(id);
        plane->paths.push_back(flat.shape);
    }
    int added = 0;
    for (Plane& plane : planes) {
        for (const JoinedPath& joined : joinPaths(std::move(plane.paths), options)) {
            const AcDbObjectId base = plane.ids[joined.sources.front()];
            EditPolyline polyline = loaded(base);
            if (joined.sources.size() == 1 && joined.shape.path.closed == polyline.closed) {
                continue;
            }
            polyline.fit = AcDb::k2dSimplePoly;
            polyline.setPath(joined.shape);
            changeOne(base, polyline);
            for (std::size_t i = 1; i < joined.sources.size(); ++i) {
                const AcDbObjectId id = plane.ids[joined.sources[i]];
                added += loaded(id).segmentCount();
                if (eraseEntity(id)) {
                    mStep.erased.push_back(id);
                }
            }
        }
    }
    std::erase_if(mTargets, [](AcDbObjectId id) { return id.isErased(); });
    acutPrintf(L"\n已将 %d 条线段添加到多段线", added);
}

bool Editing::vertices() {
    const AcDbObjectId id = mTargets.front();
    EditPolyline polyline = loaded(id);
    const FlatPath plane = [&] {
        const auto* entity = peek<AcDbEntity>(id);
        const ReadAccess access(*entity);
        return *flatPathOf(*entity);
    }();
    mStep.changed.push_back({id, polyline});
    VertexEditing editing{polyline, {}, {}, {}, {}};
    editing.toPlane = [&](const AcGePoint3d& point) { return plane.toPlane(point); };
    editing.toWorld = [&](const AcGePoint2d& point) { return plane.toWorld(point); };
    editing.changed = [&] { store(id, polyline); };
    editing.append = [&](const EditPolyline& tail) {
        const auto* entity = peek<AcDbEntity>(id);
        std::unique_ptr<AcDbEntity> copy = [&] {
            const ReadAccess access(*entity);
            return std::unique_ptr<AcDbEntity>(static_cast<AcDbEntity*>(entity->clone()));
        }();
        if (copy != nullptr) {
            const AcDbObjectId added = appendTo(entity->ownerId(), std::move(copy));
            storePolyline(added, tail, mLight.count(id.stub()) > 0);
            mStep.appended.push_back(added);
        }
    };
    return editVertices(editing);
}

void Editing::undo() {
    if (mSteps.empty()) {
        acutPrintf(L"\n命令已完全放弃。");
        return;
    }
    const Step step = std::move(mSteps.back());
    mSteps.pop_back();
    for (auto saved = step.changed.rbegin(); saved != step.changed.rend(); ++saved) {
        store(saved->id, saved->before);
    }
    for (const AcDbObjectId id : step.erased) {
        if (const Opened<AcDbEntity> entity(id, AcDb::kForWrite, true); entity) {
            entity->erase(false);
        }
        if (mMultiple) {
            mTargets.push_back(id);
        }
    }
    std::for_each(step.appended.begin(), step.appended.end(), eraseEntity);
}

void runPedit() {
    Editing().run();
}

constexpr CommandRow rows[] = {{L"PEDIT", L"多段线编辑", ACRX_CMD_MODAL, runPedit}};

} // namespace

std::span<const CommandRow> peditCommands() {
    return rows;
}

} // namespace host
