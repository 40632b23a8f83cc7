/* Byte strings in the ANSI code page, the Windows printf subset, and
 * conversions between code pages and UTF-16.
 *
 * "ANSI code page" is GetACP(): Windows-1252 unless the system locale
 * names another (1251 for Russian, 932 for Japanese ...). WCHAR is 16-bit
 * UTF-16 as on Windows. All functions are safe to call from any thread. */
#ifndef ZQ_PLATFORM_API_STRINGS_H
#define ZQ_PLATFORM_API_STRINGS_H

#include <stdarg.h>

#include "platform/api/types.h"

/* Code pages. CP_ACP / CP_OEMCP / CP_THREAD_ACP follow the system locale. */
#define CP_ACP 0
#define CP_OEMCP 1
#define CP_MACCP 2
#define CP_THREAD_ACP 3
#define CP_SYMBOL 42
#define CP_UTF7 65000
#define CP_UTF8 65001

#define MB_PRECOMPOSED 0x00000001
#define MB_COMPOSITE 0x00000002
#define MB_USEGLYPHCHARS 0x00000004
#define MB_ERR_INVALID_CHARS 0x00000008

#define WC_COMPOSITECHECK 0x00000200
#define WC_DISCARDNS 0x00000010
#define WC_SEPCHARS 0x00000020
#define WC_DEFAULTCHAR 0x00000040
#define WC_ERR_INVALID_CHARS 0x00000080
#define WC_NO_BEST_FIT_CHARS 0x00000400

ZQ_EXTERN_C_BEGIN

/* The Windows printf subset. Conversions: %c %C %d %i %u %x %X %p %s %S
 * and %% with the flags '-' '#' '0', a width, a precision and the sizes
 * h, l, w, I, I32 and I64. 'l' means 32 bits, as a Win32 long. There is no
 * floating point, no '+' or ' ' flag and no '*' width: such a character is
 * printed as it stands and consumes no argument. %s of NULL prints
 * "(null)"; %S / %ls / %ws take a 16-bit WCHAR string and convert it to
 * the ANSI code page. The output holds at most 1023 characters plus the
 * terminator (a 1024-byte buffer always suffices); the result is the
 * number of characters stored, without the terminator. */
ZQ_API int WINAPIV wsprintfA(LPSTR lpOut, LPCSTR lpFmt, ...);
ZQ_API int WINAPI wvsprintfA(LPSTR lpOut, LPCSTR lpFmt, va_list arglist);

/* lstr* functions. NULL pointers are tolerated where Windows tolerates
 * them: lstrlenA(NULL) is 0; a copy or concatenation with a NULL argument
 * returns NULL and writes nothing. lstrcpynA copies at most iMaxLength-1
 * characters and always terminates (when iMaxLength > 0). */
ZQ_API int WINAPI lstrlenA(LPCSTR lpString);
ZQ_API LPSTR WINAPI lstrcpyA(LPSTR lpString1, LPCSTR lpString2);
ZQ_API LPSTR WINAPI lstrcpynA(LPSTR lpString1, LPCSTR lpString2, int iMaxLength);
ZQ_API LPSTR WINAPI lstrcatA(LPSTR lpString1, LPCSTR lpString2);

/* Linguistic comparison in the user's locale, as Windows' word sort:
 * punctuation before digits before letters, letters alphabetical without
 * regard to accents first, lower case before upper case at the last level
 * (lstrcmpA only). Hyphens and apostrophes weigh least. The result is
 * negative, zero or positive; NULL sorts before every string. */
ZQ_API int WINAPI lstrcmpA(LPCSTR lpString1, LPCSTR lpString2);
ZQ_API int WINAPI lstrcmpiA(LPCSTR lpString1, LPCSTR lpString2);

/* Case mapping in the ANSI code page. CharUpperA / CharLowerA convert a
 * string in place and return it; given a single character in the low word
 * of the pointer (high bits zero) they return the converted character the
 * same way. The Buff forms convert cchLength bytes and return that count.
 * In a double-byte code page only single-byte characters change. */
ZQ_API LPSTR WINAPI CharUpperA(LPSTR lpsz);
ZQ_API LPSTR WINAPI CharLowerA(LPSTR lpsz);
ZQ_API DWORD WINAPI CharUpperBuffA(LPSTR lpsz, DWORD cchLength);
ZQ_API DWORD WINAPI CharLowerBuffA(LPSTR lpsz, DWORD cchLength);

/* Moving by characters: a double-byte character counts as one. CharNextA
 * does not move past the terminator; CharPrevA does not move before
 * lpszStart. */
ZQ_API LPSTR WINAPI CharNextA(LPCSTR lpsz);
ZQ_API LPSTR WINAPI CharPrevA(LPCSTR lpszStart, LPCSTR lpszCurrent);

/* Character classes of one ANSI-code-page character. */
ZQ_API BOOL WINAPI IsCharAlphaA(CHAR ch);
ZQ_API BOOL WINAPI IsCharAlphaNumericA(CHAR ch);
ZQ_API BOOL WINAPI IsCharUpperA(CHAR ch);
ZQ_API BOOL WINAPI IsCharLowerA(CHAR ch);

/* Code-page conversion. Supported: CP_ACP, CP_OEMCP, CP_MACCP,
 * CP_THREAD_ACP, CP_UTF8 and the Windows code pages 437, 737, 775, 850,
 * 852, 855, 857, 860-866, 869, 874, 932, 936, 949, 950, 1250-1258,
 * 10000, 20127 and 28591-28605 (IsValidCodePage). A source length of -1
 * means "up to and including the terminator". With a destination size of
 * 0 the size needed is returned and nothing is written. A destination too
 * small receives what fits; the call then returns 0 with
 * ERROR_INSUFFICIENT_BUFFER. Bad arguments give ERROR_INVALID_PARAMETER,
 * bad flags ERROR_INVALID_FLAGS, an invalid sequence with
 * MB_ERR_INVALID_CHARS / WC_ERR_INVALID_CHARS ERROR_NO_UNICODE_TRANSLATION.
 * Undecodable UTF-8 becomes U+FFFD. A character without a mapping becomes
 * the default character ('?' or lpDefaultChar) after a best-fit attempt
 * (the unaccented letter) unless WC_NO_BEST_FIT_CHARS; *lpUsedDefaultChar
 * tells whether that happened. For CP_UTF8 both of these must be NULL. */
ZQ_API int WINAPI MultiByteToWideChar(UINT CodePage, DWORD dwFlags, LPCSTR lpMultiByteStr,
                                      int cbMultiByte, LPWSTR lpWideCharStr, int cchWideChar);
ZQ_API int WINAPI WideCharToMultiByte(UINT CodePage, DWORD dwFlags, LPCWSTR lpWideCharStr,
                                      int cchWideChar, LPSTR lpMultiByteStr, int cbMultiByte,
                                      LPCSTR lpDefaultChar, LPBOOL lpUsedDefaultChar);
ZQ_API BOOL WINAPI IsValidCodePage(UINT CodePage);
/* TRUE when TestChar starts a double-byte character in the ANSI code page. */
ZQ_API BOOL WINAPI IsDBCSLeadByte(BYTE TestChar);
ZQ_API BOOL WINAPI IsDBCSLeadByteEx(UINT CodePage, BYTE TestChar);

ZQ_EXTERN_C_END

#endif /* ZQ_PLATFORM_API_STRINGS_H */
