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
/// Each character a run that keeps its height.
std::vector<Run> SplitIntoCharacters(std::wstring_view text);

/// Puts the runs of a text into the drawing, the Western ones at a ratio of its height. What the runs at the
/// full height lack of the text's width is shared between them: at the ratio 1 they are together as wide as
/// it. False, and nothing done, when it has one run only.
bool PlaceRuns(const AcDbText& source, const std::vector<Run>& runs, double westernRatio);

} // namespace linktext
