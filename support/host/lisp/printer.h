// Values as text, the way the command line shows them.
#pragma once

#include "host/lisp/value.h"

#include <string>

namespace host::lisp {

enum class PrintStyle {
    plain,    ///< texts without quotes (princ)
    readable, ///< texts quoted and escaped so that the reader gives them back (prin1)
};

std::wstring printed(const Value& value, PrintStyle style = PrintStyle::readable);
/// Readable and cut to a length fit for a message.
std::wstring printedShort(const Value& value);
/// A real with six significant digits, always with a point: 1.0, 0.333333, 1.0e+10.
std::wstring printedReal(double value);
/// The text with its special characters escaped, without the quotes.
std::wstring escaped(std::wstring_view text);

} // namespace host::lisp
