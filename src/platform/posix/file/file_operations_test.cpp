#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <string>

#include "platform/posix/base/host.h"
#include "platform/posix/file/file_test_helpers.h"
#include "platform/win32.h"

namespace zq::platform::internal {
namespace {

using namespace testing_support;

void ExpectFailure(BOOL result, DWORD error, const std::string& what) {
    EXPECT_FALSE(result) << what;
    EXPECT_EQ(GetLastError(), error) << what;
}

// ---- DeleteFileA ----

TEST(DeleteFileA, RemovesFilesOnly) {
    ScratchFolder folder;
    ASSERT_TRUE(zq::test::WriteFileBytes(folder.Unix("Doomed.txt"), "x"));
    SetLastError(0xDEADBEEF);
    EXPECT_TRUE(DeleteFileA(folder.Dos("doomed.TXT").c_str()));
    EXPECT_EQ(GetLastError(), 0xDEADBEEFu);
    EXPECT_FALSE(Exists(folder.Unix("Doomed.txt")));

    ExpectFailure(DeleteFileA(folder.Dos("Doomed.txt").c_str()), ERROR_FILE_NOT_FOUND, "gone");
    ExpectFailure(DeleteFileA(folder.Dos("no\\file").c_str()), ERROR_PATH_NOT_FOUND, "no dir");
    ExpectFailure(DeleteFileA(folder.dos_path().c_str()), ERROR_ACCESS_DENIED, "folder");
    ExpectFailure(DeleteFileA(nullptr), ERROR_PATH_NOT_FOUND, "NULL");

    ASSERT_TRUE(zq::test::WriteFileBytes(folder.Unix("ro"), "x"));
    ASSERT_TRUE(SetFileAttributesA(folder.Dos("ro").c_str(), FILE_ATTRIBUTE_READONLY));
    ExpectFailure(DeleteFileA(folder.Dos("ro").c_str()), ERROR_ACCESS_DENIED, "read-only");
    EXPECT_TRUE(Exists(folder.Unix("ro")));
}

// ---- MoveFileA / MoveFileExA ----

TEST(MoveFileA, RenamesAndMovesFilesAndFolders) {
    ScratchFolder folder;
    ASSERT_TRUE(zq::test::WriteFileBytes(folder.Unix("a.txt"), "A"));
    ASSERT_EQ(mkdir(folder.Unix("Sub").c_str(), 0755), 0);
    SetLastError(0xDEADBEEF);
    ASSERT_TRUE(MoveFileA(folder.Dos("A.TXT").c_str(), folder.Dos("sub\\b.txt").c_str()));
    EXPECT_EQ(GetLastError(), 0xDEADBEEFu);
    EXPECT_EQ(zq::test::ReadFileBytes(folder.Unix("Sub/b.txt")), "A");
    ASSERT_TRUE(MoveFileA(folder.Dos("sub").c_str(), folder.Dos("Moved").c_str()));
    EXPECT_EQ(zq::test::ReadFileBytes(folder.Unix("Moved/b.txt")), "A");
}

TEST(MoveFileA, ChangingOnlyTheCaseIsARename) {
    ScratchFolder folder;
    ASSERT_TRUE(zq::test::WriteFileBytes(folder.Unix("name.txt"), "x"));
    ASSERT_TRUE(MoveFileA(folder.Dos("name.txt").c_str(), folder.Dos("NAME.TXT").c_str()));
    EXPECT_TRUE(Exists(folder.Unix("NAME.TXT")));
    EXPECT_FALSE(Exists(folder.Unix("name.txt")));
    EXPECT_TRUE(MoveFileA(folder.Dos("NAME.TXT").c_str(), folder.Dos("NAME.TXT").c_str()));
}

TEST(MoveFileA, ExistingTargetNeedsReplaceExisting) {
    ScratchFolder folder;
    ASSERT_TRUE(zq::test::WriteFileBytes(folder.Unix("from"), "new"));
    ASSERT_TRUE(zq::test::WriteFileBytes(folder.Unix("to"), "old"));
    ASSERT_EQ(mkdir(folder.Unix("dir").c_str(), 0755), 0);
    SetLastError(0xDEADBEEF);
    ExpectFailure(MoveFileA(folder.Dos("from").c_str(), folder.Dos("to").c_str()),
                  ERROR_ALREADY_EXISTS, "no replace");
    ExpectFailure(MoveFileExA(folder.Dos("from").c_str(), folder.Dos("dir").c_str(),
                              MOVEFILE_REPLACE_EXISTING),
                  ERROR_ACCESS_DENIED, "onto a folder");
    ASSERT_TRUE(MoveFileExA(folder.Dos("from").c_str(), folder.Dos("to").c_str(),
                            MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH));
    EXPECT_EQ(zq::test::ReadFileBytes(folder.Unix("to")), "new");
    EXPECT_FALSE(Exists(folder.Unix("from")));
}

TEST(MoveFileA, Failures) {
    ScratchFolder folder;
    ASSERT_TRUE(zq::test::WriteFileBytes(folder.Unix("f"), "x"));
    SetLastError(0xDEADBEEF);
    ExpectFailure(MoveFileA(folder.Dos("missing").c_str(), folder.Dos("g").c_str()),
                  ERROR_FILE_NOT_FOUND, "missing source");
    ExpectFailure(MoveFileA(folder.Dos("f").c_str(), folder.Dos("no\\g").c_str()),
                  ERROR_PATH_NOT_FOUND, "missing target folder");
    ExpectFailure(MoveFileExA(folder.Dos("f").c_str(), nullptr, 0), ERROR_INVALID_PARAMETER,
                  "NULL target");
    ExpectFailure(
        MoveFileExA(folder.Dos("f").c_str(), folder.Dos("g").c_str(), MOVEFILE_DELAY_UNTIL_REBOOT),
        ERROR_NOT_SUPPORTED, "delayed");
    EXPECT_TRUE(Exists(folder.Unix("f")));
}

// Renames fail with a chosen errno.
class FailingRenameHost : public ForwardingHost {
public:
    explicit FailingRenameHost(int error) : ForwardingHost(SystemHost()), error_(error) {}
    int Rename(const char*, const char*) override {
        errno = error_;
        return -1;
    }

private:
    int error_;
};

TEST(MoveFileA, FailedRenameLeavesBothNamesAlone) {
    ScratchFolder folder;
    ASSERT_TRUE(zq::test::WriteFileBytes(folder.Unix("f"), "x"));
    FailingRenameHost host(EACCES);
    ScopedHost scoped(host);
    ExpectFailure(MoveFileA(folder.Dos("f").c_str(), folder.Dos("g").c_str()), ERROR_ACCESS_DENIED,
                  "refused");
    EXPECT_TRUE(Exists(folder.Unix("f")));
    EXPECT_FALSE(Exists(folder.Unix("g")));
}

TEST(MoveFileA, AnotherFileSystemMovesFilesByCopying) {
    ScratchFolder folder;
    ASSERT_TRUE(zq::test::WriteFileBytes(folder.Unix("f"), "payload"));
    ASSERT_EQ(mkdir(folder.Unix("d").c_str(), 0755), 0);
    FailingRenameHost host(EXDEV);
    ScopedHost scoped(host);
    ExpectFailure(MoveFileExA(folder.Dos("f").c_str(), folder.Dos("g").c_str(), 0),
                  ERROR_NOT_SAME_DEVICE, "copy not allowed");
    ExpectFailure(MoveFileA(folder.Dos("d").c_str(), folder.Dos("e").c_str()),
                  ERROR_NOT_SAME_DEVICE, "folder");
    ASSERT_TRUE(MoveFileA(folder.Dos("f").c_str(), folder.Dos("g").c_str()));
    EXPECT_EQ(zq::test::ReadFileBytes(folder.Unix("g")), "payload");
    EXPECT_FALSE(Exists(folder.Unix("f")));
}

// ---- CopyFileA ----

TEST(CopyFileA, CopiesBytesAttributesAndWriteTime) {
    ScratchFolder folder;
    std::string payload("bin\0ary\r\n\xFF", 11);
    ASSERT_TRUE(zq::test::WriteFileBytes(folder.Unix("src"), payload));
    struct timespec times[2] = {{0, UTIME_OMIT}, {946684800, 0}};
    ASSERT_EQ(utimensat(AT_FDCWD, folder.Unix("src").c_str(), times, 0), 0);
    ASSERT_TRUE(SetFileAttributesA(folder.Dos("src").c_str(), FILE_ATTRIBUTE_READONLY));

    SetLastError(0xDEADBEEF);
    ASSERT_TRUE(CopyFileA(folder.Dos("SRC").c_str(), folder.Dos("dst").c_str(), TRUE));
    EXPECT_EQ(zq::test::ReadFileBytes(folder.Unix("dst")), payload);
    EXPECT_TRUE(GetFileAttributesA(folder.Dos("dst").c_str()) & FILE_ATTRIBUTE_READONLY);
    struct stat st;
    ASSERT_EQ(stat(folder.Unix("dst").c_str(), &st), 0);
    EXPECT_EQ(st.st_mtime, 946684800);

    ExpectFailure(CopyFileA(folder.Dos("src").c_str(), folder.Dos("dst").c_str(), TRUE),
                  ERROR_FILE_EXISTS, "fail if exists");
    ExpectFailure(CopyFileA(folder.Dos("src").c_str(), folder.Dos("dst").c_str(), FALSE),
                  ERROR_ACCESS_DENIED, "read-only target");
}

TEST(CopyFileA, ReplacesAWritableTarget) {
    ScratchFolder folder;
    ASSERT_TRUE(zq::test::WriteFileBytes(folder.Unix("src"), "short"));
    ASSERT_TRUE(zq::test::WriteFileBytes(folder.Unix("dst"), "much longer old text"));
    ASSERT_TRUE(CopyFileA(folder.Dos("src").c_str(), folder.Dos("dst").c_str(), FALSE));
    EXPECT_EQ(zq::test::ReadFileBytes(folder.Unix("dst")), "short");
}

TEST(CopyFileA, Failures) {
    ScratchFolder folder;
    ASSERT_TRUE(zq::test::WriteFileBytes(folder.Unix("src"), "x"));
    SetLastError(0xDEADBEEF);
    ExpectFailure(CopyFileA(folder.Dos("missing").c_str(), folder.Dos("d").c_str(), FALSE),
                  ERROR_FILE_NOT_FOUND, "missing source");
    ExpectFailure(CopyFileA(folder.dos_path().c_str(), folder.Dos("d").c_str(), FALSE),
                  ERROR_ACCESS_DENIED, "folder source");
    ExpectFailure(CopyFileA(folder.Dos("src").c_str(), folder.Dos("src").c_str(), FALSE),
                  ERROR_SHARING_VIOLATION, "onto itself");
    EXPECT_EQ(zq::test::ReadFileBytes(folder.Unix("src")), "x");
    ExpectFailure(CopyFileA(nullptr, folder.Dos("d").c_str(), FALSE), ERROR_INVALID_PARAMETER,
                  "NULL");
}

class NoSpaceHost : public ForwardingHost {
public:
    NoSpaceHost() : ForwardingHost(SystemHost()) {}
    ssize_t Write(int, const void*, size_t) override {
        errno = ENOSPC;
        return -1;
    }
};

TEST(CopyFileA, FullDiskRemovesThePartialTarget) {
    ScratchFolder folder;
    ASSERT_TRUE(zq::test::WriteFileBytes(folder.Unix("src"), std::string(100000, 'z')));
    NoSpaceHost host;
    ScopedHost scoped(host);
    ExpectFailure(CopyFileA(folder.Dos("src").c_str(), folder.Dos("dst").c_str(), FALSE),
                  ERROR_DISK_FULL, "disk full");
    EXPECT_FALSE(Exists(folder.Unix("dst")));
}

// ---- Folders ----

TEST(CreateDirectoryA, CreatesOneLevel) {
    ScratchFolder folder;
    SECURITY_DESCRIPTOR descriptor;
    ASSERT_TRUE(InitializeSecurityDescriptor(&descriptor, SECURITY_DESCRIPTOR_REVISION));
    SECURITY_ATTRIBUTES security{sizeof(SECURITY_ATTRIBUTES), &descriptor, FALSE};
    SetLastError(0xDEADBEEF);
    EXPECT_TRUE(CreateDirectoryA(folder.Dos("New").c_str(), &security));
    EXPECT_TRUE(CreateDirectoryA((folder.Dos("other") + "\\").c_str(), nullptr));
    EXPECT_EQ(GetLastError(), 0xDEADBEEFu);
    EXPECT_EQ(GetFileAttributesA(folder.Dos("new").c_str()),
              static_cast<DWORD>(FILE_ATTRIBUTE_DIRECTORY));

    ExpectFailure(CreateDirectoryA(folder.Dos("NEW").c_str(), nullptr), ERROR_ALREADY_EXISTS,
                  "exists");
    ASSERT_TRUE(zq::test::WriteFileBytes(folder.Unix("file"), "x"));
    ExpectFailure(CreateDirectoryA(folder.Dos("file").c_str(), nullptr), ERROR_ALREADY_EXISTS,
                  "file of that name");
    ExpectFailure(CreateDirectoryA(folder.Dos("a\\b").c_str(), nullptr), ERROR_PATH_NOT_FOUND,
                  "missing parent");
    ExpectFailure(CreateDirectoryA("", nullptr), ERROR_PATH_NOT_FOUND, "empty");
}

TEST(RemoveDirectoryA, RemovesEmptyFoldersOnly) {
    ScratchFolder folder;
    ASSERT_EQ(mkdir(folder.Unix("empty").c_str(), 0755), 0);
    ASSERT_EQ(mkdir(folder.Unix("full").c_str(), 0755), 0);
    ASSERT_TRUE(zq::test::WriteFileBytes(folder.Unix("full/x"), "x"));
    SetLastError(0xDEADBEEF);
    EXPECT_TRUE(RemoveDirectoryA(folder.Dos("EMPTY").c_str()));
    EXPECT_EQ(GetLastError(), 0xDEADBEEFu);
    EXPECT_FALSE(Exists(folder.Unix("empty")));

    ExpectFailure(RemoveDirectoryA(folder.Dos("full").c_str()), ERROR_DIR_NOT_EMPTY, "not empty");
    ExpectFailure(RemoveDirectoryA(folder.Dos("full\\x").c_str()), ERROR_DIRECTORY, "a file");
    ExpectFailure(RemoveDirectoryA(folder.Dos("empty").c_str()), ERROR_FILE_NOT_FOUND, "gone");
    ExpectFailure(RemoveDirectoryA(folder.Dos("a\\b").c_str()), ERROR_PATH_NOT_FOUND, "no parent");
    ExpectFailure(RemoveDirectoryA("C:\\"), ERROR_ACCESS_DENIED, "drive root");

    CurrentFolderGuard guard;
    ASSERT_TRUE(SetCurrentDirectoryA(folder.Dos("full").c_str()));
    ASSERT_TRUE(DeleteFileA("x"));
    ExpectFailure(RemoveDirectoryA(folder.Dos("full").c_str()), ERROR_SHARING_VIOLATION,
                  "current folder");
}

TEST(Permissions, FolderWithoutWriteAccessRefusesNewFiles) {
    if (RunningAsRoot()) {
        GTEST_SKIP() << "root writes into any folder";
    }
    ScratchFolder folder;
    ASSERT_EQ(mkdir(folder.Unix("locked").c_str(), 0555), 0);
    SetLastError(0xDEADBEEF);
    EXPECT_EQ(CreateFileA(folder.Dos("locked\\f").c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW, 0,
                          nullptr),
              INVALID_HANDLE_VALUE);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_ACCESS_DENIED));
    ExpectFailure(CreateDirectoryA(folder.Dos("locked\\d").c_str(), nullptr), ERROR_ACCESS_DENIED,
                  "mkdir");
    chmod(folder.Unix("locked").c_str(), 0755);
}

}  // namespace
}  // namespace zq::platform::internal
