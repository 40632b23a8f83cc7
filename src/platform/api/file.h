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

ZQ_EXTERN_C_END

#endif /* ZQ_PLATFORM_API_FILE_H */
