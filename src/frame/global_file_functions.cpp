#include "frame/global_file_functions.h"

#include <cstdio>
#include <cstring>
#include <string>

#include "frame/global_error.h"
#include "frame/security_attributes.h"

namespace {

constexpr DWORD kExistenceBits = FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN |
                                 FILE_ATTRIBUTE_SYSTEM | FILE_ATTRIBUTE_ARCHIVE |
                                 FILE_ATTRIBUTE_NORMAL | FILE_ATTRIBUTE_TEMPORARY;

// `text` with every '%' doubled, so it passes through a printf format as is.
std::string EscapeForFormat(LPCTSTR text) {
    std::string escaped;
    for (const char* p = text; p && *p; ++p) {
        escaped += *p;
        if (*p == '%') {
            escaped += '%';
        }
    }
    return escaped;
}

std::string FormatName(const std::string& pattern, UINT number) {
    int length = std::snprintf(nullptr, 0, pattern.c_str(), number);
    if (length < 0) {
        return {};
    }
    std::string name(static_cast<size_t>(length), '\0');
    std::snprintf(name.data(), name.size() + 1, pattern.c_str(), number);
    return name;
}

}  // namespace

DWORD CZqGlobalFileFunctions::Create(LPCTSTR lpszPath) {
    CZqDefaultSecurityAttributes security;
    HANDLE file = CreateFileA(lpszPath, GENERIC_WRITE, 0, security.Get(), CREATE_ALWAYS,
                              FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE) {
        return CZqGlobalError::GetError();
    }
    CloseHandle(file);
    return 0;
}

DWORD CZqGlobalFileFunctions::Delete(LPCTSTR lpszPath) {
    return DeleteFileA(lpszPath) ? 0 : CZqGlobalError::GetError();
}

DWORD CZqGlobalFileFunctions::Move(LPCTSTR lpszFrom, LPCTSTR lpszTo) {
    return MoveFileA(lpszFrom, lpszTo) ? 0 : CZqGlobalError::GetError();
}

DWORD CZqGlobalFileFunctions::Rename(LPCTSTR lpszFrom, LPCTSTR lpszTo) {
    return Move(lpszFrom, lpszTo);
}

DWORD CZqGlobalFileFunctions::Exists(LPCTSTR lpszPath, DWORD& dwExists) {
    dwExists = 0;
    DWORD attributes = GetFileAttributesA(lpszPath);
    if (attributes == INVALID_FILE_ATTRIBUTES) {
        return CZqGlobalError::GetError();
    }
    if (attributes & FILE_ATTRIBUTE_DIRECTORY) {
        return 0;
    }
    // Kept as designed: a file with none of these bits counts as absent.
    if (attributes & kExistenceBits) {
        dwExists = 1;
    }
    return 0;
}

DWORD CZqGlobalFileFunctions::GetSize(LPCTSTR lpszPath, DWORD& dwSize) {
    dwSize = 0;
    DWORD attributes = GetFileAttributesA(lpszPath);
    if (attributes == INVALID_FILE_ATTRIBUTES) {
        return CZqGlobalError::GetError();
    }
    if (attributes & FILE_ATTRIBUTE_DIRECTORY) {
        return 0;
    }
    // The listing entry gives the size without opening the file, so a file
    // another handle holds without sharing still has a size.
    WIN32_FIND_DATAA data;
    HANDLE find = FindFirstFileA(lpszPath, &data);
    if (find == INVALID_HANDLE_VALUE) {
        return CZqGlobalError::GetError();
    }
    FindClose(find);
    dwSize = data.nFileSizeLow;
    return 0;
}

DWORD CZqGlobalFileFunctions::SetSize(LPCTSTR lpszPath, DWORD dwSize) {
    DWORD attributes = GetFileAttributesA(lpszPath);
    if (attributes == INVALID_FILE_ATTRIBUTES) {
        return CZqGlobalError::GetError();
    }
    if (attributes & FILE_ATTRIBUTE_DIRECTORY) {
        return 0;
    }
    HANDLE file = CreateFileA(lpszPath, GENERIC_WRITE, 0, nullptr, OPEN_EXISTING,
                              FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE) {
        return CZqGlobalError::GetError();
    }
    DWORD result = 0;
    LONG high = 0;  // the whole 32-bit size counts, not a signed distance
    if (SetFilePointer(file, static_cast<LONG>(dwSize), &high, FILE_BEGIN) ==
            INVALID_SET_FILE_POINTER &&
        GetLastError() != NO_ERROR) {
        result = CZqGlobalError::GetError();
    } else if (!SetEndOfFile(file)) {
        result = CZqGlobalError::GetError();
    }
    CloseHandle(file);
    return result;
}

DWORD CZqGlobalFileFunctions::GetAttributes(LPCTSTR lpszPath, DWORD& dwAttributes) {
    dwAttributes = 0;
    DWORD attributes = GetFileAttributesA(lpszPath);
    if (attributes == INVALID_FILE_ATTRIBUTES) {
        return CZqGlobalError::GetError();
    }
    if (!(attributes & FILE_ATTRIBUTE_DIRECTORY)) {
        dwAttributes = attributes;
    }
    return 0;
}

DWORD CZqGlobalFileFunctions::SetAttributes(LPCTSTR lpszPath, DWORD dwAttributes) {
    DWORD current = GetFileAttributesA(lpszPath);
    if (current == INVALID_FILE_ATTRIBUTES) {
        return CZqGlobalError::GetError();
    }
    if (current & FILE_ATTRIBUTE_DIRECTORY) {
        return 0;
    }
    DWORD wanted = current | (dwAttributes & ~static_cast<DWORD>(FILE_ATTRIBUTE_DIRECTORY));
    return SetFileAttributesA(lpszPath, wanted) ? 0 : CZqGlobalError::GetError();
}

DWORD CZqGlobalFileFunctions::ClearAttributes(LPCTSTR lpszPath, DWORD dwAttributes) {
    DWORD attributes = 0;
    if (DWORD result = GetAttributes(lpszPath, attributes); result != 0) {
        return result;
    }
    // Kept as designed: SetAttributes adds to the current bits, so the
    // cleared bits stay set.
    return SetAttributes(lpszPath, attributes & ~dwAttributes);
}

DWORD CZqGlobalFileFunctions::GetTempFile(char* lpszResult) {
    char folder[MAX_PATH];
    DWORD length = GetTempPathA(sizeof folder, folder);
    if (length == 0 || length >= sizeof folder) {
        return length == 0 ? CZqGlobalError::GetError() : static_cast<DWORD>(ERROR_BUFFER_OVERFLOW);
    }
    char name[MAX_PATH];
    if (GetTempFileNameA(folder, "TMP", 0, name) == 0) {
        return CZqGlobalError::GetError();
    }
    if (lpszResult) {
        std::memcpy(lpszResult, name, std::strlen(name) + 1);
    }
    return 0;
}

DWORD CZqGlobalFileFunctions::ZqGetTempFileName(LPCTSTR lpszDirectory, LPCTSTR lpszPrefix,
                                                LPCTSTR lpszExtension, UINT nUnique,
                                                char* lpszResult) {
    std::string pattern;
    if (lpszDirectory) {
        pattern = EscapeForFormat(lpszDirectory);
        if (pattern.empty() || pattern.back() != '\\') {
            pattern += '\\';
        }
    }
    pattern += EscapeForFormat(lpszPrefix);
    pattern += "%04.4X";
    if (lpszExtension) {
        if (*lpszExtension != '.') {
            pattern += '.';
        }
        pattern += EscapeForFormat(lpszExtension);
    }

    auto deliver = [lpszResult](const std::string& name) -> DWORD {
        if (name.size() >= MAX_PATH) {
            return ERROR_BUFFER_OVERFLOW;
        }
        if (lpszResult) {
            std::memcpy(lpszResult, name.c_str(), name.size() + 1);
        }
        return 0;
    };
    if (nUnique != 0) {
        return deliver(FormatName(pattern, nUnique));
    }

    // One round through every 16-bit number at most; the real clock moves on
    // long before that.
    DWORD tick = GetTickCount();
    for (int tries = 0; tries < 0x10000; ++tries) {
        std::string name = FormatName(pattern, tick & 0xFFFF);
        if (name.size() >= MAX_PATH) {
            return ERROR_BUFFER_OVERFLOW;
        }
        if (GetFileAttributesA(name.c_str()) != INVALID_FILE_ATTRIBUTES) {
            DWORD previous = tick;
            while ((tick = GetTickCount()) == previous) {
                // waits for the next tick value
            }
            continue;
        }
        CZqDefaultSecurityAttributes security;
        HANDLE file = CreateFileA(name.c_str(), GENERIC_WRITE, 0, security.Get(), CREATE_NEW,
                                  FILE_ATTRIBUTE_NORMAL, nullptr);
        if (file == INVALID_HANDLE_VALUE) {
            return 1;
        }
        CloseHandle(file);
        return deliver(name);
    }
    return 1;
}
