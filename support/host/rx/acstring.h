// AcString: the interface's string of wide text. It holds one pointer (an empty string holds nothing), keeps
// its UTF-8 form once asked for, and formats with the Windows meaning of a format.
#pragma once

#include <cstdarg>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

using ACHAR = wchar_t;
#ifndef ACRX_T
#define ACRX_T(text) L##text
#endif

class AcString {
public:
    enum Encoding { Utf8 = 2 };

    AcString() noexcept = default;
    AcString(const AcString& other);
    AcString(AcString&& other) noexcept;
    AcString(ACHAR character);
    AcString(const ACHAR* text); // null is the empty string
    AcString(const ACHAR* text, unsigned length);
    AcString(const char* utf8);
    AcString(const char* utf8, Encoding encoding);
    explicit AcString(std::wstring_view text);
    ~AcString();

    AcString& operator=(const AcString& other);
    AcString& operator=(AcString&& other) noexcept;
    AcString& operator=(ACHAR character);
    AcString& operator=(const ACHAR* text);
    AcString& operator=(const char* utf8);
    AcString& assign(ACHAR character) { return *this = character; }
    AcString& assign(const ACHAR* text) { return *this = text; }
    AcString& assign(const ACHAR* text, unsigned length);
    AcString& assign(const char* utf8) { return *this = utf8; }
    AcString& assign(const AcString& other) { return *this = other; }
    AcString& setEmpty() noexcept;
    void swap(AcString& other) noexcept;

    // Pointers into the string, never null, valid until it changes.
    const ACHAR* constPtr() const noexcept { return text().c_str(); }
    const ACHAR* kwszPtr() const noexcept { return text().c_str(); }
    const ACHAR* kACharPtr() const noexcept { return text().c_str(); }
    const ACHAR* kTCharPtr() const noexcept { return text().c_str(); }
    operator const ACHAR*() const noexcept { return text().c_str(); }
    // The UTF-8 form, made at the first call. Safe from several threads as long as none changes the string.
    const char* kszPtr() const { return utf8Ptr(); }
    const char* utf8Ptr() const;
    const char* utf8Ptr(unsigned start) const; // from this character on
    std::wstring_view view() const noexcept { return text(); }

    unsigned length() const noexcept { return static_cast<unsigned>(text().size()); }
    unsigned tcharLength() const noexcept { return length(); }
    unsigned utf8Length() const;
    bool isEmpty() const noexcept { return body_ == nullptr || text().empty(); }
    bool isNull() const noexcept { return isEmpty(); }

    // The character at the index; 0 outside the string.
    ACHAR at(int index) const noexcept;
    ACHAR getAt(int index) const noexcept { return at(index); }
    AcString& setAt(int index, ACHAR character); // no effect outside the string

    AcString& format(const ACHAR* format, ...);
    AcString& formatV(const ACHAR* format, std::va_list arguments);
    AcString& appendFormat(const ACHAR* format, ...);
    AcString& appendFormatV(const ACHAR* format, std::va_list arguments);
    AcString& format(const char* format, ...);
    AcString& formatV(const char* format, std::va_list arguments);

    AcString& append(ACHAR character);
    AcString& append(const ACHAR* text);
    AcString& append(const char* utf8);
    AcString& append(const AcString& other);
    AcString& precat(ACHAR character);
    AcString& precat(const ACHAR* text);
    AcString& precat(const AcString& other);
    AcString& operator+=(ACHAR character) { return append(character); }
    AcString& operator+=(const ACHAR* text) { return append(text); }
    AcString& operator+=(const char* utf8) { return append(utf8); }
    AcString& operator+=(const AcString& other) { return append(other); }

    // Each gives the new length. An index outside the string is brought to its nearer end.
    int insert(int index, ACHAR character);
    int insert(int index, const ACHAR* text);
    int deleteAtIndex(int index, int count = 1);
    // Each gives how many were replaced or removed.
    int replace(const ACHAR* old, const ACHAR* replacement);
    int replace(ACHAR old, ACHAR replacement);
    int remove(ACHAR character);

    // Parts of the string; counts and starts beyond it are cut, a count of -1 means to the end.
    AcString mid(int start) const;
    AcString mid(int start, int count) const;
    AcString left(int count) const;
    AcString right(int count) const;
    AcString substr(int count) const { return mid(0, count); }
    AcString substr(int start, int count) const { return mid(start, count); }
    AcString substrRev(int count) const { return count < 0 ? *this : right(count); }
    AcString substring(int start, int count) const { return mid(start, count); }
    AcString spanIncluding(const ACHAR* set) const;
    AcString spanExcluding(const ACHAR* set) const;
    // The next piece between any of the delimiters; start moves on and is -1 when there is none.
    AcString tokenize(const ACHAR* delimiters, int& start) const;

    // Index of the first or last place, -1 when there is none. findRev and findLast are one.
    int find(ACHAR character, int start = 0) const noexcept;
    int find(const ACHAR* text, int start = 0) const noexcept;
    int find(const AcString& text, int start = 0) const noexcept { return find(text.constPtr(), start); }
    int findNoCase(const ACHAR* text, int start = 0) const noexcept;
    int findOneOf(const ACHAR* set, int start = 0) const noexcept;
    int findRev(ACHAR character) const noexcept;
    int findRev(const ACHAR* text) const noexcept;
    int findLast(ACHAR character) const noexcept { return findRev(character); }
    int findLast(const ACHAR* text) const noexcept { return findRev(text); }
    int findOneOfRev(const ACHAR* set) const noexcept;

    // Negative, zero or positive. The order is by code point; without case, of the folded text.
    int compare(const ACHAR* text) const noexcept;
    int compare(ACHAR character) const noexcept;
    int compare(const char* utf8) const;
    int compare(const AcString& other) const noexcept { return view().compare(other.view()); }
    int compareNoCase(const ACHAR* text) const noexcept;
    int compareNoCase(const char* utf8) const;
    int compareNoCase(const AcString& other) const noexcept;
    int icmp(const ACHAR* text) const noexcept { return compareNoCase(text); }
    int icmp(const AcString& other) const noexcept { return compareNoCase(other); }
    bool equals(const AcString& other) const noexcept { return view() == other.view(); }
    bool equalsNoCase(const AcString& other) const noexcept { return compareNoCase(other) == 0; }
    // How many characters at the beginning are the same.
    unsigned match(const ACHAR* text) const noexcept;
    unsigned matchNoCase(const ACHAR* text) const noexcept;
    bool startsWith(const ACHAR* text) const noexcept;
    bool endsWith(const ACHAR* text) const noexcept;

    AcString& makeUpper();
    AcString& makeLower();
    AcString& makeReverse();
    AcString& trim();
    AcString& trimLeft();
    AcString& trimLeft(ACHAR character);
    AcString& trimLeft(const ACHAR* set);
    AcString& trimRight();
    AcString& trimRight(ACHAR character);
    AcString& trimRight(const ACHAR* set);

    // The number that begins at the index; reading stops at the first character that is no digit. 0 without
    // one.
    int asDeci(int start = 0) const noexcept;
    unsigned asHex(int start = 0) const noexcept;
    std::uint64_t asUint64(int start = 0) const noexcept;
    std::uint64_t asHex64(int start = 0) const noexcept;
    bool isAscii(int start = 0) const noexcept;

    // A writable buffer of at least this many characters and the closing zero; releaseBuffer (-1: to the
    // first zero) sets the length.
    ACHAR* getBuffer(int least = 0);
    void releaseBuffer(int length = -1);

    std::size_t hash() const noexcept { return std::hash<std::wstring_view>{}(view()); }
    std::size_t hashNoCase() const noexcept;

    static const AcString kEmpty;

    bool operator==(const AcString& other) const noexcept { return view() == other.view(); }
    bool operator==(const ACHAR* text) const noexcept { return compare(text) == 0; }
    bool operator==(const char* utf8) const { return compare(utf8) == 0; }
    bool operator==(ACHAR character) const noexcept { return compare(character) == 0; }
    bool operator!=(const AcString& other) const noexcept { return view() != other.view(); }
    bool operator!=(const ACHAR* text) const noexcept { return compare(text) != 0; }
    bool operator!=(const char* utf8) const { return compare(utf8) != 0; }
    bool operator!=(ACHAR character) const noexcept { return compare(character) != 0; }
    bool operator<(const AcString& other) const noexcept { return compare(other) < 0; }
    bool operator<(const ACHAR* text) const noexcept { return compare(text) < 0; }
    bool operator>(const AcString& other) const noexcept { return compare(other) > 0; }
    bool operator>(const ACHAR* text) const noexcept { return compare(text) > 0; }
    bool operator<=(const AcString& other) const noexcept { return compare(other) <= 0; }
    bool operator<=(const ACHAR* text) const noexcept { return compare(text) <= 0; }
    bool operator>=(const AcString& other) const noexcept { return compare(other) >= 0; }
    bool operator>=(const ACHAR* text) const noexcept { return compare(text) >= 0; }

    friend AcString operator+(const AcString& left, const AcString& right);
    friend AcString operator+(const AcString& left, const ACHAR* right);
    friend AcString operator+(const ACHAR* left, const AcString& right);
    friend AcString operator+(const AcString& left, ACHAR right);
    friend AcString operator+(ACHAR left, const AcString& right);
    friend bool operator==(const ACHAR* left, const AcString& right) noexcept { return right == left; }
    friend bool operator!=(const ACHAR* left, const AcString& right) noexcept { return right != left; }

private:
    struct Body;
    Body* body_ = nullptr; // null: empty

    const std::wstring& text() const noexcept;
    std::wstring& edit(); // for writing: drops the UTF-8 form
    void store(std::wstring_view text);
};

AcString operator+(const AcString& left, const AcString& right);
AcString operator+(const AcString& left, const ACHAR* right);
AcString operator+(const ACHAR* left, const AcString& right);
AcString operator+(const AcString& left, ACHAR right);
AcString operator+(ACHAR left, const AcString& right);

template <>
struct std::hash<AcString> {
    std::size_t operator()(const AcString& text) const noexcept { return text.hash(); }
};
