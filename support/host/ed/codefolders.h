// Where programs and scripts may come from.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

class AcApDocument;

namespace host {

/// The absolute paths in a variable that holds them between semicolons.
std::vector<std::filesystem::path> foldersIn(std::wstring_view variable);
/// The support folders and those of TRUSTEDPATHS, but never the drawing's folder or the working folder, even
/// where the support path names them.
std::vector<std::filesystem::path> codeFolders(AcApDocument* document);

/// The absolute path with links resolved, so that neither .. nor a link leads out of a folder.
std::filesystem::path resolvedPath(const std::wstring& name, const std::vector<std::filesystem::path>& bases);
bool isInsideAny(const std::filesystem::path& file, const std::vector<std::filesystem::path>& folders);
/// The file in one of the folders, with the extension (".lsp") when it is given without; nothing when there
/// is none.
std::optional<std::filesystem::path> fileInside(const std::wstring& name, const wchar_t* extension,
                                                const std::vector<std::filesystem::path>& folders);

} // namespace host
