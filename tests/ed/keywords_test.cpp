// Keyword lists, wildcards and the cutting of typed text into answers.
#include "host/ed/aced.h"
#include "host/ed/input.h"
#include "host/ed/keywords.h"
#include "host/ed/lisphook.h"

#include <gtest/gtest.h>
#include <sstream>

namespace {

std::wstring match(const wchar_t* list, const wchar_t* answer) {
    return host::KeywordList(list).matchGlobal(answer).value_or(L"-");
}

TEST(Keywords, CapitalsAndWholeWords) {
    const wchar_t* list = L"Close Undo LType eXit 3P BOX LAYER,LA";
    EXPECT_EQ(match(list, L"c"), L"Close");
    EXPECT_EQ(match(list, L"CLOS"), L"Close");
    EXPECT_EQ(match(list, L"close"), L"Close");
    EXPECT_EQ(match(list, L"closed"), L"-");
    EXPECT_EQ(match(list, L"l"), L"-");
    EXPECT_EQ(match(list, L"lt"), L"LType");
    EXPECT_EQ(match(list, L"x"), L"eXit");
    EXPECT_EQ(match(list, L"exit"), L"eXit");
    EXPECT_EQ(match(list, L"ex"), L"eXit");
    EXPECT_EQ(match(list, L"e"), L"-");
    EXPECT_EQ(match(list, L"3p"), L"3P");
    EXPECT_EQ(match(list, L"3"), L"-");
    EXPECT_EQ(match(list, L"box"), L"BOX");
    EXPECT_EQ(match(list, L"b"), L"-");
    EXPECT_EQ(match(list, L"la"), L"LAYER");
    EXPECT_EQ(match(list, L"lay"), L"LAYER");
    EXPECT_EQ(match(list, L"_Undo"), L"Undo");
    EXPECT_EQ(match(list, L""), L"-");
    EXPECT_EQ(match(list, L"_"), L"-");
    EXPECT_EQ(match(L"", L"x"), L"-");
}

TEST(Keywords, LocalAndGlobalForms) {
    const wchar_t* list = L"闭合(C) 放弃(U) _Close Undo";
    EXPECT_EQ(match(list, L"闭合(C)"), L"Close");
    EXPECT_EQ(match(list, L"c"), L"Close");
    EXPECT_EQ(match(list, L"_u"), L"Undo");
    EXPECT_EQ(match(list, L"Undo"), L"-");
    EXPECT_EQ(match(L"Ja Nein _Yes No", L"j"), L"Yes");
    EXPECT_EQ(match(L"Ja Nein _Yes No", L"_y"), L"Yes");
    EXPECT_EQ(match(L"Ja Nein _Yes No", L"y"), L"-");
}

TEST(Wildcards, EveryKind) {
    const auto fits = [](const wchar_t* text, const wchar_t* pattern) {
        return acutWcMatch(text, pattern) == RTNORM;
    };
    EXPECT_TRUE(fits(L"$TQ_12", L"$TQ,$TQ_*"));
    EXPECT_TRUE(fits(L"Name", L"N*"));
    EXPECT_FALSE(fits(L"Name", L"n*"));
    EXPECT_TRUE(fits(L"Name", L"???,~*m*,N*"));
    EXPECT_TRUE(fits(L"A1", L"@#"));
    EXPECT_TRUE(fits(L"A-1", L"@.#"));
    EXPECT_TRUE(fits(L"b7", L"[a-c]#"));
    EXPECT_FALSE(fits(L"d7", L"[a-c]#"));
    EXPECT_TRUE(fits(L"d7", L"[~a-c]#"));
    EXPECT_TRUE(fits(L"*U", L"`*U"));
    EXPECT_FALSE(fits(L"xU", L"`*U"));
    EXPECT_TRUE(fits(L"a,b", L"a`,b"));
    EXPECT_TRUE(fits(L"墙1", L"墙#"));
    EXPECT_FALSE(fits(L"abc", L"~a*"));
    EXPECT_TRUE(fits(L"", L"*"));
    EXPECT_FALSE(fits(L"", L"?"));
    EXPECT_FALSE(fits(L"a", L""));
    EXPECT_TRUE(host::wildcardMatch(L"dxtx", L"DXT*"));
    // Many runs over a long text must not take long.
    EXPECT_FALSE(host::wildcardMatch(std::wstring(5000, L'a'), L"*a*a*a*a*a*a*a*a*a*b"));
}

/// Reads a script with the given modes ('t' token, 'l' line) and shows the items.
std::wstring items(const std::string& script, std::string_view modes) {
    std::istringstream stream(script);
    host::TypedInput input(stream);
    std::wstring shown;
    for (const char mode : modes) {
        host::InputRequest request;
        request.mode = mode == 'l' ? host::ReadMode::line : host::ReadMode::token;
        const host::InputItem item = input.read(request);
        switch (item.kind) {
        case host::InputItem::Kind::text:
            shown += L"<" + item.text + L">";
            break;
        case host::InputItem::Kind::lisp:
            shown += L"{" + item.text + L"}";
            break;
        case host::InputItem::Kind::cancel:
            shown += L"^";
            break;
        default:
            shown += L".";
        }
    }
    return shown;
}

TEST(TypedInput, BlanksAndLineEndsEndAnswers) {
    EXPECT_EQ(items("LINE 0,0 1,1\n\nX", "tttttt"), L"<LINE><0,0><1,1><><X>.");
    EXPECT_EQ(items("A  B\r\n", "tttt"), L"<A><><B>.");
    EXPECT_EQ(items("TEXT two words \nY", "tlt"), L"<TEXT><two words ><Y>");
    EXPECT_EQ(items("\xEF\xBB\xBF"
                    "A\n; comment\n ;no comment\n",
                    "ttttt"),
              L"<A><><;no><comment>.");
    EXPECT_EQ(items("A\n^C\nB\n\x1b"
                    "C\n",
                    "ttttt"),
              L"<A>^<B>^<C>");
    EXPECT_EQ(items("", "tt"), L"..");
}

TEST(TypedInput, Expressions) {
    EXPECT_EQ(items("(+ 1 2)\nA", "tt"), L"{(+ 1 2)}<A>");
    EXPECT_EQ(items("(foo \")\" ; )\n (bar)) B\n", "tt"), L"{(foo \")\" ; )\n (bar))}<B>");
    EXPECT_EQ(items("(a ;| ( |; \"\\\"(\")C\n", "tt"), L"{(a ;| ( |; \"\\\"(\")}<C>");
    EXPECT_EQ(items("!pt (x)\n", "tt"), L"{!pt}{(x)}");
    EXPECT_EQ(items("(literal)\n", "l"), L"<(literal)>");
    EXPECT_EQ(items("(open", "tt"), L"{(open\n}.");
}

TEST(TypedInput, PostedTextComesBeforeTheNextLine) {
    std::istringstream stream("A B\nC\n");
    host::TypedInput input(stream);
    const auto next = [&] { return input.read({}).text; };
    EXPECT_EQ(next(), L"A");
    input.post(L"X Y\n");
    EXPECT_EQ(next(), L"B");
    EXPECT_EQ(next(), L"X");
    EXPECT_FALSE(input.takeDialogLine());
    input.post(L"_.Z ");
    EXPECT_EQ(next(), L"Y");
    EXPECT_EQ(next(), L"_.Z");
    EXPECT_EQ(next(), L"C");
    EXPECT_TRUE(input.atEnd());
}

TEST(TypedInput, DialogLines) {
    std::istringstream stream("A\n@set 1 two words\nB\n");
    host::TypedInput input(stream);
    EXPECT_FALSE(input.takeDialogLine());
    EXPECT_EQ(input.read({}).text, L"A");
    EXPECT_EQ(input.takeDialogLine(), L"@set 1 two words");
    EXPECT_FALSE(input.takeDialogLine());
    EXPECT_EQ(input.read({}).text, L"B");
    EXPECT_EQ(input.position(), L"第 3 行");
}

} // namespace
