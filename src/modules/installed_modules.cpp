#include "modules/installed_modules.h"

#include <new>

#include "diagnostics/version_resource.h"
#include "settings/global_config.h"

IMPLEMENT_DYNAMIC(CZqInstalledModules, CObject)

namespace {

constexpr char kAccessValue[] = "Access";
constexpr char kTemplateValue[] = "Template";
// Read when "Access" is missing; the module is then left out.
constexpr DWORD kNoAccess = 0xFFFFFFFF;

struct ModuleType {
    int nType;
    const char* lpszName;
    DWORD dwDefaultAccess;
};

constexpr ModuleType kModuleTypes[] = {
    {CZqInstalledModules::kVideoModule, "VIDEOMirkel", 0x1},
    {CZqInstalledModules::kTelephonyModule, "TELEMirkel", 0xF},
    {CZqInstalledModules::kFaxModule, "FAX32Mirkel", 0xF},
    {CZqInstalledModules::kViewerModule, "VIEWMirkel", 0x1},
    {CZqInstalledModules::kDataModule, "DATAMirkel", 0x7},
};

const ModuleType* FindType(int nType) {
    for (const ModuleType& type : kModuleTypes) {
        if (type.nType == nType) {
            return &type;
        }
    }
    return nullptr;
}

CString ModuleKey(const CString& csInstalledKey, const CString& csModuleName,
                  const CString& csVersion) {
    return csInstalledKey + "\\" + csModuleName + "\\" + csVersion;
}

}  // namespace

CZqInstalledModules::CZqInstalledModules(BOOL bLoad) {
    if (bLoad) {
        Load();
    }
}

CZqInstalledModules::~CZqInstalledModules() {
    RemoveAll();
}

void CZqInstalledModules::RemoveAll() {
    for (int i = 0; i < m_Modules.GetSize(); ++i) {
        delete static_cast<tagINSTALLEDMODULESTRUCT*>(m_Modules[i]);
    }
    m_Modules.RemoveAll();
}

CString CZqInstalledModules::GetTypeName(int nType) {
    const ModuleType* type = FindType(nType);
    return type ? CString(type->lpszName) : CString();
}

CString CZqInstalledModules::GetModuleDesc(int nType) {
    return GetTypeName(nType);
}

DWORD CZqInstalledModules::GetDefaultAccessFlags(int nType) {
    const ModuleType* type = FindType(nType);
    return type ? type->dwDefaultAccess : 0;
}

CString CZqInstalledModules::FormatProductVersion(DWORD dwProductVersionMS) {
    CString version;
    version.Format("%d.%d", HIWORD(dwProductVersionMS), LOWORD(dwProductVersionMS));
    return version;
}

DWORD WINAPI CZqInstalledModules::EnumKeysCallback(void* pContext, const char* lpszKeyName) {
    static_cast<CStringArray*>(pContext)->Add(lpszKeyName);
    return 0;
}

BOOL CZqInstalledModules::Load() {
    RemoveAll();
    CZqVersionResource version;
    if (!version.ExtractVersionInfo()) {
        return FALSE;
    }
    const CString installed = version.GetInstalledModulesKey();
    DWORD ms = 0, ls = 0;
    version.GetProductVersionMajorMinor(ms, ls);
    const CString productVersion = FormatProductVersion(ms);

    CZqGlobalConfig config;
    CStringArray names;
    config.EnumEntries(kAccessMode, installed, &EnumKeysCallback, &names);
    for (int i = 0; i < names.GetSize(); ++i) {
        LoadInstalledModuleInfo(config, installed, names[i], productVersion);
    }
    return TRUE;
}

void CZqInstalledModules::LoadInstalledModuleInfo(CZqGlobalConfig& config,
                                                  const CString& csInstalledKey,
                                                  const CString& csModuleName,
                                                  const CString& csVersion) {
    const CString key = ModuleKey(csInstalledKey, csModuleName, csVersion);
    DWORD access = kNoAccess;
    if (config.GetValue(kAccessMode, key, kAccessValue, access, kNoAccess) != 0) {
        return;
    }
    char templateName[kTemplateNameSize] = {};
    if (access & kTemplateUsable) {
        // A usable module without a template is not usable after all; only
        // the list says so, the registry is left alone.
        if (config.GetValue(kAccessMode, key, kTemplateValue, templateName, sizeof templateName,
                            "") != 0 ||
            templateName[0] == '\0') {
            access &= ~kTemplateUsable;
            templateName[0] = '\0';
        }
    }
    auto* record = new (std::nothrow) tagINSTALLEDMODULESTRUCT;
    if (!record) {
        return;
    }
    record->m_dwAccess = access;
    record->m_csModuleName = csModuleName;
    record->m_csTemplateFileName = templateName;
    m_Modules.Add(record);
}

const tagINSTALLEDMODULESTRUCT* CZqInstalledModules::GetAt(int nIndex) const {
    if (nIndex < 0 || nIndex >= m_Modules.GetSize()) {
        return nullptr;
    }
    return static_cast<const tagINSTALLEDMODULESTRUCT*>(m_Modules[nIndex]);
}

void CZqInstalledModules::GetTemplateFileNames(CStringArray& csaNames, DWORD dwMask) {
    csaNames.RemoveAll();
    for (int i = 0; i < GetSize(); ++i) {
        const tagINSTALLEDMODULESTRUCT* record = GetAt(i);
        if ((record->m_dwAccess & dwMask) == dwMask) {
            csaNames.Add(record->m_csTemplateFileName);
        }
    }
}

BOOL CZqInstalledModules::IsTemplateInstalled(int nType) {
    const CString name = GetModuleDesc(nType);
    if (name.IsEmpty()) {
        return FALSE;
    }
    for (int i = 0; i < GetSize(); ++i) {
        const tagINSTALLEDMODULESTRUCT* record = GetAt(i);
        if ((record->m_dwAccess & kTemplateUsable) &&
            record->m_csModuleName.CompareNoCase(name) == 0) {
            return TRUE;
        }
    }
    return FALSE;
}

void CZqInstalledModules::SetTemplateInstalled(int nType, BOOL bInstalled) {
    const CString name = GetModuleDesc(nType);
    if (name.IsEmpty()) {
        return;
    }
    for (int i = 0; i < GetSize(); ++i) {
        const tagINSTALLEDMODULESTRUCT* record = GetAt(i);
        // Only what is listed as usable is written: a module switched off
        // stays off until it is installed again (kept on purpose).
        if (!(record->m_dwAccess & kTemplateUsable) ||
            record->m_csModuleName.CompareNoCase(name) != 0) {
            continue;
        }
        CZqVersionResource version;
        if (!version.ExtractVersionInfo()) {
            return;
        }
        DWORD ms = 0, ls = 0;
        version.GetProductVersionMajorMinor(ms, ls);
        const CString key =
            ModuleKey(version.GetInstalledModulesKey(), name, FormatProductVersion(ms));
        CZqGlobalConfig config;
        config.SetValue(kAccessMode, key, kAccessValue,
                        bInstalled ? GetDefaultAccessFlags(nType) : DWORD{0});
    }
}
