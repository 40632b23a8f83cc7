#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <optional>
#include <string>

#include "platform/posix/file/dos_path.h"
#include "platform/win32.h"
#include "support/test_support.h"

namespace zq::platform::internal {
namespace {

constexpr char kSentinel = '\xCC';

class CurrentFolderGuard {
public:
    CurrentFolderGuard() {
        char* cwd = getcwd(nullptr, 0);
        saved_ = cwd ? cwd : "/";
        std::free(cwd);
    }
    ~CurrentFolderGuard() { EXPECT_EQ(chdir(saved_.c_str()), 0); }

private:
    std::string saved_;
};

// Sets or removes an environment variable for the scope.
class EnvironmentGuard {
public:
    EnvironmentGuard(const char* name, const char* value) : name_(name) {
        if (const char* old = std::getenv(name)) {
            saved_ = old;
        }
        value ? setenv(name, value, 1) : unsetenv(name);
    }
    ~EnvironmentGuard() { saved_ ? setenv(name_, saved_->c_str(), 1) : unsetenv(name_); }

private:
    const char* name_;
    std::optional<std::string> saved_;
};

TEST(WindowsDirectory, CopiesWhenItFitsAndReportsTheSizeOtherwise) {
    char buffer[32];
    std::memset(buffer, kSentinel, sizeof buffer);
    SetLastError(0xDEADBEEF);
    EXPECT_EQ(GetWindowsDirectoryA(buffer, sizeof buffer), 10u);
    EXPECT_STREQ(buffer, "C:\\windows");
    EXPECT_EQ(buffer[11], kSentinel);
    EXPECT_EQ(GetLastError(), 0xDEADBEEFu);

    std::memset(buffer, kSentinel, sizeof buffer);
    EXPECT_EQ(GetWindowsDirectoryA(buffer, 10), 11u);  // no room for the terminator
    EXPECT_EQ(buffer[0], kSentinel);
    EXPECT_EQ(GetWindowsDirectoryA(nullptr, 0), 11u);

    EXPECT_EQ(GetSystemDirectoryA(buffer, sizeof buffer), 17u);
    EXPECT_STREQ(buffer, "C:\\windows\\system");
    EXPECT_EQ(GetFileAttributesA(buffer), static_cast<DWORD>(FILE_ATTRIBUTE_DIRECTORY));
}

TEST(CurrentDirectory, SetAndGetSpeakDosPaths) {
    CurrentFolderGuard guard;
    SetLastError(0xDEADBEEF);
    ASSERT_TRUE(SetCurrentDirectoryA("c:/WINDOWS\\system"));
    EXPECT_EQ(GetLastError(), 0xDEADBEEFu);
    char buffer[MAX_PATH];
    std::memset(buffer, kSentinel, sizeof buffer);
    EXPECT_EQ(GetCurrentDirectoryA(sizeof buffer, buffer), 17u);
    EXPECT_STREQ(buffer, "C:\\windows\\system");
    EXPECT_EQ(GetCurrentDirectoryA(17, buffer), 18u);

    ASSERT_TRUE(SetCurrentDirectoryA("/"));
    EXPECT_EQ(GetCurrentDirectoryA(sizeof buffer, buffer), 3u);
    EXPECT_STREQ(buffer, "Z:\\");
}

TEST(CurrentDirectory, FailuresSayWhatIsMissing) {
    CurrentFolderGuard guard;
    std::string folder = zq::test::MakeScratchFolder("cd");
    ASSERT_TRUE(zq::test::WriteFileBytes(folder + "/file", "x"));
    const struct {
        std::string path;
        DWORD error;
    } cases[] = {
        {folder + "/missing", ERROR_FILE_NOT_FOUND},
        {folder + "/missing/deeper", ERROR_PATH_NOT_FOUND},
        {folder + "/file", ERROR_DIRECTORY},
        {"Q:\\", ERROR_PATH_NOT_FOUND},
        {"", ERROR_PATH_NOT_FOUND},
    };
    for (const auto& c : cases) {
        SetLastError(0xDEADBEEF);
        EXPECT_FALSE(SetCurrentDirectoryA(c.path.c_str())) << c.path;
        EXPECT_EQ(GetLastError(), c.error) << c.path;
    }
    SetLastError(0xDEADBEEF);
    EXPECT_FALSE(SetCurrentDirectoryA(nullptr));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_PARAMETER));
}

struct FullPathCase {
    const char* input;
    const char* full;
    const char* file_part;  // nullptr: *lpFilePart is NULL
};

class FullPathTable : public testing::TestWithParam<FullPathCase> {};

TEST_P(FullPathTable, ResolvesAgainstTheCurrentFolder) {
    CurrentFolderGuard guard;
    ASSERT_EQ(chdir(WindowsFolderUnix().c_str()), 0);
    const FullPathCase& c = GetParam();
    char buffer[MAX_PATH];
    std::memset(buffer, kSentinel, sizeof buffer);
    LPSTR file_part = buffer + 100;  // must be overwritten
    DWORD length = GetFullPathNameA(c.input, sizeof buffer, buffer, &file_part);
    ASSERT_EQ(length, std::strlen(c.full));
    EXPECT_STREQ(buffer, c.full);
    if (c.file_part) {
        ASSERT_NE(file_part, nullptr);
        EXPECT_STREQ(file_part, c.file_part);
    } else {
        EXPECT_EQ(file_part, nullptr);
    }
}

INSTANTIATE_TEST_SUITE_P(Paths, FullPathTable,
                         testing::Values(FullPathCase{"win.ini", "C:\\windows\\win.ini", "win.ini"},
                                         FullPathCase{"..\\x\\y.txt", "C:\\x\\y.txt", "y.txt"},
                                         FullPathCase{"c:/a/./b/../c", "C:\\a\\c", "c"},
                                         FullPathCase{"C:\\dir\\", "C:\\dir\\", nullptr},
                                         FullPathCase{"C:\\", "C:\\", nullptr},
                                         FullPathCase{"\\temp\\*.*", "C:\\temp\\*.*", "*.*"},
                                         FullPathCase{"C:system", "C:\\windows\\system", "system"},
                                         FullPathCase{"Z:", "Z:\\", nullptr},
                                         FullPathCase{"/usr/lib", "Z:\\usr\\lib", "lib"},
                                         FullPathCase{"C:\\name...", "C:\\name", "name"}));

TEST(FullPathName, SmallBufferAndBadInput) {
    char buffer[8];
    std::memset(buffer, kSentinel, sizeof buffer);
    LPSTR file_part = buffer;
    EXPECT_EQ(GetFullPathNameA("C:\\windows\\x", sizeof buffer, buffer, &file_part), 13u);
    EXPECT_EQ(buffer[0], kSentinel);
    EXPECT_EQ(file_part, buffer);  // untouched

    SetLastError(0xDEADBEEF);
    EXPECT_EQ(GetFullPathNameA(nullptr, sizeof buffer, buffer, nullptr), 0u);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_PARAMETER));
    EXPECT_EQ(GetFullPathNameA("", sizeof buffer, buffer, nullptr), 0u);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_NAME));
    std::string too_long(MAX_PATH, 'a');
    EXPECT_EQ(GetFullPathNameA(too_long.c_str(), sizeof buffer, buffer, nullptr), 0u);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_FILENAME_EXCED_RANGE));
}

TEST(TempPath, DefaultsToTheTempFolderOfDriveC) {
    EnvironmentGuard tmp("TMP", nullptr);
    EnvironmentGuard temp("TEMP", nullptr);
    char buffer[MAX_PATH];
    EXPECT_EQ(GetTempPathA(sizeof buffer, buffer), 8u);
    EXPECT_STREQ(buffer, "C:\\temp\\");
    EXPECT_EQ(GetFileAttributesA(buffer), static_cast<DWORD>(FILE_ATTRIBUTE_DIRECTORY));
}

TEST(TempPath, FollowsTmpThenTemp) {
    EnvironmentGuard tmp("TMP", nullptr);
    EnvironmentGuard temp("TEMP", "/var/tmp");
    char buffer[MAX_PATH];
    EXPECT_EQ(GetTempPathA(sizeof buffer, buffer), 11u);
    EXPECT_STREQ(buffer, "Z:\\var\\tmp\\");
    setenv("TMP", "c:\\Temp\\Mine\\", 1);
    EXPECT_EQ(GetTempPathA(sizeof buffer, buffer), 13u);
    EXPECT_STREQ(buffer, "C:\\Temp\\Mine\\");
    std::memset(buffer, kSentinel, sizeof buffer);
    EXPECT_EQ(GetTempPathA(13, buffer), 14u);
    EXPECT_EQ(buffer[0], kSentinel);
}

TEST(DiskFreeSpace, ReportsThe32BitViewAndTheFullOne) {
    DWORD sectors = 0, bytes = 0, free_clusters = 0, total_clusters = 0;
    SetLastError(0xDEADBEEF);
    ASSERT_TRUE(GetDiskFreeSpaceA("C:\\", &sectors, &bytes, &free_clusters, &total_clusters));
    EXPECT_EQ(GetLastError(), 0xDEADBEEFu);
    EXPECT_EQ(bytes, 512u);
    EXPECT_GE(sectors, 1u);
    EXPECT_LE(free_clusters, total_clusters);

    ULARGE_INTEGER caller{}, total{}, total_free{};
    ASSERT_TRUE(GetDiskFreeSpaceExA("C:\\windows", &caller, &total, &total_free));
    EXPECT_LE(caller.QuadPart, total_free.QuadPart);
    EXPECT_LE(total_free.QuadPart, total.QuadPart);

    const uint64_t cluster = uint64_t{sectors} * bytes;
    if (total.QuadPart > 2147450880ull) {
        EXPECT_EQ(sectors, 64u);
        EXPECT_LE(total_clusters, 65535u);
        EXPECT_EQ(total_clusters, std::min<uint64_t>(total.QuadPart / cluster, 65535));
    } else {
        EXPECT_EQ(total_clusters, total.QuadPart / cluster);
    }
    // Only the pointers that are given are written; NULL ones are fine.
    EXPECT_TRUE(GetDiskFreeSpaceA(nullptr, nullptr, nullptr, nullptr, nullptr));
    EXPECT_TRUE(GetDiskFreeSpaceExA(nullptr, nullptr, nullptr, nullptr));
}

TEST(DiskFreeSpace, MissingDriveOrFolder) {
    SetLastError(0xDEADBEEF);
    EXPECT_FALSE(GetDiskFreeSpaceA("Q:\\", nullptr, nullptr, nullptr, nullptr));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_PATH_NOT_FOUND));
    ULARGE_INTEGER total;
    total.QuadPart = 77;
    EXPECT_FALSE(GetDiskFreeSpaceExA("C:\\no\\such\\folder", nullptr, &total, nullptr));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_PATH_NOT_FOUND));
    EXPECT_EQ(total.QuadPart, 77u);
}

// ---- Attributes ----

class Attributes : public testing::Test {
protected:
    void SetUp() override {
        folder_ = zq::test::MakeScratchFolder("attributes");
        file_ = folder_ + "/File.dat";
        ASSERT_TRUE(zq::test::WriteFileBytes(file_, "data"));
        dos_file_ = UnixToDos(folder_) + "\\FILE.DAT";
    }
    // True when this file system keeps hidden/system/archive bits.
    bool KeepsExtraBits() {
        if (!SetFileAttributesA(dos_file_.c_str(), FILE_ATTRIBUTE_HIDDEN)) {
            return false;
        }
        bool kept = GetFileAttributesA(dos_file_.c_str()) == FILE_ATTRIBUTE_HIDDEN;
        SetFileAttributesA(dos_file_.c_str(), FILE_ATTRIBUTE_NORMAL);
        return kept;
    }

    std::string folder_, file_, dos_file_;
};

TEST_F(Attributes, PlainFileIsNormalAndFolderIsDirectory) {
    SetLastError(0xDEADBEEF);
    EXPECT_EQ(GetFileAttributesA(dos_file_.c_str()), static_cast<DWORD>(FILE_ATTRIBUTE_NORMAL));
    EXPECT_EQ(GetFileAttributesA(UnixToDos(folder_).c_str()),
              static_cast<DWORD>(FILE_ATTRIBUTE_DIRECTORY));
    EXPECT_EQ(GetFileAttributesA((UnixToDos(folder_) + "\\").c_str()),
              static_cast<DWORD>(FILE_ATTRIBUTE_DIRECTORY));
    EXPECT_EQ(GetLastError(), 0xDEADBEEFu);
}

TEST_F(Attributes, ReadOnlyIsTheWritePermission) {
    ASSERT_TRUE(SetFileAttributesA(dos_file_.c_str(), FILE_ATTRIBUTE_READONLY));
    struct stat st;
    ASSERT_EQ(stat(file_.c_str(), &st), 0);
    EXPECT_EQ(st.st_mode & (S_IWUSR | S_IWGRP | S_IWOTH), 0u);
    EXPECT_EQ(GetFileAttributesA(dos_file_.c_str()), static_cast<DWORD>(FILE_ATTRIBUTE_READONLY));

    ASSERT_TRUE(SetFileAttributesA(dos_file_.c_str(), FILE_ATTRIBUTE_NORMAL));
    ASSERT_EQ(stat(file_.c_str(), &st), 0);
    EXPECT_NE(st.st_mode & S_IWUSR, 0u);
    EXPECT_EQ(GetFileAttributesA(dos_file_.c_str()), static_cast<DWORD>(FILE_ATTRIBUTE_NORMAL));
}

TEST_F(Attributes, ExtraBitsPersistWhereTheFileSystemAllows) {
    if (!KeepsExtraBits()) {
        GTEST_SKIP() << "file system refuses user extended attributes";
    }
    const DWORD bits = FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM | FILE_ATTRIBUTE_ARCHIVE |
                       FILE_ATTRIBUTE_READONLY;
    ASSERT_TRUE(SetFileAttributesA(dos_file_.c_str(), bits | FILE_ATTRIBUTE_COMPRESSED));
    EXPECT_EQ(GetFileAttributesA(file_.c_str()), bits);  // compressed is not settable
    ASSERT_TRUE(SetFileAttributesA(dos_file_.c_str(), FILE_ATTRIBUTE_ARCHIVE));
    EXPECT_EQ(GetFileAttributesA(dos_file_.c_str()), static_cast<DWORD>(FILE_ATTRIBUTE_ARCHIVE));

    std::string dos_folder = UnixToDos(folder_);
    ASSERT_TRUE(SetFileAttributesA(dos_folder.c_str(), FILE_ATTRIBUTE_HIDDEN));
    EXPECT_EQ(GetFileAttributesA(dos_folder.c_str()),
              static_cast<DWORD>(FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_HIDDEN));
}

TEST_F(Attributes, FolderReadOnlyDoesNotTouchItsPermissions) {
    std::string dos_folder = UnixToDos(folder_);
    ASSERT_TRUE(SetFileAttributesA(dos_folder.c_str(), FILE_ATTRIBUTE_READONLY));
    struct stat st;
    ASSERT_EQ(stat(folder_.c_str(), &st), 0);
    EXPECT_NE(st.st_mode & S_IWUSR, 0u);
    ASSERT_TRUE(zq::test::WriteFileBytes(folder_ + "/still-writable", "x"));
}

TEST_F(Attributes, MissingFilesAndBadNames) {
    const struct {
        std::string path;
        DWORD error;
    } cases[] = {
        {folder_ + "/missing", ERROR_FILE_NOT_FOUND},
        {folder_ + "/missing/x", ERROR_PATH_NOT_FOUND},
        {file_ + "/x", ERROR_PATH_NOT_FOUND},
        {UnixToDos(folder_) + "\\*.dat", ERROR_INVALID_NAME},
        {"", ERROR_PATH_NOT_FOUND},
        {"C:\\" + std::string(MAX_PATH, 'x'), ERROR_FILENAME_EXCED_RANGE},
    };
    for (const auto& c : cases) {
        SetLastError(0xDEADBEEF);
        EXPECT_EQ(GetFileAttributesA(c.path.c_str()), INVALID_FILE_ATTRIBUTES) << c.path;
        EXPECT_EQ(GetLastError(), c.error) << c.path;
        SetLastError(0xDEADBEEF);
        EXPECT_FALSE(SetFileAttributesA(c.path.c_str(), FILE_ATTRIBUTE_HIDDEN)) << c.path;
        EXPECT_EQ(GetLastError(), c.error) << c.path;
    }
    SetLastError(0xDEADBEEF);
    EXPECT_EQ(GetFileAttributesA(nullptr), INVALID_FILE_ATTRIBUTES);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_PATH_NOT_FOUND));
}

}  // namespace
}  // namespace zq::platform::internal
