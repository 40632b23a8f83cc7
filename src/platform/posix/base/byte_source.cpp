// File-backed byte source: positional reads, no shared file offset.
#include "platform/posix/base/byte_source.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

namespace zq::platform::internal {

FileByteSource::~FileByteSource() {
    if (fd_ >= 0)
        ::close(fd_);
}

int FileByteSource::Open(const std::string& unix_path) {
    if (fd_ >= 0) {
        ::close(fd_);
        fd_ = -1;
    }
    int fd = ::open(unix_path.c_str(), O_RDONLY | O_CLOEXEC);
    if (fd < 0)
        return errno;
    struct stat info {};
    if (::fstat(fd, &info) != 0) {
        int error = errno;
        ::close(fd);
        return error;
    }
    if (S_ISDIR(info.st_mode)) {
        ::close(fd);
        return EISDIR;
    }
    fd_ = fd;
    size_ = info.st_size > 0 ? static_cast<uint64_t>(info.st_size) : 0;
    return 0;
}

bool FileByteSource::ReadAt(uint64_t offset, void* out, size_t length) const {
    if (fd_ < 0 || offset > size_ || length > size_ - offset)
        return false;
    auto* bytes = static_cast<uint8_t*>(out);
    size_t done = 0;
    while (done < length) {
        ssize_t got = ::pread(fd_, bytes + done, length - done, static_cast<off_t>(offset + done));
        if (got < 0 && errno == EINTR)
            continue;
        if (got <= 0)
            return false;
        done += static_cast<size_t>(got);
    }
    return true;
}

}  // namespace zq::platform::internal
