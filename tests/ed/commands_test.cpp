// Commands run from scripts and by acedCommandS: names, flags, boundaries, waiting commands.
#include "host.h"

#include "host/ed/commandrunner.h"

namespace {

using edtest::HostTest;
using edtest::TestCommand;

std::wstring& log() {
    static std::wstring text;
    return text;
}

/// Asks for points until Enter or Escape and tells what it got.
void askPoints() {
    log() += L"[";
    for (;;) {
        ads_point point;
        acedInitGet(0, L"Undo Width");
        const int code = acedGetPoint(nullptr, L"\n下一点 [回退(U)/宽度(W)]: ", point);
        if (code == RTNORM) {
            log() += host::formatted(L"(%g %g %g)", point[0], point[1], point[2]);
        } else if (code == RTKWORD) {
            ACHAR word[32];
            acedGetInput(word);
            log() += word;
        } else {
            log() += code == RTNONE ? L"]" : L"^";
            return;
        }
    }
}

class Commands : public HostTest {
protected:
    Commands() { log().clear(); }
    TestCommand points{L"T_POINTS", L"T_点列", askPoints};
};

TEST_F(Commands, GlobalAndLocalNamesArePrefixedAsTyped) {
    EXPECT_TRUE(run("T_POINTS\n\n"));
    EXPECT_TRUE(run("t_点列 \n"));
    EXPECT_TRUE(run("_t_points\n\n"));
    EXPECT_EQ(log(), L"[][][]");
    EXPECT_FALSE(run("_T_点列\n\n"));
    EXPECT_NE(transcript.shown.find(L"未知命令\"T_点列\"。按 F1 查看帮助。"), std::wstring::npos);
    EXPECT_EQ(transcript.diagnostics, L"第 1 行: 未知命令\"T_点列\"。按 F1 查看帮助。\n");
}

TEST_F(Commands, NewDrawingsGoByNamesOfTheirOwn) {
    AcApDocument* first = curDoc();
    session->newDrawing();
    const std::wstring title = curDoc()->docTitle();
    const std::wstring prefix = L"Drawing",
                       taken = prefix + std::to_wstring(std::stoi(title.substr(prefix.size())) + 1);
    first->setTitle(taken + L".DWG"); // as a recovered drawing's
    EXPECT_TRUE(acDocManagerPtr()->hasTitle(taken + L".dwg"));
    session->newDrawing();
    EXPECT_NE(std::wstring(curDoc()->docTitle()), taken + L".dwg");
    EXPECT_NE(std::wstring(curDoc()->docTitle()), title);
}

TEST_F(Commands, DialogueShowsPromptsAnswersAndNothingElse) {
    EXPECT_TRUE(run("T_POINTS\n1,2\nx\nu\n^C\n"));
    EXPECT_EQ(transcript.shown, L"命令: T_POINTS\n"
                                L"下一点 [回退(U)/宽度(W)]: 1,2\n"
                                L"下一点 [回退(U)/宽度(W)]: x\n"
                                L"需要点或选项关键字。\n"
                                L"下一点 [回退(U)/宽度(W)]: u\n"
                                L"下一点 [回退(U)/宽度(W)]: *取消*\n"
                                L"命令: \n");
    EXPECT_EQ(log(), L"[(1 2 0)Undo^");
}

TEST_F(Commands, EnterRepeatsTheLastCommandAndTheEndOfInputCancels) {
    EXPECT_TRUE(run("T_POINTS 1,1  \n@1,1\n"));
    EXPECT_EQ(log(), L"[(1 1 0)][(2 2 0)^");
}

TEST_F(Commands, RelativePointsGoFromTheLastOne) {
    EXPECT_TRUE(run("T_POINTS 10,10 @5,0 @10<90 @ *1,1,1 W\n\n"));
    EXPECT_EQ(log(), L"[(10 10 0)(15 10 0)(15 20 0)(15 20 0)(1 1 1)Width]");
}

TEST_F(Commands, PointsAreInTheUcs) {
    database().setUcs(AcGePoint3d(100, 0, 0), AcGeVector3d(0, 1, 0), AcGeVector3d(-1, 0, 0));
    EXPECT_TRUE(run("T_POINTS 1,2 *100,0\n\n"));
    EXPECT_EQ(log(), L"[(1 2 0)(0 0 0)]");
    EXPECT_EQ(host::ucsToWorld({1, 2, 0}), AcGePoint3d(98, 1, 0));
}

TEST_F(Commands, FlagsRefuseAndTellWhy) {
    const TestCommand modelOnly(
        L"T_MODEL", L"T_MODEL", [] { log() += L"M"; }, ACRX_CMD_NOPAPERSPACE);
    EXPECT_TRUE(run("T_MODEL\n"));
    database().setTilemode(false);
    EXPECT_TRUE(run("T_MODEL\n"));
    EXPECT_NE(transcript.shown.find(L"不能在图纸空间中使用"), std::wstring::npos);
    EXPECT_EQ(log(), L"M");
}

TEST_F(Commands, TransparentCommandsRunInsideAQuestion) {
    AcEdCommandStack& stack = *acedRegCmds;
    stack.addCommand(L"EDTEST", L"T_VIEW", L"T_VIEW", ACRX_CMD_TRANSPARENT,
                     [] { log() += L"<" + host::activeCommandNames(*curDoc()) + L">"; });
    stack.addCommand(L"EDTEST", L"T_PLAIN", L"T_PLAIN", ACRX_CMD_MODAL, [] { log() += L"!"; });
    EXPECT_TRUE(run("T_POINTS 1,1 't_view 'T_PLAIN 2,2\n\n"));
    EXPECT_EQ(log(), L"[(1 1 0)<T_POINTS'T_VIEW>(2 2 0)]");
    EXPECT_NE(transcript.shown.find(L"不能透明使用"), std::wstring::npos);
}

TEST_F(Commands, ExceptionsEndInOneLine) {
    acedRegCmds->addCommand(L"EDTEST", L"T_THROW", L"T_THROW", 0, [] { throw std::runtime_error("broken"); });
    EXPECT_FALSE(run("T_THROW\nT_POINTS\n\n"));
    EXPECT_NE(transcript.shown.find(L"命令 T_THROW 出错: broken"), std::wstring::npos);
    EXPECT_EQ(log(), L"[]");
}

TEST_F(Commands, ACommandThatNeverStopsAskingIsEnded) {
    acedRegCmds->addCommand(L"EDTEST", L"T_STUBBORN", L"T_STUBBORN", 0, [] {
        double value = 0.0;
        while (acedGetReal(L"\n值: ", &value) != RTNORM) {
        }
    });
    EXPECT_TRUE(run("T_STUBBORN\nx\n"));
    EXPECT_TRUE(host::activeCommandNames(*curDoc()).empty());
}

TEST_F(Commands, ACommandIsOneUndoStep) {
    acedRegCmds->addCommand(L"EDTEST", L"T_DRAW", L"T_DRAW", 0, [] {
        for (int i = 0; i < 3; ++i) {
            auto* line = new AcDbLine(AcGePoint3d(i, 0, 0), AcGePoint3d(i, 1, 0));
            const host::Opened<AcDbBlockTableRecord> space(acdbCurDwg()->modelSpaceId(), AcDb::kForWrite);
            space->appendAcDbEntity(line);
            line->close();
        }
    });
    EXPECT_TRUE(run("T_DRAW\nT_DRAW\nT_POINTS\n\n"));
    EXPECT_EQ(database().undoLog().undoableSteps(), 2);
    database().undoLog().undo(1);
    const auto* space = host::peek<AcDbBlockTableRecord>(database().modelSpaceId());
    EXPECT_EQ(std::count_if(space->entities().begin(), space->entities().end(),
                            [](AcDbStub* stub) { return !stub->erased; }),
              3);
}

// Driven commands.

TEST_F(Commands, ArgumentsOfEveryType) {
    const ads_point point = {3, 4, 5};
    EXPECT_EQ(acedCommandS(RTSTR, L"_.T_POINTS", RTSTR, L"1,2", RT3DPOINT, point, RTPOINT, point, RTSTR,
                           L"_U", RTSTR, L"", RTNONE),
              RTNORM);
    EXPECT_EQ(log(), L"[(1 2 0)(3 4 5)(3 4 0)Undo]");
    EXPECT_EQ(acedCommandS(RTSTR, L"NOSUCHCOMMAND", RTNONE), RTERROR);
    EXPECT_EQ(acedCommandS(12345, 0, RTNONE), RTREJ);
}

TEST_F(Commands, SeveralCommandsInOneList) {
    EXPECT_EQ(
        acedCommandS(RTSTR, L"T_POINTS", RTSTR, L"", RTSTR, L"T_POINTS", RTSTR, L"1,1", RTSTR, L"", RTNONE),
        RTNORM);
    EXPECT_EQ(log(), L"[][(1 1 0)]");
}

TEST_F(Commands, ACommandWaitsUntilItIsFedOrCancelled) {
    EXPECT_EQ(acedCommandS(RTSTR, L"T_POINTS", RTSTR, L"1,1", RTNONE), RTNORM);
    EXPECT_EQ(log(), L"[(1 1 0)");
    EXPECT_EQ(host::systemVariableText(L"CMDNAMES"), L"T_POINTS");
    EXPECT_EQ(host::systemVariableInteger(L"CMDACTIVE"), 1);
    EXPECT_EQ(acedCommandS(RTSTR, L"2,2", RTNONE), RTNORM);
    EXPECT_EQ(log(), L"[(1 1 0)(2 2 0)");
    acedCommandS(RTNONE);
    EXPECT_EQ(log(), L"[(1 1 0)(2 2 0)^");
    EXPECT_EQ(host::systemVariableText(L"CMDNAMES"), L"");
    EXPECT_EQ(host::systemVariableInteger(L"CMDACTIVE"), 0);
}

void leaveBehind() {
    acedCommandS(RTSTR, L"T_POINTS", RTSTR, L"1,1", RTNONE);
    log() += L"|";
}

TEST_F(Commands, TheUserGoesOnWithWhatACommandLeft) {
    acedRegCmds->addCommand(L"EDTEST", L"T_LEAVE", L"T_LEAVE", 0, leaveBehind);
    EXPECT_TRUE(run("T_LEAVE\n2,2\n\nT_POINTS\n\n"));
    EXPECT_EQ(log(), L"[(1 1 0)|(2 2 0)][]");
    log().clear();
    EXPECT_TRUE(run("T_LEAVE\n"));
    EXPECT_EQ(log(), L"[(1 1 0)|^");
    EXPECT_EQ(host::systemVariableText(L"CMDNAMES"), L"");
}

/// Stands in for the interpreter: a few words that drive, answer or fail.
host::LispOutcome evaluateWord(const std::wstring& text) {
    host::LispOutcome outcome;
    host::ResbufBuilder value;
    if (text == L"(feed)") {
        acedCommandS(RTSTR, L"5,5", RTNONE);
    } else if (text == L"(end)") {
        acedCommandS(RTSTR, L"", RTNONE);
    } else if (text == L"(active)") {
        // What programs do to come out of whatever runs.
        while (host::systemVariableInteger(L"CMDACTIVE") != 0) {
            acedCommandS(RTNONE);
        }
    } else if (text == L"(pt)") {
        value.point(RT3DPOINT, 1, 2, 3);
    } else {
        outcome.status = host::LispOutcome::Status::error;
        outcome.error = L"错误: " + text;
    }
    outcome.value = value.release();
    return outcome;
}

TEST_F(Commands, LispTypedAtAQuestionAnswersOrDrivesTheCommand) {
    host::lispHook().evaluate = evaluateWord;
    EXPECT_FALSE(run("T_POINTS\n(feed)\n(pt)\n(bad)\n(end)\nT_POINTS\n\n"));
    EXPECT_EQ(log(), L"[(5 5 0)(1 2 3)][]");
    EXPECT_NE(transcript.shown.find(L"错误: (bad)"), std::wstring::npos);
    log().clear();
    EXPECT_TRUE(run("T_POINTS\n1,1\n(active)\nT_POINTS\n\n"));
    EXPECT_EQ(log(), L"[(1 1 0)^[]");
    host::lispHook().evaluate = nullptr;
}

TEST_F(Commands, ACommandAnsweredAfterEscapeWasNotCancelled) {
    acedRegCmds->addCommand(L"EDTEST", L"T_GOON", L"T_GOON", 0, [] {
        double value = 0.0;
        acedGetReal(L"\n一: ", &value);
        acedGetReal(L"\n二: ", &value);
    });
    EXPECT_EQ(host::driveCommands(
                  host::ResbufList(acutBuildList(RTSTR, L"T_GOON", RTSTR, L"1", RTNIL, RTNONE)).get()),
              RTCAN);
    EXPECT_EQ(host::driveCommands(
                  host::ResbufList(acutBuildList(RTSTR, L"T_GOON", RTNIL, RTSTR, L"1", RTNONE)).get()),
              RTNORM);
}

TEST_F(Commands, PauseTakesAnAnswerFromTheUserEvenWhereCommandsAreSilent) {
    acedRegCmds->addCommand(L"EDTEST", L"T_PAUSE", L"T_PAUSE", 0, [] {
        const host::SystemVariableScope quiet(L"CMDECHO", 0);
        acedCommandS(RTSTR, L"T_POINTS", RTSTR, L"1,1", RTSTR, PAUSE, RTSTR, L"3,3", RTSTR, L"", RTNONE);
    });
    EXPECT_TRUE(run("T_PAUSE\n2,2\n"));
    EXPECT_EQ(log(), L"[(1 1 0)(2 2 0)(3 3 0)]");
    EXPECT_EQ(transcript.shown, L"命令: T_PAUSE\n下一点 [回退(U)/宽度(W)]: 2,2\n命令: \n");
}

TEST_F(Commands, SentTextIsReadLikeTypedText) {
    acedRegCmds->addCommand(L"EDTEST", L"T_SEND", L"T_SEND", 0, [] {
        acDocManager->sendStringToExecute(curDoc(), L"\x1b\x1b_.T_POINTS 7,7\n", true, false, true);
    });
    EXPECT_TRUE(run("T_SEND\n8,8\n\n"));
    EXPECT_EQ(log(), L"[(7 7 0)(8 8 0)]");
}

struct Witness : AcEditorReactor {
    void commandWillStart(const ACHAR* name) override { log() += std::wstring(L"+") + name; }
    void commandEnded(const ACHAR* name) override { log() += std::wstring(L"-") + name; }
    void commandCancelled(const ACHAR* name) override { log() += std::wstring(L"~") + name; }
    void unknownCommand(const ACHAR* name) override { log() += std::wstring(L"?") + name; }
};

TEST_F(Commands, ReactorsAreTold) {
    Witness witness;
    acedEditor->addReactor(&witness);
    run("t_points\n\nT_POINTS\n^C\nxyz\n");
    acedEditor->removeReactor(&witness);
    EXPECT_EQ(log(), L"+T_POINTS[]-T_POINTS+T_POINTS[^~T_POINTS?XYZ");
}

TEST_F(Commands, UndefinedCommandsAreReachedWithADot) {
    acedRegCmds->addCommand(ACED_HOST_GROUP, L"T_OWN", L"T_OWN", 0, [] { log() += L"own"; });
    acedRegCmds->addCommand(L"EDTEST", L"T_OWN", L"T_OWN", 0, [] { log() += L"module"; });
    acedRegCmds->popGroupToTop(L"EDTEST");
    EXPECT_TRUE(run("T_OWN\n.T_OWN\n_.t_own\n"));
    EXPECT_EQ(log(), L"moduleownown");
    log().clear();
    acedRegCmds->removeCmd(L"EDTEST", L"T_OWN");
    acedRegCmds->lookupGlobalCmd(L"T_OWN")->commandUndef(true);
    EXPECT_FALSE(run("T_OWN\n"));
    EXPECT_TRUE(run("._T_OWN\n"));
    EXPECT_EQ(log(), L"own");
    acedRegCmds->removeCmd(ACED_HOST_GROUP, L"T_OWN");
}

TEST_F(Commands, GroupsOrderTheSearch) {
    acedRegCmds->addCommand(L"EDTEST2", L"T_POINTS", L"T_B", 0, [] { log() += L"B"; });
    EXPECT_EQ(acedRegCmds->addCommand(L"EDTEST2", L"T_POINTS", L"T_C", 0, askPoints), Acad::eDuplicateKey);
    EXPECT_EQ(acedRegCmds->addCommand(L"EDTEST2", L"T_X", L"T_b", 0, askPoints), Acad::eDuplicateKey);
    EXPECT_TRUE(run("_T_POINTS\n"));
    EXPECT_EQ(acedRegCmds->popGroupToTop(L"EDTEST"), Acad::eOk);
    EXPECT_TRUE(run("_T_POINTS\n\n"));
    EXPECT_EQ(log(), L"B[]");
    EXPECT_EQ(acedRegCmds->removeGroup(L"edtest2"), Acad::eOk);
    EXPECT_EQ(acedRegCmds->removeGroup(L"EDTEST2"), Acad::eKeyNotFound);
}

// Functions for LISP.

int answer() {
    const resbuf* arguments = acedGetArgs();
    if (arguments == nullptr) {
        return acedRetNil();
    }
    return arguments->restype == RTREAL ? acedRetReal(arguments->resval.rreal * 2) : RTERROR;
}

TEST_F(Commands, ExternalFunctionsGetArgumentsAndGiveResults) {
    EXPECT_EQ(acedDefun(L"twice", 7), RTNORM);
    EXPECT_EQ(acedRegFunc(answer, 7), RTNORM);
    EXPECT_EQ(acedRegFunc(answer, 8), RTERROR);
    resbuf* call = acutBuildList(RTSTR, L"TWICE", RTREAL, 1.5, RTNONE);
    resbuf* result = nullptr;
    EXPECT_EQ(acedInvoke(call, &result), RTNORM);
    ASSERT_NE(result, nullptr);
    EXPECT_EQ(result->restype, RTREAL);
    EXPECT_EQ(result->resval.rreal, 3.0);
    acutRelRb(result);
    call->rbnext->restype = RTSHORT;
    EXPECT_EQ(acedInvoke(call, &result), RTERROR);
    EXPECT_EQ(result->restype, RTNIL);
    acutRelRb(result);
    acutRelRb(call);
    EXPECT_EQ(acedUndef(L"twice", 8), RTERROR);
    EXPECT_EQ(acedUndef(L"twice", 7), RTNORM);
    EXPECT_EQ(host::findExternalFunction(L"twice"), nullptr);
    EXPECT_EQ(acedGetArgs(), nullptr);
}

TEST_F(Commands, FunctionsNamedCAreCommands) {
    acedDefun(L"c:T_FUN", 3);
    acedRegFunc(
        [] {
            log() += L"F";
            return RTNORM;
        },
        3);
    EXPECT_TRUE(run("t_fun\n"));
    EXPECT_EQ(log(), L"F");
    acedUndef(L"c:T_FUN", 3);
}

} // namespace
