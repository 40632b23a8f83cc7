#include "console.h"

#include <charconv>
#include <cstdio>
#include <iostream>
#include <vector>

namespace zq::app {

namespace {

struct ErrorText {
    DWORD code;
    const char* name;
    const char* meaning;
};

// The platform errors the library passes through, with what they mean to
// a user of the tool.
constexpr ErrorText kWin32Errors[] = {
    {ERROR_INVALID_FUNCTION, "ERROR_INVALID_FUNCTION", "the function is not supported here"},
    {ERROR_FILE_NOT_FOUND, "ERROR_FILE_NOT_FOUND", "the file, key or value does not exist"},
    {ERROR_PATH_NOT_FOUND, "ERROR_PATH_NOT_FOUND", "the path does not exist"},
    {ERROR_TOO_MANY_OPEN_FILES, "ERROR_TOO_MANY_OPEN_FILES", "too many files are open"},
    {ERROR_ACCESS_DENIED, "ERROR_ACCESS_DENIED", "access is denied"},
    {ERROR_INVALID_HANDLE, "ERROR_INVALID_HANDLE", "the handle is not valid"},
    {ERROR_NOT_ENOUGH_MEMORY, "ERROR_NOT_ENOUGH_MEMORY", "there is not enough memory"},
    {ERROR_BAD_FORMAT, "ERROR_BAD_FORMAT", "the file's format is not valid"},
    {ERROR_INVALID_DATA, "ERROR_INVALID_DATA", "the data is not valid"},
    {ERROR_OUTOFMEMORY, "ERROR_OUTOFMEMORY", "there is not enough memory"},
    {ERROR_NO_MORE_FILES, "ERROR_NO_MORE_FILES", "there are no more files"},
    {ERROR_WRITE_PROTECT, "ERROR_WRITE_PROTECT", "the medium is write-protected"},
    {ERROR_WRITE_FAULT, "ERROR_WRITE_FAULT", "the device cannot be written"},
    {ERROR_READ_FAULT, "ERROR_READ_FAULT", "the device cannot be read"},
    {ERROR_GEN_FAILURE, "ERROR_GEN_FAILURE", "a device is not working"},
    {ERROR_SHARING_VIOLATION, "ERROR_SHARING_VIOLATION", "another process holds the file"},
    {ERROR_LOCK_VIOLATION, "ERROR_LOCK_VIOLATION", "another process has locked a part of the file"},
    {ERROR_HANDLE_EOF, "ERROR_HANDLE_EOF", "the end of the file was reached"},
    {ERROR_HANDLE_DISK_FULL, "ERROR_HANDLE_DISK_FULL", "the disk is full"},
    {ERROR_NOT_SUPPORTED, "ERROR_NOT_SUPPORTED", "the request is not supported"},
    {ERROR_FILE_EXISTS, "ERROR_FILE_EXISTS", "the file exists"},
    {ERROR_CANNOT_MAKE, "ERROR_CANNOT_MAKE", "the file or folder cannot be made"},
    {ERROR_INVALID_PARAMETER, "ERROR_INVALID_PARAMETER", "an argument is not valid"},
    {ERROR_OPEN_FAILED, "ERROR_OPEN_FAILED", "the file cannot be opened"},
    {ERROR_DISK_FULL, "ERROR_DISK_FULL", "the disk is full"},
    {ERROR_CALL_NOT_IMPLEMENTED, "ERROR_CALL_NOT_IMPLEMENTED",
     "the emulated system does not offer this function"},
    {ERROR_INSUFFICIENT_BUFFER, "ERROR_INSUFFICIENT_BUFFER", "the buffer is too small"},
    {ERROR_INVALID_NAME, "ERROR_INVALID_NAME", "the name is not valid"},
    {ERROR_MOD_NOT_FOUND, "ERROR_MOD_NOT_FOUND", "the module cannot be found"},
    {ERROR_PROC_NOT_FOUND, "ERROR_PROC_NOT_FOUND", "the module lacks an entry point"},
    {ERROR_DIR_NOT_EMPTY, "ERROR_DIR_NOT_EMPTY", "the folder is not empty"},
    {ERROR_BAD_PATHNAME, "ERROR_BAD_PATHNAME", "the path is not valid"},
    {ERROR_BUSY, "ERROR_BUSY", "the resource is busy"},
    {ERROR_ALREADY_EXISTS, "ERROR_ALREADY_EXISTS", "it exists already"},
    {ERROR_BAD_EXE_FORMAT, "ERROR_BAD_EXE_FORMAT", "the file is not a module"},
    {ERROR_FILENAME_EXCED_RANGE, "ERROR_FILENAME_EXCED_RANGE", "the name is too long"},
    {ERROR_MORE_DATA, "ERROR_MORE_DATA", "the data does not fit"},
    {ERROR_NO_MORE_ITEMS, "ERROR_NO_MORE_ITEMS", "there are no more entries"},
    {ERROR_DIRECTORY, "ERROR_DIRECTORY", "the name is not a folder"},
    {ERROR_NOACCESS, "ERROR_NOACCESS", "the memory cannot be reached"},
    {ERROR_BADDB, "ERROR_BADDB", "the registry database is damaged"},
    {ERROR_BADKEY, "ERROR_BADKEY", "the registry key is not valid"},
    {ERROR_CANTOPEN, "ERROR_CANTOPEN", "the registry key cannot be opened"},
    {ERROR_CANTREAD, "ERROR_CANTREAD", "the registry key cannot be read"},
    {ERROR_CANTWRITE, "ERROR_CANTWRITE", "the registry key cannot be written"},
    {ERROR_REGISTRY_CORRUPT, "ERROR_REGISTRY_CORRUPT", "the registry is damaged"},
    {ERROR_REGISTRY_IO_FAILED, "ERROR_REGISTRY_IO_FAILED",
     "the registry database cannot be read or written (another process may hold it)"},
    {ERROR_KEY_DELETED, "ERROR_KEY_DELETED", "the registry key was deleted"},
    {ERROR_KEY_HAS_CHILDREN, "ERROR_KEY_HAS_CHILDREN", "the registry key has subkeys"},
    {ERROR_RESOURCE_DATA_NOT_FOUND, "ERROR_RESOURCE_DATA_NOT_FOUND", "the file holds no resources"},
    {ERROR_RESOURCE_TYPE_NOT_FOUND, "ERROR_RESOURCE_TYPE_NOT_FOUND",
     "the file holds no resource of this type (no version block)"},
    {ERROR_RESOURCE_NAME_NOT_FOUND, "ERROR_RESOURCE_NAME_NOT_FOUND",
     "the file does not hold this resource"},
    {ERROR_NO_UNICODE_TRANSLATION, "ERROR_NO_UNICODE_TRANSLATION",
     "the text does not fit the code page"},
    {ERROR_LOG_FILE_FULL, "ERROR_LOG_FILE_FULL", "the event log is full"},
};

struct LibraryText {
    DWORD code;
    const char* meaning;
};

// The library's own status codes, shared by all its classes.
constexpr LibraryText kLibraryCodes[] = {
    {0x24004000, "an object could not be made (out of memory, or no version information)"},
    {0x24004401, "a callback is not callable code"},
    {0x24004407, "an argument is not valid, or the entry exists already"},
    {0x2400441A, "an out-pointer is missing"},
    {0x24004451, "a resource could not be loaded (is the language module there?)"},
    {0x24014000, "the registry layer ran out of memory"},
    {0x24014407, "the settings object is not valid (no key layout for this program)"},
    {0x2401446C, "the value name is missing from the library's string table"},
    {0x24015800, "the registry value has another type"},
};

std::string Convert(std::string_view text, UINT from, DWORD from_flags, UINT to) {
    if (text.empty()) {
        return {};
    }
    const int length = static_cast<int>(text.size());
    const int wide_length = MultiByteToWideChar(from, from_flags, text.data(), length, nullptr, 0);
    if (wide_length <= 0) {
        return std::string(text);
    }
    std::vector<WCHAR> wide(static_cast<size_t>(wide_length));
    MultiByteToWideChar(from, from_flags, text.data(), length, wide.data(), wide_length);
    const int out_length =
        WideCharToMultiByte(to, 0, wide.data(), wide_length, nullptr, 0, nullptr, nullptr);
    if (out_length <= 0) {
        return std::string(text);
    }
    std::string out(static_cast<size_t>(out_length), '\0');
    WideCharToMultiByte(to, 0, wide.data(), wide_length, out.data(), out_length, nullptr, nullptr);
    return out;
}

bool IsAscii(std::string_view text) {
    for (char c : text) {
        if (static_cast<unsigned char>(c) >= 0x80) {
            return false;
        }
    }
    return true;
}

}  // namespace

std::string ToUtf8(std::string_view ansi) {
    return IsAscii(ansi) ? std::string(ansi) : Convert(ansi, CP_ACP, 0, CP_UTF8);
}

std::string ToAnsi(std::string_view utf8) {
    return IsAscii(utf8) ? std::string(utf8) : Convert(utf8, CP_UTF8, MB_ERR_INVALID_CHARS, CP_ACP);
}

std::string Pad(std::string_view utf8, size_t width) {
    size_t characters = 0;
    for (char c : utf8) {
        if ((static_cast<unsigned char>(c) & 0xC0) != 0x80) {
            ++characters;
        }
    }
    std::string out(utf8);
    if (characters < width) {
        out.append(width - characters, ' ');
    }
    return out;
}

void PrintJson(const nlohmann::json& value) {
    // Invalid UTF-8 that slipped through is replaced rather than thrown on.
    std::cout << value.dump(2, ' ', false, nlohmann::json::error_handler_t::replace) << '\n';
    std::cout.flush();
}

int Fail(std::string_view command, std::string_view subject, std::string_view message) {
    std::cout.flush();
    std::string line = "zq ";
    line += command;
    line += ": ";
    if (!subject.empty()) {
        line += subject;
        line += ": ";
    }
    line += message;
    line += '\n';
    std::fputs(line.c_str(), stderr);
    return kExitFailed;
}

int UsageError(std::string_view command, std::string_view message) {
    Fail(command, "", message);
    std::string hint = "Run 'zq ";
    hint += command;
    hint += " --help' for how to use it.\n";
    std::fputs(hint.c_str(), stderr);
    return kExitUsage;
}

std::string Win32Status(DWORD code) {
    for (const ErrorText& entry : kWin32Errors) {
        if (entry.code == code) {
            return std::string(entry.meaning) + " (error " + std::to_string(code) + ", " +
                   entry.name + ")";
        }
    }
    return "the system reported a failure (error " + std::to_string(code) + ")";
}

std::string LibraryStatus(DWORD code) {
    if ((code & 0xFF000000u) != 0x24000000u) {
        return Win32Status(code);
    }
    char number[16];
    std::snprintf(number, sizeof number, "0x%08X", code);
    for (const LibraryText& entry : kLibraryCodes) {
        if (entry.code == code) {
            return std::string(entry.meaning) + " (status " + number + ")";
        }
    }
    return std::string("the library reported a failure (status ") + number + ")";
}

std::string LocalStatus(std::string_view owner, DWORD code, std::string_view meaning) {
    std::string text(meaning);
    text += " (";
    text += owner;
    text += " status ";
    text += std::to_string(code);
    text += ')';
    return text;
}

void SetExamples(CLI::App* command, std::initializer_list<std::string_view> lines) {
    std::string text = lines.size() > 1 ? "Examples:" : "Example:";
    for (std::string_view line : lines) {
        text += "\n  ";
        text += line;
    }
    command->footer(text);
}

void AddJsonFlag(CLI::App* command, bool& json) {
    command->add_flag("--json", json, "Print the result as JSON");
}

bool ParseNumber(std::string_view text, DWORD& value) {
    int base = 10;
    if (text.size() > 2 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X')) {
        text.remove_prefix(2);
        base = 16;
    }
    if (text.empty()) {
        return false;
    }
    uint32_t parsed = 0;
    auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), parsed, base);
    if (error != std::errc() || end != text.data() + text.size()) {
        return false;
    }
    value = parsed;
    return true;
}

bool ParseInteger(std::string_view text, int& value) {
    if (!text.empty() && text.front() == '+') {
        text.remove_prefix(1);
        if (!text.empty() && text.front() == '-') {
            return false;  // "+-1"
        }
    }
    if (text.empty()) {
        return false;
    }
    int32_t parsed = 0;
    auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), parsed, 10);
    if (error != std::errc() || end != text.data() + text.size()) {
        return false;
    }
    value = parsed;
    return true;
}

}  // namespace zq::app
