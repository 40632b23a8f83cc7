// The seam between the Win32 functions and the operating system.
//
// What the POSIX implementation needs from the OS that a test may want to
// fail on purpose (a full disk, a failing rename, a lock held by someone
// else, a clock that stands still) goes through Host. The process has one
// current Host; tests swap in a ForwardingHost subclass that overrides the
// calls they want to break and passes the rest through. Code above
// src/platform never sees this interface.
//
// Calls return what the system call returns (-1 and errno on failure).
#pragma once

#include <sys/stat.h>
#include <sys/types.h>

#include <cstdint>

namespace zq::platform::internal {

class Host {
public:
    virtual ~Host() = default;

    // Files.
    virtual int Open(const char* path, int flags, unsigned mode) = 0;
    virtual int Close(int fd) = 0;
    virtual ssize_t Read(int fd, void* buffer, size_t size) = 0;
    virtual ssize_t Write(int fd, const void* data, size_t size) = 0;
    virtual int Fsync(int fd) = 0;
    virtual int Rename(const char* from, const char* to) = 0;
    virtual int Unlink(const char* path) = 0;
    virtual int Stat(const char* path, struct stat* status) = 0;
    virtual int Fstat(int fd, struct stat* status) = 0;
    // Whole-file advisory lock (flock semantics: dies with the descriptor).
    // `operation` is LOCK_SH, LOCK_EX or LOCK_UN, optionally | LOCK_NB.
    virtual int Lock(int fd, int operation) = 0;

    // Clocks. Monotonic milliseconds since an arbitrary start; wall-clock
    // nanoseconds since the Unix epoch (UTC).
    virtual uint64_t MonotonicMillis() = 0;
    virtual int64_t RealTimeNanos() = 0;
};

// The OS itself.
Host& SystemHost();

// The Host in use (SystemHost() unless a test installed another).
Host& CurrentHost();

// Installs `host` (nullptr restores SystemHost()); returns the previous one.
// Not for concurrent use with calls that are in flight.
Host* SetHostForTesting(Host* host);

// Passes every call to a target Host; override what a test should change.
class ForwardingHost : public Host {
public:
    explicit ForwardingHost(Host& target) : target_(target) {}
    int Open(const char* path, int flags, unsigned mode) override {
        return target_.Open(path, flags, mode);
    }
    int Close(int fd) override { return target_.Close(fd); }
    ssize_t Read(int fd, void* buffer, size_t size) override {
        return target_.Read(fd, buffer, size);
    }
    ssize_t Write(int fd, const void* data, size_t size) override {
        return target_.Write(fd, data, size);
    }
    int Fsync(int fd) override { return target_.Fsync(fd); }
    int Rename(const char* from, const char* to) override { return target_.Rename(from, to); }
    int Unlink(const char* path) override { return target_.Unlink(path); }
    int Stat(const char* path, struct stat* status) override { return target_.Stat(path, status); }
    int Fstat(int fd, struct stat* status) override { return target_.Fstat(fd, status); }
    int Lock(int fd, int operation) override { return target_.Lock(fd, operation); }
    uint64_t MonotonicMillis() override { return target_.MonotonicMillis(); }
    int64_t RealTimeNanos() override { return target_.RealTimeNanos(); }

private:
    Host& target_;
};

// RAII installer for tests.
class ScopedHost {
public:
    explicit ScopedHost(Host& host) : previous_(SetHostForTesting(&host)) {}
    ~ScopedHost() { SetHostForTesting(previous_); }
    ScopedHost(const ScopedHost&) = delete;
    ScopedHost& operator=(const ScopedHost&) = delete;

private:
    Host* previous_;
};

}  // namespace zq::platform::internal
