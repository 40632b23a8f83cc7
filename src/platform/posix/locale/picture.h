// Windows date and time pictures ("dddd, MMMM dd, yyyy", "hh:mm:ss tt")
// split into fields and literal text.
//
// A field is a run of one picture letter; which letters count is the
// caller's choice (dates and times have different ones). Quotes make text
// literal: ' opens and closes, '' inside quotes is a quote, and '' outside
// quotes is an empty quoted text. An unclosed quote runs to the end.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace zq::platform::internal {

struct PictureToken {
    bool is_field = false;
    char16_t letter = 0;  // fields: the picture letter
    size_t count = 0;     // fields: how many times it is repeated
    std::u16string text;  // literals: the text to print
    std::u16string raw;   // literals: the text as written, quotes included
};

inline constexpr std::u16string_view kDateLetters = u"dMyg";
inline constexpr std::u16string_view kTimeLetters = u"hHmst";

std::vector<PictureToken> TokenizePicture(std::u16string_view picture, std::u16string_view letters);

}  // namespace zq::platform::internal
