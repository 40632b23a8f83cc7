#include "frame/global_file_functions.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "platform/win32.h"
#include "support/test_support.h"

namespace {

// A fresh folder as a DOS path; Path("x") is "<folder>\x".
class FileFunctions : public ::testing::Test {
protected:
    void SetUp() override {
        char full[MAX_PATH];
        std::string unix_path = zq::test::MakeScratchFolder("filefunctions");
        ASSERT_GT(GetFullPathNameA(unix_path.c_str(), sizeof full, full, nullptr), 0u);
        folder_ = full;
    }
    std::string Path(const std::string& name) const { return folder_ + "\\" + name; }
    void Write(const std::string& name, const std::string& bytes) {
        HANDLE file = CreateFileA(Path(name).c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS,
                                  FILE_ATTRIBUTE_NORMAL, nullptr);
        ASSERT_NE(file, INVALID_HANDLE_VALUE);
        DWORD written = 0;
        ASSERT_TRUE(
            WriteFile(file, bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr));
        CloseHandle(file);
    }
    // True when this file system keeps the bits Unix has no place for.
    bool KeepsExtraBits() {
        Write("probe", "");
        SetFileAttributesA(Path("probe").c_str(), FILE_ATTRIBUTE_NOT_CONTENT_INDEXED);
        bool kept = GetFileAttributesA(Path("probe").c_str()) == FILE_ATTRIBUTE_NOT_CONTENT_INDEXED;
        DeleteFileA(Path("probe").c_str());
        return kept;
    }

    std::string folder_;
};

TEST_F(FileFunctions, CreateReplacesAndExistsFindsIt) {
    Write("a.txt", "old contents");
    EXPECT_EQ(CZqGlobalFileFunctions::Create(Path("A.TXT").c_str()), 0u);
    DWORD size = 77;
    EXPECT_EQ(CZqGlobalFileFunctions::GetSize(Path("a.txt").c_str(), size), 0u);
    EXPECT_EQ(size, 0u);
    DWORD exists = 77;
    EXPECT_EQ(CZqGlobalFileFunctions::Exists(Path("a.txt").c_str(), exists), 0u);
    EXPECT_EQ(exists, 1u);
    EXPECT_EQ(CZqGlobalFileFunctions::Create(Path("no\\such").c_str()),
              static_cast<DWORD>(ERROR_PATH_NOT_FOUND));
}

TEST_F(FileFunctions, ExistsOnFoldersAndMissingPaths) {
    DWORD exists = 77;
    EXPECT_EQ(CZqGlobalFileFunctions::Exists(folder_.c_str(), exists), 0u);
    EXPECT_EQ(exists, 0u);
    exists = 77;
    EXPECT_EQ(CZqGlobalFileFunctions::Exists(Path("missing").c_str(), exists),
              static_cast<DWORD>(ERROR_FILE_NOT_FOUND));
    EXPECT_EQ(exists, 0u);
    EXPECT_EQ(CZqGlobalFileFunctions::Exists(Path("missing\\x").c_str(), exists),
              static_cast<DWORD>(ERROR_PATH_NOT_FOUND));
}

TEST_F(FileFunctions, ExistsCountsAFileWithoutTheSixBitsAsAbsent) {
    if (!KeepsExtraBits()) {
        GTEST_SKIP() << "file system keeps no extra attribute bits";
    }
    Write("odd", "x");
    ASSERT_TRUE(SetFileAttributesA(Path("odd").c_str(), FILE_ATTRIBUTE_NOT_CONTENT_INDEXED));
    DWORD exists = 77;
    EXPECT_EQ(CZqGlobalFileFunctions::Exists(Path("odd").c_str(), exists), 0u);
    EXPECT_EQ(exists, 0u);
}

TEST_F(FileFunctions, SizesOfFilesAndFolders) {
    Write("five", "12345");
    DWORD size = 0;
    EXPECT_EQ(CZqGlobalFileFunctions::GetSize(Path("five").c_str(), size), 0u);
    EXPECT_EQ(size, 5u);
    size = 77;
    EXPECT_EQ(CZqGlobalFileFunctions::GetSize(folder_.c_str(), size), 0u);
    EXPECT_EQ(size, 0u);
    size = 77;
    EXPECT_EQ(CZqGlobalFileFunctions::GetSize(Path("none").c_str(), size),
              static_cast<DWORD>(ERROR_FILE_NOT_FOUND));
    EXPECT_EQ(size, 0u);

    EXPECT_EQ(CZqGlobalFileFunctions::SetSize(Path("five").c_str(), 12), 0u);
    EXPECT_EQ(CZqGlobalFileFunctions::GetSize(Path("five").c_str(), size), 0u);
    EXPECT_EQ(size, 12u);
    EXPECT_EQ(CZqGlobalFileFunctions::SetSize(Path("five").c_str(), 2), 0u);
    EXPECT_EQ(CZqGlobalFileFunctions::GetSize(Path("five").c_str(), size), 0u);
    EXPECT_EQ(size, 2u);
    EXPECT_EQ(CZqGlobalFileFunctions::SetSize(folder_.c_str(), 2), 0u);
    EXPECT_EQ(CZqGlobalFileFunctions::SetSize(Path("none").c_str(), 2),
              static_cast<DWORD>(ERROR_FILE_NOT_FOUND));
}

TEST_F(FileFunctions, AttributesAddButNeverClear) {
    Write("f", "x");
    DWORD attributes = 77;
    EXPECT_EQ(CZqGlobalFileFunctions::GetAttributes(folder_.c_str(), attributes), 0u);
    EXPECT_EQ(attributes, 0u);  // a folder reports no attributes

    EXPECT_EQ(CZqGlobalFileFunctions::SetAttributes(Path("f").c_str(), FILE_ATTRIBUTE_READONLY),
              0u);
    EXPECT_EQ(CZqGlobalFileFunctions::GetAttributes(Path("f").c_str(), attributes), 0u);
    EXPECT_TRUE(attributes & FILE_ATTRIBUTE_READONLY);
    // Kept as designed: clearing hands the rest to SetAttributes, which adds.
    EXPECT_EQ(CZqGlobalFileFunctions::ClearAttributes(Path("f").c_str(), FILE_ATTRIBUTE_READONLY),
              0u);
    EXPECT_TRUE(GetFileAttributesA(Path("f").c_str()) & FILE_ATTRIBUTE_READONLY);

    EXPECT_EQ(CZqGlobalFileFunctions::SetAttributes(folder_.c_str(), FILE_ATTRIBUTE_READONLY), 0u);
    EXPECT_EQ(GetFileAttributesA(folder_.c_str()), static_cast<DWORD>(FILE_ATTRIBUTE_DIRECTORY));

    attributes = 77;
    EXPECT_EQ(CZqGlobalFileFunctions::GetAttributes(Path("none").c_str(), attributes),
              static_cast<DWORD>(ERROR_FILE_NOT_FOUND));
    EXPECT_EQ(attributes, 0u);
    EXPECT_EQ(CZqGlobalFileFunctions::ClearAttributes(Path("none").c_str(), 1),
              static_cast<DWORD>(ERROR_FILE_NOT_FOUND));
}

TEST_F(FileFunctions, DeleteMoveRename) {
    Write("a", "x");
    EXPECT_EQ(CZqGlobalFileFunctions::Move(Path("a").c_str(), Path("b").c_str()), 0u);
    EXPECT_EQ(CZqGlobalFileFunctions::Rename(Path("b").c_str(), Path("c").c_str()), 0u);
    EXPECT_EQ(CZqGlobalFileFunctions::Rename(Path("b").c_str(), Path("d").c_str()),
              static_cast<DWORD>(ERROR_FILE_NOT_FOUND));
    EXPECT_EQ(CZqGlobalFileFunctions::Delete(Path("c").c_str()), 0u);
    EXPECT_EQ(CZqGlobalFileFunctions::Delete(Path("c").c_str()),
              static_cast<DWORD>(ERROR_FILE_NOT_FOUND));
}

TEST_F(FileFunctions, GetTempFileMakesAFileInTheTempFolder) {
    SetEnvironmentVariableA("TMP", nullptr);
    SetEnvironmentVariableA("TEMP", nullptr);
    char name[MAX_PATH];
    std::memset(name, '\xCC', sizeof name);
    ASSERT_EQ(CZqGlobalFileFunctions::GetTempFile(name), 0u);
    std::string made = name;
    EXPECT_EQ(made.rfind("C:\\temp\\TMP", 0), 0u) << made;
    EXPECT_EQ(made.substr(made.size() - 4), ".TMP");
    EXPECT_NE(GetFileAttributesA(name), INVALID_FILE_ATTRIBUTES);
    DeleteFileA(name);
}

struct TempNameCase {
    const char* directory;
    const char* prefix;
    const char* extension;
    UINT unique;
    const char* expected;
};

class TempNames : public ::testing::TestWithParam<TempNameCase> {};

TEST_P(TempNames, FormatWithoutTouchingTheDisk) {
    const TempNameCase& c = GetParam();
    char result[MAX_PATH];
    std::memset(result, '\xCC', sizeof result);
    EXPECT_EQ(CZqGlobalFileFunctions::ZqGetTempFileName(c.directory, c.prefix, c.extension,
                                                        c.unique, result),
              0u);
    EXPECT_STREQ(result, c.expected);
    EXPECT_EQ(GetFileAttributesA(result), INVALID_FILE_ATTRIBUTES);
}

INSTANTIATE_TEST_SUITE_P(
    ZqGetTempFileName, TempNames,
    ::testing::Values(TempNameCase{"C:\\T", "FAX", "tif", 0x1A, "C:\\T\\FAX001A.tif"},
                      TempNameCase{"C:\\T\\", nullptr, ".tif", 0x1A, "C:\\T\\001A.tif"},
                      TempNameCase{nullptr, "X", nullptr, 0x12345, "X12345"},
                      TempNameCase{"", "P", "", 0xBEEF, "\\PBEEF."},
                      TempNameCase{"C:\\100%", "%s%n", "%d", 1, "C:\\100%\\%s%n0001.%d"}));

TEST_F(FileFunctions, TempNameWithZeroCreatesTheFile) {
    char result[MAX_PATH];
    ASSERT_EQ(CZqGlobalFileFunctions::ZqGetTempFileName(folder_.c_str(), "FAX", "tif", 0, result),
              0u);
    std::string made = result;
    ASSERT_EQ(made.size(), folder_.size() + 1 + 3 + 4 + 4);
    EXPECT_EQ(made.substr(0, folder_.size() + 4), folder_ + "\\FAX");
    EXPECT_EQ(made.substr(made.size() - 4), ".tif");
    EXPECT_NE(GetFileAttributesA(result), INVALID_FILE_ATTRIBUTES);

    char second[MAX_PATH];
    ASSERT_EQ(CZqGlobalFileFunctions::ZqGetTempFileName(folder_.c_str(), "FAX", "tif", 0, second),
              0u);
    EXPECT_STRNE(result, second);
    EXPECT_EQ(
        CZqGlobalFileFunctions::ZqGetTempFileName(Path("missing").c_str(), "F", nullptr, 0, second),
        1u);
}

TEST(ZqGetTempFileName, OverlongNamesAreRefused) {
    std::string folder = "C:\\" + std::string(MAX_PATH, 'd');
    char result[MAX_PATH];
    result[0] = 'x';
    EXPECT_EQ(CZqGlobalFileFunctions::ZqGetTempFileName(folder.c_str(), "A", "b", 1, result),
              static_cast<DWORD>(ERROR_BUFFER_OVERFLOW));
    EXPECT_EQ(result[0], 'x');
}

}  // namespace
