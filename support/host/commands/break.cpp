// BREAK, LENGTHEN and REVERSE: curves are divided, lengthened and turned around.
#include "host/commands/ask.h"
#include "host/commands/edit/curvecutting.h"
#include "host/commands/edit/curvemarks.h"
#include "host/commands/edit/editing.h"
#include "host/commands/registry.h"

#include <cmath>

namespace host {
namespace {

const wchar_t* refuseUnlessCurve(const AcDbEntity& entity) {
    if (AcDbCurve::cast(&entity) == nullptr) {
        return L"不能打断该对象。";
    }
    return lockedRefusal(entity);
}

/// Two points on the curve; the second may be the first one again.
bool askBreakPoints(const EntityAnswer& picked, AcGePoint3d& first, AcGePoint3d& second) {
    first = picked.world;
    PointAnswer answer =
        askPoint(picked.hasPoint ? L"\n指定第二个打断点 或 [第一点(F)]: " : L"\n指定第一个打断点: ",
                 picked.hasPoint ? L"First" : nullptr, picked.hasPoint ? &picked.ucs : nullptr, RSG_NONULL);
    if (answer.isKeyword(L"First")) {
        answer = askPoint(L"\n指定第一个打断点: ", nullptr, nullptr, RSG_NONULL);
    } else if (picked.hasPoint) {
        second = answer.world;
        return answer.isValue();
    }
    if (!answer.isValue()) {
        return false;
    }
    first = answer.world;
    const PointAnswer last = askPoint(L"\n指定第二个打断点: ", nullptr, &answer.ucs, RSG_NONULL);
    second = last.world;
    return last.isValue();
}

void runBreak() {
    const EntityAnswer picked = askEntity(L"\n选择对象: ", nullptr, refuseUnlessCurve);
    AcGePoint3d first;
    AcGePoint3d second;
    if (!picked.isValue() || !askBreakPoints(picked, first, second)) {
        return;
    }
    std::optional<OwnedCurves> left;
    AcDbObjectId owner;
    {
        const auto* curve = peek<AcDbCurve>(picked.id);
        const ReadAccess access(*curve);
        owner = curve->ownerId();
        const std::optional<double> from = nearestParameter(*curve, first, ucsNormal());
        const std::optional<double> to = nearestParameter(*curve, second, ucsNormal());
        if (from && to) {
            left = withoutPart(*curve, *from, *to);
        }
    }
    if (!left || left->empty()) {
        acutPrintf(L"\n不能在这些点打断该对象。");
        return;
    }
    for (std::size_t i = 1; i < left->size(); ++i) {
        appendTo(owner, std::move((*left)[i]));
    }
    replaceEntity(picked.id, std::move(left->front()));
}

/// How an end is moved.
struct Lengthening {
    enum class Kind { delta, percent, total, dynamic };
    Kind kind = Kind::total;
    double value = 1.0;
    bool isAngle = false; ///< of arcs, radians
};

void tellLength(AcDbObjectId id) {
    const auto* curve = peek<AcDbCurve>(id);
    const ReadAccess access(*curve);
    std::wstring line = L"\n当前长度: " + shown(curveLength(*curve).value_or(0.0));
    if (const auto* arc = AcDbArc::cast(curve)) {
        line += L"，包含角: " + shownAngle(arc->totalAngle());
    }
    acutPrintf(L"%s", line.c_str());
}

/// The length or, after the keyword, the angle.
bool askAmount(Lengthening& lengthening) {
    const bool total = lengthening.kind == Lengthening::Kind::total;
    const std::wstring prompt =
        total ? L"\n指定总长度或 [角度(A)] <1.0000>: " : L"\n输入长度增量或 [角度(A)] <0.0000>: ";
    const RealAnswer length = askDistance(prompt, L"Angle", nullptr, total ? RSG_NOZERO | RSG_NONEG : 0);
    if (length.isKeyword(L"Angle")) {
        const RealAnswer angle = askAngle(total ? L"\n指定总角度 <57>: " : L"\n输入角度增量 <0>: ");
        lengthening.isAngle = true;
        lengthening.value = angle.isValue() ? (total ? angle.value : signedAngle(angle.value))
                            : total         ? 1.0
                                            : 0.0;
        return !angle.isCancelled();
    }
    lengthening.value = length.isValue() ? length.value : total ? 1.0 : 0.0;
    return !length.isCancelled();
}

std::optional<Lengthening> askLengthening() {
    for (;;) {
        const EntityAnswer answer =
            askEntity(L"\n选择要测量的对象或 [增量(DE)/百分比(P)/总计(T)/动态(DY)] <总计(T)>: ",
                      L"DElta Percent Total DYnamic", refuseUnlessCurve);
        if (answer.isValue()) {
            tellLength(answer.id);
            continue;
        }
        if (answer.isCancelled()) {
            return std::nullopt;
        }
        Lengthening lengthening;
        if (answer.isKeyword(L"Percent")) {
            const RealAnswer percent =
                askReal(L"\n输入长度百分数 <100.0000>: ", nullptr, RSG_NOZERO | RSG_NONEG);
            lengthening.kind = Lengthening::Kind::percent;
            lengthening.value = percent.isValue() ? percent.value : 100.0;
            return percent.isCancelled() ? std::nullopt : std::optional(lengthening);
        }
        if (answer.isKeyword(L"DYnamic")) {
            lengthening.kind = Lengthening::Kind::dynamic;
            return lengthening;
        }
        lengthening.kind = answer.isKeyword(L"DElta") ? Lengthening::Kind::delta : Lengthening::Kind::total;
        return askAmount(lengthening) ? std::optional(lengthening) : std::nullopt;
    }
}

/// The new length of the curve; nothing when it has none (an angle for a line).
std::optional<double> newLength(const AcDbCurve& curve, const Lengthening& lengthening) {
    const auto* arc = AcDbArc::cast(&curve);
    if (lengthening.isAngle && arc == nullptr) {
        return std::nullopt;
    }
    const double now = curveLength(curve).value_or(0.0);
    const double amount = lengthening.isAngle ? lengthening.value * arc->radius() : lengthening.value;
    switch (lengthening.kind) {
    case Lengthening::Kind::delta:
        return now + amount;
    case Lengthening::Kind::percent:
        return now * amount / 100.0;
    default:
        return amount;
    }
}

/// The length up to the point of the curve, or of its continuation, next to the point given.
std::optional<double> lengthTo(const AcDbCurve& curve, bool atStart, const AcGePoint3d& point) {
    AcGePoint3d closest;
    const double now = curveLength(curve).value_or(0.0);
    if (curve.getClosestPointTo(point, closest, true) != Acad::eOk) {
        return std::nullopt;
    }
    std::unique_ptr<AcDbCurve> longer(static_cast<AcDbCurve*>(curve.clone()));
    if (longer != nullptr && reachBeyond(curve, atStart, closest) &&
        longer->extend(atStart, closest) == Acad::eOk) {
        return curveLength(*longer);
    }
    double distance = 0.0;
    if (curve.getDistAtPoint(closest, distance) != Acad::eOk) {
        return std::nullopt;
    }
    return atStart ? now - distance : distance;
}

bool lengthen(const EntityAnswer& picked, const Lengthening& lengthening) {
    std::unique_ptr<AcDbCurve> changed;
    {
        const auto* curve = peek<AcDbCurve>(picked.id);
        const ReadAccess access(*curve);
        AcGePoint3d start;
        AcGePoint3d end;
        curve->getStartPoint(start);
        curve->getEndPoint(end);
        const bool atStart = picked.hasPoint && picked.world.distanceTo(start) < picked.world.distanceTo(end);
        std::optional<double> length = newLength(*curve, lengthening);
        if (lengthening.kind == Lengthening::Kind::dynamic) {
            const AcGePoint3d base = worldToUcs(atStart ? start : end);
            const PointAnswer point = askPoint(L"\n指定新端点: ", nullptr, &base, RSG_NONULL);
            length = point.isValue() ? lengthTo(*curve, atStart, point.world) : std::nullopt;
        }
        changed.reset(static_cast<AcDbCurve*>(curve->clone()));
        if (!length || changed == nullptr || !setCurveLength(changed, atStart, *length)) {
            return false;
        }
    }
    return replaceEntity(picked.id, std::move(changed));
}

void runLengthen() {
    const std::optional<Lengthening> lengthening = askLengthening();
    if (!lengthening) {
        return;
    }
    struct Step {
        AcDbObjectId id;
        std::unique_ptr<AcDbEntity> before;
    };
    std::vector<Step> steps;
    for (;;) {
        const EntityAnswer picked =
            askEntity(L"\n选择要修改的对象或 [放弃(U)]: ", L"Undo", refuseUnlessCurve);
        if (picked.isKeyword(L"Undo")) {
            if (steps.empty()) {
                acutPrintf(L"\n命令已完全放弃。");
            } else {
                replaceEntity(steps.back().id, std::move(steps.back().before));
                steps.pop_back();
            }
            continue;
        }
        if (!picked.isValue()) {
            return;
        }
        const auto* entity = peek<AcDbEntity>(picked.id);
        std::unique_ptr<AcDbEntity> before = [&] {
            const ReadAccess access(*entity);
            return std::unique_ptr<AcDbEntity>(static_cast<AcDbEntity*>(entity->clone()));
        }();
        if (lengthen(picked, *lengthening)) {
            steps.push_back({picked.id, std::move(before)});
        } else {
            acutPrintf(L"\n不能这样修改该对象的长度。");
        }
    }
}

void runReverse() {
    const Selection selection = Selection::askEditable();
    int refused = 0;
    for (const AcDbObjectId id : selection.ids()) {
        const Opened<AcDbCurve> curve(id, AcDb::kForWrite);
        if (!curve || curve->reverseCurve() != Acad::eOk) {
            ++refused;
        }
    }
    if (refused > 0) {
        acutPrintf(L"\n%d 个对象没有可反转的方向。", refused);
    }
}

constexpr CommandRow rows[] = {{L"BREAK", L"打断", ACRX_CMD_MODAL, runBreak},
                               {L"LENGTHEN", L"拉长", ACRX_CMD_MODAL, runLengthen},
                               {L"REVERSE", L"反转", ACRX_CMD_USEPICKSET | ACRX_CMD_REDRAW, runReverse}};

} // namespace

std::span<const CommandRow> breakCommands() {
    return rows;
}

} // namespace host
