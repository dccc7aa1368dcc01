// Names of drawing files as they are typed.
#pragma once

#include <string>

namespace host {

/// Quotes taken off, the extension added when there is none.
std::wstring drawingFileName(std::wstring text);
/// True when there is no such file, or the user (or EXPERT) agrees that it is replaced.
bool mayWriteFile(const std::wstring& name);

} // namespace host
