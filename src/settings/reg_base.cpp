#include "settings/reg_base.h"

#include <algorithm>
#include <cstring>
#include <new>

#include "frame/global_functions.h"
#include "settings/global_config.h"

IMPLEMENT_DYNAMIC(CZqGblRegBase, CObject)

CZqGblRegBase::CZqGblRegBase() : CZqGblRegBase(2) {}

CZqGblRegBase::CZqGblRegBase(DWORD dwAccessMode)
    : m_pConfig(new (std::nothrow) CZqGlobalConfig), m_dwAccessMode(dwAccessMode), m_bValid(FALSE) {
    m_szSection[0] = '\0';
    LoadSection();
}

CZqGblRegBase::~CZqGblRegBase() {
    delete m_pConfig;
}

BOOL CZqGblRegBase::IsClassDataValid() {
    m_bValid = m_pConfig != nullptr && m_szSection[0] != '\0';
    return m_bValid;
}

BOOL CZqGblRegBase::LoadSection() {
    std::memset(m_szSection, 0, sizeof m_szSection);
    if (LoadStringA(ZqGblGetInstanceHandle(), kSectionId, m_szSection, sizeof m_szSection) <= 0) {
        m_szSection[0] = '\0';
    }
    return IsClassDataValid();
}

DWORD CZqGblRegBase::PrepareName(UINT nNameId, char (&name)[kNameSize]) const {
    if (!m_bValid || !m_pConfig) {
        return kNotValid;
    }
    if (LoadStringA(ZqGblGetInstanceHandle(), nNameId, name, kNameSize) <= 0) {
        return kNameMissing;
    }
    return 0;
}

DWORD CZqGblRegBase::SetValue(UINT nNameId, DWORD dwValue) {
    char name[kNameSize];
    if (DWORD rc = PrepareName(nNameId, name); rc != 0) {
        return rc;
    }
    return m_pConfig->SetValue(m_dwAccessMode, m_szSection, name, dwValue);
}

DWORD CZqGblRegBase::GetValue(UINT nNameId, DWORD& dwResult, DWORD dwDefault) {
    dwResult = dwDefault;
    char name[kNameSize];
    if (DWORD rc = PrepareName(nNameId, name); rc != 0) {
        return rc;
    }
    return m_pConfig->GetValue(m_dwAccessMode, m_szSection, name, dwResult, dwDefault);
}

DWORD CZqGblRegBase::SetInteger(UINT nNameId, int nValue) {
    return SetValue(nNameId, static_cast<DWORD>(nValue));
}

DWORD CZqGblRegBase::GetInteger(UINT nNameId, int& nResult, int nDefault) {
    nResult = nDefault;
    char name[kNameSize];
    if (DWORD rc = PrepareName(nNameId, name); rc != 0) {
        return rc;
    }
    DWORD value = static_cast<DWORD>(nDefault);
    const DWORD rc =
        m_pConfig->GetValue(m_dwAccessMode, m_szSection, name, value, static_cast<DWORD>(nDefault));
    // Handed over only now; on a failure this is still the default.
    nResult = static_cast<int>(value);
    return rc;
}

DWORD CZqGblRegBase::SetString(UINT nNameId, const char* lpszText) {
    char name[kNameSize];
    if (DWORD rc = PrepareName(nNameId, name); rc != 0) {
        return rc;
    }
    return m_pConfig->SetValue(m_dwAccessMode, m_szSection, name, lpszText);
}

DWORD CZqGblRegBase::GetString(UINT nNameId, char* lpszBuffer, DWORD dwSize,
                               const char* lpszDefault) {
    if (!lpszBuffer) {
        return kNotValid;
    }
    if (dwSize > 0) {
        if (lpszDefault) {
            const size_t length = std::min<size_t>(std::strlen(lpszDefault), dwSize - 1);
            std::memcpy(lpszBuffer, lpszDefault, length);
            lpszBuffer[length] = '\0';
        } else {
            std::memset(lpszBuffer, 0, dwSize);
        }
    }
    char name[kNameSize];
    if (DWORD rc = PrepareName(nNameId, name); rc != 0) {
        return rc;
    }
    return m_pConfig->GetValue(m_dwAccessMode, m_szSection, name, lpszBuffer, dwSize, lpszDefault);
}

DWORD CZqGblRegBase::DeleteValue(UINT nNameId) {
    char name[kNameSize];
    if (DWORD rc = PrepareName(nNameId, name); rc != 0) {
        return rc;
    }
    return m_pConfig->DeleteEntry(m_dwAccessMode, m_szSection, name);
}

DWORD CZqGblRegBase::DeleteSection(const char* lpszSubKey) {
    if (!m_bValid || !m_pConfig) {
        return kNotValid;
    }
    return m_pConfig->DeleteSection(m_dwAccessMode, m_szSection, lpszSubKey);
}

DWORD CZqGblRegBase::DoesValueExist(UINT nNameId, BOOL& bExists) {
    bExists = FALSE;
    char name[kNameSize];
    if (DWORD rc = PrepareName(nNameId, name); rc != 0) {
        return rc;
    }
    return m_pConfig->DoesEntryExist(m_dwAccessMode, m_szSection, name, bExists);
}
