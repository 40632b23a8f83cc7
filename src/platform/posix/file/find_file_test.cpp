#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

#include "platform/posix/file/dos_wildcard.h"
#include "platform/posix/file/file_test_helpers.h"
#include "platform/win32.h"

namespace zq::platform::internal {
namespace {

using namespace testing_support;

struct WildcardCase {
    const char* pattern;
    const char* name;
    bool matches;
};

class Wildcards : public ::testing::TestWithParam<WildcardCase> {};

TEST_P(Wildcards, FollowDosRules) {
    const WildcardCase& c = GetParam();
    EXPECT_EQ(MatchesDosPattern(c.pattern, c.name), c.matches)
        << "pattern '" << c.pattern << "' name '" << c.name << "'";
}

INSTANTIATE_TEST_SUITE_P(
    FindFirstFileA, Wildcards,
    ::testing::Values(
        WildcardCase{"*", "anything.at.all", true}, WildcardCase{"*", ".", true},
        WildcardCase{"*.*", "noext", true}, WildcardCase{"*.*", "a.b", true},
        WildcardCase{"*.*", ".profile", true}, WildcardCase{"*.txt", "A.TXT", true},
        WildcardCase{"*.TXT", "readme.txt", true}, WildcardCase{"*.txt", "a.txt.bak", false},
        WildcardCase{"*.txt", "a.b.txt", true}, WildcardCase{"*.htm", "page.html", false},
        WildcardCase{"*.", "noext", true}, WildcardCase{"*.", "a.b", false},
        WildcardCase{"a?c", "abc", true}, WildcardCase{"a?c", "ac", false},
        WildcardCase{"a?c", "a.c", false}, WildcardCase{"a??", "a", true},
        WildcardCase{"a??", "abc", true}, WildcardCase{"a??", "abcd", false},
        WildcardCase{"a??.txt", "a.txt", true}, WildcardCase{"a??.txt", "abcd.txt", false},
        WildcardCase{"abc.*", "abc", true}, WildcardCase{"abc.*", "abc.def", true},
        WildcardCase{"abc.*", "abcd", false}, WildcardCase{"*.t*", "x.tif", true},
        WildcardCase{"*a*", "bab", true}, WildcardCase{"*a*", "bbb", false},
        WildcardCase{"file.txt", "FILE.TXT", true}, WildcardCase{"file.txt", "file.txt2", false},
        WildcardCase{"\xE4*", "\xC4rger", true}, WildcardCase{"FAX????.TIF", "fax001a.tif", true},
        WildcardCase{"*.*", "", true}, WildcardCase{"?", "", true}, WildcardCase{"x", "", false}));

struct ShortNameCase {
    const char* name;
    const char* short_name;  // "" when the name is 8.3 already
};

class ShortNames : public ::testing::TestWithParam<ShortNameCase> {};

TEST_P(ShortNames, AreMadeForLongNamesOnly) {
    std::set<std::string> taken;
    EXPECT_EQ(MakeShortName(GetParam().name, &taken), GetParam().short_name);
}

INSTANTIATE_TEST_SUITE_P(
    FindFirstFileA, ShortNames,
    ::testing::Values(ShortNameCase{"README.TXT", ""}, ShortNameCase{"readme.txt", ""},
                      ShortNameCase{"a", ""}, ShortNameCase{"Long File Name.html", "LONGFI~1.HTM"},
                      ShortNameCase{"abcdefghi", "ABCDEF~1"}, ShortNameCase{"a.b.c", "AB~1.C"},
                      ShortNameCase{".profile", "PROFIL~1"}, ShortNameCase{"a+b.txt", "A_B~1.TXT"},
                      ShortNameCase{"x.jpeg", "X~1.JPE"}));

TEST(ShortNames, CountUpWhenTaken) {
    std::set<std::string> taken = {"LONGFI~1.TXT"};
    EXPECT_EQ(MakeShortName("longfile one.txt", &taken), "LONGFI~2.TXT");
    EXPECT_EQ(MakeShortName("longfile two.txt", &taken), "LONGFI~3.TXT");
}

// Names a listing returns, in order.
std::vector<std::string> List(const std::string& pattern,
                              std::vector<WIN32_FIND_DATAA>* all = nullptr) {
    std::vector<std::string> names;
    WIN32_FIND_DATAA data;
    HANDLE find = FindFirstFileA(pattern.c_str(), &data);
    if (find == INVALID_HANDLE_VALUE) {
        return names;
    }
    do {
        names.push_back(data.cFileName);
        if (all) {
            all->push_back(data);
        }
    } while (FindNextFileA(find, &data));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_NO_MORE_FILES));
    EXPECT_TRUE(FindClose(find));
    return names;
}

class Listing : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(zq::test::WriteFileBytes(folder_.Unix("b.txt"), "bb"));
        ASSERT_TRUE(zq::test::WriteFileBytes(folder_.Unix("A.Txt"), "a"));
        ASSERT_TRUE(zq::test::WriteFileBytes(folder_.Unix("noext"), ""));
        ASSERT_TRUE(zq::test::WriteFileBytes(folder_.Unix("Long File Name.html"), "12345"));
        ASSERT_EQ(mkdir(folder_.Unix("sub").c_str(), 0755), 0);
    }
    ScratchFolder folder_;
};

TEST_F(Listing, StarDotStarListsEverythingWithDotsFirst) {
    std::vector<WIN32_FIND_DATAA> all;
    EXPECT_EQ(List(folder_.Dos("*.*"), &all),
              (std::vector<std::string>{".", "..", "A.Txt", "b.txt", "Long File Name.html", "noext",
                                        "sub"}));
    ASSERT_EQ(all.size(), 7u);
    EXPECT_EQ(all[0].dwFileAttributes, static_cast<DWORD>(FILE_ATTRIBUTE_DIRECTORY));
    EXPECT_STREQ(all[0].cAlternateFileName, "");
    EXPECT_EQ(all[3].nFileSizeLow, 2u);
    EXPECT_EQ(all[3].nFileSizeHigh, 0u);
    EXPECT_NE(all[3].ftLastWriteTime.dwHighDateTime, 0u);
    EXPECT_STREQ(all[4].cAlternateFileName, "LONGFI~1.HTM");
    EXPECT_STREQ(all[3].cAlternateFileName, "");
    EXPECT_EQ(all[6].dwFileAttributes, static_cast<DWORD>(FILE_ATTRIBUTE_DIRECTORY));
    EXPECT_EQ(all[6].nFileSizeLow, 0u);
}

TEST_F(Listing, PatternsAreCaseBlindAndEitherSeparatorWorks) {
    EXPECT_EQ(List(folder_.Dos("*.TXT")), (std::vector<std::string>{"A.Txt", "b.txt"}));
    EXPECT_EQ(List(folder_.unix_path() + "/*."),
              (std::vector<std::string>{".", "..", "noext", "sub"}));
    EXPECT_EQ(List(folder_.Dos("LONG*")), (std::vector<std::string>{"Long File Name.html"}));
    EXPECT_EQ(List(folder_.Dos("B.TXT")), (std::vector<std::string>{"b.txt"}));
    EXPECT_EQ(List(folder_.dos_path()), (std::vector<std::string>{folder_.unix_path().substr(
                                            folder_.unix_path().find_last_of('/') + 1)}));
    CurrentFolderGuard guard;
    ASSERT_TRUE(SetCurrentDirectoryA(folder_.dos_path().c_str()));
    EXPECT_EQ(List("?.txt"), (std::vector<std::string>{"A.Txt", "b.txt"}));
    EXPECT_EQ(List("SUB\\*"), (std::vector<std::string>{".", ".."}));
}

TEST(FindFirstFileA, DriveRootsHaveNoDotEntries) {
    std::vector<std::string> names = List("C:\\*");
    ASSERT_GE(names.size(), 2u);
    EXPECT_NE(names[0], ".");
    EXPECT_NE(std::find(names.begin(), names.end(), "temp"), names.end());
    EXPECT_NE(std::find(names.begin(), names.end(), "windows"), names.end());
    EXPECT_EQ(std::find(names.begin(), names.end(), ".."), names.end());
    EXPECT_EQ(List("C:\\windows\\*")[0], ".");
}

TEST(FindFirstFileA, Failures) {
    ScratchFolder folder;
    ASSERT_TRUE(zq::test::WriteFileBytes(folder.Unix("file"), "x"));
    WIN32_FIND_DATAA data;
    std::memset(&data, kSentinel, sizeof data);
    const struct {
        std::string pattern;
        DWORD error;
    } cases[] = {
        {folder.Dos("*.none"), ERROR_FILE_NOT_FOUND},
        {folder.Dos("missing\\*.*"), ERROR_PATH_NOT_FOUND},
        {folder.Dos("file\\*"), ERROR_DIRECTORY},
        {folder.dos_path() + "\\", ERROR_FILE_NOT_FOUND},
        {folder.Dos("a|b"), ERROR_INVALID_NAME},
        {"Q:\\*.*", ERROR_PATH_NOT_FOUND},
        {"", ERROR_FILE_NOT_FOUND},
        {folder.Dos(std::string(MAX_PATH, '*')), ERROR_FILENAME_EXCED_RANGE},
    };
    for (const auto& c : cases) {
        SetLastError(0xDEADBEEF);
        EXPECT_EQ(FindFirstFileA(c.pattern.c_str(), &data), INVALID_HANDLE_VALUE) << c.pattern;
        EXPECT_EQ(GetLastError(), c.error) << c.pattern;
    }
    EXPECT_EQ(static_cast<unsigned char>(data.cFileName[0]), 0xCCu);  // untouched
    EXPECT_EQ(FindFirstFileA(folder.Dos("*").c_str(), nullptr), INVALID_HANDLE_VALUE);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_PARAMETER));
}

TEST(FindFirstFileA, FindHandlesAndFileHandlesDoNotMix) {
    ScratchFolder folder;
    ASSERT_TRUE(zq::test::WriteFileBytes(folder.Unix("file"), "x"));
    WIN32_FIND_DATAA data;
    HANDLE find = FindFirstFileA(folder.Dos("file").c_str(), &data);
    ASSERT_NE(find, INVALID_HANDLE_VALUE);
    HandleGuard file(CreateFileA(folder.Dos("file").c_str(), GENERIC_READ, 0, nullptr,
                                 OPEN_EXISTING, 0, nullptr));
    SetLastError(0xDEADBEEF);
    EXPECT_FALSE(FindClose(file.get()));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_HANDLE));
    EXPECT_FALSE(FindNextFileA(file.get(), &data));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_HANDLE));
    char byte;
    DWORD read = 0;
    EXPECT_FALSE(ReadFile(find, &byte, 1, &read, nullptr));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_HANDLE));
    EXPECT_FALSE(FindNextFileA(find, &data));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_NO_MORE_FILES));
    EXPECT_TRUE(FindClose(find));
    EXPECT_FALSE(FindClose(find));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_HANDLE));
}

}  // namespace
}  // namespace zq::platform::internal
