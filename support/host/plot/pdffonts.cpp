#include "host/plot/pdffonts.h"

#include "host/plot/textbuffer.h"

#include <cmath>
#include <cstdio>
#include <string>

namespace host {

namespace {

std::int64_t units(double heights) {
    return std::llround(heights * PdfFonts::unitsPerHeight);
}

// Glyph outlines as path operators.
class OutlineWriter {
public:
    explicit OutlineWriter(TextBuffer& text) : mText(text) {}

    void write(const Glyph& glyph) {
        const GlyphPoint* next = glyph.points().data();
        GlyphPoint current{};
        for (const Glyph::Verb verb : glyph.verbs()) {
            switch (verb) {
            case Glyph::Verb::Move:
                point(current = *next++);
                mText << "m\n";
                break;
            case Glyph::Verb::Line:
                point(current = *next++);
                mText << "l\n";
                break;
            case Glyph::Verb::Quadratic: {
                const GlyphPoint control = next[0], end = next[1];
                point(between(current, control));
                point(between(end, control));
                point(current = end);
                mText << "c\n";
                next += 2;
                break;
            }
            case Glyph::Verb::Cubic:
                point(next[0]);
                point(next[1]);
                point(current = next[2]);
                mText << "c\n";
                next += 3;
                break;
            }
        }
    }

private:
    static GlyphPoint between(GlyphPoint end, GlyphPoint control) // the cubic curve's control point
    {
        return {end.x + (control.x - end.x) * 2 / 3, end.y + (control.y - end.y) * 2 / 3};
    }
    void point(GlyphPoint point) { mText << units(point.x) << ' ' << units(point.y) << ' '; }

    TextBuffer& mText;
};

std::string toUnicodeMap(const std::vector<const Glyph*>& glyphs) {
    std::string text = "/CIDInit /ProcSet findresource begin\n12 dict begin\nbegincmap\n/CMapName /G def\n"
                       "/CMapType 2 def\n1 begincodespacerange\n<00> <FF>\nendcodespacerange\n";
    constexpr std::size_t mostRows = 100; // a block may have
    for (std::size_t i = 0; i < glyphs.size(); ++i) {
        if (i % mostRows == 0)
            text += std::to_string(std::min(mostRows, glyphs.size() - i)) + " beginbfchar\n";
        char row[32];
        const char32_t character = glyphs[i]->character;
        if (character < 0x10000)
            std::snprintf(row, sizeof row, "<%02X> <%04X>\n", static_cast<unsigned>(i + 1),
                          static_cast<unsigned>(character));
        else
            std::snprintf(row, sizeof row, "<%02X> <%04X%04X>\n", static_cast<unsigned>(i + 1),
                          static_cast<unsigned>(0xD800 + ((character - 0x10000) >> 10)),
                          static_cast<unsigned>(0xDC00 + (character & 0x3FF)));
        text += row;
        if (i % mostRows == mostRows - 1 || i + 1 == glyphs.size())
            text += "endbfchar\n";
    }
    return text + "endcmap\nend\nend\n";
}

} // namespace

PdfFonts::Code PdfFonts::codeOf(const Glyph& glyph) {
    constexpr std::size_t mostGlyphs = 255;
    const auto [entry, isNew] = mCodes.try_emplace(&glyph);
    if (isNew) {
        if (mFonts.empty() || mFonts.back().size() == mostGlyphs)
            mFonts.emplace_back();
        mFonts.back().push_back(&glyph);
        entry->second = {mFonts.size() - 1, static_cast<unsigned char>(mFonts.back().size())};
    }
    return entry->second;
}

int PdfFonts::writeGlyph(const Glyph& glyph, PdfFile& file) {
    const GlyphBox& box = glyph.box();
    TextBuffer text;
    text << units(glyph.advance) << " 0 ";
    for (const double side : {box.left, box.bottom, box.right, box.top})
        text << units(side) << ' ';
    text << "d1\n";
    OutlineWriter(text).write(glyph);
    text << "f\n";
    return file.writeStream(text.take());
}

int PdfFonts::writeFont(const Font& font, PdfFile& file) {
    TextBuffer procedures, names, widths;
    GlyphBox box;
    for (std::size_t i = 0; i < font.size(); ++i) {
        const int procedure = writeGlyph(*font[i], file);
        procedures << "/g" << i + 1 << ' ' << procedure << " 0 R";
        names << "/g" << i + 1;
        widths << units(font[i]->advance) << ' ';
        box.add(font[i]->box());
    }
    const int unicode = file.writeStream(toUnicodeMap(font));
    TextBuffer text;
    text << "<</Type/Font/Subtype/Type3/FontBBox[" << units(box.left) << ' ' << units(box.bottom) << ' '
         << units(box.right) << ' ' << units(box.top) << "]/FontMatrix[" << 1 / unitsPerHeight << " 0 0 "
         << 1 / unitsPerHeight << " 0 0]/FirstChar 1/LastChar " << font.size() << "/Widths[" << widths.text()
         << "]/Encoding<</Type/Encoding/Differences[1" << names.text() << "]>>/CharProcs<<"
         << procedures.text() << ">>/Resources<<>>/ToUnicode " << unicode << " 0 R>>";
    const int number = file.reserve();
    file.writeObject(number, text.text());
    return number;
}

std::string PdfFonts::write(PdfFile& file) const {
    TextBuffer entries;
    entries << "<<";
    for (std::size_t i = 0; i < mFonts.size(); ++i) {
        const int font = writeFont(mFonts[i], file);
        entries << "/F" << i << ' ' << font << " 0 R";
    }
    entries << ">>";
    return entries.take();
}

} // namespace host
