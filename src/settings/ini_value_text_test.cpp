#include "settings/ini_value_text.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using zq::settings::FieldSplitter;
using zq::settings::kRecordDelimiters;
using zq::settings::ParseBooleanWord;
using zq::settings::ParseDecimal;
using zq::settings::ParseHexadecimal;

struct DecimalCase {
    const char* text;
    INT value;
};

class ParseDecimalTest : public testing::TestWithParam<DecimalCase> {};

TEST_P(ParseDecimalTest, ReadsAsTheRuntimeDoesButWraps) {
    EXPECT_EQ(ParseDecimal(GetParam().text), GetParam().value) << GetParam().text;
}

INSTANTIATE_TEST_SUITE_P(
    Table, ParseDecimalTest,
    testing::Values(DecimalCase{"42", 42}, DecimalCase{"  \t\r\n\v\f-17x", -17},
                    DecimalCase{"+8", 8}, DecimalCase{"", 0}, DecimalCase{"abc", 0},
                    DecimalCase{"- 5", 0}, DecimalCase{"--5", 0}, DecimalCase{"12 34", 12},
                    DecimalCase{"2147483647", 2147483647},
                    DecimalCase{"-2147483648", static_cast<INT>(0x80000000u)},
                    DecimalCase{"4294967295", -1}, DecimalCase{"4294967296", 0},
                    DecimalCase{"99999999999999999999", static_cast<INT>(1661992959u)}));

struct HexCase {
    const char* text;
    DWORD value;
};

class ParseHexadecimalTest : public testing::TestWithParam<HexCase> {};

TEST_P(ParseHexadecimalTest, ReadsWithTheEntriesOwnRules) {
    EXPECT_EQ(ParseHexadecimal(GetParam().text), GetParam().value) << GetParam().text;
}

INSTANTIATE_TEST_SUITE_P(
    Table, ParseHexadecimalTest,
    testing::Values(HexCase{"0x000000FF", 255}, HexCase{"  ff", 255}, HexCase{"\t \tAb", 0xAB},
                    HexCase{"0x", 0}, HexCase{"", 0}, HexCase{"   ", 0}, HexCase{"1G2", 1},
                    HexCase{"123456789", 0x23456789}, HexCase{"0x1F", 31}, HexCase{"12x34", 0x34},
                    HexCase{"1X", 0}, HexCase{"7:8", 7}, HexCase{"7_8", 7}, HexCase{"7y8", 7},
                    HexCase{"-1", 0}, HexCase{"\n1", 0},  // only blanks and tabs are skipped
                    HexCase{"ab\xC4"
                            "1",
                            0xAB},
                    HexCase{"0xABCDEF01", 0xABCDEF01}));

TEST(ParseBooleanWord, AcceptsTheSixWordsInAnyCase) {
    for (const char* yes : {"1", "TRUE", "true", "Set", "yes", "YES", "On", "ok", "oK"}) {
        EXPECT_TRUE(ParseBooleanWord(yes)) << yes;
    }
    for (const char* no :
         {"", "0", "2", "-1", "Y", "enabled", "TRUEX", " 1", "1 ", "ONE", "false", "no"}) {
        EXPECT_FALSE(ParseBooleanWord(no)) << no;
    }
    // Only seven characters take part: a longer text compares by its head.
    EXPECT_FALSE(ParseBooleanWord("TRUE123"));
    EXPECT_FALSE(ParseBooleanWord(std::string_view("YES\0zzz", 7)));
}

std::vector<std::string> Split(std::string_view text, std::string_view delimiters) {
    std::vector<std::string> fields;
    FieldSplitter splitter(text, delimiters, true);
    std::string_view field;
    while (splitter.Next(field)) {
        fields.emplace_back(field);
    }
    return fields;
}

TEST(FieldSplitter, SkipsRunsOfDelimiters) {
    using V = std::vector<std::string>;
    EXPECT_EQ(Split("2024, 5,,3 :17|\\x/y;z", kRecordDelimiters),
              (V{"2024", "5", "3", "17", "x", "y", "z"}));
    EXPECT_EQ(Split(",,,", ","), V{});
    EXPECT_EQ(Split("", ","), V{});
    EXPECT_EQ(Split("whole text", ""), V{"whole text"});
    EXPECT_EQ(Split("a", ","), V{"a"});
    std::string_view untouched = "kept";
    FieldSplitter empty("", ",");
    EXPECT_FALSE(empty.Next(untouched));
    EXPECT_EQ(untouched, "kept");
}

}  // namespace
