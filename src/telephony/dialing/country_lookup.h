// Look-ups in the process's country list.
//
// GetGlobalCountryList gives the list held in the process block, loading
// it on first use (while it is still empty). Like the block, it exists on
// the thread that loaded the library only: elsewhere it is NULL and every
// function below returns 0 (or leaves its output as described) without
// doing anything. Where several countries match, the first in list (name)
// order wins.
#pragma once

#include "framework/core/cstring.h"
#include "framework/core/maps.h"
#include "platform/win32.h"
#include "telephony/dialing/country_code.h"

typedef CMap<UINT, UINT, CString, const CString&> CZqCountryNameMap;

// The process-wide list, loaded when empty; NULL without a process block.
CZqCountryCodeList* GetGlobalCountryList();

// Empties the map, then maps every country id to its name: 1 (0 without a
// list, the map untouched).
int GetCountryCodeMap(CMap<UINT, UINT, CString, const CString&>& map);
// Empties the map, then maps every country id to its phone code written
// with "%d": 1 (0 without a list, the map untouched).
int GetCountryPhoneCodeMap(CMap<UINT, UINT, CString, const CString&>& map);
// The name of the country with that id: 1; 0 with csName untouched.
int GetCountryNameFromCode(UINT nId, CString& csName);
// csCode is emptied, then receives the phone code ("%d") of the country
// with that id: 1; 0 when none matches (csCode stays empty).
int GetCountryPhoneCode(WORD wId, CString& csCode);
// The prefix value of the country with that id: 1; 0 with nPrefix untouched.
int GetCountryPrefix(WORD wId, UINT& nPrefix);
// The prefix value of the first country whose phone code written with
// "%d" equals csCode exactly ("44" matches, "+44" and " 44" do not): 1;
// 0 with nPrefix untouched.
int GetCountryPrefix(const CString& csCode, UINT& nPrefix);
