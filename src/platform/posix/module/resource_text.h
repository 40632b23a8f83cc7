// Text conversions of the resource and version functions: UTF-16 (as
// resources store text) to and from the ANSI code page, and the case
// folding used to compare resource names and version-block keys.
#pragma once

#include <string>
#include <string_view>

namespace zq::platform::internal {

// UTF-16 to the ANSI code page (GetACP); characters without a mapping
// become the page's default character after a best-fit attempt.
std::string AnsiFromUtf16(std::u16string_view text);
// ANSI code page to UTF-16.
std::u16string Utf16FromAnsi(std::string_view text);
// Simple upper-casing of one UTF-16 unit (Latin letters with and without accents).
char16_t FoldUpper(char16_t unit);
bool EqualsIgnoringCase(std::u16string_view a, std::u16string_view b);

}  // namespace zq::platform::internal
