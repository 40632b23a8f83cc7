// CTlmFile: the tools-menu file, a 144-byte header followed by any number
// of 1536-byte item records (CTlmItem).
//
// Header (little-endian): 0 header size (144), 4 magic (0x19950527),
// 8 version (0x00010000), 12 reserved (written 0, not read), 16 description
// [128], NUL-terminated.
//
// A file exception inside a load or a save is caught and its cause
// (CFileException::m_cause, 1 when it names none) becomes the status.
#pragma once

#include "framework/core/arrays.h"
#include "framework/core/cstring.h"
#include "framework/core/object.h"
#include "platform/win32.h"
#include "toolsmenu/tlm_item.h"

class CWnd;

#define TLMFILE_HEADER_SIZE 144u
#define TLMFILE_MAGIC 0x19950527u
#define TLMFILE_VERSION 0x00010000u

// LoadFileData filter bit: keep only shown items and number them.
#define TLMFILE_FILTER_SHOWN 0x1u
// The command identifier of the first shown item; the next ones count down.
#define TLMFILE_FIRST_COMMAND 24553u

struct TLMFILEHEADER {
    DWORD dwSize;
    DWORD dwMagic;
    DWORD dwVersion;
    DWORD dwReserved;
    char szDescription[128];
};
static_assert(sizeof(TLMFILEHEADER) == TLMFILE_HEADER_SIZE, "the header is stored as it is");

class CTlmFile : public CObject {
    DECLARE_DYNCREATE(CTlmFile)
public:
    CTlmFile();
    ~CTlmFile() override;

    // Appends the file's items to arItems (as new CTlmItem objects the
    // caller then owns). 3 unless dwVersion and dwHeaderSize are 0x00010000
    // and 144, or when the header's size, magic or version differ; 4 null
    // or empty path; 5 cannot be opened; 11 out of memory; an item's load
    // status otherwise. A trailing partial record is ignored. With
    // TLMFILE_FILTER_SHOWN in dwFilter, items not flagged shown are dropped
    // and the shown ones get the command identifiers 24553, 24552 ... in
    // file order. Items appended before a failure stay in the array. The
    // header read becomes this object's header.
    DWORD LoadFileData(LPCSTR lpszPath, DWORD dwVersion, DWORD dwHeaderSize, CObArray& arItems,
                       DWORD dwFilter);
    // Writes the header (with this object's description) and every non-null
    // item of the array in order, creating or truncating the file. 3 unless
    // the version and header size are the expected ones, 4 null or empty
    // path, 5 cannot be created, else the first failing item's status. A
    // half-written file is deleted when the status is 1, 2, 3 or above 5.
    DWORD SaveFileData(LPCSTR lpszPath, DWORD dwVersion, DWORD dwHeaderSize,
                       const CObArray& arItems);

    CString GetDescription() const;
    // The item setters' rule for the 128-byte field (8: text too long).
    DWORD SetDescription(LPCSTR lpszDescription);

    // 4 path null or empty, 5 cannot be opened for reading, 16 shorter than
    // 144 bytes, 18 header size not 144, 19 wrong magic, 20 wrong version,
    // else 0.
    static DWORD IsValidFile(LPCSTR lpszPath);

protected:
    DWORD m_dwExpectedHeaderSize;
    DWORD m_dwExpectedVersion;
    TLMFILEHEADER m_header;
};

// Shows the tools-menu file dialog and, on OK, copies the chosen path into
// lpszPath; returns the dialog's result: 1 OK, 2 cancel (also for a null
// buffer). bOpen chooses the open or the save form. Until the dialog exists
// it returns 2 and leaves the buffer untouched.
int ZqTlmSelectFile(LPSTR lpszPath, BOOL bOpen, CWnd* pParent, DWORD dwExtraFlags);
