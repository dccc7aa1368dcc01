// What the text commands compute, apart from their dialogue.
#include "tests/module/sessionfixture.h"
#include "text/deltamark.h"
#include "text/fontreplacement.h"
#include "text/linktext.h"
#include "text/sumnumbers.h"
#include "text/textalign.h"

#include <numbers>

namespace {

class TextsTest : public SessionTest {
protected:
    static AcDbObjectId newest() {
        ads_name name;
        AcDbObjectId id;
        EXPECT_EQ(acdbEntLast(name), RTNORM);
        EXPECT_EQ(acdbGetObjectId(id, name), Acad::eOk);
        return id;
    }
};

} // namespace

TEST_F(TextsTest, RunsChangeWithTheBytesOfTheirCharacters) {
    const auto splitAt = [](const wchar_t* text) {
        std::wstring marked;
        for (const linktext::Run& run : linktext::SplitIntoRuns(text)) {
            marked += (run.isWestern ? L"<" : L"[") + run.text;
        }
        return marked;
    };
    EXPECT_EQ(splitAt(L"ABC中文DEF"), L"<ABC[中文<DEF");
    EXPECT_EQ(splitAt(L"1 号 塔"), L"<1 [号< [塔");
    EXPECT_EQ(splitAt(L"（10kV）"), L"[（<10kV[）");
    EXPECT_EQ(splitAt(L"中文"), L"[中文");
    EXPECT_EQ(splitAt(L""), L"");
}

TEST_F(TextsTest, PiecesAreTogetherAsWideAsTheText) {
    type("(entmake '((0 . \"TEXT\") (10 5.0 7.0 0.0) (40 . 10.0) (1 . \"ABC中文DEF\")))\n");
    const AcDbObjectId source = newest();
    double wholeWidth = 0.0;
    {
        const CArxObjTemplate<AcDbText> text(source, false);
        wholeWidth = MeasureText(*text).width;
        ASSERT_TRUE(linktext::PlaceRuns(*text, linktext::SplitIntoCharacters(text->textStringConst()), 1.0));
        EXPECT_FALSE(linktext::PlaceRuns(*text, linktext::SplitIntoRuns(L"中文"), 0.7));
    }
    {
        const CArxObjTemplate<AcDbText> last(newest(), false);
        EXPECT_STREQ(last->textStringConst(), L"F");
        EXPECT_NEAR(last->position().x + MeasureText(*last).width, 5.0 + wholeWidth, 1e-9);
        EXPECT_EQ(last->position().y, 7.0);
    }
    // Smaller Western runs take up what they lose themselves.
    const CArxObjTemplate<AcDbText> text(source, false);
    ASSERT_TRUE(linktext::PlaceRuns(*text, linktext::SplitIntoRuns(text->textStringConst()), 0.7));
    const CArxObjTemplate<AcDbText> last(newest(), false);
    EXPECT_STREQ(last->textStringConst(), L"DEF");
    EXPECT_EQ(last->height(), 7.0);
    const double lost =
        0.3 * (MeasureText(*text, L"ABC", 10.0).width + MeasureText(*text, L"DEF", 10.0).width);
    EXPECT_NEAR(last->position().x + MeasureText(*last).width, 5.0 + wholeWidth - lost, 1e-9);
}

TEST_F(TextsTest, SumsKeepTheMostDecimals) {
    sumnumbers::Sum sum;
    for (const wchar_t* text : {L"1.5", L"2.125", L"10", L"12.50m", L"", L"塔"}) {
        sumnumbers::AddNumber(sum, text);
    }
    EXPECT_EQ(sum.count, 3);
    EXPECT_STREQ(sumnumbers::LabelOf(sum), L"3/13.625");
    EXPECT_STREQ(sumnumbers::ReportOf(sum, 6), L"\n   选中了 6 个文本，有效文本 3 个,数值合计为: 13.625");
    EXPECT_STREQ(sumnumbers::ReportOf({}, 2), L"\n   选中了 2 个文本，有效文本 0 个,数值合计为: 0.00");
}

TEST_F(TextsTest, EndsStandBesideTheAlignmentPoint) {
    using textalign::AlignedPosition;
    using textalign::Mode;
    const AcGePoint3d position(2, 3, 0);
    const AcGePoint3d alignment(10, 50, 0);
    const AcGeVector3d along = AcGeVector3d::kXAxis;
    EXPECT_TRUE(AlignedPosition(position, along, 4.0, Mode::left, alignment).isEqualTo({10, 3, 0}));
    EXPECT_TRUE(AlignedPosition(position, along, 4.0, Mode::center, alignment).isEqualTo({8, 3, 0}));
    EXPECT_TRUE(AlignedPosition(position, along, 4.0, Mode::right, alignment).isEqualTo({6, 3, 0}));
    EXPECT_TRUE(
        AlignedPosition(position, AcGeVector3d::kYAxis, 4.0, Mode::right, alignment).isEqualTo({2, 46, 0}));
}

TEST_F(TextsTest, FacesOfTheSameHandReplaceMissingOnes) {
    using fontreplacement::ReplacementFor;
    const std::set<std::wstring> installed = {L"Arial", L"楷体_GB18030", L"楷书"};
    EXPECT_EQ(ReplacementFor(L"KaiTi", installed).typeface, L"楷体");
    EXPECT_EQ(ReplacementFor(L"KaiTi", installed).fileName, L"");
    EXPECT_EQ(ReplacementFor(L"仿宋", installed).typeface, L"宋体");
    EXPECT_EQ(ReplacementFor(L"仿宋", installed).fileName, L"SimSun.ttf");
    EXPECT_EQ(ReplacementFor(L"Futura", installed).typeface, L"宋体");
    EXPECT_EQ(ReplacementFor(L"kaiti", installed).typeface, L"宋体") << "names as they are spelt";
}

TEST_F(TextsTest, LabelsOfASeriesGoUpOrDown) {
    deltamark::Series series{L"N", L"号", 20, 5, true, 0};
    EXPECT_STREQ(deltamark::LabelOf(series), L"N20号");
    deltamark::GoOn(series);
    EXPECT_STREQ(deltamark::LabelOf(series), L"N15号");
    series.countsDown = false;
    deltamark::GoOn(series);
    EXPECT_EQ(series.number, 20);
}

TEST_F(TextsTest, AlignmentsAreTheModesOfTheirNames) {
    const auto modes = [](int alignment) {
        const deltamark::TextModes is = deltamark::ModesOf(alignment);
        return std::pair<int, int>(is.horizontal, is.vertical);
    };
    const std::pair<int, int> expected[deltamark::alignmentCount] = {{0, 0}, {1, 0}, {2, 0}, {3, 0}, {4, 0},
                                                                     {5, 0}, {0, 3}, {1, 3}, {2, 3}, {0, 2},
                                                                     {1, 2}, {2, 2}, {0, 1}, {1, 1}, {2, 1}};
    for (int i = 0; i < deltamark::alignmentCount; ++i) {
        EXPECT_EQ(modes(i), expected[i]) << i;
        EXPECT_EQ(deltamark::IsBetweenPoints(i), i == 3 || i == 5) << i;
    }
}
