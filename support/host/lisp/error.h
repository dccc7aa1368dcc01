// Errors of the language. They travel as C++ exceptions to the nearest vl-catch-all-apply or to the prompt.
#pragma once

#include "host/lisp/value.h"

#include <stdexcept>
#include <string>

namespace host::lisp {

/// `message` is the text *error* gets.
class Error : public std::exception {
public:
    explicit Error(std::wstring text) : message(std::move(text)) {}
    const char* what() const noexcept override { return "LISP error"; }

    std::wstring message;
    std::wstring expression; ///< the innermost call that failed, printed; empty until it is known
    bool handled = false;    ///< *error* has run, or there is none
    std::wstring line;       ///< once handled: what is to be told to the user
};

inline constexpr std::wstring_view cancelledMessage = L"函数被取消";
inline constexpr std::wstring_view exitMessage = L"quit / exit abort";

/// "参数类型错误: numberp: nil"; `predicate` says what was expected, with its colon where one belongs.
[[noreturn]] void typeError(std::wstring_view predicate, const Value& value);
/// "参数值错误: 正数: -1".
[[noreturn]] void valueError(std::wstring_view expected, const Value& value);
[[noreturn]] void tooFewArguments();
[[noreturn]] void tooManyArguments();
[[noreturn]] void cancelled();

// Arguments of a given kind; anything else is a type error.

double numberOf(const Value& value);
std::int32_t integerOf(const Value& value);
const std::wstring& textOf(const Value& value);
Symbol* symbolOf(const Value& value);
/// A list or nil.
const Value& listOf(const Value& value);
/// The elements of a proper list.
std::vector<Value> elementsOf(const Value& list);
Value listFrom(std::span<const Value> values);
/// Length of a proper list.
std::int32_t lengthOf(const Value& list);

/// A real from an integer range check: the integer when it fits in 32 bits, else the real.
Value integerOrReal(std::int64_t value);

} // namespace host::lisp
