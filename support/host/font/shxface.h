// Faces of compiled shape files, and the shapes that standard linetypes set into their lines.
#pragma once

#include "host/font/face.h"
#include "host/rx/codepage.h"

#include <filesystem>
#include <memory>
#include <string>
#include <string_view>

namespace host {

// The face of a .shx file; null when it is none. A font is scaled to its height above the base line; shapes
// keep their units and are looked up by their numbers.
std::unique_ptr<FontFace> openShapeFace(const std::filesystem::path& path);

// The same from the bytes of a file.
std::unique_ptr<FontFace> shapeFace(std::string bytes, CodePage page);

// The shapes of the standard linetypes (ltypeshp.shx), by their numbers; null for other files.
std::unique_ptr<FontFace> makeStandardShapeFace(std::wstring_view name);

} // namespace host
