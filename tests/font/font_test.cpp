// Fonts: control codes, layout, substitution and what damaged or odd input does.
#include "tests/temporaryfolder.h"

#include "host/font/catalog.h"
#include "host/font/font.h"
#include "host/font/plainstrokes.h"

#include <cmath>
#include <filesystem>
#include <gtest/gtest.h>
#include <limits>

namespace host {
namespace {

std::wstring characters(std::wstring_view text, bool raw = false) {
    std::wstring result;
    for (const DecodedCharacter& character : decodeControlCodes(text, raw))
        result += static_cast<wchar_t>(character.character);
    return result;
}

TextFormat strokeFormat(double height = 1) {
    TextFormat format;
    format.font.file = L"txt.shx";
    format.height = height;
    return format;
}

ShapedText shape(std::wstring_view text, const TextFormat& format) {
    return FontEngine::instance().shape(text, format);
}

TEST(ControlCodes, AreReadAsDrawingTextsUseThem) {
    const struct {
        const wchar_t* text;
        const wchar_t* drawn;
    } cases[] = {
        {L"45%%d", L"45\xB0"},
        {L"%%P0.5", L"\xB1"
                    L"0.5"},
        {L"%%c20", L"\x2205"
                   L"20"},
        {L"100%%%", L"100%"},
        {L"%%065%%066", L"AB"},
        {L"%%13", L"13"},
        {L"%%uA%%uB", L"AB"},
        {L"\\U+4E2D\\u+6587", L"\x4E2D\x6587"},
        {L"\\U+4E", L"\\U+4E"},
        {L"\\U+XYZW", L"\\U+XYZW"},
        {L"\\U+D83D\\U+DE00x", L"\x1F600x"},
        {L"\\M+5D6D0\\M+5CEC4", L"中文"}, // by their bytes in page 936
        {L"\\M+1889F", L"\x4E9C"},        // in page 932
        {L"\\M+9D6D0", L"\\M+9D6D0"},
        {L"%%214%%208A", L"中A"}, // the two bytes of one character
        {L"%%130%%176C", L"\x82\xB0"
                         L"C"}, // places in the font
        {L"50%", L"50%"},
        {L"%%", L"%%"},
        {L"%%007A", L"A"},
        {L"", L""},
    };
    for (const auto& [text, drawn] : cases)
        EXPECT_EQ(characters(text), drawn) << "in " << std::string(text, text + std::wcslen(text));
    EXPECT_EQ(characters(L"45%%d", true), L"45%%d");
}

TEST(ControlCodes, SwitchLinesOnAndOff) {
    const auto decoded = decodeControlCodes(L"a%%ub%%oc%%ud%%o%%ke", false);
    ASSERT_EQ(decoded.size(), 5u);
    const auto flags = [&](std::size_t i) {
        return (decoded[i].underlined ? 1 : 0) + (decoded[i].overlined ? 2 : 0) +
               (decoded[i].struckThrough ? 4 : 0);
    };
    EXPECT_EQ(std::vector<int>({flags(0), flags(1), flags(2), flags(3), flags(4)}),
              std::vector<int>({0, 1, 3, 2, 4}));
}

TEST(Layout, CapitalsAreOneTextHeightTallInEveryKindOfFont) {
    TextFormat formats[3] = {strokeFormat(2.5), strokeFormat(2.5), strokeFormat(2.5)};
    formats[1].font.file = L"romans.shx";
    formats[2].font.typeface = L"Arial";
    for (const TextFormat& format : formats) {
        const ShapedText text = shape(L"HEH", format);
        EXPECT_NEAR(text.ink.bottom, 0, 0.02 * 2.5);
        EXPECT_NEAR(text.ink.top, 2.5, 0.02 * 2.5);
        EXPECT_GT(text.advanceX, text.ink.right);
    }
}

TEST(Layout, WidthObliqueAndTrackingChangeOnlyWhatTheyShould) {
    const ShapedText plain = shape(L"HHH", strokeFormat(10));
    TextFormat format = strokeFormat(10);
    format.widthFactor = 0.5;
    EXPECT_NEAR(shape(L"HHH", format).ink.right, plain.ink.right / 2, 1e-6);
    EXPECT_NEAR(shape(L"HHH", format).ink.top, plain.ink.top, 1e-9);
    format = strokeFormat(10);
    format.oblique = std::atan(0.5);
    EXPECT_NEAR(shape(L"HHH", format).ink.right, plain.ink.right + 5, 1e-6);
    EXPECT_NEAR(shape(L"HHH", format).advanceX, plain.advanceX, 1e-9);
    format = strokeFormat(10);
    format.tracking = 2;
    EXPECT_NEAR(shape(L"HHH", format).advanceX, 2 * plain.advanceX, 1e-6);
}

TEST(Layout, MirroringStaysAtTheStartOfTheText) {
    const ShapedText plain = shape(L"Fg", strokeFormat());
    TextFormat format = strokeFormat();
    format.backward = true;
    const ShapedText backward = shape(L"Fg", format);
    EXPECT_NEAR(backward.ink.left, -plain.ink.right, 1e-9);
    EXPECT_NEAR(backward.ink.right, -plain.ink.left, 1e-9);
    format.backward = false;
    format.upsideDown = true;
    const ShapedText upsideDown = shape(L"Fg", format);
    EXPECT_NEAR(upsideDown.ink.bottom, -plain.ink.top, 1e-9);
    EXPECT_NEAR(upsideDown.ink.top, -plain.ink.bottom, 1e-9);
    EXPECT_NEAR(FontEngine::instance().extents(L"Fg", format).width, plain.ink.right, 1e-9);
}

// What is measured is what is drawn, whatever the style.
TEST(Layout, ExtentsAreThoseOfTheGlyphs) {
    FontEngine& engine = FontEngine::instance();
    for (const wchar_t* file : {L"txt", L"gbeitc.shx", L"romans", L"arial.ttf"})
        for (const wchar_t* text : {L"A", L"N12 gy", L"%%uX%%u", L"线路No.3", L"45%%d"})
            for (const double oblique : {0.0, 0.26, -0.3})
                for (const double width : {1.0, 0.7}) {
                    TextFormat format = strokeFormat(3.5);
                    format.font.file = file;
                    format.oblique = oblique;
                    format.widthFactor = width;
                    const GlyphBox ink = shape(text, format).ink;
                    const auto measured = engine.extents(text, format);
                    EXPECT_NEAR(measured.width, std::max(ink.right, -ink.left), 1e-12);
                    EXPECT_NEAR(measured.height, ink.top, 1e-12);
                    format.backward = format.upsideDown = true;
                    EXPECT_NEAR(engine.extents(text, format).width, measured.width, 1e-12);
                    EXPECT_NEAR(engine.extents(text, format).height, measured.height, 1e-12);
                }
}

TEST(Layout, VerticalTextGoesDown) {
    TextFormat format = strokeFormat(2);
    format.vertical = true;
    const ShapedText text = shape(L"ABC", format);
    ASSERT_EQ(text.glyphs.size(), 3u);
    EXPECT_GT(text.glyphs[0].y, text.glyphs[1].y);
    EXPECT_LE(text.ink.top, 1e-9);
    EXPECT_LT(text.advanceY, -6 + 1e-9);
    EXPECT_NEAR(text.ink.left, -text.ink.right, 0.2 * 2);
}

TEST(Layout, TurnedFacesLayIdeographsOnTheirSides) {
    TextFormat format;
    format.font.typeface = L"Noto Sans CJK SC";
    if (!FontEngine::instance().isAvailable(format.font))
        GTEST_SKIP() << "no Chinese face here";
    const ShapedText upright = shape(L"一", format), latin = shape(L"Ag", format);
    format.font.typeface = L"@Noto Sans CJK SC";
    EXPECT_TRUE(FontEngine::instance().isAvailable(format.font));
    const ShapedText turned = shape(L"一", format);
    const auto width = [](const GlyphBox& box) { return box.right - box.left; };
    const auto height = [](const GlyphBox& box) { return box.top - box.bottom; };
    EXPECT_NEAR(width(turned.ink), height(upright.ink), 1e-6);
    EXPECT_NEAR(height(turned.ink), width(upright.ink), 1e-6);
    EXPECT_NEAR(turned.advanceX, upright.advanceX, 1e-6) << "the em box is a square";
    EXPECT_GE(turned.ink.left, 0);
    EXPECT_LE(turned.ink.right, turned.advanceX);
    EXPECT_NEAR(shape(L"Ag", format).ink.right, latin.ink.right, 1e-9);
}

TEST(Layout, RulesSpanTheirCharacters) {
    const ShapedText text = shape(L"AA%%uAA%%uAA%%oA", strokeFormat());
    ASSERT_EQ(text.rules.size(), 2u);
    const double step = text.advanceX / 7;
    EXPECT_NEAR(text.rules[0].startX, 2 * step, 1e-6);
    EXPECT_NEAR(text.rules[0].endX, 4 * step, 1e-6);
    EXPECT_LT(text.rules[0].startY, 0);
    EXPECT_NEAR(text.rules[1].endX, 7 * step, 1e-6);
    EXPECT_GT(text.rules[1].startY, 1);
}

TEST(Layout, TrailingBlanksCountOnlyWithPenups) {
    FontEngine& engine = FontEngine::instance();
    const double ink = engine.extents(L"AB", strokeFormat()).width;
    EXPECT_NEAR(engine.extents(L"AB   ", strokeFormat()).width, ink, 1e-9);
    EXPECT_NEAR(engine.extents(L"AB   ", strokeFormat(), false, true).width, 5.0, 1e-6);
    EXPECT_EQ(engine.extents(L"", strokeFormat()).width, 0);
    EXPECT_EQ(engine.extents(L"", strokeFormat()).height, 0);
}

TEST(Layout, NumbersThatAreNoneDrawNothing) {
    const double bad[] = {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity()};
    for (const double value : bad)
        for (double TextFormat::*member :
             {&TextFormat::height, &TextFormat::widthFactor, &TextFormat::oblique, &TextFormat::tracking}) {
            TextFormat format = strokeFormat();
            format.*member = value;
            EXPECT_TRUE(shape(L"ABC", format).glyphs.empty());
        }
    EXPECT_TRUE(shape(L"ABC", strokeFormat(0)).glyphs.empty());
    EXPECT_TRUE(shape(L"ABC", strokeFormat(-1)).glyphs.empty());
    TextFormat format = strokeFormat();
    format.oblique = std::acos(0.0); // would lie flat
    EXPECT_TRUE(std::isfinite(shape(L"ABC", format).ink.right));
}

TEST(Glyphs, EveryCharacterOfTheDrawingSetHasOneInTheStrokeFonts) {
    for (const wchar_t* file :
         {L"txt", L"monotxt.shx", L"simplex", L"C:\\Fonts\\ROMANS.SHX", L"romanc", L"unknown.shx"}) {
        TextFormat format = strokeFormat();
        format.font.file = file;
        for (wchar_t character = L'!'; character < 0x7F; ++character) {
            const ShapedText text = shape(std::wstring(1, character), format);
            ASSERT_EQ(text.glyphs.size(), 1u);
            EXPECT_FALSE(text.ink.empty) << "character " << static_cast<int>(character);
            EXPECT_FALSE(text.glyphs[0].glyph->filled) << "character " << static_cast<int>(character);
            EXPECT_GT(text.advanceX, 0);
        }
    }
}

TEST(Glyphs, AccentsStandOnTheirLetters) {
    for (const wchar_t letter : {L'\xC4', L'\xE9', L'\xF1', L'\xE5', L'\x161'}) {
        const ShapedText accented = shape(std::wstring(1, letter), strokeFormat());
        const Composition parts = decompose(static_cast<char32_t>(letter));
        const ShapedText base = shape(std::wstring(1, static_cast<wchar_t>(parts.base)), strokeFormat());
        EXPECT_FALSE(accented.glyphs[0].glyph->filled);
        EXPECT_GT(accented.ink.top, base.ink.top);
        EXPECT_NEAR(accented.advanceX, base.advanceX, 1e-9);
    }
    EXPECT_LT(shape(L"\xE7", strokeFormat()).ink.bottom, -0.1); // the cedilla hangs
}

TEST(Glyphs, MonospacedTextKeepsOneAdvance) {
    TextFormat format = strokeFormat();
    format.font.file = L"monotxt";
    EXPECT_NEAR(shape(L"iiii", format).advanceX, shape(L"WWWW", format).advanceX, 1e-6);
}

TEST(Glyphs, ChineseInAStrokeStyleIsOneTextHeightTallOnTheBaseLine) {
    if (!findFontWith(U'\x56FD'))
        GTEST_SKIP() << "no Chinese font is installed";
    const ShapedText text = shape(L"\x56FD\x56FE\x7EBF", strokeFormat(5));
    EXPECT_TRUE(text.glyphs[0].glyph->filled);
    EXPECT_NEAR(text.ink.bottom, 0, 0.5);
    EXPECT_NEAR(text.ink.top, 5, 0.5);
    EXPECT_NEAR(text.advanceX, 15 * 1.087, 0.5);
}

TEST(Glyphs, TheSameCharacterIsTheSameObject) {
    const ShapedText first = shape(L"ABA", strokeFormat()), second = shape(L"A", strokeFormat(7));
    EXPECT_EQ(first.glyphs[0].glyph, first.glyphs[2].glyph);
    EXPECT_EQ(first.glyphs[0].glyph, second.glyphs[0].glyph);
    EXPECT_NE(first.glyphs[0].glyph, first.glyphs[1].glyph);
}

// Figures of the engineering fonts are half as wide as tall and stand 0.7 text heights apart; the italic one
// leans by 15 degrees.
TEST(Glyphs, EngineeringFontsAreNarrow) {
    TextFormat format = strokeFormat();
    const auto box = [&](const wchar_t* file, const wchar_t* text) {
        format.font.file = file;
        return shape(text, format);
    };
    for (const wchar_t* file : {L"gbenor", L"isocp.shx"}) {
        EXPECT_NEAR(box(file, L"0").ink.right - box(file, L"0").ink.left, 0.5, 0.03) << file;
        EXPECT_NEAR(box(file, L"0000").advanceX, 2.8, 0.15) << file;
        EXPECT_NEAR(box(file, L"H").ink.top, 1, 0.01) << file;
    }
    const GlyphBox upright = box(L"gbenor", L"l").ink, leaning = box(L"gbeitc", L"l").ink;
    EXPECT_NEAR(leaning.right - upright.right, std::tan(15 * std::acos(-1.0) / 180), 0.02);
}

TEST(Glyphs, PlacesAfterAsciiAreTheSignsOfShapeFonts) {
    const auto glyphOf = [](const wchar_t* text, const wchar_t* typeface) {
        TextFormat format = strokeFormat();
        format.font.typeface = typeface;
        return shape(text, format).glyphs.at(0).glyph;
    };
    for (const wchar_t* typeface : {L"", L"Arial"}) {
        EXPECT_EQ(glyphOf(L"%%127", typeface), glyphOf(L"%%d", typeface));
        EXPECT_EQ(glyphOf(L"%%128", typeface), glyphOf(L"%%p", typeface));
        EXPECT_EQ(glyphOf(L"%%129", typeface), glyphOf(L"%%c", typeface));
        for (const wchar_t* bar : {L"%%130", L"%%131", L"%%132", L"%%133"})
            EXPECT_FALSE(glyphOf(bar, typeface)->filled);
    }
    EXPECT_TRUE(shape(L"\xFEFF\x200B", strokeFormat()).ink.empty); // marks that only tell how to set
}

TEST(Glyphs, UnknownCharactersDrawABox) {
    const ShapedText text = shape(std::wstring(1, static_cast<wchar_t>(0x10FFFE)), strokeFormat());
    ASSERT_EQ(text.glyphs.size(), 1u);
    EXPECT_FALSE(text.ink.empty);
    EXPECT_TRUE(shape(std::wstring_view(L"\n\t\x01", 3), strokeFormat()).glyphs.empty());
}

TEST(Curves, FlattenWithinTheTolerance) {
    Glyph glyph;
    constexpr float k = 0.5523f;
    glyph.moveTo({1, 0});
    glyph.cubicTo({1, k}, {k, 1}, {0, 1});
    glyph.quadraticTo({-0.5f, 1}, {-1, 0});
    glyph.finish();
    ASSERT_EQ(glyph.contourEnds().size(), 1u);
    const auto points = glyph.polylinePoints();
    EXPECT_GT(points.size(), 6u);
    for (std::size_t i = 0; i + 1 < points.size() && points[i + 1].x >= 0; ++i) {
        const double x = (points[i].x + points[i + 1].x) / 2, y = (points[i].y + points[i + 1].y) / 2;
        EXPECT_NEAR(std::hypot(x, y), 1, 0.005);
    }
    EXPECT_EQ(points.back(), (GlyphPoint{-1, 0}));
}

TEST(Substitution, MissingFacesAreToldAndStillDraw) {
    FontEngine& engine = FontEngine::instance();
    const struct {
        FontSpec font;
        bool available;
    } cases[] = {
        {{L"", L"romans.shx", L"", false, false}, true},
        {{L"", L"no-such-font.shx", L"", false, false}, false},
        {{L"No Such Typeface", L"", L"", true, true}, false},
        {{L"\x6977\x4F53_GB2312", L"", L"", false, false}, false},
        {{L"", L"nosuch.ttf", L"", false, false}, false},
    };
    for (const auto& [font, available] : cases) {
        EXPECT_EQ(engine.isAvailable(font), available);
        TextFormat format;
        format.font = font;
        EXPECT_FALSE(shape(L"Ab1", format).ink.empty);
    }
}

TEST(Substitution, IsToldOnce) {
    FontEngine& engine = FontEngine::instance();
    engine.takeSubstitutions();
    TextFormat format;
    format.font = {L"", L"romans.shx", L"gbcbig.shx", false, false};
    shape(L"A中", format);
    EXPECT_TRUE(engine.takeSubstitutions().empty()); // both have a face that stands for them
    format.font = {L"", L"C:\\Fonts\\House1.shx", L"house2.shx", false, false};
    shape(L"A中", format);
    format.font.bold = true;
    shape(L"A", format);
    const auto told = engine.takeSubstitutions();
    ASSERT_EQ(told.size(), 2u);
    EXPECT_EQ(told[0].wanted, L"House1.shx");
    EXPECT_EQ(told[0].used, L"txt.shx");
    EXPECT_EQ(told[1].wanted, L"house2.shx");
    EXPECT_TRUE(engine.takeSubstitutions().empty());
}

class SearchFolder : public testing::Test {
protected:
    void SetUp() override { FontEngine::instance().setSearchFolders({mFolder.path()}); }
    void TearDown() override { FontEngine::instance().setSearchFolders({}); }

    TemporaryFolder mFolder;
};

TEST_F(SearchFolder, ABrokenFontFileGivesWayToASubstitute) {
    for (const std::string& content : {std::string(), std::string("not a font at all"),
                                       std::string(4096, '\0'), std::string("\0\1\0\0\0\x10", 6)}) {
        writeFile(mFolder.path() / "Broken.TTF", content);
        FontEngine::instance().setSearchFolders({mFolder.path()});
        TextFormat format;
        format.font.file = L"broken.ttf";
        EXPECT_FALSE(shape(L"Ab1", format).ink.empty);
        EXPECT_FALSE(FontEngine::instance().isAvailable(format.font));
    }
}

TEST_F(SearchFolder, AFileInItIsFoundWhateverItsCase) {
    const auto installed = findTypeface(L"Liberation Mono", false, false);
    if (!installed || installed->isSubstitute)
        GTEST_SKIP() << "Liberation Mono is not installed";
    std::filesystem::copy_file(installed->path, mFolder.path() / "House-Font.ttf");
    FontEngine::instance().setSearchFolders({mFolder.path()});
    TextFormat format;
    format.font.file = L"D:\\anywhere\\HOUSE-FONT.TTF";
    EXPECT_TRUE(FontEngine::instance().isAvailable(format.font));
    EXPECT_NEAR(shape(L"iiii", format).advanceX, shape(L"WWWW", format).advanceX, 1e-6);
}

} // namespace
} // namespace host
