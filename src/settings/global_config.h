// CZqGlobalConfig: the library's one gateway to the registry.
//
// Every member names a registry root by a small access mode, a key path
// below it and a value name; it opens the key, does its work and closes the
// key again, so nothing stays open between calls. When the work succeeded
// but closing the key failed, the close error is the result.
//
// Access modes (MapModeToKey), on Windows NT (type 2) and Windows 95 (3):
//   1 HKEY_LOCAL_MACHINE   2 HKEY_CURRENT_USER   3 HKEY_USERS
//   4 HKEY_PERFORMANCE_DATA
//   5 HKEY_CURRENT_CONFIG on 95, HKEY_CLASSES_ROOT on NT
//   6 HKEY_DYN_DATA on 95, HKEY_CLASSES_ROOT on NT
//   anything else HKEY_CLASSES_ROOT (deliberately no error)
// On Win32s (type 1) every mode is HKEY_CLASSES_ROOT, the only root of its
// 16-bit-compatible registry. That registry has keys with one unnamed text
// each, so there a value N of key P is the subkey P\N and its text; numbers
// are kept as decimal text.
//
// Results: 0, a platform registry error passed through (2 missing, 234
// does not fit ...), kOutOfMemory or kWrongType. A NULL buffer, text or
// callback gives ERROR_INVALID_PARAMETER without touching the registry.
// Reads put the caller's default in place first, so every failed read
// leaves it there. The only state is the system type taken at construction;
// members may run on several threads at once.
#pragma once

#include "framework/core/cstring.h"
#include "platform/win32.h"

// Called once per subkey with its name; a result other than 0 stops the
// enumeration and becomes its result.
typedef DWORD(WINAPI* GBLENUMENTRIESPROC)(void* pContext, const char* lpszSubKey);

// Called once per value with its name, its data and its type. For REG_DWORD
// the data argument is not a pointer but the number itself — only its low
// byte, sign-extended to 32 bits: read it as (DWORD)(DWORD_PTR)pData.
// A result other than 0 stops the enumeration and becomes its result.
typedef DWORD(WINAPI* GBLENUMVALUESPROC)(void* pContext, const char* lpszValueName, void* pData,
                                         DWORD dwType);

class CZqGlobalConfig {
public:
    static constexpr DWORD kOutOfMemory = 0x24014000;
    static constexpr DWORD kWrongType = 0x24015800;

    // Takes the system type from CZqGlobalOperatingSystem::GetType().
    CZqGlobalConfig();
    CZqGlobalConfig(const CZqGlobalConfig& other) = default;
    CZqGlobalConfig& operator=(const CZqGlobalConfig& other) = default;
    virtual ~CZqGlobalConfig();

    // Tests for a value (on Win32s: a subkey) named lpszName, compared
    // without regard to case; bExists is FALSE first. On NT and 95 a value
    // whose data exceeds 8,192 bytes ends the search with 234.
    virtual DWORD DoesEntryExist(DWORD dwMode, const char* lpszKey, const char* lpszName,
                                 BOOL& bExists);
    // Tests for a subkey named lpszSubKey, compared without regard to case.
    virtual DWORD DoesSubkeyExist(DWORD dwMode, const char* lpszKey, const char* lpszSubKey,
                                  BOOL& bExists);
    // The first subkey's name; bFound FALSE (and csName untouched) when the
    // key has none.
    virtual DWORD FindFirstSubKey(DWORD dwMode, const char* lpszKey, CString& csName, BOOL& bFound);

    // A number: dwResult is dwDefault first. On NT and 95 only a REG_DWORD
    // is taken (another type of at most 4 bytes gives kWrongType, a longer
    // one 234); on Win32s the text is read as an unsigned decimal number.
    DWORD GetValue(DWORD dwMode, const char* lpszKey, const char* lpszName, DWORD& dwResult,
                   DWORD dwDefault);
    // Writes a REG_DWORD (on Win32s decimal text), creating the key.
    DWORD SetValue(DWORD dwMode, const char* lpszKey, const char* lpszName, DWORD dwValue);

    // A text into dwSize bytes: the buffer first receives lpszDefault (at
    // most dwSize - 1 characters and a terminator) or, without a default,
    // zeros. A value that is neither REG_SZ nor REG_EXPAND_SZ gives
    // kWrongType with the default put back.
    DWORD GetValue(DWORD dwMode, const char* lpszKey, const char* lpszName, char* lpszBuffer,
                   DWORD dwSize, const char* lpszDefault);
    // Writes a REG_SZ with its terminator, creating the key.
    DWORD SetValue(DWORD dwMode, const char* lpszKey, const char* lpszName, const char* lpszText);

    // Raw data and its type into dwSize bytes (zeroed first); dwType and
    // dwLength are 0 first. On Win32s a found text gives type REG_SZ and its
    // length. On NT and 95 the type is delivered but dwLength stays 0: the
    // size is only updated inside the call (kept as the library always had
    // it).
    DWORD GetAnyValueType(DWORD dwMode, const char* lpszKey, const char* lpszName,
                          unsigned char* pBuffer, DWORD dwSize, DWORD& dwType, DWORD& dwLength);
    // Writes dwLength bytes with dwType (on Win32s as text). A length of 0
    // writes nothing, creates no key and returns 0.
    DWORD SetAnyValueType(DWORD dwMode, const char* lpszKey, const char* lpszName,
                          unsigned char* pData, DWORD dwLength, DWORD dwType);

    // Removes a value (on Win32s the subkey with everything below it).
    DWORD DeleteEntry(DWORD dwMode, const char* lpszKey, const char* lpszName);
    // Removes lpszKey\lpszSubKey with everything below it; with no subkey
    // name, lpszKey itself. A missing key gives 2.
    DWORD DeleteSection(DWORD dwMode, const char* lpszKey, const char* lpszSubKey);

    // Calls back once per subkey, by increasing index (names of up to 260
    // characters). Running out of subkeys (259) or a missing subkey (2)
    // while enumerating counts as success.
    DWORD EnumEntries(DWORD dwMode, const char* lpszKey, GBLENUMENTRIESPROC pfnCallback,
                      void* pContext);
    // Calls back once per value (on Win32s: per subkey, with its text and
    // REG_SZ). REG_SZ, REG_EXPAND_SZ, REG_BINARY and REG_MULTI_SZ come with
    // a pointer to their data (at most 8,192 bytes, zero-padded); REG_DWORD
    // with its low byte sign-extended in place of the pointer (300 arrives
    // as 44, 200 as 0xFFFFFFC8 — deliberate, tree copies rely on it); other
    // types are skipped. Ends as EnumEntries.
    DWORD EnumValues(DWORD dwMode, const char* lpszKey, GBLENUMVALUESPROC pfnCallback,
                     void* pContext);

    // Size in bytes of a value's data; dwSize is 0 first. Win32s has no
    // sizes: 0 with dwSize 0.
    DWORD GetValueSize(DWORD dwMode, const char* lpszKey, const char* lpszName, DWORD& dwSize);

    // Creates the key path; an empty path does nothing and returns 0.
    DWORD CreateKey(DWORD dwMode, const char* lpszKey);

    // Copies the subkeys and values of source to destination (destination
    // first, as every caller passes them). Texts (REG_SZ) are copied as
    // texts, numbers through EnumValues, so only their low byte survives,
    // sign-extended (1000 arrives as 0xFFFFFFE8); other types are left out.
    // nFlag is kept with the copy and has no effect. 8 when memory runs out.
    DWORD CopyRegTree(DWORD dwDestMode, const char* lpszDestKey, DWORD dwSourceMode,
                      const char* lpszSourceKey, int nFlag);
    // CopyRegTree, and only when that succeeded the removal of the source.
    DWORD MoveRegTree(DWORD dwDestMode, const char* lpszDestKey, DWORD dwSourceMode,
                      const char* lpszSourceKey, int nFlag);

    // The copy's own callbacks; pContext is the copy's private state.
    static DWORD WINAPI GblEnumCopyRegTreeEntriesProc(void* pContext, const char* lpszSubKey);
    static DWORD WINAPI GblEnumCopyRegTreeValuesProc(void* pContext, const char* lpszValueName,
                                                     void* pData, DWORD dwType);

    // Decimal text of a number, and back (strtoul rules in 32 bits: leading
    // blanks and a sign accepted, the parse stops at the first non-digit,
    // an overflow gives 0xFFFFFFFF).
    static CString DWordToString(DWORD dwValue);
    static DWORD StringToDWord(const char* lpszText);

protected:
    // The root of an access mode, as in the table above.
    HKEY MapModeToKey(DWORD dwMode) const;

    DWORD m_dwOSType;

private:
    enum class Purpose { kRead, kEnumerate, kCreate, kDeleteValue, kDeleteTree };
    // Opens (or for kCreate creates) root(dwMode)\lpszKey the way this
    // system type and purpose need.
    LONG OpenKey(DWORD dwMode, const char* lpszKey, Purpose purpose, HKEY* phKey) const;
    // Subkey number dwIndex of hKey into cchName characters.
    LONG EnumKey(HKEY hKey, DWORD dwIndex, char* lpszName, DWORD cchName) const;
    // Removes everything below hParent\lpszName (hParent itself for an
    // empty name); the key itself is left for the caller to remove. Stops
    // at the first error.
    DWORD DeleteBelow(HKEY hParent, const char* lpszName) const;
    DWORD DeleteChildren(HKEY hKey) const;
    bool IsWin32s() const { return m_dwOSType == 1; }
};
