// CZqGlobalError: the library's way of reporting an error through the
// thread's last error, with a severity.
//
// Fatal, Minor and Warning store the code with the severity error (1),
// minor error (2) or warning (3); the App... variants first set bit 29
// (0x20000000), the flag that marks application-defined codes. GetError
// reads the thread's last error back. Each thread has its own last error.
#pragma once

#include "platform/win32.h"

class CZqGlobalError {
public:
    CZqGlobalError() : m_wReserved(0) {}
    virtual ~CZqGlobalError() = default;

    static void Fatal(DWORD dwError);
    static void Minor(DWORD dwError);
    static void Warning(DWORD dwError);
    static void AppFatal(DWORD dwError);
    static void AppMinor(DWORD dwError);
    static void AppWarning(DWORD dwError);
    static DWORD GetError();
    // Bit 0: no open-file error box; bit 1: fail critical errors. Sets the
    // process's error mode to exactly those and returns the previous mode.
    static UINT SetMode(WORD wFlags);

    // The flag that marks an application-defined error code.
    static constexpr DWORD kApplicationFlag = 0x20000000;

private:
    [[maybe_unused]] WORD m_wReserved;  // the one word the constructor clears
};
