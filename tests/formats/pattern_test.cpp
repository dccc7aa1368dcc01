// Hatch pattern files: their grammar, faults with their lines, the library's own patterns, and hatches that take
// patterns by name.
#include "drawings.h"

#include "host/formats/pat/patfile.h"

#include <cmath>
#include <fstream>
#include <set>

using namespace formats_test;
using host::HatchPatternLine;
using host::pat::Definition;

TEST(PatternFile, namesAndFamilies) {
    const std::vector<Definition> all = host::pat::parse(
        ";; comment\r\n*NET, grid, with commas\r\n0, 0,0, 0,.125\r\n90,0,0, 0,.125,\r\n\r\n"
        "*Dots\n45,1,2,0.5,+.25,0,-.1\n; more\n");
    ASSERT_EQ(all.size(), 2U);
    EXPECT_EQ(all[0].name, L"NET");
    EXPECT_EQ(all[0].description, L"grid, with commas");
    EXPECT_EQ(all[0].line, 2U);
    ASSERT_EQ(all[0].lines.size(), 2U);
    EXPECT_NEAR(all[0].lines[1].offset.x, -.125, 1e-15) << "the offset turns with the line";
    ASSERT_EQ(all[1].lines.size(), 1U);
    const HatchPatternLine& line = all[1].lines[0];
    EXPECT_EQ(line.base.y, 2.0);
    EXPECT_NEAR(line.offset.x, (.5 - .25) * std::sqrt(.5), 1e-15);
    EXPECT_NEAR(line.offset.y, (.5 + .25) * std::sqrt(.5), 1e-15);
    EXPECT_EQ(line.dashes, (std::vector<double>{0, -.1}));
    for (const Definition& definition : all) {
        EXPECT_EQ(definition.fault, L"");
    }
}

TEST(PatternFile, faultsNameTheLine) {
    const auto fault = [](const std::string& text) { return host::toUtf8(host::pat::parse(text).at(0).fault); };
    EXPECT_EQ(fault("*X,d\n0,0,0,0,x\n"), "第 2 行: 图案 \"X\": \"x\" 不是数");
    EXPECT_EQ(fault("\n*X\n0,0,0,0,1\n0,0,0,1\n"), "第 4 行: 图案 \"X\": 图案线应有角度、起点和偏移五个数");
    EXPECT_EQ(fault("*X\n0,0,0,1,0\n"), "第 2 行: 图案 \"X\": 平行线的间距不能为零");
    EXPECT_EQ(fault("*X\n"), "第 1 行: 图案 \"X\": 没有图案线");
    EXPECT_EQ(fault("; c\n*,d\n0,0,0,0,1\n"), "第 2 行: 图案没有名称");
    EXPECT_EQ(fault("*X\n0,0,0,,1\n"), "第 2 行: 图案 \"X\": \"\" 不是数");
    EXPECT_TRUE(host::pat::parse("0,0,0,0,1\n").empty());
}

TEST(PatternFile, hatchesTakeTheirLines) {
    initialize();
    const TemporaryFolder folder;
    std::ofstream(folder / "MINE.pat") << "*MINE\n0,0,0,1,2,3,-1\n";
    std::ofstream(folder / "BAD.pat") << "*BAD\n0,0\n";
    std::vector<HatchPatternLine> lines;
    std::wstring message;
    EXPECT_EQ(host::loadHatchPattern(L"mine", nullptr, lines, message, (folder / "MINE.pat").wstring()), Acad::eOk);
    EXPECT_EQ(lines.size(), 1U);
    EXPECT_EQ(host::loadHatchPattern(L"OTHER", nullptr, lines, message, (folder / "MINE.pat").wstring()),
              Acad::eKeyNotFound);
    EXPECT_EQ(host::toUtf8(message), "没有填充图案 \"OTHER\"");
    EXPECT_EQ(host::loadHatchPattern(L"BAD", nullptr, lines, message, (folder / "BAD.pat").wstring()),
              Acad::eInvalidInput);
    EXPECT_NE(host::toUtf8(message).find("第 2 行"), std::string::npos);
    EXPECT_EQ(host::loadHatchPattern(L"X", nullptr, lines, message, (folder / "NONE.pat").wstring()),
              Acad::eFileNotFound);
    AcDbHatch hatch;
    hatch.setPatternScale(2);
    hatch.setPatternAngle(host::halfPi);
    ASSERT_EQ(hatch.setPatternLines(AcDbHatch::kPreDefined, L"MINE", lines), Acad::eOk);
    EXPECT_NEAR(hatch.data().pattern[0].offset.x, -4, 1e-12);
    EXPECT_NEAR(hatch.data().pattern[0].offset.y, 2, 1e-12);
    EXPECT_EQ(hatch.data().pattern[0].dashes, (std::vector<double>{6, -2}));
    AcString fault;
    EXPECT_EQ(hatch.setPattern(AcDbHatch::kPreDefined, L"没有这个", &fault), Acad::eInvalidInput);
    EXPECT_FALSE(fault.isEmpty());
    EXPECT_EQ(hatch.numPatternDefinitions(), 1) << "the hatch is as it was";
}

namespace {

const std::string hatchRecord = groups({{0, "HATCH"}, {5, "80"}, {100, "AcDbEntity"}, {8, "0"}, {100, "AcDbHatch"},
                                        {10, "0.0"}, {20, "0.0"}, {30, "2.5"}, {210, "0.0"}, {220, "0.0"},
                                        {230, "1.0"}, {2, "MIXED"}, {70, "0"}, {71, "1"}, {91, "3"}});
const std::string polylineLoop = groups({{92, "7"}, {72, "1"}, {73, "1"}, {93, "2"}, {10, "0.0"}, {20, "0.0"},
                                         {42, "1.0"}, {10, "10.0"}, {20, "0.0"}, {42, "1.0"}, {97, "1"},
                                         {330, "90"}});
const std::string edgeLoop =
    groups({{92, "16"}, {93, "2"}, {72, "2"}, {10, "5.0"}, {20, "0.0"}, {40, "2.0"}, {50, "0.0"}, {51, "180.0"},
            {73, "1"}, {72, "1"}, {10, "3.0"}, {20, "0.0"}, {11, "7.0"}, {21, "0.0"}, {97, "0"}});
const std::string splineLoop =
    groups({{92, "0"}, {93, "2"}, {72, "4"}, {94, "2"}, {73, "0"}, {74, "0"}, {95, "6"}, {96, "3"}, {40, "0.0"},
            {40, "0.0"}, {40, "0.0"}, {40, "1.0"}, {40, "1.0"}, {40, "1.0"}, {10, "1.0"}, {20, "-3.0"},
            {10, "2.0"}, {20, "-1.0"}, {10, "3.0"}, {20, "-3.0"}});
const std::string splineEnd =
    groups({{72, "3"}, {10, "2.0"}, {20, "-3.0"}, {11, "1.0"}, {21, "0.0"}, {40, "0.5"}, {50, "180.0"},
            {51, "360.0"}, {73, "0"}, {97, "0"}});
const std::string hatchEnd =
    groups({{75, "1"}, {76, "2"}, {52, "30.0"}, {41, "2.0"}, {77, "0"}, {78, "1"}, {53, "30.0"}, {43, "1.0"},
            {44, "2.0"}, {45, "-0.5"}, {46, "0.8"}, {79, "2"}, {49, "1.0"}, {49, "-0.5"}, {47, "0.25"}, {98, "1"},
            {10, "4.0"}, {20, "5.0"}, {450, "0"}, {451, "0"}, {460, "0.0"}, {470, ""}});
const std::string source =
    groups({{0, "CIRCLE"}, {5, "90"}, {100, "AcDbEntity"}, {8, "0"}, {100, "AcDbCircle"}, {10, "5.0"}, {20, "0.0"},
            {30, "0.0"}, {40, "5.0"}});

std::string file(const std::string& records) {
    return header("AC1032") + entities(source + records) + eof;
}

} // namespace

TEST(HatchRecord, everyKindOfBoundaryComesBackEqual) {
    // With and without the count of fit points behind a spline, as files before 2010 have it.
    for (const std::string& fit : {groups({{97, "0"}}), std::string()}) {
        const Drawing drawing(file(hatchRecord + polylineLoop + edgeLoop + splineLoop + fit + splineEnd + hatchEnd));
        const auto* hatch = AcDbHatch::cast(drawing.at(0x80));
        ASSERT_NE(hatch, nullptr) << drawing.report();
        const host::HatchData& data = hatch->data();
        ASSERT_EQ(data.loops.size(), 3U);
        EXPECT_EQ(data.elevation, 2.5);
        ASSERT_EQ(data.loops[0].sources.size(), 1U);
        EXPECT_EQ(data.loops[0].sources[0].stub()->handle, 0x90U);
        EXPECT_TRUE(data.loops[1].sources.empty());
        EXPECT_TRUE(data.loops[2].sources.empty());
        EXPECT_EQ(data.loops[2].edges[0].spline->controlPoints.size(), 3U);
        EXPECT_FALSE(data.loops[2].edges[1].counterclockwise);
        EXPECT_EQ(data.seeds.size(), 1U);
        EXPECT_EQ(data.pixelSize, 0.25);
        const std::string once = drawing.written();
        for (const char* group : {"\n450\n0\n", "\n470\n\n", " 47\n0.25\n"}) {
            EXPECT_NE(once.find(group), std::string::npos) << group;
        }
        const Drawing again(once);
        EXPECT_EQ(difference(again.written(), once), "");
    }
}

TEST(HatchRecord, whatDoesNotFitIsKeptAsItCame) {
    const std::string wrongCount = groups({{92, "0"}, {93, "3"}, {72, "1"}, {10, "0.0"}, {20, "0.0"}, {11, "1.0"},
                                           {21, "0.0"}, {97, "0"}});
    for (const std::string& records : {hatchRecord + polylineLoop + edgeLoop + wrongCount + hatchEnd,
                                       hatchRecord + polylineLoop + hatchEnd}) {
        const Drawing drawing(file(records));
        ASSERT_NE(drawing.at(0x80), nullptr);
        EXPECT_EQ(AcDbHatch::cast(drawing.at(0x80)), nullptr);
        EXPECT_NE(drawing.written().find("AcDbHatch"), std::string::npos);
        EXPECT_FALSE(drawing.report().empty());
    }
}

TEST(BlockCycles, areBrokenWithALine) {
    const auto blockRecord = [](const std::string& name, const std::string& handle) {
        return groups({{0, "BLOCK_RECORD"}, {5, handle}, {100, "AcDbSymbolTableRecord"},
                       {100, "AcDbBlockTableRecord"}, {2, name}});
    };
    const auto block = [](const std::string& name, const std::string& shown, const std::string& handle) {
        return groups({{0, "BLOCK"}, {8, "0"}, {2, name}, {70, "0"}, {10, "0.0"}, {20, "0.0"}, {30, "0.0"}}) +
               groups({{0, "INSERT"}, {5, handle}, {100, "AcDbEntity"}, {8, "0"}, {100, "AcDbBlockReference"},
                       {2, shown}, {10, "0.0"}, {20, "0.0"}, {30, "0.0"}}) +
               groups({{0, "ENDBLK"}, {8, "0"}});
    };
    const Drawing drawing(
        header("AC1032") +
        section("TABLES", groups({{0, "TABLE"}, {2, "BLOCK_RECORD"}, {5, "1"}}) + blockRecord("A", "20") +
                              blockRecord("B", "21") + blockRecord("C", "22") + groups({{0, "ENDTAB"}})) +
        section("BLOCKS", block("A", "B", "31") + block("B", "C", "32") + block("C", "A", "33")) + eof);
    EXPECT_NE(drawing.report().find("使块包含自身"), std::string::npos) << drawing.report();
    int left = 0;
    for (const Adesk::UInt64 handle : {0x31, 0x32, 0x33}) {
        left += drawing.at(handle) != nullptr && !drawing.at(handle)->isErased() ? 1 : 0;
    }
    EXPECT_EQ(left, 2);
    EXPECT_EQ(difference(Drawing(drawing.written()).written(), drawing.written()), "");
}

TEST(PatternLibrary, definitionsAreGoodAndNamesUnique) {
    for (const char* name : {"acad.pat", "acadiso.pat"}) {
        std::ifstream stream(std::filesystem::path(QDV_LIBRARY_FOLDER) / name, std::ios::binary);
        const std::string text((std::istreambuf_iterator<char>(stream)), {});
        std::set<std::wstring> names;
        for (const Definition& definition : host::pat::parse(text)) {
            EXPECT_EQ(host::toUtf8(definition.fault), "");
            EXPECT_TRUE(names.insert(definition.name).second) << host::toUtf8(definition.name);
        }
        EXPECT_GT(names.size(), 60U);
        for (const wchar_t* common : {L"ANSI31", L"ANSI37", L"AR-CONC", L"GRASS", L"EARTH", L"NET", L"HONEY"}) {
            EXPECT_TRUE(names.contains(common));
        }
    }
}
