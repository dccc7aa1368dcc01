// Commands over sets, scripts, views and the session.
#include "commandtest.h"

#include "host/commands/edit/namedviews.h"
#include "host/ed/desktop.h"
#include "host/ed/documentstate.h"
#include "host/ed/drawingtimes.h"
#include "host/formats/formats.h"

#include <fstream>

namespace {

using commandtest::CommandTest;
using commandtest::Read;

class SessionCommands : public CommandTest {
protected:
    SessionCommands() {
        mFolder = std::filesystem::temp_directory_path() / ("scripts-" + std::to_string(getpid()));
        std::filesystem::create_directories(mFolder);
        host::supportFolders() = {mFolder};
    }
    ~SessionCommands() override {
        host::supportFolders().clear();
        std::filesystem::remove_all(mFolder);
    }
    void script(const char* name, const std::string& text) { std::ofstream(mFolder / name) << text; }
    std::size_t lineCount() { return entities<AcDbLine>().size(); }
    bool chose(int count) { return showed((L"已选择 " + std::to_wstring(count) + L" 个对象").c_str()); }

    std::filesystem::path mFolder;
};

/// Escape is hit after some questions.
class ImpatientDesktop : public host::Desktop {
public:
    explicit ImpatientDesktop(int patience) : mLeft(patience) { host::setDesktop(this); }
    ~ImpatientDesktop() override { host::setDesktop(nullptr); }
    bool wait(std::chrono::milliseconds) override { return --mLeft != 0; }

private:
    int mLeft;
};

TEST_F(SessionCommands, AScriptAnswersInTheUsersPlaceAndHeGoesOn) {
    script("two.scr", "; a comment\nLINE 0,0 1,0\n\nLINE\n5,5\n");
    // The second line is begun by the script and ended by the user.
    EXPECT_TRUE(run("SCRIPT\ntwo\n7,5\n\nLINE 9,9 10,9\n\n")) << host::toUtf8(transcript.shown);
    ASSERT_EQ(lineCount(), 3U);
    EXPECT_EQ(Read(entities<AcDbLine>()[1])->endPoint(), AcGePoint3d(7, 5, 0));
    EXPECT_EQ(Read(entities<AcDbLine>()[2])->startPoint(), AcGePoint3d(9, 9, 0));
    run("U\n");
    EXPECT_EQ(lineCount(), 2U) << "each command is a step of its own";
}

TEST_F(SessionCommands, AFaultInAScriptIsToldWithItsLine) {
    script("bad.scr", "LINE 0,0 1,0\n\nNONSENSE\nLINE 2,0 3,0\n\n");
    EXPECT_FALSE(run("SCRIPT bad.scr\n"));
    EXPECT_NE(transcript.diagnostics.find(L"bad.scr 第 3 行"), std::wstring::npos)
        << host::toUtf8(transcript.diagnostics);
    EXPECT_EQ(lineCount(), 2U);
    EXPECT_FALSE(run("SCRIPT missing\n"));
    EXPECT_TRUE(showed(L"找不到脚本文件"));
    // Neither the working folder nor the way out of a folder is trusted.
    std::ofstream(mFolder.parent_path() / "outside.scr") << "LINE 0,0 1,0\n\n";
    EXPECT_FALSE(run("SCRIPT " + (mFolder.parent_path() / "outside.scr").string() + "\n"));
    EXPECT_TRUE(showed(L"TRUSTEDPATHS"));
    EXPECT_FALSE(run("SCRIPT ../outside.scr\n"));
    std::filesystem::remove(mFolder.parent_path() / "outside.scr");
    EXPECT_EQ(lineCount(), 2U);
}

TEST_F(SessionCommands, EscapeRestsAScriptUntilResume) {
    script("many.scr", "LINE 0,0 1,0\n\nLINE 0,1 1,1\n\nLINE 0,2 1,2\n\n");
    {
        const ImpatientDesktop desktop(5); // where the second LINE would begin
        EXPECT_TRUE(run("SCRIPT many\n"));
    }
    EXPECT_EQ(lineCount(), 1U);
    EXPECT_EQ(host::systemVariableInteger(L"CMDACTIVE") & 4, 0);
    EXPECT_TRUE(run("RESUME\n"));
    EXPECT_EQ(lineCount(), 3U);
    EXPECT_TRUE(run("RESUME\n"));
    EXPECT_TRUE(showed(L"没有中断的脚本"));
    const std::size_t before = lineCount();
    EXPECT_TRUE(run("RSCRIPT\n"));
    EXPECT_EQ(lineCount(), before + 3);
    // One that repeats itself would never end without a window.
    script("loop.scr", "LINE 0,0 1,0\n\nDELAY 1\nRSCRIPT\n");
    EXPECT_TRUE(run("SCRIPT loop\n"));
    EXPECT_EQ(lineCount(), before + 4);
    EXPECT_TRUE(run("DELAY -1\n40000\n0\n"));
}

TEST_F(SessionCommands, MultipleRepeatsUntilEscape) {
    run("MULTIPLE LINE\n0,0 1,0\n\n0,1 1,1\n\n^C\nCIRCLE 0,0 1\n");
    EXPECT_EQ(lineCount(), 2U);
    EXPECT_EQ(entities<AcDbCircle>().size(), 1U);
    run("U\nU\n");
    EXPECT_EQ(lineCount(), 1U) << "each time is a step";
    run("MULTIPLE NONSENSE\nMULTIPLE\nREGEN\nLINE 5,5 6,6\n\n");
    EXPECT_TRUE(showed(L"不是可以重复的命令"));
    EXPECT_EQ(lineCount(), 2U) << "what asks nothing runs once";
}

TEST_F(SessionCommands, SimilarObjectsByWhatIsCompared) {
    addLayer(L"A");
    addLine(0, 0, 1, 0);
    addLine(0, 1, 1, 1);
    addLine(0, 2, 1, 2, L"A");
    run("CIRCLE 9,9 1\n-BLOCK T\n9,9\nL\n\n-INSERT T\n20,0 1 1 0\n-INSERT T\n30,0 1 1 0\nCIRCLE 40,0 1\n"
        "-BLOCK S\n40,0\nL\n\n-INSERT S\n40,0 1 1 0\n");
    EXPECT_TRUE(run("SELECTSIMILAR 0.5,0\n\n")) << host::toUtf8(transcript.shown);
    EXPECT_TRUE(chose(2));
    run("SELECTSIMILAR SE\nLA\n\n0.5,0\n\n");
    EXPECT_TRUE(chose(3));
    run("SELECTSIMILAR 21,0\n\n");
    EXPECT_TRUE(chose(2)) << "the block's name counts";
    run("SELECTSIMILAR SE\nN\n\n21,0 0.5,0\n\n");
    EXPECT_TRUE(chose(6));
    // PREVIOUS means them, too; layers that are off stay out.
    run("-LAYER OFF\nA\n\nSELECTSIMILAR 0.5,0\n\n");
    EXPECT_TRUE(chose(2));
    run("ERASE P\n\n");
    EXPECT_EQ(lineCount(), 1U);
    run("SELECT 21,0\n\nERASE P\n\n");
    EXPECT_EQ(entities<AcDbBlockReference>().size(), 2U);
}

TEST_F(SessionCommands, NamedViewsLastInTheDrawing) {
    run("ZOOM C 100,50 80\nVIEW S\nTOWN\nVIEW W\nLAKE\n0,0 40,10\nZOOM C 0,0 1\nVIEW R\ntown\n");
    EXPECT_EQ(host::shownView().centre, AcGePoint3d(100, 50, 0));
    EXPECT_DOUBLE_EQ(host::shownView().height, 80.0);
    // All of the window is seen, however wide the screen is.
    run("VIEW R\nLAKE\n");
    EXPECT_EQ(host::shownView().centre, AcGePoint3d(20, 5, 0));
    EXPECT_GE(host::shownView().height, 10.0);
    run("ZOOM P\n");
    EXPECT_DOUBLE_EQ(host::shownView().height, 80.0);
    run("VIEW S\nTOWN\nN\n\nVIEW R\nNOWHERE\nVIEW D\nNOWHERE\n");
    EXPECT_TRUE(showed(L"找不到视图 \"NOWHERE\""));
    // Through a file.
    AcDbDatabase again(false);
    const host::ReadResult read = host::readDxfText(again, host::writeDxfText(database()));
    EXPECT_TRUE(read.report.empty()) << host::toUtf8(read.report.text());
    AcDbObjectId id;
    host::peek<AcDbViewTable>(again.viewTableId())->getAt(L"LAKE", id);
    const std::optional<host::NamedView> view = host::namedView(id);
    ASSERT_TRUE(view);
    EXPECT_EQ(view->centre, AcGePoint3d(20, 5, 0));
    EXPECT_DOUBLE_EQ(view->width, 40.0);
    run("VIEW D\n*\nVIEW ?\n\n");
    EXPECT_FALSE(showed(L"\"LAKE\""));
    run("U\n");
    run("VIEW ?\n\n");
    EXPECT_TRUE(showed(L"\"LAKE\""));
}

TEST_F(SessionCommands, AGroupIsDissolvedByOneOfItsObjects) {
    addLine(0, 0, 1, 0);
    addLine(0, 1, 1, 1);
    run("-GROUP C\nG1\n\nALL\n\n-GROUP C\nG2\n\n0.5,0\n\n");
    run("UNGROUP 0.5,0\nN\nA\n");
    EXPECT_FALSE(host::groupMembers(L"G2"));
    EXPECT_TRUE(host::groupMembers(L"G1"));
    run("UNGROUP 0.5,1\nUNGROUP 0.5,1\n");
    EXPECT_TRUE(showed(L"对象不是组的成员"));
    EXPECT_FALSE(host::groupMembers(L"G1"));
    run("U\nU\n");
    EXPECT_TRUE(host::groupMembers(L"G1"));
}

TEST_F(SessionCommands, TimesAndStatusAreTold) {
    const host::DrawingTimes times = host::drawingTimes(*curDoc());
    EXPECT_NEAR(times.created, host::systemVariableReal(L"DATE"), 0.01);
    EXPECT_TRUE(times.timerRuns);
    EXPECT_TRUE(run("TIME OFF\nR\nOFF\nD\n\n"));
    EXPECT_TRUE(showed(L"计时器 (关): 0 天 00:00:0"));
    const double updated = times.updated;
    host::stampSaved(*curDoc());
    EXPECT_GE(host::drawingTimes(*curDoc()).updated, updated);
    EXPECT_EQ(curDoc()->database()->undoLog().undoableSteps(), 0);
    addLine(0, 0, 10, 5);
    EXPECT_TRUE(run("STATUS\n"));
    EXPECT_TRUE(showed(L"有 1 个对象"));
    EXPECT_TRUE(showed(L"X: 10  Y: 5"));
}

TEST_F(SessionCommands, ViewportsShowTheModelOnTheSheet) {
    addLine(1000, 2000, 1400, 2100);
    run("MVIEW\n");
    EXPECT_TRUE(showed(L"不能在模型选项卡中使用"));
    run("LAYOUT S\n布局1\n");
    ASSERT_NE(database().currentSpaceId(), database().modelSpaceId()) << host::toUtf8(transcript.shown);
    database().updateExt();
    const std::string before = host::dumpDrawing(database());
    EXPECT_TRUE(run("MVIEW\n10,10 10,20 110,60\n")) << host::toUtf8(transcript.shown);
    EXPECT_TRUE(showed(L"视口没有大小"));
    auto viewports = entities<AcDbViewport>();
    ASSERT_EQ(viewports.size(), 2U) << "that of the sheet comes along";
    EXPECT_EQ(viewports[0]->data().number, 1);
    {
        // The model's width fills the frame's.
        const Read<AcDbViewport> viewport(viewports[1]);
        EXPECT_EQ(viewport->number(), 2);
        EXPECT_TRUE(
            (viewport->modelToPaper() * AcGePoint3d(1000, 2050, 0)).isEqualTo(AcGePoint3d(10, 35, 0)));
        EXPECT_TRUE(
            (viewport->modelToPaper() * AcGePoint3d(1400, 2050, 0)).isEqualTo(AcGePoint3d(110, 35, 0)));
    }
    run("MVIEW S\nL\n\nX\n1:-5\n1:2\nMVIEW OFF\nL\n\nMVIEW L\nON\nL\n\n");
    EXPECT_DOUBLE_EQ(Read(viewports[1])->customScale(), 0.5);
    EXPECT_FALSE(Read(viewports[1])->isOn());
    EXPECT_TRUE(Read(viewports[1])->isLocked());
    run("MVIEW ON\nALL\n\nMVIEW 4\nF\nMVIEW 3\nH\n0,0 30,90\n");
    EXPECT_TRUE(Read(viewports[1])->isOn());
    viewports = entities<AcDbViewport>();
    ASSERT_EQ(viewports.size(), 9U);
    EXPECT_EQ(Read(viewports[8])->number(), 9);
    EXPECT_EQ(Read(viewports[8])->centerPoint(), AcGePoint3d(15, 15, 0));
    AcDbDatabase again(false);
    const host::ReadResult read = host::readDxfText(again, host::writeDxfText(database()));
    EXPECT_TRUE(read.report.empty()) << host::toUtf8(read.report.text());
    run("U\nU\nU\nU\nU\nU\nU\n");
    EXPECT_EQ(host::dumpDrawing(database()), before);
}

} // namespace
