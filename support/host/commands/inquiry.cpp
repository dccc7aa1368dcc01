// LIST, ID, DIST and AREA.
#include "host/commands/ask.h"
#include "host/commands/edit/describe.h"
#include "host/commands/registry.h"

#include <cmath>

namespace host {
namespace {

void runList() {
    const Selection selection = Selection::ask();
    for (const AcDbObjectId id : selection.ids()) {
        const auto* entity = peek<AcDbEntity>(id);
        const ReadAccess access(*entity);
        acutPrintf(L"\n");
        for (const std::wstring& line : describeEntity(*entity)) {
            acutPrintf(L"\n%s", line.c_str());
        }
        entity->list();
    }
}

void runId() {
    const PointAnswer point = askPoint(L"\n指定点: ", nullptr, nullptr, RSG_NONULL);
    if (point.isValue()) {
        acutPrintf(L"\n%s", shownPoint(point.ucs).c_str());
    }
}

void put(const wchar_t* name, double value) {
    resbuf buffer{};
    buffer.restype = RTREAL;
    buffer.resval.rreal = value;
    putSystemVariable(name, buffer);
}

void tellDistance(const AcGePoint3d& from, const AcGePoint3d& to) {
    const AcGeVector3d way = to - from;
    const double plan = std::hypot(way.x, way.y);
    acutPrintf(L"\n距离 = %s，XY 平面中的倾角 = %s，与 XY 平面的夹角 = %s", shown(way.length()).c_str(),
               shownAngle(std::atan2(way.y, way.x)).c_str(), shownAngle(std::atan2(way.z, plan)).c_str());
    acutPrintf(L"\nX 增量 = %s，Y 增量 = %s，Z 增量 = %s", shown(way.x).c_str(), shown(way.y).c_str(),
               shown(way.z).c_str());
    put(L"DISTANCE", way.length());
}

void addDistances(AcGePoint3d last) {
    double sum = 0.0;
    for (bool first = true;; first = false) {
        const PointAnswer next =
            askPoint(first ? L"\n指定下一个点 <总计>: " : L"\n指定下一点 <总计>: ", nullptr, &last);
        if (!next.isValue()) {
            break;
        }
        sum += last.distanceTo(next.ucs);
        last = next.ucs;
        acutPrintf(L"\n距离 = %s", shown(sum).c_str());
    }
    put(L"DISTANCE", sum);
}

void runDist() {
    const PointAnswer first = askPoint(L"\n指定第一点: ", nullptr, nullptr, RSG_NONULL);
    if (!first.isValue()) {
        return;
    }
    const PointAnswer second =
        askPoint(L"\n指定第二个点或 [多个点(M)]: ", L"Multiple", &first.ucs, RSG_NONULL);
    if (second.isKeyword(L"Multiple")) {
        addDistances(first.ucs);
    } else if (second.isValue()) {
        tellDistance(first.ucs, second.ucs);
    }
}

/// Areas one after another, added up when asked.
class AreaTaking {
public:
    void run();

private:
    enum class Mode { single, add, subtract };
    enum class Next { goOn, finished };
    Next turn();
    void takePoints(const AcGePoint3d& first);
    void takeObjects();
    void tell(const Measures& measures, const wchar_t* lengthName);

    Mode mMode = Mode::single;
    double mTotal = 0.0;
};

void AreaTaking::run() {
    while (turn() == Next::goOn) {
    }
}

AreaTaking::Next AreaTaking::turn() {
    const wchar_t* prompts[] = {L"\n指定第一个角点或 [对象(O)/增加面积(A)/减少面积(S)] <对象(O)>: ",
                                L"\n指定第一个角点或 [对象(O)/减少面积(S)]: ",
                                L"\n指定第一个角点或 [对象(O)/增加面积(A)]: "};
    const PointAnswer answer = askPoint(prompts[static_cast<std::size_t>(mMode)], L"Object Add Subtract");
    if (answer.isKeyword(L"Add") || answer.isKeyword(L"Subtract")) {
        mMode = answer.isKeyword(L"Add") ? Mode::add : Mode::subtract;
        return Next::goOn;
    }
    if (answer.isValue()) {
        takePoints(answer.ucs);
    } else if (answer.isKeyword(L"Object") || (answer.isNone() && mMode == Mode::single)) {
        takeObjects();
    } else {
        return Next::finished;
    }
    return mMode == Mode::single ? Next::finished : Next::goOn;
}

void AreaTaking::takePoints(const AcGePoint3d& first) {
    std::vector<AcGePoint3d> points{first};
    for (;;) {
        const PointAnswer next =
            points.size() < 3
                ? askPoint(L"\n指定下一个点或 [放弃(U)]: ", L"Undo", &points.back())
                : askPoint(L"\n指定下一个点或 [放弃(U)/总计(T)] <总计>: ", L"Undo Total", &points.back());
        if (next.isKeyword(L"Undo")) {
            if (points.size() > 1) {
                points.pop_back();
            }
            continue;
        }
        if (next.isCancelled()) {
            return;
        }
        if (!next.isValue()) {
            break;
        }
        points.push_back(next.ucs);
    }
    BulgePath path;
    path.closed = true;
    Measures measures;
    for (std::size_t i = 0; i < points.size(); ++i) {
        path.add(to2d(points[i]));
        measures.length += points[i].distanceTo(points[(i + 1) % points.size()]);
    }
    measures.area = std::fabs(signedArea(path));
    tell(measures, L"周长");
}

void AreaTaking::takeObjects() {
    const auto refuse = [](const AcDbEntity& entity) -> const wchar_t* {
        return measuresOf(entity) ? nullptr : L"选定的对象没有面积。";
    };
    do {
        const wchar_t* prompts[] = {L"\n选择对象: ", L"\n(“加”模式)选择对象: ", L"\n(“减”模式)选择对象: "};
        const EntityAnswer picked = askEntity(prompts[static_cast<std::size_t>(mMode)], nullptr, refuse);
        if (!picked.isValue()) {
            return;
        }
        const auto* entity = peek<AcDbEntity>(picked.id);
        const ReadAccess access(*entity);
        const bool circle = AcDbCircle::cast(entity) != nullptr;
        const auto* curve = AcDbCurve::cast(entity);
        tell(*measuresOf(*entity), circle ? L"圆周长" : curve->isClosed() ? L"周长" : L"长度");
    } while (mMode != Mode::single);
}

void AreaTaking::tell(const Measures& measures, const wchar_t* lengthName) {
    acutPrintf(L"\n区域 = %s，%s = %s", shown(measures.area).c_str(), lengthName,
               shown(measures.length).c_str());
    put(L"AREA", measures.area);
    put(L"PERIMETER", measures.length);
    if (mMode != Mode::single) {
        mTotal += mMode == Mode::add ? measures.area : -measures.area;
        acutPrintf(L"\n总面积 = %s", shown(mTotal).c_str());
        put(L"AREA", mTotal);
    }
}

void runArea() {
    AreaTaking().run();
}

constexpr CommandRow rows[] = {
    {L"LIST", L"列表", ACRX_CMD_TRANSPARENT | ACRX_CMD_USEPICKSET | ACRX_CMD_NO_UNDO_MARKER, runList},
    {L"ID", L"点坐标", ACRX_CMD_TRANSPARENT | ACRX_CMD_NO_UNDO_MARKER, runId},
    {L"DIST", L"距离", ACRX_CMD_TRANSPARENT | ACRX_CMD_NO_UNDO_MARKER, runDist},
    {L"AREA", L"面积", ACRX_CMD_TRANSPARENT | ACRX_CMD_NO_UNDO_MARKER, runArea}};

} // namespace

std::span<const CommandRow> inquiryCommands() {
    return rows;
}

} // namespace host
