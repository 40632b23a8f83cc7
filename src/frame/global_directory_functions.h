// CZqGlobalDirectoryFunctions: folder and folder-tree helpers.
//
// Results are 0 on success, the thread's last platform error, or one of the
// library's own codes below. Size and count results are set to 0 first and
// are 0 after a failure. Paths are DOS paths; the tree functions build
// child paths with backslashes. Stateless and callable from any thread.
#pragma once

#include "platform/win32.h"

// A folder could not be created, removed, or renamed; the new name of a
// rename is empty.
constexpr DWORD ZQ_ERROR_DIRECTORY_CREATE = 0x24065801;
constexpr DWORD ZQ_ERROR_DIRECTORY_REMOVE = 0x24065802;
constexpr DWORD ZQ_ERROR_DIRECTORY_EMPTY_NAME = 0x24065803;
constexpr DWORD ZQ_ERROR_DIRECTORY_RENAME = 0x24065804;

// Called once per file with the caller's value and the file's full path;
// the return value is ignored.
typedef int(WINAPI* ZQENUMFILESPROC)(void* pContext, LPCTSTR lpszFilePath);

class CZqGlobalDirectoryFunctions {
public:
    CZqGlobalDirectoryFunctions() = default;
    virtual ~CZqGlobalDirectoryFunctions() = default;

    // 0 when the path exists at all; dwIsDirectory is 1 only for a folder.
    static DWORD Exists(LPCTSTR lpszPath, DWORD& dwIsDirectory);
    // 0 when the folder exists already or was made, else
    // ZQ_ERROR_DIRECTORY_CREATE.
    static DWORD Create(LPCTSTR lpszPath);
    // Makes the folder and every missing parent (parents are found by
    // backslash, so the path should use backslashes). dwExists is 1 when
    // the folder was there already. A failing parent returns its code.
    static DWORD CreateDirChain(LPCTSTR lpszPath, DWORD& dwExists);
    // Removes an empty folder, else ZQ_ERROR_DIRECTORY_REMOVE.
    static DWORD Delete(LPCTSTR lpszPath);
    // Removes the folder and everything in it; errors are ignored (a
    // read-only file stays, and so do the folders above it).
    static void DeleteDirChain(LPCTSTR lpszPath);
    // ZQ_ERROR_DIRECTORY_EMPTY_NAME for an empty or NULL new name,
    // ZQ_ERROR_DIRECTORY_RENAME when the move fails.
    static DWORD Rename(LPCTSTR lpszFrom, LPCTSTR lpszTo);

    // Sum of the sizes (low 32 bits each) and number of the files directly
    // in the folder.
    static DWORD GetSpace(LPCTSTR lpszPath, DWORD& dwBytes);
    static DWORD GetFileCount(LPCTSTR lpszPath, DWORD& dwCount);
    // Calls back once per file directly in the folder.
    static DWORD EnumerateFiles(void* pContext, LPCTSTR lpszPath, ZQENUMFILESPROC pfnCallback);

    // The same over the whole tree. Kept as designed: every folder entry is
    // descended into, "." and ".." included, so a walk goes down "path\.",
    // "path\.\." ... until the growing path can no longer be listed, and
    // that error ends the walk and is its result. Below a drive's root,
    // where listings begin with ".", these therefore fail with the listing's
    // error (ERROR_FILENAME_EXCED_RANGE here) and report 0.
    static DWORD GetTotalSpace(LPCTSTR lpszPath, DWORD& dwBytes);
    static DWORD GetTotalFileCount(LPCTSTR lpszPath, DWORD& dwCount);
    static DWORD EnumerateAllFiles(void* pContext, LPCTSTR lpszPath, ZQENUMFILESPROC pfnCallback);

    // Always sets bShared to FALSE and returns 0.
    static DWORD IsDirShared(LPCTSTR lpszPath, BOOL& bShared);
};
