// Windows paths and the real ones behind them. Inside the module a path has backslashes and any case; here it
// becomes the file that is meant, and the other way round.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace host {

// The file a Windows path means (`\opt\qdv\$TQ.DWG` -> `/opt/qdv/$tq.dwg`). Each name is looked for in its
// folder, first as it stands, then without regard to case; from the first name that is not there, names stay
// as given. Drive letters and `\\?\` fall away, `\\server\share` becomes `/server/share`, `.` and `..` are
// resolved in the text. A Linux path is understood too. A relative path stays relative to the current folder.
std::filesystem::path toNativePath(std::wstring_view windowsPath);
// For a path relative to the given folder instead of the current one.
std::filesystem::path toNativePath(std::wstring_view windowsPath, const std::filesystem::path& folder);

// One name of a path, as it stands; nothing is looked for.
std::filesystem::path toNativeName(std::wstring_view name);

// The Windows path of a file; toNativePath leads back to the same file, even where its name holds backslashes
// or is no UTF-8.
std::wstring toWindowsPath(const std::filesystem::path& path);

// The path as text for the user, with slashes.
std::wstring displayPath(const std::filesystem::path& path);

// Whether the text is absolute: begins with a separator or a drive letter and a separator.
bool isAbsoluteWindowsPath(std::wstring_view path) noexcept;

// The file name and its extension (with the dot) in a Windows or Linux path.
std::wstring_view fileNameOf(std::wstring_view path) noexcept;
std::wstring_view extensionOf(std::wstring_view path) noexcept;
std::wstring_view
folderOf(std::wstring_view path) noexcept; // without the closing separator, except of the root

// Whether a name fits a pattern with * and ?, in any case. "*.*" fits every name, as there.
bool matchesPattern(std::wstring_view name, std::wstring_view pattern) noexcept;

} // namespace host
