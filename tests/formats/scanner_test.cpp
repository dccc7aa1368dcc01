// Bytes to groups and text to numbers.
#include "host/formats/dxf/groupscanner.h"
#include "host/rx/text.h"

#include <cmath>
#include <cstring>
#include <gtest/gtest.h>
#include <random>

using namespace host::dxf;

namespace {

std::vector<std::pair<int, std::string>> scan(const std::string& bytes) {
    GroupScanner scanner(bytes);
    std::vector<std::pair<int, std::string>> result;
    for (Token token; scanner.next(token);) {
        result.emplace_back(token.code, std::string(token.text));
    }
    return result;
}

std::string fault(const std::string& bytes) {
    try {
        scan(bytes);
    } catch (const FormatError& error) {
        return host::toUtf8(error.message);
    }
    return {};
}

using Groups = std::vector<std::pair<int, std::string>>;

} // namespace

TEST(GroupScanner, takesAllLineEndsAndBlanks) {
    const Groups expected = {{0, "SECTION"}, {1, "  a b "}, {10, "1.5"}, {0, "EOF"}};
    EXPECT_EQ(scan("0\nSECTION\n1\n  a b \n10\n1.5\n0\nEOF\n"), expected);
    EXPECT_EQ(scan("  0\r\nSECTION\r\n  1\r\n  a b \r\n 10\r\n1.5\r\n  0\r\nEOF\r\n"), expected);
    EXPECT_EQ(scan("0\rSECTION\r1\r  a b \r10\r1.5\r0\rEOF\r"), expected);
    EXPECT_EQ(scan("\xEF\xBB\xBF 0 \nSECTION\n\t1\t\n  a b \n10\n1.5\n0\nEOF"), expected);
    EXPECT_EQ(scan("0\r\r\nSECTION\r\r\n1\r\r\n  a b \r\r\n10\r\r\n1.5\r\r\n0\r\r\nEOF\r\r\n\n \n\x1a"),
              expected);
}

TEST(GroupScanner, namesTheLineOfWhatIsNoGroup) {
    EXPECT_EQ(fault("0\nSECTION\nabc\nx\n"), "第 3 行: 组码 \"abc\" 不是整数");
    EXPECT_EQ(fault("0\nSECTION\n\nx\n"), "第 3 行: 组码 \"\" 不是整数");
    EXPECT_EQ(fault("0\nSECTION\n1072\nx\n"), "第 3 行: 组码 1072 超出范围");
    EXPECT_EQ(fault("0\nSECTION\n-5\nx\n"), "第 3 行: 组码 -5 超出范围");
    EXPECT_EQ(fault("0\nSECTION\n99999999999\nx\n"), "第 3 行: 组码 \"99999999999\" 不是整数");
    EXPECT_EQ(fault("0\nSECTION\n2"), "第 3 行: 组码 2 之后文件中断");
}

TEST(GroupScanner, readsBinaryFilesOfBothKinds) {
    const std::string sentinel("AutoCAD Binary DXF\r\n\x1a\0", 22);
    const auto code16 = [](std::int16_t code) { return std::string(reinterpret_cast<char*>(&code), 2); };
    const double value = 2.25;
    const std::string real(reinterpret_cast<const char*>(&value), 8);
    const std::string end("\0", 1);
    const std::string current = sentinel + code16(0) + "LINE" + end + code16(10) + real + code16(70) +
                                code16(-3) + code16(310) + "\x02\xAB\x01" + code16(290) + "\x01";
    const std::string old = sentinel + end + "LINE" + end + "\x0A" + real + "\x46" + code16(-3) + "\xFF" +
                            code16(310) + "\x02\xAB\x01" + "\xFF" + code16(290) + "\x01";
    for (const std::string& bytes : {current, old}) {
        GroupScanner scanner(bytes);
        Token token;
        ASSERT_TRUE(scanner.next(token));
        EXPECT_EQ(token.text, "LINE");
        ASSERT_TRUE(scanner.next(token));
        EXPECT_EQ(token.real, value);
        ASSERT_TRUE(scanner.next(token));
        EXPECT_EQ(token.integer, -3);
        ASSERT_TRUE(scanner.next(token));
        EXPECT_EQ(token.text, "AB01");
        ASSERT_TRUE(scanner.next(token));
        EXPECT_EQ(token.integer, 1);
        EXPECT_FALSE(scanner.next(token));
    }
    EXPECT_NE(fault(current.substr(0, current.size() - 10)).find("中断"), std::string::npos);
}

TEST(Numbers, realsAreRightlyRounded) {
    std::mt19937_64 random(7);
    char text[64];
    for (int turn = 0; turn < 20000; ++turn) {
        const std::uint64_t bits = random();
        double value = 0.0;
        std::memcpy(&value, &bits, sizeof value);
        if (!std::isfinite(value)) {
            continue;
        }
        const int digits = static_cast<int>(turn % 17) + 1;
        std::snprintf(text, sizeof text, turn % 2 == 0 ? "%.*e" : "%.*g", digits,
                      turn % 3 == 0 ? value : std::fmod(value, 1e6));
        double read = -1.0;
        ASSERT_TRUE(parseReal(text, read)) << text;
        EXPECT_EQ(read, std::strtod(text, nullptr)) << text;
    }
}

TEST(Numbers, formsAndFaults) {
    double real = 0.0;
    for (const auto& [text, expected] : std::initializer_list<std::pair<const char*, double>>{
             {" 1.5 ", 1.5},
             {"+2", 2},
             {"-0.25", -0.25},
             {".5", 0.5},
             {"3.", 3},
             {"1E3", 1000},
             {"1e-400", 0},
             {"0.1", 0.1},
             {"123456789012345678", 123456789012345678.0}}) {
        EXPECT_TRUE(parseReal(text, real)) << text;
        EXPECT_EQ(real, expected) << text;
    }
    for (const char* text :
         {"", " ", "-", ".", "nan", "inf", "-inf", "1e999", "1,5", "1.5x", "0x10", "1 2"}) {
        EXPECT_FALSE(parseReal(text, real)) << text;
    }
    std::int64_t integer = 0;
    EXPECT_TRUE(parseInteger("   70", integer) && integer == 70);
    EXPECT_TRUE(parseInteger("+7", integer) && integer == 7);
    EXPECT_TRUE(parseInteger("1.0", integer) && integer == 1);
    for (const char* text : {"", "1.5", "x", "99999999999999999999999"}) {
        EXPECT_FALSE(parseInteger(text, integer)) << text;
    }
    std::uint64_t handle = 0;
    EXPECT_TRUE(parseHandle(" 1aF ", handle) && handle == 0x1AF);
    for (const char* text : {"", "G", "-1", "11112222333344445"}) {
        EXPECT_FALSE(parseHandle(text, handle)) << text;
    }
}
