// Whole-file and folder operations: delete, move, copy, create and remove
// folders.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <vector>

#include "platform/posix/base/host.h"
#include "platform/posix/base/win32_errno.h"
#include "platform/posix/file/dos_attributes.h"
#include "platform/posix/file/dos_path.h"
#include "platform/posix/file/file_object.h"

using namespace zq::platform::internal;

namespace {

bool IsReadOnlyFile(const struct stat& st) {
    return S_ISREG(st.st_mode) && (st.st_mode & S_IWUSR) == 0;
}

bool SameObject(const struct stat& a, const struct stat& b) {
    return a.st_dev == b.st_dev && a.st_ino == b.st_ino;
}

BOOL Fail(DWORD error) {
    SetLastError(error);
    return FALSE;
}

// Writes the folder holding `unix_path` through to disk.
void SyncParentFolder(const std::string& unix_path) {
    std::string::size_type slash = unix_path.find_last_of('/');
    std::string folder =
        slash == 0 || slash == std::string::npos ? "/" : unix_path.substr(0, slash);
    Host& host = CurrentHost();
    int fd = host.Open(folder.c_str(), O_RDONLY | O_DIRECTORY, 0);
    if (fd >= 0) {
        host.Fsync(fd);
        host.Close(fd);
    }
}

// Copies the file `from` to `to` (DOS or Unix paths) with its attributes
// and last-write time. Returns 0 or the Win32 error; a partly written
// target is removed.
DWORD CopyWholeFile(const char* from, const char* to, bool fail_if_exists) {
    OpenedFile source =
        OpenFileObject(from, GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_DELETE, OPEN_EXISTING, 0);
    if (!source.file) {
        return source.error;
    }
    struct stat st;
    if (fstat(source.file->fd(), &st) != 0) {
        return Win32ErrorFromErrno(errno);
    }
    DWORD attributes = AttributesFromStat(st, source.file->unix_path());
    OpenedFile target =
        OpenFileObject(to, GENERIC_WRITE, 0, fail_if_exists ? CREATE_NEW : CREATE_ALWAYS,
                       attributes & kKeptAttributeBits);
    if (!target.file) {
        return target.error;
    }
    std::string target_path = target.file->unix_path();

    Host& host = CurrentHost();
    std::vector<char> buffer(64 * 1024);
    DWORD error = 0;
    for (;;) {
        ssize_t n = host.Read(source.file->fd(), buffer.data(), buffer.size());
        if (n < 0) {
            error = Win32ErrorFromErrno(errno);
            break;
        }
        if (n == 0) {
            break;
        }
        for (ssize_t done = 0; done < n && error == 0;) {
            ssize_t w =
                host.Write(target.file->fd(), buffer.data() + done, static_cast<size_t>(n - done));
            if (w <= 0) {
                error = Win32ErrorFromErrno(w == 0 ? ENOSPC : errno);
            } else {
                done += w;
            }
        }
        if (error != 0) {
            break;
        }
    }
    if (error == 0) {
        struct timespec times[2];
        times[0].tv_sec = 0;
        times[0].tv_nsec = UTIME_OMIT;
        times[1] = st.st_mtim;
        futimens(target.file->fd(), times);
    }
    target.file.reset();
    source.file.reset();
    if (error != 0) {
        host.Unlink(target_path.c_str());
        return error;
    }
    WriteDosAttributes(target_path, attributes | FILE_ATTRIBUTE_ARCHIVE);
    return 0;
}

}  // namespace

extern "C" {

BOOL WINAPI DeleteFileA(LPCSTR lpFileName) {
    UnixPath path = DosToUnix(lpFileName);
    if (!path) {
        return Fail(path.error);
    }
    struct stat st;
    if (lstat(path.path.c_str(), &st) != 0) {
        return Fail(Win32ErrorFromErrno(errno, path.path));
    }
    if (S_ISDIR(st.st_mode) || IsReadOnlyFile(st)) {
        return Fail(ERROR_ACCESS_DENIED);
    }
    if (DWORD error = CheckDeleteSharing(path.path); error != 0) {
        return Fail(error);
    }
    if (CurrentHost().Unlink(path.path.c_str()) != 0) {
        return Fail(Win32ErrorFromErrno(errno, path.path));
    }
    return TRUE;
}

BOOL WINAPI MoveFileExA(LPCSTR lpExistingFileName, LPCSTR lpNewFileName, DWORD dwFlags) {
    if (dwFlags & MOVEFILE_DELAY_UNTIL_REBOOT) {
        return Fail(ERROR_NOT_SUPPORTED);
    }
    UnixPath from = DosToUnix(lpExistingFileName);
    if (!from) {
        return Fail(from.error);
    }
    struct stat from_st;
    if (lstat(from.path.c_str(), &from_st) != 0) {
        return Fail(Win32ErrorFromErrno(errno, from.path));
    }
    if (!lpNewFileName) {
        return Fail(ERROR_INVALID_PARAMETER);
    }
    UnixPath to = DosToUnix(lpNewFileName);
    if (!to) {
        return Fail(to.error);
    }
    if (DWORD error = CheckDeleteSharing(from.path); error != 0) {
        return Fail(error);
    }
    struct stat to_st;
    if (lstat(to.path.c_str(), &to_st) == 0) {
        if (SameObject(from_st, to_st)) {
            // The same file under another spelling: a change of case only.
            to = DosToUnix(lpNewFileName, LastComponent::kAsGiven);
            if (to.path == from.path) {
                return TRUE;
            }
        } else {
            if (!(dwFlags & MOVEFILE_REPLACE_EXISTING)) {
                return Fail(ERROR_ALREADY_EXISTS);
            }
            if (S_ISDIR(to_st.st_mode) || S_ISDIR(from_st.st_mode) || IsReadOnlyFile(to_st)) {
                return Fail(ERROR_ACCESS_DENIED);
            }
            if (DWORD error = CheckDeleteSharing(to.path); error != 0) {
                return Fail(error);
            }
        }
    }
    Host& host = CurrentHost();
    if (host.Rename(from.path.c_str(), to.path.c_str()) != 0) {
        int error = errno;
        if (error != EXDEV) {
            return Fail(Win32ErrorFromErrno(error, to.path));
        }
        // Another file system: files move by copying, folders do not move.
        if (S_ISDIR(from_st.st_mode) || !(dwFlags & MOVEFILE_COPY_ALLOWED)) {
            return Fail(ERROR_NOT_SAME_DEVICE);
        }
        bool replace = (dwFlags & MOVEFILE_REPLACE_EXISTING) != 0;
        if (DWORD copy_error = CopyWholeFile(from.path.c_str(), to.path.c_str(), !replace);
            copy_error != 0) {
            return Fail(copy_error);
        }
        if (host.Unlink(from.path.c_str()) != 0) {
            return Fail(Win32ErrorFromErrno(errno, from.path));
        }
    }
    if (dwFlags & MOVEFILE_WRITE_THROUGH) {
        SyncParentFolder(to.path);
    }
    return TRUE;
}

BOOL WINAPI MoveFileA(LPCSTR lpExistingFileName, LPCSTR lpNewFileName) {
    return MoveFileExA(lpExistingFileName, lpNewFileName, MOVEFILE_COPY_ALLOWED);
}

BOOL WINAPI CopyFileA(LPCSTR lpExistingFileName, LPCSTR lpNewFileName, BOOL bFailIfExists) {
    if (!lpExistingFileName || !lpNewFileName) {
        return Fail(ERROR_INVALID_PARAMETER);
    }
    if (DWORD error = CopyWholeFile(lpExistingFileName, lpNewFileName, bFailIfExists != FALSE);
        error != 0) {
        return Fail(error);
    }
    return TRUE;
}

BOOL WINAPI CreateDirectoryA(LPCSTR lpPathName, LPSECURITY_ATTRIBUTES /*lpSecurityAttributes*/) {
    UnixPath path = DosToUnix(lpPathName);
    if (!path) {
        return Fail(path.error);
    }
    if (mkdir(path.path.c_str(), 0777) != 0) {
        switch (errno) {
            case EEXIST:
                return Fail(ERROR_ALREADY_EXISTS);
            case ENOENT:
                return Fail(ERROR_PATH_NOT_FOUND);
            default:
                return Fail(Win32ErrorFromErrno(errno, path.path));
        }
    }
    return TRUE;
}

BOOL WINAPI RemoveDirectoryA(LPCSTR lpPathName) {
    UnixPath path = DosToUnix(lpPathName);
    if (!path) {
        return Fail(path.error);
    }
    struct stat st;
    if (lstat(path.path.c_str(), &st) != 0) {
        return Fail(Win32ErrorFromErrno(errno, path.path));
    }
    if (!S_ISDIR(st.st_mode)) {
        return Fail(ERROR_DIRECTORY);
    }
    std::string dos = UnixToDos(path.path);
    if (dos == "C:\\" || dos == "Z:\\") {
        return Fail(ERROR_ACCESS_DENIED);
    }
    // Windows keeps the current folder open, so it cannot be removed.
    struct stat current;
    if (stat(".", &current) == 0 && SameObject(st, current)) {
        return Fail(ERROR_SHARING_VIOLATION);
    }
    if (DWORD error = CheckDeleteSharing(path.path); error != 0) {
        return Fail(error);
    }
    if (rmdir(path.path.c_str()) != 0) {
        int error = errno;
        return Fail(error == ENOTEMPTY || error == EEXIST ? ERROR_DIR_NOT_EMPTY
                                                          : Win32ErrorFromErrno(error, path.path));
    }
    return TRUE;
}

}  // extern "C"
