#include "platform/posix/file/dos_path.h"

#include <dirent.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "platform/posix/base/prefix.h"

namespace zq::platform::internal {

namespace {

bool IsSeparator(char c) {
    return c == '\\' || c == '/';
}

// A path split into its drive (C: or Z:) and the components below the
// drive's root.
struct Located {
    bool on_c = false;
    std::vector<std::string> parts;
    bool trailing = false;  // the text ended in a separator
};

struct DriveC {
    std::string root;                          // $ZQ_PREFIX/drive_c
    std::vector<std::string> root_parts;       // its components
    std::vector<std::string> real_root_parts;  // the same without symbolic links
};

const DriveC& GetDriveC() {
    static const DriveC drive = [] {
        DriveC d;
        d.root = Prefix() + "/drive_c";
        MakeDirectories(d.root + "/windows/system", 0755);
        MakeDirectories(d.root + "/temp", 0755);
        d.root_parts = SplitPath(d.root);
        if (char* real = realpath(d.root.c_str(), nullptr)) {
            d.real_root_parts = SplitPath(real);
            std::free(real);
        } else {
            d.real_root_parts = d.root_parts;
        }
        return d;
    }();
    return drive;
}

bool StartsWith(const std::vector<std::string>& parts, const std::vector<std::string>& head) {
    if (parts.size() < head.size()) {
        return false;
    }
    for (size_t i = 0; i < head.size(); ++i) {
        if (parts[i] != head[i]) {
            return false;
        }
    }
    return true;
}

// Applies "." and ".." to `parts` (".." stops at the root).
std::vector<std::string> Collapse(const std::vector<std::string>& parts) {
    std::vector<std::string> result;
    for (const std::string& part : parts) {
        if (part == ".") {
            continue;
        }
        if (part == "..") {
            if (!result.empty()) {
                result.pop_back();
            }
            continue;
        }
        result.push_back(part);
    }
    return result;
}

// An absolute Unix path, components already collapsed, moved onto drive C:
// when it lies below drive_c.
Located LocateUnixParts(std::vector<std::string> parts) {
    const DriveC& drive = GetDriveC();
    Located located;
    for (const auto* root : {&drive.root_parts, &drive.real_root_parts}) {
        if (StartsWith(parts, *root)) {
            located.on_c = true;
            located.parts.assign(parts.begin() + static_cast<std::ptrdiff_t>(root->size()),
                                 parts.end());
            return located;
        }
    }
    located.parts = std::move(parts);
    return located;
}

Located CurrentFolder() {
    std::string cwd;
    if (char* buffer = getcwd(nullptr, 0)) {
        cwd = buffer;
        std::free(buffer);
    } else {
        cwd = "/";  // the current folder was removed: fall back to the root
    }
    return LocateUnixParts(Collapse(SplitPath(cwd)));
}

bool IsForbiddenNameChar(unsigned char c) {
    return c < 32 || c == '<' || c == '>' || c == ':' || c == '"' || c == '|';
}

enum class NameCheck { kCheck, kNone };

struct Parsed {
    Located located;
    DWORD error = 0;
};

Parsed Parse(const char* text, NameCheck check) {
    Parsed result;
    if (!text || !*text) {
        result.error = ERROR_PATH_NOT_FOUND;
        return result;
    }
    size_t length = std::strlen(text);
    if (length >= MAX_PATH) {
        result.error = ERROR_FILENAME_EXCED_RANGE;
        return result;
    }
    if (IsSeparator(text[0]) && IsSeparator(text[1])) {
        result.error = ERROR_BAD_NETPATH;
        return result;
    }

    bool unix_form = false;
    const char* rest = text;
    Located base;
    if (text[0] == '/') {
        unix_form = true;  // base: root of Z:
    } else if (text[0] == '\\') {
        base.on_c = CurrentFolder().on_c;
    } else if (text[1] == ':') {
        char letter = ToUpperCp1252(text[0]);
        if (letter < 'A' || letter > 'Z') {
            result.error = ERROR_INVALID_NAME;
            return result;
        }
        if (letter != 'C' && letter != 'Z') {
            result.error = ERROR_PATH_NOT_FOUND;
            return result;
        }
        rest = text + 2;
        bool on_c = letter == 'C';
        if (!IsSeparator(*rest)) {
            Located cwd = CurrentFolder();
            if (cwd.on_c == on_c) {
                base = std::move(cwd);
            }
        }
        base.on_c = on_c;
    } else {
        base = CurrentFolder();
    }

    std::vector<std::string> parts = SplitPath(rest);
    for (const std::string& part : parts) {
        for (unsigned char c : part) {
            if (check == NameCheck::kNone) {
                break;
            }
            if (c == '*' || c == '?' || (!unix_form && IsForbiddenNameChar(c))) {
                result.error = ERROR_INVALID_NAME;
                return result;
            }
        }
    }
    // Windows drops trailing dots and blanks of the last name ("file." is "file").
    if (!unix_form && !parts.empty() && parts.back() != "." && parts.back() != "..") {
        std::string& last = parts.back();
        while (!last.empty() && (last.back() == '.' || last.back() == ' ')) {
            last.pop_back();
        }
        if (last.empty()) {
            parts.pop_back();
        }
    }

    std::vector<std::string> all = std::move(base.parts);
    all.insert(all.end(), parts.begin(), parts.end());
    if (unix_form) {
        result.located = LocateUnixParts(Collapse(all));
    } else {
        result.located.on_c = base.on_c;
        result.located.parts = Collapse(all);
    }
    result.located.trailing = IsSeparator(text[length - 1]);
    return result;
}

// The name in `folder` equal to `name` without regard to case (smallest by
// byte order when several are), or "" when there is none.
std::string FindNameNoCase(const std::string& folder, const std::string& name) {
    DIR* dir = opendir(folder.empty() ? "/" : folder.c_str());
    if (!dir) {
        return {};
    }
    std::string best;
    while (const dirent* entry = readdir(dir)) {
        const char* candidate = entry->d_name;
        if (std::strcmp(candidate, ".") == 0 || std::strcmp(candidate, "..") == 0) {
            continue;
        }
        if (EqualsNoCase(candidate, name) && (best.empty() || best > candidate)) {
            best = candidate;
        }
    }
    closedir(dir);
    return best;
}

std::string FormatDos(const Located& located) {
    std::string dos = located.on_c ? "C:\\" : "Z:\\";
    for (size_t i = 0; i < located.parts.size(); ++i) {
        if (i > 0) {
            dos += '\\';
        }
        dos += located.parts[i];
    }
    if (located.trailing && !located.parts.empty()) {
        dos += '\\';
    }
    return dos;
}

}  // namespace

std::vector<std::string> SplitPath(std::string_view path) {
    std::vector<std::string> parts;
    size_t start = 0;
    while (start < path.size()) {
        size_t end = start;
        while (end < path.size() && !IsSeparator(path[end])) {
            ++end;
        }
        if (end > start) {
            parts.emplace_back(path.substr(start, end - start));
        }
        start = end + 1;
    }
    return parts;
}

const std::string& DriveCRoot() {
    return GetDriveC().root;
}

std::string WindowsFolderUnix() {
    return DriveCRoot() + "/windows";
}

std::string SystemFolderUnix() {
    return DriveCRoot() + "/windows/system";
}

std::string TempFolderUnix() {
    return DriveCRoot() + "/temp";
}

UnixPath DosToUnix(const char* dos_path, LastComponent last) {
    UnixPath result;
    Parsed parsed = Parse(dos_path, NameCheck::kCheck);
    if (parsed.error != 0) {
        result.error = parsed.error;
        return result;
    }
    const Located& located = parsed.located;
    std::string current = located.on_c ? DriveCRoot() : std::string();
    bool missing = false;  // a component was not found: keep the rest as given
    for (size_t i = 0; i < located.parts.size(); ++i) {
        const std::string& part = located.parts[i];
        std::string candidate = current + "/" + part;
        bool fold = !missing && !(last == LastComponent::kAsGiven && i + 1 == located.parts.size());
        if (fold) {
            struct stat st;
            if (lstat(candidate.c_str(), &st) != 0) {
                if (errno == ENOENT) {
                    std::string found = FindNameNoCase(current, part);
                    if (!found.empty()) {
                        candidate = current + "/" + found;
                    } else {
                        missing = true;
                    }
                } else {
                    missing = true;
                }
            }
        }
        current = std::move(candidate);
    }
    if (current.empty()) {
        current = "/";
    } else if (located.trailing && !located.parts.empty()) {
        current += '/';
    }
    result.path = std::move(current);
    return result;
}

std::string UnixToDos(const std::string& unix_path) {
    std::vector<std::string> parts;
    if (unix_path.empty() || unix_path[0] != '/') {
        if (char* cwd = getcwd(nullptr, 0)) {
            parts = SplitPath(cwd);
            std::free(cwd);
        }
    }
    std::vector<std::string> more = SplitPath(unix_path);
    parts.insert(parts.end(), more.begin(), more.end());
    Located located = LocateUnixParts(Collapse(parts));
    located.trailing = !unix_path.empty() && unix_path.back() == '/';
    return FormatDos(located);
}

DosFullPath FullDosPath(const char* dos_path) {
    DosFullPath result;
    Parsed parsed = Parse(dos_path, NameCheck::kNone);
    if (parsed.error != 0) {
        result.error = parsed.error;
        return result;
    }
    result.path = FormatDos(parsed.located);
    return result;
}

char ToUpperCp1252(char c) {
    auto u = static_cast<unsigned char>(c);
    if (u >= 'a' && u <= 'z') {
        return static_cast<char>(u - 0x20);
    }
    if (u >= 0xE0 && u <= 0xFE && u != 0xF7) {
        return static_cast<char>(u - 0x20);
    }
    switch (u) {
        case 0x9A:
            return static_cast<char>(0x8A);
        case 0x9C:
            return static_cast<char>(0x8C);
        case 0x9E:
            return static_cast<char>(0x8E);
        case 0xFF:
            return static_cast<char>(0x9F);
        default:
            return c;
    }
}

char ToLowerCp1252(char c) {
    auto u = static_cast<unsigned char>(c);
    if (u >= 'A' && u <= 'Z') {
        return static_cast<char>(u + 0x20);
    }
    if (u >= 0xC0 && u <= 0xDE && u != 0xD7) {
        return static_cast<char>(u + 0x20);
    }
    switch (u) {
        case 0x8A:
            return static_cast<char>(0x9A);
        case 0x8C:
            return static_cast<char>(0x9C);
        case 0x8E:
            return static_cast<char>(0x9E);
        case 0x9F:
            return static_cast<char>(0xFF);
        default:
            return c;
    }
}

bool EqualsNoCase(std::string_view a, std::string_view b) {
    if (a.size() != b.size()) {
        return false;
    }
    for (size_t i = 0; i < a.size(); ++i) {
        if (ToUpperCp1252(a[i]) != ToUpperCp1252(b[i])) {
            return false;
        }
    }
    return true;
}

}  // namespace zq::platform::internal
