/* Resources of modules: finding, loading and string tables.
 *
 * Every module built with resources carries the compiled resource script
 * (.res) in its ".rsrc" section and registers it when it is loaded (see
 * cmake/ZqResources.cmake); the functions below read that data in place.
 * A NULL module handle means the executable. Handles stay valid while the
 * module is loaded; data is read-only.
 *
 * Types and names are integer resources (MAKEINTRESOURCEA), "#123", or
 * names compared without regard to case. FindResourceA picks the language
 * as Windows does: neutral, then the default neutral languages, then US
 * English, then the first one present. FindResourceExA with a specific
 * language takes that language, then its primary language, then the
 * neutral ones, and fails with ERROR_RESOURCE_LANG_NOT_FOUND otherwise.
 * Failures: NULL with ERROR_RESOURCE_DATA_NOT_FOUND (module has no
 * resources), ERROR_RESOURCE_TYPE_NOT_FOUND, ERROR_RESOURCE_NAME_NOT_FOUND. */
#ifndef ZQ_PLATFORM_API_RESOURCE_H
#define ZQ_PLATFORM_API_RESOURCE_H

#include "platform/api/types.h"

#define RT_CURSOR MAKEINTRESOURCEA(1)
#define RT_BITMAP MAKEINTRESOURCEA(2)
#define RT_ICON MAKEINTRESOURCEA(3)
#define RT_MENU MAKEINTRESOURCEA(4)
#define RT_DIALOG MAKEINTRESOURCEA(5)
#define RT_STRING MAKEINTRESOURCEA(6)
#define RT_FONTDIR MAKEINTRESOURCEA(7)
#define RT_FONT MAKEINTRESOURCEA(8)
#define RT_ACCELERATOR MAKEINTRESOURCEA(9)
#define RT_RCDATA MAKEINTRESOURCEA(10)
#define RT_MESSAGETABLE MAKEINTRESOURCEA(11)
#define RT_GROUP_CURSOR MAKEINTRESOURCEA(12)
#define RT_GROUP_ICON MAKEINTRESOURCEA(14)
#define RT_VERSION MAKEINTRESOURCEA(16)
#define RT_MANIFEST MAKEINTRESOURCEA(24)

ZQ_EXTERN_C_BEGIN

ZQ_API HRSRC WINAPI FindResourceA(HMODULE hModule, LPCSTR lpName, LPCSTR lpType);
ZQ_API HRSRC WINAPI FindResourceExA(HMODULE hModule, LPCSTR lpType, LPCSTR lpName, WORD wLanguage);

/* The data of a found resource (the handle is its address); NULL with
 * ERROR_INVALID_HANDLE for a resource handle that is not one. */
ZQ_API HGLOBAL WINAPI LoadResource(HMODULE hModule, HRSRC hResInfo);
/* The address of the loaded data: the handle itself. */
ZQ_API LPVOID WINAPI LockResource(HGLOBAL hResData);
/* Size in bytes; 0 with ERROR_INVALID_HANDLE for a bad handle. */
ZQ_API DWORD WINAPI SizeofResource(HMODULE hModule, HRSRC hResInfo);
/* Obsolete: nothing to release; returns FALSE as Windows does. */
ZQ_API BOOL WINAPI FreeResource(HGLOBAL hResData);

/* String `uID` of the module's string table (block uID / 16 + 1, entry
 * uID % 16), converted to the ANSI code page. Copies at most
 * cchBufferMax - 1 characters and always terminates; returns the number
 * copied. A missing string gives 0 and an empty buffer (the last error
 * says why when the block itself is missing). cchBufferMax 0 or a NULL
 * buffer: 0, nothing written (Windows does not support a zero size for
 * the A form). */
ZQ_API int WINAPI LoadStringA(HINSTANCE hInstance, UINT uID, LPSTR lpBuffer, int cchBufferMax);

/* Called by the code that cmake/ZqResources.cmake generates for each module
 * with resources; not for direct use. Registers the .res images in
 * [begin, end), which lie in that module's .rsrc section, under the
 * module's instance handle; FALSE when the data is malformed. */
ZQ_API BOOL WINAPI ZqRegisterModuleResources(const void* begin, const void* end);
ZQ_API void WINAPI ZqUnregisterModuleResources(const void* begin);

ZQ_EXTERN_C_END

#endif /* ZQ_PLATFORM_API_RESOURCE_H */
