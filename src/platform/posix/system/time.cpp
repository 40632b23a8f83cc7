// Clocks and SYSTEMTIME / FILETIME conversions.
#include <time.h>

#include <cstdint>

#include "platform/posix/base/host.h"
#include "platform/posix/system/civil_time.h"
#include "platform/win32.h"

namespace {

using namespace zq::platform::internal;

uint64_t NowTicks() {
    const int64_t nanos = CurrentHost().RealTimeNanos();
    return kUnixEpochTicks + static_cast<uint64_t>(nanos / 100);
}

bool ShiftTicks(uint64_t ticks, int64_t offset_seconds, uint64_t* out) {
    const int64_t delta = offset_seconds * static_cast<int64_t>(kTicksPerSecond);
    if (ticks > static_cast<uint64_t>(INT64_MAX)) {
        return false;
    }
    const int64_t shifted = static_cast<int64_t>(ticks) + delta;  // |delta| is small
    if (shifted < 0) {
        return false;
    }
    *out = static_cast<uint64_t>(shifted);
    return true;
}

}  // namespace

extern "C" {

DWORD WINAPI GetTickCount(void) {
    return static_cast<DWORD>(CurrentHost().MonotonicMillis());
}

void WINAPI GetSystemTime(LPSYSTEMTIME lpSystemTime) {
    if (lpSystemTime) {
        *lpSystemTime = SystemTimeFromTicks(NowTicks());
    }
}

void WINAPI GetLocalTime(LPSYSTEMTIME lpSystemTime) {
    if (!lpSystemTime) {
        return;
    }
    const int64_t nanos = CurrentHost().RealTimeNanos();
    const time_t seconds = static_cast<time_t>(nanos / 1000000000);
    tm local{};
    if (!localtime_r(&seconds, &local)) {
        *lpSystemTime = SystemTimeFromTicks(NowTicks());
        return;
    }
    lpSystemTime->wYear = static_cast<WORD>(local.tm_year + 1900);
    lpSystemTime->wMonth = static_cast<WORD>(local.tm_mon + 1);
    lpSystemTime->wDayOfWeek = static_cast<WORD>(local.tm_wday);
    lpSystemTime->wDay = static_cast<WORD>(local.tm_mday);
    lpSystemTime->wHour = static_cast<WORD>(local.tm_hour);
    lpSystemTime->wMinute = static_cast<WORD>(local.tm_min);
    // A leap second (60) is folded into 59, which SYSTEMTIME can hold.
    lpSystemTime->wSecond = static_cast<WORD>(local.tm_sec > 59 ? 59 : local.tm_sec);
    lpSystemTime->wMilliseconds = static_cast<WORD>((nanos / 1000000) % 1000);
}

void WINAPI GetSystemTimeAsFileTime(LPFILETIME lpSystemTimeAsFileTime) {
    if (lpSystemTimeAsFileTime) {
        *lpSystemTimeAsFileTime = FileTimeOf(NowTicks());
    }
}

BOOL WINAPI SystemTimeToFileTime(const SYSTEMTIME* lpSystemTime, LPFILETIME lpFileTime) {
    // Day numbers that do not exist in the month (2001-02-29) and years past
    // 30827 are refused, as Windows does.
    if (!lpSystemTime || !lpFileTime || !IsValidDate(*lpSystemTime) ||
        !IsValidTimeOfDay(*lpSystemTime)) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    *lpFileTime = FileTimeOf(TicksFromSystemTime(*lpSystemTime));
    return TRUE;
}

BOOL WINAPI FileTimeToSystemTime(const FILETIME* lpFileTime, LPSYSTEMTIME lpSystemTime) {
    if (!lpFileTime || !lpSystemTime || TicksOf(*lpFileTime) > static_cast<uint64_t>(INT64_MAX)) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    *lpSystemTime = SystemTimeFromTicks(TicksOf(*lpFileTime));
    return TRUE;
}

BOOL WINAPI FileTimeToLocalFileTime(const FILETIME* lpFileTime, LPFILETIME lpLocalFileTime) {
    uint64_t local = 0;
    if (!lpFileTime || !lpLocalFileTime ||
        !ShiftTicks(TicksOf(*lpFileTime), CurrentUtcOffsetSeconds(), &local)) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    *lpLocalFileTime = FileTimeOf(local);
    return TRUE;
}

BOOL WINAPI LocalFileTimeToFileTime(const FILETIME* lpLocalFileTime, LPFILETIME lpFileTime) {
    uint64_t utc = 0;
    if (!lpLocalFileTime || !lpFileTime ||
        !ShiftTicks(TicksOf(*lpLocalFileTime), -CurrentUtcOffsetSeconds(), &utc)) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    *lpFileTime = FileTimeOf(utc);
    return TRUE;
}

LONG WINAPI CompareFileTime(const FILETIME* lpFileTime1, const FILETIME* lpFileTime2) {
    const uint64_t a = lpFileTime1 ? TicksOf(*lpFileTime1) : 0;
    const uint64_t b = lpFileTime2 ? TicksOf(*lpFileTime2) : 0;
    return a < b ? -1 : (a > b ? 1 : 0);
}

}  // extern "C"
