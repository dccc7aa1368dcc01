#include "host/ed/codefolders.h"

#include "host/ed/acdocman.h"
#include "host/ed/session.h"
#include "host/ed/sysvars.h"
#include "host/rx/text.h"
#include "host/win/win.h"

#include <algorithm>

namespace host {

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

} // namespace

std::vector<fs::path> foldersIn(std::wstring_view variable) {
    std::vector<fs::path> folders;
    const std::wstring list = systemVariableText(variable);
    for (std::wstring_view rest = list; !rest.empty();) {
        const std::size_t end = std::min(rest.find(L';'), rest.size());
        const std::wstring_view folder = trim(rest.substr(0, end));
        if (isAbsoluteWindowsPath(folder)) {
            folders.push_back(toNativePath(folder));
        }
        rest.remove_prefix(std::min(end + 1, rest.size()));
    }
    return folders;
}

std::vector<fs::path> codeFolders(AcApDocument* document) {
    std::vector<fs::path> folders;
    std::error_code error;
    std::vector<fs::path> untrusted{fs::weakly_canonical(fs::current_path(error), error)};
    if (acDocManagerPtr()->isOpen(document) && document->isNamedDrawing()) {
        untrusted.push_back(fs::weakly_canonical(toNativePath(document->fileName()).parent_path(), error));
    }
    for (const fs::path& folder : supportFolders()) {
        const fs::path resolved = fs::weakly_canonical(folder, error);
        if (std::ranges::find(untrusted, resolved) == untrusted.end()) {
            folders.push_back(resolved);
        }
    }
    for (const fs::path& folder : foldersIn(L"TRUSTEDPATHS")) {
        folders.push_back(fs::weakly_canonical(folder, error));
    }
    return folders;
}

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

bool isInsideAny(const fs::path& file, const std::vector<fs::path>& folders) {
    return std::ranges::any_of(folders, [&](const fs::path& folder) { return isInside(file, folder); });
}

std::optional<fs::path> fileInside(const std::wstring& name, const wchar_t* extension,
                                   const std::vector<fs::path>& folders) {
    for (const std::wstring& candidate : {name, name + extension}) {
        const fs::path file = resolvedPath(candidate, folders);
        std::error_code error;
        if (isInsideAny(file, folders) && fs::is_regular_file(file, error)) {
            return file;
        }
    }
    return std::nullopt;
}

} // namespace host
