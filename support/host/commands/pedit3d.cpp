// PEDIT of a polyline in space: closing, splines, vertices.
#include "host/commands/pedit3d.h"

#include "host/commands/ask.h"

#include <algorithm>

namespace host {
namespace {

/// A polyline in space by its own vertices, apart from those that fitting adds.
struct SpacePolyline {
    std::vector<AcGePoint3d> points; ///< world
    bool closed = false;
    AcDb::Poly3dType type = AcDb::k3dSimplePoly;
};

class Editing3d {
public:
    explicit Editing3d(AcDbObjectId id) : mId(id), mNow(load()) {}
    void run();

private:
    enum class Turn { goOn, leave };
    SpacePolyline load() const;
    void store();
    /// Remembers what was, for taking the next change back.
    void change(const std::function<void(SpacePolyline&)>& edit);
    Turn act(const Answer& answer);
    Turn vertices();
    Turn actOnVertex(const Answer& answer, std::size_t& at);
    std::optional<AcGePoint3d> askVertex(const wchar_t* prompt, std::size_t at) const;
    /// The other vertex of a stretch that is straightened or broken out.
    std::optional<std::size_t> askSecond(std::size_t first) const;
    std::size_t stepped(std::size_t at, bool back) const;

    AcDbObjectId mId;
    SpacePolyline mNow;
    std::vector<SpacePolyline> mBefore;
};

SpacePolyline Editing3d::load() const {
    const auto* polyline = peek<AcDb3dPolyline>(mId);
    const ReadAccess access(*polyline);
    SpacePolyline loaded;
    loaded.closed = polyline->isClosed();
    loaded.type = polyline->polyType();
    AcDbIntArray modes;
    AcDbIntArray ids;
    AcGePoint3dArray grips; // those of the frame
    polyline->getGripPoints(grips, modes, ids);
    loaded.points.assign(grips.begin(), grips.end());
    return loaded;
}

void Editing3d::store() {
    const Opened<AcDb3dPolyline> polyline(mId, AcDb::kForWrite);
    if (!polyline) {
        return;
    }
    polyline->subentities()->clear(*polyline.get());
    polyline->setPolyType(AcDb::k3dSimplePoly);
    mNow.closed ? polyline->makeClosed() : polyline->makeOpen();
    for (const AcGePoint3d& point : mNow.points) {
        auto* vertex = new AcDb3dPolylineVertex(point);
        AcDbObjectId id;
        polyline->appendVertex(id, vertex);
        if (!id.isNull()) {
            vertex->close();
        }
    }
    if (mNow.type != AcDb::k3dSimplePoly) {
        const int segments = std::clamp(std::abs(systemVariableInteger(L"SPLINESEGS")), 1, 32767);
        polyline->splineFit(mNow.type, static_cast<Adesk::Int16>(segments));
    }
}

void Editing3d::change(const std::function<void(SpacePolyline&)>& edit) {
    mBefore.push_back(mNow);
    edit(mNow);
    store();
}

void Editing3d::run() {
    for (;;) {
        const std::wstring closing = mNow.closed ? L"打开(O)" : L"闭合(C)";
        const Answer answer =
            askKeyword(L"\n输入选项 [" + closing + L"/编辑顶点(E)/样条曲线(S)/非曲线化(D)/反转(R)/放弃(U)]: ",
                       mNow.closed ? L"Open Edit Spline Decurve Reverse Undo eXit"
                                   : L"Close Edit Spline Decurve Reverse Undo eXit");
        if (answer.kind != Answer::Kind::keyword || answer.isKeyword(L"eXit") || act(answer) == Turn::leave) {
            return;
        }
    }
}

Editing3d::Turn Editing3d::act(const Answer& answer) {
    if (answer.isKeyword(L"Undo")) {
        if (mBefore.empty()) {
            acutPrintf(L"\n命令已完全放弃。");
        } else {
            mNow = std::move(mBefore.back());
            mBefore.pop_back();
            store();
        }
    } else if (answer.isKeyword(L"Edit")) {
        return vertices();
    } else if (answer.isKeyword(L"Spline")) {
        const bool quadratic = systemVariableInteger(L"SPLINETYPE") == 5;
        change([&](SpacePolyline& polyline) {
            polyline.type = quadratic ? AcDb::k3dQuadSplinePoly : AcDb::k3dCubicSplinePoly;
        });
    } else if (answer.isKeyword(L"Decurve")) {
        change([](SpacePolyline& polyline) { polyline.type = AcDb::k3dSimplePoly; });
    } else if (answer.isKeyword(L"Reverse")) {
        change([](SpacePolyline& polyline) { std::reverse(polyline.points.begin(), polyline.points.end()); });
    } else {
        const bool closes = answer.isKeyword(L"Close");
        change([&](SpacePolyline& polyline) { polyline.closed = closes; });
    }
    return Turn::goOn;
}

std::size_t Editing3d::stepped(std::size_t at, bool back) const {
    const std::size_t count = mNow.points.size();
    if (mNow.closed) {
        return (at + (back ? count - 1 : 1)) % count;
    }
    return back ? (at > 0 ? at - 1 : 0) : std::min(at + 1, count - 1);
}

Editing3d::Turn Editing3d::vertices() {
    std::size_t at = 0;
    for (;;) {
        const Answer answer = askKeyword(
            L"\n输入顶点编辑选项\n[下一个(N)/上一个(P)/插入(I)/移动(M)/重生成(R)/拉直(S)/退出(X)] <N>: ",
            L"Next Previous Insert Move Regen Straighten eXit");
        if (answer.isCancelled()) {
            return Turn::leave;
        }
        if (answer.isKeyword(L"eXit")) {
            return Turn::goOn;
        }
        if (actOnVertex(answer, at) == Turn::leave) {
            return Turn::leave;
        }
    }
}

std::optional<AcGePoint3d> Editing3d::askVertex(const wchar_t* prompt, std::size_t at) const {
    const AcGePoint3d base = worldToUcs(mNow.points[at]);
    const PointAnswer answer = askPoint(prompt, nullptr, &base, RSG_NONULL | RSG_GETZ);
    return answer.isValue() ? std::optional(answer.world) : std::nullopt;
}

Editing3d::Turn Editing3d::actOnVertex(const Answer& answer, std::size_t& at) {
    if (answer.isKeyword(L"Insert") || answer.isKeyword(L"Move")) {
        const bool inserts = answer.isKeyword(L"Insert");
        const std::optional<AcGePoint3d> place =
            askVertex(inserts ? L"\n为新顶点指定位置: " : L"\n为标记顶点指定新位置: ", at);
        if (!place) {
            return Turn::leave;
        }
        change([&](SpacePolyline& polyline) {
            if (inserts) {
                polyline.points.insert(polyline.points.begin() + static_cast<std::ptrdiff_t>(at) + 1, *place);
            } else {
                polyline.points[at] = *place;
            }
        });
    } else if (answer.isKeyword(L"Straighten")) {
        const std::optional<std::size_t> second = askSecond(at);
        if (!second) {
            return Turn::leave;
        }
        const std::size_t from = std::min(at, *second);
        const std::size_t to = std::max(at, *second);
        if (to > from + 1) {
            change([&](SpacePolyline& polyline) {
                const auto begin = polyline.points.begin();
                polyline.points.erase(begin + static_cast<std::ptrdiff_t>(from) + 1,
                                      begin + static_cast<std::ptrdiff_t>(to));
            });
        }
        at = from;
    } else if (!answer.isKeyword(L"Regen")) {
        at = stepped(at, answer.isKeyword(L"Previous"));
    }
    return Turn::goOn;
}

std::optional<std::size_t> Editing3d::askSecond(std::size_t first) const {
    for (std::size_t at = first;;) {
        const Answer answer =
            askKeyword(L"\n输入选项 [下一个(N)/上一个(P)/执行(G)/退出(X)] <N>: ", L"Next Previous Go eXit");
        if (answer.isCancelled()) {
            return std::nullopt;
        }
        if (answer.isKeyword(L"Go") || answer.isKeyword(L"eXit")) {
            return answer.isKeyword(L"Go") ? at : first;
        }
        at = stepped(at, answer.isKeyword(L"Previous"));
    }
}

} // namespace

void edit3dPolyline(AcDbObjectId id) {
    Editing3d(id).run();
}

} // namespace host
