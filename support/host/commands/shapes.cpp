// RECTANG, POLYGON, DONUT and SOLID.
#include "host/commands/ask.h"
#include "host/commands/registry.h"

#include <cmath>

namespace host {
namespace {

/// A closed polyline in the plane of the UCS at the height of the point.
void appendClosed(WidePath shape, double elevation, double thickness = 0.0) {
    shape.path.closed = true;
    auto* polyline = new AcDbPolyline;
    polyline->setDatabaseDefaults();
    polyline->setShape(std::move(shape));
    polyline->setElevation(elevation);
    polyline->setThickness(thickness);
    polyline->setPlinegen(currentDatabase().plinegen());
    transformFromUcs(*polyline);
    appendToCurrentSpace(polyline);
}

/// What may be set before the corners of a rectangle.
struct RectangleSettings {
    double firstCut = 0.0; ///< distances of a chamfer, or
    double secondCut = 0.0;
    double radius = 0.0; ///< of rounded corners
    double elevation = 0.0;
    double thickness = 0.0;
    double width = 0.0;
};

/// A length with a default; false for Escape.
bool askLength(const std::wstring& prompt, double& value, int flags = RSG_NONEG) {
    const RealAnswer answer = askDistance(prompt + L" <" + shown(value) + L">: ", nullptr, nullptr, flags);
    value = answer.isValue() ? answer.value : value;
    return !answer.isCancelled();
}

bool askSetting(const Answer& answer, RectangleSettings& settings) {
    if (answer.isKeyword(L"Chamfer")) {
        settings.radius = 0.0;
        const bool first = askLength(L"\n指定矩形的第一个倒角距离", settings.firstCut);
        settings.secondCut = settings.firstCut;
        return first && askLength(L"\n指定矩形的第二个倒角距离", settings.secondCut);
    }
    if (answer.isKeyword(L"Fillet")) {
        settings.firstCut = settings.secondCut = 0.0;
        return askLength(L"\n指定矩形的圆角半径", settings.radius);
    }
    if (answer.isKeyword(L"Elevation")) {
        return askLength(L"\n指定矩形的标高", settings.elevation, 0);
    }
    if (answer.isKeyword(L"Thickness")) {
        return askLength(L"\n指定矩形的厚度", settings.thickness, 0);
    }
    return askLength(L"\n指定矩形的线宽", settings.width);
}

/// The axes of a shape turned by an angle, exactly those of the UCS when it is not turned.
struct Axes {
    explicit Axes(double turn) : x(turn == 0.0 ? AcGeVector2d::kXAxis : direction(turn)), y(x.perpVector()) {}
    AcGeVector2d x;
    AcGeVector2d y;
};

/// A rectangle by a corner, its size along its own axes and its turn; corners are cut when there is room.
WidePath rectangle(const AcGePoint2d& corner, double length, double height, double turn,
                   const RectangleSettings& settings) {
    const AcGeVector2d x = Axes(turn).x * length;
    const AcGeVector2d y = Axes(turn).y * height;
    std::vector<AcGePoint2d> corners{corner, corner + x, corner + x + y, corner + y};
    const bool rounds = settings.radius > 0.0;
    const double before = rounds ? settings.radius : settings.firstCut;
    const double after = rounds ? settings.radius : settings.secondCut;
    const double shortest = std::min(std::fabs(length), std::fabs(height));
    WidePath shape;
    if (before + after > 0.0 && before + after <= shortest) {
        const double side = length * height > 0.0 ? 1.0 : -1.0;
        for (std::size_t i = 0; i < 4; ++i) {
            const AcGeVector2d in = (corners[i] - corners[(i + 3) % 4]).normal();
            const AcGeVector2d out = (corners[(i + 1) % 4] - corners[i]).normal();
            shape.path.add(corners[i] - in * before, rounds ? side * std::tan(pi / 8.0) : 0.0);
            shape.path.add(corners[i] + out * after);
        }
    } else {
        for (const AcGePoint2d& point : corners) {
            shape.path.add(point);
        }
    }
    if (settings.width > 0.0) {
        shape.widths.assign(shape.path.vertices.size(), {settings.width, settings.width});
    }
    return shape;
}

/// The other corner, by point, area or two sizes, after a turn when asked for.
void askOtherCorner(const AcGePoint3d& first, const RectangleSettings& settings) {
    double turn = 0.0;
    double length = 0.0;
    double height = 0.0;
    bool isSized = false; // the sizes are given, and the other corner tells the side
    for (;;) {
        const PointAnswer other = askPoint(L"\n指定另一个角点或 [面积(A)/尺寸(D)/旋转(R)]: ",
                                           L"Area Dimensions Rotation", &first, RSG_NONULL);
        if (other.isKeyword(L"Rotation")) {
            const RealAnswer angle = askAngle(L"\n指定旋转角度 <0>: ", nullptr, &first);
            if (angle.isCancelled()) {
                return;
            }
            turn = angle.isValue() ? angle.value : 0.0;
            continue;
        }
        if (other.isValue()) {
            const AcGeVector2d way = to2d(other.ucs) - to2d(first);
            const double along = way.dotProduct(Axes(turn).x);
            const double across = way.dotProduct(Axes(turn).y);
            length = isSized ? std::copysign(length, along) : along;
            height = isSized ? std::copysign(height, across) : across;
        } else if (other.isKeyword(L"Dimensions")) {
            length = height = 10.0;
            if (!askLength(L"\n指定矩形的长度", length, RSG_NOZERO) ||
                !askLength(L"\n指定矩形的宽度", height, RSG_NOZERO)) {
                return;
            }
            isSized = true;
            continue;
        } else if (other.isKeyword(L"Area")) {
            double area = 100.0;
            if (!askLength(L"\n输入以当前单位计算的矩形面积", area, RSG_NOZERO | RSG_NONEG)) {
                return;
            }
            const Answer by = askKeyword(L"\n计算矩形标注时依据 [长度(L)/宽度(W)] <长度>: ", L"Length Width");
            double known = 10.0;
            if (by.isCancelled() || !askLength(by.isKeyword(L"Width") ? L"\n输入矩形宽度" : L"\n输入矩形长度",
                                               known, RSG_NOZERO | RSG_NONEG)) {
                return;
            }
            length = by.isKeyword(L"Width") ? area / known : known;
            height = area / length;
        } else {
            return;
        }
        if (length != 0.0 && height != 0.0) {
            break;
        }
        acutPrintf(L"\n矩形的边长不能为零。");
    }
    appendClosed(rectangle(to2d(first), length, height, turn, settings), first.z + settings.elevation,
                 settings.thickness);
}

void runRectang() {
    RectangleSettings settings;
    for (;;) {
        const PointAnswer first = askPoint(L"\n指定第一个角点或 [倒角(C)/标高(E)/圆角(F)/厚度(T)/宽度(W)]: ",
                                           L"Chamfer Elevation Fillet Thickness Width", nullptr, RSG_NONULL);
        if (first.isValue()) {
            askOtherCorner(first.ucs, settings);
            return;
        }
        if (first.kind != Answer::Kind::keyword || !askSetting(first, settings)) {
            return;
        }
    }
}

/// Regular, with a first vertex. Quarter turns are exact.
WidePath polygon(const AcGePoint2d& center, const AcGePoint2d& vertex, int sides) {
    WidePath shape;
    for (int i = 0; i < sides; ++i) {
        AcGeVector2d arm = vertex - center;
        if (4 * i % sides == 0) {
            for (int quarter = 0; quarter < 4 * i / sides; ++quarter) {
                arm = arm.perpVector();
            }
        } else {
            arm.rotateBy(twoPi * i / sides);
        }
        shape.path.add(center + arm);
    }
    return shape;
}

void appendPolygon(const AcGePoint3d& center, const AcGePoint2d& vertex, int sides) {
    appendClosed(polygon(to2d(center), vertex, sides), center.z);
}

void polygonOnEdge(int sides) {
    const PointAnswer first = askPoint(L"\n指定边的第一个端点: ", nullptr, nullptr, RSG_NONULL);
    if (!first.isValue()) {
        return;
    }
    PointAnswer second;
    AcGeVector2d edge;
    while (edge.lengthSqrd() == 0.0) {
        second = askPoint(L"\n指定边的第二个端点: ", nullptr, &first.ucs, RSG_NONULL);
        if (!second.isValue()) {
            return;
        }
        edge = to2d(second.ucs) - to2d(first.ucs);
        if (edge.lengthSqrd() == 0.0) {
            acutPrintf(L"\n边长不能为零。");
        }
    }
    const AcGeVector2d up(-edge.y, edge.x);
    const AcGePoint2d center = to2d(first.ucs) + edge * 0.5 + up * (0.5 / std::tan(pi / sides));
    WidePath shape = polygon(center, to2d(first.ucs), sides);
    shape.path.vertices[1].point = to2d(second.ucs);
    appendClosed(std::move(shape), first.ucs.z);
}

void runPolygon() {
    int sides = systemVariableInteger(L"POLYSIDES");
    for (;;) {
        const IntegerAnswer answer =
            askInteger(L"\n输入侧面数 <" + std::to_wstring(std::max(sides, 3)) + L">: ");
        if (answer.isCancelled()) {
            return;
        }
        sides = answer.isValue() ? answer.value : std::max(sides, 3);
        if (sides >= 3 && sides <= 1024) {
            break;
        }
        acutPrintf(L"\n需要 3 和 1024 之间的整数。");
    }
    setSystemVariable(L"POLYSIDES", sides);
    const PointAnswer center = askPoint(L"\n指定正多边形的中心点或 [边(E)]: ", L"Edge", nullptr, RSG_NONULL);
    if (center.isKeyword(L"Edge")) {
        polygonOnEdge(sides);
        return;
    }
    if (!center.isValue()) {
        return;
    }
    const Answer kind = askKeyword(L"\n输入选项 [内接于圆(I)/外切于圆(C)] <I>: ", L"Inscribed Circumscribed");
    if (kind.isCancelled()) {
        return;
    }
    const RealAnswer radius =
        askDistance(L"\n指定圆的半径: ", nullptr, &center.ucs, RSG_NONULL | RSG_NOZERO | RSG_NONEG);
    if (!radius.isValue()) {
        return;
    }
    // The lowest edge lies level.
    const double half = pi / sides;
    const double arm = kind.isKeyword(L"Circumscribed") ? radius.value / std::cos(half) : radius.value;
    appendPolygon(center.ucs, polar(to2d(center.ucs), -halfPi - half, arm), sides);
}

void runDonut() {
    double inner = systemVariableReal(L"DONUTID");
    double outer = systemVariableReal(L"DONUTOD");
    if (!askLength(L"\n指定圆环的内径", inner) ||
        !askLength(L"\n指定圆环的外径", outer, RSG_NOZERO | RSG_NONEG)) {
        return;
    }
    if (inner > outer) {
        std::swap(inner, outer);
    }
    setSystemVariable(L"DONUTID", inner);
    setSystemVariable(L"DONUTOD", outer);
    for (;;) {
        const PointAnswer center = askPoint(L"\n指定圆环的中心点或 <退出>: ");
        if (!center.isValue()) {
            return;
        }
        const double radius = (inner + outer) / 4.0;
        const double width = (outer - inner) / 2.0;
        WidePath shape;
        shape.path.add({center.ucs.x - radius, center.ucs.y}, 1.0);
        shape.path.add({center.ucs.x + radius, center.ucs.y}, 1.0);
        shape.widths.assign(2, {width, width});
        appendClosed(std::move(shape), center.ucs.z);
    }
}

void runSolid() {
    std::vector<AcGePoint3d> corners;
    for (;;) {
        const wchar_t* prompts[] = {L"\n指定第一点: ", L"\n指定第二点: ", L"\n指定第三点: ",
                                    L"\n指定第四点或 <退出>: "};
        while (corners.size() < 4) {
            // The third point ends the command when it is left out.
            const int flags = corners.size() < 2 ? RSG_NONULL : 0;
            const PointAnswer answer = askPoint(prompts[corners.size()], nullptr,
                                                corners.empty() ? nullptr : &corners.back(), flags);
            if (answer.isCancelled() || (answer.isNone() && corners.size() == 2)) {
                return;
            }
            corners.push_back(answer.isValue() ? answer.world : corners.back());
            if (answer.isNone()) {
                break;
            }
        }
        const bool triangle = corners.size() < 4 || corners[2] == corners[3];
        const AcGePoint3d& fourth = corners.size() < 4 ? corners[2] : corners[3];
        auto* solid = new AcDbSolid(corners[0], corners[1], corners[2], fourth);
        solid->setNormal(ucsNormal());
        appendToCurrentSpace(solid);
        if (triangle) {
            return;
        }
        corners = {corners[2], corners[3]};
    }
}

constexpr CommandRow rows[] = {{L"RECTANG", L"矩形", ACRX_CMD_MODAL, runRectang},
                               {L"RECTANGLE", L"长方形", ACRX_CMD_MODAL, runRectang},
                               {L"POLYGON", L"多边形", ACRX_CMD_MODAL, runPolygon},
                               {L"DONUT", L"圆环", ACRX_CMD_MODAL, runDonut},
                               {L"SOLID", L"实体填充", ACRX_CMD_MODAL, runSolid}};

} // namespace

std::span<const CommandRow> shapeCommands() {
    return rows;
}

} // namespace host
