#include "platform/posix/locale/locale_data.h"

#include <unicode/calendar.h>
#include <unicode/datefmt.h>
#include <unicode/decimfmt.h>
#include <unicode/dtfmtsym.h>
#include <unicode/dtptngen.h>
#include <unicode/locid.h>
#include <unicode/smpdtfmt.h>
#include <unicode/ucurr.h>
#include <unicode/ulocdata.h>

#include <memory>
#include <mutex>
#include <vector>

#include "platform/posix/locale/picture.h"

namespace zq::platform::internal {

namespace {

std::u16string FromIcu(const icu::UnicodeString& s) {
    return std::u16string(reinterpret_cast<const char16_t*>(s.getBuffer()),
                          static_cast<size_t>(s.length()));
}

std::u16string Ascii(std::string_view s) {
    return std::u16string(s.begin(), s.end());
}

std::u16string Number(unsigned value) {
    return Ascii(std::to_string(value));
}

std::u16string Hex4(unsigned value) {
    static const char kDigits[] = "0123456789abcdef";
    std::u16string out(4, u'0');
    for (int i = 3; i >= 0; --i) {
        out[static_cast<size_t>(i)] = static_cast<char16_t>(kDigits[value & 0xF]);
        value >>= 4;
    }
    return out;
}

bool IsSpaceLike(char16_t c) {
    return c == u' ' || c == u'\u00A0' || c == u'\u202F' || c == u'\u2009';
}

// The ICU pattern of a date or time style, or a skeleton's best pattern.
icu::UnicodeString IcuPattern(const icu::Locale& locale, bool date, icu::DateFormat::EStyle style) {
    std::unique_ptr<icu::DateFormat> format(
        date ? icu::DateFormat::createDateInstance(style, locale)
             : icu::DateFormat::createTimeInstance(style, locale));
    icu::UnicodeString pattern;
    if (auto* simple = dynamic_cast<icu::SimpleDateFormat*>(format.get())) {
        simple->toPattern(pattern);
    }
    return pattern;
}

icu::UnicodeString SkeletonPattern(const icu::Locale& locale, const char16_t* skeleton) {
    UErrorCode status = U_ZERO_ERROR;
    std::unique_ptr<icu::DateTimePatternGenerator> generator(
        icu::DateTimePatternGenerator::createInstance(locale, status));
    if (U_FAILURE(status)) {
        return {};
    }
    icu::UnicodeString pattern = generator->getBestPattern(icu::UnicodeString(skeleton), status);
    return U_SUCCESS(status) ? pattern : icu::UnicodeString();
}

// Facts read off a Windows picture.
struct PictureFacts {
    std::u16string first_separator;  // literal between the first two fields, as written
    char16_t order = 0;              // first of d / M / y (day numbers only)
    bool has_24_hour = false;
    size_t hour_digits = 0;
    bool marker_first = false;
    size_t day_digits = 0, month_digits = 0, year_digits = 0;
};

PictureFacts ReadPicture(std::u16string_view picture, std::u16string_view letters) {
    PictureFacts facts;
    std::vector<PictureToken> tokens = TokenizePicture(picture, letters);
    bool seen_field = false, separator_done = false, seen_hour = false;
    for (const PictureToken& token : tokens) {
        if (!token.is_field) {
            if (seen_field && !separator_done) {
                facts.first_separator = token.raw;
            }
            continue;
        }
        if (seen_field) {
            separator_done = true;
        }
        seen_field = true;
        switch (token.letter) {
            case u'd':
                if (token.count <= 2) {
                    if (!facts.order)
                        facts.order = u'd';
                    if (!facts.day_digits)
                        facts.day_digits = token.count;
                }
                break;
            case u'M':
                if (!facts.order)
                    facts.order = u'M';
                if (!facts.month_digits)
                    facts.month_digits = token.count;
                break;
            case u'y':
                if (!facts.order)
                    facts.order = u'y';
                if (!facts.year_digits)
                    facts.year_digits = token.count;
                break;
            case u'H':
            case u'h':
                if (!seen_hour) {
                    facts.has_24_hour = token.letter == u'H';
                    facts.hour_digits = token.count;
                    seen_hour = true;
                }
                break;
            case u't':
                if (!seen_hour)
                    facts.marker_first = true;
                break;
            default:
                break;
        }
    }
    return facts;
}

unsigned OrderCode(char16_t first) {
    return first == u'M' ? 0 : first == u'd' ? 1 : 2;
}

// Windows' position codes for the currency symbol, from an ICU currency
// pattern such as "¤#,##0.00" or "#,##0.00 ¤".
struct CurrencyLayout {
    bool symbol_first = true;
    bool separated = false;
};

CurrencyLayout ReadCurrencyPattern(const icu::UnicodeString& pattern) {
    CurrencyLayout layout;
    icu::UnicodeString positive = pattern;
    int32_t semicolon = positive.indexOf(u';');
    if (semicolon >= 0) {
        positive.truncate(semicolon);
    }
    const int32_t symbol = positive.indexOf(u'\u00A4');
    const int32_t digit =
        positive.indexOf(u'#') >= 0 ? positive.indexOf(u'#') : positive.indexOf(u'0');
    if (symbol < 0 || digit < 0) {
        return layout;
    }
    layout.symbol_first = symbol < digit;
    if (layout.symbol_first) {
        layout.separated =
            symbol + 1 < positive.length() && IsSpaceLike(positive.charAt(symbol + 1));
    } else {
        layout.separated = symbol > 0 && IsSpaceLike(positive.charAt(symbol - 1));
    }
    return layout;
}

std::u16string GroupingText(int32_t primary, int32_t secondary) {
    if (primary <= 0) {
        return u"0;0";
    }
    std::u16string out = Number(static_cast<unsigned>(primary)) + u";";
    if (secondary > 0 && secondary != primary) {
        out += Number(static_cast<unsigned>(secondary)) + u";";
    }
    return out + u"0";
}

// Windows writes blanks in separators as the no-break space U+00A0.
std::u16string WindowsSeparator(std::u16string s) {
    for (char16_t& c : s) {
        if (c == u'\u202F' || c == u'\u2009') {
            c = u'\u00A0';
        }
    }
    return s;
}

}  // namespace

std::u16string PictureFromIcuPattern(std::u16string_view pattern) {
    // Literal text first, as a list of pieces; quoting is decided when the
    // Windows picture is written.
    struct Piece {
        bool is_field;
        char16_t letter;
        size_t count;
        std::u16string text;
    };
    std::vector<Piece> pieces;
    auto literal = [&](char16_t c) {
        if (pieces.empty() || pieces.back().is_field) {
            pieces.push_back(Piece{false, 0, 0, {}});
        }
        pieces.back().text.push_back(IsSpaceLike(c) ? u' ' : c);
    };
    size_t i = 0;
    while (i < pattern.size()) {
        const char16_t c = pattern[i];
        if (c == u'\'') {
            if (i + 1 < pattern.size() && pattern[i + 1] == u'\'') {
                literal(u'\'');
                i += 2;
                continue;
            }
            ++i;
            while (i < pattern.size()) {
                if (pattern[i] == u'\'') {
                    if (i + 1 < pattern.size() && pattern[i + 1] == u'\'') {
                        literal(u'\'');
                        i += 2;
                        continue;
                    }
                    ++i;
                    break;
                }
                literal(pattern[i++]);
            }
            continue;
        }
        if ((c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z')) {
            size_t count = 0;
            while (i < pattern.size() && pattern[i] == c) {
                ++count;
                ++i;
            }
            pieces.push_back(Piece{true, c, count, {}});
            continue;
        }
        literal(c);
        ++i;
    }

    std::u16string out;
    auto emit_literal = [&](const std::u16string& text) {
        bool quoted = false;
        for (char16_t c : text) {
            const bool needs_quote =
                (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z') || c == u'\'';
            if (needs_quote != quoted) {
                out.push_back(u'\'');
                quoted = needs_quote;
            }
            out.push_back(c);
            if (c == u'\'') {
                out.push_back(u'\'');
            }
        }
        if (quoted) {
            out.push_back(u'\'');
        }
    };
    std::u16string pending;  // literal waiting for the next field
    for (const Piece& piece : pieces) {
        if (!piece.is_field) {
            pending += piece.text;
            continue;
        }
        std::u16string field;
        const size_t n = piece.count;
        switch (piece.letter) {
            case u'y':
            case u'Y':
            case u'u':
                field = n == 2 ? u"yy" : u"yyyy";
                break;
            case u'M':
            case u'L':
                field.assign(n > 4 ? 4 : n, u'M');
                break;
            case u'd':
                field.assign(n > 2 ? 2 : n, u'd');
                break;
            case u'E':
            case u'e':
            case u'c':
                field = n >= 4 ? u"dddd" : u"ddd";
                break;
            case u'G':
                field = u"gg";
                break;
            case u'h':
            case u'K':
                field.assign(n > 2 ? 2 : n, u'h');
                break;
            case u'H':
            case u'k':
                field.assign(n > 2 ? 2 : n, u'H');
                break;
            case u'm':
                field.assign(n > 2 ? 2 : n, u'm');
                break;
            case u's':
                field.assign(n > 2 ? 2 : n, u's');
                break;
            case u'a':
            case u'b':
            case u'B':
                field = u"tt";
                break;
            default:
                break;  // time zones, fractions of seconds ...: no picture
        }
        if (field.empty()) {
            // Drop the field with the blank that led to it.
            while (!pending.empty() && (pending.back() == u' ' || pending.back() == u'(')) {
                pending.pop_back();
            }
            continue;
        }
        emit_literal(pending);
        pending.clear();
        out += field;
    }
    // Trailing text after a dropped field (") ") goes; real text stays.
    while (!pending.empty() && (pending.back() == u' ' || pending.back() == u')')) {
        pending.pop_back();
    }
    emit_literal(pending);
    return out;
}

const LocaleData* LocaleData::For(LCID lcid) {
    const LocaleRecord* record = FindLocaleRecord(lcid);
    if (!record) {
        return nullptr;
    }
    static std::mutex mutex;
    static auto* cache = new std::map<LCID, std::unique_ptr<LocaleData>>;  // lives until exit
    std::lock_guard<std::mutex> lock(mutex);
    auto& slot = (*cache)[record->lcid];
    if (!slot) {
        slot.reset(new LocaleData(*record));
        slot->Load();
    }
    return slot.get();
}

LocaleData::LocaleData(const LocaleRecord& record) : record_(record) {}

const std::u16string* LocaleData::Field(LCTYPE type) const {
    auto it = fields_.find(type);
    return it == fields_.end() ? nullptr : &it->second;
}

bool LocaleData::IsNumericField(LCTYPE type) {
    switch (type) {
        case LOCALE_ILANGUAGE:
        case LOCALE_ICOUNTRY:
        case LOCALE_IDEFAULTLANGUAGE:
        case LOCALE_IDEFAULTCOUNTRY:
        case LOCALE_IDEFAULTCODEPAGE:
        case LOCALE_IDEFAULTANSICODEPAGE:
        case LOCALE_IDEFAULTMACCODEPAGE:
        case LOCALE_IMEASURE:
        case LOCALE_IDIGITS:
        case LOCALE_ILZERO:
        case LOCALE_INEGNUMBER:
        case LOCALE_ICURRDIGITS:
        case LOCALE_IINTLCURRDIGITS:
        case LOCALE_ICURRENCY:
        case LOCALE_INEGCURR:
        case LOCALE_IDATE:
        case LOCALE_ILDATE:
        case LOCALE_ITIME:
        case LOCALE_ITIMEMARKPOSN:
        case LOCALE_ICENTURY:
        case LOCALE_ITLZERO:
        case LOCALE_IDAYLZERO:
        case LOCALE_IMONLZERO:
        case LOCALE_ICALENDARTYPE:
        case LOCALE_IOPTIONALCALENDAR:
        case LOCALE_IFIRSTDAYOFWEEK:
        case LOCALE_IFIRSTWEEKOFYEAR:
        case LOCALE_IPOSSIGNPOSN:
        case LOCALE_INEGSIGNPOSN:
        case LOCALE_IPOSSYMPRECEDES:
        case LOCALE_IPOSSEPBYSPACE:
        case LOCALE_INEGSYMPRECEDES:
        case LOCALE_INEGSEPBYSPACE:
        case LOCALE_IPAPERSIZE:
        case LOCALE_IDIGITSUBSTITUTION:
            return true;
        default:
            return false;
    }
}

bool LocaleData::IsHexField(LCTYPE type) {
    return type == LOCALE_ILANGUAGE || type == LOCALE_IDEFAULTLANGUAGE;
}

const std::u16string& LocaleData::DayName(unsigned day_of_week, bool abbreviated) const {
    // LOCALE_SDAYNAME1 is Monday.
    const LCTYPE first = abbreviated ? LOCALE_SABBREVDAYNAME1 : LOCALE_SDAYNAME1;
    return fields_.at(first + (day_of_week + 6) % 7);
}

const std::u16string& LocaleData::MonthName(unsigned month, bool abbreviated, bool genitive) const {
    if (genitive && !abbreviated) {
        return genitive_months_[month - 1];
    }
    return fields_.at((abbreviated ? LOCALE_SABBREVMONTHNAME1 : LOCALE_SMONTHNAME1) + month - 1);
}

const std::u16string& LocaleData::Am() const {
    return fields_.at(LOCALE_S1159);
}
const std::u16string& LocaleData::Pm() const {
    return fields_.at(LOCALE_S2359);
}

void LocaleData::Load() {
    const icu::Locale locale(record_.icu_name);
    // Names come from the locale without keywords (the traditional sort of
    // Spanish is still Spanish (Spain)).
    const icu::Locale named(locale.getLanguage(), locale.getCountry());
    const icu::Locale english = icu::Locale::getEnglish();
    icu::UnicodeString s;
    auto& f = fields_;

    // Identity.
    const unsigned lang = LANGIDFROMLCID(record_.lcid);
    f[LOCALE_ILANGUAGE] = Hex4(lang);
    f[LOCALE_IDEFAULTLANGUAGE] = Hex4(lang);
    f[LOCALE_SLANGUAGE] = FromIcu(named.getDisplayName(english, s));
    f[LOCALE_SENGLANGUAGE] = FromIcu(named.getDisplayLanguage(english, s.remove()));
    f[LOCALE_SNATIVELANGNAME] = FromIcu(named.getDisplayLanguage(named, s.remove()));
    f[LOCALE_SABBREVLANGNAME] = Ascii(record_.abbreviation);
    f[LOCALE_ICOUNTRY] = Number(record_.country_code);
    f[LOCALE_IDEFAULTCOUNTRY] = Number(record_.country_code);
    f[LOCALE_SCOUNTRY] = FromIcu(named.getDisplayCountry(english, s.remove()));
    f[LOCALE_SENGCOUNTRY] = f[LOCALE_SCOUNTRY];
    f[LOCALE_SNATIVECTRYNAME] = FromIcu(named.getDisplayCountry(named, s.remove()));
    f[LOCALE_SABBREVCTRYNAME] = Ascii(named.getISO3Country());
    f[LOCALE_SISO639LANGNAME] = Ascii(named.getLanguage());
    f[LOCALE_SISO3166CTRYNAME] = Ascii(named.getCountry());
    f[LOCALE_IDEFAULTCODEPAGE] = Number(record_.oem_code_page);
    f[LOCALE_IDEFAULTANSICODEPAGE] = Number(record_.ansi_code_page);
    f[LOCALE_IDEFAULTMACCODEPAGE] = Number(record_.mac_code_page);
    f[LOCALE_SSORTNAME] = u"Default";

    // Measures.
    UErrorCode status = U_ZERO_ERROR;
    UMeasurementSystem measure = ulocdata_getMeasurementSystem(record_.icu_name, &status);
    f[LOCALE_IMEASURE] = U_SUCCESS(status) && measure == UMS_US ? u"1" : u"0";
    status = U_ZERO_ERROR;
    int32_t paper_height = 0, paper_width = 0;
    ulocdata_getPaperSize(record_.icu_name, &paper_height, &paper_width, &status);
    f[LOCALE_IPAPERSIZE] = U_SUCCESS(status) && paper_height == 279 ? u"1" : u"9";

    // Numbers and currency.
    status = U_ZERO_ERROR;
    icu::DecimalFormatSymbols symbols(locale, status);
    using Sym = icu::DecimalFormatSymbols;
    const std::u16string decimal = FromIcu(symbols.getSymbol(Sym::kDecimalSeparatorSymbol));
    f[LOCALE_SDECIMAL] = decimal;
    f[LOCALE_STHOUSAND] =
        WindowsSeparator(FromIcu(symbols.getSymbol(Sym::kGroupingSeparatorSymbol)));
    f[LOCALE_SLIST] = decimal == u"," ? u";" : u",";
    f[LOCALE_IDIGITS] = u"2";
    f[LOCALE_ILZERO] = u"1";
    f[LOCALE_INEGNUMBER] = u"1";
    f[LOCALE_SNATIVEDIGITS] = u"0123456789";
    f[LOCALE_SPOSITIVESIGN] = u"";
    f[LOCALE_SNEGATIVESIGN] = u"-";
    f[LOCALE_IDIGITSUBSTITUTION] = u"1";
    f[LOCALE_SCURRENCY] = FromIcu(symbols.getSymbol(Sym::kCurrencySymbol));
    const std::u16string intl = FromIcu(symbols.getSymbol(Sym::kIntlCurrencySymbol));
    f[LOCALE_SINTLSYMBOL] = intl;
    f[LOCALE_SMONDECIMALSEP] = FromIcu(symbols.getSymbol(Sym::kMonetarySeparatorSymbol));
    f[LOCALE_SMONTHOUSANDSEP] =
        WindowsSeparator(FromIcu(symbols.getSymbol(Sym::kMonetaryGroupingSeparatorSymbol)));

    int32_t grouping = 3, secondary = 0;
    status = U_ZERO_ERROR;
    std::unique_ptr<icu::NumberFormat> number(icu::NumberFormat::createInstance(locale, status));
    if (auto* dec = dynamic_cast<icu::DecimalFormat*>(number.get())) {
        grouping = dec->getGroupingSize();
        secondary = dec->getSecondaryGroupingSize();
    }
    f[LOCALE_SGROUPING] = GroupingText(grouping, secondary);
    f[LOCALE_SMONGROUPING] = f[LOCALE_SGROUPING];

    CurrencyLayout layout;
    status = U_ZERO_ERROR;
    std::unique_ptr<icu::NumberFormat> currency(
        icu::NumberFormat::createCurrencyInstance(locale, status));
    if (auto* dec = dynamic_cast<icu::DecimalFormat*>(currency.get())) {
        dec->toPattern(s.remove());
        layout = ReadCurrencyPattern(s);
    }
    // ICURRENCY: 0 "$1", 1 "1$", 2 "$ 1", 3 "1 $".
    const unsigned icurrency = (layout.symbol_first ? 0 : 1) + (layout.separated ? 2 : 0);
    f[LOCALE_ICURRENCY] = Number(icurrency);
    // INEGCURR with the minus sign leading: 1 "-$1", 5 "-1$", 8 "-1 $", 9 "-$ 1".
    static constexpr unsigned kNegative[4] = {1, 5, 9, 8};
    f[LOCALE_INEGCURR] = Number(kNegative[icurrency]);
    f[LOCALE_IPOSSYMPRECEDES] = layout.symbol_first ? u"1" : u"0";
    f[LOCALE_INEGSYMPRECEDES] = f[LOCALE_IPOSSYMPRECEDES];
    f[LOCALE_IPOSSEPBYSPACE] = layout.separated ? u"1" : u"0";
    f[LOCALE_INEGSEPBYSPACE] = f[LOCALE_IPOSSEPBYSPACE];
    f[LOCALE_IPOSSIGNPOSN] = u"3";
    f[LOCALE_INEGSIGNPOSN] = u"1";
    UChar iso[4] = {};
    for (size_t k = 0; k < 3 && k < intl.size(); ++k) {
        iso[k] = intl[k];
    }
    status = U_ZERO_ERROR;
    const int32_t digits = ucurr_getDefaultFractionDigits(iso, &status);
    f[LOCALE_ICURRDIGITS] =
        Number(U_SUCCESS(status) && digits >= 0 ? static_cast<unsigned>(digits) : 2);
    f[LOCALE_IINTLCURRDIGITS] = f[LOCALE_ICURRDIGITS];
    for (const auto& [type, where] : {std::pair{LOCALE_SENGCURRNAME, "en"},
                                      std::pair{LOCALE_SNATIVECURRNAME, record_.icu_name}}) {
        UBool is_choice = false;
        int32_t length = 0;
        status = U_ZERO_ERROR;
        const UChar* name =
            ucurr_getName(iso, where, UCURR_LONG_NAME, &is_choice, &length, &status);
        f[type] = U_SUCCESS(status) && name
                      ? std::u16string(reinterpret_cast<const char16_t*>(name),
                                       static_cast<size_t>(length))
                      : intl;
    }

    // Calendar names.
    status = U_ZERO_ERROR;
    icu::DateFormatSymbols dates(locale, status);
    int32_t n = 0;
    using DFS = icu::DateFormatSymbols;
    const icu::UnicodeString* days = dates.getWeekdays(n, DFS::FORMAT, DFS::WIDE);
    const icu::UnicodeString* short_days = dates.getWeekdays(n, DFS::FORMAT, DFS::ABBREVIATED);
    for (int day = 0; day < 7; ++day) {
        // ICU counts from Sunday = 1; Windows' first name is Monday's.
        const int icu_day = (day + 1) % 7 + 1;
        f[LOCALE_SDAYNAME1 + day] = FromIcu(days[icu_day]);
        f[LOCALE_SABBREVDAYNAME1 + day] = FromIcu(short_days[icu_day]);
    }
    const icu::UnicodeString* months = dates.getMonths(n, DFS::STANDALONE, DFS::WIDE);
    const icu::UnicodeString* short_months = dates.getMonths(n, DFS::STANDALONE, DFS::ABBREVIATED);
    const icu::UnicodeString* format_months = dates.getMonths(n, DFS::FORMAT, DFS::WIDE);
    for (int month = 0; month < 12; ++month) {
        f[LOCALE_SMONTHNAME1 + month] = FromIcu(months[month]);
        f[LOCALE_SABBREVMONTHNAME1 + month] = FromIcu(short_months[month]);
        genitive_months_[static_cast<size_t>(month)] = FromIcu(format_months[month]);
    }
    f[LOCALE_SMONTHNAME13] = u"";
    f[LOCALE_SABBREVMONTHNAME13] = u"";
    const icu::UnicodeString* am_pm = dates.getAmPmStrings(n);
    f[LOCALE_S1159] = n > 0 ? FromIcu(am_pm[0]) : u"AM";
    f[LOCALE_S2359] = n > 1 ? FromIcu(am_pm[1]) : u"PM";
    const icu::UnicodeString* eras = dates.getEras(n);
    era_ = n > 1 ? FromIcu(eras[1]) : u"";

    status = U_ZERO_ERROR;
    std::unique_ptr<icu::Calendar> calendar(icu::Calendar::createInstance(locale, status));
    unsigned first_day = 0, first_week = 0;
    if (U_SUCCESS(status)) {
        // ICU: 1 = Sunday; Windows: 0 = Monday.
        first_day = (static_cast<unsigned>(calendar->getFirstDayOfWeek(status)) + 5) % 7;
        const uint8_t min_days = calendar->getMinimalDaysInFirstWeek();
        first_week = min_days >= 7 ? 1 : min_days >= 4 ? 2 : 0;
    }
    f[LOCALE_IFIRSTDAYOFWEEK] = Number(first_day);
    f[LOCALE_IFIRSTWEEKOFYEAR] = Number(first_week);
    f[LOCALE_ICALENDARTYPE] = u"1";
    f[LOCALE_IOPTIONALCALENDAR] = u"0";

    // Pictures and what follows from them.
    const std::u16string short_date =
        PictureFromIcuPattern(FromIcu(IcuPattern(locale, true, icu::DateFormat::kShort)));
    const std::u16string long_date =
        PictureFromIcuPattern(FromIcu(IcuPattern(locale, true, icu::DateFormat::kFull)));
    const std::u16string time_format =
        PictureFromIcuPattern(FromIcu(IcuPattern(locale, false, icu::DateFormat::kMedium)));
    f[LOCALE_SSHORTDATE] = short_date;
    f[LOCALE_SLONGDATE] = long_date;
    f[LOCALE_STIMEFORMAT] = time_format;
    f[LOCALE_SYEARMONTH] = PictureFromIcuPattern(FromIcu(SkeletonPattern(locale, u"yMMMM")));

    const PictureFacts short_facts = ReadPicture(short_date, kDateLetters);
    const PictureFacts long_facts = ReadPicture(long_date, kDateLetters);
    const PictureFacts time_facts = ReadPicture(time_format, kTimeLetters);
    f[LOCALE_SDATE] = short_facts.first_separator.empty() ? u"/" : short_facts.first_separator;
    f[LOCALE_STIME] = time_facts.first_separator.empty() ? u":" : time_facts.first_separator;
    f[LOCALE_IDATE] = Number(OrderCode(short_facts.order));
    f[LOCALE_ILDATE] = Number(OrderCode(long_facts.order));
    f[LOCALE_ICENTURY] = short_facts.year_digits >= 4 ? u"1" : u"0";
    f[LOCALE_IDAYLZERO] = short_facts.day_digits >= 2 ? u"1" : u"0";
    f[LOCALE_IMONLZERO] = short_facts.month_digits >= 2 ? u"1" : u"0";
    f[LOCALE_ITIME] = time_facts.has_24_hour ? u"1" : u"0";
    f[LOCALE_ITLZERO] = time_facts.hour_digits >= 2 ? u"1" : u"0";
    f[LOCALE_ITIMEMARKPOSN] = time_facts.marker_first ? u"1" : u"0";
}

}  // namespace zq::platform::internal
