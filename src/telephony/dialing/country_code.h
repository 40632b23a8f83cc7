// The country list: every country the library knows, with its display
// name, telephone country code, country id, flag picture index and the
// prefix value the dialing rules use.
//
// The list comes from the country table, RT_RCDATA resource 25599, found
// through the resource search of the frame (application, extension modules,
// language module; frame/resource_search.h). The table is a run of records
// of three little-endian 32-bit words:
//     string id | flag index << 16,  prefix | phone code << 16,  country id
// ended by a record whose first word is 0. The names are the string
// resources 16045 to 16303 of the same search, so the language module in
// force decides the language of the names.
//
// Each process has one list, held in the process block and loaded on first
// use (GetGlobalCountryList, country_lookup.h). A list is not safe across
// threads without outside locking.
#pragma once

#include "framework/core/arrays.h"
#include "framework/core/cstring.h"
#include "platform/win32.h"

class CComboBox;
class CListBox;

class CZqCountryCode {
public:
    static constexpr UINT kFirstStringIndex = 16045;
    static constexpr UINT kLastStringIndex = 16303;
    static constexpr UINT kFlagLimit = 212;  // flag indexes are below this

    // dwNameAndFlag: string index (low word) and flag index (high word);
    // dwPrefixAndCode: prefix (low word) and phone code (high word);
    // dwId: country id (low word). The name is loaded from the string index;
    // an index or flag out of range is stored as 0 (the name then empty).
    CZqCountryCode(DWORD dwNameAndFlag, DWORD dwPrefixAndCode, DWORD dwId);
    virtual ~CZqCountryCode() = default;

    // Loads the name of string resource nIndex and keeps the index: 1. An
    // index outside 16045..16303, or one with no text, clears index and
    // name: 0.
    int SetStringIndex(UINT nIndex);
    // Keeps nIndex (1), or 0 when it is 212 or more (0).
    int SetFlagIndex(UINT nIndex);

    const CString& GetName() const { return m_csName; }
    UINT GetStringIndex() const { return m_nStringIndex; }
    UINT GetFlagIndex() const { return m_nFlagIndex; }
    // Non-zero for a country dialed like a domestic long-distance call from
    // a country whose code is 1.
    UINT GetPrefix() const { return m_nPrefix; }
    UINT GetPhoneCode() const { return m_nPhoneCode; }
    UINT GetCountryId() const { return m_nCountryId; }

private:
    CString m_csName;
    UINT m_nStringIndex = 0;
    UINT m_nFlagIndex = 0;
    UINT m_nPrefix = 0;
    UINT m_nPhoneCode = 0;
    UINT m_nCountryId = 0;
};

// The countries, owned, in name order (Windows-1252 letters folded); equal
// names keep the order of the table.
class CZqCountryCodeList : public CTypedPtrArray<CPtrArray, CZqCountryCode*> {
public:
    static constexpr UINT kTableId = 25599;

    // Empty; loads the table at once when bLoad is non-zero.
    explicit CZqCountryCodeList(int bLoad = FALSE);
    ~CZqCountryCodeList() override;
    CZqCountryCodeList(const CZqCountryCodeList&) = delete;
    CZqCountryCodeList& operator=(const CZqCountryCodeList&) = delete;

    // Adds the countries of the country table to what the list holds.
    // 0 when all were added; kObjectNotMade when the resource reader cannot
    // be made; kResourceNotLoaded when no module holds the table or it
    // cannot be loaded; kInvalidArgument when its data is not at hand;
    // otherwise the result of the first AddCountry that failed (the records
    // before it stay added).
    virtual DWORD LoadData();
    // Destroys every country and empties the list. 0.
    virtual DWORD FreeData();

    // Makes a country of one table record and inserts it in name order,
    // behind every entry whose name is less than or equal to its own
    // (case-insensitive). 0; kInvalidArgument (nothing added) when its
    // string index ended as 0 or its flag index is above 211;
    // kObjectNotMade when it cannot be made.
    DWORD AddCountry(DWORD dwNameAndFlag, DWORD dwPrefixAndCode, DWORD dwId);

    // Adds the records of a table in resource form (dwSize bytes), up to
    // the record whose first word is 0 or the end of the data, whichever
    // comes first; a trailing part record is ignored. Result as LoadData.
    DWORD AddCountries(const void* pTable, DWORD dwSize);

    // Fill a combo box / list box with the countries. The controls come
    // with the user-interface classes; until then nothing is filled and the
    // result is kObjectNotMade.
    DWORD AddToComboBox(CComboBox* pComboBox);
    DWORD AddToListBox(CListBox* pListBox);
};

// The owner-drawn combo box of the countries (flag and name) arrives with
// the user-interface classes.
class CCountryCodeComboBox;
