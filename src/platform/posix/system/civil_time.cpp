#include "platform/posix/system/civil_time.h"

#include <time.h>

#include "platform/posix/base/host.h"

namespace zq::platform::internal {

namespace {

// Days from 0000-03-01 based counting (era arithmetic), shifted so that
// 1601-01-01 is day 0.
int64_t DaysFromCivil(int64_t y, unsigned m, unsigned d) {
    y -= m <= 2;
    const int64_t era = (y >= 0 ? y : y - 399) / 400;
    const int64_t yoe = y - era * 400;
    const int64_t doy = (153 * (m > 2 ? m - 3 : m + 9) + 2) / 5 + d - 1;
    const int64_t doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;
    return era * 146097 + doe;
}

const int64_t kDay1601 = DaysFromCivil(1601, 1, 1);

}  // namespace

bool IsLeapYear(unsigned year) {
    return (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
}

unsigned DaysInMonth(unsigned year, unsigned month) {
    static constexpr unsigned kDays[12] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    if (month < 1 || month > 12) {
        return 0;
    }
    return kDays[month - 1] + (month == 2 && IsLeapYear(year) ? 1 : 0);
}

int64_t DaysSince1601(unsigned year, unsigned month, unsigned day) {
    return DaysFromCivil(year, month, day) - kDay1601;
}

unsigned DayOfWeek(unsigned year, unsigned month, unsigned day) {
    // 1601-01-01 was a Monday.
    return static_cast<unsigned>((DaysSince1601(year, month, day) + 1) % 7);
}

bool IsValidDate(const SYSTEMTIME& st) {
    return st.wYear >= 1601 && st.wYear <= kMaxSystemTimeYear && st.wMonth >= 1 &&
           st.wMonth <= 12 && st.wDay >= 1 && st.wDay <= DaysInMonth(st.wYear, st.wMonth);
}

bool IsValidTimeOfDay(const SYSTEMTIME& st) {
    return st.wHour < 24 && st.wMinute < 60 && st.wSecond < 60 && st.wMilliseconds < 1000;
}

uint64_t TicksFromSystemTime(const SYSTEMTIME& st) {
    const uint64_t days = static_cast<uint64_t>(DaysSince1601(st.wYear, st.wMonth, st.wDay));
    const uint64_t seconds = days * 86400u + st.wHour * 3600u + st.wMinute * 60u + st.wSecond;
    return seconds * kTicksPerSecond + st.wMilliseconds * kTicksPerMillisecond;
}

SYSTEMTIME SystemTimeFromTicks(uint64_t ticks) {
    SYSTEMTIME st{};
    const int64_t days = static_cast<int64_t>(ticks / kTicksPerDay);
    uint64_t rest = ticks % kTicksPerDay;
    st.wMilliseconds = static_cast<WORD>((rest / kTicksPerMillisecond) % 1000);
    rest /= kTicksPerSecond;
    st.wSecond = static_cast<WORD>(rest % 60);
    st.wMinute = static_cast<WORD>((rest / 60) % 60);
    st.wHour = static_cast<WORD>(rest / 3600);
    st.wDayOfWeek = static_cast<WORD>((days + 1) % 7);

    // Inverse of DaysFromCivil.
    const int64_t z = days + kDay1601;
    const int64_t era = (z >= 0 ? z : z - 146096) / 146097;
    const int64_t doe = z - era * 146097;
    const int64_t yoe = (doe - doe / 1460 + doe / 36524 - doe / 146096) / 365;
    const int64_t doy = doe - (365 * yoe + yoe / 4 - yoe / 100);
    const int64_t mp = (5 * doy + 2) / 153;
    const unsigned d = static_cast<unsigned>(doy - (153 * mp + 2) / 5 + 1);
    const unsigned m = static_cast<unsigned>(mp < 10 ? mp + 3 : mp - 9);
    const int64_t y = yoe + era * 400 + (m <= 2);
    st.wYear = static_cast<WORD>(y);
    st.wMonth = static_cast<WORD>(m);
    st.wDay = static_cast<WORD>(d);
    return st;
}

int64_t CurrentUtcOffsetSeconds() {
    const time_t now = static_cast<time_t>(CurrentHost().RealTimeNanos() / 1000000000);
    tm local{};
    if (!localtime_r(&now, &local)) {
        return 0;
    }
    return local.tm_gmtoff;
}

}  // namespace zq::platform::internal
