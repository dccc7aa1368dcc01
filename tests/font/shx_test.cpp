// Compiled shape files: fonts, Unicode fonts, big fonts and plain shapes, built here byte by byte.
#include "tests/temporaryfolder.h"

#include "host/font/font.h"
#include "host/font/shxfile.h"

#include <cmath>
#include <gtest/gtest.h>
#include <map>
#include <random>

namespace host {
namespace {

using Entries = std::map<int, std::string>; // drawings by code, without name

std::string word(int value) {
    return {static_cast<char>(value & 0xFF), static_cast<char>(value >> 8 & 0xFF)};
}

// A drawing from numbers, ended by the zero that ends each.
std::string bytes(std::initializer_list<int> values) {
    std::string result;
    for (const int value : values)
        result += static_cast<char>(value);
    return result + '\0';
}

std::string named(const std::string& drawing) {
    return std::string("NAME") + '\0' + drawing;
}

std::string shapeFile(const Entries& entries) {
    std::string index, definitions;
    for (const auto& [code, drawing] : entries) {
        index += word(code) + word(static_cast<int>(named(drawing).size()));
        definitions += named(drawing);
    }
    return "AutoCAD-86 shapes V1.0\r\n\x1A" + word(0) + word(255) + word(static_cast<int>(entries.size())) +
           index + definitions + "EOF";
}

std::string unicodeFont(const std::string& info, const Entries& entries) {
    std::string file = "AutoCAD-86 unifont 1.0\r\n\x1A" + word(static_cast<int>(entries.size()) + 1) +
                       word(static_cast<int>(named(info).size())) + named(info);
    for (const auto& [code, drawing] : entries)
        file += word(code) + word(static_cast<int>(drawing.size()) + 1) + '\0' + drawing;
    return file;
}

std::string bigFont(const Entries& entries) {
    std::string file = "AutoCAD-86 bigfont 1.0\r\n\x1A" + word(8) + word(static_cast<int>(entries.size())) +
                       word(1) + word(0x81) + word(0xFE);
    std::size_t offset = file.size() + 8 * entries.size();
    std::string definitions;
    for (const auto& [code, drawing] : entries) {
        const std::string definition = named(drawing);
        file += word(code) + word(static_cast<int>(definition.size())) +
                word(static_cast<int>(offset + definitions.size())) + word(0);
        definitions += definition;
    }
    return file + definitions;
}

const std::string fontInfo = bytes({10, 3, 0}); // ten units high, three below

// Letters of a font ten units high.
const Entries letters = {
    {'I', bytes({0xA4, 2, 8, 4, -10})},                       // a stroke of length 10 up, then to the next
    {'L', bytes({2, 8, 0, 10, 1, 0xAC, 0x60, 2, 0x20})},      // down 10, right 6
    {'C', bytes({2, 8, 10, 5, 1, 10, 5, 0x00, 2, 8, 4, -5})}, // a whole circle of radius 5
    {'D', bytes({12, 0, 10, 127, 2, 8, 10, -10})},            // half a circle by its bulge
    {'S', bytes({3, 2, 0x84, 4, 2, 0x40})},                   // divided and multiplied units
    {'P', bytes({5, 9, 0, 8, 4, 0, 0, 0, 6, 0x40, 2, 0x20})}, // pushed and popped
    {'V', bytes({14, 8, 50, 50, 0x44})},                      // vertical text only
    {127, bytes({0x14, 2, 0x40})},                            // the degree sign of old fonts
};

class ShapeFiles : public testing::Test {
protected:
    void TearDown() override { FontEngine::instance().setSearchFolders({}); }
    void write(const char* name, const std::string& content) {
        writeFile(mFolder.path() / name, content);
        FontEngine::instance().setSearchFolders({mFolder.path()});
    }
    static ShapedText shape(std::wstring_view text, const wchar_t* file, const wchar_t* bigFontFile = L"") {
        TextFormat format;
        format.font.file = file;
        format.font.bigFontFile = bigFontFile;
        return FontEngine::instance().shape(text, format);
    }

private:
    TemporaryFolder mFolder;
};

Entries withInfo() {
    Entries entries = letters;
    entries[0] = fontInfo;
    return entries;
}

TEST_F(ShapeFiles, FontsDrawByTheirCodes) {
    write("House.SHX", shapeFile(withInfo()));
    const struct {
        wchar_t letter;
        double left, bottom, right, top, advance;
    } cases[] = {
        {L'I', 0, 0, 0, 1, 0.4}, {L'L', 0, 0, 0.6, 1, 0.8},    {L'C', 0, 0, 1, 1, 1.4},
        {L'D', 0, 0, 0.5, 1, 1}, {L'S', 0, 0, 0.4, 0.4, 0.4},  {L'P', 0, 0, 0.4, 0.8, 0.6},
        {L'V', 0, 0, 0, 0.4, 0}, {L'\xB0', 0, 0, 0, 0.1, 0.4},
    };
    for (const auto& row : cases) {
        const ShapedText text = shape(std::wstring(1, row.letter), L"house");
        EXPECT_NEAR(text.ink.left, row.left, 0.02) << static_cast<char>(row.letter);
        EXPECT_NEAR(text.ink.bottom, row.bottom, 0.02) << static_cast<char>(row.letter);
        EXPECT_NEAR(text.ink.right, row.right, 0.02) << static_cast<char>(row.letter);
        EXPECT_NEAR(text.ink.top, row.top, 0.02) << static_cast<char>(row.letter);
        EXPECT_NEAR(text.advanceX, row.advance, 0.02) << static_cast<char>(row.letter);
    }
    EXPECT_NEAR(FontEngine::instance().metrics({L"", L"house.shx", L"", false, false}).descent, 0.3, 1e-9);
}

TEST_F(ShapeFiles, DirectionsAreTheSixteenOfTheCompass) {
    Entries entries{{0, fontInfo}};
    for (int direction = 0; direction < 16; ++direction)
        entries['A' + direction] = bytes({0x10 | direction});
    write("compass.shx", shapeFile(entries));
    double lastAngle = -1;
    for (int direction = 0; direction < 16; ++direction) {
        const ShapedText text = shape(std::wstring(1, static_cast<wchar_t>(L'A' + direction)), L"compass");
        const GlyphPoint end = text.glyphs[0].glyph->polylinePoints().back();
        double angle = std::atan2(end.y, end.x);
        angle += angle < -1e-6 ? 2 * std::acos(-1.0) : 0;
        EXPECT_GT(angle, lastAngle) << direction;
        EXPECT_NEAR(std::max(std::abs(end.x), std::abs(end.y)), 0.1, 1e-6);
        lastAngle = angle;
    }
}

TEST_F(ShapeFiles, ArcsOfFractionsOfOctants) {
    // From 55 to 95 degrees with radius 3, counterclockwise: the field's own example.
    write("arc.shx", shapeFile({{0, fontInfo}, {'A', bytes({11, 56, 28, 0, 30, 0x12})}}));
    const auto points = shape(L"A", L"arc").glyphs[0].glyph->polylinePoints();
    const double degree = std::acos(-1.0) / 180;
    EXPECT_NEAR(points.back().x - points.front().x, 3 * (std::cos(95 * degree) - std::cos(55 * degree)),
                0.02);
    EXPECT_NEAR(points.back().y - points.front().y, 3 * (std::sin(95 * degree) - std::sin(55 * degree)),
                0.02);
}

// The sign is the top bit of the byte; compilers that store a complement instead are understood as well.
TEST_F(ShapeFiles, OctantArcsTurnBothWays) {
    const struct {
        int byte;
        double x, y; // of the end, in radii from the start
    } cases[] = {
        {0x02, -1, 1},                        // from 0 a quarter counterclockwise
        {0x82, -1, -1},                       // clockwise
        {0xC2, 1, 1},                         // from 180 degrees a quarter clockwise
        {0x100 - 0x42, 1, 1}, {0x22, -1, -1}, // from 90 degrees
        {0x04, -2, 0},        {0x60, 0, 0},   // all eight
    };
    for (const auto& row : cases) {
        write("octants.shx", shapeFile({{0, fontInfo}, {'A', bytes({10, 10, row.byte})}}));
        const auto points = shape(L"A", L"octants").glyphs[0].glyph->polylinePoints();
        EXPECT_NEAR(points.back().x - points.front().x, row.x, 1e-5) << row.byte;
        EXPECT_NEAR(points.back().y - points.front().y, row.y, 1e-5) << row.byte;
    }
}

TEST_F(ShapeFiles, DualFontsHaveTheirOwnVerticalText) {
    // Vertical: from the top centre to the lower left corner, the stroke, then below the character.
    const Entries glyphs = {{0, bytes({10, 3, 2})},
                            {'I', bytes({2, 14, 8, -2, -10, 1, 0xA4, 2, 8, 4, -10, 14, 8, -2, -4})}};
    write("dual.shx", shapeFile(glyphs));
    TextFormat format;
    format.font.file = L"dual";
    format.height = 10;
    const ShapedText across = FontEngine::instance().shape(L"II", format);
    EXPECT_NEAR(across.glyphs[1].x, 4, 1e-5);
    EXPECT_NEAR(across.ink.bottom, 0, 1e-5);
    format.vertical = true;
    const ShapedText down = FontEngine::instance().shape(L"II", format);
    EXPECT_NEAR(down.ink.left, -2, 1e-5);
    EXPECT_NEAR(down.ink.top, 0, 1e-5);
    EXPECT_NEAR(down.glyphs[1].y, -14, 1e-5);
    EXPECT_NEAR(down.ink.bottom, -24, 1e-5);
    EXPECT_NEAR(down.advanceY, -28, 1e-5);
    EXPECT_NEAR(down.advanceX, 0, 1e-9);
}

TEST_F(ShapeFiles, OldFontsHaveTheirSignsInEitherPlace) {
    for (const int place : {127, 256}) {
        write("signs.shx", shapeFile({{0, fontInfo},
                                      {place, bytes({0x14})},
                                      {place + 1, bytes({0x24})},
                                      {place + 2, bytes({0x34})}}));
        const std::pair<const wchar_t*, double> cases[] = {{L"%%d", 0.1}, {L"%%p", 0.2}, {L"%%c", 0.3}};
        for (const auto& [text, top] : cases)
            EXPECT_NEAR(shape(text, L"signs").ink.top, top, 1e-6) << place;
    }
}

TEST_F(ShapeFiles, UnicodeFontsCallTheirPartsByTwoBytes) {
    write("uni.shx",
          unicodeFont(bytes({10, 3, 0, 0, 0}),
                      {{0x4E00, bytes({0xA0})}, {0x4E8C, bytes({7, 0x4E, 0x00, 2, 8, -10, 5, 1, 0xA0})}}));
    const ShapedText text = shape(L"二", L"uni.shx");
    EXPECT_FALSE(text.glyphs[0].glyph->filled);
    EXPECT_EQ(text.glyphs[0].glyph->contourEnds().size(), 2u);
    EXPECT_NEAR(text.ink.top, 0.5, 1e-6);
    EXPECT_NEAR(text.advanceX, 1, 1e-6);
}

TEST_F(ShapeFiles, BigFontsAreAskedByTheirCodePage) {
    write("latin.shx", shapeFile(withInfo()));
    // A part drawn at half its size in the upper right of the character.
    write("gbhouse.shx", bigFont({{0, bytes({10, 0, 2, 10, 0})},
                                  {0xD6D0, bytes({7, 0, 0x01, 0x20, 5, 5, 5, 5, 2, 8, 12, 0})},
                                  {0x0120, bytes({0xA0, 0xA4})}}));
    const ShapedText text = shape(L"I中I", L"latin", L"gbhouse");
    ASSERT_EQ(text.glyphs.size(), 3u);
    const Glyph& middle = *text.glyphs[1].glyph;
    EXPECT_FALSE(middle.filled);
    EXPECT_NEAR(middle.box().left, 0.5, 1e-6);
    EXPECT_NEAR(middle.box().bottom, 0.5, 1e-6);
    EXPECT_NEAR(middle.box().right, 1, 1e-6);
    EXPECT_NEAR(middle.box().top, 1, 1e-6);
    EXPECT_NEAR(middle.advance, 1.2, 1e-6);
    EXPECT_EQ(text.glyphs[0].glyph, text.glyphs[2].glyph);

    // The older kind has one size for a part; the double byte may be stored the other way round.
    write("gbold.shx", bigFont({{0, bytes({10, 2, 0})},
                                {0xD0D6, bytes({7, 0, 0x01, 0x20, 5, 5, 5, 2, 8, 12, 0})},
                                {0x0120, bytes({0xA0, 0xA4})}}));
    const Glyph& old = *shape(L"中", L"latin", L"gbold").glyphs.at(0).glyph;
    EXPECT_NEAR(old.box().left, 0.5, 1e-6);
    EXPECT_NEAR(old.box().top, 1, 1e-6);
    EXPECT_NEAR(old.advance, 1.2, 1e-6);
}

TEST_F(ShapeFiles, ShapesKeepTheirUnits) {
    write("symbols.shx", shapeFile({{130, bytes({0x54})}}));
    const Glyph* shape = FontEngine::instance().shapeGlyph(L"symbols.shx", 130);
    ASSERT_NE(shape, nullptr);
    EXPECT_NEAR(shape->box().top, 5, 1e-6);
    EXPECT_EQ(FontEngine::instance().shapeGlyph(L"symbols.shx", 131), nullptr);
    EXPECT_EQ(FontEngine::instance().shapeGlyph(L"nothing.shx", 130), nullptr);
    for (int number = 130; number <= 134; ++number) // of the standard linetypes
        EXPECT_NE(FontEngine::instance().shapeGlyph(L"LTYPESHP.shx", number), nullptr);
}

TEST_F(ShapeFiles, DamagedOnesEndQuietly) {
    Entries entries = withInfo();
    entries['R'] = bytes({7, 'R', 7, 'R'});                               // calls itself
    entries['M'] = bytes({4, 255, 4, 255, 4, 255, 4, 255, 4, 255, 0xF0}); // grows without bound
    entries['N'] = std::string(3000, '\x0E');                             // skips that skip
    entries['B'] = std::string(3000, '\x05').append("\x06\x06\x09");
    const std::string good = shapeFile(entries);
    std::mt19937 random(3);
    const auto useAll = [&](const std::string& content) {
        write("damaged.shx", content);
        for (wchar_t letter = 0x20; letter < 0x7F; ++letter) {
            const ShapedText text = shape(std::wstring(1, letter), L"damaged.shx");
            EXPECT_TRUE(std::isfinite(text.advanceX));
        }
    };
    useAll(good);
    for (std::size_t length = 0; length < good.size(); length += 97)
        useAll(good.substr(0, length));
    for (int round = 0; round < 100; ++round) {
        std::string damaged = good;
        for (int i = 0; i < 8; ++i)
            damaged[25 + random() % (damaged.size() - 25)] = static_cast<char>(random());
        useAll(damaged);
    }
}

} // namespace
} // namespace host
