// CZqMemIniFile: a whole profile (INI) file held in memory.
//
// LoadIniFile reads every section and key of a file into memory, optionally
// replacing values of the form "%NAME%" by entries of a caller's table of
// variables, so one template profile serves several installations. The
// caller then reads, sets and deletes values by section and key without
// touching the disk, and SaveIniFile writes every value back. All file input
// and output goes through the inherited CZqIniFile operations (SetFileName,
// EnumerateSections, SetSection, EnumerateKeys, DoString), so the file's
// syntax and the limits of one entry are those of CZqIniFile.
//
// In memory, names are compared exactly and case-sensitively (a section
// loaded as "Colors" is not found as "colors"), unlike in the file.
// Sections keep the order in which they were loaded or first set; keys the
// order in which they were loaded or set, and a key that is set again is
// appended to that order once more (see SetIniValue).
//
// Status codes are those of CZqIniFile, plus 5 (kStatusNoSuchSection): no
// section of that name is in memory.
//
// Consequences of going through DoString that callers see:
// - an entry with an empty value is not loaded at all;
// - a loaded value is at most 4095 characters: a longer stored value loses
//   everything from its 4096th character on;
// - a save writes only what one entry can hold (section up to 1023, key up
//   to 255, value up to 4096 characters, key not empty) and silently skips
//   the rest, leaving whatever the file held for it.
//
// Deleting works on memory only: a save never removes anything from the
// file (use the inherited DeleteSection / DeleteEntry for that).
//
// The object owns its section records; it cannot be copied. One thread per
// object.
#pragma once

#include "framework/core/arrays.h"
#include "framework/core/cstring.h"
#include "framework/core/maps.h"
#include "framework/core/object.h"
#include "platform/win32.h"
#include "settings/ini_file.h"

// The keys of one section: their order and their values. Owned by the
// CZqMemIniFile that holds it in its sections map.
class CIniSection : public CObject {
    DECLARE_DYNAMIC(CIniSection)
public:
    CIniSection();
    ~CIniSection() override;

    CStringArray m_csaKeyOrder;      // may name a key more than once
    CMapStringToString m_mapValues;  // key name -> value text
};

class CZqMemIniFile : public CZqIniFile {
public:
    // Empty: no file name, no sections.
    CZqMemIniFile();
    // Frees every section record, then flushes the file (as CZqIniFile).
    ~CZqMemIniFile() override;
    CZqMemIniFile(const CZqMemIniFile&) = delete;
    CZqMemIniFile& operator=(const CZqMemIniFile&) = delete;

    // Discards everything in memory and loads the file lpszFileName.
    // Returns 2 (nothing changed) without a name. Only a file that exists
    // becomes the object's file name; for a missing one the previous file
    // name stays, and it is that file which is then read (none in a fresh
    // object). The result is that of EnumerateSections: 0, or 7 (no file or
    // no sections), 12 or 15, with nothing loaded. A section that cannot be
    // selected, listed or allocated is skipped, and so is every key that
    // DoString does not read with status 0. With pVariables, key names and
    // values pass through SubstituteString; pVariables may be NULL.
    // Afterwards the current section and key are the last ones read.
    DWORD LoadIniFile(const char* lpszFileName, CMapStringToString* pVariables);

    // Writes every value in memory to the file, section by section and key
    // by key in their order (a key that stands twice in the order is
    // written twice). A file that does not exist is created empty when
    // bCreate is nonzero; otherwise, or when it cannot be created (no file
    // name, a folder, an unwritable place), the result is 3 and nothing is
    // written. Failed writes of single entries are ignored: the result is 0
    // once the file exists.
    DWORD SaveIniFile(int bCreate);

    // Sets the value of the key, creating the section (at the end of the
    // section order) when needed. The key is appended to the key order
    // every time, also when it was already there. Returns 0; 15 when memory
    // for a new section runs out; 4 without a section, 6 without a key, 8
    // without a value (nothing changed). Names and values of any length
    // are kept; see above for what a save writes.
    DWORD SetIniValue(const char* lpszSection, const char* lpszKey, const char* lpszValue);
    // The value as its "%d" text.
    DWORD SetIniValue(const char* lpszSection, const char* lpszKey, int nValue);
    // The value as the "%d" text of its 32 bits, as stored files have it:
    // values above 2147483647 are stored as negative numbers (4294967295
    // as "-1").
    DWORD SetIniValue(const char* lpszSection, const char* lpszKey, DWORD dwValue);

    // Copies the key's value into csValue: 0. 5 without such a section, 7
    // without such a key in it, 4 without a section, 6 without a key;
    // csValue is untouched on every status but 0.
    DWORD GetIniValue(const char* lpszSection, const char* lpszKey, CString& csValue);

    // Removes the section with all its keys from memory: 0, or 5 when there
    // is no such section (4 without a name).
    DWORD DeleteIniSection(const char* lpszSection);
    // Removes the key's value and its first place in the key order: 0, also
    // when the key was not there; 5 without such a section, 4 without a
    // section, 6 without a key. A second place of a key that was set twice
    // stays in the order and is skipped by a save.
    DWORD DeleteIniKey(const char* lpszSection, const char* lpszKey);

    // Frees every section record and empties the sections and their order.
    void CleanupAllMaps();

protected:
    // The text without its leading and trailing white space; when that
    // begins with one "%" (not "%%"), the name up to the next "%" (or the
    // end) is looked up in pVariables, exactly and case-sensitively, and a
    // found value replaces the whole text, whatever followed the closing
    // "%" ("%DATA%\sub" becomes the value of DATA alone). One lookup only:
    // a value of the form "%NAME%" is not substituted again. A text that is
    // not replaced comes back trimmed; "%%" is kept as it is. A NULL table
    // or text gives the trimmed text (or "").
    CString SubstituteString(CMapStringToString* pVariables, const char* lpszText);

    // Section names in the order in which they were loaded or first set.
    CStringArray m_csaSectionOrder;
    // Section name -> CIniSection*, owned.
    CMapStringToOb m_mapSections;

private:
    // The record of the section, or NULL.
    CIniSection* FindSection(const char* lpszSection) const;
    // Makes pSection the record of lpszSection (freeing one it replaces)
    // and appends the name to the section order when it is new there.
    void StoreSection(const char* lpszSection, CIniSection* pSection);
    // Removes the first name in order that equals lpszName exactly.
    static void RemoveFirst(CStringArray& order, const char* lpszName);
};
