// Joining texts and splitting them by script: commands V7_LinkText and V7_CCEScale.
#pragma once

#include "host/arx.h"

#include <string>
#include <string_view>
#include <vector>

/// Joins the selected texts into the first one, the nearer to it first.
void LinkTexts();
/// Splits the selected texts into runs of Chinese and Western characters, the Western ones at a ratio of
/// their height.
void ScaleWesternRuns();

namespace linktext {

/// Characters of one script.
struct Run {
    std::wstring text;
    bool isWestern = false; ///< one byte a character in the system's ANSI code page
};
std::vector<Run> SplitIntoRuns(std::wstring_view text);

} // namespace linktext
