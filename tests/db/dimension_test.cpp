// Dimensions: measurement and its text, the picture of every kind, the anonymous block, overrides, leaders
// and tolerances.
#include "entitysamples.h"

#include "host/db/entities/arrowheads.h"
#include "host/rx/text.h"

#include <algorithm>
#include <cmath>

using namespace testing_entities;

namespace {

constexpr double pi = host::pi;

std::string number(double value) {
    char text[40];
    std::snprintf(text, sizeof text, "%.4g", std::fabs(value) < 1e-9 ? 0.0 : value);
    return text;
}
std::string at(const AcGePoint3d& point) {
    return number(point.x) + "," + number(point.y);
}
std::string describe(const AcDbEntity& entity) {
    if (const auto* line = AcDbLine::cast(&entity)) {
        return "line " + at(line->startPoint()) + " " + at(line->endPoint());
    }
    if (const auto* arc = AcDbArc::cast(&entity)) {
        return "arc " + at(arc->center()) + " " + number(arc->radius()) + " " +
               number(arc->startAngle() * 180 / pi) + " " + number(arc->endAngle() * 180 / pi);
    }
    if (const auto* solid = AcDbSolid::cast(&entity)) {
        AcGePoint3d base;
        AcGePoint3d tip;
        solid->getPointAt(0, base);
        solid->getPointAt(2, tip);
        return "arrow " + at(tip);
    }
    if (const auto* text = AcDbMText::cast(&entity)) {
        AcString contents;
        text->contents(contents);
        return "text " + at(text->location()) + " " + number(text->rotation() * 180 / pi) + " " +
               host::toUtf8(contents.view());
    }
    if (const auto* block = AcDbBlockReference::cast(&entity)) {
        return "block " + at(block->position()) + " " + number(block->rotation() * 180 / pi);
    }
    return {};
}

class DimensionTest : public testing::Test {
protected:
    static void SetUpTestSuite() { initialize(); }
    DimensionTest() {
        // Round numbers to reckon with.
        host::DimVariables v;
        v.asz = 2;
        v.exo = 1;
        v.exe = 1.5;
        v.gap = 0.5;
        v.txt = 2;
        v.tad = 1;
        v.tih = v.toh = 0;
        v.tofl = 1;
        v.dec = 2;
        v.cen = 1;
        style = drawing.database.dimstyle();
        v.txsty = drawing.style;
        const host::Opened<AcDbDimStyleTableRecord> record(style, AcDb::kForWrite);
        record->setDimVariables(v);
    }
    /// What is seen, points left out.
    std::vector<std::string> picture(AcDbDimension& dimension) {
        dimension.setDimensionStyle(style);
        std::vector<std::string> lines;
        for (const auto& part : dimension.computedParts()) {
            if (const std::string line = describe(*part); !line.empty()) {
                lines.push_back(line);
            }
        }
        return lines;
    }
    /// The same of a resident's block.
    std::vector<std::string> blockPicture(AcDbObjectId id) {
        const auto* dimension = host::peek<AcDbDimension>(id);
        const auto* block = host::peek<AcDbBlockTableRecord>(dimension->data().block);
        std::vector<std::string> lines;
        for (AcDbStub* stub : block->entities()) {
            const auto* entity = host::peek<AcDbEntity>(stub);
            const host::ReadAccess access(*entity);
            if (const std::string line = describe(*entity); !line.empty()) {
                lines.push_back(line);
            }
        }
        return lines;
    }
    AcDbObjectId appendRotated(const wchar_t* text = L"") {
        auto* dimension = new AcDbRotatedDimension(0.0, {0, 0, 0}, {100, 10, 0}, {100, 20, 0}, text, style);
        return drawing.append(dimension);
    }
    double textWidth(const wchar_t* contents) {
        AcDbMText text;
        text.setTextStyle(drawing.style);
        text.setTextHeight(2);
        text.setContents(contents);
        return text.actualWidth();
    }
    Drawing drawing;
    AcDbObjectId style;
};
using Lines = std::vector<std::string>;

// Text.

struct TextCase {
    const char* name;
    void (*set)(host::DimVariables&);
    double value;
    const wchar_t* text;
    const wchar_t* expected;
};

TEST_F(DimensionTest, LengthsBecomeText) {
    using V = host::DimVariables;
    const TextCase table[] = {
        {"decimal", [](V& v) { v.dec = 3; }, 12.5, L"", L"12.500"},
        {"zeros",
         [](V& v) {
             v.dec = 3;
             v.zin = 12;
         },
         0.5, L"", L".5"},
        {"comma",
         [](V& v) {
             v.dec = 2;
             v.dsep = ',';
         },
         1504.679, L"", L"1504,68"},
        {"rounded",
         [](V& v) {
             v.dec = 2;
             v.rnd = 0.25;
         },
         3.4, L"", L"3.50"},
        {"factor",
         [](V& v) {
             v.dec = 0;
             v.lfac = 1000;
         },
         3.4, L"", L"3400"},
        {"layout factor",
         [](V& v) {
             v.dec = 1;
             v.lfac = -2;
         },
         3.4, L"", L"3.4"},
        {"suffix",
         [](V& v) {
             v.dec = 0;
             v.post = L" m";
         },
         7, L"", L"7 m"},
        {"prefix and suffix",
         [](V& v) {
             v.dec = 0;
             v.post = L"L=<>m";
         },
         7, L"", L"L=7m"},
        {"override", [](V& v) { v.dec = 0; }, 7, L"about <> and <>", L"about 7 and 7"},
        {"replaced", [](V& v) { v.dec = 0; }, 7, L"none", L"none"},
        {"suppressed", [](V& v) { v.dec = 0; }, 7, L" ", L""},
        {"symmetric",
         [](V& v) {
             v.dec = 1;
             v.tol = 1;
             v.tp = v.tm = 0.05;
             v.tdec = 2;
         },
         7, L"", L"7.0%%p0.05"},
        {"deviations",
         [](V& v) {
             v.dec = 1;
             v.tol = 1;
             v.tp = 0.2;
             v.tm = 0.1;
             v.tdec = 1;
             v.tfac = 0.7;
         },
         7, L"", L"\\A1;7.0{\\H0.7x;\\S+0.2^ -0.1;}"},
        {"limits",
         [](V& v) {
             v.dec = 1;
             v.lim = 1;
             v.tp = 0.2;
             v.tm = 0.1;
         },
         7, L"", L"{\\S7.2^ 6.9;}"},
        {"alternate",
         [](V& v) {
             v.dec = 0;
             v.alt = 1;
             v.altf = 0.1;
             v.altd = 1;
             v.apost = L" cm";
         },
         70, L"", L"70 [7.0 cm]"},
        {"architectural",
         [](V& v) {
             v.lunit = 4;
             v.dec = 4;
             v.frac = 2;
         },
         15.5, L"", L"1'-3 1/2\""},
        {"stacked",
         [](V& v) {
             v.lunit = 5;
             v.dec = 4;
             v.frac = 0;
         },
         15.5, L"", L"15{\\H0.7x;\\S1/2;}"},
        {"slanted",
         [](V& v) {
             v.lunit = 5;
             v.dec = 4;
             v.frac = 1;
         },
         0.25, L"", L"{\\H0.7x;\\S1#4;}"},
        {"scientific",
         [](V& v) {
             v.lunit = 1;
             v.dec = 2;
         },
         1234, L"", L"1.23E+03"},
    };
    for (const TextCase& row : table) {
        host::DimVariables v;
        row.set(v);
        host::DimTextRequest request;
        request.value = row.value;
        request.text = row.text;
        EXPECT_EQ(host::dimensionText(v, request), row.expected) << row.name;
    }
}

TEST_F(DimensionTest, AnglesBecomeText) {
    using V = host::DimVariables;
    const TextCase table[] = {
        {"degrees", [](V& v) { v.adec = 1; }, pi / 6, L"", L"30.0%%d"},
        {"as lengths",
         [](V& v) {
             v.adec = -1;
             v.dec = 2;
         },
         pi / 6, L"", L"30.00%%d"},
        {"without zeros",
         [](V& v) {
             v.adec = 3;
             v.azin = 2;
         },
         pi / 8, L"", L"22.5%%d"},
        {"minutes",
         [](V& v) {
             v.aunit = 1;
             v.adec = 3;
         },
         30.5083333333333 * pi / 180, L"", L"30%%d30'30\""},
        {"gradians",
         [](V& v) {
             v.aunit = 2;
             v.adec = 0;
         },
         pi / 2, L"", L"100g"},
        {"radians",
         [](V& v) {
             v.aunit = 3;
             v.adec = 2;
         },
         1.5, L"", L"1.50r"},
    };
    for (const TextCase& row : table) {
        host::DimVariables v;
        row.set(v);
        host::DimTextRequest request;
        request.measure = host::DimMeasure::angle;
        request.value = row.value;
        EXPECT_EQ(host::dimensionText(v, request), row.expected) << row.name;
    }
}

// Pictures.

TEST_F(DimensionTest, RotatedDimension) {
    AcDbRotatedDimension dimension(0.0, {0, 0, 0}, {100, 10, 0}, {100, 20, 0});
    EXPECT_EQ(picture(dimension), (Lines{"line 0,1 0,21.5", "line 100,11 100,21.5", "line 2,20 98,20",
                                         "arrow 0,20", "arrow 100,20", "text 50,21.5 0 100.00"}));
    double value = 0.0;
    dimension.getMeasurement(value);
    EXPECT_EQ(value, 100.0);
    // Upright it is read from the right side.
    AcDbRotatedDimension upright(host::halfPi, {0, 0, 0}, {10, 100, 0}, {20, 100, 0});
    EXPECT_EQ(picture(upright), (Lines{"line 1,0 21.5,0", "line 11,100 21.5,100", "line 20,2 20,98",
                                       "arrow 20,0", "arrow 20,100", "text 18.5,50 90 100.00"}));
}

TEST_F(DimensionTest, AlignedDimensionAndSuppression) {
    AcDbAlignedDimension dimension({0, 0, 0}, {30, 40, 0}, {-8, 6, 0});
    const Lines lines = picture(dimension);
    ASSERT_EQ(lines.size(), 6U);
    EXPECT_EQ(lines[0], "line -0.8,0.6 -9.2,6.9");
    EXPECT_EQ(lines[2], "line -6.8,7.6 20.8,44.4");
    EXPECT_EQ(lines[5], "text 5.8,26.9 53.13 50.00");
    dimension.setDimse1(true);
    dimension.setDimsd2(true);
    const Lines less = picture(dimension);
    EXPECT_EQ(less, (Lines{"line 29.2,40.6 20.8,46.9", "line -6.8,7.6 7,26", "arrow -8,6",
                           "text 5.8,26.9 53.13 50.00"}));
}

TEST_F(DimensionTest, TextBreaksALineItStandsOn) {
    AcDbRotatedDimension dimension(0.0, {0, 0, 0}, {100, 0, 0}, {0, 20, 0});
    picture(dimension);
    dimension.setDimtad(0);
    const double half = 0.5 * textWidth(L"100.00") + 0.5;
    const Lines lines = picture(dimension);
    EXPECT_EQ(lines[2], "line 2,20 " + number(50 - half) + ",20");
    EXPECT_EQ(lines[3], "line " + number(50 + half) + ",20 98,20");
    EXPECT_EQ(lines.back(), "text 50,20 0 100.00");
    // Level text on an upright line breaks it by its height.
    AcDbRotatedDimension upright(host::halfPi, {0, 0, 0}, {0, 100, 0}, {20, 0, 0});
    picture(upright);
    upright.setDimtih(true);
    const Lines level = picture(upright);
    EXPECT_EQ(level[2], "line 20,2 20,48.5");
    EXPECT_EQ(level.back(), "text 20,50 0 100.00");
}

TEST_F(DimensionTest, WhatDoesNotFitGoesOutside) {
    const double width = textWidth(L"6.00");
    ASSERT_GT(width, 3.0);
    AcDbRotatedDimension narrow(0.0, {0, 0, 0}, {6, 0, 0}, {0, 20, 0});
    // Neither text and arrows nor (with this font) the text alone: the arrows stay.
    const Lines text = picture(narrow);
    const bool textFits = width + 1.0 <= 6.0;
    const auto has = [](const Lines& lines, const std::string& wanted) {
        return std::find(lines.begin(), lines.end(), wanted) != lines.end();
    };
    if (textFits) {
        EXPECT_TRUE(has(text, "line -4,20 -2,20"));
        EXPECT_TRUE(has(text, "line 0,20 6,20")); // DIMTOFL
        EXPECT_TRUE(has(text, "text 3,21.5 0 6.00"));
    } else {
        EXPECT_TRUE(has(text, "line 2,20 4,20"));
    }
    narrow.setDimtix(true);
    EXPECT_TRUE(has(picture(narrow), "text 3,21.5 0 6.00"));
    EXPECT_TRUE(has(picture(narrow), "line -4,20 -2,20"));
    narrow.setDimsoxd(true);
    EXPECT_FALSE(has(picture(narrow), "line -4,20 -2,20"));
    narrow.setDimsoxd(false);
    narrow.setDimtix(false);
    narrow.setDimatfit(0); // both go
    const std::string middle = number(6 + 4 + 0.5 + 0.5 * width);
    EXPECT_TRUE(has(picture(narrow), "text " + middle + ",21.5 0 6.00"));
    EXPECT_TRUE(has(picture(narrow), "line 8,20 " + number(6 + 4 + 0.5 + width) + ",20")); // on below it
    narrow.setDimtofl(false);
    EXPECT_FALSE(has(picture(narrow), "line 0,20 6,20"));
    narrow.setDimtmove(2);
    EXPECT_TRUE(has(picture(narrow), "text 3,24 0 6.00"));
}

TEST_F(DimensionTest, TextWhereTheUserPutsIt) {
    AcDbRotatedDimension dimension(0.0, {0, 0, 0}, {100, 0, 0}, {0, 20, 0});
    dimension.setTextPosition({30, 40, 0});
    EXPECT_FALSE(dimension.isUsingDefaultTextPosition());
    EXPECT_EQ(picture(dimension).back(), "text 30,40 0 100.00");
    dimension.setTextRotation(0.5);
    EXPECT_EQ(picture(dimension).back(), "text 30,40 28.65 100.00");
    dimension.useDefaultTextPosition();
    dimension.setTextRotation(0.0);
    dimension.setDimjust(1);
    const double along = 2 + 0.5 + 0.5 * textWidth(L"100.00");
    EXPECT_EQ(picture(dimension).back(), "text " + number(along) + ",21.5 0 100.00");
}

TEST_F(DimensionTest, AngularDimensions) {
    AcDb3PointAngularDimension corner({0, 0, 0}, {20, 0, 0}, {0, 20, 0},
                                      {30 * std::sqrt(0.5), 30 * std::sqrt(0.5), 0});
    picture(corner);
    corner.setDimadec(0);
    const Lines lines = picture(corner);
    const std::string first = number(2.0 / 30 * 180 / pi);
    EXPECT_EQ(lines[0], "line 21,0 31.5,0");
    EXPECT_EQ(lines[1], "line 0,21 0,31.5");
    EXPECT_EQ(lines[2], "arc 0,0 30 " + first + " " + number(90 - 2.0 / 30 * 180 / pi));
    EXPECT_EQ(lines[3], "arrow 30,0");
    EXPECT_EQ(lines[4], "arrow 0,30");
    const double out = (30 + 1.5) * std::sqrt(0.5);
    EXPECT_EQ(lines[5], "text " + number(out) + "," + number(out) + " 315 90%%d");
    double value = 0.0;
    corner.setArcPoint({-10, -10, 0}); // the other way round
    corner.getMeasurement(value);
    EXPECT_NEAR(value, 1.5 * pi, 1e-12);
    // Four sectors of two lines that cross at (5, 5).
    const std::pair<AcGePoint3d, double> sectors[] = {
        {{20, 8, 0}, pi / 4}, {{5, 20, 0}, 3 * pi / 4}, {{-20, 0, 0}, pi / 4}, {{6, -20, 0}, 3 * pi / 4}};
    for (const auto& [arcPoint, angle] : sectors) {
        AcDb2LineAngularDimension lines2({0, 5, 0}, {10, 5, 0}, {0, 0, 0}, {10, 10, 0}, arcPoint);
        lines2.getMeasurement(value);
        EXPECT_NEAR(value, angle, 1e-12) << at(arcPoint);
    }
    AcDb2LineAngularDimension parallel({0, 0, 0}, {10, 0, 0}, {0, 5, 0}, {10, 5, 0}, {5, 2, 0});
    EXPECT_TRUE(picture(parallel).empty());
}

TEST_F(DimensionTest, RadialAndDiametricDimensions) {
    AcDbRadialDimension radius({0, 0, 0}, {40, 0, 0}, 0);
    EXPECT_EQ(picture(radius), (Lines{"line 0,0 38,0", "arrow 40,0", "text 20,1.5 0 R40.00"}));
    AcDbDiametricDimension diameter({40, 0, 0}, {-40, 0, 0}, 0);
    EXPECT_EQ(picture(diameter),
              (Lines{"line -38,0 38,0", "arrow -40,0", "arrow 40,0", "text 0,1.5 0 %%c80.00"}));
    // Beyond the circle, with a landing for level text.
    AcDbRadialDimension outside({0, 0, 0}, {3, 4, 0}, 10);
    picture(outside);
    outside.setDimtoh(true);
    outside.setDimtofl(false);
    const double width = textWidth(L"R5.00");
    const Lines lines = picture(outside);
    EXPECT_EQ(lines[0], "line 4.2,5.6 9,12");
    EXPECT_EQ(lines[1], "line 9,12 " + number(11 + 0.5 + width) + ",12");
    EXPECT_EQ(lines[2], "arrow 3,4");
    EXPECT_EQ(lines[3], "line -1,0 1,0"); // the centre mark
    EXPECT_EQ(lines.back(), "text " + number(11.5 + 0.5 * width) + ",13.5 0 R5.00");
}

TEST_F(DimensionTest, OrdinateDimension) {
    AcDbOrdinateDimension y(false, {10, 30, 0}, {50, 30, 0});
    const double width = textWidth(L"30.00");
    EXPECT_EQ(picture(y), (Lines{"line 11,30 " + number(50.5 + width) + ",30",
                                 "text " + number(50.5 + 0.5 * width) + ",31.5 0 30.00"}));
    AcDbOrdinateDimension x(true, {10, 30, 0}, {16, 60, 0});
    x.setOrigin({4, 0, 0});
    const Lines lines = picture(x);
    EXPECT_EQ(lines[0], "line 10,31 10,52"); // a jog twice as long as two arrows before the end
    EXPECT_EQ(lines[1], "line 10,52 16,56");
    EXPECT_EQ(lines.back().substr(lines.back().size() - 7), "90 6.00");
}

TEST_F(DimensionTest, TicksBlocksAndFlippedArrows) {
    AcDbRotatedDimension dimension(0.0, {0, 0, 0}, {100, 0, 0}, {0, 20, 0});
    picture(dimension);
    dimension.setDimtsz(1.5);
    dimension.setDimdle(0.5);
    const Lines ticks = picture(dimension);
    EXPECT_EQ(ticks[2], "line -0.5,20 100.5,20");
    EXPECT_EQ(ticks[3], "line -1.5,18.5 1.5,21.5");
    dimension.setDimtsz(0);
    const AcDbObjectId tick = host::arrowBlock(drawing.database, L"ArchTick");
    ASSERT_FALSE(tick.isNull());
    EXPECT_EQ(host::arrowBlock(drawing.database, L"_ARCHTICK"), tick);
    dimension.setDimblk(tick);
    const Lines blocks = picture(dimension);
    EXPECT_EQ(blocks[2], "line 0,20 100,20");
    EXPECT_EQ(blocks[3], "block 0,20 180");
    EXPECT_EQ(blocks[4], "block 100,20 0");
    dimension.setArrowFirstIsFlipped(true);
    EXPECT_EQ(picture(dimension)[3], "block 0,20 0");
    dimension.setDimblk(host::arrowBlock(drawing.database, L"_None"));
    EXPECT_EQ(picture(dimension).size(), 4U);
    for (const wchar_t* name : {L"_Dot", L"_DotSmall", L"_DotBlank", L"_Small", L"_Origin", L"_Origin2",
                                L"_Open", L"_Open90", L"_Open30", L"_Closed", L"_ClosedBlank", L"_Oblique",
                                L"_BoxFilled", L"_BoxBlank", L"_DatumFilled", L"_DatumBlank", L"_Integral"}) {
        const auto* block = host::peek<AcDbBlockTableRecord>(host::arrowBlock(drawing.database, name));
        ASSERT_NE(block, nullptr) << host::toUtf8(name);
        EXPECT_FALSE(block->entities().empty()) << host::toUtf8(name);
    }
}

// The block.

TEST_F(DimensionTest, BlockIsMadeAndFollowsChanges) {
    const AcDbObjectId id = appendRotated();
    const AcDbObjectId first = host::peek<AcDbDimension>(id)->data().block;
    ASSERT_FALSE(first.isNull());
    const auto* record = host::peek<AcDbBlockTableRecord>(first);
    EXPECT_TRUE(record->isAnonymous());
    EXPECT_TRUE(record->name().startsWith(L"*D"));
    const Lines before = blockPicture(id);
    EXPECT_EQ(before.back(), "text 50,21.5 0 100.00");
    host::UndoLog& undo = drawing.database.undoLog();
    undo.beginCommand(L"STRETCH");
    {
        const host::Opened<AcDbRotatedDimension> open(id, AcDb::kForWrite);
        open->setXLine2Point({80, 10, 0});
    }
    undo.endCommand();
    EXPECT_EQ(blockPicture(id).back(), "text 40,21.5 0 80.00");
    EXPECT_TRUE(first.isErased());
    undo.undo(1);
    EXPECT_EQ(host::peek<AcDbDimension>(id)->data().block, first);
    EXPECT_EQ(blockPicture(id), before);
    undo.redo(1);
    EXPECT_EQ(blockPicture(id).back(), "text 40,21.5 0 80.00");
    // Reading alone changes nothing.
    const AcDbObjectId block = host::peek<AcDbDimension>(id)->data().block;
    host::Opened<AcDbDimension>(id, AcDb::kForWrite).close();
    EXPECT_EQ(host::peek<AcDbDimension>(id)->data().block, block);
    const host::Opened<AcDbDimension> open(id, AcDb::kForWrite);
    open->erase();
    EXPECT_TRUE(block.isErased());
}

TEST_F(DimensionTest, OnlyBlocksOfDimensionsGoWithThem) {
    // A file that names another block as the dimension's own does not cost that block.
    for (const AcDbObjectId block : {drawing.database.modelSpaceId(), drawing.block}) {
        host::ResbufBuilder builder;
        const auto* record = host::peek<AcDbBlockTableRecord>(block);
        builder.string(100, L"AcDbEntity").string(8, L"0").string(100, L"AcDbDimension");
        builder.string(2, record->name().kwszPtr()).point(10, 0, 20, 0).integer(70, 33);
        builder.string(100, L"AcDbAlignedDimension").point(13, 0, 0, 0).point(14, 100, 0, 0);
        const host::ResbufList list = builder.release();
        host::ResbufDxfReader reader(&drawing.database, list.get());
        auto* dimension = new AcDbAlignedDimension;
        ASSERT_EQ(dimension->dxfIn(&reader), Acad::eOk);
        const AcDbObjectId id = drawing.append(dimension);
        {
            const host::Opened<AcDbDimension> open(id, AcDb::kForWrite);
            open->setDimensionText(L"x");
        }
        const host::Opened<AcDbDimension> open(id, AcDb::kForWrite);
        open->erase();
        EXPECT_FALSE(block.isErased());
    }
}

TEST_F(DimensionTest, AMoveKeepsThePictureOfTheFile) {
    const AcDbObjectId id = appendRotated();
    // A line of another program's own in the block.
    {
        const host::Opened<AcDbBlockTableRecord> block(host::peek<AcDbDimension>(id)->data().block,
                                                       AcDb::kForWrite);
        auto* line = new AcDbLine({1, 2, 0}, {3, 4, 0});
        block->appendAcDbEntity(line);
        line->close();
    }
    {
        const host::Opened<AcDbDimension> open(id, AcDb::kForWrite);
        open->transformBy(AcGeMatrix3d::translation({10, 20, 0}));
    }
    EXPECT_EQ(blockPicture(id).back(), "line 11,22 13,24");
    {
        const host::Opened<AcDbDimension> open(id, AcDb::kForWrite);
        open->transformBy(AcGeMatrix3d::rotation(host::halfPi, AcGeVector3d::kZAxis, {10, 20, 0}));
    }
    EXPECT_EQ(blockPicture(id).back(), "text -11.5,70 90 100.00"); // turned, it is made anew
}

TEST_F(DimensionTest, CopiesGetTheirOwnBlocks) {
    const AcDbObjectId id = appendRotated();
    const AcDbObjectId block = host::peek<AcDbDimension>(id)->data().block;
    AcDbObjectIdArray one;
    one.append(id);
    AcDbIdMapping mapping;
    ASSERT_EQ(drawing.database.deepCloneObjects(one, drawing.database.modelSpaceId(), mapping), Acad::eOk);
    AcDbIdPair pair(id, AcDbObjectId(), false);
    ASSERT_TRUE(mapping.compute(pair));
    const AcDbObjectId copy = pair.value();
    EXPECT_NE(host::peek<AcDbDimension>(copy)->data().block, block);
    EXPECT_EQ(blockPicture(copy), blockPicture(id));
    {
        const host::Opened<AcDbDimension> open(copy, AcDb::kForWrite);
        open->setDimensionText(L"copy");
    }
    EXPECT_FALSE(block.isErased());
    EXPECT_EQ(blockPicture(id).back(), "text 50,21.5 0 100.00");
    EXPECT_EQ(blockPicture(copy).back(), "text 50,21.5 0 copy");
    AcDbEntity* loose = nullptr;
    ASSERT_EQ(host::peek<AcDbDimension>(id)->database()->undoLog().isApplying(), false);
    const host::Opened<AcDbDimension> open(id, AcDb::kForRead);
    ASSERT_EQ(open->getTransformedCopy(AcGeMatrix3d::translation({0, 50, 0}), loose), Acad::eOk);
    const AcDbObjectId third = drawing.append(loose);
    EXPECT_EQ(blockPicture(third).back(), "text 50,71.5 0 100.00");
}

TEST_F(DimensionTest, AStyleChangesItsDimensions) {
    const AcDbObjectId id = appendRotated();
    {
        const host::Opened<AcDbDimStyleTableRecord> record(style, AcDb::kForWrite);
        EXPECT_EQ(record->setDimdec(0), Acad::eOk);
        EXPECT_EQ(record->setDimdec(99), Acad::eOutOfRange);
        EXPECT_EQ(record->setDimtxt(-1), Acad::eOutOfRange);
    }
    EXPECT_EQ(blockPicture(id).back(), "text 50,21.5 0 100");
    {
        const host::Opened<AcDbDimension> open(id, AcDb::kForWrite);
        open->setDimpost(L"<> m");
    }
    EXPECT_EQ(blockPicture(id).back(), "text 50,21.5 0 100 m");
    EXPECT_EQ(host::peek<AcDbDimStyleTableRecord>(style)->dimpost(), L"");
}

TEST_F(DimensionTest, CurrentValuesBecomeOverridesOfNewDimensions) {
    ASSERT_EQ(drawing.database.setDimstyleData(style), Acad::eOk);
    const host::DimVariables current = host::currentDimVariables(drawing.database);
    for (std::size_t index = 0; index < host::dimVariables().size(); ++index) {
        EXPECT_TRUE(host::equalDimVariable(current,
                                           host::peek<AcDbDimStyleTableRecord>(style)->dimVariables(), index))
            << host::dimVariables()[index].name;
    }
    AcDbAlignedDimension same({0, 0, 0}, {10, 0, 0}, {0, 5, 0});
    same.setDatabaseDefaults(&drawing.database);
    EXPECT_TRUE(same.xdataGroups().empty());
    drawing.database.setVariable(*host::findHeaderVariable("DIMDEC"), Adesk::Int16{0});
    AcDbAlignedDimension other({0, 0, 0}, {10, 0, 0}, {0, 5, 0});
    other.setDatabaseDefaults(&drawing.database);
    EXPECT_EQ(other.dimdec(), 0);
    EXPECT_EQ(same.dimdec(), 2);
}

// Overrides.

TEST_F(DimensionTest, OverridesLeaveOtherDataAsItIs) {
    host::GroupList data;
    data.add(1001, "OTHER");
    data.add(1040, "1.250");
    data.add(1001, "ACAD");
    data.add(1000, "SOMETHING");
    data.add(1000, "DSTYLE");
    data.add(1002, "{");
    data.add(1070, "    41");
    data.add(1040, "0.2400");
    data.add(1070, "999");
    data.add(1070, "7");
    data.add(1002, "}");
    data.add(1001, "LAST");
    data.add(1000, "x");
    host::DimVariables v;
    const host::DimVariableSet given = host::applyDimOverrides(v, data, nullptr);
    EXPECT_EQ(given.count(), 1U);
    EXPECT_EQ(v.asz, 0.24);
    const auto texts = [](const host::GroupList& groups) {
        std::vector<std::string> lines;
        for (const host::GroupList::Group group : groups) {
            lines.push_back(std::to_string(group.code) + "=" + std::string(group.text));
        }
        return lines;
    };
    const std::vector<std::string> before = texts(data);
    v.gap = 0.75;
    std::vector<std::string> expected = before;
    expected.insert(expected.begin() + 10, {"1070=147", "1040=0.75"});
    const host::GroupList added = host::withDimOverride(data, v, *host::findDimVariable(147));
    EXPECT_EQ(texts(added), expected);
    v.asz = 3.0;
    expected[7] = "1040=3.0";
    EXPECT_EQ(texts(host::withDimOverride(added, v, *host::findDimVariable(41))), expected);
    // Where there is no list yet.
    EXPECT_EQ(
        texts(host::withDimOverride({}, v, *host::findDimVariable(41))),
        (std::vector<std::string>{"1001=ACAD", "1000=DSTYLE", "1002={", "1070=41", "1040=3.0", "1002=}"}));
}

TEST_F(DimensionTest, StylesKeepWhatFilesGive) {
    host::ResbufBuilder builder;
    builder.string(100, L"AcDbSymbolTableRecord").string(100, L"AcDbDimStyleTableRecord");
    builder.string(2, L"S").integer(70, 0).string(3, L"<>m").real(40, 2.0).real(41, 0.18).integer(69, 2);
    builder.integer(70, 5).integer(270, 8).integer(287, 5).integer(298, 1);
    const host::ResbufList list = builder.release();
    host::ResbufDxfReader reader(&drawing.database, list.get());
    AcDbDimStyleTableRecord record;
    ASSERT_EQ(record.dxfIn(&reader), Acad::eOk);
    EXPECT_EQ(record.dimscale(), 2.0);
    EXPECT_EQ(record.dimpost(), L"<>m");
    EXPECT_EQ(record.dimtfillclr().colorIndex(), 5);
    EXPECT_EQ(record.standardFlags(), 0);
    EXPECT_EQ(record.dimlunit(), 6); // from the variable of older files
    EXPECT_EQ(record.dimtmove(), 2);
    EXPECT_EQ(record.dimexo(), 0.0625); // left out: the default
    const std::vector<std::string> groups = groupsOf(record);
    EXPECT_EQ(groups, (std::vector<std::string>{"100=AcDbSymbolTableRecord", "100=AcDbDimStyleTableRecord",
                                                "2=S", "70=0", "3=<>m", "40=2", "41=0.18", "69=2", "70=5",
                                                "277=6", "279=2", "270=8", "287=5", "298=1"}));
    const std::string bytes = bytesOf(record);
    host::MemoryDwgFiler filer(AcDb::kCopyFiler, nullptr, bytes);
    AcDbDimStyleTableRecord copy;
    ASSERT_EQ(copy.dwgIn(&filer), Acad::eOk);
    EXPECT_EQ(bytesOf(copy), bytes);
}

TEST_F(DimensionTest, TableOfVariablesIsWhole) {
    std::vector<short> codes;
    for (const host::DimVariable& variable : host::dimVariables()) {
        codes.push_back(variable.code);
        EXPECT_TRUE(host::findHeaderVariable(std::string("DIM") + variable.name)) << variable.name;
    }
    std::sort(codes.begin(), codes.end());
    EXPECT_EQ(std::adjacent_find(codes.begin(), codes.end()), codes.end());
    EXPECT_EQ(host::dimVariableIndex(&host::DimVariables::lwe), host::dimVariables().size() - 1);
}

// Leaders and tolerances.

TEST_F(DimensionTest, LeadersFollowTheirAnnotation) {
    auto* text = new AcDbMText;
    text->setTextStyle(drawing.style);
    text->setTextHeight(2);
    text->setContents(L"note");
    text->setLocation({40, 31, 0});
    const AcDbObjectId textId = drawing.append(text);
    auto* leader = new AcDbLeader;
    leader->setDimensionStyle(style);
    leader->appendVertex({0, 0, 0});
    leader->appendVertex({20, 20, 0});
    EXPECT_FALSE(leader->appendVertex({20, 20, 0}));
    leader->setAnnotationOffset({0, -1, 0});
    const AcDbObjectId id = drawing.append(leader);
    {
        const host::Opened<AcDbLeader> open(id, AcDb::kForWrite);
        ASSERT_EQ(open->attachAnnotation(textId), Acad::eOk);
        EXPECT_EQ(open->annoType(), AcDbLeader::kMText);
        EXPECT_TRUE(open->lastVertex().isEqualTo({39.5, 30, 0})); // a gap before the text
        EXPECT_TRUE(open->hasHookLine());
        EXPECT_EQ(open->attachAnnotation(id), Acad::eInvalidInput);
    }
    {
        const host::Opened<AcDbMText> open(textId, AcDb::kForWrite);
        open->setLocation({-40, 51, 0});
    }
    const host::Opened<AcDbLeader> open(id, AcDb::kForWrite);
    const double width = textWidth(L"note");
    EXPECT_TRUE(open->lastVertex().isEqualTo({-40 + width + 0.5, 50, 0})); // it comes from the right now
    EXPECT_EQ(open->detachAnnotation(), Acad::eOk);
    EXPECT_FALSE(host::peek<AcDbMText>(textId)->hasPersistentReactor(id));
}

TEST_F(DimensionTest, LeadersAreDrawnWithArrowAndHook) {
    AcDbLeader leader;
    leader.setDimensionStyle(style);
    leader.appendVertex({0, 0, 0});
    leader.appendVertex({30, 40, 0});
    const auto partsOf = [&] {
        AcDbVoidPtrArray parts;
        leader.explode(parts);
        Lines lines;
        for (void* part : parts) {
            const std::unique_ptr<AcDbEntity> owned(static_cast<AcDbEntity*>(part));
            lines.push_back(describe(*owned));
        }
        return lines;
    };
    EXPECT_EQ(partsOf(), (Lines{"arrow 0,0", "line 1.2,1.6 30,40"}));
    leader.disableArrowHead();
    EXPECT_EQ(partsOf(), (Lines{"line 0,0 30,40"}));
    leader.appendVertex({60, 0, 0});
    leader.setToSplineLeader();
    const std::vector<AcGePoint3d> path = leader.path();
    const auto passes = [&](const AcGePoint3d& point) {
        return std::any_of(path.begin(), path.end(),
                           [&](const AcGePoint3d& one) { return one.isEqualTo(point); });
    };
    EXPECT_TRUE(passes({0, 0, 0}) && passes({30, 40, 0}) && passes({60, 0, 0}));
    EXPECT_NEAR(path[path.size() / 4].x + path[path.size() - 1 - path.size() / 4].x, 60, 1e-9); // symmetric
}

TEST_F(DimensionTest, TolerancesAreFramesOfCells) {
    AcDbFcf frame(L"A%%v0.1%%v%%v\nB%%v2", {10, 20, 0}, AcGeVector3d::kZAxis, AcGeVector3d::kXAxis);
    frame.setDimensionStyle(style);
    AcDbVoidPtrArray parts;
    ASSERT_EQ(frame.explode(parts), Acad::eOk);
    int texts = 0;
    int lines = 0;
    for (void* part : parts) {
        const std::unique_ptr<AcDbEntity> owned(static_cast<AcDbEntity*>(part));
        texts += AcDbMText::cast(owned.get()) != nullptr ? 1 : 0;
        lines += AcDbLine::cast(owned.get()) != nullptr ? 1 : 0;
    }
    EXPECT_EQ(texts, 4); // empty cells at the end are none
    EXPECT_EQ(lines, 10);
    AcGePoint3dArray corners;
    frame.getBoundingPoints(corners);
    EXPECT_TRUE(corners[0].isEqualTo({10, 22, 0})); // rows are twice as high as the text
    EXPECT_NEAR(corners[3].y, 14, 1e-9);
}

} // namespace
