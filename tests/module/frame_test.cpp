// The frame: tables, life cycle, hook, dispatch, profile, utility functions.
#include "entities/customclasses.h"
#include "frame/commandtable.h"
#include "frame/lispfunctiontable.h"
#include "frame/loaddrawinghook.h"
#include "tests/module/sessionfixture.h"

#include <set>

namespace {

class FrameTest : public SessionTest {
protected:
    void TearDown() override {
        SetLoadDWGFun(nullptr);
        SessionTest::TearDown();
    }
    static std::size_t definedFunctions() {
        std::size_t count = 0;
        for (const LispFunctionRow& row : LispFunctionTable()) {
            count += host::findExternalFunction(row.name) != nullptr ? 1 : 0;
        }
        return count;
    }
    /// The default value of the host's key of profiles.
    static std::wstring startProfile() {
        return host::readSetting(std::wstring(acrxProductKey()) + L"\\Profiles", L"").value_or(L"none");
    }
    static void setStartProfile(std::wstring_view name) {
        host::writeSetting(std::wstring(acrxProductKey()) + L"\\Profiles", L"", name);
    }
};

} // namespace

TEST_F(FrameTest, EveryCommandIsOnTheStackUnderBothNames) {
    EXPECT_EQ(CommandTable().size(), 22U);
    std::set<std::wstring> names;
    for (const CommandRow& row : CommandTable()) {
        EXPECT_TRUE(names.insert(row.globalName).second && names.insert(row.localName).second)
            << host::toUtf8(row.globalName);
        AcEdCommand* command = acedCommandStack()->lookupCmd(row.globalName, true, false, L"QDVCOMMTOOLS");
        ASSERT_NE(command, nullptr) << host::toUtf8(row.globalName);
        EXPECT_EQ(command->commandFlags(), row.flags);
        EXPECT_STREQ(command->localName(), row.localName);
        EXPECT_EQ(acedCommandStack()->lookupLocalCmd(row.localName), command);
    }
}

TEST_F(FrameTest, WhatIsNotProvidedSaysSo) {
    for (const CommandRow& row : CommandTable()) {
        if (row.handler == nullptr) {
            const std::wstring told = std::wstring(L"\n命令 ") + row.globalName + L" 尚未提供。";
            EXPECT_NE(type(host::toUtf8(row.localName) + "\n").find(told), std::wstring::npos)
                << host::toUtf8(told);
        }
    }
    EXPECT_NE(type("V7_HLGX\n").find(L"命令 V7_HLGX 尚未提供。"), std::wstring::npos);
    EXPECT_NE(type("(KRB_NetLoad)\n").find(L"函数 KRB_NetLoad 尚未提供。"), std::wstring::npos);
}

TEST_F(FrameTest, FunctionsAreKnownByTheirCode) {
    const std::span<const LispFunctionRow> table = LispFunctionTable();
    ASSERT_EQ(table.size(), 47U);
    EXPECT_STREQ(table[0].name, L"");
    std::set<std::wstring> names;
    for (std::size_t code = 1; code < table.size(); ++code) {
        EXPECT_TRUE(names.insert(table[code].name).second) << host::toUtf8(table[code].name);
        const host::ExternalFunction* function = host::findExternalFunction(table[code].name);
        ASSERT_NE(function, nullptr) << host::toUtf8(table[code].name);
        EXPECT_EQ(function->code, static_cast<int>(code));
        EXPECT_EQ(function->handler, nullptr);
    }
    EXPECT_STREQ(table[20].name, L"c:hnoverb1");
    EXPECT_STREQ(table[46].name, L"KRB_NetLoad");
    EXPECT_EQ(table[33].handler, table[34].handler);
    EXPECT_NE(table[33].handler, nullptr);
}

TEST_F(FrameTest, CodesOutsideOfTheTableCallNothing) {
    for (const int code : {-1, 0, 48, 1000}) {
        EXPECT_EQ(InvokeLispFunction(code), RTERROR) << code;
    }
    EXPECT_EQ(InvokeLispFunction(47), RSERR);
    EXPECT_EQ(InvokeLispFunction(1), RSRSLT);
    EXPECT_EQ(InvokeLispFunction(46), RSRSLT);
}

TEST_F(FrameTest, HookDecidesWhetherFunctionsAreDefined) {
    static std::vector<int> calls;
    static int answer;
    calls.clear();
    const auto hook = [](int count) {
        calls.push_back(count);
        return answer;
    };
    AcApDocManager& manager = *acDocManagerPtr();
    manager.appContextNewDocument(nullptr);
    EXPECT_EQ(definedFunctions(), 46U);
    SetLoadDWGFun(hook);
    for (const int given : {1, 0, -5}) {
        answer = given;
        manager.appContextNewDocument(nullptr);
        EXPECT_EQ(definedFunctions(), given != 0 ? 46U : 0U) << given;
    }
    SetLoadDWGFun(nullptr);
    manager.appContextNewDocument(nullptr);
    EXPECT_EQ(definedFunctions(), 46U);
    ASSERT_EQ(calls.size(), 3U);
    EXPECT_EQ(calls[1], calls[0] + 1);
    EXPECT_EQ(calls[2], calls[0] + 2);
}

TEST_F(FrameTest, LoadingAgainRegistersAgain) {
    EXPECT_EQ(startProfile(), L"<<未命名配置>>");
    for (int turn = 0; turn < 2; ++turn) {
        for (const CustomClass& row : CustomClasses()) {
            const AcRxClass* found = acrxFindAcRxClass(row.name);
            ASSERT_NE(found, nullptr) << host::toUtf8(row.name);
            EXPECT_EQ(found, *row.descriptor);
            EXPECT_STREQ(found->dxfName(), row.dxfName);
            EXPECT_STREQ(found->parentName(), row.parent);
            EXPECT_TRUE(found->isInHierarchy());
        }
        setStartProfile(L"other");
        ASSERT_TRUE(acrxUnloadModule(L"QDVCommonTools.arx"));
        EXPECT_EQ(startProfile(), L"<<未命名配置>>");
        EXPECT_EQ(acrxFindAcRxClass(L"CQDVBlockPline"), nullptr);
        EXPECT_EQ(acedCommandStack()->lookupGlobalCmd(L"V7_Enclose"), nullptr);
        EXPECT_EQ(definedFunctions(), 0U);
        setStartProfile(L"other");
        ASSERT_TRUE(loadModule());
        EXPECT_EQ(startProfile(), L"<<未命名配置>>");
        EXPECT_EQ(definedFunctions(), 46U);
    }
}

TEST_F(FrameTest, RunningModuleStaysLoaded) {
    type("V7_Enclose\n0,0\n(arxunload \"QDVCommonTools.arx\")\n20,0\n^C\n");
    EXPECT_NE(acrxFindAcRxClass(L"CQDVBlockPline"), nullptr);
    EXPECT_TRUE(acrxUnloadModule(L"QDVCommonTools.arx"));
    ASSERT_TRUE(loadModule());
}

TEST_F(FrameTest, ProfileResetMakesNoKey) {
    const std::wstring key = std::wstring(acrxProductKey()) + L"\\Profiles";
    ASSERT_TRUE(host::deleteSettings(key));
    ASSERT_TRUE(acrxUnloadModule(L"QDVCommonTools.arx"));
    EXPECT_EQ(startProfile(), L"none");
    host::createSettings(key);
    ASSERT_TRUE(loadModule());
}

TEST_F(FrameTest, AnglesAreConverted) {
    EXPECT_NE(type("(rad2ang pi)\n").find(L"180.0"), std::wstring::npos);
    EXPECT_NE(type("(rtos (ang2rad 90) 2 6)\n").find(L"1.570796"), std::wstring::npos);
    EXPECT_NE(type("(type (rad2ang 1))\n").find(L"REAL"), std::wstring::npos);
    // No value for anything else.
    EXPECT_NE(type("(= (type (rad2ang)) 'REAL)\n").find(L"nil"), std::wstring::npos);
    EXPECT_NE(type("(= (type (ang2rad \"90\")) 'REAL)\n").find(L"nil"), std::wstring::npos);
}

TEST_F(FrameTest, EntityListIsThatOfThePickedObject) {
    type("LINE\n0,0\n10,0\n\n");
    const std::wstring list = type("(setq l (c:mxd))\n5,0\n(equal l (entget (entlast)))\n");
    EXPECT_NE(list.find(L"选择需要EntGet的对象:"), std::wstring::npos);
    EXPECT_NE(list.find(L"\nT"), std::wstring::npos) << host::toUtf8(list);
    EXPECT_NE(type("(c:mxd)\n\n").find(L"nil"), std::wstring::npos);
}

TEST_F(FrameTest, UndoGroupFunctionsMakeOneStep) {
    type("(_ubegin)\nLINE\n0,0\n10,0\n\nLINE\n0,5\n10,5\n\n");
    EXPECT_EQ(host::systemVariableInteger(L"PLINETYPE"), 0);
    type("(_uend)\n");
    EXPECT_EQ(host::systemVariableInteger(L"PLINETYPE"), 2);
    type("U\n");
    EXPECT_NE(type("(entlast)\n").find(L"nil"), std::wstring::npos);
}

TEST_F(FrameTest, ErrorHandlerGivesSettingsTheirUsualValues) {
    type("-LAYER\nM\n道路\n\n(setvar \"OSMODE\" 33)\n(setvar \"CECOLOR\" \"1\")\n(_ubegin)\n(_errdo)\n");
    EXPECT_EQ(host::systemVariableInteger(L"OSMODE"), 0);
    EXPECT_EQ(host::systemVariableText(L"CLAYER"), L"0");
    EXPECT_EQ(host::systemVariableText(L"CECOLOR"), L"BYLAYER");
    AcString linetype = host::systemVariableText(L"CELTYPE").c_str();
    EXPECT_EQ(linetype.compareNoCase(L"CONTINUOUS"), 0);
    EXPECT_EQ(host::systemVariableInteger(L"PLINETYPE"), 2);
}
