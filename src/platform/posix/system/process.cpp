// Processes (see platform/api/process.h): CreateProcessA and WinExec over
// posix_spawn, process handles in the kernel-object table, exit codes
// collected by a small background thread per started program.
#include <fcntl.h>
#include <pthread.h>
#include <signal.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <condition_variable>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "platform/posix/base/debug_channel.h"
#include "platform/posix/base/waitable.h"
#include "platform/posix/base/win32_errno.h"
#include "platform/posix/file/dos_path.h"
#include "platform/posix/system/command_line.h"

extern char** environ;

namespace zq::platform::internal {

namespace {

constexpr size_t kMaxCommandLine = 32767;  // Windows' limit, in characters
const HANDLE kCurrentProcess = reinterpret_cast<HANDLE>(static_cast<LONG_PTR>(-1));

// What the started program's handles share.
struct ProcessState {
    pid_t pid = 0;
    std::mutex mutex;
    std::condition_variable ended;
    bool exited = false;
    bool reaper = false;  // a background thread collects the exit status
    bool terminated = false;
    DWORD exit_code = STILL_ACTIVE;
    DWORD terminate_code = 0;

    // Records the status waitpid gave. With `mutex` held.
    void RecordLocked(int status) {
        if (terminated) {
            exit_code = terminate_code;
        } else if (WIFEXITED(status)) {
            exit_code = static_cast<DWORD>(WEXITSTATUS(status));
        } else if (WIFSIGNALED(status)) {
            exit_code = 128u + static_cast<DWORD>(WTERMSIG(status));
        } else {
            exit_code = 0;
        }
        exited = true;
    }

    // Without a reaper thread: looks whether the process has ended. With
    // `mutex` held.
    void PollLocked() {
        if (exited || reaper) {
            return;
        }
        int status = 0;
        pid_t rc = waitpid(pid, &status, WNOHANG);
        if (rc == pid) {
            RecordLocked(status);
        } else if (rc < 0 && errno == ECHILD) {
            RecordLocked(0);  // collected by someone else: the code is lost
        }
    }
};

// Waits for the process to end without collecting it (the zombie keeps the
// pid, so TerminateProcess can never hit a reused one), records the exit
// code under the lock, then collects it.
void* ReapProcess(void* arg) {
    auto* holder = static_cast<std::shared_ptr<ProcessState>*>(arg);
    std::shared_ptr<ProcessState> state = std::move(*holder);
    delete holder;
    siginfo_t info{};
    while (waitid(P_PID, static_cast<id_t>(state->pid), &info, WEXITED | WNOWAIT) != 0 &&
           errno == EINTR) {
    }
    std::lock_guard<std::mutex> lock(state->mutex);
    int status = 0;
    pid_t rc;
    do {
        rc = waitpid(state->pid, &status, 0);
    } while (rc < 0 && errno == EINTR);
    state->RecordLocked(rc == state->pid ? status : 0);
    state->ended.notify_all();
    return nullptr;
}

bool StartReaper(const std::shared_ptr<ProcessState>& state) {
    pthread_attr_t attr;
    if (pthread_attr_init(&attr) != 0) {
        return false;
    }
    pthread_attr_setdetachstate(&attr, PTHREAD_CREATE_DETACHED);
    pthread_attr_setstacksize(&attr, 64 * 1024);
    auto* holder = new std::shared_ptr<ProcessState>(state);
    pthread_t thread;
    int rc = pthread_create(&thread, &attr, ReapProcess, holder);
    pthread_attr_destroy(&attr);
    if (rc != 0) {
        delete holder;
        return false;
    }
    return true;
}

// A process handle, or the handle of its (only) thread.
class ProcessObject : public WaitableObject {
public:
    ProcessObject(std::shared_ptr<ProcessState> state, bool thread)
        : state_(std::move(state)), thread_(thread) {}

    DWORD Wait(DWORD milliseconds) override {
        std::unique_lock<std::mutex> lock(state_->mutex);
        if (state_->reaper) {
            if (milliseconds == INFINITE) {
                state_->ended.wait(lock, [&] { return state_->exited; });
                return WAIT_OBJECT_0;
            }
            bool done = state_->ended.wait_for(lock, std::chrono::milliseconds(milliseconds),
                                               [&] { return state_->exited; });
            return done ? WAIT_OBJECT_0 : WAIT_TIMEOUT;
        }
        auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(milliseconds);
        for (;;) {
            state_->PollLocked();
            if (state_->exited) {
                return WAIT_OBJECT_0;
            }
            if (milliseconds != INFINITE && std::chrono::steady_clock::now() >= deadline) {
                return WAIT_TIMEOUT;
            }
            lock.unlock();
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
            lock.lock();
        }
    }

    const std::shared_ptr<ProcessState>& state() const { return state_; }
    bool is_thread() const { return thread_; }

private:
    std::shared_ptr<ProcessState> state_;
    bool thread_;
};

std::shared_ptr<ProcessObject> FindProcess(HANDLE handle) {
    std::shared_ptr<ProcessObject> object = LookupHandleAs<ProcessObject>(handle);
    if (object == nullptr || object->is_thread()) {
        SetLastError(ERROR_INVALID_HANDLE);
        return nullptr;
    }
    return object;
}

bool EndsWithExe(const std::string& name) {
    return name.size() > 4 && EqualsNoCase(std::string_view(name).substr(name.size() - 4), ".exe");
}

// 0 when `unix_path` is a file that can be started, else the Win32 error.
DWORD CheckProgramFile(const std::string& unix_path) {
    struct stat st;
    if (stat(unix_path.c_str(), &st) != 0) {
        return Win32ErrorFromErrno(errno, unix_path);
    }
    if (S_ISDIR(st.st_mode)) {
        return ERROR_ACCESS_DENIED;
    }
    return 0;
}

// The Unix path of a program given by a DOS or Unix path, trying the name
// without ".exe" when the name as given does not exist.
DWORD ResolvePath(const std::string& name, std::string* unix_path) {
    UnixPath converted = DosToUnix(name.c_str());
    if (!converted) {
        return converted.error;
    }
    DWORD error = CheckProgramFile(converted.path);
    if (error != 0 && EndsWithExe(name)) {
        UnixPath bare = DosToUnix(name.substr(0, name.size() - 4).c_str());
        if (bare && CheckProgramFile(bare.path) == 0) {
            *unix_path = bare.path;
            return 0;
        }
    }
    if (error == 0) {
        *unix_path = converted.path;
    }
    return error;
}

std::string ExecutableFolder() {
    char buffer[4096];
    ssize_t n = readlink("/proc/self/exe", buffer, sizeof buffer - 1);
    if (n <= 0) {
        return {};
    }
    std::string path(buffer, static_cast<size_t>(n));
    size_t slash = path.rfind('/');
    return slash == std::string::npos ? std::string() : path.substr(0, slash);
}

// A bare program name searched where Windows looks, then in $PATH.
DWORD SearchProgram(const std::string& name, std::string* unix_path) {
    std::vector<std::string> folders;
    folders.push_back(ExecutableFolder());
    char cwd[4096];
    if (getcwd(cwd, sizeof cwd) != nullptr) {
        folders.push_back(cwd);
    }
    folders.push_back(SystemFolderUnix());
    folders.push_back(WindowsFolderUnix());
    if (const char* path = std::getenv("PATH")) {
        std::string_view rest(path);
        while (!rest.empty()) {
            size_t colon = rest.find(':');
            folders.emplace_back(rest.substr(0, colon));
            rest = colon == std::string_view::npos ? std::string_view() : rest.substr(colon + 1);
        }
    }
    for (const std::string& folder : folders) {
        if (folder.empty()) {
            continue;
        }
        if (ResolvePath(folder + "/" + name, unix_path) == 0) {
            return 0;
        }
    }
    return ERROR_FILE_NOT_FOUND;
}

DWORD FindProgram(const std::string& name, std::string* unix_path) {
    if (name.empty()) {
        return ERROR_FILE_NOT_FOUND;
    }
    bool has_path = name.find_first_of("\\/:") != std::string::npos;
    return has_path ? ResolvePath(name, unix_path) : SearchProgram(name, unix_path);
}

struct Plan {
    std::string program;  // Unix path
    std::vector<std::string> argv;
};

bool StartsWithName(std::string_view line, std::string_view name) {
    return !name.empty() && line.substr(0, name.size()) == name &&
           (line.size() == name.size() || line[name.size()] == ' ' || line[name.size()] == '\t');
}

// Which program to start and with which arguments.
DWORD MakePlan(LPCSTR application, LPCSTR command_line, Plan* plan) {
    std::string_view line = command_line != nullptr ? command_line : application;
    size_t start = line.find_first_not_of(" \t");
    line = start == std::string_view::npos ? std::string_view() : line.substr(start);
    size_t name_end = 0;
    if (application != nullptr) {
        if (DWORD error = FindProgram(application, &plan->program)) {
            return error;
        }
        // The application's own text at the start is the first argument
        // whole, blanks and all.
        if (StartsWithName(line, application)) {
            plan->argv.emplace_back(application);
            name_end = std::strlen(application);
        } else {
            plan->argv.push_back(ParseProgramName(line, &name_end));
        }
    } else if (!line.empty() && line[0] != '"' &&
               line.substr(0, line.find_first_of(" \t")).find('"') == std::string_view::npos) {
        // Unquoted: try the name at every blank from the left, as Windows does.
        DWORD first_error = 0;
        for (size_t end = 0;;) {
            end = line.find_first_of(" \t", end == 0 ? 0 : end + 1);
            size_t length = end == std::string_view::npos ? line.size() : end;
            std::string candidate(line.substr(0, length));
            DWORD error = FindProgram(candidate, &plan->program);
            if (error == 0) {
                plan->argv.push_back(candidate);
                name_end = length;
                break;
            }
            if (first_error == 0) {
                first_error = error;
            }
            if (end == std::string_view::npos) {
                return first_error;
            }
        }
    } else {
        std::string name = ParseProgramName(line, &name_end);
        if (DWORD error = FindProgram(name, &plan->program)) {
            return error;
        }
        plan->argv.push_back(name);
    }
    std::vector<std::string> rest = SplitArguments(line.substr(name_end));
    plan->argv.insert(plan->argv.end(), rest.begin(), rest.end());
    return 0;
}

// The entries of an ANSI environment block; the drive entries ("=C:=...")
// are Windows' own and left out.
std::vector<std::string> ParseEnvironmentBlock(const char* block) {
    std::vector<std::string> entries;
    for (const char* p = block; *p != '\0'; p += std::strlen(p) + 1) {
        if (*p != '=') {
            entries.emplace_back(p);
        }
    }
    return entries;
}

int NiceValue(DWORD flags, bool* set) {
    *set = true;
    if (flags & IDLE_PRIORITY_CLASS)
        return 19;
    if (flags & BELOW_NORMAL_PRIORITY_CLASS)
        return 10;
    if (flags & NORMAL_PRIORITY_CLASS) {
        *set = false;
        return 0;
    }
    if (flags & ABOVE_NORMAL_PRIORITY_CLASS)
        return -5;
    if (flags & HIGH_PRIORITY_CLASS)
        return -10;
    if (flags & REALTIME_PRIORITY_CLASS)
        return -15;
    *set = false;
    return 0;
}

DWORD SpawnErrorToWin32(int error, const std::string& program) {
    switch (error) {
        case ENOEXEC:
            return ERROR_BAD_EXE_FORMAT;
        case E2BIG:
            return ERROR_INVALID_PARAMETER;
        case ENOMEM:
        case EAGAIN:
            return ERROR_NOT_ENOUGH_MEMORY;
        default:
            return Win32ErrorFromErrno(error, program);
    }
}

// Starts the plan; 0 and the pid, or a Win32 error.
DWORD Spawn(const Plan& plan, DWORD flags, const std::vector<std::string>* environment,
            const std::string& directory, pid_t* pid) {
    std::vector<char*> argv;
    for (const std::string& arg : plan.argv) {
        argv.push_back(const_cast<char*>(arg.c_str()));
    }
    argv.push_back(nullptr);
    std::vector<char*> envp;
    if (environment != nullptr) {
        for (const std::string& entry : *environment) {
            envp.push_back(const_cast<char*>(entry.c_str()));
        }
        envp.push_back(nullptr);
    }

    posix_spawnattr_t attr;
    posix_spawn_file_actions_t actions;
    posix_spawnattr_init(&attr);
    posix_spawn_file_actions_init(&actions);
    short spawn_flags = POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF;
    sigset_t empty;
    sigemptyset(&empty);
    posix_spawnattr_setsigmask(&attr, &empty);
    // Signals this process ignores would stay ignored in the child.
    sigset_t ignored;
    sigemptyset(&ignored);
    for (int sig = 1; sig < NSIG; ++sig) {
        struct sigaction action;
        if (sigaction(sig, nullptr, &action) == 0 && action.sa_handler == SIG_IGN) {
            sigaddset(&ignored, sig);
        }
    }
    posix_spawnattr_setsigdefault(&attr, &ignored);
    if (flags & (DETACHED_PROCESS | CREATE_NEW_CONSOLE)) {
        spawn_flags |= POSIX_SPAWN_SETSID;
    } else if (flags & CREATE_NEW_PROCESS_GROUP) {
        spawn_flags |= POSIX_SPAWN_SETPGROUP;
        posix_spawnattr_setpgroup(&attr, 0);
    }
    posix_spawnattr_setflags(&attr, spawn_flags);
    if (flags & DETACHED_PROCESS) {
        posix_spawn_file_actions_addopen(&actions, 0, "/dev/null", O_RDONLY, 0);
        posix_spawn_file_actions_addopen(&actions, 1, "/dev/null", O_WRONLY, 0);
        posix_spawn_file_actions_addopen(&actions, 2, "/dev/null", O_WRONLY, 0);
    }
    if (!directory.empty()) {
        posix_spawn_file_actions_addchdir_np(&actions, directory.c_str());
    }
    int rc = posix_spawn(pid, plan.program.c_str(), &actions, &attr, argv.data(),
                         environment != nullptr ? envp.data() : environ);
    posix_spawn_file_actions_destroy(&actions);
    posix_spawnattr_destroy(&attr);
    return rc == 0 ? 0 : SpawnErrorToWin32(rc, plan.program);
}

DWORD CheckFlags(DWORD flags, LPVOID environment) {
    if (flags & (CREATE_SUSPENDED | DEBUG_PROCESS | DEBUG_ONLY_THIS_PROCESS)) {
        return ERROR_NOT_SUPPORTED;
    }
    if ((flags & CREATE_UNICODE_ENVIRONMENT) && environment != nullptr) {
        return ERROR_NOT_SUPPORTED;
    }
    if ((flags & DETACHED_PROCESS) && (flags & CREATE_NEW_CONSOLE)) {
        return ERROR_INVALID_PARAMETER;
    }
    return 0;
}

DWORD ResolveDirectory(LPCSTR directory, std::string* unix_directory) {
    if (directory == nullptr || directory[0] == '\0') {
        return 0;  // the caller's own folder
    }
    UnixPath converted = DosToUnix(directory);
    if (!converted) {
        return converted.error == ERROR_INVALID_NAME ? ERROR_DIRECTORY : converted.error;
    }
    struct stat st;
    if (stat(converted.path.c_str(), &st) != 0 || !S_ISDIR(st.st_mode)) {
        return ERROR_DIRECTORY;
    }
    *unix_directory = converted.path;
    return 0;
}

}  // namespace

}  // namespace zq::platform::internal

using namespace zq::platform::internal;

extern "C" {

BOOL WINAPI CreateProcessA(LPCSTR lpApplicationName, LPSTR lpCommandLine,
                           LPSECURITY_ATTRIBUTES /*lpProcessAttributes*/,
                           LPSECURITY_ATTRIBUTES /*lpThreadAttributes*/, BOOL /*bInheritHandles*/,
                           DWORD dwCreationFlags, LPVOID lpEnvironment, LPCSTR lpCurrentDirectory,
                           LPSTARTUPINFOA lpStartupInfo,
                           LPPROCESS_INFORMATION lpProcessInformation) {
    if ((lpApplicationName == nullptr && lpCommandLine == nullptr) || lpStartupInfo == nullptr ||
        lpProcessInformation == nullptr ||
        (lpCommandLine != nullptr &&
         strnlen(lpCommandLine, kMaxCommandLine + 1) > kMaxCommandLine)) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    if (DWORD error = CheckFlags(dwCreationFlags, lpEnvironment)) {
        SetLastError(error);
        return FALSE;
    }
    std::string directory;
    if (DWORD error = ResolveDirectory(lpCurrentDirectory, &directory)) {
        SetLastError(error);
        return FALSE;
    }
    Plan plan;
    if (DWORD error = MakePlan(lpApplicationName, lpCommandLine, &plan)) {
        ZQ_TRACE(kProcess, "CreateProcessA(%s, %s) -> %u",
                 lpApplicationName ? lpApplicationName : "NULL",
                 lpCommandLine ? lpCommandLine : "NULL", error);
        SetLastError(error);
        return FALSE;
    }
    std::vector<std::string> environment;
    if (lpEnvironment != nullptr) {
        environment = ParseEnvironmentBlock(static_cast<const char*>(lpEnvironment));
    }
    pid_t pid = 0;
    if (DWORD error =
            Spawn(plan, dwCreationFlags, lpEnvironment ? &environment : nullptr, directory, &pid)) {
        ZQ_TRACE(kProcess, "spawn %s -> %u", plan.program.c_str(), error);
        SetLastError(error);
        return FALSE;
    }
    bool set_nice = false;
    int nice = NiceValue(dwCreationFlags, &set_nice);
    if (set_nice) {
        setpriority(PRIO_PROCESS, static_cast<id_t>(pid), nice);  // best effort
    }
    auto state = std::make_shared<ProcessState>();
    state->pid = pid;
    {
        std::lock_guard<std::mutex> lock(state->mutex);
        state->reaper = StartReaper(state);
    }
    HANDLE process = AddHandle(std::make_shared<ProcessObject>(state, false));
    HANDLE thread = process ? AddHandle(std::make_shared<ProcessObject>(state, true)) : nullptr;
    if (thread == nullptr) {
        if (process != nullptr) {
            CloseHandle(process);
        }
        // Started, but no handle for it: the caller learns of no process.
        kill(pid, SIGKILL);
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return FALSE;
    }
    ZQ_TRACE(kProcess, "started %s as %d", plan.program.c_str(), static_cast<int>(pid));
    lpProcessInformation->hProcess = process;
    lpProcessInformation->hThread = thread;
    lpProcessInformation->dwProcessId = static_cast<DWORD>(pid);
    lpProcessInformation->dwThreadId = static_cast<DWORD>(pid);
    return TRUE;
}

UINT WINAPI WinExec(LPCSTR lpCmdLine, UINT uCmdShow) {
    if (lpCmdLine == nullptr) {
        return 0;
    }
    std::string line = lpCmdLine;
    STARTUPINFOA startup{};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESHOWWINDOW;
    startup.wShowWindow = static_cast<WORD>(uCmdShow);
    PROCESS_INFORMATION info{};
    if (!CreateProcessA(nullptr, line.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr,
                        &startup, &info)) {
        DWORD error = GetLastError();
        switch (error) {
            case ERROR_FILE_NOT_FOUND:
            case ERROR_PATH_NOT_FOUND:
                return error;
            case ERROR_BAD_EXE_FORMAT:
                return ERROR_BAD_FORMAT;
            case ERROR_NOT_ENOUGH_MEMORY:
                return 0;
            default:
                return error < 32 ? error : ERROR_FILE_NOT_FOUND;
        }
    }
    CloseHandle(info.hThread);
    CloseHandle(info.hProcess);
    return 33;
}

BOOL WINAPI GetExitCodeProcess(HANDLE hProcess, LPDWORD lpExitCode) {
    if (hProcess == kCurrentProcess) {
        if (lpExitCode != nullptr) {
            *lpExitCode = STILL_ACTIVE;
        }
        return TRUE;
    }
    std::shared_ptr<ProcessObject> object = FindProcess(hProcess);
    if (object == nullptr) {
        return FALSE;
    }
    if (lpExitCode == nullptr) {
        SetLastError(ERROR_NOACCESS);
        return FALSE;
    }
    ProcessState& state = *object->state();
    std::lock_guard<std::mutex> lock(state.mutex);
    state.PollLocked();
    *lpExitCode = state.exited ? state.exit_code : STILL_ACTIVE;
    return TRUE;
}

BOOL WINAPI TerminateProcess(HANDLE hProcess, UINT uExitCode) {
    if (hProcess == kCurrentProcess) {
        _exit(static_cast<int>(uExitCode));
    }
    std::shared_ptr<ProcessObject> object = FindProcess(hProcess);
    if (object == nullptr) {
        return FALSE;
    }
    ProcessState& state = *object->state();
    std::lock_guard<std::mutex> lock(state.mutex);
    state.PollLocked();
    if (state.exited) {
        SetLastError(ERROR_ACCESS_DENIED);
        return FALSE;
    }
    // Not yet collected, so the pid is still this process's.
    state.terminated = true;
    state.terminate_code = uExitCode;
    kill(state.pid, SIGKILL);
    return TRUE;
}

HANDLE WINAPI GetCurrentProcess(void) {
    return kCurrentProcess;
}

DWORD WINAPI GetProcessId(HANDLE Process) {
    if (Process == kCurrentProcess) {
        return static_cast<DWORD>(getpid());
    }
    std::shared_ptr<ProcessObject> object = FindProcess(Process);
    return object != nullptr ? static_cast<DWORD>(object->state()->pid) : 0;
}

}  // extern "C"
