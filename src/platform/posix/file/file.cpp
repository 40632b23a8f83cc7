// File handles: CreateFileA and the calls that work on an open file.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "platform/posix/base/host.h"
#include "platform/posix/base/win32_errno.h"
#include "platform/posix/file/file_object.h"

using namespace zq::platform::internal;

namespace {

// Positions the descriptor at the offset an OVERLAPPED names.
bool SeekToOverlapped(const FileObject& file, const OVERLAPPED* overlapped) {
    if (!overlapped) {
        return true;
    }
    off_t offset = static_cast<off_t>((static_cast<uint64_t>(overlapped->OffsetHigh) << 32) |
                                      overlapped->Offset);
    if (lseek(file.fd(), offset, SEEK_SET) < 0) {
        SetLastErrorFromErrno(errno);
        return false;
    }
    return true;
}

bool CurrentPosition(const FileObject& file, int64_t* position) {
    off_t at = lseek(file.fd(), 0, SEEK_CUR);
    if (at < 0) {
        SetLastErrorFromErrno(errno);
        return false;
    }
    *position = at;
    return true;
}

}  // namespace

extern "C" {

HANDLE WINAPI CreateFileA(LPCSTR lpFileName, DWORD dwDesiredAccess, DWORD dwShareMode,
                          LPSECURITY_ATTRIBUTES /*lpSecurityAttributes*/,
                          DWORD dwCreationDisposition, DWORD dwFlagsAndAttributes,
                          HANDLE /*hTemplateFile*/) {
    OpenedFile opened = OpenFileObject(lpFileName, dwDesiredAccess, dwShareMode,
                                       dwCreationDisposition, dwFlagsAndAttributes);
    if (!opened.file) {
        SetLastError(opened.error);
        return INVALID_HANDLE_VALUE;
    }
    HANDLE handle = AddHandle(opened.file);
    if (!handle) {
        SetLastError(ERROR_TOO_MANY_OPEN_FILES);
        return INVALID_HANDLE_VALUE;
    }
    bool reports_existing =
        dwCreationDisposition == CREATE_ALWAYS || dwCreationDisposition == OPEN_ALWAYS;
    SetLastError(opened.existed && reports_existing ? ERROR_ALREADY_EXISTS : ERROR_SUCCESS);
    return handle;
}

BOOL WINAPI ReadFile(HANDLE hFile, LPVOID lpBuffer, DWORD nNumberOfBytesToRead,
                     LPDWORD lpNumberOfBytesRead, LPOVERLAPPED lpOverlapped) {
    if (lpNumberOfBytesRead) {
        *lpNumberOfBytesRead = 0;
    }
    auto file = LookupFile(hFile);
    if (!file) {
        return FALSE;
    }
    if (!file->access().read) {
        SetLastError(ERROR_ACCESS_DENIED);
        return FALSE;
    }
    if (file->is_directory()) {
        SetLastError(ERROR_INVALID_FUNCTION);
        return FALSE;
    }
    if (!lpBuffer && nNumberOfBytesToRead > 0) {
        SetLastError(ERROR_NOACCESS);
        return FALSE;
    }
    std::lock_guard<std::mutex> lock(file->mutex());
    if (!SeekToOverlapped(*file, lpOverlapped)) {
        return FALSE;
    }
    Host& host = CurrentHost();
    auto* out = static_cast<char*>(lpBuffer);
    DWORD done = 0;
    while (done < nNumberOfBytesToRead) {
        ssize_t n = host.Read(file->fd(), out + done, nNumberOfBytesToRead - done);
        if (n < 0) {
            if (lpNumberOfBytesRead) {
                *lpNumberOfBytesRead = done;
            }
            SetLastErrorFromErrno(errno);
            return FALSE;
        }
        if (n == 0) {
            break;  // end of file
        }
        done += static_cast<DWORD>(n);
    }
    if (lpNumberOfBytesRead) {
        *lpNumberOfBytesRead = done;
    }
    return TRUE;
}

BOOL WINAPI WriteFile(HANDLE hFile, LPCVOID lpBuffer, DWORD nNumberOfBytesToWrite,
                      LPDWORD lpNumberOfBytesWritten, LPOVERLAPPED lpOverlapped) {
    if (lpNumberOfBytesWritten) {
        *lpNumberOfBytesWritten = 0;
    }
    auto file = LookupFile(hFile);
    if (!file) {
        return FALSE;
    }
    if (!file->access().write || file->is_directory()) {
        SetLastError(ERROR_ACCESS_DENIED);
        return FALSE;
    }
    if (!lpBuffer && nNumberOfBytesToWrite > 0) {
        SetLastError(ERROR_NOACCESS);
        return FALSE;
    }
    std::lock_guard<std::mutex> lock(file->mutex());
    if (file->access().append_only) {
        if (lseek(file->fd(), 0, SEEK_END) < 0) {
            SetLastErrorFromErrno(errno);
            return FALSE;
        }
    } else if (!SeekToOverlapped(*file, lpOverlapped)) {
        return FALSE;
    }
    Host& host = CurrentHost();
    const auto* in = static_cast<const char*>(lpBuffer);
    DWORD done = 0;
    while (done < nNumberOfBytesToWrite) {
        ssize_t n = host.Write(file->fd(), in + done, nNumberOfBytesToWrite - done);
        if (n <= 0) {
            if (lpNumberOfBytesWritten) {
                *lpNumberOfBytesWritten = done;
            }
            SetLastErrorFromErrno(n == 0 ? ENOSPC : errno);
            return FALSE;
        }
        done += static_cast<DWORD>(n);
    }
    if (lpNumberOfBytesWritten) {
        *lpNumberOfBytesWritten = done;
    }
    return TRUE;
}

DWORD WINAPI SetFilePointer(HANDLE hFile, LONG lDistanceToMove, PLONG lpDistanceToMoveHigh,
                            DWORD dwMoveMethod) {
    auto file = LookupFile(hFile);
    if (!file) {
        return INVALID_SET_FILE_POINTER;
    }
    int64_t distance = lDistanceToMove;
    if (lpDistanceToMoveHigh) {
        distance = static_cast<int64_t>(
            (static_cast<uint64_t>(static_cast<uint32_t>(*lpDistanceToMoveHigh)) << 32) |
            static_cast<uint32_t>(lDistanceToMove));
    }
    std::lock_guard<std::mutex> lock(file->mutex());
    int64_t base = 0;
    switch (dwMoveMethod) {
        case FILE_BEGIN:
            break;
        case FILE_CURRENT:
            if (!CurrentPosition(*file, &base)) {
                return INVALID_SET_FILE_POINTER;
            }
            break;
        case FILE_END: {
            struct stat st;
            if (fstat(file->fd(), &st) != 0) {
                SetLastErrorFromErrno(errno);
                return INVALID_SET_FILE_POINTER;
            }
            base = st.st_size;
            break;
        }
        default:
            SetLastError(ERROR_INVALID_PARAMETER);
            return INVALID_SET_FILE_POINTER;
    }
    int64_t target = 0;
    if (__builtin_add_overflow(base, distance, &target)) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return INVALID_SET_FILE_POINTER;
    }
    if (target < 0) {
        SetLastError(ERROR_NEGATIVE_SEEK);
        return INVALID_SET_FILE_POINTER;
    }
    if (!lpDistanceToMoveHigh && target > static_cast<int64_t>(0xFFFFFFFFu)) {
        SetLastError(ERROR_INVALID_PARAMETER);  // the position would not fit the result
        return INVALID_SET_FILE_POINTER;
    }
    if (lseek(file->fd(), static_cast<off_t>(target), SEEK_SET) < 0) {
        SetLastErrorFromErrno(errno);
        return INVALID_SET_FILE_POINTER;
    }
    if (lpDistanceToMoveHigh) {
        *lpDistanceToMoveHigh = static_cast<LONG>(static_cast<uint64_t>(target) >> 32);
    }
    DWORD low = static_cast<DWORD>(static_cast<uint64_t>(target) & 0xFFFFFFFFu);
    if (low == INVALID_SET_FILE_POINTER) {
        SetLastError(NO_ERROR);  // lets the caller tell this position from a failure
    }
    return low;
}

BOOL WINAPI SetEndOfFile(HANDLE hFile) {
    auto file = LookupFile(hFile);
    if (!file) {
        return FALSE;
    }
    if (!file->access().write || file->is_directory()) {
        SetLastError(ERROR_ACCESS_DENIED);
        return FALSE;
    }
    std::lock_guard<std::mutex> lock(file->mutex());
    int64_t position = 0;
    if (!CurrentPosition(*file, &position)) {
        return FALSE;
    }
    if (ftruncate(file->fd(), static_cast<off_t>(position)) != 0) {
        SetLastErrorFromErrno(errno);
        return FALSE;
    }
    return TRUE;
}

DWORD WINAPI GetFileSize(HANDLE hFile, LPDWORD lpFileSizeHigh) {
    auto file = LookupFile(hFile);
    if (!file) {
        return INVALID_FILE_SIZE;
    }
    struct stat st;
    if (fstat(file->fd(), &st) != 0) {
        SetLastErrorFromErrno(errno);
        return INVALID_FILE_SIZE;
    }
    uint64_t size = file->is_directory() ? 0 : static_cast<uint64_t>(st.st_size);
    if (lpFileSizeHigh) {
        *lpFileSizeHigh = static_cast<DWORD>(size >> 32);
    }
    DWORD low = static_cast<DWORD>(size & 0xFFFFFFFFu);
    if (low == INVALID_FILE_SIZE) {
        SetLastError(NO_ERROR);
    }
    return low;
}

BOOL WINAPI FlushFileBuffers(HANDLE hFile) {
    auto file = LookupFile(hFile);
    if (!file) {
        return FALSE;
    }
    if (!file->access().write) {
        SetLastError(ERROR_ACCESS_DENIED);
        return FALSE;
    }
    if (CurrentHost().Fsync(file->fd()) != 0) {
        SetLastErrorFromErrno(errno);
        return FALSE;
    }
    return TRUE;
}

BOOL WINAPI GetFileTime(HANDLE hFile, LPFILETIME lpCreationTime, LPFILETIME lpLastAccessTime,
                        LPFILETIME lpLastWriteTime) {
    auto file = LookupFile(hFile);
    if (!file) {
        return FALSE;
    }
    struct statx sx;
    if (statx(file->fd(), "", AT_EMPTY_PATH, STATX_BASIC_STATS | STATX_BTIME, &sx) != 0) {
        SetLastErrorFromErrno(errno);
        return FALSE;
    }
    auto convert = [](const struct statx_timestamp& t) {
        struct timespec ts;
        ts.tv_sec = static_cast<time_t>(t.tv_sec);
        ts.tv_nsec = static_cast<long>(t.tv_nsec);
        return FileTimeFromUnix(ts);
    };
    if (lpCreationTime) {
        *lpCreationTime = convert((sx.stx_mask & STATX_BTIME) ? sx.stx_btime : sx.stx_ctime);
    }
    if (lpLastAccessTime) {
        *lpLastAccessTime = convert(sx.stx_atime);
    }
    if (lpLastWriteTime) {
        *lpLastWriteTime = convert(sx.stx_mtime);
    }
    return TRUE;
}

BOOL WINAPI SetFileTime(HANDLE hFile, const FILETIME* /*lpCreationTime*/,
                        const FILETIME* lpLastAccessTime, const FILETIME* lpLastWriteTime) {
    auto file = LookupFile(hFile);
    if (!file) {
        return FALSE;
    }
    if (!file->access().write) {
        SetLastError(ERROR_ACCESS_DENIED);
        return FALSE;
    }
    // NULL and a zero time leave the value alone; so does all-ones, which
    // later Windows versions use for "stop updating it".
    auto pick = [](const FILETIME* ft) {
        bool keep = !ft || (ft->dwLowDateTime == 0 && ft->dwHighDateTime == 0) ||
                    (ft->dwLowDateTime == 0xFFFFFFFFu && ft->dwHighDateTime == 0xFFFFFFFFu);
        struct timespec ts;
        if (keep) {
            ts.tv_sec = 0;
            ts.tv_nsec = UTIME_OMIT;
        } else {
            ts = UnixTimeFromFileTime(*ft);
        }
        return ts;
    };
    struct timespec times[2] = {pick(lpLastAccessTime), pick(lpLastWriteTime)};
    if (futimens(file->fd(), times) != 0) {
        SetLastErrorFromErrno(errno);
        return FALSE;
    }
    return TRUE;
}

}  // extern "C"
