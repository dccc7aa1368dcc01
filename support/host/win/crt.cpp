// The Windows C library functions of crt.h.
#include "host/win/crt.h"

#include "host/rx/codepage.h"
#include "host/rx/format.h"
#include "host/rx/text.h"
#include "host/win/filefunctions.h"
#include "host/win/paths.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <string>
#include <unistd.h>

namespace {

std::wstring_view viewOf(const wchar_t* text) {
    return text == nullptr ? std::wstring_view() : text;
}

// The rest of the text from its first character that is no white space, as ASCII (what is not becomes a
// zero).
std::string numberText(const wchar_t* text) {
    std::string out;
    for (const wchar_t c : host::trimLeft(viewOf(text)))
        out.push_back(static_cast<std::uint32_t>(c) < 0x80 ? static_cast<char>(c) : '\0');
    if (out.starts_with('+') && !out.starts_with("+-"))
        out.erase(0, 1);
    return out;
}

// Saturated, as there.
template <class Integer>
Integer integerOf(const wchar_t* text) {
    const std::string digits = numberText(text);
    Integer value = 0;
    const auto end = std::from_chars(digits.data(), digits.data() + digits.size(), value);
    if (end.ec == std::errc::result_out_of_range)
        return digits.starts_with('-') ? std::numeric_limits<Integer>::min()
                                       : std::numeric_limits<Integer>::max();
    return value;
}

int sign(int value) {
    return value < 0 ? -1 : value > 0 ? 1 : 0;
}

// Writes a text and its zero, or nothing but a zero.
template <class Character>
errno_t put(Character* to, std::size_t size, std::size_t at,
            std::basic_string_view<Character> text) noexcept {
    if (to == nullptr || size == 0)
        return EINVAL;
    if (at + text.size() >= size) {
        to[0] = 0;
        return ERANGE;
    }
    std::copy(text.begin(), text.end(), to + at);
    to[at + text.size()] = 0;
    return 0;
}

template <class Character>
errno_t copyText(Character* to, std::size_t size, const Character* from) noexcept {
    if (from == nullptr && to != nullptr && size > 0)
        to[0] = 0;
    return from == nullptr ? EINVAL : put(to, size, 0, std::basic_string_view<Character>(from));
}

template <class Character>
errno_t appendText(Character* to, std::size_t size, const Character* from) noexcept {
    if (to == nullptr || from == nullptr)
        return EINVAL;
    const auto length = static_cast<std::size_t>(std::find(to, to + size, Character()) - to);
    return length == size ? EINVAL : put(to, size, length, std::basic_string_view<Character>(from));
}

template <class Map>
wchar_t* mapText(wchar_t* text, Map map) noexcept {
    for (wchar_t* at = text; at != nullptr && *at != 0; ++at)
        *at = map(*at);
    return text;
}

} // namespace

double _wtof(const wchar_t* text) noexcept {
    const std::string digits = numberText(text);
    double value = 0;
    const auto end = std::from_chars(digits.data(), digits.data() + digits.size(), value);
    if (end.ec != std::errc::result_out_of_range)
        return value;
    // from_chars does not say whether too large or too small: the exponent's sign does.
    const std::string_view read(digits.data(), end.ptr);
    const bool small = read.find("e-") != read.npos || read.find("E-") != read.npos || read.find('.') <= 2;
    const double limit = small ? 0.0 : HUGE_VAL;
    return read.starts_with('-') ? -limit : limit;
}

int _wtoi(const wchar_t* text) noexcept {
    return integerOf<int>(text);
}
LONG _wtol(const wchar_t* text) noexcept {
    return integerOf<LONG>(text);
}
LONGLONG _wtoi64(const wchar_t* text) noexcept {
    return integerOf<LONGLONG>(text);
}

int _wcsicmp(const wchar_t* left, const wchar_t* right) noexcept {
    return host::compareNoCase(viewOf(left), viewOf(right));
}

int _wcsnicmp(const wchar_t* left, const wchar_t* right, std::size_t count) noexcept {
    const auto part = [&](const wchar_t* text) {
        std::size_t length = 0;
        while (text != nullptr && length < count && text[length] != 0)
            ++length;
        return std::wstring_view(text, length);
    };
    return host::compareNoCase(part(left), part(right));
}

int _stricmp(const char* left, const char* right) noexcept {
    return sign(strcasecmp(left, right));
}

int _strnicmp(const char* left, const char* right, std::size_t count) noexcept {
    return sign(strncasecmp(left, right, count));
}

errno_t wcscpy_s(wchar_t* to, std::size_t size, const wchar_t* from) noexcept {
    return copyText(to, size, from);
}
errno_t wcscat_s(wchar_t* to, std::size_t size, const wchar_t* from) noexcept {
    return appendText(to, size, from);
}
errno_t strcpy_s(char* to, std::size_t size, const char* from) noexcept {
    return copyText(to, size, from);
}
errno_t strcat_s(char* to, std::size_t size, const char* from) noexcept {
    return appendText(to, size, from);
}

errno_t wcsncpy_s(wchar_t* to, std::size_t size, const wchar_t* from, std::size_t count) noexcept {
    if (from == nullptr)
        return copyText(to, size, from);
    std::size_t length = 0;
    const std::size_t most = count == _TRUNCATE ? (size == 0 ? 0 : size - 1) : count;
    while (length < most && from[length] != 0)
        ++length;
    return put(to, size, 0, std::wstring_view(from, length));
}

wchar_t* wcstok_s(wchar_t* text, const wchar_t* delimiters, wchar_t** context) noexcept {
    return std::wcstok(text, delimiters, context);
}

errno_t _wcsupr_s(wchar_t* text, std::size_t) noexcept {
    return _wcsupr(text) == nullptr ? EINVAL : 0;
}
errno_t _wcslwr_s(wchar_t* text, std::size_t) noexcept {
    return _wcslwr(text) == nullptr ? EINVAL : 0;
}

wchar_t* _wcsupr(wchar_t* text) noexcept {
    return mapText(text, [](wchar_t c) { return host::toUpper(c); });
}

wchar_t* _wcslwr(wchar_t* text) noexcept {
    return mapText(text, [](wchar_t c) { return host::toLower(c); });
}

wchar_t* _wcsrev(wchar_t* text) noexcept {
    std::reverse(text, text + viewOf(text).size());
    return text;
}

wchar_t* _wcsdup(const wchar_t* text) {
    return text == nullptr ? nullptr : wcsdup(text);
}

errno_t _itow_s(int value, wchar_t* to, std::size_t size, int radix) noexcept {
    if (radix < 2 || radix > 36)
        return EINVAL;
    char digits[40];
    // Only a decimal number has a sign.
    const auto end = radix == 10 ? std::to_chars(digits, digits + 40, value)
                                 : std::to_chars(digits, digits + 40, static_cast<unsigned>(value), radix);
    const std::wstring text(digits, end.ptr);
    return put<wchar_t>(to, size, 0, text);
}

int vswprintf_s(wchar_t* to, std::size_t size, const wchar_t* format, std::va_list arguments) {
    const std::wstring text = host::formatWide(format, arguments);
    return put<wchar_t>(to, size, 0, text) == 0 ? static_cast<int>(text.size()) : -1;
}

int swprintf_s(wchar_t* to, std::size_t size, const wchar_t* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    const int length = vswprintf_s(to, size, format, arguments);
    va_end(arguments);
    return length;
}

int _vsnwprintf_s(wchar_t* to, std::size_t size, std::size_t count, const wchar_t* format,
                  std::va_list arguments) {
    const std::wstring text = host::formatWide(format, arguments);
    if (to == nullptr || size == 0)
        return -1;
    const std::size_t most = count == _TRUNCATE ? size - 1 : count;
    const std::wstring_view cut = std::wstring_view(text).substr(0, most);
    if (put(to, size, 0, cut) != 0)
        return -1;
    return cut.size() == text.size() ? static_cast<int>(text.size()) : -1;
}

int _snwprintf_s(wchar_t* to, std::size_t size, std::size_t count, const wchar_t* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    const int length = _vsnwprintf_s(to, size, count, format, arguments);
    va_end(arguments);
    return length;
}

int _scwprintf(const wchar_t* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    const std::wstring text = host::formatWide(format, arguments);
    va_end(arguments);
    return static_cast<int>(text.size());
}

int wsprintfW(wchar_t* to, const wchar_t* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    const std::wstring text = host::formatWide(format, arguments).substr(0, 1023);
    va_end(arguments);
    put<wchar_t>(to, text.size() + 1, 0, text);
    return static_cast<int>(text.size());
}

errno_t _wsplitpath_s(const wchar_t* path, wchar_t* drive, std::size_t driveSize, wchar_t* folder,
                      std::size_t folderSize, wchar_t* name, std::size_t nameSize, wchar_t* extension,
                      std::size_t extensionSize) noexcept {
    std::wstring_view rest = viewOf(path);
    const std::wstring_view file = host::fileNameOf(rest), ending = host::extensionOf(rest);
    const std::size_t driveLength = rest.size() >= 2 && rest[1] == L':' ? 2 : 0;
    const auto give = [](wchar_t* to, std::size_t size, std::wstring_view text) {
        return to == nullptr ? 0 : put(to, size, 0, text);
    };
    const errno_t codes[] = {
        give(drive, driveSize, rest.substr(0, driveLength)),
        give(folder, folderSize, rest.substr(driveLength, rest.size() - file.size() - driveLength)),
        give(name, nameSize, file.substr(0, file.size() - ending.size())),
        give(extension, extensionSize, ending)};
    const auto failed = std::ranges::find_if(codes, [](errno_t code) { return code != 0; });
    return failed == std::end(codes) ? 0 : *failed;
}

errno_t _wmakepath_s(wchar_t* path, std::size_t size, const wchar_t* drive, const wchar_t* folder,
                     const wchar_t* name, const wchar_t* extension) noexcept {
    std::wstring text;
    if (!viewOf(drive).empty())
        text = std::wstring(1, *drive) + L":";
    text += viewOf(folder);
    if (!viewOf(folder).empty() && text.back() != L'\\' && text.back() != L'/')
        text += L'\\';
    text += viewOf(name);
    if (!viewOf(extension).empty())
        text += (*extension == L'.' ? L"" : L".") + std::wstring(extension);
    return put<wchar_t>(path, size, 0, text);
}

FILE* _wfopen(const wchar_t* path, const wchar_t* mode) {
    std::string plain;
    for (const wchar_t c : viewOf(mode)) {
        if (c == L',')
            break;
        if (c == L'r' || c == L'w' || c == L'a' || c == L'+' || c == L'b')
            plain.push_back(static_cast<char>(c));
    }
    return std::fopen(host::toNativePath(viewOf(path)).c_str(), plain.c_str());
}

errno_t _wfopen_s(FILE** file, const wchar_t* path, const wchar_t* mode) {
    if (file == nullptr)
        return EINVAL;
    *file = _wfopen(path, mode);
    return *file == nullptr ? errno : 0;
}

int _waccess(const wchar_t* path, int mode) {
    return access(host::toNativePath(viewOf(path)).c_str(),
                  ((mode & 2) != 0 ? W_OK : 0) | ((mode & 4) != 0 ? R_OK : 0));
}

int _wremove(const wchar_t* path) {
    return DeleteFileW(path) != 0 ? 0 : -1;
}
int _wrename(const wchar_t* from, const wchar_t* to) {
    return MoveFileW(from, to) != 0 ? 0 : -1;
}
int _wmkdir(const wchar_t* path) {
    return CreateDirectoryW(path, nullptr) != 0 ? 0 : -1;
}
int _wrmdir(const wchar_t* path) {
    return RemoveDirectoryW(path) != 0 ? 0 : -1;
}

errno_t localtime_s(std::tm* fields, const std::time_t* time) {
    return localtime_r(time, fields) != nullptr ? 0 : EINVAL;
}

int MulDiv(int number, int numerator, int denominator) noexcept {
    if (denominator == 0)
        return -1;
    const std::int64_t product = std::int64_t{number} * numerator, divisor = denominator;
    const std::int64_t half = std::abs(divisor) / 2;
    const std::int64_t rounded = std::abs(product) + half;
    const std::int64_t result = rounded / std::abs(divisor) * ((product < 0) != (divisor < 0) ? -1 : 1);
    return result > std::numeric_limits<int>::max() || result < std::numeric_limits<int>::min()
               ? -1
               : static_cast<int>(result);
}

namespace {

host::CodePage pageOf(UINT page) {
    return host::codePageByWindowsNumber(static_cast<int>(page)).value_or(host::CodePage::ansi936);
}

// Copies a result as the two conversion functions do: size 0 only asks for the length.
template <class Text>
int give(const Text& text, typename Text::value_type* to, int size) {
    if (size == 0)
        return static_cast<int>(text.size());
    if (to == nullptr || static_cast<std::size_t>(size) < text.size()) {
        SetLastError(ERROR_INSUFFICIENT_BUFFER);
        return 0;
    }
    std::ranges::copy(text, to);
    return static_cast<int>(text.size());
}

} // namespace

int MultiByteToWideChar(UINT page, DWORD, LPCSTR from, int length, LPWSTR to, int size) {
    if (from == nullptr || length == 0)
        return 0;
    const std::string_view bytes(from, length < 0 ? std::strlen(from) + 1 : static_cast<std::size_t>(length));
    return give(host::decode(bytes, pageOf(page)), to, size);
}

int WideCharToMultiByte(UINT page, DWORD, LPCWSTR from, int length, LPSTR to, int size, LPCSTR,
                        LPBOOL usedDefault) {
    if (from == nullptr || length == 0)
        return 0;
    const std::wstring_view text(from, length < 0 ? std::wcslen(from) + 1 : static_cast<std::size_t>(length));
    if (usedDefault != nullptr)
        *usedDefault = host::canEncode(text, pageOf(page)) ? FALSE : TRUE;
    return give(host::encode(text, pageOf(page), host::Unmappable::question), to, size);
}
