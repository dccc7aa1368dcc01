// System variables, documents, files, jigs, and the questions' details.
#include "host.h"

#include <fstream>

namespace {

using edtest::HostTest;
using host::VariableError;

class Variables : public HostTest {
protected:
    static VariableError set(const wchar_t* name, const wchar_t* text) {
        return host::setSystemVariableFromText(name, text);
    }
};

TEST_F(Variables, TypesRangesAndReadOnly) {
    EXPECT_EQ(set(L"ltscale", L"10"), VariableError::none);
    EXPECT_EQ(host::systemVariableReal(L"LTSCALE"), 10.0);
    EXPECT_EQ(database().ltscale(), 10.0);
    EXPECT_EQ(set(L"LTSCALE", L"-1"), VariableError::outOfRange);
    EXPECT_EQ(set(L"LTSCALE", L"x"), VariableError::wrongType);
    EXPECT_EQ(set(L"NOSUCH", L"1"), VariableError::unknown);
    EXPECT_EQ(set(L"DWGNAME", L"x"), VariableError::readOnly);
    EXPECT_EQ(set(L"EXTMIN", L"0,0,0"), VariableError::readOnly);
    EXPECT_EQ(set(L"CMDECHO", L"2"), VariableError::outOfRange);
    EXPECT_EQ(set(L"PLINETYPE", L"0"), VariableError::none);
    EXPECT_EQ(set(L"SNAPUNIT", L"3,4"), VariableError::none);
    resbuf value{};
    ASSERT_EQ(acedGetVar(L"SNAPUNIT", &value), RTNORM);
    EXPECT_EQ(value.restype, RTPOINT);
    EXPECT_EQ(value.resval.rpoint[1], 4.0);
    ASSERT_EQ(acedGetVar(L"CLAYER", &value), RTNORM);
    EXPECT_EQ(value.restype, RTSTR);
    EXPECT_STREQ(value.resval.rstring, L"0");
    acutDelString(value.resval.rstring);
    EXPECT_EQ(acedGetVar(L"NOSUCH", &value), RTERROR);
    // Whole numbers may be given for reals, not the other way round.
    resbuf number{};
    number.restype = RTSHORT;
    number.resval.rint = 3;
    EXPECT_EQ(acedSetVar(L"LTSCALE", &number), RTNORM);
    number.restype = RTREAL;
    number.resval.rreal = 1.0;
    EXPECT_EQ(acedSetVar(L"CMDECHO", &number), RTERROR);
}

TEST_F(Variables, CurrentPropertiesByName) {
    addLayer(L"墙");
    EXPECT_EQ(set(L"CLAYER", L"墙"), VariableError::none);
    EXPECT_EQ(host::systemVariableText(L"CLAYER"), L"墙");
    EXPECT_EQ(set(L"CLAYER", L"没有"), VariableError::refused);
    EXPECT_EQ(set(L"CELTYPE", L"CONTINUOUS"), VariableError::none);
    EXPECT_EQ(host::systemVariableText(L"CELTYPE"), L"Continuous");
    EXPECT_EQ(set(L"CELTYPE", L"bylayer"), VariableError::none);
    EXPECT_EQ(host::systemVariableText(L"CELTYPE"), L"ByLayer");
    EXPECT_EQ(set(L"CECOLOR", L"GREEN"), VariableError::none);
    EXPECT_EQ(host::systemVariableText(L"CECOLOR"), L"3");
    EXPECT_EQ(set(L"CECOLOR", L"随层"), VariableError::none);
    EXPECT_EQ(host::systemVariableText(L"CECOLOR"), L"BYLAYER");
    EXPECT_EQ(set(L"CECOLOR", L"300"), VariableError::refused);
    EXPECT_EQ(set(L"TILEMODE", L"0"), VariableError::none);
    EXPECT_EQ(set(L"CTAB", L"Model"), VariableError::none);
    EXPECT_TRUE(database().tilemode());
}

TEST_F(Variables, SessionDocumentAndKeptOnes) {
    set(L"USERS1", L"text");
    set(L"OSMODE", L"0");
    set(L"SNAPMODE", L"1");
    run("");
    session->newDrawing();
    EXPECT_EQ(host::systemVariableText(L"USERS1"), L"text");
    EXPECT_EQ(host::systemVariableInteger(L"OSMODE"), 0);
    EXPECT_EQ(host::systemVariableInteger(L"SNAPMODE"), 0);
    EXPECT_EQ(host::readSetting(std::wstring(acrxProductKey()) + L"\\Profiles\\<<未命名配置>>\\Variables",
                                L"OSMODE"),
              L"0");
    EXPECT_EQ(host::systemVariableText(L"CPROFILE"), L"<<未命名配置>>");
    set(L"OSMODE", L"4133");
}

TEST_F(Variables, EachKnowsWhereItIsKept) {
    const auto home = [](const wchar_t* name) { return host::systemVariableInfo(name)->home; };
    EXPECT_EQ(home(L"LTSCALE"), host::VariableHome::drawing);
    EXPECT_EQ(home(L"OSMODE"), host::VariableHome::settings);
    EXPECT_EQ(home(L"LASTPOINT"), host::VariableHome::session);
    EXPECT_EQ(home(L"CDATE"), host::VariableHome::nowhere);
    EXPECT_FALSE(host::systemVariableInfo(L"NOSUCH"));
}

TEST_F(Variables, EveryVariableCanBeRead) {
    for (const std::wstring& name : host::systemVariableNames()) {
        const host::ResbufList value = host::systemVariable(name);
        ASSERT_NE(value, nullptr) << host::toUtf8(name);
        const auto info = host::systemVariableInfo(name);
        ASSERT_TRUE(info);
        EXPECT_EQ(value->restype, info->type) << host::toUtf8(name);
        if (!info->readOnly) {
            EXPECT_EQ(host::setSystemVariable(name, *value), VariableError::none) << host::toUtf8(name);
        }
    }
}

TEST_F(Variables, NamesTypedAsCommandsAskForTheValue) {
    edtest::registerCommands();
    EXPECT_TRUE(run("ltscale\n5\nPDMODE 3\n'ORTHOMODE 1\nUSERS1\n两个 字\n"));
    EXPECT_EQ(database().ltscale(), 5.0);
    EXPECT_EQ(host::systemVariableInteger(L"PDMODE"), 3);
    EXPECT_EQ(host::systemVariableInteger(L"ORTHOMODE"), 1);
    EXPECT_EQ(host::systemVariableText(L"USERS1"), L"两个 字");
    EXPECT_NE(transcript.shown.find(L"输入 LTSCALE 的新值 <1>: 5\n"), std::wstring::npos);
    // Each is a step of its own; inside a command they are transparent.
    EXPECT_TRUE(run("LINE\n0,0\n'ORTHOMODE 0\n5,5\n\n"));
    EXPECT_EQ(host::systemVariableInteger(L"ORTHOMODE"), 0);
    database().undoLog().undo(1);
    EXPECT_EQ(host::systemVariableInteger(L"ORTHOMODE"), 1);
    EXPECT_EQ(acedCommandS(RTSTR, L"LTSCALE", RTREAL, 7.0, RTNONE), RTNORM);
    EXPECT_EQ(database().ltscale(), 7.0);
}

TEST_F(Variables, BadValuesAreAnsweredAndAskedAgain) {
    edtest::registerCommands();
    const struct {
        const char* script;
        const wchar_t* line;
    } rows[] = {
        {"SETVAR CMDECHO 2 x 1", L"需要 0 到 1 之间的整数。\n"},
        {"SETVAR CMDECHO 1.5 1", L"需要整数。\n"},
        {"SETVAR LTSCALE -1 1", L"值必须为正且非零。\n"},
        {"SETVAR FILLETRAD -1 0", L"值不能为负。\n"},
        {"SETVAR LTSCALE abc 1", L"需要数值。\n"},
        {"SETVAR LASTPOINT abc 1,1,1", L"需要点。\n"},
        {"SETVAR USERI1 40000 0", L"需要 -32768 到 32767 之间的整数。\n"},
        {"SETVAR CLAYER\n没有\n0", L"无法将 CLAYER 设置为该值。*无效*\n"},
        {"SETVAR NOSUCH", L"未知变量名: NOSUCH\n"},
        {"SETVAR DWGNAME", L" (只读)\n"},
    };
    for (const auto& row : rows) {
        EXPECT_TRUE(run(std::string(row.script) + "\n")) << row.script;
        EXPECT_NE(transcript.shown.find(row.line), std::wstring::npos) << row.script << "\n"
                                                                       << host::toUtf8(transcript.shown);
    }
    EXPECT_TRUE(run("SETVAR ? CEL*\n"));
    EXPECT_NE(transcript.shown.find(L"CELTSCALE"), std::wstring::npos);
    EXPECT_EQ(transcript.shown.find(L"CLAYER"), std::wstring::npos);
}

TEST_F(Variables, ChangesOfTheDrawingAreSeen) {
    EXPECT_EQ(host::systemVariableInteger(L"DBMOD"), 0);
    addLine(0, 0, 1, 1);
    EXPECT_EQ(host::systemVariableInteger(L"DBMOD"), 1);
    EXPECT_GT(host::systemVariableReal(L"CDATE"), 20000000.0);
    EXPECT_NEAR(host::systemVariableReal(L"DATE"), 2460000.0, 100000.0);
    EXPECT_EQ(host::systemVariableText(L"DWGNAME").substr(0, 7), L"Drawing");
}

// Documents and files.

struct DocumentWitness : AcApDocManagerReactor {
    std::wstring text;
    void documentCreated(AcApDocument* document) override {
        text += std::wstring(L"+") + document->docTitle();
    }
    void documentBecameCurrent(AcApDocument* document) override {
        text += std::wstring(L"!") + document->docTitle();
    }
    void documentToBeDestroyed(AcApDocument* document) override {
        text += std::wstring(L"-") + document->docTitle();
    }
};

TEST_F(Variables, DocumentsOpenAndClose) {
    AcApDocument* first = curDoc();
    DocumentWitness witness;
    acDocManager->addReactor(&witness);
    AcApDocument* second = session->newDrawing();
    const std::wstring a = first->docTitle();
    const std::wstring b = second->docTitle();
    EXPECT_EQ(acdbHostApplicationServices()->workingDatabase(), second->database());
    acDocManager->activateDocument(first);
    EXPECT_EQ(acdbCurDwg(), first->database());
    acDocManager->activateDocument(second);
    EXPECT_EQ(acDocManager->closeDocument(second), Acad::eOk);
    EXPECT_EQ(curDoc(), first);
    EXPECT_EQ(witness.text, L"!" + b + L"+" + b + L"!" + a + L"!" + b + L"-" + b + L"!" + a);
    acDocManager->removeReactor(&witness);
    EXPECT_EQ(acDocManager->closeDocument(second), Acad::eNoDocument);
}

TEST_F(Variables, OpeningReadsFirstAndTellsWhatFails) {
    addLine(1, 2, 3, 4);
    const std::filesystem::path file = folder() / "图.dxf";
    ASSERT_EQ(database().saveAs(host::toWindowsPath(file).c_str()), Acad::eOk);
    AcApDocument* before = curDoc();
    AcApDocument* opened = session->openDrawing(file);
    ASSERT_NE(opened, nullptr);
    EXPECT_STREQ(opened->docTitle(), L"图.dxf");
    EXPECT_EQ(host::systemVariableInteger(L"DBMOD"), 0);
    ads_name name;
    EXPECT_EQ(acdbEntLast(name), RTNORM);

    const std::filesystem::path broken = folder() / "broken.dxf";
    std::ofstream(broken) << "0\nSECTION\n2\nENTITIES\n0\nLINE\nnonsense\n";
    const int failures = host::failureCount();
    EXPECT_EQ(session->openDrawing(broken), nullptr);
    EXPECT_EQ(session->openDrawing(folder() / "missing.dxf"), nullptr);
    EXPECT_EQ(host::failureCount(), failures + 2);
    EXPECT_EQ(curDoc(), opened);
    EXPECT_TRUE(acDocManager->isOpen(before));
}

TEST_F(Variables, FilesAreFoundInTheSupportFolders) {
    std::ofstream(folder() / "Mixed.Lin") << "x";
    host::supportFolders().push_back(folder());
    AcString path;
    EXPECT_EQ(acedFindFile(L"mixed.LIN", path), RTNORM);
    EXPECT_EQ(host::toNativePath(path.kwszPtr()), folder() / "Mixed.Lin");
    EXPECT_EQ(acedFindFile(L"none.lin", path), RTERROR);
    EXPECT_EQ(acedFindFile(L"romans.shx", path), RTNORM) << "drawn without a file";
    EXPECT_EQ(acedFindFile(L"none.shx", path), RTERROR);
    EXPECT_EQ(acedFindFile(L"none.ttf", path), RTERROR);
    host::supportFolders().pop_back();
}

TEST_F(Variables, ModulesAreLoadedByWindowsPathsAndFromTheSupportFolders) {
    std::filesystem::copy_file(TEST_MODULE, folder() / "Tools.arx");
    const std::wstring path = host::toWindowsPath(folder() / "x.arx");
    EXPECT_TRUE(acrxLoadModule((L"C:" + path.substr(0, path.size() - 5) + L"TOOLS.ARX").c_str(), false));
    EXPECT_TRUE(acrxDynamicLinker()->isModuleLoaded(L"tools.arx"));
    EXPECT_TRUE(host::unloadModule(L"Tools.arx"));
    EXPECT_FALSE(acrxLoadModule(L"TOOLS", false));
    EXPECT_NE(transcript.diagnostics.find(L"找不到模块文件: TOOLS"), std::wstring::npos);
    host::supportFolders().push_back(folder());
    EXPECT_TRUE(acrxLoadModule(L"TOOLS", false));
    EXPECT_TRUE(host::unloadModule(L"Tools.arx"));
    host::supportFolders().pop_back();
}

TEST_F(Variables, EnvironmentAndConfiguration) {
    EXPECT_EQ(acedSetEnv(L"QDVTest", L"值"), RTNORM);
    ACHAR text[16];
    EXPECT_EQ(acedGetEnv(L"QDVTest", text), RTNORM);
    EXPECT_STREQ(text, L"值");
    EXPECT_EQ(acedGetEnv(L"QDVNone", text), RTERROR);
    EXPECT_EQ(acedSetCfg(L"AppData/QDV/宽度", L"12"), RTNORM);
    EXPECT_EQ(acedGetCfg(L"AppData/QDV/宽度", text, 16), RTNORM);
    EXPECT_STREQ(text, L"12");
    EXPECT_EQ(acedSetCfg(L"Other/QDV", L"12"), RTERROR);
}

// Questions.

std::wstring answered;

class Questions : public HostTest {
protected:
    /// The script's answers to a command of the given body; the body writes to `answered`.
    template <class Ask>
    std::wstring ask(const std::string& script, Ask body) {
        static std::function<void()> current;
        current = body;
        answered.clear();
        acedRegCmds->addCommand(L"EDTEST", L"T_ASK", L"T_ASK", 0, [] { current(); });
        run("T_ASK\n" + script);
        acedRegCmds->removeGroup(L"EDTEST");
        return answered;
    }
    std::wstring distance(const std::string& script, int flags = 0, bool withBase = false) {
        return ask(script, [=] {
            const ads_point base = {10, 10, 0};
            double value = 0.0;
            acedInitGet(flags, L"Width");
            const int code = acedGetDist(withBase ? base : nullptr, L"\nD: ", &value);
            answered = code == RTNORM ? host::formatted(L"%g", value) : host::formatted(L"<%d>", code);
        });
    }
    std::wstring angle(const std::string& script, bool orientation) {
        return ask(script, [=] {
            double value = 0.0;
            const int code = orientation ? acedGetOrient(nullptr, L"\nA: ", &value)
                                         : acedGetAngle(nullptr, L"\nA: ", &value);
            answered = code == RTNORM ? host::formatted(L"%.4f", value) : host::formatted(L"<%d>", code);
        });
    }
};

TEST_F(Questions, Distances) {
    EXPECT_EQ(distance("2.5\n"), L"2.5");
    EXPECT_EQ(distance("1,1\n4,5\n"), L"5");
    EXPECT_EQ(distance("13,14\n", 0, true), L"5");
    EXPECT_EQ(distance("\n"), L"<5000>");
    EXPECT_EQ(distance("w\n"), L"<-5005>");
    EXPECT_EQ(distance("^C\n"), L"<-5002>");
    EXPECT_EQ(distance("0\n-1\nx\n3\n", RSG_NOZERO | RSG_NONEG), L"3");
    EXPECT_NE(transcript.shown.find(L"值必须为正且非零。"), std::wstring::npos);
    EXPECT_NE(transcript.shown.find(L"需要数值距离、两点或选项关键字。"), std::wstring::npos);
    EXPECT_EQ(distance("\n\n4\n", RSG_NONULL), L"4");
    EXPECT_EQ(distance("-2\n"), L"-2");
    EXPECT_EQ(distance("1,1\n^C\n"), L"<-5002>");
}

TEST_F(Questions, AnglesAgainstBaseAndAxis) {
    EXPECT_EQ(angle("90\n", false), L"1.5708");
    EXPECT_EQ(angle("-90\n", true), L"4.7124");
    EXPECT_EQ(angle("0,0\n0,5\n", true), L"1.5708");
    host::setSystemVariable(L"ANGBASE", 1.5707963267948966);
    host::setSystemVariable(L"ANGDIR", 1);
    EXPECT_EQ(angle("0\n", false), L"0.0000");
    EXPECT_EQ(angle("0\n", true), L"1.5708");
    EXPECT_EQ(angle("-90\n", false), L"1.5708");
    EXPECT_EQ(angle("-90\n", true), L"3.1416");
    EXPECT_EQ(angle("90\n", false), L"4.7124");
    EXPECT_EQ(angle("90\n", true), L"0.0000");
}

TEST_F(Questions, NumbersWordsAndTexts) {
    EXPECT_EQ(ask("1.5\nx\n40000\n-3\n7\n",
                  [] {
                      int value = 0;
                      acedInitGet(RSG_NONEG, nullptr);
                      acedGetInt(L"\nI: ", &value);
                      answered = host::formatted(L"%d", value);
                  }),
              L"7");
    EXPECT_EQ(ask("two\nTWo\n",
                  [] {
                      ACHAR word[32];
                      acedInitGet(1, L"One Two");
                      const int code = acedGetKword(L"\nK: ", word);
                      answered = host::formatted(L"%d %s", code, word);
                  }),
              L"5100 Two");
    EXPECT_EQ(ask("\n",
                  [] {
                      ACHAR word[32] = L"x";
                      acedInitGet(0, L"One Two");
                      answered = host::formatted(L"%d<%s>", acedGetKword(L"\nK: ", word), word);
                  }),
              L"5000<>");
    EXPECT_EQ(ask("two words (here)\none two\n",
                  [] {
                      AcString line;
                      AcString token;
                      acedGetString(1, L"\nT: ", line);
                      acedGetString(0, L"\nT: ", token);
                      answered = line.kwszPtr() + std::wstring(L"|") + token.kwszPtr();
                  }),
              L"two words (here)|one");
    EXPECT_EQ(ask("anything\n",
                  [] {
                      ads_point point;
                      ACHAR text[32];
                      acedInitGet(RSG_OTHER, L"Undo");
                      const int code = acedGetPoint(nullptr, L"\nP: ", point);
                      acedGetInput(text);
                      answered = host::formatted(L"%d %s", code, text);
                  }),
              L"-5005 anything");
    EXPECT_EQ(ask("u\n5\n",
                  [] {
                      double value = 0.0;
                      acedInitGet(0, L"Undo");
                      const int first = acedGetReal(L"\nR: ", &value);
                      // What was set holds for one question only.
                      const int second = acedGetReal(L"\nR: ", &value);
                      answered = host::formatted(L"%d %d %g", first, second, value);
                  }),
              L"-5005 5100 5");
}

TEST_F(Questions, SnapOverrides) {
    addLine(0, 0, 10, 0);
    const auto point = [&](const std::string& script) {
        return ask(script, [] {
            ads_point value;
            const int code = acedGetPoint(nullptr, L"\nP: ", value);
            answered = code == RTNORM ? host::formatted(L"%g,%g", value[0], value[1]) : L"-";
        });
    };
    EXPECT_EQ(point("_end\n8,0\n"), L"10,0");
    EXPECT_EQ(point("mid 8,0\n"), L"5,0");
    EXPECT_EQ(point("_none 8,0\n"), L"8,0");
    EXPECT_EQ(point("end 50,50\n1,1\n"), L"1,1");
}

// Jigs.

class PointJig : public AcEdJig {
public:
    AcEdJig::DragStatus sampler() override {
        setUserInputControls(kAccept3dCoordinates | kNullResponseAccepted);
        AcGePoint3d point;
        const DragStatus status = acquirePoint(point, base);
        if (status != kNormal) {
            return status;
        }
        if (point == last) {
            return kNoChange;
        }
        last = point;
        return kNormal;
    }
    Adesk::Boolean update() override {
        ++updates;
        return true;
    }
    AcGePoint3d base;
    AcGePoint3d last;
    int updates = 0;
};

TEST_F(Questions, DraggingFromAScript) {
    const auto drag = [&](const std::string& script) {
        return ask(script, [] {
            PointJig jig;
            jig.last.set(1, 1, 0);
            jig.setDispPrompt(L"\n到 <%d>:", 5);
            jig.setKeywordList(L"Close Undo");
            const AcEdJig::DragStatus status = jig.drag();
            answered = host::formatted(L"%d %g,%g %d", status, jig.last.x, jig.last.y, jig.updates);
        });
    };
    EXPECT_EQ(drag("5,5\n"), L"0 5,5 1");
    EXPECT_NE(transcript.shown.find(L"\n到 <5>:5,5\n"), std::wstring::npos);
    EXPECT_EQ(drag("1,1\n7,7\n"), L"0 7,7 1");
    EXPECT_EQ(drag("u\n"), L"2 1,1 0");
    EXPECT_EQ(drag("\n"), L"-1 1,1 0");
    EXPECT_EQ(drag("^C\n"), L"-4 1,1 0");
    EXPECT_EQ(drag("nonsense\n@2,0\n"), L"0 2,0 1");
    EXPECT_EQ(drag(""), L"-4 1,1 0");
}

/// Asks for one thing and shows what came.
class ValueJig : public AcEdJig {
public:
    enum class Wanted { distance, distanceFrom, angle, text };
    ValueJig(Wanted wanted, int controls) : mWanted(wanted) { setUserInputControls(controls); }
    DragStatus sampler() override {
        const AcGePoint3d base(10, 10, 0);
        double number = 0.0;
        ACHAR text[32] = L"";
        DragStatus status = kCancel;
        switch (mWanted) {
        case Wanted::distance:
            status = acquireDist(number);
            break;
        case Wanted::distanceFrom:
            status = acquireDist(number, base);
            break;
        case Wanted::angle:
            status = acquireAngle(number, base);
            break;
        case Wanted::text:
            status = acquireString(text);
            break;
        }
        shown = mWanted == Wanted::text ? text : host::formatted(L"%.4g", number);
        return status;
    }
    Adesk::Boolean update() override { return true; }
    AcDbEntity* entity() const override { return mEntity.get(); }
    std::wstring shown;

private:
    Wanted mWanted;
    std::unique_ptr<AcDbLine> mEntity = std::make_unique<AcDbLine>();
};

TEST_F(Questions, JigsAskForDistancesAnglesAndTexts) {
    addLine(0, 0, 10, 0);
    using Wanted = ValueJig::Wanted;
    const auto drag = [&](Wanted wanted, const std::string& script, int controls = 0) {
        return ask(script, [=] {
            ValueJig jig(wanted, controls);
            jig.setKeywordList(L"Undo Width");
            const AcEdJig::DragStatus status = jig.drag();
            answered = host::formatted(L"%d %s", status, jig.shown.c_str());
        });
    };
    EXPECT_EQ(drag(Wanted::distance, "12.5\n"), L"0 12.5");
    EXPECT_EQ(drag(Wanted::distanceFrom, "13,14\n"), L"0 5");
    EXPECT_EQ(drag(Wanted::distanceFrom, "_end\n8,0\n"), L"0 10");
    EXPECT_EQ(drag(Wanted::distance, "0\n-1\n2\n",
                   AcEdJig::kNoZeroResponseAccepted | AcEdJig::kNoNegativeResponseAccepted),
              L"0 2");
    EXPECT_EQ(drag(Wanted::distance, "w\n"), L"2 0");
    EXPECT_EQ(drag(Wanted::distance, "\n3\n"), L"0 3");
    EXPECT_EQ(drag(Wanted::distance, "\n", AcEdJig::kNullResponseAccepted), L"-1 0");
    EXPECT_EQ(drag(Wanted::distance, "some\n", AcEdJig::kAcceptOtherInputString), L"-3 0");
    EXPECT_EQ(drag(Wanted::angle, "45\n"), L"0 0.7854");
    EXPECT_EQ(drag(Wanted::angle, "10,20\n"), L"0 1.571");
    EXPECT_EQ(drag(Wanted::text, "two words\n"), L"0 two words");
    EXPECT_EQ(drag(Wanted::text, "two words\n", AcEdJig::kAnyBlankTerminatesInput), L"0 two");
    EXPECT_EQ(drag(Wanted::angle, "^C\n"), L"-4 0");
}

class LineJig : public AcEdJig {
public:
    explicit LineJig(AcDbLine* line) : mLine(line) {}
    DragStatus sampler() override { return acquirePoint(mTo); }
    Adesk::Boolean update() override {
        mLine->setEndPoint(mTo);
        return true;
    }
    AcDbEntity* entity() const override { return mLine; }

private:
    AcDbLine* mLine;
    AcGePoint3d mTo;
};

TEST_F(Questions, WhatWasDraggedIsAppended) {
    static AcDbObjectId id;
    ask("7,8\n", [] {
        LineJig jig(new AcDbLine(AcGePoint3d(1, 1, 0), AcGePoint3d(1, 1, 0)));
        if (jig.drag() == AcEdJig::kNormal) {
            id = jig.append();
        }
    });
    const host::Opened<AcDbLine> line(id, AcDb::kForRead);
    ASSERT_TRUE(line);
    EXPECT_EQ(line->endPoint(), AcGePoint3d(7, 8, 0));
}

TEST_F(Questions, LinesAndTheirCrossing) {
    const ads_point a = {0, 0, 0};
    const ads_point b = {10, 10, 0};
    const ads_point c = {0, 10, 0};
    const ads_point d = {4, 6, 0};
    ads_point result;
    EXPECT_EQ(acdbInters(a, b, c, d, 0, result), RTNORM);
    EXPECT_EQ(asPnt3d(result), AcGePoint3d(5, 5, 0));
    EXPECT_EQ(acdbInters(a, b, c, d, 1, result), RTERROR);
    EXPECT_EQ(acdbInters(a, b, a, b, 0, result), RTERROR);
    const ads_point above = {0, 10, 1};
    EXPECT_EQ(acdbInters(a, b, above, d, 0, result), RTERROR);
    acutPolar(a, acutAngle(a, b), acutDistance(a, b), result);
    EXPECT_TRUE(asPnt3d(result).isEqualTo(AcGePoint3d(10, 10, 0)));
}

} // namespace
