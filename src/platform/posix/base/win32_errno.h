// Translation of POSIX errno values into Win32 error codes.
//
// The file functions report failures as Windows would, so callers that test
// for ERROR_FILE_NOT_FOUND or ERROR_PATH_NOT_FOUND keep working. The table:
//
//   ENOENT               2 ERROR_FILE_NOT_FOUND when the parent folder of the
//                          path exists, else 3 ERROR_PATH_NOT_FOUND
//   ENOTDIR              3 ERROR_PATH_NOT_FOUND (a path component is a file;
//                          callers that need a folder report 267 themselves)
//   EACCES, EPERM        5 ERROR_ACCESS_DENIED
//   EISDIR               5 ERROR_ACCESS_DENIED (Windows refuses to open or
//                          delete a folder as a file with this code)
//   EBUSY, ETXTBSY      32 ERROR_SHARING_VIOLATION
//   EEXIST              80 ERROR_FILE_EXISTS (folder creation uses 183)
//   ENOTEMPTY          145 ERROR_DIR_NOT_EMPTY
//   ENAMETOOLONG       206 ERROR_FILENAME_EXCED_RANGE
//   ELOOP                3 ERROR_PATH_NOT_FOUND
//   ENOSPC, EDQUOT     112 ERROR_DISK_FULL
//   EFBIG              112 ERROR_DISK_FULL
//   EROFS               19 ERROR_WRITE_PROTECT
//   EMFILE, ENFILE       4 ERROR_TOO_MANY_OPEN_FILES
//   EBADF                6 ERROR_INVALID_HANDLE
//   ENOMEM               8 ERROR_NOT_ENOUGH_MEMORY
//   EXDEV               17 ERROR_NOT_SAME_DEVICE
//   EINVAL              87 ERROR_INVALID_PARAMETER
//   EIO                 31 ERROR_GEN_FAILURE
//   EAGAIN, EWOULDBLOCK 33 ERROR_LOCK_VIOLATION
//   ENOSYS, ENOTSUP     50 ERROR_NOT_SUPPORTED
//   anything else       31 ERROR_GEN_FAILURE
#pragma once

#include <string>

#include "platform/win32.h"

namespace zq::platform::internal {

// The Win32 code for `error`. `unix_path` (the path the failing call was
// given, may be empty) decides between codes 2 and 3 for ENOENT.
DWORD Win32ErrorFromErrno(int error, const std::string& unix_path = {});

// Sets the thread's last error from `error` (see above) and returns it.
DWORD SetLastErrorFromErrno(int error, const std::string& unix_path = {});

}  // namespace zq::platform::internal
