// CString: the framework's dynamic single-byte string.
//
// Text is single-byte (Windows-1252 unless a locale says otherwise). A
// CString owns its buffer; copies are deep. The length is kept explicitly,
// so text may hold embedded NUL characters: they are copied, compared and
// searched like any other character. The buffer always ends with a NUL, so
// the LPCTSTR conversion is a valid C string (ending at the first NUL).
//
// Positions and counts are ints, as in the classic interface. Out-of-range
// positions never read or write outside the string: Mid/Left/Right clamp,
// Find with a start beyond the end returns -1, GetAt/SetAt out of range
// return NUL / do nothing. A length beyond what an int can hold, or memory
// running out, throws std::bad_alloc (the classic framework throws its
// memory exception there).
//
// Case-insensitive operations fold the letters of Windows-1252 (A-Z, the
// accented Latin letters 0xC0-0xDE, and Š, Œ, Ž, Ÿ).
//
// A CString is not shared between threads without outside locking.
#pragma once

#include <cstdarg>

#include "platform/win32.h"

#if defined(__GNUC__) || defined(__clang__)
#define ZQ_PRINTF_FORMAT(fmt, args) __attribute__((format(printf, fmt, args)))
#else
#define ZQ_PRINTF_FORMAT(fmt, args)
#endif

class CString {
public:
    CString() noexcept = default;
    CString(const CString& stringSrc);
    CString(CString&& stringSrc) noexcept;
    // ch repeated nRepeat times (none when nRepeat < 1).
    CString(TCHAR ch, int nRepeat = 1);
    // A NULL pointer gives an empty string; a MAKEINTRESOURCE value loads
    // that string resource (empty when it is missing).
    CString(LPCSTR lpsz);
    CString(const unsigned char* psz);
    // Exactly nLength characters, embedded NULs included (none when nLength
    // < 1 or lpch is NULL).
    CString(LPCSTR lpch, int nLength);
    ~CString();

    int GetLength() const { return length_; }
    BOOL IsEmpty() const { return length_ == 0; }
    // Empties the string and frees its buffer.
    void Empty();

    TCHAR GetAt(int nIndex) const;
    TCHAR operator[](int nIndex) const { return GetAt(nIndex); }
    void SetAt(int nIndex, TCHAR ch);
    operator LPCTSTR() const { return data_ ? data_ : ""; }

    const CString& operator=(const CString& stringSrc);
    const CString& operator=(CString&& stringSrc) noexcept;
    const CString& operator=(TCHAR ch);
    const CString& operator=(LPCSTR lpsz);
    const CString& operator=(const unsigned char* psz);

    const CString& operator+=(const CString& string);
    const CString& operator+=(TCHAR ch);
    const CString& operator+=(LPCTSTR lpsz);

    friend CString operator+(const CString& string1, const CString& string2);
    friend CString operator+(const CString& string, TCHAR ch);
    friend CString operator+(TCHAR ch, const CString& string);
    friend CString operator+(const CString& string, LPCTSTR lpsz);
    friend CString operator+(LPCTSTR lpsz, const CString& string);

    // <0, 0, >0 by unsigned character values; a NULL lpsz compares as "".
    int Compare(LPCTSTR lpsz) const;
    int CompareNoCase(LPCTSTR lpsz) const;
    // Same order as Compare: the "C" collation.
    int Collate(LPCTSTR lpsz) const;
    int CollateNoCase(LPCTSTR lpsz) const;

    // nCount characters from nFirst (clamped to the string).
    CString Mid(int nFirst, int nCount) const;
    CString Mid(int nFirst) const;
    CString Left(int nCount) const;
    CString Right(int nCount) const;
    // The leading run of characters that are (are not) in lpszCharSet.
    CString SpanIncluding(LPCTSTR lpszCharSet) const;
    CString SpanExcluding(LPCTSTR lpszCharSet) const;

    void MakeUpper();
    void MakeLower();
    void MakeReverse();

    // Number of replacements / removals made.
    int Replace(TCHAR chOld, TCHAR chNew);
    int Replace(LPCTSTR lpszOld, LPCTSTR lpszNew);
    int Remove(TCHAR chRemove);
    // Insert before nIndex (clamped to 0..length); returns the new length.
    int Insert(int nIndex, TCHAR ch);
    int Insert(int nIndex, LPCTSTR pstr);
    // Removes up to nCount characters from nIndex; returns the new length.
    int Delete(int nIndex, int nCount = 1);

    // Without argument: removes spaces, tabs, CR, LF, VT and FF.
    void TrimRight();
    void TrimRight(TCHAR chTarget);
    void TrimRight(LPCTSTR lpszTargets);
    void TrimLeft();
    void TrimLeft(TCHAR chTarget);
    void TrimLeft(LPCTSTR lpszTargets);

    // Zero-based position of the first match at or after nStart, or -1.
    int Find(TCHAR ch) const;
    int Find(TCHAR ch, int nStart) const;
    int Find(LPCTSTR lpszSub) const;
    int Find(LPCTSTR lpszSub, int nStart) const;
    int ReverseFind(TCHAR ch) const;
    int FindOneOf(LPCTSTR lpszCharSet) const;

    // printf formatting of the C runtime (floating point included), any
    // length. A format error leaves the string empty.
    void Format(LPCTSTR lpszFormat, ...) ZQ_PRINTF_FORMAT(2, 3);
    // The format is the string resource nFormatID.
    void Format(UINT nFormatID, ...);
    void FormatV(LPCTSTR lpszFormat, va_list argList);

    // Loads string resource nID from the resource handle, then from the
    // extension modules in the order they registered. TRUE when found and
    // non-empty; on failure the string is empty.
    BOOL LoadString(UINT nID);

    // A writable buffer of at least nMinBufLength characters plus the NUL,
    // holding the current text. Call ReleaseBuffer before any other member.
    LPTSTR GetBuffer(int nMinBufLength);
    // Ends buffer access: the length becomes nNewLength, or the length up to
    // the first NUL when -1 (never beyond the buffer).
    void ReleaseBuffer(int nNewLength = -1);
    // GetBuffer, and the length becomes nNewLength.
    LPTSTR GetBufferSetLength(int nNewLength);
    void FreeExtra();
    // Buffers are never shared, so locking only hands out the buffer.
    LPTSTR LockBuffer();
    void UnlockBuffer();

private:
    // Makes room for nLength characters plus the NUL, keeping the text.
    void Reserve(int nLength);
    void Assign(const char* text, int nLength);
    void Append(const char* text, int nLength);
    void SetLength(int nLength);
    // Whether text points into our own buffer.
    bool Holds(const char* text) const;

    char* data_ = nullptr;  // NUL-terminated, capacity_ + 1 bytes; NULL when never allocated
    int length_ = 0;
    int capacity_ = 0;
};

bool operator==(const CString& s1, const CString& s2);
bool operator==(const CString& s1, LPCTSTR s2);
bool operator==(LPCTSTR s1, const CString& s2);
bool operator!=(const CString& s1, const CString& s2);
bool operator!=(const CString& s1, LPCTSTR s2);
bool operator!=(LPCTSTR s1, const CString& s2);
bool operator<(const CString& s1, const CString& s2);
bool operator<(const CString& s1, LPCTSTR s2);
bool operator<(LPCTSTR s1, const CString& s2);
bool operator>(const CString& s1, const CString& s2);
bool operator>(const CString& s1, LPCTSTR s2);
bool operator>(LPCTSTR s1, const CString& s2);
bool operator<=(const CString& s1, const CString& s2);
bool operator<=(const CString& s1, LPCTSTR s2);
bool operator<=(LPCTSTR s1, const CString& s2);
bool operator>=(const CString& s1, const CString& s2);
bool operator>=(const CString& s1, LPCTSTR s2);
bool operator>=(LPCTSTR s1, const CString& s2);

namespace zq::framework {
// Windows-1252 case mapping of one character.
char ToUpper1252(char ch);
char ToLower1252(char ch);
}  // namespace zq::framework
