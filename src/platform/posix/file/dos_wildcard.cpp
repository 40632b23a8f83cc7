#include "platform/posix/file/dos_wildcard.h"

#include <algorithm>
#include <cstring>
#include <vector>

#include "platform/posix/file/dos_path.h"

namespace zq::platform::internal {

namespace {

enum class Token : int { kLiteral, kStar, kStarBeforeDot, kOneOrNone, kDotOrEnd };

struct PatternItem {
    Token token;
    char literal;
};

std::vector<PatternItem> Compile(std::string_view pattern) {
    std::vector<PatternItem> items;
    if (pattern == "*.*") {
        items.push_back({Token::kStar, 0});
        return items;
    }
    for (size_t i = 0; i < pattern.size(); ++i) {
        char c = pattern[i];
        char next = i + 1 < pattern.size() ? pattern[i + 1] : '\0';
        if (c == '?') {
            items.push_back({Token::kOneOrNone, 0});
        } else if (c == '*') {
            items.push_back({next == '.' ? Token::kStarBeforeDot : Token::kStar, 0});
        } else if (c == '.' && (next == '?' || next == '*' || next == '\0')) {
            items.push_back({Token::kDotOrEnd, 0});
        } else {
            items.push_back({Token::kLiteral, ToUpperCp1252(c)});
        }
    }
    return items;
}

bool IsShortNameChar(unsigned char c) {
    return c > ' ' && !std::strchr("\"*+,./:;<=>?[\\]|", c);
}

std::string ShortNamePart(std::string_view text, size_t limit) {
    std::string part;
    for (char c : text) {
        if (part.size() == limit) {
            break;
        }
        if (c == ' ' || c == '.') {
            continue;
        }
        part += IsShortNameChar(static_cast<unsigned char>(c)) ? ToUpperCp1252(c) : '_';
    }
    return part;
}

}  // namespace

bool MatchesDosPattern(std::string_view pattern, std::string_view name) {
    const std::vector<PatternItem> items = Compile(pattern);
    const size_t n = name.size();
    const size_t last_dot = name.rfind('.');
    // reach[j]: the items matched so far can end at name position j.
    std::vector<char> reach(n + 1, 0), next(n + 1, 0);
    reach[0] = 1;
    for (const PatternItem& item : items) {
        std::fill(next.begin(), next.end(), 0);
        for (size_t j = 0; j <= n; ++j) {
            if (!reach[j]) {
                continue;
            }
            switch (item.token) {
                case Token::kLiteral:
                    if (j < n && ToUpperCp1252(name[j]) == item.literal) {
                        next[j + 1] = 1;
                    }
                    break;
                case Token::kStar:
                    for (size_t k = j; k <= n; ++k) {
                        next[k] = 1;
                    }
                    break;
                case Token::kStarBeforeDot: {
                    size_t limit =
                        (last_dot != std::string_view::npos && last_dot >= j) ? last_dot : n;
                    for (size_t k = j; k <= limit; ++k) {
                        next[k] = 1;
                    }
                    break;
                }
                case Token::kOneOrNone:
                    if (j < n && name[j] != '.') {
                        next[j + 1] = 1;
                    } else {
                        next[j] = 1;
                    }
                    break;
                case Token::kDotOrEnd:
                    if (j < n && name[j] == '.') {
                        next[j + 1] = 1;
                    } else if (j == n) {
                        next[j] = 1;
                    }
                    break;
            }
        }
        reach.swap(next);
    }
    return reach[n] != 0;
}

bool IsShortName(std::string_view name) {
    if (name.empty() || name == "." || name == "..") {
        return false;
    }
    size_t dot = name.find('.');
    std::string_view base = name.substr(0, dot);
    std::string_view ext =
        dot == std::string_view::npos ? std::string_view() : name.substr(dot + 1);
    if (base.empty() || base.size() > 8 || ext.size() > 3 ||
        (dot != std::string_view::npos && ext.empty())) {
        return false;
    }
    for (std::string_view part : {base, ext}) {
        for (char c : part) {
            if (!IsShortNameChar(static_cast<unsigned char>(c))) {
                return false;
            }
        }
    }
    return true;
}

std::string MakeShortName(std::string_view name, std::set<std::string>* taken) {
    if (name == "." || name == ".." || IsShortName(name)) {
        return {};
    }
    size_t dot = name.rfind('.');
    std::string base, ext;
    if (dot == std::string_view::npos || dot == 0) {
        base = ShortNamePart(name, 6);
    } else {
        base = ShortNamePart(name.substr(0, dot), 6);
        ext = ShortNamePart(name.substr(dot + 1), 3);
    }
    if (base.empty()) {
        base = "_";
    }
    for (unsigned number = 1;; ++number) {
        std::string tail = "~" + std::to_string(number);
        std::string candidate = base.substr(0, 8 - std::min<size_t>(tail.size(), 7)) + tail;
        if (!ext.empty()) {
            candidate += "." + ext;
        }
        if (taken->insert(candidate).second) {
            return candidate;
        }
    }
}

}  // namespace zq::platform::internal
