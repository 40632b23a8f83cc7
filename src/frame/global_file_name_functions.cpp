#include "frame/global_file_name_functions.h"

#include <cstring>
#include <string>

#include "framework/gdi/dc.h"

namespace {

std::string Text(LPCTSTR text) {
    return text ? std::string(text) : std::string();
}

bool Fits(CDC* dc, const std::string& text, int width) {
    return dc->GetTextExtent(text.c_str(), static_cast<int>(text.size())).cx <= width;
}

void CopyResult(const std::string& text, char* result) {
    size_t length = std::min(text.size(), static_cast<size_t>(MAX_PATH - 1));
    std::memcpy(result, text.data(), length);
    result[length] = '\0';
}

}  // namespace

void CZqGlobalFileNameFunctions::ExtractNameFromPath(LPCTSTR lpszPath, CString& csName) {
    std::string path = Text(lpszPath);
    size_t cut = path.find_last_of('\\');
    if (cut == std::string::npos) {
        cut = path.find_last_of(':');
    }
    csName = cut == std::string::npos ? path.c_str() : path.substr(cut + 1).c_str();
}

void CZqGlobalFileNameFunctions::ExtractPathFromPath(LPCTSTR lpszPath, CString& csDirectory) {
    std::string path = Text(lpszPath);
    size_t backslash = path.find_last_of('\\');
    if (backslash != std::string::npos) {
        std::string folder = path.substr(0, backslash);
        if (folder.size() == 2 && folder[1] == ':') {
            folder += '\\';  // a bare drive keeps its root
        }
        csDirectory = folder.c_str();
        return;
    }
    size_t colon = path.find_last_of(':');
    csDirectory = colon == std::string::npos ? path.c_str() : path.substr(0, colon).c_str();
}

void CZqGlobalFileNameFunctions::MakePath(LPCTSTR lpszDirectory, LPCTSTR lpszName,
                                          CString& csResult) {
    std::string result = Text(lpszDirectory);
    if (!result.empty() && result.back() != '\\' && result.back() != ':') {
        result += '\\';
    }
    result += Text(lpszName);
    csResult = result.c_str();
}

void CZqGlobalFileNameFunctions::ReplaceExtension(LPCTSTR lpszPath, CString& csResult,
                                                  LPCTSTR lpszExtension) {
    std::string result = Text(lpszPath);
    // The last '.' anywhere in the path counts, even inside a folder name.
    if (size_t dot = result.find_last_of('.'); dot != std::string::npos) {
        result.erase(dot);
    }
    if (lpszExtension) {
        result += '.';
        result += lpszExtension;
    }
    csResult = result.c_str();
}

void CZqGlobalFileNameFunctions::ReplaceExtension(CString& csPath, LPCTSTR lpszExtension) {
    CString result;
    ReplaceExtension(csPath, result, lpszExtension);
    csPath = result;
}

void CZqGlobalFileNameFunctions::AbbreviateFilePath(LPCTSTR lpszPath, char* lpszResult, CDC* pDC,
                                                    int nWidth) {
    if (!lpszResult) {
        return;
    }
    const std::string path = Text(lpszPath);
    if (!pDC || Fits(pDC, path, nWidth)) {
        CopyResult(path, lpszResult);
        return;
    }
    CString name_text;
    ExtractNameFromPath(lpszPath, name_text);
    const std::string name = static_cast<LPCTSTR>(name_text);
    if (!Fits(pDC, name, nWidth)) {
        CopyResult(name, lpszResult);
        return;
    }
    // The root: "\\server" for a network path, else the first two
    // characters (drive letter and colon).
    std::string root = path.substr(0, 2);
    if (path.size() > 2 && path[0] == '\\' && path[1] == '\\' && path[2] != '\\') {
        size_t after_server = path.find('\\', 2);
        root = after_server == std::string::npos ? path : path.substr(0, after_server);
    }
    if (!Fits(pDC, root + "\\...\\" + name, nWidth)) {
        CopyResult(name, lpszResult);
        return;
    }
    // Drop leading components one at a time until the rest fits.
    size_t cursor = root.size();
    for (;;) {
        size_t next = path.find('\\', cursor + 1);
        if (next == std::string::npos) {
            break;
        }
        std::string candidate = root + "\\..." + path.substr(next);
        if (Fits(pDC, candidate, nWidth)) {
            CopyResult(candidate, lpszResult);
            return;
        }
        cursor = next;
    }
    CopyResult(root + "\\...\\" + name, lpszResult);
}
