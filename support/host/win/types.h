// The basic Windows types with their Windows sizes (a LONG and a DWORD are 32 bits), handles, small
// structures and error codes. Wide characters are wchar_t, whatever its size here.
#pragma once

#include <cstdint>

#ifndef TRUE
#define TRUE 1
#endif
#ifndef FALSE
#define FALSE 0
#endif
#ifndef _T
#define _T(text) L##text
#endif
#ifndef TEXT
#define TEXT(text) L##text
#endif
#ifndef WINAPI
#define WINAPI
#define CALLBACK
#define APIENTRY
#define AFXAPI
#define AFX_CDECL
#endif
#ifndef __declspec
#define __declspec(kind) HOST_DECLSPEC_##kind
#define HOST_DECLSPEC_dllexport __attribute__((visibility("default")))
#define HOST_DECLSPEC_dllimport
#define HOST_DECLSPEC_noreturn __attribute__((noreturn))
#define HOST_DECLSPEC_novtable
#endif

using BOOL = int;
using BYTE = std::uint8_t;
using WORD = std::uint16_t;
using DWORD = std::uint32_t;
using DWORDLONG = std::uint64_t;
using SHORT = std::int16_t;
using USHORT = std::uint16_t;
using INT = int;
using UINT = unsigned;
using LONG = std::int32_t;
using ULONG = std::uint32_t;
using LONGLONG = std::int64_t;
using ULONGLONG = std::uint64_t;
using INT_PTR = std::intptr_t;
using UINT_PTR = std::uintptr_t;
using LONG_PTR = std::intptr_t;
using ULONG_PTR = std::uintptr_t;
using DWORD_PTR = std::uintptr_t;
using SIZE_T = std::size_t;
using WPARAM = std::uintptr_t;
using LPARAM = std::intptr_t;
using LRESULT = std::intptr_t;
using HRESULT = std::int32_t;
using LSTATUS = LONG;
using COLORREF = DWORD;
using ATOM = WORD;
using VOID = void;
using PVOID = void*;
using LPVOID = void*;
using LPCVOID = const void*;
using PBYTE = BYTE*;
using LPBYTE = BYTE*;
using LPDWORD = DWORD*;
using PDWORD = DWORD*;
using LPLONG = LONG*;
using LPINT = int*;
using LPBOOL = BOOL*;

using CHAR = char;
using WCHAR = wchar_t;
using TCHAR = wchar_t;
using LPSTR = char*;
using LPCSTR = const char*;
using LPWSTR = wchar_t*;
using PWSTR = wchar_t*;
using LPCWSTR = const wchar_t*;
using PCWSTR = const wchar_t*;
using LPTSTR = wchar_t*;
using LPCTSTR = const wchar_t*;

// A handle is a pointer to something only the maker of the handle knows.
struct HINSTANCE__;
struct HKEY__;
struct HWND__;
struct HDC__;
struct HMENU__;
struct HICON__;
struct HBITMAP__;
struct HFONT__;
struct HBRUSH__;
struct HPEN__;
struct HRSRC__;
using HANDLE = void*;
using HGLOBAL = void*;
using HGDIOBJ = void*;
using HINSTANCE = HINSTANCE__*;
using HMODULE = HINSTANCE__*;
using HKEY = HKEY__*;
using PHKEY = HKEY*;
using HWND = HWND__*;
using HDC = HDC__*;
using HMENU = HMENU__*;
using HICON = HICON__*;
using HCURSOR = HICON__*;
using HBITMAP = HBITMAP__*;
using HFONT = HFONT__*;
using HBRUSH = HBRUSH__*;
using HPEN = HPEN__*;
using HRSRC = HRSRC__*;

inline const HANDLE INVALID_HANDLE_VALUE = reinterpret_cast<HANDLE>(static_cast<std::intptr_t>(-1));

struct POINT {
    LONG x, y;
};
using LPPOINT = POINT*;
struct SIZE {
    LONG cx, cy;
};
using LPSIZE = SIZE*;
struct RECT {
    LONG left, top, right, bottom;
};
using LPRECT = RECT*;
using LPCRECT = const RECT*;

struct FILETIME {
    DWORD dwLowDateTime, dwHighDateTime; // 100 ns since 1601, UTC
};
struct SYSTEMTIME {
    WORD wYear, wMonth, wDayOfWeek, wDay, wHour, wMinute, wSecond, wMilliseconds;
};
using LPSYSTEMTIME = SYSTEMTIME*;
union LARGE_INTEGER {
    struct {
        DWORD LowPart;
        LONG HighPart;
    } u;
    LONGLONG QuadPart;
};

inline constexpr int MAX_PATH = 260;
inline constexpr DWORD INFINITE = 0xFFFFFFFF;

// Reasons with which a library's DllMain is called.
inline constexpr DWORD DLL_PROCESS_DETACH = 0;
inline constexpr DWORD DLL_PROCESS_ATTACH = 1;
inline constexpr DWORD DLL_THREAD_ATTACH = 2;
inline constexpr DWORD DLL_THREAD_DETACH = 3;

inline constexpr LONG ERROR_SUCCESS = 0;
inline constexpr LONG NO_ERROR = 0;
inline constexpr LONG ERROR_FILE_NOT_FOUND = 2;
inline constexpr LONG ERROR_PATH_NOT_FOUND = 3;
inline constexpr LONG ERROR_ACCESS_DENIED = 5;
inline constexpr LONG ERROR_INVALID_HANDLE = 6;
inline constexpr LONG ERROR_NOT_SAME_DEVICE = 17;
inline constexpr LONG ERROR_NO_MORE_FILES = 18;
inline constexpr LONG ERROR_WRITE_FAULT = 29;
inline constexpr LONG ERROR_READ_FAULT = 30;
inline constexpr LONG ERROR_SHARING_VIOLATION = 32;
inline constexpr LONG ERROR_FILE_EXISTS = 80;
inline constexpr LONG ERROR_INVALID_PARAMETER = 87;
inline constexpr LONG ERROR_DISK_FULL = 112;
inline constexpr LONG ERROR_INSUFFICIENT_BUFFER = 122;
inline constexpr LONG ERROR_INVALID_NAME = 123;
inline constexpr LONG ERROR_DIR_NOT_EMPTY = 145;
inline constexpr LONG ERROR_ALREADY_EXISTS = 183;
inline constexpr LONG ERROR_MORE_DATA = 234;
inline constexpr LONG ERROR_NO_MORE_ITEMS = 259;
inline constexpr LONG ERROR_DIRECTORY = 267;
inline constexpr LONG ERROR_KEY_DELETED = 1018;

constexpr COLORREF RGB(unsigned red, unsigned green, unsigned blue) {
    return (red & 0xFF) | (green & 0xFF) << 8 | (blue & 0xFF) << 16;
}
constexpr BYTE GetRValue(COLORREF color) {
    return static_cast<BYTE>(color & 0xFF);
}
constexpr BYTE GetGValue(COLORREF color) {
    return static_cast<BYTE>((color >> 8) & 0xFF);
}
constexpr BYTE GetBValue(COLORREF color) {
    return static_cast<BYTE>((color >> 16) & 0xFF);
}
constexpr WORD LOWORD(std::uintptr_t value) {
    return static_cast<WORD>(value & 0xFFFF);
}
constexpr WORD HIWORD(std::uintptr_t value) {
    return static_cast<WORD>((value >> 16) & 0xFFFF);
}
constexpr BYTE LOBYTE(std::uintptr_t value) {
    return static_cast<BYTE>(value & 0xFF);
}
constexpr BYTE HIBYTE(std::uintptr_t value) {
    return static_cast<BYTE>((value >> 8) & 0xFF);
}
constexpr WORD MAKEWORD(unsigned low, unsigned high) {
    return static_cast<WORD>((low & 0xFF) | (high & 0xFF) << 8);
}
constexpr LONG MAKELONG(unsigned low, unsigned high) {
    return static_cast<LONG>((low & 0xFFFF) | (high & 0xFFFF) << 16);
}
constexpr LPARAM MAKELPARAM(unsigned low, unsigned high) {
    return static_cast<DWORD>(MAKELONG(low, high));
}
// A resource's number in the place of its name.
inline LPCWSTR MAKEINTRESOURCEW(unsigned id) {
    return reinterpret_cast<LPCWSTR>(static_cast<ULONG_PTR>(id & 0xFFFF));
}
inline LPCWSTR MAKEINTRESOURCE(unsigned id) {
    return MAKEINTRESOURCEW(id);
}
inline bool IS_INTRESOURCE(LPCWSTR name) {
    return reinterpret_cast<ULONG_PTR>(name) >> 16 == 0;
}

// The last error of this thread.
DWORD GetLastError() noexcept;
void SetLastError(DWORD code) noexcept;

namespace host {

// The Windows code of a system error number.
LONG windowsError(int systemError) noexcept;

} // namespace host
