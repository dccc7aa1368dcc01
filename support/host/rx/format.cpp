// A printf of our own: parses the format once, reads each argument in its Windows size and writes wide text.
#include "host/rx/format.h"

#include "host/rx/text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <limits>
#include <optional>

namespace host {
namespace {

enum class Size { none, charSize, shortSize, longSize, wideSize, bits32, bits64, longDouble };

struct Conversion {
    bool left = false, plus = false, blank = false, alternate = false, zero = false;
    int width = 0;
    int precision = -1; // none given
    Size size = Size::none;
    wchar_t type = 0;
};

constexpr int mostDigits = 1100; // any finite double has fewer before or after the point

// Reads the arguments one after another. A class, because a va_list can not be passed on by reference
// where it is an array type.
class Arguments {
public:
    explicit Arguments(std::va_list given) { va_copy(list_, given); }
    ~Arguments() { va_end(list_); }
    Arguments(const Arguments&) = delete;
    Arguments& operator=(const Arguments&) = delete;

    template <class T>
    T next() {
        return va_arg(list_, T);
    }

private:
    std::va_list list_;
};

// Decimal number in the format, saturated.
int readNumber(const wchar_t*& at) {
    int value = 0;
    for (; *at >= L'0' && *at <= L'9'; ++at)
        value = std::min(value * 10 + static_cast<int>(*at - L'0'), 100'000'000);
    return value;
}

Size readSize(const wchar_t*& at) {
    const auto doubled = [&](wchar_t letter) {
        ++at;
        return *at == letter ? (++at, true) : false;
    };
    switch (*at) {
    case L'h':
        return doubled(L'h') ? Size::charSize : Size::shortSize;
    case L'l':
        return doubled(L'l') ? Size::bits64 : Size::longSize;
    case L'w':
        ++at;
        return Size::wideSize;
    case L'L':
        ++at;
        return Size::longDouble;
    case L'j':
    case L'z':
    case L't':
        ++at;
        return Size::bits64;
    case L'I':
        ++at;
        if (at[0] == L'6' && at[1] == L'4')
            return at += 2, Size::bits64;
        if (at[0] == L'3' && at[1] == L'2')
            return at += 2, Size::bits32;
        return Size::bits64;
    default:
        return Size::none;
    }
}

bool readFlag(wchar_t c, Conversion& to) {
    switch (c) {
    case L'-':
        return to.left = true;
    case L'+':
        return to.plus = true;
    case L' ':
        return to.blank = true;
    case L'#':
        return to.alternate = true;
    case L'0':
        return to.zero = true;
    default:
        return false;
    }
}

class Formatter {
public:
    Formatter(bool wideDefault, std::va_list arguments) : wideDefault_(wideDefault), arguments_(arguments) {}

    std::wstring run(const wchar_t* at) {
        while (*at != 0) {
            if (*at != L'%') {
                out_.push_back(*at++);
                continue;
            }
            const wchar_t* const start = at++;
            if (*at == L'%') {
                out_.push_back(*at++);
                continue;
            }
            const Conversion conversion = readConversion(at);
            if (!write(conversion))
                out_.append(start, at);
        }
        return std::move(out_);
    }

private:
    Conversion readConversion(const wchar_t*& at) {
        Conversion to;
        while (readFlag(*at, to))
            ++at;
        if (*at == L'*') {
            ++at;
            to.width = arguments_.next<int>();
            to.left = to.left || to.width < 0;
            to.width = to.width == std::numeric_limits<int>::min() ? 0 : std::abs(to.width);
        } else {
            to.width = readNumber(at);
        }
        to.width = std::min(to.width, 1'000'000);
        if (*at == L'.') {
            ++at;
            if (*at == L'*') {
                ++at;
                to.precision = std::max(arguments_.next<int>(), -1);
            } else {
                to.precision = readNumber(at);
            }
            to.precision = std::min(to.precision, 1'000'000);
        }
        to.size = readSize(at);
        if (*at != 0)
            to.type = *at++;
        return to;
    }

    bool write(const Conversion& c) {
        switch (c.type) {
        case L'd':
        case L'i':
            writeSigned(c);
            return true;
        case L'u':
        case L'o':
        case L'x':
        case L'X':
            writeUnsigned(c);
            return true;
        case L'e':
        case L'E':
        case L'f':
        case L'F':
        case L'g':
        case L'G':
        case L'a':
        case L'A':
            writeReal(c);
            return true;
        case L'c':
        case L'C':
            writeCharacter(c);
            return true;
        case L's':
        case L'S':
            writeString(c);
            return true;
        case L'p':
            writePointer(c);
            return true;
        default:
            return false;
        }
    }

    std::int64_t signedArgument(Size size) {
        switch (size) {
        case Size::charSize:
            return static_cast<signed char>(arguments_.next<int>());
        case Size::shortSize:
            return static_cast<short>(arguments_.next<int>());
        case Size::bits64:
            return arguments_.next<std::int64_t>();
        default: // a long is 32 bits in the formats' world; a wider one passed here is cut, as there
            return arguments_.next<std::int32_t>();
        }
    }

    std::uint64_t unsignedArgument(Size size) {
        const std::int64_t value = signedArgument(size);
        switch (size) {
        case Size::charSize:
            return static_cast<unsigned char>(value);
        case Size::shortSize:
            return static_cast<unsigned short>(value);
        case Size::bits64:
            return static_cast<std::uint64_t>(value);
        default:
            return static_cast<std::uint32_t>(value);
        }
    }

    // Sign or base prefix, digits up to the precision, padding.
    void writeNumber(const Conversion& c, std::wstring_view prefix, std::wstring digits) {
        if (c.precision >= 0 && digits.size() < static_cast<std::size_t>(c.precision))
            digits.insert(0, static_cast<std::size_t>(c.precision) - digits.size(), L'0');
        pad(c, prefix, digits, c.zero && c.precision < 0);
    }

    static std::wstring digitsOf(std::uint64_t value, unsigned base, bool upper) {
        constexpr std::wstring_view lowerDigits = L"0123456789abcdef", upperDigits = L"0123456789ABCDEF";
        const std::wstring_view set = upper ? upperDigits : lowerDigits;
        std::wstring digits;
        for (; value != 0; value /= base)
            digits.push_back(set[static_cast<std::size_t>(value % base)]);
        std::ranges::reverse(digits);
        return digits;
    }

    static std::wstring orZero(std::wstring digits, const Conversion& c) {
        return digits.empty() && c.precision != 0 ? L"0" : digits;
    }

    static std::wstring_view signOf(bool negative, const Conversion& c) {
        return negative ? L"-" : c.plus ? L"+" : c.blank ? L" " : L"";
    }

    void writeSigned(const Conversion& c) {
        const std::int64_t value = signedArgument(c.size);
        const std::uint64_t size =
            value < 0 ? 0 - static_cast<std::uint64_t>(value) : static_cast<std::uint64_t>(value);
        writeNumber(c, signOf(value < 0, c), orZero(digitsOf(size, 10, false), c));
    }

    void writeUnsigned(const Conversion& c) {
        const std::uint64_t value = unsignedArgument(c.size);
        const unsigned base = c.type == L'u' ? 10 : c.type == L'o' ? 8 : 16;
        std::wstring digits = orZero(digitsOf(value, base, c.type == L'X'), c);
        if (c.alternate && base == 8 && !digits.starts_with(L'0'))
            digits.insert(0, 1, L'0');
        const bool prefixed = c.alternate && base == 16 && value != 0;
        writeNumber(c, !prefixed ? L"" : c.type == L'X' ? L"0X" : L"0x", std::move(digits));
    }

    void writePointer(Conversion c) {
        const auto value = reinterpret_cast<std::uintptr_t>(arguments_.next<void*>());
        c.precision = 2 * sizeof(void*);
        writeNumber(c, L"", digitsOf(value, 16, true));
    }

    static std::wstring realDigits(double magnitude, std::chars_format format, int precision) {
        std::string buffer(static_cast<std::size_t>(std::min(precision, mostDigits)) + 400, 0);
        const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), magnitude, format,
                                       std::min(precision, mostDigits));
        std::wstring digits(buffer.data(), end.ptr);
        // Beyond what a double can hold there are only zeros.
        if (precision > mostDigits)
            digits.insert(std::min(digits.find_first_of(L"ep"), digits.size()),
                          static_cast<std::size_t>(precision - mostDigits), L'0');
        return digits;
    }

    static std::wstring withPoint(std::wstring digits) {
        if (digits.find(L'.') == std::wstring::npos)
            digits.insert(std::min(digits.find_first_of(L"ep"), digits.size()), 1, L'.');
        return digits;
    }

    // %g: fixed or scientific by the exponent after rounding, without trailing zeros unless '#'.
    static std::wstring general(double magnitude, int precision, bool alternate) {
        const int significant = precision < 0 ? 6 : std::max(precision, 1);
        std::wstring digits = realDigits(magnitude, std::chars_format::scientific, significant - 1);
        const int exponent = std::stoi(digits.substr(digits.find(L'e') + 1));
        if (exponent >= -4 && exponent < significant)
            digits = realDigits(magnitude, std::chars_format::fixed, significant - 1 - exponent);
        if (alternate)
            return withPoint(std::move(digits));
        if (digits.find(L'.') != std::wstring::npos) {
            const std::size_t end = std::min(digits.find(L'e'), digits.size());
            std::size_t keep = digits.find_last_not_of(L'0', end - 1);
            if (digits[keep] != L'.')
                ++keep;
            digits.erase(keep, end - keep);
        }
        return digits;
    }

    static std::wstring finiteDigits(double magnitude, const Conversion& c, wchar_t type) {
        std::wstring digits;
        switch (type) {
        case L'f':
            digits = realDigits(magnitude, std::chars_format::fixed, c.precision < 0 ? 6 : c.precision);
            break;
        case L'e':
            digits = realDigits(magnitude, std::chars_format::scientific, c.precision < 0 ? 6 : c.precision);
            break;
        case L'a':
            digits = realDigits(magnitude, std::chars_format::hex, c.precision < 0 ? 13 : c.precision);
            break;
        default:
            return general(magnitude, c.precision, c.alternate);
        }
        return c.alternate ? withPoint(std::move(digits)) : digits;
    }

    void writeReal(const Conversion& c) {
        const double value = c.size == Size::longDouble ? static_cast<double>(arguments_.next<long double>())
                                                        : arguments_.next<double>();
        const bool upper = c.type >= L'A' && c.type <= L'Z';
        const wchar_t type = toLower(c.type);
        std::wstring prefix(signOf(std::signbit(value), c));
        std::wstring digits;
        if (std::isnan(value))
            digits = std::signbit(value) ? L"nan(ind)" : L"nan";
        else if (std::isinf(value))
            digits = L"inf";
        else
            digits = finiteDigits(std::fabs(value), c, type);
        if (type == L'a' && std::isfinite(value))
            prefix += L"0x";
        pad(c, upper ? toUpper(prefix) : prefix, upper ? toUpper(digits) : digits,
            c.zero && std::isfinite(value));
    }

    // A lower-case letter means the format's own width, an upper-case one the other; h and l overrule both.
    bool isWide(const Conversion& c) const {
        switch (c.size) {
        case Size::shortSize:
        case Size::charSize:
            return false;
        case Size::longSize:
        case Size::wideSize:
        case Size::bits64:
            return true;
        default:
            return wideDefault_ == (c.type == L'c' || c.type == L's');
        }
    }

    void writeCharacter(const Conversion& c) {
        const int value = arguments_.next<int>();
        const auto character = static_cast<wchar_t>(isWide(c) ? value : static_cast<unsigned char>(value));
        pad(c, L"", std::wstring_view(&character, 1), c.zero);
    }

    void writeString(const Conversion& c) {
        const auto most =
            c.precision < 0 ? std::numeric_limits<std::size_t>::max() : static_cast<std::size_t>(c.precision);
        const void* const text = arguments_.next<const void*>();
        if (text == nullptr)
            pad(c, L"", std::wstring_view(L"(null)").substr(0, most), c.zero);
        else if (isWide(c))
            pad(c, L"", wideView(static_cast<const wchar_t*>(text), most), c.zero);
        else
            pad(c, L"", narrowText(static_cast<const char*>(text), most), c.zero);
    }

    // With a precision the text need not end with a zero, so nothing is read past the limit.
    static std::wstring_view wideView(const wchar_t* text, std::size_t most) {
        std::size_t length = 0;
        while (length < most && text[length] != 0)
            ++length;
        return {text, length};
    }

    // The limit counts characters; a byte that begins one is any but a continuation byte.
    static std::wstring narrowText(const char* text, std::size_t most) {
        std::size_t bytes = 0, characters = 0;
        for (; text[bytes] != 0; ++bytes) {
            if ((static_cast<unsigned char>(text[bytes]) & 0xC0) != 0x80 && ++characters > most)
                break;
            if (characters == most && static_cast<unsigned char>(text[bytes]) < 0x80) {
                ++bytes;
                break;
            }
        }
        return most == 0 ? std::wstring() : fromUtf8({text, bytes});
    }

    void pad(const Conversion& c, std::wstring_view prefix, std::wstring_view body, bool zeros) {
        const std::size_t length = prefix.size() + body.size();
        const std::size_t width = static_cast<std::size_t>(c.width);
        const std::size_t fill = width > length ? width - length : 0;
        if (!c.left && !zeros)
            out_.append(fill, L' ');
        out_.append(prefix);
        if (!c.left && zeros)
            out_.append(fill, L'0');
        out_.append(body);
        if (c.left)
            out_.append(fill, L' ');
    }

    bool wideDefault_;
    Arguments arguments_;
    std::wstring out_;
};

} // namespace

std::wstring formatWide(const wchar_t* format, std::va_list arguments) {
    return format == nullptr ? std::wstring() : Formatter(true, arguments).run(format);
}

std::wstring formatted(const wchar_t* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    std::wstring text = formatWide(format, arguments);
    va_end(arguments);
    return text;
}

std::string formatNarrow(const char* format, std::va_list arguments) {
    return format == nullptr ? std::string()
                             : toUtf8(Formatter(false, arguments).run(fromUtf8(format).c_str()));
}

} // namespace host
