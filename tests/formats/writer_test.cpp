// Writing DXF: equal to the byte when read and written again, atomic, and complete for other programs.
#include "drawings.h"

#include <fstream>

using namespace formats_test;

TEST(DxfWriter, aNewDrawingReadsBackWithoutAWord) {
    initialize();
    AcDbDatabase database(true, true);
    const std::string text = host::writeDxfText(database);
    const Drawing again(text);
    EXPECT_EQ(again.report(), "");
    EXPECT_EQ(difference(again.written(), text), "");
    EXPECT_EQ(difference(host::dumpDrawing(*again.database), host::dumpDrawing(database)), "");
    EXPECT_TRUE(text.starts_with("  0\r\nSECTION\r\n  2\r\nHEADER\r\n  9\r\n$ACADVER\r\n  1\r\nAC1032\r\n"));
    EXPECT_TRUE(text.ends_with("  0\r\nEOF\r\n"));
}

TEST(DxfWriter, readAndWrittenAgainIsEqualToTheByte) {
    const std::string numbers = groups({{0, "LINE"},
                                        {8, "0"},
                                        {10, "0.1"},
                                        {20, "1e-20"},
                                        {30, "123456789.123456789"},
                                        {11, "-0.0"},
                                        {21, "3"},
                                        {31, "1E+300"},
                                        {1001, "ACAD"},
                                        {1000, "a^Jb^ c"},
                                        {1040, "0.30000000000000004"},
                                        {1010, "1"},
                                        {1020, "2"},
                                        {1030, "3"},
                                        {1071, "-7"},
                                        {1005, "FF"}});
    std::string angles;
    for (const char* angle : {"0.1", "29.999999999999996", "45", "90.00000000000001", "123.456", "359.9999",
                              "7.25", "33.333333333333336"}) {
        angles += groups({{0, "ARC"}, {8, "0"}, {10, "0"}, {20, "0"}, {40, "1"}, {50, angle}, {51, "180"}});
    }
    const Drawing first(header("AC1009") + entities(numbers + angles) + eof);
    const std::string once = first.written();
    const Drawing second(once);
    EXPECT_EQ(second.report(), "");
    const std::string twice = second.written();
    EXPECT_EQ(difference(twice, once), "");
    for (const char* part : {" 10\r\n0.1\r\n 20\r\n1e-20\r\n 30\r\n123456789.12345679\r\n", "a^Jb^ c\r\n",
                             " 50\r\n123.456\r\n", " 50\r\n45.0\r\n", " 50\r\n7.25\r\n"}) {
        EXPECT_NE(once.find(part), std::string::npos) << part;
    }
}

TEST(DxfWriter, annotationWithoutAStyleHasTheOneOfAFileWithoutTables) {
    const std::string annotation =
        groups({{0, "DIMENSION"}, {8, "0"}, {70, "1"}, {13, "0"}, {23, "0"}, {14, "5"}, {24, "0"}}) +
        groups({{0, "LEADER"}, {8, "0"}, {76, "2"}, {10, "0"}, {20, "0"}, {10, "5"}, {20, "5"}}) +
        groups({{0, "TOLERANCE"}, {8, "0"}, {10, "0"}, {20, "0"}, {1, "A"}});
    // The variables of the header are the style's, wherever they stand.
    const std::string scale = groups({{9, "$DIMSCALE"}, {40, "7"}});
    for (const std::string& text :
         {header("AC1009", scale) + entities(annotation), entities(annotation) + header("AC1009", scale)}) {
        const Drawing first(text + eof);
        EXPECT_EQ(host::peek<AcDbDimStyleTableRecord>(first.database->dimstyle())->dimVariables().scale, 7.0);
        const std::string once = first.written();
        const Drawing second(once);
        EXPECT_EQ(second.report(), "");
        EXPECT_EQ(difference(second.written(), once), "");
    }
}

TEST(DxfWriter, controlCharactersNeverBreakLines) {
    initialize();
    AcDbDatabase database(true, true);
    {
        const host::Opened<AcDbLayerTable> table(database.layerTableId(), AcDb::kForWrite);
        auto* layer = new AcDbLayerTableRecord;
        layer->setName(L"\x56F4\x5899");
        ASSERT_EQ(table->add(layer), Acad::eOk);
        layer->close();
        host::Opened<AcDbLinetypeTable> linetypes(database.linetypeTableId(), AcDb::kForWrite);
        auto* linetype = new AcDbLinetypeTableRecord;
        linetype->setName(L"L");
        linetype->setComments(L"a\r\nb^c\td");
        ASSERT_EQ(linetypes->add(linetype), Acad::eOk);
        linetype->close();
    }
    const Drawing again(host::writeDxfText(database));
    EXPECT_EQ(again.report(), "");
    EXPECT_EQ(difference(host::dumpDrawing(*again.database), host::dumpDrawing(database)), "");
    AcDbObjectId id;
    const auto* table = host::peek<AcDbLinetypeTable>(again.database->linetypeTableId());
    const host::ReadAccess access(*table);
    ASSERT_EQ(table->AcDbSymbolTable::getAt(L"l", id), Acad::eOk);
    EXPECT_STREQ(host::peek<AcDbLinetypeTableRecord>(id)->asciiDescription(), L"a\r\nb^c\td");
}

TEST(DxfWriter, erasedThingsAreNotWritten) {
    const Drawing drawing(entities(groups({{0, "LINE"},
                                           {5, "30"},
                                           {8, "0"},
                                           {10, "0"},
                                           {20, "0"},
                                           {11, "1"},
                                           {21, "0"},
                                           {0, "LINE"},
                                           {5, "31"},
                                           {8, "0"},
                                           {10, "0"},
                                           {20, "0"},
                                           {11, "1"},
                                           {21, "0"}})) +
                          eof);
    {
        const host::Opened<AcDbEntity> line(drawing.at(0x30)->objectId(), AcDb::kForWrite);
        ASSERT_EQ(line->createExtensionDictionary(), Acad::eOk);
        ASSERT_EQ(line->erase(), Acad::eOk);
    }
    const Drawing again(drawing.written());
    EXPECT_EQ(again.report(), "");
    EXPECT_EQ(again.model().size(), 1U);
    EXPECT_EQ(again.at(0x30), nullptr);
}

TEST(DxfWriter, savingIsWholeAndKeepsTheOldFile) {
    initialize();
    const TemporaryFolder folder;
    const auto file = folder / "a.dxf";
    AcDbDatabase database(true, true);
    std::ofstream(file) << "old";
    ASSERT_EQ(host::writeDxf(database, file).status, Acad::eOk);
    EXPECT_EQ(readFile(folder / "a.bak"), "old");
    EXPECT_EQ(readFile(file), host::writeDxfText(database));
    const host::WriteResult nowhere = host::writeDxf(database, folder / "missing" / "a.dxf");
    EXPECT_NE(nowhere.status, Acad::eOk);
    EXPECT_NE(nowhere.message.find(L"a.dxf"), std::wstring::npos);
    const host::ReadResult absent = host::readDxf(*Drawing::make(), folder / "none.dxf");
    EXPECT_EQ(absent.status, Acad::eFileNotFound);
    EXPECT_NE(absent.message.find(L"none.dxf"), std::wstring::npos);
}

TEST(DxfWriter, theFileHooksGoByTheExtension) {
    initialize();
    const TemporaryFolder folder;
    AcDbDatabase database(true, true);
    EXPECT_EQ(database.saveAs((folder / "a.DXF").wstring().c_str()), Acad::eOk);
    EXPECT_EQ(database.saveAs((folder / "a.xyz").wstring().c_str()), Acad::eInvalidFileExtension);
    AcDbDatabase read(false, true);
    EXPECT_EQ(read.readDwgFile((folder / "a.DXF").wstring().c_str()), Acad::eOk);
    EXPECT_EQ(difference(host::dumpDrawing(read), host::dumpDrawing(database)), "");
}

TEST(DxfWriter, classesOfAFileStayAndAreCounted) {
    const Drawing drawing(header("AC1015") +
                          section("CLASSES", groups({{0, "CLASS"},
                                                     {1, "UNUSED"},
                                                     {2, "AcDbUnused"},
                                                     {3, "x"},
                                                     {90, "5"},
                                                     {280, "1"},
                                                     {281, "0"},
                                                     {0, "CLASS"},
                                                     {1, "THING"},
                                                     {2, "AcDbThing"},
                                                     {3, "App"},
                                                     {90, "7"},
                                                     {280, "0"},
                                                     {281, "1"}})) +
                          entities(groups({{0, "THING"},
                                           {8, "0"},
                                           {100, "AcDbThing"},
                                           {0, "THING"},
                                           {8, "0"},
                                           {0, "ACAD_PROXY_ENTITY"},
                                           {8, "0"},
                                           {100, "AcDbProxyEntity"},
                                           {90, "498"},
                                           {91, "501"},
                                           {93, "13"},
                                           {310, "A5F8"},
                                           {330, "0"},
                                           {340, "30"},
                                           {94, "0"},
                                           {95, "21"},
                                           {70, "0"}})) +
                          eof);
    const std::string written = drawing.written();
    EXPECT_NE(
        written.find(
            "UNUSED\r\n  2\r\nAcDbUnused\r\n  3\r\nx\r\n 90\r\n5\r\n 91\r\n0\r\n280\r\n1\r\n281\r\n0\r\n"),
        std::string::npos);
    EXPECT_NE(
        written.find(
            "THING\r\n  2\r\nAcDbThing\r\n  3\r\nApp\r\n 90\r\n7\r\n 91\r\n3\r\n280\r\n0\r\n281\r\n1\r\n"),
        std::string::npos);
    EXPECT_NE(
        written.find(
            "100\r\nAcDbProxyEntity\r\n 90\r\n498\r\n 91\r\n501\r\n 92\r\n0\r\n 93\r\n13\r\n310\r\nA5F8\r\n"),
        std::string::npos)
        << written;
    EXPECT_EQ(difference(Drawing(written).written(), written), "");
}
