// CString and CStringA. Narrow text is UTF-8. Where the other platform's string is handed to a format as it
// stands, a cast to LPCTSTR (or GetString()) is needed here; the compiler says so.
#pragma once

#include "host/rx/acstring.h"
#include "host/win/types.h"

#include <algorithm>
#include <compare>
#include <cstdarg>
#include <functional>
#include <string>
#include <string_view>
#include <type_traits>

template <class Character>
class CStringT {
public:
    using XCHAR = Character;
    using PXSTR = Character*;
    using PCXSTR = const Character*;
    using YCHAR = std::conditional_t<std::is_same_v<Character, wchar_t>, char, wchar_t>;
    using PCYSTR = const YCHAR*;
    using View = std::basic_string_view<Character>;

    CStringT() = default;
    CStringT(PCXSTR text) : text_(viewOf(text)) {} // null is the empty string
    CStringT(PCYSTR text);
    CStringT(PCXSTR text, int length) : text_(text == nullptr ? View() : View(text, clamped(length))) {}
    explicit CStringT(Character character, int count = 1) : text_(clamped(count), character) {}
    CStringT(const CStringT<YCHAR>& other) : CStringT(other.GetString()) {}
    CStringT(const AcString& other);

    CStringT& operator=(PCXSTR text) { return text_ = std::basic_string<Character>(viewOf(text)), *this; }
    CStringT& operator=(PCYSTR text) { return *this = CStringT(text); }
    CStringT& operator=(Character character) { return text_.assign(1, character), *this; }
    CStringT& operator=(const AcString& other) { return *this = CStringT(other); }
    CStringT& operator=(const CStringT<YCHAR>& other) { return *this = CStringT(other); }

    operator PCXSTR() const noexcept { return text_.c_str(); }
    PCXSTR GetString() const noexcept { return text_.c_str(); }
    int GetLength() const noexcept { return static_cast<int>(text_.size()); }
    bool IsEmpty() const noexcept { return text_.empty(); }
    void Empty() noexcept { text_.clear(); }
    Character GetAt(int index) const noexcept; // 0 outside the string
    Character operator[](int index) const noexcept { return GetAt(index); }
    void SetAt(int index, Character character) noexcept; // no effect outside

    // A writable buffer of at least this many characters and the closing zero, until ReleaseBuffer, which
    // sets the length (-1: to the first zero).
    PXSTR GetBuffer(int least = 0);
    PXSTR GetBufferSetLength(int length);
    void ReleaseBuffer(int length = -1);
    void ReleaseBufferSetLength(int length) { ReleaseBuffer(length < 0 ? 0 : length); }
    void Preallocate(int length) { text_.reserve(clamped(length)); }
    void FreeExtra() { text_.shrink_to_fit(); }
    void Truncate(int length) { text_.resize(std::min(text_.size(), clamped(length))); }
    void SetString(PCXSTR text) { *this = text; }
    void SetString(PCXSTR text, int length) { *this = CStringT(text, length); }

    void Format(PCXSTR format, ...);
    void FormatV(PCXSTR format, std::va_list arguments);
    void AppendFormat(PCXSTR format, ...);
    void AppendFormatV(PCXSTR format, std::va_list arguments);

    void Append(PCXSTR text) { *this += text; }
    void Append(PCXSTR text, int length) { *this += CStringT(text, length); }
    void AppendChar(Character character) { text_ += character; }
    CStringT& operator+=(PCXSTR text) { return text_ += std::basic_string<Character>(viewOf(text)), *this; }
    CStringT& operator+=(const CStringT& other) { return text_ += other.text_, *this; }
    CStringT& operator+=(Character character) { return text_ += character, *this; }
    CStringT& operator+=(PCYSTR text) { return *this += CStringT(text); }

    // Parts; starts and counts beyond the string are cut.
    CStringT Mid(int first) const { return Mid(first, GetLength()); }
    CStringT Mid(int first, int count) const;
    CStringT Left(int count) const { return Mid(0, count); }
    CStringT Right(int count) const;
    CStringT SpanIncluding(PCXSTR set) const;
    CStringT SpanExcluding(PCXSTR set) const;
    // The next piece between delimiters; start moves on, and is -1 when there is none. Pieces are never
    // empty.
    CStringT Tokenize(PCXSTR delimiters, int& start) const;

    // The index, -1 when not found.
    int Find(Character character, int start = 0) const noexcept;
    int Find(PCXSTR text, int start = 0) const noexcept;
    int ReverseFind(Character character) const noexcept;
    int FindOneOf(PCXSTR set) const noexcept;

    // How many were replaced or removed.
    int Replace(Character old, Character replacement);
    int Replace(PCXSTR old, PCXSTR replacement);
    int Remove(Character character);
    // The new length.
    int Insert(int index, Character character) { return Insert(index, CStringT(character).GetString()); }
    int Insert(int index, PCXSTR text);
    int Delete(int index, int count = 1);

    CStringT& Trim() { return TrimRight().TrimLeft(); }
    CStringT& Trim(Character character) { return TrimRight(character).TrimLeft(character); }
    CStringT& Trim(PCXSTR set) { return TrimRight(set).TrimLeft(set); }
    CStringT& TrimLeft();
    CStringT& TrimLeft(Character character);
    CStringT& TrimLeft(PCXSTR set);
    CStringT& TrimRight();
    CStringT& TrimRight(Character character);
    CStringT& TrimRight(PCXSTR set);
    CStringT& MakeUpper();
    CStringT& MakeLower();
    CStringT& MakeReverse();

    int Compare(PCXSTR text) const noexcept { return View(text_).compare(viewOf(text)); }
    int CompareNoCase(PCXSTR text) const noexcept;
    int Collate(PCXSTR text) const noexcept { return Compare(text); }
    int CollateNoCase(PCXSTR text) const noexcept { return CompareNoCase(text); }

    friend CStringT operator+(const CStringT& left, const CStringT& right) { return CStringT(left) += right; }
    friend CStringT operator+(const CStringT& left, PCXSTR right) { return CStringT(left) += right; }
    friend CStringT operator+(PCXSTR left, const CStringT& right) { return CStringT(left) += right; }
    friend CStringT operator+(const CStringT& left, Character right) { return CStringT(left) += right; }
    friend CStringT operator+(Character left, const CStringT& right) { return CStringT(left) += right; }
    // By code point; with case.
    friend bool operator==(const CStringT& left, const CStringT& right) noexcept {
        return left.text_ == right.text_;
    }
    friend bool operator==(const CStringT& left, PCXSTR right) noexcept { return left.Compare(right) == 0; }
    friend auto operator<=>(const CStringT& left, const CStringT& right) noexcept {
        return left.text_ <=> right.text_;
    }
    friend auto operator<=>(const CStringT& left, PCXSTR right) noexcept {
        return View(left.text_) <=> viewOf(right);
    }

private:
    static View viewOf(PCXSTR text) noexcept { return text == nullptr ? View() : View(text); }
    static std::size_t clamped(int count) noexcept { return count < 0 ? 0 : static_cast<std::size_t>(count); }

    std::basic_string<Character> text_;
};

extern template class CStringT<wchar_t>;
extern template class CStringT<char>;

using CStringW = CStringT<wchar_t>;
using CStringA = CStringT<char>;
using CString = CStringW;

template <class Character>
struct std::hash<CStringT<Character>> {
    std::size_t operator()(const CStringT<Character>& text) const noexcept {
        return std::hash<std::basic_string_view<Character>>{}(
            {text.GetString(), static_cast<std::size_t>(text.GetLength())});
    }
};
