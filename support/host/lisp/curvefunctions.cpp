// Geometry of curves by their entity names: the vlax-curve- functions. Points are in world coordinates; what
// a curve cannot answer is nil.
#include "host/ed/ed.h"
#include "host/lisp/convert.h"
#include "host/lisp/drawingbuiltins.h"
#include "host/lisp/points.h"

namespace host::lisp {

namespace {

/// The curve of an entity name, held open for reading.
class OpenedCurve {
public:
    explicit OpenedCurve(const Value& value) : mCurve(idOf(value), AcDb::kForRead) {
        if (!mCurve) {
            typeError(L"曲线对象", value);
        }
    }
    const AcDbCurve* operator->() const { return mCurve.get(); }

private:
    static AcDbObjectId idOf(const Value& value) {
        AcDbObjectId id;
        acdbGetObjectId(id, entityOf(value).name);
        return id;
    }
    Opened<AcDbCurve> mCurve;
};

// By reference: the value is filled in by the call that gives the status.
Value numberOrNil(Acad::ErrorStatus status, const double& value) {
    return status == Acad::eOk ? Value(value) : Value();
}

Value pointOrNil(Acad::ErrorStatus status, const AcGePoint3d& point) {
    return status == Acad::eOk ? pointList(point) : Value();
}

Value vectorOrNil(Acad::ErrorStatus status, const AcGeVector3d& vector) {
    return status == Acad::eOk ? list(vector.x, vector.y, vector.z) : Value();
}

AcGePoint3d pointAt(Arguments arguments, std::size_t index) {
    return pointOf(arguments[index]).point;
}

Value startParameter(LispInterpreter&, Arguments arguments) {
    double value = 0.0;
    return numberOrNil(OpenedCurve(arguments[0])->getStartParam(value), value);
}

Value endParameter(LispInterpreter&, Arguments arguments) {
    double value = 0.0;
    return numberOrNil(OpenedCurve(arguments[0])->getEndParam(value), value);
}

Value startPoint(LispInterpreter&, Arguments arguments) {
    AcGePoint3d point;
    return pointOrNil(OpenedCurve(arguments[0])->getStartPoint(point), point);
}

Value endPoint(LispInterpreter&, Arguments arguments) {
    AcGePoint3d point;
    return pointOrNil(OpenedCurve(arguments[0])->getEndPoint(point), point);
}

Value isClosed(LispInterpreter& lisp, Arguments arguments) {
    return lisp.boolean(OpenedCurve(arguments[0])->isClosed());
}

Value isPeriodic(LispInterpreter& lisp, Arguments arguments) {
    return lisp.boolean(OpenedCurve(arguments[0])->isPeriodic());
}

Value pointAtParameter(LispInterpreter&, Arguments arguments) {
    AcGePoint3d point;
    return pointOrNil(OpenedCurve(arguments[0])->getPointAtParam(numberOf(arguments[1]), point), point);
}

Value parameterAtPoint(LispInterpreter&, Arguments arguments) {
    double value = 0.0;
    return numberOrNil(OpenedCurve(arguments[0])->getParamAtPoint(pointAt(arguments, 1), value), value);
}

Value distanceAtParameter(LispInterpreter&, Arguments arguments) {
    double value = 0.0;
    return numberOrNil(OpenedCurve(arguments[0])->getDistAtParam(numberOf(arguments[1]), value), value);
}

Value parameterAtDistance(LispInterpreter&, Arguments arguments) {
    double value = 0.0;
    return numberOrNil(OpenedCurve(arguments[0])->getParamAtDist(numberOf(arguments[1]), value), value);
}

Value distanceAtPoint(LispInterpreter&, Arguments arguments) {
    double value = 0.0;
    return numberOrNil(OpenedCurve(arguments[0])->getDistAtPoint(pointAt(arguments, 1), value), value);
}

Value pointAtDistance(LispInterpreter&, Arguments arguments) {
    AcGePoint3d point;
    return pointOrNil(OpenedCurve(arguments[0])->getPointAtDist(numberOf(arguments[1]), point), point);
}

Value closestPoint(LispInterpreter&, Arguments arguments) {
    AcGePoint3d point;
    const bool extend = arguments.size() > 2 && arguments[2];
    return pointOrNil(OpenedCurve(arguments[0])->getClosestPointTo(pointAt(arguments, 1), point, extend),
                      point);
}

// (vlax-curve-getclosestpointtoprojection curve point direction [extend]): closest as seen along a direction.
Value closestProjected(LispInterpreter&, Arguments arguments) {
    AcGePoint3d point;
    const bool extend = arguments.size() > 3 && arguments[3];
    const AcGeVector3d direction = pointAt(arguments, 2).asVector();
    if (direction.isZeroLength()) {
        valueError(L"方向", arguments[2]);
    }
    return pointOrNil(
        OpenedCurve(arguments[0])->getClosestPointTo(pointAt(arguments, 1), direction, point, extend), point);
}

Value firstDerivative(LispInterpreter&, Arguments arguments) {
    AcGeVector3d vector;
    return vectorOrNil(OpenedCurve(arguments[0])->getFirstDeriv(numberOf(arguments[1]), vector), vector);
}

Value secondDerivative(LispInterpreter&, Arguments arguments) {
    AcGeVector3d vector;
    return vectorOrNil(OpenedCurve(arguments[0])->getSecondDeriv(numberOf(arguments[1]), vector), vector);
}

Value area(LispInterpreter&, Arguments arguments) {
    double value = 0.0;
    return numberOrNil(OpenedCurve(arguments[0])->getArea(value), value);
}

constexpr FunctionRow rows[] = {
    {L"VLAX-CURVE-GETSTARTPARAM", startParameter, 1, 1},
    {L"VLAX-CURVE-GETENDPARAM", endParameter, 1, 1},
    {L"VLAX-CURVE-GETSTARTPOINT", startPoint, 1, 1},
    {L"VLAX-CURVE-GETENDPOINT", endPoint, 1, 1},
    {L"VLAX-CURVE-ISCLOSED", isClosed, 1, 1},
    {L"VLAX-CURVE-ISPERIODIC", isPeriodic, 1, 1},
    {L"VLAX-CURVE-GETPOINTATPARAM", pointAtParameter, 2, 2},
    {L"VLAX-CURVE-GETPARAMATPOINT", parameterAtPoint, 2, 2},
    {L"VLAX-CURVE-GETDISTATPARAM", distanceAtParameter, 2, 2},
    {L"VLAX-CURVE-GETPARAMATDIST", parameterAtDistance, 2, 2},
    {L"VLAX-CURVE-GETDISTATPOINT", distanceAtPoint, 2, 2},
    {L"VLAX-CURVE-GETPOINTATDIST", pointAtDistance, 2, 2},
    {L"VLAX-CURVE-GETCLOSESTPOINTTO", closestPoint, 2, 3},
    {L"VLAX-CURVE-GETCLOSESTPOINTTOPROJECTION", closestProjected, 3, 4},
    {L"VLAX-CURVE-GETFIRSTDERIV", firstDerivative, 2, 2},
    {L"VLAX-CURVE-GETSECONDDERIV", secondDerivative, 2, 2},
    {L"VLAX-CURVE-GETAREA", area, 1, 1},
};

} // namespace

void addCurveFunctions(LispInterpreter& lisp) {
    addFunctions(lisp, rows);
}

} // namespace host::lisp
