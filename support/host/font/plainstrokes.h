// The plain stroke font's drawings: Latin letters, digits and signs on a grid six units high.
#pragma once

#include "host/font/glyph.h"

#include <memory>
#include <string_view>

namespace host {

// The drawing of a character, or null. Not finished: the caller may add to it.
std::unique_ptr<Glyph> plainStrokeGlyph(char32_t character);

// An accent's strokes, centred at x = 0 with its lowest (for a cedilla: highest) point at y = 0; null for a
// character that is no accent.
std::unique_ptr<Glyph> accentGlyph(char32_t accent);

// A letter with an accent as its two parts; base is 0 when the character is not composed so.
struct Composition {
    char32_t base = 0, accent = 0;
};
Composition decompose(char32_t character);

} // namespace host
