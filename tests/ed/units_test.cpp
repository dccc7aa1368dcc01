// Numbers, angles and points as text, in both directions.
#include "host/ed/units.h"

#include <cmath>
#include <gtest/gtest.h>
#include <numbers>
#include <random>

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

TEST(Units, RandomDistancesAndAnglesComeBack) {
    std::mt19937 random(9);
    std::uniform_real_distribution<double> size(-5.0, 6.0);
    std::uniform_real_distribution<double> turn(0.0, 2.0 * pi);
    for (int i = 0; i < 500; ++i) {
        const double value = (i % 2 == 0 ? 1.0 : -1.0) * std::pow(10.0, size(random));
        const double angle = turn(random);
        for (int kind = 1; kind <= 5; ++kind) {
            UnitFormat format = linear(static_cast<LinearUnits>(kind), 8, i % 16);
            format.inputStyle = i % 3 == 0;
            const std::wstring text = formatDistance(value, format);
            const auto back = host::parseDistance(text, format.linear);
            // Half of the last digit shown: a 256th of an inch, eight digits of a mantissa, or 1e-8.
            const double slack = kind == 1 ? std::fabs(value) * 1e-8 : kind >= 4 ? 0.5 / 256 + 1e-9 : 0.6e-8;
            ASSERT_TRUE(back) << std::string(text.begin(), text.end());
            EXPECT_NEAR(*back, value, slack) << std::string(text.begin(), text.end());
            // Text that was read is written as the same text.
            EXPECT_EQ(formatDistance(*back, format), text);
        }
        for (int kind = 0; kind <= 4; ++kind) {
            UnitFormat format;
            format.angular = static_cast<AngularUnits>(kind);
            format.angularPrecision = 8;
            format.angleBase = i % 4 * 0.3;
            format.clockwise = i % 5 == 0;
            const std::wstring text = formatAngle(angle, format);
            const auto back = host::parseAngle(text, format, true);
            ASSERT_TRUE(back) << std::string(text.begin(), text.end());
            // A bearing is one from the meridian whatever the base; what is written is against it.
            const double expected = kind == 4 ? angle - format.angleBase : angle;
            const double difference =
                std::remainder(*back - (kind == 4 && format.clockwise ? -expected : expected), 2.0 * pi);
            EXPECT_NEAR(difference, 0.0, 1e-7) << std::string(text.begin(), text.end());
        }
    }
}

TEST(Units, EveryModeByHand) {
    const struct {
        double value;
        LinearUnits units;
        int precision, zeros;
        bool input;
        const wchar_t* text;
    } rows[] = {
        {15.5, LinearUnits::scientific, 4, 0, false, L"1.5500E+01"},
        {-0.000123, LinearUnits::scientific, 2, 0, false, L"-1.23E-04"},
        {15.5, LinearUnits::engineering, 2, 0, false, L"1'-3.50\""},
        {15.5, LinearUnits::engineering, 2, 0, true, L"1'3.50\""},
        {15.5, LinearUnits::architectural, 4, 0, true, L"1'3-1/2\""},
        {0.5, LinearUnits::architectural, 4, 1, false, L"0'-0 1/2\""},
        {0.5, LinearUnits::architectural, 4, 0, false, L"1/2\""},
        {12.75, LinearUnits::architectural, 4, 0, false, L"1'-0 3/4\""},
        {12.75, LinearUnits::architectural, 4, 0, true, L"1'0-3/4\""},
        {0.5, LinearUnits::architectural, 4, 2, false, L"0'-0 1/2\""},
        {6.0, LinearUnits::architectural, 4, 3, false, L"6\""},
        {24.0, LinearUnits::architectural, 4, 1, false, L"2'-0\""},
        {24.0, LinearUnits::architectural, 4, 0, false, L"2'"},
        {15.5, LinearUnits::fractional, 4, 0, false, L"15 1/2"},
        {15.5, LinearUnits::fractional, 4, 0, true, L"15-1/2"},
        {15.0 + 1.0 / 3.0, LinearUnits::fractional, 8, 0, false, L"15 85/256"},
        {0.125, LinearUnits::decimal, 3, 4 + 8, false, L".125"},
        {-0.5, LinearUnits::decimal, 3, 4 + 8, false, L"-.5"},
        {100.0, LinearUnits::decimal, 0, 8, false, L"100"},
    };
    for (const auto& row : rows) {
        UnitFormat format = linear(row.units, row.precision, row.zeros);
        format.inputStyle = row.input;
        EXPECT_EQ(formatDistance(row.value, format), row.text);
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
