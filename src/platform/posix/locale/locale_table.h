// The supported locales and the Windows-only facts about them.
//
// ICU knows names, calendars and patterns but not what only Windows has:
// the three-letter language abbreviation (ENU, DEU ...), the code pages a
// locale implies, and the country's telephone code that LOCALE_ICOUNTRY
// reports. Those come from this table, which also decides which LCIDs are
// supported at all. The process's default locale is chosen here from the
// environment. Thread-safe.
#pragma once

#include <string_view>

#include "platform/win32.h"

namespace zq::platform::internal {

struct LocaleRecord {
    LCID lcid;
    const char* icu_name;      // ICU locale id
    const char* abbreviation;  // LOCALE_SABBREVLANGNAME
    UINT ansi_code_page;       // LOCALE_IDEFAULTANSICODEPAGE
    UINT oem_code_page;        // LOCALE_IDEFAULTCODEPAGE
    UINT mac_code_page;        // LOCALE_IDEFAULTMACCODEPAGE
    UINT country_code;         // LOCALE_ICOUNTRY: international dialing code
};

// The record of a locale, after resolving LOCALE_USER_DEFAULT,
// LOCALE_SYSTEM_DEFAULT, LOCALE_NEUTRAL, a neutral or default sublanguage
// (0x0019 -> 0x0419) and a sort id; nullptr when it is not supported.
const LocaleRecord* FindLocaleRecord(LCID lcid);

// The user default locale (see platform/api/locale.h for how it is chosen).
LCID UserDefaultLcid();

// The LCID of a POSIX locale name ("de_DE.UTF-8", "fr_CA", "C"), or 0.
LCID LcidFromPosixLocale(std::string_view name);

// Reads the environment again (tests change ZQ_LCID between cases).
void ReloadLocaleDefaultsForTesting();

}  // namespace zq::platform::internal
