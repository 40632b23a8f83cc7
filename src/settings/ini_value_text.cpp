#include "settings/ini_value_text.h"

#include <cstdio>

namespace zq::settings {

namespace {

bool IsCSpace(char ch) {
    return ch == ' ' || (ch >= '\t' && ch <= '\r');
}

char FoldAscii(char ch) {
    return (ch >= 'a' && ch <= 'z') ? static_cast<char>(ch - 'a' + 'A') : ch;
}

bool EqualsIgnoringAsciiCase(std::string_view text, std::string_view word) {
    if (text.size() != word.size()) {
        return false;
    }
    for (size_t i = 0; i < text.size(); ++i) {
        if (FoldAscii(text[i]) != word[i]) {
            return false;
        }
    }
    return true;
}

}  // namespace

INT ParseDecimal(std::string_view text) {
    size_t pos = 0;
    while (pos < text.size() && IsCSpace(text[pos])) {
        ++pos;
    }
    bool negative = false;
    if (pos < text.size() && (text[pos] == '-' || text[pos] == '+')) {
        negative = text[pos] == '-';
        ++pos;
    }
    DWORD value = 0;  // unsigned, so overflow wraps instead of being undefined
    for (; pos < text.size() && text[pos] >= '0' && text[pos] <= '9'; ++pos) {
        value = value * 10u + static_cast<DWORD>(text[pos] - '0');
    }
    if (negative) {
        value = 0u - value;
    }
    return static_cast<INT>(value);
}

void FormatDecimal(INT value, char* text, size_t size) {
    if (size > 0) {
        std::snprintf(text, size, "%d", value);
    }
}

std::string_view TrimWhiteSpace(std::string_view text) {
    size_t first = 0;
    size_t last = text.size();
    while (first < last && IsCSpace(text[first])) {
        ++first;
    }
    while (last > first && IsCSpace(text[last - 1])) {
        --last;
    }
    return text.substr(first, last - first);
}

DWORD ParseHexadecimal(std::string_view text) {
    size_t pos = 0;
    while (pos < text.size() && (text[pos] == ' ' || text[pos] == '\t')) {
        ++pos;
    }
    DWORD value = 0;
    for (; pos < text.size(); ++pos) {
        const char ch = text[pos];
        if (ch < '0' || ch > 'x') {  // bytes above 0x7F end it too, whatever char's sign
            break;
        }
        if (ch >= '0' && ch <= '9') {
            value = (value << 4) | static_cast<DWORD>(ch - '0');
        } else if (ch >= 'A' && ch <= 'F') {
            value = (value << 4) | static_cast<DWORD>(ch - 'A' + 10);
        } else if (ch >= 'a' && ch <= 'f') {
            value = (value << 4) | static_cast<DWORD>(ch - 'a' + 10);
        } else if (ch == 'X' || ch == 'x') {
            value = 0;  // keeps the reader's restart at every x: "12x34" reads as 0x34
        } else {
            break;
        }
    }
    return value;
}

BOOL ParseBooleanWord(std::string_view text) {
    // Only the first seven characters take part, as the value is read into
    // eight bytes.
    const std::string_view head = text.substr(0, 7);
    for (std::string_view word : {"1", "TRUE", "SET", "YES", "ON", "OK"}) {
        if (EqualsIgnoringAsciiCase(head, word)) {
            return TRUE;
        }
    }
    return FALSE;
}

FieldSplitter::FieldSplitter(std::string_view text, std::string_view delimiters, bool multibyte)
    : text_(text), delimiters_(delimiters), multibyte_(multibyte) {}

size_t FieldSplitter::CharLength(std::string_view text, size_t pos) const {
    if (multibyte_ && pos + 1 < text.size() && text[pos + 1] != '\0' &&
        IsDBCSLeadByte(static_cast<BYTE>(text[pos]))) {
        return 2;
    }
    return 1;
}

bool FieldSplitter::IsDelimiter(size_t pos, size_t length) const {
    const std::string_view ch = text_.substr(pos, length);
    for (size_t d = 0; d < delimiters_.size();) {
        const size_t dlength = CharLength(delimiters_, d);
        if (delimiters_.substr(d, dlength) == ch) {
            return true;
        }
        d += dlength;
    }
    return false;
}

bool FieldSplitter::Next(std::string_view& field) {
    while (pos_ < text_.size()) {
        const size_t length = CharLength(text_, pos_);
        if (!IsDelimiter(pos_, length)) {
            break;
        }
        pos_ += length;
    }
    if (pos_ >= text_.size()) {
        return false;
    }
    const size_t start = pos_;
    while (pos_ < text_.size()) {
        const size_t length = CharLength(text_, pos_);
        if (IsDelimiter(pos_, length)) {
            break;
        }
        pos_ += length;
    }
    field = text_.substr(start, pos_ - start);
    return true;
}

}  // namespace zq::settings
