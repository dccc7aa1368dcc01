// LINE, CIRCLE, ARC and POINT. Geometry is asked for in the current UCS and made in the world.
#include "host/commands/ask.h"
#include "host/commands/registry.h"

#include <cmath>

namespace host {
namespace {

void runLine() {
    std::vector<AcGePoint3d> points; // UCS
    std::vector<AcDbObjectId> lines;
    const auto add = [&](const AcGePoint3d& to) {
        lines.push_back(appendToCurrentSpace(new AcDbLine(ucsToWorld(points.back()), ucsToWorld(to))));
        points.push_back(to);
    };
    const PointAnswer first = askPoint(L"\n指定第一个点: ", nullptr, nullptr);
    if (first.isNone()) {
        ads_point last{};
        resbuf value{};
        if (acedGetVar(L"LASTPOINT", &value) != RTNORM) {
            return;
        }
        ads_point_set(value.resval.rpoint, last);
        points.push_back(asPoint3d(last));
    } else if (first.isValue()) {
        points.push_back(first.ucs);
    } else {
        return;
    }
    for (;;) {
        const bool canClose = lines.size() >= 2;
        const PointAnswer next =
            canClose ? askPoint(L"\n指定下一点或 [闭合(C)/放弃(U)]: ", L"Close Undo", &points.back())
                     : askPoint(L"\n指定下一点或 [放弃(U)]: ", L"Undo", &points.back());
        if (next.isValue()) {
            add(next.ucs);
        } else if (next.isKeyword(L"Close")) {
            add(points.front());
            return;
        } else if (next.isKeyword(L"Undo")) {
            if (lines.empty()) {
                acutPrintf(L"\n所有线段都已放弃。");
                continue;
            }
            const Opened<AcDbEntity> line(lines.back(), AcDb::kForWrite);
            if (line) {
                line->erase();
            }
            lines.pop_back();
            points.pop_back();
        } else {
            return;
        }
    }
}

void appendCircle(const AcGePoint3d& centre, double radius) {
    if (radius > 0.0) {
        appendToCurrentSpace(new AcDbCircle(ucsToWorld(centre), ucsNormal(), radius));
        setSystemVariable(L"CIRCLERAD", radius);
    } else {
        acutPrintf(L"\n值必须为正且非零。");
    }
}

/// Centre of the circle through three points; nothing when they lie on a line.
std::optional<AcGePoint3d> circleCentre(const AcGePoint3d& a, const AcGePoint3d& b, const AcGePoint3d& c) {
    const double bx = b.x - a.x;
    const double by = b.y - a.y;
    const double cx = c.x - a.x;
    const double cy = c.y - a.y;
    const double d = 2.0 * (bx * cy - by * cx);
    const double extent = std::max({std::abs(bx), std::abs(by), std::abs(cx), std::abs(cy)});
    if (std::abs(d) <= 1e-12 * extent * extent) {
        return std::nullopt;
    }
    const double b2 = bx * bx + by * by;
    const double c2 = cx * cx + cy * cy;
    return AcGePoint3d(a.x + (cy * b2 - by * c2) / d, a.y + (bx * c2 - cx * b2) / d, a.z);
}

void circleThroughThree() {
    std::vector<AcGePoint3d> points;
    for (const wchar_t* prompt :
         {L"\n指定圆上的第一个点: ", L"\n指定圆上的第二个点: ", L"\n指定圆上的第三个点: "}) {
        const PointAnswer answer = askPoint(prompt, nullptr, points.empty() ? nullptr : &points.back(), 1);
        if (!answer.isValue()) {
            return;
        }
        points.push_back(answer.ucs);
    }
    if (const std::optional<AcGePoint3d> centre = circleCentre(points[0], points[1], points[2])) {
        appendCircle(*centre, centre->distanceTo(points[0]));
    } else {
        acutPrintf(L"\n圆不存在。");
    }
}

void circleThroughTwo() {
    const PointAnswer first = askPoint(L"\n指定圆直径的第一个端点: ", nullptr, nullptr, 1);
    if (!first.isValue()) {
        return;
    }
    const PointAnswer second = askPoint(L"\n指定圆直径的第二个端点: ", nullptr, &first.ucs, 1);
    if (second.isValue()) {
        appendCircle(first.ucs + (second.ucs - first.ucs) * 0.5, first.ucs.distanceTo(second.ucs) / 2.0);
    }
}

void runCircle() {
    const PointAnswer centre = askPoint(L"\n指定圆的圆心或 [三点(3P)/两点(2P)]: ", L"3P 2P", nullptr, 1);
    if (centre.isKeyword(L"3P")) {
        circleThroughThree();
        return;
    }
    if (centre.isKeyword(L"2P")) {
        circleThroughTwo();
        return;
    }
    if (!centre.isValue()) {
        return;
    }
    const double last = systemVariableReal(L"CIRCLERAD");
    const std::wstring standard = last > 0.0 ? L" <" + shown(last) + L">" : L"";
    const RealAnswer radius = askDistance(L"\n指定圆的半径或 [直径(D)]" + standard + L": ", L"Diameter",
                                          &centre.ucs, last > 0.0 ? 6 : 7);
    if (radius.isValue()) {
        appendCircle(centre.ucs, radius.value);
    } else if (radius.isNone()) {
        appendCircle(centre.ucs, last);
    } else if (radius.isKeyword(L"Diameter")) {
        const RealAnswer diameter = askDistance(L"\n指定圆的直径: ", nullptr, &centre.ucs, 7);
        if (diameter.isValue()) {
            appendCircle(centre.ucs, diameter.value / 2.0);
        }
    }
}

double angleFrom(const AcGePoint3d& centre, const AcGePoint3d& point) {
    return std::atan2(point.y - centre.y, point.x - centre.x);
}

/// Counterclockwise from start to end, all in the UCS.
void appendArc(const AcGePoint3d& centre, double radius, double start, double end) {
    if (!(radius > 0.0)) {
        acutPrintf(L"\n圆弧不存在。");
        return;
    }
    auto* arc = new AcDbArc(centre, radius, start, end);
    arc->transformBy(ucsMatrix());
    appendToCurrentSpace(arc);
}

void arcFromCentre(const AcGePoint3d& centre, std::optional<AcGePoint3d> start) {
    if (!start) {
        const PointAnswer answer = askPoint(L"\n指定圆弧的起点: ", nullptr, &centre, 1);
        if (!answer.isValue()) {
            return;
        }
        start = answer.ucs;
    }
    const double radius = centre.distanceTo(*start);
    const double from = angleFrom(centre, *start);
    const PointAnswer end =
        askPoint(L"\n指定圆弧的端点或 [角度(A)/弦长(L)]: ", L"Angle chord_Length,Length", &centre, 1);
    if (end.isValue()) {
        appendArc(centre, radius, from, angleFrom(centre, end.ucs));
    } else if (end.isKeyword(L"Angle")) {
        const RealAnswer angle = askAngle(L"\n指定夹角: ", nullptr, &centre, 3);
        if (angle.isValue()) {
            const double to = from + angle.value;
            angle.value > 0.0 ? appendArc(centre, radius, from, to) : appendArc(centre, radius, to, from);
        }
    } else if (end.kind == Answer::Kind::keyword) {
        const RealAnswer chord = askDistance(L"\n指定弦长: ", nullptr, &*start, 3);
        if (chord.isValue() && std::abs(chord.value) <= 2.0 * radius) {
            const double half = std::asin(std::abs(chord.value) / (2.0 * radius));
            appendArc(centre, radius, from, from + (chord.value > 0.0 ? 2.0 * half : 2.0 * (pi - half)));
        } else if (chord.isValue()) {
            acutPrintf(L"\n无效的弦长。");
        }
    }
}

void arcThroughEnds(const AcGePoint3d& start) {
    const PointAnswer end = askPoint(L"\n指定圆弧的端点: ", nullptr, &start, 1);
    if (!end.isValue()) {
        return;
    }
    const PointAnswer centre =
        askPoint(L"\n指定圆弧的中心点或 [角度(A)/半径(R)]: ", L"Angle Radius", &end.ucs, 1);
    const AcGeVector3d chord = end.ucs - start;
    const double length = chord.length();
    const AcGeVector3d left(-chord.y, chord.x, 0.0);
    if (centre.isValue()) {
        appendArc(centre.ucs, centre.ucs.distanceTo(start), angleFrom(centre.ucs, start),
                  angleFrom(centre.ucs, end.ucs));
    } else if (centre.isKeyword(L"Angle")) {
        const RealAnswer angle = askAngle(L"\n指定夹角: ", nullptr, &start, 3);
        if (!angle.isValue() || length == 0.0 || std::abs(std::sin(angle.value / 2.0)) < 1e-12) {
            return;
        }
        const AcGePoint3d middle = start + chord * 0.5 + left * (0.5 / std::tan(angle.value / 2.0));
        const double radius = middle.distanceTo(start);
        angle.value > 0.0 ? appendArc(middle, radius, angleFrom(middle, start), angleFrom(middle, end.ucs))
                          : appendArc(middle, radius, angleFrom(middle, end.ucs), angleFrom(middle, start));
    } else if (centre.isKeyword(L"Radius")) {
        const RealAnswer radius = askDistance(L"\n指定圆弧的半径: ", nullptr, &end.ucs, 3);
        if (!radius.isValue()) {
            return;
        }
        const double size = std::abs(radius.value);
        if (length == 0.0 || size < length / 2.0) {
            acutPrintf(L"\n无效的半径。");
            return;
        }
        // A negative radius asks for the longer arc.
        const double rise = std::sqrt(std::max(0.0, size * size - length * length / 4.0)) / length;
        const AcGePoint3d middle = start + chord * 0.5 + left * (radius.value > 0.0 ? rise : -rise);
        appendArc(middle, size, angleFrom(middle, start), angleFrom(middle, end.ucs));
    }
}

void runArc() {
    const PointAnswer start = askPoint(L"\n指定圆弧的起点或 [圆心(C)]: ", L"Center", nullptr, 1);
    if (start.kind == Answer::Kind::keyword) {
        const PointAnswer centre = askPoint(L"\n指定圆弧的圆心: ", nullptr, nullptr, 1);
        if (centre.isValue()) {
            arcFromCentre(centre.ucs, std::nullopt);
        }
        return;
    }
    if (!start.isValue()) {
        return;
    }
    const PointAnswer second =
        askPoint(L"\n指定圆弧的第二个点或 [圆心(C)/端点(E)]: ", L"Center End", &start.ucs, 1);
    if (second.isKeyword(L"Center")) {
        const PointAnswer centre = askPoint(L"\n指定圆弧的圆心: ", nullptr, &start.ucs, 1);
        if (centre.isValue()) {
            arcFromCentre(centre.ucs, start.ucs);
        }
        return;
    }
    if (second.isKeyword(L"End")) {
        arcThroughEnds(start.ucs);
        return;
    }
    if (!second.isValue()) {
        return;
    }
    const PointAnswer end = askPoint(L"\n指定圆弧的端点: ", nullptr, &second.ucs, 1);
    if (!end.isValue()) {
        return;
    }
    const std::optional<AcGePoint3d> centre = circleCentre(start.ucs, second.ucs, end.ucs);
    if (!centre) {
        acutPrintf(L"\n圆弧不存在。");
        return;
    }
    const double turn = (second.ucs - start.ucs).crossProduct(end.ucs - second.ucs).z;
    const double from = angleFrom(*centre, start.ucs);
    const double to = angleFrom(*centre, end.ucs);
    appendArc(*centre, centre->distanceTo(start.ucs), turn > 0.0 ? from : to, turn > 0.0 ? to : from);
}

void runPoint() {
    acutPrintf(L"\n当前点模式:  PDMODE=%d  PDSIZE=%s", systemVariableInteger(L"PDMODE"),
               shown(systemVariableReal(L"PDSIZE")).c_str());
    const PointAnswer answer = askPoint(L"\n指定点: ", nullptr, nullptr, 1);
    if (answer.isValue()) {
        auto* point = new AcDbPoint(answer.world);
        point->setNormal(ucsNormal());
        appendToCurrentSpace(point);
    }
}

constexpr CommandRow rows[] = {{L"LINE", L"直线", ACRX_CMD_MODAL, runLine},
                               {L"CIRCLE", L"圆", ACRX_CMD_MODAL, runCircle},
                               {L"ARC", L"圆弧", ACRX_CMD_MODAL, runArc},
                               {L"POINT", L"点", ACRX_CMD_MODAL, runPoint}};

} // namespace

std::span<const CommandRow> drawCommands() {
    return rows;
}

} // namespace host
