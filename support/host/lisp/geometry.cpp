// Geometry on points: distance, angle, polar, inters. Lists of two numbers are points of the plane z = 0.
#include "host/lisp/builtins.h"
#include "host/lisp/points.h"

#include <cmath>

namespace host::lisp {

std::optional<ListPoint> pointIn(const Value& value) {
    double coordinates[3] = {0.0, 0.0, 0.0};
    int count = 0;
    const Value* at = &value;
    for (; at->isCons() && count < 3; at = &at->cons().tail) {
        const Value& number = at->cons().head;
        if (!number.isNumber()) {
            return std::nullopt;
        }
        coordinates[count++] = number.number();
    }
    if (count < 2 || !at->isNil()) {
        return std::nullopt;
    }
    return ListPoint{{coordinates[0], coordinates[1], coordinates[2]}, count == 2};
}

ListPoint pointOf(const Value& value) {
    const std::optional<ListPoint> point = pointIn(value);
    if (!point) {
        typeError(L"二维/三维点:", value);
    }
    return *point;
}

Value pointList(const AcGePoint3d& point) {
    return list(point.x, point.y, point.z);
}

Value flatPointList(double x, double y) {
    return list(x, y);
}

namespace {

Value distanceBetween(LispInterpreter&, Arguments arguments) {
    ListPoint from = pointOf(arguments[0]);
    ListPoint to = pointOf(arguments[1]);
    if (from.flat || to.flat) {
        from.point.z = to.point.z = 0.0;
    }
    return from.point.distanceTo(to.point);
}

Value angleOf(LispInterpreter&, Arguments arguments) {
    const ListPoint from = pointOf(arguments[0]);
    const ListPoint to = pointOf(arguments[1]);
    return angleBetween(from.point, to.point);
}

Value polarPoint(LispInterpreter&, Arguments arguments) {
    const ListPoint from = pointOf(arguments[0]);
    const AcGePoint3d to = polar(from.point, numberOf(arguments[1]), numberOf(arguments[2]));
    return from.flat ? flatPointList(to.x, to.y) : pointList(to);
}

// Where the lines through a-b and c-d meet; on both segments only when `within`. Lines in space meet when
// their nearest points are the same.
Value intersection(LispInterpreter&, Arguments arguments) {
    ListPoint points[4];
    bool flat = false;
    for (std::size_t at = 0; at < 4; ++at) {
        points[at] = pointOf(arguments[at]);
        flat = flat || points[at].flat;
    }
    if (flat) {
        for (ListPoint& point : points) {
            point.point.z = 0.0;
        }
    }
    const bool within = arguments.size() < 5 || arguments[4];
    const AcGeVector3d first = points[1].point - points[0].point;
    const AcGeVector3d second = points[3].point - points[2].point;
    const AcGeVector3d between = points[2].point - points[0].point;
    const AcGeVector3d normal = first.crossProduct(second);
    const double square = normal.lengthSqrd();
    if (square <= 1e-20 * first.lengthSqrd() * second.lengthSqrd() || square == 0.0) {
        return {};
    }
    const double t = between.crossProduct(second).dotProduct(normal) / square;
    const double u = between.crossProduct(first).dotProduct(normal) / square;
    const AcGePoint3d meeting = points[0].point + first * t;
    const AcGePoint3d other = points[2].point + second * u;
    if (meeting.distanceTo(other) > 1e-8 * (1.0 + first.length() + second.length())) {
        return {};
    }
    constexpr double slack = 1e-10;
    if (within && (t < -slack || t > 1.0 + slack || u < -slack || u > 1.0 + slack)) {
        return {};
    }
    return flat ? flatPointList(meeting.x, meeting.y) : pointList(meeting);
}

constexpr FunctionRow rows[] = {
    {L"DISTANCE", distanceBetween, 2, 2},
    {L"ANGLE", angleOf, 2, 2},
    {L"POLAR", polarPoint, 3, 3},
    {L"INTERS", intersection, 4, 5},
};

} // namespace

void addGeometryFunctions(LispInterpreter& lisp) {
    addFunctions(lisp, rows);
}

} // namespace host::lisp
