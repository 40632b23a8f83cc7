/* Locales: identifiers, locale information, and date and time formatting.
 *
 * The user default locale is $ZQ_LCID (hexadecimal, e.g. 0407) when it
 * names a supported locale, else the locale of $LC_ALL / $LC_TIME / $LANG
 * (de_DE.UTF-8 -> 0x0407), else 0x0409 (English, United States). The
 * system default locale is the same, and its ANSI code page is GetACP().
 * There are no per-user customisations, so LOCALE_NOUSEROVERRIDE changes no
 * value. Names, day and month names and patterns come from ICU's locale
 * data; the Windows-only fields (three-letter abbreviations, code pages,
 * country codes) from a table of the supported locales.
 *
 * The A functions return text in the ANSI code page of the requested
 * locale (LOCALE_IDEFAULTANSICODEPAGE), or in GetACP() with
 * LOCALE_USE_CP_ACP. Sizes and results count characters (bytes for A)
 * including the terminator. With a size of 0 the size needed is returned
 * and nothing is written; a buffer too small gives 0 and
 * ERROR_INSUFFICIENT_BUFFER. All functions are safe on any thread. */
#ifndef ZQ_PLATFORM_API_LOCALE_H
#define ZQ_PLATFORM_API_LOCALE_H

#include "platform/api/types.h"

/* Special locale identifiers. */
#define LOCALE_NEUTRAL 0x0000
#define LOCALE_INVARIANT 0x007F
#define LOCALE_USER_DEFAULT 0x0400
#define LOCALE_SYSTEM_DEFAULT 0x0800
#define LANG_USER_DEFAULT 0x0400
#define LANG_SYSTEM_DEFAULT 0x0800
#define SORT_DEFAULT 0x0

#define LANG_NEUTRAL 0x00
#define LANG_CHINESE 0x04
#define LANG_CZECH 0x05
#define LANG_DANISH 0x06
#define LANG_GERMAN 0x07
#define LANG_GREEK 0x08
#define LANG_ENGLISH 0x09
#define LANG_SPANISH 0x0a
#define LANG_FINNISH 0x0b
#define LANG_FRENCH 0x0c
#define LANG_HUNGARIAN 0x0e
#define LANG_ITALIAN 0x10
#define LANG_JAPANESE 0x11
#define LANG_KOREAN 0x12
#define LANG_DUTCH 0x13
#define LANG_NORWEGIAN 0x14
#define LANG_POLISH 0x15
#define LANG_PORTUGUESE 0x16
#define LANG_RUSSIAN 0x19
#define LANG_SWEDISH 0x1d
#define LANG_TURKISH 0x1f

#define SUBLANG_NEUTRAL 0x00
#define SUBLANG_DEFAULT 0x01
#define SUBLANG_SYS_DEFAULT 0x02
#define SUBLANG_ENGLISH_US 0x01
#define SUBLANG_ENGLISH_UK 0x02
#define SUBLANG_GERMAN 0x01
#define SUBLANG_FRENCH 0x01
#define SUBLANG_FRENCH_CANADIAN 0x03
#define SUBLANG_ITALIAN 0x01
#define SUBLANG_SPANISH 0x01
#define SUBLANG_SPANISH_MODERN 0x03
#define SUBLANG_DUTCH 0x01

/* Flags of GetLocaleInfo, GetDateFormat and GetTimeFormat. */
#define LOCALE_NOUSEROVERRIDE 0x80000000
#define LOCALE_USE_CP_ACP 0x40000000
#define LOCALE_RETURN_NUMBER 0x20000000
#define LOCALE_RETURN_GENITIVE_NAMES 0x10000000

/* Locale information types. */
#define LOCALE_ILANGUAGE 0x00000001
#define LOCALE_SLANGUAGE 0x00000002
#define LOCALE_SENGLANGUAGE 0x00001001
#define LOCALE_SABBREVLANGNAME 0x00000003
#define LOCALE_SNATIVELANGNAME 0x00000004
#define LOCALE_ICOUNTRY 0x00000005
#define LOCALE_SCOUNTRY 0x00000006
#define LOCALE_SENGCOUNTRY 0x00001002
#define LOCALE_SABBREVCTRYNAME 0x00000007
#define LOCALE_SNATIVECTRYNAME 0x00000008
#define LOCALE_IDEFAULTLANGUAGE 0x00000009
#define LOCALE_IDEFAULTCOUNTRY 0x0000000A
#define LOCALE_IDEFAULTCODEPAGE 0x0000000B
#define LOCALE_IDEFAULTANSICODEPAGE 0x00001004
#define LOCALE_IDEFAULTMACCODEPAGE 0x00001011
#define LOCALE_SLIST 0x0000000C
#define LOCALE_IMEASURE 0x0000000D
#define LOCALE_SDECIMAL 0x0000000E
#define LOCALE_STHOUSAND 0x0000000F
#define LOCALE_SGROUPING 0x00000010
#define LOCALE_IDIGITS 0x00000011
#define LOCALE_ILZERO 0x00000012
#define LOCALE_INEGNUMBER 0x00001010
#define LOCALE_SNATIVEDIGITS 0x00000013
#define LOCALE_SCURRENCY 0x00000014
#define LOCALE_SINTLSYMBOL 0x00000015
#define LOCALE_SMONDECIMALSEP 0x00000016
#define LOCALE_SMONTHOUSANDSEP 0x00000017
#define LOCALE_SMONGROUPING 0x00000018
#define LOCALE_ICURRDIGITS 0x00000019
#define LOCALE_IINTLCURRDIGITS 0x0000001A
#define LOCALE_ICURRENCY 0x0000001B
#define LOCALE_INEGCURR 0x0000001C
#define LOCALE_SDATE 0x0000001D
#define LOCALE_STIME 0x0000001E
#define LOCALE_SSHORTDATE 0x0000001F
#define LOCALE_SLONGDATE 0x00000020
#define LOCALE_STIMEFORMAT 0x00001003
#define LOCALE_SYEARMONTH 0x00001006
#define LOCALE_IDATE 0x00000021
#define LOCALE_ILDATE 0x00000022
#define LOCALE_ITIME 0x00000023
#define LOCALE_ITIMEMARKPOSN 0x00001005
#define LOCALE_ICENTURY 0x00000024
#define LOCALE_ITLZERO 0x00000025
#define LOCALE_IDAYLZERO 0x00000026
#define LOCALE_IMONLZERO 0x00000027
#define LOCALE_S1159 0x00000028
#define LOCALE_S2359 0x00000029
#define LOCALE_ICALENDARTYPE 0x00001009
#define LOCALE_IOPTIONALCALENDAR 0x0000100B
#define LOCALE_IFIRSTDAYOFWEEK 0x0000100C
#define LOCALE_IFIRSTWEEKOFYEAR 0x0000100D
#define LOCALE_SDAYNAME1 0x0000002A
#define LOCALE_SDAYNAME2 0x0000002B
#define LOCALE_SDAYNAME3 0x0000002C
#define LOCALE_SDAYNAME4 0x0000002D
#define LOCALE_SDAYNAME5 0x0000002E
#define LOCALE_SDAYNAME6 0x0000002F
#define LOCALE_SDAYNAME7 0x00000030
#define LOCALE_SABBREVDAYNAME1 0x00000031
#define LOCALE_SABBREVDAYNAME2 0x00000032
#define LOCALE_SABBREVDAYNAME3 0x00000033
#define LOCALE_SABBREVDAYNAME4 0x00000034
#define LOCALE_SABBREVDAYNAME5 0x00000035
#define LOCALE_SABBREVDAYNAME6 0x00000036
#define LOCALE_SABBREVDAYNAME7 0x00000037
#define LOCALE_SMONTHNAME1 0x00000038
#define LOCALE_SMONTHNAME2 0x00000039
#define LOCALE_SMONTHNAME3 0x0000003A
#define LOCALE_SMONTHNAME4 0x0000003B
#define LOCALE_SMONTHNAME5 0x0000003C
#define LOCALE_SMONTHNAME6 0x0000003D
#define LOCALE_SMONTHNAME7 0x0000003E
#define LOCALE_SMONTHNAME8 0x0000003F
#define LOCALE_SMONTHNAME9 0x00000040
#define LOCALE_SMONTHNAME10 0x00000041
#define LOCALE_SMONTHNAME11 0x00000042
#define LOCALE_SMONTHNAME12 0x00000043
#define LOCALE_SMONTHNAME13 0x0000100E
#define LOCALE_SABBREVMONTHNAME1 0x00000044
#define LOCALE_SABBREVMONTHNAME2 0x00000045
#define LOCALE_SABBREVMONTHNAME3 0x00000046
#define LOCALE_SABBREVMONTHNAME4 0x00000047
#define LOCALE_SABBREVMONTHNAME5 0x00000048
#define LOCALE_SABBREVMONTHNAME6 0x00000049
#define LOCALE_SABBREVMONTHNAME7 0x0000004A
#define LOCALE_SABBREVMONTHNAME8 0x0000004B
#define LOCALE_SABBREVMONTHNAME9 0x0000004C
#define LOCALE_SABBREVMONTHNAME10 0x0000004D
#define LOCALE_SABBREVMONTHNAME11 0x0000004E
#define LOCALE_SABBREVMONTHNAME12 0x0000004F
#define LOCALE_SABBREVMONTHNAME13 0x0000100F
#define LOCALE_SPOSITIVESIGN 0x00000050
#define LOCALE_SNEGATIVESIGN 0x00000051
#define LOCALE_IPOSSIGNPOSN 0x00000052
#define LOCALE_INEGSIGNPOSN 0x00000053
#define LOCALE_IPOSSYMPRECEDES 0x00000054
#define LOCALE_IPOSSEPBYSPACE 0x00000055
#define LOCALE_INEGSYMPRECEDES 0x00000056
#define LOCALE_INEGSEPBYSPACE 0x00000057
#define LOCALE_SISO639LANGNAME 0x00000059
#define LOCALE_SISO3166CTRYNAME 0x0000005A
#define LOCALE_SENGCURRNAME 0x00001007
#define LOCALE_SNATIVECURRNAME 0x00001008
#define LOCALE_IPAPERSIZE 0x0000100A
#define LOCALE_SSORTNAME 0x00001013
#define LOCALE_IDIGITSUBSTITUTION 0x00001014

/* GetDateFormat flags. */
#define DATE_SHORTDATE 0x00000001
#define DATE_LONGDATE 0x00000002
#define DATE_USE_ALT_CALENDAR 0x00000004
#define DATE_YEARMONTH 0x00000008
#define DATE_LTRREADING 0x00000010
#define DATE_RTLREADING 0x00000020

/* GetTimeFormat flags. */
#define TIME_NOMINUTESORSECONDS 0x00000001
#define TIME_NOSECONDS 0x00000002
#define TIME_NOTIMEMARKER 0x00000004
#define TIME_FORCE24HOURFORMAT 0x00000008

ZQ_EXTERN_C_BEGIN

/* Code pages of the system locale: ANSI (1252 unless the locale says
 * otherwise) and OEM (437 for English (United States), 850 for most of
 * Western Europe ...). */
ZQ_API UINT WINAPI GetACP(void);
ZQ_API UINT WINAPI GetOEMCP(void);

ZQ_API LCID WINAPI GetUserDefaultLCID(void);
ZQ_API LCID WINAPI GetSystemDefaultLCID(void);
ZQ_API LANGID WINAPI GetUserDefaultLangID(void);
ZQ_API LANGID WINAPI GetSystemDefaultLangID(void);
/* The calling thread's locale: the user default until SetThreadLocale
 * changes it (for that thread only). */
ZQ_API LCID WINAPI GetThreadLocale(void);
ZQ_API BOOL WINAPI SetThreadLocale(LCID Locale);
/* TRUE for a supported locale (dwFlags: LCID_INSTALLED or LCID_SUPPORTED). */
#define LCID_INSTALLED 0x00000001
#define LCID_SUPPORTED 0x00000002
ZQ_API BOOL WINAPI IsValidLocale(LCID Locale, DWORD dwFlags);

/* One field of a locale. Unknown locale: ERROR_INVALID_PARAMETER; unknown
 * LCTYPE: ERROR_INVALID_FLAGS. A buffer too small receives the first
 * cchData characters (no terminator). LOCALE_RETURN_NUMBER with a numeric
 * field writes a DWORD and returns its size in characters (2 for W, 4 for
 * A). LOCALE_RETURN_GENITIVE_NAMES with LOCALE_SMONTHNAMEx gives the month
 * name as used after a day number (Russian "января"). */
ZQ_API int WINAPI GetLocaleInfoA(LCID Locale, LCTYPE LCType, LPSTR lpLCData, int cchData);
ZQ_API int WINAPI GetLocaleInfoW(LCID Locale, LCTYPE LCType, LPWSTR lpLCData, int cchData);

/* A date as text. lpDate NULL means today (local time); its time fields
 * and wDayOfWeek are ignored, its date must be valid (1601-30827) else
 * ERROR_INVALID_PARAMETER. lpFormat is a picture: d dd (day), ddd dddd
 * (day name), M MM (month), MMM MMMM (month name; MMMM is the genitive
 * form next to a day number), y yy (year in century), yyyy (year), g gg
 * (era); 'quoted' text is literal, '' is a quote; other characters are
 * copied. lpFormat NULL takes the locale's DATE_SHORTDATE (default),
 * DATE_LONGDATE or DATE_YEARMONTH picture; with a picture those flags and
 * LOCALE_NOUSEROVERRIDE give ERROR_INVALID_FLAGS. */
ZQ_API int WINAPI GetDateFormatA(LCID Locale, DWORD dwFlags, const SYSTEMTIME* lpDate,
                                 LPCSTR lpFormat, LPSTR lpDateStr, int cchDate);
ZQ_API int WINAPI GetDateFormatW(LCID Locale, DWORD dwFlags, const SYSTEMTIME* lpDate,
                                 LPCWSTR lpFormat, LPWSTR lpDateStr, int cchDate);

/* A time of day as text. lpTime NULL means now (local time); its hour,
 * minute and second must be valid else ERROR_INVALID_PARAMETER, its date
 * is ignored. Picture: h hh (12-hour), H HH (24-hour), m mm, s ss, t (first
 * character of the AM/PM marker), tt (marker); quotes as for dates.
 * lpFormat NULL takes LOCALE_STIMEFORMAT. TIME_NOMINUTESORSECONDS,
 * TIME_NOSECONDS and TIME_NOTIMEMARKER leave out those fields together
 * with the separators around them; TIME_FORCE24HOURFORMAT prints h as H.
 * LOCALE_NOUSEROVERRIDE with a picture gives ERROR_INVALID_FLAGS. */
ZQ_API int WINAPI GetTimeFormatA(LCID Locale, DWORD dwFlags, const SYSTEMTIME* lpTime,
                                 LPCSTR lpFormat, LPSTR lpTimeStr, int cchTime);
ZQ_API int WINAPI GetTimeFormatW(LCID Locale, DWORD dwFlags, const SYSTEMTIME* lpTime,
                                 LPCWSTR lpFormat, LPWSTR lpTimeStr, int cchTime);

ZQ_EXTERN_C_END

#endif /* ZQ_PLATFORM_API_LOCALE_H */
