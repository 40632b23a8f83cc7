#include "console.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using zq::app::LibraryStatus;
using zq::app::LocalStatus;
using zq::app::Pad;
using zq::app::ParseInteger;
using zq::app::ParseNumber;
using zq::app::ToAnsi;
using zq::app::ToUtf8;
using zq::app::Win32Status;

struct NumberCase {
    const char* text;
    bool ok;
    DWORD value;
};

class ParseNumberTest : public testing::TestWithParam<NumberCase> {};

TEST_P(ParseNumberTest, TakesDecimalAndHexWithin32Bits) {
    const NumberCase& c = GetParam();
    DWORD value = 0xCCCCCCCC;
    EXPECT_EQ(ParseNumber(c.text, value), c.ok) << c.text;
    EXPECT_EQ(value, c.ok ? c.value : 0xCCCCCCCCu) << c.text;
}

INSTANTIATE_TEST_SUITE_P(
    Cases, ParseNumberTest,
    testing::Values(NumberCase{"0", true, 0}, NumberCase{"4294967295", true, 0xFFFFFFFF},
                    NumberCase{"0x1F", true, 31}, NumberCase{"0XffffFFFF", true, 0xFFFFFFFF},
                    NumberCase{"007", true, 7}, NumberCase{"4294967296", false, 0},
                    NumberCase{"0x100000000", false, 0}, NumberCase{"0x", false, 0},
                    NumberCase{"", false, 0}, NumberCase{"-1", false, 0},
                    NumberCase{"12a", false, 0}, NumberCase{" 1", false, 0},
                    NumberCase{"0x-1", false, 0}));

TEST(ParseInteger, TakesASignedDecimalWithin32Bits) {
    int value = 99;
    EXPECT_TRUE(ParseInteger("+5", value));
    EXPECT_EQ(value, 5);
    EXPECT_TRUE(ParseInteger("-2147483648", value));
    EXPECT_EQ(value, -2147483647 - 1);
    value = 99;
    for (const char* bad : {"2147483648", "+", "", "-", "1.5", "0x10", "+-1"}) {
        EXPECT_FALSE(ParseInteger(bad, value)) << bad;
        EXPECT_EQ(value, 99) << bad;
    }
}

TEST(CodePage, TurnsTerminalTextIntoTheLibrarysAndBack) {
    EXPECT_EQ(ToAnsi("Gr\xC3\xBC\xC3\x9F Gott"), "Gr\xFC\xDF Gott");
    EXPECT_EQ(ToUtf8("Gr\xFC\xDF Gott"), "Gr\xC3\xBC\xC3\x9F Gott");
    EXPECT_EQ(ToAnsi("\xE2\x82\xAC"), "\x80");  // the euro sign of Windows-1252
    EXPECT_EQ(ToUtf8("\x80"), "\xE2\x82\xAC");
    EXPECT_EQ(ToAnsi("plain"), "plain");
    EXPECT_EQ(ToAnsi(""), "");
    // Text that is not UTF-8 is taken as it is.
    EXPECT_EQ(ToAnsi("Gr\xFC\xDF"), "Gr\xFC\xDF");
}

TEST(Pad, CountsCharactersNotBytes) {
    EXPECT_EQ(Pad("M\xC3\xBCnchen", 10), "M\xC3\xBCnchen   ");
    EXPECT_EQ(Pad("abc", 3), "abc");
    EXPECT_EQ(Pad("abcdef", 3), "abcdef");
}

TEST(Status, NamesTheCodeAndItsMeaning) {
    EXPECT_EQ(Win32Status(ERROR_FILE_NOT_FOUND),
              "the file, key or value does not exist (error 2, ERROR_FILE_NOT_FOUND)");
    EXPECT_EQ(Win32Status(12345), "the system reported a failure (error 12345)");
    EXPECT_EQ(LibraryStatus(0x24015800), "the registry value has another type (status 0x24015800)");
    EXPECT_EQ(LibraryStatus(0x24FFFFFF), "the library reported a failure (status 0x24FFFFFF)");
    // Codes outside the library's family are the platform's.
    EXPECT_EQ(LibraryStatus(ERROR_MORE_DATA), Win32Status(ERROR_MORE_DATA));
    EXPECT_EQ(LocalStatus("profile", 7, "the entry is missing"),
              "the entry is missing (profile status 7)");
}

}  // namespace
