// Where the profile functions find the file that a caller names.
//
// A bare file name (no '\' or '/') is a file in the Windows folder,
// C:\windows. Any other name is a DOS or Unix path (see dos_path.h). Names
// are matched to existing files without regard to case.
#pragma once

#include <string>

#include "platform/win32.h"

namespace zq::platform::internal {

// Unix path of the profile file `name`. On failure returns an empty string
// and sets `error` to the Win32 code of the DOS path layer
// (ERROR_PATH_NOT_FOUND, ERROR_FILENAME_EXCED_RANGE, ERROR_INVALID_NAME ...).
std::string ProfileFilePath(const std::string& name, DWORD& error);

}  // namespace zq::platform::internal
