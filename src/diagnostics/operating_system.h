// CZqGlobalOperatingSystem: what the library needs to know about the running
// system — its type, version and processor, who the user is and whether the
// user may administer the machine.
//
// Every member is static; the constructor does nothing. The system type is
// read from GetVersion at every call (so it follows ZQ_WINVER on POSIX):
//
//   2  Windows NT      top bit of GetVersion clear
//   1  Win32s          top bit set, major version below 4
//   3  Windows 95      top bit set, major version 4 or more
//
// Failures give 0, FALSE or an empty string; nothing is reported otherwise.
// All members are safe on any thread.
#pragma once

#include "framework/core/cstring.h"
#include "platform/win32.h"

class CZqGlobalOperatingSystem {
public:
    CZqGlobalOperatingSystem() {}
    virtual ~CZqGlobalOperatingSystem() = default;

    static constexpr DWORD kTypeWin32s = 1;
    static constexpr DWORD kTypeWindowsNT = 2;
    static constexpr DWORD kTypeWindows95 = 3;

    // 1, 2 or 3 as above.
    static DWORD GetType();

    // 1 (Intel) on Win32s and Windows 95. On NT the environment variable
    // "CPU", read into 16 characters and compared without regard to case:
    // "i386" 1, "ALPHA" 2, "MIPS" 3; anything else or no variable 0.
    static DWORD GetPlatform();

    // From GetVersionExA (structure size 148); 0 when that fails.
    static DWORD GetMajorVersion();
    static DWORD GetMinorVersion();

    // FALSE except on NT, where the process token's groups (read into 1,024
    // bytes) must hold the built-in Administrators group (S-1-5-32-544). A
    // token whose groups do not fit in that buffer, or that cannot be
    // opened, reads as FALSE.
    static BOOL HasAdminRights();

    // The user's name, worked out at the first call and then returned for
    // the life of the process even if the registry changes:
    //   Win32s:     GetRegisteredInfo(0);
    //   NT:         the account name of the process token's user ("" when
    //               it cannot be looked up);
    //   Windows 95: the first non-empty of, below the current user's root,
    //               "Default First Name" + " " + "Default Last Name" of
    //               "Software\Microsoft\User Information" (taken when the
    //               first name is not empty), "RegisteredOwner" of
    //               "Software\Microsoft\Developer\Setup",
    //               GetRegisteredInfo(0), "UserName" of "Network\Logon".
    static CString GetUserName();

    // The name the user logged on with: on NT the token's account name, on
    // the other systems the platform's GetUserNameA. Not cached.
    static CString GetUserReal();

    // The domain of the user's account (on NT the token's account domain,
    // which is this computer for local accounts); the computer's name on the
    // other systems.
    static CString GetDomainName();

    // The computer's name from GetComputerNameA; "" on failure.
    static CString GetComputerName();

    // Registration data: 0 the registered owner, 1 the organisation, 2 the
    // distributor; anything else "". Each is the first non-empty of the
    // values "Owner" / "Organization" / "Distributor" under
    // "Software\Microsoft\User Information" and then under its subkey
    // "RegistrationInfo", for the owner finally "RegisteredOwner" under
    // "Software\Microsoft\Developer\Setup"; the current user's root is asked
    // before the local machine's.
    static CString GetRegisteredInfo(UINT which);
};

namespace zq::diagnostics {

// Forgets the user name GetUserName has kept, so that the next call works
// it out again. For tests that switch the emulated system.
void ForgetCachedUserNameForTesting();

}  // namespace zq::diagnostics
