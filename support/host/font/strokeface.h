// Stroke fonts: characters drawn with a pen. The standard shape font names stand for faces of the Hershey
// collection where it is installed, and for a plain font of our own.
#pragma once

#include "host/font/face.h"

#include <memory>
#include <string_view>

namespace host {

// The stroke face for a shape font's name (without folder, with or without ".shx"); null when the name is
// none of the standard ones.
std::unique_ptr<FontFace> makeStandardStrokeFace(std::wstring_view name);

// Whether a shape font's name is that of a usual big font. What makeStandardStrokeFace gives for it has only
// the Latin letters such a font has besides its own.
bool isStandardBigFont(std::wstring_view name);

// The plain font, for every name.
std::unique_ptr<FontFace> makePlainStrokeFace();

} // namespace host
