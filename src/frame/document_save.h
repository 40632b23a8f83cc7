// The document save and file-name prompt of the suite's document
// applications, and the file dialog that chooses a program file.
//
// The dialogs belong to the user-interface work that is still to come:
// until then ZqDoPromptFileName and CExeFileDialog::DoModal report that the
// user cancelled, and ZqDoSave therefore saves nothing and returns FALSE.
// The choice of the proposed name is in place (ZqMakeSaveFileName).
#pragma once

#include "framework/core/cstring.h"
#include "platform/win32.h"

class CDocument;
class CDocTemplate;
class CWnd;

#ifndef IDOK
#define IDOK 1
#endif
#ifndef IDCANCEL
#define IDCANCEL 2
#endif

// Saves pDocument under lpszPathName; with no name, under the name the user
// confirms in the file dialog (proposed by ZqMakeSaveFileName). TRUE when
// the document was saved.
BOOL ZqDoSave(CDocument* pDocument, LPCTSTR lpszPathName, BOOL bReplace = TRUE);

// Lets the user confirm or change csFileName in a file dialog titled by
// string nIDSTitle, filtered by the document templates. TRUE when the user
// confirmed (csFileName then holds the choice).
BOOL ZqDoPromptFileName(CString& csFileName, UINT nIDSTitle, DWORD lFlags, BOOL bOpenFileDialog,
                        CDocTemplate* pTemplate);

// The name ZqDoSave proposes: lpszPathName when given; else the document's
// path; else its title cut to its first 8 characters, cut again before the
// first of " #%;/\", with the template's default extension (".xyz")
// appended.
CString ZqMakeSaveFileName(LPCTSTR lpszPathName, LPCTSTR lpszDocumentPath, LPCTSTR lpszTitle,
                           LPCTSTR lpszDefaultExtension);

// The characters the file dialogs refuse in a typed name.
constexpr char kZqInvalidFileNameChars[] = " #%;/\\*?";

// A file-open (or save) dialog for choosing a program file.
class CExeFileDialog {
public:
    CExeFileDialog(BOOL bOpenFileDialog, LPCTSTR lpszFileName = nullptr,
                   CWnd* pParentWnd = nullptr);
    virtual ~CExeFileDialog() = default;

    // IDOK when the user chose a program, IDCANCEL otherwise (always, until
    // the dialog exists).
    virtual INT_PTR DoModal();
    CString GetPathName() const { return m_csPathName; }

    // The check applied when the user confirms a name: TRUE when it names an
    // existing file (not a folder) whose extension is .exe, .com, .bat,
    // .cmd or .pif, or that has no extension (a Unix program), and contains
    // none of the wildcard characters.
    static BOOL IsProgramFileName(LPCTSTR lpszPathName);

protected:
    // As the framework's file dialog asks it: FALSE accepts the name, TRUE
    // keeps the dialog open.
    virtual BOOL OnFileNameOK();

    BOOL m_bOpenFileDialog;
    CString m_csPathName;
    CWnd* m_pParentWnd;
};
