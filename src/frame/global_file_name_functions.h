// CZqGlobalFileNameFunctions: path-string manipulation, plus one display
// helper that shortens a path to a pixel width.
//
// Pure text functions: the file system is never consulted. The folder
// separator is the backslash and the drive separator the colon; '/' is an
// ordinary character here. A NULL path counts as "". Stateless and
// callable from any thread.
#pragma once

#include "framework/core/cstring.h"
#include "platform/win32.h"

class CDC;

class CZqGlobalFileNameFunctions {
public:
    CZqGlobalFileNameFunctions() = default;
    virtual ~CZqGlobalFileNameFunctions() = default;

    // The part after the last backslash; without one, after the last colon;
    // without either, the whole path ("D:x.txt" gives "x.txt").
    static void ExtractNameFromPath(LPCTSTR lpszPath, CString& csName);
    // The part before the last backslash, with a backslash appended when
    // that is a bare drive ("C:\a.txt" gives "C:\"); without a backslash,
    // the part before the last colon ("D:x.txt" gives "D"); without either,
    // the whole path.
    static void ExtractPathFromPath(LPCTSTR lpszPath, CString& csDirectory);
    // Directory, a backslash unless the directory is empty or ends in a
    // backslash or a colon, then the name.
    static void MakePath(LPCTSTR lpszDirectory, LPCTSTR lpszName, CString& csResult);
    // Removes everything from the last '.' of the whole path (so
    // "a.b\c" becomes "a"), then appends '.' and the extension unless it
    // is NULL.
    static void ReplaceExtension(LPCTSTR lpszPath, CString& csResult, LPCTSTR lpszExtension);
    static void ReplaceExtension(CString& csPath, LPCTSTR lpszExtension);

    // Shortens the path to fit nWidth pixels as pDC measures text, into
    // lpszResult (MAX_PATH bytes; longer results are cut). The whole path
    // when it fits; else the file name alone when even that does not fit;
    // else the root (drive "C:" or "\\server") + "\..." + the trailing
    // components, keeping as many as fit. Without a device context the
    // whole path is the result.
    static void AbbreviateFilePath(LPCTSTR lpszPath, char* lpszResult, CDC* pDC, int nWidth);
};
