// The country table of the language modules, built from the country list
// data (data/countries.tsv) and the flag-sharing list (data/country_flags.tsv).
//
// Each country gets a string id for its name (16045 upwards, in the order
// of the English names, the same ids in every language) and a flag picture
// index (1 upwards in the same order; a territory shares the index of the
// country whose flag it flies). A record of the table is three 32-bit
// words: string id | flag << 16, prefix | phone code << 16, country id.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace zq::tools {

struct Country {
    uint32_t id = 0;
    uint32_t phone_code = 0;
    uint32_t prefix = 0;
    std::string name_en;  // UTF-8, exactly as in the data
    std::string name_de;
    uint32_t string_id = 0;
    uint32_t flag = 0;
};

constexpr uint32_t kFirstNameId = 16045;
constexpr uint32_t kLastNameId = 16303;
constexpr uint32_t kFlagLimit = 212;
constexpr uint32_t kTableId = 25599;

// Parses the tab-separated country data (header line first; fields are not
// trimmed). Returns false with a message naming the line on bad input.
bool ParseCountries(const std::string& text, std::vector<Country>* out, std::string* error);

// Parses "territory id<TAB>flag owner id" lines ('#' starts a comment).
bool ParseFlagOwners(const std::string& text, std::map<uint32_t, uint32_t>* out,
                     std::string* error);

// Sorts by English name (ASCII case folded, stable) and assigns string ids
// and flag indexes; false when the ids or flags run out of their ranges or
// a flag owner is not in the list.
bool AssignIds(std::vector<Country>* countries, const std::map<uint32_t, uint32_t>& flag_owners,
               std::string* error);

// UTF-8 to Windows-1252; false when a character has no place in it.
bool Utf8ToWindows1252(const std::string& utf8, std::string* out);

// The resource script (Windows-1252 text) with the names in `language`
// ("en" or "de") and the table.
bool WriteResourceScript(const std::vector<Country>& countries, const std::string& language,
                         std::string* out, std::string* error);

}  // namespace zq::tools
