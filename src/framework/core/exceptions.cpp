#include "framework/core/exceptions.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <iterator>

IMPLEMENT_DYNAMIC(CException, CObject)
IMPLEMENT_DYNAMIC(CMemoryException, CException)
IMPLEMENT_DYNAMIC(CFileException, CException)

namespace {

BOOL CopyMessage(LPCTSTR text, LPTSTR lpszError, UINT nMaxError, PUINT pnHelpContext) {
    if (pnHelpContext != nullptr) {
        *pnHelpContext = 0;
    }
    if (lpszError == nullptr || nMaxError == 0) {
        return FALSE;
    }
    size_t n = std::min<size_t>(std::strlen(text), nMaxError - 1);
    std::memcpy(lpszError, text, n);
    lpszError[n] = '\0';
    return text[0] != '\0';
}

struct OsErrorCause {
    LONG error;
    int cause;
};

// Platform error codes and the cause each stands for; anything else is
// generic.
constexpr OsErrorCause kOsErrorCauses[] = {
    {2, CFileException::fileNotFound},        // ERROR_FILE_NOT_FOUND
    {3, CFileException::badPath},             // ERROR_PATH_NOT_FOUND
    {4, CFileException::tooManyOpenFiles},    // ERROR_TOO_MANY_OPEN_FILES
    {5, CFileException::accessDenied},        // ERROR_ACCESS_DENIED
    {6, CFileException::fileNotFound},        // ERROR_INVALID_HANDLE
    {11, CFileException::invalidFile},        // ERROR_BAD_FORMAT
    {12, CFileException::accessDenied},       // ERROR_INVALID_ACCESS
    {15, CFileException::badPath},            // ERROR_INVALID_DRIVE
    {16, CFileException::removeCurrentDir},   // ERROR_CURRENT_DIRECTORY
    {17, CFileException::badPath},            // ERROR_NOT_SAME_DEVICE
    {18, CFileException::fileNotFound},       // ERROR_NO_MORE_FILES
    {19, CFileException::accessDenied},       // ERROR_WRITE_PROTECT
    {20, CFileException::hardIO},             // ERROR_BAD_UNIT
    {21, CFileException::hardIO},             // ERROR_NOT_READY
    {22, CFileException::hardIO},             // ERROR_BAD_COMMAND
    {23, CFileException::hardIO},             // ERROR_CRC
    {24, CFileException::badSeek},            // ERROR_BAD_LENGTH
    {25, CFileException::badSeek},            // ERROR_SEEK
    {26, CFileException::invalidFile},        // ERROR_NOT_DOS_DISK
    {27, CFileException::badSeek},            // ERROR_SECTOR_NOT_FOUND
    {29, CFileException::accessDenied},       // ERROR_WRITE_FAULT
    {30, CFileException::badSeek},            // ERROR_READ_FAULT
    {32, CFileException::sharingViolation},   // ERROR_SHARING_VIOLATION
    {33, CFileException::lockViolation},      // ERROR_LOCK_VIOLATION
    {34, CFileException::badPath},            // ERROR_WRONG_DISK
    {36, CFileException::tooManyOpenFiles},   // ERROR_SHARING_BUFFER_EXCEEDED
    {38, CFileException::endOfFile},          // ERROR_HANDLE_EOF
    {39, CFileException::diskFull},           // ERROR_HANDLE_DISK_FULL
    {53, CFileException::badPath},            // ERROR_BAD_NETPATH
    {65, CFileException::accessDenied},       // ERROR_NETWORK_ACCESS_DENIED
    {67, CFileException::badPath},            // ERROR_BAD_NET_NAME
    {80, CFileException::accessDenied},       // ERROR_FILE_EXISTS
    {82, CFileException::accessDenied},       // ERROR_CANNOT_MAKE
    {108, CFileException::lockViolation},     // ERROR_DRIVE_LOCKED
    {111, CFileException::badPath},           // ERROR_BUFFER_OVERFLOW
    {112, CFileException::diskFull},          // ERROR_DISK_FULL
    {113, CFileException::tooManyOpenFiles},  // ERROR_NO_MORE_SEARCH_HANDLES
    {123, CFileException::badPath},           // ERROR_INVALID_NAME
    {124, CFileException::badPath},           // ERROR_INVALID_LEVEL
    {131, CFileException::badSeek},           // ERROR_NEGATIVE_SEEK
    {132, CFileException::badSeek},           // ERROR_SEEK_ON_DEVICE
    {145, CFileException::removeCurrentDir},  // ERROR_DIR_NOT_EMPTY
    {161, CFileException::badPath},           // ERROR_BAD_PATHNAME
    {167, CFileException::lockViolation},     // ERROR_LOCK_FAILED
    {170, CFileException::accessDenied},      // ERROR_BUSY
    {183, CFileException::accessDenied},      // ERROR_ALREADY_EXISTS
    {193, CFileException::invalidFile},       // ERROR_BAD_EXE_FORMAT
    {206, CFileException::badPath},           // ERROR_FILENAME_EXCED_RANGE
    {267, CFileException::badPath},           // ERROR_DIRECTORY
};

constexpr const char* kCauseTexts[] = {
    "No error occurred.",
    "An unknown error occurred while accessing %s.",
    "%s was not found.",
    "%s contains an invalid path.",
    "%s could not be opened because there are too many open files.",
    "Access to %s was denied.",
    "An invalid file handle was associated with %s.",
    "%s could not be removed because it is the current directory.",
    "%s could not be created because the directory is full.",
    "Seek failed on %s.",
    "A hardware I/O error was reported while accessing %s.",
    "A sharing violation occurred while accessing %s.",
    "A locking violation occurred while accessing %s.",
    "Disk full while accessing %s.",
    "An attempt was made to access %s past its end.",
};

}  // namespace

void CException::Delete() {
    if (m_bAutoDelete) {
        delete this;
    }
}

BOOL CException::GetErrorMessage(LPTSTR lpszError, UINT nMaxError, PUINT pnHelpContext) {
    CopyMessage("", lpszError, nMaxError, pnHelpContext);
    return FALSE;
}

BOOL CMemoryException::GetErrorMessage(LPTSTR lpszError, UINT nMaxError, PUINT pnHelpContext) {
    return CopyMessage("Out of memory.", lpszError, nMaxError, pnHelpContext);
}

int PASCAL CFileException::OsErrorToException(LONG lOsError) {
    if (lOsError == 0) {
        return none;
    }
    for (const OsErrorCause& entry : kOsErrorCauses) {
        if (entry.error == lOsError) {
            return entry.cause;
        }
    }
    return generic;
}

int PASCAL CFileException::ErrnoToException(int nErrno) {
    switch (nErrno) {
        case 0:
            return none;
        case EPERM:
        case EACCES:
        case EROFS:
            return accessDenied;
        case EBADF:
            return invalidFile;
        case EDEADLK:
            return sharingViolation;
        case EMFILE:
            return tooManyOpenFiles;
        case ENOENT:
        case ENFILE:
            return fileNotFound;
        case ENOTDIR:
        case ENAMETOOLONG:
            return badPath;
        case ENOSPC:
            return diskFull;
        case EINVAL:
        case EIO:
            return hardIO;
        default:
            return generic;
    }
}

void PASCAL CFileException::ThrowOsError(LONG lOsError, LPCTSTR lpszFileName) {
    if (lOsError != 0) {
        AfxThrowFileException(OsErrorToException(lOsError), lOsError, lpszFileName);
    }
}

void PASCAL CFileException::ThrowErrno(int nErrno, LPCTSTR lpszFileName) {
    if (nErrno != 0) {
        AfxThrowFileException(ErrnoToException(nErrno), nErrno, lpszFileName);
    }
}

BOOL CFileException::GetErrorMessage(LPTSTR lpszError, UINT nMaxError, PUINT pnHelpContext) {
    int cause =
        m_cause >= 0 && m_cause < static_cast<int>(std::size(kCauseTexts)) ? m_cause : generic;
    CString text;
    text.Format(kCauseTexts[cause],
                m_strFileName.IsEmpty() ? "an unnamed file" : static_cast<LPCTSTR>(m_strFileName));
    return CopyMessage(text, lpszError, nMaxError, pnHelpContext);
}

void AfxThrowFileException(int cause, LONG lOsError, LPCTSTR lpszFileName) {
    throw new CFileException(cause, lOsError, lpszFileName);
}

void AfxThrowMemoryException() {
    throw new CMemoryException;
}
