// HATCHEDIT: what a hatch looks like, what it follows, and which boundaries it has.
#include "host/commands/ask.h"
#include "host/commands/hatchquestions.h"
#include "host/commands/registry.h"
#include "host/db/entities/curvepiece.h"

#include <algorithm>
#include <cmath>

namespace host {
namespace {

const wchar_t* refuseUnlessHatch(const AcDbEntity& entity) {
    return AcDbHatch::cast(&entity) == nullptr ? L"选定的对象不是图案填充。" : lockedRefusal(entity);
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

/// The loop that runs nearest to a place.
std::size_t nearestLoop(const HatchData& data, const AcGePoint3d& world) {
    const AcGePoint2d place = to2d(toObject(data.normal, world));
    std::size_t nearest = 0;
    double least = HUGE_VAL;
    for (std::size_t i = 0; i < data.loops.size(); ++i) {
        for (const BoundaryPiece& piece : boundaryPieces(data.loops[i])) {
            const CurvePiece curve = piece.isArc ? CurvePiece::arc(to3d(piece.center), to3d(piece.u),
                                                                   to3d(piece.v), piece.from, piece.to)
                                                 : CurvePiece::line(to3d(piece.start), to3d(piece.end));
            const double distance =
                to2d(curve.pointAt(curve.closestParameter(to3d(place)))).distanceTo(place);
            if (distance < least) {
                least = distance;
                nearest = i;
            }
        }
    }
    return nearest;
}

/// Objects that no loop comes from any more are not followed.
void forgetSources(AcDbObjectId id, const AcDbObjectIdArray& before) {
    AcDbObjectIdArray after;
    {
        const Opened<AcDbHatch> hatch(id, AcDb::kForRead);
        hatch->getAssocObjIds(after);
    }
    for (const AcDbObjectId source : before) {
        if (!after.contains(source)) {
            forgetFollower(source, id);
        }
    }
}

/// Boundaries near the places that are picked; one stays.
void removeBoundaries(AcDbObjectId id) {
    for (;;) {
        const PointAnswer place = askPoint(L"\n在要删除的边界上指定点 <退出>: ");
        if (!place.isValue()) {
            return;
        }
        const HatchData& data = peek<AcDbHatch>(id)->data();
        if (data.loops.size() < 2) {
            acutPrintf(L"\n图案填充至少要有一个边界。");
            return;
        }
        const int index = static_cast<int>(nearestLoop(data, place.world));
        AcDbObjectIdArray before;
        {
            const Opened<AcDbHatch> hatch(id, AcDb::kForWrite);
            if (!hatch) {
                return;
            }
            hatch->getAssocObjIds(before);
            hatch->removeLoopAt(index);
        }
        forgetSources(id, before);
        acutPrintf(L"\n已删除 1 个边界。");
    }
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
        HatchOutline& outline = outlines.emplace_back();
        outline.path = pathOf(loop);
        outline.type = loop.type & ~HatchLoop::polylineFlag;
        outline.sources.push_back(
            appendOutlinePolyline(outline.path, hatch.data().normal, hatch.data().elevation));
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
