#include "frame/global_file_name_functions.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "framework/gdi/dc.h"

namespace {

struct SplitCase {
    const char* path;
    const char* name;
    const char* directory;
};

class SplitPaths : public ::testing::TestWithParam<SplitCase> {};

TEST_P(SplitPaths, NameAndDirectory) {
    const SplitCase& c = GetParam();
    CString name("sentinel"), directory("sentinel");
    CZqGlobalFileNameFunctions::ExtractNameFromPath(c.path, name);
    CZqGlobalFileNameFunctions::ExtractPathFromPath(c.path, directory);
    EXPECT_STREQ(name, c.name);
    EXPECT_STREQ(directory, c.directory);
}

INSTANTIATE_TEST_SUITE_P(CZqGlobalFileNameFunctions, SplitPaths,
                         ::testing::Values(SplitCase{"C:\\dir\\file.txt", "file.txt", "C:\\dir"},
                                           SplitCase{"C:\\a.txt", "a.txt", "C:\\"},
                                           SplitCase{"D:x.txt", "x.txt", "D"},
                                           SplitCase{"name", "name", "name"},
                                           SplitCase{"C:\\dir\\", "", "C:\\dir"},
                                           SplitCase{"\\\\srv\\share\\f", "f", "\\\\srv\\share"},
                                           SplitCase{"\\f", "f", ""}, SplitCase{"ab\\c", "c", "ab"},
                                           SplitCase{"/unix/path", "/unix/path", "/unix/path"},
                                           SplitCase{"", "", ""}, SplitCase{nullptr, "", ""}));

struct MakePathCase {
    const char* directory;
    const char* name;
    const char* result;
};

class MakePaths : public ::testing::TestWithParam<MakePathCase> {};

TEST_P(MakePaths, JoinWithOneBackslash) {
    CString result("sentinel");
    CZqGlobalFileNameFunctions::MakePath(GetParam().directory, GetParam().name, result);
    EXPECT_STREQ(result, GetParam().result);
}

INSTANTIATE_TEST_SUITE_P(CZqGlobalFileNameFunctions, MakePaths,
                         ::testing::Values(MakePathCase{"C:\\dir", "f.txt", "C:\\dir\\f.txt"},
                                           MakePathCase{"C:\\dir\\", "f.txt", "C:\\dir\\f.txt"},
                                           MakePathCase{"C:", "f.txt", "C:f.txt"},
                                           MakePathCase{"", "f.txt", "f.txt"},
                                           MakePathCase{nullptr, "f.txt", "f.txt"},
                                           MakePathCase{"dir", nullptr, "dir\\"}));

struct ExtensionCase {
    const char* path;
    const char* extension;
    const char* result;
};

class Extensions : public ::testing::TestWithParam<ExtensionCase> {};

TEST_P(Extensions, ReplaceFromTheLastDot) {
    const ExtensionCase& c = GetParam();
    CString result("sentinel");
    CZqGlobalFileNameFunctions::ReplaceExtension(c.path, result, c.extension);
    EXPECT_STREQ(result, c.result);
    CString in_place(c.path);
    CZqGlobalFileNameFunctions::ReplaceExtension(in_place, c.extension);
    EXPECT_STREQ(in_place, c.result);
}

INSTANTIATE_TEST_SUITE_P(CZqGlobalFileNameFunctions, Extensions,
                         ::testing::Values(ExtensionCase{"a.b\\c", "txt", "a.txt"},
                                           ExtensionCase{"C:\\x\\file.ini", "bak",
                                                         "C:\\x\\file.bak"},
                                           ExtensionCase{"file", "txt", "file.txt"},
                                           ExtensionCase{"file.tar.gz", nullptr, "file.tar"},
                                           ExtensionCase{"file", nullptr, "file"},
                                           ExtensionCase{"file.x", "", "file."}));

struct AbbreviateCase {
    const char* path;
    int width;  // pixels; 8 per character
    const char* result;
};

class Abbreviations : public ::testing::TestWithParam<AbbreviateCase> {};

TEST_P(Abbreviations, FitTheWidth) {
    CDC dc;
    char result[MAX_PATH];
    std::memset(result, '\xCC', sizeof result);
    CZqGlobalFileNameFunctions::AbbreviateFilePath(GetParam().path, result, &dc, GetParam().width);
    EXPECT_STREQ(result, GetParam().result);
}

INSTANTIATE_TEST_SUITE_P(
    CZqGlobalFileNameFunctions, Abbreviations,
    ::testing::Values(
        AbbreviateCase{"C:\\aaa\\bbb\\ccc\\name.txt", 184, "C:\\aaa\\bbb\\ccc\\name.txt"},
        AbbreviateCase{"C:\\aaaa\\bbb\\ccc\\name.txt", 184, "C:\\...\\bbb\\ccc\\name.txt"},
        AbbreviateCase{"C:\\aaa\\bbb\\ccc\\name.txt", 183, "C:\\...\\ccc\\name.txt"},
        AbbreviateCase{"C:\\aaa\\bbb\\ccc\\name.txt", 150, "C:\\...\\name.txt"},
        AbbreviateCase{"C:\\aaa\\bbb\\ccc\\name.txt", 120, "C:\\...\\name.txt"},
        AbbreviateCase{"C:\\aaa\\bbb\\ccc\\name.txt", 119, "name.txt"},
        AbbreviateCase{"C:\\aaa\\bbb\\ccc\\name.txt", 50, "name.txt"},
        AbbreviateCase{"\\\\server\\share\\dir\\file.txt", 200, "\\\\server\\...\\dir\\file.txt"},
        AbbreviateCase{"\\\\server\\share\\dir\\file.txt", 170, "\\\\server\\...\\file.txt"}));

TEST(AbbreviateFilePath, WithoutDeviceContextOrPath) {
    char result[MAX_PATH] = "x";
    CZqGlobalFileNameFunctions::AbbreviateFilePath("C:\\a\\b", result, nullptr, 1);
    EXPECT_STREQ(result, "C:\\a\\b");
    CDC dc;
    CZqGlobalFileNameFunctions::AbbreviateFilePath(nullptr, result, &dc, 100);
    EXPECT_STREQ(result, "");
    CZqGlobalFileNameFunctions::AbbreviateFilePath("C:\\a", nullptr, &dc, 100);  // no crash
}

}  // namespace
