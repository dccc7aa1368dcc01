// WIPEOUT, 3DFACE and TRACE: areas given by their corners.
#include "host/commands/ask.h"
#include "host/commands/edit/editing.h"
#include "host/commands/registry.h"
#include "host/db/entities/wipeoutframes.h"

#include <algorithm>
#include <array>

namespace host {
namespace {

/// Corners of an area, at least three, in the UCS; nothing when the user gives up.
std::optional<std::vector<AcGePoint3d>> askCorners(const AcGePoint3d& first) {
    std::vector<AcGePoint3d> corners{first};
    for (;;) {
        const PointAnswer next =
            corners.size() < 2 ? askPoint(L"\n指定下一点: ", nullptr, &corners.back(), RSG_NONULL)
            : corners.size() < 3
                ? askPoint(L"\n指定下一点或 [放弃(U)]: ", L"Undo", &corners.back(), RSG_NONULL)
                : askPoint(L"\n指定下一点或 [闭合(C)/放弃(U)]: ", L"Close Undo", &corners.back());
        if (next.isCancelled()) {
            return std::nullopt;
        }
        if (next.isKeyword(L"Undo")) {
            corners.pop_back();
        } else if (next.isValue()) {
            corners.push_back(next.ucs);
        } else {
            return corners;
        }
    }
}

/// World coordinates.
bool appendWipeout(const std::vector<AcGePoint3d>& corners) {
    AcGePoint3dArray outline;
    for (const AcGePoint3d& corner : corners) {
        outline.append({corner.x, corner.y, corners.front().z});
    }
    auto wipeout = std::make_unique<AcDbWipeout>();
    wipeout->setDatabaseDefaults();
    if (wipeout->setOutline(outline) != Acad::eOk) {
        acutPrintf(L"\n这些点不围成区域。");
        return false;
    }
    appendToCurrentSpace(wipeout.release());
    return true;
}

void wipeByPolyline() {
    const auto refuse = [](const AcDbEntity& entity) -> const wchar_t* {
        const std::optional<FlatPath> path = flatPathOf(entity);
        if (!path || !path->shape.path.closed || path->shape.path.vertexCount() < 3) {
            return L"需要闭合的多段线。";
        }
        const auto isArc = [](const BulgeVertex& vertex) { return vertex.bulge != 0.0; };
        return std::ranges::any_of(path->shape.path.vertices, isArc) ? L"多段线只能由直线段组成。" : nullptr;
    };
    const EntityAnswer picked = askEntity(L"\n选择闭合多段线: ", nullptr, refuse);
    const std::optional<bool> erases =
        picked.isValue() ? askYesNo(L"\n是否要删除多段线?", false) : std::nullopt;
    if (!erases) {
        return;
    }
    std::vector<AcGePoint3d> corners;
    {
        const Opened<AcDbEntity> polyline(picked.id, AcDb::kForRead);
        const FlatPath path = *flatPathOf(*polyline.get());
        for (const BulgeVertex& vertex : path.shape.path.vertices) {
            corners.push_back(path.toWorld(vertex.point));
        }
    }
    if (appendWipeout(corners) && *erases) {
        eraseEntity(picked.id);
    }
}

void setFrames() {
    const int now = wipeoutFrames(currentDatabase());
    constexpr const wchar_t* names[] = {L"关", L"开", L"显示但不打印"};
    const Answer mode =
        askKeyword(std::wstring(L"\n输入模式 [开(ON)/关(OFF)/显示但不打印(D)] <") + names[now] + L">: ",
                   L"ON OFF Display");
    if (mode.kind == Answer::Kind::keyword) {
        setWipeoutFrames(currentDatabase(), mode.isKeyword(L"OFF") ? 0 : mode.isKeyword(L"ON") ? 1 : 2);
    }
}

void runWipeout() {
    const PointAnswer first = askPoint(L"\n指定第一点或 [边框(F)/多段线(P)] <多段线>: ", L"Frames Polyline");
    if (first.isKeyword(L"Frames")) {
        setFrames();
    } else if (first.isValue()) {
        if (const std::optional<std::vector<AcGePoint3d>> corners = askCorners(first.ucs)) {
            std::vector<AcGePoint3d> world;
            std::ranges::transform(*corners, std::back_inserter(world),
                                   [](const AcGePoint3d& corner) { return ucsToWorld(corner); });
            appendWipeout(world);
        }
    } else if (!first.isCancelled()) {
        wipeByPolyline();
    }
}

/// Faces in a strip: each goes on from the last two corners of the one before.
class FaceDrawing {
public:
    void run() {
        if (ask(0, L"\n指定第一点或 [不可见(I)]: ") != Step::point ||
            ask(1, L"\n指定第二点或 [不可见(I)]: ") != Step::point) {
            return;
        }
        while (ask(2, L"\n指定第三点或 [不可见(I)] <退出>: ") == Step::point) {
            const Step fourth = ask(3, L"\n指定第四点或 [不可见(I)] <创建三侧面>: ");
            if (fourth == Step::cancelled) {
                return;
            }
            if (fourth == Step::none) {
                mCorners[3] = mCorners[2];
                mShown[3] = true;
            }
            append();
            mCorners[0] = mCorners[2];
            mCorners[1] = mCorners[3];
            mShown[0] = mShown[2]; // the common edge, as it is there
            mShown[1] = true;
        }
    }

private:
    enum class Step { point, none, cancelled };

    /// The corner, and whether the edge that begins there is seen.
    Step ask(std::size_t index, const wchar_t* prompt) {
        mShown[index] = true;
        for (;;) {
            const PointAnswer answer =
                askPoint(prompt, L"Invisible", index == 0 ? nullptr : &mCorners[index - 1],
                         (index < 2 ? RSG_NONULL : 0) | RSG_GETZ);
            if (answer.isKeyword(L"Invisible")) {
                mShown[index] = false;
            } else if (answer.isValue()) {
                mCorners[index] = answer.ucs;
                return Step::point;
            } else {
                return answer.isNone() ? Step::none : Step::cancelled;
            }
        }
    }
    void append() {
        auto face = std::make_unique<AcDbFace>(mCorners[0], mCorners[1], mCorners[2], mCorners[3], mShown[0],
                                               mShown[1], mShown[2], mShown[3]);
        face->setDatabaseDefaults();
        transformFromUcs(*face);
        appendToCurrentSpace(face.release());
    }

    std::array<AcGePoint3d, 4> mCorners; // UCS
    std::array<bool, 4> mShown{true, true, true, true};
};

void runFace() {
    FaceDrawing().run();
}

/// Wide lines whose ends are cut where they meet.
class TraceDrawing {
public:
    void run() {
        const double standard = systemVariableReal(L"TRACEWID");
        const RealAnswer width =
            askDistance(L"\n指定宽线宽度 <" + shown(standard) + L">: ", nullptr, nullptr, RSG_NONEG);
        const PointAnswer first =
            width.isCancelled() ? PointAnswer() : askPoint(L"\n指定起点: ", nullptr, nullptr, RSG_NONULL);
        if (!first.isValue()) {
            return;
        }
        mHalf = (width.isValue() ? width.value : standard) / 2.0;
        setSystemVariable(L"TRACEWID", 2.0 * mHalf);
        mPoints.push_back(first.ucs);
        for (;;) {
            const PointAnswer next = askPoint(L"\n指定下一点: ", nullptr, &mPoints.back());
            if (next.isCancelled()) {
                return;
            }
            if (!next.isValue()) {
                break;
            }
            if (next.ucs.isEqualTo(mPoints.back())) {
                acutPrintf(L"\n点与前一点重合。");
                continue;
            }
            mPoints.push_back(next.ucs);
        }
        for (std::size_t i = 0; i + 1 < mPoints.size(); ++i) {
            append(i);
        }
    }

private:
    AcGeVector2d along(std::size_t segment) const {
        return (to2d(mPoints[segment + 1]) - to2d(mPoints[segment])).normal();
    }
    /// From the point to the left corner there; across the line at an end, along the middle between two lines
    /// at a corner.
    AcGeVector2d corner(std::size_t point, std::size_t segment) const {
        const AcGeVector2d across = along(segment).perpVector();
        const std::size_t other = point == segment ? segment - 1 : segment + 1;
        if ((point == segment && segment == 0) || (point != segment && other + 1 >= mPoints.size())) {
            return across * mHalf;
        }
        const AcGeVector2d middle = across + along(other).perpVector();
        // Lines that turn back have no corner.
        const double share = middle.dotProduct(across);
        return share > 1e-3 ? middle * (mHalf / share) : across * mHalf;
    }
    void append(std::size_t segment) const {
        const AcGeVector3d start = to3d(corner(segment, segment));
        const AcGeVector3d end = to3d(corner(segment + 1, segment));
        const AcGePoint3d& from = mPoints[segment];
        const AcGePoint3d to(mPoints[segment + 1].x, mPoints[segment + 1].y, from.z);
        auto trace = std::make_unique<AcDbTrace>(from + start, from - start, to + end, to - end);
        trace->setDatabaseDefaults();
        transformFromUcs(*trace);
        appendToCurrentSpace(trace.release());
    }

    double mHalf = 0.0;
    std::vector<AcGePoint3d> mPoints; // UCS
};

void runTrace() {
    TraceDrawing().run();
}

constexpr CommandRow rows[] = {{L"WIPEOUT", L"区域覆盖", ACRX_CMD_MODAL, runWipeout},
                               {L"3DFACE", L"三维面", ACRX_CMD_MODAL, runFace},
                               {L"TRACE", L"宽线", ACRX_CMD_MODAL, runTrace}};

} // namespace

std::span<const CommandRow> areaCommands() {
    return rows;
}

} // namespace host
