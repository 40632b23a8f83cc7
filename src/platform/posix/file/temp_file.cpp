// GetTempFileNameA.
#include <cstdio>
#include <cstring>
#include <string>

#include "platform/posix/base/host.h"
#include "platform/posix/file/dos_path.h"
#include "platform/posix/file/file_object.h"

using namespace zq::platform::internal;

namespace {

std::string NameFor(const std::string& stem, UINT number) {
    char digits[16];
    std::snprintf(digits, sizeof digits, "%X", number);
    return stem + digits + ".TMP";
}

}  // namespace

extern "C" UINT WINAPI GetTempFileNameA(LPCSTR lpPathName, LPCSTR lpPrefixString, UINT uUnique,
                                        LPSTR lpTempFileName) {
    if (!lpPathName || !lpTempFileName) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return 0;
    }
    DosFullPath folder = FullDosPath(lpPathName);
    if (!folder) {
        SetLastError(folder.error);
        return 0;
    }
    std::string stem = folder.path;
    if (stem.back() != '\\') {
        stem += '\\';
    }
    if (lpPrefixString) {
        stem.append(lpPrefixString, strnlen(lpPrefixString, 3));
    }
    // Room for four hexadecimal digits, ".TMP" and the terminator.
    if (stem.size() + 4 + 4 + 1 > MAX_PATH) {
        SetLastError(ERROR_BUFFER_OVERFLOW);
        return 0;
    }
    if (uUnique != 0) {
        std::string name = NameFor(stem, uUnique & 0xFFFF);
        std::memcpy(lpTempFileName, name.c_str(), name.size() + 1);
        return uUnique;
    }
    UINT number = static_cast<UINT>(CurrentHost().MonotonicMillis() & 0xFFFF);
    for (UINT tries = 0; tries < 0xFFFF; ++tries) {
        if (number == 0) {
            number = 1;
        }
        std::string name = NameFor(stem, number);
        OpenedFile created =
            OpenFileObject(name.c_str(), GENERIC_WRITE, 0, CREATE_NEW, FILE_ATTRIBUTE_NORMAL);
        if (created.file) {
            std::memcpy(lpTempFileName, name.c_str(), name.size() + 1);
            return number;
        }
        if (created.error != ERROR_FILE_EXISTS) {
            bool missing_folder =
                created.error == ERROR_PATH_NOT_FOUND || created.error == ERROR_FILE_NOT_FOUND;
            SetLastError(missing_folder ? ERROR_DIRECTORY : created.error);
            return 0;
        }
        number = number == 0xFFFF ? 1 : number + 1;
    }
    SetLastError(ERROR_FILE_EXISTS);
    return 0;
}
