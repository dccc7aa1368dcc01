// Paths, file functions, atomic saving and reading.
#include "tests/temporaryfolder.h"

#include "host/rx/acrx.h"
#include "host/rx/text.h"
#include "host/win/win.h"

#include <chrono>
#include <csignal>
#include <dlfcn.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;

class Files : public testing::Test {
protected:
    std::wstring windows(const std::wstring& tail) const {
        return host::toWindowsPath(folder.path()) + L"\\" + tail;
    }
    std::size_t entries() const {
        return static_cast<std::size_t>(std::distance(fs::directory_iterator(folder.path()), {}));
    }

    TemporaryFolder folder;
};

TEST_F(Files, NamesAreFoundInAnyCase) {
    const fs::path base = folder.path();
    fs::create_directories(base / "Lib" / "TXT");
    writeFile(base / "Lib" / "$tq.dwg", "x");
    writeFile(base / "Lib" / "图签.TXT", "x");
    EXPECT_EQ(host::toNativePath(windows(L"LIB\\$TQ.DWG")), base / "Lib" / "$tq.dwg");
    EXPECT_EQ(host::toNativePath(windows(L"lib\\.\\txt\\..\\图签.txt")), base / "Lib" / "图签.TXT");
    EXPECT_EQ(host::toNativePath(windows(L"lib\\New\\$TQ.DWG")),
              base / "Lib" / "New" / "$TQ.DWG"); // not there yet
    EXPECT_EQ(host::toNativePath(L"C:" + windows(L"lib")), base / "Lib");
    EXPECT_EQ(host::toNativePath(L"\\\\?\\c:" + windows(L"lib")), base / "Lib");
    writeFile(base / "Lib" / "$TQ.DWG", "y"); // the exact name wins, also just after a look-up
    EXPECT_EQ(host::toNativePath(windows(L"LIB\\$TQ.DWG")), base / "Lib" / "$TQ.DWG");
    EXPECT_EQ(host::toNativePath(windows(L"LIB\\$Tq.dwg")), base / "Lib" / "$TQ.DWG"); // first in order
    fs::remove(base / "Lib" / "$TQ.DWG");
    EXPECT_EQ(host::toNativePath(windows(L"LIB\\$TQ.DWG")), base / "Lib" / "$tq.dwg");
    EXPECT_EQ(host::toNativePath(L"txt\\a", base / "Lib"), base / "Lib" / "TXT" / "a");
}

TEST_F(Files, PathsAreRead) {
    const std::pair<const wchar_t*, const char*> cases[] = {
        {L"\\no where\\$TQ.DWG", "/no where/$TQ.DWG"},
        {L"D:\\no\\..\\nope", "/nope"},
        {L"\\..\\..\\nope", "/nope"},
        {L"..\\nope\\..\\..\\x", "../../x"},
        {L"D:nope", "nope"},
        {L"\\\\server-x\\share\\f", "/server-x/share/f"},
        {L"/nope//Dir/./f.dwg", "/nope/Dir/f.dwg"},
        {L"\\", "/"},
        {L".\\", "."},
        {L"", ""},
    };
    for (const auto& [windowsPath, native] : cases)
        EXPECT_EQ(host::toNativePath(windowsPath), fs::path(native)) << native;
}

TEST_F(Files, LinuxNamesGoThereAndBack) {
    fs::create_directory_symlink("/", folder.path() / "link");
    EXPECT_EQ(host::toNativePath(host::displayPath(folder.path()) + L"/link/../nope2"),
              host::toNativePath(windows(L"nope2"))); // only text, as nothing is there
    EXPECT_EQ(host::toNativePath(host::displayPath(folder.path()) + L"/link/.."),
              folder.path() / "link" / "..");
    for (const char* name : {"back\\slash", "bad\xFF\xE4\xB8z", "中文 (1).dxf", "c:colon"}) {
        writeFile(folder.path() / name, "x");
        const std::wstring path = host::toWindowsPath(folder.path() / name);
        EXPECT_EQ(host::toNativePath(path), folder.path() / name);
        EXPECT_EQ(path.find(L'/'), path.npos);
    }
}

TEST(Paths, PartsOfAPath) {
    EXPECT_EQ(host::fileNameOf(L"\\a\\b.c.dwg"), L"b.c.dwg");
    EXPECT_EQ(host::extensionOf(L"/a.b/c"), L"");
    EXPECT_EQ(host::extensionOf(L"\\a\\b.c.dwg"), L".dwg");
    EXPECT_EQ(host::folderOf(L"\\a\\b"), L"\\a");
    EXPECT_EQ(host::folderOf(L"\\a"), L"\\");
    EXPECT_EQ(host::folderOf(L"c:\\a"), L"c:\\");
    EXPECT_TRUE(host::isAbsoluteWindowsPath(L"c:\\a") && host::isAbsoluteWindowsPath(L"/a"));
    EXPECT_FALSE(host::isAbsoluteWindowsPath(L"c:a") || host::isAbsoluteWindowsPath(L""));
    EXPECT_TRUE(host::matchesPattern(L"$TQ_12.DWG", L"$tq_*.dwg"));
    EXPECT_TRUE(host::matchesPattern(L"noext", L"*.*"));
    EXPECT_TRUE(host::matchesPattern(L"aXbXc", L"a*b?c*"));
    EXPECT_FALSE(host::matchesPattern(L"$TQ.DWG", L"$TQ_*.DWG"));
    EXPECT_FALSE(host::matchesPattern(L"a.dwgx", L"*.dwg"));
}

TEST_F(Files, SavingKeepsTheOldFileUntilTheEnd) {
    const fs::path target = folder.path() / "plan.dxf";
    writeFile(target, "old");
    chmod(target.c_str(), 0640);
    {
        host::AtomicFile out(target);
        EXPECT_TRUE(out.write("half of it"));
        EXPECT_EQ(readFile(target), "old");
    }
    EXPECT_EQ(entries(), 1u); // given up: nothing stays behind
    const std::string large(700'000, 'x');
    host::AtomicFile out(target);
    EXPECT_TRUE(out.write("HEAD") && out.write(large) && out.write("tail"));
    EXPECT_EQ(out.position(), large.size() + 8);
    EXPECT_TRUE(out.patch(0, "head") && out.patch(large.size() + 4, "TAIL"));
    EXPECT_FALSE(fs::exists(folder.path() / "plan.bak"));
    EXPECT_TRUE(out.commit()) << host::toUtf8(out.errorText());
    EXPECT_EQ(readFile(target), "head" + large + "TAIL");
    EXPECT_EQ(readFile(folder.path() / "plan.bak"), "old");
    struct stat info {};
    stat(target.c_str(), &info);
    EXPECT_EQ(info.st_mode & 0777, 0640u);
    EXPECT_EQ(entries(), 2u);
    host::AtomicFile third(target);
    third.write("third");
    EXPECT_TRUE(third.commit());
    EXPECT_EQ(readFile(folder.path() / "plan.bak").size(), large.size() + 8);
    EXPECT_EQ(entries(), 2u);
}

TEST_F(Files, SavingTakesAwayWhatKilledProgramsLeft) {
    const auto leave = [this](const char* name) {
        writeFile(folder.path() / name, "half");
        fs::last_write_time(folder.path() / name, fs::file_time_type::clock::now() - std::chrono::hours(1));
    };
    leave(".plan.dxf.77-0.tmp");
    leave(".plan.dxf.77-12.tmp");
    for (const char* name : {".plan.dxf.x-0.tmp", ".other.dxf.77-0.tmp", ".plan.dxf.77.tmp"}) {
        leave(name); // others' names
    }
    writeFile(folder.path() / ".plan.dxf.78-0.tmp", "just begun");
    host::AtomicFile running(folder.path() / "plan.dxf"); // is being written, for long
    running.write("one");
    for (const auto& entry : fs::directory_iterator(folder.path())) {
        if (entry.path().filename().string().find(std::to_string(getpid())) != std::string::npos) {
            fs::last_write_time(entry.path(), fs::file_time_type::clock::now() - std::chrono::hours(1));
        }
    }
    host::AtomicFile out(folder.path() / "plan.dxf");
    EXPECT_EQ(entries(), 6u);
    EXPECT_TRUE(out.write("two") && out.commit());
    EXPECT_TRUE(running.commit());
    EXPECT_EQ(readFile(folder.path() / "plan.dxf"), "one");
}

TEST_F(Files, SavingFollowsLinksAndWritesToPipes) {
    fs::create_directory(folder.path() / "real");
    fs::create_symlink("real/plan.dxf", folder.path() / "link.dxf");
    for (const char* text : {"one", "two"}) {
        host::AtomicFile out(folder.path() / "link.dxf");
        out.write(text);
        ASSERT_TRUE(out.commit());
    }
    EXPECT_TRUE(fs::is_symlink(folder.path() / "link.dxf"));
    EXPECT_EQ(readFile(folder.path() / "real" / "plan.dxf"), "two");
    EXPECT_EQ(readFile(folder.path() / "real" / "plan.bak"), "one");
    host::AtomicFile null("/dev/null");
    EXPECT_TRUE(null.write("x") && null.commit());
    EXPECT_TRUE(fs::is_character_file("/dev/null"));
}

TEST_F(Files, SavingThatCanNotBeSaysWhy) {
    struct Case {
        fs::path target;
        const wchar_t* why;
    };
    fs::create_symlink("b", folder.path() / "a");
    fs::create_symlink("a", folder.path() / "b");
    for (const Case& c :
         {Case{folder.path() / "none" / "x.dxf", L"文件或文件夹不存在"},
          Case{folder.path(), L"这是一个文件夹"}, Case{folder.path() / "a", L"符号链接循环"}}) {
        host::AtomicFile out(c.target);
        out.write("x");
        EXPECT_FALSE(out.commit());
        EXPECT_TRUE(out.errorText().ends_with(c.why)) << host::toUtf8(out.errorText());
    }
}

// A full disk, in the shape of a limit on the size of files.
TEST_F(Files, AFailedWriteLeavesTheOldFile) {
    const fs::path target = folder.path() / "plan.dxf";
    writeFile(target, "old");
    rlimit old{};
    getrlimit(RLIMIT_FSIZE, &old);
    const auto previous = std::signal(SIGXFSZ, SIG_IGN);
    const rlimit small{300'000, old.rlim_max};
    setrlimit(RLIMIT_FSIZE, &small);
    bool committed = true;
    std::wstring text;
    {
        host::AtomicFile out(target);
        for (int i = 0; i < 100; ++i)
            out.write(std::string(10'000, 'x'));
        committed = out.commit();
        text = out.errorText();
    }
    setrlimit(RLIMIT_FSIZE, &old);
    std::signal(SIGXFSZ, previous);
    EXPECT_FALSE(committed);
    EXPECT_EQ(text, L"无法写入文件“" + host::displayPath(target) + L"”: 文件过大");
    EXPECT_EQ(readFile(target), "old");
    EXPECT_EQ(entries(), 1u);
}

TEST_F(Files, ReadingSurvivesAFileCutOffUnderneath) {
    const fs::path path = folder.path() / "large";
    writeFile(path, std::string(10 << 20, 'x'));
    host::MappedFile file;
    ASSERT_TRUE(file.open(path));
    EXPECT_EQ(file.size(), 10u << 20);
    EXPECT_FALSE(file.damaged());
    fs::resize_file(path, 5 << 20);
    EXPECT_EQ(file.text()[100], 'x');
    EXPECT_EQ(file.text()[(9 << 20) + 5], '\0');
    EXPECT_EQ(file.text().back(), '\0');
    EXPECT_TRUE(file.damaged());
    EXPECT_TRUE(file.open(path)); // and again from the start
    EXPECT_FALSE(file.damaged());
    EXPECT_EQ(file.text().back(), 'x');
}

TEST_F(Files, ReadingTellsWhatIsNotThere) {
    host::MappedFile file;
    EXPECT_FALSE(file.open(folder.path() / "none"));
    EXPECT_EQ(file.errorText(),
              L"无法读取文件“" + host::displayPath(folder.path() / "none") + L"”: 文件或文件夹不存在");
    EXPECT_FALSE(file.open(folder.path()));
    writeFile(folder.path() / "empty", "");
    EXPECT_TRUE(file.open(folder.path() / "empty"));
    EXPECT_EQ(file.text(), "");
    EXPECT_TRUE(file.open("/proc/self/status")); // has no size
    EXPECT_GT(file.size(), 100u);
}

TEST_F(Files, CopyMoveAndDelete) {
    writeFile(folder.path() / "$TQ.DWG", "one");
    EXPECT_TRUE(CopyFileW(windows(L"$tq.dwg").c_str(), windows(L"$TQ_1.DWG").c_str(), TRUE));
    EXPECT_FALSE(CopyFileW(windows(L"$TQ.DWG").c_str(), windows(L"$tq_1.dwg").c_str(), TRUE));
    EXPECT_EQ(GetLastError(), DWORD(ERROR_FILE_EXISTS));
    EXPECT_FALSE(CopyFileW(windows(L"$TQ.DWG").c_str(), windows(L"$tq.dwg").c_str(), FALSE)); // itself
    EXPECT_FALSE(MoveFileW(windows(L"$TQ.DWG").c_str(), windows(L"$TQ_1.DWG").c_str()));
    EXPECT_TRUE(MoveFileW(windows(L"$TQ.DWG").c_str(), windows(L"$tq.dwg").c_str())); // the case alone
    EXPECT_TRUE(fs::exists(folder.path() / "$tq.dwg") && !fs::exists(folder.path() / "$TQ.DWG"));
    EXPECT_TRUE(
        MoveFileExW(windows(L"$TQ.dwg").c_str(), windows(L"$TQ_1.DWG").c_str(), MOVEFILE_REPLACE_EXISTING));
    EXPECT_EQ(entries(), 1u);
    EXPECT_TRUE(SetFileAttributesW(windows(L"$TQ_1.DWG").c_str(), FILE_ATTRIBUTE_READONLY));
    EXPECT_EQ(GetFileAttributesW(windows(L"$tq_1.dwg").c_str()), FILE_ATTRIBUTE_READONLY);
    EXPECT_FALSE(DeleteFileW(windows(L"$TQ_1.DWG").c_str()));
    EXPECT_TRUE(SetFileAttributesW(windows(L"$TQ_1.DWG").c_str(), FILE_ATTRIBUTE_NORMAL));
    EXPECT_TRUE(DeleteFileW(windows(L"$TQ_1.DWG").c_str()));
    EXPECT_EQ(GetFileAttributesW(windows(L"$TQ_1.DWG").c_str()), INVALID_FILE_ATTRIBUTES);
    EXPECT_TRUE(CreateDirectoryW(windows(L"BSign").c_str(), nullptr));
    EXPECT_FALSE(DeleteFileW(windows(L"BSIGN").c_str()));
    EXPECT_FALSE(CreateDirectoryW(windows(L"bsign").c_str(), nullptr));
    EXPECT_TRUE(PathIsDirectoryW(windows(L"bsign").c_str()));
    EXPECT_TRUE(RemoveDirectoryW(windows(L"bsign").c_str()));
}

TEST_F(Files, FoldersAreSearchedInOrder) {
    for (const char* name : {"b.DWG", "A.dwg", "图.dwg", "c.txt", "dwg"})
        writeFile(folder.path() / name, "12345");
    WIN32_FIND_DATAW found{};
    std::wstring names;
    const HANDLE search = FindFirstFileW(windows(L"*.dwg").c_str(), &found);
    ASSERT_NE(search, INVALID_HANDLE_VALUE);
    do
        names += std::wstring(found.cFileName) + L"|";
    while (FindNextFileW(search, &found));
    EXPECT_EQ(GetLastError(), DWORD(ERROR_NO_MORE_FILES));
    EXPECT_TRUE(FindClose(search));
    EXPECT_EQ(names, L"A.dwg|b.DWG|图.dwg|");
    EXPECT_EQ(found.nFileSizeLow, 5u);
    EXPECT_EQ(FindFirstFileW(windows(L"*.shx").c_str(), &found), INVALID_HANDLE_VALUE);
    EXPECT_EQ(GetLastError(), DWORD(ERROR_FILE_NOT_FOUND));
    EXPECT_EQ(FindFirstFileW(windows(L"none\\*").c_str(), &found), INVALID_HANDLE_VALUE);
    EXPECT_EQ(GetLastError(), DWORD(ERROR_PATH_NOT_FOUND));
}

TEST_F(Files, AModuleKnowsItsFile) {
    const fs::path file = folder.path() / "Tools.arx";
    fs::copy_file(TEST_MODULE, file);
    host::initializeRuntime();
    ASSERT_TRUE(host::loadModule(file));
    const HMODULE instance = GetModuleHandleW(L"c:\\x\\tools.ARX");
    ASSERT_NE(instance, nullptr);
    const auto* const seen = static_cast<HMODULE*>(dlsym(instance, "attachedInstance"));
    EXPECT_EQ(*seen, instance); // what DllMain got
    EXPECT_EQ(host::moduleOfAddress(seen), instance);
    wchar_t path[MAX_PATH];
    const DWORD length = GetModuleFileNameW(instance, path, MAX_PATH);
    EXPECT_EQ(std::wstring(path, length), windows(L"Tools.arx"));
    EXPECT_EQ(GetModuleFileNameW(instance, path, 5), 5u);
    EXPECT_EQ(std::wcslen(path), 4u);
    ASSERT_TRUE(host::unloadModule(L"Tools.arx"));
    EXPECT_EQ(GetModuleFileNameW(instance, path, MAX_PATH), 0u);
    EXPECT_EQ(GetModuleHandleW(L"Tools.arx"), nullptr);
    EXPECT_GT(GetModuleFileNameW(nullptr, path, MAX_PATH), 0u);
    EXPECT_EQ(host::moduleOfAddress(&path), nullptr);
}

} // namespace
