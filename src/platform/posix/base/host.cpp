#include "platform/posix/base/host.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <time.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>

namespace zq::platform::internal {

namespace {

class PosixHost final : public Host {
public:
    int Open(const char* path, int flags, unsigned mode) override {
        int fd;
        do {
            fd = ::open(path, flags | O_CLOEXEC, mode);
        } while (fd < 0 && errno == EINTR);
        return fd;
    }
    int Close(int fd) override { return ::close(fd); }
    ssize_t Read(int fd, void* buffer, size_t size) override {
        ssize_t n;
        do {
            n = ::read(fd, buffer, size);
        } while (n < 0 && errno == EINTR);
        return n;
    }
    ssize_t Write(int fd, const void* data, size_t size) override {
        ssize_t n;
        do {
            n = ::write(fd, data, size);
        } while (n < 0 && errno == EINTR);
        return n;
    }
    int Fsync(int fd) override { return ::fsync(fd); }
    int Rename(const char* from, const char* to) override { return ::rename(from, to); }
    int Unlink(const char* path) override { return ::unlink(path); }
    int Stat(const char* path, struct stat* status) override { return ::stat(path, status); }
    int Fstat(int fd, struct stat* status) override { return ::fstat(fd, status); }
    int Lock(int fd, int operation) override {
        int rc;
        do {
            rc = ::flock(fd, operation);
        } while (rc < 0 && errno == EINTR);
        return rc;
    }
    uint64_t MonotonicMillis() override {
        timespec ts;
        clock_gettime(CLOCK_MONOTONIC, &ts);
        return static_cast<uint64_t>(ts.tv_sec) * 1000u +
               static_cast<uint64_t>(ts.tv_nsec) / 1000000u;
    }
    int64_t RealTimeNanos() override {
        timespec ts;
        clock_gettime(CLOCK_REALTIME, &ts);
        return static_cast<int64_t>(ts.tv_sec) * 1000000000 + ts.tv_nsec;
    }
};

std::atomic<Host*> g_current{nullptr};

}  // namespace

Host& SystemHost() {
    static PosixHost* host = new PosixHost;  // never destroyed: used during exit
    return *host;
}

Host& CurrentHost() {
    Host* host = g_current.load(std::memory_order_acquire);
    return host ? *host : SystemHost();
}

Host* SetHostForTesting(Host* host) {
    Host* previous = g_current.exchange(host, std::memory_order_acq_rel);
    return previous ? previous : &SystemHost();
}

}  // namespace zq::platform::internal
