#include "platform/posix/profile_path.h"

#include <cstring>
#include <mutex>

#include "platform/posix/prefix.h"

namespace zq::platform::internal {

namespace {

std::string WithSlashes(const char* text) {
    std::string path(text);
    for (char& c : path) {
        if (c == '\\') {
            c = '/';
        }
    }
    return path;
}

}  // namespace

std::string WindowsFolderPath() {
    static std::once_flag made;
    std::string folder = Prefix() + "/drive_c/windows";
    std::call_once(made, [&] { MakeDirectories(folder, 0755); });
    return folder;
}

std::string ProfileFilePath(const char* file_name, DWORD& error) {
    error = ERROR_SUCCESS;
    if (!std::strchr(file_name, '\\') && !std::strchr(file_name, '/')) {
        return WindowsFolderPath() + "/" + file_name;
    }
    const char first = file_name[0];
    if (first != '\0' && file_name[1] == ':') {
        const char drive = static_cast<char>(first & ~0x20);
        if (drive == 'C') {
            return Prefix() + "/drive_c/" + WithSlashes(file_name + 2);
        }
        if (drive == 'Z') {
            return "/" + WithSlashes(file_name + 2);
        }
        error = ERROR_PATH_NOT_FOUND;
        return {};
    }
    if (first == '\\') {
        if (file_name[1] == '\\' || file_name[1] == '/') {
            error = ERROR_BAD_PATHNAME;
            return {};
        }
        return Prefix() + "/drive_c" + WithSlashes(file_name);
    }
    return WithSlashes(file_name);
}

}  // namespace zq::platform::internal
