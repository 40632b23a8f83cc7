// The registry shared by several processes: concurrent writers, a writer
// killed in the middle of its work, a database held locked.
//
// Child processes run this same test binary: when ZQ_REGISTRY_CHILD names a
// role, a static initializer plays it and exits before the tests start, so
// a child shares nothing with its parent but the prefix (ZQ_PREFIX is
// inherited) and the pipe on its standard output.
#include <gtest/gtest.h>
#include <signal.h>
#include <spawn.h>
#include <sqlite3.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "platform/posix/registry/registry_database.h"
#include "platform/win32.h"

extern char** environ;

namespace {

using zq::platform::internal::RegistryDatabasePath;
using zq::platform::internal::SetRegistryBusyTimeoutForTesting;

constexpr const char* kSharedKey = "Software\\ZqRegistryProcessTest";

std::string ValueName(const char* prefix, long id, long i) {
    return std::string(prefix) + std::to_string(id) + "_" + std::to_string(i);
}

// Child "writer <id> <count>": writes `count` values of its own, and creates
// keys that every writer creates, all at once with its siblings.
int RunWriter(long id, long count) {
    HKEY key = nullptr;
    if (RegCreateKeyExA(HKEY_CURRENT_USER, kSharedKey, 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &key,
                        nullptr)) {
        return 2;
    }
    for (long i = 0; i < count; ++i) {
        DWORD data = static_cast<DWORD>(id * 100000 + i);
        std::string name = ValueName("w", id, i);
        if (RegSetValueExA(key, name.c_str(), 0, REG_DWORD, reinterpret_cast<const BYTE*>(&data),
                           sizeof data)) {
            return 3;
        }
        HKEY sub = nullptr;
        std::string shared = "Common\\K" + std::to_string(i % 10);
        if (RegCreateKeyExA(key, shared.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &sub,
                            nullptr)) {
            return 4;
        }
        if (RegSetValueExA(sub, name.c_str(), 0, REG_DWORD, reinterpret_cast<const BYTE*>(&data),
                           sizeof data)) {
            return 5;
        }
        RegCloseKey(sub);
    }
    RegCloseKey(key);
    return 0;
}

// Child "crasher": writes values 0, 1, 2 ... until it is killed, and after
// each write that returned reports its number on standard output.
int RunCrasher() {
    HKEY key = nullptr;
    if (RegCreateKeyExA(HKEY_CURRENT_USER, kSharedKey, 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &key,
                        nullptr)) {
        return 2;
    }
    std::string payload(300, 'p');  // more than one value per page, so pages split
    for (long i = 0;; ++i) {
        std::string name = ValueName("c", 0, i);
        std::string data = std::to_string(i) + payload;
        if (RegSetValueExA(key, name.c_str(), 0, REG_SZ,
                           reinterpret_cast<const BYTE*>(data.c_str()),
                           static_cast<DWORD>(data.size() + 1))) {
            return 3;
        }
        std::string line = std::to_string(i) + "\n";
        if (write(STDOUT_FILENO, line.data(), line.size()) != static_cast<ssize_t>(line.size())) {
            return 4;
        }
    }
}

// Child "locker": takes the database's write lock, says so, and keeps it
// until it is killed.
int RunLocker() {
    sqlite3* db = nullptr;
    if (sqlite3_open(RegistryDatabasePath().c_str(), &db) != SQLITE_OK ||
        sqlite3_exec(db, "BEGIN EXCLUSIVE", nullptr, nullptr, nullptr) != SQLITE_OK) {
        return 2;
    }
    if (write(STDOUT_FILENO, "locked\n", 7) != 7) {
        return 3;
    }
    for (;;) {
        pause();
    }
}

int RunChildIfAsked() {
    const char* role = std::getenv("ZQ_REGISTRY_CHILD");
    if (!role) {
        return 0;
    }
    int rc = 1;
    if (std::strncmp(role, "writer ", 7) == 0) {
        char* end = nullptr;
        long id = std::strtol(role + 7, &end, 10);
        long count = std::strtol(end, nullptr, 10);
        rc = RunWriter(id, count);
    } else if (std::strcmp(role, "crasher") == 0) {
        rc = RunCrasher();
    } else if (std::strcmp(role, "locker") == 0) {
        rc = RunLocker();
    }
    std::fflush(nullptr);
    _exit(rc);
}

[[maybe_unused]] const int kChild = RunChildIfAsked();

// Starts this binary in `role`; its standard output goes to `out_fd` when
// that is not -1.
pid_t SpawnChild(const std::string& role, int out_fd = -1) {
    std::vector<std::string> env_strings;
    for (char** e = environ; *e; ++e) {
        if (std::strncmp(*e, "ZQ_REGISTRY_CHILD=", 18) != 0) {
            env_strings.emplace_back(*e);
        }
    }
    env_strings.push_back("ZQ_REGISTRY_CHILD=" + role);
    std::vector<char*> env;
    for (std::string& s : env_strings)
        env.push_back(s.data());
    env.push_back(nullptr);
    char self[] = "/proc/self/exe";
    char* argv[] = {self, nullptr};
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    if (out_fd >= 0) {
        posix_spawn_file_actions_adddup2(&actions, out_fd, STDOUT_FILENO);
    }
    pid_t pid = -1;
    int rc = posix_spawn(&pid, "/proc/self/exe", &actions, nullptr, argv, env.data());
    posix_spawn_file_actions_destroy(&actions);
    return rc == 0 ? pid : -1;
}

int WaitForExit(pid_t pid) {
    int status = 0;
    while (waitpid(pid, &status, 0) < 0 && errno == EINTR) {
    }
    return status;
}

std::string IntegrityCheck() {
    sqlite3* db = nullptr;
    std::string result = "cannot open";
    if (sqlite3_open_v2(RegistryDatabasePath().c_str(), &db, SQLITE_OPEN_READONLY, nullptr) ==
        SQLITE_OK) {
        sqlite3_busy_timeout(db, 5000);
        sqlite3_stmt* stmt = nullptr;
        if (sqlite3_prepare_v2(db, "PRAGMA integrity_check", -1, &stmt, nullptr) == SQLITE_OK &&
            sqlite3_step(stmt) == SQLITE_ROW) {
            result = reinterpret_cast<const char*>(sqlite3_column_text(stmt, 0));
        }
        sqlite3_finalize(stmt);
    }
    sqlite3_close(db);
    return result;
}

LONG DeleteTree(HKEY parent, const char* name) {
    HKEY key = nullptr;
    LONG rc = RegOpenKeyExA(parent, name, 0, KEY_ALL_ACCESS, &key);
    if (rc != ERROR_SUCCESS) {
        return rc;
    }
    char child[300];
    while (RegEnumKeyA(key, 0, child, sizeof child) == ERROR_SUCCESS &&
           DeleteTree(key, child) == ERROR_SUCCESS) {
    }
    RegCloseKey(key);
    return RegDeleteKeyA(parent, name);
}

class RegistryProcesses : public ::testing::Test {
protected:
    void SetUp() override { DeleteTree(HKEY_CURRENT_USER, kSharedKey); }
    void TearDown() override { DeleteTree(HKEY_CURRENT_USER, kSharedKey); }
};

TEST_F(RegistryProcesses, ConcurrentWritersLoseNothing) {
    constexpr long kWriters = 4;
    constexpr long kValues = 150;
    std::vector<pid_t> children;
    for (long id = 0; id < kWriters; ++id) {
        pid_t pid = SpawnChild("writer " + std::to_string(id) + " " + std::to_string(kValues));
        ASSERT_GT(pid, 0);
        children.push_back(pid);
    }
    for (pid_t pid : children) {
        int status = WaitForExit(pid);
        EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << "status " << status;
    }
    HKEY key = nullptr;
    ASSERT_EQ(RegOpenKeyExA(HKEY_CURRENT_USER, kSharedKey, 0, KEY_READ, &key), ERROR_SUCCESS);
    DWORD values = 0;
    ASSERT_EQ(RegQueryInfoKeyA(key, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, &values,
                               nullptr, nullptr, nullptr, nullptr),
              ERROR_SUCCESS);
    EXPECT_EQ(values, static_cast<DWORD>(kWriters * kValues));
    for (long id = 0; id < kWriters; ++id) {
        for (long i = 0; i < kValues; ++i) {
            std::string name = ValueName("w", id, i);
            DWORD data = 0;
            DWORD size = sizeof data;
            ASSERT_EQ(RegQueryValueExA(key, name.c_str(), nullptr, nullptr,
                                       reinterpret_cast<BYTE*>(&data), &size),
                      ERROR_SUCCESS)
                << name;
            EXPECT_EQ(data, static_cast<DWORD>(id * 100000 + i));
            std::string shared = "Common\\K" + std::to_string(i % 10);
            HKEY sub = nullptr;
            ASSERT_EQ(RegOpenKeyExA(key, shared.c_str(), 0, KEY_READ, &sub), ERROR_SUCCESS);
            EXPECT_EQ(RegQueryValueExA(sub, name.c_str(), nullptr, nullptr, nullptr, nullptr),
                      ERROR_SUCCESS);
            RegCloseKey(sub);
        }
    }
    DWORD subkeys = 0;
    HKEY common = nullptr;
    ASSERT_EQ(RegOpenKeyExA(key, "Common", 0, KEY_READ, &common), ERROR_SUCCESS);
    ASSERT_EQ(RegQueryInfoKeyA(common, nullptr, nullptr, nullptr, &subkeys, nullptr, nullptr,
                               nullptr, nullptr, nullptr, nullptr, nullptr),
              ERROR_SUCCESS);
    EXPECT_EQ(subkeys, 10u);
    RegCloseKey(common);
    RegCloseKey(key);
    EXPECT_EQ(IntegrityCheck(), "ok");
}

TEST_F(RegistryProcesses, WriterKilledMidWriteLeavesEveryCommittedValue) {
    std::mt19937 random(12345);
    for (int round = 0; round < 5; ++round) {
        int pipe_fds[2];
        ASSERT_EQ(pipe(pipe_fds), 0);
        pid_t pid = SpawnChild("crasher", pipe_fds[1]);
        close(pipe_fds[1]);
        ASSERT_GT(pid, 0);
        // Let it commit a random number of values, then kill it wherever it is.
        long target = 50 + static_cast<long>(random() % 200);
        std::set<long> numbers;  // every value the writer saw committed
        std::string pending;
        char buffer[4096];
        bool killed = false;
        for (;;) {
            ssize_t n = read(pipe_fds[0], buffer, sizeof buffer);
            if (n <= 0)
                break;
            pending.append(buffer, static_cast<size_t>(n));
            for (size_t end; (end = pending.find('\n')) != std::string::npos;
                 pending.erase(0, end + 1)) {
                numbers.insert(std::strtol(pending.c_str(), nullptr, 10));
            }
            if (!killed && static_cast<long>(numbers.size()) >= target) {
                kill(pid, SIGKILL);
                killed = true;
            }
        }
        close(pipe_fds[0]);
        int status = WaitForExit(pid);
        ASSERT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL) << "status " << status;
        ASSERT_GE(numbers.size(), static_cast<size_t>(target));
        EXPECT_EQ(IntegrityCheck(), "ok") << "round " << round;
        HKEY key = nullptr;
        ASSERT_EQ(RegOpenKeyExA(HKEY_CURRENT_USER, kSharedKey, 0, KEY_ALL_ACCESS, &key),
                  ERROR_SUCCESS);
        for (long i : numbers) {
            std::string name = ValueName("c", 0, i);
            char data[400];
            DWORD size = sizeof data;
            ASSERT_EQ(RegQueryValueExA(key, name.c_str(), nullptr, nullptr,
                                       reinterpret_cast<BYTE*>(data), &size),
                      ERROR_SUCCESS)
                << name;
            EXPECT_EQ(std::string(data), std::to_string(i) + std::string(300, 'p'));
        }
        // The write in flight when it died is all there or not there at all.
        std::string next = ValueName("c", 0, *numbers.rbegin() + 1);
        char partial[400];
        DWORD partial_size = sizeof partial;
        LONG rc = RegQueryValueExA(key, next.c_str(), nullptr, nullptr,
                                   reinterpret_cast<BYTE*>(partial), &partial_size);
        if (rc == ERROR_SUCCESS) {
            EXPECT_EQ(std::string(partial),
                      std::to_string(*numbers.rbegin() + 1) + std::string(300, 'p'));
        } else {
            EXPECT_EQ(rc, ERROR_FILE_NOT_FOUND);
        }
        // And the registry takes writes again.
        DWORD one = 1;
        EXPECT_EQ(
            RegSetValueExA(key, "after", 0, REG_DWORD, reinterpret_cast<const BYTE*>(&one), 4),
            ERROR_SUCCESS);
        RegCloseKey(key);
    }
}

TEST_F(RegistryProcesses, LockedDatabaseFailsAfterTheBusyTimeoutInsteadOfHanging) {
    HKEY key = nullptr;
    ASSERT_EQ(RegCreateKeyA(HKEY_CURRENT_USER, kSharedKey, &key), ERROR_SUCCESS);
    DWORD value = 1;
    ASSERT_EQ(RegSetValueExA(key, "v", 0, REG_DWORD, reinterpret_cast<const BYTE*>(&value), 4),
              ERROR_SUCCESS);
    sqlite3* holder = nullptr;
    ASSERT_EQ(sqlite3_open(RegistryDatabasePath().c_str(), &holder), SQLITE_OK);
    ASSERT_EQ(sqlite3_exec(holder, "BEGIN EXCLUSIVE", nullptr, nullptr, nullptr), SQLITE_OK);
    SetRegistryBusyTimeoutForTesting(200);
    value = 2;
    SetLastError(0xDEADBEEF);
    EXPECT_EQ(RegSetValueExA(key, "v", 0, REG_DWORD, reinterpret_cast<const BYTE*>(&value), 4),
              ERROR_REGISTRY_IO_FAILED);
    HKEY sub = nullptr;
    EXPECT_EQ(RegCreateKeyA(key, "new", &sub), ERROR_REGISTRY_IO_FAILED);
    EXPECT_EQ(GetLastError(), 0xDEADBEEFu);
    // Readers do not wait for a writer.
    DWORD read = 0;
    DWORD size = sizeof read;
    EXPECT_EQ(RegQueryValueExA(key, "v", nullptr, nullptr, reinterpret_cast<BYTE*>(&read), &size),
              ERROR_SUCCESS);
    EXPECT_EQ(read, 1u);
    ASSERT_EQ(sqlite3_exec(holder, "COMMIT", nullptr, nullptr, nullptr), SQLITE_OK);
    sqlite3_close(holder);
    SetRegistryBusyTimeoutForTesting(0);
    EXPECT_EQ(RegSetValueExA(key, "v", 0, REG_DWORD, reinterpret_cast<const BYTE*>(&value), 4),
              ERROR_SUCCESS);
    size = sizeof read;
    EXPECT_EQ(RegQueryValueExA(key, "v", nullptr, nullptr, reinterpret_cast<BYTE*>(&read), &size),
              ERROR_SUCCESS);
    EXPECT_EQ(read, 2u);
    RegCloseKey(key);
}

TEST_F(RegistryProcesses, DatabaseLockedByAnotherProcessFailsWritesAfterTheTimeout) {
    HKEY key = nullptr;
    ASSERT_EQ(RegCreateKeyA(HKEY_CURRENT_USER, kSharedKey, &key), ERROR_SUCCESS);
    DWORD value = 1;
    ASSERT_EQ(RegSetValueExA(key, "v", 0, REG_DWORD, reinterpret_cast<const BYTE*>(&value), 4),
              ERROR_SUCCESS);
    int pipe_fds[2];
    ASSERT_EQ(pipe(pipe_fds), 0);
    pid_t pid = SpawnChild("locker", pipe_fds[1]);
    close(pipe_fds[1]);
    ASSERT_GT(pid, 0);
    char said[8] = {};
    ASSERT_EQ(read(pipe_fds[0], said, 7), 7);
    ASSERT_STREQ(said, "locked\n");
    SetRegistryBusyTimeoutForTesting(200);
    value = 2;
    EXPECT_EQ(RegSetValueExA(key, "v", 0, REG_DWORD, reinterpret_cast<const BYTE*>(&value), 4),
              ERROR_REGISTRY_IO_FAILED);
    EXPECT_EQ(RegDeleteValueA(key, "v"), ERROR_REGISTRY_IO_FAILED);
    DWORD read_back = 0;
    DWORD size = sizeof read_back;
    EXPECT_EQ(
        RegQueryValueExA(key, "v", nullptr, nullptr, reinterpret_cast<BYTE*>(&read_back), &size),
        ERROR_SUCCESS);
    EXPECT_EQ(read_back, 1u);
    // The lock dies with its process.
    kill(pid, SIGKILL);
    WaitForExit(pid);
    close(pipe_fds[0]);
    SetRegistryBusyTimeoutForTesting(0);
    EXPECT_EQ(RegSetValueExA(key, "v", 0, REG_DWORD, reinterpret_cast<const BYTE*>(&value), 4),
              ERROR_SUCCESS);
    RegCloseKey(key);
    EXPECT_EQ(IntegrityCheck(), "ok");
}

}  // namespace
