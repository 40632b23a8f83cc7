// CGblTranslate: byte translation tables for a connection.
//
// Bytes coming in from a connection (the get direction, also called input)
// and going out to it (the put direction, output) pass through two
// 256-entry tables. Each direction is switched on and off on its own; a
// direction that is off passes bytes unchanged. Translation is strictly one
// byte to one byte. The double-byte flags of both directions are kept,
// saved and edited, and deliberately change no result.
//
// A translator is kept in a translation-table file of exactly 608 bytes
// (little-endian):
//   0    256  input table, entry for byte 0 first
//   256  256  output table
//   512  4    trailer size, 96
//   516  4    magic, 0x05241963
//   520  4    version, 0x00010000 (older versions are accepted)
//   524  4    flags: 1 get on, 2 put on, 4 get double-byte, 8 put double-byte
//   528  16   last input, last output, last input mode, last output mode
//   544  64   description, NUL-terminated (at most 63 characters)
//
// Status codes: 0 success, 1 no path, 2 cannot open or read, 3 the written
// file does not have 608 bytes (also after a failed write), 6 to 9 not a
// valid file (see IsValidFile), 10 the user interface could not be made.
//
// Default texts come from the language module's string table (16457, the
// default description). Not thread-safe.
#pragma once

#include "framework/core/cstring.h"
#include "platform/win32.h"

class CWnd;

#define GBLXLT_OK 0u
#define GBLXLT_ERROR_NO_PATH 1u
#define GBLXLT_ERROR_OPEN 2u
#define GBLXLT_ERROR_WRITE 3u
#define GBLXLT_ERROR_FILE_SIZE 6u
#define GBLXLT_ERROR_TRAILER_SIZE 7u
#define GBLXLT_ERROR_MAGIC 8u
#define GBLXLT_ERROR_VERSION 9u
#define GBLXLT_ERROR_NO_UI 10u

#define GBLXLT_FILE_SIZE 608u
#define GBLXLT_TRAILER_SIZE 96u
#define GBLXLT_MAGIC 0x05241963u
#define GBLXLT_VERSION 0x00010000u
#define GBLXLT_DESCRIPTION_SIZE 64u

// Number display of an editor page: 1 decimal ("%u"), else hexadecimal
// ("0x%02X").
#define GBLXLT_MODE_DECIMAL 1u

class CGblTranslate {
public:
    // Both directions off, double-byte flags and last values 0, the default
    // description, identity tables.
    CGblTranslate();
    virtual ~CGblTranslate();

    // Takes every member (switches, last values, path, description, tables)
    // from pSource; a null or identical source does nothing.
    void CopyData(const CGblTranslate* pSource);

    // The input translation of c (c itself while get is off).
    BYTE DoGet(BYTE c) const {
        if (!m_bGetEnabled) {
            return c;
        }
        // The double-byte flag is consulted and leads to the same lookup.
        return m_bGetDBCS ? m_byInput[c] : m_byInput[c];
    }
    // The output translation of c (c itself while put is off).
    BYTE DoPut(BYTE c) const {
        if (!m_bPutEnabled) {
            return c;
        }
        return m_bPutDBCS ? m_byOutput[c] : m_byOutput[c];
    }

    BYTE GetInputValue(BYTE nIndex) const { return m_byInput[nIndex]; }
    void SetInputValue(BYTE nIndex, BYTE nValue) { m_byInput[nIndex] = nValue; }
    BYTE GetOutputValue(BYTE nIndex) const { return m_byOutput[nIndex]; }
    void SetOutputValue(BYTE nIndex, BYTE nValue) { m_byOutput[nIndex] = nValue; }
    // Identity tables.
    void ResetGetTable();
    void ResetPutTable();

    // Any non-zero argument stores 1; the queries return 0 or 1.
    void EnableGet(BOOL bEnable) { m_bGetEnabled = bEnable ? 1 : 0; }
    BOOL IsGetEnabled() const { return m_bGetEnabled; }
    void EnablePut(BOOL bEnable) { m_bPutEnabled = bEnable ? 1 : 0; }
    BOOL IsPutEnabled() const { return m_bPutEnabled; }
    void EnableGetDBCS(BOOL bEnable) { m_bGetDBCS = bEnable ? 1 : 0; }
    BOOL IsGetDBCSEnabled() const { return m_bGetDBCS; }
    void EnablePutDBCS(BOOL bEnable) { m_bPutDBCS = bEnable ? 1 : 0; }
    BOOL IsPutDBCSEnabled() const { return m_bPutDBCS; }

    // A null description is ignored.
    void SetDescription(LPCSTR lpszDescription);
    const CString& GetDescription() const { return m_csDescription; }
    void SetFilePath(LPCSTR lpszPath) { m_csFilePath = lpszPath; }
    const CString& GetFilePath() const { return m_csFilePath; }

    void SetLastInput(DWORD dwValue) { m_dwLastInput = dwValue; }
    DWORD GetLastInput() const { return m_dwLastInput; }
    void SetLastOutput(DWORD dwValue) { m_dwLastOutput = dwValue; }
    DWORD GetLastOutput() const { return m_dwLastOutput; }
    void SetLastModeI(DWORD dwMode) { m_dwLastModeI = dwMode; }
    DWORD GetLastModeI() const { return m_dwLastModeI; }
    void SetLastModeO(DWORD dwMode) { m_dwLastModeO = dwMode; }
    DWORD GetLastModeO() const { return m_dwLastModeO; }

    // Loads a translation-table file (null: the stored path). The file is
    // checked first (IsValidFile's status is returned unchanged); then both
    // tables and the trailer are read. A read that fails half-way returns 2
    // (6 when the file came up short) and leaves the tables read so far
    // changed. On success the path becomes the stored path; an empty
    // description is replaced by the default one.
    DWORD Load(LPCSTR lpszPath);
    // Writes the 608-byte file (null: the stored path), creating or
    // truncating it. An empty description is first replaced by the default
    // one, also in memory; the description is cut to 63 characters.
    // After the file was opened the path becomes the stored path, also when
    // the result is 3.
    DWORD Save(LPCSTR lpszPath);
    // 1 path null or empty, 2 cannot be opened for reading, 6 length not 608,
    // 7 trailer size below 96, 8 wrong magic, 9 newer version, else 0.
    static DWORD IsValidFile(LPCSTR lpszPath);

    // Shows the translation-file dialog and loads the chosen file on OK
    // (cancel: 0, nothing loaded). Until the dialogs exist: 10.
    DWORD Load(CWnd* pParent, LPCSTR lpszInitialPath);
    // Shows the editing sheet on this translator and saves to the stored
    // path on OK (cancel: 0, nothing changed). Until the sheet exists: 10.
    DWORD Edit(CWnd* pParent);

protected:
    BOOL m_bGetEnabled;
    BOOL m_bPutEnabled;
    BOOL m_bGetDBCS;
    BOOL m_bPutDBCS;
    DWORD m_dwLastInput;
    DWORD m_dwLastOutput;
    DWORD m_dwLastModeI;
    DWORD m_dwLastModeO;
    CString m_csFilePath;
    CString m_csDescription;
    BYTE m_byInput[256];
    BYTE m_byOutput[256];
};
