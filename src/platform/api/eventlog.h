/* Win32 event-log functions.
 *
 * The logs "Application", "System" and "Security" are files in
 * C:\windows\system\config (AppEvent.Evt, SysEvent.Evt, SecEvent.Evt),
 * created empty when first opened; any other log name opens the
 * Application log, as Windows NT does. Every event source reports to the
 * Application log. A log file holds a header and the records one after the
 * other in the layout Windows NT uses (UTF-16 texts, each record framed by
 * its length and the "LfLe" signature); files that Windows wrote, wrapped
 * around or not, can be opened as backups. A log is never overwritten in a
 * circle here: once a report would grow it past its maximum size (512 KiB)
 * the report fails with ERROR_LOG_FILE_FULL until the log is cleared.
 *
 * Backups are plain copies of a log file. A handle of OpenBackupEventLogA
 * reads the backup; backing it up or clearing it fails with
 * ERROR_INVALID_HANDLE, as on Windows.
 *
 * Remote computers are not reachable: a server name other than NULL, "" or
 * this computer's name gives ERROR_BAD_NETPATH. On the emulated Windows 95
 * and Win32s (ZQ_WINVER) every function fails with
 * ERROR_CALL_NOT_IMPLEMENTED, as those systems have no event log.
 *
 * Failures return FALSE or NULL and set the last error. Reports from
 * several processes are serialised by a lock on the log file. */
#ifndef ZQ_PLATFORM_API_EVENTLOG_H
#define ZQ_PLATFORM_API_EVENTLOG_H

#include "platform/api/security.h"
#include "platform/api/types.h"

/* ReadEventLogA flags: one of the first two and one of the last two. */
#define EVENTLOG_SEQUENTIAL_READ 0x0001
#define EVENTLOG_SEEK_READ 0x0002
#define EVENTLOG_FORWARDS_READ 0x0004
#define EVENTLOG_BACKWARDS_READ 0x0008

/* Event types. */
#define EVENTLOG_SUCCESS 0x0000
#define EVENTLOG_ERROR_TYPE 0x0001
#define EVENTLOG_WARNING_TYPE 0x0002
#define EVENTLOG_INFORMATION_TYPE 0x0004
#define EVENTLOG_AUDIT_SUCCESS 0x0008
#define EVENTLOG_AUDIT_FAILURE 0x0010

/* A record as ReadEventLogA delivers it. After the structure: the source
 * name and the computer name (NUL-terminated ANSI), the user's SID at
 * UserSidOffset, NumStrings NUL-terminated strings at StringOffset, the
 * data at DataOffset, padding to a multiple of 4 bytes and a copy of
 * Length. Offsets are from the start of the record; times are seconds
 * since 1970-01-01 00:00 UTC. */
typedef struct _EVENTLOGRECORD {
    DWORD Length;
    DWORD Reserved; /* 0x654C664C, "LfLe" */
    DWORD RecordNumber;
    DWORD TimeGenerated;
    DWORD TimeWritten;
    DWORD EventID;
    WORD EventType;
    WORD NumStrings;
    WORD EventCategory;
    WORD ReservedFlags;
    DWORD ClosingRecordNumber;
    DWORD StringOffset;
    DWORD UserSidLength;
    DWORD UserSidOffset;
    DWORD DataLength;
    DWORD DataOffset;
} EVENTLOGRECORD, *PEVENTLOGRECORD;

ZQ_EXTERN_C_BEGIN

/* Opens a log by name (lpSourceName, see above). NULL on failure. */
ZQ_API HANDLE WINAPI OpenEventLogA(LPCSTR lpUNCServerName, LPCSTR lpSourceName);

/* Opens a backup file for reading. A missing file gives
 * ERROR_FILE_NOT_FOUND (or the path error), a file that is not an event log
 * ERROR_EVENTLOG_FILE_CORRUPT. NULL on failure. */
ZQ_API HANDLE WINAPI OpenBackupEventLogA(LPCSTR lpUNCServerName, LPCSTR lpFileName);

/* Copies the log to a new file; an existing file gives ERROR_ALREADY_EXISTS
 * and stays as it was. */
ZQ_API BOOL WINAPI BackupEventLogA(HANDLE hEventLog, LPCSTR lpBackupFileName);

/* Empties the log, first copying it to lpBackupFileName when that is
 * neither NULL nor empty (an existing file: ERROR_ALREADY_EXISTS, and the
 * log is not cleared). Record numbers start again at 1. */
ZQ_API BOOL WINAPI ClearEventLogA(HANDLE hEventLog, LPCSTR lpBackupFileName);

/* Closes a handle of OpenEventLogA or OpenBackupEventLogA. */
ZQ_API BOOL WINAPI CloseEventLog(HANDLE hEventLog);

/* Reads whole records into lpBuffer, as many as fit, from the position of
 * the last read (EVENTLOG_SEQUENTIAL_READ; the first read starts at the
 * oldest record going forwards, at the newest going backwards) or from
 * record number dwRecordOffset (EVENTLOG_SEEK_READ). *pnBytesRead receives
 * the bytes written. When not even the first record fits: FALSE with
 * ERROR_INSUFFICIENT_BUFFER and *pnMinNumberOfBytesNeeded its size. No
 * record left: ERROR_HANDLE_EOF. Bad flags, or a seek to a record that does
 * not exist: ERROR_INVALID_PARAMETER. */
ZQ_API BOOL WINAPI ReadEventLogA(HANDLE hEventLog, DWORD dwReadFlags, DWORD dwRecordOffset,
                                 LPVOID lpBuffer, DWORD nNumberOfBytesToRead, DWORD* pnBytesRead,
                                 DWORD* pnMinNumberOfBytesNeeded);

/* Number of records in the log, and the number of the oldest (0 when the
 * log is empty). */
ZQ_API BOOL WINAPI GetNumberOfEventLogRecords(HANDLE hEventLog, PDWORD NumberOfRecords);
ZQ_API BOOL WINAPI GetOldestEventLogRecord(HANDLE hEventLog, PDWORD OldestRecord);

/* An event source named lpSourceName (not empty), reporting to the
 * Application log. NULL on failure. */
ZQ_API HANDLE WINAPI RegisterEventSourceA(LPCSTR lpUNCServerName, LPCSTR lpSourceName);
ZQ_API BOOL WINAPI DeregisterEventSource(HANDLE hEventLog);

/* Appends a record. At most 256 strings and 61,440 bytes of data
 * (ERROR_INVALID_PARAMETER beyond, or when lpStrings / lpRawData is NULL
 * while its count is not 0); lpUserSid may be NULL, else it must be valid
 * (ERROR_INVALID_SID). */
ZQ_API BOOL WINAPI ReportEventA(HANDLE hEventLog, WORD wType, WORD wCategory, DWORD dwEventID,
                                PSID lpUserSid, WORD wNumStrings, DWORD dwDataSize,
                                LPCSTR* lpStrings, LPVOID lpRawData);

ZQ_EXTERN_C_END

#endif /* ZQ_PLATFORM_API_EVENTLOG_H */
