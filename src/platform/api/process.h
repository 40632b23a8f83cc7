/* Processes: starting programs, waiting for them, their exit codes, and
 * the process's address space.
 *
 * On POSIX a program is started with posix_spawn, never through a shell.
 * The command line is split into arguments by the rules of the Windows C
 * run-time start-up code (blanks and tabs separate; "..." groups; \" is a
 * quote; backslashes are literal unless they precede a quote, 2n of them
 * then giving n; "" inside quotes is one quote; the program name takes
 * quotes but no escapes). When lpApplicationName is given and the command
 * line starts with exactly that text, unquoted, the whole text is the first
 * argument, so a program path with blanks is not split.
 *
 * What is mapped of the Windows start-up settings:
 *   lpCurrentDirectory  the child's working folder (DOS or Unix path); an
 *                       empty string counts as NULL (the caller's folder);
 *                       a missing one fails with ERROR_DIRECTORY
 *   lpEnvironment       an ANSI block "A=1\0B=2\0\0"; NULL inherits
 *   priority classes    the child's nice value, set just after the start:
 *                       IDLE 19, BELOW_NORMAL 10, ABOVE_NORMAL -5, HIGH -10,
 *                       REALTIME -15 (raising needs the privilege; it is
 *                       silently left as it is without); NORMAL or none
 *                       inherits. With several classes the lowest wins.
 *   DETACHED_PROCESS    new session, standard streams on /dev/null
 *   CREATE_NEW_CONSOLE  new session (no terminal window is opened), the
 *                       standard streams stay the caller's
 *   CREATE_NEW_PROCESS_GROUP  new process group
 *   CREATE_DEFAULT_ERROR_MODE, CREATE_SEPARATE_WOW_VDM,
 *   CREATE_SHARED_WOW_VDM, CREATE_NO_WINDOW   accepted, nothing to do
 *   CREATE_SUSPENDED, DEBUG_PROCESS, DEBUG_ONLY_THIS_PROCESS,
 *   CREATE_UNICODE_ENVIRONMENT with a block   ERROR_NOT_SUPPORTED
 *   DETACHED_PROCESS with CREATE_NEW_CONSOLE   ERROR_INVALID_PARAMETER
 *   STARTUPINFO         window position, size, show command, console size
 *                       and colours are accepted and not applied (there is
 *                       no console or window for a Unix program);
 *                       STARTF_USESTDHANDLES is not applied yet
 *   security attributes, bInheritHandles   ignored (kernel-object handles
 *                       are not file descriptors of the child)
 * The program is found as Windows would: lpApplicationName as given (no
 * search); otherwise the first word of the command line, searched in the
 * executable's folder, the current folder, C:\windows\system, C:\windows
 * and $PATH when it holds no path separator; an unquoted name with blanks
 * is tried at every blank from the left, as Windows does. A name ending in
 * ".exe" that does not exist is also tried without it.
 *
 * A process that ended by a signal reports 128 + the signal as exit code,
 * except after TerminateProcess, which sets the code it was given. The
 * exit status is collected in the background, so a started program that
 * nobody waits for leaves no zombie behind. All functions are thread-safe. */
#ifndef ZQ_PLATFORM_API_PROCESS_H
#define ZQ_PLATFORM_API_PROCESS_H

#include "platform/api/types.h"

/* Process creation flags. */
#define DEBUG_PROCESS 0x00000001
#define DEBUG_ONLY_THIS_PROCESS 0x00000002
#define CREATE_SUSPENDED 0x00000004
#define DETACHED_PROCESS 0x00000008
#define CREATE_NEW_CONSOLE 0x00000010
#define NORMAL_PRIORITY_CLASS 0x00000020
#define IDLE_PRIORITY_CLASS 0x00000040
#define HIGH_PRIORITY_CLASS 0x00000080
#define REALTIME_PRIORITY_CLASS 0x00000100
#define CREATE_NEW_PROCESS_GROUP 0x00000200
#define CREATE_UNICODE_ENVIRONMENT 0x00000400
#define CREATE_SEPARATE_WOW_VDM 0x00000800
#define CREATE_SHARED_WOW_VDM 0x00001000
#define BELOW_NORMAL_PRIORITY_CLASS 0x00004000
#define ABOVE_NORMAL_PRIORITY_CLASS 0x00008000
#define CREATE_DEFAULT_ERROR_MODE 0x04000000
#define CREATE_NO_WINDOW 0x08000000

/* STARTUPINFO dwFlags. */
#define STARTF_USESHOWWINDOW 0x00000001
#define STARTF_USESIZE 0x00000002
#define STARTF_USEPOSITION 0x00000004
#define STARTF_USECOUNTCHARS 0x00000008
#define STARTF_USEFILLATTRIBUTE 0x00000010
#define STARTF_RUNFULLSCREEN 0x00000020
#define STARTF_FORCEONFEEDBACK 0x00000040
#define STARTF_FORCEOFFFEEDBACK 0x00000080
#define STARTF_USESTDHANDLES 0x00000100

/* Waits and exit codes. */
#define WAIT_OBJECT_0 0x00000000L
#define WAIT_ABANDONED 0x00000080L
#define WAIT_TIMEOUT 258L
#define WAIT_FAILED ((DWORD)0xFFFFFFFF)
#define STILL_ACTIVE 259L

typedef struct _STARTUPINFOA {
    DWORD cb;
    LPSTR lpReserved;
    LPSTR lpDesktop;
    LPSTR lpTitle;
    DWORD dwX;
    DWORD dwY;
    DWORD dwXSize;
    DWORD dwYSize;
    DWORD dwXCountChars;
    DWORD dwYCountChars;
    DWORD dwFillAttribute;
    DWORD dwFlags;
    WORD wShowWindow;
    WORD cbReserved2;
    LPBYTE lpReserved2;
    HANDLE hStdInput;
    HANDLE hStdOutput;
    HANDLE hStdError;
} STARTUPINFOA, *LPSTARTUPINFOA;

typedef struct _PROCESS_INFORMATION {
    HANDLE hProcess;
    HANDLE hThread;
    DWORD dwProcessId;
    DWORD dwThreadId;
} PROCESS_INFORMATION, *PPROCESS_INFORMATION, *LPPROCESS_INFORMATION;

ZQ_EXTERN_C_BEGIN

/* Starts a program (see above). On success fills *lpProcessInformation
 * with a process and a thread handle (both to be closed by the caller) and
 * the process id (also given as thread id). On failure returns FALSE with
 * the last error (ERROR_FILE_NOT_FOUND, ERROR_PATH_NOT_FOUND,
 * ERROR_ACCESS_DENIED, ERROR_BAD_EXE_FORMAT, ERROR_DIRECTORY,
 * ERROR_INVALID_PARAMETER, ERROR_NOT_SUPPORTED ...) and leaves
 * *lpProcessInformation untouched. lpCommandLine is not modified. */
ZQ_API BOOL WINAPI CreateProcessA(LPCSTR lpApplicationName, LPSTR lpCommandLine,
                                  LPSECURITY_ATTRIBUTES lpProcessAttributes,
                                  LPSECURITY_ATTRIBUTES lpThreadAttributes, BOOL bInheritHandles,
                                  DWORD dwCreationFlags, LPVOID lpEnvironment,
                                  LPCSTR lpCurrentDirectory, LPSTARTUPINFOA lpStartupInfo,
                                  LPPROCESS_INFORMATION lpProcessInformation);

/* Starts the command line's program with show command uCmdShow (not
 * applied). Returns a value above 31 on success, else 0 (out of
 * resources), ERROR_FILE_NOT_FOUND, ERROR_PATH_NOT_FOUND or
 * ERROR_BAD_FORMAT. */
ZQ_API UINT WINAPI WinExec(LPCSTR lpCmdLine, UINT uCmdShow);

/* WAIT_OBJECT_0 once the object is signalled (a process or its thread:
 * when the process has ended), WAIT_TIMEOUT after dwMilliseconds (INFINITE
 * waits without limit), WAIT_FAILED with ERROR_INVALID_HANDLE for a handle
 * that names nothing waitable. */
ZQ_API DWORD WINAPI WaitForSingleObject(HANDLE hHandle, DWORD dwMilliseconds);

/* STILL_ACTIVE while the process runs, then its exit code. */
ZQ_API BOOL WINAPI GetExitCodeProcess(HANDLE hProcess, LPDWORD lpExitCode);

/* Ends the process with exit code uExitCode (SIGKILL). FALSE with
 * ERROR_ACCESS_DENIED when it has already ended. For GetCurrentProcess()
 * the calling process ends at once. */
ZQ_API BOOL WINAPI TerminateProcess(HANDLE hProcess, UINT uExitCode);

/* The pseudo-handle (HANDLE)-1 that names the calling process; it needs no
 * closing. */
ZQ_API HANDLE WINAPI GetCurrentProcess(void);

/* The id of the process a handle names, 0 with ERROR_INVALID_HANDLE. */
ZQ_API DWORD WINAPI GetProcessId(HANDLE Process);

/* FALSE when lpfn points into executable memory of the process, else TRUE. */
ZQ_API BOOL WINAPI IsBadCodePtr(FARPROC lpfn);

ZQ_EXTERN_C_END

#endif /* ZQ_PLATFORM_API_PROCESS_H */
