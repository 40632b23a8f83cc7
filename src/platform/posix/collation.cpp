#include "platform/posix/collation.h"

#include <unicode/ucol.h>

#include <cstring>
#include <string>

#include "platform/posix/codepage.h"
#include "platform/posix/locale_data.h"
#include "platform/win32.h"

namespace zq::platform::internal {

namespace {

// Locales whose collation treats the ASCII letters and digits like the
// root collation (no digraphs such as Czech "ch" or Danish "aa", no
// Turkish dotless i), so that plain letters can be compared byte-wise.
bool HasPlainAsciiOrder(LCID lcid) {
    switch (PRIMARYLANGID(lcid)) {
        case LANG_ENGLISH:
        case LANG_GERMAN:
        case LANG_FRENCH:
        case LANG_ITALIAN:
        case LANG_DUTCH:
        case LANG_PORTUGUESE:
        case LANG_JAPANESE:
        case LANG_RUSSIAN:
        case LANG_GREEK:
        case LANG_CHINESE:
        case LANG_KOREAN:
        case LANG_POLISH:
            return true;
        case LANG_SPANISH:
            return LANGIDFROMLCID(lcid) != 0x040A;  // traditional sort has "ch" and "ll"
        default:
            return false;
    }
}

bool IsPlainAlnum(std::string_view s) {
    for (unsigned char c : s) {
        if (!((c >= '0' && c <= '9') || ((c | 0x20) >= 'a' && (c | 0x20) <= 'z'))) {
            return false;
        }
    }
    return true;
}

unsigned char FoldAscii(unsigned char c) {
    return (c >= 'A' && c <= 'Z') ? static_cast<unsigned char>(c | 0x20) : c;
}

// Digits before letters, letters alphabetical, and (unless ignoring case)
// lower case before upper case at the first difference in case only.
int CompareAlnum(std::string_view a, std::string_view b, bool ignore_case) {
    const size_t n = a.size() < b.size() ? a.size() : b.size();
    for (size_t i = 0; i < n; ++i) {
        const unsigned char x = FoldAscii(static_cast<unsigned char>(a[i]));
        const unsigned char y = FoldAscii(static_cast<unsigned char>(b[i]));
        if (x != y) {
            return x < y ? -1 : 1;
        }
    }
    if (a.size() != b.size()) {
        return a.size() < b.size() ? -1 : 1;
    }
    if (ignore_case) {
        return 0;
    }
    for (size_t i = 0; i < n; ++i) {
        if (a[i] != b[i]) {
            return (a[i] >= 'a') ? -1 : 1;  // the lower-case letter sorts first
        }
    }
    return 0;
}

struct ThreadCollator {
    LCID lcid = 0;
    UCollator* collator = nullptr;
    ~ThreadCollator() {
        if (collator) {
            ucol_close(collator);
        }
    }
};

UCollator* CollatorFor(LCID lcid) {
    thread_local ThreadCollator cache;
    if (cache.collator && cache.lcid == lcid) {
        return cache.collator;
    }
    if (cache.collator) {
        ucol_close(cache.collator);
        cache.collator = nullptr;
    }
    const LocaleData* data = LocaleData::For(lcid);
    UErrorCode status = U_ZERO_ERROR;
    cache.collator = ucol_open(data ? data->Record().icu_name : "", &status);
    if (U_FAILURE(status)) {
        cache.collator = nullptr;
    }
    cache.lcid = lcid;
    return cache.collator;
}

int Collate(UCollator* collator, const std::u16string& a, const std::u16string& b) {
    const UCollationResult r = ucol_strcoll(
        collator, reinterpret_cast<const UChar*>(a.data()), static_cast<int32_t>(a.size()),
        reinterpret_cast<const UChar*>(b.data()), static_cast<int32_t>(b.size()));
    return r == UCOL_LESS ? -1 : (r == UCOL_GREATER ? 1 : 0);
}

std::u16string WithoutHyphens(const std::u16string& s, size_t* removed) {
    std::u16string out;
    out.reserve(s.size());
    *removed = 0;
    for (char16_t c : s) {
        if (c == u'-' || c == u'\'') {
            ++*removed;
        } else {
            out.push_back(c);
        }
    }
    return out;
}

}  // namespace

int CollateAnsi(std::string_view a, std::string_view b, bool ignore_case) {
    const LCID lcid = GetUserDefaultLCID();
    if (HasPlainAsciiOrder(lcid) && IsPlainAlnum(a) && IsPlainAlnum(b)) {
        return CompareAlnum(a, b, ignore_case);
    }
    UCollator* collator = CollatorFor(lcid);
    if (!collator) {
        const int r = a.compare(b);
        return r < 0 ? -1 : (r > 0 ? 1 : 0);
    }
    ucol_setStrength(collator, ignore_case ? UCOL_SECONDARY : UCOL_TERTIARY);
    const CodePage& page = CodePage::Ansi();
    const std::u16string wide_a = page.Decode(a);
    const std::u16string wide_b = page.Decode(b);
    // Hyphens and apostrophes count only when all else is equal
    // ("coop" < "co-op").
    size_t hyphens_a = 0, hyphens_b = 0;
    const int r =
        Collate(collator, WithoutHyphens(wide_a, &hyphens_a), WithoutHyphens(wide_b, &hyphens_b));
    if (r != 0) {
        return r;
    }
    if (hyphens_a != hyphens_b) {
        return hyphens_a < hyphens_b ? -1 : 1;
    }
    return Collate(collator, wide_a, wide_b);
}

}  // namespace zq::platform::internal
