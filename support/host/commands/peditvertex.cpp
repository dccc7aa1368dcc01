// The vertex mode of PEDIT.
#include "host/commands/peditvertex.h"

#include "host/commands/ask.h"

#include <algorithm>

namespace host {

void straighten(EditPolyline& polyline, std::size_t from, std::size_t to) {
    if (from > to) {
        std::swap(from, to);
    }
    std::vector<EditVertex>& vertices = polyline.vertices;
    vertices[from].bulge = 0.0;
    if (to > from + 1) {
        vertices[from].widths.end = vertices[to - 1].widths.end;
        vertices.erase(vertices.begin() + static_cast<std::ptrdiff_t>(from) + 1,
                       vertices.begin() + static_cast<std::ptrdiff_t>(to));
    }
}

std::optional<EditPolyline> breakBetween(EditPolyline& polyline, std::size_t from, std::size_t to) {
    if (from > to) {
        std::swap(from, to);
    }
    std::vector<EditVertex>& vertices = polyline.vertices;
    const auto at = [&](std::size_t index) { return vertices.begin() + static_cast<std::ptrdiff_t>(index); };
    polyline.fit = AcDb::k2dSimplePoly;
    if (polyline.closed) {
        // From the second vertex around to the first one.
        std::vector<EditVertex> rest(at(to), vertices.end());
        rest.insert(rest.end(), vertices.begin(), at(from) + 1);
        vertices = std::move(rest);
        polyline.closed = false;
        return std::nullopt;
    }
    EditPolyline tail = polyline;
    tail.vertices.assign(at(to), vertices.end());
    vertices.erase(at(from) + 1, vertices.end());
    if (vertices.size() < 2) {
        std::swap(polyline, tail);
        return std::nullopt;
    }
    return tail.vertices.size() < 2 ? std::nullopt : std::optional(tail);
}

namespace {

class VertexMode {
public:
    explicit VertexMode(const VertexEditing& editing) : mEditing(editing) {}
    bool run();

private:
    enum class Turn { goOn, leave, cancelled };
    Turn act(const Answer& answer);
    std::vector<EditVertex>& vertices() const { return mEditing.polyline.vertices; }
    EditVertex& current() const { return vertices()[mAt]; }
    AcGePoint3d currentUcs() const { return worldToUcs(mEditing.toWorld(current().point)); }
    void step(std::ptrdiff_t by);
    Turn insert();
    Turn move();
    Turn setTangent();
    Turn setWidths();
    /// Lets a second vertex be chosen; `go` gets both.
    Turn chooseSecond(const std::function<void(std::size_t, std::size_t)>& go);

    const VertexEditing& mEditing;
    std::size_t mAt = 0;
};

bool VertexMode::run() {
    for (;;) {
        const Answer answer = askKeyword(
            L"\n输入顶点编辑选项\n[下一个(N)/上一个(P)/打断(B)/插入(I)/移动(M)/重生成(R)/拉直(S)/切向(T)/"
            L"宽度(W)/退出(X)] <N>: ",
            L"Next Previous Break Insert Move Regen Straighten Tangent Width eXit");
        const Turn turn = act(answer);
        if (turn != Turn::goOn) {
            return turn == Turn::leave;
        }
    }
}

VertexMode::Turn VertexMode::act(const Answer& answer) {
    if (answer.isCancelled()) {
        return Turn::cancelled;
    }
    if (answer.isKeyword(L"eXit")) {
        return Turn::leave;
    }
    if (answer.isKeyword(L"Previous")) {
        step(-1);
    } else if (answer.isKeyword(L"Insert")) {
        return insert();
    } else if (answer.isKeyword(L"Move")) {
        return move();
    } else if (answer.isKeyword(L"Tangent")) {
        return setTangent();
    } else if (answer.isKeyword(L"Width")) {
        return setWidths();
    } else if (answer.isKeyword(L"Straighten")) {
        return chooseSecond([&](std::size_t from, std::size_t to) {
            straighten(mEditing.polyline, from, to);
            mAt = std::min(from, to);
        });
    } else if (answer.isKeyword(L"Break")) {
        return chooseSecond([&](std::size_t from, std::size_t to) {
            const std::optional<EditPolyline> tail = breakBetween(mEditing.polyline, from, to);
            mAt = 0;
            if (tail) {
                mEditing.append(*tail);
            }
        });
    } else if (!answer.isKeyword(L"Regen")) {
        step(1);
    }
    return Turn::goOn;
}

/// A closed polyline has neighbours all around.
void VertexMode::step(std::ptrdiff_t by) {
    const auto count = std::ssize(vertices());
    const std::ptrdiff_t next = static_cast<std::ptrdiff_t>(mAt) + by;
    if (mEditing.polyline.closed) {
        mAt = static_cast<std::size_t>((next + count) % count);
    } else {
        mAt = static_cast<std::size_t>(std::clamp<std::ptrdiff_t>(next, 0, count - 1));
    }
}

VertexMode::Turn VertexMode::insert() {
    const AcGePoint3d base = currentUcs();
    const PointAnswer answer = askPoint(L"\n为新顶点指定位置: ", nullptr, &base, RSG_NONULL);
    if (!answer.isValue()) {
        return Turn::cancelled;
    }
    // The new vertex goes on with the end width of the segment it divides.
    EditVertex vertex;
    vertex.point = mEditing.toPlane(answer.world);
    vertex.widths = {current().widths.end, current().widths.end};
    current().bulge = 0.0;
    vertices().insert(vertices().begin() + static_cast<std::ptrdiff_t>(mAt) + 1, vertex);
    mEditing.changed();
    return Turn::goOn;
}

VertexMode::Turn VertexMode::move() {
    const AcGePoint3d base = currentUcs();
    const PointAnswer answer = askPoint(L"\n为标记顶点指定新位置: ", nullptr, &base, RSG_NONULL);
    if (!answer.isValue()) {
        return Turn::cancelled;
    }
    current().point = mEditing.toPlane(answer.world);
    mEditing.changed();
    return Turn::goOn;
}

VertexMode::Turn VertexMode::setTangent() {
    const AcGePoint3d base = currentUcs();
    const RealAnswer answer = askAngle(L"\n指定顶点切向: ", nullptr, &base, RSG_NONULL);
    if (!answer.isValue()) {
        return Turn::cancelled;
    }
    const AcGeVector3d direction = ucsMatrix() * to3d(host::direction(answer.value));
    const AcGePoint3d world = mEditing.toWorld(current().point);
    current().tangent = (mEditing.toPlane(world + direction) - current().point).angle();
    mEditing.changed();
    return Turn::goOn;
}

VertexMode::Turn VertexMode::setWidths() {
    SegmentWidths widths = current().widths;
    const AcGePoint3d base = currentUcs();
    const RealAnswer start = askDistance(L"\n指定下一条线段的起点宽度 <" + shown(widths.start) + L">: ",
                                         nullptr, &base, RSG_NONEG);
    if (start.isCancelled()) {
        return Turn::cancelled;
    }
    widths.start = start.isValue() ? start.value : widths.start;
    const RealAnswer end = askDistance(L"\n指定下一条线段的端点宽度 <" + shown(widths.start) + L">: ",
                                       nullptr, &base, RSG_NONEG);
    if (end.isCancelled()) {
        return Turn::cancelled;
    }
    widths.end = end.isValue() ? end.value : widths.start;
    current().widths = widths;
    mEditing.changed();
    return Turn::goOn;
}

VertexMode::Turn VertexMode::chooseSecond(const std::function<void(std::size_t, std::size_t)>& go) {
    const std::size_t first = mAt;
    for (;;) {
        const Answer answer =
            askKeyword(L"\n输入选项 [下一个(N)/上一个(P)/执行(G)/退出(X)] <N>: ", L"Next Previous Go eXit");
        if (answer.isCancelled()) {
            return Turn::cancelled;
        }
        if (answer.isKeyword(L"eXit")) {
            mAt = first;
            return Turn::goOn;
        }
        if (answer.isKeyword(L"Go")) {
            const std::size_t last = vertices().size() - 1;
            if (first == mAt && !mEditing.polyline.closed && (first == 0 || first == last)) {
                acutPrintf(L"\n不能在端点处执行。");
                continue;
            }
            go(first, mAt);
            mEditing.changed();
            return Turn::goOn;
        }
        step(answer.isKeyword(L"Previous") ? -1 : 1);
    }
}

} // namespace

bool editVertices(const VertexEditing& editing) {
    return VertexMode(editing).run();
}

} // namespace host
