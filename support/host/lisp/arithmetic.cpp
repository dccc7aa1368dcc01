// Numbers: arithmetic, comparison, bits. Integers have 32 bits; a result beyond them becomes a real.
#include "host/lisp/builtins.h"
#include "host/lisp/printer.h"
#include "host/rx/text.h"

#include <cmath>
#include <limits>
#include <numeric>

namespace host::lisp {

namespace {

void checkNumber(const Value& value) {
    if (!value.isNumber()) [[unlikely]] {
        typeError(L"numberp:", value);
    }
}

[[noreturn]] void undefinedFor(const Value& value) {
    throw Error(L"函数对参数没有定义: " + printedShort(value));
}

// Folds numbers from the left: integers as long as all are and the results fit, else reals.
template <class Integers, class Reals>
Value fold(Value start, Arguments arguments, Integers integers, Reals reals) {
    for (const Value& argument : arguments) {
        checkNumber(argument);
        if (start.isInteger() && argument.isInteger()) {
            start = integers(start.integer(), argument.integer());
        } else {
            start = reals(start.number(), argument.number());
        }
    }
    return start;
}

std::int64_t wide(std::int32_t value) {
    return value;
}

Value add(LispInterpreter&, Arguments arguments) {
    return fold(
        Value(0), arguments, [](std::int32_t a, std::int32_t b) { return integerOrReal(wide(a) + b); },
        [](double a, double b) { return Value(a + b); });
}

Value subtract(LispInterpreter&, Arguments arguments) {
    if (arguments.empty()) {
        return 0;
    }
    checkNumber(arguments[0]);
    const bool negates = arguments.size() == 1;
    return fold(
        negates ? Value(0) : arguments[0], negates ? arguments : arguments.subspan(1),
        [](std::int32_t a, std::int32_t b) { return integerOrReal(wide(a) - b); },
        [](double a, double b) { return Value(a - b); });
}

Value multiply(LispInterpreter&, Arguments arguments) {
    if (arguments.empty()) {
        return 0;
    }
    return fold(
        Value(1), arguments, [](std::int32_t a, std::int32_t b) { return integerOrReal(wide(a) * b); },
        [](double a, double b) { return Value(a * b); });
}

Value divide(LispInterpreter&, Arguments arguments) {
    if (arguments.empty()) {
        return 0;
    }
    checkNumber(arguments[0]);
    return fold(
        arguments[0], arguments.subspan(1),
        [](std::int32_t a, std::int32_t b) {
            if (b == 0) {
                throw Error(L"除数为零");
            }
            return integerOrReal(wide(a) / b);
        },
        [](double a, double b) {
            if (b == 0.0) {
                throw Error(L"除数为零");
            }
            return Value(a / b);
        });
}

Value remainder(LispInterpreter&, Arguments arguments) {
    if (arguments.empty()) {
        return 0;
    }
    checkNumber(arguments[0]);
    return fold(
        arguments[0], arguments.subspan(1),
        [](std::int32_t a, std::int32_t b) {
            if (b == 0) {
                throw Error(L"除数为零");
            }
            return integerOrReal(wide(a) % b);
        },
        [](double a, double b) {
            if (b == 0.0) {
                throw Error(L"除数为零");
            }
            return Value(std::fmod(a, b));
        });
}

Value increment(LispInterpreter&, Arguments arguments) {
    checkNumber(arguments[0]);
    return arguments[0].isInteger() ? integerOrReal(wide(arguments[0].integer()) + 1)
                                    : Value(arguments[0].real() + 1.0);
}

Value decrement(LispInterpreter&, Arguments arguments) {
    checkNumber(arguments[0]);
    return arguments[0].isInteger() ? integerOrReal(wide(arguments[0].integer()) - 1)
                                    : Value(arguments[0].real() - 1.0);
}

Value absolute(LispInterpreter&, Arguments arguments) {
    checkNumber(arguments[0]);
    return arguments[0].isInteger() ? integerOrReal(std::abs(wide(arguments[0].integer())))
                                    : Value(std::abs(arguments[0].real()));
}

// The greatest or least number, a real when any of them is one.
template <class Better>
Value extreme(Arguments arguments, Better better) {
    if (arguments.empty()) {
        return 0;
    }
    const Value* best = &arguments[0];
    bool integral = true;
    for (const Value& argument : arguments) {
        checkNumber(argument);
        integral = integral && argument.isInteger();
        if (better(argument.number(), best->number())) {
            best = &argument;
        }
    }
    return integral ? *best : Value(best->number());
}

Value maximum(LispInterpreter&, Arguments arguments) {
    return extreme(arguments, [](double a, double b) { return a > b; });
}

Value minimum(LispInterpreter&, Arguments arguments) {
    return extreme(arguments, [](double a, double b) { return a < b; });
}

template <double (*function)(double)>
Value realFunction(LispInterpreter&, Arguments arguments) {
    return function(numberOf(arguments[0]));
}

Value squareRoot(LispInterpreter&, Arguments arguments) {
    const double value = numberOf(arguments[0]);
    if (value < 0.0) {
        undefinedFor(arguments[0]);
    }
    return std::sqrt(value);
}

Value logarithm(LispInterpreter&, Arguments arguments) {
    const double value = numberOf(arguments[0]);
    if (!(value > 0.0)) {
        undefinedFor(arguments[0]);
    }
    return std::log(value);
}

Value power(LispInterpreter&, Arguments arguments) {
    const double base = numberOf(arguments[0]);
    const double exponent = numberOf(arguments[1]);
    const double result = std::pow(base, exponent);
    if (std::isnan(result) || (base == 0.0 && exponent < 0.0)) {
        undefinedFor(arguments[1]);
    }
    const bool integral = arguments[0].isInteger() && arguments[1].isInteger() && exponent >= 0.0;
    if (integral && std::abs(result) <= std::numeric_limits<std::int32_t>::max()) {
        return static_cast<std::int32_t>(result);
    }
    return result;
}

Value arcTangent(LispInterpreter&, Arguments arguments) {
    const double y = numberOf(arguments[0]);
    return arguments.size() > 1 ? std::atan2(y, numberOf(arguments[1])) : std::atan(y);
}

double toSine(double value) {
    return std::sin(value);
}
double toCosine(double value) {
    return std::cos(value);
}
double toExponential(double value) {
    return std::exp(value);
}

// Without its fraction, an integer when it fits.
Value toWhole(LispInterpreter&, Arguments arguments) {
    if (arguments[0].isInteger()) {
        return arguments[0];
    }
    const double value = std::trunc(numberOf(arguments[0]));
    if (value >= std::numeric_limits<std::int32_t>::min() &&
        value <= std::numeric_limits<std::int32_t>::max()) {
        return static_cast<std::int32_t>(value);
    }
    return value;
}

Value toReal(LispInterpreter&, Arguments arguments) {
    return numberOf(arguments[0]);
}

Value greatestDivisor(LispInterpreter&, Arguments arguments) {
    std::int64_t result = 0;
    for (const Value& argument : arguments) {
        result = std::gcd(result, wide(integerOf(argument)));
    }
    return integerOrReal(result);
}

Value leastMultiple(LispInterpreter&, Arguments arguments) {
    std::int64_t result = 1;
    for (const Value& argument : arguments) {
        result = std::lcm(result, wide(integerOf(argument)));
        if (result > std::numeric_limits<std::int32_t>::max()) {
            throw Error(L"LCM: 结果超出整数范围");
        }
    }
    return static_cast<std::int32_t>(result);
}

// Bits.

Value bitNot(LispInterpreter&, Arguments arguments) {
    return ~integerOf(arguments[0]);
}

Value bitAnd(LispInterpreter&, Arguments arguments) {
    std::int32_t result = arguments.empty() ? 0 : -1;
    for (const Value& argument : arguments) {
        result &= integerOf(argument);
    }
    return result;
}

Value bitOr(LispInterpreter&, Arguments arguments) {
    std::int32_t result = 0;
    for (const Value& argument : arguments) {
        result |= integerOf(argument);
    }
    return result;
}

Value bitXor(LispInterpreter&, Arguments arguments) {
    std::int32_t result = 0;
    for (const Value& argument : arguments) {
        result ^= integerOf(argument);
    }
    return result;
}

Value shift(LispInterpreter&, Arguments arguments) {
    const auto bits = static_cast<std::uint32_t>(integerOf(arguments[0]));
    const std::int32_t count = integerOf(arguments[1]);
    if (count <= -32 || count >= 32) {
        return 0;
    }
    return static_cast<std::int32_t>(count >= 0 ? bits << count : bits >> -count);
}

// Bit 1 of the operator: both set; 2: only the first; 4: only the second; 8: neither.
Value booleOperation(LispInterpreter&, Arguments arguments) {
    const std::int32_t operation = integerOf(arguments[0]);
    std::int32_t result = integerOf(arguments[1]);
    for (const Value& argument : arguments.subspan(2)) {
        const std::int32_t other = integerOf(argument);
        const std::int32_t first = result;
        result = 0;
        result |= (operation & 1) != 0 ? first & other : 0;
        result |= (operation & 2) != 0 ? first & ~other : 0;
        result |= (operation & 4) != 0 ? ~first & other : 0;
        result |= (operation & 8) != 0 ? ~(first | other) : 0;
    }
    return result;
}

// Comparison.

Value isZero(LispInterpreter& lisp, Arguments arguments) {
    return lisp.boolean(numberOf(arguments[0]) == 0.0);
}

Value isMinus(LispInterpreter& lisp, Arguments arguments) {
    return lisp.boolean(numberOf(arguments[0]) < 0.0);
}

Value isNumberFunction(LispInterpreter& lisp, Arguments arguments) {
    return lisp.boolean(arguments[0].isNumber());
}

bool sameValue(const Value& left, const Value& right) {
    return left.isNumber() && right.isNumber() ? left.number() == right.number() : eq(left, right);
}

Value equals(LispInterpreter& lisp, Arguments arguments) {
    for (std::size_t at = 1; at < arguments.size(); ++at) {
        if (!sameValue(arguments[at - 1], arguments[at])) {
            return {};
        }
    }
    return lisp.truth();
}

Value differs(LispInterpreter& lisp, Arguments arguments) {
    for (std::size_t at = 1; at < arguments.size(); ++at) {
        if (sameValue(arguments[at - 1], arguments[at])) {
            return {};
        }
    }
    return lisp.truth();
}

// Whether each neighbouring pair, of numbers or of texts, is in order.
template <class Ordered>
Value ordered(LispInterpreter& lisp, Arguments arguments, Ordered inOrder) {
    bool result = true;
    for (std::size_t at = 0; at < arguments.size(); ++at) {
        const Value& right = arguments[at];
        if (!right.isNumber() && !right.isText()) {
            typeError(L"numberp:", right);
        }
        if (at == 0) {
            continue;
        }
        const Value& left = arguments[at - 1];
        if (left.isText() != right.isText()) {
            throw Error(L"参数类型错误: 无法比较: " + printedShort(left) + L" " + printedShort(right));
        }
        const bool fits = left.isText() ? inOrder(left.text().compare(right.text()), 0)
                          : left.isInteger() && right.isInteger() ? inOrder(left.integer(), right.integer())
                                                                  : inOrder(left.number(), right.number());
        result = result && fits;
    }
    return lisp.boolean(result);
}

Value less(LispInterpreter& lisp, Arguments arguments) {
    return ordered(lisp, arguments, [](auto a, auto b) { return a < b; });
}
Value greater(LispInterpreter& lisp, Arguments arguments) {
    return ordered(lisp, arguments, [](auto a, auto b) { return a > b; });
}
Value atMost(LispInterpreter& lisp, Arguments arguments) {
    return ordered(lisp, arguments, [](auto a, auto b) { return a <= b; });
}
Value atLeast(LispInterpreter& lisp, Arguments arguments) {
    return ordered(lisp, arguments, [](auto a, auto b) { return a >= b; });
}

Value eqFunction(LispInterpreter& lisp, Arguments arguments) {
    return lisp.boolean(eq(arguments[0], arguments[1]));
}

Value equalFunction(LispInterpreter& lisp, Arguments arguments) {
    const double fuzz = arguments.size() > 2 ? numberOf(arguments[2]) : 0.0;
    return lisp.boolean(equal(arguments[0], arguments[1], fuzz));
}

constexpr FunctionRow rows[] = {
    {L"+", add, 0, any},
    {L"-", subtract, 0, any},
    {L"*", multiply, 0, any},
    {L"/", divide, 0, any},
    {L"REM", remainder, 0, any},
    {L"1+", increment, 1, 1},
    {L"1-", decrement, 1, 1},
    {L"ABS", absolute, 1, 1},
    {L"MAX", maximum, 0, any},
    {L"MIN", minimum, 0, any},
    {L"SQRT", squareRoot, 1, 1},
    {L"EXP", realFunction<toExponential>, 1, 1},
    {L"LOG", logarithm, 1, 1},
    {L"EXPT", power, 2, 2},
    {L"SIN", realFunction<toSine>, 1, 1},
    {L"COS", realFunction<toCosine>, 1, 1},
    {L"ATAN", arcTangent, 1, 2},
    {L"FIX", toWhole, 1, 1},
    {L"FLOAT", toReal, 1, 1},
    {L"GCD", greatestDivisor, 0, any},
    {L"LCM", leastMultiple, 1, any},
    {L"~", bitNot, 1, 1},
    {L"LOGAND", bitAnd, 0, any},
    {L"LOGIOR", bitOr, 0, any},
    {L"LOGXOR", bitXor, 0, any},
    {L"LSH", shift, 2, 2},
    {L"BOOLE", booleOperation, 2, any},
    {L"ZEROP", isZero, 1, 1},
    {L"MINUSP", isMinus, 1, 1},
    {L"NUMBERP", isNumberFunction, 1, 1},
    {L"=", equals, 1, any},
    {L"/=", differs, 1, any},
    {L"<", less, 1, any},
    {L">", greater, 1, any},
    {L"<=", atMost, 1, any},
    {L">=", atLeast, 1, any},
    {L"EQ", eqFunction, 2, 2},
    {L"EQUAL", equalFunction, 2, 3},
};

} // namespace

void addArithmeticFunctions(LispInterpreter& lisp) {
    addFunctions(lisp, rows);
    lisp.setValue(L"PI", 3.14159265358979323846);
}

} // namespace host::lisp
