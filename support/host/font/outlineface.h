// TrueType and OpenType faces, read with FreeType.
#pragma once

#include "host/font/face.h"

#include <filesystem>
#include <memory>

namespace host {

struct FontFile {
    std::filesystem::path path;
    int index = 0;             // of the face in a collection
    bool embolden = false;     // the face is lighter than asked for
    bool slant = false;        // the face is upright where an italic was asked for
    bool isTurned = false;     // ideographs lie on their left sides, for texts that run downwards
    bool isSubstitute = false; // not the font asked for
    std::wstring family;       // its typeface, where the system knows it

    bool operator==(const FontFile&) const = default;
};

enum class OutlineScale {
    capitals,  // a capital H is one text height tall
    ideographs // the em box is as tall as stroke Chinese: ink one text height, standing on the base line
};

// Null when the file is no font that can be scaled.
std::unique_ptr<FontFace> openOutlineFace(const FontFile& file, OutlineScale scale);

} // namespace host
