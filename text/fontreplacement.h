// Repair of text styles whose fonts this computer lacks: command V7_ReplaceFontFile.
#pragma once

#include "host/arx.h"

#include <set>
#include <string>

/// Gives every text style of the drawing fonts that there are, and draws the drawing anew when one changed.
void ReplaceMissingFonts();

namespace fontreplacement {

struct Replacement {
    std::wstring typeface;
    std::wstring fileName; ///< empty: the style keeps its own
};
/// For a typeface that is not among the installed ones: an installed Kai or Fang Song face for those two,
/// else SimSun.
Replacement ReplacementFor(const std::wstring& typeface, const std::set<std::wstring>& installed);

} // namespace fontreplacement
