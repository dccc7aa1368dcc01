// UTF-8 and UTF-16 conversions, simple case mappings and comparisons without regard to case.
#include "host/rx/text.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstring>
#include <locale.h>
#include <wctype.h>

namespace host {
namespace {

constexpr std::uint32_t lastCodePoint = 0x10FFFF;

constexpr bool isSurrogate(std::uint32_t c) {
    return c >= 0xD800 && c <= 0xDFFF;
}
constexpr bool isHighSurrogate(std::uint32_t c) {
    return c >= 0xD800 && c <= 0xDBFF;
}
constexpr bool isLowSurrogate(std::uint32_t c) {
    return c >= 0xDC00 && c <= 0xDFFF;
}
constexpr std::uint32_t joinSurrogates(std::uint32_t high, std::uint32_t low) {
    return 0x10000 + ((high - 0xD800) << 10) + (low - 0xDC00);
}

// Calls sink(code point) for every character of wide text that may hold surrogates.
template <class Sink>
void forEachCodePoint(std::wstring_view text, Sink sink) {
    for (std::size_t i = 0; i < text.size(); ++i) {
        auto c = static_cast<std::uint32_t>(text[i]);
        if (isHighSurrogate(c) && i + 1 < text.size() &&
            isLowSurrogate(static_cast<std::uint32_t>(text[i + 1])))
            c = joinSurrogates(c, static_cast<std::uint32_t>(text[++i]));
        else if (isSurrogate(c) || c > lastCodePoint)
            c = static_cast<std::uint32_t>(replacementCharacter);
        sink(c);
    }
}

void appendUtf8(std::string& out, std::uint32_t c) {
    const auto tail = [&](int shift) { out.push_back(static_cast<char>(0x80 | ((c >> shift) & 0x3F))); };
    if (c < 0x80) {
        out.push_back(static_cast<char>(c));
    } else if (c < 0x800) {
        out.push_back(static_cast<char>(0xC0 | (c >> 6)));
        tail(0);
    } else if (c < 0x10000) {
        out.push_back(static_cast<char>(0xE0 | (c >> 12)));
        tail(6);
        tail(0);
    } else {
        out.push_back(static_cast<char>(0xF0 | (c >> 18)));
        tail(12);
        tail(6);
        tail(0);
    }
}

struct DecodedCharacter {
    std::uint32_t codePoint; // or the replacement character
    std::size_t length;      // bytes used, at least 1
    bool valid;
};

// One character of UTF-8 from a lead byte above 0x7F, by table 3-7 of the Unicode Standard.
DecodedCharacter decodeMultibyte(std::string_view text) {
    constexpr auto bad = static_cast<std::uint32_t>(replacementCharacter);
    const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    const unsigned lead = byte(0);
    std::size_t count = 0;
    unsigned low = 0x80, high = 0xBF;
    if (lead >= 0xC2 && lead <= 0xDF) {
        count = 2;
    } else if (lead >= 0xE0 && lead <= 0xEF) {
        count = 3;
        low = lead == 0xE0 ? 0xA0 : 0x80;
        high = lead == 0xED ? 0x9F : 0xBF;
    } else if (lead >= 0xF0 && lead <= 0xF4) {
        count = 4;
        low = lead == 0xF0 ? 0x90 : 0x80;
        high = lead == 0xF4 ? 0x8F : 0xBF;
    } else {
        return {bad, 1, false};
    }
    std::uint32_t c = lead & (0x7Fu >> count);
    for (std::size_t i = 1; i < count; ++i) {
        if (i >= text.size() || byte(i) < low || byte(i) > high)
            return {bad, i, false};
        c = (c << 6) | (byte(i) & 0x3Fu);
        low = 0x80;
        high = 0xBF;
    }
    return {c, count, true};
}

// Length of the ASCII beginning, eight bytes at a time.
std::size_t asciiPrefix(std::string_view text) noexcept {
    std::size_t i = 0;
    for (; i + 8 <= text.size(); i += 8) {
        std::uint64_t block;
        std::memcpy(&block, text.data() + i, 8);
        if ((block & 0x8080808080808080u) != 0)
            break;
    }
    while (i < text.size() && static_cast<unsigned char>(text[i]) < 0x80)
        ++i;
    return i;
}

// The C library's Unicode tables, whatever locale the program runs in.
locale_t unicodeLocale() noexcept {
    static const locale_t locale = newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
    return locale;
}

// Han, Hangul, kana and the private use area have no case: most text that is not ASCII needs no table.
constexpr bool isCaseless(wchar_t c) {
    return (c >= 0x2E80 && c < 0xA640) || (c >= 0xAC00 && c < 0xFB00) ||
           static_cast<std::uint32_t>(c) > 0x1FFFF;
}

constexpr bool isAsciiLower(wchar_t c) {
    return c >= L'a' && c <= L'z';
}
constexpr bool isAsciiUpper(wchar_t c) {
    return c >= L'A' && c <= L'Z';
}

template <class Map>
std::wstring mapped(std::wstring_view text, Map map) {
    std::wstring out(text);
    std::ranges::transform(out, out.begin(), map);
    return out;
}

} // namespace

std::string toUtf8(std::wstring_view text) {
    std::string out;
    out.reserve(text.size());
    forEachCodePoint(text, [&](std::uint32_t c) { appendUtf8(out, c); });
    return out;
}

std::wstring fromUtf8(std::string_view text) {
    std::wstring out;
    out.reserve(text.size());
    while (!text.empty()) {
        const std::size_t plain = asciiPrefix(text);
        out.append(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(plain));
        text.remove_prefix(plain);
        while (!text.empty() && static_cast<unsigned char>(text.front()) >= 0x80) {
            const DecodedCharacter c = decodeMultibyte(text);
            out.push_back(static_cast<wchar_t>(c.codePoint));
            text.remove_prefix(c.length);
        }
    }
    return out;
}

bool isValidUtf8(std::string_view text) noexcept {
    for (text.remove_prefix(asciiPrefix(text)); !text.empty(); text.remove_prefix(asciiPrefix(text))) {
        const DecodedCharacter c = decodeMultibyte(text);
        if (!c.valid)
            return false;
        text.remove_prefix(c.length);
    }
    return true;
}

std::u16string toUtf16(std::wstring_view text) {
    std::u16string out;
    out.reserve(text.size());
    forEachCodePoint(text, [&](std::uint32_t c) {
        if (c < 0x10000) {
            out.push_back(static_cast<char16_t>(c));
        } else {
            out.push_back(static_cast<char16_t>(0xD7C0 + (c >> 10)));
            out.push_back(static_cast<char16_t>(0xDC00 + (c & 0x3FF)));
        }
    });
    return out;
}

std::wstring fromUtf16(std::u16string_view text) {
    std::wstring out;
    out.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        std::uint32_t c = text[i];
        if (isHighSurrogate(c) && i + 1 < text.size() && isLowSurrogate(text[i + 1]))
            c = joinSurrogates(c, text[++i]);
        else if (isSurrogate(c))
            c = static_cast<std::uint32_t>(replacementCharacter);
        out.push_back(static_cast<wchar_t>(c));
    }
    return out;
}

std::string toUtf16Le(std::wstring_view text) {
    std::string out;
    for (const char16_t unit : toUtf16(text)) {
        out.push_back(static_cast<char>(unit & 0xFF));
        out.push_back(static_cast<char>(unit >> 8));
    }
    return out;
}

std::wstring fromUtf16Le(std::string_view bytes) {
    std::u16string units;
    units.reserve(bytes.size() / 2);
    for (std::size_t i = 0; i + 1 < bytes.size(); i += 2)
        units.push_back(static_cast<char16_t>(static_cast<unsigned char>(bytes[i]) |
                                              static_cast<unsigned char>(bytes[i + 1]) << 8));
    return fromUtf16(units);
}

bool isAscii(std::string_view text) noexcept {
    return asciiPrefix(text) == text.size();
}

bool isAscii(std::wstring_view text) noexcept {
    return std::ranges::all_of(text, [](wchar_t c) { return static_cast<std::uint32_t>(c) < 0x80; });
}

wchar_t toUpper(wchar_t c) noexcept {
    if (static_cast<std::uint32_t>(c) < 0x80)
        return isAsciiLower(c) ? c - 32 : c;
    return isCaseless(c) ? c : static_cast<wchar_t>(towupper_l(static_cast<wint_t>(c), unicodeLocale()));
}

wchar_t toLower(wchar_t c) noexcept {
    if (static_cast<std::uint32_t>(c) < 0x80)
        return isAsciiUpper(c) ? c + 32 : c;
    return isCaseless(c) ? c : static_cast<wchar_t>(towlower_l(static_cast<wint_t>(c), unicodeLocale()));
}

// Upper first, so that characters with several lower forms (sigma, long s) meet in one.
wchar_t fold(wchar_t c) noexcept {
    return static_cast<std::uint32_t>(c) < 0x80 ? toLower(c) : toLower(toUpper(c));
}

bool isSpace(wchar_t c) noexcept {
    if (static_cast<std::uint32_t>(c) < 0x80)
        return c == L' ' || (c >= 0x09 && c <= 0x0D);
    return c == 0x85 || c == 0xA0 || c == 0x1680 || (c >= 0x2000 && c <= 0x200A) || c == 0x2028 ||
           c == 0x2029 || c == 0x202F || c == 0x205F || c == 0x3000;
}

std::wstring toUpper(std::wstring_view text) {
    return mapped(text, [](wchar_t c) { return toUpper(c); });
}

std::wstring toLower(std::wstring_view text) {
    return mapped(text, [](wchar_t c) { return toLower(c); });
}

std::wstring fold(std::wstring_view text) {
    return mapped(text, [](wchar_t c) { return fold(c); });
}

int compareNoCase(std::wstring_view left, std::wstring_view right) noexcept {
    const std::size_t common = std::min(left.size(), right.size());
    for (std::size_t i = 0; i < common; ++i) {
        if (left[i] == right[i])
            continue;
        const wchar_t a = fold(left[i]), b = fold(right[i]);
        if (a != b)
            return a < b ? -1 : 1;
    }
    return left.size() == right.size() ? 0 : left.size() < right.size() ? -1 : 1;
}

bool equalNoCase(std::wstring_view left, std::wstring_view right) noexcept {
    return left.size() == right.size() && compareNoCase(left, right) == 0;
}

bool equalNoCase(std::string_view left, std::string_view right) noexcept {
    const auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; };
    return std::ranges::equal(left, right, {}, lower, lower);
}

bool startsWithNoCase(std::wstring_view text, std::wstring_view prefix) noexcept {
    return text.size() >= prefix.size() && equalNoCase(text.substr(0, prefix.size()), prefix);
}

// FNV-1a over whole characters, mixed at the end so that the low bits depend on all of them.
std::size_t hashNoCase(std::wstring_view text) noexcept {
    std::uint64_t hash = 0xCBF29CE484222325u;
    for (const wchar_t c : text)
        hash = (hash ^ static_cast<std::uint32_t>(fold(c))) * 0x100000001B3u;
    return static_cast<std::size_t>(hash ^ (hash >> 32));
}

std::wstring_view trimLeft(std::wstring_view text) noexcept {
    while (!text.empty() && isSpace(text.front()))
        text.remove_prefix(1);
    return text;
}

std::wstring_view trimRight(std::wstring_view text) noexcept {
    while (!text.empty() && isSpace(text.back()))
        text.remove_suffix(1);
    return text;
}

std::wstring_view trim(std::wstring_view text) noexcept {
    return trimLeft(trimRight(text));
}

std::string_view trim(std::string_view text) noexcept {
    const auto blank = [](char c) { return c == ' ' || (c >= '\t' && c <= '\r'); };
    while (!text.empty() && blank(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && blank(text.back()))
        text.remove_suffix(1);
    return text;
}

} // namespace host
