// The Win32 profile functions over ProfileStore: argument forms, copying
// into the caller's buffer, and the return values Windows gives.
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

#include "platform/posix/profile/profile_edit.h"
#include "platform/posix/profile/profile_store.h"
#include "platform/win32.h"

namespace zq::platform::internal {
namespace {

using LineKind = ProfileText::LineKind;

constexpr const char* kWinIni = "win.ini";

ProfileStore::Snapshot ReadProfile(const char* file_name) {
    ProfileStore::Snapshot snapshot =
        ProfileStore::Instance().Read(file_name ? file_name : kWinIni);
    if (!snapshot.exists) {
        SetLastError(ERROR_FILE_NOT_FOUND);
    }
    return snapshot;
}

// The flush form of the write functions: the file reaches the disk.
BOOL FlushProfile(const char* file_name) {
    const DWORD error = ProfileStore::Instance().Flush(file_name ? file_name : kWinIni);
    if (error != ERROR_SUCCESS) {
        SetLastError(error);
        return FALSE;
    }
    return TRUE;
}

BOOL ModifyProfile(const char* file_name, const ProfileStore::Edit& edit) {
    const DWORD error = ProfileStore::Instance().Modify(file_name ? file_name : kWinIni, edit);
    if (error != ERROR_SUCCESS) {
        SetLastError(error);
        return FALSE;
    }
    return TRUE;
}

// Copies at most size - 1 characters and a zero byte; returns the count.
DWORD CopyString(std::string_view text, char* buffer, DWORD size) {
    const size_t count = text.size() < size - 1 ? text.size() : size - 1;
    std::memcpy(buffer, text.data(), count);
    buffer[count] = '\0';
    return static_cast<DWORD>(count);
}

// Copies a value with one pair of matching quotes around it dropped.
// Windows drops the closing quote after cutting to the buffer, so a value
// that reaches just up to it loses its last character as well: "double"
// into 7 bytes gives 'doubl'. Kept as Windows does it.
DWORD CopyValue(std::string_view value, char* buffer, DWORD size) {
    if (value.size() > 1 && (value[0] == '"' || value[0] == '\'') && value.back() == value[0]) {
        const std::string_view inner = value.substr(1);  // closing quote still there
        size_t count = inner.size() < size - 1 ? inner.size() : size - 1;
        if (size >= inner.size() && count > 0) {
            --count;
        }
        return CopyString(inner.substr(0, count), buffer, size);
    }
    return CopyString(value, buffer, size);
}

// The default as Windows delivers it: NULL is "", trailing spaces dropped,
// then copied like a value.
DWORD CopyDefault(const char* default_value, char* buffer, DWORD size) {
    std::string_view text = default_value ? default_value : "";
    while (!text.empty() && text.back() == ' ') {
        text.remove_suffix(1);
    }
    return CopyValue(text, buffer, size);
}

// `list` holds zero-terminated strings without the list's final zero.
// Returns the count of bytes placed before the final zero (see profile.h
// for lists that do not fit).
DWORD CopyList(const std::string& list, char* buffer, DWORD size, bool empty_has_two_zeros) {
    if (list.empty()) {
        buffer[0] = '\0';
        if (empty_has_two_zeros && size >= 2) {
            buffer[1] = '\0';
        }
        return 0;
    }
    if (list.size() + 1 < size) {
        std::memcpy(buffer, list.data(), list.size());
        buffer[list.size()] = '\0';
        return static_cast<DWORD>(list.size());
    }
    if (size < 2) {
        buffer[0] = '\0';
        return 0;
    }
    const DWORD count = size - 2;
    std::memcpy(buffer, list.data(), count);
    buffer[count] = '\0';
    buffer[count + 1] = '\0';
    return count;
}

void AppendName(std::string& list, std::string_view name) {
    list += name;
    list += '\0';
}

// Names that are empty would end the list early: they are left out.
std::string SectionNames(const ProfileText& text) {
    std::string list;
    for (const ProfileText::Section& section : text.sections()) {
        if (!text.Name(section).empty()) {
            AppendName(list, text.Name(section));
        }
    }
    return list;
}

std::string KeyNames(const ProfileText& text, uint32_t section) {
    std::string list;
    if (section == ProfileText::kNone) {
        return list;
    }
    const ProfileText::Section& range = text.sections()[section];
    for (uint32_t l = range.header + 1; l < range.end; ++l) {
        const ProfileText::Line& line = text.lines()[l];
        if (line.kind == LineKind::kEntry && line.name_end > line.name_begin) {
            AppendName(list, text.Name(line));
        }
    }
    return list;
}

std::string SectionLines(const ProfileText& text, uint32_t section) {
    std::string list;
    if (section == ProfileText::kNone) {
        return list;
    }
    const ProfileText::Section& range = text.sections()[section];
    for (uint32_t l = range.header + 1; l < range.end; ++l) {
        const ProfileText::Line& line = text.lines()[l];
        if (line.kind == LineKind::kEntry) {
            list += text.Name(line);
            list += '=';
            AppendName(list, text.Value(line));
        } else if (line.kind == LineKind::kBare) {
            AppendName(list, text.Name(line));
        }
    }
    return list;
}

// Reads a number as Windows' profile functions do: blanks, sign, an
// optional 0x / 0o / 0b base prefix, digits of that base; wraps at 32 bits.
UINT ParseProfileInt(const char* text) {
    while (*text != '\0' && static_cast<unsigned char>(*text) <= ' ') {
        ++text;
    }
    bool negative = false;
    if (*text == '+' || *text == '-') {
        negative = *text == '-';
        ++text;
    }
    unsigned base = 10;
    if (text[0] == '0' && (text[1] == 'x' || text[1] == 'o' || text[1] == 'b')) {
        base = text[1] == 'x' ? 16 : text[1] == 'o' ? 8 : 2;
        text += 2;
    }
    uint32_t value = 0;
    for (;; ++text) {
        const char c = *text;
        unsigned digit;
        if (c >= '0' && c <= '9') {
            digit = static_cast<unsigned>(c - '0');
        } else if (c >= 'a' && c <= 'z') {
            digit = static_cast<unsigned>(c - 'a') + 10;
        } else if (c >= 'A' && c <= 'Z') {
            digit = static_cast<unsigned>(c - 'A') + 10;
        } else {
            break;
        }
        if (digit >= base) {
            break;
        }
        value = value * base + digit;
    }
    return negative ? 0u - value : value;
}

}  // namespace
}  // namespace zq::platform::internal

using namespace zq::platform::internal;

extern "C" {

DWORD WINAPI GetPrivateProfileStringA(LPCSTR lpAppName, LPCSTR lpKeyName, LPCSTR lpDefault,
                                      LPSTR lpReturnedString, DWORD nSize, LPCSTR lpFileName) {
    if (!lpReturnedString || nSize == 0) {
        return 0;
    }
    const ProfileStore::Snapshot snapshot = ReadProfile(lpFileName);
    const ProfileText& text = *snapshot.text;
    if (!lpAppName) {
        return CopyList(SectionNames(text), lpReturnedString, nSize, false);
    }
    const uint32_t section = text.FindSection(lpAppName);
    if (!lpKeyName) {
        const DWORD count = CopyList(KeyNames(text, section), lpReturnedString, nSize, false);
        if (lpReturnedString[0] == '\0') {
            return CopyDefault(lpDefault, lpReturnedString, nSize);
        }
        return count;
    }
    const uint32_t entry =
        section == ProfileText::kNone ? ProfileText::kNone : text.FindEntry(section, lpKeyName);
    if (entry == ProfileText::kNone) {
        return CopyDefault(lpDefault, lpReturnedString, nSize);
    }
    return CopyValue(text.Value(text.lines()[entry]), lpReturnedString, nSize);
}

BOOL WINAPI WritePrivateProfileStringA(LPCSTR lpAppName, LPCSTR lpKeyName, LPCSTR lpString,
                                       LPCSTR lpFileName) {
    if (!lpAppName) {
        if (!lpKeyName && !lpString) {
            return FlushProfile(lpFileName);
        }
        SetLastError(ERROR_FILE_NOT_FOUND);
        return FALSE;
    }
    const std::string section = lpAppName;
    if (!lpKeyName) {
        return ModifyProfile(
            lpFileName, [&](const ProfileText& text) { return WithoutSection(text, section); });
    }
    const std::string key = lpKeyName;
    if (!lpString) {
        return ModifyProfile(
            lpFileName, [&](const ProfileText& text) { return WithoutKey(text, section, key); });
    }
    const std::string value = lpString;
    return ModifyProfile(
        lpFileName, [&](const ProfileText& text) { return WithValue(text, section, key, value); });
}

UINT WINAPI GetPrivateProfileIntA(LPCSTR lpAppName, LPCSTR lpKeyName, INT nDefault,
                                  LPCSTR lpFileName) {
    char buffer[64];
    if (GetPrivateProfileStringA(lpAppName, lpKeyName, "", buffer, sizeof buffer, lpFileName) ==
        0) {
        return static_cast<UINT>(nDefault);
    }
    return ParseProfileInt(buffer);
}

DWORD WINAPI GetPrivateProfileSectionNamesA(LPSTR lpszReturnBuffer, DWORD nSize,
                                            LPCSTR lpFileName) {
    if (!lpszReturnBuffer || nSize == 0) {
        return 0;
    }
    const ProfileStore::Snapshot snapshot = ReadProfile(lpFileName);
    return CopyList(SectionNames(*snapshot.text), lpszReturnBuffer, nSize, false);
}

DWORD WINAPI GetPrivateProfileSectionA(LPCSTR lpAppName, LPSTR lpReturnedString, DWORD nSize,
                                       LPCSTR lpFileName) {
    if (!lpReturnedString || nSize == 0) {
        return 0;
    }
    if (!lpAppName || !lpFileName) {
        if (!lpFileName) {
            SetLastError(ERROR_FILE_NOT_FOUND);
        }
        return CopyList({}, lpReturnedString, nSize, true);
    }
    const ProfileStore::Snapshot snapshot = ReadProfile(lpFileName);
    const ProfileText& text = *snapshot.text;
    return CopyList(SectionLines(text, text.FindSection(lpAppName)), lpReturnedString, nSize, true);
}

BOOL WINAPI WritePrivateProfileSectionA(LPCSTR lpAppName, LPCSTR lpString, LPCSTR lpFileName) {
    if (!lpAppName) {
        if (!lpString) {
            return FlushProfile(lpFileName);
        }
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    const std::string section = lpAppName;
    if (!lpString) {
        return ModifyProfile(
            lpFileName, [&](const ProfileText& text) { return WithoutSection(text, section); });
    }
    std::vector<std::string_view> lines;
    for (const char* p = lpString; *p != '\0'; p += std::strlen(p) + 1) {
        lines.emplace_back(p);
    }
    return ModifyProfile(lpFileName, [&](const ProfileText& text) {
        return WithSectionLines(text, section, lines);
    });
}

DWORD WINAPI GetProfileStringA(LPCSTR lpAppName, LPCSTR lpKeyName, LPCSTR lpDefault,
                               LPSTR lpReturnedString, DWORD nSize) {
    return GetPrivateProfileStringA(lpAppName, lpKeyName, lpDefault, lpReturnedString, nSize,
                                    kWinIni);
}

UINT WINAPI GetProfileIntA(LPCSTR lpAppName, LPCSTR lpKeyName, INT nDefault) {
    return GetPrivateProfileIntA(lpAppName, lpKeyName, nDefault, kWinIni);
}

BOOL WINAPI WriteProfileStringA(LPCSTR lpAppName, LPCSTR lpKeyName, LPCSTR lpString) {
    return WritePrivateProfileStringA(lpAppName, lpKeyName, lpString, kWinIni);
}

}  // extern "C"
