#include <gtest/gtest.h>

#include <time.h>

#include <cstring>
#include <string>

#include "platform/posix/base/host.h"
#include "platform/posix/locale/locale_table.h"
#include "platform/win32.h"
#include "support/test_support.h"

namespace {

constexpr LCID kEnglish = 0x0409;
constexpr LCID kRussian = 0x0019;  // neutral sublanguage on purpose

SYSTEMTIME Time(WORD hour, WORD minute, WORD second) {
    SYSTEMTIME st{};
    st.wYear = 2002;
    st.wMonth = 5;
    st.wDay = 4;
    st.wHour = hour;
    st.wMinute = minute;
    st.wSecond = second;
    st.wMilliseconds = 22;
    return st;
}

SYSTEMTIME Day(WORD year, WORD month, WORD day) {
    SYSTEMTIME st{};
    st.wYear = year;
    st.wMonth = month;
    st.wDay = day;
    st.wDayOfWeek = 3;  // wrong on purpose: it is computed
    return st;
}

// Formats with a generous buffer; "<error N>" when the call fails.
std::string TimeText(LCID lcid, DWORD flags, const SYSTEMTIME& st, const char* format) {
    char buffer[128];
    SetLastError(0);
    const int n = GetTimeFormatA(lcid, flags, &st, format, buffer, sizeof buffer);
    if (n == 0)
        return "<error " + std::to_string(GetLastError()) + ">";
    EXPECT_EQ(static_cast<size_t>(n), std::strlen(buffer) + 1);
    return buffer;
}

std::string DateText(LCID lcid, DWORD flags, const SYSTEMTIME& st, const char* format) {
    char buffer[128];
    SetLastError(0);
    const int n = GetDateFormatA(lcid, flags, &st, format, buffer, sizeof buffer);
    if (n == 0)
        return "<error " + std::to_string(GetLastError()) + ">";
    EXPECT_EQ(static_cast<size_t>(n), std::strlen(buffer) + 1);
    return buffer;
}

const std::string kInvalidParameter = "<error 87>";
const std::string kInvalidFlags = "<error 1004>";

struct TimeCase {
    SYSTEMTIME time;
    DWORD flags;
    const char* format;
    const char* expected;
};

class TimePicture : public testing::TestWithParam<TimeCase> {};

TEST_P(TimePicture, FormatsLikeWindows) {
    const TimeCase& c = GetParam();
    EXPECT_EQ(TimeText(kEnglish, c.flags, c.time, c.format), c.expected) << c.format;
}

INSTANTIATE_TEST_SUITE_P(
    English, TimePicture,
    testing::Values(
        TimeCase{Time(8, 56, 13), TIME_FORCE24HOURFORMAT, "tt HH':'mm'@'ss", "AM 08:56@13"},
        TimeCase{Time(8, 56, 13), LOCALE_NOUSEROVERRIDE | TIME_NOMINUTESORSECONDS, nullptr, "8 AM"},
        TimeCase{Time(8, 56, 13), TIME_NOMINUTESORSECONDS, "m1s2m3s4", ""},
        TimeCase{Time(8, 56, 13), LOCALE_NOUSEROVERRIDE | TIME_NOSECONDS, nullptr, "8:56 AM"},
        TimeCase{Time(8, 56, 13), TIME_NOSECONDS, "h:m:s tt", "8:56 AM"},
        TimeCase{Time(8, 56, 13), TIME_NOSECONDS, "h.@:m.@:s.@:tt", "8.@:56AM"},
        TimeCase{Time(8, 56, 13), TIME_NOSECONDS, "s1s2s3", ""},
        TimeCase{Time(8, 56, 13), 0, "t/tt", "A/AM"}, TimeCase{Time(13, 56, 13), 0, "t/tt", "P/PM"},
        TimeCase{Time(13, 56, 13), TIME_NOTIMEMARKER, "h1t2tt3m", "156"},
        TimeCase{Time(13, 56, 13), TIME_NOTIMEMARKER, "hh:mm tt", "01:56"},
        TimeCase{Time(13, 56, 13), TIME_FORCE24HOURFORMAT, "h:m:s tt", "13:56:13 PM"},
        TimeCase{Time(13, 56, 13), TIME_FORCE24HOURFORMAT, "h:m:s", "13:56:13"},
        TimeCase{Time(14, 5, 3), 0, "h hh H HH m mm s ss t tt", "2 02 14 14 5 05 3 03 P PM"},
        TimeCase{Time(0, 5, 3), 0, "h/H/hh/HH", "12/0/12/00"},
        TimeCase{Time(0, 5, 3), 0, "h:m:s tt", "12:5:3 AM"},
        TimeCase{Time(8, 56, 13), 0, "h:hh:hhh H:HH:HHH m:mm:mmm M:MM:MMM s:ss:sss S:SS:SSS",
                 "8:08:08 8:08:08 56:56:56 M:MM:MMM 13:13:13 S:SS:SSS"},
        TimeCase{Time(8, 56, 13), 0, "h 'h' H 'H' HH 'HH' m 'm' s 's' t 't' tt 'tt'",
                 "8 h 8 H 08 HH 56 m 13 s A t AM tt"},
        TimeCase{Time(8, 56, 13), 0, "'''", "'"}, TimeCase{Time(8, 56, 13), 0, "''''", "'"},
        TimeCase{Time(8, 56, 13), 0, "''HHHHHH", "08"},
        TimeCase{Time(8, 56, 13), 0, "'''HHHHHH'", "'HHHHHH"},
        TimeCase{Time(8, 56, 13), 0, "'''HHHHHH", "'HHHHHH"},
        TimeCase{Time(8, 56, 13), TIME_NOTIMEMARKER, "'123'tt", ""},
        // The trace file's header picture.
        TimeCase{Time(7, 8, 9), 0, "hh:mm:ss tt", "07:08:09 AM"},
        TimeCase{Time(19, 8, 9), 0, "hh:mm:ss tt", "07:08:09 PM"},
        TimeCase{Time(12, 0, 0), 0, "hh:mm:ss tt", "12:00:00 PM"}));

TEST(GetTimeFormat, Errors) {
    SYSTEMTIME garbage;
    std::memset(&garbage, 2, sizeof garbage);
    EXPECT_EQ(TimeText(kEnglish, TIME_FORCE24HOURFORMAT, garbage, "tt HH"), kInvalidParameter);
    EXPECT_EQ(TimeText(kEnglish, 0, Time(25, 0, 0), "'123'tt"), kInvalidParameter);
    EXPECT_EQ(TimeText(kEnglish, LOCALE_NOUSEROVERRIDE, Time(8, 0, 0), "h"), kInvalidFlags);
    EXPECT_EQ(TimeText(kEnglish, 0x100, Time(8, 0, 0), "h"), kInvalidFlags);
    EXPECT_EQ(TimeText(0x9999, 0, Time(8, 0, 0), "h"), kInvalidParameter);

    SYSTEMTIME odd_date = Time(12, 56, 13);
    odd_date.wMonth = 60;  // the date is not looked at
    EXPECT_EQ(TimeText(kEnglish, 0, odd_date, "h:m:s"), "12:56:13");
}

TEST(GetTimeFormat, BufferRules) {
    const SYSTEMTIME st = Time(8, 56, 13);
    char buffer[8] = "text";
    EXPECT_EQ(GetTimeFormatA(kEnglish, 0, &st, "h", buffer, 0), 2);  // size only
    EXPECT_STREQ(buffer, "text");
    EXPECT_EQ(GetTimeFormatA(kEnglish, 0, &st, "tt HH':'mm", nullptr, 0), 9);
    SetLastError(0);
    EXPECT_EQ(GetTimeFormatA(kEnglish, 0, &st, "tt HH':'mm", buffer, 2), 0);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INSUFFICIENT_BUFFER));
    SetLastError(0);
    EXPECT_EQ(GetTimeFormatA(kEnglish, 0, &st, "h", nullptr, 5), 0);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_PARAMETER));
}

struct DateCase {
    SYSTEMTIME date;
    DWORD flags;
    const char* format;
    const char* expected;
};

class DatePicture : public testing::TestWithParam<DateCase> {};

TEST_P(DatePicture, FormatsLikeWindows) {
    const DateCase& c = GetParam();
    EXPECT_EQ(DateText(kEnglish, c.flags, c.date, c.format), c.expected)
        << (c.format ? c.format : "(default)");
}

INSTANTIATE_TEST_SUITE_P(
    English, DatePicture,
    testing::Values(DateCase{Day(2002, 5, 4), 0, "ddd',' MMM dd yy", "Sat, May 04 02"},
                    DateCase{Day(2002, 5, 4), 0, "ddd',' MMM dd ''''yy", "Sat, May 04 '02"},
                    DateCase{Day(2002, 5, 4), LOCALE_NOUSEROVERRIDE, nullptr, "5/4/02"},
                    DateCase{Day(2002, 5, 4), DATE_LONGDATE, nullptr, "Saturday, May 4, 2002"},
                    DateCase{Day(2002, 5, 4), DATE_YEARMONTH, nullptr, "May 2002"},
                    DateCase{Day(2002, 10, 23), 0, "dddd d MMMM yyyy", "Wednesday 23 October 2002"},
                    DateCase{Day(1601, 1, 1), 0, "dddd d MMMM yyyy", "Monday 1 January 1601"},
                    DateCase{Day(2005, 1, 9), 0, "y yy yyy yyyy yyyyy", "5 05 2005 2005 2005"},
                    DateCase{Day(2005, 1, 9), 0, "d dd ddd dddd ddddd", "9 09 Sun Sunday Sunday"},
                    DateCase{Day(2005, 1, 9), 0, "M MM MMM MMMM MMMMM", "1 01 Jan January January"},
                    DateCase{Day(2005, 1, 9), 0, "gg 'd' h:m",
                             "AD d h:m"},  // time letters are text here
                    // The trace file's header picture.
                    DateCase{Day(2026, 1, 5), 0, "MM/dd/yy", "01/05/26"},
                    DateCase{Day(2000, 12, 31), 0, "MM/dd/yy", "12/31/00"}));

TEST(GetDateFormat, Errors) {
    SYSTEMTIME garbage;
    std::memset(&garbage, 2, sizeof garbage);
    EXPECT_EQ(DateText(kEnglish, 0, garbage, "ddd"), kInvalidParameter);
    EXPECT_EQ(DateText(kEnglish, 0, Day(1600, 12, 31), "d"), kInvalidParameter);
    EXPECT_EQ(DateText(kEnglish, 0, Day(2001, 2, 29), "d"), kInvalidParameter);
    SYSTEMTIME bad_time = Day(2002, 5, 4);
    bad_time.wHour = 36;  // the time of day is not looked at
    EXPECT_EQ(DateText(kEnglish, 0, bad_time, "dd"), "04");

    const SYSTEMTIME st = Day(2002, 5, 4);
    EXPECT_EQ(DateText(kEnglish, LOCALE_NOUSEROVERRIDE, st, "dd"), kInvalidFlags);
    EXPECT_EQ(DateText(kEnglish, DATE_LONGDATE, st, "dd"), kInvalidFlags);
    EXPECT_EQ(DateText(kEnglish, DATE_YEARMONTH | LOCALE_NOUSEROVERRIDE, st, "dd"), kInvalidFlags);
    EXPECT_EQ(DateText(kEnglish, DATE_LONGDATE | DATE_SHORTDATE, st, nullptr), kInvalidFlags);
    EXPECT_EQ(DateText(kEnglish, DATE_LTRREADING | DATE_RTLREADING, st, nullptr), kInvalidFlags);

    char buffer[4];
    EXPECT_EQ(GetDateFormatA(kEnglish, 0, &st, "ddd',' MMM dd ''''yy", nullptr, 0), 16);
    SetLastError(0);
    EXPECT_EQ(GetDateFormatA(kEnglish, 0, &st, "ddd',' MMM dd ''''yy", buffer, 2), 0);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INSUFFICIENT_BUFFER));
    SetLastError(0);
    EXPECT_EQ(GetDateFormatA(kEnglish, 0, nullptr, "d", nullptr, 4), 0);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_PARAMETER));
}

std::u16string DateW(LCID lcid, const SYSTEMTIME& st, const char16_t* format) {
    WCHAR buffer[64];
    const int n = GetDateFormatW(lcid, 0, &st, reinterpret_cast<LPCWSTR>(format), buffer, 64);
    return n > 0 ? std::u16string(reinterpret_cast<const char16_t*>(buffer),
                                  static_cast<size_t>(n - 1))
                 : u"<error>";
}

TEST(GetDateFormat, GenitiveMonthNextToADayNumber) {
    const SYSTEMTIME st = Day(2002, 1, 4);
    const std::u16string month = u"январь";
    const std::u16string genitive = u"января";
    const std::u16string day = u"пт";
    EXPECT_EQ(DateW(kRussian, st, u"ddMMMM"), u"04" + genitive);
    EXPECT_EQ(DateW(kRussian, st, u"MMMM"), month);
    EXPECT_EQ(DateW(kRussian, st, u"dd MMMMddd dd"), u"04 " + genitive + day + u" 04");
    EXPECT_EQ(DateW(kRussian, st, u"MMMMddd dd"), month + day + u" 04");
    EXPECT_EQ(DateW(kRussian, st, u"MMMMdd ddd"), genitive + u"04 " + day);
    EXPECT_EQ(DateW(kRussian, st, u"dd dddMMMM"), u"04 " + day + month);
    EXPECT_EQ(DateW(kRussian, st, u"dd dddMMMM ddd MMMMdd"),
              u"04 " + day + month + u" " + day + u" " + genitive + u"04");
    EXPECT_EQ(DateW(kRussian, st, u"ddd',' MMMM dd"), day + u", " + genitive + u" 04");
}

TEST(GetDateFormat, AnsiTextIsInTheLocalesCodePage) {
    const SYSTEMTIME st = Day(2002, 1, 4);
    EXPECT_EQ(DateText(kRussian, 0, st, "MMMM"), "\xFF\xED\xE2\xE0\xF0\xFC");
    EXPECT_EQ(DateText(kRussian, LOCALE_USE_CP_ACP, st, "MMMM"), "??????");
    EXPECT_EQ(DateText(0x0407, 0, Day(2002, 3, 1), "d. MMMM yyyy"), "1. M\xE4rz 2002");
}

TEST(GetDateFormat, NullMeansNow) {
    using namespace zq::platform::internal;
    class Frozen : public ForwardingHost {
    public:
        Frozen() : ForwardingHost(SystemHost()) {}
        int64_t RealTimeNanos() override {
            return 1767625689LL * 1000000000;
        }  // 2026-01-05 15:08:09 UTC
    } frozen;
    ScopedHost use(frozen);
    char date[64], time[64];
    {
        zq::test::ScopedEnvironmentVariable utc("TZ", "UTC0");
        tzset();
        ASSERT_GT(GetDateFormatA(LOCALE_USER_DEFAULT, 0, nullptr, "MM/dd/yy", date, 64), 0);
        ASSERT_GT(GetTimeFormatA(LOCALE_USER_DEFAULT, 0, nullptr, "hh:mm:ss tt", time, 64), 0);
    }
    tzset();
    EXPECT_STREQ(date, "01/05/26");
    EXPECT_STREQ(time, "03:08:09 PM");
}

// Every supported locale formats with its own pictures, and the flags it
// reports agree with what it prints.
TEST(LocalePictures, AgreeWithTheLocaleFlags) {
    int locales = 0;
    for (LCID lcid = 1; lcid < 0x2000; ++lcid) {
        if (!IsValidLocale(lcid, LCID_SUPPORTED))
            continue;
        ++locales;
        WCHAR buffer[128];
        char flag[8];
        const SYSTEMTIME st = Time(13, 5, 9);
        ASSERT_GT(GetTimeFormatW(lcid, 0, &st, nullptr, buffer, 128), 0) << std::hex << lcid;
        ASSERT_GT(GetDateFormatW(lcid, DATE_LONGDATE, &st, nullptr, buffer, 128), 0);
        ASSERT_GT(GetDateFormatW(lcid, 0, &st, nullptr, buffer, 128), 0);
        ASSERT_GT(GetLocaleInfoA(lcid, LOCALE_ITIME, flag, 8), 0);
        const std::string hours =
            TimeText(lcid, TIME_NOMINUTESORSECONDS | TIME_NOTIMEMARKER, st, nullptr);
        EXPECT_NE(hours.find(flag[0] == '1' ? "13" : "1"), std::string::npos) << std::hex << lcid;
        if (flag[0] == '1') {
            EXPECT_EQ(hours.find("01"), std::string::npos);
        }
    }
    EXPECT_GE(locales, 30);
}

}  // namespace
