// wsprintfA / wvsprintfA: the Windows printf subset (no floating point).
#include <cstdarg>
#include <cstdint>
#include <cstring>
#include <string>

#include "platform/posix/locale/codepage.h"
#include "platform/win32.h"

namespace {

using zq::platform::internal::CodePage;

// The output holds at most this many characters plus the terminator.
constexpr size_t kMaxOutput = 1023;

class Output {
public:
    explicit Output(char* buffer) : buffer_(buffer) {}
    void Put(char c) {
        if (length_ < kMaxOutput) {
            buffer_[length_++] = c;
        }
    }
    void Put(const char* s, size_t n) {
        for (size_t i = 0; i < n; ++i) {
            Put(s[i]);
        }
    }
    void Pad(char c, size_t n) {
        for (size_t i = 0; i < n; ++i) {
            Put(c);
        }
    }
    // Windows returns the number of characters stored, which stops at 1023.
    int Finish() {
        buffer_[length_] = '\0';
        return static_cast<int>(length_);
    }

private:
    char* buffer_;
    size_t length_ = 0;
};

enum class Size { kDefault, kShort, kLong, kWide, kInt32, kInt64, kPointer };

struct Conversion {
    bool left = false;
    bool zero = false;
    bool prefix = false;
    size_t width = 0;
    bool has_precision = false;
    size_t precision = 0;
    Size size = Size::kDefault;
};

void PutPadded(Output& out, const Conversion& conv, const char* text, size_t length) {
    const size_t pad = conv.width > length ? conv.width - length : 0;
    if (!conv.left) {
        out.Pad(' ', pad);
    }
    out.Put(text, length);
    if (conv.left) {
        out.Pad(' ', pad);
    }
}

void PutNarrowString(Output& out, const Conversion& conv, const char* s) {
    if (!s) {
        s = "(null)";
    }
    size_t length = 0;
    const size_t limit = conv.has_precision ? conv.precision : SIZE_MAX;
    while (length < limit && s[length]) {
        ++length;
    }
    PutPadded(out, conv, s, length);
}

void PutWideString(Output& out, const Conversion& conv, const WCHAR* s) {
    if (!s) {
        PutNarrowString(out, conv, nullptr);
        return;
    }
    size_t length = 0;
    while (s[length]) {
        ++length;
    }
    // Precision counts bytes of the converted text, so a double-byte
    // character may be cut in half, as on Windows.
    std::string bytes =
        CodePage::Ansi().Encode(std::u16string_view(reinterpret_cast<const char16_t*>(s), length));
    if (conv.has_precision && bytes.size() > conv.precision) {
        bytes.resize(conv.precision);
    }
    PutPadded(out, conv, bytes.data(), bytes.size());
}

void PutNumber(Output& out, const Conversion& conv, char type, uint64_t magnitude, bool negative) {
    char digits[32];
    size_t n = 0;
    const bool hex = type == 'x' || type == 'X' || type == 'p';
    const char* alphabet = type == 'x' ? "0123456789abcdef" : "0123456789ABCDEF";
    do {
        digits[n++] = alphabet[hex ? magnitude % 16 : magnitude % 10];
        magnitude = hex ? magnitude / 16 : magnitude / 10;
    } while (magnitude != 0);

    char head[3];
    size_t head_length = 0;
    if (negative) {
        head[head_length++] = '-';
    } else if (conv.prefix && (type == 'x' || type == 'X')) {
        head[head_length++] = '0';
        head[head_length++] = type;
    }
    size_t zeros = conv.has_precision && conv.precision > n ? conv.precision - n : 0;
    size_t total = head_length + zeros + n;
    if (conv.zero && !conv.left && conv.width > total) {
        zeros += conv.width - total;
        total = conv.width;
    }
    const size_t pad = conv.width > total ? conv.width - total : 0;
    if (!conv.left) {
        out.Pad(' ', pad);
    }
    out.Put(head, head_length);
    out.Pad('0', zeros);
    while (n > 0) {
        out.Put(digits[--n]);
    }
    if (conv.left) {
        out.Pad(' ', pad);
    }
}

size_t ParseNumber(const char*& p) {
    size_t value = 0;
    while (*p >= '0' && *p <= '9') {
        if (value < 100000) {  // widths beyond the output limit change nothing
            value = value * 10 + static_cast<size_t>(*p - '0');
        }
        ++p;
    }
    return value;
}

int Format(char* buffer, const char* format, va_list args) {
    Output out(buffer);
    const char* p = format ? format : "";
    while (*p) {
        if (*p != '%') {
            out.Put(*p++);
            continue;
        }
        ++p;
        Conversion conv;
        for (;; ++p) {
            if (*p == '-') {
                conv.left = true;
            } else if (*p == '#') {
                conv.prefix = true;
            } else if (*p == '0') {
                conv.zero = true;
            } else {
                break;
            }
        }
        conv.width = ParseNumber(p);
        if (*p == '.') {
            ++p;
            conv.has_precision = true;
            conv.precision = ParseNumber(p);
        }
        if (*p == 'l') {
            conv.size = Size::kLong;
            ++p;
        } else if (*p == 'h') {
            conv.size = Size::kShort;
            ++p;
        } else if (*p == 'w') {
            conv.size = Size::kWide;
            ++p;
        } else if (*p == 'I') {
            if (p[1] == '6' && p[2] == '4') {
                conv.size = Size::kInt64;
                p += 3;
            } else if (p[1] == '3' && p[2] == '2') {
                conv.size = Size::kInt32;
                p += 3;
            } else {
                conv.size = Size::kPointer;
                ++p;
            }
        }
        const char type = *p;
        if (type == '\0') {
            break;  // a lone '%' at the end prints nothing
        }
        ++p;
        const bool wide = conv.size == Size::kLong || conv.size == Size::kWide;
        switch (type) {
            case 'c':
            case 'C': {
                const bool wide_char = type == 'C' ? conv.size != Size::kShort : wide;
                const unsigned value = static_cast<unsigned>(va_arg(args, int));
                if (wide_char) {
                    const char16_t unit = static_cast<char16_t>(value);
                    std::string bytes = CodePage::Ansi().Encode(std::u16string_view(&unit, 1));
                    conv.has_precision = false;
                    PutPadded(out, conv, bytes.data(), bytes.size());
                } else {
                    const char c = static_cast<char>(value);
                    PutPadded(out, conv, &c, 1);
                }
                break;
            }
            case 's':
            case 'S': {
                const bool wide_string = type == 'S' ? conv.size != Size::kShort : wide;
                if (wide_string) {
                    PutWideString(out, conv, va_arg(args, const WCHAR*));
                } else {
                    PutNarrowString(out, conv, va_arg(args, const char*));
                }
                break;
            }
            case 'd':
            case 'i': {
                int64_t value;
                if (conv.size == Size::kInt64) {
                    value = va_arg(args, long long);
                } else if (conv.size == Size::kPointer) {
                    value = va_arg(args, intptr_t);
                } else {
                    value = va_arg(args, int);  // 'l' and 'h' are 32 bits too
                }
                const bool negative = value < 0;
                const uint64_t magnitude =
                    negative ? 0 - static_cast<uint64_t>(value) : static_cast<uint64_t>(value);
                PutNumber(out, conv, 'd', magnitude, negative);
                break;
            }
            case 'u':
            case 'x':
            case 'X': {
                uint64_t value;
                if (conv.size == Size::kInt64) {
                    value = va_arg(args, unsigned long long);
                } else if (conv.size == Size::kPointer) {
                    value = va_arg(args, uintptr_t);
                } else {
                    value = va_arg(args, unsigned);
                }
                PutNumber(out, conv, type, value, false);
                break;
            }
            case 'p': {
                // Always every digit of the pointer, upper case.
                Conversion pointer;
                pointer.has_precision = true;
                pointer.precision = 2 * sizeof(void*);
                pointer.width = conv.width;
                pointer.left = conv.left;
                PutNumber(out, pointer, 'p', reinterpret_cast<uintptr_t>(va_arg(args, void*)),
                          false);
                break;
            }
            default:
                // Anything else ('%', '+', 'f', '*' ...) prints itself and
                // takes no argument.
                out.Put(type);
                break;
        }
    }
    return out.Finish();
}

}  // namespace

extern "C" {

int WINAPI wvsprintfA(LPSTR lpOut, LPCSTR lpFmt, va_list arglist) {
    if (!lpOut) {
        return 0;
    }
    va_list args;
    va_copy(args, arglist);
    int result = Format(lpOut, lpFmt, args);
    va_end(args);
    return result;
}

int WINAPIV wsprintfA(LPSTR lpOut, LPCSTR lpFmt, ...) {
    if (!lpOut) {
        return 0;
    }
    va_list args;
    va_start(args, lpFmt);
    int result = Format(lpOut, lpFmt, args);
    va_end(args);
    return result;
}

}  // extern "C"
