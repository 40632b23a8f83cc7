#include <time.h>

#include <gtest/gtest.h>

#include <cstdint>

#include "platform/posix/base/host.h"
#include "platform/posix/system/civil_time.h"
#include "platform/win32.h"
#include "support/test_support.h"

namespace {

using zq::platform::internal::ForwardingHost;
using zq::platform::internal::ScopedHost;
using zq::platform::internal::SystemHost;

// A clock that stands still where the test puts it.
class FrozenClock : public ForwardingHost {
public:
    FrozenClock() : ForwardingHost(SystemHost()) {}
    uint64_t MonotonicMillis() override { return millis; }
    int64_t RealTimeNanos() override { return nanos; }
    uint64_t millis = 0;
    int64_t nanos = 0;
};

// Switches the process's time zone for one test.
class ScopedTimeZone {
public:
    explicit ScopedTimeZone(const char* tz) : variable_("TZ", tz) { tzset(); }
    ~ScopedTimeZone() { tzset(); }

private:
    zq::test::ScopedEnvironmentVariable variable_;
};

SYSTEMTIME Date(WORD y, WORD mo, WORD d, WORD h = 0, WORD mi = 0, WORD s = 0, WORD ms = 0) {
    return SYSTEMTIME{y, mo, 5, d, h, mi, s, ms};  // a wrong day of week on purpose
}

uint64_t Ticks(const FILETIME& ft) {
    return (static_cast<uint64_t>(ft.dwHighDateTime) << 32) | ft.dwLowDateTime;
}

FILETIME FileTime(uint64_t ticks) {
    return FILETIME{static_cast<DWORD>(ticks), static_cast<DWORD>(ticks >> 32)};
}

// 2021-07-01 12:00:00.250 UTC in Unix nanoseconds.
constexpr int64_t kSummerNanos = 1625140800LL * 1000000000 + 250000000;
// 2021-01-15 12:00:00 UTC.
constexpr int64_t kWinterNanos = 1610712000LL * 1000000000;

TEST(TickCount, WrapsAt32Bits) {
    FrozenClock clock;
    ScopedHost use(clock);
    clock.millis = 0x100000005ull;
    EXPECT_EQ(GetTickCount(), 5u);
    clock.millis = 0xFFFFFFFFull;
    const DWORD before = GetTickCount();
    clock.millis += 10;
    EXPECT_EQ(static_cast<DWORD>(GetTickCount() - before), 10u);  // unsigned difference survives
}

TEST(CurrentTime, FollowsTheClockAndTheTimeZone) {
    FrozenClock clock;
    ScopedHost use(clock);
    ScopedTimeZone berlin("CET-1CEST,M3.5.0,M10.5.0/3");  // no tz database needed
    clock.nanos = kSummerNanos;

    SYSTEMTIME utc, local;
    GetSystemTime(&utc);
    GetLocalTime(&local);
    EXPECT_EQ(utc.wYear, 2021);
    EXPECT_EQ(utc.wMonth, 7);
    EXPECT_EQ(utc.wDay, 1);
    EXPECT_EQ(utc.wDayOfWeek, 4);  // Thursday
    EXPECT_EQ(utc.wHour, 12);
    EXPECT_EQ(utc.wMilliseconds, 250);
    EXPECT_EQ(local.wHour, 14);  // CEST
    EXPECT_EQ(local.wMinute, 0);
    EXPECT_EQ(local.wMilliseconds, 250);

    FILETIME now;
    GetSystemTimeAsFileTime(&now);
    EXPECT_EQ(Ticks(now), 116444736000000000ull + static_cast<uint64_t>(kSummerNanos / 100));
}

TEST(LocalFileTime, UsesTodaysOffsetForEveryMoment) {
    FrozenClock clock;
    ScopedHost use(clock);
    ScopedTimeZone berlin("CET-1CEST,M3.5.0,M10.5.0/3");       // no tz database needed
    const FILETIME january = FileTime(132553152000000000ull);  // 2021-01-17 00:00 UTC
    const uint64_t hour = 36000000000ull;

    // Windows shifts by the offset in force now, even for a winter moment.
    clock.nanos = kSummerNanos;
    FILETIME local, back;
    ASSERT_TRUE(FileTimeToLocalFileTime(&january, &local));
    EXPECT_EQ(Ticks(local) - Ticks(january), 2 * hour);
    ASSERT_TRUE(LocalFileTimeToFileTime(&local, &back));
    EXPECT_EQ(Ticks(back), Ticks(january));

    clock.nanos = kWinterNanos;
    ASSERT_TRUE(FileTimeToLocalFileTime(&january, &local));
    EXPECT_EQ(Ticks(local) - Ticks(january), hour);
}

TEST(LocalFileTime, RefusesToLeaveTheRange) {
    FrozenClock clock;
    ScopedHost use(clock);
    ScopedTimeZone east("JST-9");
    clock.nanos = kSummerNanos;
    FILETIME out{1, 2};
    const FILETIME zero{0, 0};
    SetLastError(0);
    EXPECT_FALSE(LocalFileTimeToFileTime(&zero, &out));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_PARAMETER));
    EXPECT_EQ(out.dwLowDateTime, 1u);
    const FILETIME top = FileTime(0x8000000000000000ull);
    EXPECT_FALSE(FileTimeToLocalFileTime(&top, &out));
}

struct Conversion {
    SYSTEMTIME in;
    uint64_t ticks;
    WORD day_of_week;
};

class ValidSystemTime : public testing::TestWithParam<Conversion> {};

TEST_P(ValidSystemTime, ConvertsBothWays) {
    const Conversion& c = GetParam();
    FILETIME ft{0xAAAAAAAA, 0xAAAAAAAA};
    ASSERT_TRUE(SystemTimeToFileTime(&c.in, &ft));
    EXPECT_EQ(Ticks(ft), c.ticks);
    SYSTEMTIME back;
    ASSERT_TRUE(FileTimeToSystemTime(&ft, &back));
    EXPECT_EQ(back.wYear, c.in.wYear);
    EXPECT_EQ(back.wMonth, c.in.wMonth);
    EXPECT_EQ(back.wDay, c.in.wDay);
    EXPECT_EQ(back.wHour, c.in.wHour);
    EXPECT_EQ(back.wMinute, c.in.wMinute);
    EXPECT_EQ(back.wSecond, c.in.wSecond);
    EXPECT_EQ(back.wMilliseconds, c.in.wMilliseconds);
    EXPECT_EQ(back.wDayOfWeek, c.day_of_week);
}

INSTANTIATE_TEST_SUITE_P(
    Recorded, ValidSystemTime,
    testing::Values(Conversion{Date(1601, 1, 1), 0, 1},
                    Conversion{Date(1970, 1, 1), 116444736000000000ull, 4},
                    Conversion{Date(1998, 3, 15, 12, 34, 56, 789), 125344388967890000ull, 0},
                    Conversion{Date(2000, 2, 29), 125962560000000000ull, 2},
                    Conversion{Date(2100, 2, 28, 23, 59, 59, 999), 157520159999990000ull, 0},
                    Conversion{Date(30827, 12, 31, 23, 59, 59, 999), 9223149887999990000ull, 5}));

class InvalidSystemTime : public testing::TestWithParam<SYSTEMTIME> {};

TEST_P(InvalidSystemTime, IsRefusedAndLeavesTheOutputAlone) {
    FILETIME ft{0xAAAAAAAA, 0xAAAAAAAA};
    SetLastError(0xDEADBEEF);
    EXPECT_FALSE(SystemTimeToFileTime(&GetParam(), &ft));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_PARAMETER));
    EXPECT_EQ(ft.dwLowDateTime, 0xAAAAAAAAu);
    EXPECT_EQ(ft.dwHighDateTime, 0xAAAAAAAAu);
}

INSTANTIATE_TEST_SUITE_P(OutOfRange, InvalidSystemTime,
                         testing::Values(Date(2001, 13, 1), Date(2001, 0, 1), Date(2001, 1, 0),
                                         Date(2001, 2, 30), Date(2001, 2, 29), Date(2100, 2, 29),
                                         Date(2001, 4, 31), Date(2001, 1, 1, 24),
                                         Date(2001, 1, 1, 0, 60), Date(2001, 1, 1, 0, 0, 60),
                                         Date(2001, 1, 1, 0, 0, 0, 1000),
                                         Date(1600, 12, 31, 23, 59, 59, 999), Date(30828, 1, 1)));

TEST(FileTimeToSystemTime, CoversTheWholeSignedRange) {
    SYSTEMTIME st;
    FILETIME ft = FileTime(0x7FFFFFFFFFFFFFFFull);
    ASSERT_TRUE(FileTimeToSystemTime(&ft, &st));
    EXPECT_EQ(st.wYear, 30828);
    EXPECT_EQ(st.wMonth, 9);
    EXPECT_EQ(st.wDay, 14);
    EXPECT_EQ(st.wHour, 2);
    EXPECT_EQ(st.wMinute, 48);
    EXPECT_EQ(st.wSecond, 5);
    EXPECT_EQ(st.wMilliseconds, 477);
    EXPECT_EQ(st.wDayOfWeek, 4);

    for (uint64_t bad : {0x8000000000000000ull, 0xFFFFFFFFFFFFFFFFull}) {
        ft = FileTime(bad);
        SYSTEMTIME untouched{};
        untouched.wYear = 77;
        SetLastError(0);
        EXPECT_FALSE(FileTimeToSystemTime(&ft, &untouched));
        EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_PARAMETER));
        EXPECT_EQ(untouched.wYear, 77);
    }
}

TEST(CivilTime, EveryDayOfFourCenturiesRoundTrips) {
    using namespace zq::platform::internal;
    int64_t expected_day = DaysSince1601(1999, 12, 25);
    unsigned expected_dow = 6;  // 1999-12-25 was a Saturday
    for (int i = 0; i < 146097; ++i) {
        const uint64_t ticks = static_cast<uint64_t>(expected_day) * kTicksPerDay;
        const SYSTEMTIME st = SystemTimeFromTicks(ticks);
        ASSERT_TRUE(IsValidDate(st)) << i;
        ASSERT_EQ(DaysSince1601(st.wYear, st.wMonth, st.wDay), expected_day);
        ASSERT_EQ(st.wDayOfWeek, expected_dow);
        ASSERT_EQ(DayOfWeek(st.wYear, st.wMonth, st.wDay), expected_dow);
        ++expected_day;
        expected_dow = (expected_dow + 1) % 7;
    }
}

TEST(CompareFileTime, OrdersAsUnsigned64BitNumbers) {
    const FILETIME low = FileTime(0x00000001FFFFFFFFull);
    const FILETIME high = FileTime(0x0000000200000000ull);
    const FILETIME top = FileTime(0xFFFFFFFF00000000ull);
    EXPECT_EQ(CompareFileTime(&low, &high), -1);
    EXPECT_EQ(CompareFileTime(&high, &low), 1);
    EXPECT_EQ(CompareFileTime(&high, &high), 0);
    EXPECT_EQ(CompareFileTime(&high, &top), -1);
}

}  // namespace
