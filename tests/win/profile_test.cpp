// Private profile files, the clock, and the Windows C library.
#include "tests/temporaryfolder.h"

#include "host/rx/codepage.h"
#include "host/rx/text.h"
#include "host/win/win.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <stdlib.h>
#include <time.h>

namespace {

using namespace std::chrono;

class Profile : public testing::Test {
protected:
    std::wstring get(const wchar_t* section, const wchar_t* key, DWORD size = 200) {
        std::wstring value(size, L'#');
        value.resize(GetPrivateProfileStringW(section, key, L"默认 ", value.data(), size, path.c_str()));
        return value;
    }
    void put(const wchar_t* section, const wchar_t* key, const wchar_t* value) {
        EXPECT_TRUE(WritePrivateProfileStringW(section, key, value, path.c_str()));
    }

    TemporaryFolder folder;
    std::filesystem::path file = folder.path() / "图签录入记录.INI";
    std::wstring path = host::toWindowsPath(file);
};

TEST_F(Profile, ChangesLeaveTheRestAlone) {
    writeFile(
        file,
        "; 说明\n\n[设计]\n; 谁\n  姓名 =  张三  \n日期=\"  x \"\n\n[Empty]\n[Other]\nno equals\nN=0x1F\n");
    EXPECT_EQ(get(L"设计", L"姓名"), L"张三");
    EXPECT_EQ(get(L"设计", L"日期"), L"  x ");
    EXPECT_EQ(get(L"设计", L"none"), L"默认");
    EXPECT_EQ(get(L"none", L"N"), L"默认");
    EXPECT_EQ(get(L"other", L"n"), L"0x1F");
    EXPECT_EQ(GetPrivateProfileIntW(L"Other", L"N", 5, path.c_str()), 31u);
    EXPECT_EQ(GetPrivateProfileIntW(L"Other", L"M", 5, path.c_str()), 5u);
    EXPECT_EQ(get(L"设计", L"姓名", 2), L"张");
    put(L"设计", L"姓名", L"李四");
    put(L"设计", L"校核", L" 空 ");
    put(L"OTHER", L"N", nullptr);
    put(L"新", L"a", L"1=2");
    put(L"empty", nullptr, nullptr);
    EXPECT_EQ(readFile(file), "; 说明\n\n[设计]\n; 谁\n  姓名 =李四\n日期=\"  x \"\n校核=\" 空 "
                              "\"\n\n[Other]\nno equals\n[新]\na=1=2\n");
    EXPECT_EQ(get(L"设计", L"校核"), L" 空 ");
    EXPECT_EQ(get(L"新", L"a"), L"1=2");
}

TEST_F(Profile, ListsEndInTwoZeros) {
    writeFile(file, "[a]\nx=1\ny=2\n[bc]\n");
    using namespace std::string_literals;
    EXPECT_EQ(get(nullptr, nullptr), L"a\0bc\0"s);
    EXPECT_EQ(get(L"a", nullptr), L"x\0y\0"s);
    EXPECT_EQ(get(nullptr, nullptr, 5), L"a\0b"s);
    EXPECT_EQ(get(L"none", nullptr), L"");
    wchar_t lines[20];
    EXPECT_EQ(GetPrivateProfileSectionW(L"a", lines, 20, path.c_str()), 8u);
    EXPECT_EQ(std::wstring(lines, 9), L"x=1\0y=2\0\0"s);
    EXPECT_TRUE(WritePrivateProfileSectionW(L"a", L"z=3\0w=4\0", path.c_str()));
    EXPECT_EQ(readFile(file), "[a]\nz=3\nw=4\n[bc]\n");
}

TEST_F(Profile, FilesKeepTheirForm) {
    const std::wstring text = L"[设计]\r\n姓名=张三\r\n", after = L"[设计]\r\n姓名=李四\r\n";
    for (const host::TextForm form :
         {host::TextForm::utf8, host::TextForm::utf8WithMark, host::TextForm::utf16, host::TextForm::gbk}) {
        writeFile(file, host::encodeTextFile(text, form));
        EXPECT_EQ(get(L"设计", L"姓名"), L"张三");
        put(L"设计", L"姓名", L"李四");
        EXPECT_EQ(readFile(file), host::encodeTextFile(after, form));
    }
    put(L"设计", L"姓名", L"😀"); // the Chinese page has no such thing
    EXPECT_EQ(get(L"设计", L"姓名"), L"😀");
    std::filesystem::remove(file);
    put(L"设计", L"姓名", L"张\r\n三");
    EXPECT_EQ(readFile(file), "[设计]\r\n姓名=张三\r\n");
}

TEST(Clock, JulianDatesOfKnownMoments) {
    const auto moment = [](int year, unsigned month, unsigned day, int seconds) {
        return host::SystemTime(sys_days(std::chrono::year(year) / month / day) +
                                std::chrono::seconds(seconds));
    };
    const auto millennium = moment(1999, 12, 31, 21 * 3600 + 58 * 60 + 35);
    const host::JulianDate date = host::toJulianDate(millennium, host::Zone::utc);
    EXPECT_EQ(date, (host::JulianDate{2451544, 79'115'000}));
    EXPECT_NEAR(date.value(), 2451544.91568287, 1e-8);
    EXPECT_EQ(host::JulianDate::fromValue(date.value()), date);
    EXPECT_NEAR(host::toCalendarDate(millennium, host::Zone::utc), 19991231.215835, 1e-8);
    EXPECT_EQ(host::fromJulianDate(date, host::Zone::utc), millennium);
    EXPECT_EQ(host::toJulianDate(moment(1960, 1, 1, 1), host::Zone::utc), (host::JulianDate{2436935, 1000}));
    EXPECT_EQ(host::civilDate(2451545), 2000y / January / 1);
    EXPECT_EQ(host::julianDay(2000y / January / 1), 2451545);
    EXPECT_EQ(host::JulianDate::fromValue(std::nan("")), host::JulianDate{});
    host::fromJulianDate({2'000'000'000, 0}, host::Zone::utc); // far out, but no overflow
}

TEST(Clock, LocalDatesFollowTheZone) {
    const char* old = getenv("TZ");
    const std::string saved = old != nullptr ? old : "";
    setenv("TZ", "CST-8", 1);
    tzset();
    const auto noon = host::SystemTime(sys_days(2024y / July / 1) + 12h);
    EXPECT_EQ(host::toJulianDate(noon, host::Zone::local).milliseconds, 20 * 3'600'000);
    EXPECT_EQ(host::fromJulianDate(host::toJulianDate(noon, host::Zone::local), host::Zone::local), noon);
    old != nullptr ? setenv("TZ", saved.c_str(), 1) : unsetenv("TZ");
    tzset();
}

TEST(WindowsLibrary, NumbersAreReadToTheirEnd) {
    EXPECT_EQ(_wtoi(L" \t-42abc"), -42);
    EXPECT_EQ(_wtoi(L"+7"), 7);
    EXPECT_EQ(_wtoi(L"99999999999"), 2147483647);
    EXPECT_EQ(_wtoi(L"围"), 0);
    EXPECT_EQ(_wtoi64(L"-9223372036854775808"), std::numeric_limits<std::int64_t>::min());
    EXPECT_EQ(_wtof(L" 12.5e-1mm"), 1.25);
    EXPECT_EQ(_wtof(L"-.5"), -0.5);
    EXPECT_EQ(_wtof(L"1e999"), HUGE_VAL);
    EXPECT_EQ(_wtof(L"1e-999"), 0.0);
    EXPECT_EQ(_wtof(L""), 0.0);
}

TEST(WindowsLibrary, NothingIsWrittenPastTheEnd) {
    wchar_t text[4] = L"abc";
    EXPECT_EQ(wcscpy_s(text, L"four"), ERANGE);
    EXPECT_STREQ(text, L"");
    EXPECT_EQ(wcscpy_s(text, L"围墙"), 0);
    EXPECT_EQ(wcscat_s(text, L"x"), 0);
    EXPECT_EQ(wcscat_s(text, L"y"), ERANGE);
    EXPECT_EQ(wcsncpy_s(text, L"abcdef", 3), 0);
    EXPECT_STREQ(text, L"abc");
    EXPECT_EQ(wcsncpy_s(text, L"abcdef", _TRUNCATE), 0);
    EXPECT_EQ(swprintf_s(text, L"%s", L"1234"), -1);
    EXPECT_STREQ(text, L"");
    EXPECT_EQ(swprintf_s(text, L"%d", 123), 3);
    EXPECT_EQ(_snwprintf_s(text, 4, _TRUNCATE, L"%s", L"12345"), -1);
    EXPECT_STREQ(text, L"123");
    EXPECT_EQ(_wcsicmp(L"图A", L"图a"), 0);
    EXPECT_LT(_wcsnicmp(L"abcX", L"ABDY", 3), 0);
    EXPECT_EQ(MulDiv(-7, 3, 2), -11); // halves away from zero
}

TEST(WindowsLibrary, TextInAPageAndBack) {
    char bytes[16];
    const int length = WideCharToMultiByte(CP_ACP, 0, L"围墙", -1, bytes, 16, nullptr, nullptr);
    EXPECT_EQ(length, 5);
    wchar_t wide[8];
    EXPECT_EQ(MultiByteToWideChar(936, 0, bytes, -1, wide, 8), 3);
    EXPECT_STREQ(wide, L"围墙");
    EXPECT_EQ(MultiByteToWideChar(CP_UTF8, 0, "围墙", 6, nullptr, 0), 2);
    EXPECT_EQ(MultiByteToWideChar(CP_UTF8, 0, "围墙", 6, wide, 1), 0);
    EXPECT_EQ(GetLastError(), DWORD(ERROR_INSUFFICIENT_BUFFER));
}

} // namespace
