// The Windows file functions, by Windows path. On failure they give FALSE (or an invalid handle or attribute)
// and set the last error.
#pragma once

#include "host/win/types.h"

inline constexpr DWORD FILE_ATTRIBUTE_READONLY = 0x01;
inline constexpr DWORD FILE_ATTRIBUTE_HIDDEN = 0x02;
inline constexpr DWORD FILE_ATTRIBUTE_SYSTEM = 0x04;
inline constexpr DWORD FILE_ATTRIBUTE_DIRECTORY = 0x10;
inline constexpr DWORD FILE_ATTRIBUTE_ARCHIVE = 0x20;
inline constexpr DWORD FILE_ATTRIBUTE_NORMAL = 0x80;
inline constexpr DWORD INVALID_FILE_ATTRIBUTES = 0xFFFFFFFF;

inline constexpr DWORD MOVEFILE_REPLACE_EXISTING = 1;
inline constexpr DWORD MOVEFILE_COPY_ALLOWED = 2;
inline constexpr DWORD MOVEFILE_WRITE_THROUGH = 8;

struct SECURITY_ATTRIBUTES;

struct WIN32_FIND_DATAW {
    DWORD dwFileAttributes;
    FILETIME ftCreationTime;
    FILETIME ftLastAccessTime;
    FILETIME ftLastWriteTime;
    DWORD nFileSizeHigh;
    DWORD nFileSizeLow;
    DWORD dwReserved0;
    DWORD dwReserved1;
    WCHAR cFileName[MAX_PATH];
    WCHAR cAlternateFileName[14];
};
using WIN32_FIND_DATA = WIN32_FIND_DATAW;

BOOL CopyFileW(LPCWSTR from, LPCWSTR to, BOOL failIfExists); // the target appears whole or not at all
BOOL MoveFileW(LPCWSTR from, LPCWSTR to);
BOOL MoveFileExW(LPCWSTR from, LPCWSTR to, DWORD flags);
BOOL DeleteFileW(LPCWSTR path);
DWORD GetFileAttributesW(LPCWSTR path);
BOOL SetFileAttributesW(LPCWSTR path, DWORD attributes); // only read-only is kept
BOOL CreateDirectoryW(LPCWSTR path, SECURITY_ATTRIBUTES* security);
BOOL RemoveDirectoryW(LPCWSTR path);
DWORD GetCurrentDirectoryW(DWORD size, LPWSTR path);
BOOL SetCurrentDirectoryW(LPCWSTR path);
DWORD GetTempPathW(DWORD size, LPWSTR path); // ends in a backslash
DWORD GetFullPathNameW(LPCWSTR path, DWORD size, LPWSTR full, LPWSTR* fileName);
BOOL PathFileExistsW(LPCWSTR path);
BOOL PathIsDirectoryW(LPCWSTR path);

// The entries of a folder that fit a pattern in the last name ("dir\*.dwg"), with . and .. where the pattern
// fits them, in order of names without regard to case. Names longer than MAX_PATH are left out.
HANDLE FindFirstFileW(LPCWSTR pattern, WIN32_FIND_DATAW* found);
BOOL FindNextFileW(HANDLE search, WIN32_FIND_DATAW* found);
BOOL FindClose(HANDLE search);

// Without the W, for source that is compiled for wide text. Functions, not macros, so that nothing else is
// renamed.
inline constexpr auto CopyFile = CopyFileW;
inline constexpr auto MoveFile = MoveFileW;
inline constexpr auto MoveFileEx = MoveFileExW;
inline constexpr auto DeleteFile = DeleteFileW;
inline constexpr auto GetFileAttributes = GetFileAttributesW;
inline constexpr auto CreateDirectory = CreateDirectoryW;
inline constexpr auto RemoveDirectory = RemoveDirectoryW;
inline constexpr auto FindFirstFile = FindFirstFileW;
inline constexpr auto FindNextFile = FindNextFileW;
inline constexpr auto PathFileExists = PathFileExistsW;
inline constexpr auto PathIsDirectory = PathIsDirectoryW;
