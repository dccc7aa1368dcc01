// Numbers as text in the drawing's units, and back; unit conversion; wildcards.
#include "host/ed/ed.h"
#include "host/lisp/drawingbuiltins.h"

namespace host::lisp {

namespace {

int optionAt(Arguments arguments, std::size_t index) {
    return arguments.size() > index && arguments[index] ? integerOf(arguments[index]) : -1;
}

Value realToText(LispInterpreter&, Arguments arguments) {
    AcString text;
    acdbRToS(numberOf(arguments[0]), optionAt(arguments, 1), optionAt(arguments, 2), text);
    return makeText(text.kwszPtr());
}

Value angleToText(LispInterpreter&, Arguments arguments) {
    AcString text;
    acdbAngToS(numberOf(arguments[0]), optionAt(arguments, 1), optionAt(arguments, 2), text);
    return makeText(text.kwszPtr());
}

Value textToDistance(LispInterpreter&, Arguments arguments) {
    ads_real value = 0.0;
    const int status = acdbDisToF(textOf(arguments[0]).c_str(), optionAt(arguments, 1), &value);
    return status == RTNORM ? Value(value) : Value();
}

Value textToAngle(LispInterpreter&, Arguments arguments) {
    ads_real value = 0.0;
    const int status = acdbAngToF(textOf(arguments[0]).c_str(), optionAt(arguments, 1), &value);
    return status == RTNORM ? Value(value) : Value();
}

Value convertUnit(LispInterpreter&, Arguments arguments) {
    ads_real value = 0.0;
    const int status = acutCvUnit(numberOf(arguments[0]), textOf(arguments[1]).c_str(),
                                  textOf(arguments[2]).c_str(), &value);
    return status == RTNORM ? Value(value) : Value();
}

// Case matters here.
Value matches(LispInterpreter& lisp, Arguments arguments) {
    return lisp.boolean(wildcardMatch(textOf(arguments[0]), textOf(arguments[1]), false));
}

constexpr FunctionRow rows[] = {
    {L"RTOS", realToText, 1, 3},    {L"ANGTOS", angleToText, 1, 3}, {L"DISTOF", textToDistance, 1, 2},
    {L"ANGTOF", textToAngle, 1, 2}, {L"CVUNIT", convertUnit, 3, 3}, {L"WCMATCH", matches, 2, 2},
};

} // namespace

void addUnitFunctions(LispInterpreter& lisp) {
    addFunctions(lisp, rows);
}

} // namespace host::lisp
