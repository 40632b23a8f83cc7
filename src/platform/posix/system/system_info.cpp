// Version of the emulated Windows, machine and user names, memory figures,
// debugger output.
#include <pwd.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <string>

#include "platform/posix/base/debug_channel.h"
#include "platform/win32.h"

namespace {

enum class WindowsKind { kNt4, kWin95, kWin32s };

WindowsKind EmulatedWindows() {
    const char* env = std::getenv("ZQ_WINVER");
    if (env && std::strcmp(env, "win95") == 0) {
        return WindowsKind::kWin95;
    }
    if (env && std::strcmp(env, "win32s") == 0) {
        return WindowsKind::kWin32s;
    }
    return WindowsKind::kNt4;
}

constexpr SIZE_T kMaxReported = 0xFFFFFFFFu;
// The user part of a 32-bit Windows address space.
constexpr SIZE_T kTotalVirtual = 0x7FFE0000u;

SIZE_T Clamp(unsigned long long bytes) {
    return bytes > kMaxReported ? kMaxReported : static_cast<SIZE_T>(bytes);
}

// A "Key:   1234 kB" line of a /proc file, in bytes (0 when missing).
unsigned long long ProcValue(const char* path, const char* key) {
    std::ifstream in(path);
    std::string line;
    const size_t key_length = std::strlen(key);
    while (std::getline(in, line)) {
        if (line.compare(0, key_length, key) == 0 && line.size() > key_length &&
            line[key_length] == ':') {
            return std::strtoull(line.c_str() + key_length + 1, nullptr, 10) * 1024ull;
        }
    }
    return 0;
}

bool CopyOut(const std::string& text, LPSTR buffer, DWORD capacity) {
    if (!buffer || text.size() + 1 > capacity) {
        return false;
    }
    std::memcpy(buffer, text.c_str(), text.size() + 1);
    return true;
}

}  // namespace

extern "C" {

DWORD WINAPI GetVersion(void) {
    switch (EmulatedWindows()) {
        case WindowsKind::kWin95:
            return 0xC3B60004u;  // 4.0, top bit set
        case WindowsKind::kWin32s:
            return 0x80000A03u;  // 3.10, top bit set
        case WindowsKind::kNt4:
            break;
    }
    return (1381u << 16) | 0x0004u;  // 4.0 build 1381
}

BOOL WINAPI GetVersionExA(LPOSVERSIONINFOA lpVersionInformation) {
    if (!lpVersionInformation) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    const WindowsKind kind = EmulatedWindows();
    const DWORD size = lpVersionInformation->dwOSVersionInfoSize;
    const bool extended = size == sizeof(OSVERSIONINFOEXA) && kind == WindowsKind::kNt4;
    if (size != sizeof(OSVERSIONINFOA) && !extended) {
        SetLastError(ERROR_INSUFFICIENT_BUFFER);
        return FALSE;
    }
    OSVERSIONINFOA& info = *lpVersionInformation;
    std::memset(info.szCSDVersion, 0, sizeof info.szCSDVersion);
    switch (kind) {
        case WindowsKind::kNt4:
            info.dwMajorVersion = 4;
            info.dwMinorVersion = 0;
            info.dwBuildNumber = 1381;
            info.dwPlatformId = VER_PLATFORM_WIN32_NT;
            std::snprintf(info.szCSDVersion, sizeof info.szCSDVersion, "Service Pack 6");
            break;
        case WindowsKind::kWin95:
            info.dwMajorVersion = 4;
            info.dwMinorVersion = 0;
            info.dwBuildNumber = MAKELONG(950, MAKEWORD(0, 4));  // version in the high word
            info.dwPlatformId = VER_PLATFORM_WIN32_WINDOWS;
            break;
        case WindowsKind::kWin32s:
            info.dwMajorVersion = 3;
            info.dwMinorVersion = 10;
            info.dwBuildNumber = 0;
            info.dwPlatformId = VER_PLATFORM_WIN32s;
            break;
    }
    if (extended) {
        auto& ex = reinterpret_cast<OSVERSIONINFOEXA&>(info);
        ex.wServicePackMajor = 6;
        ex.wServicePackMinor = 0;
        ex.wSuiteMask = 0;
        ex.wProductType = VER_NT_WORKSTATION;
        ex.wReserved = 0;
    }
    return TRUE;
}

BOOL WINAPI GetComputerNameA(LPSTR lpBuffer, LPDWORD nSize) {
    if (!nSize) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    char host[256] = {};
    if (gethostname(host, sizeof host - 1) != 0 || host[0] == '\0') {
        std::snprintf(host, sizeof host, "localhost");
    }
    std::string name(host, std::strcspn(host, "."));
    // NetBIOS names are upper case and at most 15 characters long.
    name.resize(name.size() < MAX_COMPUTERNAME_LENGTH ? name.size() : MAX_COMPUTERNAME_LENGTH);
    for (char& c : name) {
        if (c >= 'a' && c <= 'z') {
            c = static_cast<char>(c - 'a' + 'A');
        }
    }
    if (!CopyOut(name, lpBuffer, *nSize)) {
        *nSize = static_cast<DWORD>(name.size() + 1);
        SetLastError(ERROR_BUFFER_OVERFLOW);
        return FALSE;
    }
    *nSize = static_cast<DWORD>(name.size());
    return TRUE;
}

BOOL WINAPI GetUserNameA(LPSTR lpBuffer, LPDWORD pcbBuffer) {
    if (!pcbBuffer) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    std::string name;
    passwd entry{};
    passwd* found = nullptr;
    char storage[4096];
    if (getpwuid_r(geteuid(), &entry, storage, sizeof storage, &found) == 0 && found &&
        found->pw_name) {
        name = found->pw_name;
    } else if (const char* env = std::getenv("USER")) {
        name = env;
    } else if (const char* logname = std::getenv("LOGNAME")) {
        name = logname;
    }
    if (name.size() > UNLEN) {
        name.resize(UNLEN);
    }
    const DWORD needed = static_cast<DWORD>(name.size() + 1);
    if (!CopyOut(name, lpBuffer, *pcbBuffer)) {
        *pcbBuffer = needed;
        SetLastError(ERROR_INSUFFICIENT_BUFFER);
        return FALSE;
    }
    *pcbBuffer = needed;
    return TRUE;
}

void WINAPI GlobalMemoryStatus(LPMEMORYSTATUS lpBuffer) {
    if (!lpBuffer) {
        return;
    }
    const unsigned long long total = ProcValue("/proc/meminfo", "MemTotal");
    unsigned long long available = ProcValue("/proc/meminfo", "MemAvailable");
    if (available == 0) {
        available = ProcValue("/proc/meminfo", "MemFree");
    }
    const unsigned long long swap_total = ProcValue("/proc/meminfo", "SwapTotal");
    const unsigned long long swap_free = ProcValue("/proc/meminfo", "SwapFree");
    const unsigned long long used_virtual = ProcValue("/proc/self/status", "VmSize");

    lpBuffer->dwLength = sizeof(MEMORYSTATUS);
    lpBuffer->dwMemoryLoad =
        total ? static_cast<DWORD>((total - (available < total ? available : total)) * 100 / total)
              : 0;
    lpBuffer->dwTotalPhys = Clamp(total);
    lpBuffer->dwAvailPhys = Clamp(available);
    lpBuffer->dwTotalPageFile = Clamp(total + swap_total);
    lpBuffer->dwAvailPageFile = Clamp(available + swap_free);
    lpBuffer->dwTotalVirtual = kTotalVirtual;
    lpBuffer->dwAvailVirtual =
        used_virtual < kTotalVirtual ? kTotalVirtual - static_cast<SIZE_T>(used_virtual) : 0;
}

void WINAPI OutputDebugStringA(LPCSTR lpOutputString) {
    using namespace zq::platform::internal;
    if (lpOutputString && DebugChannelEnabled(kDebugString)) {
        std::fputs(lpOutputString, stderr);
        std::fflush(stderr);
    }
}

}  // extern "C"
