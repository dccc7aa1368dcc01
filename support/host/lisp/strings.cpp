// Texts: joining, cutting, searching, and conversion from and to values. Positions of substr count from 1,
// those of the vl- functions from 0.
#include "host/lisp/builtins.h"
#include "host/lisp/printer.h"
#include "host/lisp/reader.h"
#include "host/rx/text.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <limits>

namespace host::lisp {

namespace {

Value join(LispInterpreter&, Arguments arguments) {
    std::wstring text;
    for (const Value& part : arguments) {
        text += textOf(part);
    }
    return makeText(std::move(text));
}

Value lengthOfTexts(LispInterpreter&, Arguments arguments) {
    std::size_t length = 0;
    for (const Value& text : arguments) {
        length += textOf(text).size();
    }
    return static_cast<std::int32_t>(length);
}

Value part(LispInterpreter&, Arguments arguments) {
    const std::wstring& text = textOf(arguments[0]);
    const std::int32_t start = integerOf(arguments[1]);
    if (start < 1) {
        valueError(L"正数", arguments[1]);
    }
    std::size_t count = std::wstring::npos;
    if (arguments.size() > 2 && arguments[2]) {
        const std::int32_t length = integerOf(arguments[2]);
        if (length < 0) {
            valueError(L"非负数", arguments[2]);
        }
        count = static_cast<std::size_t>(length);
    }
    const auto from = static_cast<std::size_t>(start - 1);
    return makeText(from >= text.size() ? std::wstring() : text.substr(from, count));
}

Value changeCase(LispInterpreter&, Arguments arguments) {
    const std::wstring& text = textOf(arguments[0]);
    return makeText(arguments.size() > 1 && arguments[1] ? toLower(std::wstring_view(text))
                                                         : toUpper(std::wstring_view(text)));
}

Value code(LispInterpreter&, Arguments arguments) {
    const std::wstring& text = textOf(arguments[0]);
    return text.empty() ? 0 : static_cast<std::int32_t>(text.front());
}

Value character(LispInterpreter&, Arguments arguments) {
    const std::int32_t number = integerOf(arguments[0]);
    if (number < 0 || number > 0x10FFFF) {
        valueError(L"字符代码", arguments[0]);
    }
    return makeText(number == 0 ? std::wstring() : std::wstring(1, static_cast<wchar_t>(number)));
}

Value integerToText(LispInterpreter&, Arguments arguments) {
    return makeText(std::to_wstring(integerOf(arguments[0])));
}

// The number at the beginning of a text, as the C library reads one; 0 without.
double leadingNumber(const std::wstring& text) {
    std::string digits;
    for (const wchar_t c : trimLeft(std::wstring_view(text))) {
        const bool numeric =
            (c >= L'0' && c <= L'9') || c == L'+' || c == L'-' || c == L'.' || c == L'e' || c == L'E';
        if (!numeric || digits.size() > 400) {
            break;
        }
        digits += static_cast<char>(c);
    }
    const double value = std::strtod(digits.c_str(), nullptr);
    return std::isfinite(value) ? value : 0.0;
}

Value textToInteger(LispInterpreter&, Arguments arguments) {
    const double value = std::trunc(leadingNumber([&] {
        // Only the digits: "1e3" is 1.
        const std::wstring& text = textOf(arguments[0]);
        return text.substr(0, text.find_first_of(L".eE"));
    }()));
    return static_cast<std::int32_t>(std::clamp(value, double{std::numeric_limits<std::int32_t>::min()},
                                                double{std::numeric_limits<std::int32_t>::max()}));
}

Value textToReal(LispInterpreter&, Arguments arguments) {
    return leadingNumber(textOf(arguments[0]));
}

Value read(LispInterpreter& lisp, Arguments arguments) {
    return arguments.empty() ? Value() : lisp.readText(textOf(arguments[0]));
}

Value toReadable(LispInterpreter&, Arguments arguments) {
    return makeText(printed(arguments[0]));
}

Value toPlain(LispInterpreter&, Arguments arguments) {
    return makeText(printed(arguments[0], PrintStyle::plain));
}

std::size_t startOf(Arguments arguments, std::size_t index) {
    if (arguments.size() <= index || arguments[index].isNil()) {
        return 0;
    }
    const std::int32_t start = integerOf(arguments[index]);
    if (start < 0) {
        valueError(L"非负数", arguments[index]);
    }
    return static_cast<std::size_t>(start);
}

Value found(std::size_t position) {
    return position == std::wstring::npos ? Value() : Value(static_cast<std::int32_t>(position));
}

Value search(LispInterpreter&, Arguments arguments) {
    return found(textOf(arguments[1]).find(textOf(arguments[0]), startOf(arguments, 2)));
}

Value positionOf(LispInterpreter&, Arguments arguments) {
    const auto wanted = static_cast<wchar_t>(integerOf(arguments[0]));
    const std::wstring& text = textOf(arguments[1]);
    const bool fromEnd = arguments.size() > 3 && arguments[3];
    return found(fromEnd ? text.rfind(wanted) : text.find(wanted, startOf(arguments, 2)));
}

// Replaces the first occurrence: (vl-string-subst new old text [start]).
Value replaceFirst(LispInterpreter&, Arguments arguments) {
    const std::wstring& replacement = textOf(arguments[0]);
    const std::wstring& pattern = textOf(arguments[1]);
    std::wstring text = textOf(arguments[2]);
    const std::size_t at = text.find(pattern, startOf(arguments, 3));
    if (at != std::wstring::npos) {
        text.replace(at, pattern.size(), replacement);
    }
    return makeText(std::move(text));
}

template <bool left, bool right>
Value trimmed(LispInterpreter&, Arguments arguments) {
    const std::wstring& characters = textOf(arguments[0]);
    std::wstring text = textOf(arguments[1]);
    if (right) {
        const std::size_t end = text.find_last_not_of(characters);
        text.erase(end == std::wstring::npos ? 0 : end + 1);
    }
    if (left) {
        text.erase(0, text.find_first_not_of(characters));
    }
    return makeText(std::move(text));
}

Value translate(LispInterpreter&, Arguments arguments) {
    const std::wstring& from = textOf(arguments[0]);
    const std::wstring& to = textOf(arguments[1]);
    std::wstring text = textOf(arguments[2]);
    for (wchar_t& c : text) {
        if (const std::size_t at = from.find(c); at != std::wstring::npos && !to.empty()) {
            c = to[std::min(at, to.size() - 1)];
        }
    }
    return makeText(std::move(text));
}

Value elementAt(LispInterpreter&, Arguments arguments) {
    const std::wstring& text = textOf(arguments[0]);
    const std::int32_t index = integerOf(arguments[1]);
    if (index < 0 || static_cast<std::size_t>(index) >= text.size()) {
        valueError(L"字符位置", arguments[1]);
    }
    return static_cast<std::int32_t>(text[static_cast<std::size_t>(index)]);
}

// The number of characters that both texts begin with in common.
Value mismatch(LispInterpreter&, Arguments arguments) {
    const std::wstring& left = textOf(arguments[0]);
    const std::wstring& right = textOf(arguments[1]);
    const std::size_t from = std::min(startOf(arguments, 2), left.size());
    const std::size_t to = std::min(startOf(arguments, 3), right.size());
    const bool ignoreCase = arguments.size() > 4 && arguments[4];
    std::size_t count = 0;
    while (from + count < left.size() && to + count < right.size()) {
        const wchar_t a = left[from + count];
        const wchar_t b = right[to + count];
        if (ignoreCase ? fold(a) != fold(b) : a != b) {
            break;
        }
        ++count;
    }
    return static_cast<std::int32_t>(count);
}

constexpr FunctionRow rows[] = {
    {L"STRCAT", join, 0, any},
    {L"STRLEN", lengthOfTexts, 0, any},
    {L"SUBSTR", part, 2, 3},
    {L"STRCASE", changeCase, 1, 2},
    {L"ASCII", code, 1, 1},
    {L"CHR", character, 1, 1},
    {L"ITOA", integerToText, 1, 1},
    {L"ATOI", textToInteger, 1, 1},
    {L"ATOF", textToReal, 1, 1},
    {L"READ", read, 0, 1},
    {L"VL-PRIN1-TO-STRING", toReadable, 1, 1},
    {L"VL-PRINC-TO-STRING", toPlain, 1, 1},
    {L"VL-STRING-SEARCH", search, 2, 3},
    {L"VL-STRING-POSITION", positionOf, 2, 4},
    {L"VL-STRING-SUBST", replaceFirst, 3, 4},
    {L"VL-STRING-TRIM", trimmed<true, true>, 2, 2},
    {L"VL-STRING-LEFT-TRIM", trimmed<true, false>, 2, 2},
    {L"VL-STRING-RIGHT-TRIM", trimmed<false, true>, 2, 2},
    {L"VL-STRING-TRANSLATE", translate, 3, 3},
    {L"VL-STRING-ELT", elementAt, 2, 2},
    {L"VL-STRING-MISMATCH", mismatch, 2, 5},
};

} // namespace

void addStringFunctions(LispInterpreter& lisp) {
    addFunctions(lisp, rows);
}

} // namespace host::lisp
