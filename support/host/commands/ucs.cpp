// UCS: sets, saves and restores user coordinate systems.
#include "host/commands/ask.h"
#include "host/commands/registry.h"
#include "host/db/dbents.h"
#include "host/rx/text.h"

#include <cmath>

namespace host {
namespace {

constexpr double degree = 3.14159265358979323846 / 180.0;

/// Axes as near as can be to what was picked: Z decides, then X.
std::optional<UcsFrame> frameFrom(const AcGePoint3d& origin, const AcGeVector3d& x, const AcGeVector3d& z) {
    const AcGeVector3d y = z.crossProduct(x);
    if (z.isZeroLength() || y.isZeroLength()) {
        return std::nullopt;
    }
    return UcsFrame{origin, y.crossProduct(z).normal(), y.normal(), {}};
}

/// With the arbitrary X axis of object coordinates.
UcsFrame frameWithNormal(const AcGePoint3d& origin, const AcGeVector3d& z) {
    const AcGeMatrix3d matrix = AcGeMatrix3d::planeToWorld(z.normal());
    return {origin, matrix * AcGeVector3d::kXAxis, matrix * AcGeVector3d::kYAxis, {}};
}

void use(const std::optional<UcsFrame>& ucs) {
    if (!ucs || !setCurrentUcs(*ucs)) {
        acutPrintf(L"\n所选的点不能定义坐标系。");
    }
}

/// A point on the X axis and one in the XY plane; Enter keeps the directions so far.
void fromPoints(const AcGePoint3d& origin, bool mayAccept) {
    UcsFrame ucs = currentUcs();
    ucs.name.clear();
    const AcGePoint3d base = worldToUcs(origin);
    ucs.origin = origin;
    const int flags = mayAccept ? 0 : RSG_NONULL;
    const PointAnswer onX = askPoint(
        mayAccept ? L"\n指定 X 轴上的点或 <接受>: " : L"\n在正 X 轴范围上指定点: ", nullptr, &base, flags);
    if (onX.isCancelled()) {
        return;
    }
    if (onX.isNone()) {
        use(ucs);
        return;
    }
    const AcGeVector3d x = onX.world - origin;
    const PointAnswer inPlane =
        askPoint(mayAccept ? L"\n指定 XY 平面上的点或 <接受>: " : L"\n在 UCS XY 平面的正 Y 轴范围上指定点: ",
                 nullptr, &base, flags);
    if (inPlane.isValue()) {
        use(frameFrom(origin, x, x.crossProduct(inPlane.world - origin)));
    } else if (inPlane.isNone()) {
        // The XY plane turns as little as it can.
        const AcGeVector3d y = ucs.z().crossProduct(x);
        use(y.isZeroLength() ? std::nullopt : frameFrom(origin, x, x.crossProduct(y)));
    }
}

void fromThreePoints() {
    const PointAnswer origin = askPoint(L"\n指定新原点 <0,0,0>: ");
    if (!origin.isCancelled()) {
        fromPoints(origin.isValue() ? origin.world : currentUcs().origin, false);
    }
}

void fromZAxis() {
    const PointAnswer origin = askPoint(L"\n指定新原点 <0,0,0>: ");
    if (origin.isCancelled()) {
        return;
    }
    const AcGePoint3d at = origin.isValue() ? origin.world : currentUcs().origin;
    const AcGePoint3d base = worldToUcs(at);
    const PointAnswer onZ = askPoint(L"\n在正 Z 轴范围上指定点 <" + shown(base.x) + L"," + shown(base.y) +
                                         L"," + shown(base.z + 1.0) + L">: ",
                                     nullptr, &base);
    if (onZ.isCancelled()) {
        return;
    }
    const AcGeVector3d z = onZ.isValue() ? onZ.world - at : currentUcs().z();
    if (z.isZeroLength()) {
        use(std::nullopt);
        return;
    }
    use(frameWithNormal(at, z));
}

/// Turns about one of the current axes.
void turnAbout(wchar_t axis) {
    const double standard = systemVariableInteger(L"UCSAXISANG") * degree;
    const RealAnswer angle =
        askAngle(std::wstring(L"\n指定绕 ") + axis + L" 轴的旋转角度 <" + shownAngle(standard) + L">: ");
    if (angle.isCancelled()) {
        return;
    }
    UcsFrame ucs = currentUcs();
    const AcGeVector3d about = axis == L'X' ? ucs.x : axis == L'Y' ? ucs.y : ucs.z();
    const AcGeMatrix3d turn = AcGeMatrix3d::rotation(angle.isValue() ? angle.value : standard, about);
    use(UcsFrame{ucs.origin, turn * ucs.x, turn * ucs.y, {}});
}

/// The end of a curve nearer to a point, and the other one.
std::pair<AcGePoint3d, AcGePoint3d> endsFrom(const AcDbCurve& curve, const AcGePoint3d& pick) {
    AcGePoint3d start;
    AcGePoint3d end;
    curve.getStartPoint(start);
    curve.getEndPoint(end);
    return pick.distanceTo(start) <= pick.distanceTo(end) ? std::pair(start, end) : std::pair(end, start);
}

std::optional<UcsFrame> frameOf(const AcDbEntity& entity, const AcGePoint3d& pick) {
    const ReadAccess access(entity);
    const AcGeVector3d normal = entity.getEcs() * AcGeVector3d::kZAxis;
    if (const auto* line = AcDbLine::cast(&entity)) {
        const auto [near, far] = endsFrom(*line, pick);
        return frameFrom(near, far - near, normal);
    }
    if (const auto* arc = AcDbArc::cast(&entity)) {
        return frameFrom(arc->center(), endsFrom(*arc, pick).first - arc->center(), normal);
    }
    if (const auto* circle = AcDbCircle::cast(&entity)) {
        return frameFrom(circle->center(), pick - circle->center(), normal);
    }
    if (const auto* point = AcDbPoint::cast(&entity)) {
        return frameWithNormal(point->position(), normal);
    }
    if (const auto* text = AcDbText::cast(&entity)) {
        const AcGeVector3d direction(std::cos(text->rotation()), std::sin(text->rotation()), 0.0);
        return frameFrom(text->position(), entity.getEcs() * direction, normal);
    }
    if (const auto* reference = AcDbBlockReference::cast(&entity)) {
        const AcGeVector3d direction(std::cos(reference->rotation()), std::sin(reference->rotation()), 0.0);
        return frameFrom(reference->position(), entity.getEcs() * direction, normal);
    }
    if (const auto* curve = AcDbCurve::cast(&entity)) {
        AcGePoint3d start;
        AcGePoint3d next;
        double from = 0.0;
        if (curve->getStartPoint(start) == Acad::eOk && curve->getStartParam(from) == Acad::eOk &&
            curve->getPointAtParam(from + 1.0, next) == Acad::eOk) {
            return frameFrom(start, next - start, normal);
        }
    }
    return std::nullopt;
}

void fromObject() {
    ads_name name;
    ads_point point;
    if (acedEntSel(L"\n选择对齐 UCS 的对象: ", name, point) != RTNORM) {
        return;
    }
    AcDbObjectId id;
    acdbGetObjectId(id, name);
    const auto* entity = peek<AcDbEntity>(id);
    const std::optional<UcsFrame> ucs =
        entity != nullptr ? frameOf(*entity, ucsToWorld(asPoint3d(point))) : std::nullopt;
    if (ucs) {
        use(ucs);
    } else {
        acutPrintf(L"\n该对象不能定义坐标系。");
    }
}

void moveOrigin() {
    const PointAnswer origin = askPoint(L"\n指定新原点或 [Z 向深度(Z)] <0,0,0>: ", L"Z");
    UcsFrame ucs = currentUcs();
    ucs.name.clear();
    if (origin.isKeyword(L"Z")) {
        const RealAnswer depth = askDistance(L"\n指定 Z 向深度 <0>: ");
        if (depth.isValue()) {
            ucs.origin += ucs.z() * depth.value;
            use(ucs);
        }
    } else if (origin.isValue()) {
        ucs.origin = origin.world;
        use(ucs);
    }
}

// Saved coordinate systems.

std::wstring shownPoint(const AcGePoint3d& p) {
    return L"<" + shown(p.x) + L"," + shown(p.y) + L"," + shown(p.z) + L">";
}

const AcDbUCSTable& savedTable() {
    return *peek<AcDbUCSTable>(currentDatabase().UCSTableId());
}

void list() {
    const TextAnswer pattern = askName(L"\n输入要列出的 UCS 名称 <*>: ");
    if (pattern.isCancelled()) {
        return;
    }
    const UcsFrame now = currentUcs();
    acutPrintf(L"\n当前 UCS 名称: %s", now.isWorld()      ? L"*世界*"
                                       : now.name.empty() ? L"*没有名称*"
                                                          : now.name.c_str());
    acutPrintf(L"\n已保存的坐标系:");
    const AcGeMatrix3d fromWorld = now.toWorld().inverse();
    for (AcDbStub* stub : savedTable().records()) {
        const auto* saved = peek<AcDbUCSTableRecord>(stub);
        if (saved == nullptr ||
            (pattern.isValue() && !wildcardMatch(saved->name().kwszPtr(), pattern.text))) {
            continue;
        }
        const AcGeVector3d x = fromWorld * saved->xAxis();
        const AcGeVector3d y = fromWorld * saved->yAxis();
        acutPrintf(L"\n\"%s\"\n  原点 = %s, X 轴 = %s\n  Y 轴 = %s, Z 轴 = %s", saved->name().kwszPtr(),
                   shownPoint(fromWorld * saved->origin()).c_str(),
                   shownPoint(AcGePoint3d::kOrigin + x).c_str(), shownPoint(AcGePoint3d::kOrigin + y).c_str(),
                   shownPoint(AcGePoint3d::kOrigin + x.crossProduct(y)).c_str());
    }
}

/// A name; `?` lists and asks again. Empty when none was given.
std::wstring askUcsName(const std::wstring& prompt) {
    for (;;) {
        const TextAnswer answer = askName(prompt);
        if (!answer.isValue()) {
            return {};
        }
        if (answer.text != L"?") {
            return std::wstring(trim(answer.text));
        }
        list();
    }
}

void save() {
    const std::wstring name = askUcsName(L"\n输入保存当前 UCS 的名称或 [?]: ");
    if (name.empty()) {
        return;
    }
    if (acdbSNValid(name.c_str(), 0) != RTNORM) {
        acutPrintf(L"\n无效的 UCS 名称 \"%s\"。", name.c_str());
        return;
    }
    UcsFrame ucs = currentUcs();
    AcDbObjectId id;
    if (savedTable().getAt(name.c_str(), id) == Acad::eOk) {
        const Answer replace =
            askKeyword(L"\nUCS \"" + name + L"\" 已经存在。是否替换? [是(Y)/否(N)] <N>: ", L"Yes No");
        if (!replace.isKeyword(L"Yes")) {
            return;
        }
    } else {
        const Opened<AcDbUCSTable> table(currentDatabase().UCSTableId(), AcDb::kForWrite);
        auto record = std::make_unique<AcDbUCSTableRecord>();
        record->setName(name.c_str());
        if (!table || table->add(id, record.get()) != Acad::eOk) {
            acutPrintf(L"\n无法保存 UCS \"%s\"。", name.c_str());
            return;
        }
        record.release()->close();
    }
    const Opened<AcDbUCSTableRecord> record(id, AcDb::kForWrite);
    if (record) {
        record->setOrigin(ucs.origin);
        record->setXAxis(ucs.x);
        record->setYAxis(ucs.y);
        ucs.name = name;
        setCurrentUcs(ucs);
    }
}

void restore() {
    const std::wstring name = askUcsName(L"\n输入要恢复的 UCS 名称或 [?]: ");
    AcDbObjectId id;
    if (name.empty()) {
        return;
    }
    savedTable().getAt(name.c_str(), id);
    const auto* record = peek<AcDbUCSTableRecord>(id);
    if (record == nullptr) {
        acutPrintf(L"\n找不到 UCS \"%s\"。", name.c_str());
        return;
    }
    use(UcsFrame{record->origin(), record->xAxis(), record->yAxis(), record->name().kwszPtr()});
}

void remove() {
    const std::wstring names = askUcsName(L"\n输入要删除的 UCS 名称 <无>: ");
    if (names.empty()) {
        return;
    }
    const Opened<AcDbUCSTable> table(currentDatabase().UCSTableId(), AcDb::kForRead);
    int count = 0;
    forEachMatch(
        *table.get(), names,
        [&](AcDbObjectId id) {
            if (const Opened<AcDbUCSTableRecord> record(id, AcDb::kForWrite); record) {
                record->erase();
                ++count;
            }
        },
        [](const std::wstring& name) { acutPrintf(L"\n找不到 UCS \"%s\"。", name.c_str()); });
    acutPrintf(L"\n已删除 %d 个 UCS 名称。", count);
}

void named() {
    const Answer answer = askKeyword(L"\n输入选项 [恢复(R)/保存(S)/删除(D)/?]: ", L"Restore Save Delete ?");
    if (answer.isKeyword(L"Restore")) {
        restore();
    } else if (answer.isKeyword(L"Save")) {
        save();
    } else if (answer.isKeyword(L"Delete")) {
        remove();
    } else if (answer.isKeyword(L"?")) {
        list();
    }
}

void toWorld() {
    setCurrentUcs({});
}

void previous() {
    if (!restorePreviousUcs()) {
        acutPrintf(L"\n没有上一个坐标系。");
    }
}

/// Parallel to the view from above, at the same origin.
void fromView() {
    setCurrentUcs({currentUcs().origin, AcGeVector3d::kXAxis, AcGeVector3d::kYAxis, {}});
}

void fromNew();

struct Option {
    const wchar_t* keyword;
    void (*run)();
};
constexpr Option options[] = {
    {L"NAmed", named},
    {L"OBject", fromObject},
    {L"Previous", previous},
    {L"View", fromView},
    {L"World", toWorld},
    {L"X", [] { turnAbout(L'X'); }},
    {L"Y", [] { turnAbout(L'Y'); }},
    {L"Z", [] { turnAbout(L'Z'); }},
    {L"ZAxis", fromZAxis},
    {L"Face", [] { acutPrintf(L"\n没有实体的面可以选择。"); }},
    {L"New", fromNew},
    {L"Move", moveOrigin},
    {L"Origin", moveOrigin},
    {L"Save", save},
    {L"Restore", restore},
    {L"Delete", remove},
    {L"3point", fromThreePoints},
    {L"?", list},
};

bool runOption(const Answer& answer) {
    const auto* found = std::find_if(std::begin(options), std::end(options),
                                     [&](const Option& option) { return answer.isKeyword(option.keyword); });
    if (found != std::end(options)) {
        found->run();
    }
    return found != std::end(options);
}

void fromNew() {
    const PointAnswer answer =
        askPoint(L"\n指定新 UCS 的原点或 [Z 轴(ZA)/三点(3)/对象(OB)/面(F)/视图(V)/X/Y/Z] <0,0,0>: ",
                 L"ZAxis 3point OBject Face View X Y Z");
    if (answer.isValue()) {
        UcsFrame ucs = currentUcs();
        ucs.name.clear();
        ucs.origin = answer.world;
        use(ucs);
    } else {
        runOption(answer);
    }
}

void runUcs() {
    const UcsFrame now = currentUcs();
    acutPrintf(L"\n当前 UCS 名称: %s", now.isWorld()      ? L"*世界*"
                                       : now.name.empty() ? L"*没有名称*"
                                                          : now.name.c_str());
    const PointAnswer answer = askPoint(
        L"\n指定 UCS 的原点或 [面(F)/命名(NA)/对象(OB)/上一个(P)/视图(V)/世界(W)/X/Y/Z/Z 轴(ZA)] <世界>: ",
        L"Face NAmed OBject Previous View World X Y Z ZAxis New Move Origin Save Restore Delete 3point ?");
    if (answer.isValue()) {
        fromPoints(answer.world, true);
    } else if (answer.isNone()) {
        toWorld();
    } else {
        runOption(answer);
    }
}

constexpr CommandRow rows[] = {{L"UCS", L"UCS", ACRX_CMD_MODAL, runUcs}};

} // namespace

std::span<const CommandRow> ucsCommands() {
    return rows;
}

} // namespace host
