// Fonts: text to placed glyphs. Faces come from TrueType and OpenType files, from stroke fonts, and from
// substitutes for what is not installed, so every text can be drawn.
#pragma once

#include "host/font/glyph.h"

#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace host {

class FontFace;

// Names a font as a text style does. With a typeface the file names do not matter. A file name without
// extension is a shape font's (.shx); .ttf, .ttc and .otf name TrueType files.
struct FontSpec {
    std::wstring typeface;
    std::wstring file;
    std::wstring bigFontFile;
    bool bold = false;
    bool italic = false;

    bool operator==(const FontSpec&) const = default;
};

struct TextFormat {
    FontSpec font;
    double height = 1; // of capital letters, drawing units
    double widthFactor = 1;
    double oblique = 0;      // radians from the vertical, clockwise; limited to 85 degrees either way
    double tracking = 1;     // factor of the distance between characters
    bool backward = false;   // mirrored at the start of the text
    bool upsideDown = false; // mirrored at the base line
    bool vertical = false;   // one character below the other
    bool underlined = false, overlined = false, struckThrough = false;
};

struct PlacedGlyph {
    const Glyph* glyph; // lives as long as the process
    double x, y;        // its origin in text coordinates
};

struct TextRule { // an underscore, overscore or strike-through line in text coordinates
    double startX, startY, endX, endY;
};

// A line of text laid out. Text coordinates: drawing units, origin where the base line starts, x along it.
// A glyph's point (u, v) is drawn at (x + xx u + xy v, y + yy v).
struct ShapedText {
    std::vector<PlacedGlyph> glyphs;
    std::vector<TextRule> rules;
    double xx = 1, xy = 0, yy = 1;
    double advanceX = 0, advanceY = 0; // where a following text would start
    GlyphBox ink;                      // of everything drawn

    // One glyph alone at the origin, enlarged.
    static ShapedText single(const Glyph& glyph, double scale);
};

// A font that is not there and what is drawn instead (empty: nothing is).
struct FontSubstitution {
    std::wstring wanted, used;
};

// Turns texts into glyphs and keeps faces and glyphs. Safe to use from several threads.
//
// Sizes: a TrueType face is scaled so that its capital H is one text height tall, a stroke font so that its
// capitals are. Chinese characters in a stroke style come from a big font; without one they are outlines
// scaled so that they stand on the base line and are one text height tall.
class FontEngine {
public:
    static FontEngine& instance();

    FontEngine();
    ~FontEngine();
    FontEngine(const FontEngine&) = delete;
    FontEngine& operator=(const FontEngine&) = delete;

    // raw: control codes are drawn as characters. Numbers that are not finite, or a height that is not
    // positive, give a text without glyphs.
    ShapedText shape(std::wstring_view text, const TextFormat& format, bool raw = false);

    // Upper right corner of the text's box as AcGiTextStyle::extents tells it: the width is positive whatever
    // the text's mirroring; with penups trailing blanks count.
    struct Extents {
        double width = 0, height = 0;
    };
    Extents extents(std::wstring_view text, const TextFormat& format, bool raw = false, bool penups = false);

    // The box of what shape() draws of the text unmirrored, without the glyphs.
    GlyphBox inkBox(std::wstring_view text, const TextFormat& format, bool raw = false);

    // Whether the font is there itself and not a substitute.
    bool isAvailable(const FontSpec& font);

    // Distance from the base line up to the ink of the tallest, and down to the lowest, usual character.
    struct Metrics {
        double ascent = 1, descent = 0.3; // text heights
    };
    Metrics metrics(const FontSpec& font);

    // A shape of a shape file, in the file's units; null when there is none. It lives as long as the process.
    const Glyph* shapeGlyph(std::wstring_view file, int number);

    // What had to be substituted since the last call: every name once as long as the process lives.
    std::vector<FontSubstitution> takeSubstitutions();

    // Folders in which font files (.shx, .ttf, .ttc, .otf) are looked for before the system's.
    void setSearchFolders(std::vector<std::filesystem::path> folders);
    std::vector<std::filesystem::path> searchFolders();

private:
    ShapedText measured(std::wstring_view text, const TextFormat& format, bool raw);

    struct Implementation;
    std::unique_ptr<Implementation> mImplementation;
};

// Text with its control codes read: %%d %%p %%c %%% %%nnn \U+XXXX \M+nXXXX, and %%u %%o %%k, which switch
// underscore, overscore and strike-through on and off.
struct DecodedCharacter {
    char32_t character;
    bool underlined, overlined, struckThrough;
};
std::vector<DecodedCharacter> decodeControlCodes(std::wstring_view text, bool raw);

} // namespace host
