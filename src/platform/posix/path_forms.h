// The two forms of a path the module and version functions meet: the DOS
// form the library sees (C:\..., Z:\...) and the Unix form the system uses.
#pragma once

#include <string>

namespace zq::platform::internal {

// A path as a Win32 caller gives it (DOS or Unix form) in Unix form.
std::string UnixPathFromCaller(const char* path);
// An absolute Unix path in the DOS form Windows callers expect.
std::string DosPathFromUnix(const std::string& unix_path);

}  // namespace zq::platform::internal
