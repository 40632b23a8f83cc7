#include "settings/regedit4.h"

#include <fstream>
#include <iterator>
#include <utility>
#include <vector>

namespace zq::settings {

namespace {

constexpr char kHeader[] = "REGEDIT4";
constexpr char kLineEnd[] = "\r\n";
// A hex line is continued once it has reached this many columns, so that no
// line, its backslash included, is longer than 79 (the registry editor's
// layout: 25 bytes on a continuation line).
constexpr size_t kWrapColumn = 77;

struct Root {
    const char* name;
    const char* short_name;  // may be nullptr
    HKEY key;
};

const Root kRoots[] = {
    {"HKEY_LOCAL_MACHINE", "HKLM", HKEY_LOCAL_MACHINE},
    {"HKEY_CURRENT_USER", "HKCU", HKEY_CURRENT_USER},
    {"HKEY_CLASSES_ROOT", "HKCR", HKEY_CLASSES_ROOT},
    {"HKEY_USERS", "HKU", HKEY_USERS},
    {"HKEY_CURRENT_CONFIG", "HKCC", HKEY_CURRENT_CONFIG},
    {"HKEY_DYN_DATA", nullptr, HKEY_DYN_DATA},
};

char AsciiUpper(char c) {
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

bool EqualsIgnoringCase(std::string_view a, std::string_view b) {
    if (a.size() != b.size()) {
        return false;
    }
    for (size_t i = 0; i < a.size(); ++i) {
        if (AsciiUpper(a[i]) != AsciiUpper(b[i])) {
            return false;
        }
    }
    return true;
}

bool StartsWithIgnoringCase(std::string_view text, std::string_view prefix) {
    return text.size() >= prefix.size() &&
           EqualsIgnoringCase(text.substr(0, prefix.size()), prefix);
}

bool IsBlank(char c) {
    return c == ' ' || c == '\t';
}

std::string_view TrimLeft(std::string_view text) {
    while (!text.empty() && IsBlank(text.front())) {
        text.remove_prefix(1);
    }
    return text;
}

std::string_view TrimRight(std::string_view text) {
    while (!text.empty() && (IsBlank(text.back()) || text.back() == '\r')) {
        text.remove_suffix(1);
    }
    return text;
}

// Nothing but blanks, or a comment.
bool IsRestEmpty(std::string_view rest) {
    rest = TrimLeft(rest);
    return rest.empty() || rest.front() == ';';
}

// Splits "ROOT\sub\path" into its root and the path below it, with empty
// components dropped.
bool SplitKeyPath(std::string_view path, const Root*& root, std::string& sub) {
    size_t slash = path.find('\\');
    std::string_view root_name = path.substr(0, slash);
    root = nullptr;
    for (const Root& candidate : kRoots) {
        if (EqualsIgnoringCase(root_name, candidate.name) ||
            (candidate.short_name && EqualsIgnoringCase(root_name, candidate.short_name))) {
            root = &candidate;
        }
    }
    if (!root) {
        return false;
    }
    sub.clear();
    std::string_view rest =
        slash == std::string_view::npos ? std::string_view() : path.substr(slash + 1);
    while (!rest.empty()) {
        size_t end = rest.find('\\');
        std::string_view part = rest.substr(0, end);
        if (!part.empty()) {
            if (!sub.empty()) {
                sub += '\\';
            }
            sub.append(part);
        }
        rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
    }
    return true;
}

void AppendEscaped(std::string_view text, std::string& out) {
    for (char c : text) {
        if (c == '\\' || c == '"') {
            out += '\\';
        }
        out += c;
    }
}

const char kHexDigits[] = "0123456789abcdef";

void AppendHexByte(unsigned char byte, std::string& out) {
    out += kHexDigits[byte >> 4];
    out += kHexDigits[byte & 0x0F];
}

bool IsStringType(DWORD type) {
    return type == REG_SZ || type == REG_EXPAND_SZ || type == REG_MULTI_SZ;
}

// Text that a quoted string gives back exactly: one NUL, at the end, and
// no line break before it.
bool IsPlainString(std::string_view data) {
    if (data.empty() || data.back() != '\0') {
        return false;
    }
    data.remove_suffix(1);
    return data.find_first_of(std::string_view("\0\r\n", 3)) == std::string_view::npos;
}

class Exporter {
public:
    explicit Exporter(std::string& out) : out_(out) {}

    Regedit4Result ExportKey(HKEY key, const std::string& path) {
        out_ += kLineEnd;
        out_ += '[';
        out_ += path;
        out_ += ']';
        out_ += kLineEnd;
        if (LONG error = ExportValues(key)) {
            return Failure(error);
        }
        std::vector<char> name(256);
        for (DWORD index = 0;; ++index) {
            DWORD size = static_cast<DWORD>(name.size());
            LONG error =
                RegEnumKeyExA(key, index, name.data(), &size, nullptr, nullptr, nullptr, nullptr);
            if (error == ERROR_NO_MORE_ITEMS) {
                break;
            }
            if (error == ERROR_MORE_DATA && name.size() < 65536) {
                name.resize(name.size() * 2);
                --index;
                continue;
            }
            if (error != ERROR_SUCCESS) {
                return Failure(error);
            }
            std::string child_name(name.data(), size);
            HKEY child = nullptr;
            if ((error = RegOpenKeyExA(key, child_name.c_str(), 0, KEY_READ, &child)) !=
                ERROR_SUCCESS) {
                return Failure(error);
            }
            Regedit4Result result = ExportKey(child, path + "\\" + child_name);
            RegCloseKey(child);
            if (!result.ok()) {
                return result;
            }
        }
        return {};
    }

private:
    static Regedit4Result Failure(LONG error) { return {Regedit4Status::kRegistryError, error, 0}; }

    LONG ExportValues(HKEY key) {
        DWORD max_name = 0;
        DWORD max_data = 0;
        if (LONG error = RegQueryInfoKeyA(key, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                                          nullptr, &max_name, &max_data, nullptr, nullptr)) {
            return error;
        }
        std::vector<char> name(max_name + 1);
        std::vector<BYTE> data(max_data + 1);
        for (DWORD index = 0;;) {
            DWORD name_size = static_cast<DWORD>(name.size());
            DWORD data_size = static_cast<DWORD>(data.size());
            DWORD type = REG_NONE;
            LONG error = RegEnumValueA(key, index, name.data(), &name_size, nullptr, &type,
                                       data.data(), &data_size);
            if (error == ERROR_NO_MORE_ITEMS) {
                return ERROR_SUCCESS;
            }
            if (error == ERROR_MORE_DATA) {
                // The key changed since it was measured: grow and ask again.
                if (data_size > data.size()) {
                    data.resize(data_size + 1);
                } else if (name.size() < 32768) {
                    name.resize(name.size() * 2);
                } else {
                    return error;
                }
                continue;
            }
            if (error != ERROR_SUCCESS) {
                return error;
            }
            AppendValue(std::string_view(name.data(), name_size), type,
                        std::string_view(reinterpret_cast<const char*>(data.data()), data_size));
            ++index;
        }
    }

    void AppendValue(std::string_view name, DWORD type, std::string_view data) {
        size_t line_start = out_.size();
        if (name.empty()) {
            out_ += '@';
        } else {
            out_ += '"';
            AppendEscaped(name, out_);
            out_ += '"';
        }
        out_ += '=';
        if (type == REG_SZ && IsPlainString(data)) {
            out_ += '"';
            AppendEscaped(data.substr(0, data.size() - 1), out_);
            out_ += '"';
        } else if (type == REG_DWORD && data.size() == 4) {
            out_ += "dword:";
            for (int i = 3; i >= 0; --i) {
                AppendHexByte(static_cast<unsigned char>(data[static_cast<size_t>(i)]), out_);
            }
        } else {
            if (type == REG_BINARY) {
                out_ += "hex:";
            } else {
                out_ += "hex(";
                char digits[9];
                int count = 0;
                DWORD rest = type;
                do {
                    digits[count++] = kHexDigits[rest & 0x0F];
                    rest >>= 4;
                } while (rest);
                while (count > 0) {
                    out_ += digits[--count];
                }
                out_ += "):";
            }
            for (size_t i = 0; i < data.size(); ++i) {
                AppendHexByte(static_cast<unsigned char>(data[i]), out_);
                if (i + 1 < data.size()) {
                    out_ += ',';
                    if (out_.size() - line_start >= kWrapColumn) {
                        out_ += '\\';
                        out_ += kLineEnd;
                        line_start = out_.size();
                        out_ += "  ";
                    }
                }
            }
        }
        out_ += kLineEnd;
    }

    std::string& out_;
};

// Removes `sub` below `root` with everything below it; a missing key is no
// error.
LONG DeleteTree(HKEY root, const std::string& sub) {
    HKEY key = nullptr;
    LONG error = RegOpenKeyExA(root, sub.c_str(), 0, KEY_READ | KEY_WRITE, &key);
    if (error == ERROR_FILE_NOT_FOUND) {
        return ERROR_SUCCESS;
    }
    if (error != ERROR_SUCCESS) {
        return error;
    }
    std::vector<char> name(256);
    for (;;) {
        DWORD size = static_cast<DWORD>(name.size());
        error = RegEnumKeyExA(key, 0, name.data(), &size, nullptr, nullptr, nullptr, nullptr);
        if (error == ERROR_NO_MORE_ITEMS) {
            error = ERROR_SUCCESS;
            break;
        }
        if (error == ERROR_MORE_DATA && name.size() < 65536) {
            name.resize(name.size() * 2);
            continue;
        }
        if (error != ERROR_SUCCESS ||
            (error = DeleteTree(key, std::string(name.data(), size))) != ERROR_SUCCESS) {
            break;
        }
    }
    RegCloseKey(key);
    return error == ERROR_SUCCESS ? RegDeleteKeyA(root, sub.c_str()) : error;
}

// Reads a quoted string whose opening quote is the first character of
// `rest`; \\ and \" stand for \ and ". On success `rest` is what follows the
// closing quote.
bool ParseQuoted(std::string_view& rest, std::string& out) {
    out.clear();
    for (size_t i = 1; i < rest.size(); ++i) {
        char c = rest[i];
        if (c == '"') {
            rest.remove_prefix(i + 1);
            return true;
        }
        if (c == '\\' && i + 1 < rest.size() && (rest[i + 1] == '\\' || rest[i + 1] == '"')) {
            c = rest[++i];
        }
        out += c;
    }
    return false;
}

int HexValue(char c) {
    if (c >= '0' && c <= '9')
        return c - '0';
    c = AsciiUpper(c);
    if (c >= 'A' && c <= 'F')
        return c - 'A' + 10;
    return -1;
}

// One to `max_digits` hex digits; `text` advances past them.
bool ParseHexNumber(std::string_view& text, size_t max_digits, DWORD& value) {
    size_t count = 0;
    value = 0;
    while (count < text.size() && HexValue(text[count]) >= 0) {
        if (++count > max_digits) {
            return false;
        }
        value = value << 4 | static_cast<DWORD>(HexValue(text[count - 1]));
    }
    text.remove_prefix(count);
    return count > 0;
}

// "01,02, ff" (blanks allowed, a trailing comma too).
bool ParseHexBytes(std::string_view text, std::string& out) {
    out.clear();
    for (;;) {
        text = TrimLeft(text);
        if (IsRestEmpty(text)) {
            return true;
        }
        DWORD byte = 0;
        if (!ParseHexNumber(text, 2, byte)) {
            return false;
        }
        out += static_cast<char>(byte);
        text = TrimLeft(text);
        if (text.empty() || text.front() == ';') {
            return true;
        }
        if (text.front() != ',') {
            return false;
        }
        text.remove_prefix(1);
    }
}

class Importer {
public:
    explicit Importer(std::string_view text) : text_(text) {}
    ~Importer() { CloseCurrent(); }

    Regedit4Result Run() {
        std::string_view line;
        if (!NextLine(line)) {
            return {Regedit4Status::kNotRegedit4, ERROR_SUCCESS, 1};
        }
        if (line.substr(0, 3) == "\xEF\xBB\xBF") {
            line.remove_prefix(3);
        }
        if (TrimRight(line) != kHeader) {
            return {Regedit4Status::kNotRegedit4, ERROR_SUCCESS, 1};
        }
        while (NextLine(line)) {
            std::string_view content = TrimLeft(TrimRight(line));
            Regedit4Result result;
            if (content.empty() || content.front() == ';') {
                continue;
            }
            if (content.front() == '[') {
                result = Section(content);
            } else if (content.front() == '"' || content.front() == '@') {
                result = Value(content);
            } else {
                result.status = Regedit4Status::kSyntaxError;
            }
            if (!result.ok()) {
                result.line = line_number_;
                return result;
            }
        }
        return {};
    }

private:
    bool NextLine(std::string_view& line) {
        if (position_ >= text_.size()) {
            return false;
        }
        size_t end = text_.find('\n', position_);
        if (end == std::string_view::npos) {
            end = text_.size();
        }
        line = text_.substr(position_, end - position_);
        if (!line.empty() && line.back() == '\r') {
            line.remove_suffix(1);
        }
        position_ = end + 1;
        ++line_number_;
        return true;
    }

    void CloseCurrent() {
        if (current_) {
            RegCloseKey(current_);
            current_ = nullptr;
        }
    }

    Regedit4Result Section(std::string_view content) {
        size_t close = content.rfind(']');
        if (close == std::string_view::npos || !IsRestEmpty(content.substr(close + 1))) {
            return {Regedit4Status::kSyntaxError, ERROR_SUCCESS, 0};
        }
        std::string_view path = content.substr(1, close - 1);
        bool remove = !path.empty() && path.front() == '-';
        if (remove) {
            path.remove_prefix(1);
        }
        const Root* root = nullptr;
        std::string sub;
        if (!SplitKeyPath(path, root, sub)) {
            return {Regedit4Status::kBadKeyPath, ERROR_SUCCESS, 0};
        }
        CloseCurrent();
        in_section_ = true;
        LONG error;
        if (remove) {
            // Values that follow a deleted key have nowhere to go: skipped.
            error = sub.empty() ? ERROR_ACCESS_DENIED : DeleteTree(root->key, sub);
        } else {
            error = RegCreateKeyExA(root->key, sub.c_str(), 0, nullptr, REG_OPTION_NON_VOLATILE,
                                    KEY_ALL_ACCESS, nullptr, &current_, nullptr);
        }
        if (error != ERROR_SUCCESS) {
            return {Regedit4Status::kRegistryError, error, 0};
        }
        return {};
    }

    Regedit4Result Value(std::string_view content) {
        const Regedit4Result syntax_error{Regedit4Status::kSyntaxError, ERROR_SUCCESS, 0};
        std::string name;
        std::string_view rest = content;
        if (rest.front() == '@') {
            rest.remove_prefix(1);
        } else if (!ParseQuoted(rest, name)) {
            return syntax_error;
        }
        rest = TrimLeft(rest);
        if (rest.empty() || rest.front() != '=') {
            return syntax_error;
        }
        rest = TrimLeft(rest.substr(1));

        DWORD type = REG_SZ;
        std::string data;
        bool remove = false;
        std::string joined;  // a hex value continued over several lines
        if (!rest.empty() && rest.front() == '-') {
            remove = true;
            if (!IsRestEmpty(rest.substr(1))) {
                return syntax_error;
            }
        } else if (!rest.empty() && rest.front() == '"') {
            if (!ParseQuoted(rest, data) || !IsRestEmpty(rest)) {
                return syntax_error;
            }
            data += '\0';
        } else if (StartsWithIgnoringCase(rest, "dword:")) {
            rest.remove_prefix(6);
            DWORD number = 0;
            if (!ParseHexNumber(rest, 8, number) || !IsRestEmpty(rest)) {
                return syntax_error;
            }
            type = REG_DWORD;
            for (int i = 0; i < 4; ++i) {
                data += static_cast<char>((number >> (8 * i)) & 0xFF);
            }
        } else if (StartsWithIgnoringCase(rest, "hex")) {
            rest.remove_prefix(3);
            type = REG_BINARY;
            if (!rest.empty() && rest.front() == '(') {
                rest.remove_prefix(1);
                if (!ParseHexNumber(rest, 8, type) || rest.empty() || rest.front() != ')') {
                    return syntax_error;
                }
                rest.remove_prefix(1);
            }
            if (rest.empty() || rest.front() != ':') {
                return syntax_error;
            }
            joined.assign(rest.substr(1));
            std::string_view next;
            while (!joined.empty() && joined.back() == '\\' && NextLine(next)) {
                joined.pop_back();
                joined.append(TrimLeft(TrimRight(next)));
            }
            if (!ParseHexBytes(joined, data)) {
                return syntax_error;
            }
        } else {
            return syntax_error;
        }

        if (!current_) {
            // Before any key, or after a deleted one.
            return in_section_ ? Regedit4Result{} : syntax_error;
        }
        LONG error;
        if (remove) {
            error = RegDeleteValueA(current_, name.c_str());
            if (error == ERROR_FILE_NOT_FOUND) {
                error = ERROR_SUCCESS;
            }
        } else {
            // A byte that is not NUL after the data: a string without its
            // terminator must be stored as it is, not with the terminator
            // that the registry takes from behind unterminated strings.
            std::string buffer = data;
            if (IsStringType(type)) {
                buffer += '\xFF';
            }
            error = RegSetValueExA(current_, name.c_str(), 0, type,
                                   reinterpret_cast<const BYTE*>(buffer.data()),
                                   static_cast<DWORD>(data.size()));
        }
        if (error != ERROR_SUCCESS) {
            return {Regedit4Status::kRegistryError, error, 0};
        }
        return {};
    }

    std::string_view text_;
    size_t position_ = 0;
    size_t line_number_ = 0;
    HKEY current_ = nullptr;
    bool in_section_ = false;
};

}  // namespace

bool SplitRegistryKeyPath(std::string_view path, HKEY& root, std::string& root_name,
                          std::string& sub_key) {
    const Root* found = nullptr;
    std::string sub;
    if (!SplitKeyPath(path, found, sub)) {
        return false;
    }
    root = found->key;
    root_name = found->name;
    sub_key = std::move(sub);
    return true;
}

const char* Regedit4StatusText(Regedit4Status status) {
    switch (status) {
        case Regedit4Status::kOk:
            return "ok";
        case Regedit4Status::kKeyNotFound:
            return "the key does not exist";
        case Regedit4Status::kBadKeyPath:
            return "the key path does not begin with a root key name";
        case Regedit4Status::kNotRegedit4:
            return "the text does not begin with REGEDIT4";
        case Regedit4Status::kSyntaxError:
            return "a line is not in the REGEDIT4 format";
        case Regedit4Status::kRegistryError:
            return "a registry call failed";
        case Regedit4Status::kFileError:
            return "the file could not be read or written";
    }
    return "unknown status";
}

Regedit4Result ExportRegedit4(std::string_view key_path, std::string& text) {
    const Root* root = nullptr;
    std::string sub;
    if (!SplitKeyPath(key_path, root, sub)) {
        return {Regedit4Status::kBadKeyPath, ERROR_SUCCESS, 0};
    }
    HKEY key = nullptr;
    LONG error = RegOpenKeyExA(root->key, sub.c_str(), 0, KEY_READ, &key);
    if (error != ERROR_SUCCESS) {
        return {error == ERROR_FILE_NOT_FOUND ? Regedit4Status::kKeyNotFound
                                              : Regedit4Status::kRegistryError,
                error, 0};
    }
    text += kHeader;
    text += kLineEnd;
    std::string path = root->name;
    if (!sub.empty()) {
        path += '\\';
        path += sub;
    }
    Regedit4Result result = Exporter(text).ExportKey(key, path);
    RegCloseKey(key);
    if (result.ok()) {
        text += kLineEnd;
    }
    return result;
}

Regedit4Result ImportRegedit4(std::string_view text) {
    return Importer(text).Run();
}

Regedit4Result ExportRegedit4File(std::string_view key_path, const std::string& file_name) {
    std::string text;
    Regedit4Result result = ExportRegedit4(key_path, text);
    if (!result.ok()) {
        return result;
    }
    std::ofstream out(file_name, std::ios::binary | std::ios::trunc);
    out.write(text.data(), static_cast<std::streamsize>(text.size()));
    out.close();
    if (!out) {
        return {Regedit4Status::kFileError, ERROR_SUCCESS, 0};
    }
    return result;
}

Regedit4Result ImportRegedit4File(const std::string& file_name) {
    std::ifstream in(file_name, std::ios::binary);
    if (!in) {
        return {Regedit4Status::kFileError, ERROR_SUCCESS, 0};
    }
    std::string text((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    if (in.bad()) {
        return {Regedit4Status::kFileError, ERROR_SUCCESS, 0};
    }
    return ImportRegedit4(text);
}

}  // namespace zq::settings
