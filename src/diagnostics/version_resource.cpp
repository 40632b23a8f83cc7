#include "diagnostics/version_resource.h"

#include <algorithm>
#include <cstring>

#include "settings/global_config.h"

namespace {

constexpr const char* kStandardNames[CZqVersionResource::kStandardValueCount] = {
    "Comments",       "CompanyName",      "FileDescription", "FileVersion",   "InternalName",
    "LegalCopyright", "OriginalFilename", "ProductName",     "ProductVersion"};
constexpr WORD kCompanyName = 1;
constexpr WORD kInternalName = 4;
constexpr WORD kProductName = 7;
constexpr WORD kProductVersion = 8;
constexpr DWORD kModeLocalMachine = 1;

// The user the keys are made for: the login name, "SYSTEM" without one.
CString UserName() {
    char name[260] = {};
    DWORD size = sizeof name;
    if (!GetUserNameA(name, &size) || name[0] == '\0') {
        return CString("SYSTEM");
    }
    return CString(name);
}

}  // namespace

CZqVersionResource::CZqVersionResource()
    : m_FixedInfo{},
      m_dwBlockSize(0),
      m_hBlock(nullptr),
      m_pBlock(nullptr),
      m_hTranslation(nullptr),
      m_pTranslation(nullptr),
      m_wTranslationCount(0),
      m_hModule(nullptr),
      m_dwRead(0) {
    for (WORD i = 0; i < kStandardValueCount; ++i) {
        m_Values[i].m_csName = kStandardNames[i];
    }
}

CZqVersionResource::~CZqVersionResource() {
    FreeBlock();
    FreeTranslation();
}

void CZqVersionResource::FreeBlock() {
    if (m_hBlock) {
        GlobalUnlock(m_hBlock);
        GlobalFree(m_hBlock);
    }
    m_hBlock = nullptr;
    m_pBlock = nullptr;
    m_dwBlockSize = 0;
}

void CZqVersionResource::FreeTranslation() {
    if (m_hTranslation) {
        GlobalUnlock(m_hTranslation);
        GlobalFree(m_hTranslation);
    }
    m_hTranslation = nullptr;
    m_pTranslation = nullptr;
    m_wTranslationCount = 0;
}

BOOL CZqVersionResource::ExtractVersionInfo() {
    return ExtractVersionInfo(GetModuleHandleA(nullptr));
}

BOOL CZqVersionResource::ExtractVersionInfo(HINSTANCE hModule) {
    char file[1024] = {};
    const DWORD length = GetModuleFileNameA(hModule, file, sizeof file);
    if (length == 0 || length >= sizeof file) {
        return FALSE;
    }
    m_hModule = hModule;
    return ExtractVersionInfo(file);
}

BOOL CZqVersionResource::ExtractVersionInfo(const char* lpszFile) {
    m_csModuleFile = lpszFile;
    DWORD handle = 0;
    const DWORD size = GetFileVersionInfoSizeA(lpszFile, &handle);
    if (size == 0) {
        return FALSE;
    }
    FreeBlock();
    FreeTranslation();
    m_hBlock = GlobalAlloc(GMEM_FIXED | GMEM_ZEROINIT, size);
    m_pBlock = m_hBlock ? GlobalLock(m_hBlock) : nullptr;
    if (!m_pBlock) {
        FreeBlock();
        m_hModule = nullptr;
        m_csModuleFile.Empty();
        return FALSE;
    }
    m_dwBlockSize = size;
    if (!GetFileVersionInfoA(lpszFile, handle, size, m_pBlock)) {
        FreeBlock();
        return FALSE;
    }

    void* value = nullptr;
    UINT length = 0;
    if (VerQueryValueA(m_pBlock, "\\", &value, &length) && value &&
        length >= sizeof(VS_FIXEDFILEINFO)) {
        std::memcpy(&m_FixedInfo, value, sizeof m_FixedInfo);
    }

    // Without a translation table the strings cannot be found.
    value = nullptr;
    length = 0;
    if (!VerQueryValueA(m_pBlock, "\\VarFileInfo\\Translation", &value, &length) || !value ||
        length < sizeof(DWORD)) {
        FreeBlock();
        return FALSE;
    }
    const WORD count = static_cast<WORD>(std::min<UINT>(length / sizeof(DWORD), 0xFFFF));
    m_hTranslation = GlobalAlloc(GMEM_FIXED | GMEM_ZEROINIT, count * sizeof(DWORD));
    m_pTranslation = m_hTranslation ? static_cast<DWORD*>(GlobalLock(m_hTranslation)) : nullptr;
    if (!m_pTranslation) {
        FreeTranslation();
        FreeBlock();
        return FALSE;
    }
    std::memcpy(m_pTranslation, value, count * sizeof(DWORD));
    m_wTranslationCount = count;

    m_dwRead = 1;
    // The block's first translation decides the language.
    if (ExtractLanguageStandardValues(m_pTranslation[0])) {
        return TRUE;
    }
    FreeTranslation();
    FreeBlock();
    return FALSE;
}

BOOL CZqVersionResource::ExtractLanguageStandardValues(DWORD dwTranslation) {
    CString user = UserName();

    bool listed = false;
    for (WORD i = 0; i < m_wTranslationCount && m_pTranslation; ++i) {
        listed = listed || m_pTranslation[i] == dwTranslation;
    }
    if (!listed || !m_pBlock) {
        return FALSE;
    }

    for (WORD i = 0; i < kStandardValueCount; ++i) {
        char path[128];
        wsprintfA(path, "\\StringFileInfo\\%04X%04X\\%s", LOWORD(dwTranslation),
                  HIWORD(dwTranslation), static_cast<const char*>(m_Values[i].m_csName));
        void* value = nullptr;
        UINT length = 0;
        if (VerQueryValueA(m_pBlock, path, &value, &length) && value && length > 0 &&
            *static_cast<const char*>(value) != '\0') {
            m_Values[i].m_csValue = static_cast<const char*>(value);
        }
    }

    char product_version[32];
    wsprintfA(product_version, "%d.%d", static_cast<int>(HIWORD(m_FixedInfo.dwProductVersionMS)),
              static_cast<int>(LOWORD(m_FixedInfo.dwProductVersionMS)));

    const CString root = "Software\\" + m_Values[kCompanyName].m_csValue + "\\" +
                         m_Values[kProductName].m_csValue + "\\" +
                         m_Values[kProductVersion].m_csValue;
    const CString users = root + "\\Users";

    CZqGlobalConfig config;
    BOOL exists = FALSE;
    config.DoesSubkeyExist(kModeLocalMachine, users, user, exists);
    if (!exists) {
        // The installation made at least one user; a new one starts from
        // the first user's settings, or works on them when the copy fails.
        CString first;
        BOOL found = FALSE;
        config.FindFirstSubKey(kModeLocalMachine, users, first, found);
        if (!found) {
            return FALSE;
        }
        if (config.CopyRegTree(kModeLocalMachine, users + "\\" + user, kModeLocalMachine,
                               users + "\\" + first, 0) != 0) {
            user = first;
        }
    }

    const CString current = users + "\\" + user;
    m_csMirkelsRootKey = root;
    m_csModuleRootKey =
        current + "\\Modules\\" + m_Values[kInternalName].m_csValue + "\\" + product_version;
    m_csInstalledModulesKey = current + "\\Modules";
    m_csPhoneListsKey = current + "\\PhoneLists";
    m_csSpeedDialListsKey = current + "\\SpeedDialLists";
    m_csFaxOnDemandListsKey = current + "\\FaxOnDemandLists";
    m_csUsersKey = users;
    m_csCurrentUserKey = current;
    return TRUE;
}

CString& CZqVersionResource::GetStandardValue(WORD wIndex) {
    if (wIndex >= kStandardValueCount) {
        m_csNone.Empty();
        return m_csNone;
    }
    return m_Values[wIndex].m_csValue;
}

const CString& CZqVersionResource::GetStandardName(WORD wIndex) const {
    static const CString kNone;
    return wIndex < kStandardValueCount ? m_Values[wIndex].m_csName : kNone;
}

void CZqVersionResource::GetTranslationTableArray(DWORD* pTable, WORD& wCount) {
    const WORD room = wCount;
    if (pTable && m_pTranslation) {
        std::memcpy(pTable, m_pTranslation, std::min(room, m_wTranslationCount) * sizeof(DWORD));
    }
    wCount = m_wTranslationCount;
}

void CZqVersionResource::GetFileVersionMajorMinor(DWORD& dwMS, DWORD& dwLS) {
    dwMS = m_FixedInfo.dwFileVersionMS;
    dwLS = m_FixedInfo.dwFileVersionLS;
}

void CZqVersionResource::GetProductVersionMajorMinor(DWORD& dwMS, DWORD& dwLS) {
    dwMS = m_FixedInfo.dwProductVersionMS;
    dwLS = m_FixedInfo.dwProductVersionLS;
}

void CZqVersionResource::GetDateTimeStampMajorMinor(DWORD& dwMS, DWORD& dwLS) {
    dwMS = m_FixedInfo.dwFileDateMS;
    dwLS = m_FixedInfo.dwFileDateLS;
}

BOOL CZqVersionResource::IsModuleDebug() {
    return static_cast<BOOL>(m_FixedInfo.dwFileFlags & VS_FF_DEBUG);
}

BOOL CZqVersionResource::IsModulePrerelease() {
    return static_cast<BOOL>(m_FixedInfo.dwFileFlags & VS_FF_PRERELEASE);
}

BOOL CZqVersionResource::IsModulePatched() {
    return static_cast<BOOL>(m_FixedInfo.dwFileFlags & VS_FF_PATCHED);
}

BOOL CZqVersionResource::IsModuleEXE() {
    return static_cast<BOOL>(m_FixedInfo.dwFileType & 0x1);
}

BOOL CZqVersionResource::IsModuleDLL() {
    return static_cast<BOOL>(m_FixedInfo.dwFileType & 0x2);
}

BOOL CZqVersionResource::IsModuleDriver() {
    return (m_FixedInfo.dwFileType & 0x3) == 0x3;
}
