// C-runtime drive functions over the emulated drives.
#include <cerrno>
#include <string>

#include "platform/win32.h"

namespace {

constexpr int kDriveC = 3;
constexpr int kDriveZ = 26;

// errno for a Win32 error, as the C runtime maps the common ones.
int ErrnoFromWin32(DWORD error) {
    switch (error) {
        case ERROR_FILE_NOT_FOUND:
        case ERROR_PATH_NOT_FOUND:
            return ENOENT;
        case ERROR_ACCESS_DENIED:
            return EACCES;
        default:
            return EINVAL;
    }
}

}  // namespace

extern "C" {

int _getdrive(void) {
    // The current folder is always on C: or Z:.
    std::string folder(GetCurrentDirectoryA(0, nullptr), '\0');
    if (!folder.empty() &&
        GetCurrentDirectoryA(static_cast<DWORD>(folder.size()), folder.data()) > 0 &&
        (folder[0] == 'C' || folder[0] == 'c')) {
        return kDriveC;
    }
    return kDriveZ;
}

unsigned _getdiskfree(unsigned drive, struct _diskfree_t* diskfree) {
    if (!diskfree || drive > 26) {
        errno = EINVAL;
        return ERROR_INVALID_PARAMETER;
    }
    std::string root;
    const char* query = nullptr;  // the current folder
    if (drive != 0 && static_cast<int>(drive) != _getdrive()) {
        root = std::string(1, static_cast<char>('A' + drive - 1)) + ":\\";
        query = root.c_str();
    }
    DWORD sectors = 0, bytes = 0, free_clusters = 0, total_clusters = 0;
    if (!GetDiskFreeSpaceA(query, &sectors, &bytes, &free_clusters, &total_clusters)) {
        const DWORD error = GetLastError();
        errno = ErrnoFromWin32(error);
        return error;
    }
    diskfree->total_clusters = total_clusters;
    diskfree->avail_clusters = free_clusters;
    diskfree->sectors_per_cluster = sectors;
    diskfree->bytes_per_sector = bytes;
    return 0;
}

}  // extern "C"
