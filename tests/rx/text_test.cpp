// Text: conversions that survive bad input, case, and the string class over them.
#include "host/rx/acstring.h"
#include "host/rx/text.h"

#include <gtest/gtest.h>
#include <thread>

namespace {

TEST(Text, Utf8AcceptsOnlyWellFormedText) {
    struct Case {
        std::string bytes;
        std::wstring text;
    };
    const Case cases[] = {
        {"", L""},
        {"plain ASCII, longer than eight", L"plain ASCII, longer than eight"},
        {"1234567\xE4\xB8\xAD", L"1234567中"},
        {"\xF0\x9F\x98\x80", L"\x1F600"},
        {"\xC0\xAF", L"\xFFFD\xFFFD"},                     // overlong
        {"\xE0\x80\xAF", L"\xFFFD\xFFFD\xFFFD"},           // overlong
        {"\xED\xA0\x80", L"\xFFFD\xFFFD\xFFFD"},           // surrogate
        {"\xF4\x90\x80\x80", L"\xFFFD\xFFFD\xFFFD\xFFFD"}, // beyond the last character
        {"a\xE4\xB8", L"a\xFFFD"},                         // cut off: one for the beginning
        {"\xE4\xB8z", L"\xFFFDz"},
        {"\x80\xFF", L"\xFFFD\xFFFD"},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(host::fromUtf8(c.bytes), c.text);
        EXPECT_EQ(host::isValidUtf8(c.bytes), c.text.find(L'\xFFFD') == std::wstring::npos);
    }
}

TEST(Text, EveryCharacterComesBack) {
    std::wstring all;
    for (wchar_t c = 1; c <= 0x10FFFF; ++c)
        if (c < 0xD800 || c > 0xDFFF)
            all.push_back(c);
    EXPECT_EQ(host::fromUtf8(host::toUtf8(all)), all);
    EXPECT_EQ(host::fromUtf16(host::toUtf16(all)), all);
    EXPECT_EQ(host::fromUtf16Le(host::toUtf16Le(all)), all);
}

TEST(Text, SurrogatesAreJoinedOrReplaced) {
    const std::wstring pair = {wchar_t(0xD83D), wchar_t(0xDE00)}, lone = {wchar_t(0xDE00), wchar_t(0xD83D)};
    EXPECT_EQ(host::toUtf8(pair), "\xF0\x9F\x98\x80");
    EXPECT_EQ(host::toUtf8(lone), "\xEF\xBF\xBD\xEF\xBF\xBD");
    EXPECT_EQ(host::toUtf16(std::wstring{wchar_t(0x110000), wchar_t(-1)}), u"\xFFFD\xFFFD");
    EXPECT_EQ(host::fromUtf16(u"\xDC00"
                              "a\xD800"),
              L"\xFFFD"
              L"a\xFFFD");
}

TEST(Text, NamesEqualInAnyCase) {
    const std::pair<std::wstring, std::wstring> equal[] = {{L"ByLayer", L"BYLAYER"},
                                                           {L"Ärmel", L"äRMEL"},
                                                           {L"ПРИВЕТ", L"привет"},
                                                           {L"ΣΑΣ", L"σας"},
                                                           {L"围墙a", L"围墙A"}};
    for (const auto& [left, right] : equal) {
        EXPECT_TRUE(host::equalNoCase(left, right));
        EXPECT_EQ(host::hashNoCase(left), host::hashNoCase(right));
        EXPECT_EQ(host::fold(left), host::fold(right));
    }
    EXPECT_FALSE(host::equalNoCase(L"ab", L"abc"));
    EXPECT_LT(host::compareNoCase(L"B", L"c"), 0);
    EXPECT_GT(host::compareNoCase(L"C", L"b"), 0);
    EXPECT_LT(host::compareNoCase(L"_", L"a"), 0); // both folded down, so '_' comes before letters
}

TEST(Text, TrimKnowsTheWideSpaces) {
    EXPECT_EQ(host::trim(L"\t　 a b\xA0\r\n"), L"a b");
    EXPECT_EQ(host::trim(L" 　"), L"");
}

TEST(AcString, IsSmallAndSharesNothing) {
    static_assert(sizeof(AcString) <= 32);
    AcString first(L"图层"), second(first);
    EXPECT_STREQ(second.utf8Ptr(), "图层");
    second.append(L'A').append("围墙");
    EXPECT_STREQ(second.utf8Ptr(), "图层A围墙");
    EXPECT_TRUE(first == L"图层");
    first += first;
    EXPECT_TRUE(first == L"图层图层");
    const AcString moved = std::move(first);
    EXPECT_TRUE(first.isEmpty());
    EXPECT_EQ(moved.length(), 4u);
    AcString null(static_cast<const ACHAR*>(nullptr));
    EXPECT_TRUE(null == AcString::kEmpty && null == L"");
    EXPECT_STREQ(null.kwszPtr(), L"");
}

TEST(AcString, PartsAreCutAtTheEnds) {
    const AcString text(L"V7_Enclose");
    EXPECT_TRUE(text.mid(3) == L"Enclose");
    EXPECT_TRUE(text.mid(3, 3) == L"Enc");
    EXPECT_TRUE(text.mid(30, 3) == L"");
    EXPECT_TRUE(text.left(2) == L"V7" && text.left(99) == text && text.left(-1) == L"");
    EXPECT_TRUE(text.right(4) == L"lose" && text.right(99) == text && text.right(-1) == L"");
    EXPECT_EQ(text.at(-1), 0);
    EXPECT_EQ(text.at(10), 0);
    int start = 0;
    const AcString list(L",,a,bc;");
    EXPECT_TRUE(list.tokenize(L",;", start) == L"a");
    EXPECT_TRUE(list.tokenize(L",;", start) == L"bc");
    EXPECT_TRUE(list.tokenize(L",;", start).isEmpty());
    EXPECT_EQ(start, -1);
}

TEST(AcString, FindsAndChanges) {
    AcString text(L"abcabc");
    EXPECT_EQ(text.find(L"ca"), 2);
    EXPECT_EQ(text.find(L'a', 1), 3);
    EXPECT_EQ(text.find(L'x'), -1);
    EXPECT_EQ(text.findRev(L"bc"), 4);
    EXPECT_EQ(text.findOneOf(L"xc"), 2);
    EXPECT_EQ(text.findNoCase(L"CAB"), 2);
    EXPECT_EQ(text.match(L"abd"), 2u);
    EXPECT_EQ(text.matchNoCase(L"ABC"), 3u);
    EXPECT_EQ(text.replace(L"bc", L"bcbc"), 2);
    EXPECT_TRUE(text == L"abcbcabcbc");
    EXPECT_EQ(text.replace(L"", L"x"), 0);
    EXPECT_EQ(text.remove(L'b'), 4);
    EXPECT_EQ(text.insert(99, L"!"), 7);
    EXPECT_EQ(text.deleteAtIndex(0, 2), 5);
    EXPECT_TRUE(text == L"cacc!");
    EXPECT_TRUE(AcString(L" \tq　").trim() == L"q");
    EXPECT_TRUE(AcString(L"xxqx").trimLeft(L'x').trimRight(L"yx") == L"q");
    EXPECT_EQ(AcString(L"-42x").asDeci(), -42);
    EXPECT_EQ(AcString(L"h1Fg").asHex(1), 0x1Fu);
    ACHAR* buffer = text.getBuffer(20);
    std::wcscpy(buffer, L"new");
    text.releaseBuffer();
    EXPECT_EQ(text.length(), 3u);
    EXPECT_TRUE(AcString().format(L"%s-%03d", L"墙", 7) == L"墙-007");
}

TEST(AcString, Utf8FormIsMadeOnceFromSeveralThreads) {
    const AcString text(L"线路图上的围墙");
    const char* seen[8] = {};
    std::vector<std::thread> threads;
    for (auto& at : seen)
        threads.emplace_back([&] { at = text.utf8Ptr(); });
    for (auto& thread : threads)
        thread.join();
    for (const char* at : seen)
        EXPECT_EQ(at, text.utf8Ptr());
}

} // namespace
