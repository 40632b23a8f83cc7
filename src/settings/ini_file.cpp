#include "settings/ini_file.h"

#include <cstdio>
#include <cstring>
#include <new>
#include <string_view>

#include "framework/core/exceptions.h"
#include "settings/ini_value_text.h"

using zq::settings::FieldSplitter;
using zq::settings::FormatDecimal;
using zq::settings::kRecordDelimiters;
using zq::settings::ParseBooleanWord;
using zq::settings::ParseDecimal;
using zq::settings::ParseHexadecimal;

namespace {

// Bytes a read takes from the file, terminator included.
constexpr int kNumberReadSize = 40;
constexpr int kBooleanReadSize = 8;
constexpr int kTimeReadSize = 128;
constexpr int kRectangleReadSize = 40;
constexpr int kColorReadSize = 16;
constexpr int kAcceleratorReadSize = 40;
constexpr int kPlacementReadSize = 128;
// DoesEntryExist reads into this many bytes: one character is enough.
constexpr int kProbeReadSize = 4;
// A first name of this length means the list filled the 4097-byte buffer.
constexpr size_t kFullListNameLength = 4094;

// Length of text up to its terminator, looking at no more than limit + 1
// characters: a result above limit means "too long".
size_t BoundedLength(const char* text, size_t limit) {
    size_t length = 0;
    while (length <= limit && text[length] != '\0') {
        ++length;
    }
    return length;
}

void CopyName(char* target, const char* source, size_t length) {
    std::memcpy(target, source, length);
    target[length] = '\0';
}

// The getters of the stored names: the buffer must hold the name's full
// capacity, whatever the name's length.
DWORD GetStoredName(const char* stored, int capacity, char* lpszBuffer, int nSize) {
    if (lpszBuffer == nullptr) {
        return CZqIniFile::kStatusNoBuffer;
    }
    if (nSize < capacity + 1) {
        return CZqIniFile::kStatusBufferTooSmall;
    }
    std::strcpy(lpszBuffer, stored);
    return CZqIniFile::kStatusSuccess;
}

// The setters of the stored names; dwMissing is the status of a null name.
DWORD SetStoredName(char* stored, int capacity, const char* lpszName, DWORD dwMissing) {
    if (lpszName == nullptr) {
        return dwMissing;
    }
    const size_t length = BoundedLength(lpszName, static_cast<size_t>(capacity));
    if (length > static_cast<size_t>(capacity)) {
        return CZqIniFile::kStatusTooLong;
    }
    CopyName(stored, lpszName, length);
    return CZqIniFile::kStatusSuccess;
}

// Feeds up to count fields of text, split at the record delimiters, to
// store(index, field); fields that are not there leave their target alone.
template <class Store>
void ReadFields(const char* text, int count, Store store) {
    FieldSplitter fields(text, kRecordDelimiters);
    std::string_view field;
    for (int i = 0; i < count && fields.Next(field); ++i) {
        store(i, field);
    }
}

}  // namespace

CZqIniFile::CZqIniFile()
    : m_szFileName{},
      m_szSection{},
      m_szKey{},
      m_wKind(kKindNone),
      m_wStatus(0),
      m_input{},
      m_result{} {}

CZqIniFile::~CZqIniFile() {
    FlushCache();
}

// ---- Shared steps -------------------------------------------------------

DWORD CZqIniFile::CheckKey(const char* lpszKey) {
    if (lpszKey == nullptr || lpszKey[0] == '\0') {
        return kStatusNoKey;
    }
    if (BoundedLength(lpszKey, kMaxKey) > static_cast<size_t>(kMaxKey)) {
        return kStatusKeyTooLong;  // 7 here means the name, not a default
    }
    return kStatusSuccess;
}

void CZqIniFile::Begin(const char* lpszKey, WORD wKind) {
    CopyName(m_szKey, lpszKey, BoundedLength(lpszKey, kMaxKey));
    m_wKind = wKind;
}

DWORD CZqIniFile::Finish(DWORD dwStatus) {
    m_wStatus = static_cast<WORD>(dwStatus);
    return dwStatus;
}

DWORD CZqIniFile::ReadEntry(char* buffer, int nSize) {
    // The empty default makes a missing entry and an empty value alike
    // return 0.
    return GetPrivateProfileStringA(m_szSection, m_szKey, "", buffer, static_cast<DWORD>(nSize),
                                    m_szFileName);
}

DWORD CZqIniFile::WriteEntry(const char* text) {
    return WritePrivateProfileStringA(m_szSection, m_szKey, text, m_szFileName)
               ? kStatusSuccess
               : kStatusWriteFailed;
}

DWORD CZqIniFile::ReadNumberText(const char* defaultText, int nReadSize, char* text) {
    if (ReadEntry(text, nReadSize) != 0) {
        return kStatusSuccess;
    }
    // The default goes through the same text conversion as a stored value.
    std::snprintf(text, static_cast<size_t>(nReadSize), "%s", defaultText);
    return kStatusDefaultUsed;
}

// ---- Entry operations ---------------------------------------------------

DWORD CZqIniFile::DoString(const char* lpszKey, BOOL bRead, const char* lpszDefault,
                           char* lpszResult, int nResultSize) {
    if (DWORD status = CheckKey(lpszKey)) {
        return status;
    }
    if (lpszDefault == nullptr || (bRead && lpszResult == nullptr)) {
        return kStatusMissingPointer;
    }
    const size_t defaultLength = BoundedLength(lpszDefault, kMaxValue);
    if (defaultLength > static_cast<size_t>(kMaxValue)) {
        return kStatusTooLong;
    }
    Begin(lpszKey, kKindString);
    CopyName(m_input.sz, lpszDefault, defaultLength);
    if (m_szFileName[0] == '\0') {
        return Finish(kStatusNoFileName);
    }
    if (!bRead) {
        return Finish(WriteEntry(m_input.sz));
    }

    DWORD status = kStatusSuccess;
    if (ReadEntry(m_result.sz, kValueBufferSize) == 0) {
        std::memcpy(m_result.sz, m_input.sz, defaultLength + 1);
        status = kStatusDefaultUsed;
    }
    const size_t length = std::strlen(m_result.sz);
    const size_t room = nResultSize > 0 ? static_cast<size_t>(nResultSize) : 0;
    if (room > 0) {
        CopyName(lpszResult, m_result.sz, length < room ? length : room - 1);
    }
    // Only a value longer than the buffer reports the cut: one of exactly
    // the buffer's length loses its last character with status 0 (or 7).
    if (length > room) {
        status = kStatusBufferTooSmall;
    }
    return Finish(status);
}

DWORD CZqIniFile::DoInteger(const char* lpszKey, BOOL bRead, int nDefault, int* pnResult) {
    if (DWORD status = CheckKey(lpszKey)) {
        return status;
    }
    if (bRead && pnResult == nullptr) {
        return kStatusMissingPointer;
    }
    Begin(lpszKey, kKindInteger);
    m_input.n = nDefault;
    if (m_szFileName[0] == '\0') {
        return Finish(kStatusNoFileName);
    }
    char text[kNumberReadSize];
    FormatDecimal(m_input.n, text, sizeof text);
    if (!bRead) {
        return Finish(WriteEntry(text));
    }
    char defaultText[kNumberReadSize];
    std::memcpy(defaultText, text, sizeof text);
    const DWORD status = ReadNumberText(defaultText, kNumberReadSize, text);
    m_result.n = ParseDecimal(text);
    *pnResult = m_result.n;
    return Finish(status);
}

DWORD CZqIniFile::DoLongWord(const char* lpszKey, BOOL bRead, DWORD dwDefault, DWORD* pdwResult) {
    if (DWORD status = CheckKey(lpszKey)) {
        return status;
    }
    if (bRead && pdwResult == nullptr) {
        return kStatusMissingPointer;
    }
    Begin(lpszKey, kKindLongWord);
    m_input.dw = dwDefault;
    if (m_szFileName[0] == '\0') {
        return Finish(kStatusNoFileName);
    }
    char text[kNumberReadSize];
    std::snprintf(text, sizeof text, "%u", m_input.dw);
    if (!bRead) {
        return Finish(WriteEntry(text));
    }
    char defaultText[kNumberReadSize];
    std::memcpy(defaultText, text, sizeof text);
    const DWORD status = ReadNumberText(defaultText, kNumberReadSize, text);
    m_result.dw = static_cast<DWORD>(ParseDecimal(text));  // wraps: 4294967295 stays
    *pdwResult = m_result.dw;
    return Finish(status);
}

DWORD CZqIniFile::DoBoolean(const char* lpszKey, BOOL bRead, int bDefault, int* pbResult) {
    if (DWORD status = CheckKey(lpszKey)) {
        return status;
    }
    if (bRead && pbResult == nullptr) {
        return kStatusMissingPointer;
    }
    Begin(lpszKey, kKindBoolean);
    m_input.n = bDefault;
    if (m_szFileName[0] == '\0') {
        return Finish(kStatusNoFileName);
    }
    const char* defaultText = m_input.n != 0 ? "1" : "0";
    if (!bRead) {
        return Finish(WriteEntry(defaultText));
    }
    char text[kBooleanReadSize];
    const DWORD status = ReadNumberText(defaultText, kBooleanReadSize, text);
    m_result.n = ParseBooleanWord(text);
    *pbResult = m_result.n;
    return Finish(status);
}

DWORD CZqIniFile::DoHexadecimal(const char* lpszKey, BOOL bRead, DWORD dwDefault,
                                DWORD* pdwResult) {
    if (DWORD status = CheckKey(lpszKey)) {
        return status;
    }
    if (bRead && pdwResult == nullptr) {
        return kStatusMissingPointer;
    }
    Begin(lpszKey, kKindHexadecimal);
    m_input.dw = dwDefault;
    if (m_szFileName[0] == '\0') {
        return Finish(kStatusNoFileName);
    }
    char text[kNumberReadSize];
    std::snprintf(text, sizeof text, "0x%08X", m_input.dw);
    if (!bRead) {
        return Finish(WriteEntry(text));
    }
    char defaultText[kNumberReadSize];
    std::memcpy(defaultText, text, sizeof text);
    const DWORD status = ReadNumberText(defaultText, kNumberReadSize, text);
    m_result.dw = ParseHexadecimal(text);
    *pdwResult = m_result.dw;
    return Finish(status);
}

DWORD CZqIniFile::ZqIniFileTime(const char* lpszKey, BOOL bRead, SYSTEMTIME* pDefault,
                                SYSTEMTIME* pResult) {
    if (DWORD status = CheckKey(lpszKey)) {
        return status;
    }
    if (pDefault == nullptr || (bRead && pResult == nullptr)) {
        return kStatusMissingPointer;
    }
    Begin(lpszKey, kKindTime);
    m_input.st = *pDefault;
    if (m_szFileName[0] == '\0') {
        return Finish(kStatusNoFileName);
    }
    char text[kTimeReadSize];
    const SYSTEMTIME& in = m_input.st;
    if (!bRead) {
        std::snprintf(text, sizeof text, "%d, %d, %d, %d, %d, %d, %d, %d", in.wYear, in.wMonth,
                      in.wDayOfWeek, in.wDay, in.wHour, in.wMinute, in.wSecond, in.wMilliseconds);
        return Finish(WriteEntry(text));
    }
    m_result.st = m_input.st;
    if (ReadEntry(text, kTimeReadSize) == 0) {
        *pResult = m_result.st;
        return Finish(kStatusDefaultUsed);
    }
    WORD* fields[] = {&m_input.st.wYear,   &m_input.st.wMonth,       &m_input.st.wDayOfWeek,
                      &m_input.st.wDay,    &m_input.st.wHour,        &m_input.st.wMinute,
                      &m_input.st.wSecond, &m_input.st.wMilliseconds};
    ReadFields(text, 8, [&](int i, std::string_view field) {
        *fields[i] = static_cast<WORD>(ParseDecimal(field));
    });
    // Keeps the delivery of the default: the fields went into the working
    // copy, the caller gets the copy taken before parsing.
    *pResult = m_result.st;
    return Finish(kStatusSuccess);
}

DWORD CZqIniFile::ZqIniFileRectangle(const char* lpszKey, BOOL bRead, RECT* pDefault,
                                     RECT* pResult) {
    if (DWORD status = CheckKey(lpszKey)) {
        return status;
    }
    if (pDefault == nullptr || (bRead && pResult == nullptr)) {
        return kStatusMissingPointer;
    }
    Begin(lpszKey, kKindRectangle);
    m_input.rc = *pDefault;
    if (m_szFileName[0] == '\0') {
        return Finish(kStatusNoFileName);
    }
    char text[kTimeReadSize];  // room for any rectangle; a read takes 40 bytes
    const RECT& in = m_input.rc;
    if (!bRead) {
        std::snprintf(text, sizeof text, "%d, %d, %d, %d", in.left, in.top, in.right, in.bottom);
        return Finish(WriteEntry(text));
    }
    m_result.rc = m_input.rc;
    DWORD status = kStatusSuccess;
    if (ReadEntry(text, kRectangleReadSize) == 0) {
        status = kStatusDefaultUsed;
    } else {
        LONG* fields[] = {&m_result.rc.left, &m_result.rc.top, &m_result.rc.right,
                          &m_result.rc.bottom};
        ReadFields(text, 4,
                   [&](int i, std::string_view field) { *fields[i] = ParseDecimal(field); });
    }
    *pResult = m_result.rc;
    return Finish(status);
}

DWORD CZqIniFile::ZqIniFileColor(const char* lpszKey, BOOL bRead, COLORREF* pDefault,
                                 COLORREF* pResult) {
    if (DWORD status = CheckKey(lpszKey)) {
        return status;
    }
    if (pDefault == nullptr || (bRead && pResult == nullptr)) {
        return kStatusMissingPointer;
    }
    Begin(lpszKey, kKindColor);
    m_input.cr = *pDefault;
    if (m_szFileName[0] == '\0') {
        return Finish(kStatusNoFileName);
    }
    char text[kNumberReadSize];
    int channels[3] = {GetRValue(m_input.cr), GetGValue(m_input.cr), GetBValue(m_input.cr)};
    if (!bRead) {
        std::snprintf(text, sizeof text, "%d %d %d", channels[0], channels[1], channels[2]);
        return Finish(WriteEntry(text));
    }
    m_result.cr = m_input.cr;
    DWORD status = kStatusSuccess;
    if (ReadEntry(text, kColorReadSize) == 0) {
        status = kStatusDefaultUsed;  // the default as it is, top byte included
    } else {
        ReadFields(text, 3,
                   [&](int i, std::string_view field) { channels[i] = ParseDecimal(field); });
        // Rebuilt from the low bytes of the channels: the top byte is dropped.
        m_result.cr = RGB(channels[0], channels[1], channels[2]);
    }
    *pResult = m_result.cr;
    return Finish(status);
}

DWORD CZqIniFile::ZqIniFileAccelerator(const char* lpszKey, BOOL bRead, ACCEL* pDefault,
                                       ACCEL* pResult) {
    if (DWORD status = CheckKey(lpszKey)) {
        return status;
    }
    if (pDefault == nullptr || (bRead && pResult == nullptr)) {
        return kStatusMissingPointer;
    }
    Begin(lpszKey, kKindAccelerator);
    m_input.accel = *pDefault;
    if (m_szFileName[0] == '\0') {
        return Finish(kStatusNoFileName);
    }
    char text[kAcceleratorReadSize];
    const ACCEL& in = m_input.accel;
    if (!bRead) {
        std::snprintf(text, sizeof text, "%d, %d, %d", in.fVirt, in.key, in.cmd);
        return Finish(WriteEntry(text));
    }
    m_result.accel = m_input.accel;
    DWORD status = kStatusSuccess;
    if (ReadEntry(text, kAcceleratorReadSize) == 0) {
        status = kStatusDefaultUsed;
    } else {
        ReadFields(text, 3, [&](int i, std::string_view field) {
            const INT value = ParseDecimal(field);
            if (i == 0) {
                m_result.accel.fVirt = static_cast<BYTE>(value);
            } else if (i == 1) {
                m_result.accel.key = static_cast<WORD>(value);
            } else {
                m_result.accel.cmd = static_cast<WORD>(value);
            }
        });
    }
    *pResult = m_result.accel;
    return Finish(status);
}

DWORD CZqIniFile::ZqIniFileWindowPlacement(const char* lpszKey, BOOL bRead,
                                           WINDOWPLACEMENT* pDefault, WINDOWPLACEMENT* pResult) {
    if (DWORD status = CheckKey(lpszKey)) {
        return status;
    }
    if (pDefault == nullptr || (bRead && pResult == nullptr)) {
        return kStatusMissingPointer;
    }
    Begin(lpszKey, kKindWindowPlacement);
    m_input.wp = *pDefault;
    if (m_szFileName[0] == '\0') {
        return Finish(kStatusNoFileName);
    }
    char text[kPlacementReadSize];
    const WINDOWPLACEMENT& in = m_input.wp;
    if (!bRead) {
        // Top before left: the reverse of the read order below, so each save
        // and load swaps them; kept as stored files and callers expect it.
        std::snprintf(text, sizeof text, "%u, %u, %d, %d, %d, %d, %d, %d, %d, %d", in.flags,
                      in.showCmd, in.ptMinPosition.x, in.ptMinPosition.y, in.ptMaxPosition.x,
                      in.ptMaxPosition.y, in.rcNormalPosition.top, in.rcNormalPosition.left,
                      in.rcNormalPosition.right, in.rcNormalPosition.bottom);
        return Finish(WriteEntry(text));
    }
    m_result.wp = m_input.wp;
    DWORD status = kStatusSuccess;
    if (ReadEntry(text, kPlacementReadSize) == 0) {
        status = kStatusDefaultUsed;
    } else {
        WINDOWPLACEMENT& out = m_result.wp;
        UINT* words[] = {&out.flags, &out.showCmd};
        LONG* longs[] = {&out.ptMinPosition.x,        &out.ptMinPosition.y,
                         &out.ptMaxPosition.x,        &out.ptMaxPosition.y,
                         &out.rcNormalPosition.left,  &out.rcNormalPosition.top,
                         &out.rcNormalPosition.right, &out.rcNormalPosition.bottom};
        ReadFields(text, 10, [&](int i, std::string_view field) {
            if (i < 2) {
                *words[i] = static_cast<UINT>(ParseDecimal(field));
            } else {
                *longs[i - 2] = ParseDecimal(field);
            }
        });
    }
    *pResult = m_result.wp;
    return Finish(status);
}

DWORD CZqIniFile::DoTokenString(const char* lpszKey, BOOL bRead, const char* lpszDefault,
                                CStringArray* pArray, const char* lpszDelimiters) {
    if (DWORD status = CheckKey(lpszKey)) {
        return status;
    }
    if (lpszDefault == nullptr || (bRead && (pArray == nullptr || lpszDelimiters == nullptr))) {
        return kStatusMissingPointer;
    }
    const size_t defaultLength = BoundedLength(lpszDefault, kMaxValue);
    if (defaultLength > static_cast<size_t>(kMaxValue)) {
        return kStatusTooLong;
    }
    Begin(lpszKey, kKindString);
    CopyName(m_input.sz, lpszDefault, defaultLength);
    if (m_szFileName[0] == '\0') {
        return Finish(kStatusNoFileName);
    }
    if (!bRead) {
        return Finish(WriteEntry(m_input.sz));
    }
    DWORD status = kStatusSuccess;
    if (ReadEntry(m_result.sz, kValueBufferSize) == 0) {
        std::memcpy(m_result.sz, m_input.sz, defaultLength + 1);
        status = kStatusDefaultUsed;
    }
    if (DWORD fill = FillFromFields(pArray, m_result.sz, lpszDelimiters)) {
        status = fill;
    }
    return Finish(status);
}

DWORD CZqIniFile::FillFromFields(CStringArray* pArray, const char* text, const char* delimiters) {
    pArray->RemoveAll();
    try {
        FieldSplitter fields(text, delimiters, /*multibyte=*/true);
        std::string_view field;
        while (fields.Next(field)) {
            pArray->Add(CString(field.data(), static_cast<int>(field.size())));
        }
    } catch (const std::bad_alloc&) {
        pArray->RemoveAll();
        return kStatusOutOfMemory;
    } catch (CMemoryException* e) {
        e->Delete();
        pArray->RemoveAll();
        return kStatusOutOfMemory;
    }
    return kStatusSuccess;
}

// ---- Lists --------------------------------------------------------------

DWORD CZqIniFile::FillFromList(CStringArray* pArray, DWORD nLength) {
    DWORD status = kStatusSuccess;
    if (std::strlen(m_result.sz) == kFullListNameLength) {
        status = kStatusBufferTooSmall;  // the test for a full list, kept as it stands
    }
    pArray->RemoveAll();
    try {
        const char* end = m_result.sz + nLength;
        for (const char* name = m_result.sz; name < end && *name != '\0';) {
            const size_t length = BoundedLength(name, static_cast<size_t>(end - name));
            pArray->Add(CString(name, static_cast<int>(length)));
            name += length + 1;
        }
    } catch (const std::bad_alloc&) {
        pArray->RemoveAll();
        status = kStatusOutOfMemory;
    } catch (CMemoryException* e) {
        e->Delete();
        pArray->RemoveAll();
        status = kStatusOutOfMemory;
    }
    return status;
}

DWORD CZqIniFile::EnumerateSections(CStringArray* pArray) {
    if (pArray == nullptr) {
        return kStatusMissingPointer;
    }
    m_szSection[0] = '\0';  // later entry operations work on "" until SetSection
    m_szKey[0] = '\0';
    m_wKind = kKindString;
    m_input.sz[0] = '\0';
    const DWORD length =
        GetPrivateProfileStringA(nullptr, nullptr, "", m_result.sz, kValueBufferSize, m_szFileName);
    if (length == 0) {
        return Finish(kStatusDefaultUsed);
    }
    return Finish(FillFromList(pArray, length));
}

DWORD CZqIniFile::EnumerateKeys(CStringArray* pArray) {
    if (pArray == nullptr) {
        return kStatusMissingPointer;
    }
    m_szKey[0] = '\0';
    m_wKind = kKindString;
    m_input.sz[0] = '\0';
    const DWORD length = GetPrivateProfileStringA(m_szSection, nullptr, "", m_result.sz,
                                                  kValueBufferSize, m_szFileName);
    if (length == 0) {
        return Finish(kStatusDefaultUsed);
    }
    return Finish(FillFromList(pArray, length));
}

// ---- Single entries and sections ---------------------------------------

int CZqIniFile::DoesEntryExist(const char* lpszKey) {
    if (lpszKey == nullptr || BoundedLength(lpszKey, kMaxKey) > static_cast<size_t>(kMaxKey) ||
        m_szFileName[0] == '\0') {
        return 0;
    }
    char probe[kProbeReadSize];
    // An entry present with an empty value counts as absent.
    return GetPrivateProfileStringA(m_szSection, lpszKey, "", probe, sizeof probe, m_szFileName) > 0
               ? 1
               : 0;
}

int CZqIniFile::DeleteEntry(const char* lpszKey) {
    if (lpszKey != nullptr && lpszKey[0] != '\0' && m_szSection[0] != '\0' &&
        m_szFileName[0] != '\0') {
        WritePrivateProfileStringA(m_szSection, lpszKey, nullptr, m_szFileName);
    }
    return 1;
}

int CZqIniFile::DeleteSection(const char* lpszSection) {
    if (lpszSection != nullptr && lpszSection[0] != '\0' && m_szFileName[0] != '\0') {
        WritePrivateProfileStringA(lpszSection, nullptr, nullptr, m_szFileName);
    }
    return 1;
}

void CZqIniFile::FlushCache() {
    if (m_szFileName[0] != '\0') {
        WritePrivateProfileStringA(nullptr, nullptr, nullptr, m_szFileName);
    }
}

// ---- Names --------------------------------------------------------------

DWORD CZqIniFile::GetFileName(char* lpszBuffer, int nSize) {
    return GetStoredName(m_szFileName, kMaxFileName, lpszBuffer, nSize);
}

DWORD CZqIniFile::SetFileName(const char* lpszFileName) {
    return SetStoredName(m_szFileName, kMaxFileName, lpszFileName, kStatusNoFileNameGiven);
}

DWORD CZqIniFile::GetSection(char* lpszBuffer, int nSize) {
    return GetStoredName(m_szSection, kMaxSection, lpszBuffer, nSize);
}

DWORD CZqIniFile::SetSection(const char* lpszSection) {
    return SetStoredName(m_szSection, kMaxSection, lpszSection, kStatusNoSectionGiven);
}
