#include "host/lisp/printer.h"

#include "host/lisp/file.h"
#include "host/lisp/stack.h"
#include "host/rx/format.h"

#include <cmath>
#include <cstdio>
#include <limits>

namespace host::lisp {

namespace {

class Printer {
public:
    Printer(std::wstring& output, PrintStyle style, std::size_t most)
        : mOutput(output), mStyle(style), mMost(most) {}

    void print(const Value& value) {
        ensureStack();
        switch (value.kind()) {
        case Kind::nil:
            mOutput += L"nil";
            break;
        case Kind::integer:
            mOutput += std::to_wstring(value.integer());
            break;
        case Kind::real:
            mOutput += printedReal(value.real());
            break;
        case Kind::symbol:
            mOutput += value.symbol()->name;
            break;
        case Kind::text:
            mOutput += mStyle == PrintStyle::plain ? value.text() : L"\"" + escaped(value.text()) + L"\"";
            break;
        case Kind::cons:
            printList(value);
            break;
        default:
            printObject(value);
        }
    }

    bool full() const { return mOutput.size() > mMost; }

private:
    void printList(const Value& value) {
        mOutput += L'(';
        const Value* at = &value;
        for (; at->isCons() && !full(); at = &at->cons().tail) {
            if (at != &value) {
                mOutput += L' ';
            }
            print(at->cons().head);
        }
        if (!at->isList() && !full()) {
            mOutput += L" . ";
            print(*at);
        }
        mOutput += L')';
    }

    void printObject(const Value& value) {
        const auto address = reinterpret_cast<std::uintptr_t>(value.object());
        const auto id = static_cast<unsigned long long>(address);
        switch (value.kind()) {
        case Kind::subr:
            mOutput += formatted(L"#<SUBR @%016llx %s>", id, value.as<Subr>().name.c_str());
            break;
        case Kind::userFunction: {
            const std::wstring& name = value.as<UserFunction>().name;
            mOutput += formatted(L"#<USUBR @%016llx %s>", id, name.empty() ? L"-lambda-" : name.c_str());
            break;
        }
        case Kind::external:
            mOutput += formatted(L"#<EXRXSUBR @%016llx %s>", id, value.as<External>().name.c_str());
            break;
        case Kind::entityName:
            mOutput +=
                formatted(L"<图元名: %llx>", static_cast<unsigned long long>(value.as<EntityName>().name[0]));
            break;
        case Kind::selectionSet:
            mOutput += formatted(L"<选择集: %llx>",
                                 static_cast<unsigned long long>(value.as<SelectionSet>().name[0]));
            break;
        case Kind::file:
            mOutput += L"#<file \"" + escaped(value.as<FileHandle>().path()) + L"\">";
            break;
        case Kind::caughtError:
            mOutput += L"#<%catch-all-apply-error%>";
            break;
        default:
            break;
        }
    }

    std::wstring& mOutput;
    PrintStyle mStyle;
    std::size_t mMost;
};

} // namespace

std::wstring printed(const Value& value, PrintStyle style) {
    std::wstring output;
    Printer(output, style, std::numeric_limits<std::size_t>::max()).print(value);
    return output;
}

std::wstring printedShort(const Value& value) {
    constexpr std::size_t most = 120;
    std::wstring output;
    Printer(output, PrintStyle::readable, most).print(value);
    if (output.size() > most) {
        output.resize(most);
        output += L"...";
    }
    return output;
}

std::wstring printedReal(double value) {
    if (std::isnan(value)) {
        return L"nan";
    }
    if (std::isinf(value)) {
        return value < 0.0 ? L"-1.#INF" : L"1.#INF";
    }
    char buffer[40];
    std::snprintf(buffer, sizeof buffer, "%.6g", value);
    std::wstring digits(buffer, buffer + std::char_traits<char>::length(buffer));
    if (digits.find(L'.') == std::wstring::npos) {
        const std::size_t exponent = digits.find(L'e');
        digits.insert(exponent == std::wstring::npos ? digits.size() : exponent, L".0");
    }
    return digits;
}

std::wstring escaped(std::wstring_view text) {
    std::wstring output;
    output.reserve(text.size());
    for (const wchar_t character : text) {
        switch (character) {
        case L'"':
            output += L"\\\"";
            break;
        case L'\\':
            output += L"\\\\";
            break;
        case L'\n':
            output += L"\\n";
            break;
        case L'\r':
            output += L"\\r";
            break;
        case L'\t':
            output += L"\\t";
            break;
        case L'\x1B':
            output += L"\\e";
            break;
        default:
            if (character < L' ' || character == L'\x7F') {
                output += formatted(L"\\%03o", static_cast<unsigned>(character));
            } else {
                output += character;
            }
        }
    }
    return output;
}

} // namespace host::lisp
