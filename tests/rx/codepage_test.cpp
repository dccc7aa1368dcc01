// Code pages: each page's own bytes, the escapes, and what a page does not have.
#include "host/rx/codepage.h"
#include "host/rx/text.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace {

using host::CodePage;

TEST(CodePage, NamesAndNumbersMeetInOnePage) {
    for (int number = 1; number <= 44; ++number) {
        const auto page = host::codePageByNumber(number);
        ASSERT_TRUE(page);
        EXPECT_EQ(host::codePageByName(host::codePageName(*page)), page);
    }
    EXPECT_EQ(host::codePageByName("ansi_936"), CodePage::ansi936);
    EXPECT_EQ(host::codePageByName(" dos437 "), CodePage::dos437);
    EXPECT_EQ(host::codePageByName("UTF-8"), CodePage::utf8);
    EXPECT_FALSE(host::codePageByName("ANSI_1"));
    EXPECT_FALSE(host::codePageByNumber(45));
    EXPECT_EQ(host::codePageByWindowsNumber(1252), CodePage::ansi1252);
    EXPECT_FALSE(host::codePageByWindowsNumber(0));
}

TEST(CodePage, KnownTexts) {
    struct Case {
        CodePage page;
        std::string bytes;
        std::wstring text;
    };
    const Case cases[] = {
        {CodePage::ansi936, "\xCE\xA7\xC7\xBD\\P", L"围墙\\P"},
        {CodePage::gb2312, "\xCE\xA7\xC7\xBD", L"围墙"},
        {CodePage::ansi950, "\xB3\x5C\xA5\x5C", L"許功"}, // a trail byte may look like a backslash
        {CodePage::ansi932, "\x8E\x52\xB1\\", L"山ｱ\\"},
        {CodePage::ansi949, "\xC7\xD1", L"한"},
        {CodePage::ansi1361, "\xD0\x65\\", L"한\\"},
        {CodePage::ansi1252, "\x80\xE9", L"€é"},
        {CodePage::ansi1251, "\xCF\xF0", L"Пр"},
        {CodePage::dos437, "\x9B\xF8", L"¢°"},
        {CodePage::dos850, "\x9B", L"ø"},
        {CodePage::iso8859_1, "\xB0", L"°"},
        {CodePage::utf8, "\xE5\x9B\xB4", L"围"},
        {CodePage::utf16, std::string("\xF4\x56", 2), L"围"},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(host::decode(c.bytes, c.page), c.text) << host::codePageName(c.page);
        EXPECT_EQ(host::encode(c.text, c.page), c.bytes) << host::codePageName(c.page);
        EXPECT_TRUE(host::canEncode(c.text, c.page));
    }
}

TEST(CodePage, EveryPageGivesBackWhatItCanEncode) {
    std::wstring all;
    for (wchar_t c = 1; c < 0x11000; c += c < 0x600 ? 1 : 11)
        if (c < 0xD800 || c > 0xDFFF)
            all.push_back(c);
    for (int number = 1; number <= 44; ++number) {
        const CodePage page = *host::codePageByNumber(number);
        const std::wstring back = host::decodeText(host::encode(all, page), page);
        ASSERT_EQ(back.size(), all.size()) << host::codePageName(page);
        const auto differ = std::ranges::mismatch(back, all);
        EXPECT_EQ(differ.in2, all.end())
            << host::codePageName(page) << " from U+" << std::hex << int(*differ.in2);
    }
}

TEST(CodePage, BrokenBytesHurtNobodyElse) {
    EXPECT_EQ(host::decode("\xCE", CodePage::ansi936), L"\xFFFD");       // cut off
    EXPECT_EQ(host::decode("\xCE\"x", CodePage::ansi936), L"\xFFFD\"x"); // the quote stays
    EXPECT_EQ(host::decode("\xFF"
                           "a",
                           CodePage::ansi936)
                  .back(),
              L'a');
    for (const CodePage page : {CodePage::ansi932, CodePage::ansi936, CodePage::johab, CodePage::ansi1252})
        for (int lead = 0x80; lead < 0x100; ++lead)
            for (int trail = 0; trail < 0x100; trail += 5) {
                const char bytes[] = {static_cast<char>(lead), static_cast<char>(trail), 'z', 'z'};
                EXPECT_EQ(host::decode({bytes, 4}, page).back(), L'z');
            }
}

TEST(CodePage, EscapesBothWays) {
    EXPECT_EQ(host::encode(L"围€😀", CodePage::ansi1252), "\\U+56F4\x80\\U+D83D\\U+DE00");
    EXPECT_EQ(host::encode(L"围é", CodePage::ansi1252, host::Unmappable::question), "?\xE9");
    EXPECT_EQ(host::resolveEscapes(L"\\U+56F4\\u+5899\\M+5CEA7\\P"), L"围墙围\\P");
    EXPECT_EQ(host::resolveEscapes(L"\\U+D83D\\U+DE00"), L"\x1F600");
    for (const wchar_t* plain :
         {L"\\U+56F", L"\\U+56FG", L"\\U+D83D", L"\\U+0000", L"\\M+6CEA7", L"\\M+5FFFF", L"\\", L"\\\\U"})
        EXPECT_EQ(host::resolveEscapes(plain), plain);
    EXPECT_EQ(host::escapeUnicode(L"a围"), L"a\\U+56F4");
    EXPECT_EQ(host::escapeMultibyte(L"a围€ﬀ", CodePage::ansi936), L"a\\M+5CEA7\\U+20AC\\U+FB00");
    EXPECT_EQ(host::resolveEscapes(host::escapeMultibyte(L"許功", CodePage::ansi950)), L"許功");
}

TEST(CodePage, CutsBetweenCharacters) {
    const std::string gbk = host::encode(L"a围墙", CodePage::ansi936);
    EXPECT_EQ(host::wholeCharacters(gbk, 4, CodePage::ansi936), 3u);
    EXPECT_EQ(host::wholeCharacters(gbk, 3, CodePage::ansi936), 3u);
    EXPECT_EQ(host::wholeCharacters(gbk, 9, CodePage::ansi936), 5u);
    EXPECT_EQ(host::wholeCharacters(host::toUtf8(L"a围墙"), 6, CodePage::utf8), 4u);
}

} // namespace
