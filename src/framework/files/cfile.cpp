#include "framework/files/cfile.h"

#include <algorithm>
#include <cstring>

IMPLEMENT_DYNAMIC(CFile, CObject)

const HANDLE CFile::hFileNull = INVALID_HANDLE_VALUE;

namespace {

// The full path of a name; the name itself when it cannot be resolved.
CString FullPath(LPCTSTR lpszFileName) {
    char full[MAX_PATH];
    DWORD n = GetFullPathNameA(lpszFileName, sizeof full, full, nullptr);
    if (n == 0 || n >= sizeof full) {
        return CString(lpszFileName);
    }
    return CString(full, static_cast<int>(n));
}

void CopyPath(TCHAR (&target)[MAX_PATH], const CString& path) {
    size_t n = std::min<size_t>(static_cast<size_t>(path.GetLength()), MAX_PATH - 1);
    std::memcpy(target, static_cast<LPCTSTR>(path), n);
    target[n] = '\0';
}

BYTE AttributeBits(DWORD attributes) {
    constexpr DWORD kKept = CFile::readOnly | CFile::hidden | CFile::system | CFile::volume |
                            CFile::directory | CFile::archive;
    return static_cast<BYTE>(attributes & kKept);
}

}  // namespace

CFile::CFile() : m_hFile(hFileNull), m_bCloseOnDelete(FALSE) {}

CFile::CFile(HANDLE hFile) : m_hFile(hFile), m_bCloseOnDelete(FALSE) {}

CFile::CFile(LPCTSTR lpszFileName, UINT nOpenFlags) : CFile() {
    CFileException error;
    if (!Open(lpszFileName, nOpenFlags, &error)) {
        AfxThrowFileException(error.m_cause, error.m_lOsError, error.m_strFileName);
    }
}

CFile::~CFile() {
    if (m_hFile != hFileNull && m_bCloseOnDelete) {
        Abort();
    }
}

BOOL CFile::Open(LPCTSTR lpszFileName, UINT nOpenFlags, CFileException* pError) {
    if (m_hFile != hFileNull) {
        Abort();
    }
    m_bCloseOnDelete = FALSE;
    m_strFileName.Empty();
    if (lpszFileName == nullptr || *lpszFileName == '\0') {
        if (pError != nullptr) {
            pError->m_lOsError = ERROR_INVALID_NAME;
            pError->m_cause = CFileException::OsErrorToException(ERROR_INVALID_NAME);
            pError->m_strFileName = lpszFileName;
        }
        return FALSE;
    }

    DWORD access = 0;
    switch (nOpenFlags & 3) {
        case modeRead:
            access = GENERIC_READ;
            break;
        case modeWrite:
            access = GENERIC_WRITE;
            break;
        default:
            access = GENERIC_READ | GENERIC_WRITE;
            break;
    }
    DWORD share = 0;
    switch (nOpenFlags & 0x70) {
        case shareDenyWrite:
            share = FILE_SHARE_READ;
            break;
        case shareDenyRead:
            share = FILE_SHARE_WRITE;
            break;
        case shareDenyNone:
            share = FILE_SHARE_READ | FILE_SHARE_WRITE;
            break;
        default:  // shareCompat and shareExclusive
            share = 0;
            break;
    }
    DWORD creation = OPEN_EXISTING;
    if (nOpenFlags & modeCreate) {
        creation = (nOpenFlags & modeNoTruncate) ? OPEN_ALWAYS : CREATE_ALWAYS;
    }
    SECURITY_ATTRIBUTES security{sizeof(SECURITY_ATTRIBUTES), nullptr,
                                 (nOpenFlags & modeNoInherit) ? FALSE : TRUE};

    HANDLE file = CreateFileA(lpszFileName, access, share, &security, creation,
                              FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE) {
        if (pError != nullptr) {
            DWORD error = GetLastError();
            pError->m_lOsError = static_cast<LONG>(error);
            pError->m_cause = CFileException::OsErrorToException(static_cast<LONG>(error));
            pError->m_strFileName = lpszFileName;
        }
        return FALSE;
    }
    m_hFile = file;
    m_bCloseOnDelete = TRUE;
    m_strFileName = FullPath(lpszFileName);
    return TRUE;
}

UINT CFile::Read(void* lpBuf, UINT nCount) {
    if (nCount == 0) {
        return 0;
    }
    DWORD read = 0;
    if (!ReadFile(m_hFile, lpBuf, nCount, &read, nullptr)) {
        CFileException::ThrowOsError(static_cast<LONG>(GetLastError()), m_strFileName);
    }
    return read;
}

void CFile::Write(const void* lpBuf, UINT nCount) {
    if (nCount == 0) {
        return;
    }
    DWORD written = 0;
    if (!WriteFile(m_hFile, lpBuf, nCount, &written, nullptr)) {
        CFileException::ThrowOsError(static_cast<LONG>(GetLastError()), m_strFileName);
    }
    if (written != nCount) {
        AfxThrowFileException(CFileException::diskFull, -1, m_strFileName);
    }
}

LONG CFile::Seek(LONG lOff, UINT nFrom) {
    DWORD position = SetFilePointer(m_hFile, lOff, nullptr, nFrom);
    if (position == INVALID_SET_FILE_POINTER) {
        CFileException::ThrowOsError(static_cast<LONG>(GetLastError()), m_strFileName);
    }
    return static_cast<LONG>(position);
}

void CFile::SeekToBegin() {
    Seek(0, begin);
}

DWORD CFile::SeekToEnd() {
    return static_cast<DWORD>(Seek(0, end));
}

DWORD CFile::GetPosition() const {
    DWORD position = SetFilePointer(m_hFile, 0, nullptr, FILE_CURRENT);
    if (position == INVALID_SET_FILE_POINTER) {
        CFileException::ThrowOsError(static_cast<LONG>(GetLastError()), m_strFileName);
    }
    return position;
}

DWORD CFile::GetLength() const {
    SetLastError(NO_ERROR);
    DWORD size = GetFileSize(m_hFile, nullptr);
    if (size == INVALID_FILE_SIZE && GetLastError() != NO_ERROR) {
        CFileException::ThrowOsError(static_cast<LONG>(GetLastError()), m_strFileName);
    }
    return size;
}

void CFile::SetLength(DWORD dwNewLen) {
    // Through the high part, so that lengths from 2 to 4 GB are not taken
    // for negative distances.
    LONG high = 0;
    SetLastError(NO_ERROR);
    DWORD position = SetFilePointer(m_hFile, static_cast<LONG>(dwNewLen), &high, FILE_BEGIN);
    if (position == INVALID_SET_FILE_POINTER && GetLastError() != NO_ERROR) {
        CFileException::ThrowOsError(static_cast<LONG>(GetLastError()), m_strFileName);
    }
    if (!SetEndOfFile(m_hFile)) {
        CFileException::ThrowOsError(static_cast<LONG>(GetLastError()), m_strFileName);
    }
}

void CFile::Flush() {
    if (m_hFile == hFileNull) {
        return;
    }
    if (!FlushFileBuffers(m_hFile)) {
        CFileException::ThrowOsError(static_cast<LONG>(GetLastError()), m_strFileName);
    }
}

void CFile::Close() {
    BOOL failed = FALSE;
    DWORD error = 0;
    if (m_hFile != hFileNull) {
        failed = !CloseHandle(m_hFile);
        error = GetLastError();
    }
    m_hFile = hFileNull;
    m_bCloseOnDelete = FALSE;
    CString name = m_strFileName;
    m_strFileName.Empty();
    if (failed) {
        CFileException::ThrowOsError(static_cast<LONG>(error), name);
    }
}

void CFile::Abort() {
    if (m_hFile != hFileNull) {
        CloseHandle(m_hFile);
        m_hFile = hFileNull;
    }
    m_bCloseOnDelete = FALSE;
    m_strFileName.Empty();
}

CString CFile::GetFileName() const {
    int cut = -1;
    for (int i = 0; i < m_strFileName.GetLength(); ++i) {
        char c = m_strFileName[i];
        if (c == '\\' || c == '/' || c == ':') {
            cut = i;
        }
    }
    return m_strFileName.Mid(cut + 1);
}

CString CFile::GetFileTitle() const {
    return GetFileName();
}

CString CFile::GetFilePath() const {
    return m_strFileName;
}

void CFile::SetFilePath(LPCTSTR lpszNewName) {
    m_strFileName = lpszNewName;
}

BOOL CFile::GetStatus(CFileStatus& rStatus) const {
    rStatus = CFileStatus{};
    CopyPath(rStatus.m_szFullName, m_strFileName);
    if (m_hFile == hFileNull) {
        return FALSE;
    }
    FILETIME created{}, accessed{}, written{};
    if (!GetFileTime(m_hFile, &created, &accessed, &written)) {
        return FALSE;
    }
    rStatus.m_ctime = CTime(created);
    rStatus.m_atime = CTime(accessed);
    rStatus.m_mtime = CTime(written);
    rStatus.m_size = static_cast<LONG>(GetFileSize(m_hFile, nullptr));
    if (!m_strFileName.IsEmpty()) {
        DWORD attributes = GetFileAttributesA(m_strFileName);
        if (attributes != INVALID_FILE_ATTRIBUTES) {
            rStatus.m_attribute = AttributeBits(attributes);
        }
    }
    return TRUE;
}

BOOL PASCAL CFile::GetStatus(LPCTSTR lpszFileName, CFileStatus& rStatus) {
    rStatus = CFileStatus{};
    if (lpszFileName == nullptr || *lpszFileName == '\0') {
        return FALSE;
    }
    char full[MAX_PATH];
    DWORD n = GetFullPathNameA(lpszFileName, sizeof full, full, nullptr);
    if (n == 0 || n >= sizeof full) {
        return FALSE;
    }
    CopyPath(rStatus.m_szFullName, CString(full, static_cast<int>(n)));
    WIN32_FIND_DATAA found;
    HANDLE find = FindFirstFileA(lpszFileName, &found);
    if (find == INVALID_HANDLE_VALUE) {
        return FALSE;
    }
    FindClose(find);
    rStatus.m_attribute = AttributeBits(found.dwFileAttributes);
    rStatus.m_size = static_cast<LONG>(found.nFileSizeLow);
    rStatus.m_ctime = CTime(found.ftCreationTime);
    rStatus.m_atime = CTime(found.ftLastAccessTime);
    rStatus.m_mtime = CTime(found.ftLastWriteTime);
    return TRUE;
}

void PASCAL CFile::Rename(LPCTSTR lpszOldName, LPCTSTR lpszNewName) {
    if (!MoveFileA(lpszOldName, lpszNewName)) {
        CFileException::ThrowOsError(static_cast<LONG>(GetLastError()), lpszOldName);
    }
}

void PASCAL CFile::Remove(LPCTSTR lpszFileName) {
    if (!DeleteFileA(lpszFileName)) {
        CFileException::ThrowOsError(static_cast<LONG>(GetLastError()), lpszFileName);
    }
}
