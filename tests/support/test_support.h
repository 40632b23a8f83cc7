// Support shared by all test executables.
//
// Every test process runs against a fresh temporary prefix (ZQ_PREFIX) that
// the test main creates before the first test and removes after the last
// (kept when ZQ_KEEP_TEST_PREFIX is set), so tests never touch the user's
// real settings and may run in parallel.
#pragma once

#include <string>

namespace zq::test {

// Absolute Unix path of this process's temporary prefix.
const std::string& TestPrefix();

// A fresh, empty folder inside the prefix (Unix path), unique per call.
std::string MakeScratchFolder(const std::string& stem = "scratch");

// Whole contents of a file as bytes; empty when it cannot be read.
std::string ReadFileBytes(const std::string& unix_path);

// Writes `bytes` as the whole file; true on success.
bool WriteFileBytes(const std::string& unix_path, const std::string& bytes);

// Folder of the running test executable (where the built modules are).
std::string ExecutableFolder();

// Whether the process has the superuser's rights, so that permission bits
// do not stop it (tests of unreadable files skip then).
bool RunningAsRoot();

// Sets a file's permission bits (as chmod does); true on success.
bool SetFileMode(const std::string& unix_path, unsigned mode);

// Sets (or, with nullptr, removes) an environment variable for the life of
// the object and restores the previous state afterwards.
class ScopedEnvironmentVariable {
public:
    ScopedEnvironmentVariable(const char* name, const char* value);
    ~ScopedEnvironmentVariable();
    ScopedEnvironmentVariable(const ScopedEnvironmentVariable&) = delete;
    ScopedEnvironmentVariable& operator=(const ScopedEnvironmentVariable&) = delete;

private:
    std::string name_;
    std::string previous_;
    bool had_previous_;
};

}  // namespace zq::test
