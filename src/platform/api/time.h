/* Clocks, and conversions between SYSTEMTIME and FILETIME.
 *
 * A FILETIME counts 100-nanosecond intervals since 1601-01-01 00:00 UTC.
 * A SYSTEMTIME is valid for the years 1601 to 30827, months 1-12, the days
 * that exist in that month, hours 0-23, minutes and seconds 0-59 and
 * milliseconds 0-999; wDayOfWeek (0 = Sunday) is ignored on input and
 * computed on output. Local time follows the process's time zone (TZ).
 * All functions are safe to call from any thread. */
#ifndef ZQ_PLATFORM_API_TIME_H
#define ZQ_PLATFORM_API_TIME_H

#include "platform/api/types.h"

ZQ_EXTERN_C_BEGIN

/* Milliseconds since the system started; wraps to 0 after 49.7 days. */
ZQ_API DWORD WINAPI GetTickCount(void);

/* The current date and time, in local time / in UTC. */
ZQ_API void WINAPI GetLocalTime(LPSYSTEMTIME lpSystemTime);
ZQ_API void WINAPI GetSystemTime(LPSYSTEMTIME lpSystemTime);
ZQ_API void WINAPI GetSystemTimeAsFileTime(LPFILETIME lpSystemTimeAsFileTime);

/* Converts a valid SYSTEMTIME. An invalid one (see above) returns FALSE
 * with ERROR_INVALID_PARAMETER and leaves *lpFileTime untouched. */
ZQ_API BOOL WINAPI SystemTimeToFileTime(const SYSTEMTIME* lpSystemTime, LPFILETIME lpFileTime);

/* Converts any FILETIME up to 0x7FFFFFFFFFFFFFFF (year 30828). Larger
 * values return FALSE with ERROR_INVALID_PARAMETER, *lpSystemTime
 * untouched. */
ZQ_API BOOL WINAPI FileTimeToSystemTime(const FILETIME* lpFileTime, LPSYSTEMTIME lpSystemTime);

/* Shift a FILETIME between UTC and local time by the time zone's offset as
 * it is *now* (daylight saving time included when it is in effect now, not
 * at the converted moment), as Windows does. FALSE with
 * ERROR_INVALID_PARAMETER when the result would leave the FILETIME range. */
ZQ_API BOOL WINAPI FileTimeToLocalFileTime(const FILETIME* lpFileTime, LPFILETIME lpLocalFileTime);
ZQ_API BOOL WINAPI LocalFileTimeToFileTime(const FILETIME* lpLocalFileTime, LPFILETIME lpFileTime);

/* -1, 0 or 1 as the first time is earlier than, equal to or later than the
 * second (unsigned 64-bit comparison). */
ZQ_API LONG WINAPI CompareFileTime(const FILETIME* lpFileTime1, const FILETIME* lpFileTime2);

ZQ_EXTERN_C_END

#endif /* ZQ_PLATFORM_API_TIME_H */
