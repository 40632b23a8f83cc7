// Finding and loading resources of this test program (its own .rsrc
// section, from testdata/platform_tests.rc).
#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "platform/win32.h"

namespace {

std::string Data(HRSRC found) {
    auto* data = static_cast<const char*>(LockResource(LoadResource(nullptr, found)));
    return data ? std::string(data, SizeofResource(nullptr, found)) : std::string();
}

TEST(FindResource, NumberedNamedAndStringForms) {
    HRSRC named = FindResourceA(nullptr, "MYDATA", RT_RCDATA);
    ASSERT_NE(named, nullptr);
    EXPECT_EQ(Data(named), std::string("\1\0\2\0\3\0", 6));         // three WORDs
    EXPECT_EQ(FindResourceA(nullptr, "mydata", RT_RCDATA), named);  // names ignore case
    HRSRC custom = FindResourceA(nullptr, MAKEINTRESOURCEA(301), "CustomType");
    ASSERT_NE(custom, nullptr);
    EXPECT_EQ(Data(custom), std::string("\x78\x56\x34\x12", 4));
    EXPECT_EQ(FindResourceA(nullptr, "#301", "CUSTOMTYPE"), custom);
    EXPECT_EQ(FindResourceA(GetModuleHandleA(nullptr), "#301", "CUSTOMTYPE"), custom);
}

TEST(FindResource, FailuresSayWhatIsMissing) {
    SetLastError(0);
    EXPECT_EQ(FindResourceA(nullptr, MAKEINTRESOURCEA(1), MAKEINTRESOURCEA(999)), nullptr);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_RESOURCE_TYPE_NOT_FOUND));
    EXPECT_EQ(FindResourceA(nullptr, MAKEINTRESOURCEA(999), RT_RCDATA), nullptr);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_RESOURCE_NAME_NOT_FOUND));
    EXPECT_EQ(FindResourceExA(nullptr, RT_RCDATA, "MYDATA", 0x0411), nullptr);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_RESOURCE_LANG_NOT_FOUND));
    // A module without resources.
    HMODULE platform = GetModuleHandleA("libc.so.6");
    if (platform) {
        EXPECT_EQ(FindResourceA(platform, "MYDATA", RT_RCDATA), nullptr);
        EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_RESOURCE_DATA_NOT_FOUND));
    }
    SetLastError(0);
    EXPECT_EQ(LoadResource(nullptr, reinterpret_cast<HRSRC>(&platform)), nullptr);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_HANDLE));
    EXPECT_EQ(SizeofResource(nullptr, nullptr), 0u);
    EXPECT_FALSE(FreeResource(nullptr));
}

struct LanguageCase {
    WORD language;
    const char* expected;
};
class ResourceLanguage : public ::testing::TestWithParam<LanguageCase> {};

TEST_P(ResourceLanguage, FallsBackAsWindowsDoes) {
    const LanguageCase& c = GetParam();
    HRSRC found = FindResourceExA(nullptr, RT_RCDATA, MAKEINTRESOURCEA(300), c.language);
    ASSERT_NE(found, nullptr);
    EXPECT_STREQ(Data(found).c_str(), c.expected);
}

INSTANTIATE_TEST_SUITE_P(Table, ResourceLanguage,
                         ::testing::Values(LanguageCase{0x0407, "deutsch"},  // exact
                                           LanguageCase{0x0807,
                                                        "deutsch"},  // Swiss German: same primary
                                           LanguageCase{0x0409, "neutral"},  // not there: neutral
                                           LanguageCase{0x0000, "neutral"}));

TEST(FindResource, WithoutALanguageTakesNeutralThenEnglishThenAny) {
    EXPECT_STREQ(Data(FindResourceA(nullptr, MAKEINTRESOURCEA(300), RT_RCDATA)).c_str(), "neutral");
    // String block 1 exists in English and German: English wins.
    HRSRC block = FindResourceA(nullptr, MAKEINTRESOURCEA(1), RT_STRING);
    ASSERT_NE(block, nullptr);
    EXPECT_EQ(block, FindResourceExA(nullptr, RT_STRING, MAKEINTRESOURCEA(1), 0x0409));
    EXPECT_NE(block, FindResourceExA(nullptr, RT_STRING, MAKEINTRESOURCEA(1), 0x0407));
}

TEST(LoadString, CopiesConvertsAndTruncates) {
    char buffer[32];
    std::memset(buffer, '~', sizeof buffer);
    EXPECT_EQ(LoadStringA(nullptr, 1, buffer, sizeof buffer), 3);
    EXPECT_STREQ(buffer, "one");
    EXPECT_EQ(LoadStringA(nullptr, 15, buffer, sizeof buffer), 7);
    EXPECT_EQ(LoadStringA(nullptr, 16, buffer, sizeof buffer), 7);  // first of the next block
    EXPECT_STREQ(buffer, "sixteen");
    EXPECT_EQ(LoadStringA(nullptr, 100, buffer, sizeof buffer), 15);
    EXPECT_STREQ(buffer, "M\xFCller \"quoted\"");  // Windows-1252

    std::memset(buffer, '~', sizeof buffer);
    EXPECT_EQ(LoadStringA(nullptr, 100, buffer, 4), 3);
    EXPECT_STREQ(buffer, "M\xFCl");
    EXPECT_EQ(buffer[4], '~');
    EXPECT_EQ(LoadStringA(nullptr, 100, buffer, 1), 0);
    EXPECT_EQ(buffer[0], '\0');
    std::memset(buffer, '~', sizeof buffer);
    EXPECT_EQ(LoadStringA(nullptr, 100, buffer, 0), 0);
    EXPECT_EQ(buffer[0], '~');  // a zero size writes nothing
    EXPECT_EQ(LoadStringA(nullptr, 100, nullptr, 10), 0);
}

TEST(LoadString, MissingStrings) {
    char buffer[16] = "~~~~";
    EXPECT_EQ(LoadStringA(nullptr, 17, buffer, sizeof buffer), 0);  // empty string
    EXPECT_STREQ(buffer, "");
    EXPECT_EQ(LoadStringA(nullptr, 2, buffer, sizeof buffer),
              0);  // empty slot of an existing block
    SetLastError(0);
    std::strcpy(buffer, "~~~~");
    EXPECT_EQ(LoadStringA(nullptr, 5000, buffer, sizeof buffer), 0);  // no such block
    EXPECT_STREQ(buffer, "");
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_RESOURCE_NAME_NOT_FOUND));
    EXPECT_EQ(LoadStringA(nullptr, 200, buffer, sizeof buffer), 15);
}

}  // namespace
