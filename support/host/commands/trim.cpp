// TRIM and EXTEND: curves are cut at edges, or lengthened to them.
#include "host/commands/ask.h"
#include "host/commands/edit/curvecutting.h"
#include "host/commands/edit/editing.h"
#include "host/commands/registry.h"

namespace host {
namespace {

/// One change, for taking it back.
struct Step {
    AcDbObjectId id;
    std::unique_ptr<AcDbEntity> before; ///< null: it was erased
    std::vector<AcDbObjectId> added;
};

class Cutting {
public:
    explicit Cutting(bool extends) : mExtends(extends) {}
    void run();

private:
    bool askEdges();
    bool askObject();
    bool byFence(bool rectangle);
    void act(AcDbObjectId id, const AcGePoint3d& pick);
    void trim(AcDbObjectId id, const AcGePoint3d& pick);
    void extend(AcDbObjectId id, const AcGePoint3d& pick);
    bool askEdgeMode();
    bool askProjection();
    bool eraseSome();
    void undo();
    template <class Visit>
    void forEachEdge(const AcDbCurve& curve, bool everywhere, Visit&& visit) const;
    bool extendsEdges() const { return systemVariableInteger(L"EDGEMODE") != 0; }
    AcGePlane view() const;

    bool mExtends;
    bool mAll = false; ///< everything is an edge
    std::vector<AcDbObjectId> mEdges;
    std::vector<Step> mSteps;
};

std::unique_ptr<AcDbEntity> copyOf(AcDbObjectId id) {
    const auto* entity = peek<AcDbEntity>(id);
    const ReadAccess access(*entity);
    return std::unique_ptr<AcDbEntity>(static_cast<AcDbEntity*>(entity->clone()));
}

/// PROJMODE 2, the view, is plan here.
AcGePlane Cutting::view() const {
    const bool world = systemVariableInteger(L"PROJMODE") == 2;
    return world ? AcGePlane(AcGePoint3d::kOrigin, AcGeVector3d::kZAxis)
                 : AcGePlane(ucsToWorld(AcGePoint3d::kOrigin), ucsNormal());
}

void Cutting::run() {
    constexpr const wchar_t* projections[] = {L"无", L"UCS", L"视图"};
    const int projection = std::clamp(systemVariableInteger(L"PROJMODE"), 0, 2);
    acutPrintf(L"\n当前设置: 投影=%s，边=%s\n%s", projections[projection], extendsEdges() ? L"延伸" : L"无",
               mExtends ? L"选择边界的边..." : L"选择剪切边...");
    if (!askEdges()) {
        return;
    }
    while (askObject()) {
    }
}

bool Cutting::askEdges() {
    const Selection selection = Selection::askWith(L"\n选择对象或 <全部选择>: ");
    if (selection.isCancelled()) {
        return false;
    }
    mAll = selection.empty();
    mEdges.assign(selection.ids().begin(), selection.ids().end());
    return true;
}

bool Cutting::askObject() {
    const std::wstring what =
        mExtends ? L"\n选择要延伸的对象，或\n[栏选(F)/窗交(C)/投影(P)/边(E)/放弃(U)]: "
                 : L"\n选择要修剪的对象，或\n[栏选(F)/窗交(C)/投影(P)/边(E)/删除(R)/放弃(U)]: ";
    const EntityAnswer picked = askEntity(what, mExtends ? L"Fence Crossing Project Edge Undo"
                                                         : L"Fence Crossing Project Edge eRase Undo");
    if (picked.isValue()) {
        act(picked.id, picked.world);
        return true;
    }
    if (picked.isKeyword(L"Fence") || picked.isKeyword(L"Crossing")) {
        return byFence(picked.isKeyword(L"Crossing"));
    }
    if (picked.isKeyword(L"Edge")) {
        return askEdgeMode();
    }
    if (picked.isKeyword(L"Project")) {
        return askProjection();
    }
    if (picked.isKeyword(L"eRase")) {
        return eraseSome();
    }
    if (picked.isKeyword(L"Undo")) {
        undo();
        return true;
    }
    return false;
}

/// Everything that a line through the points, or around the window, crosses is treated where it crosses.
bool Cutting::byFence(bool rectangle) {
    const PointAnswer first =
        askPoint(rectangle ? L"\n指定第一个角点: " : L"\n指定第一个栏选点: ", nullptr, nullptr, RSG_NONULL);
    if (!first.isValue()) {
        return false;
    }
    std::vector<AcGePoint3d> points{first.ucs};
    if (rectangle) {
        const PointAnswer corner = askPoint(L"\n指定对角点: ", nullptr, &first.ucs, RSG_NONULL);
        if (!corner.isValue()) {
            return false;
        }
        points = {first.ucs,
                  {corner.ucs.x, first.ucs.y, 0.0},
                  corner.ucs,
                  {first.ucs.x, corner.ucs.y, 0.0},
                  first.ucs};
    } else {
        for (;;) {
            const PointAnswer next = askPoint(L"\n指定下一个栏选点或 [放弃(U)]: ", L"Undo", &points.back());
            if (next.isKeyword(L"Undo") && points.size() > 1) {
                points.pop_back();
            } else if (next.isValue()) {
                points.push_back(next.ucs);
            } else if (next.kind != Answer::Kind::keyword) {
                break;
            }
        }
    }
    SelectionShape shape{SelectionShape::Kind::fence, {}};
    AcDbPolyline fence;
    for (const AcGePoint3d& point : points) {
        const AcGePoint2d plan = to2d(ucsToWorld(point));
        shape.points.push_back(plan);
        fence.addVertexAt(fence.numVerts(), plan);
    }
    for (const AcDbObjectId id : entitiesIn(shape)) {
        const auto* curve = peek<AcDbCurve>(id);
        AcGePoint3dArray crossings;
        if (curve != nullptr) {
            const ReadAccess access(*curve);
            curve->intersectWith(&fence, AcDb::kOnBothOperands,
                                 AcGePlane(AcGePoint3d::kOrigin, AcGeVector3d::kZAxis), crossings);
        }
        if (!crossings.isEmpty()) {
            act(id, crossings[0]);
        }
    }
    return true;
}

void Cutting::act(AcDbObjectId id, const AcGePoint3d& pick) {
    const auto* curve = peek<AcDbCurve>(id);
    if (curve == nullptr) {
        acutPrintf(mExtends ? L"\n无法延伸此对象。" : L"\n无法修剪此对象。");
    } else if (isOnLockedLayer(*curve)) {
        acutPrintf(L"\n对象在锁定的图层上。");
    } else {
        mExtends ? extend(id, pick) : trim(id, pick);
    }
}

/// `everywhere`: also edges whose boxes are away from the curve.
template <class Visit>
void Cutting::forEachEdge(const AcDbCurve& curve, bool everywhere, Visit&& visit) const {
    const auto one = [&](AcDbEntity& edge) {
        const ReadAccess access(edge);
        if (&edge != static_cast<const AcDbEntity*>(&curve)) {
            visit(static_cast<const AcDbEntity&>(edge));
        }
    };
    if (!mAll) {
        for (const AcDbObjectId id : mEdges) {
            if (auto* edge = peek<AcDbEntity>(id)) {
                one(*edge);
            }
        }
        return;
    }
    AcDbExtents extents;
    Box2d box{{-1e300, -1e300}, {1e300, 1e300}};
    if (!everywhere && curve.getGeomExtents(extents) == Acad::eOk) {
        box = {to2d(extents.minPoint()), to2d(extents.maxPoint())};
    }
    for (const Placed& placed : spatialQuery().overlapping(currentDatabase().currentSpaceId(), box)) {
        auto* edge = peek<AcDbEntity>(AcDbObjectId(placed.stub));
        if (edge != nullptr && isSelectable(*edge)) {
            one(*edge);
        }
    }
}

void Cutting::trim(AcDbObjectId id, const AcGePoint3d& pick) {
    std::optional<OwnedCurves> left;
    {
        const auto* curve = peek<AcDbCurve>(id);
        const ReadAccess access(*curve);
        const AcGePlane plane = view();
        std::vector<double> cuts;
        forEachEdge(*curve, extendsEdges(), [&](const AcDbEntity& edge) {
            const std::vector<double> own = crossingParameters(*curve, edge, extendsEdges(), plane);
            cuts.insert(cuts.end(), own.begin(), own.end());
        });
        const bool isEdge = mAll || std::find(mEdges.begin(), mEdges.end(), id) != mEdges.end();
        if (isEdge) {
            const std::vector<double> own = selfCrossingParameters(*curve);
            cuts.insert(cuts.end(), own.begin(), own.end());
        }
        if (const std::optional<double> place = nearestParameter(*curve, pick, plane.normal())) {
            left = withoutPartAround(*curve, *place, std::move(cuts));
        }
    }
    if (!left || left->empty()) {
        acutPrintf(L"\n对象未与边相交。");
        return;
    }
    Step step{id, copyOf(id), {}};
    const AcDbObjectId owner = peek<AcDbEntity>(id)->ownerId();
    for (std::size_t i = 1; i < left->size(); ++i) {
        step.added.push_back(appendTo(owner, std::move((*left)[i])));
    }
    if (replaceEntity(id, std::move(left->front()))) {
        mSteps.push_back(std::move(step));
    }
}

void Cutting::extend(AcDbObjectId id, const AcGePoint3d& pick) {
    std::optional<AcGePoint3d> nearest;
    bool atStart = false;
    {
        const auto* curve = peek<AcDbCurve>(id);
        const ReadAccess access(*curve);
        AcGePoint3d start;
        AcGePoint3d end;
        if (curve->isClosed() || curve->getStartPoint(start) != Acad::eOk ||
            curve->getEndPoint(end) != Acad::eOk) {
            acutPrintf(L"\n无法延伸此对象。");
            return;
        }
        atStart = pick.distanceTo(start) < pick.distanceTo(end);
        const AcGePlane plane = view();
        double shortest = 0.0;
        forEachEdge(*curve, true, [&](const AcDbEntity& edge) {
            const std::optional<AcGePoint3d> point =
                meetingBeyond(*curve, atStart, edge, extendsEdges(), plane);
            const std::optional<double> reach = point ? reachBeyond(*curve, atStart, *point) : std::nullopt;
            if (reach && (!nearest || *reach < shortest)) {
                nearest = point;
                shortest = *reach;
            }
        });
    }
    Step step{id, copyOf(id), {}};
    const Opened<AcDbCurve> curve(id, AcDb::kForWrite);
    if (!nearest || !curve || curve->extend(atStart, *nearest) != Acad::eOk) {
        acutPrintf(L"\n对象未与边相交。");
        return;
    }
    mSteps.push_back(std::move(step));
}

bool Cutting::askEdgeMode() {
    const bool extends = extendsEdges();
    const Answer answer = askKeyword(std::wstring(L"\n输入隐含边延伸模式 [延伸(E)/不延伸(N)] <") +
                                         (extends ? L"延伸>: " : L"不延伸>: "),
                                     L"Extend No");
    if (answer.kind == Answer::Kind::keyword) {
        setSystemVariable(L"EDGEMODE", answer.isKeyword(L"Extend") ? 1 : 0);
    }
    return !answer.isCancelled();
}

bool Cutting::askProjection() {
    constexpr const wchar_t* names[] = {L"None", L"Ucs", L"View"};
    const int now = std::clamp(systemVariableInteger(L"PROJMODE"), 0, 2);
    const Answer answer = askKeyword(
        L"\n输入投影选项 [无(N)/UCS(U)/视图(V)] <" + std::wstring(names[now]) + L">: ", L"None Ucs View");
    for (int mode = 0; mode < 3; ++mode) {
        if (answer.isKeyword(names[mode])) {
            setSystemVariable(L"PROJMODE", mode);
        }
    }
    return !answer.isCancelled();
}

bool Cutting::eraseSome() {
    const Selection selection = Selection::askWith(L"\n选择要删除的对象或 <退出>: ", true);
    for (const AcDbObjectId id : selection.ids()) {
        if (eraseEntity(id)) {
            mSteps.push_back({id, nullptr, {}});
        }
    }
    return true;
}

void Cutting::undo() {
    if (mSteps.empty()) {
        acutPrintf(L"\n命令已完全放弃。");
        return;
    }
    Step step = std::move(mSteps.back());
    mSteps.pop_back();
    std::for_each(step.added.begin(), step.added.end(), eraseEntity);
    if (step.before != nullptr) {
        replaceEntity(step.id, std::move(step.before));
    } else if (const Opened<AcDbEntity> entity(step.id, AcDb::kForWrite, true); entity) {
        entity->erase(false);
    }
}

void runTrim() {
    Cutting(false).run();
}
void runExtend() {
    Cutting(true).run();
}

constexpr CommandRow rows[] = {{L"TRIM", L"修剪", ACRX_CMD_MODAL, runTrim},
                               {L"EXTEND", L"延伸", ACRX_CMD_MODAL, runExtend}};

} // namespace

std::span<const CommandRow> trimCommands() {
    return rows;
}

} // namespace host
