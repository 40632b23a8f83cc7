#include "platform/posix/profile/profile_edit.h"

namespace zq::platform::internal {

namespace {

using Line = ProfileText::Line;
using LineKind = ProfileText::LineKind;

std::string_view StripLeadingBlanks(std::string_view text) {
    size_t begin = 0;
    while (begin < text.size() && IsProfileBlank(text[begin])) {
        ++begin;
    }
    return text.substr(begin);
}

// True when the file's last line holds text but no line end, so that
// something appended must first end that line.
bool EndsOpen(const ProfileText& text) {
    if (text.lines().empty()) {
        return false;
    }
    const Line& last = text.lines().back();
    uint32_t text_begin = last.begin;
    if (text_begin == 0 && text.bytes().compare(0, 3, "\xEF\xBB\xBF") == 0) {
        text_begin = 3;  // a file holding only the byte-order mark
    }
    return last.next == last.end && last.end > text_begin;
}

void AppendSection(std::string& out, const ProfileText& text, std::string_view section) {
    const std::string_view nl = text.NewLine();
    if (EndsOpen(text)) {
        out += nl;
    }
    out += '[';
    out += StripLeadingBlanks(section);
    out += ']';
    out += nl;
}

void AppendEntry(std::string& out, std::string_view nl, std::string_view key,
                 std::string_view value) {
    out += StripLeadingBlanks(key);
    out += '=';
    out += StripLeadingBlanks(value);
    out += nl;
}

}  // namespace

std::optional<std::string> WithValue(const ProfileText& text, std::string_view section,
                                     std::string_view key, std::string_view value) {
    const std::string& bytes = text.bytes();
    const std::string_view nl = text.NewLine();
    const uint32_t s = text.FindSection(section);
    std::string out;
    if (s == ProfileText::kNone) {
        out.reserve(bytes.size() + section.size() + key.size() + value.size() + 8);
        out = bytes;
        AppendSection(out, text, section);
        AppendEntry(out, nl, key, value);
        return out;
    }
    const uint32_t e = text.FindEntry(s, key);
    if (e != ProfileText::kNone) {
        const Line& line = text.lines()[e];
        const std::string_view new_value = StripLeadingBlanks(value);
        if (text.Value(line) == new_value) {
            return std::nullopt;
        }
        out.reserve(bytes.size() + new_value.size());
        out.append(bytes, 0, line.value_begin);
        out += new_value;
        out.append(bytes, line.end, std::string::npos);
        return out;
    }
    const ProfileText::Section& range = text.sections()[s];
    uint32_t after = range.header;
    for (uint32_t l = range.header + 1; l < range.end; ++l) {
        const LineKind kind = text.lines()[l].kind;
        if (kind == LineKind::kEntry || kind == LineKind::kBare) {
            after = l;
        }
    }
    const Line& anchor = text.lines()[after];
    out.reserve(bytes.size() + key.size() + value.size() + 4);
    out.append(bytes, 0, anchor.next);
    if (anchor.next == anchor.end) {
        out += nl;
    }
    AppendEntry(out, nl, key, value);
    out.append(bytes, anchor.next, std::string::npos);
    return out;
}

std::optional<std::string> WithoutKey(const ProfileText& text, std::string_view section,
                                      std::string_view key) {
    const uint32_t s = text.FindSection(section);
    if (s == ProfileText::kNone) {
        return std::nullopt;
    }
    const uint32_t e = text.FindEntry(s, key);
    if (e == ProfileText::kNone) {
        return std::nullopt;
    }
    const Line& line = text.lines()[e];
    std::string out = text.bytes();
    out.erase(line.begin, line.next - line.begin);
    return out;
}

std::optional<std::string> WithoutSection(const ProfileText& text, std::string_view section) {
    const uint32_t s = text.FindSection(section);
    if (s == ProfileText::kNone) {
        return std::nullopt;
    }
    const ProfileText::Section& range = text.sections()[s];
    const uint32_t begin = text.lines()[range.header].begin;
    const uint32_t end = text.lines()[range.end - 1].next;
    std::string out = text.bytes();
    out.erase(begin, end - begin);
    return out;
}

std::optional<std::string> WithSectionLines(const ProfileText& text, std::string_view section,
                                            const std::vector<std::string_view>& lines) {
    const std::string& bytes = text.bytes();
    const std::string_view nl = text.NewLine();
    std::string body;
    for (std::string_view line : lines) {
        body += line;
        body += nl;
    }
    const uint32_t s = text.FindSection(section);
    std::string out;
    if (s == ProfileText::kNone) {
        out = bytes;
        AppendSection(out, text, section);
        out += body;
        return out;
    }
    const ProfileText::Section& range = text.sections()[s];
    uint32_t last = range.header;
    for (uint32_t l = range.header + 1; l < range.end; ++l) {
        if (text.lines()[l].kind != LineKind::kBlank) {
            last = l;
        }
    }
    const Line& header = text.lines()[range.header];
    out.reserve(bytes.size() + body.size());
    out.append(bytes, 0, header.next);
    if (header.next == header.end && !body.empty()) {
        out += nl;
    }
    out += body;
    out.append(bytes, text.lines()[last].next, std::string::npos);
    if (out == bytes) {
        return std::nullopt;
    }
    return out;
}

}  // namespace zq::platform::internal
