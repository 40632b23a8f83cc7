// CZqGblRegBase: base of the library's registry-backed settings objects.
//
// All of them keep their values below one key, the company key of string
// 129 of the library's own string table ("SOFTWARE\Zq,Inc."), below the root
// of the access mode (2, the current user, unless told otherwise). A derived
// class names its values by string-table id, so every value name of the
// library lives in that table; the registry work itself is done by an owned
// CZqGlobalConfig.
//
// Results: 0, the codes of CZqGlobalConfig (platform registry errors,
// 0x24014000, 0x24015800), kNotValid when the object is not valid (no
// configuration object or an empty section: no registry access at all), and
// kNameMissing when the value name's string cannot be loaded. Reads put the
// caller's default in place first, so it is there after every failure.
// An object is used by one thread at a time.
#pragma once

#include "framework/core/object.h"
#include "platform/win32.h"

class CZqGlobalConfig;

class CZqGblRegBase : public CObject {
    DECLARE_DYNAMIC(CZqGblRegBase)

public:
    static constexpr DWORD kNotValid = 0x24014407;
    static constexpr DWORD kNameMissing = 0x2401446C;
    static constexpr UINT kSectionId = 129;
    static constexpr DWORD kSectionSize = 1024;
    static constexpr DWORD kNameSize = 256;  // names of up to 255 characters

    // Access mode 2 (current user).
    CZqGblRegBase();
    // Creates the configuration object, then loads the section.
    explicit CZqGblRegBase(DWORD dwAccessMode);
    // Deletes the configuration object.
    ~CZqGblRegBase() override;
    CZqGblRegBase(const CZqGblRegBase&) = delete;
    CZqGblRegBase& operator=(const CZqGblRegBase&) = delete;

    // Valid when the configuration object exists and the section is not
    // empty; the answer is kept for the value operations.
    virtual BOOL IsClassDataValid();

    const char* GetSection() const { return m_szSection; }
    // The root of the next operations, as CZqGlobalConfig's access modes.
    void SetAccessMode(DWORD dwAccessMode) { m_dwAccessMode = dwAccessMode; }
    DWORD GetAccessMode() const { return m_dwAccessMode; }

protected:
    // Empties the section, loads string 129 into it (at most 1,023
    // characters) and returns IsClassDataValid(). A derived class may use
    // another key by overriding it.
    virtual BOOL LoadSection();

    // Value operations by string-table id, below the section.
    DWORD SetValue(UINT nNameId, DWORD dwValue);
    DWORD GetValue(UINT nNameId, DWORD& dwResult, DWORD dwDefault);
    // An int is kept as a 32-bit REG_DWORD.
    DWORD SetInteger(UINT nNameId, int nValue);
    DWORD GetInteger(UINT nNameId, int& nResult, int nDefault);
    DWORD SetString(UINT nNameId, const char* lpszText);
    // The buffer receives the default first (at most dwSize - 1 characters
    // and a terminator) or, with no default, zeros. A NULL buffer gives
    // kNotValid at once.
    DWORD GetString(UINT nNameId, char* lpszBuffer, DWORD dwSize, const char* lpszDefault);
    DWORD DeleteValue(UINT nNameId);
    // Removes the subkey lpszSubKey (a literal name) of the section with
    // everything below it.
    DWORD DeleteSection(const char* lpszSubKey);
    // bExists is FALSE first; the test itself is the configuration's
    // (virtual) DoesEntryExist.
    DWORD DoesValueExist(UINT nNameId, BOOL& bExists);

    CZqGlobalConfig* m_pConfig;
    DWORD m_dwAccessMode;
    BOOL m_bValid;
    char m_szSection[kSectionSize];

private:
    // Loads the value name of nNameId; kNotValid, kNameMissing or 0.
    DWORD PrepareName(UINT nNameId, char (&name)[kNameSize]) const;
};
