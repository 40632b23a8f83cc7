#include "frame/global_error.h"

void CZqGlobalError::Fatal(DWORD dwError) {
    SetLastErrorEx(dwError, SLE_ERROR);
}

void CZqGlobalError::Minor(DWORD dwError) {
    SetLastErrorEx(dwError, SLE_MINORERROR);
}

void CZqGlobalError::Warning(DWORD dwError) {
    SetLastErrorEx(dwError, SLE_WARNING);
}

void CZqGlobalError::AppFatal(DWORD dwError) {
    Fatal(dwError | kApplicationFlag);
}

void CZqGlobalError::AppMinor(DWORD dwError) {
    Minor(dwError | kApplicationFlag);
}

void CZqGlobalError::AppWarning(DWORD dwError) {
    Warning(dwError | kApplicationFlag);
}

DWORD CZqGlobalError::GetError() {
    return GetLastError();
}

UINT CZqGlobalError::SetMode(WORD wFlags) {
    UINT mode = 0;
    if (wFlags & 0x0001) {
        mode |= SEM_NOOPENFILEERRORBOX;
    }
    if (wFlags & 0x0002) {
        mode |= SEM_FAILCRITICALERRORS;
    }
    return SetErrorMode(mode);
}
