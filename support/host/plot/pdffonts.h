// Fonts in a PDF file made of glyph outlines (Type 3), at most 255 glyphs each, with a map back to Unicode.
#pragma once

#include "host/font/glyph.h"
#include "host/plot/pdffile.h"

#include <unordered_map>
#include <vector>

namespace host {

class PdfFonts {
public:
    struct Code {
        std::size_t font; // named /F0, /F1, ... in the page's resources
        unsigned char character;
    };
    Code codeOf(const Glyph& glyph);

    bool isEmpty() const { return mFonts.empty(); }
    // Writes all fonts; the result is the value of the page's /Font entry.
    std::string write(PdfFile& file) const;

    static constexpr double unitsPerHeight = 2000; // of glyph space

private:
    using Font = std::vector<const Glyph*>; // glyph i has character code i + 1

    static int writeGlyph(const Glyph& glyph, PdfFile& file);
    static int writeFont(const Font& font, PdfFile& file);

    std::vector<Font> mFonts;
    std::unordered_map<const Glyph*, Code> mCodes;
};

} // namespace host
