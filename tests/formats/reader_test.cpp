// Reading DXF: versions, owners, encodings, what is repaired, and what ends reading.
#include "drawings.h"

#include "host/db/entities/subentities.h"

using namespace formats_test;

namespace {

std::string line(const std::string& handle, const std::string& owner, const std::string& layer = "0") {
    std::string text = groups({{0, "LINE"}});
    if (!handle.empty()) {
        text += groups({{5, handle}});
    }
    if (!owner.empty()) {
        text += groups({{330, owner}});
    }
    return text + groups({{100, "AcDbEntity"},
                          {8, layer},
                          {100, "AcDbLine"},
                          {10, "1"},
                          {20, "2"},
                          {11, "3"},
                          {21, "4"}});
}

const AcDbEntity* entityAt(const std::vector<AcDbObject*>& space, std::size_t index) {
    return index < space.size() ? AcDbEntity::cast(space[index]) : nullptr;
}

std::string layerOf(const AcDbEntity* entity) {
    const auto* layer = host::peek<AcDbLayerTableRecord>(entity->layerId());
    return layer != nullptr ? host::toUtf8(layer->name().view()) : std::string("-");
}

/// The named tables with one block record for each space.
const std::string spaceTables = section("TABLES", groups({{0, "TABLE"},
                                                          {2, "BLOCK_RECORD"},
                                                          {5, "1"},
                                                          {330, "0"},
                                                          {100, "AcDbSymbolTable"},
                                                          {70, "2"},
                                                          {0, "BLOCK_RECORD"},
                                                          {5, "1F"},
                                                          {330, "1"},
                                                          {100, "AcDbSymbolTableRecord"},
                                                          {100, "AcDbBlockTableRecord"},
                                                          {2, "*Model_Space"},
                                                          {340, "0"},
                                                          {0, "BLOCK_RECORD"},
                                                          {5, "1B"},
                                                          {330, "1"},
                                                          {100, "AcDbSymbolTableRecord"},
                                                          {100, "AcDbBlockTableRecord"},
                                                          {2, "*Paper_Space"},
                                                          {340, "0"},
                                                          {0, "ENDTAB"}}));

} // namespace

TEST(DxfReader, theLeastFileIsACompleteDrawing) {
    const Drawing drawing(
        entities(groups({{0, "LINE"}, {8, "墙"}, {10, "0"}, {20, "0"}, {11, "5"}, {21, "0"}})) + eof);
    ASSERT_EQ(drawing.model().size(), 1U);
    EXPECT_EQ(layerOf(entityAt(drawing.model(), 0)), "墙");
    EXPECT_TRUE(drawing.database->namedObjectsDictionaryId().isValid());
    EXPECT_TRUE(drawing.database->layoutDictionaryId().isValid());
    EXPECT_EQ(drawing.report(), "第 8 行: 图层 \"墙\" 没有定义, 已新建, 已修复\n");
    // What is written is complete, and reading it finds nothing to say.
    const Drawing again(drawing.written());
    EXPECT_EQ(again.report(), "");
    EXPECT_EQ(difference(again.written(), drawing.written()), "");
}

TEST(DxfReader, handlesOwnersAndOrderStayAsTheyCame) {
    const Drawing drawing(
        header("AC1015", groups({{9, "$HANDSEED"}, {5, "500"}})) + spaceTables +
        entities(line("30", "1F") + line("2A", "1B") + line("31", "1F") + line("29", "1F")) + eof);
    std::vector<Adesk::UInt64> handles;
    for (const AcDbObject* object : drawing.model()) {
        handles.push_back(object->handle());
        EXPECT_EQ(object->ownerId(), drawing.database->modelSpaceId());
    }
    EXPECT_EQ(handles, (std::vector<Adesk::UInt64>{0x30, 0x31, 0x29}));
    ASSERT_EQ(drawing.paper().size(), 1U);
    EXPECT_EQ(drawing.paper()[0]->handle(), 0x2AU);
    EXPECT_GE(drawing.database->handseed(), AcDbHandle(0x500));
    EXPECT_EQ(drawing.database->modelSpaceId().handle(), AcDbHandle(0x1F));
}

TEST(DxfReader, oldReleasesWithoutHandlesAndOwners) {
    const std::string polyline = groups({{0, "POLYLINE"},
                                         {8, "0"},
                                         {66, "1"},
                                         {10, "0"},
                                         {20, "0"},
                                         {30, "0"},
                                         {70, "1"},
                                         {0, "VERTEX"},
                                         {8, "0"},
                                         {10, "1"},
                                         {20, "0"},
                                         {30, "0"},
                                         {0, "VERTEX"},
                                         {8, "0"},
                                         {10, "2"},
                                         {20, "0"},
                                         {30, "0"},
                                         {0, "SEQEND"},
                                         {8, "0"}});
    const Drawing drawing(
        header("AC1009") +
        section("BLOCKS",
                groups({{0, "BLOCK"}, {8, "0"},      {2, "OUTER"},  {70, "0"},     {10, "1"},    {20, "2"},
                        {30, "0"},    {3, "OUTER"},  {0, "INSERT"}, {8, "0"},      {2, "inner"}, {10, "0"},
                        {20, "0"},    {0, "ENDBLK"}, {8, "0"},      {0, "BLOCK"},  {8, "0"},     {2, "INNER"},
                        {70, "0"},    {10, "0"},     {20, "0"},     {0, "CIRCLE"}, {8, "0"},     {10, "0"},
                        {20, "0"},    {40, "2"},     {0, "ENDBLK"}})) +
        entities(polyline +
                 groups({{0, "TEXT"}, {8, "0"}, {67, "1"}, {10, "0"}, {20, "0"}, {40, "1"}, {1, "x"}}) +
                 groups({{0, "POLYLINE"},
                         {8, "0"},
                         {66, "1"},
                         {70, "8"},
                         {0, "VERTEX"},
                         {8, "0"},
                         {70, "32"},
                         {10, "0"},
                         {20, "0"},
                         {30, "7"},
                         {0, "SEQEND"}})) +
        eof);
    ASSERT_EQ(drawing.model().size(), 2U);
    EXPECT_EQ(drawing.paper().size(), 1U);
    for (std::size_t index = 0; index < 2; ++index) {
        const host::SubentityList* parts = entityAt(drawing.model(), index)->subentities();
        ASSERT_NE(parts, nullptr);
        EXPECT_EQ(parts->ids().size(), index == 0 ? 2U : 1U);
        EXPECT_NE(parts->sequenceEnd(), nullptr);
        EXPECT_EQ(AcDbObjectId(parts->ids()[0]).stub()->object->ownerId(),
                  drawing.model()[index]->objectId());
    }
    // The block named before it is defined is the one defined later.
    const auto* table = host::peek<AcDbBlockTable>(drawing.database->blockTableId());
    EXPECT_EQ(
        std::count_if(
            table->records().begin(), table->records().end(),
            [](AcDbStub* stub) {
                return static_cast<AcDbBlockTableRecord*>(stub->object)->name().compareNoCase(L"INNER") == 0;
            }),
        1);
    EXPECT_EQ(drawing.report(), "");
    // Kept kinds get the subclass markers that later releases need.
    EXPECT_NE(drawing.written().find("100\r\nAcDb3dPolyline\r\n"), std::string::npos);
    EXPECT_NE(drawing.written().find("100\r\nAcDb3dPolylineVertex\r\n"), std::string::npos);
}

TEST(DxfReader, newHandlesStayClearOfTheFilesOwn) {
    // Tables have no handles here, and nothing says which are free.
    const Drawing drawing(section("TABLES", groups({{0, "TABLE"},
                                                    {2, "LAYER"},
                                                    {70, "1"},
                                                    {0, "LAYER"},
                                                    {2, "A"},
                                                    {70, "0"},
                                                    {62, "1"},
                                                    {6, "CONTINUOUS"},
                                                    {0, "ENDTAB"}})) +
                          entities(groups({{0, "LINE"},
                                           {5, "2"},
                                           {8, "A"},
                                           {10, "0"},
                                           {20, "0"},
                                           {11, "1"},
                                           {21, "1"},
                                           {0, "LINE"},
                                           {8, "A"},
                                           {5, "7F"},
                                           {10, "0"},
                                           {20, "0"},
                                           {11, "1"},
                                           {21, "1"}})) +
                          eof);
    ASSERT_EQ(drawing.model().size(), 2U);
    EXPECT_EQ(drawing.model()[0]->handle(), 2U);
    EXPECT_EQ(drawing.model()[1]->handle(), 0x7FU);
    EXPECT_EQ(drawing.report(), "");
}

TEST(DxfReader, duplicateHandlesAndWrongOwnersAreToldAndRepaired) {
    const Drawing drawing(
        header("AC1015") + spaceTables +
        entities(line("30", "1F") + line("30", "1F") + line("31", "99") + line("32", "30")) + eof);
    EXPECT_EQ(drawing.model().size(), 4U);
    const std::string report = drawing.report();
    EXPECT_NE(report.find("LINE 的句柄已被另一个对象占用, 改为"), std::string::npos) << report;
    EXPECT_NE(report.find("LINE 的所有者 99 不是模型空间或图纸空间 (句柄 31), 已修复"), std::string::npos)
        << report;
    EXPECT_NE(report.find("LINE 的所有者 30 不是模型空间或图纸空间 (句柄 32), 已修复"), std::string::npos)
        << report;
    EXPECT_NE(report.find("引用的对象 99 不存在 (句柄 31), 已原样保留"), std::string::npos) << report;
}

TEST(DxfReader, sectionsAndTablesInAnyOrder) {
    const std::string tables =
        section("TABLES",
                groups({{0, "TABLE"}, {2, "LAYER"}, {5, "2"},      {0, "LAYER"},  {5, "10"},    {2, "Water"},
                        {70, "0"},    {62, "5"},    {6, "DASHED"}, {0, "ENDTAB"}, {0, "TABLE"}, {2, "LTYPE"},
                        {5, "3"},     {0, "LTYPE"}, {5, "11"},     {2, "Dashed"}, {70, "0"},    {3, ""},
                        {72, "65"},   {73, "0"},    {40, "0"},     {0, "ENDTAB"}}));
    const Drawing drawing(header("AC1015") + entities(line("30", "", "WATER")) + tables + eof);
    ASSERT_EQ(drawing.model().size(), 1U);
    EXPECT_EQ(layerOf(entityAt(drawing.model(), 0)), "Water");
    const auto* layer = AcDbLayerTableRecord::cast(drawing.at(0x10));
    ASSERT_NE(layer, nullptr);
    EXPECT_EQ(layer->linetypeObjectId().handle(), AcDbHandle(0x11));
}

TEST(DxfReader, textsInAllEncodings) {
    const auto text = [](const std::string& value) {
        return groups({{0, "TEXT"}, {8, "0"}, {10, "0"}, {20, "0"}, {40, "1"}, {1, value}});
    };
    const auto written = [](const Drawing& drawing) {
        std::vector<std::string> texts;
        const std::string all = drawing.written();
        const std::string model = all.substr(all.find("ENTITIES"));
        for (std::size_t at = model.find("\r\n  1\r\n"); at != model.npos;
             at = model.find("\r\n  1\r\n", at + 1)) {
            const std::size_t start = at + 7;
            texts.push_back(model.substr(start, model.find("\r\n", start) - start));
            if (texts.size() == 3) {
                break;
            }
        }
        return texts;
    };
    const std::string gbk = "\xBA\xD3\xC1\xF7"; // 河流
    const std::vector<std::string> expected = {"河流", "直径Ø", "a^Ib"};
    const Drawing page(header("AC1015", groups({{9, "$DWGCODEPAGE"}, {3, "ANSI_936"}})) +
                       entities(text(gbk) + text("\xD6\xB1\xBE\xB6\\U+00D8") + text("a^Ib")) + eof);
    EXPECT_EQ(written(page), expected);
    const Drawing utf8(header("AC1021", groups({{9, "$DWGCODEPAGE"}, {3, "ANSI_1252"}})) +
                       entities(text("河流") + text("直径\\U+00D8") + text("a^Ib")) + eof);
    EXPECT_EQ(written(utf8), expected);
    const Drawing unknown(entities(text(gbk) + text("直径Ø") + text("a^Ib")) + eof);
    EXPECT_EQ(written(unknown), expected);
    const Drawing multibyte(header("AC1009") +
                            entities(text("\\M+5BAD3\\M+5C1F7") + text("直径Ø") + text("a^Ib")) + eof);
    EXPECT_EQ(written(multibyte), expected);
    const Drawing wrong(header("AC1032") + entities(text(gbk) + text("直径Ø") + text("a^Ib")) + eof);
    EXPECT_EQ(written(wrong), expected);
    EXPECT_EQ(wrong.report(), "部分文字不是 UTF-8, 按代码页读取, 已修复\n");
}

TEST(DxfReader, headerVariablesKnownAndUnknown) {
    const Drawing drawing(
        header("AC1018", groups({{9, "$LTSCALE"},
                                 {40, "2.5"},
                                 {9, "$CLAYER"},
                                 {8, "roads"},
                                 {9, "$EXTMIN"},
                                 {10, "1"},
                                 {20, "2"},
                                 {30, "3"},
                                 {9, "$FUTURE"},
                                 {10, "7"},
                                 {20, "8.5"},
                                 {9, "$LUPREC"},
                                 {70, "x"},
                                 {9, "$INSUNITS"},
                                 {70, "6"}})) +
        section("TABLES", groups({{0, "TABLE"}, {2, "LAYER"}, {0, "LAYER"}, {2, "Roads"}, {0, "ENDTAB"}})) +
        eof);
    EXPECT_EQ(drawing.database->ltscale(), 2.5);
    EXPECT_EQ(drawing.database->extmin(), AcGePoint3d(1, 2, 3));
    EXPECT_EQ(drawing.database->insunits(), 6);
    const auto* layer = host::peek<AcDbLayerTableRecord>(drawing.database->clayer());
    EXPECT_EQ(layer->name(), L"Roads");
    EXPECT_NE(drawing.written().find("$FUTURE\r\n 10\r\n7.0\r\n 20\r\n8.5\r\n"), std::string::npos);
    EXPECT_NE(drawing.report().find("组码 70 的值 \"x\" 不是整数"), std::string::npos);
}

TEST(DxfReader, whatIsNotUnderstoodIsKept) {
    const std::string mystery = groups({{0, "MYSTERY"},
                                        {5, "40"},
                                        {102, "{ACAD_REACTORS"},
                                        {330, "C"},
                                        {102, "}"},
                                        {330, "C"},
                                        {100, "AcDbMystery"},
                                        {90, "7"},
                                        {340, "30"},
                                        {1, "^ x\\U+4E2D"},
                                        {10, "1.50"},
                                        {20, "0"}});
    const std::string body = groups({{0, "3DSOLID"},
                                     {5, "30"},
                                     {330, "1F"},
                                     {100, "AcDbEntity"},
                                     {8, "0"},
                                     {92, "2"},
                                     {310, "ABCD"},
                                     {100, "AcDbModelerGeometry"},
                                     {70, "1"},
                                     {1, "nmno f rnmo"},
                                     {3, "^ more"},
                                     {1001, "APP"},
                                     {1000, "d"},
                                     {1040, "1.0"}});
    const Drawing drawing(header("AC1015") + spaceTables + entities(body) +
                          section("OBJECTS", groups({{0, "DICTIONARY"},
                                                     {5, "C"},
                                                     {330, "0"},
                                                     {100, "AcDbDictionary"},
                                                     {281, "1"},
                                                     {3, "M"},
                                                     {350, "40"}}) +
                                                 mystery) +
                          section("FUTURE", groups({{90, "3"}, {0, "THING"}, {1, "a"}})) + eof);
    const std::string written = drawing.written();
    for (const std::string& part :
         {std::string("MYSTERY\r\n  "
                      "5\r\n40\r\n102\r\n{ACAD_REACTORS\r\n330\r\nC\r\n102\r\n}"
                      "\r\n330\r\nC\r\n100\r\nAcDbMystery\r\n 90\r\n7\r\n"
                      "340\r\n30\r\n  1\r\n^ x中\r\n 10\r\n1.5\r\n 20\r\n0.0\r\n"),
          std::string("3DSOLID\r\n  5\r\n30\r\n330\r\n1F\r\n100\r\nAcDbEntity\r\n  8\r\n0\r\n "
                      "92\r\n2\r\n310\r\nABCD\r\n100\r\n"
                      "AcDbModelerGeometry\r\n 70\r\n1\r\n  1\r\nnmno f rnmo\r\n  3\r\n^ "
                      "more\r\n1001\r\nAPP\r\n1000\r\nd\r\n1040\r\n1.0\r\n"),
          std::string("FUTURE\r\n 90\r\n3\r\n  0\r\nTHING\r\n  1\r\na\r\n  0\r\nENDSEC\r\n")}) {
        EXPECT_NE(written.find(part), std::string::npos) << part << "\nin\n" << written;
    }
    EXPECT_NE(drawing.report().find("应用程序名 \"APP\" 没有注册"), std::string::npos);
}

TEST(DxfReader, badValuesLeaveOutTheEntityAndSayWhere) {
    const Drawing drawing(
        entities(groups({{0, "LINE"},     {8, "0"},      {10, "nan"}, {20, "0"},     {11, "1"},   {21, "1"},
                         {0, "POLYLINE"}, {8, "0"},      {70, "x"},   {0, "VERTEX"}, {10, "0"},   {20, "0"},
                         {0, "SEQEND"},   {0, "VERTEX"}, {10, "0"},   {20, "0"},     {0, "LINE"}, {8, "0"},
                         {10, "0"},       {20, "0"},     {11, "1"},   {21, "1"}})) +
        eof);
    EXPECT_EQ(drawing.model().size(), 1U);
    EXPECT_EQ(drawing.report(), "第 10 行: LINE: 组码 10 的值 \"nan\" 不是数, 已略去\n"
                                "第 22 行: POLYLINE: 组码 70 的值 \"x\" 不是整数, 已略去\n");
}

TEST(DxfReader, linesBehindAnAttributeAreItsOwn) {
    const Drawing drawing(
        header("AC1024") + section("BLOCKS", groups({{0, "BLOCK"}, {8, "0"}, {2, "B"}, {0, "ENDBLK"}})) +
        entities(groups({{0, "INSERT"},    {5, "A1"},     {8, "0"},    {66, "1"},    {2, "B"},     {10, "0"},
                         {20, "0"},        {0, "ATTRIB"}, {5, "A2"},   {8, "0"},     {10, "1"},    {20, "2"},
                         {40, "2.5"},      {1, "one"},    {2, "TAG"},  {70, "0"},    {0, "MTEXT"}, {5, "A3"},
                         {8, "0"},         {10, "1"},     {20, "2"},   {40, "2.5"},  {41, "0"},    {71, "1"},
                         {1, "one\\Ptwo"}, {0, "SEQEND"}, {5, "A4"},   {0, "MTEXT"}, {5, "A5"},    {8, "0"},
                         {10, "1"},        {20, "2"},     {40, "2.5"}, {1, "free"}})) +
        eof);
    EXPECT_EQ(drawing.model().size(), 2U);
    const auto* attribute = AcDbAttribute::cast(drawing.at(0xA2));
    ASSERT_NE(attribute, nullptr);
    const host::ReadAccess access(*attribute);
    const std::unique_ptr<AcDbMText> lines(attribute->getMTextAttribute());
    ASSERT_NE(lines, nullptr);
    EXPECT_EQ(lines->layout().lineCount, 2);
    const Drawing again(drawing.written());
    EXPECT_EQ(difference(again.written(), drawing.written()), "");
}

TEST(DxfReader, brokenFilesEndInOneLine) {
    EXPECT_EQ(failure(""), "文件是空的, 不是 DXF 文件");
    EXPECT_EQ(failure("0\nSECTION\n2\nENTITIES\nabc\n1\n"), "第 5 行: 组码 \"abc\" 不是整数");
    EXPECT_EQ(failure("0\nSECTION\n2\nENTITIES\n0\nLINE\n8\n"), "第 7 行: 组码 8 之后文件中断");
    EXPECT_EQ(failure("0\nSECTION\n2\nENTITIES\n0\nLINE\n8\n0\n"),
              "第 7 行: 文件在段的中间结束, 没有 ENDSEC");
    EXPECT_EQ(failure("0\nLINE\n"), "第 2 行: 应为 SECTION 或 EOF, 而是 \"LINE\"");
    EXPECT_EQ(failure("0\nSECTION\n0\nENDSEC\n"), "第 3 行: SECTION 之后没有段名");
    EXPECT_EQ(failure("%PDF-1.4\n"), "第 1 行: 组码 \"%PDF-1.4\" 不是整数");
    const Drawing noEnd(entities(""));
    EXPECT_EQ(noEnd.report(), "第 5 行: 文件末尾没有 EOF, 已修复\n");
}

TEST(DxfReader, hostileOwnersAndSequencesEnd) {
    // Dictionaries that own each other, a block that is its own owner, parts without parents.
    const Drawing drawing(header("AC1015") +
                          section("TABLES", groups({{0, "TABLE"},
                                                    {2, "BLOCK_RECORD"},
                                                    {5, "1"},
                                                    {0, "BLOCK_RECORD"},
                                                    {5, "20"},
                                                    {330, "20"},
                                                    {2, "A"},
                                                    {0, "ENDTAB"}})) +
                          section("BLOCKS", groups({{0, "BLOCK"},
                                                    {5, "21"},
                                                    {330, "20"},
                                                    {2, "A"},
                                                    {0, "INSERT"},
                                                    {5, "22"},
                                                    {330, "20"},
                                                    {2, "A"},
                                                    {0, "ATTRIB"},
                                                    {5, "23"},
                                                    {330, "22"},
                                                    {0, "BLOCK"},
                                                    {2, "B"},
                                                    {0, "ENDBLK"}})) +
                          entities(groups({{0, "SEQEND"}, {0, "ATTRIB"}, {1, "x"}})) +
                          section("OBJECTS", groups({{0, "DICTIONARY"},
                                                     {5, "C"},
                                                     {330, "0"},
                                                     {3, "X"},
                                                     {350, "D"},
                                                     {0, "DICTIONARY"},
                                                     {5, "D"},
                                                     {330, "E"},
                                                     {3, "X"},
                                                     {360, "E"},
                                                     {0, "DICTIONARY"},
                                                     {5, "E"},
                                                     {330, "D"},
                                                     {3, "X"},
                                                     {360, "D"},
                                                     {3, "Y"},
                                                     {350, "FFFFFFFFFFFFFFFF"}})) +
                          eof);
    EXPECT_EQ(drawing.model().size(), 0U);
    EXPECT_FALSE(drawing.written().empty());
}

TEST(DxfReader, theGivenDatabaseDoesNotRecordUndo) {
    const Drawing drawing(entities(line("", "")) + eof);
    EXPECT_EQ(drawing.database->undoLog().undoableSteps(), 0);
}

TEST(ReadReport, countsBeyondItsLimit) {
    host::ReadReport report;
    for (std::size_t index = 0; index < host::ReadReport::maximumEntries + 5; ++index) {
        report.add({index, 0x1F, L"x", host::ReadEntry::Done::leftOut});
    }
    EXPECT_EQ(report.entries().size(), host::ReadReport::maximumEntries);
    EXPECT_NE(report.text().find(L"还有 5 处"), std::wstring::npos);
    EXPECT_EQ(report.entries()[3].text(), L"第 3 行: x (句柄 1F), 已略去");
}

TEST(DxfReader, commonGroupsAmongOthersAreTakenWithoutMarkers) {
    // A kind the host may not know, with its layer behind a group of its own; an object before any
    // dictionary.
    const Drawing drawing(header("AC1015") +
                          entities(groups({{0, "THING"},
                                           {5, "30"},
                                           {40, "1"},
                                           {8, "墙"},
                                           {102, "{A"},
                                           {1, "x"},
                                           {102, "}"},
                                           {370, "25"},
                                           {71, "2"}})) +
                          section("OBJECTS", groups({{0, "THING"}, {5, "31"}, {1, "x"}})) +
                          section("TABLES", groups({{0, "TABLE"},
                                                    {2, "LTYPE"},
                                                    {0, "LTYPE"},
                                                    {2, "A"},
                                                    {74, "2"},
                                                    {9, "stray"},
                                                    {49, "1"},
                                                    {0, "ENDTAB"}})) +
                          eof);
    ASSERT_EQ(drawing.model().size(), 1U);
    EXPECT_EQ(layerOf(entityAt(drawing.model(), 0)), "墙");
    EXPECT_EQ(drawing.at(0x31)->ownerId(), drawing.database->namedObjectsDictionaryId());
    const std::string once = drawing.written();
    EXPECT_NE(once.find("370\r\n25\r\n 40\r\n1\r\n 71\r\n2\r\n"), std::string::npos) << once;
    EXPECT_EQ(once.find("stray"), std::string::npos);
    EXPECT_EQ(difference(Drawing(once).written(), once), "");
}
