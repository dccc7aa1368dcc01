// Any bytes as a compiled shape file: its face gives glyphs with finite coordinates, or none.
#include "fuzz/target.h"

#include "host/font/glyph.h"
#include "host/font/shxface.h"

#include <cmath>

namespace {

void check(const host::Glyph* glyph) {
    if (glyph == nullptr) {
        return;
    }
    require(std::isfinite(glyph->advance), "advance not finite");
    for (const host::GlyphPoint& point : glyph->points()) {
        require(std::isfinite(point.x) && std::isfinite(point.y), "point not finite");
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::unique_ptr<host::FontFace> face =
        host::shapeFace(std::string(reinterpret_cast<const char*>(data), size), host::CodePage::ansi936);
    if (face == nullptr) {
        return 0;
    }
    require(std::isfinite(face->ascent()) && std::isfinite(face->descent()), "not finite");
    for (char32_t character = 1; character < 256; ++character) {
        check(face->glyph(character));
    }
    for (const char32_t character : {U'\u4E00', U'\u56F4', U'\u5899', U'\uFF01'}) {
        check(face->glyph(character));
    }
    return 0;
}
