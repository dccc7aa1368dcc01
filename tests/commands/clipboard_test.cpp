// The clipboard: between drawings, with what entities are made of, in the UCS, and over the desktop.
#include "commandtest.h"

#include "host/commands/edit/clip.h"
#include "host/db/entities/mtextcontent.h"
#include "host/ed/desktop.h"
#include "host/formats/formats.h"

#include <set>

namespace {

using commandtest::CommandTest;
using commandtest::Read;

/// A desktop whose clipboard a test can look into and fill as another program would.
class TestDesktop : public host::Desktop {
public:
    TestDesktop() { host::setDesktop(this); }
    ~TestDesktop() override { host::setDesktop(nullptr); }
    void offerDrawing(std::function<std::string()> drawing) override {
        offer = std::move(drawing);
        foreign.reset();
    }
    std::optional<std::string> offeredDrawing() override { return foreign; }
    std::optional<std::wstring> offeredText() override { return text; }
    bool showProperties(bool visible) override {
        shown = visible;
        return true;
    }
    bool wait(std::chrono::milliseconds) override { return ++waits <= patience; }

    std::function<std::string()> offer;
    std::optional<std::string> foreign;
    std::optional<std::wstring> text;
    bool shown = false;
    int waits = 0;
    int patience = 1000000;
};

class Clipboard : public CommandTest {
protected:
    std::vector<AcGePoint3d> starts() {
        std::vector<AcGePoint3d> points;
        for (AcDbLine* line : entities<AcDbLine>()) {
            points.push_back(Read<AcDbLine>(line)->startPoint());
        }
        return points;
    }
    bool hasRecord(AcDbObjectId table, const wchar_t* name) {
        return host::peek<AcDbSymbolTable>(table)->has(name);
    }
};

TEST_F(Clipboard, GoesToAnotherDrawingWithLayersAndBlocks) {
    addLayer(L"ROADS");
    run("LINE 0,0 1,0\n\n-BLOCK\nTREE\n0,0\nL\n\n-INSERT TREE\n7,3 1 1 0\n");
    addLine(5, 9, 8, 9, L"ROADS");
    EXPECT_TRUE(run("COPYCLIP ALL\n\n"));
    AcApDocument* first = curDoc();
    session->newDrawing();
    EXPECT_TRUE(run("PASTECLIP 100,200\n")) << host::toUtf8(transcript.shown);
    EXPECT_TRUE(hasRecord(database().layerTableId(), L"ROADS"));
    EXPECT_TRUE(hasRecord(database().blockTableId(), L"TREE"));
    ASSERT_EQ(entities<AcDbBlockReference>().size(), 1U);
    // The lower left corner of all, (5,3), went to the point.
    EXPECT_EQ(Read(entities<AcDbBlockReference>()[0])->position(), AcGePoint3d(102, 200, 0));
    EXPECT_EQ(starts(), std::vector{AcGePoint3d(100, 206, 0)});
    run("U\n");
    EXPECT_TRUE(entities().empty()) << "one step";
    EXPECT_FALSE(hasRecord(database().layerTableId(), L"ROADS"));
    // The drawing it came from may be gone.
    AcApDocument* second = curDoc();
    acDocManagerPtr()->closeDocument(first);
    acDocManagerPtr()->activateDocument(second);
    EXPECT_TRUE(run("PASTEORIG\n"));
    EXPECT_EQ(starts(), std::vector{AcGePoint3d(5, 9, 0)});
}

TEST_F(Clipboard, DefinitionsOfTheDrawingWin) {
    run("LINE 0,0 1,0\n\n-BLOCK\nTREE\n0,0\nL\n\n-INSERT TREE\n0,0 1 1 0\nCOPYCLIP L\n\n");
    session->newDrawing();
    run("CIRCLE 0,0 5\n-BLOCK\nTREE\n0,0\nL\n\nPASTECLIP 0,0\n");
    AcDbObjectId tree;
    host::peek<AcDbBlockTable>(database().blockTableId())->getAt(L"TREE", tree);
    EXPECT_EQ(Read(entities<AcDbBlockReference>()[0])->blockTableRecord(), tree);
    const auto& parts = host::peek<AcDbBlockTableRecord>(tree)->entities();
    ASSERT_EQ(parts.size(), 1U);
    EXPECT_NE(host::peek<AcDbCircle>(parts.front()), nullptr);
}

TEST_F(Clipboard, DimensionsKeepPicturesOfTheirOwn) {
    run("DIMLINEAR 0,0 10,0 5,5\n");
    EXPECT_TRUE(run("COPYCLIP ALL\n\nPASTECLIP 0,50\nPASTECLIP 0,100\n"));
    std::set<AcDbObjectId> pictures;
    for (AcDbDimension* dimension : entities<AcDbDimension>()) {
        pictures.insert(Read(dimension)->dimBlockId());
    }
    EXPECT_EQ(pictures.size(), 3U);
    EXPECT_FALSE(pictures.contains(AcDbObjectId()));
}

TEST_F(Clipboard, CuttingSparesLockedLayersAndPastingReachesThem) {
    addLayer(L"A");
    addLine(0, 0, 1, 0, L"A");
    addLine(0, 5, 1, 5);
    run("-LAYER LO\nA\n\nCUTCLIP ALL\n\n");
    EXPECT_EQ(starts(), std::vector{AcGePoint3d(0, 0, 0)});
    run("PASTECLIP 9,9\n");
    EXPECT_EQ(starts().back(), AcGePoint3d(9, 9, 0));
    run("COPYCLIP 0.5,0\n\nPASTECLIP 20,20\n");
    EXPECT_EQ(starts().back(), AcGePoint3d(20, 20, 0)) << "copied to a locked layer, yet at its place";
    // So does COPY.
    run("COPY 0.5,0\n\n0,0 0,50\n\n");
    EXPECT_EQ(starts().back(), AcGePoint3d(0, 50, 0));
    run("^C\nPASTECLIP ^C\n");
    EXPECT_EQ(starts().size(), 4U);
}

TEST_F(Clipboard, APlaceInAUcsIsMeantInIt) {
    addLine(10, 10, 20, 10);
    run("UCS Z 90\nCOPYBASE 0,0\nALL\n\nPASTECLIP 5,0\nUCS W\nPASTECLIP 1,1\n");
    const std::vector<AcGePoint3d> points = starts();
    ASSERT_EQ(points.size(), 3U);
    EXPECT_TRUE(points[1].isEqualTo(AcGePoint3d(10, 15, 0))) << "five along the turned X axis";
    // In the world what lay along -Y of the turned system lies so again.
    EXPECT_TRUE(points[2].isEqualTo(AcGePoint3d(11, -9, 0))) << points[2].x << ' ' << points[2].y;
}

TEST_F(Clipboard, ABlockOfIt) {
    addLine(10, 10, 20, 10);
    addLine(10, 20, 20, 20);
    run("COPYBASE 10,10\nALL\n\nERASE ALL\n\nPASTEBLOCK 1,2\nPASTEBLOCK 3,4\n");
    const auto references = entities<AcDbBlockReference>();
    ASSERT_EQ(references.size(), 2U);
    EXPECT_NE(Read(references[0])->blockTableRecord(), Read(references[1])->blockTableRecord());
    EXPECT_EQ(Read(references[0])->position(), AcGePoint3d(1, 2, 0));
    AcDbExtents box;
    EXPECT_EQ(Read(references[1])->getGeomExtents(box), Acad::eOk);
    EXPECT_TRUE(box.minPoint().isEqualTo(AcGePoint3d(3, 4, 0)));
    EXPECT_TRUE(box.maxPoint().isEqualTo(AcGePoint3d(13, 14, 0)));
    const auto* block = host::peek<AcDbBlockTableRecord>(Read(references[0])->blockTableRecord());
    EXPECT_EQ(std::wstring(block->name().kwszPtr()).substr(0, 3), L"A$C");
}

TEST_F(Clipboard, TheDesktopCarriesItBetweenPrograms) {
    TestDesktop desktop;
    addLayer(L"水系");
    addLine(3, 4, 5, 6, L"水系");
    run("UCS Z 90\nCOPYBASE 0,0\nALL\n\n");
    ASSERT_TRUE(desktop.offer);
    const std::string carried = desktop.offer();
    session->newDrawing();
    desktop.foreign = carried;
    EXPECT_TRUE(run("PASTEORIG\n")) << host::toUtf8(transcript.shown);
    EXPECT_EQ(starts(), std::vector{AcGePoint3d(3, 4, 0)});
    EXPECT_TRUE(hasRecord(database().layerTableId(), L"水系"));
    run("PASTECLIP 0,0\n");
    EXPECT_TRUE(starts()[1].isEqualTo(AcGePoint3d(4, -3, 0))) << "base and UCS came along";
    desktop.foreign = "no drawing";
    EXPECT_FALSE(run("PASTECLIP\n"));
    EXPECT_TRUE(showed(L"剪贴板中的图形无法读取"));
    EXPECT_EQ(entities().size(), 2U);
    // Nothing chosen, nothing offered.
    desktop.offer = nullptr;
    run("COPYCLIP\n\n");
    EXPECT_FALSE(desktop.offer);
}

TEST_F(Clipboard, TextOfAnotherProgramBecomesParagraphs) {
    TestDesktop desktop;
    const std::wstring plain = L"路段\t长度\nA{1}\\B ^I \\P %\n\n12^3";
    desktop.text = plain + L"\r\n";
    EXPECT_TRUE(run("TEXTSIZE 4\nUCS O\n100,0\nPASTECLIP 5,6\n"));
    ASSERT_EQ(entities<AcDbMText>().size(), 1U);
    const Read text(entities<AcDbMText>()[0]);
    EXPECT_EQ(text->location(), AcGePoint3d(105, 6, 0));
    EXPECT_DOUBLE_EQ(text->textHeight(), 4.0);
    std::wstring shown = host::plainMText(host::mtextContents(*desktop.text));
    EXPECT_EQ(shown, plain);
    desktop.text = L"\r\n";
    run("PASTECLIP\n");
    EXPECT_EQ(entities().size(), 1U) << "an empty text is none";
}

TEST_F(Clipboard, ThePanelOfPropertiesIsShownAndHidden) {
    EXPECT_TRUE(run("PROPERTIES\nPROPERTIESCLOSE\n"));
    EXPECT_TRUE(showed(L"没有特性面板"));
    TestDesktop desktop;
    run("PR\n");
    EXPECT_TRUE(desktop.shown);
    run("PRCLOSE\n");
    EXPECT_FALSE(desktop.shown);
}

} // namespace
