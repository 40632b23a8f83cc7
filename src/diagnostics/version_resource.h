// CZqVersionResource: a module's version block, its fixed information and
// standard strings, and the registry keys the suite derives from them.
//
// With C, P and V the block's "CompanyName", "ProductName" and
// "ProductVersion" strings, R = "Software\C\P\V" is the suite's root; every
// user has his settings below R\Users\<user name>. A user seen for the first
// time receives a copy of the first user's tree (local machine, mode 1 of
// CZqGlobalConfig); when that copy fails he works on the first user's key.
// The keys, for user U and internal name N:
//
//   Mirkels root        R
//   users               R\Users
//   current user        R\Users\U
//   installed modules   R\Users\U\Modules
//   module root         R\Users\U\Modules\N\<major>.<minor> of the fixed
//                       product version
//   phone lists         R\Users\U\PhoneLists
//   speed-dial lists    R\Users\U\SpeedDialLists
//   fax-on-demand lists R\Users\U\FaxOnDemandLists
//
// Every failure is a FALSE result (no block, no translation table, a
// translation not in it, no user below R\Users); the keys then keep their
// previous values — empty on a fresh object — so callers check the result
// first. The first entry of the block's translation table decides the
// language of the strings. An object is used by one thread at a time.
#pragma once

#include "framework/core/cstring.h"
#include "platform/win32.h"

class CZqVersionResource {
public:
    static constexpr WORD kStandardValueCount = 9;

    // The names of the standard values set, everything else empty or zero.
    CZqVersionResource();
    // Frees the block and the translation table.
    virtual ~CZqVersionResource();
    CZqVersionResource(const CZqVersionResource&) = delete;
    CZqVersionResource& operator=(const CZqVersionResource&) = delete;

    // Reads the block of the running executable, of `module`, or of a file,
    // and derives the keys. The module forms find the file with
    // GetModuleFileNameA (1,024 characters) and keep the module handle.
    BOOL ExtractVersionInfo();
    BOOL ExtractVersionInfo(HINSTANCE hModule);
    BOOL ExtractVersionInfo(const char* lpszFile);

    // Reads the nine strings of one translation (low word language, high
    // word code page) and derives the keys. Strings the block lacks keep
    // their previous value.
    BOOL ExtractLanguageStandardValues(DWORD dwTranslation);

    // Value of index 0..8 (Comments, CompanyName, FileDescription,
    // FileVersion, InternalName, LegalCopyright, OriginalFilename,
    // ProductName, ProductVersion); an index beyond gives an empty string.
    CString& GetStandardValue(WORD wIndex);
    // The name of index 0..8, or an empty string.
    const CString& GetStandardName(WORD wIndex) const;
    CString& GetInternalName() { return GetStandardValue(4); }
    CString& GetLegalCopyright() { return GetStandardValue(5); }

    // Copies the translation entries into pTable, at most wCount on entry
    // (the room the caller has), and sets wCount to the number the block
    // holds. pTable may be NULL to ask for the number only.
    void GetTranslationTableArray(DWORD* pTable, WORD& wCount);

    // The two halves of the file version, the product version and the file
    // date from the fixed information (zero until a block was read).
    void GetFileVersionMajorMinor(DWORD& dwMS, DWORD& dwLS);
    void GetProductVersionMajorMinor(DWORD& dwMS, DWORD& dwLS);
    void GetDateTimeStampMajorMinor(DWORD& dwMS, DWORD& dwLS);

    // The flags bits 0x1, 0x2 and 0x4 as they are (non-zero when set).
    BOOL IsModuleDebug();
    BOOL IsModulePrerelease();
    BOOL IsModulePatched();
    // Bit tests on the file type, so that a driver (3) also counts as an
    // executable (bit 0x1) and a library (bit 0x2).
    BOOL IsModuleEXE();
    BOOL IsModuleDLL();
    BOOL IsModuleDriver();

    CString& GetMirkelsRootKey() { return m_csMirkelsRootKey; }
    CString& GetModuleRootKey() { return m_csModuleRootKey; }
    CString& GetInstalledModulesKey() { return m_csInstalledModulesKey; }
    CString& GetPhoneListsKey() { return m_csPhoneListsKey; }
    CString& GetSpeedDialListsKey() { return m_csSpeedDialListsKey; }
    CString& GetFaxOnDemandListsKey() { return m_csFaxOnDemandListsKey; }
    CString& GetUsersKey() { return m_csUsersKey; }
    CString& GetCurrentUserKey() { return m_csCurrentUserKey; }

    // The module and file whose block was read last.
    HINSTANCE GetModuleHandle() const { return m_hModule; }
    const CString& GetModuleFile() const { return m_csModuleFile; }

protected:
    struct StandardValue {
        CString m_csName;
        CString m_csValue;
    };

    VS_FIXEDFILEINFO m_FixedInfo;
    DWORD m_dwBlockSize;
    HGLOBAL m_hBlock;
    void* m_pBlock;
    HGLOBAL m_hTranslation;
    DWORD* m_pTranslation;
    WORD m_wTranslationCount;
    StandardValue m_Values[kStandardValueCount];
    HINSTANCE m_hModule;
    CString m_csModuleFile;
    CString m_csMirkelsRootKey;
    CString m_csModuleRootKey;
    CString m_csInstalledModulesKey;
    CString m_csPhoneListsKey;
    CString m_csSpeedDialListsKey;
    CString m_csFaxOnDemandListsKey;
    DWORD m_dwRead;
    CString m_csUsersKey;
    CString m_csCurrentUserKey;

private:
    void FreeBlock();
    void FreeTranslation();
    CString m_csNone;  // what an index beyond the nine values gets
};
