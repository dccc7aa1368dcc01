// Clocks over std::chrono; the local zone is the C library's.
#include "host/win/clock.h"

#include <algorithm>
#include <cmath>
#include <ctime>
#include <thread>

namespace host {
namespace {

using namespace std::chrono;

constexpr std::int32_t julianDayOfEpoch = 2'440'588; // 1970-01-01
constexpr std::int64_t millisecondsADay = 86'400'000;

// Milliseconds since 1970 of what the clock on the wall shows.
std::int64_t wallMilliseconds(SystemTime time, Zone zone) {
    std::int64_t count = floor<milliseconds>(time).time_since_epoch().count();
    if (zone == Zone::local) {
        const std::time_t seconds = system_clock::to_time_t(floor<std::chrono::seconds>(time));
        std::tm fields{};
        if (localtime_r(&seconds, &fields) != nullptr)
            count += static_cast<std::int64_t>(fields.tm_gmtoff) * 1000;
    }
    return count;
}

SYSTEMTIME fieldsOf(std::int64_t wall) {
    const sys_time<milliseconds> time{milliseconds(wall)};
    const sys_days day = floor<days>(time);
    const year_month_day date(day);
    const hh_mm_ss clock(time - day);
    return {static_cast<WORD>(static_cast<int>(date.year())),
            static_cast<WORD>(static_cast<unsigned>(date.month())),
            static_cast<WORD>(weekday(day).c_encoding()),
            static_cast<WORD>(static_cast<unsigned>(date.day())),
            static_cast<WORD>(clock.hours().count()),
            static_cast<WORD>(clock.minutes().count()),
            static_cast<WORD>(clock.seconds().count()),
            static_cast<WORD>(clock.subseconds().count())};
}

double calendarDate(const SYSTEMTIME& t) {
    const double date = t.wYear * 10000.0 + t.wMonth * 100.0 + t.wDay;
    return date +
           (t.wHour * 10'000'000.0 + t.wMinute * 100'000.0 + t.wSecond * 1000.0 + t.wMilliseconds) / 1e9;
}

} // namespace

double monotonicSeconds() {
    return duration<double>(steady_clock::now().time_since_epoch()).count();
}

JulianDate JulianDate::fromValue(double value) {
    if (!(std::fabs(value) < 1e9))
        return {};
    JulianDate date;
    date.day = static_cast<std::int32_t>(std::floor(value));
    const auto part = std::llround((value - std::floor(value)) * static_cast<double>(millisecondsADay));
    date.milliseconds = static_cast<std::int32_t>(std::min<long long>(part, millisecondsADay - 1));
    return date;
}

JulianDate toJulianDate(SystemTime time, Zone zone) {
    const std::int64_t wall = wallMilliseconds(time, zone);
    const std::int64_t day =
        wall >= 0 ? wall / millisecondsADay : -((-wall + millisecondsADay - 1) / millisecondsADay);
    return {static_cast<std::int32_t>(day + julianDayOfEpoch),
            static_cast<std::int32_t>(wall - day * millisecondsADay)};
}

SystemTime fromJulianDate(JulianDate date, Zone zone) {
    constexpr std::int64_t mostDays = 100'000; // the clock counts nanoseconds in 64 bits: years 1697 to 2242
    const std::int64_t day =
        std::clamp<std::int64_t>(std::int64_t{date.day} - julianDayOfEpoch, -mostDays, mostDays);
    const std::int64_t wall = day * millisecondsADay + date.milliseconds;
    if (zone == Zone::utc)
        return SystemTime(milliseconds(wall));
    const SYSTEMTIME fields = fieldsOf(wall);
    std::tm local{};
    local.tm_year = fields.wYear - 1900;
    local.tm_mon = fields.wMonth - 1;
    local.tm_mday = fields.wDay;
    local.tm_hour = fields.wHour;
    local.tm_min = fields.wMinute;
    local.tm_sec = fields.wSecond;
    local.tm_isdst = -1;
    return system_clock::from_time_t(std::mktime(&local)) + milliseconds(fields.wMilliseconds);
}

double toCalendarDate(SystemTime time, Zone zone) {
    return calendarDate(fieldsOf(wallMilliseconds(time, zone)));
}

double toCalendarDate(JulianDate date) {
    return calendarDate(
        fieldsOf((std::int64_t{date.day} - julianDayOfEpoch) * millisecondsADay + date.milliseconds));
}

std::int32_t julianDay(year_month_day date) {
    return static_cast<std::int32_t>(sys_days(date).time_since_epoch().count() + julianDayOfEpoch);
}

year_month_day civilDate(std::int32_t day) {
    return year_month_day(sys_days(days(day - julianDayOfEpoch)));
}

} // namespace host

ULONGLONG GetTickCount64() {
    return static_cast<ULONGLONG>(std::chrono::duration_cast<std::chrono::milliseconds>(
                                      std::chrono::steady_clock::now().time_since_epoch())
                                      .count());
}

DWORD GetTickCount() {
    return static_cast<DWORD>(GetTickCount64());
}

void Sleep(DWORD milliseconds) {
    std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
}

BOOL QueryPerformanceCounter(LARGE_INTEGER* count) {
    count->QuadPart = std::chrono::steady_clock::now().time_since_epoch().count();
    return TRUE;
}

BOOL QueryPerformanceFrequency(LARGE_INTEGER* frequency) {
    using Period = std::chrono::steady_clock::period;
    frequency->QuadPart = Period::den / Period::num;
    return TRUE;
}

void GetLocalTime(LPSYSTEMTIME time) {
    *time = host::fieldsOf(host::wallMilliseconds(std::chrono::system_clock::now(), host::Zone::local));
}

void GetSystemTime(LPSYSTEMTIME time) {
    *time = host::fieldsOf(host::wallMilliseconds(std::chrono::system_clock::now(), host::Zone::utc));
}
