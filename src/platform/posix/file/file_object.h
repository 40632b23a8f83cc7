// Open files: the kernel object behind a file HANDLE, and the opening rules
// of CreateFileA (creation dispositions, read-only and hidden files, share
// modes).
//
// Share modes are enforced between the handles of this process: an open
// fails with ERROR_SHARING_VIOLATION when it asks for access that an
// existing handle's share mode denies, or when its own share mode denies
// access an existing handle holds (handles opened with no read, write or
// delete access never conflict). Deleting or renaming a file that a handle
// of this process holds without FILE_SHARE_DELETE fails the same way. Across
// processes share modes are not enforced: Unix has no open-time locks, and
// code that needs exclusion between processes takes an advisory lock
// (Host::Lock) of its own.
//
// The read-only attribute is enforced by the emulation itself, so it holds
// for root as well: opening a read-only file for writing, replacing it or
// deleting it fails with ERROR_ACCESS_DENIED.
#pragma once

#include <sys/stat.h>

#include <memory>
#include <mutex>
#include <string>

#include "platform/posix/base/handle_table.h"
#include "platform/win32.h"

namespace zq::platform::internal {

// What a handle may do with its file, taken from the desired access mask.
struct FileAccess {
    bool read = false;
    bool write = false;
    bool append_only = false;  // FILE_APPEND_DATA without FILE_WRITE_DATA
    bool remove = false;       // DELETE

    static FileAccess FromMask(DWORD desired_access);
};

class FileObject : public KernelObject {
public:
    FileObject(int fd, std::string unix_path, const struct stat& st, FileAccess access,
               DWORD share_mode);
    ~FileObject() override;
    FileObject(const FileObject&) = delete;
    FileObject& operator=(const FileObject&) = delete;

    int fd() const { return fd_; }
    const std::string& unix_path() const { return unix_path_; }
    const FileAccess& access() const { return access_; }
    bool is_directory() const { return is_directory_; }
    // The file is removed when this object goes.
    void set_delete_on_close() { delete_on_close_ = true; }

    // Serialises the calls that use the shared file position.
    std::mutex& mutex() { return mutex_; }

private:
    friend class ShareTable;
    int fd_;
    std::string unix_path_;
    dev_t device_;
    ino_t inode_;
    FileAccess access_;
    DWORD share_mode_;
    bool delete_on_close_ = false;
    bool is_directory_;
    bool registered_ = false;
    std::mutex mutex_;
};

// What OpenFileObject produced.
struct OpenedFile {
    std::shared_ptr<FileObject> file;  // null on failure
    DWORD error = 0;                   // Win32 error on failure
    bool existed = false;              // the file was there before the call
};

// Opens `dos_path` as CreateFileA does (same arguments and errors), without
// touching the thread's last error.
OpenedFile OpenFileObject(const char* dos_path, DWORD desired_access, DWORD share_mode,
                          DWORD creation_disposition, DWORD flags_and_attributes);

// ERROR_SHARING_VIOLATION when a handle of this process holds the object at
// `unix_path` without FILE_SHARE_DELETE, else 0. Used before deleting and
// renaming.
DWORD CheckDeleteSharing(const std::string& unix_path);

// The file object of `handle`, or nullptr with ERROR_INVALID_HANDLE set as
// the last error.
std::shared_ptr<FileObject> LookupFile(HANDLE handle);

// FILETIME (100 ns since 1601) and Unix time conversions.
FILETIME FileTimeFromUnix(const struct timespec& ts);
struct timespec UnixTimeFromFileTime(const FILETIME& ft);

}  // namespace zq::platform::internal
