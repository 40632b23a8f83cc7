#include "frame/document_save.h"

#include <cstring>
#include <string>

BOOL ZqDoSave(CDocument* /*pDocument*/, LPCTSTR /*lpszPathName*/, BOOL /*bReplace*/) {
    // Saving needs the document classes and the file dialog; until they
    // exist nothing is saved.
    return FALSE;
}

BOOL ZqDoPromptFileName(CString& /*csFileName*/, UINT /*nIDSTitle*/, DWORD /*lFlags*/,
                        BOOL /*bOpenFileDialog*/, CDocTemplate* /*pTemplate*/) {
    return FALSE;  // as if the user cancelled
}

CString ZqMakeSaveFileName(LPCTSTR lpszPathName, LPCTSTR lpszDocumentPath, LPCTSTR lpszTitle,
                           LPCTSTR lpszDefaultExtension) {
    if (lpszPathName && *lpszPathName) {
        return CString(lpszPathName);
    }
    if (lpszDocumentPath && *lpszDocumentPath) {
        return CString(lpszDocumentPath);
    }
    std::string name = lpszTitle ? lpszTitle : "";
    if (name.size() > 8) {
        name.resize(8);
    }
    if (size_t bad = name.find_first_of(" #%;/\\"); bad != std::string::npos) {
        name.resize(bad);
    }
    if (lpszDefaultExtension) {
        name += lpszDefaultExtension;
    }
    return CString(name.c_str());
}

CExeFileDialog::CExeFileDialog(BOOL bOpenFileDialog, LPCTSTR lpszFileName, CWnd* pParentWnd)
    : m_bOpenFileDialog(bOpenFileDialog), m_csPathName(lpszFileName), m_pParentWnd(pParentWnd) {}

INT_PTR CExeFileDialog::DoModal() {
    return IDCANCEL;
}

BOOL CExeFileDialog::IsProgramFileName(LPCTSTR lpszPathName) {
    if (!lpszPathName || !*lpszPathName || std::strpbrk(lpszPathName, "*?")) {
        return FALSE;
    }
    DWORD attributes = GetFileAttributesA(lpszPathName);
    if (attributes == INVALID_FILE_ATTRIBUTES || (attributes & FILE_ATTRIBUTE_DIRECTORY)) {
        return FALSE;
    }
    std::string path = lpszPathName;
    size_t name_start = path.find_last_of("\\/:");
    std::string name = name_start == std::string::npos ? path : path.substr(name_start + 1);
    size_t dot = name.find_last_of('.');
    if (dot == std::string::npos) {
        return TRUE;
    }
    std::string extension;
    for (char c : name.substr(dot + 1)) {
        extension += static_cast<char>(c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : c);
    }
    for (const char* program : {"exe", "com", "bat", "cmd", "pif"}) {
        if (extension == program) {
            return TRUE;
        }
    }
    return FALSE;
}

BOOL CExeFileDialog::OnFileNameOK() {
    return IsProgramFileName(m_csPathName) ? FALSE : TRUE;
}
