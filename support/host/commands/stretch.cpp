// STRETCH: what lies in crossing windows moves, what crosses them is stretched.
#include "host/commands/ask.h"
#include "host/commands/edit/editing.h"
#include "host/commands/registry.h"
#include "host/ed/question.h"
#include "host/rx/text.h"

#include <unordered_map>

namespace host {
namespace {

/// What was selected: windows with what they cross, and entities picked one by one, which move as they are.
struct Stretched {
    std::vector<BulgePath> windows; ///< closed, in plan
    PickSet entities;
    PickSet whole;
};

bool isInside(const Stretched& selected, const AcGePoint3d& point) {
    return std::any_of(selected.windows.begin(), selected.windows.end(), [&](const BulgePath& window) {
        return containment(window, to2d(point)) != AcGe::kOutside;
    });
}

void addWindow(Stretched& selected, const std::vector<AcGePoint2d>& corners) {
    BulgePath window;
    window.closed = true;
    for (const AcGePoint2d& corner : corners) {
        window.add(corner);
    }
    int added = 0;
    for (const AcDbObjectId id : entitiesIn({SelectionShape::Kind::crossing, corners})) {
        const auto* entity = peek<AcDbEntity>(id);
        if (entity != nullptr && !isOnLockedLayer(*entity)) {
            added += selected.entities.add(id) ? 1 : 0;
        }
    }
    selected.windows.push_back(std::move(window));
    acutPrintf(L"\n找到 %d 个", added);
}

AcGePoint2d plan(const AcGePoint3d& ucs) {
    return to2d(ucsToWorld(ucs));
}

bool askCorners(Stretched& selected, std::optional<AcGePoint3d> first) {
    if (!first) {
        const PointAnswer point = askPoint(L"\n指定第一个角点: ", nullptr, nullptr, RSG_NONULL);
        if (!point.isValue()) {
            return false;
        }
        first = point.ucs;
    }
    const PointAnswer corner = askPoint(L"\n指定对角点: ", nullptr, &*first, RSG_NONULL);
    if (corner.isValue()) {
        const AcGePoint3d& a = *first;
        const AcGePoint3d& b = corner.ucs;
        addWindow(selected, {plan(a), plan({b.x, a.y, a.z}), plan(b), plan({a.x, b.y, a.z})});
    }
    return corner.isValue();
}

bool askPolygon(Stretched& selected) {
    std::vector<AcGePoint3d> points;
    for (;;) {
        const PointAnswer point = points.empty()
                                      ? askPoint(L"\n第一个圈围点: ")
                                      : askPoint(L"\n指定直线的端点或 [放弃(U)]: ", L"Undo", &points.back());
        if (point.isKeyword(L"Undo")) {
            points.pop_back();
        } else if (point.isValue()) {
            points.push_back(point.ucs);
        } else {
            break;
        }
    }
    std::vector<AcGePoint2d> corners;
    std::transform(points.begin(), points.end(), std::back_inserter(corners), plan);
    if (corners.size() >= 3) {
        addWindow(selected, corners);
    }
    return true;
}

/// Sets and entities by name, or one picked.
bool takeGiven(Stretched& selected, const InputItem& item) {
    const resbuf* value = item.kind == InputItem::Kind::value ? item.value.get() : nullptr;
    value = value != nullptr && value->restype == RTLB ? value->rbnext : value;
    AcDbObjectId id;
    if (value != nullptr && value->restype == RTENAME &&
        acdbGetObjectId(id, value->resval.rlname) == Acad::eOk) {
        selected.whole.add(id);
        return true;
    }
    if (const PickSet* set =
            value != nullptr && value->restype == RTPICKS ? pickSetOf(value->resval.rlname) : nullptr) {
        for (const AcDbObjectId one : set->ids) {
            selected.whole.add(one);
        }
        return true;
    }
    return false;
}

/// False when the user gave up.
bool select(Stretched& selected) {
    acutPrintf(L"\n以交叉窗口或交叉多边形选择要拉伸的对象...");
    for (;;) {
        std::optional<AcGePoint3d> point;
        acedInitGet(0, L"Crossing CPolygon Last");
        const InitGet init = takeInitGet();
        ValueQuestion question{L"\n选择对象: ", {}, L"无效选择。", {}};
        question.options.wantsPoint = true;
        question.take = [&](const InputItem& item) {
            point = pointIn(item, std::nullopt);
            return point.has_value() || takeGiven(selected, item);
        };
        const int code = askValue(init, question);
        if (code == RTNONE) {
            return !selected.entities.empty() || !selected.whole.empty();
        }
        if (code == RTKWORD) {
            const std::wstring word = lastInput();
            if (word == L"Last") {
                ads_name last;
                AcDbObjectId id;
                if (acdbEntLast(last) == RTNORM && acdbGetObjectId(id, last) == Acad::eOk) {
                    selected.whole.add(id);
                }
            } else if (word == L"CPolygon" ? !askPolygon(selected) : !askCorners(selected, std::nullopt)) {
                return false;
            }
        } else if (code != RTNORM) {
            return false;
        } else if (point) {
            const AcDbObjectId picked = entityAt(ucsToWorld(*point), pickAperture());
            if (!picked.isNull()) {
                selected.whole.add(picked);
            } else if (!askCorners(selected, point)) {
                return false;
            }
        }
    }
}

/// Moves the points of an entity that lie in the windows; all of it when all of them do.
Acad::ErrorStatus stretch(AcDbEntity& entity, const Stretched& selected, const AcGeVector3d& by) {
    AcGePoint3dArray points;
    AcDbIntArray inside;
    if (entity.getStretchPoints(points) == Acad::eOk) {
        for (int i = 0; i < points.length(); ++i) {
            if (isInside(selected, points[i])) {
                inside.append(i);
            }
        }
    }
    if (inside.isEmpty()) {
        return Acad::eOk;
    }
    return inside.length() == points.length() ? entity.transformBy(AcGeMatrix3d::translation(by))
                                              : entity.moveStretchPointsAt(inside, by);
}

std::optional<AcGeVector3d> askDisplacement() {
    const PointAnswer base = askPoint(L"\n指定基点或 [位移(D)] <位移>: ", L"Displacement");
    if (base.isCancelled()) {
        return std::nullopt;
    }
    if (!base.isValue()) {
        const PointAnswer vector = askPoint(L"\n指定位移 <0.0000, 0.0000, 0.0000>: ");
        return vector.isValue() ? std::optional(ucsMatrix() * vector.ucs.asVector()) : std::nullopt;
    }
    const PointAnswer second = askPoint(L"\n指定第二个点或 <使用第一个点作为位移>: ", nullptr, &base.ucs);
    if (second.isCancelled()) {
        return std::nullopt;
    }
    return second.isValue() ? second.world - base.world : ucsMatrix() * base.ucs.asVector();
}

void runStretch() {
    Stretched selected;
    if (!select(selected)) {
        return;
    }
    const std::optional<AcGeVector3d> by = askDisplacement();
    if (!by) {
        return;
    }
    int refused = 0;
    const auto change = [&](const PickSet& set, const std::function<Acad::ErrorStatus(AcDbEntity&)>& act) {
        for (const AcDbObjectId id : set.ids) {
            const Opened<AcDbEntity> entity(id, AcDb::kForWrite);
            refused += !entity || act(*entity.get()) != Acad::eOk ? 1 : 0;
        }
    };
    selected.entities.removeAll(selected.whole.ids);
    change(selected.entities, [&](AcDbEntity& entity) { return stretch(entity, selected, *by); });
    change(selected.whole,
           [&](AcDbEntity& entity) { return entity.transformBy(AcGeMatrix3d::translation(*by)); });
    if (refused > 0) {
        acutPrintf(L"\n%d 个对象无法拉伸。", refused);
    }
}

constexpr CommandRow rows[] = {{L"STRETCH", L"拉伸", ACRX_CMD_MODAL, runStretch}};

} // namespace

std::span<const CommandRow> stretchCommands() {
    return rows;
}

} // namespace host
