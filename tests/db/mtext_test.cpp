// Multi-line texts: inline codes, breaking of lines, places of lines, stacks and columns, files.
#include "entitysamples.h"

#include "host/db/drawingsource.h"
#include "host/gi/flatten.h"
#include "host/rx/text.h"

#include <cmath>

using namespace testing_entities;

namespace {

class MTextTest : public testing::Test {
protected:
    static void SetUpTestSuite() { initialize(); }
    Drawing drawing;

    std::unique_ptr<AcDbMText> text(const wchar_t* contents, double width = 0.0, double height = 3.0) {
        auto made = std::make_unique<AcDbMText>();
        made->setTextStyle(drawing.style);
        made->setTextHeight(height);
        made->setContents(contents);
        made->setWidth(width);
        return made;
    }
    /// Width of a text in one line.
    double widthOf(const wchar_t* contents, double height = 3.0) {
        return text(contents, 0.0, height)->actualWidth();
    }
    /// The lines from top to bottom, each the text of its runs.
    std::vector<std::wstring> linesOf(const AcDbMText& text) {
        std::vector<std::wstring> lines;
        double y = 1e300;
        for (const host::MTextRun& run : text.layout().runs) {
            if (run.y < y - 1e-9) {
                lines.emplace_back();
                y = run.y;
            }
            lines.back() += run.text;
        }
        for (std::wstring& line : lines) {
            line.erase(line.find_last_not_of(L' ') + 1);
        }
        return lines;
    }
};

TEST_F(MTextTest, CodesAreReadAndLeftOut) {
    const struct {
        const wchar_t* contents;
        const wchar_t* plain;
    } table[] = {
        {L"", L""},
        {L"a\\Pb", L"a\nb"},
        {L"a\\~b", L"a\xA0"
                   L"b"},
        {L"\\\\ \\{ \\}", L"\\ { }"},
        {L"{\\H2.5;\\C1;x}y", L"xy"},
        {L"{\\fSimSun|b1|i0|c134|p2;\x5B8B}\\Ftxt,gbcbig;z", L"\x5B8B"
                                                             L"z"},
        {L"\\W0.8;\\Q15;\\T1.2;\\A1;\\c255;v", L"v"},
        {L"\\Lu\\l\\Oo\\o\\Kk\\k", L"uok"},
        {L"\\pi-2,l4,t4,c8;item^", L"item^"},
        {L"\\pqc;mid", L"mid"},
        {L"\\S1/2; \\S1#2; \\S+0.1^ -0.2;", L"1/2 1/2 +0.1 -0.2"},
        {L"\\Splain;", L"plain"},
        {L"\\S\\;/b;", L";/b"},
        {L"90%%d %%p1 %%c5 %%% %%065 %%u", L"90\xB0 \xB1"
                                           L"1 \x2205"
                                           L"5 % A %%u"},
        {L"\\U+4E2D\\U+zz", L"\x4E2DU+zz"},
        {L"\\M+5D6D0", L"\x4E2D"},
        {L"{{{open", L"open"},
        {L"close}}", L"close"},
        {L"end\\", L"end\\"},
        {L"\\Hno semicolon", L"no semicolon"},
    };
    for (const auto& row : table) {
        EXPECT_EQ(host::plainMText(row.contents), row.plain) << host::toUtf8(row.contents);
    }
}

TEST_F(MTextTest, LooksHoldWithinTheirBraces) {
    host::MTextLook start;
    start.format.height = 2.0;
    const auto paragraphs = host::parseMText(L"a{\\H3;b{\\H0.5x;\\C3;c}\\Ld\\l}e\\c16711680;f", start);
    ASSERT_EQ(paragraphs.size(), 1U);
    const auto& pieces = paragraphs[0].pieces;
    ASSERT_EQ(pieces.size(), 6U);
    const double heights[] = {2, 3, 1.5, 3, 2, 2};
    for (std::size_t index = 0; index < 6; ++index) {
        EXPECT_DOUBLE_EQ(pieces[index].look.format.height, heights[index]) << index;
    }
    EXPECT_EQ(pieces[2].look.color.colorIndex(), 3);
    EXPECT_FALSE(pieces[3].look.hasColor);
    EXPECT_TRUE(pieces[3].look.format.underlined);
    EXPECT_FALSE(pieces[4].look.format.underlined);
    EXPECT_EQ(pieces[5].look.color.blue(), 255); // blue is the highest byte
    const auto font = host::parseMText(L"\\fSimHei|b1|i1|c134|p2;x\\Ftxt.shx,gbcbig.shx;y", start);
    EXPECT_EQ(font[0].pieces[0].look.format.font.typeface, L"SimHei");
    EXPECT_TRUE(font[0].pieces[0].look.format.font.bold && font[0].pieces[0].look.format.font.italic);
    EXPECT_EQ(font[0].pieces[1].look.format.font.file, L"txt.shx");
    EXPECT_EQ(font[0].pieces[1].look.format.font.bigFontFile, L"gbcbig.shx");
}

TEST_F(MTextTest, LinesBreakWhereTheyMay) {
    const struct {
        const wchar_t* contents;
        const wchar_t* fits; ///< what the frame is as wide as
        std::vector<std::wstring> lines;
    } table[] = {
        {L"aaa bbb ccc", L"aaa bbb", {L"aaa bbb", L"ccc"}},
        {L"aaa bbb ccc", L"aaa bb", {L"aaa", L"bbb", L"ccc"}},
        {L"unbreakable", L"unb", {L"unbreakable"}},
        {L"aaa\\~bbb ccc",
         L"aaa bb",
         {L"aaa\xA0"
          L"bbb",
          L"ccc"}},
        {L"一二三四五", L"一二三", {L"一二三", L"四五"}},
        {L"一二三，四", L"一二三", {L"一二", L"三，四"}},
        {L"一二（三四", L"一二（", {L"一二", L"（三四"}},
        {L"线路abc走廊", L"线路ab", {L"线路", L"abc走", L"廊"}},
        {L"a{\\C1;b}c d", L"abc", {L"abc", L"d"}},
        {L"one\\Ptwo three", L"two three", {L"one", L"two three"}},
    };
    for (const auto& row : table) {
        EXPECT_EQ(linesOf(*text(row.contents, widthOf(row.fits))), row.lines) << host::toUtf8(row.contents);
    }
    EXPECT_EQ(linesOf(*text(L"aaa bbb ccc")).size(), 1U); // without a width only paragraphs end lines
}

TEST_F(MTextTest, LinesStandAtTheirSpacing) {
    const struct {
        const wchar_t* contents;
        AcDb::LineSpacingStyle style;
        double factor;
        double height;
    } table[] = {
        {L"a", AcDb::kAtLeast, 1, 3},
        {L"a\\Pb", AcDb::kAtLeast, 1, 8},
        {L"a\\Pb\\Pc", AcDb::kAtLeast, 1.5, 18},
        {L"a\\P{\\H6;b}", AcDb::kAtLeast, 1, 13},
        {L"a\\P{\\H6;b}", AcDb::kExactly, 1, 8},
        {L"{\\H6;a}\\Pb", AcDb::kAtLeast, 1, 11},
        {L"a\\P\\Pb", AcDb::kAtLeast, 1, 13},
        {L"a\\P\\pb1;b", AcDb::kAtLeast, 1, 11},
        {L"a\\P\\psm2;b", AcDb::kAtLeast, 1, 13},
    };
    for (const auto& row : table) {
        const auto made = text(row.contents);
        made->setLineSpacingStyle(row.style);
        made->setLineSpacingFactor(row.factor);
        EXPECT_NEAR(made->actualHeight(), row.height, 1e-9) << host::toUtf8(row.contents);
    }
}

TEST_F(MTextTest, NineAttachmentsPlaceTheFrame) {
    for (int attachment = 1; attachment <= 9; ++attachment) {
        const auto made = text(L"ab\\Pcd", 40.0);
        made->setAttachment(static_cast<AcDbMText::AttachmentPoint>(attachment));
        made->setLocation({100, 200, 0});
        AcGePoint3dArray corners;
        made->boundingPoints(corners);
        const double left = 100.0 - 20.0 * ((attachment - 1) % 3);
        const double top = 200.0 + 4.0 * static_cast<int>((attachment - 1) / 3);
        EXPECT_TRUE(corners[0].isEqualTo({left, top, 0})) << attachment;
        EXPECT_TRUE(corners[3].isEqualTo({left + 40, top - 8, 0})) << attachment;
        // Lines stand at the frame's side that the attachment names.
        const host::MTextRun run = made->layout().runs[0];
        const double start = 0.5 * ((attachment - 1) % 3) * (40.0 - widthOf(L"ab"));
        EXPECT_NEAR(100.0 + run.x, left + start, 1e-9) << attachment;
        EXPECT_NEAR(200.0 + run.y, top - 3, 1e-9) << attachment;
        // Changing it may leave the text where it is.
        made->setAttachmentMovingLocation(AcDbMText::kTopLeft);
        AcGePoint3dArray same;
        made->boundingPoints(same);
        EXPECT_TRUE(same[0].isEqualTo(corners[0])) << attachment;
    }
}

TEST_F(MTextTest, ParagraphsAreIndentedAndAligned) {
    const double a = widthOf(L"aa");
    const auto indented = text(L"\\pi2,l1;aa bb", widthOf(L"aa") + 10.0);
    const auto runs = indented->layout().runs;
    ASSERT_EQ(runs.size(), 2U);
    EXPECT_NEAR(runs[0].x, 9.0, 1e-9); // in text heights: left margin 1, first line 2 more
    EXPECT_NEAR(runs[1].x, 3.0, 1e-9);
    EXPECT_NEAR(text(L"\\pqr;aa", 50)->layout().runs[0].x, 50.0 - a, 1e-9);
    EXPECT_NEAR(text(L"\\pqc;aa", 50)->layout().runs[0].x, 25.0 - 0.5 * a, 1e-9);
    const auto tabs = text(L"\\pt5,r20;x\taa\tbb", 200)->layout().runs;
    ASSERT_EQ(tabs.size(), 3U);
    EXPECT_NEAR(tabs[1].x, 15.0, 1e-9);
    EXPECT_NEAR(tabs[2].x, 60.0 - widthOf(L"bb"), 1e-9);
    EXPECT_NEAR(text(L"x\taa", 0)->layout().runs[1].x, 12.0, 1e-9); // every four heights
    // Justified lines reach both sides, the last one does not.
    const double width = widthOf(L"aa bb") + 5.0;
    const auto spread = text(L"\\pqj;aa bb cc", width)->layout().runs;
    ASSERT_GE(spread.size(), 3U);
    double right = 0.0;
    for (const host::MTextRun& run : spread) {
        right = run.text.find(L"bb") != std::wstring::npos ? run.x + widthOf(L"bb") : right;
    }
    EXPECT_NEAR(right, width, 1e-9);
    EXPECT_NEAR(spread.back().x, 0.0, 1e-9);
}

TEST_F(MTextTest, StacksStandOnTheLine) {
    const host::MTextLayout bar = text(L"\\S1/22;")->layout();
    ASSERT_EQ(bar.runs.size(), 2U);
    ASSERT_EQ(bar.bars.size(), 1U);
    const double wide = widthOf(L"22");
    EXPECT_NEAR(bar.runs[0].x, 0.5 * (wide - widthOf(L"1")), 1e-9);
    EXPECT_NEAR(bar.runs[0].y - bar.runs[1].y, 3.0 + 2 * 0.6, 1e-9); // a gap of a fifth on both sides
    EXPECT_NEAR(bar.bars[0].start.y, bar.bars[0].end.y, 1e-9);
    EXPECT_NEAR(bar.bars[0].end.x - bar.bars[0].start.x, wide, 1e-9);
    const host::MTextLayout slanted = text(L"\\S1#2;")->layout();
    ASSERT_EQ(slanted.bars.size(), 1U);
    EXPECT_GT(slanted.bars[0].end.y, slanted.bars[0].start.y);
    EXPECT_GE(slanted.runs[1].x, slanted.runs[0].x + slanted.runs[0].advance);
    EXPECT_TRUE(text(L"\\S+1^ -2;")->layout().bars.empty());
    // What stands beside is raised to the stack's middle or top.
    for (int alignment = 0; alignment <= 2; ++alignment) {
        const std::wstring contents = L"\\A" + std::to_wstring(alignment) + L";x\\S1^2;";
        const auto runs = text(contents.c_str())->layout().runs;
        const double total = 2 * (3.0 + 0.6);
        EXPECT_NEAR(runs.back().y - runs.front().y, alignment * 0.5 * (3.0 - total), 1e-9);
    }
}

TEST_F(MTextTest, ColumnsAreFilledInTurn) {
    const auto made = text(L"1\\P2\\P3\\P4\\P5");
    made->setHeight(8.0); // two lines
    made->setDynamicColumns(20.0, 4.0, true);
    auto runs = made->layout().runs;
    ASSERT_EQ(runs.size(), 5U);
    const double columns[] = {0, 0, 24, 24, 48};
    for (std::size_t index = 0; index < 5; ++index) {
        EXPECT_NEAR(runs[index].x, columns[index], 1e-9) << index;
        EXPECT_NEAR(runs[index].y, index % 2 == 0 ? -3 : -8, 1e-9) << index;
    }
    EXPECT_NEAR(made->actualWidth(), 68, 1e-9);
    made->setStaticColumns(20.0, 4.0, 2); // the last column takes what is left
    runs = made->layout().runs;
    EXPECT_NEAR(runs[4].x, 24, 1e-9);
    EXPECT_NEAR(runs[4].y, -13, 1e-9);
    made->setColumnFlowReversed(true);
    EXPECT_NEAR(made->layout().runs[0].x, 24, 1e-9);
    made->setColumnFlowReversed(false);
    made->setContents(L"1\\N2");
    EXPECT_NEAR(made->layout().runs[1].x, 24, 1e-9);
    made->setColumnAutoHeight(false);
    made->setDynamicColumns(20.0, 4.0, false);
    made->setContents(L"1\\P2\\P3");
    made->setColumnHeight(0, 3.0);
    EXPECT_NEAR(made->layout().runs[1].x, 24, 1e-9);
}

TEST_F(MTextTest, ExplodesIntoLinesOfText) {
    const auto made = text(L"ab\\P{\\C1;\\H6;\\Lcd\\l} \\S1/2;");
    made->setRotation(host::halfPi);
    made->setLocation({10, 20, 0});
    AcDbVoidPtrArray parts;
    ASSERT_EQ(made->explode(parts), Acad::eOk);
    ASSERT_EQ(parts.length(), 5);
    std::vector<std::unique_ptr<AcDbEntity>> owned;
    for (void* part : parts) {
        owned.emplace_back(static_cast<AcDbEntity*>(part));
    }
    const auto* first = AcDbText::cast(owned[0].get());
    ASSERT_NE(first, nullptr);
    EXPECT_TRUE(first->position().isEqualTo({13, 20, 0})); // turned: down is along X
    EXPECT_NEAR(first->rotation(), host::halfPi, 1e-12);
    const auto* second = AcDbText::cast(owned[1].get());
    EXPECT_EQ(second->colorIndex(), 1);
    EXPECT_EQ(second->height(), 6);
    EXPECT_STREQ(second->textStringConst(), L"%%ucd");
    EXPECT_NE(AcDbLine::cast(owned[4].get()), nullptr);
    int fragments = 0;
    made->explodeFragments(
        [](AcDbMTextFragment* fragment, void* count) {
            EXPECT_GT(fragment->capsHeight, 0);
            return ++*static_cast<int*>(count) < 2 ? 1 : 0;
        },
        &fragments);
    EXPECT_EQ(fragments, 2);
}

class RunSink : public host::PrimitiveSink {
public:
    void polyline(std::span<const AcGePoint3d> points, const host::Pen&) override {
        lines.emplace_back(points.begin(), points.end());
    }
    void area(const host::Area&, const host::Pen& pen) override { fills.push_back(pen.color); }
    void glyphs(const host::GlyphRun& run, const host::Pen& pen) override {
        origins.push_back(run.origin);
        colors.push_back(pen.color.colorIndex());
    }
    std::vector<std::vector<AcGePoint3d>> lines;
    std::vector<AcCmEntityColor> fills;
    std::vector<AcGePoint3d> origins;
    std::vector<Adesk::Int16> colors;
};

TEST_F(MTextTest, DrawsWhatWasMeasured) {
    auto* made = text(L"ab {\\C1;cd}\\Pef \\S1/2;", 100.0).release();
    made->setRotation(host::halfPi);
    made->setLocation({10, 20, 0});
    made->setAttachment(AcDbMText::kMiddleCenter);
    made->setBackgroundFill(true);
    made->setBackgroundFillColor(AcCmColor(AcCmEntityColor(1, 2, 3)));
    made->setColorIndex(5);
    drawing.append(made);
    RunSink sink;
    const auto source = host::drawingSource(drawing.database);
    host::Flattener flattener(*source, sink, {});
    const host::ReadAccess access(*made);
    flattener.draw(*made);
    const host::MTextLayout layout = made->layout();
    ASSERT_EQ(sink.origins.size(), layout.runs.size());
    for (std::size_t index = 0; index < layout.runs.size(); ++index) {
        const host::MTextRun& run = layout.runs[index];
        EXPECT_TRUE(sink.origins[index].isEqualTo({10 - run.y, 20 + run.x, 0})) << index;
        EXPECT_EQ(sink.colors[index], run.hasColor ? 1 : 5) << index;
    }
    EXPECT_EQ(sink.lines.size(), 1U); // the fraction's bar
    ASSERT_EQ(sink.fills.size(), 1U);
    EXPECT_EQ(sink.fills[0].blue(), 3);
}

TEST_F(MTextTest, ScalingTakesHeightsInCodesAlong) {
    const auto made = text(L"a{\\H6;b}{\\H0.5x;c}", 40.0);
    made->transformBy(AcGeMatrix3d::scaling(2.0, AcGePoint3d::kOrigin));
    AcString contents;
    made->contents(contents);
    EXPECT_EQ(contents, L"a{\\H12;b}{\\H0.5x;c}");
    EXPECT_EQ(made->textHeight(), 6.0);
    EXPECT_EQ(made->width(), 80.0);
}

TEST_F(MTextTest, GripOfTheFrameChangesTheWidth) {
    for (const auto& [attachment, change] :
         {std::pair(AcDbMText::kTopLeft, 5.0), std::pair(AcDbMText::kTopCenter, 10.0),
          std::pair(AcDbMText::kTopRight, -5.0)}) {
        const auto made = text(L"a", 40.0);
        made->setAttachment(attachment);
        AcDbIntArray second;
        second.append(1);
        ASSERT_EQ(made->moveGripPointsAt(second, {5, 7, 0}), Acad::eOk);
        EXPECT_NEAR(made->width(), 40.0 + change, 1e-9);
        EXPECT_TRUE(made->location().isEqualTo(AcGePoint3d::kOrigin));
    }
}

TEST_F(MTextTest, VerticalLinesRunDownTheFirstAtTheRight) {
    for (int attachment = AcDbMText::kTopLeft; attachment <= AcDbMText::kBottomRight; ++attachment) {
        const auto made = text(L"电力线\\PAB", 0.0, 2.0);
        made->setFlowDirection(AcDbMText::kTtoB);
        made->setAttachment(static_cast<AcDbMText::AttachmentPoint>(attachment));
        const host::MTextLayout laid = made->layout();
        ASSERT_EQ(laid.runs.size(), 2U);
        EXPECT_GT(laid.runs[0].x, laid.runs[1].x + 2.0);
        EXPECT_GT(laid.actualHeight, laid.actualWidth);
        const double across = 0.5 * ((attachment - 1) % 3), down = 0.5 * ((attachment - 1) / 3);
        const AcGePoint2d lower = laid.lowerLeft, upper = laid.upperRight;
        EXPECT_NEAR(lower.x + across * (upper.x - lower.x), 0.0, 1e-9) << attachment;
        EXPECT_NEAR(upper.y - down * (upper.y - lower.y), 0.0, 1e-9) << attachment;
        EXPECT_GE(laid.ink.left, lower.x - 0.5);
        EXPECT_LE(laid.ink.right, upper.x + 0.5);
        EXPECT_LE(laid.ink.top, upper.y + 1e-9);
    }
    // The width breaks them along the line; a stack is a word.
    const auto broken = text(L"甲乙丙丁戊己", 7.0, 2.0);
    broken->setFlowDirection(AcDbMText::kTtoB);
    EXPECT_EQ(broken->layout().runs.size(), 3U);
    const auto stack = text(L"\\S1/2;");
    stack->setFlowDirection(AcDbMText::kTtoB);
    ASSERT_EQ(stack->layout().runs.size(), 1U);
    EXPECT_EQ(stack->layout().runs[0].text, L"1/2");
    // A style that is not vertical: each character becomes a text where it stood.
    AcDbVoidPtrArray parts;
    broken->explode(parts);
    ASSERT_EQ(parts.length(), 6);
    AcDbExtents whole, together;
    broken->getGeomExtents(whole);
    for (void* part : parts) {
        const std::unique_ptr<AcDbText> one(static_cast<AcDbText*>(part));
        AcDbExtents box;
        one->getGeomExtents(box);
        together.addExt(box);
    }
    EXPECT_TRUE(together.minPoint().isEqualTo(whole.minPoint(), AcGeTol().setEqualPoint(1e-6)));
    EXPECT_TRUE(together.maxPoint().isEqualTo(whole.maxPoint(), AcGeTol().setEqualPoint(1e-6)));
}

TEST_F(MTextTest, LongContentsAreCutForFiles) {
    std::wstring contents;
    for (int index = 0; index < 600; ++index) {
        contents += index % 7 == 0 ? L'^' : index % 5 == 0 ? L'电' : L'a';
    }
    const auto made = text(contents.c_str());
    const std::vector<std::string> groups = groupsOf(*made);
    std::vector<std::size_t> sizes;
    std::string last;
    for (const std::string& group : groups) {
        if (group.starts_with("3=") || group.starts_with("1=")) {
            sizes.push_back(host::fromUtf8(group.substr(2)).size());
            last = group.substr(0, 2);
        }
    }
    EXPECT_EQ(sizes, (std::vector<std::size_t>{250, 250, 100}));
    EXPECT_EQ(last, "1=");
    const host::ResbufList list = resbufOf(*made);
    host::ResbufDxfReader reader(&drawing.database, list.get());
    AcDbMText read;
    ASSERT_EQ(read.dxfIn(&reader), Acad::eOk);
    AcString back;
    read.contents(back);
    EXPECT_EQ(std::wstring(back.kwszPtr()), contents);
}

} // namespace
