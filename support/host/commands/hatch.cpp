// -HATCH: patterns in closed curves, picked by a point inside or one by one.
#include "host/commands/ask.h"
#include "host/commands/edit/boundarytrace.h"
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

/// A closed boundary in the plane of the UCS: a polyline, or lines and arcs of ellipses.
struct Loop {
    BulgePath path;
    std::vector<CurvePiece> edges;
};

std::optional<Loop> loopOf(AcDbObjectId id) {
    const auto* entity = peek<AcDbEntity>(id);
    if (entity == nullptr) {
        return std::nullopt;
    }
    const ReadAccess access(*entity);
    Loop loop;
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

/// A boundary that was traced, as a polyline where its arcs are those of circles.
Loop loopOf(const TracedLoop& traced) {
    Loop loop;
    loop.path.closed = true;
    for (const CurvePiece& piece : traced.pieces) {
        if (piece.isArc() && !piece.isCircular()) {
            return {{}, traced.pieces};
        }
        const double turn = piece.normal().z < 0.0 ? -1.0 : 1.0;
        const double bulge = piece.isArc() ? bulgeOfSweep(turn * (piece.to - piece.from)) : 0.0;
        loop.path.add(to2d(piece.pointAt(piece.from)), bulge);
    }
    return loop;
}

void appendEdges(AcDbHatch& hatch, const std::vector<CurvePiece>& pieces) {
    AcGeVoidPointerArray edges;
    AcGeIntArray kinds;
    for (const CurvePiece& piece : pieces) {
        if (!piece.isArc()) {
            edges.append(new AcGeLineSeg2d(to2d(piece.pointAt(piece.from)), to2d(piece.pointAt(piece.to))));
            kinds.append(AcDbHatch::kLine);
            continue;
        }
        const PrincipalAxes axes = principalAxes(piece.u, piece.v);
        const auto [low, high] = std::minmax(piece.from, piece.to);
        edges.append(new AcGeEllipArc2d(to2d(piece.origin), to2d(axes.major).normal(),
                                        to2d(axes.minor).normal(), axes.major.length(), axes.minor.length(),
                                        low - axes.shift, high - axes.shift));
        kinds.append(AcDbHatch::kEllArc);
    }
    hatch.appendLoop(AcDbHatch::kExternal, edges, kinds);
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
    const AcGeVector3d normal = ucsNormal();
    const TracedBoundary boundary =
        traceBoundary(currentDatabase().currentSpaceId(), normal, to2d(toObject(normal, world)));
    for (const TracedLoop& loop : boundary.loops) {
        mLoops.push_back(loopOf(loop));
    }
    if (boundary.loops.empty() && boundary.gap) {
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
    const bool user = mSettings.isUserDefined();
    if (user) {
        hatch->setPatternSpace(mSettings.spacing);
        hatch->setPatternDouble(mSettings.crossed);
    }
    AcString fault;
    if (hatch->setPattern(user ? AcDbHatch::kUserDefined : AcDbHatch::kPreDefined,
                          user ? L"_USER" : mSettings.pattern.c_str(), &fault) != Acad::eOk) {
        reportFailure(L"找不到填充图案 \"" + mSettings.pattern + L"\"");
        return;
    }
    hatch->setHatchStyle(AcDbHatch::kNormal);
    for (const Loop& loop : mLoops) {
        if (!loop.edges.empty()) {
            appendEdges(*hatch, loop.edges);
            continue;
        }
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
