// -HATCH: patterns in closed curves, picked by a point inside or one by one.
#include "host/commands/ask.h"
#include "host/commands/edit/editing.h"
#include "host/commands/registry.h"
#include "host/rx/text.h"

#include <cmath>

namespace host {
namespace {

struct HatchSettings {
    std::wstring pattern; ///< a name, SOLID, or "U" for lines by angle and spacing
    double scale = 1.0;
    double angle = 0.0; ///< radians
    double spacing = 1.0;
    bool crossed = false;

    bool isUserDefined() const { return pattern == L"U" || pattern == L"_U"; }
};

/// A closed curve in the plane of the UCS.
struct Loop {
    AcDbObjectId source;
    BulgePath path;
};

std::optional<Loop> loopOf(AcDbObjectId id) {
    const auto* entity = peek<AcDbEntity>(id);
    if (entity == nullptr) {
        return std::nullopt;
    }
    const ReadAccess access(*entity);
    Loop loop{id, {}};
    loop.path.closed = true;
    const AcGeVector3d normal = ucsNormal();
    if (const auto* circle = AcDbCircle::cast(entity)) {
        if (!circle->normal().isParallelTo(normal)) {
            return std::nullopt;
        }
        const AcGePoint2d center = to2d(toObject(normal, circle->center()));
        loop.path.add(center + AcGeVector2d(circle->radius(), 0.0), 1.0);
        loop.path.add(center - AcGeVector2d(circle->radius(), 0.0), 1.0);
        return loop;
    }
    const std::optional<FlatPath> flat = flatPathOf(*entity);
    if (!flat || !flat->normal.isEqualTo(normal)) {
        return std::nullopt;
    }
    loop.path = flat->shape.path;
    std::vector<BulgeVertex>& vertices = loop.path.vertices;
    if (!loop.path.closed && vertices.size() > 2 && vertices.front().point.isEqualTo(vertices.back().point)) {
        vertices.pop_back();
        loop.path.closed = true;
    }
    return loop.path.closed && vertices.size() >= 2 ? std::optional(loop) : std::nullopt;
}

/// The smallest closed curve around the point, and what lies within it without the point.
std::vector<Loop> loopsAround(const AcGePoint2d& point, std::vector<Loop> all) {
    std::optional<std::size_t> outer;
    double smallest = 0.0;
    for (std::size_t i = 0; i < all.size(); ++i) {
        const double area = std::fabs(signedArea(all[i].path));
        if (windingNumber(all[i].path, point) != 0 && (!outer || area < smallest)) {
            outer = i;
            smallest = area;
        }
    }
    std::vector<Loop> loops;
    if (!outer) {
        return loops;
    }
    const BulgePath bounds = all[*outer].path;
    loops.push_back(all[*outer]);
    for (std::size_t i = 0; i < all.size(); ++i) {
        const bool within = i != *outer && windingNumber(bounds, all[i].path.vertices.front().point) != 0 &&
                            std::fabs(signedArea(all[i].path)) < smallest;
        if (within) {
            loops.push_back(std::move(all[i]));
        }
    }
    return loops;
}

bool isPattern(const std::wstring& name) {
    AcDbHatch hatch;
    return hatch.setPattern(AcDbHatch::kPreDefined, name.c_str()) == Acad::eOk;
}

class Hatching {
public:
    void run();

private:
    bool askProperties();
    void addAround(const AcGePoint3d& world);
    void addSelected();
    void make();

    HatchSettings mSettings{systemVariableText(L"HPNAME"), systemVariableReal(L"HPSCALE"),
                            systemVariableReal(L"HPANG"), systemVariableReal(L"HPSPACE"),
                            systemVariableInteger(L"HPDOUBLE") != 0};
    std::vector<Loop> mLoops;
    std::optional<std::vector<Loop>> mClosedCurves; ///< of the current space, found when first needed
};

void Hatching::run() {
    for (;;) {
        acutPrintf(L"\n当前填充图案: %s", mSettings.pattern.c_str());
        const PointAnswer answer = askPoint(L"\n指定内部点或 [特性(P)/选择对象(S)]: ", L"Properties Select");
        if (answer.isKeyword(L"Properties")) {
            if (!askProperties()) {
                return;
            }
        } else if (answer.isKeyword(L"Select")) {
            addSelected();
        } else if (answer.isValue()) {
            addAround(answer.world);
        } else if (answer.isCancelled()) {
            return;
        } else {
            break;
        }
    }
    if (!mLoops.empty()) {
        make();
    }
}

bool Hatching::askProperties() {
    for (;;) {
        const TextAnswer name =
            askText(L"\n输入图案名称或 [实体(S)/用户定义(U)] <" + mSettings.pattern + L">: ");
        if (name.isCancelled()) {
            return false;
        }
        std::wstring pattern = toUpper(name.isNone() ? mSettings.pattern : name.text);
        if (pattern == L"S" || pattern == L"_S") {
            pattern = L"SOLID";
        }
        if (pattern == L"U" || pattern == L"_U" || isPattern(pattern)) {
            mSettings.pattern = std::move(pattern);
            break;
        }
        acutPrintf(L"\n找不到填充图案 \"%s\"。", pattern.c_str());
    }
    if (mSettings.pattern == L"SOLID") {
        return true;
    }
    const double degrees = mSettings.angle;
    if (mSettings.isUserDefined()) {
        const RealAnswer angle = askAngle(L"\n指定十字光标线的角度 <" + shownAngle(degrees) + L">: ");
        const RealAnswer spacing = angle.isCancelled()
                                       ? RealAnswer()
                                       : askDistance(L"\n指定行距 <" + shown(mSettings.spacing) + L">: ",
                                                     nullptr, nullptr, RSG_NOZERO | RSG_NONEG);
        const std::optional<bool> crossed =
            spacing.isCancelled() ? std::nullopt : askYesNo(L"\n是否双向填充区域?", mSettings.crossed);
        mSettings.angle = angle.isValue() ? angle.value : mSettings.angle;
        mSettings.spacing = spacing.isValue() ? spacing.value : mSettings.spacing;
        mSettings.crossed = crossed.value_or(false);
        return crossed.has_value();
    }
    const RealAnswer scale =
        askReal(L"\n指定图案缩放比例 <" + shown(mSettings.scale) + L">: ", nullptr, RSG_NOZERO | RSG_NONEG);
    if (scale.isCancelled()) {
        return false;
    }
    mSettings.scale = scale.isValue() ? scale.value : mSettings.scale;
    const RealAnswer angle = askAngle(L"\n指定图案角度 <" + shownAngle(mSettings.angle) + L">: ");
    mSettings.angle = angle.isValue() ? angle.value : mSettings.angle;
    return !angle.isCancelled();
}

void Hatching::addAround(const AcGePoint3d& world) {
    if (!mClosedCurves) {
        mClosedCurves.emplace();
        const auto* space = peek<AcDbBlockTableRecord>(currentDatabase().currentSpaceId());
        for (AcDbStub* stub : space->entities()) {
            const auto* entity = peek<AcDbEntity>(stub);
            std::optional<Loop> loop =
                entity != nullptr && isSelectable(*entity) ? loopOf(stub) : std::nullopt;
            if (loop) {
                mClosedCurves->push_back(std::move(*loop));
            }
        }
    }
    std::vector<Loop> found = loopsAround(to2d(toObject(ucsNormal(), world)), *mClosedCurves);
    if (found.empty()) {
        acutPrintf(L"\n未找到有效的图案填充边界。");
    }
    std::move(found.begin(), found.end(), std::back_inserter(mLoops));
}

void Hatching::addSelected() {
    const Selection selection = Selection::askWith(L"\n选择对象: ");
    int refused = 0;
    for (const AcDbObjectId id : selection.ids()) {
        if (std::optional<Loop> loop = loopOf(id)) {
            mLoops.push_back(std::move(*loop));
        } else {
            ++refused;
        }
    }
    if (refused > 0) {
        acutPrintf(L"\n%d 个对象不是封闭的边界。", refused);
    }
}

void Hatching::make() {
    auto hatch = std::make_unique<AcDbHatch>();
    hatch->setDatabaseDefaults();
    hatch->setNormal(ucsNormal());
    hatch->setElevation(toObject(ucsNormal(), ucsToWorld(AcGePoint3d::kOrigin)).z);
    hatch->setPatternAngle(mSettings.angle);
    hatch->setPatternScale(mSettings.scale);
    hatch->setPatternSpace(mSettings.spacing);
    hatch->setPatternDouble(mSettings.crossed);
    const bool user = mSettings.isUserDefined();
    AcString fault;
    if (hatch->setPattern(user ? AcDbHatch::kUserDefined : AcDbHatch::kPreDefined,
                          user ? L"_USER" : mSettings.pattern.c_str(), &fault) != Acad::eOk) {
        reportFailure(L"找不到填充图案 \"" + mSettings.pattern + L"\"");
        return;
    }
    hatch->setHatchStyle(AcDbHatch::kNormal);
    for (const Loop& loop : mLoops) {
        AcGePoint2dArray vertices;
        AcGeDoubleArray bulges;
        for (const BulgeVertex& vertex : loop.path.vertices) {
            vertices.append(vertex.point);
            bulges.append(vertex.bulge);
        }
        hatch->appendLoop(AcDbHatch::kPolyline | AcDbHatch::kExternal, vertices, bulges);
    }
    if (hatch->evaluateHatch() != Acad::eOk) {
        reportFailure(L"填充线太密: 请加大比例");
        return;
    }
    setSystemVariable(L"HPNAME", std::wstring_view(mSettings.pattern));
    setSystemVariable(L"HPSCALE", mSettings.scale);
    setSystemVariable(L"HPANG", mSettings.angle);
    setSystemVariable(L"HPSPACE", mSettings.spacing);
    appendToCurrentSpace(hatch.release());
}

void runHatch() {
    Hatching().run();
}

constexpr CommandRow rows[] = {{L"-HATCH", L"-图案填充", ACRX_CMD_MODAL, runHatch},
                               {L"HATCH", L"图案填充", ACRX_CMD_MODAL, runHatch}};

} // namespace

std::span<const CommandRow> hatchCommands() {
    return rows;
}

} // namespace host
