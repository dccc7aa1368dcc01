// Clocks: time that only goes forward for timers and waiting, and the Julian and calendar dates that drawings
// and system variables hold.
#pragma once

#include "host/win/types.h"

#include <chrono>
#include <cstdint>

ULONGLONG GetTickCount64();
DWORD GetTickCount();
void Sleep(DWORD milliseconds);
BOOL QueryPerformanceCounter(LARGE_INTEGER* count);
BOOL QueryPerformanceFrequency(LARGE_INTEGER* frequency);
void GetLocalTime(LPSYSTEMTIME time);
void GetSystemTime(LPSYSTEMTIME time);

namespace host {

using SystemTime = std::chrono::system_clock::time_point;

// Seconds of a clock that never goes back, since some fixed moment.
double monotonicSeconds();

// A moment as drawings store it: the Julian day number of the civil day, and milliseconds since its midnight.
struct JulianDate {
    std::int32_t day = 0;
    std::int32_t milliseconds = 0; // 0 to 86 399 999

    // Day and fraction in one number, as DATE and TDCREATE give it.
    double value() const { return day + milliseconds / 86'400'000.0; }
    static JulianDate fromValue(double value);

    bool operator==(const JulianDate&) const = default;
};

enum class Zone { local, utc };

JulianDate toJulianDate(SystemTime time, Zone zone);
// The moment of a Julian date; the clock's limits for dates beyond them.
SystemTime fromJulianDate(JulianDate date, Zone zone);

// YYYYMMDD.HHMMSSmmm, as CDATE gives it.
double toCalendarDate(SystemTime time, Zone zone = Zone::local);
// The same for a Julian date as it stands, without change of zone.
double toCalendarDate(JulianDate date);

// Day number of a date of the (proleptic) Gregorian calendar, and back. By chrono's civil calendar.
std::int32_t julianDay(std::chrono::year_month_day date);
std::chrono::year_month_day civilDate(std::int32_t julianDay);

} // namespace host
