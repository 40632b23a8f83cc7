// The process environment.
#include <cstdlib>
#include <cstring>

#include "platform/posix/base/prefix.h"
#include "platform/win32.h"

extern "C" {

DWORD WINAPI GetEnvironmentVariableA(LPCSTR lpName, LPSTR lpBuffer, DWORD nSize) {
    const char* value = lpName ? std::getenv(lpName) : nullptr;
    if (!value) {
        SetLastError(ERROR_ENVVAR_NOT_FOUND);
        return 0;
    }
    size_t length = std::strlen(value);
    if (!lpBuffer || length >= nSize) {
        return static_cast<DWORD>(length + 1);
    }
    std::memcpy(lpBuffer, value, length + 1);
    return static_cast<DWORD>(length);
}

BOOL WINAPI SetEnvironmentVariableA(LPCSTR lpName, LPCSTR lpValue) {
    if (!lpName || !*lpName || std::strchr(lpName, '=')) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    int rc = lpValue ? setenv(lpName, lpValue, 1) : unsetenv(lpName);
    if (rc != 0) {
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return FALSE;
    }
    return TRUE;
}

DWORD WINAPI ZqGetPrefixA(LPSTR lpBuffer, DWORD nSize) {
    const std::string& prefix = zq::platform::internal::Prefix();
    if (!lpBuffer || prefix.size() >= nSize) {
        return static_cast<DWORD>(prefix.size() + 1);
    }
    std::memcpy(lpBuffer, prefix.c_str(), prefix.size() + 1);
    return static_cast<DWORD>(prefix.size());
}

}  // extern "C"
