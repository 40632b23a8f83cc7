// CZqLocationRegistry: where the user's dialing locations live in the
// registry.
//
// Below the local machine root, in the running application's current-user
// key (CZqVersionResource::GetCurrentUserKey()):
//
//   <user key>\Location                 the locations key
//       CurrentIndex      REG_DWORD     data index of the current location
//       00000005\...                    one location per sub-key, named by
//                                       its data index with "%08u" (slot 12
//                                       is 00000012, slot 100000000 is
//                                       100000000)
//
// Every value is named by an id of the library's string table (130 to
// 170), as the registry base does it. The object always addresses either
// the locations key or one slot key: operations that need the locations
// key (current index, deletion, existence) switch to it and then return to
// the remembered slot, so a caller that chose a slot with SetDataIndex keeps
// addressing it. Nothing is written on construction; a slot and its key
// come into being with the first setter call on it.
//
// Results: 0, the registry codes passed through (2 for a missing value or
// key, 234 for a value that does not fit ...), kNotValid (0x24014407) when
// the locations key cannot be formed (no version information, no string
// 130) and kNameMissing (0x2401446C). Getters put their default (0 or an
// empty string) in place first, so a failed read leaves it there.
// An object is used by one thread at a time.
#pragma once

#include "framework/core/cstring.h"
#include "platform/win32.h"
#include "settings/reg_base.h"

class CZqLocationRegistry : public CZqGblRegBase {
    DECLARE_DYNAMIC(CZqLocationRegistry)

public:
    // String-table ids of the names this class uses.
    static constexpr UINT kLocationKeyId = 130;           // "Location"
    static constexpr UINT kCurrentIndexId = 131;          // "CurrentIndex"
    static constexpr UINT kCountryCodeId = 138;           // "CountryCode": marks a slot as existing
    static constexpr UINT kFirstNumberId = 149;           // "PhoneHome1" .. "PhonePager"
    static constexpr UINT kFirstAreaId = 157;             // "AreaHome1" .. "AreaPager"
    static constexpr DWORD kPhoneSlots = 8;               // home 1, home 2, work 1, work 2, data,
                                                          // fax, mobile, pager
    static constexpr DWORD kNoCurrentIndex = 0xFFFFFFFF;  // read when none is stored
    // Longest text a value holds; longer texts are stored cut to this.
    static constexpr int kMaxText = 255;

    // Addresses slot 0 below the local machine root; writes nothing.
    CZqLocationRegistry();
    ~CZqLocationRegistry() override;

    // The base's validity and whether the locations key could be formed.
    BOOL IsClassDataValid() override;

    // Remembers the slot and addresses it.
    void SetDataIndex(DWORD dwIndex);
    DWORD GetDataIndex() const { return m_dwDataIndex; }

    // "CurrentIndex" of the locations key (the read gives kNoCurrentIndex
    // when none is stored). kNotValid when the key cannot be formed.
    DWORD SetCurrentIndex(DWORD dwIndex);
    DWORD GetCurrentIndex(DWORD& dwIndex);

    // Whether slot dwIndex holds a "CountryCode" value; FALSE when the key
    // cannot be formed or the slot lacks it.
    BOOL DoesIndexExist(DWORD dwIndex);
    // Removes slot dwIndex with everything it holds: 0, 2 when there is no
    // such slot, kNotValid when the key cannot be formed.
    DWORD DeleteIndex(DWORD dwIndex);

    // The values of the addressed slot. Texts longer than kMaxText are
    // written cut to kMaxText characters.
    DWORD SetCountryIndex(UINT nIndex);
    DWORD GetCountryIndex(UINT& nIndex);
    DWORD SetLocationName(const char* lpszText);
    DWORD GetLocationName(CString& csText);
    DWORD SetTAPIDialing(DWORD dwEnabled);
    DWORD GetTAPIDialing(DWORD& dwEnabled);
    DWORD SetCountryCode(const char* lpszText);
    DWORD GetCountryCode(CString& csText);
    DWORD SetAreaCityCode(const char* lpszText);
    DWORD GetAreaCityCode(CString& csText);
    DWORD SetInternationalAccess(const char* lpszText);
    DWORD GetInternationalAccess(CString& csText);
    DWORD SetLongDistancePrefix(const char* lpszText);
    DWORD GetLongDistancePrefix(CString& csText);
    DWORD SetLongDistanceAccess(const char* lpszText);
    DWORD GetLongDistanceAccess(CString& csText);
    DWORD SetLocalPrefix(const char* lpszText);
    DWORD GetLocalPrefix(CString& csText);
    DWORD SetDialSuffix(const char* lpszText);
    DWORD GetDialSuffix(CString& csText);
    DWORD SetBlockCallerID(const char* lpszText);  // "CallerID"
    DWORD GetBlockCallerID(CString& csText);
    DWORD SetDisableCallWaiting(const char* lpszText);  // "CallWaiting"
    DWORD GetDisableCallWaiting(CString& csText);
    DWORD SetAddressCountryIndex(UINT nIndex);
    DWORD GetAddressCountryIndex(UINT& nIndex);
    DWORD SetUserName(const char* lpszText);
    DWORD GetUserName(CString& csText);
    DWORD SetCompany(const char* lpszText);
    DWORD GetCompany(CString& csText);
    DWORD SetDept(const char* lpszText);
    DWORD GetDept(CString& csText);
    DWORD SetAddress1(const char* lpszText);
    DWORD GetAddress1(CString& csText);
    DWORD SetAddress2(const char* lpszText);
    DWORD GetAddress2(CString& csText);
    DWORD SetCity(const char* lpszText);
    DWORD GetCity(CString& csText);
    DWORD SetState(const char* lpszText);
    DWORD GetState(CString& csText);
    DWORD SetZipCode(const char* lpszText);
    DWORD GetZipCode(CString& csText);
    DWORD SetEMail(const char* lpszText);
    DWORD GetEMail(CString& csText);
    DWORD SetCompuserve(const char* lpszText);  // "CompuServe"
    DWORD GetCompuserve(CString& csText);
    // The area and number of personal telephone slot 0 to 7; a slot above 7
    // uses slot 1 ("AreaHome2", "PhoneHome2").
    DWORD SetPhoneArea(DWORD dwSlot, const char* lpszText);
    DWORD GetPhoneArea(DWORD dwSlot, CString& csText);
    DWORD SetPhoneNumber(DWORD dwSlot, const char* lpszText);
    DWORD GetPhoneNumber(DWORD dwSlot, CString& csText);

    // Value ids of a telephone slot: 0 to 7 give 157..164 and 149..156;
    // any slot above 7 gives the second id (158, 150), a fallback kept as
    // it always was rather than an error.
    static UINT GetAreaStringId(DWORD dwSlot);
    static UINT GetNumberStringId(DWORD dwSlot);

protected:
    // The base's section (the company key) replaced by the locations key.
    // FALSE, and the object invalid, when the version information cannot
    // be read or string 130 is missing.
    BOOL LoadSection() override;
    // The locations key plus "\%08u" of dwIndex: 1, or 0 when LoadSection
    // failed.
    virtual BOOL LoadIndex(DWORD dwIndex);

    // csText is emptied, then receives the value (at most 255 characters)
    // only when the read succeeded.
    DWORD GetString(UINT nNameId, CString& csText);
    // Writes at most kMaxText characters of lpszText (NULL as empty).
    DWORD SetText(UINT nNameId, const char* lpszText);
    using CZqGblRegBase::GetString;

    DWORD m_dwDataIndex;
    BOOL m_bLocationSectionValid;
};
