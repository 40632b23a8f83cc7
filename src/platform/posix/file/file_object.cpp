#include "platform/posix/file/file_object.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <map>
#include <utility>
#include <vector>

#include "platform/posix/base/host.h"
#include "platform/posix/base/win32_errno.h"
#include "platform/posix/file/dos_attributes.h"
#include "platform/posix/file/dos_path.h"

namespace zq::platform::internal {

// The open files of this process by device and inode, for the share-mode
// checks. Entries are added when a handle opens and removed when its object
// is destroyed.
class ShareTable {
public:
    static ShareTable& Get() {
        static ShareTable* table = new ShareTable;  // never destroyed: used during exit
        return *table;
    }

    // Registers `file` unless it conflicts with an open handle.
    bool Register(FileObject* file) {
        std::lock_guard<std::mutex> lock(mutex_);
        std::vector<FileObject*>& open = files_[{file->device_, file->inode_}];
        for (const FileObject* other : open) {
            if (Conflicts(*other, file->access_, file->share_mode_)) {
                return false;
            }
        }
        open.push_back(file);
        file->registered_ = true;
        return true;
    }

    void Unregister(FileObject* file) {
        std::lock_guard<std::mutex> lock(mutex_);
        auto it = files_.find({file->device_, file->inode_});
        if (it == files_.end()) {
            return;
        }
        std::erase(it->second, file);
        if (it->second.empty()) {
            files_.erase(it);
        }
    }

    // True when an open handle of (device, inode) does not share deletion.
    bool DeleteDenied(dev_t device, ino_t inode) {
        FileAccess remove;
        remove.remove = true;
        std::lock_guard<std::mutex> lock(mutex_);
        auto it = files_.find({device, inode});
        if (it == files_.end()) {
            return false;
        }
        for (const FileObject* other : it->second) {
            if (Conflicts(*other, remove, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE)) {
                return true;
            }
        }
        return false;
    }

private:
    static bool HasDataAccess(const FileAccess& access) {
        return access.read || access.write || access.remove;
    }

    // Handles without read, write or delete access take no part in sharing.
    static bool Conflicts(const FileObject& open, const FileAccess& access, DWORD share) {
        const FileAccess& held = open.access_;
        if (!HasDataAccess(held) || !HasDataAccess(access)) {
            return false;
        }
        if ((access.read && !(open.share_mode_ & FILE_SHARE_READ)) ||
            (access.write && !(open.share_mode_ & FILE_SHARE_WRITE)) ||
            (access.remove && !(open.share_mode_ & FILE_SHARE_DELETE))) {
            return true;
        }
        return (held.read && !(share & FILE_SHARE_READ)) ||
               (held.write && !(share & FILE_SHARE_WRITE)) ||
               (held.remove && !(share & FILE_SHARE_DELETE));
    }

    std::mutex mutex_;
    std::map<std::pair<dev_t, ino_t>, std::vector<FileObject*>> files_;
};

FileAccess FileAccess::FromMask(DWORD mask) {
    FileAccess access;
    access.read = (mask & (GENERIC_READ | GENERIC_ALL | FILE_READ_DATA)) != 0;
    bool write_data = (mask & (GENERIC_WRITE | GENERIC_ALL | FILE_WRITE_DATA)) != 0;
    access.append_only = !write_data && (mask & FILE_APPEND_DATA) != 0;
    access.write = write_data || access.append_only;
    access.remove = (mask & (DELETE | GENERIC_ALL)) != 0;
    return access;
}

FileObject::FileObject(int fd, std::string unix_path, const struct stat& st, FileAccess access,
                       DWORD share_mode)
    : fd_(fd),
      unix_path_(std::move(unix_path)),
      device_(st.st_dev),
      inode_(st.st_ino),
      access_(access),
      share_mode_(share_mode),
      is_directory_(S_ISDIR(st.st_mode)) {}

FileObject::~FileObject() {
    if (registered_) {
        ShareTable::Get().Unregister(this);
    }
    if (delete_on_close_) {
        CurrentHost().Unlink(unix_path_.c_str());
    }
    CurrentHost().Close(fd_);
}

namespace {

bool IsCreationDisposition(DWORD disposition) {
    return disposition >= CREATE_NEW && disposition <= TRUNCATE_EXISTING;
}

// Why a write to an existing file is refused, or 0. The read-only
// attribute is checked here (not left to the permissions) so that it holds
// for root too.
DWORD CheckWritable(const struct stat& st) {
    if (S_ISREG(st.st_mode) && (st.st_mode & S_IWUSR) == 0) {
        return ERROR_ACCESS_DENIED;
    }
    return 0;
}

}  // namespace

OpenedFile OpenFileObject(const char* dos_path, DWORD desired_access, DWORD share_mode,
                          DWORD disposition, DWORD flags) {
    OpenedFile result;
    if (!IsCreationDisposition(disposition)) {
        result.error = ERROR_INVALID_PARAMETER;
        return result;
    }
    FileAccess access = FileAccess::FromMask(desired_access);
    if (disposition == TRUNCATE_EXISTING && !access.write) {
        result.error = ERROR_INVALID_PARAMETER;
        return result;
    }
    UnixPath path = DosToUnix(dos_path);
    if (!path) {
        result.error = path.error;
        return result;
    }

    struct stat st;
    result.existed = stat(path.path.c_str(), &st) == 0;
    if (!result.existed && errno != ENOENT) {
        result.error = Win32ErrorFromErrno(errno, path.path);
        return result;
    }
    const bool replace = disposition == CREATE_ALWAYS || disposition == TRUNCATE_EXISTING;
    if (result.existed) {
        if (disposition == CREATE_NEW) {
            result.error = ERROR_FILE_EXISTS;
            return result;
        }
        if (S_ISDIR(st.st_mode)) {
            bool opens = (flags & FILE_FLAG_BACKUP_SEMANTICS) && !replace && !access.write;
            if (!opens) {
                result.error = ERROR_ACCESS_DENIED;
                return result;
            }
        } else if (access.write || replace) {
            if (DWORD error = CheckWritable(st); error != 0) {
                result.error = error;
                return result;
            }
        }
        // Replacing a hidden or system file needs those attributes named again.
        if (disposition == CREATE_ALWAYS) {
            DWORD kept = LoadKeptBits(path.path);
            if (kept & (FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM) & ~flags) {
                result.error = ERROR_ACCESS_DENIED;
                return result;
            }
        }
    } else if (disposition == OPEN_EXISTING || disposition == TRUNCATE_EXISTING) {
        result.error = Win32ErrorFromErrno(ENOENT, path.path);
        return result;
    }

    int open_flags = access.write ? (access.read ? O_RDWR : O_WRONLY) : O_RDONLY;
    const unsigned mode = 0666;  // made read-only below, once the attributes are stored
    if (!result.existed) {
        open_flags |= O_CREAT | O_EXCL;
    } else if (S_ISDIR(st.st_mode)) {
        open_flags = O_RDONLY | O_DIRECTORY;
    }
    Host& host = CurrentHost();
    int fd = host.Open(path.path.c_str(), open_flags, mode);
    if (fd < 0 && errno == EACCES && !access.read && !access.write && result.existed) {
        fd = host.Open(path.path.c_str(), O_PATH, 0);  // attributes-only access
    }
    if (fd < 0) {
        result.error = errno == EEXIST ? ERROR_FILE_EXISTS : Win32ErrorFromErrno(errno, path.path);
        return result;
    }
    struct stat opened;
    if (fstat(fd, &opened) != 0) {
        result.error = Win32ErrorFromErrno(errno);
        host.Close(fd);
        return result;
    }

    auto file = std::make_shared<FileObject>(fd, path.path, opened, access, share_mode);
    if (!ShareTable::Get().Register(file.get())) {
        if (!result.existed) {
            host.Unlink(path.path.c_str());
        }
        result.error = ERROR_SHARING_VIOLATION;
        return result;
    }
    if (result.existed && replace && opened.st_size != 0) {
        int rc = access.write ? ftruncate(fd, 0) : truncate(path.path.c_str(), 0);
        if (rc != 0) {
            result.error = Win32ErrorFromErrno(errno);
            return result;
        }
    }
    if (!result.existed || disposition == CREATE_ALWAYS) {
        // A new or replaced file takes the requested bits, and the archive
        // bit as Windows gives every file it writes.
        StoreKeptBits(path.path, (flags & kKeptAttributeBits) | FILE_ATTRIBUTE_ARCHIVE);
        if (flags & FILE_ATTRIBUTE_READONLY) {
            // The handle keeps the write access it was opened with.
            fchmod(fd, opened.st_mode & 07777 & ~static_cast<mode_t>(S_IWUSR | S_IWGRP | S_IWOTH));
        }
    }
    if (flags & FILE_FLAG_DELETE_ON_CLOSE) {
        file->set_delete_on_close();
    }
    result.file = std::move(file);
    return result;
}

DWORD CheckDeleteSharing(const std::string& unix_path) {
    struct stat st;
    if (lstat(unix_path.c_str(), &st) != 0) {
        return 0;
    }
    return ShareTable::Get().DeleteDenied(st.st_dev, st.st_ino) ? ERROR_SHARING_VIOLATION : 0;
}

std::shared_ptr<FileObject> LookupFile(HANDLE handle) {
    auto file = LookupHandleAs<FileObject>(handle);
    if (!file) {
        SetLastError(ERROR_INVALID_HANDLE);
    }
    return file;
}

namespace {
constexpr int64_t kTicksPerSecond = 10000000;
constexpr int64_t kEpochDifferenceSeconds = 11644473600;  // 1601-01-01 to 1970-01-01
}  // namespace

FILETIME FileTimeFromUnix(const struct timespec& ts) {
    int64_t ticks = (static_cast<int64_t>(ts.tv_sec) + kEpochDifferenceSeconds) * kTicksPerSecond +
                    ts.tv_nsec / 100;
    if (ticks < 0) {
        ticks = 0;
    }
    FILETIME ft;
    ft.dwLowDateTime = static_cast<DWORD>(static_cast<uint64_t>(ticks) & 0xFFFFFFFFu);
    ft.dwHighDateTime = static_cast<DWORD>(static_cast<uint64_t>(ticks) >> 32);
    return ft;
}

struct timespec UnixTimeFromFileTime(const FILETIME& ft) {
    uint64_t ticks = (static_cast<uint64_t>(ft.dwHighDateTime) << 32) | ft.dwLowDateTime;
    struct timespec ts;
    ts.tv_sec = static_cast<time_t>(static_cast<int64_t>(ticks / kTicksPerSecond) -
                                    kEpochDifferenceSeconds);
    ts.tv_nsec = static_cast<long>((ticks % kTicksPerSecond) * 100);
    return ts;
}

}  // namespace zq::platform::internal
