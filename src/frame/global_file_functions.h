// CZqGlobalFileFunctions: single-file helpers over the platform's file
// functions.
//
// Every function returns 0 on success, otherwise the thread's last platform
// error as CZqGlobalError::GetError reads it. Out-parameters are set to 0
// first, so they read 0 after a failure. Paths are DOS paths (or plain Unix
// paths on POSIX). Stateless and callable from any thread.
#pragma once

#include "platform/win32.h"

class CZqGlobalFileFunctions {
public:
    CZqGlobalFileFunctions() = default;
    virtual ~CZqGlobalFileFunctions() = default;

    // Creates the file, replacing an existing one (write access, no
    // sharing, normal attributes), and closes it.
    static DWORD Create(LPCTSTR lpszPath);
    static DWORD Delete(LPCTSTR lpszPath);
    // Move and Rename are the same operation (MoveFileA).
    static DWORD Move(LPCTSTR lpszFrom, LPCTSTR lpszTo);
    static DWORD Rename(LPCTSTR lpszFrom, LPCTSTR lpszTo);

    // dwExists = 1 when the path is a file carrying at least one of the
    // bits read-only, hidden, system, archive, normal or temporary. Kept as
    // designed: a folder gives 0 with dwExists 0, and so does a file that
    // carries none of the six bits (only compressed, say). A missing path
    // returns the platform's not-found error.
    static DWORD Exists(LPCTSTR lpszPath, DWORD& dwExists);

    // Size in bytes (low 32 bits); a folder gives 0 with size 0.
    static DWORD GetSize(LPCTSTR lpszPath, DWORD& dwSize);
    // Opens the existing file for writing and sets its end at dwSize (cut
    // or extended with zeros); a folder gives 0 and is left alone.
    static DWORD SetSize(LPCTSTR lpszPath, DWORD dwSize);

    // The attribute bits; a folder reports 0 attributes with result 0.
    static DWORD GetAttributes(LPCTSTR lpszPath, DWORD& dwAttributes);
    // Adds the given bits (never the folder bit) to the file's current
    // bits; folders are left alone.
    static DWORD SetAttributes(LPCTSTR lpszPath, DWORD dwAttributes);
    // Kept as designed: removes the bits from the attributes read and hands
    // the rest to SetAttributes, which adds them to the current bits, so
    // nothing changes. Returns 0 for an existing file.
    static DWORD ClearAttributes(LPCTSTR lpszPath, DWORD dwAttributes);

    // A new unique file "TMP<hex>.TMP" made by the platform in its folder
    // for temporary files; lpszResult receives its path (MAX_PATH bytes).
    static DWORD GetTempFile(char* lpszResult);

    // Builds "<dir>\<prefix><4+ hex digits>[.<ext>]" in lpszResult (MAX_PATH
    // bytes): the folder only when given, followed by a backslash unless it
    // ends in one; the extension only when given, after a '.' unless it
    // begins with one. A non-zero nUnique is the number and nothing touches
    // the disk. With 0 the number is the low 16 bits of the millisecond
    // tick count, waiting for the next tick while a file of that name
    // exists; the file is then created and closed. Returns 0, or 1 when the
    // file cannot be created, or ERROR_BUFFER_OVERFLOW when the name would
    // not fit (lpszResult untouched on failure).
    static DWORD ZqGetTempFileName(LPCTSTR lpszDirectory, LPCTSTR lpszPrefix, LPCTSTR lpszExtension,
                                   UINT nUnique, char* lpszResult);
};
