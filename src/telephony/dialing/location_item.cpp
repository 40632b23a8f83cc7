#include "telephony/dialing/location_item.h"

#include <memory>
#include <new>

#include "telephony/dialing/location_registry.h"
#include "telephony/telephony_results.h"

using zq::telephony::kObjectNotMade;

namespace {

// A telephone array entry, or an empty text beyond the array's end.
const char* EntryOrEmpty(const CStringArray& entries, int nSlot) {
    // ElementAt, not GetAt: the text must outlive this call.
    return nSlot < entries.GetSize() ? static_cast<const char*>(entries.ElementAt(nSlot)) : "";
}

}  // namespace

CZqLocationItem::CZqLocationItem(DWORD dwIndex) {
    ClearData();
    m_dwDataIndex = dwIndex;
}

void CZqLocationItem::ClearData() {
    m_dwDataIndex = 0;
    m_nCountryIndex = 0;
    m_bTAPIDialing = 0;
    m_nAddressCountryIndex = 0;
    for (CString* text : {&m_csLocationName,
                          &m_csCountryCode,
                          &m_csAreaCityCode,
                          &m_csInternationalAccess,
                          &m_csLongDistancePrefix,
                          &m_csLongDistanceAccess,
                          &m_csLocalPrefix,
                          &m_csDialSuffix,
                          &m_csCallerID,
                          &m_csCallWaiting,
                          &m_csUserName,
                          &m_csCompany,
                          &m_csDept,
                          &m_csAddress1,
                          &m_csAddress2,
                          &m_csCity,
                          &m_csState,
                          &m_csZipCode,
                          &m_csEMail,
                          &m_csCompuServe}) {
        text->Empty();
    }
    m_csaPhoneAreas.RemoveAll();
    m_csaPhoneNumbers.RemoveAll();
}

DWORD CZqLocationItem::LoadCurrentLocation() {
    DWORD dwIndex = 0;
    {
        std::unique_ptr<CZqLocationRegistry> registry(new (std::nothrow) CZqLocationRegistry);
        if (!registry) {
            return kObjectNotMade;
        }
        // With none stored this is 0xFFFFFFFF, whose slot then fails to load.
        registry->GetCurrentIndex(dwIndex);
    }
    return LoadByIndex(dwIndex);
}

DWORD CZqLocationItem::LoadByIndex(DWORD dwIndex) {
    m_dwDataIndex = dwIndex;
    std::unique_ptr<CZqLocationRegistry> registry(new (std::nothrow) CZqLocationRegistry);
    if (!registry) {
        return kObjectNotMade;
    }
    CZqLocationRegistry& r = *registry;
    r.SetDataIndex(dwIndex);

    DWORD tapi = 0;
    DWORD rc = r.GetCountryIndex(m_nCountryIndex);
    if (rc == 0)
        rc = r.GetLocationName(m_csLocationName);
    if (rc == 0)
        rc = r.GetTAPIDialing(tapi);
    if (rc == 0)
        rc = r.GetCountryCode(m_csCountryCode);
    if (rc == 0)
        rc = r.GetAreaCityCode(m_csAreaCityCode);
    if (rc == 0)
        rc = r.GetInternationalAccess(m_csInternationalAccess);
    if (rc == 0)
        rc = r.GetLongDistancePrefix(m_csLongDistancePrefix);
    if (rc == 0)
        rc = r.GetLongDistanceAccess(m_csLongDistanceAccess);
    if (rc == 0)
        rc = r.GetLocalPrefix(m_csLocalPrefix);
    if (rc == 0)
        rc = r.GetDialSuffix(m_csDialSuffix);
    if (rc == 0)
        rc = r.GetBlockCallerID(m_csCallerID);
    if (rc == 0)
        rc = r.GetDisableCallWaiting(m_csCallWaiting);
    if (rc == 0)
        rc = r.GetAddressCountryIndex(m_nAddressCountryIndex);
    if (rc == 0)
        rc = r.GetUserName(m_csUserName);
    if (rc == 0)
        rc = r.GetCompany(m_csCompany);
    if (rc == 0)
        rc = r.GetDept(m_csDept);
    if (rc == 0)
        rc = r.GetAddress1(m_csAddress1);
    if (rc == 0)
        rc = r.GetAddress2(m_csAddress2);
    if (rc == 0)
        rc = r.GetCity(m_csCity);
    if (rc == 0)
        rc = r.GetState(m_csState);
    if (rc == 0)
        rc = r.GetZipCode(m_csZipCode);
    if (rc == 0)
        rc = r.GetEMail(m_csEMail);
    if (rc == 0)
        rc = r.GetCompuserve(m_csCompuServe);
    if (rc == 0) {
        m_bTAPIDialing = tapi != 0 ? 1 : 0;
        m_csaPhoneAreas.RemoveAll();
        m_csaPhoneNumbers.RemoveAll();
        for (int slot = 0; slot < kPhoneSlots && rc == 0; ++slot) {
            CString area;
            CString number;
            rc = r.GetPhoneArea(static_cast<DWORD>(slot), area);
            if (rc == 0)
                rc = r.GetPhoneNumber(static_cast<DWORD>(slot), number);
            if (rc == 0) {
                m_csaPhoneAreas.Add(area);
                m_csaPhoneNumbers.Add(number);
            }
        }
    }
    if (rc != 0) {
        ClearData();
    }
    return rc;
}

DWORD CZqLocationItem::SaveByIndex() {
    std::unique_ptr<CZqLocationRegistry> registry(new (std::nothrow) CZqLocationRegistry);
    if (!registry) {
        return kObjectNotMade;
    }
    CZqLocationRegistry& r = *registry;
    r.SetDataIndex(m_dwDataIndex);

    DWORD rc = r.SetCountryIndex(m_nCountryIndex);
    if (rc == 0)
        rc = r.SetLocationName(m_csLocationName);
    if (rc == 0)
        rc = r.SetTAPIDialing(static_cast<DWORD>(m_bTAPIDialing));
    if (rc == 0)
        rc = r.SetCountryCode(m_csCountryCode);
    if (rc == 0)
        rc = r.SetAreaCityCode(m_csAreaCityCode);
    if (rc == 0)
        rc = r.SetInternationalAccess(m_csInternationalAccess);
    if (rc == 0)
        rc = r.SetLongDistancePrefix(m_csLongDistancePrefix);
    if (rc == 0)
        rc = r.SetLongDistanceAccess(m_csLongDistanceAccess);
    if (rc == 0)
        rc = r.SetLocalPrefix(m_csLocalPrefix);
    if (rc == 0)
        rc = r.SetDialSuffix(m_csDialSuffix);
    if (rc == 0)
        rc = r.SetBlockCallerID(m_csCallerID);
    if (rc == 0)
        rc = r.SetDisableCallWaiting(m_csCallWaiting);
    if (rc == 0)
        rc = r.SetAddressCountryIndex(m_nAddressCountryIndex);
    if (rc == 0)
        rc = r.SetUserName(m_csUserName);
    if (rc == 0)
        rc = r.SetCompany(m_csCompany);
    if (rc == 0)
        rc = r.SetDept(m_csDept);
    if (rc == 0)
        rc = r.SetAddress1(m_csAddress1);
    if (rc == 0)
        rc = r.SetAddress2(m_csAddress2);
    if (rc == 0)
        rc = r.SetCity(m_csCity);
    if (rc == 0)
        rc = r.SetState(m_csState);
    if (rc == 0)
        rc = r.SetZipCode(m_csZipCode);
    if (rc == 0)
        rc = r.SetEMail(m_csEMail);
    if (rc == 0)
        rc = r.SetCompuserve(m_csCompuServe);
    // Areas of all slots first, then the numbers.
    for (int slot = 0; slot < kPhoneSlots && rc == 0; ++slot) {
        rc = r.SetPhoneArea(static_cast<DWORD>(slot), EntryOrEmpty(m_csaPhoneAreas, slot));
    }
    for (int slot = 0; slot < kPhoneSlots && rc == 0; ++slot) {
        rc = r.SetPhoneNumber(static_cast<DWORD>(slot), EntryOrEmpty(m_csaPhoneNumbers, slot));
    }
    if (rc != 0) {
        // A half-written location never stays behind.
        r.DeleteIndex(m_dwDataIndex);
    }
    return rc;
}
