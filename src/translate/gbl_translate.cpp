#include "translate/gbl_translate.h"

#include <algorithm>
#include <cstring>

#include "frame/process_data.h"
#include "framework/core/exceptions.h"
#include "framework/files/cfile.h"

namespace {

constexpr UINT kDefaultDescriptionId = 16457;
constexpr size_t kTableSize = 256;
constexpr size_t kTrailerOffset = 2 * kTableSize;

constexpr DWORD kFlagGet = 1;
constexpr DWORD kFlagPut = 2;
constexpr DWORD kFlagGetDBCS = 4;
constexpr DWORD kFlagPutDBCS = 8;

// Trailer offsets, from the start of the trailer.
constexpr size_t kTrailerSizeField = 0;
constexpr size_t kMagicField = 4;
constexpr size_t kVersionField = 8;
constexpr size_t kFlagsField = 12;
constexpr size_t kLastInputField = 16;
constexpr size_t kLastOutputField = 20;
constexpr size_t kLastModeIField = 24;
constexpr size_t kLastModeOField = 28;
constexpr size_t kDescriptionField = 32;

DWORD GetDword(const BYTE* p) {
    return static_cast<DWORD>(p[0]) | static_cast<DWORD>(p[1]) << 8 |
           static_cast<DWORD>(p[2]) << 16 | static_cast<DWORD>(p[3]) << 24;
}

void PutDword(BYTE* p, DWORD value) {
    p[0] = static_cast<BYTE>(value);
    p[1] = static_cast<BYTE>(value >> 8);
    p[2] = static_cast<BYTE>(value >> 16);
    p[3] = static_cast<BYTE>(value >> 24);
}

// The default description from the language module's string table, or
// from the modules the framework searches when no language module is
// loaded; empty when neither has it.
CString DefaultDescription() {
    CString text;
    ZqGblProcessData* block = ZqGblGetProcessData();
    HINSTANCE language = block != nullptr ? block->m_hLanguageModule : nullptr;
    char buffer[256];
    if (language != nullptr &&
        LoadStringA(language, kDefaultDescriptionId, buffer, sizeof buffer) > 0) {
        text = buffer;
    } else {
        text.LoadString(kDefaultDescriptionId);
    }
    return text;
}

void IdentityTable(BYTE* table) {
    for (size_t i = 0; i < kTableSize; ++i) {
        table[i] = static_cast<BYTE>(i);
    }
}

// Reads exactly `size` bytes; false when the file came up short.
bool ReadExactly(CFile& file, void* buffer, UINT size) {
    return file.Read(buffer, size) == size;
}

}  // namespace

CGblTranslate::CGblTranslate()
    : m_bGetEnabled(0),
      m_bPutEnabled(0),
      m_bGetDBCS(0),
      m_bPutDBCS(0),
      m_dwLastInput(0),
      m_dwLastOutput(0),
      m_dwLastModeI(0),
      m_dwLastModeO(0),
      m_csDescription(DefaultDescription()) {
    IdentityTable(m_byInput);
    IdentityTable(m_byOutput);
}

CGblTranslate::~CGblTranslate() = default;

void CGblTranslate::CopyData(const CGblTranslate* pSource) {
    if (pSource == nullptr || pSource == this) {
        return;
    }
    m_bGetEnabled = pSource->m_bGetEnabled;
    m_bPutEnabled = pSource->m_bPutEnabled;
    m_bGetDBCS = pSource->m_bGetDBCS;
    m_bPutDBCS = pSource->m_bPutDBCS;
    m_dwLastInput = pSource->m_dwLastInput;
    m_dwLastOutput = pSource->m_dwLastOutput;
    m_dwLastModeI = pSource->m_dwLastModeI;
    m_dwLastModeO = pSource->m_dwLastModeO;
    m_csFilePath = pSource->m_csFilePath;
    m_csDescription = pSource->m_csDescription;
    std::memcpy(m_byInput, pSource->m_byInput, sizeof m_byInput);
    std::memcpy(m_byOutput, pSource->m_byOutput, sizeof m_byOutput);
}

void CGblTranslate::ResetGetTable() {
    IdentityTable(m_byInput);
}

void CGblTranslate::ResetPutTable() {
    IdentityTable(m_byOutput);
}

void CGblTranslate::SetDescription(LPCSTR lpszDescription) {
    if (lpszDescription != nullptr) {
        m_csDescription = lpszDescription;
    }
}

DWORD CGblTranslate::IsValidFile(LPCSTR lpszPath) {
    if (lpszPath == nullptr || lpszPath[0] == '\0') {
        return GBLXLT_ERROR_NO_PATH;
    }
    CFile file;
    if (!file.Open(lpszPath, CFile::modeRead | CFile::shareDenyNone)) {
        return GBLXLT_ERROR_OPEN;
    }
    try {
        if (file.GetLength() != GBLXLT_FILE_SIZE) {
            return GBLXLT_ERROR_FILE_SIZE;
        }
        BYTE trailer[GBLXLT_TRAILER_SIZE];
        file.Seek(static_cast<LONG>(kTrailerOffset), CFile::begin);
        if (!ReadExactly(file, trailer, sizeof trailer)) {
            return GBLXLT_ERROR_FILE_SIZE;
        }
        if (GetDword(trailer + kTrailerSizeField) < GBLXLT_TRAILER_SIZE) {
            return GBLXLT_ERROR_TRAILER_SIZE;
        }
        if (GetDword(trailer + kMagicField) != GBLXLT_MAGIC) {
            return GBLXLT_ERROR_MAGIC;
        }
        if (GetDword(trailer + kVersionField) > GBLXLT_VERSION) {
            return GBLXLT_ERROR_VERSION;
        }
    } catch (CFileException* e) {
        e->Delete();
        return GBLXLT_ERROR_OPEN;
    }
    return GBLXLT_OK;
}

DWORD CGblTranslate::Load(LPCSTR lpszPath) {
    CString path = lpszPath != nullptr ? CString(lpszPath) : m_csFilePath;
    if (path.IsEmpty()) {
        return GBLXLT_ERROR_NO_PATH;
    }
    if (DWORD status = IsValidFile(path)) {
        return status;
    }
    CFile file;
    if (!file.Open(path, CFile::modeRead | CFile::shareDenyNone)) {
        return GBLXLT_ERROR_OPEN;
    }
    BYTE trailer[GBLXLT_TRAILER_SIZE];
    try {
        // Straight into the tables: a read that fails half-way leaves what
        // it read.
        if (!ReadExactly(file, m_byInput, sizeof m_byInput) ||
            !ReadExactly(file, m_byOutput, sizeof m_byOutput) ||
            !ReadExactly(file, trailer, sizeof trailer)) {
            return GBLXLT_ERROR_FILE_SIZE;
        }
    } catch (CFileException* e) {
        e->Delete();
        return GBLXLT_ERROR_OPEN;
    }
    DWORD flags = GetDword(trailer + kFlagsField);
    m_bGetEnabled = (flags & kFlagGet) ? 1 : 0;
    m_bPutEnabled = (flags & kFlagPut) ? 1 : 0;
    m_bGetDBCS = (flags & kFlagGetDBCS) ? 1 : 0;
    m_bPutDBCS = (flags & kFlagPutDBCS) ? 1 : 0;
    m_dwLastInput = GetDword(trailer + kLastInputField);
    m_dwLastOutput = GetDword(trailer + kLastOutputField);
    m_dwLastModeI = GetDword(trailer + kLastModeIField);
    m_dwLastModeO = GetDword(trailer + kLastModeOField);
    // The field's last byte counts as NUL, so the text ends inside the field.
    const char* text = reinterpret_cast<const char*>(trailer + kDescriptionField);
    m_csDescription = CString(text, static_cast<int>(strnlen(text, GBLXLT_DESCRIPTION_SIZE - 1)));
    if (m_csDescription.IsEmpty()) {
        m_csDescription = DefaultDescription();
    }
    m_csFilePath = path;
    return GBLXLT_OK;
}

DWORD CGblTranslate::Save(LPCSTR lpszPath) {
    CString path = lpszPath != nullptr ? CString(lpszPath) : m_csFilePath;
    if (path.IsEmpty()) {
        return GBLXLT_ERROR_NO_PATH;
    }
    CFile file;
    if (!file.Open(path, CFile::modeCreate | CFile::modeWrite | CFile::shareDenyNone)) {
        return GBLXLT_ERROR_OPEN;
    }
    if (m_csDescription.IsEmpty()) {
        m_csDescription = DefaultDescription();
    }
    BYTE trailer[GBLXLT_TRAILER_SIZE] = {};
    PutDword(trailer + kTrailerSizeField, GBLXLT_TRAILER_SIZE);
    PutDword(trailer + kMagicField, GBLXLT_MAGIC);
    PutDword(trailer + kVersionField, GBLXLT_VERSION);
    PutDword(trailer + kFlagsField,
             (m_bGetEnabled ? kFlagGet : 0) | (m_bPutEnabled ? kFlagPut : 0) |
                 (m_bGetDBCS ? kFlagGetDBCS : 0) | (m_bPutDBCS ? kFlagPutDBCS : 0));
    PutDword(trailer + kLastInputField, m_dwLastInput);
    PutDword(trailer + kLastOutputField, m_dwLastOutput);
    PutDword(trailer + kLastModeIField, m_dwLastModeI);
    PutDword(trailer + kLastModeOField, m_dwLastModeO);
    size_t length = std::min<size_t>(static_cast<size_t>(m_csDescription.GetLength()),
                                     GBLXLT_DESCRIPTION_SIZE - 1);
    std::memcpy(trailer + kDescriptionField, static_cast<LPCSTR>(m_csDescription), length);
    DWORD status = GBLXLT_OK;
    try {
        file.Write(m_byInput, sizeof m_byInput);
        file.Write(m_byOutput, sizeof m_byOutput);
        file.Write(trailer, sizeof trailer);
        if (file.GetLength() != GBLXLT_FILE_SIZE) {
            status = GBLXLT_ERROR_WRITE;  // the file is left as written
        }
    } catch (CFileException* e) {
        e->Delete();
        status = GBLXLT_ERROR_WRITE;
    }
    m_csFilePath = path;
    return status;
}

DWORD CGblTranslate::Load(CWnd* /*pParent*/, LPCSTR /*lpszInitialPath*/) {
    return GBLXLT_ERROR_NO_UI;  // the file dialog comes with the user-interface controls
}

DWORD CGblTranslate::Edit(CWnd* /*pParent*/) {
    return GBLXLT_ERROR_NO_UI;  // the editing sheet comes with the user-interface controls
}
