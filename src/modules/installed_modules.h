// CZqInstalledModules: the product modules installed for the running
// program's user, read from the registry.
//
// Each installed module has the key
//   <installed-modules key>\<module name>\<major>.<minor>
// below the local-machine root (mode 1 of CZqGlobalConfig), where the
// installed-modules key comes from the running program's version block and
// <major>.<minor> is the high and low word of its product version's first
// half. The key holds the DWORD "Access" (bit 0: the document template is
// installed and usable; the other bits are the rights written at
// installation) and the string "Template" (the template module's file).
// The module name is its type name:
//
//   type 100 "VIDEOMirkel" 0x1    type 200 "TELEMirkel" 0xF
//   type 300 "FAX32Mirkel" 0xF    type 400 "VIEWMirkel" 0x1
//   type 500 "DATAMirkel"  0x7    (the figures: default access flags)
//
// The list keeps the order in which the registry enumerates the module
// keys. Failures show only as FALSE, an empty list or a missing record;
// registry write errors are not reported. An object belongs to one thread
// at a time.
#pragma once

#include "framework/core/arrays.h"
#include "framework/core/cstring.h"
#include "framework/core/object.h"
#include "platform/win32.h"

class CZqGlobalConfig;

// One installed module.
struct tagINSTALLEDMODULESTRUCT {
    DWORD m_dwAccess = 0;          // bit 0: template usable
    CString m_csModuleName;        // the module's key name (its type name)
    CString m_csTemplateFileName;  // at most 260 characters; empty when unusable
};

class CZqInstalledModules : public CObject {
    DECLARE_DYNAMIC(CZqInstalledModules)

public:
    static constexpr int kVideoModule = 100;
    static constexpr int kTelephonyModule = 200;
    static constexpr int kFaxModule = 300;
    static constexpr int kViewerModule = 400;
    static constexpr int kDataModule = 500;
    // Bit 0 of the access flags.
    static constexpr DWORD kTemplateUsable = 0x1;
    static constexpr DWORD kAccessMode = 1;  // local machine
    static constexpr DWORD kTemplateNameSize = 260;

    // With bLoad, Load at once.
    explicit CZqInstalledModules(BOOL bLoad);
    ~CZqInstalledModules() override;
    CZqInstalledModules(const CZqInstalledModules&) = delete;
    CZqInstalledModules& operator=(const CZqInstalledModules&) = delete;

    // Rebuilds the list from the registry. FALSE, with the list empty, when
    // the running program's version block cannot be read. A module key
    // without a readable "Access" is left out; one marked usable without a
    // "Template" text (or with an empty one) is listed with bit 0 cleared
    // and no template name (the registry stays as it is).
    BOOL Load();
    // Deletes every record.
    void RemoveAll();

    // Empties csaNames, then adds, in list order, the template file name of
    // every record whose access flags hold all bits of dwMask (mask 0: all
    // records, empty names included).
    void GetTemplateFileNames(CStringArray& csaNames, DWORD dwMask);
    // TRUE when a record with bit 0 set carries the type name of nType,
    // compared without regard to case. FALSE for an unknown type.
    BOOL IsTemplateInstalled(int nType);
    // Writes "Access" of the module of nType: its default access flags when
    // bInstalled, else 0. Only modules listed with bit 0 set are written
    // (each such record once), so a module switched off and reloaded cannot
    // be switched on again here: kept as the suite's installers expect.
    // The records in memory do not change; a later Load shows the new
    // state. Nothing for an unknown type or without a version block.
    void SetTemplateInstalled(int nType, BOOL bInstalled);

    // Additions beyond the exported interface, for tools and tests.
    int GetSize() const { return m_Modules.GetSize(); }
    // Record nIndex, or NULL outside 0..GetSize()-1.
    const tagINSTALLEDMODULESTRUCT* GetAt(int nIndex) const;
    // The type name of nType, empty for an unknown type.
    static CString GetTypeName(int nType);
    // "<major>.<minor>" of a product version's most significant DWORD.
    static CString FormatProductVersion(DWORD dwProductVersionMS);

protected:
    // Reads one module key (installedKey\moduleName\version) and appends
    // its record; nothing when "Access" cannot be read.
    void LoadInstalledModuleInfo(CZqGlobalConfig& config, const CString& csInstalledKey,
                                 const CString& csModuleName, const CString& csVersion);
    CString GetModuleDesc(int nType);
    DWORD GetDefaultAccessFlags(int nType);
    // Appends keyName to the CStringArray at pContext; always 0.
    static DWORD WINAPI EnumKeysCallback(void* pContext, const char* lpszKeyName);

    CPtrArray m_Modules;  // of tagINSTALLEDMODULESTRUCT, owned
};
