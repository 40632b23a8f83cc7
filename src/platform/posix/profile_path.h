// Where the profile functions find the file that a caller names.
//
// A bare file name (no '\' or '/') is a file in the Windows folder,
// C:\windows = $ZQ_PREFIX/drive_c/windows, which is created when missing.
// Any other name is a DOS path (C: is $ZQ_PREFIX/drive_c, Z: the Unix root,
// "\dir\file" starts at the root of C:) or a Unix path.
#pragma once

#include <string>

#include "platform/win32.h"

namespace zq::platform::internal {

// Unix path of the profile file `file_name` (not NULL). On failure returns
// an empty string and sets `error` to the Win32 code
// (ERROR_PATH_NOT_FOUND for a drive other than C: or Z:, ERROR_BAD_PATHNAME
// for a network path).
std::string ProfileFilePath(const char* file_name, DWORD& error);

// Unix path of the Windows folder.
std::string WindowsFolderPath();

}  // namespace zq::platform::internal
