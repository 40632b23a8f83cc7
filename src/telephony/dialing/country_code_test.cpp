#include "telephony/dialing/country_code.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <thread>
#include <vector>

#include "telephony/dialing/country_lookup.h"
#include "telephony/telephony_results.h"
#include "telephony/testing/language_module_for_tests.h"

namespace {

using zq::telephony::kInvalidArgument;
using zq::telephony::kResourceNotLoaded;
using zq::telephony::testing::ScopedLanguageModule;

// Position of the country with that id, -1 when the list lacks it.
int IndexOfId(const CZqCountryCodeList& list, UINT id) {
    for (int i = 0; i < list.GetSize(); ++i) {
        if (list.GetAt(i)->GetCountryId() == id) {
            return i;
        }
    }
    return -1;
}

DWORD Word(UINT low, UINT high) {
    return static_cast<DWORD>(low & 0xFFFF) | static_cast<DWORD>(high & 0xFFFF) << 16;
}

std::vector<uint8_t> Table(std::initializer_list<DWORD> words) {
    std::vector<uint8_t> bytes;
    for (DWORD w : words) {
        for (int shift = 0; shift < 32; shift += 8) {
            bytes.push_back(static_cast<uint8_t>(w >> shift));
        }
    }
    return bytes;
}

void ExpectNameOrder(const CZqCountryCodeList& list) {
    for (int i = 1; i < list.GetSize(); ++i) {
        EXPECT_LE(list.GetAt(i - 1)->GetName().CompareNoCase(list.GetAt(i)->GetName()), 0) << i;
    }
}

TEST(CountryCodeTest, EnglishTableLoadsEveryCountryInNameOrder) {
    ScopedLanguageModule english("ZQGBLENU.DLL");
    CZqCountryCodeList list(TRUE);
    ASSERT_EQ(list.GetSize(), 240);
    ExpectNameOrder(list);
    EXPECT_EQ(list.GetAt(0)->GetName(), "Afghanistan");

    int germany = IndexOfId(list, 49);
    ASSERT_GE(germany, 0);
    const CZqCountryCode& de = *list.GetAt(germany);
    EXPECT_EQ(de.GetName(), "Germany");
    EXPECT_EQ(de.GetPhoneCode(), 49u);
    EXPECT_EQ(de.GetPrefix(), 0u);
    EXPECT_GE(de.GetStringIndex(), CZqCountryCode::kFirstStringIndex);
    EXPECT_GT(de.GetFlagIndex(), 0u);

    // Anguilla: country id 101, phone code 264, dialed like a domestic
    // long-distance call from North America.
    int anguilla = IndexOfId(list, 101);
    ASSERT_GE(anguilla, 0);
    EXPECT_EQ(list.GetAt(anguilla)->GetPhoneCode(), 264u);
    EXPECT_EQ(list.GetAt(anguilla)->GetPrefix(), 1u);

    EXPECT_EQ(list.FreeData(), 0u);
    EXPECT_EQ(list.GetSize(), 0);
}

TEST(CountryCodeTest, GermanModuleGivesGermanNamesInGermanOrder) {
    ScopedLanguageModule german("ZQGBLDEU.DLL");
    CZqCountryCodeList list(TRUE);
    ASSERT_EQ(list.GetSize(), 240);
    ExpectNameOrder(list);
    EXPECT_EQ(list.GetAt(IndexOfId(list, 49))->GetName(), "Deutschland");
    EXPECT_EQ(list.GetAt(IndexOfId(list, 44))->GetName(), "Vereinigtes K\xF6nigreich");
    // Umlauts fold to Windows-1252 letters above z: Austria comes last.
    EXPECT_EQ(list.GetAt(list.GetSize() - 1)->GetName(), "\xD6sterreich");

    CString name;
    EXPECT_EQ(GetCountryNameFromCode(41, name), 1);
    EXPECT_EQ(name, "Schweiz");
}

TEST(CountryCodeTest, WithoutAnyModuleHoldingTheTableNothingLoads) {
    ScopedLanguageModule none(nullptr);
    CZqCountryCodeList list;
    EXPECT_EQ(list.LoadData(), kResourceNotLoaded);
    EXPECT_EQ(list.GetSize(), 0);
    // A record whose name cannot be found is refused, too.
    EXPECT_EQ(list.AddCountry(Word(16045, 1), Word(0, 93), 93), kInvalidArgument);
}

TEST(CountryCodeTest, RecordsOutOfRangeAreRefusedAndEndTheTable) {
    ScopedLanguageModule english("ZQGBLENU.DLL");
    CZqCountryCodeList list;
    EXPECT_EQ(list.AddCountry(Word(16044, 1), Word(0, 1), 1), kInvalidArgument);
    EXPECT_EQ(list.AddCountry(Word(16304, 1), Word(0, 1), 1), kInvalidArgument);
    EXPECT_EQ(list.AddCountry(Word(16045, 212), Word(0, 93), 93), kInvalidArgument);
    EXPECT_EQ(list.GetSize(), 0);
    EXPECT_EQ(list.AddCountry(Word(16045, 211), Word(0, 93), 93), 0u);
    // The last name of the table (the module has no text up to 16303).
    EXPECT_EQ(list.AddCountry(Word(16284, 0), Word(7, 1234), 0x12345), 0u);
    ASSERT_EQ(list.GetSize(), 2);
    EXPECT_EQ(list.GetAt(0)->GetFlagIndex(), 211u);
    EXPECT_EQ(list.GetAt(1)->GetStringIndex(), 16284u);
    EXPECT_EQ(list.GetAt(1)->GetPrefix(), 7u);
    EXPECT_EQ(list.GetAt(1)->GetPhoneCode(), 1234u);
    EXPECT_EQ(list.GetAt(1)->GetCountryId(), 0x2345u);  // the low word only
    list.FreeData();

    // A refused record ends the table; the records before it stay.
    std::vector<uint8_t> table = Table({Word(16045, 1), Word(0, 93), 93,    //
                                        Word(16304, 2), Word(0, 355), 355,  //
                                        Word(16047, 3), Word(0, 213), 213});
    EXPECT_EQ(list.AddCountries(table.data(), static_cast<DWORD>(table.size())), kInvalidArgument);
    ASSERT_EQ(list.GetSize(), 1);
    EXPECT_EQ(list.GetAt(0)->GetCountryId(), 93u);
    list.FreeData();

    // The record with first word 0 ends the table; so does the end of the
    // data, and a part record behind the last whole one is ignored.
    table = Table({Word(16045, 1), Word(0, 93), 93, 0, 0, 0, Word(16047, 3), Word(0, 213), 213});
    EXPECT_EQ(list.AddCountries(table.data(), static_cast<DWORD>(table.size())), 0u);
    EXPECT_EQ(list.GetSize(), 1);
    list.FreeData();
    table = Table({Word(16045, 1), Word(0, 93), 93, Word(16047, 3), Word(0, 213)});
    EXPECT_EQ(list.AddCountries(table.data(), static_cast<DWORD>(table.size())), 0u);
    EXPECT_EQ(list.GetSize(), 1);
    EXPECT_EQ(list.AddCountries(table.data(), 0), 0u);
    EXPECT_EQ(list.AddCountries(nullptr, 12), kInvalidArgument);
}

TEST(CountryCodeTest, EqualNamesKeepTableOrder) {
    ScopedLanguageModule english("ZQGBLENU.DLL");
    CZqCountryCodeList list;
    // Three records sharing one name (string 16050) among others: they end
    // up together, in the order they were added.
    ASSERT_EQ(list.AddCountry(Word(16050, 1), Word(0, 1), 501), 0u);
    ASSERT_EQ(list.AddCountry(Word(16100, 1), Word(0, 1), 900), 0u);
    ASSERT_EQ(list.AddCountry(Word(16050, 1), Word(0, 1), 502), 0u);
    ASSERT_EQ(list.AddCountry(Word(16045, 1), Word(0, 1), 100), 0u);
    ASSERT_EQ(list.AddCountry(Word(16050, 1), Word(0, 1), 503), 0u);
    std::vector<UINT> ids;
    for (int i = 0; i < list.GetSize(); ++i) {
        ids.push_back(list.GetAt(i)->GetCountryId());
    }
    EXPECT_EQ(ids, (std::vector<UINT>{100, 501, 502, 503, 900}));
}

TEST(CountryCodeTest, LookupsOnTheProcessList) {
    ScopedLanguageModule english("ZQGBLENU.DLL");
    CZqCountryCodeList* list = GetGlobalCountryList();
    ASSERT_NE(list, nullptr);
    EXPECT_EQ(list->GetSize(), 240);
    EXPECT_EQ(GetGlobalCountryList(), list);

    CString text = "stale";
    EXPECT_EQ(GetCountryNameFromCode(44, text), 1);
    EXPECT_EQ(text, "United Kingdom");
    text = "stale";
    EXPECT_EQ(GetCountryNameFromCode(9999, text), 0);
    EXPECT_EQ(text, "stale");

    EXPECT_EQ(GetCountryPhoneCode(102, text), 1);  // Antigua
    EXPECT_EQ(text, "268");
    EXPECT_EQ(GetCountryPhoneCode(9999, text), 0);
    EXPECT_EQ(text, "");

    UINT prefix = 77;
    EXPECT_EQ(GetCountryPrefix(WORD{101}, prefix), 1);
    EXPECT_EQ(prefix, 1u);
    EXPECT_EQ(GetCountryPrefix(WORD{9999}, prefix), 0);
    EXPECT_EQ(prefix, 1u);

    // By phone code: the bare digits only.
    prefix = 77;
    EXPECT_EQ(GetCountryPrefix(CString("+44"), prefix), 0);
    EXPECT_EQ(GetCountryPrefix(CString(" 44"), prefix), 0);
    EXPECT_EQ(GetCountryPrefix(CString("044"), prefix), 0);
    EXPECT_EQ(GetCountryPrefix(CString(""), prefix), 0);
    EXPECT_EQ(GetCountryPrefix(CString("4294967340"), prefix), 0);
    EXPECT_EQ(prefix, 77u);
    EXPECT_EQ(GetCountryPrefix(CString("44"), prefix), 1);
    EXPECT_EQ(prefix, 0u);
    EXPECT_EQ(GetCountryPrefix(CString("264"), prefix), 1);
    EXPECT_EQ(prefix, 1u);
    // Shared codes: the first country in name order decides (Antigua and
    // Barbuda share 268, both dialed from North America).
    EXPECT_EQ(GetCountryPrefix(CString("268"), prefix), 1);
    EXPECT_EQ(prefix, 1u);

    CZqCountryNameMap names;
    names.SetAt(1, "stale");
    names.SetAt(123456, "gone");
    EXPECT_EQ(GetCountryCodeMap(names), 1);
    EXPECT_EQ(names.GetCount(), 240);
    EXPECT_TRUE(names.Lookup(49, text));
    EXPECT_EQ(text, "Germany");
    EXPECT_FALSE(names.Lookup(123456, text));

    CZqCountryNameMap codes;
    EXPECT_EQ(GetCountryPhoneCodeMap(codes), 1);
    EXPECT_EQ(codes.GetCount(), 240);
    EXPECT_TRUE(codes.Lookup(107, text));  // Canada
    EXPECT_EQ(text, "1");
}

TEST(CountryCodeTest, ProcessListLoadsWhenEmptyAndOnlyOnTheLoadingThread) {
    {
        ScopedLanguageModule none(nullptr);
        ASSERT_NE(GetGlobalCountryList(), nullptr);
        EXPECT_EQ(GetGlobalCountryList()->GetSize(), 0);
    }
    ScopedLanguageModule english("ZQGBLENU.DLL");
    EXPECT_EQ(GetGlobalCountryList()->GetSize(), 240);  // tried again while empty

    CZqCountryCodeList* seen = reinterpret_cast<CZqCountryCodeList*>(1);
    int found = -1, mapped = -1;
    CString name = "kept";
    CZqCountryNameMap map;
    std::thread([&] {
        seen = GetGlobalCountryList();
        found = GetCountryNameFromCode(49, name);
        mapped = GetCountryCodeMap(map);
    }).join();
    EXPECT_EQ(seen, nullptr);
    EXPECT_EQ(found, 0);
    EXPECT_EQ(mapped, 0);
    EXPECT_EQ(name, "kept");
}

}  // namespace
