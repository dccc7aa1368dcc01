// Colours, lineweights and text styles.
#include "drawing_fixture.h"

#include <gtest/gtest.h>

namespace host {
namespace {

TEST(Colors, IndicesAndMethodsRoundTrip) {
    for (int index = 0; index <= 256; ++index) {
        AcCmEntityColor color;
        color.setColorIndex(static_cast<Adesk::Int16>(index));
        EXPECT_EQ(color.colorIndex(), index);
        EXPECT_EQ(color.isByBlock(), index == 0);
        EXPECT_EQ(color.isByLayer(), index == 256);
        AcCmEntityColor copy;
        copy.setColor(color.color());
        EXPECT_EQ(copy, color);
    }
    AcCmEntityColor color;
    color.setColorIndex(-7); // no index
    EXPECT_TRUE(color.isByLayer());
    AcCmColor wide;
    EXPECT_EQ(wide.setColorIndex(300), Acad::eInvalidInput);
    EXPECT_TRUE(wide.isByLayer());
}

TEST(Colors, TheStandardTableIsTheKnownOne) {
    const struct {
        int index;
        unsigned rgb;
    } cases[] = {{1, 0xFF0000},   {5, 0x0000FF},  {7, 0xFFFFFF},   {8, 0x808080},   {10, 0xFF0000},
                 {11, 0xFF7F7F},  {12, 0xA50000}, {13, 0xA55252},  {21, 0xFF9F7F},  {30, 0xFF7F00},
                 {45, 0x7F6F3F},  {90, 0x00FF00}, {150, 0x007FFF}, {170, 0x0000FF}, {214, 0x7F007F},
                 {250, 0x333333}, {255, 0xFFFFFF}};
    for (const auto& [index, rgb] : cases)
        EXPECT_EQ(AcCmEntityColor::lookUpRGB(static_cast<Adesk::UInt8>(index)), rgb) << index;
    // Every colour is nearest to itself or to an earlier one of the same look.
    for (int index = 1; index < 256; ++index) {
        const Adesk::UInt32 rgb = AcCmEntityColor::lookUpRGB(static_cast<Adesk::UInt8>(index));
        const Adesk::UInt8 nearest =
            AcCmEntityColor::lookUpACI(static_cast<Adesk::UInt8>(rgb >> 16),
                                       static_cast<Adesk::UInt8>(rgb >> 8), static_cast<Adesk::UInt8>(rgb));
        EXPECT_LE(nearest, index);
        EXPECT_EQ(AcCmEntityColor::lookUpRGB(nearest), rgb);
    }
}

TEST(Colors, NamesBelongToTheColor) {
    AcCmColor color;
    color.setRGB(1, 2, 3);
    EXPECT_EQ(color.displayName(), L"1,2,3");
    color.setNames(L"House red", L"Paints");
    const AcCmColor copy = color;
    EXPECT_EQ(copy, color);
    EXPECT_EQ(copy.displayName(), L"Paints$House red");
    color.setColorIndex(3);
    EXPECT_FALSE(color.hasColorName());
    EXPECT_EQ(color.displayName(), L"绿");
    EXPECT_TRUE(copy.hasBookName());
}

TEST(LineWeights, AreTheNearestOfTheList) {
    const std::pair<int, int> cases[] = {{0, 0},   {24, 25}, {6, 5},   {1000, 211},
                                         {-1, -1}, {-2, -2}, {-3, -3}, {-99, -3}};
    for (const auto& [given, expected] : cases)
        EXPECT_EQ(nearestLineWeight(given), expected) << given;
}

TEST(TextStyle, MeasuresWithItsFormat) {
    AcGiTextStyle style;
    style.setFileName(L"txt.shx");
    style.setTextSize(3);
    const AcGePoint2d whole = style.extents(L"HHHH", false, -1, false);
    EXPECT_NEAR(whole.y, 3, 1e-6);
    EXPECT_NEAR(style.extents(L"HHHH", false, 2, false).x, style.extents(L"HH", false, -1, false).x, 1e-9);
    EXPECT_NEAR(style.extents(L"HH", false, 500, false).x, style.extents(L"HH", false, -1, false).x, 1e-9);
    style.setXScale(2);
    EXPECT_NEAR(style.extents(L"HHHH", false, -1, false).x, 2 * whole.x, 1e-6);
    EXPECT_GT(style.extents(L"%%d", false, -1, true).x, style.extents(L"%%d", false, -1, false).x);
    EXPECT_EQ(style.extents(nullptr, false, -1, false).x, 0);
}

} // namespace
} // namespace host
