// PLINE: lines and arcs with widths, drawn while they are picked.
#include "host/commands/ask.h"
#include "host/commands/registry.h"

#include <cmath>

namespace host {
namespace {

struct Vertex {
    AcGePoint3d point; ///< UCS
    double bulge = 0.0;
    double startWidth = 0.0;
    double endWidth = 0.0;
};

/// One run of the command: what was picked, and the entity that shows it.
class Drawing {
public:
    bool start();
    void lines();

private:
    enum class Next { goOn, arcs, lines, finished };

    Next lineTurn();
    Next arcTurn();
    void arcByAngle();
    void arcByCenter();
    void arcByDirection();
    void arcByRadius();
    void arcBySecond();
    AcGePoint3d turnedAbout(const AcGePoint3d& center, double angle) const;
    void addAlongChord(double length, double angle);
    bool askWidths(bool half);
    void askLength();
    void addArc(const AcGePoint3d& to, double bulge);
    void addLine(const AcGePoint3d& to) { add(to, 0.0); }
    void add(const AcGePoint3d& to, double bulge);
    void undo();
    void close(double bulge);
    void show();
    /// Bulge of the arc that leaves the last vertex in the given direction and ends at `to`.
    double tangentBulge(const AcGePoint3d& to) const {
        const double chord = std::atan2(to.y - last().y, to.x - last().x);
        double half = std::remainder(chord - mDirection, 2.0 * pi);
        return std::abs(half) >= pi - 1e-12 ? 0.0 : std::tan(half / 2.0);
    }
    const AcGePoint3d& last() const { return mVertices.back().point; }
    std::size_t segments() const { return mVertices.size() - 1; }
    double directionAtEnd() const;

    std::vector<Vertex> mVertices;
    AcDbObjectId mEntity;
    bool mClosed = false;
    double mDirection = 0.0;
    double mStartWidth = 0.0;
    double mEndWidth = 0.0;
};

bool Drawing::start() {
    const PointAnswer first = askPoint(L"\n指定起点: ", nullptr, nullptr, 1);
    if (!first.isValue()) {
        return false;
    }
    mStartWidth = mEndWidth = currentDatabase().plinewid();
    acutPrintf(L"\n当前线宽为 %s", shown(mStartWidth).c_str());
    mVertices.push_back({first.ucs});
    return true;
}

void Drawing::lines() {
    bool arcs = false;
    for (;;) {
        const Next next = arcs ? arcTurn() : lineTurn();
        if (next == Next::finished) {
            return;
        }
        if (next != Next::goOn) {
            arcs = next == Next::arcs;
        }
    }
}

Drawing::Next Drawing::lineTurn() {
    const bool canClose = segments() >= 2;
    const PointAnswer answer =
        canClose ? askPoint(L"\n指定下一点或 [圆弧(A)/闭合(C)/半宽(H)/长度(L)/放弃(U)/宽度(W)]: ",
                            L"Arc Close Halfwidth Length Undo Width", &last())
                 : askPoint(L"\n指定下一个点或 [圆弧(A)/半宽(H)/长度(L)/放弃(U)/宽度(W)]: ",
                            L"Arc Halfwidth Length Undo Width", &last());
    if (answer.isValue()) {
        addLine(answer.ucs);
    } else if (answer.isKeyword(L"Arc")) {
        return Next::arcs;
    } else if (answer.isKeyword(L"Close")) {
        close(0.0);
        return Next::finished;
    } else if (answer.isKeyword(L"Halfwidth") || answer.isKeyword(L"Width")) {
        return askWidths(answer.isKeyword(L"Halfwidth")) ? Next::goOn : Next::finished;
    } else if (answer.isKeyword(L"Length")) {
        askLength();
    } else if (answer.isKeyword(L"Undo")) {
        undo();
    } else {
        return Next::finished;
    }
    return Next::goOn;
}

Drawing::Next Drawing::arcTurn() {
    const bool canClose = segments() >= 1;
    mDirection = directionAtEnd();
    const PointAnswer answer =
        canClose
            ? askPoint(L"\n指定圆弧的端点或 "
                       L"[角度(A)/圆心(CE)/闭合(CL)/方向(D)/半宽(H)/直线(L)/半径(R)/第二个点(S)/"
                       L"放弃(U)/宽度(W)]: ",
                       L"Angle CEnter CLose Direction Halfwidth Line Radius Second Undo Width", &last())
            : askPoint(
                  L"\n指定圆弧的端点或 [角度(A)/圆心(CE)/方向(D)/半宽(H)/直线(L)/半径(R)/第二个点(S)/放弃(U)/"
                  L"宽度(W)]: ",
                  L"Angle CEnter Direction Halfwidth Line Radius Second Undo Width", &last());
    if (answer.isValue()) {
        addArc(answer.ucs, tangentBulge(answer.ucs));
        return Next::goOn;
    }
    if (answer.isKeyword(L"Line")) {
        return Next::lines;
    }
    if (answer.isKeyword(L"CLose")) {
        close(tangentBulge(mVertices.front().point));
        return Next::finished;
    }
    if (answer.isKeyword(L"Undo")) {
        undo();
        return Next::goOn;
    }
    if (answer.isKeyword(L"Halfwidth") || answer.isKeyword(L"Width")) {
        return askWidths(answer.isKeyword(L"Halfwidth")) ? Next::goOn : Next::finished;
    }
    using Option = void (Drawing::*)();
    constexpr std::pair<const wchar_t*, Option> options[] = {{L"Angle", &Drawing::arcByAngle},
                                                             {L"CEnter", &Drawing::arcByCenter},
                                                             {L"Direction", &Drawing::arcByDirection},
                                                             {L"Radius", &Drawing::arcByRadius},
                                                             {L"Second", &Drawing::arcBySecond}};
    for (const auto& [keyword, option] : options) {
        if (answer.isKeyword(keyword)) {
            (this->*option)();
            return Next::goOn;
        }
    }
    return Next::finished;
}

/// The end of an arc from the last vertex about a centre.
AcGePoint3d Drawing::turnedAbout(const AcGePoint3d& center, double angle) const {
    const AcGeVector2d arm = to2d(last()) - to2d(center);
    return to3d(polar(to2d(center), arm.angle() + angle, arm.length()), last().z);
}

/// An arc of a known angle along a chord, which is asked for.
void Drawing::addAlongChord(double length, double angle) {
    const RealAnswer chord =
        askAngle(L"\n指定圆弧的弦方向 <" + shownAngle(mDirection) + L">: ", nullptr, &last());
    if (!chord.isCancelled()) {
        const double direction = chord.isValue() ? chord.value : mDirection;
        addArc(polar(last(), direction, length), std::tan(angle / 4.0));
    }
}

void Drawing::arcByAngle() {
    const RealAnswer angle = askAngle(L"\n指定夹角: ", nullptr, &last(), RSG_NONULL | RSG_NOZERO);
    if (!angle.isValue()) {
        return;
    }
    const double sweep = angle.value;
    const PointAnswer end =
        askPoint(L"\n指定圆弧的端点或 [圆心(CE)/半径(R)]: ", L"CEnter Radius", &last(), RSG_NONULL);
    if (end.isKeyword(L"CEnter")) {
        const PointAnswer center = askPoint(L"\n指定圆弧的圆心: ", nullptr, &last(), RSG_NONULL);
        if (center.isValue()) {
            addArc(turnedAbout(center.ucs, sweep), std::tan(sweep / 4.0));
        }
    } else if (end.isKeyword(L"Radius")) {
        const RealAnswer radius =
            askDistance(L"\n指定圆弧的半径: ", nullptr, &last(), RSG_NONULL | RSG_NOZERO | RSG_NONEG);
        if (radius.isValue()) {
            addAlongChord(2.0 * radius.value * std::fabs(std::sin(sweep / 2.0)), sweep);
        }
    } else if (end.isValue()) {
        addArc(end.ucs, std::tan(sweep / 4.0));
    }
}

void Drawing::arcByCenter() {
    const PointAnswer center = askPoint(L"\n指定圆弧的圆心: ", nullptr, &last(), RSG_NONULL);
    if (!center.isValue()) {
        return;
    }
    const double radius = to2d(center.ucs).distanceTo(to2d(last()));
    if (radius == 0.0) {
        acutPrintf(L"\n无效的圆心。");
        return;
    }
    const PointAnswer end =
        askPoint(L"\n指定圆弧的端点或 [角度(A)/长度(L)]: ", L"Angle Length", &center.ucs, RSG_NONULL);
    double sweep = 0.0;
    if (end.isValue()) {
        sweep = normalizedAngle(angleBetween(center.ucs, end.ucs) - angleBetween(center.ucs, last()));
        if (sweep == 0.0) {
            acutPrintf(L"\n圆弧的两个端点不能重合。");
        }
    } else if (end.isKeyword(L"Angle")) {
        const RealAnswer angle = askAngle(L"\n指定夹角: ", nullptr, &center.ucs, RSG_NONULL | RSG_NOZERO);
        sweep = angle.isValue() ? angle.value : 0.0;
    } else if (end.isKeyword(L"Length")) {
        const RealAnswer chord = askDistance(L"\n指定弦长: ", nullptr, &last(), RSG_NONULL | RSG_NOZERO);
        if (chord.isValue() && std::fabs(chord.value) > 2.0 * radius) {
            acutPrintf(L"\n无效的弦长。");
        } else if (chord.isValue()) {
            // A negative chord asks for the longer arc.
            const double shorter = 2.0 * std::asin(std::fabs(chord.value) / (2.0 * radius));
            sweep = chord.value > 0.0 ? shorter : twoPi - shorter;
        }
    }
    if (sweep != 0.0) {
        addArc(turnedAbout(center.ucs, sweep), std::tan(sweep / 4.0));
    }
}

void Drawing::arcByDirection() {
    const RealAnswer direction = askAngle(L"\n指定圆弧的起点切向: ", nullptr, &last(), RSG_NONULL);
    const PointAnswer end =
        direction.isValue() ? askPoint(L"\n指定圆弧的端点: ", nullptr, &last(), RSG_NONULL) : PointAnswer();
    if (end.isValue()) {
        mDirection = direction.value;
        addArc(end.ucs, tangentBulge(end.ucs));
    }
}

void Drawing::arcByRadius() {
    const RealAnswer radius =
        askDistance(L"\n指定圆弧的半径: ", nullptr, &last(), RSG_NONULL | RSG_NOZERO | RSG_NONEG);
    if (!radius.isValue()) {
        return;
    }
    const PointAnswer end = askPoint(L"\n指定圆弧的端点或 [角度(A)]: ", L"Angle", &last(), RSG_NONULL);
    if (end.isKeyword(L"Angle")) {
        const RealAnswer angle = askAngle(L"\n指定夹角: ", nullptr, &last(), RSG_NONULL | RSG_NOZERO);
        if (angle.isValue()) {
            addAlongChord(2.0 * radius.value * std::fabs(std::sin(angle.value / 2.0)), angle.value);
        }
    } else if (end.isValue()) {
        const double sine = last().distanceTo(end.ucs) / (2.0 * radius.value);
        if (sine > 1.0 || sine == 0.0) {
            acutPrintf(L"\n无效的半径。");
        } else {
            addArc(end.ucs, std::tan(std::asin(sine) / 2.0));
        }
    }
}

void Drawing::arcBySecond() {
    const PointAnswer second = askPoint(L"\n指定圆弧上的第二个点: ", nullptr, &last(), RSG_NONULL);
    const PointAnswer end =
        second.isValue() ? askPoint(L"\n指定圆弧的端点: ", nullptr, &second.ucs, RSG_NONULL) : PointAnswer();
    if (end.isValue()) {
        // The angle at the second point sees the chord; the arc's sweep is what it leaves of a turn.
        const AcGeVector3d a = second.ucs - last();
        const AcGeVector3d b = end.ucs - second.ucs;
        const double turn = std::atan2(a.x * b.y - a.y * b.x, a.x * b.x + a.y * b.y);
        addArc(end.ucs, std::tan(turn / 2.0));
    }
}

bool Drawing::askWidths(bool half) {
    const double factor = half ? 2.0 : 1.0;
    const std::wstring what = half ? L"半宽" : L"宽度";
    const RealAnswer start =
        askDistance(L"\n指定起点" + what + L" <" + shown(mStartWidth / factor) + L">: ", nullptr, &last(), 4);
    if (start.isCancelled()) {
        return false;
    }
    mStartWidth = start.isValue() ? start.value * factor : mStartWidth;
    const RealAnswer end =
        askDistance(L"\n指定端点" + what + L" <" + shown(mStartWidth / factor) + L">: ", nullptr, &last(), 4);
    if (end.isCancelled()) {
        return false;
    }
    mEndWidth = end.isValue() ? end.value * factor : mStartWidth;
    currentDatabase().setPlinewid(mEndWidth);
    return true;
}

void Drawing::askLength() {
    const RealAnswer length = askDistance(L"\n指定直线的长度: ", nullptr, &last(), 3);
    if (length.isValue()) {
        const double direction = directionAtEnd();
        addLine({last().x + length.value * std::cos(direction), last().y + length.value * std::sin(direction),
                 last().z});
    }
}

double Drawing::directionAtEnd() const {
    if (segments() == 0) {
        return systemVariableReal(L"LASTANGLE");
    }
    const Vertex& from = mVertices[mVertices.size() - 2];
    const double chord = std::atan2(last().y - from.point.y, last().x - from.point.x);
    return chord + 2.0 * std::atan(from.bulge);
}

void Drawing::addArc(const AcGePoint3d& to, double bulge) {
    add(to, bulge);
}

void Drawing::add(const AcGePoint3d& to, double bulge) {
    Vertex& from = mVertices.back();
    from.bulge = bulge;
    from.startWidth = mStartWidth;
    from.endWidth = mEndWidth;
    mVertices.push_back({{to.x, to.y, from.point.z}});
    mStartWidth = mEndWidth;
    show();
}

void Drawing::undo() {
    if (segments() == 0) {
        acutPrintf(L"\n所有线段已放弃。");
        return;
    }
    mVertices.pop_back();
    mStartWidth = mVertices.back().startWidth;
    mEndWidth = mVertices.back().endWidth;
    show();
}

void Drawing::close(double bulge) {
    mVertices.back().bulge = bulge;
    mVertices.back().startWidth = mStartWidth;
    mVertices.back().endWidth = mEndWidth;
    mClosed = true;
    show();
}

/// The drawn entity follows what was picked. With PLINETYPE 0 it is of the old kind.
void Drawing::show() {
    AcDbEntity* entity = nullptr;
    const AcGeMatrix3d matrix = ucsMatrix();
    const bool turned = matrix != AcGeMatrix3d::kIdentity;
    if (const Opened<AcDbEntity> old(mEntity, AcDb::kForWrite); old) {
        // Only a light polyline in world coordinates grows in place; others are drawn anew.
        if (AcDbPolyline::cast(old.get()) == nullptr || turned || segments() == 0) {
            old->erase();
            mEntity.setNull();
        }
    }
    if (segments() == 0) {
        return;
    }
    // The last vertex of an open polyline goes on with the width its last segment ends with.
    const auto widthsAt = [&](std::size_t index) {
        const Vertex& own = mVertices[index];
        const bool isLast = !mClosed && index > 0 && index + 1 == mVertices.size();
        const double before = isLast ? mVertices[index - 1].endWidth : 0.0;
        return isLast ? SegmentWidths{before, before} : SegmentWidths{own.startWidth, own.endWidth};
    };
    if (systemVariableInteger(L"PLINETYPE") == 0) {
        auto* polyline = new AcDb2dPolyline;
        polyline->setDatabaseDefaults();
        for (std::size_t index = 0; index < mVertices.size(); ++index) {
            const Vertex& vertex = mVertices[index];
            const SegmentWidths widths = widthsAt(index);
            polyline->appendVertex(new AcDb2dVertex({vertex.point.x, vertex.point.y, 0.0}, vertex.bulge,
                                                    widths.start, widths.end));
        }
        if (mClosed) {
            polyline->makeClosed();
        }
        polyline->setElevation(mVertices.front().point.z);
        if (currentDatabase().plinegen()) {
            polyline->setLinetypeGenerationOn();
        }
        entity = polyline;
    } else {
        const auto fill = [&](AcDbPolyline& polyline) {
            while (polyline.numVerts() > mVertices.size()) {
                polyline.removeVertexAt(polyline.numVerts() - 1);
            }
            for (unsigned index = 0; index < mVertices.size(); ++index) {
                const Vertex& vertex = mVertices[index];
                const AcGePoint2d point(vertex.point.x, vertex.point.y);
                const SegmentWidths widths = widthsAt(index);
                if (index >= polyline.numVerts()) {
                    polyline.addVertexAt(index, point, vertex.bulge, widths.start, widths.end);
                } else if (index + 2 >= mVertices.size()) {
                    polyline.setBulgeAt(index, vertex.bulge);
                    polyline.setWidthsAt(index, widths.start, widths.end);
                }
            }
            polyline.setClosed(mClosed);
        };
        if (const Opened<AcDbPolyline> old(mEntity, AcDb::kForWrite); old) {
            fill(*old.get());
            return;
        }
        auto* polyline = new AcDbPolyline;
        polyline->setDatabaseDefaults();
        fill(*polyline);
        polyline->setElevation(mVertices.front().point.z);
        polyline->setPlinegen(currentDatabase().plinegen());
        entity = polyline;
    }
    if (turned) {
        entity->transformBy(matrix);
    }
    mEntity = appendToCurrentSpace(entity);
}

void runPline() {
    Drawing drawing;
    if (drawing.start()) {
        drawing.lines();
    }
}

constexpr CommandRow rows[] = {{L"PLINE", L"多段线", ACRX_CMD_MODAL, runPline}};

} // namespace

std::span<const CommandRow> polylineCommands() {
    return rows;
}

} // namespace host
