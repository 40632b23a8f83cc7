#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <string>

#include "platform/posix/base/host.h"
#include "platform/posix/file/file_test_helpers.h"
#include "platform/win32.h"

namespace zq::platform::internal {
namespace {

using namespace testing_support;

// ---- _l functions ----

TEST(LegacyFile, CreateWriteSeekReadClose) {
    ScratchFolder folder;
    HFILE file = _lcreat(folder.Dos("old.dat").c_str(), 0);
    ASSERT_NE(file, HFILE_ERROR);
    EXPECT_EQ(_lwrite(file, "0123456789", 10), 10u);
    EXPECT_EQ(_llseek(file, 0, FILE_CURRENT), 10);
    EXPECT_EQ(_llseek(file, -4, FILE_END), 6);
    char buffer[8];
    std::memset(buffer, kSentinel, sizeof buffer);
    EXPECT_EQ(_lread(file, buffer, sizeof buffer), 4u);
    EXPECT_EQ(std::string(buffer, 4), "6789");
    EXPECT_EQ(buffer[4], kSentinel);
    // Writing nothing cuts the file at the pointer.
    EXPECT_EQ(_llseek(file, 3, FILE_BEGIN), 3);
    EXPECT_EQ(_lwrite(file, "", 0), 0u);
    EXPECT_EQ(_lclose(file), 0);
    EXPECT_EQ(zq::test::ReadFileBytes(folder.Unix("old.dat")), "012");

    SetLastError(0xDEADBEEF);
    EXPECT_EQ(_lclose(file), HFILE_ERROR);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_HANDLE));
    EXPECT_EQ(_lread(file, buffer, 1), static_cast<UINT>(HFILE_ERROR));
    EXPECT_EQ(_lwrite(file, "x", 1), static_cast<UINT>(HFILE_ERROR));
    EXPECT_EQ(_llseek(file, 0, FILE_BEGIN), HFILE_ERROR);
    EXPECT_EQ(_llseek(HFILE_ERROR, -1, FILE_BEGIN), HFILE_ERROR);
}

TEST(LegacyFile, OpenModesAndSharing) {
    ScratchFolder folder;
    ASSERT_TRUE(zq::test::WriteFileBytes(folder.Unix("f"), "abc"));
    HFILE reader = _lopen(folder.Dos("F").c_str(), OF_READ | OF_SHARE_DENY_WRITE);
    ASSERT_NE(reader, HFILE_ERROR);
    EXPECT_EQ(_lwrite(reader, "x", 1), static_cast<UINT>(HFILE_ERROR));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_ACCESS_DENIED));
    SetLastError(0xDEADBEEF);
    EXPECT_EQ(_lopen(folder.Dos("f").c_str(), OF_WRITE | OF_SHARE_DENY_NONE), HFILE_ERROR);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_SHARING_VIOLATION));
    HFILE second = _lopen(folder.Dos("f").c_str(), OF_READ | OF_SHARE_DENY_NONE);
    EXPECT_NE(second, HFILE_ERROR);
    _lclose(second);
    _lclose(reader);
    SetLastError(0xDEADBEEF);
    EXPECT_EQ(_lopen(folder.Dos("missing").c_str(), OF_READ), HFILE_ERROR);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_FILE_NOT_FOUND));
}

TEST(LegacyFile, CreateAttributes) {
    ScratchFolder folder;
    HFILE file = _lcreat(folder.Dos("ro").c_str(), 1);
    ASSERT_NE(file, HFILE_ERROR);
    EXPECT_EQ(_lwrite(file, "x", 1), 1u);
    _lclose(file);
    EXPECT_TRUE(GetFileAttributesA(folder.Dos("ro").c_str()) & FILE_ATTRIBUTE_READONLY);
}

// ---- OpenFile ----

class OpenFileTest : public ::testing::Test {
protected:
    void SetUp() override {
        std::memset(&ofs_, kSentinel, sizeof ofs_);
        ASSERT_TRUE(zq::test::WriteFileBytes(folder_.Unix("here.txt"), "content"));
    }
    ScratchFolder folder_;
    OFSTRUCT ofs_;
};

TEST_F(OpenFileTest, ParseFillsThePathWithoutTouchingTheDisk) {
    CurrentFolderGuard guard;
    ASSERT_TRUE(SetCurrentDirectoryA("C:\\windows"));
    EXPECT_EQ(OpenFile("sub\\..\\New.ini", &ofs_, OF_PARSE), 0);
    EXPECT_EQ(ofs_.cBytes, sizeof(OFSTRUCT));
    EXPECT_EQ(ofs_.nErrCode, 0u);
    EXPECT_STREQ(ofs_.szPathName, "C:\\windows\\New.ini");
    EXPECT_EQ(GetFileAttributesA("C:\\windows\\New.ini"), INVALID_FILE_ATTRIBUTES);
}

TEST_F(OpenFileTest, ExistReadAndDelete) {
    std::string path = folder_.Dos("HERE.TXT");
    EXPECT_EQ(OpenFile(path.c_str(), &ofs_, OF_EXIST), 1);
    EXPECT_EQ(ofs_.nErrCode, 0u);
    EXPECT_STREQ(ofs_.szPathName, path.c_str());
    EXPECT_NE(ofs_.Reserved1, 0u);  // DOS date of the last write

    HFILE file = OpenFile(path.c_str(), &ofs_, OF_READ);
    ASSERT_NE(file, HFILE_ERROR);
    char buffer[16] = {};
    EXPECT_EQ(_lread(file, buffer, sizeof buffer), 7u);
    EXPECT_STREQ(buffer, "content");
    _lclose(file);

    EXPECT_EQ(OpenFile(path.c_str(), &ofs_, OF_DELETE), 1);
    EXPECT_FALSE(Exists(folder_.Unix("here.txt")));
    SetLastError(0xDEADBEEF);
    EXPECT_EQ(OpenFile(path.c_str(), &ofs_, OF_EXIST), HFILE_ERROR);
    EXPECT_EQ(ofs_.nErrCode, static_cast<WORD>(ERROR_FILE_NOT_FOUND));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_FILE_NOT_FOUND));
    EXPECT_EQ(OpenFile(folder_.Dos("no\\x").c_str(), &ofs_, OF_READ), HFILE_ERROR);
    EXPECT_EQ(ofs_.nErrCode, static_cast<WORD>(ERROR_PATH_NOT_FOUND));
}

TEST_F(OpenFileTest, CreateMakesAnEmptyFile) {
    HFILE file = OpenFile(folder_.Dos("here.txt").c_str(), &ofs_, OF_CREATE | OF_WRITE);
    ASSERT_NE(file, HFILE_ERROR);
    EXPECT_EQ(_lwrite(file, "new", 3), 3u);
    _lclose(file);
    EXPECT_EQ(zq::test::ReadFileBytes(folder_.Unix("here.txt")), "new");
    EXPECT_EQ(OpenFile(folder_.Dos("made.txt").c_str(), &ofs_, OF_CREATE | OF_EXIST), 1);
    EXPECT_TRUE(Exists(folder_.Unix("made.txt")));
}

TEST_F(OpenFileTest, BareNamesAreSearchedForInTheWindowsFolders) {
    const std::string file = WindowsFolderUnix() + "/zqopenfile.ini";
    ASSERT_TRUE(zq::test::WriteFileBytes(file, "[s]"));
    EXPECT_EQ(OpenFile("ZQOPENFILE.INI", &ofs_, OF_EXIST), 1);
    EXPECT_STREQ(ofs_.szPathName, "C:\\windows\\ZQOPENFILE.INI");
    EXPECT_EQ(OpenFile("nowhere.ini", &ofs_, OF_EXIST), HFILE_ERROR);
    EXPECT_EQ(ofs_.nErrCode, static_cast<WORD>(ERROR_FILE_NOT_FOUND));
    std::remove(file.c_str());
}

TEST_F(OpenFileTest, ReopenVerifiesTheDate) {
    std::string path = folder_.Dos("here.txt");
    ASSERT_EQ(OpenFile(path.c_str(), &ofs_, OF_EXIST), 1);
    HFILE again = OpenFile(nullptr, &ofs_, OF_REOPEN | OF_VERIFY | OF_READ);
    ASSERT_NE(again, HFILE_ERROR);
    _lclose(again);
    ofs_.Reserved1 = static_cast<WORD>(ofs_.Reserved1 + 1);
    EXPECT_EQ(OpenFile(nullptr, &ofs_, OF_REOPEN | OF_VERIFY | OF_READ), HFILE_ERROR);
}

TEST_F(OpenFileTest, BadArguments) {
    SetLastError(0xDEADBEEF);
    EXPECT_EQ(OpenFile("x", nullptr, OF_EXIST), HFILE_ERROR);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_PARAMETER));
    EXPECT_EQ(OpenFile(nullptr, &ofs_, OF_EXIST), HFILE_ERROR);
    EXPECT_EQ(ofs_.nErrCode, static_cast<WORD>(ERROR_INVALID_PARAMETER));
    std::string long_name = "C:\\" + std::string(130, 'n');  // over the 128-byte szPathName
    EXPECT_EQ(OpenFile(long_name.c_str(), &ofs_, OF_PARSE), HFILE_ERROR);
    EXPECT_EQ(ofs_.nErrCode, static_cast<WORD>(ERROR_FILENAME_EXCED_RANGE));
}

// ---- GetTempFileNameA ----

class FrozenClockHost : public ForwardingHost {
public:
    explicit FrozenClockHost(uint64_t millis) : ForwardingHost(SystemHost()), millis_(millis) {}
    uint64_t MonotonicMillis() override { return millis_; }

private:
    uint64_t millis_;
};

TEST(GetTempFileNameA, GivenNumberOnlyFormats) {
    ScratchFolder folder;
    char name[MAX_PATH];
    std::memset(name, kSentinel, sizeof name);
    SetLastError(0xDEADBEEF);
    EXPECT_EQ(GetTempFileNameA(folder.dos_path().c_str(), "FAXES", 0x1001A, name), 0x1001Au);
    EXPECT_EQ(std::string(name), folder.Dos("FAX1A.TMP"));
    EXPECT_EQ(GetLastError(), 0xDEADBEEFu);
    EXPECT_FALSE(Exists(folder.Unix("FAX1A.TMP")));
    EXPECT_EQ(GetTempFileNameA("C:\\temp\\", nullptr, 0xBEEF, name), 0xBEEFu);
    EXPECT_STREQ(name, "C:\\temp\\BEEF.TMP");
}

TEST(GetTempFileNameA, ZeroCreatesAFreshFile) {
    ScratchFolder folder;
    FrozenClockHost host(0x51234);
    ScopedHost scoped(host);
    ASSERT_TRUE(zq::test::WriteFileBytes(folder.Unix("ZQ1234.TMP"), "taken"));
    char name[MAX_PATH];
    EXPECT_EQ(GetTempFileNameA(folder.dos_path().c_str(), "ZQ", 0, name), 0x1235u);
    EXPECT_EQ(std::string(name), folder.Dos("ZQ1235.TMP"));
    EXPECT_TRUE(Exists(folder.Unix("ZQ1235.TMP")));
    EXPECT_EQ(zq::test::ReadFileBytes(folder.Unix("ZQ1234.TMP")), "taken");
}

TEST(GetTempFileNameA, Failures) {
    ScratchFolder folder;
    char name[MAX_PATH];
    std::memset(name, kSentinel, sizeof name);
    SetLastError(0xDEADBEEF);
    EXPECT_EQ(GetTempFileNameA(folder.Dos("missing").c_str(), "ZQ", 0, name), 0u);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_DIRECTORY));
    EXPECT_EQ(name[0], kSentinel);
    EXPECT_EQ(GetTempFileNameA(nullptr, "ZQ", 0, name), 0u);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_PARAMETER));
    std::string deep = "C:\\" + std::string(250, 'd');
    EXPECT_EQ(GetTempFileNameA(deep.c_str(), "ZQ", 1, name), 0u);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_BUFFER_OVERFLOW));
}

// ---- Security descriptors ----

TEST(InitializeSecurityDescriptor, ClearsAndSetsTheRevision) {
    SECURITY_DESCRIPTOR descriptor;
    std::memset(&descriptor, kSentinel, sizeof descriptor);
    SetLastError(0xDEADBEEF);
    ASSERT_TRUE(InitializeSecurityDescriptor(&descriptor, SECURITY_DESCRIPTOR_REVISION));
    EXPECT_EQ(GetLastError(), 0xDEADBEEFu);
    EXPECT_EQ(descriptor.Revision, 1u);
    EXPECT_EQ(descriptor.Control, 0u);
    EXPECT_EQ(descriptor.Owner, nullptr);
    EXPECT_EQ(descriptor.Dacl, nullptr);
    EXPECT_FALSE(InitializeSecurityDescriptor(&descriptor, 2));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_UNKNOWN_REVISION));
    EXPECT_FALSE(InitializeSecurityDescriptor(nullptr, SECURITY_DESCRIPTOR_REVISION));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_PARAMETER));
}

}  // namespace
}  // namespace zq::platform::internal
