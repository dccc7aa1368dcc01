#include "host/font/face.h"

#include <atomic>

namespace host {

namespace {
std::atomic<std::uint32_t> nextFaceId{1};
}

FontFace::FontFace() : m_id(nextFaceId++) {}

const Glyph* FontFace::glyph(char32_t character) {
    const auto [entry, isNew] = m_glyphs.try_emplace(character);
    if (isNew) {
        entry->second = makeGlyph(character);
        if (Glyph* glyph = entry->second.get()) {
            glyph->finish();
            glyph->character = character;
            glyph->fontId = m_id;
            glyph->glyphId = static_cast<std::uint32_t>(m_glyphs.size() - 1);
        }
    }
    return entry->second.get();
}

} // namespace host
