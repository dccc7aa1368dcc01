// Hatch pattern files: their grammar, faults with their lines, the library's own patterns, and hatches that
// take patterns by name.
#include "drawings.h"

#include "host/formats/pat/patfile.h"

#include <cmath>
#include <fstream>
#include <set>

using namespace formats_test;
using host::HatchPatternLine;
using host::pat::Definition;

TEST(PatternFile, namesAndFamilies) {
    const std::vector<Definition> all =
        host::pat::parse(";; comment\r\n*NET, grid, with commas\r\n0, 0,0, 0,.125\r\n90,0,0, 0,.125,\r\n\r\n"
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
    const auto fault = [](const std::string& text) {
        return host::toUtf8(host::pat::parse(text).at(0).fault);
    };
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
    EXPECT_EQ(host::loadHatchPattern(L"mine", nullptr, lines, message, (folder / "MINE.pat").wstring()),
              Acad::eOk);
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
        for (const wchar_t* common :
             {L"ANSI31", L"ANSI37", L"AR-CONC", L"GRASS", L"EARTH", L"NET", L"HONEY"}) {
            EXPECT_TRUE(names.contains(common));
        }
    }
}
