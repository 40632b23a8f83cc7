// GetDateFormat and GetTimeFormat: Windows date and time pictures.
#include <cstring>
#include <string>
#include <vector>

#include "platform/posix/locale/codepage.h"
#include "platform/posix/locale/locale_data.h"
#include "platform/posix/locale/picture.h"
#include "platform/posix/system/civil_time.h"
#include "platform/win32.h"

namespace {

using namespace zq::platform::internal;

std::u16string Digits(unsigned value, size_t min_width) {
    std::string text = std::to_string(value);
    if (text.size() < min_width) {
        text.insert(0, min_width - text.size(), '0');
    }
    return std::u16string(text.begin(), text.end());
}

// MMMM takes the genitive month name when the nearest day field before or
// after it is a day number (d or dd), as in "d MMMM yyyy".
bool WantsGenitive(const std::vector<PictureToken>& tokens, size_t index) {
    for (size_t i = index; i-- > 0;) {
        if (tokens[i].is_field && tokens[i].letter == u'd') {
            if (tokens[i].count <= 2)
                return true;
            break;
        }
    }
    for (size_t i = index + 1; i < tokens.size(); ++i) {
        if (tokens[i].is_field && tokens[i].letter == u'd') {
            return tokens[i].count <= 2;
        }
    }
    return false;
}

std::u16string FormatDate(const LocaleData& data, const SYSTEMTIME& date,
                          std::u16string_view picture) {
    const std::vector<PictureToken> tokens = TokenizePicture(picture, kDateLetters);
    const unsigned day_of_week = DayOfWeek(date.wYear, date.wMonth, date.wDay);
    std::u16string out;
    for (size_t i = 0; i < tokens.size(); ++i) {
        const PictureToken& token = tokens[i];
        if (!token.is_field) {
            out += token.text;
            continue;
        }
        const size_t n = token.count;
        switch (token.letter) {
            case u'd':
                out += n <= 2 ? Digits(date.wDay, n) : data.DayName(day_of_week, n == 3);
                break;
            case u'M':
                out += n <= 2 ? Digits(date.wMonth, n)
                              : data.MonthName(date.wMonth, n == 3,
                                               n >= 4 && WantsGenitive(tokens, i));
                break;
            case u'y':
                out += n <= 2 ? Digits(date.wYear % 100u, n) : Digits(date.wYear, 1);
                break;
            case u'g':
                out += data.Era();
                break;
            default:
                break;
        }
    }
    return out;
}

bool IsDropped(char16_t letter, DWORD flags) {
    switch (letter) {
        case u'm':
            return (flags & TIME_NOMINUTESORSECONDS) != 0;
        case u's':
            return (flags & (TIME_NOMINUTESORSECONDS | TIME_NOSECONDS)) != 0;
        case u't':
            return (flags & TIME_NOTIMEMARKER) != 0;
        default:
            return false;
    }
}

std::u16string FormatTime(const LocaleData& data, const SYSTEMTIME& time,
                          std::u16string_view picture, DWORD flags) {
    const std::vector<PictureToken> tokens = TokenizePicture(picture, kTimeLetters);
    std::u16string out;
    size_t kept_end = 0;    // end of the output of the last field printed
    bool skipping = false;  // inside the text after a left-out field
    bool skipped_blank = false;
    for (const PictureToken& token : tokens) {
        if (!token.is_field) {
            if (skipping) {
                skipped_blank = skipped_blank || token.text.find(u' ') != std::u16string::npos;
            } else {
                out += token.text;
            }
            continue;
        }
        const bool drop = IsDropped(token.letter, flags);
        if (skipping && !drop) {
            // "h:mm:ss tt" without seconds keeps the blank before the marker.
            if (skipped_blank && !out.empty()) {
                out.push_back(u' ');
            }
            skipping = false;
            skipped_blank = false;
        }
        if (drop) {
            // A left-out field takes the separator before it along.
            out.resize(kept_end);
            skipping = true;
            continue;
        }
        const size_t width = token.count >= 2 ? 2 : 1;
        switch (token.letter) {
            case u'h':
                if (flags & TIME_FORCE24HOURFORMAT) {
                    out += Digits(time.wHour, width);
                } else {
                    out += Digits(time.wHour % 12 == 0 ? 12 : time.wHour % 12, width);
                }
                break;
            case u'H':
                out += Digits(time.wHour, width);
                break;
            case u'm':
                out += Digits(time.wMinute, width);
                break;
            case u's':
                out += Digits(time.wSecond, width);
                break;
            case u't': {
                const std::u16string& marker = time.wHour < 12 ? data.Am() : data.Pm();
                out += token.count >= 2 ? marker : marker.substr(0, 1);
                break;
            }
            default:
                break;
        }
        kept_end = out.size();
    }
    return out;
}

// The calls' common checks; returns 0 and sets the last error on failure.
template <typename T>
bool CheckBuffer(const T* buffer, int size) {
    if (size < 0 || (size > 0 && !buffer)) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return false;
    }
    return true;
}

template <typename T>
int Deliver(const std::basic_string<T>& text, T* buffer, int size) {
    const size_t length = text.size() + 1;
    if (size == 0) {
        return static_cast<int>(length);
    }
    if (length > static_cast<size_t>(size)) {
        SetLastError(ERROR_INSUFFICIENT_BUFFER);
        return 0;
    }
    std::memcpy(buffer, text.c_str(), length * sizeof(T));
    return static_cast<int>(length);
}

// Produces the date text or sets the last error and returns false.
bool DateText(LCID locale, DWORD flags, const SYSTEMTIME* date, const std::u16string* picture,
              std::u16string& out, const LocaleData** data_out) {
    constexpr DWORD kValid = DATE_SHORTDATE | DATE_LONGDATE | DATE_USE_ALT_CALENDAR |
                             DATE_YEARMONTH | DATE_LTRREADING | DATE_RTLREADING |
                             LOCALE_NOUSEROVERRIDE | LOCALE_USE_CP_ACP;
    constexpr DWORD kPictureChoice = DATE_SHORTDATE | DATE_LONGDATE | DATE_YEARMONTH;
    const DWORD choice = flags & kPictureChoice;
    if ((flags & ~kValid) || (choice & (choice - 1)) ||
        ((flags & DATE_LTRREADING) && (flags & DATE_RTLREADING)) ||
        (picture && (flags & (kPictureChoice | LOCALE_NOUSEROVERRIDE)))) {
        SetLastError(ERROR_INVALID_FLAGS);
        return false;
    }
    const LocaleData* data = LocaleData::For(locale);
    if (!data) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return false;
    }
    SYSTEMTIME when;
    if (date) {
        when = *date;
        if (!IsValidDate(when)) {
            SetLastError(ERROR_INVALID_PARAMETER);
            return false;
        }
    } else {
        GetLocalTime(&when);
    }
    std::u16string chosen;
    if (!picture) {
        const LCTYPE type = (flags & DATE_LONGDATE)    ? LOCALE_SLONGDATE
                            : (flags & DATE_YEARMONTH) ? LOCALE_SYEARMONTH
                                                       : LOCALE_SSHORTDATE;
        chosen = *data->Field(type);
        picture = &chosen;
    }
    out = FormatDate(*data, when, *picture);
    *data_out = data;
    return true;
}

bool TimeText(LCID locale, DWORD flags, const SYSTEMTIME* time, const std::u16string* picture,
              std::u16string& out, const LocaleData** data_out) {
    constexpr DWORD kValid = TIME_NOMINUTESORSECONDS | TIME_NOSECONDS | TIME_NOTIMEMARKER |
                             TIME_FORCE24HOURFORMAT | LOCALE_NOUSEROVERRIDE | LOCALE_USE_CP_ACP;
    if ((flags & ~kValid) || (picture && (flags & LOCALE_NOUSEROVERRIDE))) {
        SetLastError(ERROR_INVALID_FLAGS);
        return false;
    }
    const LocaleData* data = LocaleData::For(locale);
    if (!data) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return false;
    }
    SYSTEMTIME when;
    if (time) {
        when = *time;
        // Only the time of day must be valid; the date is not looked at.
        if (when.wHour > 23 || when.wMinute > 59 || when.wSecond > 59) {
            SetLastError(ERROR_INVALID_PARAMETER);
            return false;
        }
    } else {
        GetLocalTime(&when);
    }
    out = FormatTime(*data, when, picture ? *picture : *data->Field(LOCALE_STIMEFORMAT), flags);
    *data_out = data;
    return true;
}

const CodePage& PageFor(DWORD flags, LCID locale) {
    if (!(flags & LOCALE_USE_CP_ACP)) {
        if (const LocaleData* data = LocaleData::For(locale)) {
            if (const CodePage* page = CodePage::Get(data->Record().ansi_code_page)) {
                return *page;
            }
        }
    }
    return CodePage::Ansi();
}

using TextFunction = bool (*)(LCID, DWORD, const SYSTEMTIME*, const std::u16string*,
                              std::u16string&, const LocaleData**);

int RunW(TextFunction function, LCID locale, DWORD flags, const SYSTEMTIME* when, LPCWSTR format,
         LPWSTR buffer, int size) {
    if (!CheckBuffer(buffer, size)) {
        return 0;
    }
    std::u16string picture;
    if (format) {
        picture = reinterpret_cast<const char16_t*>(format);
    }
    std::u16string text;
    const LocaleData* data = nullptr;
    if (!function(locale, flags, when, format ? &picture : nullptr, text, &data)) {
        return 0;
    }
    return Deliver(text, reinterpret_cast<char16_t*>(buffer), size);
}

int RunA(TextFunction function, LCID locale, DWORD flags, const SYSTEMTIME* when, LPCSTR format,
         LPSTR buffer, int size) {
    if (!CheckBuffer(buffer, size)) {
        return 0;
    }
    const CodePage& page = PageFor(flags, locale);
    std::u16string picture;
    if (format) {
        picture = page.Decode(format);
    }
    std::u16string text;
    const LocaleData* data = nullptr;
    if (!function(locale, flags, when, format ? &picture : nullptr, text, &data)) {
        return 0;
    }
    return Deliver(page.Encode(text), buffer, size);
}

}  // namespace

extern "C" {

int WINAPI GetDateFormatW(LCID Locale, DWORD dwFlags, const SYSTEMTIME* lpDate, LPCWSTR lpFormat,
                          LPWSTR lpDateStr, int cchDate) {
    return RunW(DateText, Locale, dwFlags, lpDate, lpFormat, lpDateStr, cchDate);
}

int WINAPI GetDateFormatA(LCID Locale, DWORD dwFlags, const SYSTEMTIME* lpDate, LPCSTR lpFormat,
                          LPSTR lpDateStr, int cchDate) {
    return RunA(DateText, Locale, dwFlags, lpDate, lpFormat, lpDateStr, cchDate);
}

int WINAPI GetTimeFormatW(LCID Locale, DWORD dwFlags, const SYSTEMTIME* lpTime, LPCWSTR lpFormat,
                          LPWSTR lpTimeStr, int cchTime) {
    return RunW(TimeText, Locale, dwFlags, lpTime, lpFormat, lpTimeStr, cchTime);
}

int WINAPI GetTimeFormatA(LCID Locale, DWORD dwFlags, const SYSTEMTIME* lpTime, LPCSTR lpFormat,
                          LPSTR lpTimeStr, int cchTime) {
    return RunA(TimeText, Locale, dwFlags, lpTime, lpFormat, lpTimeStr, cchTime);
}

}  // extern "C"
