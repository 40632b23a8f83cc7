#include "platform/posix/locale/picture.h"

namespace zq::platform::internal {

std::vector<PictureToken> TokenizePicture(std::u16string_view picture,
                                          std::u16string_view letters) {
    std::vector<PictureToken> tokens;
    auto literal = [&]() -> PictureToken& {
        if (tokens.empty() || tokens.back().is_field) {
            tokens.emplace_back();
        }
        return tokens.back();
    };
    size_t i = 0;
    while (i < picture.size()) {
        const char16_t c = picture[i];
        if (c == u'\'') {
            PictureToken& token = literal();
            const size_t start = i++;
            while (i < picture.size()) {
                if (picture[i] == u'\'') {
                    if (i + 1 < picture.size() && picture[i + 1] == u'\'') {
                        token.text.push_back(u'\'');
                        i += 2;
                        continue;
                    }
                    ++i;
                    break;
                }
                token.text.push_back(picture[i++]);
            }
            token.raw.append(picture.substr(start, i - start));
            continue;
        }
        if (letters.find(c) != std::u16string_view::npos) {
            PictureToken token;
            token.is_field = true;
            token.letter = c;
            while (i < picture.size() && picture[i] == c) {
                ++token.count;
                ++i;
            }
            tokens.push_back(std::move(token));
            continue;
        }
        PictureToken& token = literal();
        token.text.push_back(c);
        token.raw.push_back(c);
        ++i;
    }
    return tokens;
}

}  // namespace zq::platform::internal
