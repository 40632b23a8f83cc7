// DOS attribute bits of files and folders on a Unix file system.
//
// Read-only is the absence of the owner's write permission on a file
// (setting it removes every write permission, clearing it gives the owner
// write permission back). The bits Unix has no place for (hidden, system,
// archive, temporary, offline, not-content-indexed, and read-only of a
// folder) are kept as text "0x<hex>" in the extended attribute
// user.DOSATTRIB. Where the file system refuses user extended attributes
// (tmpfs on older kernels, some network file systems) they are not kept and
// read as clear; no error is reported for that.
#pragma once

#include <sys/stat.h>

#include <string>

#include "platform/win32.h"

namespace zq::platform::internal {

// Bits that live in the extended attribute.
constexpr DWORD kKeptAttributeBits = FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM |
                                     FILE_ATTRIBUTE_ARCHIVE | FILE_ATTRIBUTE_TEMPORARY |
                                     FILE_ATTRIBUTE_OFFLINE | FILE_ATTRIBUTE_NOT_CONTENT_INDEXED;

// Bits SetFileAttributesA accepts.
constexpr DWORD kSettableAttributeBits =
    kKeptAttributeBits | FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_NORMAL;

// The attributes of the object `st` describes, found at `unix_path`:
// FILE_ATTRIBUTE_DIRECTORY for folders, FILE_ATTRIBUTE_NORMAL when no bit
// is set.
DWORD AttributesFromStat(const struct stat& st, const std::string& unix_path);

// Reads the attributes of `unix_path` (symbolic links followed). Returns 0
// and stores them in *attributes, or returns the Win32 error
// (*attributes untouched).
DWORD ReadDosAttributes(const std::string& unix_path, DWORD* attributes);

// Replaces the settable bits of `unix_path` with those of `attributes`
// (other bits ignored). Returns 0 or the Win32 error.
DWORD WriteDosAttributes(const std::string& unix_path, DWORD attributes);

// The bits kept in the extended attribute of `unix_path` (0 when none or
// unsupported), and their replacement; StoreKeptBits reports whether the
// file system kept them.
DWORD LoadKeptBits(const std::string& unix_path);
bool StoreKeptBits(const std::string& unix_path, DWORD bits);

}  // namespace zq::platform::internal
