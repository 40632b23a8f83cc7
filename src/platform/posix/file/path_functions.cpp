// The Windows, system, current and temporary folders, full paths and free
// disk space.
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <string>

#include "platform/posix/base/win32_errno.h"
#include "platform/posix/file/dos_path.h"

namespace zq::platform::internal {

namespace {

// Copies `text` with its terminator when it fits in `size` bytes and
// returns its length; otherwise leaves the buffer alone and returns the
// size needed, terminator included.
DWORD CopyOut(const std::string& text, LPSTR buffer, DWORD size) {
    if (buffer && text.size() < size) {
        std::memcpy(buffer, text.c_str(), text.size() + 1);
        return static_cast<DWORD>(text.size());
    }
    return static_cast<DWORD>(text.size() + 1);
}

std::string CurrentFolderDos() {
    std::string cwd = "/";
    if (char* buffer = getcwd(nullptr, 0)) {
        cwd = buffer;
        std::free(buffer);
    }
    return UnixToDos(cwd);
}

// The DOS form of a folder named by an environment variable, with a
// trailing backslash; "" when unset or unusable.
std::string FolderFromEnvironment(const char* name) {
    const char* value = std::getenv(name);
    if (!value || !*value) {
        return {};
    }
    DosFullPath full = FullDosPath(value);
    if (!full) {
        return {};
    }
    if (full.path.back() != '\\') {
        full.path += '\\';
    }
    return full.path;
}

// Unix path of the folder a disk-space query names (NULL: current folder).
UnixPath VolumePath(LPCSTR path) {
    if (!path) {
        UnixPath current;
        current.path = ".";
        return current;
    }
    return DosToUnix(path);
}

bool QueryVolume(LPCSTR path, struct statvfs* info) {
    UnixPath unix_path = VolumePath(path);
    if (!unix_path) {
        SetLastError(unix_path.error);
        return false;
    }
    if (statvfs(unix_path.path.c_str(), info) != 0) {
        SetLastErrorFromErrno(errno, unix_path.path);
        return false;
    }
    return true;
}

}  // namespace

}  // namespace zq::platform::internal

using namespace zq::platform::internal;

extern "C" {

UINT WINAPI GetWindowsDirectoryA(LPSTR lpBuffer, UINT uSize) {
    DriveCRoot();  // makes sure the folder exists
    return CopyOut("C:\\windows", lpBuffer, uSize);
}

UINT WINAPI GetSystemDirectoryA(LPSTR lpBuffer, UINT uSize) {
    DriveCRoot();
    return CopyOut("C:\\windows\\system", lpBuffer, uSize);
}

DWORD WINAPI GetCurrentDirectoryA(DWORD nBufferLength, LPSTR lpBuffer) {
    return CopyOut(CurrentFolderDos(), lpBuffer, nBufferLength);
}

BOOL WINAPI SetCurrentDirectoryA(LPCSTR lpPathName) {
    if (!lpPathName) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    UnixPath path = DosToUnix(lpPathName);
    if (!path) {
        SetLastError(path.error);
        return FALSE;
    }
    if (chdir(path.path.c_str()) != 0) {
        int error = errno;
        struct stat st;
        if (error == ENOTDIR && stat(path.path.c_str(), &st) == 0 && !S_ISDIR(st.st_mode)) {
            SetLastError(ERROR_DIRECTORY);
        } else {
            SetLastErrorFromErrno(error, path.path);
        }
        return FALSE;
    }
    return TRUE;
}

DWORD WINAPI GetFullPathNameA(LPCSTR lpFileName, DWORD nBufferLength, LPSTR lpBuffer,
                              LPSTR* lpFilePart) {
    if (!lpFileName) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return 0;
    }
    if (!*lpFileName) {
        SetLastError(ERROR_INVALID_NAME);
        return 0;
    }
    DosFullPath full = FullDosPath(lpFileName);
    if (!full) {
        SetLastError(full.error);
        return 0;
    }
    DWORD result = CopyOut(full.path, lpBuffer, nBufferLength);
    if (result < nBufferLength && lpBuffer && lpFilePart) {
        char* last = std::strrchr(lpBuffer, '\\');
        *lpFilePart = last && last[1] ? last + 1 : nullptr;
    }
    return result;
}

DWORD WINAPI GetTempPathA(DWORD nBufferLength, LPSTR lpBuffer) {
    std::string folder = FolderFromEnvironment("TMP");
    if (folder.empty()) {
        folder = FolderFromEnvironment("TEMP");
    }
    if (folder.empty()) {
        DriveCRoot();
        folder = "C:\\temp\\";
    }
    return CopyOut(folder, lpBuffer, nBufferLength);
}

BOOL WINAPI GetDiskFreeSpaceA(LPCSTR lpRootPathName, LPDWORD lpSectorsPerCluster,
                              LPDWORD lpBytesPerSector, LPDWORD lpNumberOfFreeClusters,
                              LPDWORD lpTotalNumberOfClusters) {
    struct statvfs info;
    if (!QueryVolume(lpRootPathName, &info)) {
        return FALSE;
    }
    const uint64_t block = info.f_frsize ? info.f_frsize : info.f_bsize;
    const uint64_t total_bytes = static_cast<uint64_t>(info.f_blocks) * block;
    const uint64_t free_bytes = static_cast<uint64_t>(info.f_bavail) * block;

    constexpr uint64_t kSectorBytes = 512;
    constexpr uint64_t kLargeClusterSectors = 64;  // 32 KB clusters
    constexpr uint64_t kMaxClusters = 65535;
    uint64_t sectors = std::max<uint64_t>(1, block / kSectorBytes);
    uint64_t total_clusters = total_bytes / (sectors * kSectorBytes);
    uint64_t free_clusters = free_bytes / (sectors * kSectorBytes);
    // Windows 95 behaviour: volumes over 2 GB look like 2 GB volumes.
    if (total_bytes > kLargeClusterSectors * kSectorBytes * kMaxClusters) {
        sectors = kLargeClusterSectors;
        total_clusters = std::min(total_bytes / (sectors * kSectorBytes), kMaxClusters);
        free_clusters = std::min(free_bytes / (sectors * kSectorBytes), kMaxClusters);
    }
    if (lpSectorsPerCluster) {
        *lpSectorsPerCluster = static_cast<DWORD>(sectors);
    }
    if (lpBytesPerSector) {
        *lpBytesPerSector = static_cast<DWORD>(kSectorBytes);
    }
    if (lpNumberOfFreeClusters) {
        *lpNumberOfFreeClusters = static_cast<DWORD>(free_clusters);
    }
    if (lpTotalNumberOfClusters) {
        *lpTotalNumberOfClusters = static_cast<DWORD>(total_clusters);
    }
    return TRUE;
}

BOOL WINAPI GetDiskFreeSpaceExA(LPCSTR lpDirectoryName,
                                PULARGE_INTEGER lpFreeBytesAvailableToCaller,
                                PULARGE_INTEGER lpTotalNumberOfBytes,
                                PULARGE_INTEGER lpTotalNumberOfFreeBytes) {
    struct statvfs info;
    if (!QueryVolume(lpDirectoryName, &info)) {
        return FALSE;
    }
    const uint64_t block = info.f_frsize ? info.f_frsize : info.f_bsize;
    if (lpFreeBytesAvailableToCaller) {
        lpFreeBytesAvailableToCaller->QuadPart = static_cast<uint64_t>(info.f_bavail) * block;
    }
    if (lpTotalNumberOfBytes) {
        lpTotalNumberOfBytes->QuadPart = static_cast<uint64_t>(info.f_blocks) * block;
    }
    if (lpTotalNumberOfFreeBytes) {
        lpTotalNumberOfFreeBytes->QuadPart = static_cast<uint64_t>(info.f_bfree) * block;
    }
    return TRUE;
}

}  // extern "C"
