#include "host/font/face.h"

#include <atomic>

namespace host {

namespace {
std::atomic<std::uint32_t> nextFaceId{1};
}

FontFace::FontFace() : mId(nextFaceId++) {}

const Glyph* FontFace::glyph(char32_t character) {
    return kept(mGlyphs, character, false);
}

const Glyph* FontFace::verticalGlyph(char32_t character) {
    return kept(mVerticalGlyphs, character, true);
}

const Glyph* FontFace::kept(Glyphs& glyphs, char32_t character, bool isVertical) {
    const auto [entry, isNew] = glyphs.try_emplace(character);
    if (isNew) {
        entry->second = isVertical ? makeVerticalGlyph(character) : makeGlyph(character);
        if (Glyph* glyph = entry->second.get()) {
            glyph->finish();
            glyph->character = character;
            glyph->fontId = mId;
            glyph->glyphId = mGlyphCount++;
        }
    }
    return entry->second.get();
}

} // namespace host
