#include "telephony/dialing/country_lookup.h"

#include <cstdio>

#include "frame/process_data.h"

namespace {

template <class Match>
const CZqCountryCode* FindCountry(Match match) {
    CZqCountryCodeList* list = GetGlobalCountryList();
    if (list == nullptr) {
        return nullptr;
    }
    for (int i = 0; i < list->GetSize(); ++i) {
        const CZqCountryCode* country = list->GetAt(i);
        if (country != nullptr && match(*country)) {
            return country;
        }
    }
    return nullptr;
}

CString PhoneCodeText(const CZqCountryCode& country) {
    char text[16];
    int length = std::snprintf(text, sizeof text, "%d", static_cast<int>(country.GetPhoneCode()));
    return CString(text, length);
}

}  // namespace

CZqCountryCodeList* GetGlobalCountryList() {
    ZqGblProcessData* block = ZqGblGetProcessData();
    if (block == nullptr) {
        return nullptr;
    }
    if (block->m_CountryList.GetSize() == 0) {
        block->m_CountryList.LoadData();
    }
    return &block->m_CountryList;
}

int GetCountryCodeMap(CMap<UINT, UINT, CString, const CString&>& map) {
    CZqCountryCodeList* list = GetGlobalCountryList();
    if (list == nullptr) {
        return 0;
    }
    map.RemoveAll();
    for (int i = 0; i < list->GetSize(); ++i) {
        if (const CZqCountryCode* country = list->GetAt(i)) {
            map.SetAt(country->GetCountryId(), country->GetName());
        }
    }
    return 1;
}

int GetCountryPhoneCodeMap(CMap<UINT, UINT, CString, const CString&>& map) {
    CZqCountryCodeList* list = GetGlobalCountryList();
    if (list == nullptr) {
        return 0;
    }
    map.RemoveAll();
    for (int i = 0; i < list->GetSize(); ++i) {
        if (const CZqCountryCode* country = list->GetAt(i)) {
            map.SetAt(country->GetCountryId(), PhoneCodeText(*country));
        }
    }
    return 1;
}

int GetCountryNameFromCode(UINT nId, CString& csName) {
    const CZqCountryCode* country =
        FindCountry([nId](const CZqCountryCode& c) { return c.GetCountryId() == nId; });
    if (country == nullptr) {
        return 0;
    }
    csName = country->GetName();
    return 1;
}

int GetCountryPhoneCode(WORD wId, CString& csCode) {
    csCode.Empty();
    const CZqCountryCode* country =
        FindCountry([wId](const CZqCountryCode& c) { return c.GetCountryId() == wId; });
    if (country == nullptr) {
        return 0;
    }
    csCode = PhoneCodeText(*country);
    return 1;
}

int GetCountryPrefix(WORD wId, UINT& nPrefix) {
    const CZqCountryCode* country =
        FindCountry([wId](const CZqCountryCode& c) { return c.GetCountryId() == wId; });
    if (country == nullptr) {
        return 0;
    }
    nPrefix = country->GetPrefix();
    return 1;
}

int GetCountryPrefix(const CString& csCode, UINT& nPrefix) {
    // A phone code written with "%d" is one to five digits without a
    // leading zero (0 itself aside); any other text matches no country, so
    // the text is read as a number once instead of writing every code.
    const int length = csCode.GetLength();
    if (length == 0 || length > 5 || (length > 1 && csCode[0] == '0')) {
        return 0;
    }
    UINT code = 0;
    for (int i = 0; i < length; ++i) {
        const char c = csCode[i];
        if (c < '0' || c > '9') {
            return 0;
        }
        code = code * 10 + static_cast<UINT>(c - '0');
    }
    const CZqCountryCode* country =
        FindCountry([code](const CZqCountryCode& c) { return c.GetPhoneCode() == code; });
    if (country == nullptr) {
        return 0;
    }
    nPrefix = country->GetPrefix();
    return 1;
}
