// Which file serves a typeface or a font file's name: the system's fonts, and substitutes with the same
// character for the fonts that drawings usually name.
#pragma once

#include "host/font/outlineface.h"

#include <optional>
#include <string_view>

namespace host {

// Always a file where the system has any font at all.
std::optional<FontFile> findTypeface(std::wstring_view typeface, bool bold, bool italic);

// By a font file's name; folders, if the name has any, do not matter.
std::optional<FontFile> findFontFile(std::wstring_view fileName);

// An installed font that has the character, where there is a choice a light one (to stand beside strokes);
// nothing when there is none.
std::optional<FontFile> findFontWith(char32_t character, bool isLight = false);

} // namespace host
