#include "platform/posix/profile/profile_path.h"

#include "platform/posix/file/dos_path.h"

namespace zq::platform::internal {

std::string ProfileFilePath(const std::string& name, DWORD& error) {
    const bool bare = name.find_first_of("\\/") == std::string::npos;
    UnixPath path = DosToUnix(bare ? ("C:\\windows\\" + name).c_str() : name.c_str());
    error = path.error;
    return std::move(path.path);
}

}  // namespace zq::platform::internal
