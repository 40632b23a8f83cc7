#include "frame/number_text.h"

#include <gtest/gtest.h>

namespace {

struct ParseCase {
    const char* text;
    DWORD value;
};

class StringToDWordTable : public ::testing::TestWithParam<ParseCase> {};

TEST_P(StringToDWordTable, ReadsLikeStrtoulIn32Bits) {
    EXPECT_EQ(StringToDWord(GetParam().text), GetParam().value)
        << (GetParam().text ? GetParam().text : "NULL");
}

INSTANTIATE_TEST_SUITE_P(
    Numbers, StringToDWordTable,
    ::testing::Values(ParseCase{"123", 123}, ParseCase{"  42abc", 42}, ParseCase{"+7", 7},
                      ParseCase{"-1", 0xFFFFFFFF}, ParseCase{"-2", 0xFFFFFFFE},
                      ParseCase{"4294967295", 0xFFFFFFFF}, ParseCase{"4294967296", 0xFFFFFFFF},
                      ParseCase{"99999999999999999999999", 0xFFFFFFFF},
                      ParseCase{"-4294967296", 0xFFFFFFFF}, ParseCase{"0x10", 0},
                      ParseCase{"007", 7}, ParseCase{"abc", 0}, ParseCase{"", 0},
                      ParseCase{nullptr, 0}));

TEST(DWordToString, DecimalAndOtherBases) {
    EXPECT_STREQ(DWordToString(0), "0");
    EXPECT_STREQ(DWordToString(4294967295u), "4294967295");
    EXPECT_STREQ(DWordToBaseString(255, 16), "ff");
    EXPECT_STREQ(DWordToBaseString(5, 2), "101");
    EXPECT_STREQ(DWordToBaseString(35, 36), "z");
    EXPECT_STREQ(DWordToBaseString(0, 8), "0");
    EXPECT_STREQ(DWordToBaseString(0xFFFFFFFF, 2), "11111111111111111111111111111111");
    EXPECT_STREQ(DWordToBaseString(10, 1), "");
    EXPECT_STREQ(DWordToBaseString(10, 37), "");
}

}  // namespace
