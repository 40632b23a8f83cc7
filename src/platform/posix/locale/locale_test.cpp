#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <thread>

#include "platform/posix/locale/locale_data.h"
#include "platform/posix/locale/locale_table.h"
#include "platform/posix/locale/picture.h"
#include "platform/win32.h"
#include "support/test_support.h"

namespace {

using zq::platform::internal::LcidFromPosixLocale;
using zq::platform::internal::PictureFromIcuPattern;
using zq::platform::internal::ReloadLocaleDefaultsForTesting;
using zq::platform::internal::TokenizePicture;
using zq::test::ScopedEnvironmentVariable;

// The environment that decides the default locale, for one test.
class ScopedLocaleEnvironment {
public:
    ScopedLocaleEnvironment(const char* zq_lcid, const char* lc_all, const char* lang)
        : zq_lcid_("ZQ_LCID", zq_lcid),
          lc_all_("LC_ALL", lc_all),
          lc_time_("LC_TIME", nullptr),
          lang_("LANG", lang) {
        ReloadLocaleDefaultsForTesting();
    }
    ~ScopedLocaleEnvironment() { ReloadLocaleDefaultsForTesting(); }

private:
    ScopedEnvironmentVariable zq_lcid_, lc_all_, lc_time_, lang_;
};

std::string Info(LCID lcid, LCTYPE type) {
    char buffer[256];
    SetLastError(0);
    const int n = GetLocaleInfoA(lcid, type, buffer, sizeof buffer);
    if (n == 0)
        return "<error " + std::to_string(GetLastError()) + ">";
    EXPECT_EQ(static_cast<size_t>(n), std::strlen(buffer) + 1);
    return buffer;
}

std::u16string InfoW(LCID lcid, LCTYPE type) {
    WCHAR buffer[256];
    const int n = GetLocaleInfoW(lcid, type, buffer, 256);
    return n > 0 ? std::u16string(reinterpret_cast<const char16_t*>(buffer),
                                  static_cast<size_t>(n - 1))
                 : u"<error>";
}

TEST(DefaultLocale, ComesFromTheEnvironment) {
    {
        ScopedLocaleEnvironment env("0407", "fr_FR.UTF-8", nullptr);
        EXPECT_EQ(GetUserDefaultLCID(), 0x0407u);
        EXPECT_EQ(GetSystemDefaultLangID(), 0x0407);
        EXPECT_EQ(GetThreadLocale(), 0x0407u);
    }
    {
        ScopedLocaleEnvironment env("0x0C0C", nullptr, nullptr);
        EXPECT_EQ(GetUserDefaultLCID(), 0x0C0Cu);
    }
    {
        ScopedLocaleEnvironment env("bogus", "ru_RU.UTF-8", "de_DE.UTF-8");
        EXPECT_EQ(GetUserDefaultLCID(), 0x0419u);
        EXPECT_EQ(GetACP(), 1251u);
        EXPECT_EQ(GetOEMCP(), 866u);
    }
    {
        ScopedLocaleEnvironment env(nullptr, nullptr, "ja_JP.eucJP");
        EXPECT_EQ(GetUserDefaultLCID(), 0x0411u);
        EXPECT_EQ(GetACP(), 932u);
    }
    {
        ScopedLocaleEnvironment env(nullptr, "C", "de_DE.UTF-8");
        EXPECT_EQ(GetUserDefaultLCID(), 0x0409u);
        EXPECT_EQ(GetACP(), 1252u);
        EXPECT_EQ(GetOEMCP(), 437u);
    }
}

TEST(DefaultLocale, PosixNames) {
    EXPECT_EQ(LcidFromPosixLocale("de_DE.UTF-8"), 0x0407u);
    EXPECT_EQ(LcidFromPosixLocale("de_AT@euro"), 0x0C07u);
    EXPECT_EQ(LcidFromPosixLocale("de"), 0x0407u);
    EXPECT_EQ(LcidFromPosixLocale("fr-CA"), 0x0C0Cu);
    EXPECT_EQ(LcidFromPosixLocale("en_ZA.UTF-8"), 0x0409u);  // known language, other country
    EXPECT_EQ(LcidFromPosixLocale("C.UTF-8"), 0u);
    EXPECT_EQ(LcidFromPosixLocale("POSIX"), 0u);
    EXPECT_EQ(LcidFromPosixLocale("xx_YY"), 0u);
}

TEST(ThreadLocale, IsPerThread) {
    ScopedLocaleEnvironment env("0409", nullptr, nullptr);
    EXPECT_TRUE(SetThreadLocale(0x0407));
    EXPECT_EQ(GetThreadLocale(), 0x0407u);
    LCID other = 0;
    std::thread([&] { other = GetThreadLocale(); }).join();
    EXPECT_EQ(other, 0x0409u);
    EXPECT_FALSE(SetThreadLocale(0x9999));
    EXPECT_TRUE(SetThreadLocale(0x0409));
}

TEST(IsValidLocale, NamesOnlyRealLocales) {
    EXPECT_TRUE(IsValidLocale(0x0409, LCID_SUPPORTED));
    EXPECT_TRUE(IsValidLocale(0x0C0C, LCID_INSTALLED));
    EXPECT_FALSE(IsValidLocale(0x0019, LCID_SUPPORTED));  // neutral: resolves, but is no locale
    EXPECT_FALSE(IsValidLocale(LOCALE_USER_DEFAULT, LCID_SUPPORTED));
    EXPECT_FALSE(IsValidLocale(0x9999, LCID_SUPPORTED));
    EXPECT_FALSE(IsValidLocale(0x0409, 0));
}

TEST(GetLocaleInfo, IdentifiersThatResolve) {
    ScopedLocaleEnvironment env("0407", nullptr, nullptr);
    EXPECT_EQ(Info(LOCALE_USER_DEFAULT, LOCALE_SABBREVLANGNAME), "DEU");
    EXPECT_EQ(Info(LOCALE_SYSTEM_DEFAULT, LOCALE_SABBREVLANGNAME), "DEU");
    EXPECT_EQ(Info(LOCALE_NEUTRAL, LOCALE_SABBREVLANGNAME), "DEU");
    EXPECT_EQ(Info(0x0019, LOCALE_SABBREVLANGNAME), "RUS");
    EXPECT_EQ(Info(0x000C, LOCALE_SABBREVLANGNAME), "FRA");
    EXPECT_EQ(Info(0x10407, LOCALE_SABBREVLANGNAME), "DEU");  // sort id ignored
    EXPECT_EQ(Info(0x9999, LOCALE_SABBREVLANGNAME), "<error 87>");
    EXPECT_EQ(Info(0x0409, 0x7777), "<error 1004>");
}

TEST(GetLocaleInfo, NumbersAndFlags) {
    EXPECT_EQ(Info(0x0C0C, LOCALE_ILANGUAGE), "0c0c");
    EXPECT_EQ(Info(0x0809, LOCALE_ICOUNTRY), "44");
    EXPECT_EQ(Info(0x0407, LOCALE_IDEFAULTCODEPAGE), "850");

    DWORD number = 0;
    EXPECT_EQ(GetLocaleInfoA(0x0C0C, LOCALE_ILANGUAGE | LOCALE_RETURN_NUMBER,
                             reinterpret_cast<LPSTR>(&number), sizeof number),
              4);
    EXPECT_EQ(number, 0x0C0Cu);
    EXPECT_EQ(GetLocaleInfoW(0x0411, LOCALE_IDEFAULTANSICODEPAGE | LOCALE_RETURN_NUMBER,
                             reinterpret_cast<LPWSTR>(&number), 2),
              2);
    EXPECT_EQ(number, 932u);
    EXPECT_EQ(Info(0x0409, LOCALE_SMONTHNAME1 | LOCALE_RETURN_NUMBER), "<error 1004>");
    EXPECT_EQ(Info(0x0409, LOCALE_SDAYNAME1 | LOCALE_RETURN_GENITIVE_NAMES), "<error 1004>");
    EXPECT_EQ(InfoW(0x0419, LOCALE_SMONTHNAME1 | LOCALE_RETURN_GENITIVE_NAMES), u"января");
    EXPECT_EQ(InfoW(0x0419, LOCALE_SMONTHNAME1), u"январь");
    EXPECT_EQ(Info(0x0409, LOCALE_SMONTHNAME1 | LOCALE_NOUSEROVERRIDE), "January");
}

TEST(GetLocaleInfo, BufferRules) {
    char buffer[16];
    std::memset(buffer, '~', sizeof buffer);
    EXPECT_EQ(GetLocaleInfoA(0x0409, LOCALE_SMONTHNAME9, nullptr, 0), 10);
    SetLastError(0);
    EXPECT_EQ(GetLocaleInfoA(0x0409, LOCALE_SMONTHNAME9, buffer, 5), 0);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INSUFFICIENT_BUFFER));
    EXPECT_EQ(std::string(buffer, 6), "Septe~");
    EXPECT_EQ(GetLocaleInfoA(0x0409, LOCALE_SMONTHNAME9, buffer, 10), 10);
    EXPECT_EQ(std::string(buffer, 11), std::string("September\0~", 11));
    SetLastError(0);
    EXPECT_EQ(GetLocaleInfoA(0x0409, LOCALE_SMONTHNAME9, nullptr, 5), 0);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_PARAMETER));
    EXPECT_EQ(GetLocaleInfoA(0x0409, LOCALE_SMONTHNAME9, buffer, -1), 0);
}

struct Field {
    LCID lcid;
    LCTYPE type;
    const char* value;
};

class LocaleField : public testing::TestWithParam<Field> {};

TEST_P(LocaleField, HasItsValue) {
    EXPECT_EQ(Info(GetParam().lcid, GetParam().type), GetParam().value)
        << std::hex << GetParam().lcid << " " << GetParam().type;
}

INSTANTIATE_TEST_SUITE_P(
    Pictures, LocaleField,
    testing::Values(Field{0x0409, LOCALE_SSHORTDATE, "M/d/yy"},
                    Field{0x0409, LOCALE_SLONGDATE, "dddd, MMMM d, yyyy"},
                    Field{0x0409, LOCALE_STIMEFORMAT, "h:mm:ss tt"},
                    Field{0x0409, LOCALE_SYEARMONTH, "MMMM yyyy"}, Field{0x0409, LOCALE_IDATE, "0"},
                    Field{0x0409, LOCALE_ICENTURY, "0"}, Field{0x0409, LOCALE_IDAYLZERO, "0"},
                    Field{0x0409, LOCALE_ITIMEMARKPOSN, "0"},
                    Field{0x0809, LOCALE_SSHORTDATE, "dd/MM/yyyy"},
                    Field{0x0809, LOCALE_IDATE, "1"}, Field{0x0809, LOCALE_ICENTURY, "1"},
                    Field{0x0407, LOCALE_SSHORTDATE, "dd.MM.yy"},
                    Field{0x0407, LOCALE_SLONGDATE, "dddd, d. MMMM yyyy"},
                    Field{0x0407, LOCALE_STIMEFORMAT, "HH:mm:ss"},
                    Field{0x0411, LOCALE_SSHORTDATE, "yyyy/MM/dd"},
                    Field{0x0411, LOCALE_IDATE, "2"}, Field{0x0C0C, LOCALE_STIME, " 'h' "},
                    Field{0x0C0C, LOCALE_STIMEFORMAT, "HH 'h' mm 'min' ss 's'"},
                    Field{0x0C0A, LOCALE_SLONGDATE, "dddd, d 'de' MMMM 'de' yyyy"}));

INSTANTIATE_TEST_SUITE_P(
    NumbersAndNames, LocaleField,
    testing::Values(
        Field{0x0409, LOCALE_SDECIMAL, "."}, Field{0x0409, LOCALE_STHOUSAND, ","},
        Field{0x0407, LOCALE_SDECIMAL, ","}, Field{0x0407, LOCALE_SLIST, ";"},
        Field{0x040C, LOCALE_STHOUSAND, "\xA0"}, Field{0x0409, LOCALE_SGROUPING, "3;0"},
        Field{0x0409, LOCALE_SCURRENCY, "$"}, Field{0x0407, LOCALE_SCURRENCY, "\x80"},
        Field{0x0409, LOCALE_SINTLSYMBOL, "USD"}, Field{0x0411, LOCALE_ICURRDIGITS, "0"},
        Field{0x0409, LOCALE_ICURRENCY, "0"}, Field{0x0407, LOCALE_ICURRENCY, "3"},
        Field{0x0409, LOCALE_IMEASURE, "1"}, Field{0x0407, LOCALE_IMEASURE, "0"},
        Field{0x0409, LOCALE_IFIRSTDAYOFWEEK, "6"}, Field{0x0407, LOCALE_IFIRSTDAYOFWEEK, "0"},
        Field{0x0407, LOCALE_IFIRSTWEEKOFYEAR, "2"}, Field{0x0409, LOCALE_SABBREVCTRYNAME, "USA"},
        Field{0x0407, LOCALE_SISO639LANGNAME, "de"}, Field{0x0407, LOCALE_SISO3166CTRYNAME, "DE"},
        Field{0x0409, LOCALE_SDAYNAME1, "Monday"}, Field{0x0409, LOCALE_SDAYNAME7, "Sunday"},
        Field{0x0409, LOCALE_SMONTHNAME13, ""}, Field{0x040A, LOCALE_SLANGUAGE, "Spanish (Spain)"},
        Field{0x040A, LOCALE_SABBREVLANGNAME, "ESP"},
        Field{0x0409, LOCALE_SENGCURRNAME, "US Dollar"}));

TEST(GetLocaleInfo, AnsiCodePageOfTheLocaleOrTheSystem) {
    EXPECT_EQ(Info(0x0411, LOCALE_SMONTHNAME1), "1\x8C\x8E");
    EXPECT_EQ(Info(0x0411, LOCALE_SMONTHNAME1 | LOCALE_USE_CP_ACP), "1?");
    EXPECT_EQ(Info(0x0419, LOCALE_SMONTHNAME1 | LOCALE_USE_CP_ACP), "??????");
}

struct PatternCase {
    const char16_t* icu;
    const char16_t* windows;
};

class IcuPattern : public testing::TestWithParam<PatternCase> {};

TEST_P(IcuPattern, BecomesAWindowsPicture) {
    EXPECT_EQ(PictureFromIcuPattern(GetParam().icu), std::u16string(GetParam().windows));
}

INSTANTIATE_TEST_SUITE_P(
    Patterns, IcuPattern,
    testing::Values(
        PatternCase{u"EEEE, MMMM d, y", u"dddd, MMMM d, yyyy"}, PatternCase{u"M/d/yy", u"M/d/yy"},
        PatternCase{u"h:mm:ss\u202Fa", u"h:mm:ss tt"},
        PatternCase{u"HH 'h' mm 'min' ss 's'", u"HH 'h' mm 'min' ss 's'"},
        PatternCase{u"d 'de' MMMM 'de' y", u"d 'de' MMMM 'de' yyyy"},
        PatternCase{u"H:mm:ss (zzzz)", u"H:mm:ss"}, PatternCase{u"h:mm:ss a z", u"h:mm:ss tt"},
        PatternCase{u"y\u5E74M\u6708d\u65E5EEEE", u"yyyy\u5E74M\u6708d\u65E5dddd"},
        PatternCase{u"h 'o''clock' a", u"h 'o''clock' tt"},
        PatternCase{u"EEEE, d MMMM y '\u0433'.", u"dddd, d MMMM yyyy \u0433."},
        PatternCase{u"LLLL y G", u"MMMM yyyy gg"}, PatternCase{u"HH.mm.ss.SSS", u"HH.mm.ss."}));

TEST(Picture, QuotesAndRuns) {
    auto tokens = TokenizePicture(u"dd'd''x'''y MMM'", zq::platform::internal::kDateLetters);
    ASSERT_EQ(tokens.size(), 6u);
    EXPECT_TRUE(tokens[0].is_field);
    EXPECT_EQ(tokens[0].count, 2u);
    EXPECT_EQ(tokens[1].text, u"d'x'");
    EXPECT_EQ(tokens[1].raw, u"'d''x'''");
    EXPECT_EQ(tokens[2].letter, u'y');
    EXPECT_EQ(tokens[3].text, u" ");
    EXPECT_EQ(tokens[4].count, 3u);
    EXPECT_EQ(tokens[5].text, u"");  // an unclosed quote runs to the end
    EXPECT_EQ(tokens[5].raw, u"'");
    auto tail = TokenizePicture(u"M'abc", zq::platform::internal::kDateLetters);
    ASSERT_EQ(tail.size(), 2u);
    EXPECT_EQ(tail[1].text, u"abc");
}

}  // namespace
