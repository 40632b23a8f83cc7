/* System information and the process environment. */
#ifndef ZQ_PLATFORM_API_SYSTEM_H
#define ZQ_PLATFORM_API_SYSTEM_H

#include "platform/api/types.h"

ZQ_EXTERN_C_BEGIN

/* Environment of the process. GetEnvironmentVariableA returns the length
 * without the terminator when it fits in nSize, else the size needed with
 * the terminator; 0 and ERROR_ENVVAR_NOT_FOUND when the variable is unset. */
ZQ_API DWORD WINAPI GetEnvironmentVariableA(LPCSTR lpName, LPSTR lpBuffer, DWORD nSize);
/* A NULL value removes the variable. */
ZQ_API BOOL WINAPI SetEnvironmentVariableA(LPCSTR lpName, LPCSTR lpValue);

ZQ_EXTERN_C_END

#endif /* ZQ_PLATFORM_API_SYSTEM_H */
