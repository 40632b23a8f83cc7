#include "platform/posix/file/dos_path.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <string>

#include "platform/posix/base/win32_errno.h"
#include "support/test_support.h"

namespace zq::platform::internal {
namespace {

bool IsDirectory(const std::string& path) {
    struct stat st;
    return stat(path.c_str(), &st) == 0 && S_ISDIR(st.st_mode);
}

// Restores the process's current folder when it goes out of scope.
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

// "{C}" in an expectation stands for the Unix root of drive C:.
std::string Expand(std::string text) {
    const std::string marker = "{C}";
    if (auto at = text.find(marker); at != std::string::npos) {
        text.replace(at, marker.size(), DriveCRoot());
    }
    return text;
}

TEST(DriveC, CreatedWithItsStandardFolders) {
    EXPECT_EQ(DriveCRoot(), zq::test::TestPrefix() + "/drive_c");
    EXPECT_TRUE(IsDirectory(WindowsFolderUnix()));
    EXPECT_TRUE(IsDirectory(SystemFolderUnix()));
    EXPECT_TRUE(IsDirectory(TempFolderUnix()));
    EXPECT_EQ(SystemFolderUnix(), DriveCRoot() + "/windows/system");
}

struct DosToUnixCase {
    const char* dos;
    const char* unix_path;  // expected path ("{C}" = drive C:), or nullptr for an error
    DWORD error;
};

class DosToUnixTable : public testing::TestWithParam<DosToUnixCase> {};

TEST_P(DosToUnixTable, Converts) {
    const DosToUnixCase& c = GetParam();
    UnixPath result = DosToUnix(c.dos);
    if (c.unix_path) {
        ASSERT_TRUE(result) << "error " << result.error;
        EXPECT_EQ(result.path, Expand(c.unix_path));
    } else {
        EXPECT_FALSE(result);
        EXPECT_EQ(result.error, c.error);
        EXPECT_TRUE(result.path.empty());
    }
}

INSTANTIATE_TEST_SUITE_P(
    Paths, DosToUnixTable,
    testing::Values(DosToUnixCase{"C:\\", "{C}", 0}, DosToUnixCase{"C:\\windows", "{C}/windows", 0},
                    DosToUnixCase{"c:/WINDOWS/System", "{C}/windows/system", 0},
                    DosToUnixCase{"C:\\windows\\.\\system\\", "{C}/windows/system/", 0},
                    DosToUnixCase{"C:\\windows\\..\\..\\..\\temp", "{C}/temp", 0},
                    DosToUnixCase{"C:\\\\windows//system", "{C}/windows/system", 0},
                    DosToUnixCase{"C:\\new folder\\File.TXT", "{C}/new folder/File.TXT", 0},
                    DosToUnixCase{"C:\\temp\\name. .", "{C}/temp/name", 0},
                    DosToUnixCase{"Z:\\", "/", 0}, DosToUnixCase{"z:\\usr\\..\\etc", "/etc", 0},
                    DosToUnixCase{"/", "/", 0}, DosToUnixCase{"/etc/./x/..", "/etc", 0},
                    DosToUnixCase{"/etc\\x", "/etc/x", 0},
                    DosToUnixCase{"/name. ", "/name. ", 0},  // Unix names keep their dots
                    DosToUnixCase{nullptr, nullptr, ERROR_PATH_NOT_FOUND},
                    DosToUnixCase{"", nullptr, ERROR_PATH_NOT_FOUND},
                    DosToUnixCase{"Q:\\file", nullptr, ERROR_PATH_NOT_FOUND},
                    DosToUnixCase{"1:\\file", nullptr, ERROR_INVALID_NAME},
                    DosToUnixCase{"\\\\server\\share\\file", nullptr, ERROR_BAD_NETPATH},
                    DosToUnixCase{"//server/share", nullptr, ERROR_BAD_NETPATH},
                    DosToUnixCase{"C:\\a*b", nullptr, ERROR_INVALID_NAME},
                    DosToUnixCase{"C:\\dir?\\x", nullptr, ERROR_INVALID_NAME},
                    DosToUnixCase{"C:\\a<b", nullptr, ERROR_INVALID_NAME},
                    DosToUnixCase{"C:\\a|b", nullptr, ERROR_INVALID_NAME},
                    DosToUnixCase{"C:\\a\"b", nullptr, ERROR_INVALID_NAME},
                    DosToUnixCase{"C:\\a:b", nullptr, ERROR_INVALID_NAME},
                    DosToUnixCase{"C:\\a\tb", nullptr, ERROR_INVALID_NAME},
                    DosToUnixCase{"/tmp/a*", nullptr, ERROR_INVALID_NAME},
                    DosToUnixCase{"/tmp/a:b", "/tmp/a:b", 0}));

TEST(DosToUnix, DriveAloneIsTheCurrentFolderOrTheRoot) {
    CurrentFolderGuard guard;
    ASSERT_EQ(chdir(WindowsFolderUnix().c_str()), 0);
    EXPECT_EQ(DosToUnix("C:").path, WindowsFolderUnix());
    EXPECT_EQ(DosToUnix("c:system").path, SystemFolderUnix());
    EXPECT_EQ(DosToUnix("Z:").path, "/");
    EXPECT_EQ(DosToUnix("\\temp").path, TempFolderUnix());

    ASSERT_EQ(chdir("/"), 0);
    EXPECT_EQ(DosToUnix("C:temp").path, TempFolderUnix());
    EXPECT_EQ(DosToUnix("\\etc").path, "/etc");
}

TEST(DosToUnix, RelativePathsStartAtTheCurrentFolder) {
    CurrentFolderGuard guard;
    std::string folder = zq::test::MakeScratchFolder("relative");
    ASSERT_EQ(mkdir((folder + "/Sub").c_str(), 0755), 0);
    ASSERT_EQ(chdir((folder + "/Sub").c_str()), 0);
    EXPECT_EQ(DosToUnix("file.txt").path, folder + "/Sub/file.txt");
    EXPECT_EQ(DosToUnix(".\\a\\b").path, folder + "/Sub/a/b");
    EXPECT_EQ(DosToUnix("..\\sub\\x").path, folder + "/Sub/x");
    EXPECT_EQ(DosToUnix("..").path, folder);
}

TEST(DosToUnix, FindsNamesWithoutRegardToCase) {
    std::string folder = zq::test::MakeScratchFolder("case");
    ASSERT_EQ(mkdir((folder + "/Mixed Dir").c_str(), 0755), 0);
    ASSERT_TRUE(zq::test::WriteFileBytes(folder + "/Mixed Dir/Data.Txt", "x"));
    ASSERT_TRUE(zq::test::WriteFileBytes(folder + "/\xC4rger", "x"));  // Ä in Windows-1252
    std::string dos = UnixToDos(folder);

    EXPECT_EQ(DosToUnix((dos + "\\MIXED DIR\\data.txt").c_str()).path,
              folder + "/Mixed Dir/Data.Txt");
    EXPECT_EQ(DosToUnix((folder + "/mixed dir/DATA.TXT").c_str()).path,
              folder + "/Mixed Dir/Data.Txt");
    EXPECT_EQ(DosToUnix((dos + "\\\xE4RGER").c_str()).path, folder + "/\xC4rger");
    // A missing folder keeps the caller's spelling from there on.
    EXPECT_EQ(DosToUnix((dos + "\\New\\MIXED DIR").c_str()).path, folder + "/New/MIXED DIR");
    // The last name may be kept as given (renames that change only the case).
    EXPECT_EQ(DosToUnix((dos + "\\MIXED DIR\\DATA.TXT").c_str(), LastComponent::kAsGiven).path,
              folder + "/Mixed Dir/DATA.TXT");
}

TEST(DosToUnix, ExactCaseWinsAndSmallestNameBreaksTies) {
    std::string folder = zq::test::MakeScratchFolder("ties");
    ASSERT_TRUE(zq::test::WriteFileBytes(folder + "/ab", "1"));
    ASSERT_TRUE(zq::test::WriteFileBytes(folder + "/AB", "2"));
    EXPECT_EQ(DosToUnix((folder + "/ab").c_str()).path, folder + "/ab");
    EXPECT_EQ(DosToUnix((folder + "/Ab").c_str()).path, folder + "/AB");
}

TEST(DosToUnix, LengthLimitIsMaxPath) {
    std::string ok = "C:\\" + std::string(MAX_PATH - 4, 'a');
    ASSERT_EQ(ok.size(), static_cast<size_t>(MAX_PATH - 1));
    EXPECT_TRUE(DosToUnix(ok.c_str()));
    std::string too_long = ok + "a";
    EXPECT_EQ(DosToUnix(too_long.c_str()).error, static_cast<DWORD>(ERROR_FILENAME_EXCED_RANGE));
}

struct UnixToDosCase {
    const char* unix_path;  // "{C}" = drive C:
    const char* dos;
};

class UnixToDosTable : public testing::TestWithParam<UnixToDosCase> {};

TEST_P(UnixToDosTable, Converts) {
    EXPECT_EQ(UnixToDos(Expand(GetParam().unix_path)), GetParam().dos);
}

INSTANTIATE_TEST_SUITE_P(Paths, UnixToDosTable,
                         testing::Values(UnixToDosCase{"{C}", "C:\\"},
                                         UnixToDosCase{"{C}/", "C:\\"},
                                         UnixToDosCase{"{C}/windows/system", "C:\\windows\\system"},
                                         UnixToDosCase{"{C}/temp/", "C:\\temp\\"},
                                         UnixToDosCase{"/", "Z:\\"},
                                         UnixToDosCase{"/usr/bin/zq", "Z:\\usr\\bin\\zq"},
                                         UnixToDosCase{"/usr//lib/../bin/", "Z:\\usr\\bin\\"}));

TEST(UnixToDos, NeighboursOfDriveCStayOnZ) {
    std::string parent = DriveCRoot().substr(0, DriveCRoot().find_last_of('/'));
    std::string expected = "Z:" + parent + "\\drive_c_other";
    for (char& c : expected) {
        c = c == '/' ? '\\' : c;
    }
    EXPECT_EQ(UnixToDos(DriveCRoot() + "_other"), expected);
}

TEST(UnixToDos, RoundTripsThroughDosToUnix) {
    for (const std::string& unix_path :
         {WindowsFolderUnix(), SystemFolderUnix() + "/new.ini", std::string("/etc/hosts")}) {
        EXPECT_EQ(DosToUnix(UnixToDos(unix_path).c_str()).path, unix_path);
    }
}

TEST(FullDosPath, ResolvesByTextAndAllowsWildcards) {
    EXPECT_EQ(FullDosPath("c:\\Windows\\..\\x\\*.*").path, "C:\\x\\*.*");
    EXPECT_EQ(FullDosPath("/usr/bin/").path, "Z:\\usr\\bin\\");
    EXPECT_EQ(FullDosPath((DriveCRoot() + "/temp").c_str()).path, "C:\\temp");
    EXPECT_EQ(FullDosPath("Q:\\x").error, static_cast<DWORD>(ERROR_PATH_NOT_FOUND));
}

TEST(CaseFolding, CoversWindows1252Letters) {
    EXPECT_TRUE(EqualsNoCase("abcXYZ", "ABCxyz"));
    EXPECT_TRUE(EqualsNoCase("\xE9\xE8\xFF\x9A\x9C\x9E", "\xC9\xC8\x9F\x8A\x8C\x8E"));
    EXPECT_FALSE(EqualsNoCase("\xF7", "\xD7"));  // division and multiplication signs
    EXPECT_FALSE(EqualsNoCase("\xDF", "\xFF"));  // sharp s has no capital here
    EXPECT_FALSE(EqualsNoCase("a", "ab"));
    EXPECT_EQ(ToLowerCp1252('\xC4'), '\xE4');
    EXPECT_EQ(ToUpperCp1252('['), '[');
}

TEST(Win32ErrorFromErrno, NotFoundDependsOnTheParentFolder) {
    std::string folder = zq::test::MakeScratchFolder("errno");
    EXPECT_EQ(Win32ErrorFromErrno(ENOENT, folder + "/missing"),
              static_cast<DWORD>(ERROR_FILE_NOT_FOUND));
    EXPECT_EQ(Win32ErrorFromErrno(ENOENT, folder + "/missing/file"),
              static_cast<DWORD>(ERROR_PATH_NOT_FOUND));
    EXPECT_EQ(Win32ErrorFromErrno(ENOENT, folder + "/missing/"),
              static_cast<DWORD>(ERROR_FILE_NOT_FOUND));
}

TEST(Win32ErrorFromErrno, MapsTheCommonCodes) {
    const std::pair<int, DWORD> table[] = {
        {0, ERROR_SUCCESS},
        {EACCES, ERROR_ACCESS_DENIED},
        {EPERM, ERROR_ACCESS_DENIED},
        {EISDIR, ERROR_ACCESS_DENIED},
        {EEXIST, ERROR_FILE_EXISTS},
        {ENOTDIR, ERROR_PATH_NOT_FOUND},
        {ENOTEMPTY, ERROR_DIR_NOT_EMPTY},
        {ENAMETOOLONG, ERROR_FILENAME_EXCED_RANGE},
        {ENOSPC, ERROR_DISK_FULL},
        {EROFS, ERROR_WRITE_PROTECT},
        {EMFILE, ERROR_TOO_MANY_OPEN_FILES},
        {EXDEV, ERROR_NOT_SAME_DEVICE},
        {EBADF, ERROR_INVALID_HANDLE},
        {EIO, ERROR_GEN_FAILURE},
    };
    for (const auto& [error, code] : table) {
        EXPECT_EQ(Win32ErrorFromErrno(error), code) << "errno " << error;
    }
    SetLastError(0xDEADBEEF);
    EXPECT_EQ(SetLastErrorFromErrno(EROFS), static_cast<DWORD>(ERROR_WRITE_PROTECT));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_WRITE_PROTECT));
}

}  // namespace
}  // namespace zq::platform::internal
