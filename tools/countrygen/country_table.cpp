// Country data to resource script.
#include "country_table.h"

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <set>
#include <sstream>

namespace zq::tools {
namespace {

std::vector<std::string> SplitTabs(const std::string& line) {
    std::vector<std::string> fields;
    size_t at = 0;
    for (;;) {
        size_t tab = line.find('\t', at);
        fields.push_back(line.substr(at, tab == std::string::npos ? std::string::npos : tab - at));
        if (tab == std::string::npos)
            break;
        at = tab + 1;
    }
    return fields;
}

bool ParseNumber(const std::string& text, uint32_t limit, uint32_t* out) {
    if (text.empty() || text.size() > 9)
        return false;
    uint32_t value = 0;
    for (char c : text) {
        if (c < '0' || c > '9')
            return false;
        value = value * 10 + static_cast<uint32_t>(c - '0');
    }
    if (value > limit)
        return false;
    *out = value;
    return true;
}

std::string Folded(const std::string& text) {
    std::string out = text;
    for (char& c : out)
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return out;
}

std::vector<std::string> Lines(const std::string& text) {
    std::vector<std::string> lines;
    std::string line;
    std::istringstream in(text);
    while (std::getline(in, line)) {
        if (!line.empty() && line.back() == '\r')
            line.pop_back();
        lines.push_back(line);
    }
    return lines;
}

// Windows-1252 bytes 0x80..0x9F; 0 where the page has no character.
constexpr uint32_t kHigh[32] = {0x20AC, 0,      0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0,      0x017D, 0,
                                0,      0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0,      0x017E, 0x0178};

}  // namespace

bool ParseCountries(const std::string& text, std::vector<Country>* out, std::string* error) {
    std::vector<std::string> lines = Lines(text);
    if (lines.empty()) {
        *error = "empty country data";
        return false;
    }
    std::vector<std::string> header = SplitTabs(lines[0]);
    auto column = [&](const char* name) -> long {
        auto it = std::find(header.begin(), header.end(), name);
        return it == header.end() ? -1 : static_cast<long>(it - header.begin());
    };
    const long id = column("country_id"), code = column("phone_code"), prefix = column("prefix"),
               en = column("name_en"), de = column("name_de");
    if (id < 0 || code < 0 || prefix < 0 || en < 0 || de < 0) {
        *error = "header lacks one of country_id, phone_code, prefix, name_en, name_de";
        return false;
    }
    std::set<uint32_t> seen;
    for (size_t n = 1; n < lines.size(); ++n) {
        if (lines[n].empty())
            continue;
        std::vector<std::string> fields = SplitTabs(lines[n]);
        const std::string where = "line " + std::to_string(n + 1);
        if (fields.size() != header.size()) {
            *error = where + ": " + std::to_string(fields.size()) + " fields, expected " +
                     std::to_string(header.size());
            return false;
        }
        Country country;
        if (!ParseNumber(fields[id], 0xFFFF, &country.id) || country.id == 0 ||
            !ParseNumber(fields[code], 0xFFFF, &country.phone_code) ||
            !ParseNumber(fields[prefix], 0xFFFF, &country.prefix)) {
            *error = where + ": bad number";
            return false;
        }
        if (!seen.insert(country.id).second) {
            *error = where + ": duplicate country id " + fields[id];
            return false;
        }
        country.name_en = fields[en];
        country.name_de = fields[de];
        if (country.name_en.empty() || country.name_de.empty()) {
            *error = where + ": empty name";
            return false;
        }
        out->push_back(std::move(country));
    }
    return true;
}

bool ParseFlagOwners(const std::string& text, std::map<uint32_t, uint32_t>* out,
                     std::string* error) {
    std::vector<std::string> lines = Lines(text);
    for (size_t n = 0; n < lines.size(); ++n) {
        std::string line = lines[n].substr(0, lines[n].find('#'));
        while (!line.empty() && (line.back() == ' ' || line.back() == '\t'))
            line.pop_back();
        if (line.empty())
            continue;
        std::vector<std::string> fields = SplitTabs(line);
        uint32_t territory = 0, owner = 0;
        if (fields.size() < 2 || !ParseNumber(fields[0], 0xFFFF, &territory) ||
            !ParseNumber(fields[1], 0xFFFF, &owner)) {
            *error = "flag owners line " + std::to_string(n + 1) + ": expected two country ids";
            return false;
        }
        (*out)[territory] = owner;
    }
    return true;
}

bool AssignIds(std::vector<Country>* countries, const std::map<uint32_t, uint32_t>& flag_owners,
               std::string* error) {
    std::stable_sort(countries->begin(), countries->end(), [](const Country& a, const Country& b) {
        return Folded(a.name_en) < Folded(b.name_en);
    });
    if (countries->size() > kLastNameId - kFirstNameId + 1) {
        *error = "more countries than string ids";
        return false;
    }
    std::set<uint32_t> ids;
    for (const Country& c : *countries)
        ids.insert(c.id);
    std::map<uint32_t, uint32_t> flag_of_owner;
    uint32_t next_flag = 1;  // 0 stays "no picture"
    for (size_t i = 0; i < countries->size(); ++i) {
        Country& c = (*countries)[i];
        c.string_id = kFirstNameId + static_cast<uint32_t>(i);
        auto owner = flag_owners.find(c.id);
        uint32_t owner_id = owner == flag_owners.end() ? c.id : owner->second;
        if (!ids.count(owner_id)) {
            *error = "flag owner " + std::to_string(owner_id) + " of " + c.name_en +
                     " is not in the list";
            return false;
        }
        auto [it, added] = flag_of_owner.emplace(owner_id, next_flag);
        if (added)
            ++next_flag;
        c.flag = it->second;
        if (c.flag >= kFlagLimit) {
            *error = "more than " + std::to_string(kFlagLimit - 1) + " flag pictures";
            return false;
        }
    }
    return true;
}

bool Utf8ToWindows1252(const std::string& utf8, std::string* out) {
    out->clear();
    for (size_t i = 0; i < utf8.size();) {
        unsigned char lead = static_cast<unsigned char>(utf8[i]);
        uint32_t code = 0;
        size_t length = 0;
        if (lead < 0x80) {
            code = lead;
            length = 1;
        } else if ((lead & 0xE0) == 0xC0) {
            code = lead & 0x1F;
            length = 2;
        } else if ((lead & 0xF0) == 0xE0) {
            code = lead & 0x0F;
            length = 3;
        } else {
            return false;  // four-byte sequences are far outside the page
        }
        if (i + length > utf8.size())
            return false;
        for (size_t k = 1; k < length; ++k) {
            unsigned char next = static_cast<unsigned char>(utf8[i + k]);
            if ((next & 0xC0) != 0x80)
                return false;
            code = (code << 6) | (next & 0x3F);
        }
        i += length;
        if (code < 0x80 || (code >= 0xA0 && code <= 0xFF)) {
            out->push_back(static_cast<char>(code));
            continue;
        }
        const uint32_t* found = std::find(std::begin(kHigh), std::end(kHigh), code);
        if (code == 0 || found == std::end(kHigh))
            return false;
        out->push_back(static_cast<char>(0x80 + (found - std::begin(kHigh))));
    }
    return true;
}

bool WriteResourceScript(const std::vector<Country>& countries, const std::string& language,
                         std::string* out, std::string* error) {
    const char* language_statement = nullptr;
    if (language == "en") {
        language_statement = "LANGUAGE 0x09, 0x01";
    } else if (language == "de") {
        language_statement = "LANGUAGE 0x07, 0x01";
    } else {
        *error = "unknown language " + language;
        return false;
    }
    std::string text;
    text += "/* Generated by zq_countrygen from data/countries.tsv: do not edit. */\n";
    text += "#pragma code_page(1252)\n\n";
    text += std::string(language_statement) + "\n\n";
    text += "STRINGTABLE\nBEGIN\n";
    for (const Country& c : countries) {
        std::string name;
        if (!Utf8ToWindows1252(language == "en" ? c.name_en : c.name_de, &name)) {
            *error = "name of country " + std::to_string(c.id) + " does not fit Windows-1252";
            return false;
        }
        std::string quoted;
        for (char ch : name) {
            if (ch == '"') {
                quoted += "\"\"";
            } else if (ch == '\\') {
                quoted += "\\\\";
            } else {
                quoted += ch;
            }
        }
        text += "    " + std::to_string(c.string_id) + " \"" + quoted + "\"\n";
    }
    text += "END\n\n";
    text +=
        "/* The country table: string id | flag << 16, prefix | phone code << 16,\n"
        " * country id; a record whose first word is 0 ends it. */\n";
    text += std::to_string(kTableId) + " RCDATA\nBEGIN\n";
    char line[96];
    for (const Country& c : countries) {
        std::snprintf(line, sizeof line, "    0x%08XL, 0x%08XL, 0x%08XL,\n",
                      c.string_id | (c.flag << 16), c.prefix | (c.phone_code << 16), c.id);
        text += line;
    }
    text += "    0x00000000L, 0x00000000L, 0x00000000L\nEND\n";
    *out = std::move(text);
    return true;
}

}  // namespace zq::tools
