#include "framework/core/cstring.h"

#include <algorithm>
#include <climits>
#include <cstdio>
#include <cstring>
#include <functional>
#include <new>
#include <string_view>
#include <utility>

#include "framework/modules/extension_module.h"

namespace zq::framework {

char ToUpper1252(char ch) {
    auto c = static_cast<unsigned char>(ch);
    if (c >= 'a' && c <= 'z') {
        return static_cast<char>(c - 0x20);
    }
    if (c >= 0xE0 && c <= 0xFE && c != 0xF7) {  // à..þ except ÷
        return static_cast<char>(c - 0x20);
    }
    switch (c) {
        case 0x9A:  // š
        case 0x9C:  // œ
        case 0x9E:  // ž
            return static_cast<char>(c - 0x10);
        case 0xFF:  // ÿ
            return static_cast<char>(0x9F);
        default:
            return ch;
    }
}

char ToLower1252(char ch) {
    auto c = static_cast<unsigned char>(ch);
    if (c >= 'A' && c <= 'Z') {
        return static_cast<char>(c + 0x20);
    }
    if (c >= 0xC0 && c <= 0xDE && c != 0xD7) {  // À..Þ except ×
        return static_cast<char>(c + 0x20);
    }
    switch (c) {
        case 0x8A:  // Š
        case 0x8C:  // Œ
        case 0x8E:  // Ž
            return static_cast<char>(c + 0x10);
        case 0x9F:  // Ÿ
            return static_cast<char>(0xFF);
        default:
            return ch;
    }
}

}  // namespace zq::framework

namespace {

using zq::framework::ToLower1252;
using zq::framework::ToUpper1252;

constexpr std::string_view kWhitespace = " \t\r\n\v\f";

// The text of a C string (empty for NULL or a resource id).
std::string_view View(LPCTSTR lpsz) {
    if (lpsz == nullptr || IS_INTRESOURCE(lpsz)) {
        return {};
    }
    return std::string_view(lpsz);
}

int CheckedLength(size_t n) {
    if (n >= static_cast<size_t>(INT_MAX)) {
        throw std::bad_alloc();
    }
    return static_cast<int>(n);
}

int CompareBytes(std::string_view a, std::string_view b) {
    size_t n = std::min(a.size(), b.size());
    int r = n ? std::memcmp(a.data(), b.data(), n) : 0;
    if (r != 0) {
        return r < 0 ? -1 : 1;
    }
    if (a.size() == b.size()) {
        return 0;
    }
    return a.size() < b.size() ? -1 : 1;
}

int CompareFolded(std::string_view a, std::string_view b) {
    size_t n = std::min(a.size(), b.size());
    for (size_t i = 0; i < n; ++i) {
        auto ca = static_cast<unsigned char>(ToLower1252(a[i]));
        auto cb = static_cast<unsigned char>(ToLower1252(b[i]));
        if (ca != cb) {
            return ca < cb ? -1 : 1;
        }
    }
    if (a.size() == b.size()) {
        return 0;
    }
    return a.size() < b.size() ? -1 : 1;
}

int ToInt(size_t pos) {
    return pos == std::string_view::npos ? -1 : static_cast<int>(pos);
}

}  // namespace

// ---- construction and assignment -------------------------------------------

CString::CString(const CString& stringSrc) {
    Assign(stringSrc.data_, stringSrc.length_);
}

CString::CString(CString&& stringSrc) noexcept
    : data_(std::exchange(stringSrc.data_, nullptr)),
      length_(std::exchange(stringSrc.length_, 0)),
      capacity_(std::exchange(stringSrc.capacity_, 0)) {}

CString::CString(TCHAR ch, int nRepeat) {
    if (nRepeat > 0) {
        Reserve(nRepeat);
        std::memset(data_, ch, static_cast<size_t>(nRepeat));
        SetLength(nRepeat);
    }
}

CString::CString(LPCSTR lpsz) {
    if (lpsz != nullptr && IS_INTRESOURCE(lpsz)) {
        LoadString(LOWORD(reinterpret_cast<ULONG_PTR>(lpsz)));
        return;
    }
    std::string_view text = View(lpsz);
    Assign(text.data(), CheckedLength(text.size()));
}

CString::CString(const unsigned char* psz) : CString(reinterpret_cast<LPCSTR>(psz)) {}

CString::CString(LPCSTR lpch, int nLength) {
    if (lpch != nullptr && nLength > 0) {
        Assign(lpch, nLength);
    }
}

CString::~CString() {
    delete[] data_;
}

void CString::Empty() {
    delete[] data_;
    data_ = nullptr;
    length_ = 0;
    capacity_ = 0;
}

const CString& CString::operator=(const CString& stringSrc) {
    if (this != &stringSrc) {
        Assign(stringSrc.data_, stringSrc.length_);
    }
    return *this;
}

const CString& CString::operator=(CString&& stringSrc) noexcept {
    if (this != &stringSrc) {
        delete[] data_;
        data_ = std::exchange(stringSrc.data_, nullptr);
        length_ = std::exchange(stringSrc.length_, 0);
        capacity_ = std::exchange(stringSrc.capacity_, 0);
    }
    return *this;
}

const CString& CString::operator=(TCHAR ch) {
    Assign(&ch, 1);
    return *this;
}

const CString& CString::operator=(LPCSTR lpsz) {
    std::string_view text = View(lpsz);
    Assign(text.data(), CheckedLength(text.size()));
    return *this;
}

const CString& CString::operator=(const unsigned char* psz) {
    return *this = reinterpret_cast<LPCSTR>(psz);
}

const CString& CString::operator+=(const CString& string) {
    Append(string.data_, string.length_);
    return *this;
}

const CString& CString::operator+=(TCHAR ch) {
    Append(&ch, 1);
    return *this;
}

const CString& CString::operator+=(LPCTSTR lpsz) {
    std::string_view text = View(lpsz);
    Append(text.data(), CheckedLength(text.size()));
    return *this;
}

CString operator+(const CString& string1, const CString& string2) {
    CString result;
    result.Reserve(CheckedLength(static_cast<size_t>(string1.length_) + string2.length_));
    result.Append(string1.data_, string1.length_);
    result.Append(string2.data_, string2.length_);
    return result;
}

CString operator+(const CString& string, TCHAR ch) {
    CString result(string);
    result += ch;
    return result;
}

CString operator+(TCHAR ch, const CString& string) {
    CString result(ch);
    result += string;
    return result;
}

CString operator+(const CString& string, LPCTSTR lpsz) {
    CString result(string);
    result += lpsz;
    return result;
}

CString operator+(LPCTSTR lpsz, const CString& string) {
    CString result(lpsz);
    result += string;
    return result;
}

// ---- element access ------------------------------------------------------

TCHAR CString::GetAt(int nIndex) const {
    if (nIndex < 0 || nIndex >= length_) {
        return '\0';
    }
    return data_[nIndex];
}

void CString::SetAt(int nIndex, TCHAR ch) {
    if (nIndex >= 0 && nIndex < length_) {
        data_[nIndex] = ch;
    }
}

// ---- comparison ----------------------------------------------------------

int CString::Compare(LPCTSTR lpsz) const {
    return CompareBytes(std::string_view(*this, length_), View(lpsz));
}

int CString::CompareNoCase(LPCTSTR lpsz) const {
    return CompareFolded(std::string_view(*this, length_), View(lpsz));
}

int CString::Collate(LPCTSTR lpsz) const {
    return Compare(lpsz);
}

int CString::CollateNoCase(LPCTSTR lpsz) const {
    return CompareNoCase(lpsz);
}

namespace {
std::string_view View(const CString& s) {
    return std::string_view(static_cast<LPCTSTR>(s), static_cast<size_t>(s.GetLength()));
}
}  // namespace

bool operator==(const CString& s1, const CString& s2) {
    return View(s1) == View(s2);
}
bool operator==(const CString& s1, LPCTSTR s2) {
    return View(s1) == View(s2);
}
bool operator==(LPCTSTR s1, const CString& s2) {
    return View(s1) == View(s2);
}
bool operator!=(const CString& s1, const CString& s2) {
    return !(s1 == s2);
}
bool operator!=(const CString& s1, LPCTSTR s2) {
    return !(s1 == s2);
}
bool operator!=(LPCTSTR s1, const CString& s2) {
    return !(s1 == s2);
}
bool operator<(const CString& s1, const CString& s2) {
    return CompareBytes(View(s1), View(s2)) < 0;
}
bool operator<(const CString& s1, LPCTSTR s2) {
    return CompareBytes(View(s1), View(s2)) < 0;
}
bool operator<(LPCTSTR s1, const CString& s2) {
    return CompareBytes(View(s1), View(s2)) < 0;
}
bool operator>(const CString& s1, const CString& s2) {
    return CompareBytes(View(s1), View(s2)) > 0;
}
bool operator>(const CString& s1, LPCTSTR s2) {
    return CompareBytes(View(s1), View(s2)) > 0;
}
bool operator>(LPCTSTR s1, const CString& s2) {
    return CompareBytes(View(s1), View(s2)) > 0;
}
bool operator<=(const CString& s1, const CString& s2) {
    return CompareBytes(View(s1), View(s2)) <= 0;
}
bool operator<=(const CString& s1, LPCTSTR s2) {
    return CompareBytes(View(s1), View(s2)) <= 0;
}
bool operator<=(LPCTSTR s1, const CString& s2) {
    return CompareBytes(View(s1), View(s2)) <= 0;
}
bool operator>=(const CString& s1, const CString& s2) {
    return CompareBytes(View(s1), View(s2)) >= 0;
}
bool operator>=(const CString& s1, LPCTSTR s2) {
    return CompareBytes(View(s1), View(s2)) >= 0;
}
bool operator>=(LPCTSTR s1, const CString& s2) {
    return CompareBytes(View(s1), View(s2)) >= 0;
}

// ---- extraction ----------------------------------------------------------

CString CString::Mid(int nFirst, int nCount) const {
    nFirst = std::max(nFirst, 0);
    nCount = std::max(nCount, 0);
    if (nFirst >= length_) {
        return CString();
    }
    nCount = std::min(nCount, length_ - nFirst);
    return CString(data_ + nFirst, nCount);
}

CString CString::Mid(int nFirst) const {
    return Mid(nFirst, length_);
}

CString CString::Left(int nCount) const {
    return Mid(0, nCount);
}

CString CString::Right(int nCount) const {
    nCount = std::clamp(nCount, 0, length_);
    return Mid(length_ - nCount, nCount);
}

CString CString::SpanIncluding(LPCTSTR lpszCharSet) const {
    std::string_view set = View(lpszCharSet);
    size_t n = std::string_view(*this, length_).find_first_not_of(set);
    return Left(n == std::string_view::npos ? length_ : static_cast<int>(n));
}

CString CString::SpanExcluding(LPCTSTR lpszCharSet) const {
    std::string_view set = View(lpszCharSet);
    size_t n = std::string_view(*this, length_).find_first_of(set);
    return Left(n == std::string_view::npos ? length_ : static_cast<int>(n));
}

// ---- in-place changes ----------------------------------------------------

void CString::MakeUpper() {
    for (int i = 0; i < length_; ++i) {
        data_[i] = ToUpper1252(data_[i]);
    }
}

void CString::MakeLower() {
    for (int i = 0; i < length_; ++i) {
        data_[i] = ToLower1252(data_[i]);
    }
}

void CString::MakeReverse() {
    if (length_ > 0) {
        std::reverse(data_, data_ + length_);
    }
}

int CString::Replace(TCHAR chOld, TCHAR chNew) {
    int count = 0;
    for (int i = 0; i < length_; ++i) {
        if (data_[i] == chOld) {
            data_[i] = chNew;
            ++count;
        }
    }
    return count;
}

int CString::Replace(LPCTSTR lpszOld, LPCTSTR lpszNew) {
    std::string_view from = View(lpszOld);
    std::string_view to = View(lpszNew);
    if (from.empty() || length_ == 0) {
        return 0;
    }
    std::string_view text(data_, length_);
    CString result;
    int count = 0;
    size_t start = 0;
    for (size_t pos; (pos = text.find(from, start)) != std::string_view::npos;) {
        result.Append(data_ + start, static_cast<int>(pos - start));
        result.Append(to.data(), CheckedLength(to.size()));
        start = pos + from.size();
        ++count;
    }
    if (count > 0) {
        result.Append(data_ + start, static_cast<int>(length_ - start));
        *this = std::move(result);
    }
    return count;
}

int CString::Remove(TCHAR chRemove) {
    if (length_ == 0) {
        return 0;
    }
    char* end = std::remove(data_, data_ + length_, chRemove);
    int removed = static_cast<int>(data_ + length_ - end);
    SetLength(static_cast<int>(end - data_));
    return removed;
}

int CString::Insert(int nIndex, TCHAR ch) {
    CString text(ch);
    return Insert(nIndex, text);
}

int CString::Insert(int nIndex, LPCTSTR pstr) {
    std::string_view text = View(pstr);
    // pstr may point into this string: take a copy before moving anything.
    CString insert(text.data(), CheckedLength(text.size()));
    if (insert.length_ == 0) {
        return length_;
    }
    nIndex = std::clamp(nIndex, 0, length_);
    int oldLength = length_;
    Reserve(CheckedLength(static_cast<size_t>(length_) + insert.length_));
    std::memmove(data_ + nIndex + insert.length_, data_ + nIndex,
                 static_cast<size_t>(oldLength - nIndex));
    std::memcpy(data_ + nIndex, insert.data_, static_cast<size_t>(insert.length_));
    SetLength(oldLength + insert.length_);
    return length_;
}

int CString::Delete(int nIndex, int nCount) {
    nIndex = std::max(nIndex, 0);
    if (nCount > 0 && nIndex < length_) {
        nCount = std::min(nCount, length_ - nIndex);
        std::memmove(data_ + nIndex, data_ + nIndex + nCount,
                     static_cast<size_t>(length_ - nIndex - nCount));
        SetLength(length_ - nCount);
    }
    return length_;
}

void CString::TrimRight() {
    TrimRight(kWhitespace.data());
}

void CString::TrimRight(TCHAR chTarget) {
    int n = length_;
    while (n > 0 && data_[n - 1] == chTarget) {
        --n;
    }
    if (n != length_) {
        SetLength(n);
    }
}

void CString::TrimRight(LPCTSTR lpszTargets) {
    std::string_view set = View(lpszTargets);
    size_t last = std::string_view(*this, length_).find_last_not_of(set);
    int n = last == std::string_view::npos ? 0 : static_cast<int>(last) + 1;
    if (n != length_) {
        SetLength(n);
    }
}

void CString::TrimLeft() {
    TrimLeft(kWhitespace.data());
}

void CString::TrimLeft(TCHAR chTarget) {
    int n = 0;
    while (n < length_ && data_[n] == chTarget) {
        ++n;
    }
    Delete(0, n);
}

void CString::TrimLeft(LPCTSTR lpszTargets) {
    std::string_view set = View(lpszTargets);
    size_t first = std::string_view(*this, length_).find_first_not_of(set);
    Delete(0, first == std::string_view::npos ? length_ : static_cast<int>(first));
}

// ---- searching -----------------------------------------------------------

int CString::Find(TCHAR ch) const {
    return Find(ch, 0);
}

int CString::Find(TCHAR ch, int nStart) const {
    if (nStart < 0 || nStart >= length_) {
        return -1;
    }
    return ToInt(std::string_view(data_, length_).find(ch, static_cast<size_t>(nStart)));
}

int CString::Find(LPCTSTR lpszSub) const {
    return Find(lpszSub, 0);
}

int CString::Find(LPCTSTR lpszSub, int nStart) const {
    if (nStart < 0 || nStart > length_) {
        return -1;
    }
    return ToInt(std::string_view(*this, length_).find(View(lpszSub), static_cast<size_t>(nStart)));
}

int CString::ReverseFind(TCHAR ch) const {
    return ToInt(std::string_view(*this, length_).rfind(ch));
}

int CString::FindOneOf(LPCTSTR lpszCharSet) const {
    return ToInt(std::string_view(*this, length_).find_first_of(View(lpszCharSet)));
}

// ---- formatting and resources --------------------------------------------

void CString::Format(LPCTSTR lpszFormat, ...) {
    va_list args;
    va_start(args, lpszFormat);
    FormatV(lpszFormat, args);
    va_end(args);
}

void CString::Format(UINT nFormatID, ...) {
    CString format;
    format.LoadString(nFormatID);
    va_list args;
    va_start(args, nFormatID);
    FormatV(format, args);
    va_end(args);
}

void CString::FormatV(LPCTSTR lpszFormat, va_list argList) {
    if (lpszFormat == nullptr) {
        Empty();
        return;
    }
    // Measure first, then write exactly: no output is ever truncated.
    char small[256];
    va_list measure;
    va_copy(measure, argList);
    int needed = std::vsnprintf(small, sizeof small, lpszFormat, measure);
    va_end(measure);
    if (needed < 0) {
        Empty();
        return;
    }
    if (needed < static_cast<int>(sizeof small)) {
        Assign(small, needed);
        return;
    }
    CString result;
    result.Reserve(needed);
    va_list write;
    va_copy(write, argList);
    int written = std::vsnprintf(result.data_, static_cast<size_t>(needed) + 1, lpszFormat, write);
    va_end(write);
    if (written != needed) {
        Empty();
        return;
    }
    result.SetLength(needed);
    *this = std::move(result);
}

BOOL CString::LoadString(UINT nID) {
    // String resources hold at most 65535 characters; grow until one fits.
    for (int size = 256;; size *= 4) {
        int n = AfxLoadString(nID, GetBuffer(size), static_cast<UINT>(size) + 1);
        if (n < size || size > 65536) {
            ReleaseBuffer(std::clamp(n, 0, size));
            return n > 0;
        }
    }
}

// ---- buffer access -------------------------------------------------------

LPTSTR CString::GetBuffer(int nMinBufLength) {
    Reserve(std::max(nMinBufLength, length_));
    return data_;
}

void CString::ReleaseBuffer(int nNewLength) {
    if (data_ == nullptr) {
        return;
    }
    if (nNewLength < 0) {
        nNewLength = static_cast<int>(strnlen(data_, static_cast<size_t>(capacity_)));
    }
    SetLength(std::min(nNewLength, capacity_));
}

LPTSTR CString::GetBufferSetLength(int nNewLength) {
    nNewLength = std::max(nNewLength, 0);
    GetBuffer(nNewLength);
    SetLength(nNewLength);
    return data_;
}

void CString::FreeExtra() {
    if (length_ == 0) {
        Empty();
    } else if (capacity_ > length_) {
        CString copy(*this);
        *this = std::move(copy);
    }
}

LPTSTR CString::LockBuffer() {
    return GetBuffer(0);
}

void CString::UnlockBuffer() {}

// ---- storage -------------------------------------------------------------

void CString::Reserve(int nLength) {
    if (data_ != nullptr && nLength <= capacity_) {
        return;
    }
    if (nLength < 0 || nLength >= INT_MAX) {
        throw std::bad_alloc();
    }
    // Grow geometrically so that repeated appends stay linear.
    int capacity = nLength;
    if (data_ != nullptr && capacity_ < INT_MAX / 2) {
        capacity = std::max(capacity, capacity_ + capacity_ / 2);
    }
    char* grown = new char[static_cast<size_t>(capacity) + 1];
    if (length_ > 0) {
        std::memcpy(grown, data_, static_cast<size_t>(length_));
    }
    grown[length_] = '\0';
    delete[] data_;
    data_ = grown;
    capacity_ = capacity;
}

void CString::Assign(const char* text, int nLength) {
    if (nLength <= 0) {
        if (data_ != nullptr) {
            SetLength(0);
        }
        return;
    }
    if (Holds(text)) {
        // Assigning part of ourselves: the text stays where it is.
        std::memmove(data_, text, static_cast<size_t>(nLength));
        SetLength(nLength);
        return;
    }
    if (nLength > capacity_ || data_ == nullptr) {
        delete[] data_;
        data_ = nullptr;
        length_ = capacity_ = 0;
        Reserve(nLength);
    }
    std::memcpy(data_, text, static_cast<size_t>(nLength));
    SetLength(nLength);
}

void CString::Append(const char* text, int nLength) {
    if (nLength <= 0) {
        return;
    }
    size_t total = static_cast<size_t>(length_) + static_cast<size_t>(nLength);
    if (Holds(text)) {
        // Appending part of ourselves: copy before the buffer may move.
        CString copy(text, nLength);
        Reserve(CheckedLength(total));
        std::memcpy(data_ + length_, copy.data_, static_cast<size_t>(nLength));
    } else {
        Reserve(CheckedLength(total));
        std::memcpy(data_ + length_, text, static_cast<size_t>(nLength));
    }
    SetLength(static_cast<int>(total));
}

bool CString::Holds(const char* text) const {
    std::less_equal<const char*> le;
    return data_ != nullptr && le(data_, text) && le(text, data_ + capacity_);
}

void CString::SetLength(int nLength) {
    length_ = nLength;
    data_[length_] = '\0';
}
