// Linetype files: their grammar, encodings, and loading into a drawing.
#include "drawings.h"

#include "host/formats/lin/linfile.h"

#include <cmath>
#include <fstream>

using namespace formats_test;
using host::lin::Definition;
using host::lin::Element;

TEST(LinetypeFile, namesDescriptionsAndPatterns) {
    const std::vector<Definition> all =
        host::lin::parse(";; comment\r\n*BORDER,Border __ __ . __\r\nA, .5,-.25, .5,-.25,0,-.25\r\n\r\n"
                         "*Bare\na,1,\n-1\n; more\n*AGAS,Gas, with commas\n"
                         "A,.5,-.2,[\"GAS,\",STANDARD,S=.1,R=90,X=-0.1,Y=-.05],-.25\n"
                         "*Shape\nA,1,-1,[132,ltypeshp.shx,x=.1,a=100g,s=2],-1\n");
    ASSERT_EQ(all.size(), 4U);
    EXPECT_EQ(all[0].name, L"BORDER");
    EXPECT_EQ(all[0].description, L"Border __ __ . __");
    ASSERT_EQ(all[0].elements.size(), 6U);
    EXPECT_EQ(all[0].elements[1].length, -0.25);
    EXPECT_EQ(all[0].elements[4].length, 0.0);
    EXPECT_EQ(all[0].line, 2U);
    EXPECT_EQ(all[1].elements.size(), 2U) << "a pattern goes on after a comma";
    const Element& gas = all[2].elements[1];
    EXPECT_EQ(gas.inset, Element::Inset::text);
    EXPECT_EQ(gas.text, L"GAS,");
    EXPECT_EQ(gas.style, L"STANDARD");
    EXPECT_NEAR(gas.rotation, std::acos(-1.0) / 2, 1e-15);
    EXPECT_EQ(gas.x, -0.1);
    EXPECT_EQ(gas.y, -0.05);
    EXPECT_EQ(gas.scale, 0.1);
    const Element& shape = all[3].elements[1];
    EXPECT_EQ(shape.inset, Element::Inset::shape);
    EXPECT_TRUE(shape.absoluteRotation);
    EXPECT_NEAR(shape.rotation, std::acos(-1.0) / 2, 1e-15);
    for (const Definition& definition : all) {
        EXPECT_EQ(definition.fault, L"");
    }
}

TEST(LinetypeFile, faultsNameTheLine) {
    const auto fault = [](const std::string& text) {
        return host::toUtf8(host::lin::parse(text).at(0).fault);
    };
    EXPECT_EQ(fault("*X,d\nA,.5,x\n"), "第 2 行: 线型 \"X\": \"x\" 不是数");
    EXPECT_EQ(fault("*X\nB,1,-1\n"), "第 2 行: 线型 \"X\": 图案应以 \"A,\" 开头");
    EXPECT_EQ(fault("*X\n"), "第 1 行: 线型 \"X\": 图案应以 \"A,\" 开头");
    EXPECT_EQ(fault("*,d\nA,1\n"), "第 2 行: 线型 \"\": 线型没有名称");
    EXPECT_EQ(fault("*X\nA,[\"a\",S]\n"), "第 2 行: 线型 \"X\": 嵌入的文字或形 \"[\"a\",S]\" 有错");
    EXPECT_EQ(fault("*X\nA,1,[\"a\n"), "第 2 行: 线型 \"X\": 嵌入的文字或形 \"[\"a\" 有错");
    EXPECT_TRUE(host::lin::parse("").empty());
}

TEST(LinetypeFile, encodings) {
    const std::wstring name = L"\x6CB3\x6D41";
    const std::wstring text = L"*" + name + L",d\nA,1\n";
    const std::string utf8 = host::toUtf8(text);
    const std::string gbk = "*\xBA\xD3\xC1\xF7,d\nA,1\n";
    std::string big;
    const std::string little = host::toUtf16Le(text);
    for (std::size_t at = 0; at + 1 < little.size(); at += 2) {
        big += {little[at + 1], little[at]};
    }
    for (const std::string& bytes :
         {utf8, "\xEF\xBB\xBF" + utf8, gbk, "\xFF\xFE" + little, "\xFE\xFF" + big}) {
        ASSERT_EQ(host::lin::parse(bytes).size(), 1U);
        EXPECT_EQ(host::lin::parse(bytes)[0].name, name);
    }
}

TEST(LinetypeLoading, statusCodesAndRecords) {
    initialize();
    const TemporaryFolder folder;
    std::ofstream(folder / "t.lin") << "*ONE,first\nA,1,-.5\n*TWO\nA,2,-1,[\"T\",Standard,S=.1],-1\n*BAD\nA,"
                                       "q\n*LOST\nA,1,[\"T\",Nowhere],-1\n";
    const std::wstring file = (folder / "t.lin").wstring();
    AcDbDatabase database(true, true);
    EXPECT_EQ(acdbLoadLineTypeFile(L"one", file.c_str(), &database), Acad::eOk);
    EXPECT_EQ(acdbLoadLineTypeFile(L"ONE", file.c_str(), &database), Acad::eDuplicateRecordName);
    EXPECT_EQ(acdbLoadLineTypeFile(L"NONE", file.c_str(), &database), Acad::eUndefinedLineType);
    EXPECT_EQ(acdbLoadLineTypeFile(L"ONE", L"nowhere.lin", &database), Acad::eFileNotFound);
    std::wstring message;
    EXPECT_EQ(host::loadLinetypes(L"BAD", file, database, &message), Acad::eInvalidLineType);
    EXPECT_EQ(host::toUtf8(message), "第 6 行: 线型 \"BAD\": \"q\" 不是数");
    EXPECT_EQ(host::loadLinetypes(L"LOST", file, database, &message), Acad::eInvalidLineType);
    EXPECT_EQ(host::loadLinetypes(L"*", file, database, &message), Acad::eDuplicateRecordName);
    const host::Opened<AcDbLinetypeTable> table(database.linetypeTableId(), AcDb::kForRead);
    AcDbObjectId id;
    ASSERT_EQ(table->AcDbSymbolTable::getAt(L"Two", id), Acad::eOk);
    const auto* two = host::peek<AcDbLinetypeTableRecord>(id);
    EXPECT_EQ(two->patternLength(), 4.0);
    ASSERT_EQ(two->numDashes(), 3);
    EXPECT_TRUE(two->dashes()[1].hasText);
    EXPECT_EQ(two->dashes()[1].style, database.standardTextStyle());
    EXPECT_FALSE(table->has(L"BAD"));
}
