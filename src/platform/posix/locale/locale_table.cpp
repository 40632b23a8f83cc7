#include "platform/posix/locale/locale_table.h"

#include <atomic>
#include <cstdlib>
#include <cstring>
#include <string>

namespace zq::platform::internal {

namespace {

// When a language is named without a country, its first row wins, so the
// main country of each language comes first.
constexpr LocaleRecord kLocales[] = {
    {0x0409, "en_US", "ENU", 1252, 437, 10000, 1},
    {0x0809, "en_GB", "ENG", 1252, 850, 10000, 44},
    {0x0C09, "en_AU", "ENA", 1252, 850, 10000, 61},
    {0x1009, "en_CA", "ENC", 1252, 850, 10000, 2},
    {0x1409, "en_NZ", "ENZ", 1252, 850, 10000, 64},
    {0x1809, "en_IE", "ENI", 1252, 850, 10000, 353},
    {0x0407, "de_DE", "DEU", 1252, 850, 10000, 49},
    {0x0807, "de_CH", "DES", 1252, 850, 10000, 41},
    {0x0C07, "de_AT", "DEA", 1252, 850, 10000, 43},
    {0x040C, "fr_FR", "FRA", 1252, 850, 10000, 33},
    {0x080C, "fr_BE", "FRB", 1252, 850, 10000, 32},
    {0x0C0C, "fr_CA", "FRC", 1252, 850, 10000, 2},
    {0x100C, "fr_CH", "FRS", 1252, 850, 10000, 41},
    {0x0410, "it_IT", "ITA", 1252, 850, 10000, 39},
    {0x0810, "it_CH", "ITS", 1252, 850, 10000, 41},
    {0x0C0A, "es_ES", "ESN", 1252, 850, 10000, 34},
    {0x040A, "es_ES@collation=traditional", "ESP", 1252, 850, 10000, 34},
    {0x080A, "es_MX", "ESM", 1252, 850, 10000, 52},
    {0x0413, "nl_NL", "NLD", 1252, 850, 10000, 31},
    {0x0813, "nl_BE", "NLB", 1252, 850, 10000, 32},
    {0x0416, "pt_BR", "PTB", 1252, 850, 10000, 55},
    {0x0816, "pt_PT", "PTG", 1252, 860, 10000, 351},
    {0x0406, "da_DK", "DAN", 1252, 850, 10000, 45},
    {0x041D, "sv_SE", "SVE", 1252, 850, 10000, 46},
    {0x0414, "nb_NO", "NOR", 1252, 850, 10000, 47},
    {0x040B, "fi_FI", "FIN", 1252, 850, 10000, 358},
    {0x0415, "pl_PL", "PLK", 1250, 852, 10029, 48},
    {0x0405, "cs_CZ", "CSY", 1250, 852, 10029, 420},
    {0x040E, "hu_HU", "HUN", 1250, 852, 10029, 36},
    {0x0408, "el_GR", "ELL", 1253, 737, 10006, 30},
    {0x041F, "tr_TR", "TRK", 1254, 857, 10081, 90},
    {0x0419, "ru_RU", "RUS", 1251, 866, 10007, 7},
    {0x0411, "ja_JP", "JPN", 932, 932, 10001, 81},
    {0x0804, "zh_CN", "CHS", 936, 936, 10008, 86},
    {0x0404, "zh_TW", "CHT", 950, 950, 10002, 886},
    {0x0412, "ko_KR", "KOR", 949, 949, 10003, 82},
};

constexpr LCID kFallbackLcid = 0x0409;

const LocaleRecord* ExactRecord(LANGID lang) {
    for (const LocaleRecord& record : kLocales) {
        if (record.lcid == lang) {
            return &record;
        }
    }
    return nullptr;
}

// Language part of an ICU or POSIX name ("de" of "de_DE").
std::string_view LanguageOf(std::string_view name) {
    return name.substr(0, name.find_first_of("_-.@"));
}

LCID ChooseUserDefault() {
    if (const char* env = std::getenv("ZQ_LCID"); env && *env) {
        char* end = nullptr;
        unsigned long value = std::strtoul(env, &end, 16);
        if (end && *end == '\0' && value <= 0xFFFF && ExactRecord(static_cast<LANGID>(value))) {
            return static_cast<LCID>(value);
        }
    }
    for (const char* name : {"LC_ALL", "LC_TIME", "LANG"}) {
        const char* env = std::getenv(name);
        if (env && *env) {
            LCID lcid = LcidFromPosixLocale(env);
            return lcid ? lcid : kFallbackLcid;
        }
    }
    return kFallbackLcid;
}

std::atomic<LCID> g_user_default{0};

}  // namespace

LCID UserDefaultLcid() {
    LCID lcid = g_user_default.load(std::memory_order_acquire);
    if (lcid == 0) {
        lcid = ChooseUserDefault();
        g_user_default.store(lcid, std::memory_order_release);
    }
    return lcid;
}

void ReloadLocaleDefaultsForTesting() {
    g_user_default.store(0, std::memory_order_release);
}

LCID LcidFromPosixLocale(std::string_view name) {
    const std::string_view base = name.substr(0, name.find_first_of(".@"));
    const std::string_view language = LanguageOf(base);
    if (language.empty() || base == "C" || base == "POSIX") {
        return 0;
    }
    std::string normalized(base);
    for (char& c : normalized) {
        if (c == '-') {
            c = '_';
        }
    }
    for (const LocaleRecord& record : kLocales) {
        if (normalized == record.icu_name) {
            return record.lcid;
        }
    }
    for (const LocaleRecord& record : kLocales) {
        if (language == LanguageOf(record.icu_name)) {
            return record.lcid;
        }
    }
    return 0;
}

const LocaleRecord* FindLocaleRecord(LCID lcid) {
    if (lcid > 0xFFFFF) {
        return nullptr;  // bits above the sort id are reserved
    }
    LANGID lang = LANGIDFROMLCID(lcid);
    if (lang == LOCALE_NEUTRAL || lang == LOCALE_USER_DEFAULT || lang == LOCALE_SYSTEM_DEFAULT) {
        lang = static_cast<LANGID>(UserDefaultLcid());
    }
    if (const LocaleRecord* record = ExactRecord(lang)) {
        return record;
    }
    // A neutral or default sublanguage names the language's main locale.
    if (SUBLANGID(lang) <= SUBLANG_SYS_DEFAULT) {
        const LocaleRecord* first = nullptr;
        for (const LocaleRecord& record : kLocales) {
            if (PRIMARYLANGID(record.lcid) != PRIMARYLANGID(lang)) {
                continue;
            }
            if (SUBLANGID(record.lcid) == SUBLANG_DEFAULT) {
                return &record;
            }
            if (!first) {
                first = &record;
            }
        }
        return first;
    }
    return nullptr;
}

}  // namespace zq::platform::internal
