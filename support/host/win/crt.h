// Functions of the Windows C library that Linux lacks, with their Windows meaning: the _s family, the
// comparisons without case, wide number reading, and the _t names. The _s functions cut nothing: what does
// not fit leaves an empty text and gives ERANGE.
#pragma once

#include "host/win/types.h"

#include <cerrno>
#include <cstdarg>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <cwchar>
#include <cwctype>

using errno_t = int;

#ifndef _countof
template <class T, std::size_t count>
constexpr std::size_t _countof(const T (&)[count]) {
    return count;
}
#endif
#ifndef _TRUNCATE
#define _TRUNCATE (static_cast<std::size_t>(-1))
#endif
inline constexpr std::size_t _MAX_PATH = 260;
inline constexpr std::size_t _MAX_DRIVE = 3;
inline constexpr std::size_t _MAX_DIR = 256;
inline constexpr std::size_t _MAX_FNAME = 256;
inline constexpr std::size_t _MAX_EXT = 256;

// Text into numbers. Leading white space and a sign are read; what follows the number is not looked at. The
// decimal separator is a point in every locale.
double _wtof(const wchar_t* text) noexcept;
int _wtoi(const wchar_t* text) noexcept;
LONG _wtol(const wchar_t* text) noexcept;
LONGLONG _wtoi64(const wchar_t* text) noexcept;

int _wcsicmp(const wchar_t* left, const wchar_t* right) noexcept;
int _wcsnicmp(const wchar_t* left, const wchar_t* right, std::size_t count) noexcept;
int _stricmp(const char* left, const char* right) noexcept;
int _strnicmp(const char* left, const char* right, std::size_t count) noexcept;

errno_t wcscpy_s(wchar_t* to, std::size_t size, const wchar_t* from) noexcept;
errno_t wcscat_s(wchar_t* to, std::size_t size, const wchar_t* from) noexcept;
errno_t wcsncpy_s(wchar_t* to, std::size_t size, const wchar_t* from, std::size_t count) noexcept;
errno_t strcpy_s(char* to, std::size_t size, const char* from) noexcept;
errno_t strcat_s(char* to, std::size_t size, const char* from) noexcept;
wchar_t* wcstok_s(wchar_t* text, const wchar_t* delimiters, wchar_t** context) noexcept;
errno_t _wcsupr_s(wchar_t* text, std::size_t size) noexcept;
errno_t _wcslwr_s(wchar_t* text, std::size_t size) noexcept;
wchar_t* _wcsupr(wchar_t* text) noexcept;
wchar_t* _wcslwr(wchar_t* text) noexcept;
wchar_t* _wcsrev(wchar_t* text) noexcept;
wchar_t* _wcsdup(const wchar_t* text); // to be freed with free
errno_t _itow_s(int value, wchar_t* to, std::size_t size, int radix) noexcept;

template <std::size_t size>
errno_t wcscpy_s(wchar_t (&to)[size], const wchar_t* from) noexcept {
    return wcscpy_s(to, size, from);
}
template <std::size_t size>
errno_t wcscat_s(wchar_t (&to)[size], const wchar_t* from) noexcept {
    return wcscat_s(to, size, from);
}
template <std::size_t size>
errno_t wcsncpy_s(wchar_t (&to)[size], const wchar_t* from, std::size_t count) noexcept {
    return wcsncpy_s(to, size, from, count);
}
template <std::size_t size>
errno_t strcpy_s(char (&to)[size], const char* from) noexcept {
    return strcpy_s(to, size, from);
}
template <std::size_t size>
errno_t _itow_s(int value, wchar_t (&to)[size], int radix) noexcept {
    return _itow_s(value, to, size, radix);
}

// Formatting with the Windows meaning of a wide format. The number of characters written, or -1 (and an empty
// text) when they do not fit; the _snwprintf family cuts instead where count is less than the buffer or
// _TRUNCATE.
int vswprintf_s(wchar_t* to, std::size_t size, const wchar_t* format, std::va_list arguments);
int swprintf_s(wchar_t* to, std::size_t size, const wchar_t* format, ...);
int _vsnwprintf_s(wchar_t* to, std::size_t size, std::size_t count, const wchar_t* format,
                  std::va_list arguments);
int _snwprintf_s(wchar_t* to, std::size_t size, std::size_t count, const wchar_t* format, ...);
int _scwprintf(const wchar_t* format, ...);             // the length alone
int wsprintfW(wchar_t* to, const wchar_t* format, ...); // at most 1024 characters, with the closing zero

template <std::size_t size>
int swprintf_s(wchar_t (&to)[size], const wchar_t* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    const int length = vswprintf_s(to, size, format, arguments);
    va_end(arguments);
    return length;
}

errno_t _wsplitpath_s(const wchar_t* path, wchar_t* drive, std::size_t driveSize, wchar_t* folder,
                      std::size_t folderSize, wchar_t* name, std::size_t nameSize, wchar_t* extension,
                      std::size_t extensionSize) noexcept;
errno_t _wmakepath_s(wchar_t* path, std::size_t size, const wchar_t* drive, const wchar_t* folder,
                     const wchar_t* name, const wchar_t* extension) noexcept;

// Files by Windows path. Of the mode, the C modes count; "ccs=" and "t" are passed over.
FILE* _wfopen(const wchar_t* path, const wchar_t* mode);
errno_t _wfopen_s(FILE** file, const wchar_t* path, const wchar_t* mode);
int _waccess(const wchar_t* path, int mode); // 0 there, 2 writable, 4 readable
int _wremove(const wchar_t* path);
int _wrename(const wchar_t* from, const wchar_t* to);
int _wmkdir(const wchar_t* path);
int _wrmdir(const wchar_t* path);
errno_t localtime_s(std::tm* fields, const std::time_t* time);

inline std::size_t _tcslen(const wchar_t* text) {
    return std::wcslen(text);
}
inline int _tcscmp(const wchar_t* left, const wchar_t* right) {
    return std::wcscmp(left, right);
}
inline int _tcsncmp(const wchar_t* left, const wchar_t* right, std::size_t count) {
    return std::wcsncmp(left, right, count);
}
inline wchar_t* _tcscpy(wchar_t* to, const wchar_t* from) {
    return std::wcscpy(to, from);
}
inline wchar_t* _tcscat(wchar_t* to, const wchar_t* from) {
    return std::wcscat(to, from);
}
inline const wchar_t* _tcschr(const wchar_t* text, wchar_t c) {
    return std::wcschr(text, c);
}
inline const wchar_t* _tcsrchr(const wchar_t* text, wchar_t c) {
    return std::wcsrchr(text, c);
}
inline const wchar_t* _tcsstr(const wchar_t* text, const wchar_t* what) {
    return std::wcsstr(text, what);
}
inline int _tcsicmp(const wchar_t* left, const wchar_t* right) noexcept {
    return _wcsicmp(left, right);
}
inline int _tcsnicmp(const wchar_t* left, const wchar_t* right, std::size_t count) noexcept {
    return _wcsnicmp(left, right, count);
}
inline int _ttoi(const wchar_t* text) noexcept {
    return _wtoi(text);
}
inline LONG _ttol(const wchar_t* text) noexcept {
    return _wtol(text);
}
inline double _tstof(const wchar_t* text) noexcept {
    return _wtof(text);
}
inline errno_t _tcscpy_s(wchar_t* to, std::size_t size, const wchar_t* from) noexcept {
    return wcscpy_s(to, size, from);
}
inline errno_t _tcscat_s(wchar_t* to, std::size_t size, const wchar_t* from) noexcept {
    return wcscat_s(to, size, from);
}
template <std::size_t size>
errno_t _tcscpy_s(wchar_t (&to)[size], const wchar_t* from) noexcept {
    return wcscpy_s(to, size, from);
}
template <std::size_t size>
errno_t _tcscat_s(wchar_t (&to)[size], const wchar_t* from) noexcept {
    return wcscat_s(to, size, from);
}
inline wchar_t* _tcstok_s(wchar_t* text, const wchar_t* delimiters, wchar_t** context) noexcept {
    return wcstok_s(text, delimiters, context);
}
inline int _istspace(wint_t c) {
    return c == 0x3000 || c == 0xA0 || std::iswspace(c) != 0;
}
inline int _istdigit(wint_t c) {
    return c >= L'0' && c <= L'9';
}
#ifndef _stprintf_s
#define _stprintf_s swprintf_s
#define _sntprintf_s _snwprintf_s
#define _tfopen _wfopen
#define _tfopen_s _wfopen_s
#endif

inline int lstrlenW(const wchar_t* text) {
    return text == nullptr ? 0 : static_cast<int>(std::wcslen(text));
}
inline int lstrcmpiW(const wchar_t* left, const wchar_t* right) noexcept {
    return _wcsicmp(left, right);
}
inline int lstrcmpW(const wchar_t* left, const wchar_t* right) {
    return std::wcscmp(left, right);
}
inline wchar_t* lstrcpyW(wchar_t* to, const wchar_t* from) {
    return std::wcscpy(to, from);
}
inline wchar_t* lstrcatW(wchar_t* to, const wchar_t* from) {
    return std::wcscat(to, from);
}
int MulDiv(int number, int numerator, int denominator) noexcept; // rounded; -1 when it does not fit

inline void ZeroMemory(void* to, std::size_t size) {
    std::memset(to, 0, size);
}
inline void CopyMemory(void* to, const void* from, std::size_t size) {
    std::memcpy(to, from, size);
}

// Text in a code page. CP_ACP is the Simplified Chinese page.
inline constexpr UINT CP_ACP = 0;
inline constexpr UINT CP_UTF8 = 65001;
int MultiByteToWideChar(UINT page, DWORD flags, LPCSTR from, int length, LPWSTR to, int size);
int WideCharToMultiByte(UINT page, DWORD flags, LPCWSTR from, int length, LPSTR to, int size,
                        LPCSTR defaultChar, LPBOOL usedDefault);
