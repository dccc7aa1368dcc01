// The registry: keys and typed values, kept in one readable file `settings` in the user's configuration
// folder. Names are found in any case. Several programs may read and write at once. A REG_SZ crosses the
// interface as UTF-16 bytes with its closing zero, whatever the size of wchar_t: write u"" literals or use
// host::Settings.
#pragma once

#include "host/win/types.h"

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

using REGSAM = DWORD;

inline const HKEY HKEY_CLASSES_ROOT = reinterpret_cast<HKEY>(static_cast<ULONG_PTR>(0x80000000u));
inline const HKEY HKEY_CURRENT_USER = reinterpret_cast<HKEY>(static_cast<ULONG_PTR>(0x80000001u));
inline const HKEY HKEY_LOCAL_MACHINE = reinterpret_cast<HKEY>(static_cast<ULONG_PTR>(0x80000002u));

inline constexpr REGSAM KEY_QUERY_VALUE = 0x0001;
inline constexpr REGSAM KEY_SET_VALUE = 0x0002;
inline constexpr REGSAM KEY_CREATE_SUB_KEY = 0x0004;
inline constexpr REGSAM KEY_ENUMERATE_SUB_KEYS = 0x0008;
inline constexpr REGSAM KEY_READ = 0x20019;
inline constexpr REGSAM KEY_WRITE = 0x20006;
inline constexpr REGSAM KEY_ALL_ACCESS = 0xF003F;

inline constexpr DWORD REG_NONE = 0;
inline constexpr DWORD REG_SZ = 1;
inline constexpr DWORD REG_EXPAND_SZ = 2;
inline constexpr DWORD REG_BINARY = 3;
inline constexpr DWORD REG_DWORD = 4;
inline constexpr DWORD REG_MULTI_SZ = 7;
inline constexpr DWORD REG_QWORD = 11;

inline constexpr DWORD REG_OPTION_NON_VOLATILE = 0;
inline constexpr DWORD REG_CREATED_NEW_KEY = 1;
inline constexpr DWORD REG_OPENED_EXISTING_KEY = 2;

struct SECURITY_ATTRIBUTES;

LONG RegOpenKeyExW(HKEY key, LPCWSTR subKey, DWORD options, REGSAM access, PHKEY result);
LONG RegCreateKeyExW(HKEY key, LPCWSTR subKey, DWORD reserved, LPWSTR className, DWORD options, REGSAM access,
                     SECURITY_ATTRIBUTES* security, PHKEY result, LPDWORD disposition);
LONG RegCloseKey(HKEY key);
LONG RegSetValueExW(HKEY key, LPCWSTR name, DWORD reserved, DWORD type, const BYTE* data, DWORD size);
LONG RegQueryValueExW(HKEY key, LPCWSTR name, LPDWORD reserved, LPDWORD type, LPBYTE data, LPDWORD size);
LONG RegDeleteValueW(HKEY key, LPCWSTR name);
LONG RegDeleteKeyW(HKEY key, LPCWSTR subKey); // fails while the key has sub keys
LONG RegDeleteTreeW(HKEY key, LPCWSTR subKey);
LONG RegEnumKeyExW(HKEY key, DWORD index, LPWSTR name, LPDWORD size, LPDWORD reserved, LPWSTR className,
                   LPDWORD classSize, FILETIME* written);
LONG RegEnumValueW(HKEY key, DWORD index, LPWSTR name, LPDWORD nameSize, LPDWORD reserved, LPDWORD type,
                   LPBYTE data, LPDWORD size);
LONG RegQueryInfoKeyW(HKEY key, LPWSTR className, LPDWORD classSize, LPDWORD reserved, LPDWORD subKeys,
                      LPDWORD longestSubKey, LPDWORD longestClass, LPDWORD values, LPDWORD longestValueName,
                      LPDWORD longestValue, LPDWORD security, FILETIME* written);
LONG RegFlushKey(HKEY key);

inline constexpr auto RegOpenKeyEx = RegOpenKeyExW;
inline constexpr auto RegCreateKeyEx = RegCreateKeyExW;
inline constexpr auto RegSetValueEx = RegSetValueExW;
inline constexpr auto RegQueryValueEx = RegQueryValueExW;
inline constexpr auto RegDeleteValue = RegDeleteValueW;
inline constexpr auto RegDeleteKey = RegDeleteKeyW;
inline constexpr auto RegEnumKeyEx = RegEnumKeyExW;
inline constexpr auto RegEnumValue = RegEnumValueW;

namespace host {

// Where the settings live: the folder given to setSettingsFolder, else `qdvhost` below the user's
// configuration folder. Set it before the first use of the registry; an empty path goes back to the default.
void setSettingsFolder(const std::filesystem::path& folder);
std::filesystem::path settingsFolder();

// The text, number or presence of single values below HKEY_CURRENT_USER, without the ceremony. A number
// stored as text is read as a number and the other way round.
std::optional<std::wstring> readSetting(std::wstring_view key, std::wstring_view name);
std::optional<int> readSettingNumber(std::wstring_view key, std::wstring_view name);
bool writeSetting(std::wstring_view key, std::wstring_view name, std::wstring_view text);
bool writeSettingNumber(std::wstring_view key, std::wstring_view name, int number);
bool deleteSetting(std::wstring_view key, std::wstring_view name);
bool deleteSettings(std::wstring_view key); // the key with all below it
bool createSettings(std::wstring_view key); // the key without values, when it is not there

} // namespace host
