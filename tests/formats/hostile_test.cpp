// Files made to do harm: reading ends in one line, or in the rest of the drawing with a line for what is
// missing, and what was read can be written.
#include "drawings.h"

using namespace formats_test;

namespace {

/// Reads whatever it is; a failure is one line, a drawing can be written and read back.
void survives(const std::string& bytes) {
    const auto database = Drawing::make();
    const host::ReadResult result = host::readDxfText(*database, bytes);
    if (result.status != Acad::eOk) {
        EXPECT_FALSE(result.message.empty());
        EXPECT_EQ(result.message.find(L'\n'), std::wstring::npos);
        return;
    }
    const std::string once = host::writeDxfText(*database);
    const Drawing again(once);
    EXPECT_EQ(difference(again.written(), once), "");
    host::DxfWriteOptions options;
    options.binary = true;
    const std::string binary = host::writeDxfText(*database, options);
    EXPECT_EQ(host::writeDxfText(*Drawing(binary).database, options) == binary, true) << once;
}

std::string point(const std::string& handle, std::initializer_list<Group> more = {}) {
    return groups({{0, "POINT"}, {5, handle}, {8, "0"}}) + groups(more);
}

const std::string small =
    header("AC1015", groups({{9, "$HANDSEED"}, {5, "100"}})) +
    section("CLASSES", groups({{0, "CLASS"}, {1, "T"}, {2, "AcDbT"}, {3, "A"}, {90, "1"}, {281, "1"}})) +
    section("TABLES", groups({{0, "TABLE"},
                              {2, "LAYER"},
                              {5, "2"},
                              {70, "1"},
                              {0, "LAYER"},
                              {5, "10"},
                              {2, "墙"},
                              {70, "0"},
                              {62, "1"},
                              {6, "CONTINUOUS"},
                              {0, "ENDTAB"}})) +
    section("BLOCKS", groups({{0, "BLOCK"},
                              {5, "20"},
                              {2, "B"},
                              {10, "0"},
                              {0, "CIRCLE"},
                              {5, "21"},
                              {40, "2"},
                              {0, "ENDBLK"}})) +
    entities(groups({{0, "INSERT"}, {5, "30"},   {66, "1"},   {2, "B"},    {10, "1"},     {20, "2"},
                     {0, "ATTRIB"}, {5, "31"},   {1, "x"},    {2, "T"},    {0, "SEQEND"}, {0, "LWPOLYLINE"},
                     {5, "32"},     {90, "2"},   {10, "0"},   {20, "0"},   {42, "1"},     {10, "5"},
                     {20, "0"},     {1001, "A"}, {1002, "{"}, {1070, "1"}, {1002, "}"},   {0, "T"},
                     {5, "33"},     {102, "{A"}, {330, "30"}, {102, "}"},  {310, "00FF"}})) +
    section("OBJECTS", groups({{0, "DICTIONARY"},
                               {5, "C"},
                               {330, "0"},
                               {3, "X"},
                               {350, "D"},
                               {0, "XRECORD"},
                               {5, "D"},
                               {330, "C"},
                               {1, "x"}})) +
    eof;

} // namespace

TEST(DxfHostile, cutOffAnywhere) {
    survives(small);
    for (std::size_t size = 0; size < small.size(); size += 17) {
        survives(small.substr(0, size));
    }
}

TEST(DxfHostile, anyByteChanged) {
    for (std::size_t at = 0; at < small.size(); at += 37) {
        for (const char c : {'\n', '9', '-'}) {
            std::string changed = small;
            changed[at] = c;
            survives(changed);
        }
    }
}

TEST(DxfHostile, announcedCountsSetNoMemoryAside) {
    std::string all;
    for (int index = 0; index < 2000; ++index) {
        all += groups({{0, "LWPOLYLINE"}, {8, "0"}, {90, "1000000000"}, {10, "1"}, {20, "2"}});
    }
    const Drawing drawing(entities(all) + eof);
    EXPECT_EQ(drawing.model().size(), 2000U);
    survives(entities(groups({{0, "HATCH"}, {8, "0"}, {91, "1000000000"}, {92, "2"}, {93, "2000000000"}}) +
                      groups({{0, "SPLINE"}, {8, "0"}, {72, "2000000000"}, {73, "2000000000"}}) +
                      groups({{0, "ACAD_PROXY_ENTITY"}, {8, "0"}, {92, "2147483647"}, {93, "-1"}})) +
             eof);
}

TEST(DxfHostile, linesOfMegabytes) {
    const std::string longText(std::size_t{4} << 20, 'x');
    const Drawing drawing(entities(groups({{0, "TEXT"}, {8, longText}, {1, longText}, {40, "1"}})) + eof);
    EXPECT_EQ(drawing.model().size(), 1U);
    EXPECT_LT(drawing.report().size(), 1000U);
    EXPECT_LT(failure(longText).size(), 1000U);
    EXPECT_LT(failure(std::string(std::size_t{4} << 20, ' ')).size(), 1000U);
    EXPECT_LT(failure(groups({{0, longText}})).size(), 1000U);
    survives(entities(groups({{0, longText}, {8, "0"}})) + eof);
}

TEST(DxfHostile, handlesWithoutMeasure) {
    const Drawing drawing(header("AC1015", groups({{9, "$HANDSEED"}, {5, "1000000000000000"}})) +
                          entities(point("1000000000000000") + point("FFFFFFFFFFFFFFFF") +
                                   point("123456789012345678901234") + point("xyz") +
                                   point("7", {{1001, "A"}, {1005, "FFFFFFFFFFFFFFFFFFF"}})) +
                          eof);
    EXPECT_EQ(drawing.model().size(), 4U);
    EXPECT_EQ(drawing.model()[0]->handle(), host::greatestHandle);
    for (std::size_t index = 1; index < 4; ++index) {
        EXPECT_LT(drawing.model()[index]->handle(), host::greatestHandle);
    }
    EXPECT_NE(drawing.report().find("POINT 的句柄无效, 改为 "), std::string::npos) << drawing.report();
    const std::string once = drawing.written();
    const Drawing again(once);
    EXPECT_EQ(again.report(), "");
    EXPECT_EQ(difference(again.written(), once), "");
}

TEST(DxfHostile, ownersInCircles) {
    // A table that belongs to its own record, blocks that contain each other, reactors and extension
    // dictionaries of themselves.
    const std::string tables = section("TABLES", groups({{0, "TABLE"},
                                                         {2, "LAYER"},
                                                         {5, "2"},
                                                         {330, "10"},
                                                         {0, "LAYER"},
                                                         {5, "10"},
                                                         {330, "10"},
                                                         {2, "A"},
                                                         {0, "ENDTAB"}}));
    const std::string blocks = section("BLOCKS", groups({{0, "BLOCK"},
                                                         {2, "A"},
                                                         {0, "INSERT"},
                                                         {2, "B"},
                                                         {0, "ENDBLK"},
                                                         {0, "BLOCK"},
                                                         {2, "B"},
                                                         {0, "INSERT"},
                                                         {2, "A"},
                                                         {0, "INSERT"},
                                                         {2, "B"},
                                                         {0, "ENDBLK"}}));
    const std::string objects = section("OBJECTS", groups({{0, "DICTIONARY"},
                                                           {5, "C"},
                                                           {102, "{ACAD_XDICTIONARY"},
                                                           {360, "C"},
                                                           {102, "}"},
                                                           {102, "{ACAD_REACTORS"},
                                                           {330, "C"},
                                                           {102, "}"},
                                                           {330, "C"},
                                                           {3, "X"},
                                                           {360, "C"}}));
    const Drawing drawing(header("AC1015") + tables + blocks +
                          entities(groups({{0, "INSERT"}, {8, "A"}, {2, "A"}})) + objects + eof);
    EXPECT_NE(drawing.report().find("表 LAYER 有所有者"), std::string::npos) << drawing.report();
    survives(drawing.written());
    const host::ReadAccess access(*drawing.model()[0]);
    AcDbExtents extents;
    static_cast<AcDbEntity*>(drawing.model()[0])->getGeomExtents(extents);
}

TEST(DxfHostile, deepNestingAndEndlessLists) {
    std::string braces;
    for (int depth = 0; depth < 20000; ++depth) {
        braces += groups({{102, "{A"}, {1002, "{"}});
    }
    survives(entities(groups({{0, "POINT"}}) + braces) + eof);
    std::string blocks;
    for (int depth = 0; depth < 500; ++depth) {
        const std::string name = std::to_string(depth);
        blocks += groups({{0, "BLOCK"}, {2, name}, {0, "INSERT"}, {2, std::to_string(depth + 1)}});
        blocks += groups({{0, "INSERT"}, {2, std::to_string(depth + 1)}, {0, "ENDBLK"}});
    }
    const Drawing drawing(section("BLOCKS", blocks) + entities(groups({{0, "INSERT"}, {2, "0"}})) + eof);
    EXPECT_EQ(drawing.model().size(), 1U);
    EXPECT_FALSE(drawing.written().empty());
    EXPECT_NE(drawing.report().find("块 \"481\" 展开后有 1048574 个块参照, 嵌套 19 层"), std::string::npos)
        << drawing.report();
}

TEST(DxfHostile, whatIsKeptStaysTheSameWhenWrittenAgain) {
    using namespace std::string_literals;
    survives(
        section("ENTITIES", groups({{0, "\0 THING\0"s}, {5, "30"}, {100, "AcDbThing\0\0"s}, {1, "a\0b"s}}) +
                                groups({{0, "\\U+0020"}, {5, "31"}, {1, "x"}}) +
                                groups({{0, "\\U+000A"}, {5, "32"}, {1, "x"}})) +
        eof);
    // What is kept for want of data has no marker but the one that all entities have.
    survives(entities(groups({{0, "ELLIPSE"}, {5, "30"}, {8, "0"}, {10, "1"}, {20, "2"}, {11, "0"}})) + eof);
    // A height apart from its point, which it comes to stand behind.
    survives(
        entities(groups({{0, "POINT"}, {5, "30"}, {8, "0"}, {10, "1"}, {20, "2"}, {50, "45"}, {30, "7"}})) +
        eof);
    // A dictionary that lists a table does not own it.
    survives(section("TABLES", groups({{0, "TABLE"}, {2, "STYLE"}, {5, "72"}, {70, "0"}, {0, "ENDTAB"}})) +
             section("OBJECTS", groups({{0, "DICTIONARY"}, {5, "C"}, {330, "0"}, {3, "A"}, {350, "D"}}) +
                                    groups({{0, "DICTIONARY"}, {5, "D"}, {330, "C"}, {3, "T"}, {350, "72"}}) +
                                    groups({{0, "XRECORD"}, {5, "E"}}) +
                                    groups({{0, "DIMSTYLE"}, {5, "71"}, {330, "C"}, {2, "s"}})) +
             eof);
    // References behind a table's marker; a table of an unknown kind that does not end.
    survives(section("TABLES",
                     groups({{0, "TABLE"}, {2, "LTYPE"}, {5, "5"}, {330, "1"}, {100, "X"}, {330, "1F"}}) +
                         groups({{0, "ENDTAB"}, {0, "TABLE"}, {2, "ODD"}, {5, "6"}, {0, "ODD"}, {2, "a"}}) +
                         groups({{0, "SECTION"}, {2, "ENTITIES"}, {0, "POINT"}, {5, "8"}})) +
             eof);
    // A lone third coordinate behind a plane point would be taken for the point's.
    survives(entities(groups({{0, "HATCH"}, {8, "0"},  {30, "1"},         {10, "0"}, {20, "0"}, {2, "SOLID"},
                              {70, "1"},    {91, "0"}, {98, "1"},         {10, "1"}, {20, "1"}, {76, "1"},
                              {30, "5"},    {36, "2"}, {0, "LWPOLYLINE"}, {8, "0"},  {90, "1"}, {10, "0"},
                              {20, "0"},    {43, "0"}, {30, "7"}})) +
             eof);
    // A vertex whose geometry stands under the marker of all entities is kept as it is.
    survives(
        entities(
            groups({{0, "POLYLINE"}, {8, "0"}, {70, "1"}, {0, "VERTEX"}, {5, "3B"}, {100, "AcDbEntity"}}) +
            groups({{8, "0"}, {70, "1"}, {10, "0"}, {20, "0"}, {42, "0.5"}, {0, "SEQEND"}, {8, "0"}})) +
        eof);
    survives(entities(groups(
                 {{0, "POINT"}, {8, "0"}, {102, "{^J A"}, {1, "x"}, {102, "^J}"}, {100, "^J AcDbOdd ^M"}})) +
             eof);
    survives(
        section("OBJECTS",
                groups({{0, "DICTIONARY"}, {5, "C"}, {330, "0"}, {100, "AcDbDictionary"}, {330, "1F"}})) +
        eof);
    survives(header("AC1032", groups({{9, "$DWGCODEPAGE"},
                                      {3, "ANSI_\0\x1B"
                                          "936"s}})) +
             eof);
}

TEST(DxfHostile, numbersOutOfRange) {
    using namespace std::string_literals;
    const Drawing drawing(entities(groups({{0, "CIRCLE"}, {8, "0"}, {10, "1e999"}, {40, "1"}}) +
                                   groups({{0, "CIRCLE"}, {8, "0"}, {10, "inf"}, {40, "1"}}) +
                                   groups({{0, "CIRCLE"}, {8, "0"}, {10, "1e-999"}, {40, "1"}}) +
                                   groups({{0, "CIRCLE"}, {8, "0"}, {62, "99999999999999999999"}})) +
                          eof);
    EXPECT_EQ(drawing.model().size(), 1U);
    EXPECT_EQ(drawing.result.report.count(), 3U) << drawing.report();
    EXPECT_EQ(failure("AutoCAD Binary DXF\r\n\x1A\0\0SEC\nTION\0"s),
              "第 0x16 字节: 应为 SECTION 或 EOF, 而是 \"SEC^JTION\"");
    EXPECT_EQ(failure("0\nSECTION\n2\nENTITIES\n1072\nx\n"), "第 5 行: 组码 1072 超出范围");
    EXPECT_EQ(failure("0\nSECTION\n2\nENTITIES\n-5\nx\n"), "第 5 行: 组码 -5 超出范围");
}
