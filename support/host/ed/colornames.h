// Colours as words and numbers of the command line.
#pragma once

#include "host/gi/gi.h"

#include <optional>
#include <string>
#include <string_view>

namespace host {

/// A name (RED, 红, 红色), BYLAYER, BYBLOCK, an index, or RGB:r,g,b or r,g,b. Nothing for other text.
std::optional<AcCmEntityColor> parseColor(std::wstring_view text);
/// BYLAYER, BYBLOCK or the index.
std::wstring colorText(int index);
/// The same, and a true colour as RGB:r,g,b.
std::wstring colorText(const AcCmEntityColor& color);

} // namespace host
