// Selection sets.
#include "host/ed/ed.h"
#include "host/lisp/convert.h"
#include "host/lisp/drawingbuiltins.h"
#include "host/lisp/points.h"

namespace host::lisp {

namespace {

// A list of points, and not of the pairs of a filter.
bool isPointList(const Value& value) {
    bool any = false;
    for (const Value& element : Elements(value)) {
        if (!pointIn(element)) {
            return false;
        }
        any = true;
    }
    return any;
}

struct SelectionRequest {
    explicit SelectionRequest(Arguments arguments) {
        std::size_t at = 0;
        if (!arguments.empty() && arguments[0].isText()) {
            mode = arguments[0].text();
            hasMode = true;
            at = 1;
        }
        for (; at < arguments.size(); ++at) {
            const Value& argument = arguments[at];
            if (argument.isNil()) {
                continue;
            }
            if (const std::optional<ListPoint> point = pointIn(argument); point && points < 2) {
                setPoint(corners[points++], point->point);
            } else if (points == 0 && polygon == nullptr && isPointList(argument)) {
                takePolygon(argument);
            } else {
                filter = listToGroups(argument);
            }
        }
        if (!hasMode && points == 2) { // two points without a mode: a crossing window
            mode = L"C";
            hasMode = true;
        }
    }

    void takePolygon(const Value& list) {
        ResbufBuilder builder;
        for (const Value& element : Elements(list)) {
            const AcGePoint3d point = pointOf(element).point;
            builder.point(RT3DPOINT, point.x, point.y, point.z);
        }
        polygon = builder.release();
    }

    const void* first() const {
        if (polygon != nullptr) {
            return polygon.get();
        }
        return points > 0 ? corners[0] : nullptr;
    }

    std::wstring mode;
    bool hasMode = false;
    ads_point corners[2] = {};
    int points = 0;
    ResbufList polygon;
    ResbufList filter;
};

Value select(LispInterpreter&, Arguments arguments) {
    const SelectionRequest request(arguments);
    ads_name set{};
    const int status =
        acedSSGet(request.hasMode ? request.mode.c_str() : nullptr, request.first(),
                  request.points > 1 ? request.corners[1] : nullptr, request.filter.get(), set);
    if (status == RTNORM) {
        return selectionValue(set);
    }
    if (status == RTCAN) {
        cancelled();
    }
    if (status == RTKWORD) {
        AcString word;
        acedGetInput(word);
        return makeText(word.kwszPtr());
    }
    return {};
}

std::int32_t indexOf(const Value& value) {
    if (value.isReal() && value.real() >= 0.0 && value.real() < 2e9) {
        return static_cast<std::int32_t>(value.real());
    }
    return integerOf(value);
}

Value name(LispInterpreter&, Arguments arguments) {
    ads_name entity{};
    const int status = acedSSName(selectionOf(arguments[0]).name, indexOf(arguments[1]), entity);
    return status == RTNORM ? entityValue(entity) : Value();
}

Value length(LispInterpreter&, Arguments arguments) {
    Adesk::Int32 count = 0;
    acedSSLength(selectionOf(arguments[0]).name, &count);
    return count;
}

// (ssadd), (ssadd entity), (ssadd entity set): the set itself grows.
Value add(LispInterpreter&, Arguments arguments) {
    ads_name set{};
    const bool hasEntity = !arguments.empty() && arguments[0];
    if (arguments.size() > 1 && arguments[1]) {
        ads_name_set(selectionOf(arguments[1]).name, set);
        ads_name result{};
        const int status = acedSSAdd(entityOf(arguments[0]).name, set, result);
        return status == RTNORM ? arguments[1] : Value();
    }
    const int status = acedSSAdd(hasEntity ? entityOf(arguments[0]).name : nullptr, nullptr, set);
    return status == RTNORM ? selectionValue(set) : Value();
}

Value remove(LispInterpreter&, Arguments arguments) {
    const int status = acedSSDel(entityOf(arguments[0]).name, selectionOf(arguments[1]).name);
    return status == RTNORM ? arguments[1] : Value();
}

Value member(LispInterpreter&, Arguments arguments) {
    const int status = acedSSMemb(entityOf(arguments[0]).name, selectionOf(arguments[1]).name);
    return status == RTNORM ? arguments[0] : Value();
}

// (ssnamex set [index]): how each entity was selected.
Value details(LispInterpreter& lisp, Arguments arguments) {
    resbuf* result = nullptr;
    const int index = arguments.size() > 1 && arguments[1] ? indexOf(arguments[1]) : -1;
    const int status = acedSSNameX(&result, selectionOf(arguments[0]).name, index);
    const ResbufList owned(result);
    return status == RTNORM ? valueFrom(lisp, owned.get()).value_or(Value()) : Value();
}

Value nameIn(LispInterpreter& lisp, resbuf* list) {
    const ResbufList owned(list);
    return valueFrom(lisp, owned.get()).value_or(Value());
}

// (grips pickfirst), nil when nothing is selected.
Value getFirst(LispInterpreter& lisp, Arguments) {
    resbuf* grips = nullptr;
    resbuf* pickFirst = nullptr;
    if (acedSSGetFirst(&grips, &pickFirst) != RTNORM) {
        return list(nil, nil);
    }
    Value first = nameIn(lisp, grips);
    return list(std::move(first), nameIn(lisp, pickFirst));
}

Value setFirst(LispInterpreter&, Arguments arguments) {
    const auto nameOf = [&](std::size_t index) {
        return arguments.size() > index && arguments[index] ? selectionOf(arguments[index]).name : nullptr;
    };
    if (acedSSSetFirst(nameOf(0), nameOf(1)) != RTNORM) {
        return {};
    }
    return list(arguments[0], arguments.size() > 1 ? arguments[1] : Value());
}

constexpr FunctionRow rows[] = {
    {L"SSGET", select, 0, 4},    {L"SSNAME", name, 2, 2},         {L"SSLENGTH", length, 1, 1},
    {L"SSADD", add, 0, 2},       {L"SSDEL", remove, 2, 2},        {L"SSMEMB", member, 2, 2},
    {L"SSNAMEX", details, 1, 2}, {L"SSGETFIRST", getFirst, 0, 0}, {L"SSSETFIRST", setFirst, 1, 2},
};

} // namespace

void addSelectionFunctions(LispInterpreter& lisp) {
    addFunctions(lisp, rows);
}

} // namespace host::lisp
