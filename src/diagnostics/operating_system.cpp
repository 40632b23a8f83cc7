#include "diagnostics/operating_system.h"

#include <cstring>
#include <mutex>
#include <optional>

#include "settings/global_config.h"

namespace {

constexpr DWORD kModeLocalMachine = 1;
constexpr DWORD kModeCurrentUser = 2;
constexpr char kUserInformation[] = "Software\\Microsoft\\User Information";
constexpr char kRegistrationInfo[] = "Software\\Microsoft\\User Information\\RegistrationInfo";
constexpr char kDeveloperSetup[] = "Software\\Microsoft\\Developer\\Setup";

std::mutex g_user_name_mutex;
std::optional<CString> g_user_name;

// A text value of the registry, "" when it cannot be read.
CString ReadText(DWORD mode, const char* key, const char* name, DWORD size) {
    CZqGlobalConfig config;
    CString text;
    char* buffer = text.GetBuffer(static_cast<int>(size));
    if (config.GetValue(mode, key, name, buffer, size, "") != 0) {
        buffer[0] = '\0';
    }
    buffer[size - 1] = '\0';
    text.ReleaseBuffer();
    return text;
}

// The first non-empty value `name` of `key`, current user before local machine.
CString ReadRegistration(const char* key, const char* name) {
    for (DWORD mode : {kModeCurrentUser, kModeLocalMachine}) {
        CString text = ReadText(mode, key, name, 256);
        if (!text.IsEmpty()) {
            return text;
        }
    }
    return CString();
}

// The account of the process token's user: name and domain; false when the
// token cannot be read or the account looked up.
bool TokenAccount(CString* name, CString* domain) {
    HANDLE token = nullptr;
    if (!OpenProcessToken(GetCurrentProcess(), TOKEN_READ, &token)) {
        return false;
    }
    alignas(TOKEN_USER) BYTE buffer[256];
    DWORD needed = 0;
    bool found = false;
    if (GetTokenInformation(token, TokenUser, buffer, sizeof buffer, &needed)) {
        char account[200] = {};
        char account_domain[200] = {};
        DWORD account_size = sizeof account;
        DWORD domain_size = sizeof account_domain;
        SID_NAME_USE use = SidTypeUnknown;
        const auto* user = reinterpret_cast<const TOKEN_USER*>(buffer);
        if (LookupAccountSidA(nullptr, user->User.Sid, account, &account_size, account_domain,
                              &domain_size, &use)) {
            *name = account;
            *domain = account_domain;
            found = true;
        }
    }
    CloseHandle(token);
    return found;
}

CString WorkOutUserName() {
    switch (CZqGlobalOperatingSystem::GetType()) {
        case CZqGlobalOperatingSystem::kTypeWin32s:
            return CZqGlobalOperatingSystem::GetRegisteredInfo(0);
        case CZqGlobalOperatingSystem::kTypeWindowsNT: {
            CString name, domain;
            return TokenAccount(&name, &domain) ? name : CString();
        }
        default:
            break;
    }
    CString first = ReadText(kModeCurrentUser, kUserInformation, "Default First Name", 96);
    if (!first.IsEmpty()) {
        return first + " " + ReadText(kModeCurrentUser, kUserInformation, "Default Last Name", 96);
    }
    CString owner = ReadText(kModeCurrentUser, kDeveloperSetup, "RegisteredOwner", 96);
    if (!owner.IsEmpty()) {
        return owner;
    }
    CString registered = CZqGlobalOperatingSystem::GetRegisteredInfo(0);
    if (!registered.IsEmpty()) {
        return registered;
    }
    return ReadText(kModeCurrentUser, "Network\\Logon", "UserName", 96);
}

}  // namespace

DWORD CZqGlobalOperatingSystem::GetType() {
    const DWORD version = GetVersion();
    if ((version & 0x80000000u) == 0) {
        return kTypeWindowsNT;
    }
    return LOBYTE(LOWORD(version)) < 4 ? kTypeWin32s : kTypeWindows95;
}

DWORD CZqGlobalOperatingSystem::GetPlatform() {
    if (GetType() != kTypeWindowsNT) {
        return 1;
    }
    char cpu[16] = {};
    const DWORD length = GetEnvironmentVariableA("CPU", cpu, sizeof cpu);
    if (length == 0 || length >= sizeof cpu) {
        return 0;
    }
    if (lstrcmpiA(cpu, "i386") == 0) {
        return 1;
    }
    if (lstrcmpiA(cpu, "ALPHA") == 0) {
        return 2;
    }
    if (lstrcmpiA(cpu, "MIPS") == 0) {
        return 3;
    }
    return 0;
}

DWORD CZqGlobalOperatingSystem::GetMajorVersion() {
    OSVERSIONINFOA info{};
    info.dwOSVersionInfoSize = sizeof info;
    return GetVersionExA(&info) ? info.dwMajorVersion : 0;
}

DWORD CZqGlobalOperatingSystem::GetMinorVersion() {
    OSVERSIONINFOA info{};
    info.dwOSVersionInfoSize = sizeof info;
    return GetVersionExA(&info) ? info.dwMinorVersion : 0;
}

BOOL CZqGlobalOperatingSystem::HasAdminRights() {
    if (GetType() != kTypeWindowsNT) {
        return FALSE;
    }
    HANDLE token = nullptr;
    if (!OpenProcessToken(GetCurrentProcess(), TOKEN_READ, &token)) {
        return FALSE;
    }
    // A token with more groups than this buffer holds reads as no rights.
    alignas(TOKEN_GROUPS) BYTE buffer[1024];
    DWORD needed = 0;
    const BOOL read = GetTokenInformation(token, TokenGroups, buffer, sizeof buffer, &needed);
    CloseHandle(token);
    if (!read) {
        return FALSE;
    }
    SID_IDENTIFIER_AUTHORITY nt_authority = SECURITY_NT_AUTHORITY;
    PSID administrators = nullptr;
    if (!AllocateAndInitializeSid(&nt_authority, 2, SECURITY_BUILTIN_DOMAIN_RID,
                                  DOMAIN_ALIAS_RID_ADMINS, 0, 0, 0, 0, 0, 0, &administrators)) {
        return FALSE;
    }
    const auto* groups = reinterpret_cast<const TOKEN_GROUPS*>(buffer);
    BOOL found = FALSE;
    for (DWORD i = 0; i < groups->GroupCount && !found; ++i) {
        found = EqualSid(groups->Groups[i].Sid, administrators);
    }
    FreeSid(administrators);
    return found;
}

CString CZqGlobalOperatingSystem::GetUserName() {
    std::lock_guard<std::mutex> lock(g_user_name_mutex);
    if (!g_user_name) {
        g_user_name = WorkOutUserName();
    }
    return *g_user_name;
}

CString CZqGlobalOperatingSystem::GetUserReal() {
    if (GetType() == kTypeWindowsNT) {
        CString name, domain;
        return TokenAccount(&name, &domain) ? name : CString();
    }
    char name[UNLEN + 1] = {};
    DWORD size = sizeof name;
    return ::GetUserNameA(name, &size) ? CString(name) : CString();
}

CString CZqGlobalOperatingSystem::GetDomainName() {
    if (GetType() == kTypeWindowsNT) {
        CString name, domain;
        return TokenAccount(&name, &domain) ? domain : CString();
    }
    return GetComputerName();
}

CString CZqGlobalOperatingSystem::GetComputerName() {
    char name[MAX_COMPUTERNAME_LENGTH + 1] = {};
    DWORD size = sizeof name;
    return ::GetComputerNameA(name, &size) ? CString(name) : CString();
}

CString CZqGlobalOperatingSystem::GetRegisteredInfo(UINT which) {
    static const char* const kNames[] = {"Owner", "Organization", "Distributor"};
    if (which >= sizeof kNames / sizeof kNames[0]) {
        return CString();
    }
    for (const char* key : {kUserInformation, kRegistrationInfo}) {
        CString text = ReadRegistration(key, kNames[which]);
        if (!text.IsEmpty()) {
            return text;
        }
    }
    return which == 0 ? ReadRegistration(kDeveloperSetup, "RegisteredOwner") : CString();
}

namespace zq::diagnostics {

void ForgetCachedUserNameForTesting() {
    std::lock_guard<std::mutex> lock(g_user_name_mutex);
    g_user_name.reset();
}

}  // namespace zq::diagnostics
