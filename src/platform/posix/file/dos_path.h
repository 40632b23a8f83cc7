// DOS paths of the emulated system and their Unix counterparts.
//
// Drives: C: is the folder $ZQ_PREFIX/drive_c (created at first use together
// with C:\windows, C:\windows\system and C:\temp); Z: is the Unix root "/".
// Other drive letters do not exist: paths on them fail with
// ERROR_PATH_NOT_FOUND, the code Windows NT gives for a missing drive.
//
// Accepted forms, all with '\' or '/' as separator:
//   "C:\dir\file", "z:/usr/bin"  absolute on a drive
//   "C:file"                     relative to the current folder when that is
//                                on C:, else to the root of C: (one current
//                                folder per process, not one per drive)
//   "\dir\file"                  from the root of the current folder's drive
//   "dir\file", ".\f", "..\f"    relative to the process's current folder
//   "/usr/bin/zq"                a plain Unix path (one leading '/')
// A leading "\\" or "//" names a network share: ERROR_BAD_NETPATH.
// "." and ".." are resolved by text, as Windows does (".." stops at the
// drive's root); trailing dots and blanks of the last component are dropped
// (so "file." is "file"). Names are kept byte for byte: no code-page
// conversion happens between DOS and Unix names, and a Unix name containing
// '\' cannot be reached.
//
// Case: a component that does not exist with its exact case is looked up in
// its folder without regard to case (ASCII and Windows-1252 letters); when
// several names match, the smallest by byte order wins. A component that is
// found nowhere is kept as given, and so are all components after it, so a
// path to a file about to be created keeps the caller's spelling.
//
// All functions are thread-safe. They read the process's current folder at
// each call.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/win32.h"

namespace zq::platform::internal {

// Result of a DOS → Unix conversion.
struct UnixPath {
    std::string path;  // absolute Unix path; empty when error != 0
    DWORD error = 0;   // Win32 error code, 0 on success
    explicit operator bool() const { return error == 0; }
};

// How DosToUnix treats the last component.
enum class LastComponent {
    kFoldCase,  // looked up without regard to case like every other component
    kAsGiven,   // kept exactly as given (for renames that change only the case)
};

// Unix path of `dos_path` (any form above). Errors, with `path` left empty:
//   NULL or ""                       ERROR_PATH_NOT_FOUND
//   MAX_PATH (260) characters or more ERROR_FILENAME_EXCED_RANGE
//   drive other than C: or Z:        ERROR_PATH_NOT_FOUND
//   network path                     ERROR_BAD_NETPATH
//   a character Windows forbids in names (< > : " | control characters) or
//   a wildcard (* ?)                 ERROR_INVALID_NAME
// Plain Unix paths are checked only for wildcards. The path need not exist.
// A trailing separator is kept ("C:\dir\" → ".../dir/").
UnixPath DosToUnix(const char* dos_path, LastComponent last = LastComponent::kFoldCase);

// DOS form of a Unix path: below $ZQ_PREFIX/drive_c it is "C:\...", else
// "Z:\..." ("/" is "Z:\"). A relative Unix path is taken from the current
// folder. "." and ".." are resolved by text. Never fails.
std::string UnixToDos(const std::string& unix_path);

// The full DOS path of `dos_path` by text alone, as GetFullPathNameA gives
// it: the drive letter upper case, backslashes, "." and ".." resolved, the
// trailing separator kept; the file system is not consulted and names are
// not checked (wildcards are allowed). Errors as DosToUnix, except that
// forbidden characters pass.
struct DosFullPath {
    std::string path;
    DWORD error = 0;
    explicit operator bool() const { return error == 0; }
};
DosFullPath FullDosPath(const char* dos_path);

// Unix path of the root of drive C: ($ZQ_PREFIX/drive_c), created with its
// standard folders at first use.
const std::string& DriveCRoot();

// Unix paths of C:\windows, C:\windows\system and C:\temp.
std::string WindowsFolderUnix();
std::string SystemFolderUnix();
std::string TempFolderUnix();

// Case folding of Windows-1252 text: ASCII letters, the accented letters
// 0xC0..0xDE (except 0xD7) with 0xE0..0xFE (except 0xF7), and the pairs
// 0x8A/0x9A, 0x8C/0x9C, 0x8E/0x9E, 0x9F/0xFF.
char ToUpperCp1252(char c);
char ToLowerCp1252(char c);
bool EqualsNoCase(std::string_view a, std::string_view b);

// Splits `path` at '\' and '/' into non-empty components.
std::vector<std::string> SplitPath(std::string_view path);

}  // namespace zq::platform::internal
