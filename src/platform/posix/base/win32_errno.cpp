#include "platform/posix/base/win32_errno.h"

#include <sys/stat.h>

#include <cerrno>

namespace zq::platform::internal {

namespace {

// True when the folder that would hold `unix_path` exists.
bool ParentFolderExists(const std::string& unix_path) {
    std::string path = unix_path;
    while (path.size() > 1 && path.back() == '/') {
        path.pop_back();
    }
    std::string::size_type slash = path.find_last_of('/');
    if (slash == std::string::npos) {
        return true;  // relative single name: the current folder
    }
    std::string parent = slash == 0 ? std::string("/") : path.substr(0, slash);
    struct stat st;
    return stat(parent.c_str(), &st) == 0 && S_ISDIR(st.st_mode);
}

}  // namespace

DWORD Win32ErrorFromErrno(int error, const std::string& unix_path) {
    switch (error) {
        case 0:
            return ERROR_SUCCESS;
        case ENOENT:
            if (unix_path.empty()) {
                return ERROR_FILE_NOT_FOUND;
            }
            return ParentFolderExists(unix_path) ? ERROR_FILE_NOT_FOUND : ERROR_PATH_NOT_FOUND;
        case ENOTDIR:
        case ELOOP:
            return ERROR_PATH_NOT_FOUND;
        case EACCES:
        case EPERM:
        case EISDIR:
            return ERROR_ACCESS_DENIED;
        case EBUSY:
        case ETXTBSY:
            return ERROR_SHARING_VIOLATION;
        case EEXIST:
            return ERROR_FILE_EXISTS;
        case ENOTEMPTY:
            return ERROR_DIR_NOT_EMPTY;
        case ENAMETOOLONG:
            return ERROR_FILENAME_EXCED_RANGE;
        case ENOSPC:
        case EDQUOT:
        case EFBIG:
            return ERROR_DISK_FULL;
        case EROFS:
            return ERROR_WRITE_PROTECT;
        case EMFILE:
        case ENFILE:
            return ERROR_TOO_MANY_OPEN_FILES;
        case EBADF:
            return ERROR_INVALID_HANDLE;
        case ENOMEM:
            return ERROR_NOT_ENOUGH_MEMORY;
        case EXDEV:
            return ERROR_NOT_SAME_DEVICE;
        case EINVAL:
            return ERROR_INVALID_PARAMETER;
        case EAGAIN:
            return ERROR_LOCK_VIOLATION;
        case ENOSYS:
        case ENOTSUP:
            return ERROR_NOT_SUPPORTED;
        default:
            return ERROR_GEN_FAILURE;
    }
}

DWORD SetLastErrorFromErrno(int error, const std::string& unix_path) {
    DWORD code = Win32ErrorFromErrno(error, unix_path);
    SetLastError(code);
    return code;
}

}  // namespace zq::platform::internal
