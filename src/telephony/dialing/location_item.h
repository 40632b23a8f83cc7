// CZqLocationItem: one dialing location — where the user dials from (name,
// country, area codes, prefixes and codes to dial) and the user's address
// and personal telephone numbers there.
//
// An item is kept in the registry slot of its data index through
// CZqLocationRegistry (location_registry.h). A loaded item holds eight
// entries in each telephone array (slot 0 to 7: home 1, home 2, work 1,
// work 2, data, fax, mobile, pager); a new item holds none.
//
// Results: 0 on success, else the registry's code (2 for a missing value,
// 0x24014407 when the locations key cannot be formed ...), or
// kObjectNotMade (0x24004000) when the registry object cannot be made.
#pragma once

#include "framework/core/arrays.h"
#include "framework/core/cstring.h"
#include "platform/win32.h"

class CZqLocationItem {
public:
    static constexpr int kPhoneSlots = 8;

    // All fields cleared, then the data index set.
    explicit CZqLocationItem(DWORD dwIndex = 0);
    virtual ~CZqLocationItem() = default;

    // Data index, country index, TAPI flag and address country index to 0,
    // every text empty, both telephone arrays emptied.
    void ClearData();

    // Loads the slot that the registry names as the current one.
    DWORD LoadCurrentLocation();
    // Sets the data index, then reads every value of slot dwIndex. The
    // first read that fails ends the load: the item is cleared (its data
    // index becomes 0) and that read's code returned. A location is whole
    // or not loaded at all.
    DWORD LoadByIndex(DWORD dwIndex);
    // Writes every value under the data index (telephone entries the arrays
    // lack as empty texts; texts over 255 characters cut). If any write
    // fails, the whole slot is deleted and that write's code returned, so a
    // half-written location never stays behind.
    DWORD SaveByIndex();

    DWORD GetDataIndex() const { return m_dwDataIndex; }

    DWORD m_dwDataIndex;
    UINT m_nCountryIndex;  // index in the country list, not the phone code
    CString m_csLocationName;
    int m_bTAPIDialing;  // 1: the telephony service translates numbers
    CString m_csCountryCode;
    CString m_csAreaCityCode;  // may list several local codes, "," between
    CString m_csInternationalAccess;
    CString m_csLongDistancePrefix;
    CString m_csLongDistanceAccess;
    CString m_csLocalPrefix;
    CString m_csDialSuffix;
    CString m_csCallerID;
    CString m_csCallWaiting;
    UINT m_nAddressCountryIndex;
    CString m_csUserName;
    CString m_csCompany;
    CString m_csDept;
    CString m_csAddress1;
    CString m_csAddress2;
    CString m_csCity;
    CString m_csState;
    CString m_csZipCode;
    CString m_csEMail;
    CString m_csCompuServe;
    CStringArray m_csaPhoneAreas;    // by telephone slot
    CStringArray m_csaPhoneNumbers;  // by telephone slot
};
