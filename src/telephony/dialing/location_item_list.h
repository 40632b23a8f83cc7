// CZqLocationItemList: all dialing locations of the current user, and the
// choice of the current one.
//
// The list owns its items (null entries are allowed and skipped by every
// operation) and destroys them in FreeData, DeleteByName and its
// destructor. The current location is remembered in the registry as a data
// index, independently of what the list holds. A list is used by one thread
// at a time; several processes may read and write the same locations, each
// registry call being atomic on its own.
#pragma once

#include "framework/core/arrays.h"
#include "platform/win32.h"
#include "telephony/dialing/location_item.h"

class CListBox;

class CZqLocationItemList : public CTypedPtrArray<CPtrArray, CZqLocationItem*> {
public:
    CZqLocationItemList() = default;
    ~CZqLocationItemList() override;
    CZqLocationItemList(const CZqLocationItemList&) = delete;
    CZqLocationItemList& operator=(const CZqLocationItemList&) = delete;

    // Appends one item per sub-key of the locations key whose name is made
    // of decimal digits only ("00000003" and "3" both load slot 3; "Old" is
    // skipped), loaded in enumeration order. An item that fails to load ends
    // the loading with its code; the items before it stay. The list is not
    // emptied first (callers load into a fresh list). 0 on success, also
    // when there is no locations key yet; kObjectNotMade (0x24004000) when
    // the version information cannot be read or an item cannot be made.
    DWORD LoadAllItems();
    // SaveByIndex for every item in order; failures are not reported.
    void SaveAllItems();

    // Appends an empty item with the index of GetUniqueIndex and returns it
    // (NULL when it cannot be made). Nothing is written until it is saved.
    CZqLocationItem* GetNewLocation();
    // The smallest data index, counting from 0, that no item has.
    DWORD GetUniqueIndex();

    // The first item whose name equals lpszName without regard to case (the
    // user's locale); with bPrefix non-zero, a longer name matches when it
    // begins with lpszName. NULL for an empty or NULL name or an empty list.
    CZqLocationItem* FindByName(LPCSTR lpszName, int bPrefix);
    // The first item with that data index / country index, else NULL.
    CZqLocationItem* FindByIndex(DWORD dwIndex);
    CZqLocationItem* FindByCountryIndex(UINT nCountry);
    // The first entry (which may be NULL), or NULL for an empty list.
    CZqLocationItem* GetFirstItem();

    // The current location's data index in the registry; the list is not
    // consulted. GetCurrentIndex gives 0xFFFFFFFF when none is stored and 0
    // when the registry object cannot be made.
    void SetCurrentIndex(DWORD dwIndex);
    DWORD GetCurrentIndex();

    // Removes the first item whose name begins with lpszName, without
    // regard to case — always a prefix match, unlike FindByName, kept so —
    // together with its registry slot (when that slot exists), and destroys
    // it: 1. 0 for an empty or NULL name or when nothing matches.
    BOOL DeleteByName(LPCSTR lpszName);

    // Fills a list box with the items. The list-box control comes with the
    // user-interface classes; until then nothing is filled.
    void AddItemsToListBox(CListBox* pList);

protected:
    // Deletes registry slot dwIndex when it exists.
    void DeleteRegIndex(DWORD dwIndex);
    // Destroys every item and empties the array.
    virtual void FreeData();
};
