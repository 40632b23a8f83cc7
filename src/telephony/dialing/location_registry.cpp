#include "telephony/dialing/location_registry.h"

#include <cstdio>
#include <cstring>

#include "diagnostics/version_resource.h"
#include "frame/global_functions.h"

IMPLEMENT_DYNAMIC(CZqLocationRegistry, CZqGblRegBase)

namespace {

constexpr DWORD kLocalMachine = 1;
constexpr DWORD kCurrentUser = 2;

constexpr UINT kCountryIndex = 136;
constexpr UINT kLocationName = 137;
constexpr UINT kTapiDialing = 170;
constexpr UINT kAreaCityCode = 132;
constexpr UINT kInternationalAccess = 133;
constexpr UINT kLongDistancePrefix = 135;
constexpr UINT kLongDistanceAccess = 139;
constexpr UINT kLocalPrefix = 134;
constexpr UINT kDialSuffix = 166;
constexpr UINT kCallerId = 167;
constexpr UINT kCallWaiting = 168;
constexpr UINT kAddressCountryIndex = 146;
constexpr UINT kUserName = 140;
constexpr UINT kCompany = 165;
constexpr UINT kDept = 169;
constexpr UINT kAddress1 = 141;
constexpr UINT kAddress2 = 142;
constexpr UINT kCity = 143;
constexpr UINT kState = 144;
constexpr UINT kZipCode = 145;
constexpr UINT kEMail = 147;
constexpr UINT kCompuServe = 148;

// "%08u" of a slot: eight digits at least, ten at most.
struct SlotName {
    explicit SlotName(DWORD dwIndex) {
        std::snprintf(text, sizeof text, "%08u", static_cast<unsigned>(dwIndex));
    }
    char text[16];
};

}  // namespace

CZqLocationRegistry::CZqLocationRegistry()
    : CZqGblRegBase(kCurrentUser), m_dwDataIndex(0), m_bLocationSectionValid(FALSE) {
    SetAccessMode(kLocalMachine);
    LoadIndex(0);
}

CZqLocationRegistry::~CZqLocationRegistry() = default;

BOOL CZqLocationRegistry::IsClassDataValid() {
    const BOOL base = CZqGblRegBase::IsClassDataValid();
    m_bValid = base && m_bLocationSectionValid;
    return m_bValid;
}

BOOL CZqLocationRegistry::LoadSection() {
    m_bLocationSectionValid = FALSE;
    // The base's answer goes through this class's IsClassDataValid, which
    // still says no here, so its own condition is tested directly.
    CZqGblRegBase::LoadSection();
    if (m_pConfig != nullptr && m_szSection[0] != '\0') {
        CZqVersionResource version;
        char name[kNameSize] = {};
        if (version.ExtractVersionInfo() &&
            LoadStringA(ZqGblGetInstanceHandle(), kLocationKeyId, name, sizeof name) > 0) {
            const CString& user = version.GetCurrentUserKey();
            const int length = std::snprintf(m_szSection, sizeof m_szSection, "%s\\%s",
                                             static_cast<const char*>(user), name);
            // A key that does not fit the section would address another key.
            m_bLocationSectionValid =
                length > 0 && static_cast<size_t>(length) < sizeof m_szSection && !user.IsEmpty();
        }
    }
    return IsClassDataValid();
}

BOOL CZqLocationRegistry::LoadIndex(DWORD dwIndex) {
    if (!LoadSection()) {
        return 0;
    }
    const SlotName slot(dwIndex);
    const size_t used = std::strlen(m_szSection);
    const int length =
        std::snprintf(m_szSection + used, sizeof m_szSection - used, "\\%s", slot.text);
    if (length < 0 || used + static_cast<size_t>(length) >= sizeof m_szSection) {
        // The slot would not fit: address nothing rather than the parent.
        m_bLocationSectionValid = FALSE;
        IsClassDataValid();
        return 0;
    }
    return 1;
}

void CZqLocationRegistry::SetDataIndex(DWORD dwIndex) {
    m_dwDataIndex = dwIndex;
    LoadIndex(dwIndex);
}

DWORD CZqLocationRegistry::SetCurrentIndex(DWORD dwIndex) {
    if (!LoadSection()) {
        return kNotValid;
    }
    const DWORD rc = SetValue(kCurrentIndexId, dwIndex);
    LoadIndex(m_dwDataIndex);
    return rc;
}

DWORD CZqLocationRegistry::GetCurrentIndex(DWORD& dwIndex) {
    dwIndex = kNoCurrentIndex;
    if (!LoadSection()) {
        return kNotValid;
    }
    const DWORD rc = GetValue(kCurrentIndexId, dwIndex, kNoCurrentIndex);
    LoadIndex(m_dwDataIndex);
    return rc;
}

BOOL CZqLocationRegistry::DoesIndexExist(DWORD dwIndex) {
    BOOL bExists = FALSE;
    if (LoadIndex(dwIndex)) {
        if (DoesValueExist(kCountryCodeId, bExists) != 0) {
            bExists = FALSE;
        }
    }
    LoadIndex(m_dwDataIndex);
    return bExists;
}

DWORD CZqLocationRegistry::DeleteIndex(DWORD dwIndex) {
    DWORD rc = kNotValid;
    if (LoadSection()) {
        const SlotName slot(dwIndex);
        rc = DeleteSection(slot.text);
    }
    LoadIndex(m_dwDataIndex);
    return rc;
}

DWORD CZqLocationRegistry::GetString(UINT nNameId, CString& csText) {
    csText.Empty();
    char buffer[kMaxText + 1];
    const DWORD rc = CZqGblRegBase::GetString(nNameId, buffer, sizeof buffer, nullptr);
    if (rc == 0) {
        buffer[kMaxText] = '\0';
        csText = buffer;
    }
    return rc;
}

DWORD CZqLocationRegistry::SetText(UINT nNameId, const char* lpszText) {
    char buffer[kMaxText + 1];
    int length = 0;
    while (lpszText != nullptr && length < kMaxText && lpszText[length] != '\0') {
        buffer[length] = lpszText[length];
        ++length;
    }
    buffer[length] = '\0';
    return SetString(nNameId, buffer);
}

UINT CZqLocationRegistry::GetAreaStringId(DWORD dwSlot) {
    return dwSlot < kPhoneSlots ? kFirstAreaId + dwSlot : kFirstAreaId + 1;
}

UINT CZqLocationRegistry::GetNumberStringId(DWORD dwSlot) {
    return dwSlot < kPhoneSlots ? kFirstNumberId + dwSlot : kFirstNumberId + 1;
}

// The per-value operations: one call of the base each.

DWORD CZqLocationRegistry::SetCountryIndex(UINT nIndex) {
    return SetValue(kCountryIndex, nIndex);
}
DWORD CZqLocationRegistry::GetCountryIndex(UINT& nIndex) {
    return GetValue(kCountryIndex, nIndex, 0);
}
DWORD CZqLocationRegistry::SetLocationName(const char* lpszText) {
    return SetText(kLocationName, lpszText);
}
DWORD CZqLocationRegistry::GetLocationName(CString& csText) {
    return GetString(kLocationName, csText);
}
DWORD CZqLocationRegistry::SetTAPIDialing(DWORD dwEnabled) {
    return SetValue(kTapiDialing, dwEnabled);
}
DWORD CZqLocationRegistry::GetTAPIDialing(DWORD& dwEnabled) {
    return GetValue(kTapiDialing, dwEnabled, 0);
}
DWORD CZqLocationRegistry::SetCountryCode(const char* lpszText) {
    return SetText(kCountryCodeId, lpszText);
}
DWORD CZqLocationRegistry::GetCountryCode(CString& csText) {
    return GetString(kCountryCodeId, csText);
}
DWORD CZqLocationRegistry::SetAreaCityCode(const char* lpszText) {
    return SetText(kAreaCityCode, lpszText);
}
DWORD CZqLocationRegistry::GetAreaCityCode(CString& csText) {
    return GetString(kAreaCityCode, csText);
}
DWORD CZqLocationRegistry::SetInternationalAccess(const char* lpszText) {
    return SetText(kInternationalAccess, lpszText);
}
DWORD CZqLocationRegistry::GetInternationalAccess(CString& csText) {
    return GetString(kInternationalAccess, csText);
}
DWORD CZqLocationRegistry::SetLongDistancePrefix(const char* lpszText) {
    return SetText(kLongDistancePrefix, lpszText);
}
DWORD CZqLocationRegistry::GetLongDistancePrefix(CString& csText) {
    return GetString(kLongDistancePrefix, csText);
}
DWORD CZqLocationRegistry::SetLongDistanceAccess(const char* lpszText) {
    return SetText(kLongDistanceAccess, lpszText);
}
DWORD CZqLocationRegistry::GetLongDistanceAccess(CString& csText) {
    return GetString(kLongDistanceAccess, csText);
}
DWORD CZqLocationRegistry::SetLocalPrefix(const char* lpszText) {
    return SetText(kLocalPrefix, lpszText);
}
DWORD CZqLocationRegistry::GetLocalPrefix(CString& csText) {
    return GetString(kLocalPrefix, csText);
}
DWORD CZqLocationRegistry::SetDialSuffix(const char* lpszText) {
    return SetText(kDialSuffix, lpszText);
}
DWORD CZqLocationRegistry::GetDialSuffix(CString& csText) {
    return GetString(kDialSuffix, csText);
}
DWORD CZqLocationRegistry::SetBlockCallerID(const char* lpszText) {
    return SetText(kCallerId, lpszText);
}
DWORD CZqLocationRegistry::GetBlockCallerID(CString& csText) {
    return GetString(kCallerId, csText);
}
DWORD CZqLocationRegistry::SetDisableCallWaiting(const char* lpszText) {
    return SetText(kCallWaiting, lpszText);
}
DWORD CZqLocationRegistry::GetDisableCallWaiting(CString& csText) {
    return GetString(kCallWaiting, csText);
}
DWORD CZqLocationRegistry::SetAddressCountryIndex(UINT nIndex) {
    return SetValue(kAddressCountryIndex, nIndex);
}
DWORD CZqLocationRegistry::GetAddressCountryIndex(UINT& nIndex) {
    return GetValue(kAddressCountryIndex, nIndex, 0);
}
DWORD CZqLocationRegistry::SetUserName(const char* lpszText) {
    return SetText(kUserName, lpszText);
}
DWORD CZqLocationRegistry::GetUserName(CString& csText) {
    return GetString(kUserName, csText);
}
DWORD CZqLocationRegistry::SetCompany(const char* lpszText) {
    return SetText(kCompany, lpszText);
}
DWORD CZqLocationRegistry::GetCompany(CString& csText) {
    return GetString(kCompany, csText);
}
DWORD CZqLocationRegistry::SetDept(const char* lpszText) {
    return SetText(kDept, lpszText);
}
DWORD CZqLocationRegistry::GetDept(CString& csText) {
    return GetString(kDept, csText);
}
DWORD CZqLocationRegistry::SetAddress1(const char* lpszText) {
    return SetText(kAddress1, lpszText);
}
DWORD CZqLocationRegistry::GetAddress1(CString& csText) {
    return GetString(kAddress1, csText);
}
DWORD CZqLocationRegistry::SetAddress2(const char* lpszText) {
    return SetText(kAddress2, lpszText);
}
DWORD CZqLocationRegistry::GetAddress2(CString& csText) {
    return GetString(kAddress2, csText);
}
DWORD CZqLocationRegistry::SetCity(const char* lpszText) {
    return SetText(kCity, lpszText);
}
DWORD CZqLocationRegistry::GetCity(CString& csText) {
    return GetString(kCity, csText);
}
DWORD CZqLocationRegistry::SetState(const char* lpszText) {
    return SetText(kState, lpszText);
}
DWORD CZqLocationRegistry::GetState(CString& csText) {
    return GetString(kState, csText);
}
DWORD CZqLocationRegistry::SetZipCode(const char* lpszText) {
    return SetText(kZipCode, lpszText);
}
DWORD CZqLocationRegistry::GetZipCode(CString& csText) {
    return GetString(kZipCode, csText);
}
DWORD CZqLocationRegistry::SetEMail(const char* lpszText) {
    return SetText(kEMail, lpszText);
}
DWORD CZqLocationRegistry::GetEMail(CString& csText) {
    return GetString(kEMail, csText);
}
DWORD CZqLocationRegistry::SetCompuserve(const char* lpszText) {
    return SetText(kCompuServe, lpszText);
}
DWORD CZqLocationRegistry::GetCompuserve(CString& csText) {
    return GetString(kCompuServe, csText);
}
DWORD CZqLocationRegistry::SetPhoneArea(DWORD dwSlot, const char* lpszText) {
    return SetText(GetAreaStringId(dwSlot), lpszText);
}
DWORD CZqLocationRegistry::GetPhoneArea(DWORD dwSlot, CString& csText) {
    return GetString(GetAreaStringId(dwSlot), csText);
}
DWORD CZqLocationRegistry::SetPhoneNumber(DWORD dwSlot, const char* lpszText) {
    return SetText(GetNumberStringId(dwSlot), lpszText);
}
DWORD CZqLocationRegistry::GetPhoneNumber(DWORD dwSlot, CString& csText) {
    return GetString(GetNumberStringId(dwSlot), csText);
}
