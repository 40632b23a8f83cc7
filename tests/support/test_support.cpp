#include "support/test_support.h"

#include <ftw.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <sstream>

namespace zq::test {

namespace {

std::string CreatePrefix() {
    const char* tmp = std::getenv("TMPDIR");
    std::string pattern = std::string(tmp && *tmp ? tmp : "/tmp") + "/zq-test-XXXXXX";
    if (!mkdtemp(pattern.data())) {
        std::perror("mkdtemp");
        std::abort();
    }
    setenv("ZQ_PREFIX", pattern.c_str(), 1);
    return pattern;
}

int RemoveEntry(const char* path, const struct stat*, int, struct FTW*) {
    return std::remove(path);
}

}  // namespace

const std::string& TestPrefix() {
    static const std::string prefix = CreatePrefix();
    return prefix;
}

std::string MakeScratchFolder(const std::string& stem) {
    static std::atomic<unsigned> counter{0};
    std::string path = TestPrefix() + "/" + stem + "-" + std::to_string(++counter);
    if (mkdir(path.c_str(), 0755) != 0) {
        std::perror("mkdir");
        std::abort();
    }
    return path;
}

std::string ReadFileBytes(const std::string& unix_path) {
    std::ifstream in(unix_path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

bool WriteFileBytes(const std::string& unix_path, const std::string& bytes) {
    std::ofstream out(unix_path, std::ios::binary | std::ios::trunc);
    out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    return static_cast<bool>(out);
}

std::string ExecutableFolder() {
    char buffer[4096];
    ssize_t n = readlink("/proc/self/exe", buffer, sizeof buffer - 1);
    if (n <= 0) {
        return ".";
    }
    std::string path(buffer, static_cast<size_t>(n));
    return path.substr(0, path.find_last_of('/'));
}

bool RunningAsRoot() {
    return geteuid() == 0;
}

bool SetFileMode(const std::string& unix_path, unsigned mode) {
    return chmod(unix_path.c_str(), static_cast<mode_t>(mode)) == 0;
}

ScopedEnvironmentVariable::ScopedEnvironmentVariable(const char* name, const char* value)
    : name_(name) {
    const char* old = std::getenv(name);
    had_previous_ = old != nullptr;
    if (old) {
        previous_ = old;
    }
    if (value) {
        setenv(name, value, 1);
    } else {
        unsetenv(name);
    }
}

ScopedEnvironmentVariable::~ScopedEnvironmentVariable() {
    if (had_previous_) {
        setenv(name_.c_str(), previous_.c_str(), 1);
    } else {
        unsetenv(name_.c_str());
    }
}

void RemovePrefix() {
    if (!std::getenv("ZQ_KEEP_TEST_PREFIX")) {
        nftw(TestPrefix().c_str(), RemoveEntry, 16, FTW_DEPTH | FTW_PHYS);
    }
}

}  // namespace zq::test
