// Which files programs may touch: code comes from the code folders only, other files are read and written in
// the data folders only. Links and .. never lead out of a folder.
#pragma once

#include "host/lisp/interpreter.h"

namespace host::lisp {

/// The file of a program: in a code folder, with .lsp when no extension is given.
std::optional<std::filesystem::path> programFile(LispInterpreter& lisp, const std::wstring& name);
/// A path that programs may look at and read; nothing for one outside.
std::optional<std::filesystem::path> visiblePath(LispInterpreter& lisp, const std::wstring& name);
/// A path that programs may write, change and delete: what is loaded as code can't be changed by code.
std::optional<std::filesystem::path> changeablePath(LispInterpreter& lisp, const std::wstring& name);

} // namespace host::lisp
