// Files of older releases and binary files: the same drawing in each, without what the release does not have,
// and a line for what is lost.
#include "drawings.h"

using namespace formats_test;

namespace {

host::DxfWriteOptions release(AcDb::AcDbDwgVersion version, bool binary = false) {
    host::DxfWriteOptions options;
    options.version = version;
    options.binary = binary;
    return options;
}

struct Saved {
    Saved(const Drawing& drawing, const host::DxfWriteOptions& options)
        : bytes(host::writeDxfText(*drawing.database, options, &losses)) {}

    bool has(std::initializer_list<Group> wanted) const {
        std::string lines;
        for (const auto& [code, value] : wanted) {
            std::string number = std::to_string(code);
            number.insert(0, number.size() < 3 ? 3 - number.size() : 0, ' ');
            lines += number + "\r\n" + value + "\r\n";
        }
        return bytes.find(lines) != std::string::npos;
    }
    std::string report() const { return host::toUtf8(losses.text()); }

    host::ReadReport losses;
    std::string bytes;
};

std::string entity(const std::string& kind, std::initializer_list<Group> common,
                   std::initializer_list<Group> own) {
    return groups({{0, kind}, {100, "AcDbEntity"}, {8, "0"}}) + groups(common) + groups(own);
}

const std::string coloredLine = entity("LINE", {{62, "1"}, {420, "16711935"}, {440, "33554559"}},
                                       {{100, "AcDbLine"}, {10, "0"}, {20, "0"}, {11, "1"}, {21, "1"}});
const std::string columns = entity("MTEXT", {},
                                   {{100, "AcDbMText"},
                                    {10, "0"},
                                    {20, "0"},
                                    {40, "2.5"},
                                    {1, "x"},
                                    {101, "Embedded Object"},
                                    {70, "1"},
                                    {10, "1"},
                                    {71, "2"},
                                    {1001, "ACAD"},
                                    {1000, "after"}});

} // namespace

TEST(DxfReleases, everyReleaseReadsBackAsItself) {
    const Drawing drawing(header("AC1032", groups({{9, "$DIMASSOC"}, {280, "1"}})) +
                          entities(coloredLine + columns) + eof);
    for (const auto& [version, name] :
         {std::pair(AcDb::kDHL_1015, "AC1015"), std::pair(AcDb::kDHL_1800, "AC1018"),
          std::pair(AcDb::kDHL_1021, "AC1021"), std::pair(AcDb::kDHL_1024, "AC1024"),
          std::pair(AcDb::kDHL_1027, "AC1027"), std::pair(AcDb::kDHL_1032, "AC1032")}) {
        for (const bool binary : {false, true}) {
            const Saved saved(drawing, release(version, binary));
            EXPECT_NE(saved.bytes.find(name), std::string::npos);
            const Drawing again(saved.bytes);
            EXPECT_EQ(again.report(), "") << name;
            EXPECT_EQ(again.model().size(), 2U);
            const Saved twice(again, release(version, binary));
            EXPECT_EQ(difference(twice.bytes, saved.bytes), "") << name;
        }
    }
}

TEST(DxfReleases, whatAReleaseLacksIsLeftOutAndTold) {
    const Drawing drawing(header("AC1032", groups({{9, "$DIMASSOC"}, {280, "1"}})) +
                          entities(coloredLine + coloredLine + columns) + eof);
    const Saved r2000(drawing, release(AcDb::kDHL_1015));
    EXPECT_FALSE(r2000.has({{420, "16711935"}}));
    EXPECT_FALSE(r2000.has({{9, "$DIMASSOC"}}));
    EXPECT_FALSE(r2000.has({{101, "Embedded Object"}}));
    EXPECT_TRUE(r2000.has({{1001, "ACAD"}, {1000, "after"}}));
    EXPECT_TRUE(r2000.has({{62, "6"}})) << "the index nearest to the colour";
    const std::string report = r2000.report();
    EXPECT_NE(report.find("2000 版没有真彩色 (改用最接近的颜色号), 共 2 处 (句柄 "), std::string::npos)
        << report;
    EXPECT_NE(report.find("2000 版没有透明度, 共 2 处"), std::string::npos) << report;
    EXPECT_NE(report.find("2000 版没有多行文字的分栏 (句柄 "), std::string::npos) << report;
    EXPECT_NE(report.find("2000 版没有系统变量 DIMASSOC, 已略去"), std::string::npos) << report;

    const Saved r2010(drawing, release(AcDb::kDHL_1024));
    EXPECT_TRUE(r2010.has({{420, "16711935"}}));
    EXPECT_TRUE(r2010.has({{9, "$DIMASSOC"}}));
    EXPECT_EQ(r2010.losses.count(), 1U) << r2010.report();
    const Saved r2018(drawing, release(AcDb::kDHL_1032));
    EXPECT_TRUE(r2018.has({{101, "Embedded Object"}}));
    EXPECT_EQ(r2018.report(), "");
}

TEST(DxfReleases, aNewDrawingLosesNothing) {
    initialize();
    AcDbDatabase database(true, true);
    for (const AcDb::AcDbDwgVersion version : {AcDb::kDHL_1015, AcDb::kDHL_1021, AcDb::kDHL_1024}) {
        host::ReadReport losses;
        host::writeDxfText(database, release(version), &losses);
        EXPECT_EQ(host::toUtf8(losses.text()), "");
    }
}

TEST(DxfReleases, oldTextsAreInTheCodePageWithEscapes) {
    const Drawing drawing(
        header("AC1021") +
        entities(groups({{0, "TEXT"}, {8, "围墙"}, {10, "0"}, {20, "0"}, {40, "1"}, {1, "砖Å𠀀"}})) + eof);
    const Saved r2000(drawing, release(AcDb::kDHL_1015));
    EXPECT_TRUE(r2000.has({{3, "ANSI_936"}}));
    EXPECT_NE(r2000.bytes.find("\xCE\xA7\xC7\xBD"), std::string::npos);
    EXPECT_TRUE(r2000.has({{1, "\xD7\xA9\\U+00C5\\U+D840\\U+DC00"}}));
    const Drawing again(r2000.bytes);
    ASSERT_EQ(again.model().size(), 1U);
    const auto* text = AcDbText::cast(again.model()[0]);
    const host::ReadAccess access(*text);
    EXPECT_STREQ(text->textStringConst(), L"砖Å𠀀");
    EXPECT_NE(again.written().find("  8\r\n围墙\r\n"), std::string::npos);

    // A page that is none for such files gives way to the Chinese one.
    const Drawing wrong(header("AC1021", groups({{9, "$DWGCODEPAGE"}, {3, "nonsense"}})) +
                        entities(groups({{0, "POINT"}, {8, "墙"}})) + eof);
    const Saved saved(wrong, release(AcDb::kDHL_1015));
    EXPECT_TRUE(saved.has({{3, "ANSI_936"}}));
    EXPECT_NE(Drawing(saved.bytes).written().find("  8\r\n墙\r\n"), std::string::npos);
}

TEST(DxfReleases, objectsThatCannotBeHeldGoWithWhatNamesThem) {
    const Drawing drawing(
        header("AC1032", groups({{9, "$INTERFEREOBJVS"}, {345, "91"}})) +
        entities(groups(
            {{0, "3DSOLID"}, {5, "90"}, {8, "0"}, {100, "AcDbModelerGeometry"}, {290, "1"}, {2, "{GUID}"}})) +
        section("OBJECTS", groups({{0, "DICTIONARY"},
                                   {5, "C"},
                                   {330, "0"},
                                   {100, "AcDbDictionary"},
                                   {281, "1"},
                                   {3, "STYLE"},
                                   {350, "91"},
                                   {3, "NOTE"},
                                   {350, "92"},
                                   {0, "VISUALSTYLE"},
                                   {5, "91"},
                                   {102, "{ACAD_XDICTIONARY"},
                                   {360, "93"},
                                   {102, "}"},
                                   {330, "C"},
                                   {100, "AcDbVisualStyle"},
                                   {177, "3"},
                                   {0, "DICTIONARY"},
                                   {5, "93"},
                                   {330, "91"},
                                   {100, "AcDbDictionary"},
                                   {0, "XRECORD"},
                                   {5, "92"},
                                   {330, "C"},
                                   {100, "AcDbXrecord"},
                                   {340, "91"},
                                   {1, "x"}})) +
        section("ACDSDATA", groups({{70, "2"}, {0, "ACDSRECORD"}})) + eof);
    const Saved r2010(drawing, release(AcDb::kDHL_1024));
    EXPECT_EQ(r2010.losses.count(), 2U) << r2010.report();
    const Drawing again(r2010.bytes);
    EXPECT_EQ(again.report(), "");
    for (const Adesk::UInt64 handle : {0x90, 0x91, 0x93}) {
        EXPECT_EQ(again.at(handle), nullptr) << handle;
    }
    EXPECT_NE(again.at(0x92), nullptr);
    EXPECT_FALSE(r2010.has({{3, "STYLE"}}));
    EXPECT_EQ(difference(Saved(again, release(AcDb::kDHL_1024)).bytes, r2010.bytes), "");
    EXPECT_TRUE(r2010.has({{3, "NOTE"}, {350, "92"}}));
    EXPECT_TRUE(r2010.has({{100, "AcDbXrecord"}, {280, "1"}, {340, "0"}, {1, "x"}}));
    EXPECT_TRUE(r2010.has({{9, "$INTERFEREOBJVS"}, {345, "0"}}));
    EXPECT_EQ(r2010.bytes.find("ACDSDATA"), std::string::npos);
    EXPECT_NE(Saved(drawing, release(AcDb::kDHL_1027)).bytes.find("ACDSDATA"), std::string::npos);
}

TEST(DxfReleases, binaryFilesHoldTheSameDrawing) {
    const Drawing drawing(header("AC1032") +
                          entities(coloredLine + groups({{0, "THING"},
                                                         {8, "0"},
                                                         {100, "AcDbThing"},
                                                         {1, "a^Jb 墙"},
                                                         {40, "0.1"},
                                                         {70, "-32768"},
                                                         {71, "40000"},
                                                         {90, "-2147483648"},
                                                         {160, "1234567890123"},
                                                         {290, "1"},
                                                         {310, std::string(300, 'A')},
                                                         {320, "1F"},
                                                         {330, "1F"}})) +
                          eof);
    const Saved saved(drawing, release(AcDb::kDHL_1032, true));
    EXPECT_TRUE(saved.bytes.starts_with("AutoCAD Binary DXF\r\n\x1A"));
    EXPECT_EQ(saved.report(), "1 个整数超出二进制文件的范围, 已修复\n");
    const Drawing again(saved.bytes);
    const std::string text = again.written();
    EXPECT_NE(text.find(" 71\r\n32767\r\n"), std::string::npos);
    EXPECT_NE(text.find("310\r\n" + std::string(254, 'A') + "\r\n310\r\n" + std::string(46, 'A') + "\r\n"),
              std::string::npos);
    std::string expected = drawing.written();
    for (const auto& [from, to] :
         {std::pair(std::string(" 71\r\n40000"), std::string(" 71\r\n32767")),
          std::pair(std::string(300, 'A'), std::string(254, 'A') + "\r\n310\r\n" + std::string(46, 'A'))}) {
        const std::size_t at = expected.find(from);
        ASSERT_NE(at, std::string::npos);
        expected.replace(at, from.size(), to);
    }
    EXPECT_EQ(difference(text, expected), "");
}

TEST(DxfReleases, binaryFilesBeforeRelease13AndPlacesInBinaryFiles) {
    std::string bytes("AutoCAD Binary DXF\r\n\x1A\0", 22);
    const auto put = [&](int code, const std::string& value) {
        bytes += static_cast<char>(code);
        bytes += value;
    };
    const auto text = [](const char* value) { return std::string(value) + '\0'; };
    const auto real = [](double value) { return std::string(reinterpret_cast<const char*>(&value), 8); };
    put(0, text("SECTION"));
    put(2, text("ENTITIES"));
    put(0, text("LINE"));
    const std::size_t layerAt = bytes.size();
    put(8, text("WALL"));
    put(62, std::string("\x05\0", 2));
    put(10, real(1));
    put(20, real(2));
    put(11, real(3));
    put(21, real(4));
    put(255, std::string("\xE9\x03", 2) + text("APP")); // 1001
    put(0, text("ENDSEC"));
    put(0, text("EOF"));
    const Drawing drawing(bytes);
    ASSERT_EQ(drawing.model().size(), 1U);
    const auto* line = AcDbLine::cast(drawing.model()[0]);
    ASSERT_NE(line, nullptr);
    const host::ReadAccess access(*line);
    EXPECT_EQ(line->endPoint(), AcGePoint3d(3, 4, 0));
    EXPECT_EQ(line->colorIndex(), 5);
    char place[32];
    std::snprintf(place, sizeof place, "第 0x%zX 字节: ", layerAt);
    EXPECT_TRUE(drawing.report().starts_with(place + std::string("图层 \"WALL\""))) << drawing.report();
    EXPECT_NE(failure(bytes.substr(0, bytes.size() - 20)).find("字节: "), std::string::npos);
}
