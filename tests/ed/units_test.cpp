// Numbers, angles and points as text, in both directions.
#include "host/ed/units.h"

#include <cmath>
#include <gtest/gtest.h>
#include <numbers>

namespace {

using host::AngularUnits;
using host::LinearUnits;
using host::UnitFormat;

constexpr double pi = std::numbers::pi;

UnitFormat linear(LinearUnits units, int precision, int zeroSuppression = 0) {
    UnitFormat format;
    format.linear = units;
    format.linearPrecision = precision;
    format.zeroSuppression = zeroSuppression;
    return format;
}

TEST(Units, DistancesAsText) {
    const auto text = [](double value, const UnitFormat& format) { return formatDistance(value, format); };
    EXPECT_EQ(text(12.5, linear(LinearUnits::decimal, 4)), L"12.5000");
    EXPECT_EQ(text(12.5, linear(LinearUnits::decimal, 4, 8)), L"12.5");
    EXPECT_EQ(text(125.0, linear(LinearUnits::decimal, 4, 8)), L"125");
    EXPECT_EQ(text(0.5, linear(LinearUnits::decimal, 2, 4)), L".50");
    EXPECT_EQ(text(-0.00001, linear(LinearUnits::decimal, 2)), L"0.00");
    EXPECT_EQ(text(17.5, linear(LinearUnits::scientific, 2)), L"1.75E+01");
    EXPECT_EQ(text(17.5, linear(LinearUnits::engineering, 1)), L"1'-5.5\"");
    EXPECT_EQ(text(11.999, linear(LinearUnits::engineering, 1, 3)), L"1'-0.0\"");
    EXPECT_EQ(text(17.5, linear(LinearUnits::architectural, 1)), L"1'-5 1/2\"");
    EXPECT_EQ(text(-6.25, linear(LinearUnits::architectural, 2)), L"-6 1/4\"");
    EXPECT_EQ(text(12.0, linear(LinearUnits::architectural, 2)), L"1'");
    EXPECT_EQ(text(0.75, linear(LinearUnits::fractional, 3)), L"3/4");
    EXPECT_EQ(text(0.0, linear(LinearUnits::fractional, 3)), L"0");
    EXPECT_EQ(text(2.999, linear(LinearUnits::fractional, 4)), L"3");
}

TEST(Units, DistancesFromText) {
    const auto value = [](const wchar_t* text, LinearUnits units) {
        return host::parseDistance(text, units).value_or(-999.0);
    };
    constexpr auto decimal = LinearUnits::decimal;
    constexpr auto feet = LinearUnits::architectural;
    EXPECT_DOUBLE_EQ(value(L"12.5", decimal), 12.5);
    EXPECT_DOUBLE_EQ(value(L"-.5", decimal), -0.5);
    EXPECT_DOUBLE_EQ(value(L"5.", decimal), 5.0);
    EXPECT_DOUBLE_EQ(value(L"1.5e-3", decimal), 0.0015);
    EXPECT_DOUBLE_EQ(value(L"3/4", decimal), 0.75);
    EXPECT_DOUBLE_EQ(value(L"1-3/4", decimal), 1.75);
    EXPECT_DOUBLE_EQ(value(L"5'6-1/2\"", feet), 66.5);
    EXPECT_DOUBLE_EQ(value(L"5'-6.5", feet), 66.5);
    EXPECT_DOUBLE_EQ(value(L"-5'", feet), -60.0);
    EXPECT_DOUBLE_EQ(value(L"6\"", feet), 6.0);
    for (const wchar_t* bad :
         {L"", L"-", L".", L"1e", L"1,2", L"nan", L"inf", L"5'6", L"0x10", L"1/0", L"１", L"1e999"}) {
        EXPECT_FALSE(host::parseDistance(bad, decimal)) << bad;
    }
}

TEST(Units, WhatIsWrittenIsReadAgain) {
    for (const LinearUnits units : {LinearUnits::scientific, LinearUnits::decimal, LinearUnits::engineering,
                                    LinearUnits::architectural, LinearUnits::fractional}) {
        for (const int zeroSuppression : {0, 1, 2, 3, 12}) {
            for (const double value : {0.0, 0.25, 1.0, 11.75, 12.0, 13.5, -100.125, 99999.5}) {
                UnitFormat format = linear(units, 6, zeroSuppression);
                for (const bool inputStyle : {false, true}) {
                    format.inputStyle = inputStyle;
                    const std::wstring text = formatDistance(value, format);
                    const auto back = host::parseDistance(text, units);
                    ASSERT_TRUE(back) << std::string(text.begin(), text.end());
                    EXPECT_NEAR(*back, value, 1e-6) << std::string(text.begin(), text.end());
                }
            }
        }
    }
}

TEST(Units, Angles) {
    UnitFormat format;
    format.angularPrecision = 2;
    EXPECT_EQ(formatAngle(pi / 6, format), L"30.00");
    EXPECT_EQ(formatAngle(-pi / 2, format), L"270.00");
    EXPECT_EQ(formatAngle(2 * pi - 1e-9, format), L"0.00");
    format.angular = AngularUnits::degreesMinutesSeconds;
    format.angularPrecision = 4;
    EXPECT_EQ(formatAngle(30.5 * pi / 180, format), L"30d30'0\"");
    format.angular = AngularUnits::gradians;
    format.angularPrecision = 0;
    EXPECT_EQ(formatAngle(pi / 2, format), L"100g");
    format.angular = AngularUnits::radians;
    format.angularPrecision = 3;
    EXPECT_EQ(formatAngle(pi / 2, format), L"1.571r");
    format.angular = AngularUnits::surveyor;
    format.angularPrecision = 2;
    EXPECT_EQ(formatAngle(pi / 4, format), L"N 45d0' E");
    EXPECT_EQ(formatAngle(pi / 2, format), L"N");
    EXPECT_EQ(formatAngle(pi, format), L"W");
    EXPECT_EQ(formatAngle(5 * pi / 4, format), L"S 45d0' W");

    format.angleBase = pi / 2;
    format.clockwise = true;
    format.angular = AngularUnits::degrees;
    EXPECT_EQ(formatAngle(0.0, format), L"90.00");
    EXPECT_NEAR(*host::parseAngle(L"90", format, true), 0.0, 1e-12);
    EXPECT_NEAR(*host::parseAngle(L"90", format, false), -pi / 2, 1e-12);
}

TEST(Units, AnglesFromText) {
    const UnitFormat format;
    const auto value = [&](const wchar_t* text) {
        return host::parseAngle(text, format, true).value_or(-999.0);
    };
    EXPECT_NEAR(value(L"45"), pi / 4, 1e-12);
    EXPECT_NEAR(value(L"45d30'36\""), 45.51 * pi / 180, 1e-12);
    EXPECT_NEAR(value(L"45d"), pi / 4, 1e-12);
    EXPECT_NEAR(value(L"50g"), pi / 4, 1e-12);
    EXPECT_NEAR(value(L"1.5r"), 1.5, 1e-12);
    EXPECT_NEAR(value(L"N45dE"), pi / 4, 1e-12);
    EXPECT_NEAR(value(L"s45dw"), 5 * pi / 4, 1e-12);
    EXPECT_NEAR(value(L"W"), pi, 1e-12);
    EXPECT_NEAR(value(L"-90"), -pi / 2, 1e-12);
    for (const wchar_t* bad : {L"", L"x", L"45x", L"N95dE", L"45d30'15\"x"}) {
        EXPECT_FALSE(host::parseAngle(bad, format, true)) << bad;
    }
}

AcGePoint3d pointOf(const wchar_t* text, UnitFormat format = {}) {
    const auto typed = host::parsePoint(text, format);
    return typed ? resolvePoint(*typed, {100, 50, 7}, 3.0) : AcGePoint3d(-999, -999, -999);
}

TEST(Units, Points) {
    EXPECT_EQ(pointOf(L"1,2"), AcGePoint3d(1, 2, 3));
    EXPECT_EQ(pointOf(L"1,-2.5,4"), AcGePoint3d(1, -2.5, 4));
    EXPECT_EQ(pointOf(L"@1,2"), AcGePoint3d(101, 52, 7));
    EXPECT_EQ(pointOf(L"@1,2,3"), AcGePoint3d(101, 52, 10));
    EXPECT_EQ(pointOf(L"@"), AcGePoint3d(100, 50, 7));
    EXPECT_EQ(pointOf(L"@10<90"), AcGePoint3d(100, 60, 7));
    EXPECT_EQ(pointOf(L"10<180"), AcGePoint3d(-10, 0, 3));
    EXPECT_EQ(pointOf(L"@10<0,5"), AcGePoint3d(110, 50, 12));
    EXPECT_EQ(pointOf(L"@10<0<90"), AcGePoint3d(100, 50, 17));
    EXPECT_EQ(pointOf(L"#1,2"), AcGePoint3d(1, 2, 3));
    EXPECT_TRUE(host::parsePoint(L"*1,2", {})->world);
    for (const wchar_t* bad :
         {L"", L"5", L"1,", L",2", L"1,2,3,4", L"@10<", L"<45", L"a,b", L"1;2", L"1，2"}) {
        EXPECT_FALSE(host::parsePoint(bad, {})) << bad;
    }
    UnitFormat turned;
    turned.angleBase = pi / 2;
    EXPECT_EQ(pointOf(L"@10<0", turned), AcGePoint3d(100, 60, 7));
    EXPECT_EQ(pointOf(L"@10<<0", turned), AcGePoint3d(110, 50, 7));
}

} // namespace
