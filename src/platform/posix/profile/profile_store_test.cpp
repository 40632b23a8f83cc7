// The profile engine under stress: files changed behind the cache, several
// processes and threads writing at once, writers killed mid-write, failing
// disks and renames, held locks, permissions and binary garbage.
#include <gtest/gtest.h>

#include <dirent.h>
#include <fcntl.h>
#include <signal.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "platform/posix/base/host.h"
#include "platform/posix/profile/profile_store.h"
#include "platform/win32.h"
#include "support/test_support.h"

namespace {

using zq::platform::internal::ForwardingHost;
using zq::platform::internal::ProfileStore;
using zq::platform::internal::ScopedHost;
using zq::platform::internal::SystemHost;
using zq::test::MakeScratchFolder;
using zq::test::ReadFileBytes;
using zq::test::WriteFileBytes;

std::string Get(const std::string& path, const char* section, const char* key) {
    char buffer[256];
    GetPrivateProfileStringA(section, key, "<none>", buffer, sizeof buffer, path.c_str());
    return buffer;
}

bool Put(const std::string& path, const char* section, const char* key, const char* value) {
    return WritePrivateProfileStringA(section, key, value, path.c_str()) != FALSE;
}

// Rewrites the file in place (same inode) and sets its modification time.
void RewriteInPlace(const std::string& path, const std::string& bytes, const timespec& mtime) {
    const int fd = open(path.c_str(), O_WRONLY | O_TRUNC);
    ASSERT_GE(fd, 0);
    ASSERT_EQ(write(fd, bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
    const timespec times[2] = {mtime, mtime};
    ASSERT_EQ(futimens(fd, times), 0);
    close(fd);
}

std::vector<std::string> Files(const std::string& folder) {
    std::vector<std::string> names;
    if (DIR* dir = opendir(folder.c_str())) {
        while (dirent* entry = readdir(dir)) {
            const std::string name = entry->d_name;
            if (name != "." && name != "..") {
                names.push_back(name);
            }
        }
        closedir(dir);
    }
    return names;
}

// ---------------------------------------------------------------------------
// The cache notices changes on disk.

TEST(ProfileCache, SeesAnInPlaceChangeOfEqualSizeInTheSameSecond) {
    const std::string path = MakeScratchFolder("cache") + "/c.ini";
    ASSERT_TRUE(WriteFileBytes(path, "[S]\nk=old\n"));
    // An old time: the cached copy is trusted on its times alone.
    const timespec old_time{1'000'000'000, 100};
    RewriteInPlace(path, "[S]\nk=old\n", old_time);
    EXPECT_EQ(Get(path, "S", "k"), "old");
    EXPECT_EQ(Get(path, "S", "k"), "old");
    RewriteInPlace(path, "[S]\nk=new\n", timespec{1'000'000'000, 200});
    EXPECT_EQ(Get(path, "S", "k"), "new");
}

TEST(ProfileCache, SeesAFileReplacedWithEqualSizeAndTimes) {
    const std::string folder = MakeScratchFolder("cache");
    const std::string path = folder + "/c.ini";
    const timespec when{1'000'000'000, 0};
    ASSERT_TRUE(WriteFileBytes(path, "[S]\nk=old\n"));
    RewriteInPlace(path, "[S]\nk=old\n", when);
    EXPECT_EQ(Get(path, "S", "k"), "old");
    ASSERT_TRUE(WriteFileBytes(folder + "/next", "[S]\nk=new\n"));
    RewriteInPlace(folder + "/next", "[S]\nk=new\n", when);
    ASSERT_EQ(rename((folder + "/next").c_str(), path.c_str()), 0);
    EXPECT_EQ(Get(path, "S", "k"), "new");
    ASSERT_EQ(unlink(path.c_str()), 0);
    EXPECT_EQ(Get(path, "S", "k"), "<none>");
}

TEST(ProfileCache, SeesChangesMadeRightAfterAReadWithinOneClockTick) {
    const std::string path = MakeScratchFolder("cache") + "/c.ini";
    for (int round = 0; round < 50; ++round) {
        const std::string a = "[S]\nk=" + std::to_string(round % 10) + "a\n";
        const std::string b = "[S]\nk=" + std::to_string(round % 10) + "b\n";
        const int fd = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
        ASSERT_EQ(write(fd, a.data(), a.size()), static_cast<ssize_t>(a.size()));
        ASSERT_EQ(Get(path, "S", "k"), a.substr(6, 2));
        ASSERT_EQ(pwrite(fd, b.data(), b.size(), 0), static_cast<ssize_t>(b.size()));
        close(fd);
        ASSERT_EQ(Get(path, "S", "k"), b.substr(6, 2)) << "round " << round;
    }
}

// File systems whose clock ticks coarsely give two quick writes the same
// times; this host plays such a file system for one file.
class FrozenTimesHost : public ForwardingHost {
public:
    explicit FrozenTimesHost(const struct stat& frozen)
        : ForwardingHost(SystemHost()), frozen_(frozen) {}
    int Fstat(int fd, struct stat* status) override {
        const int rc = ForwardingHost::Fstat(fd, status);
        if (rc == 0 && status->st_ino == frozen_.st_ino && status->st_dev == frozen_.st_dev) {
            status->st_mtim = frozen_.st_mtim;
            status->st_ctim = frozen_.st_ctim;
            status->st_size = frozen_.st_size;
        }
        return rc;
    }

private:
    struct stat frozen_;
};

TEST(ProfileCache, ComparesBytesWhileTimesCannotTellAChange) {
    const std::string path = MakeScratchFolder("cache") + "/c.ini";
    const int fd = open(path.c_str(), O_RDWR | O_CREAT | O_TRUNC, 0644);
    ASSERT_GE(fd, 0);
    ASSERT_EQ(write(fd, "[S]\nk=a\n", 8), 8);
    struct stat frozen;
    ASSERT_EQ(fstat(fd, &frozen), 0);
    FrozenTimesHost host(frozen);
    ScopedHost scoped(host);
    EXPECT_EQ(Get(path, "S", "k"), "a");
    ASSERT_EQ(pwrite(fd, "[S]\nk=b\n", 8, 0), 8);
    EXPECT_EQ(Get(path, "S", "k"), "b");
    ASSERT_EQ(pwrite(fd, "[S]\nk=c\n", 8, 0), 8);
    EXPECT_EQ(Get(path, "S", "k"), "c");
    close(fd);
}

TEST(ProfileCache, SeesAFolderReplacedBehindIt) {
    const std::string folder = MakeScratchFolder("cache");
    const std::string sub = folder + "/sub";
    ASSERT_EQ(mkdir(sub.c_str(), 0755), 0);
    ASSERT_TRUE(WriteFileBytes(sub + "/c.ini", "[S]\nk=old\n"));
    EXPECT_EQ(Get(sub + "/c.ini", "S", "k"), "old");
    ASSERT_EQ(rename(sub.c_str(), (folder + "/gone").c_str()), 0);
    ASSERT_EQ(mkdir(sub.c_str(), 0755), 0);
    ASSERT_TRUE(WriteFileBytes(sub + "/c.ini", "[S]\nk=new\n"));
    // The old file still exists elsewhere with its times unchanged: only
    // the periodic check of the path can tell, once its interval is over.
    struct LaterHost : ForwardingHost {
        LaterHost() : ForwardingHost(SystemHost()) {}
        uint64_t MonotonicMillis() override {
            return ForwardingHost::MonotonicMillis() + ProfileStore::kPathCheckMillis;
        }
    } later;
    ScopedHost scoped(later);
    EXPECT_EQ(Get(sub + "/c.ini", "S", "k"), "new");
}

// ---------------------------------------------------------------------------
// Writers in parallel.

TEST(ProfileConcurrency, ProcessesWritingDistinctKeysLoseNothing) {
    const std::string path = MakeScratchFolder("procs") + "/shared.ini";
    ASSERT_TRUE(WriteFileBytes(path, "; shared\r\n[Common]\r\nkeep=1\r\n"));
    constexpr int kProcesses = 4;
    constexpr int kKeys = 40;
    std::vector<pid_t> children;
    for (int p = 0; p < kProcesses; ++p) {
        const pid_t pid = fork();
        ASSERT_GE(pid, 0);
        if (pid == 0) {
            bool ok = true;
            for (int k = 0; k < kKeys; ++k) {
                const std::string key = "p" + std::to_string(p) + "k" + std::to_string(k);
                const std::string section = k % 2 ? "Common" : "P" + std::to_string(p);
                ok &= Put(path, section.c_str(), key.c_str(), std::to_string(k * 7).c_str());
            }
            _exit(ok ? 0 : 1);
        }
        children.push_back(pid);
    }
    for (pid_t pid : children) {
        int status = 0;
        ASSERT_EQ(waitpid(pid, &status, 0), pid);
        EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
    }
    for (int p = 0; p < kProcesses; ++p) {
        for (int k = 0; k < kKeys; ++k) {
            const std::string key = "p" + std::to_string(p) + "k" + std::to_string(k);
            const std::string section = k % 2 ? "Common" : "P" + std::to_string(p);
            EXPECT_EQ(Get(path, section.c_str(), key.c_str()), std::to_string(k * 7)) << key;
        }
    }
    EXPECT_EQ(Get(path, "Common", "keep"), "1");
    EXPECT_EQ(ReadFileBytes(path).rfind("; shared\r\n[Common]\r\nkeep=1\r\n", 0), 0u);
}

TEST(ProfileConcurrency, ThreadsReadingAndWritingLoseNothing) {
    const std::string path = MakeScratchFolder("threads") + "/t.ini";
    constexpr int kThreads = 4;
    constexpr int kKeys = 30;
    std::vector<std::thread> threads;
    std::atomic<int> failures{0};
    for (int t = 0; t < kThreads; ++t) {
        threads.emplace_back([&, t] {
            for (int k = 0; k < kKeys; ++k) {
                const std::string key = "t" + std::to_string(t) + "k" + std::to_string(k);
                if (!Put(path, "S", key.c_str(), "v") || Get(path, "S", key.c_str()) != "v") {
                    ++failures;
                }
            }
        });
    }
    for (auto& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(failures, 0);
    char keys[8192];
    const DWORD n = GetPrivateProfileStringA("S", nullptr, "", keys, sizeof keys, path.c_str());
    int count = 0;
    for (DWORD i = 0; i < n; i += static_cast<DWORD>(strlen(keys + i)) + 1) {
        ++count;
    }
    EXPECT_EQ(count, kThreads * kKeys);
}

// A writer killed at a random moment leaves the old or the new file,
// complete, never a part of one.
TEST(ProfileConcurrency, KilledWriterNeverLeavesAPartialFile) {
    const std::string folder = MakeScratchFolder("crash");
    const std::string path = folder + "/c.ini";
    std::string filler;
    for (int i = 0; i < 400; ++i) {
        filler += "filler" + std::to_string(i) + "=" + std::string(40, 'x') + "\r\n";
    }
    ASSERT_TRUE(WriteFileBytes(path, "[Fill]\r\n" + filler + "[Count]\r\n"));
    std::mt19937 random(12345);
    int committed = -1;
    for (int round = 0; round < 15; ++round) {
        int pipe_fds[2];
        ASSERT_EQ(pipe(pipe_fds), 0);
        const pid_t pid = fork();
        ASSERT_GE(pid, 0);
        if (pid == 0) {
            close(pipe_fds[0]);
            for (int i = committed + 1;; ++i) {
                const std::string key = "n" + std::to_string(i);
                if (!Put(path, "Count", key.c_str(), std::to_string(i).c_str())) {
                    _exit(1);
                }
                if (write(pipe_fds[1], &i, sizeof i) != sizeof i) {
                    _exit(2);
                }
            }
        }
        close(pipe_fds[1]);
        std::this_thread::sleep_for(std::chrono::microseconds(500 + random() % 20000));
        kill(pid, SIGKILL);
        int status = 0;
        ASSERT_EQ(waitpid(pid, &status, 0), pid);
        int reported = 0;
        while (read(pipe_fds[0], &reported, sizeof reported) == sizeof reported) {
            committed = reported;
        }
        close(pipe_fds[0]);

        const std::string bytes = ReadFileBytes(path);
        ASSERT_EQ(bytes.rfind("[Fill]\r\n" + filler + "[Count]\r\n", 0), 0u) << "round " << round;
        ASSERT_TRUE(bytes.size() >= 2 && bytes.compare(bytes.size() - 2, 2, "\r\n") == 0);
        // Every reported key is there; at most one more (written, then killed
        // before it could report).
        for (int i = 0; i <= committed; ++i) {
            const std::string key = "n" + std::to_string(i);
            ASSERT_EQ(Get(path, "Count", key.c_str()), std::to_string(i)) << "round " << round;
        }
        const std::string next = "n" + std::to_string(committed + 2);
        EXPECT_EQ(Get(path, "Count", next.c_str()), "<none>");
        if (Get(path, "Count", ("n" + std::to_string(committed + 1)).c_str()) != "<none>") {
            ++committed;
        }
    }
    EXPECT_GT(committed, 0);
}

// ---------------------------------------------------------------------------
// Failures leave the old file.

class FailingHost : public ForwardingHost {
public:
    FailingHost() : ForwardingHost(SystemHost()) {}
    int rename_error = 0;
    int write_error = 0;
    int Rename(const char* from, const char* to) override {
        if (rename_error) {
            errno = rename_error;
            return -1;
        }
        return ForwardingHost::Rename(from, to);
    }
    ssize_t Write(int fd, const void* data, size_t size) override {
        if (write_error) {
            // Half of it reaches the disk, then the disk is full.
            if (size > 1 && write_error == ENOSPC) {
                const ssize_t n = ForwardingHost::Write(fd, data, size / 2);
                write_error = -ENOSPC;
                return n;
            }
            errno = write_error < 0 ? -write_error : write_error;
            return -1;
        }
        return ForwardingHost::Write(fd, data, size);
    }
};

TEST(ProfileFailure, FailingRenameKeepsTheOldFile) {
    const std::string folder = MakeScratchFolder("rename");
    const std::string path = folder + "/r.ini";
    const std::string original = "[S]\r\nk=1\r\n; keep me\r\n";
    ASSERT_TRUE(WriteFileBytes(path, original));
    FailingHost host;
    host.rename_error = EIO;
    {
        ScopedHost scoped(host);
        EXPECT_FALSE(Put(path, "S", "k", "2"));
        EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_GEN_FAILURE));
        EXPECT_FALSE(Put(folder + "/new.ini", "S", "k", "2"));
    }
    EXPECT_EQ(ReadFileBytes(path), original);
    EXPECT_EQ(Get(path, "S", "k"), "1");
    EXPECT_EQ(Files(folder), std::vector<std::string>{"r.ini"});  // no temporary, no new file
    EXPECT_TRUE(Put(path, "S", "k", "3"));
    EXPECT_EQ(Get(path, "S", "k"), "3");
}

TEST(ProfileFailure, FullDiskKeepsTheOldFile) {
    const std::string folder = MakeScratchFolder("full");
    const std::string path = folder + "/f.ini";
    const std::string original = "[S]\r\nk=1\r\n";
    ASSERT_TRUE(WriteFileBytes(path, original));
    FailingHost host;
    host.write_error = ENOSPC;
    {
        ScopedHost scoped(host);
        EXPECT_FALSE(Put(path, "S", "k", "a much longer value than before"));
        EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_DISK_FULL));
    }
    EXPECT_EQ(ReadFileBytes(path), original);
    EXPECT_EQ(Files(folder), std::vector<std::string>{"f.ini"});
}

// Writes are not synced; the flush form syncs the file and its folder.
class SyncCountingHost : public ForwardingHost {
public:
    SyncCountingHost() : ForwardingHost(SystemHost()) {}
    int syncs = 0;
    int sync_error = 0;
    int Fsync(int fd) override {
        ++syncs;
        if (sync_error) {
            errno = sync_error;
            return -1;
        }
        return ForwardingHost::Fsync(fd);
    }
};

TEST(ProfileFlush, OnlyTheFlushFormSyncs) {
    const std::string path = MakeScratchFolder("flush") + "/f.ini";
    SyncCountingHost host;
    ScopedHost scoped(host);
    EXPECT_TRUE(Put(path, "S", "k", "1"));
    EXPECT_TRUE(Put(path, "S", "k", "2"));
    EXPECT_TRUE(WritePrivateProfileSectionA("T", "a=1\0", path.c_str()));
    EXPECT_EQ(host.syncs, 0);
    EXPECT_TRUE(WritePrivateProfileStringA(nullptr, nullptr, nullptr, path.c_str()));
    EXPECT_EQ(host.syncs, 2);  // the file, then its folder
    EXPECT_TRUE(WritePrivateProfileSectionA(nullptr, nullptr, path.c_str()));
    EXPECT_EQ(host.syncs, 4);
    EXPECT_TRUE(WritePrivateProfileStringA(nullptr, nullptr, nullptr, (path + ".none").c_str()));
    EXPECT_EQ(host.syncs, 4);  // nothing to sync for a missing file
    host.sync_error = EIO;
    SetLastError(0);
    EXPECT_FALSE(WritePrivateProfileStringA(nullptr, nullptr, nullptr, path.c_str()));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_GEN_FAILURE));
    EXPECT_EQ(ReadFileBytes(path), "[S]\r\nk=2\r\n[T]\r\na=1\r\n");
}

TEST(ProfileFailure, HeldLockTimesOutCleanly) {
    const std::string path = MakeScratchFolder("lock") + "/l.ini";
    ASSERT_TRUE(WriteFileBytes(path, "[S]\r\nk=1\r\n"));
    const int holder = open(path.c_str(), O_RDONLY);
    ASSERT_GE(holder, 0);
    ASSERT_EQ(flock(holder, LOCK_EX), 0);
    ProfileStore::Instance().SetLockTimeoutForTesting(50);
    EXPECT_FALSE(Put(path, "S", "k", "2"));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_SHARING_VIOLATION));
    EXPECT_EQ(Get(path, "S", "k"), "1");  // reads do not wait for writers
    close(holder);
    EXPECT_TRUE(Put(path, "S", "k", "2"));
    ProfileStore::Instance().SetLockTimeoutForTesting(ProfileStore::kDefaultLockTimeoutMillis);
    EXPECT_EQ(ReadFileBytes(path), "[S]\r\nk=2\r\n");
}

// ---------------------------------------------------------------------------
// Permissions, links, garbage.

TEST(ProfileFiles, WritesKeepPermissionsAndRefuseReadOnlyFiles) {
    const std::string path = MakeScratchFolder("perm") + "/p.ini";
    ASSERT_TRUE(WriteFileBytes(path, "[S]\r\nk=1\r\n"));
    ASSERT_EQ(chmod(path.c_str(), 0640), 0);
    EXPECT_TRUE(Put(path, "S", "k", "2"));
    struct stat st;
    ASSERT_EQ(stat(path.c_str(), &st), 0);
    EXPECT_EQ(st.st_mode & 07777, 0640u);

    ASSERT_EQ(chmod(path.c_str(), 0444), 0);  // the read-only attribute
    EXPECT_FALSE(Put(path, "S", "k", "3"));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_ACCESS_DENIED));
    EXPECT_FALSE(Put(path, "S", nullptr, nullptr));
    EXPECT_EQ(ReadFileBytes(path), "[S]\r\nk=2\r\n");
    EXPECT_EQ(Get(path, "S", "k"), "2");
}

// Refuses every open of one path, as for a file its user may not open (the
// tests run as root, for whom the mode bits decide nothing).
class NoAccessHost : public ForwardingHost {
public:
    explicit NoAccessHost(std::string path)
        : ForwardingHost(SystemHost()), path_(std::move(path)) {}
    int Open(const char* path, int flags, unsigned mode) override {
        if (path_ == path) {
            errno = EACCES;
            return -1;
        }
        return ForwardingHost::Open(path, flags, mode);
    }

private:
    std::string path_;
};

TEST(ProfileFiles, FileWithoutAccessReadsAsMissingAndIsNeverReplaced) {
    const std::string folder = MakeScratchFolder("noaccess");
    const std::string path = folder + "/n.ini";
    const std::string original = "[S]\r\nk=1\r\n";
    ASSERT_TRUE(WriteFileBytes(path, original));
    NoAccessHost host(path);
    {
        ScopedHost scoped(host);
        EXPECT_EQ(Get(path, "S", "k"), "<none>");
        EXPECT_EQ(GetPrivateProfileIntA("S", "k", 9, path.c_str()), 9u);
        char names[64] = "~~~~";
        EXPECT_EQ(GetPrivateProfileSectionNamesA(names, sizeof names, path.c_str()), 0u);
        EXPECT_EQ(names[0], '\0');  // as for a missing file
        EXPECT_FALSE(Put(path, "S", "k", "2"));
        EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_ACCESS_DENIED));
        EXPECT_FALSE(Put(path, "S", nullptr, nullptr));
    }
    EXPECT_EQ(ReadFileBytes(path), original);
    EXPECT_EQ(Files(folder), std::vector<std::string>{"n.ini"});  // no temporary left
    EXPECT_EQ(Get(path, "S", "k"), "1");
}

TEST(ProfileFiles, WritesKeepDosAttributes) {
    const std::string path = MakeScratchFolder("attr") + "/a.ini";
    ASSERT_TRUE(WriteFileBytes(path, "[S]\r\nk=1\r\n"));
    const DWORD wanted = FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM;
    ASSERT_TRUE(SetFileAttributesA(path.c_str(), wanted));
    if ((GetFileAttributesA(path.c_str()) & wanted) != wanted) {
        GTEST_SKIP() << "this file system keeps no DOS attributes";
    }
    EXPECT_TRUE(Put(path, "S", "k", "2"));
    EXPECT_EQ(GetFileAttributesA(path.c_str()) & wanted, wanted);
    EXPECT_EQ(ReadFileBytes(path), "[S]\r\nk=2\r\n");
}

TEST(ProfileFiles, WritesThroughASymbolicLinkKeepTheLink) {
    const std::string folder = MakeScratchFolder("link");
    ASSERT_TRUE(WriteFileBytes(folder + "/real.ini", "[S]\r\nk=1\r\n"));
    ASSERT_EQ(symlink("real.ini", (folder + "/link.ini").c_str()), 0);
    EXPECT_TRUE(Put(folder + "/link.ini", "S", "k", "2"));
    struct stat st;
    ASSERT_EQ(lstat((folder + "/link.ini").c_str(), &st), 0);
    EXPECT_TRUE(S_ISLNK(st.st_mode));
    EXPECT_EQ(ReadFileBytes(folder + "/real.ini"), "[S]\r\nk=2\r\n");
    EXPECT_EQ(Get(folder + "/link.ini", "S", "k"), "2");
}

TEST(ProfileFiles, BinaryGarbageNeitherCrashesNorHangs) {
    const std::string folder = MakeScratchFolder("garbage");
    std::mt19937 random(99);
    const char alphabet[] = "[]=;\r\n\0 \t\"'abcXYZ\x1a\xff\xef\xbb\xbf";
    for (int round = 0; round < 40; ++round) {
        std::string bytes(random() % 4000, '\0');
        for (char& c : bytes) {
            c = round % 2 ? static_cast<char>(random())
                          : alphabet[random() % (sizeof alphabet - 1)];
        }
        const std::string path = folder + "/g" + std::to_string(round) + ".ini";
        ASSERT_TRUE(WriteFileBytes(path, bytes));
        char buffer[512];
        GetPrivateProfileStringA(nullptr, nullptr, "", buffer, sizeof buffer, path.c_str());
        GetPrivateProfileSectionNamesA(buffer, sizeof buffer, path.c_str());
        // Every listed section can be read, its keys too.
        std::vector<std::string> sections;
        char names[65536];
        const DWORD n = GetPrivateProfileSectionNamesA(names, sizeof names, path.c_str());
        for (DWORD i = 0; i < n; i += static_cast<DWORD>(strlen(names + i)) + 1) {
            sections.emplace_back(names + i);
        }
        for (const std::string& section : sections) {
            GetPrivateProfileSectionA(section.c_str(), buffer, sizeof buffer, path.c_str());
            GetPrivateProfileStringA(section.c_str(), nullptr, "", buffer, sizeof buffer,
                                     path.c_str());
            GetPrivateProfileIntA(section.c_str(), "a", 0, path.c_str());
        }
        // A write lands and reads back; the bytes it did not touch stay.
        ASSERT_TRUE(Put(path, "zq section", "zq key", "zq value")) << round;
        EXPECT_EQ(Get(path, "zq section", "zq key"), "zq value") << round;
        const std::string after = ReadFileBytes(path);
        EXPECT_EQ(after.compare(0, bytes.size(), bytes), 0) << round;
        ASSERT_TRUE(Put(path, "zq section", nullptr, nullptr));
    }
}

}  // namespace
