/* Global and local memory blocks.
 *
 * The two families are the same on a 32-bit Windows and here. A fixed block
 * (GMEM_FIXED / LMEM_FIXED) is its own handle: the handle is the pointer to
 * the memory. A moveable block (GMEM_MOVEABLE) has a handle of its own that
 * GlobalLock turns into the pointer and counts; the memory never actually
 * moves. ZEROINIT fills the block with zeros. Blocks of 0 bytes are
 * allowed. Thread-safe. */
#ifndef ZQ_PLATFORM_API_MEMORY_H
#define ZQ_PLATFORM_API_MEMORY_H

#include "platform/api/types.h"

#define GMEM_FIXED 0x0000
#define GMEM_MOVEABLE 0x0002
#define GMEM_NOCOMPACT 0x0010
#define GMEM_NODISCARD 0x0020
#define GMEM_ZEROINIT 0x0040
#define GMEM_MODIFY 0x0080
#define GMEM_DISCARDABLE 0x0100
#define GMEM_SHARE 0x2000
#define GMEM_DDESHARE 0x2000
#define GHND (GMEM_MOVEABLE | GMEM_ZEROINIT)
#define GPTR (GMEM_FIXED | GMEM_ZEROINIT)

#define LMEM_FIXED 0x0000
#define LMEM_MOVEABLE 0x0002
#define LMEM_ZEROINIT 0x0040
#define LHND (LMEM_MOVEABLE | LMEM_ZEROINIT)
#define LPTR (LMEM_FIXED | LMEM_ZEROINIT)

ZQ_EXTERN_C_BEGIN

/* A new block of dwBytes; NULL with ERROR_NOT_ENOUGH_MEMORY when there is
 * no memory, ERROR_INVALID_PARAMETER for flags this system does not know
 * (GMEM_MODIFY belongs to GlobalReAlloc). */
ZQ_API HGLOBAL WINAPI GlobalAlloc(UINT uFlags, SIZE_T dwBytes);
/* The block's memory; NULL with ERROR_INVALID_HANDLE for a handle that is
 * no block. A moveable block counts the lock. */
ZQ_API LPVOID WINAPI GlobalLock(HGLOBAL hMem);
/* TRUE while a moveable block stays locked; FALSE when its count reaches 0
 * (last error NO_ERROR) or when it was not locked (ERROR_NOT_LOCKED). A
 * fixed block gives TRUE; a handle that is no block FALSE with
 * ERROR_INVALID_HANDLE. */
ZQ_API BOOL WINAPI GlobalUnlock(HGLOBAL hMem);
/* Frees the block: NULL on success, the handle with ERROR_INVALID_HANDLE
 * when it is no block. NULL is accepted and gives NULL. */
ZQ_API HGLOBAL WINAPI GlobalFree(HGLOBAL hMem);
/* The block's size in bytes; 0 with ERROR_INVALID_HANDLE for no block. */
ZQ_API SIZE_T WINAPI GlobalSize(HGLOBAL hMem);

/* The same for local memory. */
ZQ_API HLOCAL WINAPI LocalAlloc(UINT uFlags, SIZE_T uBytes);
ZQ_API LPVOID WINAPI LocalLock(HLOCAL hMem);
ZQ_API BOOL WINAPI LocalUnlock(HLOCAL hMem);
ZQ_API HLOCAL WINAPI LocalFree(HLOCAL hMem);
ZQ_API SIZE_T WINAPI LocalSize(HLOCAL hMem);

ZQ_EXTERN_C_END

#endif /* ZQ_PLATFORM_API_MEMORY_H */
