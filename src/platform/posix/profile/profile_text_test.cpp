// The parsed form of profile files: line kinds and names on awkward input,
// and the shifted form of a text after a value edit, which must equal a
// fresh parse of the same bytes.
#include "platform/posix/profile/profile_text.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

#include "platform/posix/profile/profile_edit.h"

namespace zq::platform::internal {
namespace {

using Kind = ProfileText::LineKind;

struct LineCase {
    std::string line;
    Kind kind;
    const char* name;
    const char* value;
};

const LineCase kLines[] = {
    {"", Kind::kBlank, "", ""},
    {" \t\x1a ", Kind::kBlank, "", ""},
    {"; c=1", Kind::kComment, "; c", "1"},  // found as "; c", never listed
    {"; c", Kind::kComment, "", ""},
    {"  ;[S]", Kind::kComment, "", ""},
    {"#k=v", Kind::kEntry, "#k", "v"},
    {"[S]", Kind::kSection, "S", ""},
    {"  [  a b  ]  junk", Kind::kSection, "a b", ""},
    {"[a]b]", Kind::kSection, "a]b", ""},  // the last ']' closes the name
    {"[]", Kind::kSection, "", ""},
    {"[open", Kind::kBare, "[open", ""},
    {"[open=1", Kind::kEntry, "[open", "1"},
    {"k = v = w ", Kind::kEntry, "k", "v = w"},
    {"=v", Kind::kEntry, "", "v"},
    {"k=", Kind::kEntry, "k", ""},
    {"  bare text  ", Kind::kBare, "bare text", ""},
    {std::string("k=v\0tail=x", 10), Kind::kEntry, "k", "v"},
};

TEST(ProfileTextLines, Kinds) {
    for (const LineCase& c : kLines) {
        ProfileText text(c.line + "\r\n");
        ASSERT_EQ(text.lines().size(), 1u) << c.line;
        const ProfileText::Line& line = text.lines()[0];
        EXPECT_EQ(line.kind, c.kind) << c.line;
        EXPECT_EQ(text.Name(line), c.name) << c.line;
        EXPECT_EQ(text.Value(line), c.value) << c.line;
    }
}

TEST(ProfileTextLines, CaseFoldingCoversWindows1252Letters) {
    ProfileText text(
        "[\xC9t\xE9]\r\n\x8A"
        "a=1\r\n");
    const uint32_t section = text.FindSection("\xE9T\xC9");
    ASSERT_NE(section, ProfileText::kNone);
    EXPECT_NE(text.FindEntry(section,
                             "\x9A"
                             "A"),
              ProfileText::kNone);
    EXPECT_EQ(text.FindSection("ETE"), ProfileText::kNone);
}

TEST(ProfileTextLines, NewLineFollowsTheFile) {
    EXPECT_EQ(ProfileText("").NewLine(), "\r\n");
    EXPECT_EQ(ProfileText("[S]").NewLine(), "\r\n");
    EXPECT_EQ(ProfileText("[S]\nk=1\r\n").NewLine(), "\n");
    EXPECT_EQ(ProfileText("[S]\rk=1").NewLine(), "\r");
}

void ExpectSameParse(const ProfileText& a, const ProfileText& b) {
    ASSERT_EQ(a.bytes(), b.bytes());
    ASSERT_EQ(a.lines().size(), b.lines().size());
    for (size_t i = 0; i < a.lines().size(); ++i) {
        const auto& x = a.lines()[i];
        const auto& y = b.lines()[i];
        ASSERT_EQ(x.kind, y.kind) << i;
        ASSERT_EQ(x.begin, y.begin) << i;
        ASSERT_EQ(x.end, y.end) << i;
        ASSERT_EQ(x.next, y.next) << i;
        ASSERT_EQ(a.Name(x), b.Name(y)) << i;
        ASSERT_EQ(a.Value(x), b.Value(y)) << i;
    }
    ASSERT_EQ(a.sections().size(), b.sections().size());
    ASSERT_EQ(a.NewLine(), b.NewLine());
    for (const auto& section : b.sections()) {
        const std::string_view name = b.Name(section);
        const uint32_t s = a.FindSection(name);
        ASSERT_EQ(s, b.FindSection(name));
        for (uint32_t l = section.header + 1; l < section.end; ++l) {
            if (b.lines()[l].kind == ProfileText::LineKind::kEntry) {
                ASSERT_EQ(a.FindEntry(s, b.Name(b.lines()[l])),
                          b.FindEntry(s, b.Name(b.lines()[l])));
            }
        }
    }
}

// Random files and random writes: the shifted text must always equal a
// fresh parse, whether or not the shortcut applied.
TEST(ProfileTextShift, EqualsAFreshParse) {
    std::mt19937 random(7);
    const char* pieces[] = {"[S]", "[s]", "[T]",  "k=1", "K=22", "k2 = v ", "j=\"q\"",
                            "; c", "",    "bare", "x=",  "[]",   "e=5",     "\xEF\xBB\xBF"};
    const char* eols[] = {"\r\n", "\n", "\r"};
    const char* values[] = {"", "1", "longer value", " lead", "trail ", "a\rb", "x\ny", "\"q\""};
    const char* keys[] = {"k", "K", "k2", "j", "x", "new", " k "};
    const char* sections[] = {"S", "s", "T", "", "U"};
    int shifted = 0;
    for (int round = 0; round < 3000; ++round) {
        std::string bytes;
        const int count = static_cast<int>(random() % 12);
        for (int i = 0; i < count; ++i) {
            bytes += pieces[random() % std::size(pieces)];
            bytes += eols[random() % std::size(eols)];
        }
        if (random() % 3 == 0 && !bytes.empty()) {
            bytes.pop_back();
        }
        const ProfileText base(bytes);
        const auto next =
            WithValue(base, sections[random() % std::size(sections)],
                      keys[random() % std::size(keys)], values[random() % std::size(values)]);
        if (!next) {
            continue;
        }
        const ProfileText derived(base, *next);
        const ProfileText fresh(*next);
        shifted += derived.shares_index_with(base);
        ExpectSameParse(derived, fresh);
    }
    EXPECT_GT(shifted, 100);  // the shortcut was taken often enough to be tested
}

}  // namespace
}  // namespace zq::platform::internal
