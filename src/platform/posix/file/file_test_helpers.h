// Helpers shared by the tests of the file functions.
#pragma once

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <string>

#include "platform/posix/file/dos_path.h"
#include "platform/win32.h"
#include "support/test_support.h"

namespace zq::platform::internal::testing_support {

constexpr char kSentinel = '\xCC';

// Restores the process's current folder when it goes out of scope.
class CurrentFolderGuard {
public:
    CurrentFolderGuard() {
        char* cwd = getcwd(nullptr, 0);
        saved_ = cwd ? cwd : "/";
        std::free(cwd);
    }
    ~CurrentFolderGuard() { EXPECT_EQ(chdir(saved_.c_str()), 0); }
    CurrentFolderGuard(const CurrentFolderGuard&) = delete;
    CurrentFolderGuard& operator=(const CurrentFolderGuard&) = delete;

private:
    std::string saved_;
};

// Closes a file handle at the end of the scope.
class HandleGuard {
public:
    explicit HandleGuard(HANDLE handle = INVALID_HANDLE_VALUE) : handle_(handle) {}
    ~HandleGuard() { Reset(); }
    HandleGuard(const HandleGuard&) = delete;
    HandleGuard& operator=(const HandleGuard&) = delete;
    HANDLE get() const { return handle_; }
    void Reset(HANDLE handle = INVALID_HANDLE_VALUE) {
        if (handle_ != INVALID_HANDLE_VALUE) {
            CloseHandle(handle_);
        }
        handle_ = handle;
    }

private:
    HANDLE handle_;
};

// A fresh folder with its Unix and DOS names; Dos("x") is "<folder>\x".
class ScratchFolder {
public:
    explicit ScratchFolder(const std::string& stem = "files")
        : unix_(zq::test::MakeScratchFolder(stem)), dos_(UnixToDos(unix_)) {}
    const std::string& unix_path() const { return unix_; }
    const std::string& dos_path() const { return dos_; }
    std::string Unix(const std::string& name) const { return unix_ + "/" + name; }
    std::string Dos(const std::string& name) const { return dos_ + "\\" + name; }

private:
    std::string unix_;
    std::string dos_;
};

inline bool Exists(const std::string& unix_path) {
    struct stat st;
    return lstat(unix_path.c_str(), &st) == 0;
}

// True when the file system of the test prefix keeps hidden/system bits.
inline bool KeepsExtraAttributeBits() {
    std::string probe = zq::test::MakeScratchFolder("xattr-probe") + "/probe";
    if (!zq::test::WriteFileBytes(probe, "x") ||
        !SetFileAttributesA(probe.c_str(), FILE_ATTRIBUTE_HIDDEN)) {
        return false;
    }
    return GetFileAttributesA(probe.c_str()) == FILE_ATTRIBUTE_HIDDEN;
}

inline bool RunningAsRoot() {
    return geteuid() == 0;
}

}  // namespace zq::platform::internal::testing_support
