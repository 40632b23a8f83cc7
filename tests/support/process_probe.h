// The running test executable doubles as a probe program for process tests.
//
// Started with ZQ_PROCESS_PROBE=<file> in its environment, a test executable
// that links this file does not run its tests: before main it writes what
// it was started with (working folder, arguments, the value of
// ZQ_PROBE_EXTRA) to <file> (whole, by a rename), waits ZQ_PROCESS_PROBE_SLEEP_MS milliseconds if
// set, and exits with ZQ_PROCESS_PROBE_EXIT (default 0).
#pragma once

#include <string>
#include <vector>

namespace zq::test {

struct ProbeReport {
    bool written = false;  // the probe ran and wrote the file
    std::string cwd;       // Unix path
    std::vector<std::string> args;
    std::string extra;  // ZQ_PROBE_EXTRA, "<unset>" when not set
};

// Unix path of the running test executable, to be started as the probe.
std::string ProbeExecutable();

// What a probe wrote to `unix_path`.
ProbeReport ReadProbeReport(const std::string& unix_path);

// For a probe that nobody waits for: the report once it exists, polling up
// to `timeout_ms` (written == false when it did not come).
ProbeReport AwaitProbeReport(const std::string& unix_path, int timeout_ms = 30000);

}  // namespace zq::test
