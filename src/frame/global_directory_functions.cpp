#include "frame/global_directory_functions.h"

#include <functional>
#include <string>

#include "frame/global_error.h"
#include "frame/global_file_functions.h"
#include "frame/global_file_name_functions.h"
#include "frame/security_attributes.h"

namespace {

bool IsDots(const char* name) {
    return name[0] == '.' && (name[1] == '\0' || (name[1] == '.' && name[2] == '\0'));
}

// Lists `path`\*.* and hands every file (full path) to `on_file`; with
// `recursive`, descends into every folder entry, dots included, and a
// descent's failure ends the walk. Returns the error that ended the
// listing, with ERROR_NO_MORE_FILES turned into 0.
DWORD Walk(const std::string& path, bool recursive,
           const std::function<void(const std::string&)>& on_file) {
    WIN32_FIND_DATAA data;
    HANDLE find = FindFirstFileA((path + "\\*.*").c_str(), &data);
    if (find == INVALID_HANDLE_VALUE) {
        return CZqGlobalError::GetError();
    }
    DWORD result = 0;
    for (;;) {
        std::string entry = path + "\\" + data.cFileName;
        if (data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) {
            if (recursive) {
                result = Walk(entry, recursive, on_file);
                if (result != 0) {
                    break;
                }
            }
        } else {
            on_file(entry);
        }
        if (!FindNextFileA(find, &data)) {
            result = CZqGlobalError::GetError();
            break;
        }
    }
    FindClose(find);
    return result == ERROR_NO_MORE_FILES ? 0 : result;
}

DWORD SumSizes(LPCTSTR lpszPath, bool recursive, DWORD& dwBytes) {
    dwBytes = 0;
    DWORD total = 0;
    DWORD result = Walk(lpszPath ? lpszPath : "", recursive, [&total](const std::string& file) {
        DWORD size = 0;
        CZqGlobalFileFunctions::GetSize(file.c_str(), size);
        total += size;
    });
    dwBytes = result == 0 ? total : 0;
    return result;
}

DWORD CountFiles(LPCTSTR lpszPath, bool recursive, DWORD& dwCount) {
    dwCount = 0;
    DWORD count = 0;
    DWORD result =
        Walk(lpszPath ? lpszPath : "", recursive, [&count](const std::string&) { ++count; });
    dwCount = result == 0 ? count : 0;
    return result;
}

DWORD Enumerate(void* pContext, LPCTSTR lpszPath, ZQENUMFILESPROC pfnCallback, bool recursive) {
    return Walk(lpszPath ? lpszPath : "", recursive, [&](const std::string& file) {
        if (pfnCallback) {
            pfnCallback(pContext, file.c_str());
        }
    });
}

bool IsDirectory(LPCTSTR lpszPath) {
    DWORD attributes = GetFileAttributesA(lpszPath);
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY);
}

}  // namespace

DWORD CZqGlobalDirectoryFunctions::Exists(LPCTSTR lpszPath, DWORD& dwIsDirectory) {
    dwIsDirectory = 0;
    DWORD attributes = GetFileAttributesA(lpszPath);
    if (attributes == INVALID_FILE_ATTRIBUTES) {
        return CZqGlobalError::GetError();
    }
    dwIsDirectory = (attributes & FILE_ATTRIBUTE_DIRECTORY) ? 1 : 0;
    return 0;
}

DWORD CZqGlobalDirectoryFunctions::Create(LPCTSTR lpszPath) {
    if (IsDirectory(lpszPath)) {
        return 0;
    }
    CZqDefaultSecurityAttributes security;
    return CreateDirectoryA(lpszPath, security.Get()) ? 0 : ZQ_ERROR_DIRECTORY_CREATE;
}

DWORD CZqGlobalDirectoryFunctions::CreateDirChain(LPCTSTR lpszPath, DWORD& dwExists) {
    dwExists = 0;
    if (IsDirectory(lpszPath)) {
        dwExists = 1;
        return 0;
    }
    CString parent;
    CZqGlobalFileNameFunctions::ExtractPathFromPath(lpszPath, parent);
    // A path without a usable parent ("name", "C:\") is created as it is.
    if (!parent.IsEmpty() && parent.Compare(lpszPath ? lpszPath : "") != 0) {
        DWORD is_directory = 0;
        if (Exists(parent, is_directory) != 0) {
            DWORD parent_exists = 0;
            if (DWORD result = CreateDirChain(parent, parent_exists); result != 0) {
                return result;
            }
        }
    }
    CZqDefaultSecurityAttributes security;
    return CreateDirectoryA(lpszPath, security.Get()) ? 0 : ZQ_ERROR_DIRECTORY_CREATE;
}

DWORD CZqGlobalDirectoryFunctions::Delete(LPCTSTR lpszPath) {
    return RemoveDirectoryA(lpszPath) ? 0 : ZQ_ERROR_DIRECTORY_REMOVE;
}

void CZqGlobalDirectoryFunctions::DeleteDirChain(LPCTSTR lpszPath) {
    if (!lpszPath) {
        return;
    }
    const std::string path = lpszPath;
    const std::string pattern = path + "\\*.*";
    WIN32_FIND_DATAA data;
    HANDLE find = FindFirstFileA(pattern.c_str(), &data);
    if (find != INVALID_HANDLE_VALUE) {
        do {
            if (!(data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY)) {
                DeleteFileA((path + "\\" + data.cFileName).c_str());
            }
        } while (FindNextFileA(find, &data));
        FindClose(find);
    }
    find = FindFirstFileA(pattern.c_str(), &data);
    if (find != INVALID_HANDLE_VALUE) {
        do {
            if ((data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) && !IsDots(data.cFileName)) {
                DeleteDirChain((path + "\\" + data.cFileName).c_str());
            }
        } while (FindNextFileA(find, &data));
        FindClose(find);
    }
    RemoveDirectoryA(lpszPath);
}

DWORD CZqGlobalDirectoryFunctions::Rename(LPCTSTR lpszFrom, LPCTSTR lpszTo) {
    if (!lpszTo || !*lpszTo) {
        return ZQ_ERROR_DIRECTORY_EMPTY_NAME;
    }
    return MoveFileA(lpszFrom, lpszTo) ? 0 : ZQ_ERROR_DIRECTORY_RENAME;
}

DWORD CZqGlobalDirectoryFunctions::GetSpace(LPCTSTR lpszPath, DWORD& dwBytes) {
    return SumSizes(lpszPath, false, dwBytes);
}

DWORD CZqGlobalDirectoryFunctions::GetTotalSpace(LPCTSTR lpszPath, DWORD& dwBytes) {
    return SumSizes(lpszPath, true, dwBytes);
}

DWORD CZqGlobalDirectoryFunctions::GetFileCount(LPCTSTR lpszPath, DWORD& dwCount) {
    return CountFiles(lpszPath, false, dwCount);
}

DWORD CZqGlobalDirectoryFunctions::GetTotalFileCount(LPCTSTR lpszPath, DWORD& dwCount) {
    return CountFiles(lpszPath, true, dwCount);
}

DWORD CZqGlobalDirectoryFunctions::EnumerateFiles(void* pContext, LPCTSTR lpszPath,
                                                  ZQENUMFILESPROC pfnCallback) {
    return Enumerate(pContext, lpszPath, pfnCallback, false);
}

DWORD CZqGlobalDirectoryFunctions::EnumerateAllFiles(void* pContext, LPCTSTR lpszPath,
                                                     ZQENUMFILESPROC pfnCallback) {
    return Enumerate(pContext, lpszPath, pfnCallback, true);
}

DWORD CZqGlobalDirectoryFunctions::IsDirShared(LPCTSTR /*lpszPath*/, BOOL& bShared) {
    bShared = FALSE;
    return 0;
}
