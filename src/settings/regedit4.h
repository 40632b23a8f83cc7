// Export and import of registry trees as REGEDIT4 text, the format of the
// .reg files of the registry editor of Windows 95 and NT 4.
//
//   REGEDIT4
//
//   [HKEY_CURRENT_USER\Software\Zq,Inc.]
//   "Name"="text with \\ and \" escaped"
//   @="the default value"
//   "Number"=dword:0000002a
//   "Blob"=hex:01,02,ff
//   "Path"=hex(2):25,54,45,4d,50,25,00
//
// Export writes the key, its values in their enumeration order, then each
// subkey the same way, in the registry's order; lines end with CR LF. A
// REG_SZ value is written as a quoted string when its bytes are text ending
// in exactly one NUL (no other NUL, no line break); every other value, and
// every type but REG_DWORD with four bytes, is written as hex bytes:
// hex: for REG_BINARY, hex(2): REG_EXPAND_SZ, hex(7): REG_MULTI_SZ, hex(N):
// any other type N (in hexadecimal). Hex lines are continued with a
// backslash before column 80 and two blanks, as the registry editor does.
// So export, import and export again give the same text, and the imported
// values have the exported types and bytes.
//
// Import reads such text (CR LF or LF) and applies it in order: [key]
// creates a key, [-key] deletes it with everything below it, "name"=- (or
// @=-) deletes a value, other value lines set values; blank lines and lines
// starting with ';' are skipped. Key paths start with a root name
// (HKEY_LOCAL_MACHINE, HKEY_CURRENT_USER, HKEY_CLASSES_ROOT, HKEY_USERS,
// HKEY_CURRENT_CONFIG, HKEY_DYN_DATA, or HKLM, HKCU, HKCR, HKU, HKCC).
// Import stops at the first line it cannot apply; what came before stays
// applied.
//
// Written over the Win32 registry functions only, so it behaves the same on
// every platform the library builds for. Not safe to run on one tree from
// two threads at once (the registry stays consistent; the text may not).
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "platform/win32.h"

namespace zq::settings {

enum class Regedit4Status {
    kOk = 0,
    kKeyNotFound,    // export: the key does not exist (error holds the registry's code)
    kBadKeyPath,     // a key path does not begin with a root name
    kNotRegedit4,    // import: the text does not begin with the line REGEDIT4
    kSyntaxError,    // import: a line is not REGEDIT4
    kRegistryError,  // a registry call failed (error holds its code)
    kFileError,      // the file could not be read or written
};

struct Regedit4Result {
    Regedit4Status status = Regedit4Status::kOk;
    LONG error = ERROR_SUCCESS;  // the registry's code, for kKeyNotFound and kRegistryError
    size_t line = 0;             // import: the line (from 1) that stopped it; 0 otherwise
    bool ok() const { return status == Regedit4Status::kOk; }
};

// Splits a key path "ROOT\sub\path" (the root names above, short forms
// too) into the root's handle, the root's full name and the path below it,
// with empty components dropped. False (outputs untouched) when the path
// does not begin with a root name.
bool SplitRegistryKeyPath(std::string_view path, HKEY& root, std::string& root_name,
                          std::string& sub_key);

// A short English description of a status, for messages.
const char* Regedit4StatusText(Regedit4Status status);

// Appends the REGEDIT4 text of the key `key_path` and everything below it
// to `text` (the header line first). On failure `text` holds what was
// written before the failure.
Regedit4Result ExportRegedit4(std::string_view key_path, std::string& text);

// Applies REGEDIT4 text to the registry.
Regedit4Result ImportRegedit4(std::string_view text);

// The same with a file (written whole, or read whole, as bytes).
Regedit4Result ExportRegedit4File(std::string_view key_path, const std::string& file_name);
Regedit4Result ImportRegedit4File(const std::string& file_name);

}  // namespace zq::settings
