/* System information and the process environment.
 *
 * The emulated system is Windows NT 4.0 (build 1381, Service Pack 6) unless
 * the environment variable ZQ_WINVER names another: "win95" (Windows 95,
 * 4.0.950) or "win32s" (Win32s on Windows 3.1); "nt4" is the default. The
 * variable is read at every call. All functions are safe on any thread. */
#ifndef ZQ_PLATFORM_API_SYSTEM_H
#define ZQ_PLATFORM_API_SYSTEM_H

#include "platform/api/types.h"

#define VER_PLATFORM_WIN32s 0
#define VER_PLATFORM_WIN32_WINDOWS 1
#define VER_PLATFORM_WIN32_NT 2
#define VER_NT_WORKSTATION 0x0000001
#define VER_NT_DOMAIN_CONTROLLER 0x0000002
#define VER_NT_SERVER 0x0000003

typedef struct _OSVERSIONINFOA {
    DWORD dwOSVersionInfoSize;
    DWORD dwMajorVersion;
    DWORD dwMinorVersion;
    DWORD dwBuildNumber;
    DWORD dwPlatformId;
    CHAR szCSDVersion[128];
} OSVERSIONINFOA, *POSVERSIONINFOA, *LPOSVERSIONINFOA;

typedef struct _OSVERSIONINFOEXA {
    DWORD dwOSVersionInfoSize;
    DWORD dwMajorVersion;
    DWORD dwMinorVersion;
    DWORD dwBuildNumber;
    DWORD dwPlatformId;
    CHAR szCSDVersion[128];
    WORD wServicePackMajor;
    WORD wServicePackMinor;
    WORD wSuiteMask;
    BYTE wProductType;
    BYTE wReserved;
} OSVERSIONINFOEXA, *POSVERSIONINFOEXA, *LPOSVERSIONINFOEXA;

/* Sizes of memory in bytes; each is at most 0xFFFFFFFF, the value a 32-bit
 * Windows reports when the true figure does not fit. */
typedef struct _MEMORYSTATUS {
    DWORD dwLength;
    DWORD dwMemoryLoad; /* percent of physical memory in use */
    SIZE_T dwTotalPhys;
    SIZE_T dwAvailPhys;
    SIZE_T dwTotalPageFile;
    SIZE_T dwAvailPageFile;
    SIZE_T dwTotalVirtual;
    SIZE_T dwAvailVirtual;
} MEMORYSTATUS, *LPMEMORYSTATUS;

#define MAX_COMPUTERNAME_LENGTH 15
#define UNLEN 256

ZQ_EXTERN_C_BEGIN

/* Low byte major version, next byte minor version; high word the build
 * number on NT (top bit clear), top bit set on Windows 95 and Win32s. */
ZQ_API DWORD WINAPI GetVersion(void);
/* dwOSVersionInfoSize must be sizeof(OSVERSIONINFOA) (148) or, on NT,
 * sizeof(OSVERSIONINFOEXA) (156); otherwise FALSE with
 * ERROR_INSUFFICIENT_BUFFER and nothing written. */
ZQ_API BOOL WINAPI GetVersionExA(LPOSVERSIONINFOA lpVersionInformation);

/* The host name up to its first '.', upper case, cut to
 * MAX_COMPUTERNAME_LENGTH characters. On success *nSize becomes the length
 * without the terminator; when *nSize is too small, FALSE with
 * ERROR_BUFFER_OVERFLOW and *nSize set to the size needed with it. */
ZQ_API BOOL WINAPI GetComputerNameA(LPSTR lpBuffer, LPDWORD nSize);
/* The login name of the process's user. *pcbBuffer becomes the length
 * including the terminator, on success and (with FALSE and
 * ERROR_INSUFFICIENT_BUFFER) when the buffer is too small. */
ZQ_API BOOL WINAPI GetUserNameA(LPSTR lpBuffer, LPDWORD pcbBuffer);

/* Memory figures of the machine (from /proc/meminfo) and of a 2 GB
 * 32-bit address space. */
ZQ_API void WINAPI GlobalMemoryStatus(LPMEMORYSTATUS lpBuffer);

/* Text for a debugger: written to standard error, unchanged, when ZQ_DEBUG
 * names the channel "debugstring" (or "all"); otherwise dropped. */
ZQ_API void WINAPI OutputDebugStringA(LPCSTR lpOutputString);

/* Environment of the process. GetEnvironmentVariableA returns the length
 * without the terminator when it fits in nSize, else the size needed with
 * the terminator; 0 and ERROR_ENVVAR_NOT_FOUND when the variable is unset. */
ZQ_API DWORD WINAPI GetEnvironmentVariableA(LPCSTR lpName, LPSTR lpBuffer, DWORD nSize);
/* A NULL value removes the variable. */
ZQ_API BOOL WINAPI SetEnvironmentVariableA(LPCSTR lpName, LPCSTR lpValue);

/* Not Win32: the host folder that holds all state of the emulated system
 * (registry, drive C:), as an absolute host path. Returns like
 * GetEnvironmentVariableA: the length without the terminator when it fits
 * in nSize, else the size needed with it (nothing written). */
ZQ_API DWORD WINAPI ZqGetPrefixA(LPSTR lpBuffer, DWORD nSize);

ZQ_EXTERN_C_END

#endif /* ZQ_PLATFORM_API_SYSTEM_H */
