// The library's small exported free functions of the frame: its instance
// handle, the directory-selection entry point and the entry points kept for
// callers that expect them.
#pragma once

#include "platform/win32.h"

class CWnd;

// What a caller knows about a failed file operation.
typedef struct tagFILEERRORDATA {
    DWORD dwSize;   // sizeof(FILEERRORDATA)
    DWORD dwError;  // the platform error code
    DWORD dwOperation;
    char szFileName[MAX_PATH];
} FILEERRORDATA;

// This library's instance handle, as stored at attach (NULL before).
HINSTANCE ZqGblGetInstanceHandle();

// The platform's local time; a NULL pointer is ignored.
void ZqGblGetLocalTime(SYSTEMTIME* lpSystemTime);

// Shows the directory-selection dialog and returns its result; 2 when no
// directory was chosen or the chosen path does not fit into dwSize bytes.
// A chosen path is copied into lpszResult, upper-cased with flag 4, else
// lower-cased unless flag 8 is set. lpszResult is zero-filled first. Flag 2
// with a non-empty lpszInitialDir prepares that directory first. The
// further arguments are passed through to the dialog.
// Until the dialog exists the result is 2, reported through
// CZqGlobalError::Minor(0x21124003) as a dialog that could not be made.
int ZqSelectDirectory(char* lpszResult, DWORD dwSize, HWND hWndParent, const char* lpszInitialDir,
                      int nFlags, ...);

// Does nothing and returns 0 (kept for callers that expect the entry point).
int VelnorSetup(CWnd* pParent, int nMode);

// Do nothing and return 0 (kept for callers that expect the entry points).
DWORD ZqLogFileError(FILEERRORDATA* pData, DWORD dwParam1, DWORD dwParam2, DWORD dwParam3);
DWORD ZqLogFileErrorData(FILEERRORDATA* pData, DWORD dwParam1, DWORD dwParam2, DWORD dwParam3,
                         void* pExtra, DWORD dwExtraSize);
