#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <string>

#include "platform/posix/locale/collation.h"
#include "platform/posix/locale/locale_table.h"
#include "platform/win32.h"
#include "support/test_support.h"

namespace {

using zq::test::ScopedEnvironmentVariable;

// Runs a test in a given default locale (and so ANSI code page).
class ScopedLocale {
public:
    explicit ScopedLocale(const char* lcid) : variable_("ZQ_LCID", lcid) {
        zq::platform::internal::ReloadLocaleDefaultsForTesting();
    }
    ~ScopedLocale() { zq::platform::internal::ReloadLocaleDefaultsForTesting(); }

private:
    ScopedEnvironmentVariable variable_;
};

int Sign(int value) {
    return (value > 0) - (value < 0);
}

TEST(Lstr, LengthCopyAndConcatenate) {
    EXPECT_EQ(lstrlenA(nullptr), 0);
    EXPECT_EQ(lstrlenA("abc"), 3);

    char buffer[8];
    std::memset(buffer, '~', sizeof buffer);
    EXPECT_EQ(lstrcpynA(buffer, "abcdef", 4), buffer);
    EXPECT_STREQ(buffer, "abc");
    EXPECT_EQ(buffer[4], '~');
    EXPECT_EQ(lstrcpynA(buffer, "xy", 8), buffer);
    EXPECT_STREQ(buffer, "xy");
    std::memset(buffer, '~', sizeof buffer);
    EXPECT_EQ(lstrcpynA(buffer, "abc", 1), buffer);
    EXPECT_EQ(buffer[0], '\0');
    EXPECT_EQ(lstrcpynA(buffer, "abc", 0), buffer);
    EXPECT_EQ(buffer[1], '~');

    EXPECT_STREQ(lstrcatA(lstrcpyA(buffer, "ab"), "cd"), "abcd");
    EXPECT_EQ(lstrcpyA(buffer, nullptr), nullptr);
    EXPECT_EQ(lstrcatA(nullptr, "x"), nullptr);
    EXPECT_EQ(lstrcpynA(buffer, nullptr, 4), nullptr);
    EXPECT_STREQ(buffer, "abcd");
}

struct Ordering {
    const char* a;
    const char* b;
    int exact;   // lstrcmpA
    int folded;  // lstrcmpiA
};

class Collation : public testing::TestWithParam<Ordering> {};

TEST_P(Collation, OrdersLikeWindowsWordSort) {
    ScopedLocale english("0409");
    const Ordering& o = GetParam();
    EXPECT_EQ(Sign(lstrcmpA(o.a, o.b)), o.exact) << o.a << " vs " << o.b;
    EXPECT_EQ(Sign(lstrcmpA(o.b, o.a)), -o.exact);
    EXPECT_EQ(Sign(lstrcmpiA(o.a, o.b)), o.folded);
    EXPECT_EQ(Sign(lstrcmpiA(o.b, o.a)), -o.folded);
}

INSTANTIATE_TEST_SUITE_P(
    English, Collation,
    testing::Values(Ordering{"a", "a", 0, 0}, Ordering{"a", "A", -1, 0}, Ordering{"a", "B", -1, -1},
                    Ordering{"Ab", "AB", -1, 0}, Ordering{"abc", "abd", -1, -1},
                    Ordering{"ab", "abc", -1, -1}, Ordering{"9", "a", -1, -1},
                    Ordering{"_x", "a", -1, -1}, Ordering{"", "a", -1, -1},
                    Ordering{"e", "\xE9", -1, -1},             // e before é
                    Ordering{"\xE9", "f", -1, -1},             // é before f
                    Ordering{"\xC9T\xC9", "\xE9t\xE9", 1, 0},  // ÉTÉ / été: case only
                    Ordering{"coop", "co-op", -1, -1},         // the hyphen weighs last
                    Ordering{"Section 2", "section 10", 1, 1}));

TEST(Collation, NullSortsFirst) {
    EXPECT_EQ(lstrcmpA(nullptr, nullptr), 0);
    EXPECT_LT(lstrcmpA(nullptr, ""), 0);
    EXPECT_GT(lstrcmpiA("", nullptr), 0);
}

TEST(Collation, FollowsTheUserLocale) {
    // Danish sorts "aa" as å, after z; English does not.
    {
        ScopedLocale danish("0406");
        EXPECT_GT(lstrcmpiA("aa", "z"), 0);
    }
    ScopedLocale english("0409");
    EXPECT_LT(lstrcmpiA("aa", "z"), 0);
}

TEST(CaseMapping, Windows1252) {
    ScopedLocale english("0409");
    char text[] =
        "Stra\xDF"
        "e \xE9t\xE9 \xFF \x9A \xB5 ok";
    EXPECT_EQ(CharUpperA(text), text);
    EXPECT_STREQ(text,
                 "STRA\xDF"
                 "E \xC9T\xC9 \x9F \x8A \xB5 OK");  // ß and µ have no upper case here
    EXPECT_STREQ(CharLowerA(text),
                 "stra\xDF"
                 "e \xE9t\xE9 \xFF \x9A \xB5 ok");

    char buffer[] = "abc\0def";
    EXPECT_EQ(CharUpperBuffA(buffer, 7), 7u);
    EXPECT_EQ(std::memcmp(buffer, "ABC\0DEF", 8), 0);
    EXPECT_EQ(CharLowerBuffA(buffer, 2), 2u);
    EXPECT_EQ(std::memcmp(buffer, "abC\0DEF", 8), 0);
    EXPECT_EQ(CharUpperBuffA(nullptr, 3), 0u);
}

TEST(CaseMapping, SingleCharacterInThePointer) {
    ScopedLocale english("0409");
    auto upper = reinterpret_cast<uintptr_t>(CharUpperA(reinterpret_cast<LPSTR>(uintptr_t{0xE9})));
    EXPECT_EQ(upper, 0xC9u);
    auto lower = reinterpret_cast<uintptr_t>(CharLowerA(reinterpret_cast<LPSTR>(uintptr_t{'Q'})));
    EXPECT_EQ(lower, static_cast<uintptr_t>('q'));
}

TEST(CaseMapping, Windows1251) {
    ScopedLocale russian("0419");
    ASSERT_EQ(GetACP(), 1251u);
    char text[] = "\xEF\xF0\xE8\xE2\xE5\xF2";  // привет
    EXPECT_STREQ(CharUpperA(text), "\xCF\xD0\xC8\xC2\xC5\xD2");
    EXPECT_TRUE(IsCharAlphaA('\xEF'));
    EXPECT_TRUE(IsCharUpperA('\xCF'));
}

TEST(CharacterClasses, Windows1252) {
    ScopedLocale english("0409");
    EXPECT_TRUE(IsCharAlphaA('a'));
    EXPECT_TRUE(IsCharAlphaA('\xE9'));
    EXPECT_FALSE(IsCharAlphaA('1'));
    EXPECT_TRUE(IsCharAlphaNumericA('1'));
    EXPECT_FALSE(IsCharAlphaNumericA('-'));
    EXPECT_TRUE(IsCharUpperA('\xC9'));
    EXPECT_FALSE(IsCharUpperA('\xE9'));
    EXPECT_TRUE(IsCharLowerA('\xDF'));
    EXPECT_FALSE(IsCharLowerA('\xD7'));  // ×
}

TEST(CharNextPrev, SingleByte) {
    ScopedLocale english("0409");
    const char text[] = "a\x93z";
    EXPECT_EQ(CharNextA(text), text + 1);
    EXPECT_EQ(CharNextA(text + 1), text + 2);
    EXPECT_EQ(CharNextA(text + 3), text + 3);  // stays on the terminator
    EXPECT_EQ(CharPrevA(text, text + 3), text + 2);
    EXPECT_EQ(CharPrevA(text, text), text);
}

TEST(CharNextPrev, DoubleByte) {
    ScopedLocale japanese("0411");
    ASSERT_EQ(GetACP(), 932u);
    const char text[] =
        "a\x93\xFA"
        "b";  // a 日 b
    EXPECT_TRUE(IsDBCSLeadByte(0x93));
    EXPECT_EQ(CharNextA(text + 1), text + 3);
    EXPECT_EQ(CharPrevA(text, text + 3), text + 1);
    EXPECT_EQ(CharPrevA(text, text + 4), text + 3);
    char mixed[] =
        "a\x93"
        "a";  // trail byte 'a' must not change case
    CharUpperA(mixed);
    EXPECT_STREQ(mixed,
                 "A\x93"
                 "a");
    const char cut[] = "\x93";  // a lead byte before the terminator
    EXPECT_EQ(CharNextA(cut), cut + 1);
}

}  // namespace

namespace {

// Printable ASCII takes a table-driven path; it must agree with ICU.
TEST(Collation, AsciiShortcutAgreesWithIcu) {
    using zq::platform::internal::CollateAnsi;
    using zq::platform::internal::CollateAnsiWithIcu;
    const std::string alphabet = "aAbBzZ09 -'_.,\\~!{}@#$%^&*()[]+=:;\"<>/?|`";
    uint32_t seed = 12345;
    auto next = [&seed] {
        seed = seed * 1103515245u + 12345u;
        return (seed >> 16) & 0x7FFF;
    };
    for (const char* lcid : {"0409", "0407", "040C", "0411", "0419"}) {
        ScopedLocale locale(lcid);
        for (int n = 0; n < 3000; ++n) {
            std::string a, b;
            const size_t length = next() % 6;
            for (size_t i = 0; i < length; ++i)
                a += alphabet[next() % alphabet.size()];
            b = a;
            // Mostly near misses: change, drop or add one character.
            const unsigned what = next() % 4;
            if (what == 0)
                b = "";
            const size_t more = next() % 3;
            for (size_t i = 0; i < more; ++i)
                b += alphabet[next() % alphabet.size()];
            if (what == 1 && !b.empty())
                b[next() % b.size()] = alphabet[next() % alphabet.size()];
            for (bool ignore_case : {false, true}) {
                const LCID id = GetUserDefaultLCID();
                ASSERT_EQ(Sign(CollateAnsi(a, b, ignore_case)),
                          Sign(CollateAnsiWithIcu(id, a, b, ignore_case)))
                    << lcid << " \"" << a << "\" vs \"" << b << "\" ignore_case=" << ignore_case;
            }
        }
    }
}

}  // namespace
