// The thread's last error and the process's error mode.
#include <atomic>

#include "platform/win32.h"

namespace {
thread_local DWORD t_last_error = 0;
std::atomic<UINT> g_error_mode{0};
}  // namespace

extern "C" {

DWORD WINAPI GetLastError(void) {
    return t_last_error;
}

void WINAPI SetLastError(DWORD dwErrCode) {
    t_last_error = dwErrCode;
}

void WINAPI SetLastErrorEx(DWORD dwErrCode, DWORD /*dwType*/) {
    t_last_error = dwErrCode;
}

UINT WINAPI SetErrorMode(UINT uMode) {
    return g_error_mode.exchange(uMode);
}

}  // extern "C"
