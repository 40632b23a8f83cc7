#include "diagnostics/event_log.h"

#include "diagnostics/operating_system.h"
#include "frame/global_error.h"

namespace {

// Opens `file` with `access`, sharing reading and writing, with a fresh
// security descriptor that is not inherited.
HANDLE OpenPlainFile(const char* file, DWORD access) {
    SECURITY_DESCRIPTOR descriptor;
    InitializeSecurityDescriptor(&descriptor, SECURITY_DESCRIPTOR_REVISION);
    SECURITY_ATTRIBUTES attributes = {sizeof attributes, &descriptor, FALSE};
    return CreateFileA(file, access, FILE_SHARE_READ | FILE_SHARE_WRITE, &attributes, OPEN_EXISTING,
                       FILE_ATTRIBUTE_NORMAL, nullptr);
}

DWORD Result(BOOL ok) {
    return ok ? 0 : CZqGlobalError::GetError();
}

}  // namespace

CZqGlobalEventLog::CZqGlobalEventLog()
    : m_dwOSType(CZqGlobalOperatingSystem::GetType()), m_hEventLog(nullptr) {}

CZqGlobalEventLog::~CZqGlobalEventLog() {
    Close();
}

bool CZqGlobalEventLog::OnNt() const {
    return m_dwOSType == CZqGlobalOperatingSystem::kTypeWindowsNT;
}

DWORD CZqGlobalEventLog::Open(const char*, const char*) {
    return 0;
}

DWORD CZqGlobalEventLog::OpenBackup(const char* lpszServer, const char* lpszFile) {
    if (m_hEventLog) {
        Close();
    }
    HANDLE handle = nullptr;
    if (OnNt()) {
        handle = OpenBackupEventLogA(lpszServer, lpszFile);
        if (!handle) {
            return CZqGlobalError::GetError();
        }
    } else {
        handle = OpenPlainFile(lpszFile, GENERIC_READ);
        if (handle == INVALID_HANDLE_VALUE) {
            return CZqGlobalError::GetError();
        }
    }
    m_hEventLog = handle;
    m_csFileName = lpszFile;
    return 0;
}

DWORD CZqGlobalEventLog::BackUp(const char* lpszFile) {
    if (OnNt()) {
        return Result(BackupEventLogA(m_hEventLog, lpszFile));
    }
    return Result(CopyFileA(m_csFileName, lpszFile, FALSE));
}

DWORD CZqGlobalEventLog::Clear(const char* lpszBackupFile) {
    if (OnNt()) {
        return Result(ClearEventLogA(m_hEventLog, lpszBackupFile));
    }
    if (lpszBackupFile && *lpszBackupFile && !CopyFileA(m_csFileName, lpszBackupFile, FALSE)) {
        return CZqGlobalError::GetError();
    }
    if (SetFilePointer(m_hEventLog, 0, nullptr, FILE_BEGIN) == INVALID_SET_FILE_POINTER &&
        GetLastError() != NO_ERROR) {
        return CZqGlobalError::GetError();
    }
    // The handle reads only (so that copies of the open file work); the cut
    // goes through a writable handle on the same file.
    HANDLE writer = OpenPlainFile(m_csFileName, GENERIC_WRITE);
    if (writer == INVALID_HANDLE_VALUE) {
        return CZqGlobalError::GetError();
    }
    const BOOL cut = SetEndOfFile(writer);
    const DWORD result = Result(cut);
    CloseHandle(writer);
    return result;
}

DWORD CZqGlobalEventLog::Close() {
    DWORD result = 0;
    if (m_hEventLog) {
        result = Result(OnNt() ? CloseEventLog(m_hEventLog) : CloseHandle(m_hEventLog));
    }
    // The object is reset whatever the result.
    m_hEventLog = nullptr;
    m_csFileName.Empty();
    return result;
}

DWORD CZqGlobalEventLog::Read(DWORD, DWORD, void*, DWORD, DWORD&, DWORD&) {
    return 0;
}

DWORD CZqGlobalEventLog::GetRecordCount(DWORD&) {
    return 0;
}

DWORD CZqGlobalEventLog::GetOldestRecord(DWORD&) {
    return 0;
}

CZqGlobalEventLogSource::~CZqGlobalEventLogSource() {
    Close();
}

DWORD CZqGlobalEventLogSource::Open(const char*) {
    return 0;
}

DWORD CZqGlobalEventLogSource::Close() {
    return 0;
}

DWORD CZqGlobalEventLogSource::Report(WORD, WORD, DWORD, WORD, const char**, DWORD, void*) {
    return 0;
}

DWORD CZqGlobalEventLogSource::Report(WORD, WORD, DWORD, CStringArray*, DWORD, void*) {
    return 0;
}

DWORD CZqGlobalEventLogSource::AddEntry(const char*, const char*, const char*, DWORD, const char*,
                                        DWORD) {
    return 0;
}

DWORD CZqGlobalEventLogSource::RemoveEntry(const char*) {
    return 0;
}

DWORD CZqGlobalEventLogSource::GetEntry(const char*, CString&) {
    return 0;
}
