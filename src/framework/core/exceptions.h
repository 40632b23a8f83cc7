// The framework's exceptions: CException, CMemoryException and
// CFileException.
//
// They are thrown as heap objects (`throw new CFileException(...)`) and the
// catcher disposes of them with Delete(), the classic way:
//
//     try { file.Write(data, size); }
//     catch (CFileException* e) { DWORD os = e->m_lOsError; e->Delete(); }
//
// Only the framework classes that throw in the classic framework throw
// (CFile's Read/Write/Seek..., never its Open). Nothing thrown here crosses
// the platform boundary.
#pragma once

#include "framework/core/cstring.h"
#include "framework/core/object.h"
#include "platform/win32.h"

class CException : public CObject {
    DECLARE_DYNAMIC(CException)
public:
    explicit CException(BOOL bAutoDelete = TRUE) : m_bAutoDelete(bAutoDelete) {}
    ~CException() override = default;

    // Deletes the exception when it was made with new (m_bAutoDelete).
    void Delete();
    // A text for the user, truncated to nMaxError characters with the NUL;
    // FALSE (and an empty text) when there is none. *pnHelpContext is 0.
    virtual BOOL GetErrorMessage(LPTSTR lpszError, UINT nMaxError, PUINT pnHelpContext = nullptr);

    BOOL m_bAutoDelete;
};

class CMemoryException : public CException {
    DECLARE_DYNAMIC(CMemoryException)
public:
    CMemoryException() = default;
    BOOL GetErrorMessage(LPTSTR lpszError, UINT nMaxError, PUINT pnHelpContext = nullptr) override;
};

class CFileException : public CException {
    DECLARE_DYNAMIC(CFileException)
public:
    enum {
        none,
        generic,
        fileNotFound,
        badPath,
        tooManyOpenFiles,
        accessDenied,
        invalidFile,
        removeCurrentDir,
        directoryFull,
        badSeek,
        hardIO,
        sharingViolation,
        lockViolation,
        diskFull,
        endOfFile
    };

    explicit CFileException(int cause = none, LONG lOsError = -1, LPCTSTR lpszArchiveName = nullptr)
        : m_cause(cause), m_lOsError(lOsError), m_strFileName(lpszArchiveName) {}

    // The cause that a platform error code stands for (generic when none
    // fits; none for 0).
    static int PASCAL OsErrorToException(LONG lOsError);
    // The cause that a C runtime errno value stands for.
    static int PASCAL ErrnoToException(int nErrno);
    // Throw a new CFileException for the error (nothing for 0).
    static void PASCAL ThrowOsError(LONG lOsError, LPCTSTR lpszFileName = nullptr);
    static void PASCAL ThrowErrno(int nErrno, LPCTSTR lpszFileName = nullptr);

    BOOL GetErrorMessage(LPTSTR lpszError, UINT nMaxError, PUINT pnHelpContext = nullptr) override;

    int m_cause;
    LONG m_lOsError;
    CString m_strFileName;
};

[[noreturn]] void AfxThrowFileException(int cause, LONG lOsError = -1,
                                        LPCTSTR lpszFileName = nullptr);
[[noreturn]] void AfxThrowMemoryException();
