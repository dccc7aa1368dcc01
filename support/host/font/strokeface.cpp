#include "host/font/strokeface.h"

#include "host/font/plainstrokes.h"
#include "host/rx/text.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

namespace host {

namespace {

// Common to all stroke faces: composes accented letters, superscripts, and slants.
class StrokeFace : public FontFace {
public:
    // slant: of the letters to the right; width: factor of letters and advances.
    StrokeFace(double slant, double width) : mSlant(slant), mWidth(width) {}
    bool isStroke() const override { return true; }

protected:
    std::unique_ptr<Glyph> makeGlyph(char32_t character) final {
        std::unique_ptr<Glyph> glyph = assemble(character);
        if (glyph && (mSlant != 0 || mWidth != 1))
            glyph = reshaped(*glyph);
        return glyph;
    }

    // The upright drawing of a character that is not composed of others; null when there is none.
    virtual std::unique_ptr<Glyph> drawing(char32_t character) = 0;

private:
    std::unique_ptr<Glyph> assemble(char32_t character) {
        if (auto glyph = drawing(character))
            return glyph;
        if (const Composition parts = decompose(character); parts.base != 0)
            return compose(parts);
        if (character == 0xB2 || character == 0xB3 || character == 0xB9)
            return superscript(character == 0xB9 ? U'1' : U'0' + (character - 0xB0));
        return nullptr;
    }

    std::unique_ptr<Glyph> compose(Composition parts) {
        const std::unique_ptr<Glyph> base = drawing(parts.base), accent = accentGlyph(parts.accent);
        if (!base || !accent)
            return nullptr;
        base->finish();
        const bool below = parts.accent == U'\xB8' || parts.accent == U',';
        const double centre = (base->box().left + base->box().right) / 2;
        const bool dotted = parts.base == U'i' && !below;
        auto glyph = std::make_unique<Glyph>();
        glyph->advance = base->advance;
        if (dotted)
            appendWithoutDot(*base, *glyph);
        else
            glyph->append(*base, 1, 0, 0);
        const double top = dotted ? 2.0 / 3 : base->box().top;
        glyph->append(*accent, 1, centre, below ? 0 : top + 0.08);
        return glyph;
    }

    // Leaves out the contours that lie wholly above x-height.
    static void appendWithoutDot(const Glyph& base, Glyph& glyph) {
        std::size_t start = 0;
        for (const std::size_t end : base.contourEnds()) {
            const auto contour = base.polylinePoints().subspan(start, end - start);
            if (std::ranges::any_of(contour, [](const GlyphPoint& point) { return point.y < 0.6f; })) {
                glyph.moveTo(contour[0]);
                for (const GlyphPoint& point : contour.subspan(1))
                    glyph.lineTo(point);
            }
            start = end;
        }
    }

    std::unique_ptr<Glyph> superscript(char32_t digit) {
        const std::unique_ptr<Glyph> full = drawing(digit);
        if (!full)
            return nullptr;
        auto glyph = std::make_unique<Glyph>();
        glyph->append(*full, 0.55, 0, 0.5);
        glyph->advance = full->advance * 0.55;
        return glyph;
    }

    std::unique_ptr<Glyph> reshaped(const Glyph& plain) const {
        auto glyph = std::make_unique<Glyph>();
        glyph->advance = plain.advance * mWidth;
        const auto slant = static_cast<float>(mSlant), width = static_cast<float>(mWidth);
        const auto points = plain.points();
        std::size_t next = 0;
        for (const Glyph::Verb verb : plain.verbs()) { // strokes have only straight pieces
            const GlyphPoint point{width * points[next].x + slant * points[next].y, points[next].y};
            verb == Glyph::Verb::Move ? glyph->moveTo(point) : glyph->lineTo(point);
            ++next;
        }
        return glyph;
    }

    double mSlant, mWidth;
};

class PlainFace final : public StrokeFace {
public:
    explicit PlainFace(bool monospaced, double slant = 0, double width = 1)
        : StrokeFace(slant, width), mMonospaced(monospaced) {}

private:
    std::unique_ptr<Glyph> drawing(char32_t character) override {
        std::unique_ptr<Glyph> glyph = plainStrokeGlyph(character);
        if (!glyph || !mMonospaced || glyph->advance >= 1)
            return glyph;
        auto centred = std::make_unique<Glyph>();
        centred->append(*glyph, 1, (1 - glyph->advance) / 2, 0);
        centred->advance = 1;
        return centred;
    }

    bool mMonospaced;
};

// The Hershey collection's .jhf text format: for each character its number (5 columns), the count of pairs (3
// columns) and the pairs, each two letters that are offsets from 'R'; the first pair is the left and right
// edge, " R" lifts the pen. y grows downwards. The result has the pairs of the characters from blank on.
class HersheyReader {
public:
    explicit HersheyReader(const std::filesystem::path& path) {
        std::ifstream file(path, std::ios::binary);
        mText.assign(std::istreambuf_iterator<char>(file), {});
    }

    std::vector<std::string> read() {
        std::vector<std::string> records;
        while (mPosition + 8 <= mText.size()) {
            if (isLineEnd(mText[mPosition])) {
                ++mPosition;
                continue;
            }
            const int count = pairCount();
            if (count < 1)
                break;
            mPosition += 8;
            records.push_back(pairs(static_cast<std::size_t>(count) * 2));
        }
        return records;
    }

private:
    static bool isLineEnd(char character) { return character == '\n' || character == '\r'; }

    int pairCount() const {
        std::string_view field = std::string_view(mText).substr(mPosition + 5, 3);
        field.remove_prefix(std::min(field.find_first_not_of(' '), field.size()));
        int value = 0;
        std::from_chars(field.data(), field.data() + field.size(), value);
        return value;
    }

    std::string pairs(std::size_t length) // long records go on over line ends
    {
        std::string result;
        for (; mPosition < mText.size() && result.size() < length; ++mPosition)
            if (!isLineEnd(mText[mPosition]))
                result += mText[mPosition];
        result.resize(length, ' ');
        return result;
    }

    std::string mText;
    std::size_t mPosition = 0;
};

class HersheyFace final : public StrokeFace {
public:
    // Both files lie in folder; the second one has the Greek alphabet in the places of A to X and may be
    // null.
    HersheyFace(const std::filesystem::path& folder, const char* file, const char* greekFile, double slant,
                double width)
        : StrokeFace(slant, width), mRecords(HersheyReader(folder / file).read()) {
        if (greekFile)
            mGreekPath = folder / greekFile;
    }
    bool isEmpty() const { return mRecords.empty(); }

private:
    static constexpr double baseLine = 9, capitalHeight = 21; // the same throughout the collection

    std::unique_ptr<Glyph> drawing(char32_t character) override {
        if (character == 0xA0)
            character = U' ';
        if (character >= U' ' && character < 0x7F)
            return draw(mRecords, character);
        if (const char32_t letter = greekPlace(character); letter != 0 && !mGreekPath.empty()) {
            if (mGreekRecords.empty())
                mGreekRecords = HersheyReader(mGreekPath).read();
            if (auto glyph = draw(mGreekRecords, letter))
                return glyph;
        }
        return ownSign(character);
    }

    // The Latin letter in whose place a Greek one lies; 0 for other characters.
    static char32_t greekPlace(char32_t character) {
        constexpr char32_t alpha = 0x391, rho = 0x3A1, omega = 0x3A9, lowerCase = 0x20;
        if (character == 0x3C2) // final sigma
            character = 0x3C3;
        const bool isLower = character >= alpha + lowerCase && character <= omega + lowerCase;
        const char32_t capital = isLower ? character - lowerCase : character;
        if (capital < alpha || capital > omega || capital == rho + 1)
            return 0;
        return (isLower ? U'a' : U'A') + (capital - alpha) - (capital > rho ? 1 : 0);
    }

    static std::unique_ptr<Glyph> draw(const std::vector<std::string>& records, char32_t character) {
        const std::size_t index = character - U' ';
        if (index >= records.size())
            return nullptr;
        const std::string& pairs = records[index];
        auto glyph = std::make_unique<Glyph>();
        const double left = pairs[0] - 'R', right = pairs[1] - 'R';
        glyph->advance = (right - left) / capitalHeight;
        bool penDown = false;
        for (std::size_t i = 2; i + 1 < pairs.size(); i += 2) {
            if (pairs[i] == ' ') {
                penDown = false;
                continue;
            }
            const GlyphPoint point{static_cast<float>((pairs[i] - 'R' - left) / capitalHeight),
                                   static_cast<float>((baseLine - (pairs[i + 1] - 'R')) / capitalHeight)};
            penDown ? glyph->lineTo(point) : glyph->moveTo(point);
            penDown = true;
        }
        return glyph;
    }

    // Signs the collection lacks come from the plain font, with the side bearing of a Hershey digit.
    static std::unique_ptr<Glyph> ownSign(char32_t character) {
        const std::unique_ptr<Glyph> plain = plainStrokeGlyph(character);
        if (!plain)
            return nullptr;
        constexpr double sideBearing = 1.0 / 6;
        auto glyph = std::make_unique<Glyph>();
        glyph->append(*plain, 1, sideBearing, 0);
        glyph->advance = plain->advance;
        return glyph;
    }

    std::vector<std::string> mRecords, mGreekRecords;
    std::filesystem::path mGreekPath;
};

constexpr double isoSlant = 0.2679; // tan 15 degrees
// Of lettering after ISO 3098 (type B), whose figures are half as wide as tall and stand 0.7 heights apart.
constexpr double isoWidth = 0.74;

struct StandardFont {
    std::wstring_view name;
    const char* hersheyFile = nullptr; // null: the plain font
    const char* greekFile = nullptr;
    double slant = 0;
    double width = 1;
    bool monospaced = false;
    bool isBigFont = false;
};

constexpr StandardFont standardFonts[] = {
    {L"txt"},
    {L"monotxt", nullptr, nullptr, 0, 1, true},
    {L"simplex", "rowmans.jhf", "greeks.jhf"},
    {L"romans", "rowmans.jhf", "greeks.jhf"},
    {L"romand", "rowmand.jhf", "greeks.jhf"},
    {L"romanc", "timesr.jhf", "greekc.jhf"},
    {L"romant", "rowmant.jhf", "greekc.jhf"},
    {L"complex", "timesr.jhf", "greekc.jhf"},
    {L"italic", "timesi.jhf", "greekc.jhf"},
    {L"italicc", "timesi.jhf", "greekc.jhf"},
    {L"italict", "timesib.jhf", "greekc.jhf"},
    {L"scripts", "scripts.jhf"},
    {L"scriptc", "scriptc.jhf"},
    {L"greeks", "greeks.jhf", "greeks.jhf"},
    {L"greekc", "greekc.jhf", "greekc.jhf"},
    {L"cyrillic", "cyrillic.jhf"},
    {L"cyriltlc", "cyrilc_1.jhf"},
    {L"gothice", "gothgbt.jhf"},
    {L"gothicg", "gothgrt.jhf"},
    {L"gothici", "gothitt.jhf"},
    {L"syastro", "astrology.jhf"},
    {L"symap", "markers.jhf"},
    {L"symath", "mathupp.jhf"},
    {L"symeteo", "meteorology.jhf"},
    {L"symusic", "music.jhf"},
    {L"isocp", "rowmans.jhf", "greeks.jhf", 0, isoWidth},
    {L"isocp2", "rowmans.jhf", "greeks.jhf", 0, isoWidth},
    {L"isocp3", "rowmans.jhf", "greeks.jhf", 0, isoWidth},
    {L"isoct", "rowmans.jhf", "greeks.jhf", 0, isoWidth},
    {L"isoct2", "rowmans.jhf", "greeks.jhf", 0, isoWidth},
    {L"isoct3", "rowmans.jhf", "greeks.jhf", 0, isoWidth},
    {L"gbenor", "rowmans.jhf", "greeks.jhf", 0, isoWidth},
    {L"gbeitc", "rowmans.jhf", "greeks.jhf", isoSlant, isoWidth},
    // Big fonts named as a style's own font: their Latin letters are plain.
    {L"gbcbig", "rowmans.jhf", "greeks.jhf", 0, isoWidth, false, true},
    {L"bigfont", nullptr, nullptr, 0, 1, false, true},
    {L"chineset", nullptr, nullptr, 0, 1, false, true},
    {L"extfont", nullptr, nullptr, 0, 1, false, true},
    {L"extfont2", nullptr, nullptr, 0, 1, false, true},
    {L"whgtxt", nullptr, nullptr, 0, 1, false, true},
    {L"whgdtxt", nullptr, nullptr, 0, 1, false, true},
    {L"whtgtxt", nullptr, nullptr, 0, 1, false, true},
    {L"whtmtxt", nullptr, nullptr, 0, 1, false, true},
};

const StandardFont* standardFont(std::wstring_view name) {
    std::wstring stem = fold(name);
    if (stem.ends_with(L".shx"))
        stem.resize(stem.size() - 4);
    const auto* const font = std::ranges::find(standardFonts, stem, &StandardFont::name);
    return font == std::end(standardFonts) ? nullptr : font;
}

} // namespace

bool isStandardBigFont(std::wstring_view name) {
    const StandardFont* const font = standardFont(name);
    return font && font->isBigFont;
}

std::unique_ptr<FontFace> makePlainStrokeFace() {
    return std::make_unique<PlainFace>(false);
}

std::unique_ptr<FontFace> makeStandardStrokeFace(std::wstring_view name) {
    const StandardFont* const font = standardFont(name);
    if (!font)
        return nullptr;
    if (font->hersheyFile) {
        auto face = std::make_unique<HersheyFace>("/usr/share/hershey-fonts", font->hersheyFile,
                                                  font->greekFile, font->slant, font->width);
        if (!face->isEmpty())
            return face;
    }
    return std::make_unique<PlainFace>(font->monospaced, font->slant, font->width);
}

} // namespace host
