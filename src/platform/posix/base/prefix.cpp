#include "platform/posix/base/prefix.h"

#include <sys/stat.h>

#include <cerrno>
#include <cstdlib>

namespace zq::platform::internal {

namespace {

std::string ResolvePrefix() {
    std::string prefix;
    if (const char* env = std::getenv("ZQ_PREFIX"); env && *env) {
        prefix = env;
    } else if (const char* xdg = std::getenv("XDG_DATA_HOME"); xdg && *xdg) {
        prefix = std::string(xdg) + "/zq";
    } else if (const char* home = std::getenv("HOME"); home && *home) {
        prefix = std::string(home) + "/.local/share/zq";
    } else {
        prefix = "/tmp/zq";
    }
    while (prefix.size() > 1 && prefix.back() == '/') {
        prefix.pop_back();
    }
    if (prefix.front() != '/') {  // a relative $ZQ_PREFIX is taken from the current folder
        if (char* cwd = realpath(".", nullptr)) {
            prefix = std::string(cwd) + "/" + prefix;
            std::free(cwd);
        }
    }
    MakeDirectories(prefix, 0700);
    return prefix;
}

}  // namespace

const std::string& Prefix() {
    static const std::string prefix = ResolvePrefix();
    return prefix;
}

bool MakeDirectories(const std::string& path, unsigned mode) {
    struct stat st;
    if (stat(path.c_str(), &st) == 0) {
        return S_ISDIR(st.st_mode);
    }
    std::string::size_type slash = path.find_last_of('/');
    if (slash != std::string::npos && slash > 0) {
        MakeDirectories(path.substr(0, slash), mode);
    }
    return mkdir(path.c_str(), mode) == 0 || errno == EEXIST;
}

}  // namespace zq::platform::internal
