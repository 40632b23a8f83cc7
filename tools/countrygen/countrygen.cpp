// zq_countrygen COUNTRIES.tsv FLAG_OWNERS.tsv LANGUAGE OUTPUT.rc
//
// Writes the resource script of a language module's country names and
// country table; LANGUAGE is "en" or "de". Exits non-zero with a message
// on bad data, so a broken table fails the build.
#include <cstdio>
#include <fstream>
#include <sstream>

#include "country_table.h"

namespace {

bool ReadFile(const char* path, std::string* out) {
    std::ifstream in(path, std::ios::binary);
    if (!in)
        return false;
    std::ostringstream text;
    text << in.rdbuf();
    *out = text.str();
    return true;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 5) {
        std::fprintf(stderr, "usage: %s COUNTRIES.tsv FLAG_OWNERS.tsv en|de OUTPUT.rc\n", argv[0]);
        return 2;
    }
    std::string countries_text, owners_text, error;
    if (!ReadFile(argv[1], &countries_text) || !ReadFile(argv[2], &owners_text)) {
        std::fprintf(stderr, "zq_countrygen: cannot read %s or %s\n", argv[1], argv[2]);
        return 1;
    }
    std::vector<zq::tools::Country> countries;
    std::map<uint32_t, uint32_t> owners;
    std::string script;
    if (!zq::tools::ParseCountries(countries_text, &countries, &error) ||
        !zq::tools::ParseFlagOwners(owners_text, &owners, &error) ||
        !zq::tools::AssignIds(&countries, owners, &error) ||
        !zq::tools::WriteResourceScript(countries, argv[3], &script, &error)) {
        std::fprintf(stderr, "zq_countrygen: %s\n", error.c_str());
        return 1;
    }
    std::ofstream out(argv[4], std::ios::binary | std::ios::trunc);
    out << script;
    if (!out.good()) {
        std::fprintf(stderr, "zq_countrygen: cannot write %s\n", argv[4]);
        return 1;
    }
    return 0;
}
