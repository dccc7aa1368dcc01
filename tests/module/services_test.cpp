// The small exported services.
#include "services/commtools.h"
#include "tests/module/sessionfixture.h"

namespace {

std::vector<std::wstring> split(const wchar_t* text, const wchar_t* separators, int keepEmpty, int noTrim) {
    AcArray<CString> pieces;
    pieces.append(L"left over");
    SplitString(pieces, text, separators, keepEmpty, noTrim);
    return {pieces.begin(), pieces.end()};
}

using Pieces = std::vector<std::wstring>;

class ServicesTest : public SessionTest {};

} // namespace

TEST(SplitString, KeepsAndTrimsByItsSwitches) {
    struct Case {
        const wchar_t* text;
        const wchar_t* separators;
        int keepEmpty;
        int noTrim;
        Pieces pieces;
    };
    const Case cases[] = {
        {L"a,,b", L",", 0, 0, {L"a", L"b"}},
        {L"a,,b", L",", 0, 1, {L"a", L"b"}},
        {L"a,,b", L",", 1, 1, {L"a", L"", L"b"}},
        {L"a,,b", L",", 1, 0, {L"a", L"b"}},
        {L" a , b ", L",", 0, 0, {L"a", L"b"}},
        {L" a , b ", L",", 0, 1, {L" a ", L" b "}},
        {L"a,b,", L",", 0, 0, {L"a", L"b"}},
        {L"a,b,", L",", 1, 1, {L"a", L"b"}},
        {L"", L",", 1, 1, {}},
        {L" \t ", L",", 1, 0, {}},
        {L" \t ", L",", 0, 1, {L" \t "}},
        {L",,", L",", 1, 1, {L"", L""}},
        {L"a;b c,d", L"; ,", 0, 0, {L"a", L"b", L"c", L"d"}},
        {L"abc", L"", 0, 0, {L"abc"}},
        {nullptr, L",", 1, 1, {}},
        {L"甲、乙", L"、", 0, 0, {L"甲", L"乙"}},
        // A piece dropped for being empty leaves the blanks behind it to the next one.
        {L", a", L",", 0, 0, {L" a"}},
        {L", a,b", L",", 0, 0, {L" a", L"b"}},
        {L", a", L",", 1, 0, {L"a"}},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(split(c.text, c.separators, c.keepEmpty, c.noTrim), c.pieces)
            << (c.text != nullptr ? host::toUtf8(c.text) : "null") << " keepEmpty " << c.keepEmpty
            << " noTrim " << c.noTrim;
    }
}

TEST_F(ServicesTest, ScaleTakesAnyNumber) {
    EXPECT_EQ(GetCOMMTOOLSSystemScale(), 1.0);
    for (const double scale : {2.0, 0.0, -3.0, 1.0}) {
        SetCOMMTOOLSSystemScale(scale);
        EXPECT_EQ(GetCOMMTOOLSSystemScale(), scale);
    }
}

TEST_F(ServicesTest, FolderIsTheOneOfTheModuleFile) {
    const AcString folder = GetMySoftPath(false);
    const std::filesystem::path native = host::toNativePath(folder.constPtr());
    EXPECT_TRUE(std::filesystem::equivalent(native, app::programFolder())) << native;
    EXPECT_FALSE(folder.endsWith(L"\\"));
    EXPECT_EQ(GetMySoftPath(true), folder + L"\\");
}
