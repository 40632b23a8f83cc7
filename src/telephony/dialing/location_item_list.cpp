#include "telephony/dialing/location_item_list.h"

#include <cstring>
#include <memory>
#include <new>
#include <vector>

#include "diagnostics/version_resource.h"
#include "frame/global_functions.h"
#include "settings/global_config.h"
#include "telephony/dialing/location_registry.h"
#include "telephony/telephony_results.h"

using zq::telephony::kObjectNotMade;

namespace {

constexpr DWORD kLocalMachine = 1;

bool AllDigits(const char* lpszName) {
    for (const char* p = lpszName; *p != '\0'; ++p) {
        if (*p < '0' || *p > '9') {
            return false;
        }
    }
    return true;
}

// Collects the data indexes of the digit-only sub-key names.
DWORD WINAPI CollectSlot(void* pContext, const char* lpszSubKey) {
    if (lpszSubKey != nullptr && AllDigits(lpszSubKey)) {
        // An empty name counts as all digits and gives 0.
        static_cast<std::vector<DWORD>*>(pContext)->push_back(
            CZqGlobalConfig::StringToDWord(lpszSubKey));
    }
    return 0;
}

// Name equality without regard to case in the user's locale; with bPrefix,
// a longer name is compared on its first strlen(lpszName) characters only.
bool NameMatches(const CString& csName, const char* lpszName, bool bPrefix) {
    const int wanted = static_cast<int>(std::strlen(lpszName));
    if (bPrefix && csName.GetLength() > wanted) {
        return lstrcmpiA(csName.Left(wanted), lpszName) == 0;
    }
    return lstrcmpiA(csName, lpszName) == 0;
}

}  // namespace

CZqLocationItemList::~CZqLocationItemList() {
    FreeData();
}

void CZqLocationItemList::FreeData() {
    for (int i = 0; i < GetSize(); ++i) {
        delete GetAt(i);
    }
    RemoveAll();
}

DWORD CZqLocationItemList::LoadAllItems() {
    CZqVersionResource version;
    if (!version.ExtractVersionInfo()) {
        return kObjectNotMade;
    }
    char name[CZqGblRegBase::kNameSize] = {};
    LoadStringA(ZqGblGetInstanceHandle(), CZqLocationRegistry::kLocationKeyId, name, sizeof name);
    const CString key = version.GetCurrentUserKey() + "\\" + name;

    std::vector<DWORD> slots;
    // No locations key yet means no locations; what was found before an
    // enumeration error is loaded all the same.
    CZqGlobalConfig().EnumEntries(kLocalMachine, key, CollectSlot, &slots);

    for (DWORD slot : slots) {
        std::unique_ptr<CZqLocationItem> item(new (std::nothrow) CZqLocationItem(slot));
        if (!item) {
            return kObjectNotMade;
        }
        if (const DWORD rc = item->LoadByIndex(slot); rc != 0) {
            return rc;
        }
        Add(item.release());
    }
    return 0;
}

void CZqLocationItemList::SaveAllItems() {
    for (int i = 0; i < GetSize(); ++i) {
        if (CZqLocationItem* item = GetAt(i)) {
            item->SaveByIndex();
        }
    }
}

CZqLocationItem* CZqLocationItemList::GetNewLocation() {
    CZqLocationItem* item = new (std::nothrow) CZqLocationItem(0);
    if (item != nullptr) {
        item->m_dwDataIndex = GetUniqueIndex();
        Add(item);
    }
    return item;
}

DWORD CZqLocationItemList::GetUniqueIndex() {
    DWORD candidate = 0;
    bool changed = true;
    while (changed) {
        changed = false;
        for (int i = 0; i < GetSize(); ++i) {
            const CZqLocationItem* item = GetAt(i);
            if (item != nullptr && item->m_dwDataIndex == candidate) {
                ++candidate;
                changed = true;
            }
        }
    }
    return candidate;
}

CZqLocationItem* CZqLocationItemList::FindByName(LPCSTR lpszName, int bPrefix) {
    if (lpszName == nullptr || *lpszName == '\0' || GetSize() == 0) {
        return nullptr;
    }
    for (int i = 0; i < GetSize(); ++i) {
        CZqLocationItem* item = GetAt(i);
        if (item != nullptr && NameMatches(item->m_csLocationName, lpszName, bPrefix != 0)) {
            return item;
        }
    }
    return nullptr;
}

CZqLocationItem* CZqLocationItemList::FindByIndex(DWORD dwIndex) {
    for (int i = 0; i < GetSize(); ++i) {
        CZqLocationItem* item = GetAt(i);
        if (item != nullptr && item->m_dwDataIndex == dwIndex) {
            return item;
        }
    }
    return nullptr;
}

CZqLocationItem* CZqLocationItemList::FindByCountryIndex(UINT nCountry) {
    for (int i = 0; i < GetSize(); ++i) {
        CZqLocationItem* item = GetAt(i);
        if (item != nullptr && item->m_nCountryIndex == nCountry) {
            return item;
        }
    }
    return nullptr;
}

CZqLocationItem* CZqLocationItemList::GetFirstItem() {
    return GetSize() > 0 ? GetAt(0) : nullptr;
}

void CZqLocationItemList::SetCurrentIndex(DWORD dwIndex) {
    std::unique_ptr<CZqLocationRegistry> registry(new (std::nothrow) CZqLocationRegistry);
    if (registry) {
        registry->SetCurrentIndex(dwIndex);
    }
}

DWORD CZqLocationItemList::GetCurrentIndex() {
    std::unique_ptr<CZqLocationRegistry> registry(new (std::nothrow) CZqLocationRegistry);
    if (!registry) {
        return 0;
    }
    DWORD dwIndex = CZqLocationRegistry::kNoCurrentIndex;
    registry->GetCurrentIndex(dwIndex);
    return dwIndex;
}

BOOL CZqLocationItemList::DeleteByName(LPCSTR lpszName) {
    if (lpszName == nullptr || *lpszName == '\0') {
        return 0;
    }
    for (int i = 0; i < GetSize(); ++i) {
        CZqLocationItem* item = GetAt(i);
        // Always a prefix match, unlike FindByName: kept as it always was.
        if (item != nullptr && NameMatches(item->m_csLocationName, lpszName, true)) {
            RemoveAt(i);
            DeleteRegIndex(item->m_dwDataIndex);
            delete item;
            return 1;
        }
    }
    return 0;
}

void CZqLocationItemList::DeleteRegIndex(DWORD dwIndex) {
    std::unique_ptr<CZqLocationRegistry> registry(new (std::nothrow) CZqLocationRegistry);
    if (registry && registry->DoesIndexExist(dwIndex)) {
        registry->DeleteIndex(dwIndex);
    }
}

void CZqLocationItemList::AddItemsToListBox(CListBox* /*pList*/) {}
