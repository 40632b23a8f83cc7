#include "platform/posix/locale/collation.h"

#include <unicode/ucol.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <string>

#include "platform/posix/locale/codepage.h"
#include "platform/posix/locale/locale_data.h"

namespace zq::platform::internal {

namespace {

// Locales whose collation has no contractions among the ASCII characters
// (no Czech "ch", Danish "aa", Spanish traditional "ll", Turkish dotless i),
// so that ASCII text collates character by character.
bool HasCharacterwiseAscii(LCID lcid) {
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
            return LANGIDFROMLCID(lcid) != 0x040A;
        default:
            return false;
    }
}

bool IsHyphen(char16_t c) {
    return c == u'-' || c == u'\'';
}

UCollator* OpenCollator(LCID lcid) {
    const LocaleData* data = LocaleData::For(lcid);
    UErrorCode status = U_ZERO_ERROR;
    UCollator* collator = ucol_open(data ? data->Record().icu_name : "", &status);
    return U_SUCCESS(status) ? collator : nullptr;
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
    if (!cache.collator || cache.lcid != lcid) {
        if (cache.collator) {
            ucol_close(cache.collator);
        }
        cache.collator = OpenCollator(lcid);
        cache.lcid = lcid;
    }
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
        if (IsHyphen(c)) {
            ++*removed;
        } else {
            out.push_back(c);
        }
    }
    return out;
}

// The order of the printable ASCII characters in one locale's collation:
// a primary rank (letters share theirs with the other case) and whether the
// character is an upper-case letter (which sorts after the lower case at
// the last level). With no contractions and no ignorable characters among
// them, comparing those sequences is the collation of ASCII text.
struct AsciiOrder {
    std::array<uint8_t, 128> primary{};
    std::array<uint8_t, 128> upper{};
};

constexpr unsigned char kFirstPrintable = 0x20, kLastPrintable = 0x7E;

std::unique_ptr<AsciiOrder> BuildAsciiOrder(LCID lcid) {
    UCollator* collator = OpenCollator(lcid);
    if (!collator) {
        return nullptr;
    }
    ucol_setStrength(collator, UCOL_PRIMARY);
    std::array<char16_t, kLastPrintable - kFirstPrintable + 1> chars{};
    for (size_t i = 0; i < chars.size(); ++i) {
        chars[i] = static_cast<char16_t>(kFirstPrintable + i);
    }
    auto order = [&](char16_t x, char16_t y) {
        return ucol_strcoll(collator, reinterpret_cast<const UChar*>(&x), 1,
                            reinterpret_cast<const UChar*>(&y), 1);
    };
    std::stable_sort(chars.begin(), chars.end(),
                     [&](char16_t x, char16_t y) { return order(x, y) == UCOL_LESS; });
    auto result = std::make_unique<AsciiOrder>();
    uint8_t rank = 0;
    for (size_t i = 0; i < chars.size(); ++i) {
        if (i > 0 && order(chars[i - 1], chars[i]) != UCOL_EQUAL) {
            ++rank;
        }
        result->primary[chars[i]] = rank;
        result->upper[chars[i]] = chars[i] >= u'A' && chars[i] <= u'Z';
    }
    ucol_close(collator);
    return result;
}

const AsciiOrder* AsciiOrderFor(LCID lcid) {
    thread_local LCID cached_lcid = 0;
    thread_local const AsciiOrder* cached = nullptr;
    if (cached_lcid == lcid) {
        return cached;
    }
    static std::mutex mutex;
    static auto* orders = new std::map<LCID, std::unique_ptr<AsciiOrder>>;  // lives until exit
    std::lock_guard<std::mutex> lock(mutex);
    auto it = orders->find(lcid);
    if (it == orders->end()) {
        it = orders->emplace(lcid, BuildAsciiOrder(lcid)).first;
    }
    cached_lcid = lcid;
    cached = it->second.get();
    return cached;
}

bool IsPrintableAscii(std::string_view s) {
    for (unsigned char c : s) {
        if (c < kFirstPrintable || c > kLastPrintable) {
            return false;
        }
    }
    return true;
}

// Compares one level of two ASCII strings, skipping hyphens when asked.
template <typename Weight>
int CompareLevel(std::string_view a, std::string_view b, bool skip_hyphens, Weight weight) {
    size_t i = 0, j = 0;
    for (;;) {
        while (skip_hyphens && i < a.size() && IsHyphen(static_cast<char16_t>(a[i])))
            ++i;
        while (skip_hyphens && j < b.size() && IsHyphen(static_cast<char16_t>(b[j])))
            ++j;
        if (i == a.size() || j == b.size()) {
            return (i == a.size() ? 0 : 1) - (j == b.size() ? 0 : 1);
        }
        const int x = weight(static_cast<unsigned char>(a[i++]));
        const int y = weight(static_cast<unsigned char>(b[j++]));
        if (x != y) {
            return x < y ? -1 : 1;
        }
    }
}

int CompareAscii(const AsciiOrder& order, std::string_view a, std::string_view b,
                 bool ignore_case) {
    auto primary = [&](unsigned char c) { return static_cast<int>(order.primary[c]); };
    auto tertiary = [&](unsigned char c) { return static_cast<int>(order.upper[c]); };
    // The same steps as the ICU path below: without hyphens, then the
    // number of hyphens, then everything.
    for (bool skip : {true, false}) {
        if (int r = CompareLevel(a, b, skip, primary)) {
            return r;
        }
        if (!ignore_case) {
            if (int r = CompareLevel(a, b, skip, tertiary)) {
                return r;
            }
        }
        if (skip) {
            const auto hyphens_a =
                std::count_if(a.begin(), a.end(), [](char c) { return IsHyphen(c); });
            const auto hyphens_b =
                std::count_if(b.begin(), b.end(), [](char c) { return IsHyphen(c); });
            if (hyphens_a != hyphens_b) {
                return hyphens_a < hyphens_b ? -1 : 1;
            }
        }
    }
    return 0;
}

}  // namespace

int CollateAnsiWithIcu(LCID lcid, std::string_view a, std::string_view b, bool ignore_case) {
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

int CollateAnsi(std::string_view a, std::string_view b, bool ignore_case) {
    const LCID lcid = GetUserDefaultLCID();
    if (HasCharacterwiseAscii(lcid) && IsPrintableAscii(a) && IsPrintableAscii(b)) {
        if (const AsciiOrder* order = AsciiOrderFor(lcid)) {
            return CompareAscii(*order, a, b, ignore_case);
        }
    }
    return CollateAnsiWithIcu(lcid, a, b, ignore_case);
}

}  // namespace zq::platform::internal
