// The 16-bit file functions kept by Win32: OpenFile and the _l family.
// An HFILE is the value of the file's HANDLE.
#include <sys/stat.h>
#include <time.h>
#include <unistd.h>

#include <cstring>
#include <string>

#include "platform/posix/base/win32_errno.h"
#include "platform/posix/file/dos_path.h"

using namespace zq::platform::internal;

namespace {

HANDLE ToHandle(HFILE file) {
    return reinterpret_cast<HANDLE>(static_cast<intptr_t>(file));
}

HFILE ToHfile(HANDLE handle) {
    return handle == INVALID_HANDLE_VALUE ? HFILE_ERROR
                                          : static_cast<HFILE>(reinterpret_cast<intptr_t>(handle));
}

DWORD AccessFromStyle(UINT style) {
    switch (style & 3) {
        case OF_READ:
            return GENERIC_READ;
        case OF_WRITE:
            return GENERIC_WRITE;
        default:
            return GENERIC_READ | GENERIC_WRITE;
    }
}

DWORD ShareFromStyle(UINT style) {
    switch (style & 0x70) {
        case OF_SHARE_EXCLUSIVE:
            return 0;
        case OF_SHARE_DENY_WRITE:
            return FILE_SHARE_READ;
        case OF_SHARE_DENY_READ:
            return FILE_SHARE_WRITE;
        default:  // compatibility mode and deny-none
            return FILE_SHARE_READ | FILE_SHARE_WRITE;
    }
}

bool IsFile(const std::string& dos_path) {
    UnixPath path = DosToUnix(dos_path.c_str());
    struct stat st;
    return path && stat(path.path.c_str(), &st) == 0 && !S_ISDIR(st.st_mode);
}

std::string ExecutableFolderDos() {
    char buffer[4096];
    ssize_t n = readlink("/proc/self/exe", buffer, sizeof buffer - 1);
    if (n <= 0) {
        return {};
    }
    std::string path(buffer, static_cast<size_t>(n));
    return UnixToDos(path.substr(0, path.find_last_of('/')));
}

// Where OpenFile finds `name`: a name with a folder or drive is taken as it
// is; a bare name is looked for in the current folder, the executable's
// folder, the system folder and the Windows folder. "" when not found (the
// last error then says why).
std::string SearchFile(const char* name) {
    bool bare = !std::strpbrk(name, "\\/:");
    if (!bare) {
        DosFullPath full = FullDosPath(name);
        if (!full) {
            SetLastError(full.error);
            return {};
        }
        UnixPath path = DosToUnix(name);
        struct stat st;
        if (!path) {
            SetLastError(path.error);
            return {};
        }
        if (stat(path.path.c_str(), &st) != 0) {
            SetLastErrorFromErrno(errno, path.path);
            return {};
        }
        return full.path;
    }
    std::string exe_folder = ExecutableFolderDos();
    for (const std::string& folder :
         {std::string("."), exe_folder, std::string("C:\\windows\\system"),
          std::string("C:\\windows")}) {
        if (folder.empty()) {
            continue;
        }
        std::string candidate = folder + "\\" + name;
        if (IsFile(candidate)) {
            DosFullPath full = FullDosPath(candidate.c_str());
            if (full) {
                return full.path;
            }
        }
    }
    SetLastError(ERROR_FILE_NOT_FOUND);
    return {};
}

// The DOS date and time of a file's last write, in local time.
void DosDateTime(HANDLE file, WORD* date, WORD* time) {
    *date = (1 << 5) | 1;  // 1980-01-01
    *time = 0;
    FILETIME write;
    if (!GetFileTime(file, nullptr, nullptr, &write)) {
        return;
    }
    uint64_t ticks = (static_cast<uint64_t>(write.dwHighDateTime) << 32) | write.dwLowDateTime;
    time_t seconds = static_cast<time_t>(static_cast<int64_t>(ticks / 10000000) - 11644473600);
    struct tm local;
    if (!localtime_r(&seconds, &local) || local.tm_year < 80) {
        return;
    }
    *date =
        static_cast<WORD>(((local.tm_year - 80) << 9) | ((local.tm_mon + 1) << 5) | local.tm_mday);
    *time = static_cast<WORD>((local.tm_hour << 11) | (local.tm_min << 5) | (local.tm_sec / 2));
}

}  // namespace

extern "C" {

HFILE WINAPI OpenFile(LPCSTR lpFileName, LPOFSTRUCT lpReOpenBuff, UINT uStyle) {
    if (!lpReOpenBuff) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return HFILE_ERROR;
    }
    OFSTRUCT* ofs = lpReOpenBuff;
    ofs->cBytes = sizeof(OFSTRUCT);
    ofs->nErrCode = 0;
    auto fail = [ofs](DWORD error) {
        if (error != 0) {
            SetLastError(error);
        }
        ofs->nErrCode = static_cast<WORD>(GetLastError());
        return HFILE_ERROR;
    };

    std::string name = (uStyle & OF_REOPEN)
                           ? std::string(ofs->szPathName, strnlen(ofs->szPathName, OFS_MAXPATHNAME))
                           : std::string(lpFileName ? lpFileName : "");
    if (!(uStyle & OF_REOPEN) && !lpFileName) {
        return fail(ERROR_INVALID_PARAMETER);
    }
    DosFullPath full = FullDosPath(name.c_str());
    if (!full) {
        return fail(full.error);
    }
    if (full.path.size() >= OFS_MAXPATHNAME) {
        return fail(ERROR_FILENAME_EXCED_RANGE);
    }
    std::memcpy(ofs->szPathName, full.path.c_str(), full.path.size() + 1);
    ofs->fFixedDisk = 1;
    if (uStyle & OF_PARSE) {
        return 0;
    }

    const DWORD access = AccessFromStyle(uStyle);
    const DWORD share = ShareFromStyle(uStyle);
    HANDLE handle;
    if (uStyle & OF_CREATE) {
        handle = CreateFileA(ofs->szPathName, access, share, nullptr, CREATE_ALWAYS,
                             FILE_ATTRIBUTE_NORMAL, nullptr);
        if (handle == INVALID_HANDLE_VALUE) {
            return fail(0);
        }
    } else {
        std::string found = SearchFile(name.c_str());
        if (found.empty()) {
            return fail(0);
        }
        if (found.size() >= OFS_MAXPATHNAME) {
            return fail(ERROR_FILENAME_EXCED_RANGE);
        }
        std::memcpy(ofs->szPathName, found.c_str(), found.size() + 1);
        if (uStyle & OF_DELETE) {
            if (!DeleteFileA(ofs->szPathName)) {
                return fail(0);
            }
            return 1;
        }
        handle = CreateFileA(ofs->szPathName, access, share, nullptr, OPEN_EXISTING,
                             FILE_ATTRIBUTE_NORMAL, nullptr);
        if (handle == INVALID_HANDLE_VALUE) {
            return fail(0);
        }
        WORD date, time;
        DosDateTime(handle, &date, &time);
        if ((uStyle & OF_VERIFY) && (uStyle & OF_REOPEN) &&
            (ofs->Reserved1 != date || ofs->Reserved2 != time)) {
            CloseHandle(handle);
            return fail(ERROR_FILE_NOT_FOUND);  // the file changed since it was opened
        }
        ofs->Reserved1 = date;
        ofs->Reserved2 = time;
    }
    if (uStyle & OF_EXIST) {
        CloseHandle(handle);
        return 1;
    }
    return ToHfile(handle);
}

HFILE WINAPI _lopen(LPCSTR lpPathName, int iReadWrite) {
    auto style = static_cast<UINT>(iReadWrite);
    return ToHfile(CreateFileA(lpPathName, AccessFromStyle(style), ShareFromStyle(style), nullptr,
                               OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
}

HFILE WINAPI _lcreat(LPCSTR lpPathName, int iAttribute) {
    DWORD attributes = static_cast<DWORD>(iAttribute) &
                       (FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM);
    return ToHfile(CreateFileA(lpPathName, GENERIC_READ | GENERIC_WRITE,
                               FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, CREATE_ALWAYS,
                               attributes, nullptr));
}

UINT WINAPI _lread(HFILE hFile, LPVOID lpBuffer, UINT uBytes) {
    DWORD read = 0;
    if (!ReadFile(ToHandle(hFile), lpBuffer, uBytes, &read, nullptr)) {
        return static_cast<UINT>(HFILE_ERROR);
    }
    return read;
}

UINT WINAPI _lwrite(HFILE hFile, LPCCH lpBuffer, UINT uBytes) {
    // Kept from DOS: writing nothing cuts the file at the file pointer.
    if (uBytes == 0) {
        return SetEndOfFile(ToHandle(hFile)) ? 0 : static_cast<UINT>(HFILE_ERROR);
    }
    DWORD written = 0;
    if (!WriteFile(ToHandle(hFile), lpBuffer, uBytes, &written, nullptr)) {
        return static_cast<UINT>(HFILE_ERROR);
    }
    return written;
}

LONG WINAPI _llseek(HFILE hFile, LONG lOffset, int iOrigin) {
    DWORD position = SetFilePointer(ToHandle(hFile), lOffset, nullptr, static_cast<DWORD>(iOrigin));
    if (position == INVALID_SET_FILE_POINTER && GetLastError() != NO_ERROR) {
        return HFILE_ERROR;
    }
    return static_cast<LONG>(position);
}

HFILE WINAPI _lclose(HFILE hFile) {
    return CloseHandle(ToHandle(hFile)) ? 0 : HFILE_ERROR;
}

}  // extern "C"
