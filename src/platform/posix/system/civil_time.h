// Calendar arithmetic shared by the time and date-format functions.
//
// Proleptic Gregorian calendar, as Windows uses it for SYSTEMTIME and
// FILETIME. Pure functions, safe on any thread.
#pragma once

#include <cstdint>

#include "platform/win32.h"

namespace zq::platform::internal {

// 100-ns ticks between 1601-01-01 and 1970-01-01 (the Unix epoch).
inline constexpr uint64_t kUnixEpochTicks = 116444736000000000ull;
inline constexpr uint64_t kTicksPerMillisecond = 10000ull;
inline constexpr uint64_t kTicksPerSecond = 10000000ull;
inline constexpr uint64_t kTicksPerDay = 86400ull * kTicksPerSecond;
// Largest year a SYSTEMTIME may name on input.
inline constexpr unsigned kMaxSystemTimeYear = 30827;

bool IsLeapYear(unsigned year);
unsigned DaysInMonth(unsigned year, unsigned month);  // 0 for a month outside 1-12

// Days since 1601-01-01 for a date that exists (year >= 1601).
int64_t DaysSince1601(unsigned year, unsigned month, unsigned day);
// Day of week (0 = Sunday) of a date that exists.
unsigned DayOfWeek(unsigned year, unsigned month, unsigned day);

// True when year (1601-30827), month and day name a day that exists.
bool IsValidDate(const SYSTEMTIME& st);
// True when hour, minute, second and milliseconds are in range.
bool IsValidTimeOfDay(const SYSTEMTIME& st);

// SYSTEMTIME (valid date and time of day) to ticks since 1601.
uint64_t TicksFromSystemTime(const SYSTEMTIME& st);
// Ticks since 1601 (at most INT64_MAX) to SYSTEMTIME, day of week set.
SYSTEMTIME SystemTimeFromTicks(uint64_t ticks);

inline uint64_t TicksOf(const FILETIME& ft) {
    return (static_cast<uint64_t>(ft.dwHighDateTime) << 32) | ft.dwLowDateTime;
}
inline FILETIME FileTimeOf(uint64_t ticks) {
    return FILETIME{static_cast<DWORD>(ticks), static_cast<DWORD>(ticks >> 32)};
}

// The process time zone's current offset from UTC, in seconds east.
int64_t CurrentUtcOffsetSeconds();

}  // namespace zq::platform::internal
