#include "platform/posix/file/dos_attributes.h"

#include <sys/xattr.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>

#include "platform/posix/base/win32_errno.h"
#include "platform/posix/file/dos_path.h"

namespace zq::platform::internal {

namespace {

constexpr char kXattrName[] = "user.DOSATTRIB";

// What the attribute may hold: the bits kept for files, plus read-only for
// folders (a folder's read-only bit is not its permission).
constexpr DWORD kStorableBits = kKeptAttributeBits | FILE_ATTRIBUTE_READONLY;

}  // namespace

DWORD LoadKeptBits(const std::string& unix_path) {
    char text[32];
    ssize_t n = getxattr(unix_path.c_str(), kXattrName, text, sizeof text - 1);
    if (n <= 0) {
        return 0;
    }
    text[n] = '\0';
    // Only the "0x<hex>" text form is understood; anything else reads as clear.
    if (n < 3 || text[0] != '0' || (text[1] != 'x' && text[1] != 'X')) {
        return 0;
    }
    char* end = nullptr;
    unsigned long value = std::strtoul(text + 2, &end, 16);
    if (end == text + 2) {
        return 0;
    }
    return static_cast<DWORD>(value) & kStorableBits;
}

bool StoreKeptBits(const std::string& unix_path, DWORD bits) {
    bits &= kStorableBits;
    if (bits == 0) {
        return removexattr(unix_path.c_str(), kXattrName) == 0 || errno == ENODATA;
    }
    char text[16];
    int n = std::snprintf(text, sizeof text, "0x%X", static_cast<unsigned>(bits));
    return setxattr(unix_path.c_str(), kXattrName, text, static_cast<size_t>(n), 0) == 0;
}

DWORD AttributesFromStat(const struct stat& st, const std::string& unix_path) {
    DWORD kept = LoadKeptBits(unix_path);
    if (S_ISDIR(st.st_mode)) {
        return FILE_ATTRIBUTE_DIRECTORY | (kept & kStorableBits);
    }
    DWORD attributes = kept & kKeptAttributeBits;
    if ((st.st_mode & S_IWUSR) == 0) {
        attributes |= FILE_ATTRIBUTE_READONLY;
    }
    if (!S_ISREG(st.st_mode)) {
        attributes |= FILE_ATTRIBUTE_DEVICE;  // character devices, pipes, sockets
    }
    return attributes == 0 ? FILE_ATTRIBUTE_NORMAL : attributes;
}

DWORD ReadDosAttributes(const std::string& unix_path, DWORD* attributes) {
    struct stat st;
    if (stat(unix_path.c_str(), &st) != 0) {
        return Win32ErrorFromErrno(errno, unix_path);
    }
    *attributes = AttributesFromStat(st, unix_path);
    return 0;
}

DWORD WriteDosAttributes(const std::string& unix_path, DWORD attributes) {
    struct stat st;
    if (stat(unix_path.c_str(), &st) != 0) {
        return Win32ErrorFromErrno(errno, unix_path);
    }
    if (S_ISDIR(st.st_mode)) {
        StoreKeptBits(unix_path, attributes & kStorableBits);
        return 0;
    }
    mode_t mode = st.st_mode & 07777;
    mode_t wanted = (attributes & FILE_ATTRIBUTE_READONLY)
                        ? mode & ~static_cast<mode_t>(S_IWUSR | S_IWGRP | S_IWOTH)
                        : mode | S_IWUSR;
    // Extended attributes need write permission: they are stored while the
    // file is still (or already) writable. The file system may refuse them:
    // the bits are then not kept, and that is not an error.
    const bool to_read_only = (wanted & S_IWUSR) == 0;
    if (to_read_only) {
        StoreKeptBits(unix_path, attributes & kKeptAttributeBits);
    }
    if (wanted != mode && chmod(unix_path.c_str(), wanted) != 0) {
        return Win32ErrorFromErrno(errno, unix_path);
    }
    if (!to_read_only) {
        StoreKeptBits(unix_path, attributes & kKeptAttributeBits);
    }
    return 0;
}

}  // namespace zq::platform::internal

using zq::platform::internal::DosToUnix;
using zq::platform::internal::ReadDosAttributes;
using zq::platform::internal::UnixPath;
using zq::platform::internal::WriteDosAttributes;

extern "C" {

DWORD WINAPI GetFileAttributesA(LPCSTR lpFileName) {
    UnixPath path = DosToUnix(lpFileName);
    if (!path) {
        SetLastError(path.error);
        return INVALID_FILE_ATTRIBUTES;
    }
    DWORD attributes = 0;
    if (DWORD error = ReadDosAttributes(path.path, &attributes); error != 0) {
        SetLastError(error);
        return INVALID_FILE_ATTRIBUTES;
    }
    return attributes;
}

BOOL WINAPI SetFileAttributesA(LPCSTR lpFileName, DWORD dwFileAttributes) {
    UnixPath path = DosToUnix(lpFileName);
    if (!path) {
        SetLastError(path.error);
        return FALSE;
    }
    if (DWORD error = WriteDosAttributes(path.path, dwFileAttributes); error != 0) {
        SetLastError(error);
        return FALSE;
    }
    return TRUE;
}

}  // extern "C"
