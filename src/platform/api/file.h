/* Win32 file, folder and path functions.
 *
 * Paths are DOS paths of the emulated system (C: is the prefix's drive_c
 * folder, Z: the Unix root) or plain Unix paths; '\' and '/' both separate,
 * and a name that does not exist with its exact case is found without regard
 * to case. Paths of MAX_PATH (260) characters or more fail with
 * ERROR_FILENAME_EXCED_RANGE.
 *
 * Functions that return a string into a caller's buffer follow Windows'
 * rule: when the text and its terminator fit, they are copied and the
 * length without the terminator is returned; otherwise the buffer is left
 * untouched and the size needed, terminator included, is returned. Every
 * function sets the last error on failure. */
#ifndef ZQ_PLATFORM_API_FILE_H
#define ZQ_PLATFORM_API_FILE_H

#include "platform/api/types.h"

/* File attributes. A file without any of the bits reports
 * FILE_ATTRIBUTE_NORMAL. */
#define FILE_ATTRIBUTE_READONLY 0x00000001
#define FILE_ATTRIBUTE_HIDDEN 0x00000002
#define FILE_ATTRIBUTE_SYSTEM 0x00000004
#define FILE_ATTRIBUTE_DIRECTORY 0x00000010
#define FILE_ATTRIBUTE_ARCHIVE 0x00000020
#define FILE_ATTRIBUTE_DEVICE 0x00000040
#define FILE_ATTRIBUTE_NORMAL 0x00000080
#define FILE_ATTRIBUTE_TEMPORARY 0x00000100
#define FILE_ATTRIBUTE_SPARSE_FILE 0x00000200
#define FILE_ATTRIBUTE_REPARSE_POINT 0x00000400
#define FILE_ATTRIBUTE_COMPRESSED 0x00000800
#define FILE_ATTRIBUTE_OFFLINE 0x00001000
#define FILE_ATTRIBUTE_NOT_CONTENT_INDEXED 0x00002000
#define FILE_ATTRIBUTE_ENCRYPTED 0x00004000
#define INVALID_FILE_ATTRIBUTES ((DWORD)-1)

/* Access rights. */
#ifndef GENERIC_READ
#define GENERIC_READ 0x80000000
#define GENERIC_WRITE 0x40000000
#define GENERIC_EXECUTE 0x20000000
#define GENERIC_ALL 0x10000000
#endif
#ifndef DELETE
#define DELETE 0x00010000
#endif
#define FILE_READ_DATA 0x0001
#define FILE_WRITE_DATA 0x0002
#define FILE_APPEND_DATA 0x0004
#define FILE_READ_ATTRIBUTES 0x0080
#define FILE_WRITE_ATTRIBUTES 0x0100

/* Share modes. */
#define FILE_SHARE_READ 0x00000001
#define FILE_SHARE_WRITE 0x00000002
#define FILE_SHARE_DELETE 0x00000004

/* Creation dispositions. */
#define CREATE_NEW 1
#define CREATE_ALWAYS 2
#define OPEN_EXISTING 3
#define OPEN_ALWAYS 4
#define TRUNCATE_EXISTING 5

/* Flags of CreateFileA (besides the attribute bits). */
#define FILE_FLAG_WRITE_THROUGH 0x80000000
#define FILE_FLAG_OVERLAPPED 0x40000000
#define FILE_FLAG_NO_BUFFERING 0x20000000
#define FILE_FLAG_RANDOM_ACCESS 0x10000000
#define FILE_FLAG_SEQUENTIAL_SCAN 0x08000000
#define FILE_FLAG_DELETE_ON_CLOSE 0x04000000
#define FILE_FLAG_BACKUP_SEMANTICS 0x02000000
#define FILE_FLAG_POSIX_SEMANTICS 0x01000000

/* File pointer. */
#define FILE_BEGIN 0
#define FILE_CURRENT 1
#define FILE_END 2
#define INVALID_SET_FILE_POINTER ((DWORD)-1)
#define INVALID_FILE_SIZE ((DWORD)0xFFFFFFFF)

/* MoveFileExA flags. */
#define MOVEFILE_REPLACE_EXISTING 0x00000001
#define MOVEFILE_COPY_ALLOWED 0x00000002
#define MOVEFILE_DELAY_UNTIL_REBOOT 0x00000004
#define MOVEFILE_WRITE_THROUGH 0x00000008

/* OpenFile styles (16-bit heritage). */
#define OF_READ 0x00000000
#define OF_WRITE 0x00000001
#define OF_READWRITE 0x00000002
#define OF_SHARE_COMPAT 0x00000000
#define OF_SHARE_EXCLUSIVE 0x00000010
#define OF_SHARE_DENY_WRITE 0x00000020
#define OF_SHARE_DENY_READ 0x00000030
#define OF_SHARE_DENY_NONE 0x00000040
#define OF_PARSE 0x00000100
#define OF_DELETE 0x00000200
#define OF_VERIFY 0x00000400
#define OF_CANCEL 0x00000800
#define OF_CREATE 0x00001000
#define OF_PROMPT 0x00002000
#define OF_EXIST 0x00004000
#define OF_REOPEN 0x00008000
#define OFS_MAXPATHNAME 128

typedef struct _OFSTRUCT {
    BYTE cBytes;     /* size of the structure, set by OpenFile */
    BYTE fFixedDisk; /* non-zero: the file is on a fixed disk */
    WORD nErrCode;   /* the Win32 error of a failed call, else 0 */
    WORD Reserved1;  /* DOS date of the file's last write */
    WORD Reserved2;  /* DOS time of the file's last write */
    CHAR szPathName[OFS_MAXPATHNAME];
} OFSTRUCT, *POFSTRUCT, *LPOFSTRUCT;

typedef struct _OVERLAPPED {
    ULONG_PTR Internal;
    ULONG_PTR InternalHigh;
    union {
        struct {
            DWORD Offset;
            DWORD OffsetHigh;
        };
        PVOID Pointer;
    };
    HANDLE hEvent;
} OVERLAPPED, *LPOVERLAPPED;

typedef struct _WIN32_FIND_DATAA {
    DWORD dwFileAttributes;
    FILETIME ftCreationTime;
    FILETIME ftLastAccessTime;
    FILETIME ftLastWriteTime;
    DWORD nFileSizeHigh;
    DWORD nFileSizeLow;
    DWORD dwReserved0;
    DWORD dwReserved1;
    CHAR cFileName[MAX_PATH];
    CHAR cAlternateFileName[14];
} WIN32_FIND_DATAA, *PWIN32_FIND_DATAA, *LPWIN32_FIND_DATAA;
typedef WIN32_FIND_DATAA WIN32_FIND_DATA;
typedef LPWIN32_FIND_DATAA LPWIN32_FIND_DATA;

ZQ_EXTERN_C_BEGIN

/* ---- Folders and paths ---- */

/* "C:\windows" and "C:\windows\system". */
ZQ_API UINT WINAPI GetWindowsDirectoryA(LPSTR lpBuffer, UINT uSize);
ZQ_API UINT WINAPI GetSystemDirectoryA(LPSTR lpBuffer, UINT uSize);

/* The process's current folder as a DOS path (the current folder is the
 * Unix one, shared by all threads). */
ZQ_API DWORD WINAPI GetCurrentDirectoryA(DWORD nBufferLength, LPSTR lpBuffer);
/* Fails with ERROR_FILE_NOT_FOUND / ERROR_PATH_NOT_FOUND for a missing
 * folder and ERROR_DIRECTORY for a file. */
ZQ_API BOOL WINAPI SetCurrentDirectoryA(LPCSTR lpPathName);

/* The full DOS path of lpFileName, resolved by text alone (the file need
 * not exist; wildcards pass). *lpFilePart (when lpFilePart is not NULL)
 * receives a pointer to the last name in lpBuffer, or NULL when the path
 * ends in a backslash; it is written only when the path fits. NULL gives
 * ERROR_INVALID_PARAMETER, "" ERROR_INVALID_NAME. */
ZQ_API DWORD WINAPI GetFullPathNameA(LPCSTR lpFileName, DWORD nBufferLength, LPSTR lpBuffer,
                                     LPSTR* lpFilePart);

/* The folder for temporary files with a trailing backslash: $TMP, else
 * $TEMP (either may be a DOS or a Unix path), else "C:\temp\". */
ZQ_API DWORD WINAPI GetTempPathA(DWORD nBufferLength, LPSTR lpBuffer);

/* Free space of the volume holding lpRootPathName (NULL: the current
 * folder; any folder is accepted, not only roots). Sectors are 512 bytes.
 * Kept from Windows 95: a volume over 2 GB is reported with 32 KB clusters
 * (64 sectors) and at most 65535 clusters total and free, i.e. at most
 * 2,147,450,880 bytes, so that programs computing clusters * bytes in 32
 * bits stay correct. Out-pointers may be NULL. */
ZQ_API BOOL WINAPI GetDiskFreeSpaceA(LPCSTR lpRootPathName, LPDWORD lpSectorsPerCluster,
                                     LPDWORD lpBytesPerSector, LPDWORD lpNumberOfFreeClusters,
                                     LPDWORD lpTotalNumberOfClusters);
/* Full 64-bit byte counts: free to this user, total, free in all.
 * Out-pointers may be NULL. */
ZQ_API BOOL WINAPI GetDiskFreeSpaceExA(LPCSTR lpDirectoryName,
                                       PULARGE_INTEGER lpFreeBytesAvailableToCaller,
                                       PULARGE_INTEGER lpTotalNumberOfBytes,
                                       PULARGE_INTEGER lpTotalNumberOfFreeBytes);

/* ---- Attributes ---- */

/* The attribute bits, or INVALID_FILE_ATTRIBUTES with the last error.
 * Read-only is the absence of the owner's write permission; hidden,
 * system, archive, temporary, offline and not-content-indexed are kept in
 * the file's user.DOSATTRIB extended attribute where the file system allows
 * one (elsewhere they read as clear). Folders report
 * FILE_ATTRIBUTE_DIRECTORY plus their kept bits. */
ZQ_API DWORD WINAPI GetFileAttributesA(LPCSTR lpFileName);
/* Replaces the settable bits (read-only, hidden, system, archive, normal,
 * temporary, offline, not-content-indexed; others are ignored). Succeeds
 * without keeping the bits that need an extended attribute where the file
 * system refuses one. */
ZQ_API BOOL WINAPI SetFileAttributesA(LPCSTR lpFileName, DWORD dwFileAttributes);

/* ---- Files ---- */

/* Opens or creates a file; returns its handle or INVALID_HANDLE_VALUE.
 * Dispositions: CREATE_NEW fails with ERROR_FILE_EXISTS on an existing
 * file; CREATE_ALWAYS replaces it and OPEN_ALWAYS opens it, both then
 * setting the last error to ERROR_ALREADY_EXISTS; OPEN_EXISTING and
 * TRUNCATE_EXISTING (which needs GENERIC_WRITE) fail with
 * ERROR_FILE_NOT_FOUND / ERROR_PATH_NOT_FOUND on a missing file. Every
 * other success sets the last error to 0. A new file receives the
 * attribute bits of dwFlagsAndAttributes plus FILE_ATTRIBUTE_ARCHIVE.
 * Replacing a hidden or system file without naming those attributes, or
 * opening a read-only file for writing, fails with ERROR_ACCESS_DENIED.
 * A folder opens only with FILE_FLAG_BACKUP_SEMANTICS (for its times).
 * Share modes are enforced between the handles of this process only.
 * FILE_FLAG_DELETE_ON_CLOSE removes the file when this handle closes.
 * Security attributes and the template are accepted and not used. */
ZQ_API HANDLE WINAPI CreateFileA(LPCSTR lpFileName, DWORD dwDesiredAccess, DWORD dwShareMode,
                                 LPSECURITY_ATTRIBUTES lpSecurityAttributes,
                                 DWORD dwCreationDisposition, DWORD dwFlagsAndAttributes,
                                 HANDLE hTemplateFile);

/* Read and write at the file pointer, or at the offset an OVERLAPPED
 * names (the call still completes before it returns, and the pointer ends
 * after the data). *lpNumberOfBytesRead / *lpNumberOfBytesWritten (may be
 * NULL) is set to 0 first and then to the count moved. Reading at the end
 * of the file succeeds with 0 bytes. A failing write (ERROR_DISK_FULL ...)
 * reports the bytes written before the failure. */
ZQ_API BOOL WINAPI ReadFile(HANDLE hFile, LPVOID lpBuffer, DWORD nNumberOfBytesToRead,
                            LPDWORD lpNumberOfBytesRead, LPOVERLAPPED lpOverlapped);
ZQ_API BOOL WINAPI WriteFile(HANDLE hFile, LPCVOID lpBuffer, DWORD nNumberOfBytesToWrite,
                             LPDWORD lpNumberOfBytesWritten, LPOVERLAPPED lpOverlapped);

/* Moves the file pointer. Without lpDistanceToMoveHigh the distance is a
 * signed 32-bit value and a resulting position that does not fit in 32
 * bits fails with ERROR_INVALID_PARAMETER; with it, the distance is the 64-bit
 * (high, low) pair and *lpDistanceToMoveHigh receives the new position's
 * high part. Returns the low part of the new position; on failure
 * INVALID_SET_FILE_POINTER with the last error set (ERROR_NEGATIVE_SEEK
 * before the start of the file) and the position and *high unchanged. When
 * a valid position's low part equals INVALID_SET_FILE_POINTER the last
 * error is set to NO_ERROR so callers can tell the two apart. */
ZQ_API DWORD WINAPI SetFilePointer(HANDLE hFile, LONG lDistanceToMove, PLONG lpDistanceToMoveHigh,
                                   DWORD dwMoveMethod);
/* Cuts or extends the file at the file pointer. */
ZQ_API BOOL WINAPI SetEndOfFile(HANDLE hFile);
/* Low 32 bits of the size; *lpFileSizeHigh (may be NULL) the high ones.
 * INVALID_FILE_SIZE on failure; a size whose low part is 0xFFFFFFFF sets
 * the last error to NO_ERROR. */
ZQ_API DWORD WINAPI GetFileSize(HANDLE hFile, LPDWORD lpFileSizeHigh);
/* Writes the file through to the disk; needs write access. */
ZQ_API BOOL WINAPI FlushFileBuffers(HANDLE hFile);
/* Creation (the birth time where the file system records one, else the
 * status-change time), last access and last write; NULL pointers are
 * skipped. */
ZQ_API BOOL WINAPI GetFileTime(HANDLE hFile, LPFILETIME lpCreationTime, LPFILETIME lpLastAccessTime,
                               LPFILETIME lpLastWriteTime);
/* Sets last access and last write (NULL, or a time of 0, leaves one as it
 * is); the creation time cannot be set on Unix and is ignored. Needs write
 * access. */
ZQ_API BOOL WINAPI SetFileTime(HANDLE hFile, const FILETIME* lpCreationTime,
                               const FILETIME* lpLastAccessTime, const FILETIME* lpLastWriteTime);

/* Removes a file. ERROR_ACCESS_DENIED for a folder or a read-only file,
 * ERROR_SHARING_VIOLATION while a handle of this process holds it without
 * FILE_SHARE_DELETE. */
ZQ_API BOOL WINAPI DeleteFileA(LPCSTR lpFileName);
/* Renames or moves a file or folder; fails with ERROR_ALREADY_EXISTS when
 * the new name exists (a change of case only is allowed). A file moves
 * between file systems by copying. */
ZQ_API BOOL WINAPI MoveFileA(LPCSTR lpExistingFileName, LPCSTR lpNewFileName);
/* MOVEFILE_REPLACE_EXISTING replaces an existing file (not a folder, not a
 * read-only file); MOVEFILE_COPY_ALLOWED copies between file systems
 * (without it: ERROR_NOT_SAME_DEVICE); MOVEFILE_WRITE_THROUGH writes the
 * folder through to disk; MOVEFILE_DELAY_UNTIL_REBOOT is not supported
 * (ERROR_NOT_SUPPORTED). */
ZQ_API BOOL WINAPI MoveFileExA(LPCSTR lpExistingFileName, LPCSTR lpNewFileName, DWORD dwFlags);
/* Copies contents, attributes and last-write time. With bFailIfExists an
 * existing target fails with ERROR_FILE_EXISTS; a partly written target is
 * removed. */
ZQ_API BOOL WINAPI CopyFileA(LPCSTR lpExistingFileName, LPCSTR lpNewFileName, BOOL bFailIfExists);

/* ---- Folders ---- */

/* ERROR_ALREADY_EXISTS when the name exists, ERROR_PATH_NOT_FOUND when
 * the parent does not. The security attributes are accepted and not used. */
ZQ_API BOOL WINAPI CreateDirectoryA(LPCSTR lpPathName, LPSECURITY_ATTRIBUTES lpSecurityAttributes);
/* ERROR_DIR_NOT_EMPTY, ERROR_DIRECTORY for a file, ERROR_SHARING_VIOLATION
 * for the current folder. */
ZQ_API BOOL WINAPI RemoveDirectoryA(LPCSTR lpPathName);

/* Lists the names in a folder that match the DOS wildcard pattern of the
 * last path component ('*' any run, '?' one character or none before a
 * dot or the end, "*.*" everything including names without a dot, "*."
 * names without a dot), without regard to case. A folder other than a
 * drive's root lists "." and ".." first; the rest follow in case-blind
 * name order. cAlternateFileName holds a generated 8.3 name when the
 * name is not one itself, else "". The listing is taken when
 * FindFirstFileA runs. No match: ERROR_FILE_NOT_FOUND; missing folder:
 * ERROR_PATH_NOT_FOUND; past the last name: ERROR_NO_MORE_FILES. */
ZQ_API HANDLE WINAPI FindFirstFileA(LPCSTR lpFileName, LPWIN32_FIND_DATAA lpFindFileData);
ZQ_API BOOL WINAPI FindNextFileA(HANDLE hFindFile, LPWIN32_FIND_DATAA lpFindFileData);
ZQ_API BOOL WINAPI FindClose(HANDLE hFindFile);

/* Makes "<path>\<up to 3 chars of prefix><hex>.TMP" in lpTempFileName
 * (MAX_PATH bytes), the path made full. A non-zero uUnique is used as the
 * number (low 16 bits) and nothing is created; 0 takes numbers from the
 * tick count until a new file can be created (and it is). Returns the
 * number used, 0 on failure (ERROR_DIRECTORY for a missing folder,
 * ERROR_BUFFER_OVERFLOW when the name would not fit). */
ZQ_API UINT WINAPI GetTempFileNameA(LPCSTR lpPathName, LPCSTR lpPrefixString, UINT uUnique,
                                    LPSTR lpTempFileName);

/* ---- 16-bit file functions ---- */

/* Opens, creates, tests, deletes or parses a file name according to
 * uStyle. lpReOpenBuff receives the full path (szPathName, at most 127
 * characters), the error (nErrCode, 0 on success) and the file's DOS date
 * and time. A name without a folder is searched for in the current folder,
 * the executable's folder, C:\windows\system and C:\windows. Returns the
 * file handle, 1 for OF_EXIST and OF_DELETE, 0 for OF_PARSE, HFILE_ERROR
 * on failure. */
ZQ_API HFILE WINAPI OpenFile(LPCSTR lpFileName, LPOFSTRUCT lpReOpenBuff, UINT uStyle);
/* Opens an existing file; iReadWrite is OF_READ/OF_WRITE/OF_READWRITE with
 * an OF_SHARE_ mode. */
ZQ_API HFILE WINAPI _lopen(LPCSTR lpPathName, int iReadWrite);
/* Creates or empties a file for reading and writing; iAttribute 0 normal,
 * 1 read-only, 2 hidden, 4 system. */
ZQ_API HFILE WINAPI _lcreat(LPCSTR lpPathName, int iAttribute);
/* Bytes read or written, or HFILE_ERROR as UINT. Writing 0 bytes cuts the
 * file at the file pointer. */
ZQ_API UINT WINAPI _lread(HFILE hFile, LPVOID lpBuffer, UINT uBytes);
ZQ_API UINT WINAPI _lwrite(HFILE hFile, LPCCH lpBuffer, UINT uBytes);
/* The new position, or HFILE_ERROR. */
ZQ_API LONG WINAPI _llseek(HFILE hFile, LONG lOffset, int iOrigin);
/* 0, or HFILE_ERROR for a handle that is not open. */
ZQ_API HFILE WINAPI _lclose(HFILE hFile);

ZQ_EXTERN_C_END

#endif /* ZQ_PLATFORM_API_FILE_H */
