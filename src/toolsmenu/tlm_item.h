// CTlmItem: one entry of the user-defined Tools menu.
//
// An entry is a fixed 1536-byte record, stored as it is in the tools-menu
// file: the menu text, a status-bar description, the program with its
// arguments and working folder, and the settings the process is created
// with. Besides the record an item knows its run-time menu command
// identifier, which is not stored.
//
// Record layout (little-endian 32-bit integers, NUL-terminated single-byte
// texts in fixed fields):
//   0 record size (1536)       4 flags (TLMITEM_FLAG_...)    8 icon
//   12 reserved                16 process creation flags    20 start-up flags
//   24 x   28 y   32 width   36 height   40 console columns   44 console rows
//   48 console colours         52 show command
//   56 menu text [32]   88 description [128]   216 program path [264]
//   480 working folder [264]   744 arguments [264]   1008 unused [528]
//
// Texts read from a file may fill their field without a terminator; the
// getters never read past a field.
#pragma once

#include "framework/core/cstring.h"
#include "framework/core/object.h"
#include "platform/win32.h"

class CFile;
class CWnd;

#define TLMITEM_RECORD_SIZE 1536u
#define TLMITEM_VERSION 0x00010000u

// Flag bits.
#define TLMITEM_FLAG_PROMPT 0x1u          // ask for the arguments before each start
#define TLMITEM_FLAG_MINIMIZED 0x2u       // start minimised (show command 2)
#define TLMITEM_FLAG_SHOWN 0x4u           // shown in the Tools menu
#define TLMITEM_FLAG_KEEP_ARGUMENTS 0x8u  // prompted arguments replace the stored ones

// Statuses of the tools-menu classes.
#define TLM_OK 0u
#define TLM_ERROR_PROMPT_FAILED 1u
#define TLM_ERROR_PROMPT_CANCELLED 2u
#define TLM_ERROR_VERSION 3u
#define TLM_ERROR_NO_PATH 4u
#define TLM_ERROR_OPEN 5u
#define TLM_ERROR_TOO_LONG 8u
#define TLM_ERROR_NO_MENU 9u
#define TLM_ERROR_NO_ANCHOR 10u
#define TLM_ERROR_NO_MEMORY 11u
#define TLM_ERROR_NOT_STARTED 14u
#define TLM_ERROR_NO_PROGRAM 15u
#define TLM_ERROR_FILE_SHORT 16u
#define TLM_ERROR_HEADER_SIZE 18u
#define TLM_ERROR_MAGIC 19u
#define TLM_ERROR_FILE_VERSION 20u

// The record image, exactly as in the file.
struct TLMITEMDATA {
    DWORD dwSize;
    DWORD dwFlags;
    DWORD dwIcon;
    DWORD dwReserved;
    DWORD dwCreationFlags;
    DWORD dwStartupFlags;
    DWORD dwX;
    DWORD dwY;
    DWORD dwXSize;
    DWORD dwYSize;
    DWORD dwXCountChars;
    DWORD dwYCountChars;
    DWORD dwFillAttribute;
    DWORD dwShowWindow;
    char szMenuText[32];
    char szDescription[128];
    char szProgramPath[264];
    char szWorkingDirectory[264];
    char szArguments[264];
    BYTE byUnused[528];
};
static_assert(sizeof(TLMITEMDATA) == TLMITEM_RECORD_SIZE, "the record is stored as it is");

class CTlmItem : public CObject {
    DECLARE_DYNCREATE(CTlmItem)
public:
    // An item with the default record (DefaultItemData) and command 0.
    CTlmItem();
    ~CTlmItem() override;

    // Starts the program: the command line is the program path, one blank
    // and the stored arguments (with flag 1 those typed at the prompt, which
    // flag 8 also stores); the process gets the record's creation flags,
    // start-up settings (show command 2 with flag 2) and working folder, and
    // is not watched. 0 started, 15 no program, 1 the argument prompt could
    // not be made, 2 it was cancelled, 14 the process could not be created.
    virtual DWORD ActivateItem(CWnd* pParent);
    // Reads exactly one record from the open file. 3 unless dwVersion and
    // dwSize are the item's expected values (0x00010000, 1536) or when the
    // file holds less than a record; a file exception gives its cause.
    virtual DWORD LoadItemData(CFile* pFile, DWORD dwVersion, DWORD dwSize);
    // Sets the record-size field to 1536 and writes the record. 3 unless
    // the arguments are the expected values; a file exception gives its
    // cause.
    virtual DWORD SaveItemData(CFile* pFile, DWORD dwVersion, DWORD dwSize);

    // Zeroes the record and sets every default: flags 4, creation flags
    // 0x04000020, start-up flags 1, position 16/16, half the screen's width
    // and height, 80 x 25 console, colours 15, show command 10, and the
    // language module's default menu text (string 16437).
    void DefaultItemData();

    // Asks for the arguments: 0 accepted (rArguments holds them), 1 the
    // prompt could not be made, 2 cancelled. Until the dialog exists: 1.
    DWORD PromptForArgument(CWnd* pParent, CString& rArguments);

    DWORD GetDataFlags() const { return m_data.dwFlags; }
    void SetDataFlags(DWORD dwFlags) { m_data.dwFlags = dwFlags; }
    DWORD GetDataIcon() const { return m_data.dwIcon; }
    void SetDataIcon(DWORD dwIcon) { m_data.dwIcon = dwIcon; }

    // String setters: null changes nothing and returns 0; otherwise at most
    // field size - 2 characters are kept (the rest of the field is zeroed)
    // and 8 is returned when the text had field size characters or more,
    // else 0. A text of exactly field size - 1 characters therefore loses
    // its last character and still reports 0: kept as it always was.
    CString GetDataMenuText() const;
    DWORD SetDataMenuText(LPCSTR lpszText);
    CString GetDataDescription() const;
    DWORD SetDataDescription(LPCSTR lpszText);
    CString GetDataProgramPath() const;
    DWORD SetDataProgramPath(LPCSTR lpszText);
    CString GetDataWorkingDirectory() const;
    DWORD SetDataWorkingDirectory(LPCSTR lpszText);
    CString GetDataArguments() const;
    DWORD SetDataArguments(LPCSTR lpszText);

    // The whole record, for the property sheet and for copies.
    const TLMITEMDATA& GetItemData() const { return m_data; }
    void SetItemData(const TLMITEMDATA& data) { m_data = data; }

    // The run-time menu command identifier (not stored in the file).
    UINT GetCommand() const { return m_nCommand; }
    void SetCommand(UINT nCommand) { m_nCommand = nCommand; }

protected:
    DWORD m_dwExpectedSize;
    DWORD m_dwExpectedVersion;
    UINT m_nCommand;
    TLMITEMDATA m_data;
};

namespace zq::toolsmenu {

// Copies text into a fixed field by the setters' rule (see above).
DWORD CopyToField(char* field, size_t fieldSize, LPCSTR text);
// The text of a fixed field, ending at its NUL or at the field's end.
CString FieldText(const char* field, size_t fieldSize);
// A text of the language module's string table (empty when missing).
CString LanguageString(UINT nID);

}  // namespace zq::toolsmenu
