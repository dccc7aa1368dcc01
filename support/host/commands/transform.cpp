// MIRROR, ROTATE, SCALE, ALIGN and the two kinds of ARRAY.
#include "host/commands/ask.h"
#include "host/commands/edit/editing.h"
#include "host/commands/edit/mirroring.h"
#include "host/commands/registry.h"
#include "host/ed/dragging.h"

#include <cmath>

namespace host {
namespace {

void tellRefused(int refused) {
    if (refused > 0) {
        acutPrintf(L"\n%d 个对象无法这样变换。", refused);
    }
}

void runMirror() {
    const Selection selection = Selection::askEditable();
    if (selection.empty()) {
        return;
    }
    const PointAnswer first = askPoint(L"\n指定镜像线的第一点: ", nullptr, nullptr, RSG_NONULL);
    if (!first.isValue()) {
        return;
    }
    const Dragging preview(selection.ids(), [](const AcGePoint3d& from, const AcGePoint3d& to) {
        const AcGeVector3d normal = ucsNormal().crossProduct(to - from);
        return normal.isZeroLength() ? AcGeMatrix3d() : AcGeMatrix3d::mirroring(AcGePlane(from, normal));
    });
    PointAnswer second;
    for (;;) {
        second = askPoint(L"\n指定镜像线的第二点: ", nullptr, &first.ucs, RSG_NONULL);
        if (!second.isValue()) {
            return;
        }
        if (!second.world.isEqualTo(first.world)) {
            break;
        }
        acutPrintf(L"\n镜像线的两点不能重合。");
    }
    const std::optional<bool> erases = askYesNo(L"\n要删除源对象吗?", false);
    if (!erases) {
        return;
    }
    const AcGeVector3d across = ucsNormal().crossProduct(second.world - first.world);
    const AcGeMatrix3d mirror = AcGeMatrix3d::mirroring(AcGePlane(first.world, across));
    std::vector<AcDbObjectId> ids(selection.ids().begin(), selection.ids().end());
    if (!*erases) {
        ids = copyEntities(selection.ids(), currentDatabase().currentSpaceId());
    }
    const bool mirrorsText = systemVariableInteger(L"MIRRTEXT") != 0;
    int refused = 0;
    for (const AcDbObjectId id : ids) {
        const Opened<AcDbEntity> entity(id, AcDb::kForWrite);
        if (entity && mirrorEntity(*entity.get(), mirror, mirrorsText) != Acad::eOk) {
            ++refused;
            if (!*erases) {
                entity->erase();
            }
        }
    }
    tellRefused(refused);
}

/// Transforms the selection, or copies of it.
void apply(const Selection& selection, const AcGeMatrix3d& transform, bool copies) {
    tellRefused(copies ? copyTransformed(selection.ids(), currentDatabase().currentSpaceId(), transform)
                       : transformEntities(selection.ids(), transform));
}

/// A direction by value, or by two points of which the first may be the base.
std::optional<double> askDirection(const std::wstring& prompt, const AcGePoint3d* base) {
    const RealAnswer answer = askAngle(prompt, nullptr, base);
    if (answer.isCancelled()) {
        return std::nullopt;
    }
    return answer.isValue() ? answer.value : 0.0;
}

/// Reference angle and new angle; the turn between them.
std::optional<double> askReferencedAngle(const AcGePoint3d& base) {
    const std::optional<double> from = askDirection(L"\n指定参照角 <" + shownAngle(0.0) + L">: ", nullptr);
    if (!from) {
        return std::nullopt;
    }
    const RealAnswer to = askAngle(L"\n指定新角度或 [点(P)] <" + shownAngle(0.0) + L">: ", L"Points", &base);
    if (to.isKeyword(L"Points")) {
        const PointAnswer first = askPoint(L"\n指定第一点: ", nullptr, nullptr, RSG_NONULL);
        const PointAnswer second =
            first.isValue() ? askPoint(L"\n指定第二点: ", nullptr, &first.ucs, RSG_NONULL) : PointAnswer();
        return second.isValue() ? std::optional(angleBetween(first.ucs, second.ucs) - *from) : std::nullopt;
    }
    if (to.isCancelled()) {
        return std::nullopt;
    }
    return (to.isValue() ? to.value : 0.0) - *from;
}

void runRotate() {
    acutPrintf(L"\nUCS 当前的正角方向:  ANGDIR=%s  ANGBASE=%s",
               currentDatabase().angdir() ? L"顺时针" : L"逆时针",
               shownAngle(currentDatabase().angbase()).c_str());
    const Selection selection = Selection::askEditable();
    if (selection.empty()) {
        return;
    }
    const PointAnswer base = askPoint(L"\n指定基点: ", nullptr, nullptr, RSG_NONULL);
    if (!base.isValue()) {
        return;
    }
    bool copies = false;
    const Dragging preview(selection.ids(), [](const AcGePoint3d& from, const AcGePoint3d& to) {
        const AcGeVector3d direction = worldToUcs(to) - worldToUcs(from);
        return AcGeMatrix3d::rotation(std::atan2(direction.y, direction.x), ucsNormal(), from);
    });
    std::optional<double> turn;
    while (!turn) {
        const RealAnswer answer =
            askAngle(L"\n指定旋转角度，或 [复制(C)/参照(R)] <" + shownAngle(0.0) + L">: ", L"Copy Reference",
                     &base.ucs);
        if (answer.isCancelled()) {
            return;
        }
        if (answer.isKeyword(L"Copy")) {
            copies = true;
            acutPrintf(L"\n旋转一组选定对象。");
        } else if (answer.isKeyword(L"Reference")) {
            turn = askReferencedAngle(base.ucs);
            if (!turn) {
                return;
            }
        } else {
            turn = answer.isValue() ? answer.value : 0.0;
        }
    }
    apply(selection, AcGeMatrix3d::rotation(*turn, ucsNormal(), base.world), copies);
}

std::optional<double> askReferencedScale(const AcGePoint3d& base) {
    RealAnswer from = askDistance(L"\n指定参照长度 <1>: ", nullptr, nullptr, RSG_NOZERO | RSG_NONEG);
    if (from.isCancelled()) {
        return std::nullopt;
    }
    const double length = from.isValue() ? from.value : 1.0;
    const RealAnswer to =
        askDistance(L"\n指定新的长度或 [点(P)] <1>: ", L"Points", &base, RSG_NOZERO | RSG_NONEG);
    if (to.isKeyword(L"Points")) {
        const RealAnswer between =
            askDistance(L"\n指定第一点: ", nullptr, nullptr, RSG_NONULL | RSG_NOZERO | RSG_NONEG);
        return between.isValue() ? std::optional(between.value / length) : std::nullopt;
    }
    if (to.isCancelled()) {
        return std::nullopt;
    }
    return (to.isValue() ? to.value : 1.0) / length;
}

void runScale() {
    const Selection selection = Selection::askEditable();
    if (selection.empty()) {
        return;
    }
    const PointAnswer base = askPoint(L"\n指定基点: ", nullptr, nullptr, RSG_NONULL);
    if (!base.isValue()) {
        return;
    }
    bool copies = false;
    const Dragging preview(selection.ids(), [](const AcGePoint3d& from, const AcGePoint3d& to) {
        const double distance = from.distanceTo(to);
        return distance > 0.0 ? AcGeMatrix3d::scaling(distance, from) : AcGeMatrix3d();
    });
    std::optional<double> factor;
    while (!factor) {
        const RealAnswer answer = askDistance(L"\n指定比例因子或 [复制(C)/参照(R)]: ", L"Copy Reference",
                                              &base.ucs, RSG_NONULL | RSG_NOZERO | RSG_NONEG);
        if (answer.isKeyword(L"Copy")) {
            copies = true;
            acutPrintf(L"\n缩放一组选定对象。");
        } else if (answer.isKeyword(L"Reference")) {
            factor = askReferencedScale(base.ucs);
            if (!factor) {
                return;
            }
        } else if (answer.isValue()) {
            factor = answer.value;
        } else {
            return;
        }
    }
    apply(selection, AcGeMatrix3d::scaling(*factor, base.world), copies);
}

/// An axis system on up to three points: the first is the origin, the second gives X, the third the plane.
AcGeMatrix3d frameOn(const std::vector<AcGePoint3d>& points) {
    const AcGeVector3d x = (points[1] - points[0]).normal();
    AcGeVector3d z = points.size() > 2 ? x.crossProduct(points[2] - points[0]) : ucsNormal();
    AcGeVector3d y = z.crossProduct(x);
    if (y.isZeroLength()) {
        y = x.perpVector();
    }
    y.normalize();
    AcGeMatrix3d frame;
    frame.setCoordSystem(points[0], x, y, x.crossProduct(y));
    return frame;
}

void runAlign() {
    const Selection selection = Selection::askEditable();
    if (selection.empty()) {
        return;
    }
    constexpr const wchar_t* names[] = {L"一", L"二", L"三"};
    std::vector<AcGePoint3d> from;
    std::vector<AcGePoint3d> to;
    while (from.size() < 3) {
        const std::wstring name = names[from.size()];
        const int flags = from.empty() ? RSG_NONULL : 0;
        const PointAnswer source =
            askPoint(L"\n指定第" + name + L"个源点" + (from.size() == 2 ? L"或 <继续>: " : L": "), nullptr,
                     nullptr, flags);
        if (source.isCancelled()) {
            return;
        }
        if (source.isNone()) {
            break;
        }
        const PointAnswer target =
            askPoint(L"\n指定第" + name + L"个目标点: ", nullptr, &source.ucs, RSG_NONULL);
        if (!target.isValue()) {
            return;
        }
        from.push_back(source.world);
        to.push_back(target.world);
    }
    if (from.size() == 1) {
        apply(selection, AcGeMatrix3d::translation(to[0] - from[0]), false);
        return;
    }
    if (from[0].isEqualTo(from[1]) || to[0].isEqualTo(to[1])) {
        acutPrintf(L"\n对齐的两点不能重合。");
        return;
    }
    AcGeMatrix3d scale;
    if (from.size() == 2) {
        const std::optional<bool> scales = askYesNo(L"\n是否基于对齐点缩放对象?", false);
        if (!scales) {
            return;
        }
        if (*scales) {
            scale = AcGeMatrix3d::scaling(to[0].distanceTo(to[1]) / from[0].distanceTo(from[1]), to[0]);
        }
    }
    apply(selection, scale * frameOn(to) * frameOn(from).inverse(), false);
}

constexpr CommandRow rows[] = {{L"MIRROR", L"镜像", ACRX_CMD_USEPICKSET | ACRX_CMD_REDRAW, runMirror},
                               {L"ROTATE", L"旋转", ACRX_CMD_USEPICKSET | ACRX_CMD_REDRAW, runRotate},
                               {L"SCALE", L"比例缩放", ACRX_CMD_USEPICKSET | ACRX_CMD_REDRAW, runScale},
                               {L"ALIGN", L"对齐", ACRX_CMD_USEPICKSET | ACRX_CMD_REDRAW, runAlign}};

} // namespace

std::span<const CommandRow> transformCommands() {
    return rows;
}

} // namespace host
