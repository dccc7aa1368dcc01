// Conversions and comparisons of text: UTF-8 and UTF-16 to and from wide text (one wchar_t a character),
// and case as the host sees it when it compares symbol names. Nothing here depends on the locale or throws
// for bad input.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace host {

inline constexpr wchar_t replacementCharacter = L'\xFFFD';

// Wide text as UTF-8. Surrogates that form a pair are joined; what is no character becomes U+FFFD.
std::string toUtf8(std::wstring_view text);

// UTF-8 as wide text. Every ill-formed sequence becomes one U+FFFD for its longest valid beginning.
std::wstring fromUtf8(std::string_view text);

bool isValidUtf8(std::string_view text) noexcept;

// Wide text as UTF-16 code units and back; an unpaired surrogate becomes U+FFFD.
std::u16string toUtf16(std::wstring_view text);
std::wstring fromUtf16(std::u16string_view text);

// The same from and to bytes in little-endian order, without byte order mark. An odd last byte is dropped.
std::string toUtf16Le(std::wstring_view text);
std::wstring fromUtf16Le(std::string_view bytes);

bool isAscii(std::string_view text) noexcept;
bool isAscii(std::wstring_view text) noexcept;

// Simple (one to one) case mappings of Unicode; fold() gives the form in which two characters that differ
// only in case are equal.
wchar_t toUpper(wchar_t character) noexcept;
wchar_t toLower(wchar_t character) noexcept;
wchar_t fold(wchar_t character) noexcept;

// White space as the Windows library classifies it: with the no-break and the ideographic space.
bool isSpace(wchar_t character) noexcept;

std::wstring toUpper(std::wstring_view text);
std::wstring toLower(std::wstring_view text);
std::wstring fold(std::wstring_view text);

// Order of two texts without regard to case: negative, zero or positive. By code point of the folded text.
int compareNoCase(std::wstring_view left, std::wstring_view right) noexcept;
bool equalNoCase(std::wstring_view left, std::wstring_view right) noexcept;
bool equalNoCase(std::string_view left, std::string_view right) noexcept; // ASCII case only
bool startsWithNoCase(std::wstring_view text, std::wstring_view prefix) noexcept;

// A hash that is equal for texts that equalNoCase.
std::size_t hashNoCase(std::wstring_view text) noexcept;

// For containers keyed by names, found by any kind of wide text without a copy.
struct NoCaseHash {
    using is_transparent = void;
    std::size_t operator()(std::wstring_view text) const noexcept { return hashNoCase(text); }
};
struct NoCaseEqual {
    using is_transparent = void;
    bool operator()(std::wstring_view left, std::wstring_view right) const noexcept {
        return equalNoCase(left, right);
    }
};
struct NoCaseLess {
    using is_transparent = void;
    bool operator()(std::wstring_view left, std::wstring_view right) const noexcept {
        return compareNoCase(left, right) < 0;
    }
};

// The part of the text without white space at its ends; a view into what was given.
std::wstring_view trim(std::wstring_view text) noexcept;
std::wstring_view trimLeft(std::wstring_view text) noexcept;
std::wstring_view trimRight(std::wstring_view text) noexcept;
std::string_view trim(std::string_view text) noexcept; // ASCII white space

} // namespace host
