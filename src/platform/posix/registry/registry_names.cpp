#include "platform/posix/registry/registry_names.h"

#include <cstring>

namespace zq::platform::internal {

namespace {

// Windows-1252 0x80..0x9F as Unicode; the five unassigned bytes map to the
// C1 control of the same number, as MultiByteToWideChar maps them.
constexpr char16_t kCp1252High[32] = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178,
};

char16_t UpperCharacter(unsigned char byte) {
    if (byte >= 'a' && byte <= 'z') {
        return static_cast<char16_t>(byte - 0x20);
    }
    if (byte < 0x80) {
        return byte;
    }
    if (byte < 0xA0) {
        switch (char16_t c = kCp1252High[byte - 0x80]) {
            case 0x0161:
                return 0x0160;  // s with caron
            case 0x0153:
                return 0x0152;  // oe
            case 0x017E:
                return 0x017D;  // z with caron
            case 0x0192:
                return 0x0191;  // f with hook
            default:
                return c;
        }
    }
    if (byte >= 0xE0 && byte != 0xF7) {
        return byte == 0xFF ? char16_t{0x0178} : static_cast<char16_t>(byte - 0x20);
    }
    return byte;
}

void AppendUtf8(char16_t c, std::string& out) {
    if (c < 0x80) {
        out.push_back(static_cast<char>(c));
    } else if (c < 0x800) {
        out.push_back(static_cast<char>(0xC0 | (c >> 6)));
        out.push_back(static_cast<char>(0x80 | (c & 0x3F)));
    } else {
        out.push_back(static_cast<char>(0xE0 | (c >> 12)));
        out.push_back(static_cast<char>(0x80 | ((c >> 6) & 0x3F)));
        out.push_back(static_cast<char>(0x80 | (c & 0x3F)));
    }
}

}  // namespace

void AppendFoldedName(std::string_view name, std::string& out) {
    for (char ch : name) {
        AppendUtf8(UpperCharacter(static_cast<unsigned char>(ch)), out);
    }
}

std::string FoldName(std::string_view name) {
    std::string out;
    out.reserve(name.size());
    AppendFoldedName(name, out);
    return out;
}

LONG SplitKeyPath(const char* path, KeyPath& out) {
    out.names.clear();
    out.folds.clear();
    out.folded.clear();
    if (!path || !*path) {
        return ERROR_SUCCESS;
    }
    if (*path == '\\') {
        return ERROR_BAD_PATHNAME;
    }
    std::string_view rest(path);
    std::vector<size_t> ends;  // end offset of each component in `folded`
    while (!rest.empty()) {
        size_t length = rest.find('\\');
        if (length == std::string_view::npos) {
            length = rest.size();
        }
        if (length > 0) {
            if (length > kMaxKeyNameChars) {
                return ERROR_INVALID_PARAMETER;
            }
            if (!out.names.empty()) {
                out.folded.push_back('\\');
            }
            out.names.push_back(rest.substr(0, length));
            AppendFoldedName(out.names.back(), out.folded);
            ends.push_back(out.folded.size());
        }
        rest.remove_prefix(length < rest.size() ? length + 1 : length);
    }
    // Views are taken once `folded` no longer grows.
    size_t begin = 0;
    for (size_t end : ends) {
        out.folds.emplace_back(out.folded.data() + begin, end - begin);
        begin = end + 1;
    }
    return ERROR_SUCCESS;
}

}  // namespace zq::platform::internal
