// ELLIPSE, SPLINE, XLINE, RAY and 3DPOLY.
#include "host/commands/ask.h"
#include "host/commands/registry.h"

#include <cmath>

namespace host {
namespace {

/// The ellipse while its axes are asked for, in the plane of the UCS.
struct EllipseAxes {
    AcGePoint3d center;
    AcGeVector3d axis; ///< the first half axis
    double other = 0.0;
};

/// An ellipse has its longer axis first; `from` and `to` are angles from the first axis as asked for.
void appendEllipse(const EllipseAxes& axes, std::optional<std::pair<double, double>> arc) {
    AcGeVector3d major = axes.axis;
    double ratio = axes.other / major.length();
    double from = arc ? arc->first : 0.0;
    double to = arc ? arc->second : twoPi;
    if (ratio > 1.0) {
        major = AcGeVector3d(-axes.axis.y, axes.axis.x, 0.0) * ratio;
        ratio = 1.0 / ratio;
        from -= halfPi;
        to -= halfPi;
    }
    if (arc) {
        from = normalizedAngle(from);
        to = normalizedAngle(to);
    } else {
        from = 0.0;
        to = twoPi;
    }
    auto* ellipse = new AcDbEllipse(axes.center, AcGeVector3d::kZAxis, major, ratio, from, to);
    ellipse->setDatabaseDefaults();
    transformFromUcs(*ellipse);
    appendToCurrentSpace(ellipse);
}

/// A point apart from the one before it.
PointAnswer askAxisEnd(const wchar_t* prompt, const AcGePoint3d& from) {
    for (;;) {
        const PointAnswer end = askPoint(prompt, nullptr, &from, RSG_NONULL);
        if (!end.isValue() || !(end.ucs - from).isZeroLength()) {
            return end;
        }
        acutPrintf(L"\n轴的两端不能重合。");
    }
}

/// The centre and the first half axis; false when the user gives up.
bool askFirstAxis(EllipseAxes& axes, const PointAnswer& start) {
    if (start.isKeyword(L"Center")) {
        const PointAnswer center = askPoint(L"\n指定椭圆的中心点: ", nullptr, nullptr, RSG_NONULL);
        const PointAnswer end =
            center.isValue() ? askAxisEnd(L"\n指定轴的端点: ", center.ucs) : PointAnswer();
        axes.center = center.ucs;
        axes.axis = end.ucs - center.ucs;
        return end.isValue();
    }
    const PointAnswer end = askAxisEnd(L"\n指定轴的另一个端点: ", start.ucs);
    axes.center = start.ucs + (end.ucs - start.ucs) * 0.5;
    axes.axis = (end.ucs - start.ucs) * 0.5;
    return end.isValue();
}

/// The length of the other half axis, or a turn about the first one that gives it.
bool askSecondAxis(EllipseAxes& axes) {
    for (;;) {
        const RealAnswer other = askDistance(L"\n指定另一条半轴长度或 [旋转(R)]: ", L"Rotation", &axes.center,
                                             RSG_NONULL | RSG_NOZERO | RSG_NONEG);
        if (other.isKeyword(L"Rotation")) {
            const RealAnswer turn = askAngle(L"\n指定绕长轴旋转的角度: ", nullptr, &axes.center, RSG_NONULL);
            if (!turn.isValue()) {
                return false;
            }
            axes.other = axes.axis.length() * std::fabs(std::cos(turn.value));
            if (axes.other < axes.axis.length() * 0.01) {
                acutPrintf(L"\n角度太接近 90 度。");
                continue;
            }
            return true;
        }
        axes.other = other.value;
        return other.isValue();
    }
}

/// Start and end of an elliptical arc, or its start and the angle it sweeps.
std::optional<std::pair<double, double>> askArc(const EllipseAxes& axes) {
    const double zero = std::atan2(axes.axis.y, axes.axis.x);
    const RealAnswer start = askAngle(L"\n指定起点角度: ", nullptr, &axes.center, RSG_NONULL);
    if (!start.isValue()) {
        return std::nullopt;
    }
    const RealAnswer end = askAngle(L"\n指定端点角度或 [夹角(I)]: ", L"Included", &axes.center, RSG_NONULL);
    if (end.isKeyword(L"Included")) {
        const RealAnswer included = askAngle(L"\n指定圆弧的夹角 <180>: ", nullptr, &axes.center);
        const double sweep = included.isValue() ? included.value : pi;
        return included.isCancelled()
                   ? std::nullopt
                   : std::optional(std::pair(start.value - zero, start.value - zero + sweep));
    }
    return end.isValue() ? std::optional(std::pair(start.value - zero, end.value - zero)) : std::nullopt;
}

void runEllipse() {
    PointAnswer start =
        askPoint(L"\n指定椭圆的轴端点或 [圆弧(A)/中心点(C)]: ", L"Arc Center", nullptr, RSG_NONULL);
    const bool isArc = start.isKeyword(L"Arc");
    if (isArc) {
        start = askPoint(L"\n指定椭圆弧的轴端点或 [中心点(C)]: ", L"Center", nullptr, RSG_NONULL);
    }
    EllipseAxes axes;
    if (start.isCancelled() || !askFirstAxis(axes, start)) {
        return;
    }
    if (!askSecondAxis(axes)) {
        return;
    }
    if (!isArc) {
        appendEllipse(axes, std::nullopt);
    } else if (const auto arc = askArc(axes)) {
        appendEllipse(axes, arc);
    }
}

void runSpline() {
    std::vector<AcGePoint3d> points; // UCS
    bool closed = false;
    double tolerance = 0.0;
    for (;;) {
        const PointAnswer next = points.empty() ? askPoint(L"\n指定第一个点: ", nullptr, nullptr, RSG_NONULL)
                                 : points.size() < 2
                                     ? askPoint(L"\n指定下一点: ", nullptr, &points.back(), RSG_NONULL)
                                     : askPoint(L"\n指定下一点或 [闭合(C)/拟合公差(F)/放弃(U)] <起点切向>: ",
                                                L"Close Fit Undo", &points.back());
        if (next.isCancelled()) {
            return;
        }
        if (next.isKeyword(L"Undo")) {
            points.pop_back();
        } else if (next.isKeyword(L"Fit")) {
            const RealAnswer fit =
                askDistance(L"\n指定拟合公差 <" + shown(tolerance) + L">: ", nullptr, nullptr, RSG_NONEG);
            tolerance = fit.isValue() ? fit.value : tolerance;
        } else if (next.isValue()) {
            points.push_back(next.ucs);
        } else {
            closed = next.isKeyword(L"Close");
            break;
        }
    }
    AcGeVector3d tangents[2];
    const wchar_t* prompts[] = {closed ? L"\n指定切向: " : L"\n指定起点切向: ", L"\n指定端点切向: "};
    for (int i = 0; i < (closed ? 1 : 2); ++i) {
        const AcGePoint3d& base = i == 0 ? points.front() : points.back();
        const PointAnswer answer = askPoint(prompts[i], nullptr, &base);
        if (answer.isCancelled()) {
            return;
        }
        if (answer.isValue()) {
            // At the start the curve leaves towards the base, at the end it goes on from there.
            const AcGeVector3d way = i == 0 && !closed ? base - answer.ucs : answer.ucs - base;
            tangents[i] = ucsMatrix() * way;
        }
    }
    if (closed) {
        points.push_back(points.front());
        tangents[1] = tangents[0];
    }
    AcGePoint3dArray fitPoints;
    for (const AcGePoint3d& point : points) {
        fitPoints.append(ucsToWorld(point));
    }
    auto* spline = new AcDbSpline(fitPoints, tangents[0], tangents[1], 4, tolerance);
    if (spline->isNull()) {
        delete spline;
        acutPrintf(L"\n无法通过这些点创建样条曲线。");
        return;
    }
    appendToCurrentSpace(spline);
}

template <class Line>
void appendLine(const AcGePoint3d& through, const AcGeVector3d& direction) {
    auto* line = new Line;
    line->setBasePoint(through);
    if (line->setUnitDir(direction) != Acad::eOk) {
        delete line;
        acutPrintf(L"\n两点不能重合。");
        return;
    }
    appendToCurrentSpace(line);
}

template <class Line>
void drawThrough(const AcGePoint3d& base) {
    for (;;) {
        const PointAnswer point = askPoint(L"\n指定通过点: ", nullptr, &base);
        if (!point.isValue()) {
            return;
        }
        appendLine<Line>(ucsToWorld(base), point.world - ucsToWorld(base));
    }
}

void runRay() {
    const PointAnswer start = askPoint(L"\n指定起点: ", nullptr, nullptr, RSG_NONULL);
    if (start.isValue()) {
        drawThrough<AcDbRay>(start.ucs);
    }
}

/// Construction lines of one direction of the UCS through every point given.
void drawParallel(const AcGeVector3d& direction) {
    for (;;) {
        const PointAnswer point = askPoint(L"\n指定通过点: ");
        if (!point.isValue()) {
            return;
        }
        appendLine<AcDbXline>(point.world, ucsMatrix() * direction);
    }
}

void bisect() {
    const PointAnswer apex = askPoint(L"\n指定角的顶点: ", nullptr, nullptr, RSG_NONULL);
    const PointAnswer start =
        apex.isValue() ? askPoint(L"\n指定角的起点: ", nullptr, &apex.ucs, RSG_NONULL) : PointAnswer();
    while (start.isValue()) {
        const PointAnswer end = askPoint(L"\n指定角的端点: ", nullptr, &apex.ucs);
        if (!end.isValue()) {
            return;
        }
        const double from = angleBetween(apex.ucs, start.ucs);
        const double half = 0.5 * normalizedAngle(angleBetween(apex.ucs, end.ucs) - from);
        appendLine<AcDbXline>(apex.world, ucsMatrix() * to3d(direction(from + half)));
    }
}

const wchar_t* refuseUnlessStraight(const AcDbEntity& entity) {
    return AcDbLine::cast(&entity) != nullptr ? nullptr : L"该对象不是直线。";
}

void offsetLine() {
    const RealAnswer distance =
        askDistance(L"\n指定偏移距离或 [通过(T)] <通过>: ", L"Through", nullptr, RSG_NOZERO | RSG_NONEG);
    if (distance.isCancelled()) {
        return;
    }
    for (;;) {
        const EntityAnswer picked = askEntity(L"\n选择直线对象: ", nullptr, refuseUnlessStraight);
        if (!picked.isValue()) {
            return;
        }
        const auto* line = peek<AcDbLine>(picked.id);
        const ReadAccess access(*line);
        const AcGePoint3d base = line->startPoint();
        const AcGeVector3d along = line->endPoint() - base;
        const PointAnswer side = askPoint(distance.isValue() ? L"\n指定向哪侧偏移: " : L"\n指定通过点: ",
                                          nullptr, nullptr, RSG_NONULL);
        if (!side.isValue()) {
            return;
        }
        AcGeVector3d across = ucsNormal().crossProduct(along).normal();
        if (across.dotProduct(side.world - base) < 0.0) {
            across = -across;
        }
        appendLine<AcDbXline>(distance.isValue() ? base + across * distance.value : side.world, along);
    }
}

void runXline() {
    const PointAnswer start = askPoint(L"\n指定点或 [水平(H)/垂直(V)/角度(A)/二等分(B)/偏移(O)]: ",
                                       L"Hor Ver Ang Bisect Offset", nullptr, RSG_NONULL);
    if (start.isValue()) {
        drawThrough<AcDbXline>(start.ucs);
    } else if (start.isKeyword(L"Hor") || start.isKeyword(L"Ver")) {
        drawParallel(start.isKeyword(L"Hor") ? AcGeVector3d::kXAxis : AcGeVector3d::kYAxis);
    } else if (start.isKeyword(L"Ang")) {
        const RealAnswer angle = askAngle(L"\n输入构造线的角度 <" + shownAngle(0.0) + L">: ");
        if (!angle.isCancelled()) {
            drawParallel(to3d(direction(angle.isValue() ? angle.value : 0.0)));
        }
    } else if (start.isKeyword(L"Bisect")) {
        bisect();
    } else if (start.isKeyword(L"Offset")) {
        offsetLine();
    }
}

void run3dPoly() {
    const PointAnswer first = askPoint(L"\n指定多段线的起点: ", nullptr, nullptr, RSG_NONULL | RSG_GETZ);
    if (!first.isValue()) {
        return;
    }
    std::vector<PointAnswer> points{first};
    bool closed = false;
    for (;;) {
        const PointAnswer next =
            points.size() < 3
                ? askPoint(L"\n指定直线的端点或 [放弃(U)]: ", L"Undo", &points.back().ucs)
                : askPoint(L"\n指定直线的端点或 [闭合(C)/放弃(U)]: ", L"Close Undo", &points.back().ucs);
        if (next.isKeyword(L"Undo")) {
            if (points.size() > 1) {
                points.pop_back();
            } else {
                acutPrintf(L"\n所有线段已放弃。");
            }
        } else if (next.isValue()) {
            points.push_back(next);
        } else {
            closed = next.isKeyword(L"Close");
            break;
        }
    }
    if (points.size() < 2) {
        return;
    }
    AcGePoint3dArray vertices;
    for (const PointAnswer& point : points) {
        vertices.append(point.world);
    }
    auto* polyline = new AcDb3dPolyline(AcDb::k3dSimplePoly, vertices, closed);
    polyline->setDatabaseDefaults();
    appendToCurrentSpace(polyline);
}

constexpr CommandRow rows[] = {{L"ELLIPSE", L"椭圆", ACRX_CMD_MODAL, runEllipse},
                               {L"SPLINE", L"样条曲线", ACRX_CMD_MODAL, runSpline},
                               {L"XLINE", L"构造线", ACRX_CMD_MODAL, runXline},
                               {L"RAY", L"射线", ACRX_CMD_MODAL, runRay},
                               {L"3DPOLY", L"三维多段线", ACRX_CMD_MODAL, run3dPoly}};

} // namespace

std::span<const CommandRow> curveDrawCommands() {
    return rows;
}

} // namespace host
