// Questions of the commands for hatches.
#include "host/commands/hatchquestions.h"

#include "host/commands/ask.h"
#include "host/rx/text.h"

#include <cmath>

namespace host {
namespace {

bool isPattern(const std::wstring& name) {
    AcDbHatch hatch;
    return hatch.setPattern(AcDbHatch::kPreDefined, name.c_str()) == Acad::eOk;
}

bool askUserPattern(HatchSettings& settings) {
    const RealAnswer angle = askAngle(L"\n指定十字光标线的角度 <" + shownAngle(settings.angle) + L">: ");
    const RealAnswer spacing = angle.isCancelled()
                                   ? RealAnswer()
                                   : askDistance(L"\n指定行距 <" + shown(settings.spacing) + L">: ", nullptr,
                                                 nullptr, RSG_NOZERO | RSG_NONEG);
    const std::optional<bool> crossed =
        spacing.isCancelled() ? std::nullopt : askYesNo(L"\n是否双向填充区域?", settings.crossed);
    settings.angle = angle.isValue() ? angle.value : settings.angle;
    settings.spacing = spacing.isValue() ? spacing.value : settings.spacing;
    settings.crossed = crossed.value_or(false);
    return crossed.has_value();
}

} // namespace

HatchSettings currentHatchSettings() {
    return {systemVariableText(L"HPNAME"), systemVariableReal(L"HPSCALE"), systemVariableReal(L"HPANG"),
            systemVariableReal(L"HPSPACE"), systemVariableInteger(L"HPDOUBLE") != 0};
}

void storeHatchSettings(const HatchSettings& settings) {
    setSystemVariable(L"HPNAME", std::wstring_view(settings.pattern));
    setSystemVariable(L"HPSCALE", settings.scale);
    setSystemVariable(L"HPANG", settings.angle);
    setSystemVariable(L"HPSPACE", settings.spacing);
    setSystemVariable(L"HPDOUBLE", settings.crossed ? 1 : 0);
}

bool askHatchProperties(HatchSettings& settings) {
    for (;;) {
        const TextAnswer name =
            askText(L"\n输入图案名称或 [实体(S)/用户定义(U)] <" + settings.pattern + L">: ");
        if (name.isCancelled()) {
            return false;
        }
        std::wstring pattern = toUpper(name.isNone() ? settings.pattern : name.text);
        if (pattern == L"S" || pattern == L"_S") {
            pattern = L"SOLID";
        }
        if (pattern == L"U" || pattern == L"_U" || isPattern(pattern)) {
            settings.pattern = std::move(pattern);
            break;
        }
        acutPrintf(L"\n找不到填充图案 \"%s\"。", pattern.c_str());
    }
    if (settings.pattern == L"SOLID") {
        return true;
    }
    if (settings.isUserDefined()) {
        return askUserPattern(settings);
    }
    const RealAnswer scale =
        askReal(L"\n指定图案缩放比例 <" + shown(settings.scale) + L">: ", nullptr, RSG_NOZERO | RSG_NONEG);
    if (scale.isCancelled()) {
        return false;
    }
    settings.scale = scale.isValue() ? scale.value : settings.scale;
    const RealAnswer angle = askAngle(L"\n指定图案角度 <" + shownAngle(settings.angle) + L">: ");
    settings.angle = angle.isValue() ? angle.value : settings.angle;
    return !angle.isCancelled();
}

bool applyHatchSettings(AcDbHatch& hatch, const HatchSettings& settings) {
    const bool user = settings.isUserDefined();
    hatch.setPatternAngle(settings.angle);
    hatch.setPatternScale(user ? 1.0 : settings.scale);
    if (user) {
        hatch.setPatternSpace(settings.spacing);
        hatch.setPatternDouble(settings.crossed);
    }
    if (hatch.setPattern(user ? AcDbHatch::kUserDefined : AcDbHatch::kPreDefined,
                         user ? L"_USER" : settings.pattern.c_str()) != Acad::eOk) {
        reportFailure(L"找不到填充图案 \"" + settings.pattern + L"\"");
        return false;
    }
    if (hatch.evaluateHatch() != Acad::eOk) {
        reportFailure(L"填充线太密: 请加大比例");
        return false;
    }
    return true;
}

std::optional<AcDbHatch::HatchStyle> askHatchStyle(AcDbHatch::HatchStyle standard) {
    constexpr const wchar_t* names[] = {L"普通", L"外部", L"忽略"};
    const Answer answer =
        askKeyword(std::wstring(L"\n输入孤岛检测样式 [普通(N)/外部(O)/忽略(I)] <") + names[standard] + L">: ",
                   L"Normal Outer Ignore");
    if (answer.isCancelled()) {
        return std::nullopt;
    }
    return answer.isKeyword(L"Normal")   ? AcDbHatch::kNormal
           : answer.isKeyword(L"Outer")  ? AcDbHatch::kOuter
           : answer.isKeyword(L"Ignore") ? AcDbHatch::kIgnore
                                         : standard;
}

std::optional<int> askHatchOrder(int standard) {
    constexpr const wchar_t* names[] = {L"不更改", L"后置", L"前置", L"置于边界之后", L"置于边界之前"};
    constexpr const wchar_t* words[] = {L"Nochange", L"Back", L"Front", L"Hind", L"Draw"};
    const Answer answer = askKeyword(
        std::wstring(L"\n输入绘图次序 [不更改(N)/后置(B)/前置(F)/置于边界之后(H)/置于边界之前(D)] <") +
            names[standard] + L">: ",
        L"Nochange Back Front Hind Draw");
    if (answer.isCancelled()) {
        return std::nullopt;
    }
    const auto* const word =
        std::ranges::find_if(words, [&](const wchar_t* name) { return answer.isKeyword(name); });
    return word != std::end(words) ? static_cast<int>(word - words) : standard;
}

void putInHatchOrder(AcDbObjectId id, int order) {
    const auto* hatch = peek<AcDbHatch>(id);
    if (hatch == nullptr || order == 0) {
        return;
    }
    AcDbObjectIdArray moved;
    moved.append(id);
    std::vector<AcDbObjectId> sources;
    for (const HatchLoop& loop : hatch->data().loops) {
        std::ranges::copy_if(loop.sources, std::back_inserter(sources),
                             [](AcDbObjectId source) { return !source.isErased(); });
    }
    if (order >= 3 && sources.empty()) {
        acutPrintf(L"\n图案填充没有边界对象，绘图次序不变。");
        return;
    }
    const Opened<AcDbBlockTableRecord> space(hatch->ownerId(), AcDb::kForWrite);
    AcDbSortentsTable* table = nullptr;
    if (!space || space->getSortentsTable(table, AcDb::kForWrite, true) != Acad::eOk) {
        acutPrintf(L"\n无法更改绘图次序。");
        return;
    }
    // Behind or before all objects of the boundary: beside the lowest or the highest of them.
    const auto isBelow = [&](AcDbObjectId a, AcDbObjectId b) {
        bool before = false;
        table->firstEntityIsDrawnBeforeSecond(a, b, before);
        return before;
    };
    if (order == 1 || order == 2) {
        order == 1 ? table->moveToBottom(moved) : table->moveToTop(moved);
    } else if (order == 3) {
        // One entry alone: just before the lowest, behind whatever has that number itself.
        AcDbHandle lowest;
        table->getSortHandle(*std::ranges::min_element(sources, isBelow), lowest);
        table->sortAs(id, AcDbHandle(Adesk::UInt64{lowest} - 1));
    } else {
        table->moveAbove(moved, *std::ranges::max_element(sources, isBelow));
    }
    table->close();
}

AcDbObjectId appendOutlinePolyline(const BulgePath& path, const AcGeVector3d& normal, double elevation) {
    auto polyline = std::make_unique<AcDbPolyline>();
    polyline->setDatabaseDefaults();
    polyline->setNormal(normal);
    polyline->setElevation(elevation);
    for (const BulgeVertex& vertex : path.vertices) {
        polyline->addVertexAt(polyline->numVerts(), vertex.point, vertex.bulge);
    }
    polyline->setClosed(true);
    return appendToCurrentSpace(polyline.release());
}

std::vector<HatchOutline> outlinesAround(const AcGePoint3d& world) {
    const AcGeVector3d normal = ucsNormal();
    const TracedBoundary boundary =
        traceBoundary(currentDatabase().currentSpaceId(), normal, to2d(toObject(normal, world)));
    if (boundary.end == TracedBoundary::End::tooComplex) {
        acutPrintf(L"\n这里相交的曲线过多，没有找到边界。请冻结不需要的图层，或选择边界对象。");
    } else if (boundary.end == TracedBoundary::End::stopped) {
        acutPrintf(L"\n已停止查找边界。");
    } else if (boundary.loops.empty() && boundary.gap) {
        const auto place = [&](const AcGePoint2d& point) {
            const AcGePoint3d ucs = worldToUcs(toWorld(normal, to3d(point)));
            return shown(ucs.x) + L"," + shown(ucs.y);
        };
        acutPrintf(L"\n边界不封闭: 在 (%s) 与 (%s) 之间有间隙，宽 %s。", place(boundary.gap->from).c_str(),
                   place(boundary.gap->to).c_str(),
                   shown(boundary.gap->from.distanceTo(boundary.gap->to)).c_str());
    } else if (boundary.loops.empty()) {
        acutPrintf(L"\n未找到有效的图案填充边界。");
    }
    return outlinesOf(boundary);
}

std::vector<HatchOutline> selectedOutlines(const AcGeVector3d& normal) {
    const Selection selection = Selection::askWith(L"\n选择对象: ");
    std::vector<AcDbObjectId> refused;
    std::vector<HatchOutline> outlines =
        outlinesOf({selection.ids().begin(), selection.ids().end()}, normal, refused);
    if (!refused.empty()) {
        acutPrintf(L"\n%d 个对象不是封闭的边界。", static_cast<int>(refused.size()));
    }
    return outlines;
}

} // namespace host
