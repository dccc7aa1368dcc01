#include "host/lisp/fileaccess.h"

#include "host/ed/codefolders.h"

namespace host::lisp {

namespace fs = std::filesystem;

namespace {

std::vector<fs::path> foldersFrom(const std::function<std::vector<fs::path>()>& source) {
    return source ? source() : std::vector<fs::path>();
}

std::vector<fs::path> dataFolders(LispInterpreter& lisp) {
    return foldersFrom(lisp.surroundings().dataFolders);
}

std::vector<fs::path> codeFolders(LispInterpreter& lisp) {
    return foldersFrom(lisp.surroundings().codeFolders);
}

} // namespace

std::optional<fs::path> programFile(LispInterpreter& lisp, const std::wstring& name) {
    return fileInside(name, L".lsp", codeFolders(lisp));
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
