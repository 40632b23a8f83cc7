/* Win32 registry functions (ANSI forms, the Ex family and the 16-bit forms).
 *
 * The registry is a tree of keys. A key has a name, an optional class
 * string, a last-write time, subkeys and named values; the value with the
 * empty name is the key's default value. Key and value names compare without
 * regard to case (Windows-1252 letters fold too) and keep the case they were
 * created with. Value data keeps its type and its exact bytes.
 *
 * Every function returns its result code (ERROR_SUCCESS, or a Win32 error
 * such as ERROR_FILE_NOT_FOUND 2, ERROR_ACCESS_DENIED 5, ERROR_INVALID_HANDLE
 * 6, ERROR_INVALID_PARAMETER 87, ERROR_BAD_PATHNAME 161, ERROR_MORE_DATA
 * 234, ERROR_NO_MORE_ITEMS 259, ERROR_KEY_DELETED 1018) and leaves the
 * thread's last error alone, as Windows does. Sizes called cb... are bytes,
 * cch... are characters; whether the terminator counts is said per function.
 *
 * Safe across threads and processes: every call is one short transaction on
 * a database shared by all processes of the emulated system, so concurrent
 * writers never lose each other's updates and a process killed in the middle
 * of a call leaves the registry as it was before or after that call. When
 * another process holds the database locked for longer than a few seconds, a
 * call gives up with ERROR_REGISTRY_IO_FAILED instead of waiting forever.
 *
 * Limits: a key name (one path component) holds at most 255 characters, a
 * value name at most 16383, value data at most 1 MiB; longer ones are refused
 * with ERROR_INVALID_PARAMETER. */
#ifndef ZQ_PLATFORM_API_REGISTRY_H
#define ZQ_PLATFORM_API_REGISTRY_H

#include "platform/api/types.h"

/* Predefined keys. Only the low 32 bits are looked at, as on 64-bit
 * Windows. HKEY_CURRENT_USER is HKEY_USERS\<login name of the process's
 * user>; HKEY_CLASSES_ROOT is HKEY_LOCAL_MACHINE\SOFTWARE\Classes;
 * HKEY_CURRENT_CONFIG is HKEY_LOCAL_MACHINE\SYSTEM\CurrentControlSet\
 * Hardware Profiles\Current. HKEY_PERFORMANCE_DATA and HKEY_DYN_DATA hold
 * nothing here: every call on them fails with ERROR_INVALID_HANDLE (closing
 * them succeeds). */
#define HKEY_CLASSES_ROOT ((HKEY)(ULONG_PTR)((LONG)0x80000000))
#define HKEY_CURRENT_USER ((HKEY)(ULONG_PTR)((LONG)0x80000001))
#define HKEY_LOCAL_MACHINE ((HKEY)(ULONG_PTR)((LONG)0x80000002))
#define HKEY_USERS ((HKEY)(ULONG_PTR)((LONG)0x80000003))
#define HKEY_PERFORMANCE_DATA ((HKEY)(ULONG_PTR)((LONG)0x80000004))
#define HKEY_CURRENT_CONFIG ((HKEY)(ULONG_PTR)((LONG)0x80000005))
#define HKEY_DYN_DATA ((HKEY)(ULONG_PTR)((LONG)0x80000006))

/* Value types. Any other number is accepted and kept as well. */
#define REG_NONE 0
#define REG_SZ 1
#define REG_EXPAND_SZ 2
#define REG_BINARY 3
#define REG_DWORD 4
#define REG_DWORD_LITTLE_ENDIAN 4
#define REG_DWORD_BIG_ENDIAN 5
#define REG_LINK 6
#define REG_MULTI_SZ 7
#define REG_RESOURCE_LIST 8
#define REG_FULL_RESOURCE_DESCRIPTOR 9
#define REG_RESOURCE_REQUIREMENTS_LIST 10
#define REG_QWORD 11
#define REG_QWORD_LITTLE_ENDIAN 11

/* RegCreateKeyExA options and dispositions. */
#define REG_OPTION_RESERVED 0x00000000L
#define REG_OPTION_NON_VOLATILE 0x00000000L
#define REG_OPTION_VOLATILE 0x00000001L
#define REG_OPTION_CREATE_LINK 0x00000002L
#define REG_OPTION_BACKUP_RESTORE 0x00000004L
#define REG_OPTION_OPEN_LINK 0x00000008L
#define REG_CREATED_NEW_KEY 0x00000001L
#define REG_OPENED_EXISTING_KEY 0x00000002L

/* Access rights of a key handle (REGSAM). GENERIC_* and MAXIMUM_ALLOWED are
 * mapped to the key rights; a handle opened without a right fails the calls
 * that need it with ERROR_ACCESS_DENIED: reading values and RegQueryInfoKeyA
 * need KEY_QUERY_VALUE, changing values KEY_SET_VALUE, RegEnumKeyExA
 * KEY_ENUMERATE_SUB_KEYS. Opening, creating and deleting subkeys do not look
 * at the parent's rights, as on Windows. */
#define KEY_QUERY_VALUE (0x0001)
#define KEY_SET_VALUE (0x0002)
#define KEY_CREATE_SUB_KEY (0x0004)
#define KEY_ENUMERATE_SUB_KEYS (0x0008)
#define KEY_NOTIFY (0x0010)
#define KEY_CREATE_LINK (0x0020)
#define KEY_WOW64_64KEY (0x0100)
#define KEY_WOW64_32KEY (0x0200)
#define KEY_WOW64_RES (0x0300)
#define KEY_READ                                                                      \
    ((STANDARD_RIGHTS_READ | KEY_QUERY_VALUE | KEY_ENUMERATE_SUB_KEYS | KEY_NOTIFY) & \
     (~SYNCHRONIZE))
#define KEY_WRITE ((STANDARD_RIGHTS_WRITE | KEY_SET_VALUE | KEY_CREATE_SUB_KEY) & (~SYNCHRONIZE))
#define KEY_EXECUTE ((KEY_READ) & (~SYNCHRONIZE))
#define KEY_ALL_ACCESS                                                             \
    ((STANDARD_RIGHTS_ALL | KEY_QUERY_VALUE | KEY_SET_VALUE | KEY_CREATE_SUB_KEY | \
      KEY_ENUMERATE_SUB_KEYS | KEY_NOTIFY | KEY_CREATE_LINK) &                     \
     (~SYNCHRONIZE))

ZQ_EXTERN_C_BEGIN

/* Opens hKey\lpSubKey. lpSubKey NULL or "" opens hKey again: a predefined
 * key comes back as itself, any other as a new handle. The path is split at
 * backslashes; empty components (doubled or trailing backslashes) are
 * skipped, a leading backslash gives ERROR_BAD_PATHNAME. On success
 * *phkResult receives the handle. phkResult NULL: ERROR_INVALID_PARAMETER;
 * hKey invalid: ERROR_INVALID_HANDLE with *phkResult untouched; any other
 * failure sets *phkResult to NULL (ERROR_FILE_NOT_FOUND when a component is
 * missing, ERROR_KEY_DELETED when hKey was deleted). ulOptions is ignored. */
ZQ_API LONG WINAPI RegOpenKeyExA(HKEY hKey, LPCSTR lpSubKey, DWORD ulOptions, REGSAM samDesired,
                                 PHKEY phkResult);

/* Opens or creates hKey\lpSubKey and every missing key on the way, in one
 * transaction. lpSubKey NULL counts as "". lpClass (may be NULL) is kept
 * with a key this call creates. dwOptions: REG_OPTION_VOLATILE makes the
 * keys this call creates vanish at the next boot of the machine; below a
 * volatile key only volatile keys can be created (else
 * ERROR_CHILD_MUST_BE_VOLATILE); REG_OPTION_CREATE_LINK (links are not
 * supported) and unknown bits give ERROR_INVALID_PARAMETER. On success
 * *phkResult receives a new handle and *lpdwDisposition (if not NULL)
 * REG_CREATED_NEW_KEY when the last key was created, else
 * REG_OPENED_EXISTING_KEY ("" opens the existing hKey). phkResult NULL:
 * ERROR_BADKEY. On failure the out-parameters are untouched. */
ZQ_API LONG WINAPI RegCreateKeyExA(HKEY hKey, LPCSTR lpSubKey, DWORD Reserved, LPSTR lpClass,
                                   DWORD dwOptions, REGSAM samDesired,
                                   const LPSECURITY_ATTRIBUTES lpSecurityAttributes,
                                   PHKEY phkResult, LPDWORD lpdwDisposition);

/* Reads value lpValueName (NULL or "" is the default value). lpReserved must
 * be NULL and lpcbData may be NULL only when lpData is (else
 * ERROR_INVALID_PARAMETER). When the data fits in *lpcbData bytes it is
 * copied, *lpcbData is set to its size and *lpType to its type; a string
 * (REG_SZ, REG_EXPAND_SZ, REG_MULTI_SZ) whose last byte is not NUL gets a NUL
 * after it when there is room, not counted. When it does not fit:
 * ERROR_MORE_DATA, lpData untouched, *lpcbData = the size needed, *lpType
 * set. lpData NULL: size and type only. A missing value gives
 * ERROR_FILE_NOT_FOUND with *lpType = 0 and, when lpData is NULL,
 * *lpcbData = 0. */
ZQ_API LONG WINAPI RegQueryValueExA(HKEY hKey, LPCSTR lpValueName, LPDWORD lpReserved,
                                    LPDWORD lpType, LPBYTE lpData, LPDWORD lpcbData);

/* Creates or replaces a value with dwType and cbData bytes of lpData. A
 * replaced value keeps its name's case and its place in the enumeration.
 * Keeps a Windows quirk: for a string type whose last byte is not NUL while
 * the byte after the given data is, that NUL is stored too (the caller
 * "forgot to count the terminator"); so the byte lpData[cbData] is read.
 * lpData NULL with cbData > 0: ERROR_NOACCESS. */
ZQ_API LONG WINAPI RegSetValueExA(HKEY hKey, LPCSTR lpValueName, DWORD Reserved, DWORD dwType,
                                  const BYTE* lpData, DWORD cbData);

/* Subkey number dwIndex, in the order of their upper-cased names. lpName and
 * lpcchName are required (ERROR_INVALID_PARAMETER). When the name and its
 * terminator fit in *lpcchName characters the name is copied and *lpcchName
 * set to its length without the terminator; else ERROR_MORE_DATA and both
 * untouched. lpClass/lpcchClass work the same for the key's class (a class
 * buffer without its size is ERROR_INVALID_PARAMETER). lpftLastWriteTime
 * (may be NULL) receives the subkey's last write time. Past the last
 * subkey: ERROR_NO_MORE_ITEMS. */
ZQ_API LONG WINAPI RegEnumKeyExA(HKEY hKey, DWORD dwIndex, LPSTR lpName, LPDWORD lpcchName,
                                 LPDWORD lpReserved, LPSTR lpClass, LPDWORD lpcchClass,
                                 PFILETIME lpftLastWriteTime);

/* Value number dwIndex, in the order the values were created (a value that
 * is deleted and set again moves to the end). lpValueName and
 * lpcchValueName are required. Data as in RegQueryValueExA. When the data
 * does not fit: ERROR_MORE_DATA, *lpcbData = size needed, *lpType set, name
 * and data untouched. When only the name does not fit: ERROR_MORE_DATA with
 * the name cut to *lpcchValueName - 1 characters plus NUL, *lpcchValueName
 * untouched, data, size and type delivered. On success *lpcchValueName is
 * the name's length without the terminator. */
ZQ_API LONG WINAPI RegEnumValueA(HKEY hKey, DWORD dwIndex, LPSTR lpValueName,
                                 LPDWORD lpcchValueName, LPDWORD lpReserved, LPDWORD lpType,
                                 LPBYTE lpData, LPDWORD lpcbData);

/* Removes a value (NULL or "" is the default value); ERROR_FILE_NOT_FOUND
 * when there is none. */
ZQ_API LONG WINAPI RegDeleteValueA(HKEY hKey, LPCSTR lpValueName);

/* Removes hKey\lpSubKey ("" removes hKey itself) with its values. A key
 * that has subkeys is refused with ERROR_ACCESS_DENIED, as on Windows NT, and
 * so are the keys behind the predefined handles. lpSubKey NULL:
 * ERROR_INVALID_PARAMETER. Handles still open on the removed key fail
 * afterwards with ERROR_KEY_DELETED. */
ZQ_API LONG WINAPI RegDeleteKeyA(HKEY hKey, LPCSTR lpSubKey);

/* Removes everything below hKey\lpSubKey: its subkeys and values, and with
 * a non-empty lpSubKey that key itself; lpSubKey NULL or "" keeps hKey and
 * empties it. One transaction: when a key of the tree cannot be deleted (a
 * key behind a predefined handle) nothing is, and the result is
 * ERROR_ACCESS_DENIED. A missing key: ERROR_FILE_NOT_FOUND. */
ZQ_API LONG WINAPI RegDeleteTreeA(HKEY hKey, LPCSTR lpSubKey);

/* Closes a handle. Closing a predefined key succeeds and does nothing; a
 * handle that is not an open key gives ERROR_INVALID_HANDLE. */
ZQ_API LONG WINAPI RegCloseKey(HKEY hKey);

/* Makes every change committed so far durable against a power failure (a
 * change is always durable against the crash of its process). */
ZQ_API LONG WINAPI RegFlushKey(HKEY hKey);

/* Counts and sizes of a key; every out-parameter may be NULL. Lengths of
 * names and classes are characters without the terminator. *lpcbMaxValueLen
 * counts string data as Windows does, two bytes per character. The class
 * buffer works as on Windows: lpClass without lpcchClass is
 * ERROR_INVALID_PARAMETER; *lpcchClass 0 leaves the buffer untouched and
 * sets 0; a buffer too small gets the class cut to *lpcchClass - 1
 * characters plus NUL, *lpcchClass the number copied, and ERROR_MORE_DATA.
 * *lpcbSecurityDescriptor is 0: keys carry no security descriptor. */
ZQ_API LONG WINAPI RegQueryInfoKeyA(HKEY hKey, LPSTR lpClass, LPDWORD lpcchClass,
                                    LPDWORD lpReserved, LPDWORD lpcSubKeys,
                                    LPDWORD lpcbMaxSubKeyLen, LPDWORD lpcbMaxClassLen,
                                    LPDWORD lpcValues, LPDWORD lpcbMaxValueNameLen,
                                    LPDWORD lpcbMaxValueLen, LPDWORD lpcbSecurityDescriptor,
                                    PFILETIME lpftLastWriteTime);

/* 16-bit forms. */

/* As RegOpenKeyExA with full access, except that lpSubKey NULL or "" hands
 * back hKey itself without looking at it (RegOpenKeyA(NULL, NULL, &k)
 * succeeds with k = NULL). hKey invalid: *phkResult untouched. */
ZQ_API LONG WINAPI RegOpenKeyA(HKEY hKey, LPCSTR lpSubKey, PHKEY phkResult);

/* As RegCreateKeyExA with full access and no class; phkResult NULL gives
 * ERROR_INVALID_PARAMETER. */
ZQ_API LONG WINAPI RegCreateKeyA(HKEY hKey, LPCSTR lpSubKey, PHKEY phkResult);

/* Reads the default value of hKey\lpSubKey (NULL or "": of hKey) as
 * RegQueryValueExA would, sizes in bytes with the terminator. A key without
 * a default value reads as the empty string (*lpcbData = 1). A missing
 * subkey: ERROR_FILE_NOT_FOUND with everything untouched. lpData without
 * lpcbData: ERROR_INVALID_PARAMETER. */
ZQ_API LONG WINAPI RegQueryValueA(HKEY hKey, LPCSTR lpSubKey, LPSTR lpData, PLONG lpcbData);

/* Sets the default value of hKey\lpSubKey (created when missing) to the
 * string lpData. cbData is ignored: the string's length plus its terminator
 * is stored, as on Windows. dwType other than REG_SZ or lpData NULL:
 * ERROR_INVALID_PARAMETER. */
ZQ_API LONG WINAPI RegSetValueA(HKEY hKey, LPCSTR lpSubKey, DWORD dwType, LPCSTR lpData,
                                DWORD cbData);

/* As RegEnumKeyExA with a buffer of cchName characters. */
ZQ_API LONG WINAPI RegEnumKeyA(HKEY hKey, DWORD dwIndex, LPSTR lpName, DWORD cchName);

ZQ_EXTERN_C_END

#endif /* ZQ_PLATFORM_API_REGISTRY_H */
