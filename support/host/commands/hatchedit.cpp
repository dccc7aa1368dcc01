// HATCHEDIT: what a hatch looks like, what it follows, and which boundaries it has.
#include "host/commands/ask.h"
#include "host/commands/hatchquestions.h"
#include "host/commands/registry.h"

#include <algorithm>

namespace host {
namespace {

const wchar_t* refuseUnlessHatch(const AcDbEntity& entity) {
    return AcDbHatch::cast(&entity) == nullptr ? L"选定的对象不是图案填充。"
           : isOnLockedLayer(entity)           ? L"对象在锁定的图层上。"
                                               : nullptr;
}

HatchSettings settingsOf(const AcDbHatch& hatch) {
    const bool user = hatch.patternType() == AcDbHatch::kUserDefined;
    return {user ? L"U" : hatch.patternName().kwszPtr(), user ? 1.0 : hatch.patternScale(),
            hatch.patternAngle(), user ? hatch.patternSpace() : systemVariableReal(L"HPSPACE"),
            hatch.patternDouble()};
}

/// The lines go on from the point that they run from.
void changeProperties(AcDbObjectId id) {
    HatchSettings settings;
    AcGePoint2d origin;
    std::unique_ptr<AcDbHatch> trial;
    {
        const Opened<AcDbHatch> hatch(id, AcDb::kForRead);
        settings = settingsOf(*hatch.get());
        origin = hatch->originPoint();
        trial.reset(AcDbHatch::cast(hatch->clone()));
    }
    AcDbHatch plain; // the pattern as it runs from the origin
    applyHatchSettings(plain, settings);
    const AcGeVector2d shift = origin - plain.originPoint();
    if (!askHatchProperties(settings) || !applyHatchSettings(*trial, settings)) {
        return;
    }
    const Opened<AcDbHatch> opened(id, AcDb::kForWrite);
    if (opened) {
        applyHatchSettings(*opened.get(), settings);
        opened->setOriginPoint(opened->originPoint() + shift);
    }
}

void changeStyle(AcDbObjectId id) {
    const std::optional<AcDbHatch::HatchStyle> style =
        askHatchStyle(static_cast<AcDbHatch::HatchStyle>(peek<AcDbHatch>(id)->data().style));
    const Opened<AcDbHatch> opened(style ? id : AcDbObjectId(), AcDb::kForWrite);
    if (opened) {
        opened->setHatchStyle(*style);
    }
}

void changeOrigin(AcDbObjectId id) {
    const PointAnswer origin = askPoint(L"\n指定新的图案填充原点: ", nullptr, nullptr, RSG_NONULL);
    const Opened<AcDbHatch> opened(origin.isValue() ? id : AcDbObjectId(), AcDb::kForWrite);
    if (opened) {
        opened->setOriginPoint(to2d(toObject(opened->normal(), origin.world)));
    }
}

/// New loops behind those that are there; an associative hatch follows their objects too.
void addOutlines(AcDbObjectId id, const std::vector<HatchOutline>& outlines) {
    if (outlines.empty()) {
        return;
    }
    const bool follows = peek<AcDbHatch>(id)->data().associative;
    {
        const Opened<AcDbHatch> opened(id, AcDb::kForWrite);
        if (!opened) {
            return;
        }
        for (const HatchOutline& outline : outlines) {
            appendOutline(*opened.get(), outline);
        }
        if (opened->evaluateHatch() != Acad::eOk) {
            for (std::size_t i = 0; i < outlines.size(); ++i) {
                opened->removeLoopAt(opened->numLoops() - 1);
            }
            reportFailure(L"填充线太密: 请加大比例");
            return;
        }
    }
    if (follows) {
        associate(id, outlines);
    }
}

void addBoundaries(AcDbObjectId id) {
    std::vector<HatchOutline> outlines;
    for (;;) {
        const PointAnswer answer = askPoint(L"\n指定内部点或 [选择对象(S)]: ", L"Select");
        if (answer.isCancelled()) {
            return;
        }
        if (answer.isNone()) {
            break;
        }
        std::ranges::move(answer.isValue() ? outlinesAround(answer.world)
                                           : selectedOutlines(peek<AcDbHatch>(id)->data().normal),
                          std::back_inserter(outlines));
    }
    addOutlines(id, outlines);
}

/// Loops that were made from the objects selected; of a hatch that follows nothing those that run through a
/// place that is picked.
void removeBoundaries(AcDbObjectId id) {
    const std::vector<HatchLoop>& loops = peek<AcDbHatch>(id)->data().loops;
    const auto hasSources = [](const HatchLoop& loop) { return !loop.sources.empty(); };
    if (std::ranges::none_of(loops, hasSources)) {
        acutPrintf(L"\n图案填充不关联，没有边界对象可删除。");
        return;
    }
    const Selection selection = Selection::askWith(L"\n选择要删除的边界对象: ");
    std::vector<int> removed;
    for (std::size_t i = 0; i < loops.size(); ++i) {
        if (std::ranges::any_of(loops[i].sources,
                                [&](AcDbObjectId source) { return selection.ids().contains(source); })) {
            removed.push_back(static_cast<int>(i));
        }
    }
    if (removed.size() == loops.size()) {
        acutPrintf(L"\n图案填充至少要有一个边界。");
        return;
    }
    if (removed.empty()) {
        acutPrintf(L"\n没有选择图案填充的边界。");
        return;
    }
    std::vector<AcDbObjectId> before;
    std::vector<AcDbObjectId> after;
    {
        const Opened<AcDbHatch> opened(id, AcDb::kForWrite);
        AcDbObjectIdArray ids;
        opened->getAssocObjIds(ids);
        before.assign(ids.begin(), ids.end());
        std::for_each(removed.rbegin(), removed.rend(), [&](int index) { opened->removeLoopAt(index); });
        ids.setLogicalLength(0);
        opened->getAssocObjIds(ids);
        after.assign(ids.begin(), ids.end());
    }
    for (const AcDbObjectId source : before) {
        const auto* object = peek<AcDbObject>(source);
        if (std::ranges::find(after, source) == after.end() && object != nullptr &&
            object->hasPersistentReactor(id)) {
            if (AcDbObject* opened = openForNote(source)) {
                opened->removePersistentReactor(id);
                opened->close();
            }
        }
    }
    acutPrintf(L"\n已删除 %d 个边界。", static_cast<int>(removed.size()));
}

/// A closed polyline along each loop; the hatch may follow them from then on.
void recreateBoundary(AcDbObjectId id) {
    const std::optional<bool> follows = askYesNo(L"\n是否将图案填充与新边界关联?", false);
    if (!follows) {
        return;
    }
    const AcDbHatch& hatch = *peek<AcDbHatch>(id);
    std::vector<HatchOutline> outlines;
    for (const HatchLoop& loop : hatch.data().loops) {
        auto polyline = std::make_unique<AcDbPolyline>();
        polyline->setDatabaseDefaults();
        polyline->setNormal(hatch.data().normal);
        polyline->setElevation(hatch.data().elevation);
        HatchOutline& outline = outlines.emplace_back();
        outline.path = pathOf(loop);
        outline.type = loop.type & ~HatchLoop::polylineFlag;
        for (const BulgeVertex& vertex : outline.path.vertices) {
            polyline->addVertexAt(polyline->numVerts(), vertex.point, vertex.bulge);
        }
        polyline->setClosed(true);
        outline.sources.push_back(appendToCurrentSpace(polyline.release()));
    }
    if (*follows) {
        dissociate(id);
        associate(id, outlines);
    }
    acutPrintf(L"\n已创建 %d 个多段线。", static_cast<int>(outlines.size()));
}

/// Objects that enclose the area take the place of the boundary that was there.
void associateWith(AcDbObjectId id) {
    const std::vector<HatchOutline> outlines = selectedOutlines(peek<AcDbHatch>(id)->data().normal);
    if (outlines.empty()) {
        return;
    }
    dissociate(id);
    {
        const Opened<AcDbHatch> opened(id, AcDb::kForWrite);
        for (int i = opened->numLoops(); i-- > 0;) {
            opened->removeLoopAt(i);
        }
        for (const HatchOutline& outline : outlines) {
            appendOutline(*opened.get(), outline);
        }
    }
    associate(id, outlines);
}

void disassociate(AcDbObjectId id) {
    if (!peek<AcDbHatch>(id)->data().associative) {
        acutPrintf(L"\n图案填充不关联。");
        return;
    }
    dissociate(id);
}

void runHatchEdit() {
    const EntityAnswer picked = askEntity(L"\n选择图案填充对象: ", nullptr, refuseUnlessHatch);
    if (!picked.isValue()) {
        return;
    }
    const Answer option =
        askKeyword(L"\n输入图案填充选项 [解除关联(DI)/样式(S)/特性(P)/绘图次序(DR)/添加边界(AD)/删除边界(R)/"
                   L"重新创建边界(B)/关联(AS)/原点(O)] <特性>: ",
                   L"DIsassociate Style Properties DRaworder ADd Remove Boundary ASsociate Origin");
    constexpr std::pair<const wchar_t*, void (*)(AcDbObjectId)> actions[] = {
        {L"DIsassociate", disassociate}, {L"Style", changeStyle},       {L"Properties", changeProperties},
        {L"ADd", addBoundaries},         {L"Remove", removeBoundaries}, {L"Boundary", recreateBoundary},
        {L"ASsociate", associateWith},   {L"Origin", changeOrigin}};
    if (option.isKeyword(L"DRaworder")) {
        putInHatchOrder(picked.id, askHatchOrder(0).value_or(0));
    } else if (option.isNone()) {
        changeProperties(picked.id);
    }
    for (const auto& [word, action] : actions) {
        if (option.isKeyword(word)) {
            action(picked.id);
        }
    }
}

constexpr CommandRow rows[] = {{L"-HATCHEDIT", L"-编辑图案填充", ACRX_CMD_MODAL, runHatchEdit},
                               {L"HATCHEDIT", L"编辑图案填充", ACRX_CMD_MODAL, runHatchEdit}};

} // namespace

std::span<const CommandRow> hatchEditCommands() {
    return rows;
}

} // namespace host
