// Runs every conformance probe and compares its output with the golden
// file recorded from a reference Win32 implementation.
#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "golden_comparison.h"
#include "support/test_support.h"

extern char** environ;

namespace {

using zq::conformance::CompareWithGolden;
using zq::conformance::KnownDifference;
using zq::conformance::ParseKnownDifferences;

std::vector<std::string> ProbeNames() {
    std::vector<std::string> names;
    std::string list = ZQ_CONFORMANCE_PROBES;
    size_t start = 0;
    while (start <= list.size()) {
        size_t end = list.find(',', start);
        if (end == std::string::npos) {
            end = list.size();
        }
        if (end > start) {
            names.push_back(list.substr(start, end - start));
        }
        start = end + 1;
    }
    return names;
}

// The probes see the same settings the golden files were recorded with:
// UTC, the C locale, an empty prefix of their own and no overrides.
std::vector<std::string> ProbeEnvironment(const std::string& prefix) {
    std::vector<std::string> env;
    for (char** e = environ; *e; ++e) {
        const std::string entry = *e;
        const std::string name = entry.substr(0, entry.find('='));
        if (name == "TZ" || name == "LANG" || name.rfind("LC_", 0) == 0 ||
            name.rfind("ZQ_", 0) == 0) {
            continue;
        }
        env.push_back(entry);
    }
    env.push_back("TZ=UTC");
    env.push_back("LC_ALL=C");
    env.push_back("LANG=C");
    env.push_back("ZQ_PREFIX=" + prefix);
    return env;
}

struct ProbeRun {
    int status = -1;
    std::string output;
    std::string errors;
};

ProbeRun RunProbe(const std::string& name) {
    ProbeRun run;
    const std::string prefix = zq::test::MakeScratchFolder("probe-" + name);
    const std::string program = zq::test::ExecutableFolder() + "/probe_" + name;
    const std::string stdout_path = prefix + "/stdout.txt";
    const std::string stderr_path = prefix + "/stderr.txt";
    std::vector<std::string> env = ProbeEnvironment(prefix);
    std::vector<char*> envp;
    for (std::string& entry : env) {
        envp.push_back(entry.data());
    }
    envp.push_back(nullptr);

    const pid_t pid = fork();
    if (pid == 0) {
        const int out = open(stdout_path.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
        const int err = open(stderr_path.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
        if (out < 0 || err < 0 || dup2(out, 1) < 0 || dup2(err, 2) < 0 ||
            chdir(prefix.c_str()) != 0) {
            _exit(126);
        }
        char* argv[] = {const_cast<char*>(program.c_str()), nullptr};
        execve(program.c_str(), argv, envp.data());
        _exit(127);
    }
    if (pid > 0) {
        int status = 0;
        if (waitpid(pid, &status, 0) == pid) {
            run.status = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
        }
    }
    run.output = zq::test::ReadFileBytes(stdout_path);
    run.errors = zq::test::ReadFileBytes(stderr_path);
    return run;
}

class Probe : public testing::TestWithParam<std::string> {};

TEST_P(Probe, MatchesGolden) {
    const std::string name = GetParam();
    const std::string dir = ZQ_CONFORMANCE_DIR;
    const std::string golden = zq::test::ReadFileBytes(dir + "/golden/" + name + ".txt");
    ASSERT_FALSE(golden.empty()) << "no golden/" << name << ".txt";

    std::vector<KnownDifference> differences;
    std::string error;
    const std::string known_path = dir + "/known_differences/" + name + ".txt";
    ASSERT_TRUE(ParseKnownDifferences(zq::test::ReadFileBytes(known_path), &differences, &error))
        << known_path << ": " << error;

    const ProbeRun run = RunProbe(name);
    ASSERT_EQ(run.status, 0) << "probe_" << name << " failed; its stderr:\n" << run.errors;

    const std::vector<std::string> problems = CompareWithGolden(golden, run.output, differences);
    std::string report;
    const size_t shown = problems.size() < 40 ? problems.size() : 40;
    for (size_t i = 0; i < shown; ++i) {
        report += problems[i] + "\n";
    }
    if (shown < problems.size()) {
        report += "... and " + std::to_string(problems.size() - shown) + " more\n";
    }
    EXPECT_TRUE(problems.empty()) << "probe_" << name << " differs from golden/" << name
                                  << ".txt:\n"
                                  << report;
}

INSTANTIATE_TEST_SUITE_P(Golden, Probe, testing::ValuesIn(ProbeNames()),
                         [](const testing::TestParamInfo<std::string>& info) {
                             return info.param;
                         });

}  // namespace
