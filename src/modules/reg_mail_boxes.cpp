#include "modules/reg_mail_boxes.h"

#include <new>
#include <string_view>

#include "diagnostics/version_resource.h"
#include "frame/global_directory_functions.h"
#include "frame/global_file_name_functions.h"
#include "settings/global_config.h"
#include "settings/ini_value_text.h"

IMPLEMENT_DYNAMIC(CZqRegMailBoxes, CObject)

const char* CZqRegMailBoxes::m_lpszBaseKey = "MailBoxes";

namespace {

constexpr char kNameValue[] = "Name";
constexpr char kUserDefaultValue[] = "UserDefault";

// The subkey of a mailbox: "%08ld", so a number above 0x7FFFFFFF is written
// with its sign, as the suite's registries already hold it.
CString MailBoxSubKey(DWORD dwNumber) {
    CString name;
    name.Format("%08d", static_cast<int>(dwNumber));
    return name;
}

}  // namespace

CZqRegMailBoxes::CZqRegMailBoxes() = default;

CZqRegMailBoxes::~CZqRegMailBoxes() {
    RemoveAll();
}

BOOL CZqRegMailBoxes::GetMailBoxesKey(CString& csKey) {
    CZqVersionResource version;
    if (!version.ExtractVersionInfo()) {
        return FALSE;
    }
    csKey = version.GetMirkelsRootKey() + "\\" + m_lpszBaseKey;
    return TRUE;
}

DWORD WINAPI CZqRegMailBoxes::EnumKeysCallback(void* pContext, const char* lpszKeyName) {
    static_cast<CStringArray*>(pContext)->Add(lpszKeyName);
    return 0;
}

BOOL CZqRegMailBoxes::Load() {
    RemoveAll();
    CString key;
    if (!GetMailBoxesKey(key)) {
        return FALSE;
    }
    CZqGlobalConfig config;
    CStringArray subKeys;
    config.EnumEntries(kAccessMode, key, &EnumKeysCallback, &subKeys);
    for (int i = 0; i < subKeys.GetSize(); ++i) {
        char name[kNameSize] = {};
        config.GetValue(kAccessMode, key + "\\" + subKeys[i], kNameValue, name, sizeof name, "");
        const char* subKey = subKeys[i];
        // atol: a subkey that is no number is mailbox 0.
        const DWORD number = static_cast<DWORD>(zq::settings::ParseDecimal(
            std::string_view(subKey, static_cast<size_t>(subKeys[i].GetLength()))));
        if (!Add(number, name[0] ? CString(name) : CString(kBadBoxName))) {
            RemoveAll();
            return FALSE;
        }
    }
    return TRUE;
}

void CZqRegMailBoxes::ClearRegistry() {
    CZqVersionResource version;
    if (!version.ExtractVersionInfo()) {
        return;
    }
    CZqGlobalConfig config;
    config.DeleteSection(kAccessMode, version.GetMirkelsRootKey(), m_lpszBaseKey);
}

BOOL CZqRegMailBoxes::Write() {
    ClearRegistry();
    CString key;
    if (!GetMailBoxesKey(key)) {
        return FALSE;
    }
    CZqGlobalConfig config;
    for (int i = 0; i < GetSize(); ++i) {
        const tagREGMAILBOXSTRUCT* record = GetAt(i);
        config.SetValue(kAccessMode, key + "\\" + MailBoxSubKey(record->m_dwNumber), kNameValue,
                        record->m_csName);
    }
    // "UserDefault" went with the key: the caller sets it again if he keeps
    // one.
    return TRUE;
}

tagREGMAILBOXSTRUCT* CZqRegMailBoxes::Add(DWORD dwNumber, const CString& csName) {
    auto* record = new (std::nothrow) tagREGMAILBOXSTRUCT;
    if (!record) {
        return nullptr;
    }
    record->m_dwNumber = dwNumber;
    record->m_csName = csName;
    m_MailBoxes.Add(record);
    return record;
}

BOOL CZqRegMailBoxes::Remove(DWORD dwNumber) {
    for (int i = 0; i < GetSize(); ++i) {
        tagREGMAILBOXSTRUCT* record = GetAt(i);
        if (record->m_dwNumber == dwNumber) {
            m_MailBoxes.RemoveAt(i);
            delete record;
            return TRUE;
        }
    }
    return FALSE;
}

BOOL CZqRegMailBoxes::Remove(tagREGMAILBOXSTRUCT* pRecord) {
    for (int i = 0; i < GetSize(); ++i) {
        if (GetAt(i) == pRecord) {
            m_MailBoxes.RemoveAt(i);
            delete pRecord;
            return TRUE;
        }
    }
    return FALSE;
}

void CZqRegMailBoxes::RemoveAll() {
    for (int i = 0; i < GetSize(); ++i) {
        delete GetAt(i);
    }
    m_MailBoxes.RemoveAll();
}

tagREGMAILBOXSTRUCT* CZqRegMailBoxes::GetAt(int nIndex) const {
    if (nIndex < 0 || nIndex >= m_MailBoxes.GetSize()) {
        return nullptr;
    }
    return static_cast<tagREGMAILBOXSTRUCT*>(m_MailBoxes[nIndex]);
}

tagREGMAILBOXSTRUCT* CZqRegMailBoxes::GetDefault() {
    return GetAt(0);
}

tagREGMAILBOXSTRUCT* CZqRegMailBoxes::GetByNumber(DWORD dwNumber) {
    for (int i = 0; i < GetSize(); ++i) {
        if (GetAt(i)->m_dwNumber == dwNumber) {
            return GetAt(i);
        }
    }
    return nullptr;
}

DWORD CZqRegMailBoxes::GetUserDefault() {
    const DWORD fallback = GetSize() > 0 ? GetAt(0)->m_dwNumber : 0;
    CString key;
    if (!GetMailBoxesKey(key)) {
        return fallback;
    }
    DWORD number = fallback;
    CZqGlobalConfig().GetValue(kAccessMode, key, kUserDefaultValue, number, fallback);
    return number;
}

void CZqRegMailBoxes::SetUserDefault(DWORD dwNumber) {
    CString key;
    if (GetMailBoxesKey(key)) {
        CZqGlobalConfig().SetValue(kAccessMode, key, kUserDefaultValue, dwNumber);
    }
}

BOOL CZqRegMailBoxes::IsNameUnique(const char* lpszName) {
    if (GetSize() == 0) {
        Load();
    }
    const char* name = lpszName ? lpszName : "";
    for (int i = 0; i < GetSize(); ++i) {
        if (GetAt(i)->m_csName.CompareNoCase(name) == 0) {
            return FALSE;
        }
    }
    return TRUE;
}

BOOL CZqRegMailBoxes::DoesNumberExist(DWORD dwNumber) {
    if (GetSize() == 0) {
        Load();
    }
    return GetByNumber(dwNumber) != nullptr;
}

const char* CZqRegMailBoxes::GetFolderSuffix(MAILBOXFOLDER folder) {
    switch (folder) {
        case MBF_INBOX:
            return "\\INBOX";
        case MBF_OUTBOX:
            return "\\OUTBOX";
        case MBF_SETUP:
            return "\\BOXSETUP";
        case MBF_PROMPTS:
            return "\\BOXSETUP\\PROMPTS";
        case MBF_ARCHIVE:
            return "\\ARCHIVE";
        default:
            return "";
    }
}

BOOL CZqRegMailBoxes::GetMailBoxPath(DWORD dwNumber, CString& csPath, MAILBOXFOLDER folder) {
    CZqRegMailBoxes mailBoxes;
    mailBoxes.Load();
    if (!mailBoxes.GetByNumber(dwNumber)) {
        if (mailBoxes.GetSize() == 0) {
            return FALSE;
        }
        dwNumber = mailBoxes.GetAt(0)->m_dwNumber;
    }
    char module[MAX_PATH + 1] = {};
    GetModuleFileNameA(nullptr, module, MAX_PATH);
    CString folderPath;
    CZqGlobalFileNameFunctions::ExtractPathFromPath(module, folderPath);
    if (folderPath.IsEmpty() || folderPath[folderPath.GetLength() - 1] != '\\') {
        folderPath += '\\';
    }
    csPath.Format("%sMAILBOX\\%08u%s", static_cast<const char*>(folderPath), dwNumber,
                  GetFolderSuffix(folder));
    DWORD isDirectory = 0;
    if (CZqGlobalDirectoryFunctions::Exists(csPath, isDirectory) != 0) {
        CZqGlobalDirectoryFunctions::Create(csPath);
    }
    return TRUE;
}
