/* Version blocks (VERSIONINFO resources) of modules and files.
 *
 * GetFileVersionInfoSizeA / GetFileVersionInfoA read the block of a file
 * on disk without loading it: an ELF module (its .rsrc section) or a
 * Windows PE file (its resource directory). Paths may be DOS or Unix form.
 * The size reported for a block with UTF-16 keys is twice its length plus
 * four: the copy is followed by the signature "FE2X" and room where
 * VerQueryValueA puts ANSI copies of the texts it returns, as Windows does.
 *
 * VerQueryValueA answers "\" (the VS_FIXEDFILEINFO), "\VarFileInfo\Translation"
 * (language/code-page pairs) and "\StringFileInfo\<lang><cp>\<name>"
 * (a text; the length counts the terminator). The length of a binary
 * value is the stored one, cut to the bytes its node holds. Keys compare without regard
 * to case; empty path components are skipped. A path that names a block
 * rather than a value succeeds with length 0 and the last error
 * ERROR_INVALID_PARAMETER, as Windows does. A missing entry fails with
 * ERROR_RESOURCE_TYPE_NOT_FOUND, sets *puLen to 0 and leaves *lplpBuffer
 * untouched.
 *
 * pBlock must hold the whole block (its first word gives its length) and
 * four bytes more: VerQueryValueA looks there for the signature to know
 * whether the room for ANSI texts exists. Without it, the texts it returns
 * are copies kept for the life of the process. */
#ifndef ZQ_PLATFORM_API_VERSION_H
#define ZQ_PLATFORM_API_VERSION_H

#include "platform/api/types.h"

#define VS_FILE_INFO MAKEINTRESOURCEA(16)
#define VS_VERSION_INFO 1
#define VS_FFI_SIGNATURE 0xFEEF04BDL
#define VS_FFI_STRUCVERSION 0x00010000L
#define VS_FFI_FILEFLAGSMASK 0x0000003FL

#define VS_FF_DEBUG 0x00000001L
#define VS_FF_PRERELEASE 0x00000002L
#define VS_FF_PATCHED 0x00000004L
#define VS_FF_PRIVATEBUILD 0x00000008L
#define VS_FF_INFOINFERRED 0x00000010L
#define VS_FF_SPECIALBUILD 0x00000020L

#define VOS_UNKNOWN 0x00000000L
#define VOS_DOS 0x00010000L
#define VOS_NT 0x00040000L
#define VOS__WINDOWS32 0x00000004L
#define VOS_NT_WINDOWS32 0x00040004L

#define VFT_UNKNOWN 0x00000000L
#define VFT_APP 0x00000001L
#define VFT_DLL 0x00000002L
#define VFT_DRV 0x00000003L
#define VFT_FONT 0x00000004L
#define VFT_VXD 0x00000005L
#define VFT_STATIC_LIB 0x00000007L

typedef struct tagVS_FIXEDFILEINFO {
    DWORD dwSignature;
    DWORD dwStrucVersion;
    DWORD dwFileVersionMS;
    DWORD dwFileVersionLS;
    DWORD dwProductVersionMS;
    DWORD dwProductVersionLS;
    DWORD dwFileFlagsMask;
    DWORD dwFileFlags;
    DWORD dwFileOS;
    DWORD dwFileType;
    DWORD dwFileSubtype;
    DWORD dwFileDateMS;
    DWORD dwFileDateLS;
} VS_FIXEDFILEINFO;

ZQ_EXTERN_C_BEGIN

/* Bytes GetFileVersionInfoA needs; 0 on failure with the last error:
 * ERROR_FILE_NOT_FOUND / ERROR_PATH_NOT_FOUND, ERROR_RESOURCE_DATA_NOT_FOUND
 * (not a module, or no resources), ERROR_RESOURCE_TYPE_NOT_FOUND (no
 * version block), ERROR_BAD_FORMAT (damaged file or block). *lpdwHandle
 * (optional) is always set to 0. */
ZQ_API DWORD WINAPI GetFileVersionInfoSizeA(LPCSTR lptstrFilename, LPDWORD lpdwHandle);

/* Copies the block, at most dwLen bytes, into lpData (the rest of the
 * buffer is left as it was) and appends the "FE2X" signature when there is
 * room. FALSE with the errors above, or ERROR_INVALID_DATA for a NULL buffer. */
ZQ_API BOOL WINAPI GetFileVersionInfoA(LPCSTR lptstrFilename, DWORD dwHandle, DWORD dwLen,
                                       LPVOID lpData);

ZQ_API BOOL WINAPI VerQueryValueA(LPCVOID pBlock, LPCSTR lpSubBlock, LPVOID* lplpBuffer,
                                  PUINT puLen);

ZQ_EXTERN_C_END

#endif /* ZQ_PLATFORM_API_VERSION_H */
