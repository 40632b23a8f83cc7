// Folder listings: FindFirstFileA, FindNextFileA, FindClose.
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <set>
#include <string>
#include <vector>

#include "platform/posix/base/handle_table.h"
#include "platform/posix/base/win32_errno.h"
#include "platform/posix/file/dos_attributes.h"
#include "platform/posix/file/dos_path.h"
#include "platform/posix/file/dos_wildcard.h"
#include "platform/posix/file/file_object.h"

using namespace zq::platform::internal;

namespace {

// A listing taken by FindFirstFileA and handed out one entry at a time.
class FindObject : public KernelObject {
public:
    std::vector<WIN32_FIND_DATAA> entries;
    size_t next = 0;
};

// The Windows ordering of a listing: case-blind, then by bytes.
bool NameLess(const std::string& a, const std::string& b) {
    size_t n = std::min(a.size(), b.size());
    for (size_t i = 0; i < n; ++i) {
        auto ca = static_cast<unsigned char>(ToUpperCp1252(a[i]));
        auto cb = static_cast<unsigned char>(ToUpperCp1252(b[i]));
        if (ca != cb) {
            return ca < cb;
        }
    }
    return a.size() != b.size() ? a.size() < b.size() : a < b;
}

// The birth time where the file system records one, else the status-change
// time (as GetFileTime reports it).
FILETIME CreationTime(const std::string& unix_path, const struct stat& st) {
    struct statx sx;
    if (statx(AT_FDCWD, unix_path.c_str(), 0, STATX_BTIME, &sx) == 0 &&
        (sx.stx_mask & STATX_BTIME)) {
        struct timespec ts;
        ts.tv_sec = static_cast<time_t>(sx.stx_btime.tv_sec);
        ts.tv_nsec = static_cast<long>(sx.stx_btime.tv_nsec);
        return FileTimeFromUnix(ts);
    }
    return FileTimeFromUnix(st.st_ctim);
}

WIN32_FIND_DATAA MakeEntry(const std::string& name, const struct stat& st,
                           const std::string& unix_path) {
    WIN32_FIND_DATAA data;
    std::memset(&data, 0, sizeof data);
    data.dwFileAttributes = AttributesFromStat(st, unix_path);
    data.ftCreationTime = CreationTime(unix_path, st);
    data.ftLastAccessTime = FileTimeFromUnix(st.st_atim);
    data.ftLastWriteTime = FileTimeFromUnix(st.st_mtim);
    uint64_t size = S_ISDIR(st.st_mode) ? 0 : static_cast<uint64_t>(st.st_size);
    data.nFileSizeHigh = static_cast<DWORD>(size >> 32);
    data.nFileSizeLow = static_cast<DWORD>(size & 0xFFFFFFFFu);
    std::strncpy(data.cFileName, name.c_str(), sizeof data.cFileName - 1);
    return data;
}

// The folder part and the pattern of FindFirstFileA's argument.
struct SplitPattern {
    std::string folder;  // DOS or Unix text, "." for the current folder
    std::string pattern;
};

SplitPattern Split(std::string_view path) {
    size_t sep = path.find_last_of("\\/");
    if (sep != std::string_view::npos) {
        return {std::string(path.substr(0, sep + 1)), std::string(path.substr(sep + 1))};
    }
    if (path.size() >= 2 && path[1] == ':') {
        // "C:*.txt": the drive's current folder
        return {std::string(path.substr(0, 2)), std::string(path.substr(2))};
    }
    return {std::string(1, '.'), std::string(path)};
}

bool IsValidPattern(const std::string& pattern) {
    for (unsigned char c : pattern) {
        if (c < 32 || std::strchr("<>:\"|", c)) {
            return false;
        }
    }
    return true;
}

HANDLE Fail(DWORD error) {
    SetLastError(error);
    return INVALID_HANDLE_VALUE;
}

}  // namespace

extern "C" {

HANDLE WINAPI FindFirstFileA(LPCSTR lpFileName, LPWIN32_FIND_DATAA lpFindFileData) {
    if (!lpFindFileData) {
        return Fail(ERROR_INVALID_PARAMETER);
    }
    if (!lpFileName || !*lpFileName) {
        return Fail(lpFileName ? ERROR_FILE_NOT_FOUND : ERROR_PATH_NOT_FOUND);
    }
    if (std::strlen(lpFileName) >= MAX_PATH) {
        return Fail(ERROR_FILENAME_EXCED_RANGE);
    }
    SplitPattern split = Split(lpFileName);
    if (!IsValidPattern(split.pattern)) {
        return Fail(ERROR_INVALID_NAME);
    }
    UnixPath folder = DosToUnix(split.folder.c_str());
    if (!folder) {
        return Fail(folder.error);
    }
    std::string folder_name = folder.path;
    while (folder_name.size() > 1 && folder_name.back() == '/') {
        folder_name.pop_back();
    }
    struct stat folder_st;
    if (stat(folder_name.c_str(), &folder_st) != 0) {
        DWORD error = Win32ErrorFromErrno(errno, folder_name);
        return Fail(error == ERROR_FILE_NOT_FOUND ? ERROR_PATH_NOT_FOUND : error);
    }
    if (!S_ISDIR(folder_st.st_mode)) {
        return Fail(ERROR_DIRECTORY);
    }
    if (split.pattern.empty()) {
        return Fail(ERROR_FILE_NOT_FOUND);
    }
    DIR* dir = opendir(folder.path.c_str());
    if (!dir) {
        return Fail(Win32ErrorFromErrno(errno, folder.path));
    }
    std::vector<std::string> names;
    while (const dirent* entry = readdir(dir)) {
        std::string name = entry->d_name;
        if (name != "." && name != ".." && MatchesDosPattern(split.pattern, name)) {
            names.push_back(std::move(name));
        }
    }
    closedir(dir);
    std::sort(names.begin(), names.end(), NameLess);

    std::string base = folder.path;
    if (base.back() != '/') {
        base += '/';
    }
    auto listing = std::make_shared<FindObject>();
    // A folder lists "." and ".." first; a drive's root has neither.
    std::string dos_folder = UnixToDos(folder.path);
    if (dos_folder != "C:\\" && dos_folder != "Z:\\") {
        for (const char* dot : {".", ".."}) {
            struct stat st;
            if (MatchesDosPattern(split.pattern, dot) && stat((base + dot).c_str(), &st) == 0) {
                listing->entries.push_back(MakeEntry(dot, st, base + dot));
            }
        }
    }
    std::set<std::string> short_names;
    for (const std::string& name : names) {
        if (IsShortName(name)) {
            std::string upper;
            for (char c : name) {
                upper += ToUpperCp1252(c);
            }
            short_names.insert(upper);
        }
    }
    for (const std::string& name : names) {
        std::string path = base + name;
        struct stat st;
        if (stat(path.c_str(), &st) != 0 && lstat(path.c_str(), &st) != 0) {
            continue;  // gone since the folder was read
        }
        WIN32_FIND_DATAA data = MakeEntry(name, st, path);
        std::string short_name = MakeShortName(name, &short_names);
        std::strncpy(data.cAlternateFileName, short_name.c_str(),
                     sizeof data.cAlternateFileName - 1);
        listing->entries.push_back(data);
    }
    if (listing->entries.empty()) {
        return Fail(ERROR_FILE_NOT_FOUND);
    }
    *lpFindFileData = listing->entries[0];
    listing->next = 1;
    HANDLE handle = AddHandle(listing);
    if (!handle) {
        return Fail(ERROR_TOO_MANY_OPEN_FILES);
    }
    return handle;
}

BOOL WINAPI FindNextFileA(HANDLE hFindFile, LPWIN32_FIND_DATAA lpFindFileData) {
    auto listing = LookupHandleAs<FindObject>(hFindFile);
    if (!listing) {
        SetLastError(ERROR_INVALID_HANDLE);
        return FALSE;
    }
    if (!lpFindFileData) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    if (listing->next >= listing->entries.size()) {
        SetLastError(ERROR_NO_MORE_FILES);
        return FALSE;
    }
    *lpFindFileData = listing->entries[listing->next++];
    return TRUE;
}

BOOL WINAPI FindClose(HANDLE hFindFile) {
    if (!LookupHandleAs<FindObject>(hFindFile) || !RemoveHandle(hFindFile)) {
        SetLastError(ERROR_INVALID_HANDLE);
        return FALSE;
    }
    return TRUE;
}

}  // extern "C"
