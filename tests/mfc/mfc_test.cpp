// CString, the profile functions, extension libraries and CFileFind.
#include "host/mfc/mfc.h"
#include "host/rx/acrx.h"
#include "host/rx/text.h"
#include "host/win/win.h"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <stdlib.h>

namespace {

TEST(CString, FormatsAndJoins) {
    CString text;
    text.Format(L"%s%.2lf|%d|%c|%ld", L"宽", 1.005, 7, L'墙', 9L);
    EXPECT_EQ(text, L"宽1.00|7|墙|9");
    text.Format(L"[%s]", text.GetString()); // of itself
    EXPECT_EQ(text, L"[宽1.00|7|墙|9]");
    text = L"a";
    text += text;
    text += L'b';
    text.AppendFormat(L"%S", "窄");
    EXPECT_EQ(L"x" + text + L"y" + L'z', L"xaab窄yz");
    const CStringA narrow(text);
    EXPECT_STREQ(narrow, "aab窄");
    EXPECT_EQ(CString(narrow), text);
    CStringA made;
    made.Format("%s-%d", "窄", 5);
    EXPECT_EQ(made, "窄-5");
    const AcString other(L"层");
    const CString fromOther = other;
    EXPECT_EQ(fromOther, L"层");
    EXPECT_TRUE(AcString(fromOther) == other);
    EXPECT_EQ(CString(static_cast<LPCTSTR>(nullptr)), L"");
    EXPECT_EQ(CString(L"abc", 2), L"ab");
    EXPECT_EQ(CString(L'-', 3), L"---");
}

TEST(CString, PartsAndSearch) {
    const CString text(L"$TQ_12.DWG");
    EXPECT_EQ(text.Mid(4, 2), L"12");
    EXPECT_EQ(text.Mid(-3, 3), L"$TQ");
    EXPECT_EQ(text.Mid(99), L"");
    EXPECT_EQ(text.Left(-1), L"");
    EXPECT_EQ(text.Right(4), L".DWG");
    EXPECT_EQ(text.Right(99), text);
    EXPECT_EQ(text.SpanExcluding(L"._"), L"$TQ");
    EXPECT_EQ(text.SpanIncluding(L"$T"), L"$T");
    EXPECT_EQ(text.Find(L"DW", 99), -1);
    EXPECT_EQ(text.Find(L'1', -5), 4);
    EXPECT_EQ(text.ReverseFind(L'.'), 6);
    EXPECT_EQ(text.FindOneOf(L"._"), 3);
    EXPECT_EQ(text.GetAt(99), 0);
    EXPECT_EQ(text.CompareNoCase(L"$tq_12.dwg"), 0);
    EXPECT_TRUE(text < L"$TQ_2" && L"$TQ_2" > text && text != L"" && text >= text);
}

TEST(CString, Changes) {
    CString text(L"aXbXc");
    EXPECT_EQ(text.Replace(L"X", L"XX"), 2);
    EXPECT_EQ(text.Remove(L'b'), 1);
    EXPECT_EQ(text, L"aXXXXc");
    EXPECT_EQ(text.Replace(L'X', L'-'), 4);
    EXPECT_EQ(text.Insert(99, L"!"), 7);
    EXPECT_EQ(text.Insert(-1, L'>'), 8);
    EXPECT_EQ(text.Delete(2, 99), 2);
    EXPECT_EQ(text.Delete(5), 2);
    EXPECT_EQ(text, L">a");
    text.SetAt(0, L'z');
    EXPECT_EQ(text.MakeReverse().MakeUpper(), L"AZ");
    LPTSTR buffer = text.GetBuffer(100);
    wcscpy_s(buffer, 100, L"缓冲");
    text.ReleaseBuffer();
    EXPECT_EQ(text.GetLength(), 2);
    EXPECT_EQ(CString(L" \t　空 格　\r\n").Trim(), L"空 格");
    EXPECT_EQ(CString(L"--a-").TrimLeft(L'-'), L"a-");
    EXPECT_EQ(CString(L"xya,;").TrimRight(L";,"), L"xya");
    EXPECT_EQ(CString(L"   ").TrimLeft(), L"");
    EXPECT_EQ(CString(L",,").Trim(L','), L"");
}

TEST(CString, TokenizeSkipsEmptyPieces) {
    const CString text(L",a,,bc;");
    std::vector<CString> pieces;
    int at = 0;
    for (CString piece = text.Tokenize(L",;", at); at != -1; piece = text.Tokenize(L",;", at))
        pieces.push_back(piece);
    EXPECT_EQ(pieces, (std::vector<CString>{L"a", L"bc"}));
    at = 0;
    EXPECT_EQ(CString(L"one").Tokenize(L",", at), L"one"); // the last piece is a piece
    EXPECT_NE(at, -1);
    EXPECT_EQ(CString(L"one").Tokenize(L",", at), L"");
    EXPECT_EQ(at, -1);
}

class WithFolder : public testing::Test {
protected:
    void SetUp() override {
        std::string pattern = (std::filesystem::temp_directory_path() / "qdv-test-XXXXXX").string();
        folder = mkdtemp(pattern.data());
        host::setSettingsFolder(folder / "settings");
    }
    void TearDown() override {
        host::setSettingsFolder({});
        std::filesystem::remove_all(folder);
    }

    std::filesystem::path folder;
};

TEST_F(WithFolder, TheHostKeepsProfilesBelowItsProductKey) {
    CWinApp* const app = acedGetAcadWinApp();
    const wchar_t* section = L"Profiles\\<<未命名配置>>\\Dialogs\\CommonTools\\CPline\\";
    EXPECT_EQ(app->GetProfileString(section, L"Width", L"5.00"), L"5.00");
    EXPECT_EQ(app->GetProfileInt(section, L"Kind", -3), static_cast<UINT>(-3));
    EXPECT_FALSE(std::filesystem::exists(folder / "settings")); // asking writes nothing
    EXPECT_TRUE(app->WriteProfileString(section, L"Width", L"12.50"));
    EXPECT_TRUE(app->WriteProfileInt(section, L"Kind", -4));
    EXPECT_EQ(app->GetProfileString(section, L"WIDTH"), L"12.50");
    EXPECT_EQ(static_cast<int>(app->GetProfileInt(section, L"kind", 0)), -4);
    EXPECT_EQ(app->GetProfileInt(section, L"Width", 9), 9u); // a text is no number
    const std::wstring key =
        std::wstring(acrxProductKey()) + L"\\profiles\\<<未命名配置>>\\dialogs\\commontools\\cpline";
    EXPECT_EQ(host::readSetting(key, L"Width"), L"12.50");
    EXPECT_TRUE(app->WriteProfileString(section, L"Width", nullptr));
    EXPECT_EQ(app->GetProfileString(section, L"Width", L"none"), L"none");
    BYTE bytes[] = {0, 255, 7};
    EXPECT_TRUE(app->WriteProfileBinary(section, L"B", bytes, 3));
    LPBYTE data = nullptr;
    UINT size = 0;
    EXPECT_TRUE(app->GetProfileBinary(section, L"B", &data, &size));
    EXPECT_EQ(std::vector<BYTE>(data, data + size), (std::vector<BYTE>{0, 255, 7}));
    delete[] data;
    EXPECT_TRUE(app->WriteProfileString(section, nullptr, nullptr));
    EXPECT_FALSE(host::readSetting(key, L"Kind"));
}

TEST_F(WithFolder, AnApplicationWithoutKeyUsesAFile) {
    CWinApp app(L"Small");
    EXPECT_TRUE(app.WriteProfileString(L"S", L"a", L"围"));
    EXPECT_EQ(app.GetProfileString(L"S", L"a"), L"围");
    EXPECT_TRUE(std::filesystem::exists(folder / "settings" / "Small.INI"));
    app.SetRegistryKey(L"Maker");
    EXPECT_TRUE(app.WriteProfileInt(L"S", L"n", 3));
    EXPECT_EQ(host::readSetting(L"Software\\Maker\\Small\\S", L"n"), L"3");
}

// As a module's library entry does it, twice.
TEST(ExtensionModule, LibrariesComeAndGo) {
    const auto instance = reinterpret_cast<HINSTANCE>(0x1000), sibling = reinterpret_cast<HINSTANCE>(0x2000);
    static AFX_EXTENSION_MODULE record{}, other{};
    EXPECT_FALSE(AfxInitExtensionModule(record, nullptr));
    for (int round = 0; round < 2; ++round) {
        ASSERT_TRUE(AfxInitExtensionModule(record, instance));
        new CDynLinkLibrary(record);
        EXPECT_TRUE(InitAcUiDLL());
        ASSERT_TRUE(AfxInitExtensionModule(other, sibling));
        new CDynLinkLibrary(other);
        EXPECT_EQ(host::resourceModules(), (std::vector<HINSTANCE>{sibling, instance, nullptr}));
        {
            const CAcModuleResourceOverride first(instance);
            EXPECT_EQ(AfxGetResourceHandle(), instance);
            EXPECT_EQ(host::resourceModules(), (std::vector<HINSTANCE>{instance, sibling, nullptr}));
        }
        AfxSetResourceHandle(sibling);
        AfxTermExtensionModule(other);
        EXPECT_EQ(AfxGetResourceHandle(), nullptr); // not into a library that is gone
        EXPECT_EQ(host::resourceModules(), (std::vector<HINSTANCE>{instance, nullptr}));
        AfxTermExtensionModule(record);
        AfxTermExtensionModule(record);
        EXPECT_EQ(host::resourceModules(), (std::vector<HINSTANCE>{nullptr}));
    }
    EXPECT_EQ(AfxGetApp(), acedGetAcadWinApp());
}

TEST_F(WithFolder, FileFindWalksAFolder) {
    for (const char* name : {"B.dwg", "a.DWG", "c.txt"})
        std::ofstream(folder / name) << "123";
    std::filesystem::create_directory(folder / "sub");
    const CString base(host::toWindowsPath(folder).c_str());
    CFileFind find;
    std::vector<CString> titles;
    BOOL more = find.FindFile(base + L"\\*.dwg");
    while (more) {
        more = find.FindNextFile();
        titles.push_back(find.GetFileTitle());
        EXPECT_EQ(find.GetLength(), 3u);
    }
    EXPECT_EQ(titles, (std::vector<CString>{L"a", L"B"}));
    EXPECT_EQ(find.GetFilePath(), base + L"\\B.dwg");
    int folders = 0, dots = 0;
    for (more = find.FindFile(base + L"\\*.*"); more;) {
        more = find.FindNextFile();
        folders += find.IsDirectory() && !find.IsDots();
        dots += find.IsDots();
    }
    EXPECT_EQ(folders, 1);
    EXPECT_EQ(dots, 2);
    EXPECT_FALSE(find.FindFile(base + L"\\*.shx"));
    EXPECT_FALSE(find.FindNextFile());
}

} // namespace
