#include "toolsmenu/tlm_file.h"

#include <cstring>
#include <memory>
#include <new>

#include "framework/core/exceptions.h"
#include "framework/files/cfile.h"

IMPLEMENT_DYNCREATE(CTlmFile, CObject)

namespace {

DWORD StatusOf(CFileException* e) {
    DWORD cause = e->m_cause != 0 ? static_cast<DWORD>(e->m_cause) : 1u;
    e->Delete();
    return cause;
}

bool IsEmptyPath(LPCSTR path) {
    return path == nullptr || path[0] == '\0';
}

}  // namespace

CTlmFile::CTlmFile()
    : m_dwExpectedHeaderSize(TLMFILE_HEADER_SIZE), m_dwExpectedVersion(TLMFILE_VERSION) {
    std::memset(&m_header, 0, sizeof m_header);
    m_header.dwSize = TLMFILE_HEADER_SIZE;
    m_header.dwMagic = TLMFILE_MAGIC;
    m_header.dwVersion = TLMFILE_VERSION;
}

CTlmFile::~CTlmFile() = default;

CString CTlmFile::GetDescription() const {
    return zq::toolsmenu::FieldText(m_header.szDescription, sizeof m_header.szDescription);
}

DWORD CTlmFile::SetDescription(LPCSTR lpszDescription) {
    return zq::toolsmenu::CopyToField(m_header.szDescription, sizeof m_header.szDescription,
                                      lpszDescription);
}

DWORD CTlmFile::IsValidFile(LPCSTR lpszPath) {
    if (IsEmptyPath(lpszPath)) {
        return TLM_ERROR_NO_PATH;
    }
    CFile file;
    if (!file.Open(lpszPath, CFile::modeRead | CFile::shareDenyNone)) {
        return TLM_ERROR_OPEN;
    }
    TLMFILEHEADER header;
    try {
        if (file.GetLength() < TLMFILE_HEADER_SIZE ||
            file.Read(&header, sizeof header) != sizeof header) {
            return TLM_ERROR_FILE_SHORT;
        }
    } catch (CFileException* e) {
        e->Delete();
        return TLM_ERROR_OPEN;
    }
    if (header.dwSize != TLMFILE_HEADER_SIZE) {
        return TLM_ERROR_HEADER_SIZE;
    }
    if (header.dwMagic != TLMFILE_MAGIC) {
        return TLM_ERROR_MAGIC;
    }
    if (header.dwVersion != TLMFILE_VERSION) {
        return TLM_ERROR_FILE_VERSION;
    }
    return TLM_OK;
}

DWORD CTlmFile::LoadFileData(LPCSTR lpszPath, DWORD dwVersion, DWORD dwHeaderSize,
                             CObArray& arItems, DWORD dwFilter) {
    if (dwVersion != m_dwExpectedVersion || dwHeaderSize != m_dwExpectedHeaderSize) {
        return TLM_ERROR_VERSION;
    }
    if (IsEmptyPath(lpszPath)) {
        return TLM_ERROR_NO_PATH;
    }
    CFile file;
    if (!file.Open(lpszPath, CFile::modeRead | CFile::shareDenyNone)) {
        return TLM_ERROR_OPEN;
    }
    DWORD status = TLM_OK;
    try {
        ULONGLONG length = file.GetLength();
        // A trailing partial record is ignored.
        ULONGLONG count = length >= TLMFILE_HEADER_SIZE
                              ? (length - TLMFILE_HEADER_SIZE) / TLMITEM_RECORD_SIZE
                              : 0;
        TLMFILEHEADER header;
        if (file.Read(&header, sizeof header) != sizeof header ||
            header.dwSize != TLMFILE_HEADER_SIZE || header.dwMagic != TLMFILE_MAGIC ||
            header.dwVersion != TLMFILE_VERSION) {
            return TLM_ERROR_VERSION;
        }
        m_header = header;
        UINT command = TLMFILE_FIRST_COMMAND;
        for (ULONGLONG i = 0; i < count; ++i) {
            std::unique_ptr<CTlmItem> item(new (std::nothrow) CTlmItem);
            if (item == nullptr) {
                return TLM_ERROR_NO_MEMORY;
            }
            status = item->LoadItemData(&file, TLMITEM_VERSION, TLMITEM_RECORD_SIZE);
            if (status != TLM_OK) {
                break;  // the item is deleted; those before it stay
            }
            if (dwFilter & TLMFILE_FILTER_SHOWN) {
                if (!(item->GetDataFlags() & TLMITEM_FLAG_SHOWN)) {
                    continue;
                }
                item->SetCommand(command--);
            }
            arItems.Add(item.release());
        }
    } catch (CFileException* e) {
        status = StatusOf(e);
    }
    return status;  // the file is closed by its destructor
}

DWORD CTlmFile::SaveFileData(LPCSTR lpszPath, DWORD dwVersion, DWORD dwHeaderSize,
                             const CObArray& arItems) {
    if (dwVersion != m_dwExpectedVersion || dwHeaderSize != m_dwExpectedHeaderSize) {
        return TLM_ERROR_VERSION;
    }
    if (IsEmptyPath(lpszPath)) {
        return TLM_ERROR_NO_PATH;
    }
    DWORD status = TLM_OK;
    {
        CFile file;
        if (!file.Open(lpszPath, CFile::modeCreate | CFile::modeWrite)) {
            return TLM_ERROR_OPEN;
        }
        m_header.dwSize = TLMFILE_HEADER_SIZE;
        m_header.dwMagic = TLMFILE_MAGIC;
        m_header.dwVersion = TLMFILE_VERSION;
        m_header.dwReserved = 0;
        try {
            file.Write(&m_header, sizeof m_header);
            for (int i = 0; i < arItems.GetSize() && status == TLM_OK; ++i) {
                CObject* object = arItems.GetAt(i);
                if (object == nullptr || !object->IsKindOf(RUNTIME_CLASS(CTlmItem))) {
                    continue;
                }
                status = static_cast<CTlmItem*>(object)->SaveItemData(&file, TLMITEM_VERSION,
                                                                      TLMITEM_RECORD_SIZE);
            }
            file.Close();
        } catch (CFileException* e) {
            status = StatusOf(e);
        }
    }
    // Statuses 4 and 5 say the file was never ours to write: it stays.
    if (status == 1 || status == 2 || status == 3 || status > 5) {
        ::DeleteFileA(lpszPath);
    }
    return status;
}

int ZqTlmSelectFile(LPSTR /*lpszPath*/, BOOL /*bOpen*/, CWnd* /*pParent*/, DWORD /*dwExtraFlags*/) {
    return 2;  // the file dialog comes with the user-interface controls
}
