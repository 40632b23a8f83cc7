#include "telephony/dialing/country_code.h"

#include <cstring>
#include <new>

#include "frame/custom_resource.h"
#include "frame/resource_search.h"
#include "telephony/telephony_results.h"

using zq::telephony::kInvalidArgument;
using zq::telephony::kObjectNotMade;
using zq::telephony::kResourceNotLoaded;

CZqCountryCode::CZqCountryCode(DWORD dwNameAndFlag, DWORD dwPrefixAndCode, DWORD dwId) {
    SetStringIndex(LOWORD(dwNameAndFlag));
    SetFlagIndex(HIWORD(dwNameAndFlag));
    m_nPrefix = LOWORD(dwPrefixAndCode);
    m_nPhoneCode = HIWORD(dwPrefixAndCode);
    m_nCountryId = LOWORD(dwId);
}

int CZqCountryCode::SetStringIndex(UINT nIndex) {
    if (nIndex >= kFirstStringIndex && nIndex <= kLastStringIndex &&
        zq::frame::LoadResourceString(nIndex, m_csName)) {
        m_nStringIndex = nIndex;
        return 1;
    }
    m_nStringIndex = 0;
    m_csName.Empty();
    return 0;
}

int CZqCountryCode::SetFlagIndex(UINT nIndex) {
    if (nIndex < kFlagLimit) {
        m_nFlagIndex = nIndex;
        return 1;
    }
    m_nFlagIndex = 0;
    return 0;
}

CZqCountryCodeList::CZqCountryCodeList(int bLoad) {
    if (bLoad) {
        LoadData();
    }
}

CZqCountryCodeList::~CZqCountryCodeList() {
    FreeData();
}

DWORD CZqCountryCodeList::LoadData() {
    auto* reader = new (std::nothrow) CZqCustomResource;
    if (reader == nullptr) {
        return kObjectNotMade;
    }
    DWORD result = kResourceNotLoaded;
    HINSTANCE module = zq::frame::FindResourceModule(MAKEINTRESOURCEA(kTableId), RT_RCDATA);
    if (module != nullptr && reader->LoadCustomResource(module, kTableId) == 0) {
        const void* data = reader->GetResourceData();
        result = data != nullptr ? AddCountries(data, reader->GetResourceSize()) : kInvalidArgument;
    }
    delete reader;
    return result;
}

DWORD CZqCountryCodeList::AddCountries(const void* pTable, DWORD dwSize) {
    if (pTable == nullptr) {
        return kInvalidArgument;
    }
    const auto* bytes = static_cast<const BYTE*>(pTable);
    constexpr DWORD kRecordSize = 3 * sizeof(DWORD);
    // Little-endian words, read bytewise: resource data need not be aligned.
    auto word = [bytes](DWORD offset) {
        return static_cast<DWORD>(bytes[offset]) | static_cast<DWORD>(bytes[offset + 1]) << 8 |
               static_cast<DWORD>(bytes[offset + 2]) << 16 |
               static_cast<DWORD>(bytes[offset + 3]) << 24;
    };
    for (DWORD offset = 0; dwSize - offset >= kRecordSize; offset += kRecordSize) {
        DWORD nameAndFlag = word(offset);
        if (nameAndFlag == 0) {
            break;
        }
        DWORD result = AddCountry(nameAndFlag, word(offset + 4), word(offset + 8));
        if (result != 0) {
            return result;
        }
    }
    return 0;
}

DWORD CZqCountryCodeList::AddCountry(DWORD dwNameAndFlag, DWORD dwPrefixAndCode, DWORD dwId) {
    auto* country = new (std::nothrow) CZqCountryCode(dwNameAndFlag, dwPrefixAndCode, dwId);
    if (country == nullptr) {
        return kObjectNotMade;
    }
    if (country->GetStringIndex() == 0 || HIWORD(dwNameAndFlag) >= CZqCountryCode::kFlagLimit) {
        delete country;
        return kInvalidArgument;
    }
    // Searching backwards for the first name not greater than the new one
    // keeps equal names in table order.
    int position = GetSize();
    while (position > 0 && GetAt(position - 1)->GetName().CompareNoCase(country->GetName()) > 0) {
        --position;
    }
    InsertAt(position, country);
    return 0;
}

DWORD CZqCountryCodeList::FreeData() {
    for (int i = 0; i < GetSize(); ++i) {
        delete GetAt(i);
    }
    RemoveAll();
    return 0;
}

DWORD CZqCountryCodeList::AddToComboBox(CComboBox* /*pComboBox*/) {
    return kObjectNotMade;
}

DWORD CZqCountryCodeList::AddToListBox(CListBox* /*pListBox*/) {
    return kObjectNotMade;
}
