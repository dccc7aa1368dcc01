// A font: characters to glyphs. Faces keep their glyphs as long as they live; a face is used by one thread at
// a time (the engine holds its lock meanwhile).
#pragma once

#include "host/font/glyph.h"

#include <cstdint>
#include <memory>
#include <unordered_map>

namespace host {

// Characters as wide as an ideograph: radicals, kana, ideographs, full-width forms, enclosed numbers.
constexpr bool isIdeographic(char32_t character) {
    return character >= 0x2E80 || (character >= 0x2460 && character < 0x2500);
}

class FontFace {
public:
    FontFace();
    virtual ~FontFace() = default;
    FontFace(const FontFace&) = delete;
    FontFace& operator=(const FontFace&) = delete;

    // The glyph of a character, or null when the font has none; a blank is a glyph without contours.
    const Glyph* glyph(char32_t character);
    // The glyph for vertical text: its pen starts at the top centre of the character, and its advance is the
    // distance down to the next one's. Null where the font has none of its own.
    const Glyph* verticalGlyph(char32_t character);

    virtual bool isStroke() const = 0;
    virtual double ascent() const { return 1.0; }
    virtual double descent() const { return 1.0 / 3; }
    std::uint32_t id() const { return mId; }

protected:
    // Makes the glyph of a character; null when there is none. Called once a character.
    virtual std::unique_ptr<Glyph> makeGlyph(char32_t character) = 0;
    virtual std::unique_ptr<Glyph> makeVerticalGlyph(char32_t) { return nullptr; }

private:
    using Glyphs = std::unordered_map<char32_t, std::unique_ptr<Glyph>>;
    const Glyph* kept(Glyphs& glyphs, char32_t character, bool isVertical);

    Glyphs mGlyphs, mVerticalGlyphs;
    std::uint32_t mGlyphCount = 0;
    std::uint32_t mId;
};

} // namespace host
