// The wall: its dialogue step by step, and the pure functions of its picture.
#include "drawing/enclose.h"

#include "restools/curves.h"
#include "restools/drawing.h"
#include "restools/sysvar.h"

namespace enclose {
namespace {

constexpr const ACHAR* layerName = L"$Enclose";
constexpr Adesk::UInt16 layerColor = 7;
constexpr double wallWidth = 0.4;
constexpr double tickWidth = 0.4;
constexpr double tickLength = 1.0;
constexpr double tickSpacing = 10.0;
constexpr double longestWithoutPiers = 10.0;
constexpr double sideLineDistance = 1.0;
constexpr double sideLineLtscale = 10.0;
/// A vertex width that is not given: the constant one.
constexpr double noWidth = -1.0;

AcGePoint2d inPlan(const AcGePoint3d& point) {
    return {point.x, point.y};
}

} // namespace

PointQuestion QuestionAfter(int points) {
    switch (points) {
    case 0:
        return {L"\n点取围绘制起点 [参考点(R)]<退出>:", L"Relative"};
    case 1:
        return {L"\n点取下一点 [参考点(R)]<结束>:", L"Relative"};
    default:
        return {L"\n点取下一点 [参考点(R)/回退(U)]<结束>:", L"Relative Undo"};
    }
}

bool IsLongEnough(const AcDbCurve& wall) {
    // Points go to the front of the wall, so its first segment is the one picked last.
    double length = 0.0;
    return wall.getDistAtParam(1.0, length) == Acad::eOk && length > longestWithoutPiers;
}

const ACHAR* TickBlockName(bool right) {
    return right ? L"$_围墙L" : L"$_围墙R";
}

std::unique_ptr<CQDVBlockPline> NewTick() {
    std::unique_ptr<CQDVBlockPline> tick(QDVB_CreatePolyline());
    tick->setConstantWidth(tickWidth);
    tick->addVertexAt(0, AcGePoint2d(0.0, 0.0), 0.0, noWidth, noWidth);
    tick->addVertexAt(0, AcGePoint2d(0.0, tickLength), 0.0, noWidth, noWidth);
    return tick;
}

AcGePoint3d TickOrigin(bool right) {
    return {0.0, right ? tickLength : 0.0, 0.0};
}

std::unique_ptr<CQDVBlockPline> NewSideLine(const AcDbCurve& wall, bool right) {
    AcDbVoidPtrArray curves;
    const Acad::ErrorStatus status =
        wall.getOffsetCurves(right ? sideLineDistance : -sideLineDistance, curves);
    const std::vector<std::unique_ptr<AcDbEntity>> offsets = TakeEntities(curves);
    const AcDbPolyline* offset =
        status == Acad::eOk && !offsets.empty() ? AcDbPolyline::cast(offsets.front().get()) : nullptr;
    if (offset == nullptr) {
        return nullptr;
    }
    std::unique_ptr<CQDVBlockPline> line(QDVB_CreatePolyline());
    line->setConstantWidth(0.0);
    for (unsigned i = 0; i < offset->numVerts(); ++i) {
        AcGePoint2d vertex;
        offset->getPointAt(i, vertex);
        line->addVertexAt(i, vertex, 0.0, noWidth, noWidth);
    }
    return line;
}

namespace {

enum class Step { point, undo, finish, keep, abandon };

struct Answer {
    Step step = Step::abandon;
    AcGePoint3d point;
};

/// What the keyword means that was the answer.
Answer askedByKeyword() {
    Answer answer{Step::finish, {}};
    AcString keyword;
    if (acedGetInput(keyword) != RTNORM) {
        return answer;
    }
    if (keyword == L"Relative") {
        if (GetRelativePoint(answer.point)) {
            answer.step = Step::point;
        }
    } else {
        answer.step = keyword == L"Undo" ? Step::undo : Step::keep;
    }
    return answer;
}

/// Asks for the next point with a rubber band from the last one.
Answer askNextPoint(const AcGePoint3dArray& points) {
    const PointQuestion question = QuestionAfter(points.length());
    const ads_point base = {points.last().x, points.last().y, points.last().z};
    ads_point picked;
    acedInitGet(0, question.keywords);
    switch (acedGetPoint(base, question.prompt, picked)) {
    case RTNORM:
        return {Step::point, {picked[X], picked[Y], picked[Z]}};
    case RTKWORD:
        return askedByKeyword();
    case RTNONE:
        return {Step::finish, {}};
    default:
        return {Step::abandon, {}};
    }
}

bool askStart(AcGePoint3d& start) {
    const PointQuestion question = QuestionAfter(0);
    ads_point picked;
    acedInitGet(0, question.keywords);
    switch (acedGetPoint(nullptr, question.prompt, picked)) {
    case RTNORM:
        start.set(picked[X], picked[Y], picked[Z]);
        return true;
    case RTKWORD:
        return GetRelativePoint(start);
    default:
        return false;
    }
}

bool askPierSide(AcGePoint3d& side) {
    ads_point picked;
    acedInitGet(RSG_NONULL, nullptr);
    if (acedGetPoint(nullptr, L"\n在墙垛绘制侧点一点:", picked) != RTNORM) {
        return false;
    }
    side.set(picked[X], picked[Y], picked[Z]);
    return true;
}

enum class Piers { none, ticks, dashedLine };

Piers askPiers() {
    AcString keyword;
    acedInitGet(0, L"Block Line");
    switch (acedGetKword(L"\n墙垛绘制方式 [短线(B)/虚线(L)]<虚线>:", keyword)) {
    case RTNORM:
        return keyword == L"Block" ? Piers::ticks : Piers::dashedLine;
    case RTNONE:
        return Piers::dashedLine;
    default:
        return Piers::none;
    }
}

/// The wall in the drawing. It is open for read, so that it shows, and for write only while it changes.
class Wall {
public:
    explicit Wall(const AcGePoint3d& start) {
        CQDVBlockPline* polyline = QDVB_CreatePolyline();
        mHeld.Attach(polyline);
        polyline->setLayer(layerName);
        polyline->setConstantWidth(wallWidth);
        insertAtFront(start);
        AppendEnt(mHeld);
        polyline->downgradeOpen();
    }

    const AcDbPolyline& polyline() const { return *mHeld.As<AcDbPolyline>(); }
    // False when the host does not let the wall be changed (its layer is locked).
    bool addPoint(const AcGePoint3d& point) {
        return edit([&] { insertAtFront(point); });
    }
    bool removeLastPoint() {
        return edit([&] { mHeld.As<AcDbPolyline>()->removeVertexAt(0); });
    }
    bool erase() {
        return edit([&] { mHeld->erase(); });
    }

private:
    void insertAtFront(const AcGePoint3d& point) {
        mHeld.As<AcDbPolyline>()->addVertexAt(0, inPlan(point), 0.0, noWidth, noWidth);
    }
    template <class Change>
    bool edit(Change change) {
        if (mHeld->upgradeOpen() != Acad::eOk) {
            acutPrintf(L"\n   ***无法修改围墙，请检查图层 %s!", layerName);
            return false;
        }
        change();
        mHeld->downgradeOpen();
        return true;
    }

    CArxObject mHeld;
};

/// Lets the wall grow until the user ends it. False when no piers are to be drawn: the wall was abandoned and
/// erased, or is kept as it is.
bool pickWall(Wall& wall, AcGePoint3dArray& points) {
    for (;;) {
        const Answer answer = askNextPoint(points);
        switch (answer.step) {
        case Step::point:
            if (!wall.addPoint(answer.point)) {
                return false;
            }
            points.append(answer.point);
            break;
        case Step::undo:
            if (!wall.removeLastPoint()) {
                return false;
            }
            points.removeLast();
            break;
        case Step::finish:
            return points.length() >= 2;
        case Step::keep:
            return false;
        case Step::abandon:
            wall.erase();
            return false;
        }
    }
}

/// The tick block of a side, made when the drawing has none yet.
AcDbObjectId needTickBlock(bool right) {
    AcDbObjectId id = FindRecord<AcDbBlockTable>(TickBlockName(right));
    if (!id.isNull()) {
        return id;
    }
    const CArxObjTemplate<AcDbBlockTable> blocks(WorkingDatabase()->blockTableId(), true);
    CArxObjTemplate<AcDbBlockTableRecord> block;
    block.New()->setName(TickBlockName(right));
    block->setOrigin(TickOrigin(right));
    if (!blocks || blocks->add(id, block.Get()) != Acad::eOk) {
        return AcDbObjectId::kNull;
    }
    CArxEntity tick(NewTick().release());
    block->appendAcDbEntity(tick.Get());
    return id;
}

/// The linetype DASHED, loaded from the linetype files when the drawing lacks it.
AcDbObjectId findDashed() {
    constexpr const ACHAR* name = L"DASHED";
    AcDbObjectId id = FindRecord<AcDbLinetypeTable>(name);
    for (const ACHAR* file : {L"acadiso.lin", L"acad.lin"}) {
        if (id.isNull() && acdbLoadLineTypeFile(name, file, WorkingDatabase()) == Acad::eOk) {
            id = FindRecord<AcDbLinetypeTable>(name);
        }
    }
    return id;
}

void drawSideLine(const AcDbPolyline& wall, bool right) {
    SetVar(L"LTSCALE", sideLineLtscale);
    std::unique_ptr<CQDVBlockPline> line = NewSideLine(wall, right);
    if (line == nullptr) {
        return;
    }
    line->setLayer(layerName);
    const AcDbObjectId dashed = findDashed();
    line->setPlinegen(Adesk::kTrue);
    line->setLinetype(dashed);
    line->setLinetypeScale(1.0 / WorkingDatabase()->ltscale());
    AppendEnt(line.release());
}

} // namespace
} // namespace enclose

void DrawEnclose() {
    using namespace enclose;
    AcGePoint3d start;
    if (!askStart(start)) {
        return;
    }
    CreateNewLayer(layerName, L"CONTINUOUS", layerColor);
    AcGePoint3dArray points(0, 8);
    points.append(start);
    Wall wall(start);
    if (!pickWall(wall, points)) {
        return;
    }
    if (!IsLongEnough(wall.polyline())) {
        acutPrintf(L"\n   ****所绘制围墙太短，无法绘制墙垛！");
        wall.erase();
        return;
    }
    AcGePoint3d side;
    if (!askPierSide(side)) {
        wall.erase();
        return;
    }
    const Piers piers = askPiers();
    if (piers == Piers::none) {
        return;
    }
    const bool right = IsRightOfCurve(wall.polyline(), side);
    if (piers == Piers::ticks) {
        InsertBlockAlongCurve(wall.polyline(), needTickBlock(right), tickSpacing, layerName);
    } else {
        drawSideLine(wall.polyline(), right);
    }
}
