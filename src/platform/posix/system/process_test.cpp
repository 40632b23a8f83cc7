#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

#include <cstring>
#include <string>

#include "platform/win32.h"
#include "support/process_probe.h"
#include "support/test_support.h"

namespace {

using zq::test::ProbeReport;

// Runs a program to its end and returns what the probe wrote.
class ProcessTest : public testing::Test {
protected:
    void SetUp() override {
        folder_ = zq::test::MakeScratchFolder("process");
        report_ = folder_ + "/report";
        // The probe under a name with blanks, in a folder with blanks.
        drive_folder_ = zq::test::TestPrefix() + "/drive_c/Program Files/Probe Tool";
        ASSERT_EQ(system(("mkdir -p '" + drive_folder_ + "'").c_str()), 0);
        probe_ = drive_folder_ + "/probe tool";
        unlink(probe_.c_str());
        ASSERT_EQ(symlink(zq::test::ProbeExecutable().c_str(), probe_.c_str()), 0);
    }

    // An environment block naming the report file, plus `extra` entries.
    std::string Environment(const std::string& extra = "") {
        std::string block = "ZQ_PROCESS_PROBE=" + report_ + '\0';
        block += extra;
        block += '\0';
        return block;
    }

    // Starts, waits, returns the exit code (or ~0u when it did not start).
    DWORD Run(const char* application, std::string command_line, const char* directory = nullptr,
              const std::string& environment = "") {
        std::string env = environment.empty() ? Environment() : environment;
        STARTUPINFOA startup{};
        startup.cb = sizeof startup;
        PROCESS_INFORMATION info{};
        if (!CreateProcessA(application, command_line.empty() ? nullptr : command_line.data(),
                            nullptr, nullptr, FALSE, 0, env.data(), directory, &startup, &info)) {
            return ~0u;
        }
        EXPECT_EQ(WaitForSingleObject(info.hProcess, INFINITE), static_cast<DWORD>(WAIT_OBJECT_0));
        DWORD code = 0;
        EXPECT_TRUE(GetExitCodeProcess(info.hProcess, &code));
        EXPECT_TRUE(CloseHandle(info.hThread));
        EXPECT_TRUE(CloseHandle(info.hProcess));
        return code;
    }

    ProbeReport Report() { return zq::test::ReadProbeReport(report_); }

    std::string folder_, report_, drive_folder_, probe_;
};

using Args = std::vector<std::string>;

TEST_F(ProcessTest, ApplicationPathWithBlanksIsNotSplit) {
    std::string line = probe_ + R"( one "two words" "quo\"te" back\\slash)";
    ASSERT_EQ(Run(probe_.c_str(), line), 0u);
    ProbeReport report = Report();
    ASSERT_TRUE(report.written);
    EXPECT_EQ(report.args, (Args{probe_, "one", "two words", "quo\"te", "back\\\\slash"}));
}

TEST_F(ProcessTest, DosPathsQuotedUnquotedAndWithoutExe) {
    const std::string dos = R"(C:\Program Files\Probe Tool\probe tool)";
    ASSERT_EQ(Run(nullptr, "\"" + dos + "\" a \"b c\""), 0u);
    EXPECT_EQ(Report().args, (Args{dos, "a", "b c"}));
    // Unquoted: tried at every blank until a program is found.
    ASSERT_EQ(Run(nullptr, dos + ".EXE x"), 0u);
    EXPECT_EQ(Report().args, (Args{dos + ".EXE", "x"}));
    // Application name without command line: it is the command line.
    ASSERT_EQ(Run(dos.c_str(), ""), 0u);
    EXPECT_EQ(Report().args, (Args{dos}));
    // A command line that does not start with the application name.
    ASSERT_EQ(Run(dos.c_str(), "other \"a b\""), 0u);
    EXPECT_EQ(Report().args, (Args{"other", "a b"}));
}

TEST_F(ProcessTest, WorkingFolderEnvironmentAndExitCode) {
    ASSERT_EQ(Run(probe_.c_str(), "p", R"(C:\Program Files)",
                  Environment(std::string("ZQ_PROBE_EXTRA=hello") + '\0' + "=C:=C:\\" + '\0' +
                              "ZQ_PROCESS_PROBE_EXIT=7" + '\0')),
              7u);
    ProbeReport report = Report();
    EXPECT_EQ(report.cwd, zq::test::TestPrefix() + "/drive_c/Program Files");
    EXPECT_EQ(report.extra, "hello");
    // An empty folder is the caller's own; no block inherits the environment.
    char cwd[4096];
    ASSERT_NE(getcwd(cwd, sizeof cwd), nullptr);
    setenv("ZQ_PROCESS_PROBE", report_.c_str(), 1);
    setenv("ZQ_PROBE_EXTRA", "inherited", 1);
    STARTUPINFOA startup{};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION info{};
    std::string line = "p";
    BOOL ok = CreateProcessA(probe_.c_str(), line.data(), nullptr, nullptr, FALSE,
                             IDLE_PRIORITY_CLASS | CREATE_NEW_PROCESS_GROUP, nullptr, "", &startup,
                             &info);
    unsetenv("ZQ_PROCESS_PROBE");
    unsetenv("ZQ_PROBE_EXTRA");
    ASSERT_TRUE(ok);
    EXPECT_EQ(WaitForSingleObject(info.hThread, INFINITE), static_cast<DWORD>(WAIT_OBJECT_0));
    CloseHandle(info.hThread);
    CloseHandle(info.hProcess);
    report = Report();
    EXPECT_EQ(report.cwd, cwd);
    EXPECT_EQ(report.extra, "inherited");
}

TEST_F(ProcessTest, WaitTimesOutAndTerminateSetsTheCode) {
    std::string env = Environment(std::string("ZQ_PROCESS_PROBE_SLEEP_MS=60000") + '\0');
    STARTUPINFOA startup{};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION info{};
    std::string line = "p";
    ASSERT_TRUE(CreateProcessA(probe_.c_str(), line.data(), nullptr, nullptr, FALSE,
                               DETACHED_PROCESS, env.data(), nullptr, &startup, &info));
    EXPECT_EQ(GetProcessId(info.hProcess), info.dwProcessId);
    DWORD code = 0;
    EXPECT_TRUE(GetExitCodeProcess(info.hProcess, &code));
    EXPECT_EQ(code, static_cast<DWORD>(STILL_ACTIVE));
    EXPECT_EQ(WaitForSingleObject(info.hProcess, 20), static_cast<DWORD>(WAIT_TIMEOUT));
    EXPECT_TRUE(TerminateProcess(info.hProcess, 42));
    EXPECT_EQ(WaitForSingleObject(info.hProcess, INFINITE), static_cast<DWORD>(WAIT_OBJECT_0));
    EXPECT_TRUE(GetExitCodeProcess(info.hProcess, &code));
    EXPECT_EQ(code, 42u);
    EXPECT_FALSE(TerminateProcess(info.hProcess, 1));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_ACCESS_DENIED));
    EXPECT_FALSE(GetExitCodeProcess(info.hThread, &code));  // a thread, not a process
    CloseHandle(info.hThread);
    CloseHandle(info.hProcess);
    EXPECT_EQ(WaitForSingleObject(info.hProcess, 0), WAIT_FAILED);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_HANDLE));
}

TEST_F(ProcessTest, FailuresLeaveTheInformationUntouched) {
    std::string not_executable = folder_ + "/data.exe";
    ASSERT_TRUE(zq::test::WriteFileBytes(not_executable, "plain text"));
    std::string garbage = folder_ + "/garbage";
    ASSERT_TRUE(zq::test::WriteFileBytes(garbage, "\x01\x02 no format"));
    chmod(garbage.c_str(), 0755);
    struct Case {
        const char* application;
        std::string line;
        DWORD flags;
        const char* directory;
        DWORD error;
    } cases[] = {
        {nullptr, "zq-no-such-program-anywhere", 0, nullptr, ERROR_FILE_NOT_FOUND},
        {nullptr, R"(C:\no\such\folder\x.exe)", 0, nullptr, ERROR_PATH_NOT_FOUND},
        {nullptr, R"(C:\Program Files\nothing.exe)", 0, nullptr, ERROR_FILE_NOT_FOUND},
        {folder_.c_str(), "x", 0, nullptr, ERROR_ACCESS_DENIED},
        {not_executable.c_str(), "x", 0, nullptr, ERROR_ACCESS_DENIED},
        {garbage.c_str(), "x", 0, nullptr, ERROR_BAD_EXE_FORMAT},
        {probe_.c_str(), "x", CREATE_SUSPENDED, nullptr, ERROR_NOT_SUPPORTED},
        {probe_.c_str(), "x", DETACHED_PROCESS | CREATE_NEW_CONSOLE, nullptr,
         ERROR_INVALID_PARAMETER},
        {probe_.c_str(), "x", 0, R"(C:\no such folder)", ERROR_DIRECTORY},
        {nullptr, "", 0, nullptr, ERROR_INVALID_PARAMETER},
    };
    for (Case& c : cases) {
        STARTUPINFOA startup{};
        startup.cb = sizeof startup;
        PROCESS_INFORMATION info;
        std::memset(&info, 0xCC, sizeof info);
        SetLastError(0xDEADBEEF);
        EXPECT_FALSE(CreateProcessA(c.application, c.line.empty() ? nullptr : c.line.data(),
                                    nullptr, nullptr, FALSE, c.flags, nullptr, c.directory,
                                    &startup, &info))
            << c.line;
        EXPECT_EQ(GetLastError(), c.error) << c.line;
        EXPECT_EQ(info.dwProcessId, 0xCCCCCCCCu);
    }
}

TEST_F(ProcessTest, WinExecReportsStartOrWhyNot) {
    setenv("ZQ_PROCESS_PROBE", report_.c_str(), 1);
    std::string line = "\"" + probe_ + "\" via winexec";
    UINT rc = WinExec(line.c_str(), SW_SHOWNORMAL);
    unsetenv("ZQ_PROCESS_PROBE");
    EXPECT_GT(rc, 31u);
    EXPECT_EQ(WinExec("zq-no-such-program-anywhere", SW_SHOW),
              static_cast<UINT>(ERROR_FILE_NOT_FOUND));
    EXPECT_EQ(WinExec(nullptr, SW_SHOW), 0u);
}

TEST(CurrentProcess, PseudoHandle) {
    HANDLE self = GetCurrentProcess();
    EXPECT_EQ(GetProcessId(self), static_cast<DWORD>(getpid()));
    DWORD code = 0;
    EXPECT_TRUE(GetExitCodeProcess(self, &code));
    EXPECT_EQ(code, static_cast<DWORD>(STILL_ACTIVE));
}

}  // namespace
