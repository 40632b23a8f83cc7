#include "country_table.h"

#include <gtest/gtest.h>

namespace zq::tools {
namespace {

const char kHeader[] =
    "country_id\tphone_code\tprefix\tiso2\tname_en\tname_de\tname_fr\tsame_area_rule\tlong_"
    "distance_rule\t"
    "international_rule\n";

TEST(CountryTable, KeepsFieldsUntrimmedAndSortsByEnglishName) {
    std::string text = std::string(kHeader) +
                       "49\t49\t0\tDE\tGermany\tDeutschland\tAllemagne\t G\t 0FG\t00EFG\n"
                       "20\t20\t0\tEG\tEgypt\t\xC3\x84gypten\t\xC3\x89gypte\tG\t0FG\t00EFG\n"
                       "800\t800\t0\t\tInternational Freephone Service\tX\tY\t\t\t\n";
    std::vector<Country> countries;
    std::string error;
    ASSERT_TRUE(ParseCountries(text, &countries, &error)) << error;
    ASSERT_EQ(countries.size(), 3u);
    ASSERT_TRUE(AssignIds(&countries, {}, &error)) << error;
    EXPECT_EQ(countries[0].name_en, "Egypt");
    EXPECT_EQ(countries[0].string_id, 16045u);
    EXPECT_EQ(countries[1].name_en, "Germany");
    EXPECT_EQ(countries[2].string_id, 16047u);
    EXPECT_EQ(countries[2].flag, 3u);
}

TEST(CountryTable, RefusesRowsWithMissingFields) {
    std::string text = std::string(kHeader) + "49\t49\t0\tDE\tGermany\tDeutschland\n";
    std::vector<Country> countries;
    std::string error;
    EXPECT_FALSE(ParseCountries(text, &countries, &error));
    EXPECT_NE(error.find("line 2"), std::string::npos);
}

TEST(CountryTable, TerritoriesShareTheirOwnersFlag) {
    std::string text = std::string(kHeader) +
                       "1\t1\t0\tUS\tUnited States\tUSA\tx\tG\tG\tG\n"
                       "124\t671\t1\tGU\tGuam\tGuam\tx\tG\tG\tG\n"
                       "44\t44\t0\tGB\tUnited Kingdom\tUK\tx\tG\tG\tG\n";
    std::vector<Country> countries;
    std::string error;
    ASSERT_TRUE(ParseCountries(text, &countries, &error));
    ASSERT_TRUE(AssignIds(&countries, {{124, 1}}, &error)) << error;
    // Name order: Guam, United Kingdom, United States; Guam takes the US picture.
    EXPECT_EQ(countries[0].flag, countries[2].flag);
    EXPECT_NE(countries[1].flag, countries[2].flag);
    EXPECT_FALSE(AssignIds(&countries, {{124, 999}}, &error));
}

TEST(CountryTable, ScriptIsWindows1252WithTableRecords) {
    std::string text = std::string(kHeader) +
                       "20\t20\t0\tEG\tEgypt\t\xC3\x84gypten\tx\tG\tG\tG\n"
                       "684\t684\t1\tAS\tAmerican \"Samoa\"\tAmerikanisch-Samoa\tx\tG\tG\tG\n";
    std::vector<Country> countries;
    std::string error, script;
    ASSERT_TRUE(ParseCountries(text, &countries, &error));
    ASSERT_TRUE(AssignIds(&countries, {}, &error));
    ASSERT_TRUE(WriteResourceScript(countries, "de", &script, &error)) << error;
    EXPECT_NE(script.find("16046 \"\xC4gypten\""), std::string::npos);
    EXPECT_NE(script.find("LANGUAGE 0x07, 0x01"), std::string::npos);
    ASSERT_TRUE(WriteResourceScript(countries, "en", &script, &error));
    EXPECT_NE(script.find("16045 \"American \"\"Samoa\"\"\""), std::string::npos);
    // American Samoa: string 16045, flag 1; prefix 1, phone code 684; id 684.
    EXPECT_NE(script.find("0x00013EADL, 0x02AC0001L, 0x000002ACL,"), std::string::npos);
    EXPECT_NE(script.find("0x00000000L, 0x00000000L, 0x00000000L\nEND"), std::string::npos);
}

TEST(CountryTable, Windows1252Conversion) {
    std::string out;
    EXPECT_TRUE(Utf8ToWindows1252("\xE2\x82\xAC \xC3\xBC", &out));
    EXPECT_EQ(out, "\x80 \xFC");
    EXPECT_FALSE(Utf8ToWindows1252("\xE4\xB8\xAD", &out));  // a CJK character
    EXPECT_FALSE(Utf8ToWindows1252("\xC3", &out));          // cut sequence
}

}  // namespace
}  // namespace zq::tools
