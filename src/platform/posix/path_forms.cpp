// Minimal drive mapping: C: is the prefix's drive_c folder, Z: the Unix root.
#include "platform/posix/path_forms.h"

#include <cctype>

#include "platform/posix/prefix.h"

namespace zq::platform::internal {

std::string UnixPathFromCaller(const char* path) {
    std::string text = path ? path : "";
    bool has_drive =
        text.size() >= 2 && std::isalpha(static_cast<unsigned char>(text[0])) && text[1] == ':';
    if (!has_drive && text.find('\\') == std::string::npos)
        return text;
    std::string rest = has_drive ? text.substr(2) : text;
    for (char& c : rest) {
        if (c == '\\')
            c = '/';
    }
    if (!has_drive)
        return rest;
    char drive = static_cast<char>(std::toupper(static_cast<unsigned char>(text[0])));
    if (drive == 'Z')
        return rest.empty() ? "/" : rest;
    return Prefix() + "/drive_" + static_cast<char>(std::tolower(drive)) + rest;
}

std::string DosPathFromUnix(const std::string& unix_path) {
    const std::string drive_c = Prefix() + "/drive_c";
    std::string rest;
    std::string drive;
    if (unix_path.compare(0, drive_c.size(), drive_c) == 0 &&
        (unix_path.size() == drive_c.size() || unix_path[drive_c.size()] == '/')) {
        drive = "C:";
        rest = unix_path.substr(drive_c.size());
    } else {
        drive = "Z:";
        rest = unix_path;
    }
    if (rest.empty())
        rest = "/";
    for (char& c : rest) {
        if (c == '/')
            c = '\\';
    }
    return drive + rest;
}

}  // namespace zq::platform::internal
