// Locale identifiers, code pages of the system locale, GetLocaleInfo.
#include <cstring>
#include <string>

#include "platform/posix/locale/codepage.h"
#include "platform/posix/locale/locale_data.h"
#include "platform/posix/locale/locale_table.h"
#include "platform/win32.h"

namespace {

using zq::platform::internal::CodePage;
using zq::platform::internal::FindLocaleRecord;
using zq::platform::internal::LocaleData;
using zq::platform::internal::UserDefaultLcid;

thread_local LCID t_thread_locale = 0;

constexpr LCTYPE kFlagBits =
    LOCALE_NOUSEROVERRIDE | LOCALE_USE_CP_ACP | LOCALE_RETURN_NUMBER | LOCALE_RETURN_GENITIVE_NAMES;

bool IsMonthName(LCTYPE type) {
    return (type >= LOCALE_SMONTHNAME1 && type <= LOCALE_SMONTHNAME12) ||
           type == LOCALE_SMONTHNAME13;
}

// Looks the field up; sets the last error and returns nullptr on failure.
const std::u16string* LookUp(const LocaleData*& data, LCID locale, LCTYPE type_and_flags,
                             std::u16string& scratch) {
    data = LocaleData::For(locale);
    if (!data) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return nullptr;
    }
    const LCTYPE type = type_and_flags & ~kFlagBits;
    if ((type_and_flags & LOCALE_RETURN_GENITIVE_NAMES) && !IsMonthName(type)) {
        SetLastError(ERROR_INVALID_FLAGS);
        return nullptr;
    }
    if ((type_and_flags & LOCALE_RETURN_NUMBER) && !LocaleData::IsNumericField(type)) {
        SetLastError(ERROR_INVALID_FLAGS);
        return nullptr;
    }
    if ((type_and_flags & LOCALE_RETURN_GENITIVE_NAMES) && type != LOCALE_SMONTHNAME13) {
        scratch = data->MonthName(type - LOCALE_SMONTHNAME1 + 1, false, true);
        return &scratch;
    }
    const std::u16string* value = data->Field(type);
    if (!value) {
        SetLastError(ERROR_INVALID_FLAGS);
    }
    return value;
}

DWORD NumberOf(const std::u16string& text, LCTYPE type) {
    const std::string narrow(text.begin(), text.end());
    return static_cast<DWORD>(
        std::strtoul(narrow.c_str(), nullptr, LocaleData::IsHexField(type & ~kFlagBits) ? 16 : 10));
}

// Copies `length` units of `text` by GetLocaleInfo's rules: a size query,
// the whole value, or (too small) the first `size` units and an error.
template <typename T>
int Deliver(const T* text, size_t length, T* buffer, int size) {
    if (size == 0) {
        return static_cast<int>(length);
    }
    if (length > static_cast<size_t>(size)) {
        std::memcpy(buffer, text, static_cast<size_t>(size) * sizeof(T));
        SetLastError(ERROR_INSUFFICIENT_BUFFER);
        return 0;
    }
    std::memcpy(buffer, text, length * sizeof(T));
    return static_cast<int>(length);
}

}  // namespace

extern "C" {

UINT WINAPI GetACP(void) {
    const auto* record = FindLocaleRecord(LOCALE_SYSTEM_DEFAULT);
    return record ? record->ansi_code_page : 1252;
}

UINT WINAPI GetOEMCP(void) {
    const auto* record = FindLocaleRecord(LOCALE_SYSTEM_DEFAULT);
    return record ? record->oem_code_page : 437;
}

LCID WINAPI GetUserDefaultLCID(void) {
    return UserDefaultLcid();
}
LCID WINAPI GetSystemDefaultLCID(void) {
    return UserDefaultLcid();
}
LANGID WINAPI GetUserDefaultLangID(void) {
    return LANGIDFROMLCID(UserDefaultLcid());
}
LANGID WINAPI GetSystemDefaultLangID(void) {
    return LANGIDFROMLCID(UserDefaultLcid());
}

LCID WINAPI GetThreadLocale(void) {
    return t_thread_locale ? t_thread_locale : UserDefaultLcid();
}

BOOL WINAPI SetThreadLocale(LCID Locale) {
    const auto* record = FindLocaleRecord(Locale);
    if (!record) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    t_thread_locale = record->lcid;
    return TRUE;
}

BOOL WINAPI IsValidLocale(LCID Locale, DWORD dwFlags) {
    if (dwFlags != LCID_INSTALLED && dwFlags != LCID_SUPPORTED) {
        return FALSE;
    }
    // The special identifiers are not locales of their own.
    const LANGID lang = LANGIDFROMLCID(Locale);
    if (lang == LOCALE_NEUTRAL || lang == LOCALE_USER_DEFAULT || lang == LOCALE_SYSTEM_DEFAULT) {
        return FALSE;
    }
    const auto* record = FindLocaleRecord(Locale);
    return record && record->lcid == lang ? TRUE : FALSE;
}

int WINAPI GetLocaleInfoW(LCID Locale, LCTYPE LCType, LPWSTR lpLCData, int cchData) {
    if (cchData < 0 || (cchData > 0 && !lpLCData)) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return 0;
    }
    const LocaleData* data = nullptr;
    std::u16string scratch;
    const std::u16string* value = LookUp(data, Locale, LCType, scratch);
    if (!value) {
        return 0;
    }
    if (LCType & LOCALE_RETURN_NUMBER) {
        const DWORD number = NumberOf(*value, LCType);
        WCHAR units[2];
        std::memcpy(units, &number, sizeof number);
        return Deliver(units, 2, lpLCData, cchData);
    }
    std::u16string text = *value;
    text.push_back(u'\0');
    return Deliver(reinterpret_cast<const WCHAR*>(text.data()), text.size(), lpLCData, cchData);
}

int WINAPI GetLocaleInfoA(LCID Locale, LCTYPE LCType, LPSTR lpLCData, int cchData) {
    if (cchData < 0 || (cchData > 0 && !lpLCData)) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return 0;
    }
    const LocaleData* data = nullptr;
    std::u16string scratch;
    const std::u16string* value = LookUp(data, Locale, LCType, scratch);
    if (!value) {
        return 0;
    }
    if (LCType & LOCALE_RETURN_NUMBER) {
        const DWORD number = NumberOf(*value, LCType);
        char bytes[sizeof number];
        std::memcpy(bytes, &number, sizeof number);
        return Deliver(bytes, sizeof bytes, lpLCData, cchData);
    }
    const CodePage* page = (LCType & LOCALE_USE_CP_ACP)
                               ? &CodePage::Ansi()
                               : CodePage::Get(data->Record().ansi_code_page);
    if (!page) {
        page = &CodePage::Ansi();
    }
    std::string text = page->Encode(*value);
    text.push_back('\0');
    return Deliver(text.data(), text.size(), lpLCData, cchData);
}

}  // extern "C"
