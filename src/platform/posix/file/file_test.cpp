#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstring>
#include <string>

#include "platform/posix/base/host.h"
#include "platform/posix/file/file_object.h"
#include "platform/posix/file/file_test_helpers.h"
#include "platform/win32.h"

namespace zq::platform::internal {
namespace {

using namespace testing_support;

HANDLE Open(const std::string& path, DWORD access, DWORD share = 0,
            DWORD disposition = OPEN_EXISTING, DWORD flags = FILE_ATTRIBUTE_NORMAL) {
    return CreateFileA(path.c_str(), access, share, nullptr, disposition, flags, nullptr);
}

// ---- Creation dispositions ----

struct DispositionCase {
    DWORD disposition;
    bool exists_before;
    bool succeeds;
    DWORD last_error;      // after the call
    const char* contents;  // of the file afterwards; nullptr: no file
};

class Dispositions : public ::testing::TestWithParam<DispositionCase> {};

TEST_P(Dispositions, FollowWindowsRules) {
    const DispositionCase& c = GetParam();
    ScratchFolder folder;
    if (c.exists_before) {
        ASSERT_TRUE(zq::test::WriteFileBytes(folder.Unix("file.txt"), "old"));
    }
    SetLastError(0xDEADBEEF);
    HandleGuard file(Open(folder.Dos("FILE.TXT"), GENERIC_READ | GENERIC_WRITE, 0, c.disposition));
    EXPECT_EQ(file.get() != INVALID_HANDLE_VALUE, c.succeeds);
    EXPECT_EQ(GetLastError(), c.last_error);
    file.Reset();
    if (c.contents) {
        // The caller's spelling is kept for a new file; an old one keeps its name.
        std::string name = c.exists_before ? "file.txt" : "FILE.TXT";
        EXPECT_EQ(zq::test::ReadFileBytes(folder.Unix(name)), c.contents);
    } else {
        EXPECT_FALSE(Exists(folder.Unix("FILE.TXT")));
        EXPECT_FALSE(Exists(folder.Unix("file.txt")));
    }
}

INSTANTIATE_TEST_SUITE_P(
    CreateFileA, Dispositions,
    ::testing::Values(DispositionCase{CREATE_NEW, false, true, 0, ""},
                      DispositionCase{CREATE_NEW, true, false, ERROR_FILE_EXISTS, "old"},
                      DispositionCase{CREATE_ALWAYS, false, true, 0, ""},
                      DispositionCase{CREATE_ALWAYS, true, true, ERROR_ALREADY_EXISTS, ""},
                      DispositionCase{OPEN_EXISTING, false, false, ERROR_FILE_NOT_FOUND, nullptr},
                      DispositionCase{OPEN_EXISTING, true, true, 0, "old"},
                      DispositionCase{OPEN_ALWAYS, false, true, 0, ""},
                      DispositionCase{OPEN_ALWAYS, true, true, ERROR_ALREADY_EXISTS, "old"},
                      DispositionCase{TRUNCATE_EXISTING, false, false, ERROR_FILE_NOT_FOUND,
                                      nullptr},
                      DispositionCase{TRUNCATE_EXISTING, true, true, 0, ""},
                      DispositionCase{0, false, false, ERROR_INVALID_PARAMETER, nullptr},
                      DispositionCase{6, true, false, ERROR_INVALID_PARAMETER, "old"}));

TEST(CreateFileA, BadNames) {
    ScratchFolder folder;
    const struct {
        const char* path;
        DWORD error;
    } cases[] = {
        {nullptr, ERROR_PATH_NOT_FOUND},       {"", ERROR_PATH_NOT_FOUND},
        {"Q:\\file", ERROR_PATH_NOT_FOUND},    {"C:\\no such folder\\file", ERROR_PATH_NOT_FOUND},
        {"C:\\temp\\a*b", ERROR_INVALID_NAME},
    };
    for (const auto& c : cases) {
        SetLastError(0xDEADBEEF);
        EXPECT_EQ(CreateFileA(c.path, GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr),
                  INVALID_HANDLE_VALUE);
        EXPECT_EQ(GetLastError(), c.error) << (c.path ? c.path : "NULL");
    }
    std::string too_long = folder.Dos(std::string(MAX_PATH, 'x'));
    EXPECT_EQ(Open(too_long, GENERIC_WRITE, 0, CREATE_ALWAYS), INVALID_HANDLE_VALUE);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_FILENAME_EXCED_RANGE));
    SetLastError(0xDEADBEEF);
    EXPECT_EQ(Open(folder.dos_path(), GENERIC_READ), INVALID_HANDLE_VALUE);  // a folder
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_ACCESS_DENIED));
    EXPECT_EQ(Open(folder.dos_path(), GENERIC_READ | GENERIC_WRITE, 0, CREATE_ALWAYS),
              INVALID_HANDLE_VALUE);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_ACCESS_DENIED));
}

TEST(CreateFileA, TruncateNeedsWriteAccess) {
    ScratchFolder folder;
    ASSERT_TRUE(zq::test::WriteFileBytes(folder.Unix("f"), "keep"));
    SetLastError(0xDEADBEEF);
    EXPECT_EQ(Open(folder.Dos("f"), GENERIC_READ, 0, TRUNCATE_EXISTING), INVALID_HANDLE_VALUE);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_PARAMETER));
    EXPECT_EQ(zq::test::ReadFileBytes(folder.Unix("f")), "keep");
}

TEST(CreateFileA, ReadOnlyFilesRefuseWritingEvenForRoot) {
    ScratchFolder folder;
    HandleGuard created(
        Open(folder.Dos("ro"), GENERIC_WRITE, 0, CREATE_NEW, FILE_ATTRIBUTE_READONLY));
    ASSERT_NE(created.get(), INVALID_HANDLE_VALUE);
    DWORD written = 0;
    EXPECT_TRUE(WriteFile(created.get(), "abc", 3, &written, nullptr));  // the creating handle may
    created.Reset();
    EXPECT_EQ(GetFileAttributesA(folder.Dos("ro").c_str()) & FILE_ATTRIBUTE_READONLY,
              static_cast<DWORD>(FILE_ATTRIBUTE_READONLY));

    for (DWORD disposition : {OPEN_EXISTING, OPEN_ALWAYS, CREATE_ALWAYS, TRUNCATE_EXISTING}) {
        SetLastError(0xDEADBEEF);
        EXPECT_EQ(Open(folder.Dos("ro"), GENERIC_WRITE, 0, disposition), INVALID_HANDLE_VALUE);
        EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_ACCESS_DENIED)) << disposition;
    }
    HandleGuard reader(Open(folder.Dos("ro"), GENERIC_READ));
    EXPECT_NE(reader.get(), INVALID_HANDLE_VALUE);
    EXPECT_EQ(zq::test::ReadFileBytes(folder.Unix("ro")), "abc");
}

TEST(CreateFileA, ReplacingHiddenFileNeedsTheSameAttributes) {
    if (!KeepsExtraAttributeBits()) {
        GTEST_SKIP() << "file system refuses user extended attributes";
    }
    ScratchFolder folder;
    ASSERT_TRUE(zq::test::WriteFileBytes(folder.Unix("h"), "x"));
    ASSERT_TRUE(SetFileAttributesA(folder.Dos("h").c_str(), FILE_ATTRIBUTE_HIDDEN));
    SetLastError(0xDEADBEEF);
    EXPECT_EQ(Open(folder.Dos("h"), GENERIC_WRITE, 0, CREATE_ALWAYS), INVALID_HANDLE_VALUE);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_ACCESS_DENIED));
    HandleGuard replaced(
        Open(folder.Dos("h"), GENERIC_WRITE, 0, CREATE_ALWAYS, FILE_ATTRIBUTE_HIDDEN));
    EXPECT_NE(replaced.get(), INVALID_HANDLE_VALUE);
    EXPECT_EQ(GetFileAttributesA(folder.Dos("h").c_str()),
              static_cast<DWORD>(FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_ARCHIVE));
}

TEST(CreateFileA, NewFilesCarryTheArchiveBitWhereKept) {
    ScratchFolder folder;
    HandleGuard file(Open(folder.Dos("new"), GENERIC_WRITE, 0, CREATE_NEW));
    ASSERT_NE(file.get(), INVALID_HANDLE_VALUE);
    DWORD attributes = GetFileAttributesA(folder.Dos("new").c_str());
    EXPECT_EQ(attributes, static_cast<DWORD>(KeepsExtraAttributeBits() ? FILE_ATTRIBUTE_ARCHIVE
                                                                       : FILE_ATTRIBUTE_NORMAL));
}

TEST(CreateFileA, FoldersOpenWithBackupSemanticsForTheirTimes) {
    ScratchFolder folder;
    HandleGuard dir(Open(folder.dos_path(), GENERIC_READ, FILE_SHARE_READ, OPEN_EXISTING,
                         FILE_FLAG_BACKUP_SEMANTICS));
    ASSERT_NE(dir.get(), INVALID_HANDLE_VALUE);
    FILETIME write{};
    EXPECT_TRUE(GetFileTime(dir.get(), nullptr, nullptr, &write));
    EXPECT_NE(write.dwHighDateTime, 0u);
    char byte;
    DWORD read = 7;
    EXPECT_FALSE(ReadFile(dir.get(), &byte, 1, &read, nullptr));
    EXPECT_EQ(read, 0u);
}

TEST(CreateFileA, DeleteOnCloseRemovesTheFile) {
    ScratchFolder folder;
    HandleGuard file(Open(folder.Dos("scratch.tmp"), GENERIC_WRITE, FILE_SHARE_DELETE, CREATE_NEW,
                          FILE_FLAG_DELETE_ON_CLOSE));
    ASSERT_NE(file.get(), INVALID_HANDLE_VALUE);
    EXPECT_TRUE(Exists(folder.Unix("scratch.tmp")));
    file.Reset();
    EXPECT_FALSE(Exists(folder.Unix("scratch.tmp")));
}

// ---- Share modes ----

struct ShareCase {
    DWORD first_access, first_share, second_access, second_share;
    bool second_opens;
};

class ShareModes : public ::testing::TestWithParam<ShareCase> {};

TEST_P(ShareModes, AreEnforcedBetweenHandles) {
    const ShareCase& c = GetParam();
    ScratchFolder folder;
    ASSERT_TRUE(zq::test::WriteFileBytes(folder.Unix("shared"), "x"));
    HandleGuard first(Open(folder.Dos("shared"), c.first_access, c.first_share));
    ASSERT_NE(first.get(), INVALID_HANDLE_VALUE);
    SetLastError(0xDEADBEEF);
    HandleGuard second(Open(folder.Dos("SHARED"), c.second_access, c.second_share));
    EXPECT_EQ(second.get() != INVALID_HANDLE_VALUE, c.second_opens);
    EXPECT_EQ(GetLastError(), c.second_opens ? 0u : static_cast<DWORD>(ERROR_SHARING_VIOLATION));
    first.Reset();
    if (!c.second_opens) {
        HandleGuard retry(Open(folder.Dos("shared"), c.second_access, c.second_share));
        EXPECT_NE(retry.get(), INVALID_HANDLE_VALUE);
    }
}

constexpr DWORD R = GENERIC_READ, W = GENERIC_WRITE, SR = FILE_SHARE_READ, SW = FILE_SHARE_WRITE;

INSTANTIATE_TEST_SUITE_P(
    CreateFileA, ShareModes,
    ::testing::Values(ShareCase{R, SR, R, SR, true}, ShareCase{R, SR, W, SR | SW, false},
                      ShareCase{W, 0, R, SR | SW, false}, ShareCase{R, SR | SW, R, SR, true},
                      ShareCase{R | W, SR | SW, R, SR, false},
                      ShareCase{R | W, SR | SW, R | W, SR | SW, true},
                      ShareCase{0, 0, R | W, 0, true}, ShareCase{R | W, 0, 0, 0, true},
                      ShareCase{W, SR, R, SR | SW, true}));

TEST(ShareModes, DeleteNeedsShareDelete) {
    ScratchFolder folder;
    ASSERT_TRUE(zq::test::WriteFileBytes(folder.Unix("a"), "x"));
    ASSERT_TRUE(zq::test::WriteFileBytes(folder.Unix("b"), "x"));
    HandleGuard a(Open(folder.Dos("a"), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE));
    HandleGuard b(Open(folder.Dos("b"), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_DELETE));
    SetLastError(0xDEADBEEF);
    EXPECT_FALSE(DeleteFileA(folder.Dos("a").c_str()));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_SHARING_VIOLATION));
    EXPECT_FALSE(MoveFileA(folder.Dos("a").c_str(), folder.Dos("c").c_str()));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_SHARING_VIOLATION));
    EXPECT_TRUE(DeleteFileA(folder.Dos("b").c_str()));
    a.Reset();
    EXPECT_TRUE(DeleteFileA(folder.Dos("a").c_str()));
}

// ---- Reading and writing ----

TEST(ReadWrite, RoundTripWithUntouchedTail) {
    ScratchFolder folder;
    HandleGuard file(Open(folder.Dos("data"), GENERIC_READ | GENERIC_WRITE, 0, CREATE_NEW));
    ASSERT_NE(file.get(), INVALID_HANDLE_VALUE);
    DWORD count = 0xDEADBEEF;
    SetLastError(0xDEADBEEF);
    ASSERT_TRUE(WriteFile(file.get(), "hello world", 11, &count, nullptr));
    EXPECT_EQ(count, 11u);
    EXPECT_EQ(GetLastError(), 0xDEADBEEFu);
    EXPECT_EQ(SetFilePointer(file.get(), 0, nullptr, FILE_BEGIN), 0u);

    char buffer[32];
    std::memset(buffer, kSentinel, sizeof buffer);
    ASSERT_TRUE(ReadFile(file.get(), buffer, sizeof buffer, &count, nullptr));
    EXPECT_EQ(count, 11u);
    EXPECT_EQ(std::string(buffer, 11), "hello world");
    EXPECT_EQ(buffer[11], kSentinel);
    EXPECT_TRUE(ReadFile(file.get(), buffer, sizeof buffer, &count, nullptr));  // at the end
    EXPECT_EQ(count, 0u);
    EXPECT_EQ(GetLastError(), 0xDEADBEEFu);
    EXPECT_EQ(zq::test::ReadFileBytes(folder.Unix("data")), "hello world");
}

TEST(ReadWrite, OverlappedOffsetsAndAppendOnlyAccess) {
    ScratchFolder folder;
    ASSERT_TRUE(zq::test::WriteFileBytes(folder.Unix("data"), "0123456789"));
    HandleGuard file(Open(folder.Dos("data"), GENERIC_READ | GENERIC_WRITE));
    OVERLAPPED at{};
    at.Offset = 4;
    char buffer[3];
    DWORD count = 0;
    ASSERT_TRUE(ReadFile(file.get(), buffer, 3, &count, &at));
    EXPECT_EQ(std::string(buffer, count), "456");
    EXPECT_EQ(SetFilePointer(file.get(), 0, nullptr, FILE_CURRENT), 7u);
    at.Offset = 1;
    ASSERT_TRUE(WriteFile(file.get(), "ab", 2, &count, &at));
    file.Reset();

    HandleGuard appender(Open(folder.Dos("data"), FILE_APPEND_DATA));
    ASSERT_NE(appender.get(), INVALID_HANDLE_VALUE);
    ASSERT_TRUE(WriteFile(appender.get(), "!", 1, &count, nullptr));
    EXPECT_EQ(zq::test::ReadFileBytes(folder.Unix("data")), "0ab3456789!");
}

TEST(ReadWrite, AccessAndHandleChecks) {
    ScratchFolder folder;
    ASSERT_TRUE(zq::test::WriteFileBytes(folder.Unix("data"), "abc"));
    HandleGuard reader(Open(folder.Dos("data"), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE));
    HandleGuard writer(Open(folder.Dos("data"), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE));
    char buffer[4];
    DWORD count = 77;
    SetLastError(0xDEADBEEF);
    EXPECT_FALSE(WriteFile(reader.get(), "x", 1, &count, nullptr));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_ACCESS_DENIED));
    EXPECT_EQ(count, 0u);
    count = 77;
    EXPECT_FALSE(ReadFile(writer.get(), buffer, 1, &count, nullptr));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_ACCESS_DENIED));
    EXPECT_EQ(count, 0u);
    EXPECT_FALSE(SetEndOfFile(reader.get()));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_ACCESS_DENIED));
    EXPECT_FALSE(FlushFileBuffers(reader.get()));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_ACCESS_DENIED));
    EXPECT_TRUE(FlushFileBuffers(writer.get()));
    EXPECT_FALSE(ReadFile(reader.get(), nullptr, 1, &count, nullptr));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_NOACCESS));

    for (HANDLE bad : {INVALID_HANDLE_VALUE, static_cast<HANDLE>(nullptr),
                       reinterpret_cast<HANDLE>(static_cast<uintptr_t>(0x3FFFFFF0))}) {
        SetLastError(0xDEADBEEF);
        EXPECT_FALSE(ReadFile(bad, buffer, 1, &count, nullptr));
        EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_HANDLE));
        EXPECT_FALSE(WriteFile(bad, "x", 1, &count, nullptr));
        EXPECT_EQ(GetFileSize(bad, nullptr), INVALID_FILE_SIZE);
        EXPECT_EQ(SetFilePointer(bad, 0, nullptr, FILE_BEGIN), INVALID_SET_FILE_POINTER);
        EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_HANDLE));
        EXPECT_FALSE(CloseHandle(bad));
    }
}

// A host whose writes stop after `budget` bytes with a full disk, and
// whose fsync fails.
class FullDiskHost : public ForwardingHost {
public:
    explicit FullDiskHost(size_t budget) : ForwardingHost(SystemHost()), budget_(budget) {}
    ssize_t Write(int fd, const void* data, size_t size) override {
        if (budget_ == 0) {
            errno = ENOSPC;
            return -1;
        }
        size_t n = std::min(size, budget_);
        budget_ -= n;
        return ForwardingHost::Write(fd, data, n);
    }
    int Fsync(int) override {
        errno = EIO;
        return -1;
    }

private:
    size_t budget_;
};

TEST(ReadWrite, FullDiskReportsWhatWasWritten) {
    ScratchFolder folder;
    HandleGuard file(Open(folder.Dos("big"), GENERIC_WRITE, 0, CREATE_NEW));
    FullDiskHost host(4);
    ScopedHost scoped(host);
    DWORD written = 0xDEADBEEF;
    SetLastError(0xDEADBEEF);
    EXPECT_FALSE(WriteFile(file.get(), "0123456789", 10, &written, nullptr));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_DISK_FULL));
    EXPECT_EQ(written, 4u);
    EXPECT_FALSE(FlushFileBuffers(file.get()));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_GEN_FAILURE));
    EXPECT_EQ(zq::test::ReadFileBytes(folder.Unix("big")), "0123");
}

// ---- File pointer and size ----

class FilePointer : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(zq::test::WriteFileBytes(folder_.Unix("ten"), "0123456789"));
        file_.Reset(Open(folder_.Dos("ten"), GENERIC_READ | GENERIC_WRITE));
        ASSERT_NE(file_.get(), INVALID_HANDLE_VALUE);
    }
    DWORD Where() { return SetFilePointer(file_.get(), 0, nullptr, FILE_CURRENT); }

    ScratchFolder folder_;
    HandleGuard file_;
};

TEST_F(FilePointer, MovesRelativeToEachOrigin) {
    EXPECT_EQ(SetFilePointer(file_.get(), 5, nullptr, FILE_BEGIN), 5u);
    EXPECT_EQ(SetFilePointer(file_.get(), -2, nullptr, FILE_CURRENT), 3u);
    EXPECT_EQ(SetFilePointer(file_.get(), 0, nullptr, FILE_END), 10u);
    EXPECT_EQ(SetFilePointer(file_.get(), 20, nullptr, FILE_BEGIN), 20u);  // past the end
    SetLastError(0xDEADBEEF);
    EXPECT_EQ(SetFilePointer(file_.get(), 0, nullptr, 3), INVALID_SET_FILE_POINTER);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_PARAMETER));
}

TEST_F(FilePointer, NegativeTargetFailsAndKeepsThePosition) {
    ASSERT_EQ(SetFilePointer(file_.get(), 4, nullptr, FILE_BEGIN), 4u);
    LONG high = 0;
    SetLastError(0xDEADBEEF);
    EXPECT_EQ(SetFilePointer(file_.get(), -5, nullptr, FILE_CURRENT), INVALID_SET_FILE_POINTER);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_NEGATIVE_SEEK));
    high = -1;  // (-1, -20) is -20 as a 64-bit distance
    EXPECT_EQ(SetFilePointer(file_.get(), -20, &high, FILE_END), INVALID_SET_FILE_POINTER);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_NEGATIVE_SEEK));
    EXPECT_EQ(high, -1);  // untouched on failure
    EXPECT_EQ(Where(), 4u);
}

TEST_F(FilePointer, HighPartRules) {
    LONG high = 1;
    SetLastError(0xDEADBEEF);
    EXPECT_EQ(SetFilePointer(file_.get(), 5, &high, FILE_BEGIN), 5u);
    EXPECT_EQ(high, 1);
    EXPECT_EQ(GetLastError(), 0xDEADBEEFu);
    high = 0;
    EXPECT_EQ(SetFilePointer(file_.get(), 0, &high, FILE_CURRENT), 5u);
    EXPECT_EQ(high, 1);

    // Without the high part, a position beyond 32 bits is refused.
    ASSERT_EQ(SetFilePointer(file_.get(), 0x7FFFFFFF, nullptr, FILE_BEGIN), 0x7FFFFFFFu);
    EXPECT_EQ(SetFilePointer(file_.get(), 0x7FFFFFFF, nullptr, FILE_CURRENT), 0xFFFFFFFEu);
    EXPECT_EQ(SetFilePointer(file_.get(), 2, nullptr, FILE_CURRENT), INVALID_SET_FILE_POINTER);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_PARAMETER));

    // A real position whose low part looks like the failure value.
    SetLastError(0xDEADBEEF);
    EXPECT_EQ(SetFilePointer(file_.get(), 1, nullptr, FILE_CURRENT), INVALID_SET_FILE_POINTER);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(NO_ERROR));
}

TEST_F(FilePointer, EndOfFileCutsAndExtends) {
    SetFilePointer(file_.get(), 100, nullptr, FILE_BEGIN);
    ASSERT_TRUE(SetEndOfFile(file_.get()));
    DWORD high = 0xDEADBEEF;
    EXPECT_EQ(GetFileSize(file_.get(), &high), 100u);
    EXPECT_EQ(high, 0u);
    EXPECT_EQ(zq::test::ReadFileBytes(folder_.Unix("ten")).substr(10), std::string(90, '\0'));
    SetFilePointer(file_.get(), 3, nullptr, FILE_BEGIN);
    ASSERT_TRUE(SetEndOfFile(file_.get()));
    EXPECT_EQ(GetFileSize(file_.get(), nullptr), 3u);
    EXPECT_EQ(zq::test::ReadFileBytes(folder_.Unix("ten")), "012");
}

// ---- Times ----

TEST(FileTimes, SetAndReadBack) {
    ScratchFolder folder;
    HandleGuard file(Open(folder.Dos("t"), GENERIC_READ | GENERIC_WRITE,
                          FILE_SHARE_READ | FILE_SHARE_WRITE, CREATE_NEW));
    // 2000-01-01 00:00:00 UTC.
    const uint64_t ticks = 125911584000000000ull;
    FILETIME when{static_cast<DWORD>(ticks & 0xFFFFFFFF), static_cast<DWORD>(ticks >> 32)};
    FILETIME zero{0, 0};
    ASSERT_TRUE(SetFileTime(file.get(), nullptr, &zero, &when));  // zero leaves access alone
    FILETIME creation{}, access{}, write{};
    ASSERT_TRUE(GetFileTime(file.get(), &creation, &access, &write));
    EXPECT_EQ(write.dwLowDateTime, when.dwLowDateTime);
    EXPECT_EQ(write.dwHighDateTime, when.dwHighDateTime);
    EXPECT_GT(access.dwHighDateTime, when.dwHighDateTime);
    EXPECT_GT(creation.dwHighDateTime, when.dwHighDateTime);
    struct stat st;
    ASSERT_EQ(stat(folder.Unix("t").c_str(), &st), 0);
    EXPECT_EQ(st.st_mtime, 946684800);

    HandleGuard reader(Open(folder.Dos("t"), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE));
    SetLastError(0xDEADBEEF);
    EXPECT_FALSE(SetFileTime(reader.get(), nullptr, nullptr, &when));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_ACCESS_DENIED));
}

TEST(FileTimes, ConversionsAreExact) {
    struct timespec ts = {946684800, 123456700};
    FILETIME ft = FileTimeFromUnix(ts);
    struct timespec back = UnixTimeFromFileTime(ft);
    EXPECT_EQ(back.tv_sec, ts.tv_sec);
    EXPECT_EQ(back.tv_nsec, ts.tv_nsec);
    struct timespec epoch = {0, 0};
    FILETIME unix_epoch = FileTimeFromUnix(epoch);
    EXPECT_EQ((uint64_t{unix_epoch.dwHighDateTime} << 32) | unix_epoch.dwLowDateTime,
              116444736000000000ull);
}

}  // namespace
}  // namespace zq::platform::internal
