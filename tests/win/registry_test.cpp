// The registry and its file: what programs write comes back, in any case, also after the file was damaged or
// another program wrote.
#include "tests/temporaryfolder.h"

#include "host/rx/text.h"
#include "host/win/settingsstore.h"
#include "host/win/win.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace {

class Registry : public testing::Test {
protected:
    void SetUp() override { host::setSettingsFolder(folder.path() / "config"); }
    void TearDown() override { host::setSettingsFolder({}); }

    std::filesystem::path file() const { return folder.path() / "config" / "settings"; }

    HKEY create(const wchar_t* path, REGSAM access = KEY_READ | KEY_WRITE) {
        HKEY key = nullptr;
        EXPECT_EQ(RegCreateKeyExW(HKEY_CURRENT_USER, path, 0, nullptr, 0, access, nullptr, &key, nullptr),
                  ERROR_SUCCESS);
        return key;
    }

    TemporaryFolder folder;
};

TEST_F(Registry, AnUnnamedTextComesBackAsWritten) {
    const HKEY key = create(L"Software\\Maker\\Product\\Profiles");
    const char16_t text[] = u"<<未命名配置>>";
    static_assert(sizeof text == 20);
    const DWORD size = 18; // as a caller may count it: without the zero
    EXPECT_EQ(RegSetValueExW(key, nullptr, 0, REG_SZ, reinterpret_cast<const BYTE*>(text), size),
              ERROR_SUCCESS);
    EXPECT_EQ(RegSetValueExW(key, L"whole", 0, REG_SZ, reinterpret_cast<const BYTE*>(text), sizeof text),
              ERROR_SUCCESS);
    RegCloseKey(key);
    host::setSettingsFolder(folder.path() / "config"); // read anew

    HKEY again = nullptr;
    ASSERT_EQ(RegOpenKeyExW(HKEY_CURRENT_USER, L"SOFTWARE\\maker\\PRODUCT\\profiles\\", 0, KEY_READ, &again),
              ERROR_SUCCESS);
    BYTE data[64];
    DWORD type = 0, given = sizeof data;
    EXPECT_EQ(RegQueryValueExW(again, L"", nullptr, &type, data, &given), ERROR_SUCCESS);
    EXPECT_EQ(type, REG_SZ);
    ASSERT_EQ(given, size);
    EXPECT_EQ(std::memcmp(data, text, size), 0);
    given = 4;
    EXPECT_EQ(RegQueryValueExW(again, L"WHOLE", nullptr, nullptr, data, &given), ERROR_MORE_DATA);
    EXPECT_EQ(given, sizeof text);
    EXPECT_EQ(RegSetValueExW(again, L"x", 0, REG_SZ, data, 2), ERROR_ACCESS_DENIED);
    EXPECT_EQ(RegCloseKey(again), ERROR_SUCCESS);
    EXPECT_EQ(RegCloseKey(again), ERROR_INVALID_HANDLE);
    EXPECT_NE(readFile(file()).find("\"whole\"=\"<<未命名配置>>\""), std::string::npos);
}

TEST_F(Registry, ValuesOfEveryTypeSurviveTheFile) {
    const std::pair<std::wstring, host::SettingsValue> values[] = {
        {L"", {REG_SZ, host::toUtf16Le(std::wstring(L"a\"b\\c\r\n\t围\x1F600\0", 13))}},
        {L"empty text", {REG_SZ, std::string(2, 0)}},
        {L"no bytes", {REG_SZ, ""}},
        {L"odd", {REG_SZ, "abc"}},
        {L"two zeros", {REG_SZ, std::string(4, 0)}},
        {L"half a pair", {REG_SZ, std::string("\x3D\xD8\0\0", 4)}},
        {L"number", {REG_DWORD, std::string("\xFF\xFF\xFF\xFF")}},
        {L"long", {REG_QWORD, "12345678"}},
        {L"bytes \"=[;\\", {REG_BINARY, std::string("\0\xFF\n", 3)}},
        {L"several", {REG_MULTI_SZ, std::string("a\0\0\0b\0\0\0\0\0", 10)}},
        {L"line\nend", {REG_NONE, "x"}},
    };
    host::SettingsKey root;
    for (const auto& [name, value] : values)
        root.create(L"HKEY_CURRENT_USER\\k]ey\\围墙").values[name] = value;
    root.create(L"HKEY_CURRENT_USER\\empty");
    const std::string text = host::writeSettingsText(root);
    const host::SettingsText back = host::readSettingsText(text);
    EXPECT_TRUE(back.whole);
    const auto* key = back.root->find(L"hkey_current_user\\K]EY\\围墙");
    ASSERT_NE(key, nullptr);
    EXPECT_EQ(key->values.size(), std::size(values));
    for (const auto& [name, value] : values)
        EXPECT_EQ(key->values.at(name), value) << host::toUtf8(name);
    EXPECT_NE(back.root->find(L"HKEY_CURRENT_USER\\empty"), nullptr);
    EXPECT_EQ(host::writeSettingsText(*back.root), text);
}

TEST_F(Registry, EveryCutOffTextIsKnownAsSuch) {
    host::SettingsKey root;
    root.create(L"HKEY_CURRENT_USER\\a").values[L"n"] = {REG_DWORD, "1234"};
    root.create(L"HKEY_CURRENT_USER\\b").values[L"t"] = {REG_SZ, host::toUtf16Le(std::wstring(L"围墙\0", 3))};
    const std::string text = host::writeSettingsText(root);
    for (std::size_t length = 0; length + 1 < text.size(); ++length)
        EXPECT_FALSE(host::readSettingsText(text.substr(0, length)).whole) << length;
}

TEST_F(Registry, KeysAreEnumeratedAndDeleted) {
    RegCloseKey(create(L"A\\One\\Deep"));
    RegCloseKey(create(L"A\\two"));
    const HKEY key = create(L"a");
    wchar_t name[16];
    DWORD size = 16;
    EXPECT_EQ(RegEnumKeyExW(key, 0, name, &size, nullptr, nullptr, nullptr, nullptr), ERROR_SUCCESS);
    EXPECT_STREQ(name, L"One");
    size = 3;
    EXPECT_EQ(RegEnumKeyExW(key, 1, name, &size, nullptr, nullptr, nullptr, nullptr), ERROR_MORE_DATA);
    EXPECT_EQ(RegEnumKeyExW(key, 2, name, &size, nullptr, nullptr, nullptr, nullptr), ERROR_NO_MORE_ITEMS);
    EXPECT_EQ(RegDeleteKeyW(key, L"One"), ERROR_ACCESS_DENIED); // has a sub key
    const HKEY deep = create(L"A\\One\\Deep");
    EXPECT_EQ(RegDeleteKeyW(key, L"One\\Deep"), ERROR_SUCCESS);
    EXPECT_EQ(RegSetValueExW(deep, L"x", 0, REG_BINARY, nullptr, 0), ERROR_KEY_DELETED);
    EXPECT_EQ(RegDeleteTreeW(key, L"One"), ERROR_SUCCESS);
    EXPECT_EQ(RegDeleteKeyW(key, L"One"), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(RegDeleteValueW(key, L"none"), ERROR_FILE_NOT_FOUND);
    HKEY none = nullptr;
    EXPECT_EQ(RegOpenKeyExW(HKEY_CURRENT_USER, L"none", 0, KEY_READ, &none), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(RegCreateKeyExW(key, L"bad\nname", 0, nullptr, 0, KEY_READ, nullptr, &none, nullptr),
              ERROR_INVALID_PARAMETER);
    RegCloseKey(key);
    RegCloseKey(deep);
}

TEST_F(Registry, AForeignOrTornFileIsKept) {
    ASSERT_TRUE(host::writeSetting(L"key", L"first", L"1"));
    const std::string whole = readFile(file());
    const std::string torn = whole.substr(0, whole.size() - 5);
    writeFile(file(), torn);
    EXPECT_EQ(host::readSetting(L"key", L"first"), L"1"); // what can be read counts
    ASSERT_TRUE(host::writeSetting(L"key", L"second", L"2"));
    EXPECT_EQ(readFile(folder.path() / "config" / "settings.damaged-1"), torn);
    EXPECT_EQ(host::readSetting(L"key", L"first"), L"1");
    writeFile(file(), "something else\n");
    EXPECT_FALSE(host::readSetting(L"key", L"first"));
    ASSERT_TRUE(host::writeSetting(L"key", L"third", L"3"));
    EXPECT_EQ(readFile(folder.path() / "config" / "settings.damaged-2"), "something else\n");
}

TEST_F(Registry, NoFolderMeansNoWritingAndNoHarm) {
    writeFile(folder.path() / "config", "a file in the place of the folder");
    EXPECT_FALSE(host::writeSetting(L"key", L"a", L"1"));
    EXPECT_FALSE(host::readSetting(L"key", L"a"));
}

TEST_F(Registry, ProgramsThatWriteAtOnceLoseNothing) {
    constexpr int programs = 4, each = 25;
    std::vector<pid_t> children;
    for (int program = 0; program < programs; ++program) {
        const pid_t child = fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
            bool good = true;
            for (int i = 0; i < each; ++i)
                good = host::writeSettingNumber(L"key\\" + std::to_wstring(program), std::to_wstring(i), i) &&
                       good;
            _exit(good ? 0 : 1);
        }
        children.push_back(child);
    }
    for (const pid_t child : children) {
        int status = 1;
        waitpid(child, &status, 0);
        EXPECT_EQ(status, 0);
    }
    for (int program = 0; program < programs; ++program)
        for (int i = 0; i < each; ++i)
            EXPECT_EQ(host::readSettingNumber(L"key\\" + std::to_wstring(program), std::to_wstring(i)), i);
}

TEST_F(Registry, NumbersAndTextsReadAsEachOther) {
    host::writeSettingNumber(L"key", L"n", -5);
    host::writeSetting(L"key", L"t", L"17abc");
    EXPECT_EQ(host::readSetting(L"KEY", L"N"), L"-5");
    EXPECT_EQ(host::readSettingNumber(L"key", L"t"), 17);
    host::writeSetting(L"key", L"t", L"abc");
    EXPECT_FALSE(host::readSettingNumber(L"key", L"t"));
    EXPECT_TRUE(host::deleteSetting(L"key", L"T"));
    EXPECT_FALSE(host::readSetting(L"key", L"t"));
}

} // namespace
