// CZqIniFile: typed access to the entries of one profile (INI) file.
//
// An object holds a file name and a current section; each entry operation
// then reads or writes one key of that section as one of ten value kinds.
// The same call serves loading and saving: a nonzero direction (bRead)
// reads, falling back to the given default; zero writes the given value.
// The file is reached only through GetPrivateProfileStringA and
// WritePrivateProfileStringA, so its syntax, caching and locking are the
// platform's; this class fixes how each kind becomes the text of one entry
// and back:
//
//   kind          written as                      read buffer (bytes)
//   string        the text as given               4097
//   integer       "%d"                             40
//   long word     "%lu"                            40
//   boolean       "1" or "0"                        8
//   hexadecimal   "0x%08lX"                        40
//   time          8 fields, "%d, %d, ..."         128
//   rectangle     "%ld, %ld, %ld, %ld"             40
//   colour        "red green blue"                 16
//   accelerator   "flags, key, command"            40
//   placement     10 fields (see the function)    128
//   token string  the text as given               4097
//
// A stored text longer than the read buffer is cut to the buffer's size
// minus one before it is parsed. Record kinds read fields separated by any
// of blank , : ; / | backslash; a missing field keeps the default's.
//
// Status codes (the last one is also kept in the object):
//    0 success
//    2 SetFileName without a string      3 no file name set
//    4 SetSection without a string       6 no key name (NULL or "")
//    7 key name over 255 characters; after a read also: the entry was
//      missing or empty and the default was delivered (a notice, not a
//      failure)
//    8 a required pointer is missing     9 a string too long for its field
//   11 GetFileName/GetSection without a buffer
//   12 caller's buffer too small, or a value or list was cut
//   13 the platform refused the write   15 memory ran out filling an array
//
// A read never writes the default into the file. Read results go only to
// the caller's result; on any status other than 0 and 7 (and 12 for
// strings) the caller's result is untouched. A write never touches the
// result. The default and the result may be the same buffer or record.
//
// All state is held by value (no heap memory), so copies are complete and
// independent. One object serves one thread at a time.
#pragma once

#include "framework/core/arrays.h"
#include "platform/win32.h"

class CZqIniFile {
public:
    // Status codes. 7 deliberately has two names: a key that is too long,
    // and a read that delivered its default.
    enum : DWORD {
        kStatusSuccess = 0,
        kStatusNoFileNameGiven = 2,
        kStatusNoFileName = 3,
        kStatusNoSectionGiven = 4,
        kStatusNoSuchSection = 5,  // in-memory profiles only
        kStatusNoKey = 6,
        kStatusKeyTooLong = 7,
        kStatusDefaultUsed = 7,
        kStatusMissingPointer = 8,
        kStatusTooLong = 9,
        kStatusNoBuffer = 11,
        kStatusBufferTooSmall = 12,
        kStatusWriteFailed = 13,
        kStatusOutOfMemory = 15,
    };
    // The value kind of the last operation.
    enum : WORD {
        kKindNone = 0,
        kKindString = 1,
        kKindInteger = 2,
        kKindLongWord = 3,
        kKindBoolean = 4,
        kKindHexadecimal = 5,
        kKindTime = 6,
        kKindRectangle = 7,
        kKindColor = 8,
        kKindAccelerator = 9,
        kKindWindowPlacement = 10,
    };
    // Longest names and values, in characters (without the terminator).
    static constexpr int kMaxFileName = 267;
    static constexpr int kMaxSection = 1023;
    static constexpr int kMaxKey = 255;
    static constexpr int kMaxValue = 4096;
    static constexpr int kValueBufferSize = kMaxValue + 1;

    // Empty file name and section.
    CZqIniFile();
    // Flushes the file (FlushCache).
    virtual ~CZqIniFile();
    CZqIniFile(const CZqIniFile&) = default;
    CZqIniFile& operator=(const CZqIniFile&) = default;

    // A string of up to 4096 characters. Read: the value, or the default
    // when the entry is missing or empty (7), goes to lpszResult as at most
    // nResultSize - 1 characters and a terminator; 12 when the value's
    // length exceeds nResultSize (a value of exactly nResultSize characters
    // loses its last one with status 0 or 7). Write: lpszDefault is stored
    // as given; lpszResult may be NULL.
    virtual DWORD DoString(const char* lpszKey, BOOL bRead, const char* lpszDefault,
                           char* lpszResult, int nResultSize);
    // Signed 32-bit, "%d"; read as atoi reads (no digits: 0; wraps).
    virtual DWORD DoInteger(const char* lpszKey, BOOL bRead, int nDefault, int* pnResult);
    // Unsigned 32-bit, "%lu"; read as atol reads, wrapping modulo 2^32, so
    // values above 2147483647 come back unchanged.
    virtual DWORD DoLongWord(const char* lpszKey, BOOL bRead, DWORD dwDefault, DWORD* pdwResult);
    // "1" for any nonzero value, else "0". Reads 1 for "1", "TRUE", "SET",
    // "YES", "ON", "OK" in any case, 0 for anything else.
    virtual DWORD DoBoolean(const char* lpszKey, BOOL bRead, int bDefault, int* pbResult);
    // "0x%08lX"; read by the hexadecimal reader of ini_value_text.h.
    virtual DWORD DoHexadecimal(const char* lpszKey, BOOL bRead, DWORD dwDefault, DWORD* pdwResult);
    // Year, month, day of week, day, hour, minute, second, milliseconds.
    // A read delivers the default whatever is stored: status 0 when the
    // entry exists, 7 when not.
    virtual DWORD ZqIniFileTime(const char* lpszKey, BOOL bRead, SYSTEMTIME* pDefault,
                                SYSTEMTIME* pResult);
    // Left, top, right, bottom.
    virtual DWORD ZqIniFileRectangle(const char* lpszKey, BOOL bRead, RECT* pDefault,
                                     RECT* pResult);
    // Red, green and blue separated by blanks ("153 102 51" for 0x00336699).
    // A successful read rebuilds the colour from the three channels (the
    // default's top byte is dropped); a missing entry delivers the default
    // as it is.
    virtual DWORD ZqIniFileColor(const char* lpszKey, BOOL bRead, COLORREF* pDefault,
                                 COLORREF* pResult);
    // Flag byte, key code, command.
    virtual DWORD ZqIniFileAccelerator(const char* lpszKey, BOOL bRead, ACCEL* pDefault,
                                       ACCEL* pResult);
    // Flags, show command, minimised x and y, maximised x and y, then the
    // normal rectangle, written as top, left, right, bottom but read as
    // left, top, right, bottom: every save and load swaps its left and top.
    // The length field is never stored; a read keeps the default's.
    virtual DWORD ZqIniFileWindowPlacement(const char* lpszKey, BOOL bRead,
                                           WINDOWPLACEMENT* pDefault, WINDOWPLACEMENT* pResult);
    // Write: stores lpszDefault as given (the array is not used). Read: the
    // value (or the default, 7) is split at any character of lpszDelimiters
    // (double-byte characters kept whole, empty fields skipped) and the
    // array is replaced by the fields in order. pArray and lpszDelimiters
    // are needed for a read only.
    virtual DWORD DoTokenString(const char* lpszKey, BOOL bRead, const char* lpszDefault,
                                CStringArray* pArray, const char* lpszDelimiters);

    // Replace the array by the names of all sections of the file, or of all
    // keys of the current section, in file order. 7 (array unchanged) when
    // there are none; 12 when the first name is 4094 characters long (the
    // list filled the buffer); 15 (array emptied) when memory runs out.
    // EnumerateSections also clears the current section: entry operations
    // then work on the section "" until SetSection is called again.
    virtual DWORD EnumerateSections(CStringArray* pArray);
    virtual DWORD EnumerateKeys(CStringArray* pArray);
    // 1 when the current section holds the key with a non-empty value; 0
    // otherwise, also for a missing or overlong key or no file name.
    virtual int DoesEntryExist(const char* lpszKey);
    // Removes the key from the current section; nothing happens without a
    // key, a current section or a file name. Always returns 1.
    virtual int DeleteEntry(const char* lpszKey);
    // Removes the named section (not necessarily the current one) with its
    // keys; nothing happens without a name or a file name. Always returns 1.
    virtual int DeleteSection(const char* lpszSection);
    // Asks the platform to write out its cached copy of the file; nothing
    // without a file name.
    virtual void FlushCache();
    // Copy the name into a buffer of at least 268 (file name) or 1024
    // (section) bytes, whatever the name's actual length: 11 without a
    // buffer, 12 for a smaller one (buffer untouched).
    virtual DWORD GetFileName(char* lpszBuffer, int nSize);
    // 2 without a string, 9 over 267 characters (name unchanged).
    virtual DWORD SetFileName(const char* lpszFileName);
    virtual DWORD GetSection(char* lpszBuffer, int nSize);
    // 4 without a string, 9 over 1023 characters (section unchanged). An
    // empty section is accepted and passed on as it is.
    virtual DWORD SetSection(const char* lpszSection);

private:
    // The caller's default or value, or a read's result: text or a record.
    union Value {
        char sz[kValueBufferSize];
        int n;
        DWORD dw;
        SYSTEMTIME st;
        RECT rc;
        COLORREF cr;
        ACCEL accel;
        WINDOWPLACEMENT wp;
    };

    // Steps shared by the entry operations: CheckKey gives 0 or the status
    // for a missing or overlong key; Begin, once every argument passed,
    // records the key and the kind; Finish keeps and returns a status.
    static DWORD CheckKey(const char* lpszKey);
    void Begin(const char* lpszKey, WORD wKind);
    DWORD Finish(DWORD dwStatus);
    // Reads the entry into buffer (nSize bytes): its length, 0 when the
    // entry is missing or empty.
    DWORD ReadEntry(char* buffer, int nSize);
    // Writes text as the entry's value: 0 or 13.
    DWORD WriteEntry(const char* text);
    // Reads a number kind: text of the entry, or defaultText (status 7).
    DWORD ReadNumberText(const char* defaultText, int nReadSize, char* text);
    // Replaces the array by the list in m_result (nLength bytes).
    DWORD FillFromList(CStringArray* pArray, DWORD nLength);
    // Replaces the array by the fields of text.
    static DWORD FillFromFields(CStringArray* pArray, const char* text, const char* delimiters);

    char m_szFileName[kMaxFileName + 1];
    char m_szSection[kMaxSection + 1];
    char m_szKey[kMaxKey + 1];
    WORD m_wKind;
    WORD m_wStatus;
    Value m_input;
    Value m_result;
};
