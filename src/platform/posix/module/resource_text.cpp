// Resource text in the ANSI code page of the emulated system.
#include "platform/posix/module/resource_text.h"

#include "platform/posix/locale/codepage.h"

namespace zq::platform::internal {

std::string AnsiFromUtf16(std::u16string_view text) {
    return CodePage::Ansi().Encode(text);
}

std::u16string Utf16FromAnsi(std::string_view text) {
    return CodePage::Ansi().Decode(text);
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
