#include "support/process_probe.h"

#include <fcntl.h>
#include <time.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <sstream>

namespace zq::test {

namespace {

// Fields are written as <name>\0<value>\0 so that any argument survives.
void WriteField(std::string* out, const char* name, const std::string& value) {
    out->append(name);
    out->push_back('\0');
    out->append(value);
    out->push_back('\0');
}

[[maybe_unused]] const bool g_probe_ran = [] {
    const char* out_path = std::getenv("ZQ_PROCESS_PROBE");
    if (out_path == nullptr) {
        return false;
    }
    std::string report;
    char cwd[4096];
    WriteField(&report, "cwd", getcwd(cwd, sizeof cwd) ? cwd : "");
    const char* extra = std::getenv("ZQ_PROBE_EXTRA");
    WriteField(&report, "extra", extra ? extra : "<unset>");
    std::ifstream cmdline("/proc/self/cmdline", std::ios::binary);
    std::string args((std::istreambuf_iterator<char>(cmdline)), std::istreambuf_iterator<char>());
    size_t start = 0;
    while (start < args.size()) {
        size_t end = args.find('\0', start);
        WriteField(&report, "arg", args.substr(start, end - start));
        start = end + 1;
    }
    // Written aside and renamed, so a reader sees the whole report or none.
    std::string temporary = std::string(out_path) + ".part";
    int fd = open(temporary.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
    if (fd >= 0) {
        ssize_t ignored = write(fd, report.data(), report.size());
        (void)ignored;
        close(fd);
        rename(temporary.c_str(), out_path);
    }
    if (const char* sleep_ms = std::getenv("ZQ_PROCESS_PROBE_SLEEP_MS")) {
        long ms = std::atol(sleep_ms);
        timespec ts{ms / 1000, (ms % 1000) * 1000000};
        nanosleep(&ts, nullptr);
    }
    const char* code = std::getenv("ZQ_PROCESS_PROBE_EXIT");
    _exit(code ? std::atoi(code) : 0);
}();

}  // namespace

std::string ProbeExecutable() {
    char buffer[4096];
    ssize_t n = readlink("/proc/self/exe", buffer, sizeof buffer - 1);
    return n > 0 ? std::string(buffer, static_cast<size_t>(n)) : std::string();
}

ProbeReport ReadProbeReport(const std::string& unix_path) {
    ProbeReport report;
    std::ifstream in(unix_path, std::ios::binary);
    std::string data((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    size_t pos = 0;
    auto next = [&](std::string* field) {
        size_t end = data.find('\0', pos);
        if (end == std::string::npos) {
            return false;
        }
        *field = data.substr(pos, end - pos);
        pos = end + 1;
        return true;
    };
    std::string name, value;
    while (next(&name) && next(&value)) {
        report.written = true;
        if (name == "cwd") {
            report.cwd = value;
        } else if (name == "extra") {
            report.extra = value;
        } else if (name == "arg") {
            report.args.push_back(value);
        }
    }
    return report;
}

ProbeReport AwaitProbeReport(const std::string& unix_path, int timeout_ms) {
    for (int waited = 0;; waited += 10) {
        if (access(unix_path.c_str(), F_OK) == 0 || waited >= timeout_ms) {
            return ReadProbeReport(unix_path);
        }
        timespec ts{0, 10 * 1000000};
        nanosleep(&ts, nullptr);
    }
}

}  // namespace zq::test
