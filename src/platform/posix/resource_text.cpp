// Windows-1252, the ANSI code page of the emulated system.
#include "platform/posix/resource_text.h"

namespace zq::platform::internal {
namespace {

// 0x80..0x9F of Windows-1252; 0 marks the five bytes the page leaves undefined.
constexpr char16_t kHighControls[32] = {
    0x20AC, 0,      0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0,      0x017D, 0,      0,      0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0,      0x017E, 0x0178};

char16_t DecodeByte(unsigned char byte) {
    if (byte >= 0x80 && byte < 0xA0) {
        char16_t unit = kHighControls[byte - 0x80];
        return unit != 0 ? unit
                         : static_cast<char16_t>(byte);  // undefined bytes map to C1 controls
    }
    return static_cast<char16_t>(byte);
}

int EncodeUnit(char16_t unit) {
    if (unit < 0x80 || (unit >= 0xA0 && unit <= 0xFF))
        return unit;
    for (int i = 0; i < 32; ++i) {
        if (kHighControls[i] == unit)
            return 0x80 + i;
    }
    if (unit >= 0x80 && unit < 0xA0 && kHighControls[unit - 0x80] == 0)
        return unit;
    return -1;
}

}  // namespace

std::string AnsiFromUtf16(std::u16string_view text) {
    std::string out;
    out.reserve(text.size());
    for (char16_t unit : text) {
        int byte = EncodeUnit(unit);
        out.push_back(byte >= 0 ? static_cast<char>(byte) : '?');
    }
    return out;
}

std::u16string Utf16FromAnsi(std::string_view text) {
    std::u16string out;
    out.reserve(text.size());
    for (char c : text)
        out.push_back(DecodeByte(static_cast<unsigned char>(c)));
    return out;
}

char16_t FoldUpper(char16_t unit) {
    if (unit >= u'a' && unit <= u'z')
        return static_cast<char16_t>(unit - 0x20);
    if (unit >= 0xE0 && unit <= 0xFE && unit != 0xF7)
        return static_cast<char16_t>(unit - 0x20);
    if (unit == 0x0161 || unit == 0x0153 || unit == 0x017E)
        return static_cast<char16_t>(unit - 1);
    if (unit == 0xFF)
        return 0x0178;
    return unit;
}

bool EqualsIgnoringCase(std::u16string_view a, std::u16string_view b) {
    if (a.size() != b.size())
        return false;
    for (size_t i = 0; i < a.size(); ++i) {
        if (FoldUpper(a[i]) != FoldUpper(b[i]))
            return false;
    }
    return true;
}

}  // namespace zq::platform::internal
