// Formats: what Windows prints for them.
#include "host/rx/format.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <locale.h>

namespace {

using host::formatted;

std::string narrow(const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    std::string text = host::formatNarrow(format, arguments);
    va_end(arguments);
    return text;
}

TEST(Format, TextIsWideUnlessSaidOtherwise) {
    EXPECT_EQ(formatted(L"[%s|%S|%hs|%ls|%c|%C]", L"宽", "窄", "窄", L"宽", L'墙', 'n'),
              L"[宽|窄|窄|宽|墙|n]");
    EXPECT_EQ(formatted(L"[%5s|%-5s|%.2s|%5.1s]", L"围墙", L"围墙", L"围墙线", L"围墙"),
              L"[   围墙|围墙   |围墙|    围]");
    EXPECT_EQ(formatted(L"%.2S|%.1S", "围墙线", "ab"), L"围墙|a");
    EXPECT_EQ(formatted(L"%s %S %.3s", nullptr, nullptr, nullptr), L"(null) (null) (nu");
    EXPECT_EQ(narrow("%s|%S|%ls|%c|%5s", "窄", L"宽", L"宽", 'x', "ab"), "窄|宽|宽|x|   ab");
    const wchar_t unterminated[] = {L'a', L'b', L'c'};
    EXPECT_EQ(formatted(L"%.3s", unterminated), L"abc");
}

TEST(Format, IntegersHaveTheirWindowsSizes) {
    EXPECT_EQ(formatted(L"%d %i %u %ld %lu", -1, 2, 3u, -4L, 5uL), L"-1 2 3 -4 5");
    EXPECT_EQ(formatted(L"%ld", 0x1'0000'0002L), L"2"); // a long is 32 bits there
    EXPECT_EQ(
        formatted(L"%I64d %lld %Id %zu %I32d", 1LL << 40, -(1LL << 40), std::intptr_t{-5}, std::size_t{6}, 7),
        L"1099511627776 -1099511627776 -5 6 7");
    EXPECT_EQ(formatted(L"%hd %hu %hhd", 70000, -1, 300), L"4464 65535 44");
    EXPECT_EQ(formatted(L"%x %X %#x %#X %o %#o %#x", 255, 255, 255, 255, 8, 8, 0),
              L"ff FF 0xff 0XFF 10 010 0");
    EXPECT_EQ(formatted(L"[%5d|%-5d|%05d|%+d|% d|%.3d|%5.3d|%05.3d]", 42, 42, -42, 42, 42, 7, 7, 7),
              L"[   42|42   |-0042|+42| 42|007|  007|  007]");
    EXPECT_EQ(formatted(L"[%*d|%-*d|%*d|%.*f]", 4, 1, 4, 1, -4, 1, 1, 2.25), L"[   1|1   |1   |2.2]");
    EXPECT_EQ(formatted(L"[%.0d]%#.0o", 0, 0), L"[]0");
    EXPECT_EQ(
        formatted(L"%d %I64d", std::numeric_limits<int>::min(), std::numeric_limits<std::int64_t>::min()),
        L"-2147483648 -9223372036854775808");
    EXPECT_EQ(formatted(L"%p", reinterpret_cast<void*>(0xABCDEF)), L"0000000000ABCDEF");
}

TEST(Format, RealsPrintAsExactDecimals) {
    EXPECT_EQ(formatted(L"%f %.2lf %.0f %#.0f %e %G", 1.5, 2.675, 2.5, 3.0, 12345.678, 1e-10),
              L"1.500000 2.67 2 3. 1.234568e+04 1E-10");
    EXPECT_EQ(formatted(L"[%8.3f|%-8.3f|%08.3f|%+.1f|% .1f]", -1.5, -1.5, -1.5, 1.5, 1.5),
              L"[  -1.500|-1.500  |-001.500|+1.5| 1.5]");
    EXPECT_EQ(formatted(L"%.20f", 0.1), L"0.10000000000000000555");
    EXPECT_EQ(formatted(L"%.0f", 1e300).size(), 301u);
    EXPECT_EQ(formatted(L"%g %#g", 999999.5, 999999.5), L"1e+06 1.00000e+06");
    EXPECT_EQ(formatted(L"%f|%g", -0.0, -0.0), L"-0.000000|-0");
    EXPECT_EQ(formatted(L"%a %A %.1a", 1.0, -0.5, 1.0),
              L"0x1.0000000000000p+0 -0X1.0000000000000P-1 0x1.0p+0");
    const double infinity = std::numeric_limits<double>::infinity();
    EXPECT_EQ(formatted(L"[%f|%05.1f|%E|%f]", infinity, -infinity, infinity, std::nan("")),
              L"[inf| -inf|INF|nan]");
    EXPECT_EQ(formatted(L"%.1200f", 1.0).size(), 1202u);
}

// The rules of %g against the C library's, which agree for finite numbers.
TEST(Format, GeneralAgreesWithTheCLibrary) {
    const double values[] = {0,       1,        10,      100000,  999999.4, 1e6,
                             1234567, 0.0001,   0.00001, 0.1,     123.456,  1e100,
                             1e-300,  99.99995, 2.5e-5,  1 / 3.0, 5e-324,   1.7976931348623157e308};
    for (const double value : values)
        for (const char* format :
             {"%g", "%.0g", "%.1g", "%.3g", "%.17g", "%#g", "%#.3G", "%12.4g", "%-12.4g|", "%012.4g"}) {
            char expected[400];
            std::snprintf(expected, sizeof expected, format, value);
            EXPECT_EQ(narrow(format, value), expected) << format << " " << value;
        }
}

TEST(Format, WhatIsNoConversionStandsAsItIs) {
    EXPECT_EQ(formatted(L"100%"), L"100%");
    EXPECT_EQ(formatted(L"%% %y %5.2k %-"), L"% %y %5.2k %-");
    EXPECT_EQ(formatted(nullptr), L"");
    EXPECT_EQ(formatted(L"%99999999999d", 1).size(), 1'000'000u);
}

TEST(Format, TheLocaleHasNoSay) {
    const char* german = setlocale(LC_NUMERIC, "de_DE.UTF-8");
    EXPECT_EQ(formatted(L"%.1f", 1.5), L"1.5");
    if (german != nullptr)
        setlocale(LC_NUMERIC, "C");
}

} // namespace
