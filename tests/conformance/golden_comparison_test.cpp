#include "golden_comparison.h"

#include <gtest/gtest.h>

namespace zq::conformance {
namespace {

std::vector<KnownDifference> Parse(const char* text) {
    std::vector<KnownDifference> out;
    std::string error;
    EXPECT_TRUE(ParseKnownDifferences(text, &out, &error)) << error;
    return out;
}

TEST(KnownDifferences, ParsesEntriesVerbatim) {
    auto entries = Parse(
        "# comment\n"
        "reason: the runtime column is not ours\n"
        "cut:   | sprintf\n"
        "\n"
        "reason: Windows refuses the date\n"
        "-   a -> 1\n"
        "-     b\n"
        "+   a -> 0\n");
    ASSERT_EQ(entries.size(), 2u);
    EXPECT_EQ(entries[0].reason, "the runtime column is not ours");
    EXPECT_EQ(entries[0].cuts, std::vector<std::string>{"  | sprintf"});
    EXPECT_EQ(entries[1].golden, (std::vector<std::string>{"  a -> 1", "    b"}));
    EXPECT_EQ(entries[1].ours, std::vector<std::string>{"  a -> 0"});
    EXPECT_EQ(entries[1].line, 5);
}

TEST(KnownDifferences, RejectsMalformedFiles) {
    std::vector<KnownDifference> out;
    std::string error;
    EXPECT_FALSE(ParseKnownDifferences("- a line without a reason\n", &out, &error));
    EXPECT_FALSE(ParseKnownDifferences("reason:\n- x\n", &out, &error));
    EXPECT_FALSE(ParseKnownDifferences("reason: r\n+ x\n- y\n", &out, &error));
    EXPECT_FALSE(ParseKnownDifferences("reason: nothing to do\n", &out, &error));
    EXPECT_FALSE(ParseKnownDifferences("reason: r\nbogus\n", &out, &error));
    EXPECT_TRUE(ParseKnownDifferences("", &out, &error));
}

TEST(CompareWithGolden, AppliesCutsAndReplacements) {
    auto entries = Parse(
        "reason: r1\ncut:  | tail\n"
        "reason: r2\n- b\n- c\n+ B\n");
    EXPECT_TRUE(CompareWithGolden("a | tail 1\nb\nc\nd\n", "a | tail 2\nB\nd\n", entries).empty());
}

TEST(CompareWithGolden, SkipsWordsBeforeReplacements) {
    auto entries = Parse(
        "reason: r1\nskip: le=\n"
        "reason: r2\n- f() -> 0 buf=\"x\"\n+ f() -> 1 buf=\"x\"\n");
    EXPECT_EQ(entries[0].skips, std::vector<std::string>{"le="});
    EXPECT_TRUE(CompareWithGolden("g() -> 1 le=0 buf=\"a le=b\"\nf() -> 0 le=87 buf=\"x\"\nle=2\n",
                                  "g() -> 1 le=- buf=\"a le=b\"\nf() -> 1 le=- buf=\"x\"\n\n",
                                  entries)
                    .empty());
    // Only whole words are skipped: "buf=\"ale=\"" keeps its text.
    EXPECT_EQ(
        CompareWithGolden("buf=\"ale=1\"\n", "buf=\"ale=2\"\n", Parse("reason: r\nskip: le=\n")),
        (std::vector<std::string>{"-1: buf=\"ale=1\"", "+1: buf=\"ale=2\""}));
}

TEST(CompareWithGolden, ReportsMismatchesAndMissingLines) {
    auto problems = CompareWithGolden("a\nb\nc\nd\n", "a\nx\nc\n", {});
    EXPECT_EQ(problems, (std::vector<std::string>{"-2: b", "+2: x", "-4: d"}));
    EXPECT_EQ(CompareWithGolden("a\n", "a\nz\n", {}), std::vector<std::string>{"+2: z"});
}

TEST(CompareWithGolden, StaleOrAmbiguousEntriesAreProblems) {
    EXPECT_EQ(CompareWithGolden("a\n", "a\n", Parse("reason: gone\n- nowhere\n")).size(), 1u);
    EXPECT_EQ(CompareWithGolden("x\nx\n", "x\nx\n", Parse("reason: twice\n- x\n+ x\n")).size(), 1u);
}

TEST(CompareWithGolden, EntryMayRemoveLines) {
    EXPECT_TRUE(CompareWithGolden("a\nb\nc\n", "a\nc\n", Parse("reason: r\n- b\n")).empty());
}

}  // namespace
}  // namespace zq::conformance
