#include "telephony/dialing/global_address_functions.h"

#include <gtest/gtest.h>

#include <map>
#include <string>

#include "telephony/testing/language_module_for_tests.h"
#include "telephony/testing/locations_for_tests.h"

namespace {

using zq::telephony::testing::AddressFrom;
using zq::telephony::testing::FillLondonHome;
using zq::telephony::testing::FillMunichOffice;
using zq::telephony::testing::FillNewYorkOffice;
using zq::telephony::testing::FillZurichHome;
using zq::telephony::testing::ScopedLanguageModule;

// The rule texts of the English language module.
const std::map<UINT, std::string>& RuleTexts() {
    static const std::map<UINT, std::string> texts = {
        {15964, "Dialed as entered"},  {16027, "International call"},
        {16028, "Long-distance call"}, {16029, "Local call dialed as long distance"},
        {16030, "Local call"},
    };
    return texts;
}

// The worked example's office, with caller-ID blocking.
void FillMunichOfficeBlocked(CZqLocationItem& item) {
    FillMunichOffice(item);
    item.m_csCallerID = "*67";
}

// A location with nothing filled in.
void FillNothing(CZqLocationItem& /*item*/) {}

struct DialCase {
    const char* name;
    void (*location)(CZqLocationItem&);
    const char* country;
    const char* area;
    const char* number;
    const char* expected;
    UINT rule;
    int force = 0;
    int dropFirst = 0;
    int dialAreaLocally = 0;
    int useInternational = 1;
    int useLongDistance = 1;
    const char* localCodes = nullptr;  // in place of the location's
};

std::string CaseName(const ::testing::TestParamInfo<DialCase>& info) {
    return info.param.name;
}

class Dial : public ::testing::TestWithParam<DialCase> {
protected:
    ScopedLanguageModule english_{"ZQGBLENU.DLL"};
};

TEST_P(Dial, GivesTheStringAndTheRule) {
    const DialCase& c = GetParam();
    CZqLocationItem location;
    c.location(location);
    _tagAddressInformation info = AddressFrom(location, c.country, c.area, c.number);
    info.bForceLongDistance = c.force;
    info.bDropFirstLocalDigit = c.dropFirst;
    info.bUseInternationalAccess = c.useInternational;
    info.bUseLongDistanceAccess = c.useLongDistance;
    if (c.localCodes != nullptr) {
        info.csLocalAreaCodes = c.localCodes;
    }
    info.csDisplayable = "before";
    info.bNoAddress = 7;

    ASSERT_EQ(CZqGlobalAddressFunctions::MakeDialableAddress(&info, c.dialAreaLocally, nullptr), 1);
    EXPECT_EQ(std::string(info.csDialable), c.expected);
    EXPECT_EQ(std::string(info.csDialingRule), RuleTexts().at(c.rule));
    if (c.rule == CZqGlobalAddressFunctions::kRuleAsEntered) {
        // The as-entered case leaves the displayable text alone and says
        // there is something to dial even when nothing is left.
        EXPECT_EQ(std::string(info.csDisplayable), "before");
        EXPECT_EQ(info.bNoAddress, 0);
    } else {
        EXPECT_EQ(info.csDisplayable, info.csDialable);
        EXPECT_EQ(info.bNoAddress, info.csDialable.IsEmpty() ? 1 : 0);
    }
}

constexpr UINT kEntered = CZqGlobalAddressFunctions::kRuleAsEntered;
constexpr UINT kInternational = CZqGlobalAddressFunctions::kRuleInternational;
constexpr UINT kLong = CZqGlobalAddressFunctions::kRuleLongDistance;
constexpr UINT kLocalAsLong = CZqGlobalAddressFunctions::kRuleLocalAsLongDistance;
constexpr UINT kLocal = CZqGlobalAddressFunctions::kRuleLocal;

// From an office in Munich: 0, for an outside line, 00 abroad, 0 before an
// area code; and the same office blocking its caller ID with *67.
INSTANTIATE_TEST_SUITE_P(
    WorkedTable, Dial,
    ::testing::Values(
        DialCase{"London", FillMunichOffice, "44", "171", "555 1234", "0,00-44-171-5551234",
                 kInternational},
        DialCase{"Berlin", FillMunichOffice, "49", "30", "1234567", "0,0-30-1234567", kLong},
        DialCase{"Munich", FillMunichOffice, "49", "89", "1234567", "0,1234567", kLocal},
        DialCase{"AsEntered", FillMunichOffice, "49", "", "=0049 89 1234", "0049891234", kEntered},
        DialCase{"LondonCallerIdBlocked", FillMunichOfficeBlocked, "44", "171", "555 1234",
                 "*67-0,00-44-171-5551234", kInternational}),
    CaseName);

INSTANTIATE_TEST_SUITE_P(
    International, Dial,
    ::testing::Values(DialCase{"LondonToMunich", FillLondonHome, "49", "89", "123 456",
                               "141-00-49-89-123456", kInternational},
                      DialCase{"PlusSignsAreIgnored", FillLondonHome, "+49", "89", "123 456",
                               "141-00-49-89-123456", kInternational},
                      DialCase{"ZurichWithSuffix", FillZurichHome, "44", "20", "7946 0018",
                               "00-44-20-79460018-#", kInternational},
                      DialCase{"NewYorkToLondon", FillNewYorkOffice, "44", "20", "7946 0018",
                               "*67-8,*70-011-44-20-79460018", kInternational},
                      DialCase{"WithoutAccessCode", FillMunichOffice, "44", "171", "5551234",
                               "0,44-171-5551234", kInternational, 0, 0, 0, 0},
                      DialCase{"NoAreaCode", FillMunichOffice, "44", "", "5551234",
                               "0,00-44-5551234", kInternational},
                      DialCase{"CountryNotInTheList", FillMunichOffice, "999", "12", "345",
                               "0,00-999-12-345", kInternational},
                      DialCase{"EmptyLocation", FillNothing, "49", "89", "123", "49-89-123",
                               kInternational},
                      // Home 1, but a country of prefix 0 or one the list lacks: abroad.
                      DialCase{"NorthAmericaToAPrefixZeroCountry", FillNewYorkOffice, "49", "89",
                               "123", "*67-8,*70-011-49-89-123", kInternational},
                      DialCase{"NorthAmericaToAnUnknownCountry", FillNewYorkOffice, "999", "12",
                               "345", "*67-8,*70-011-999-12-345", kInternational}),
    CaseName);

// From New York to Anguilla (country code 264, dialed like a long-distance
// call); Namibia shares the code but comes later in the list.
INSTANTIATE_TEST_SUITE_P(
    NorthAmericanNeighbour, Dial,
    ::testing::Values(DialCase{"Anguilla", FillNewYorkOffice, "264", "", "497 1234",
                               "*67-8,*70-1-264-4971234", kLong},
                      DialCase{"AreaCodeIsNotUsed", FillNewYorkOffice, "264", "999", "497 1234",
                               "*67-8,*70-1-264-4971234", kLong},
                      DialCase{"WithoutAccessCode", FillNewYorkOffice, "+264", "", "497 1234",
                               "*67-8,*70-264-4971234", kLong, 0, 0, 0, 1, 0},
                      DialCase{"DropFirstDigitHasNoEffect", FillNewYorkOffice, "264", "",
                               "497 1234", "*67-8,*70-1-264-4971234", kLong, 0, 1},
                      DialCase{"ForcedLongDistanceHasNoEffect", FillNewYorkOffice, "264", "",
                               "497 1234", "*67-8,*70-1-264-4971234", kLong, 1}),
    CaseName);

INSTANTIATE_TEST_SUITE_P(
    Domestic, Dial,
    ::testing::Values(
        DialCase{"SecondLocalCode", FillNewYorkOffice, "1", "646", "555-1234", "*67-9,*70-555-1234",
                 kLocal},
        DialCase{"ThirdLocalCode", FillNewYorkOffice, "1", "718", "555 1234", "*67-9,*70-5551234",
                 kLocal},
        DialCase{"OtherAreaCode", FillNewYorkOffice, "1", "415", "555 1234",
                 "*67-8,*70-1-415-5551234", kLong},
        DialCase{"EmptyCountryIsDomestic", FillNewYorkOffice, "", "415", "555 1234",
                 "*67-8,*70-1-415-5551234", kLong},
        DialCase{"EmptyAreaCodeIsLocal", FillNewYorkOffice, "1", "", "555 1234",
                 "*67-9,*70-5551234", kLocal},
        DialCase{"EmptyAreaCodeIsLocalWhateverTheList", FillMunichOffice, "49", "", "1234567",
                 "0,1234567", kLocal, 0, 0, 0, 1, 1, ""},
        DialCase{"LondonSecondCode", FillLondonHome, "44", "181", "555 1234", "141-5551234",
                 kLocal},
        DialCase{"LondonOtherCode", FillLondonHome, "44", "161", "555 1234", "141-0-161-5551234",
                 kLong},
        DialCase{"ZurichLocal", FillZurichHome, "41", "44", "266 11 11", "2661111-#", kLocal},
        DialCase{"ZurichToBern", FillZurichHome, "41", "31", "322 11 11", "0-31-3221111-#", kLong},
        // The pieces of the list are not trimmed, the list itself is.
        DialCase{"BlankBeforeAPieceMakesItLongDistance", FillMunichOffice, "49", "30", "1234567",
                 "0,0-30-1234567", kLong, 0, 0, 0, 1, 1, "89, 30"},
        DialCase{"WithoutTheBlankItIsLocal", FillMunichOffice, "49", "30", "1234567", "0,1234567",
                 kLocal, 0, 0, 0, 1, 1, "89,30"},
        DialCase{"UntrimmedAreaCodeMatchesThePiece", FillMunichOffice, "49", " 30", "1234567",
                 "0,1234567", kLocal, 0, 0, 0, 1, 1, "89, 30"},
        DialCase{"EmptyPiecesAreSkipped", FillMunichOffice, "49", "30", "1234567", "0,1234567",
                 kLocal, 0, 0, 0, 1, 1, "89,,30,"},
        DialCase{"ListTrimmedAtBothEnds", FillMunichOffice, "49", "30", "1234567", "0,1234567",
                 kLocal, 0, 0, 0, 1, 1, "  30  "},
        DialCase{"BlankListMeansNoLocalCode", FillMunichOffice, "49", "89", "1234567",
                 "0,0-89-1234567", kLong, 0, 0, 0, 1, 1, " , "}),
    CaseName);

// bForceLongDistance of 1 adds access and area code; any other non-zero
// value only switches to the long-distance outside line.
INSTANTIATE_TEST_SUITE_P(
    ForcedLongDistance, Dial,
    ::testing::Values(DialCase{"ForceOne", FillNewYorkOffice, "1", "646", "555 1234",
                               "*67-8,*70-1-646-5551234", kLocalAsLong, 1},
                      DialCase{"ForceOneWithoutAccessCode", FillNewYorkOffice, "1", "646",
                               "555 1234", "*67-8,*70-646-5551234", kLocalAsLong, 1, 0, 0, 1, 0},
                      DialCase{"ForceTwoSwitchesThePrefixOnly", FillNewYorkOffice, "1", "646",
                               "555 1234", "*67-8,*70-5551234", kLocal, 2},
                      DialCase{"ForceMinusOneToo", FillMunichOffice, "49", "89", "1234567",
                               "0,1234567", kLocal, -1},
                      DialCase{"ForceOneWithEmptyAreaCode", FillNewYorkOffice, "1", "", "555 1234",
                               "*67-8,*70-1-5551234", kLocalAsLong, 1},
                      DialCase{"ForceOneOnALongDistanceCall", FillNewYorkOffice, "1", "415",
                               "555 1234", "*67-8,*70-1-415-5551234", kLong, 1},
                      DialCase{"LondonForced", FillLondonHome, "44", "171", "555 1234",
                               "141-0-171-5551234", kLocalAsLong, 1},
                      DialCase{"AreaCodeLocally", FillNewYorkOffice, "1", "646", "555 1234",
                               "*67-8,*70-646-5551234", kLocal, 0, 0, 1},
                      DialCase{"AreaCodeLocallyBeatsForce", FillNewYorkOffice, "1", "646",
                               "555 1234", "*67-8,*70-646-5551234", kLocal, 1, 0, 1},
                      DialCase{"AreaCodeLocallyAnyNonZero", FillMunichOffice, "49", "89", "1234567",
                               "0,89-1234567", kLocal, 0, 0, 5},
                      DialCase{"AreaCodeLocallyOnALongDistanceCall", FillMunichOffice, "49", "30",
                               "1234567", "0,0-30-1234567", kLong, 0, 0, 1}),
    CaseName);

INSTANTIATE_TEST_SUITE_P(
    DropFirstLocalDigit, Dial,
    ::testing::Values(
        DialCase{"Local", FillMunichOffice, "49", "89", "1234567", "0,234567", kLocal, 0, 1},
        DialCase{"OnlyWhenOne", FillMunichOffice, "49", "89", "1234567", "0,1234567", kLocal, 0, 2},
        DialCase{"WhateverTheFirstCharacter", FillMunichOffice, "49", "89", " 1234567", "0,1234567",
                 kLocal, 0, 1},
        DialCase{"NotWhenForced", FillMunichOffice, "49", "89", "1234567", "0,0-89-1234567",
                 kLocalAsLong, 1, 1},
        DialCase{"NotWithAreaCodeLocally", FillMunichOffice, "49", "89", "1234567", "0,89-1234567",
                 kLocal, 0, 1, 1},
        DialCase{"NotOnLongDistance", FillMunichOffice, "49", "30", "1234567", "0,0-30-1234567",
                 kLong, 0, 1},
        DialCase{"NotAbroad", FillMunichOffice, "44", "171", "5551234", "0,00-44-171-5551234",
                 kInternational, 0, 1},
        DialCase{"EmptyNumber", FillZurichHome, "41", "44", "", "#", kLocal, 0, 1}),
    CaseName);

INSTANTIATE_TEST_SUITE_P(
    AsEntered, Dial,
    ::testing::Values(DialCase{"BlanksAroundAndInside", FillMunichOffice, "49", "",
                               "  =0049 (89) 1234-5 ", "0049(89)1234-5", kEntered},
                      DialCase{"EqualsSignInTheAreaCode", FillMunichOffice, "49", "=0049",
                               "89 1234", "0049-891234", kEntered},
                      DialCase{"NoCallerIdNorSuffix", FillNewYorkOffice, "1", "", "=*82 555 1234",
                               "*825551234", kEntered},
                      DialCase{"ZurichNoSuffix", FillZurichHome, "44", "", "=0044 20 7946 0018",
                               "00442079460018", kEntered},
                      DialCase{"NothingLeft", FillMunichOffice, "49", "", "=", "", kEntered},
                      DialCase{"OnlySeparatorsLeft", FillMunichOffice, "49", "", "= - -", "",
                               kEntered},
                      // Behind an area code the "=" is just a character of the number.
                      DialCase{"NotBehindAnAreaCode", FillMunichOffice, "49", "30", "=1234",
                               "0,0-30-=1234", kLong}),
    CaseName);

INSTANTIATE_TEST_SUITE_P(
    BadInput, Dial,
    ::testing::Values(DialCase{"EverythingEmpty", FillNothing, "", "", "", "", kLocal},
                      DialCase{"PrefixOnly", FillMunichOffice, "49", "89", "", "0,", kLocal},
                      DialCase{"FullOfSeparators", FillMunichOffice, "49", "89",
                               "--55--5 -- 12 34--", "0,55-5-1234", kLocal},
                      DialCase{"DashBehindPauseStarHashLetter", FillNewYorkOffice, "1", "",
                               ",-1*-2#-3A-4", "*67-9,*70-,1*2#3A4", kLocal},
                      DialCase{"VanityNumber", FillNewYorkOffice, "1", "800", "FLOWERS",
                               "*67-8,*70-1-800-FLOWERS", kLong},
                      DialCase{"TabsInside", FillZurichHome, "41", "44", "266\t11 11",
                               "266\t1111-#", kLocal},
                      // A "-" behind a letter goes, also behind a country code.
                      DialCase{"LettersAsCountry", FillMunichOffice, "abc", "12", "345",
                               "0,00-abc12-345", kInternational}),
    CaseName);

TEST(DialEdges, OverlongFieldsAreDialedWhole) {
    ScopedLanguageModule english("ZQGBLENU.DLL");
    CZqLocationItem location;
    FillMunichOffice(location);
    const CString digits('7', 100000);
    _tagAddressInformation info = AddressFrom(location, "49", "89", digits);
    info.csLocalAreaCodes = CString(',', 50000) + "89";
    ASSERT_EQ(CZqGlobalAddressFunctions::MakeDialableAddress(&info, 0, nullptr), 1);
    EXPECT_EQ(info.csDialable, CString("0,") + digits);
    EXPECT_EQ(info.bNoAddress, 0);
}

TEST(DialEdges, TheTelephonyPathCannotRunAndWritesNothing) {
    ScopedLanguageModule english("ZQGBLENU.DLL");
    CZqLocationItem location;
    FillZurichHome(location);
    location.m_bTAPIDialing = 1;
    _tagAddressInformation info = AddressFrom(location, "49", "89", "1234567");
    info.csDialingRule = "rule";
    info.csDialable = "dialable";
    info.csDisplayable = "displayable";
    info.bNoAddress = 7;
    EXPECT_EQ(CZqGlobalAddressFunctions::MakeDialableAddress(&info, 1, nullptr), 0);
    EXPECT_EQ(info.csDialingRule, "rule");
    EXPECT_EQ(info.csDialable, "dialable");
    EXPECT_EQ(info.csDisplayable, "displayable");
    EXPECT_EQ(info.bNoAddress, 7);

    EXPECT_EQ(CZqGlobalAddressFunctions::MakeDialableAddress(nullptr, 0, nullptr), 0);
}

TEST(DialEdges, RuleTextsComeFromTheLanguageModule) {
    CZqLocationItem location;
    FillMunichOffice(location);
    {
        ScopedLanguageModule german("ZQGBLDEU.DLL");
        _tagAddressInformation info = AddressFrom(location, "49", "30", "1234567");
        ASSERT_EQ(CZqGlobalAddressFunctions::MakeDialableAddress(&info, 0, nullptr), 1);
        EXPECT_FALSE(info.csDialingRule.IsEmpty());
        EXPECT_NE(std::string(info.csDialingRule), RuleTexts().at(kLong));
    }
    {
        // Without a module holding the texts the rule is emptied; the string
        // is built all the same.
        ScopedLanguageModule none(nullptr);
        _tagAddressInformation info = AddressFrom(location, "49", "30", "1234567");
        info.csDialingRule = "old";
        ASSERT_EQ(CZqGlobalAddressFunctions::MakeDialableAddress(&info, 0, nullptr), 1);
        EXPECT_EQ(info.csDialingRule, "");
        EXPECT_EQ(info.csDialable, "0,0-30-1234567");
    }
}

struct CleanCase {
    const char* input;
    const char* expected;
};

class Clean : public ::testing::TestWithParam<CleanCase> {};

TEST_P(Clean, KeepsADashOnlyBehindADigit) {
    CString text(GetParam().input);
    CZqGlobalAddressFunctions::CleanDialable(text);
    EXPECT_EQ(std::string(text), GetParam().expected) << GetParam().input;
}

INSTANTIATE_TEST_SUITE_P(
    Strings, Clean,
    ::testing::Values(CleanCase{"", ""}, CleanCase{"-", ""}, CleanCase{"=", ""},
                      CleanCase{"=-", ""}, CleanCase{"-=5", "=5"}, CleanCase{"  9,-555  ", "9,555"},
                      CleanCase{"*70-555", "*70-555"}, CleanCase{"--5--5--", "5-5"},
                      CleanCase{"5 - - 6", "5-6"}, CleanCase{"= 5", "5"}, CleanCase{"#-1", "#1"},
                      CleanCase{"A-1", "A1"}, CleanCase{"\t12\t", "12"}, CleanCase{"==5", "=5"},
                      CleanCase{"1-,-2", "1-,2"}, CleanCase{"9,,,0-1", "9,,,0-1"}));

}  // namespace
