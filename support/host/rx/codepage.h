// Drawing code pages: text of older drawings to and from wide text, and the escapes by which such text holds
// characters outside its code page: \U+XXXX (a UTF-16 unit) and \M+nXXXX (a double byte of page n).
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace host {

// The pages by the numbers drawings store for them.
enum class CodePage : unsigned char {
    undefined = 0,
    ascii = 1,
    iso8859_1 = 2,
    iso8859_2 = 3,
    iso8859_3 = 4,
    iso8859_4 = 5,
    iso8859_5 = 6,
    iso8859_6 = 7,
    iso8859_7 = 8,
    iso8859_8 = 9,
    iso8859_9 = 10,
    dos437 = 11,
    dos850 = 12,
    dos852 = 13,
    dos855 = 14,
    dos857 = 15,
    dos860 = 16,
    dos861 = 17,
    dos863 = 18,
    dos864 = 19,
    dos865 = 20,
    dos869 = 21,
    dos932 = 22,
    macRoman = 23,
    big5 = 24,
    ksc5601 = 25,
    johab = 26,
    dos866 = 27,
    ansi1250 = 28,
    ansi1251 = 29,
    ansi1252 = 30,
    gb2312 = 31,
    ansi1253 = 32,
    ansi1254 = 33,
    ansi1255 = 34,
    ansi1256 = 35,
    ansi1257 = 36,
    ansi874 = 37,
    ansi932 = 38,
    ansi936 = 39,
    ansi949 = 40,
    ansi950 = 41,
    ansi1361 = 42,
    utf16 = 43,
    ansi1258 = 44,
    utf8 = 0xFF, // not a stored number: the form of text files since release 2007
};

// The page of a $DWGCODEPAGE value, in any case ("ANSI_936", "gb2312", "dos437", "KSC5601", "UTF-8").
std::optional<CodePage> codePageByName(std::string_view name);
// The page of a stored number; nothing for numbers that mean no page.
std::optional<CodePage> codePageByNumber(int number);
// The page of a Windows number (936, 1252, 65001).
std::optional<CodePage> codePageByWindowsNumber(int number);
// The name as $DWGCODEPAGE has it.
std::string_view codePageName(CodePage page);

// What encode() does with a character the page does not have.
enum class Unmappable {
    escape,   // \U+XXXX, a character beyond U+FFFF as two
    question, // ?
};

// Bytes of a page as wide text; an undefined byte becomes U+FFFD. Escapes stay as they are.
std::wstring decode(std::string_view bytes, CodePage page);
// Wide text as bytes of a page. Text that encode() wrote comes back from decodeText() as it was.
std::string encode(std::wstring_view text, CodePage page, Unmappable unmappable = Unmappable::escape);
bool canEncode(std::wstring_view text, CodePage page);

// Resolves \U+XXXX and \M+nXXXX; anything that only looks like one stays as it is.
std::wstring resolveEscapes(std::wstring_view text);
// decode() and resolveEscapes() in one.
std::wstring decodeText(std::string_view bytes, CodePage page);
// The text with every character above ASCII as \U+XXXX.
std::wstring escapeUnicode(std::wstring_view text);
// The text with every character above ASCII as \M+nXXXX where page n (932, 950, 949, 1361 or 936) has it as a
// double byte, else as \U+XXXX.
std::wstring escapeMultibyte(std::wstring_view text, CodePage page);

// Length of what can be cut off bytes of the page so that no character is split: at most `most`.
std::size_t wholeCharacters(std::string_view bytes, std::size_t most, CodePage page);

} // namespace host
