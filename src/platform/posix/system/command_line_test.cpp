#include "platform/posix/system/command_line.h"

#include <gtest/gtest.h>

#include <random>

namespace zq::platform::internal {
namespace {

using Args = std::vector<std::string>;

struct SplitCase {
    const char* line;
    Args expected;
};

class SplitArgumentsTest : public testing::TestWithParam<SplitCase> {};

TEST_P(SplitArgumentsTest, FollowsTheRunTimeRules) {
    EXPECT_EQ(SplitArguments(GetParam().line), GetParam().expected) << GetParam().line;
}

// The examples of the run-time library's documentation, and the corners.
INSTANTIATE_TEST_SUITE_P(
    Documented, SplitArgumentsTest,
    testing::Values(SplitCase{R"("a b c" d e)", {"a b c", "d", "e"}},
                    SplitCase{R"("ab\"c" "\\" d)", {"ab\"c", "\\", "d"}},
                    SplitCase{R"(a\\\b d"e f"g h)", {"a\\\\\\b", "de fg", "h"}},
                    SplitCase{R"(a\\\"b c d)", {"a\\\"b", "c", "d"}},
                    SplitCase{R"(a\\\\"b c" d e)", {"a\\\\b c", "d", "e"}},
                    SplitCase{R"(a"b"" c d)", {"ab\"", "c", "d"}}, SplitCase{"", {}},
                    SplitCase{" \t ", {}}, SplitCase{R"("")", {""}},
                    SplitCase{R"(a "" b)", {"a", "", "b"}},
                    SplitCase{R"("unterminated  text)", {"unterminated  text"}},
                    SplitCase{R"(trailing\)", {"trailing\\"}},
                    SplitCase{"tab\tsep", {"tab", "sep"}}));

TEST(CommandLine, ProgramNameTakesQuotesButNoEscapes) {
    EXPECT_EQ(SplitCommandLine(R"("C:\Program Files\x.exe" a)"),
              (Args{"C:\\Program Files\\x.exe", "a"}));
    EXPECT_EQ(SplitCommandLine(R"(C:\a\"b c)"), (Args{"C:\\a\\b c"}));
    EXPECT_EQ(SplitCommandLine(R"(  prog\ x)"), (Args{"prog\\", "x"}));
}

TEST(CommandLine, JoinedArgumentsSplitBackUnchanged) {
    std::mt19937 rng(7);
    const std::string alphabet = "ab \t\"\\x";
    for (int round = 0; round < 5000; ++round) {
        Args args{"prog ram"};
        int count = static_cast<int>(rng() % 5);
        for (int i = 0; i < count; ++i) {
            std::string arg;
            int length = static_cast<int>(rng() % 7);
            for (int k = 0; k < length; ++k) {
                arg += alphabet[rng() % alphabet.size()];
            }
            args.push_back(arg);
        }
        std::string line = JoinCommandLine(args);
        ASSERT_EQ(SplitCommandLine(line), args) << line;
    }
}

}  // namespace
}  // namespace zq::platform::internal
