// Test helper: realistic dialing locations, and a field-by-field text of a
// location for comparing one that went through the registry.
#pragma once

#include <string>

#include "telephony/dialing/global_address_functions.h"
#include "telephony/dialing/location_item.h"

namespace zq::telephony::testing {

// An office in Munich behind a private exchange: "0," gets an outside line.
inline void FillMunichOffice(CZqLocationItem& item) {
    item.m_nCountryIndex = 49;
    item.m_csLocationName = "M\xFCnchen B\xFCro";
    item.m_csCountryCode = "49";
    item.m_csAreaCityCode = "89";
    item.m_csInternationalAccess = "00";
    item.m_csLongDistancePrefix = "0,";
    item.m_csLongDistanceAccess = "0";
    item.m_csLocalPrefix = "0,";
    item.m_nAddressCountryIndex = 49;
    item.m_csUserName = "Anna Huber";
    item.m_csCompany = "Huber & S\xF6hne GmbH";
    item.m_csDept = "Vertrieb";
    item.m_csAddress1 =
        "Leopoldstra\xDF"
        "e 12";
    item.m_csCity = "M\xFCnchen";
    item.m_csState = "Bayern";
    item.m_csZipCode = "80802";
    item.m_csEMail = "anna.huber@example.de";
    const char* areas[] = {"89", "", "89", "89", "", "89", "171", ""};
    const char* numbers[] = {"3 45 67 89", "", "12 34 56-0", "12 34 56-12", "", "12 34 56-99",
                             "234 56 78",  ""};
    item.m_csaPhoneAreas.RemoveAll();
    item.m_csaPhoneNumbers.RemoveAll();
    for (int slot = 0; slot < CZqLocationItem::kPhoneSlots; ++slot) {
        item.m_csaPhoneAreas.Add(areas[slot]);
        item.m_csaPhoneNumbers.Add(numbers[slot]);
    }
}

// A home in London, dialing straight out.
inline void FillLondonHome(CZqLocationItem& item) {
    item.m_nCountryIndex = 44;
    item.m_csLocationName = "London home";
    item.m_csCountryCode = "44";
    item.m_csAreaCityCode = "171,181";
    item.m_csInternationalAccess = "00";
    item.m_csLongDistanceAccess = "0";
    item.m_csCallerID = "141";
    item.m_nAddressCountryIndex = 44;
    item.m_csUserName = "Oliver Smith";
    item.m_csAddress1 = "12 Baker Street";
    item.m_csCity = "London";
    item.m_csZipCode = "NW1 6XE";
}

// A New York office: "9," for a local outside line and "8," for the
// long-distance trunk, several local area codes, caller-ID blocking and
// call waiting switched off.
inline void FillNewYorkOffice(CZqLocationItem& item) {
    item.m_nCountryIndex = 1;
    item.m_csLocationName = "Office";
    item.m_csCountryCode = "1";
    item.m_csAreaCityCode = "212,646,718";
    item.m_csInternationalAccess = "011";
    item.m_csLongDistancePrefix = "8,";
    item.m_csLongDistanceAccess = "1";
    item.m_csLocalPrefix = "9,";
    item.m_csCallerID = "*67";
    item.m_csCallWaiting = "*70";
    item.m_nAddressCountryIndex = 1;
    item.m_csUserName = "Jane Doe";
    item.m_csCompany = "Doe Freight Inc.";
    item.m_csAddress1 = "350 Fifth Avenue";
    item.m_csAddress2 = "Suite 5400";
    item.m_csCity = "New York";
    item.m_csState = "NY";
    item.m_csZipCode = "10118";
    item.m_csCompuServe = "76543,210";
}

// A flat in Zurich with a calling-card suffix.
inline void FillZurichHome(CZqLocationItem& item) {
    item.m_nCountryIndex = 41;
    item.m_csLocationName = "Z\xFCrich";
    item.m_bTAPIDialing = 0;
    item.m_csCountryCode = "+41";
    item.m_csAreaCityCode = "44";
    item.m_csInternationalAccess = "00";
    item.m_csLongDistanceAccess = "0";
    item.m_csDialSuffix = "#";
    item.m_nAddressCountryIndex = 41;
    item.m_csCity = "Z\xFCrich";
    item.m_csZipCode = "8001";
}

// The record a dialing dialog fills from a location and a destination.
inline _tagAddressInformation AddressFrom(const CZqLocationItem& location, const char* country,
                                          const char* area, const char* number) {
    _tagAddressInformation info;
    info.csHomeCountryCode = location.m_csCountryCode;
    info.csLocalAreaCodes = location.m_csAreaCityCode;
    info.csBlockCallerID = location.m_csCallerID;
    info.csDisableCallWaiting = location.m_csCallWaiting;
    info.csDialSuffix = location.m_csDialSuffix;
    info.csInternationalAccess = location.m_csInternationalAccess;
    info.csLongDistanceAccess = location.m_csLongDistanceAccess;
    info.csLongDistancePrefix = location.m_csLongDistancePrefix;
    info.csLocalPrefix = location.m_csLocalPrefix;
    info.csCountryCode = country;
    info.csAreaCode = area;
    info.csNumber = number;
    info.bUseInternationalAccess = 1;
    info.bUseLongDistanceAccess = 1;
    info.bTAPIDialing = location.m_bTAPIDialing;
    return info;
}

// Every field of a location, one per line, for comparing two of them.
inline std::string DescribeLocation(const CZqLocationItem& item) {
    std::string text;
    auto line = [&text](const char* name, const std::string& value) {
        text += name;
        text += '=';
        text += value;
        text += '\n';
    };
    auto str = [](const CString& s) { return std::string(static_cast<const char*>(s)); };
    line("DataIndex", std::to_string(item.m_dwDataIndex));
    line("CountryIndex", std::to_string(item.m_nCountryIndex));
    line("LocationName", str(item.m_csLocationName));
    line("TAPIDialing", std::to_string(item.m_bTAPIDialing));
    line("CountryCode", str(item.m_csCountryCode));
    line("AreaCityCode", str(item.m_csAreaCityCode));
    line("InternationalAccess", str(item.m_csInternationalAccess));
    line("LongDistancePrefix", str(item.m_csLongDistancePrefix));
    line("LongDistanceAccess", str(item.m_csLongDistanceAccess));
    line("LocalPrefix", str(item.m_csLocalPrefix));
    line("DialSuffix", str(item.m_csDialSuffix));
    line("CallerID", str(item.m_csCallerID));
    line("CallWaiting", str(item.m_csCallWaiting));
    line("AddressCountryIndex", std::to_string(item.m_nAddressCountryIndex));
    line("UserName", str(item.m_csUserName));
    line("Company", str(item.m_csCompany));
    line("Dept", str(item.m_csDept));
    line("Address1", str(item.m_csAddress1));
    line("Address2", str(item.m_csAddress2));
    line("City", str(item.m_csCity));
    line("State", str(item.m_csState));
    line("ZipCode", str(item.m_csZipCode));
    line("EMail", str(item.m_csEMail));
    line("CompuServe", str(item.m_csCompuServe));
    for (int slot = 0; slot < item.m_csaPhoneAreas.GetSize(); ++slot) {
        line("Area", str(item.m_csaPhoneAreas.GetAt(slot)));
    }
    for (int slot = 0; slot < item.m_csaPhoneNumbers.GetSize(); ++slot) {
        line("Phone", str(item.m_csaPhoneNumbers.GetAt(slot)));
    }
    return text;
}

}  // namespace zq::telephony::testing
