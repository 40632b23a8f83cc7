#include "toolsmenu/tlm_item.h"

#include <algorithm>
#include <bit>
#include <cstring>

#include "frame/process_data.h"
#include "framework/core/exceptions.h"
#include "framework/files/cfile.h"

static_assert(std::endian::native == std::endian::little,
              "records are read and written as they are in memory");

IMPLEMENT_DYNCREATE(CTlmItem, CObject)

namespace zq::toolsmenu {

DWORD CopyToField(char* field, size_t fieldSize, LPCSTR text) {
    if (text == nullptr) {
        return TLM_OK;
    }
    size_t length = strnlen(text, fieldSize);
    size_t kept = std::min(length, fieldSize - 2);
    std::memset(field, 0, fieldSize);
    std::memcpy(field, text, kept);
    // Only a text of field size or more counts as too long, although one
    // character less is shortened as well.
    return length >= fieldSize ? TLM_ERROR_TOO_LONG : TLM_OK;
}

CString FieldText(const char* field, size_t fieldSize) {
    return CString(field, static_cast<int>(strnlen(field, fieldSize)));
}

CString LanguageString(UINT nID) {
    ZqGblProcessData* block = ZqGblGetProcessData();
    HINSTANCE language = block != nullptr ? block->m_hLanguageModule : nullptr;
    char buffer[512];
    if (language != nullptr && LoadStringA(language, nID, buffer, sizeof buffer) > 0) {
        return CString(buffer);
    }
    CString text;
    text.LoadString(nID);  // the modules the framework searches
    return text;
}

}  // namespace zq::toolsmenu

using zq::toolsmenu::CopyToField;
using zq::toolsmenu::FieldText;

namespace {

constexpr UINT kDefaultMenuTextId = 16437;
constexpr int kMaxArguments = 263;
constexpr int kMaxCommandProgram = 262;

// A file exception's cause as a status (1 when it names none).
DWORD StatusOf(CFileException* e) {
    DWORD cause = e->m_cause != 0 ? static_cast<DWORD>(e->m_cause) : 1u;
    e->Delete();
    return cause;
}

}  // namespace

CTlmItem::CTlmItem()
    : m_dwExpectedSize(TLMITEM_RECORD_SIZE), m_dwExpectedVersion(TLMITEM_VERSION), m_nCommand(0) {
    DefaultItemData();
}

CTlmItem::~CTlmItem() = default;

void CTlmItem::DefaultItemData() {
    std::memset(&m_data, 0, sizeof m_data);
    m_data.dwSize = TLMITEM_RECORD_SIZE;
    m_data.dwFlags = TLMITEM_FLAG_SHOWN;
    m_data.dwCreationFlags = CREATE_DEFAULT_ERROR_MODE | NORMAL_PRIORITY_CLASS;
    m_data.dwStartupFlags = STARTF_USESHOWWINDOW;
    m_data.dwX = 16;
    m_data.dwY = 16;
    m_data.dwXSize = static_cast<DWORD>(GetSystemMetrics(SM_CXSCREEN) / 2);
    m_data.dwYSize = static_cast<DWORD>(GetSystemMetrics(SM_CYSCREEN) / 2);
    m_data.dwXCountChars = 80;
    m_data.dwYCountChars = 25;
    m_data.dwFillAttribute = 15;  // bright white on black
    m_data.dwShowWindow = SW_SHOWDEFAULT;
    SetDataMenuText(zq::toolsmenu::LanguageString(kDefaultMenuTextId));
}

CString CTlmItem::GetDataMenuText() const {
    return FieldText(m_data.szMenuText, sizeof m_data.szMenuText);
}
DWORD CTlmItem::SetDataMenuText(LPCSTR lpszText) {
    return CopyToField(m_data.szMenuText, sizeof m_data.szMenuText, lpszText);
}
CString CTlmItem::GetDataDescription() const {
    return FieldText(m_data.szDescription, sizeof m_data.szDescription);
}
DWORD CTlmItem::SetDataDescription(LPCSTR lpszText) {
    return CopyToField(m_data.szDescription, sizeof m_data.szDescription, lpszText);
}
CString CTlmItem::GetDataProgramPath() const {
    return FieldText(m_data.szProgramPath, sizeof m_data.szProgramPath);
}
DWORD CTlmItem::SetDataProgramPath(LPCSTR lpszText) {
    return CopyToField(m_data.szProgramPath, sizeof m_data.szProgramPath, lpszText);
}
CString CTlmItem::GetDataWorkingDirectory() const {
    return FieldText(m_data.szWorkingDirectory, sizeof m_data.szWorkingDirectory);
}
DWORD CTlmItem::SetDataWorkingDirectory(LPCSTR lpszText) {
    return CopyToField(m_data.szWorkingDirectory, sizeof m_data.szWorkingDirectory, lpszText);
}
CString CTlmItem::GetDataArguments() const {
    return FieldText(m_data.szArguments, sizeof m_data.szArguments);
}
DWORD CTlmItem::SetDataArguments(LPCSTR lpszText) {
    return CopyToField(m_data.szArguments, sizeof m_data.szArguments, lpszText);
}

DWORD CTlmItem::LoadItemData(CFile* pFile, DWORD dwVersion, DWORD dwSize) {
    if (dwVersion != m_dwExpectedVersion || dwSize != m_dwExpectedSize || pFile == nullptr) {
        return TLM_ERROR_VERSION;
    }
    try {
        TLMITEMDATA data;
        if (pFile->Read(&data, sizeof data) != sizeof data) {
            return TLM_ERROR_VERSION;  // less than a whole record
        }
        m_data = data;
    } catch (CFileException* e) {
        return StatusOf(e);
    }
    return TLM_OK;
}

DWORD CTlmItem::SaveItemData(CFile* pFile, DWORD dwVersion, DWORD dwSize) {
    if (dwVersion != m_dwExpectedVersion || dwSize != m_dwExpectedSize || pFile == nullptr) {
        return TLM_ERROR_VERSION;
    }
    m_data.dwSize = TLMITEM_RECORD_SIZE;
    try {
        pFile->Write(&m_data, sizeof m_data);
    } catch (CFileException* e) {
        return StatusOf(e);
    }
    return TLM_OK;
}

DWORD CTlmItem::PromptForArgument(CWnd* /*pParent*/, CString& /*rArguments*/) {
    // The prompt is a dialog of the shared user-interface controls, which do
    // not exist yet: it cannot be made.
    return TLM_ERROR_PROMPT_FAILED;
}

DWORD CTlmItem::ActivateItem(CWnd* pParent) {
    CString program = GetDataProgramPath();
    if (program.IsEmpty()) {
        return TLM_ERROR_NO_PROGRAM;
    }
    CString arguments = GetDataArguments().Left(kMaxArguments);
    if (m_data.dwFlags & TLMITEM_FLAG_PROMPT) {
        CString typed = arguments;
        DWORD prompt = PromptForArgument(pParent, typed);
        if (prompt == TLM_ERROR_PROMPT_FAILED) {
            return TLM_ERROR_PROMPT_FAILED;
        }
        if (prompt != TLM_OK) {
            return TLM_ERROR_PROMPT_CANCELLED;  // nothing is started
        }
        arguments = typed.Left(kMaxArguments);
        if (m_data.dwFlags & TLMITEM_FLAG_KEEP_ARGUMENTS) {
            SetDataArguments(arguments);
        }
    }

    STARTUPINFOA startup;
    std::memset(&startup, 0, sizeof startup);
    startup.cb = sizeof startup;
    startup.dwX = m_data.dwX;
    startup.dwY = m_data.dwY;
    startup.dwXSize = m_data.dwXSize;
    startup.dwYSize = m_data.dwYSize;
    startup.dwXCountChars = m_data.dwXCountChars;
    startup.dwYCountChars = m_data.dwYCountChars;
    startup.dwFillAttribute = m_data.dwFillAttribute;
    startup.dwFlags = m_data.dwStartupFlags;
    startup.wShowWindow = (m_data.dwFlags & TLMITEM_FLAG_MINIMIZED)
                              ? static_cast<WORD>(SW_SHOWMINIMIZED)
                              : static_cast<WORD>(m_data.dwShowWindow);

    // The program path is not quoted: CreateProcessA takes the application
    // name as given and recognises it at the start of the command line.
    CString commandLine = program.Left(kMaxCommandProgram) + ' ' + arguments;
    CString directory = GetDataWorkingDirectory();
    PROCESS_INFORMATION info;
    std::memset(&info, 0, sizeof info);
    // The working folder is passed also when empty.
    if (!CreateProcessA(program, commandLine.GetBuffer(commandLine.GetLength()), nullptr, nullptr,
                        FALSE, m_data.dwCreationFlags, nullptr, directory, &startup, &info)) {
        return TLM_ERROR_NOT_STARTED;
    }
    // The started program is not watched.
    CloseHandle(info.hThread);
    CloseHandle(info.hProcess);
    return TLM_OK;
}
