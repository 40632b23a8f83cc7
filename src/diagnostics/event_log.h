// CZqGlobalEventLog and CZqGlobalEventLogSource: a system event log on
// Windows NT, a plain file on the other systems.
//
// CZqGlobalEventLog works on a log backup: OpenBackup opens it (through the
// event log on NT, as a file elsewhere), BackUp copies it, Clear empties it
// (copying it first when given a name), Close lets it go. Results are 0 or
// the thread's last error (CZqGlobalError::GetError) after a failed call;
// no other state is kept. The system type is taken at construction
// (CZqGlobalOperatingSystem::GetType), so an object keeps the way it works
// for its life. Open, Read, GetRecordCount and GetOldestRecord deliberately
// do nothing and report success without touching their arguments.
//
// CZqGlobalEventLogSource is the matching event source; in this library it
// reports nothing: every member returns 0 at once.
//
// Objects are not shared between threads.
#pragma once

#include "framework/core/arrays.h"
#include "framework/core/cstring.h"
#include "platform/win32.h"

class CZqGlobalEventLog {
public:
    CZqGlobalEventLog();
    // Closes what is open.
    virtual ~CZqGlobalEventLog();
    CZqGlobalEventLog(const CZqGlobalEventLog&) = delete;
    CZqGlobalEventLog& operator=(const CZqGlobalEventLog&) = delete;

    // Does nothing; 0.
    DWORD Open(const char* lpszServer, const char* lpszSource);

    // Opens a backup: on NT OpenBackupEventLogA(lpszServer, lpszFile); on the
    // other systems the file itself, for reading, sharing reading and
    // writing. On success the file name is kept. Whatever was open before is
    // closed first.
    DWORD OpenBackup(const char* lpszServer, const char* lpszFile);

    // Copies the backup to lpszFile: on NT BackupEventLogA (which refuses a
    // backup handle); elsewhere CopyFileA of the kept name, overwriting.
    DWORD BackUp(const char* lpszFile);

    // Empties the log: on NT ClearEventLogA(handle, lpszBackupFile);
    // elsewhere, when lpszBackupFile is given (not NULL or ""), the file is
    // first copied there (overwriting); then the handle goes back to the
    // start and the file is cut there, through a second handle that may
    // write (a read-only file: ERROR_ACCESS_DENIED, after the copy).
    DWORD Clear(const char* lpszBackupFile);

    // Closes the handle (CloseEventLog on NT, CloseHandle elsewhere); the
    // handle and the file name are cleared whatever the result.
    DWORD Close();

    // Do nothing and return 0, leaving their arguments as they were.
    DWORD Read(DWORD dwFlags, DWORD dwOffset, void* pBuffer, DWORD dwSize, DWORD& dwRead,
               DWORD& dwNeeded);
    DWORD GetRecordCount(DWORD& dwCount);
    DWORD GetOldestRecord(DWORD& dwOldest);

    // What is open: the handle (NULL when closed) and the kept file name.
    HANDLE GetHandle() const { return m_hEventLog; }
    const CString& GetFileName() const { return m_csFileName; }

protected:
    DWORD m_dwOSType;
    HANDLE m_hEventLog;
    CString m_csFileName;

private:
    bool OnNt() const;
};

class CZqGlobalEventLogSource {
public:
    CZqGlobalEventLogSource() : m_hEventSource(nullptr) {}
    // Calls Close.
    virtual ~CZqGlobalEventLogSource();
    CZqGlobalEventLogSource(const CZqGlobalEventLogSource&) = delete;
    CZqGlobalEventLogSource& operator=(const CZqGlobalEventLogSource&) = delete;

    // All do nothing and return 0.
    DWORD Open(const char* lpszSource);
    DWORD Close();
    DWORD Report(WORD wType, WORD wCategory, DWORD dwEventId, WORD wStringCount,
                 const char** lpszStrings, DWORD dwDataSize, void* pData);
    DWORD Report(WORD wType, WORD wCategory, DWORD dwEventId, CStringArray* pStrings,
                 DWORD dwDataSize, void* pData);
    DWORD AddEntry(const char* lpszSource, const char* lpszMessageFile,
                   const char* lpszCategoryFile, DWORD dwCategoryCount,
                   const char* lpszParameterFile, DWORD dwTypesSupported);
    DWORD RemoveEntry(const char* lpszSource);
    DWORD GetEntry(const char* lpszSource, CString& csValue);

protected:
    [[maybe_unused]] HANDLE m_hEventSource;  // always NULL: nothing is opened
};
