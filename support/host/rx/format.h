// Formatted text with the Windows meaning of a wide format, whatever the C library of the platform does:
// %s and %c are wide, %S, %C, %hs and %hc narrow (UTF-8), %ld is 32 bits, %I64d and %lld 64, %p sixteen
// upper-case digits, and the decimal separator is always a point.
#pragma once

#include <cstdarg>
#include <string>
#include <string_view>

namespace host {

// Formats the arguments. A conversion that does not exist is printed as it stands, a null string as "(null)",
// a null format as nothing. The caller keeps the va_list: it is copied, not used up.
std::wstring formatWide(const wchar_t* format, std::va_list arguments);
std::wstring formatted(const wchar_t* format, ...);

// The same for a narrow format, where %s and %c are narrow and %S, %C wide; text is UTF-8.
std::string formatNarrow(const char* format, std::va_list arguments);

} // namespace host
