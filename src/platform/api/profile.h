/* Win32 profile (INI) file functions, ANSI forms.
 *
 * A profile file holds sections ("[name]" lines) of entries ("key=value"
 * lines). Files are read and written as Windows does: names are found
 * without regard to case, blanks around names and values and one pair of
 * matching quotes around a value are dropped, ';' lines are comments, lines
 * end with CR LF, LF or CR, and of two equal section names or two equal keys
 * in one section the first counts. A write changes only the lines it
 * concerns; every other byte of the file stays as it was.
 *
 * File names: a name without '\' or '/' is a file in the Windows folder
 * (C:\windows); other names are DOS or Unix paths. A NULL file name means
 * "win.ini". A missing file reads as an empty one.
 *
 * Every function is safe to call from several threads and several
 * processes at once: writes are atomic (a reader or a crash never sees a
 * half-written file) and two writers of one file never lose each other's
 * changes. Reads are served from a cache that notices changes on disk.
 *
 * Sizes are in bytes (single-byte characters) and include the terminating
 * zero bytes. Lists (section names, keys, "key=value" lines) are sequences
 * of zero-terminated strings followed by one more zero byte. A list that
 * does not fit is cut to nSize - 2 bytes, followed by two zero bytes, and
 * the return value is nSize - 2; a list that fits exactly counts as cut.
 * Buffers are never written beyond nSize bytes; with nSize 0 nothing is
 * written. */
#ifndef ZQ_PLATFORM_API_PROFILE_H
#define ZQ_PLATFORM_API_PROFILE_H

#include "platform/api/types.h"

ZQ_EXTERN_C_BEGIN

/* Reads one value into lpReturnedString (at most nSize - 1 characters and a
 * zero byte) and returns the number of characters placed there, without the
 * zero byte. A missing section or key, or an empty key name, delivers
 * lpDefault (NULL reads as ""; trailing spaces and a pair of quotes around
 * it are dropped); a key that is present with an empty value delivers "".
 * With lpAppName NULL the buffer receives the list of section names (empty
 * names left out); with lpKeyName NULL the list of keys of the section, or
 * lpDefault when that list comes out empty. Sets ERROR_FILE_NOT_FOUND when
 * the file is missing; otherwise the last error is left alone. */
ZQ_API DWORD WINAPI GetPrivateProfileStringA(LPCSTR lpAppName, LPCSTR lpKeyName, LPCSTR lpDefault,
                                             LPSTR lpReturnedString, DWORD nSize,
                                             LPCSTR lpFileName);

/* Sets the value of a key, adding the key after the section's last entry
 * and the section at the end of the file when they are missing; the file is
 * created when it does not exist (its folder must). lpString NULL removes
 * the key; lpKeyName NULL removes the whole section (lpString is then not
 * used). A removal in a file that does not exist creates it empty. Every
 * write reaches the file before the call returns (a crash of the process
 * leaves the old or the new file), but is not synced to the disk: with all
 * three names NULL the file and its folder are synced instead, after which
 * the file also survives a power failure. Returns FALSE and sets the
 * last error on failure: ERROR_FILE_NOT_FOUND for a NULL section with a key
 * or value, ERROR_PATH_NOT_FOUND for a missing folder, ERROR_ACCESS_DENIED
 * for a read-only file, ERROR_SHARING_VIOLATION when another writer holds
 * the file for more than a few seconds, ERROR_DISK_FULL; the file is then
 * unchanged. */
ZQ_API BOOL WINAPI WritePrivateProfileStringA(LPCSTR lpAppName, LPCSTR lpKeyName, LPCSTR lpString,
                                              LPCSTR lpFileName);

/* Reads a value as a number: optional blanks, an optional sign, then
 * decimal digits, or "0x" and hexadecimal, "0o" and octal, "0b" and binary
 * digits, up to the first other character; the value wraps at 32 bits.
 * Text without digits reads as 0. A missing key or an empty value delivers
 * nDefault. */
ZQ_API UINT WINAPI GetPrivateProfileIntA(LPCSTR lpAppName, LPCSTR lpKeyName, INT nDefault,
                                         LPCSTR lpFileName);

/* The list of section names, as GetPrivateProfileStringA with a NULL
 * section. Returns the number of bytes placed, without the final zero. */
ZQ_API DWORD WINAPI GetPrivateProfileSectionNamesA(LPSTR lpszReturnBuffer, DWORD nSize,
                                                   LPCSTR lpFileName);

/* The lines of a section as a list of "key=value" strings (names and values
 * trimmed, quotes kept; a line without '=' as it stands; comments and blank
 * lines left out). A missing section gives an empty list (two zero bytes).
 * lpAppName or lpFileName NULL: returns 0 with an empty list, and sets
 * ERROR_FILE_NOT_FOUND for the missing file name. */
ZQ_API DWORD WINAPI GetPrivateProfileSectionA(LPCSTR lpAppName, LPSTR lpReturnedString, DWORD nSize,
                                              LPCSTR lpFileName);

/* Replaces the lines of a section (comments in it included; blank lines
 * at its end stay) by the strings of the list lpString, written as given;
 * adds the section at the end of the file when it is missing. lpString NULL
 * removes the section. Failures as WritePrivateProfileStringA; a NULL
 * section gives ERROR_INVALID_PARAMETER. */
ZQ_API BOOL WINAPI WritePrivateProfileSectionA(LPCSTR lpAppName, LPCSTR lpString,
                                               LPCSTR lpFileName);

/* The same, on win.ini in the Windows folder. */
ZQ_API DWORD WINAPI GetProfileStringA(LPCSTR lpAppName, LPCSTR lpKeyName, LPCSTR lpDefault,
                                      LPSTR lpReturnedString, DWORD nSize);
ZQ_API UINT WINAPI GetProfileIntA(LPCSTR lpAppName, LPCSTR lpKeyName, INT nDefault);
ZQ_API BOOL WINAPI WriteProfileStringA(LPCSTR lpAppName, LPCSTR lpKeyName, LPCSTR lpString);

ZQ_EXTERN_C_END

#endif /* ZQ_PLATFORM_API_PROFILE_H */
