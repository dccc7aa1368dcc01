#include "host/lisp/fileaccess.h"

#include "host/win/win.h"

#include <algorithm>

namespace host::lisp {

namespace fs = std::filesystem;

namespace {

bool isInside(const fs::path& file, const fs::path& folder) {
    std::error_code error;
    const fs::path root = fs::weakly_canonical(folder, error);
    if (error || root.empty() || root == root.root_path()) {
        return false;
    }
    const auto [end, rest] = std::mismatch(root.begin(), root.end(), file.begin(), file.end());
    return end == root.end() || (end->empty() && std::next(end) == root.end());
}

// The absolute path with links resolved, so that neither .. nor a link leads out of a folder.
fs::path resolvedPath(const std::wstring& name, const std::vector<fs::path>& bases) {
    std::error_code error;
    fs::path file = toNativePath(name);
    if (file.is_relative()) {
        for (const fs::path& base : bases) {
            const fs::path candidate = toNativePath(name, base);
            if (fs::exists(candidate, error)) {
                file = candidate;
                break;
            }
        }
    }
    return fs::weakly_canonical(fs::absolute(file, error), error);
}

std::vector<fs::path> foldersFrom(const std::function<std::vector<fs::path>()>& source) {
    return source ? source() : std::vector<fs::path>();
}

bool isInsideAny(const fs::path& file, const std::vector<fs::path>& folders) {
    return std::ranges::any_of(folders, [&](const fs::path& folder) { return isInside(file, folder); });
}

std::vector<fs::path> dataFolders(LispInterpreter& lisp) {
    return foldersFrom(lisp.surroundings().dataFolders);
}

std::vector<fs::path> codeFolders(LispInterpreter& lisp) {
    return foldersFrom(lisp.surroundings().codeFolders);
}

} // namespace

std::optional<fs::path> programFile(LispInterpreter& lisp, const std::wstring& name) {
    const std::vector<fs::path> folders = codeFolders(lisp);
    for (const std::wstring& candidate : {name, name + L".lsp"}) {
        const fs::path file = resolvedPath(candidate, folders);
        std::error_code error;
        if (isInsideAny(file, folders) && fs::is_regular_file(file, error)) {
            return file;
        }
    }
    return std::nullopt;
}

std::optional<fs::path> visiblePath(LispInterpreter& lisp, const std::wstring& name) {
    const std::vector<fs::path> data = dataFolders(lisp);
    fs::path file = resolvedPath(name, data);
    return isInsideAny(file, data) || isInsideAny(file, codeFolders(lisp)) ? std::optional(std::move(file))
                                                                           : std::nullopt;
}

std::optional<fs::path> changeablePath(LispInterpreter& lisp, const std::wstring& name) {
    const std::vector<fs::path> data = dataFolders(lisp);
    fs::path file = resolvedPath(name, data);
    return isInsideAny(file, data) && !isInsideAny(file, codeFolders(lisp)) ? std::optional(std::move(file))
                                                                            : std::nullopt;
}

} // namespace host::lisp
