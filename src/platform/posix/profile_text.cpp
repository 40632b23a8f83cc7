#include "platform/posix/profile_text.h"

#include <array>
#include <cstring>

namespace zq::platform::internal {

namespace {

constexpr std::array<unsigned char, 256> MakeFoldTable() {
    std::array<unsigned char, 256> table{};
    for (unsigned c = 0; c < 256; ++c) {
        table[c] = static_cast<unsigned char>(c);
    }
    for (unsigned c = 'a'; c <= 'z'; ++c) {
        table[c] = static_cast<unsigned char>(c - 32);
    }
    for (unsigned c = 0xE0; c <= 0xFE; ++c) {
        if (c != 0xF7) {
            table[c] = static_cast<unsigned char>(c - 32);
        }
    }
    table[0x9A] = 0x8A;  // s caron
    table[0x9C] = 0x8C;  // oe
    table[0x9E] = 0x8E;  // z caron
    table[0xFF] = 0x9F;  // y diaeresis
    return table;
}

constexpr std::array<unsigned char, 256> kFold = MakeFoldTable();

uint32_t HashName(std::string_view name) {
    uint32_t hash = 2166136261u;
    for (char c : name) {
        hash = (hash ^ kFold[static_cast<unsigned char>(c)]) * 16777619u;
    }
    return hash;
}

uint32_t MixSection(uint32_t hash, uint32_t section) {
    uint32_t h = hash ^ (section * 0x9E3779B1u);
    h ^= h >> 16;
    h *= 0x85EBCA6Bu;
    h ^= h >> 13;
    return h;
}

size_t SlotCount(size_t items) {
    size_t count = 8;
    while (count < items * 2) {
        count <<= 1;
    }
    return count;
}

}  // namespace

bool IsProfileBlank(char c) {
    return c == ' ' || c == '\t' || c == '\r' || c == '\n' || c == '\v' || c == '\f' || c == 0x1A;
}

std::string_view TrimProfileBlanks(std::string_view text) {
    size_t begin = 0;
    size_t end = text.size();
    while (begin < end && IsProfileBlank(text[begin])) {
        ++begin;
    }
    while (end > begin && IsProfileBlank(text[end - 1])) {
        --end;
    }
    return text.substr(begin, end - begin);
}

char FoldCase(char c) {
    return static_cast<char>(kFold[static_cast<unsigned char>(c)]);
}

bool EqualNoCase(std::string_view a, std::string_view b) {
    if (a.size() != b.size()) {
        return false;
    }
    for (size_t i = 0; i < a.size(); ++i) {
        if (kFold[static_cast<unsigned char>(a[i])] != kFold[static_cast<unsigned char>(b[i])]) {
            return false;
        }
    }
    return true;
}

ProfileText::ProfileText(std::string bytes) : bytes_(std::move(bytes)) {
    Parse();
    BuildIndex();
}

void ProfileText::Parse() {
    const char* data = bytes_.data();
    const uint32_t size = static_cast<uint32_t>(bytes_.size());
    uint32_t pos = 0;
    if (size >= 3 && std::memcmp(data, "\xEF\xBB\xBF", 3) == 0) {
        pos = 3;  // the mark stays in the bytes, outside every line's text
    }
    uint32_t line_start = 0;
    lines_.reserve(size / 16 + 1);
    while (line_start < size) {
        uint32_t end = pos;
        while (end < size && data[end] != '\n' && data[end] != '\r') {
            ++end;
        }
        uint32_t next = end;
        if (next < size) {
            next += (data[next] == '\r' && next + 1 < size && data[next + 1] == '\n') ? 2 : 1;
            if (newline_begin_ == kNone) {
                newline_begin_ = end;
                newline_size_ = next - end;
            }
        }
        Line line{};
        line.begin = line_start;
        line.end = end;
        line.next = next;
        line.name_begin = pos;  // where the text to parse starts
        ParseLine(line);
        if (line.kind == LineKind::kSection) {
            if (!sections_.empty()) {
                sections_.back().end = static_cast<uint32_t>(lines_.size());
            }
            sections_.push_back(Section{static_cast<uint32_t>(lines_.size()), 0});
        }
        lines_.push_back(line);
        line_start = next;
        pos = next;
    }
    if (!sections_.empty()) {
        sections_.back().end = static_cast<uint32_t>(lines_.size());
    }
}

void ProfileText::ParseLine(Line& line) const {
    const char* data = bytes_.data();
    uint32_t begin = line.name_begin;
    uint32_t end = line.end;
    if (const void* nul = std::memchr(data + begin, '\0', end - begin)) {
        end = static_cast<uint32_t>(static_cast<const char*>(nul) - data);
    }
    while (begin < end && IsProfileBlank(data[begin])) {
        ++begin;
    }
    line.name_begin = line.name_end = line.value_begin = line.value_end = begin;
    if (begin == end) {
        line.kind = LineKind::kBlank;
        return;
    }
    if (data[begin] == ';') {
        line.kind = LineKind::kComment;
        return;
    }
    auto trim = [&](uint32_t& from, uint32_t& to) {
        while (from < to && IsProfileBlank(data[from])) {
            ++from;
        }
        while (to > from && IsProfileBlank(data[to - 1])) {
            --to;
        }
    };
    if (data[begin] == '[') {
        const void* close = memrchr(data + begin, ']', end - begin);
        if (close) {
            line.kind = LineKind::kSection;
            line.name_begin = begin + 1;
            line.name_end = static_cast<uint32_t>(static_cast<const char*>(close) - data);
            trim(line.name_begin, line.name_end);
            return;
        }
    }
    const void* equals = std::memchr(data + begin, '=', end - begin);
    if (!equals) {
        line.kind = LineKind::kBare;
        line.name_begin = begin;
        line.name_end = end;
        trim(line.name_begin, line.name_end);
        return;
    }
    const uint32_t eq = static_cast<uint32_t>(static_cast<const char*>(equals) - data);
    line.kind = LineKind::kEntry;
    line.name_begin = begin;
    line.name_end = eq;
    trim(line.name_begin, line.name_end);
    line.value_begin = eq + 1;
    line.value_end = end;
    trim(line.value_begin, line.value_end);
}

void ProfileText::BuildIndex() {
    section_slots_.assign(SlotCount(sections_.size()), Slot{0, kNone});
    const size_t section_mask = section_slots_.size() - 1;
    size_t entries = 0;
    for (const Line& line : lines_) {
        entries += line.kind == LineKind::kEntry && line.name_end > line.name_begin;
    }
    entry_slots_.assign(SlotCount(entries), Slot{0, kNone});
    const size_t entry_mask = entry_slots_.size() - 1;

    for (uint32_t s = 0; s < sections_.size(); ++s) {
        const std::string_view name = Name(sections_[s]);
        const uint32_t hash = HashName(name);
        if (FindSection(name) == kNone) {  // the first of equal names wins
            size_t slot = hash & section_mask;
            while (section_slots_[slot].item != kNone) {
                slot = (slot + 1) & section_mask;
            }
            section_slots_[slot] = Slot{hash, s};
        }
        for (uint32_t l = sections_[s].header + 1; l < sections_[s].end; ++l) {
            const Line& line = lines_[l];
            if (line.kind != LineKind::kEntry || line.name_end == line.name_begin) {
                continue;
            }
            const std::string_view key = Name(line);
            const uint32_t key_hash = MixSection(HashName(key), s);
            if (FindEntryHashed(s, key, key_hash) != kNone) {
                continue;
            }
            size_t slot = key_hash & entry_mask;
            while (entry_slots_[slot].item != kNone) {
                slot = (slot + 1) & entry_mask;
            }
            entry_slots_[slot] = Slot{key_hash, l};
        }
    }
}

uint32_t ProfileText::FindSection(std::string_view name) const {
    name = TrimProfileBlanks(name);
    const uint32_t hash = HashName(name);
    const size_t mask = section_slots_.size() - 1;
    for (size_t slot = hash & mask;; slot = (slot + 1) & mask) {
        const Slot& s = section_slots_[slot];
        if (s.item == kNone) {
            return kNone;
        }
        if (s.hash == hash && EqualNoCase(Name(sections_[s.item]), name)) {
            return s.item;
        }
    }
}

uint32_t ProfileText::FindEntry(uint32_t section, std::string_view key) const {
    key = TrimProfileBlanks(key);
    if (key.empty() || section >= sections_.size()) {
        return kNone;
    }
    return FindEntryHashed(section, key, MixSection(HashName(key), section));
}

uint32_t ProfileText::FindEntryHashed(uint32_t section, std::string_view key, uint32_t hash) const {
    const size_t mask = entry_slots_.size() - 1;
    const Section& range = sections_[section];
    for (size_t slot = hash & mask;; slot = (slot + 1) & mask) {
        const Slot& s = entry_slots_[slot];
        if (s.item == kNone) {
            return kNone;
        }
        if (s.hash == hash && s.item > range.header && s.item < range.end &&
            EqualNoCase(Name(lines_[s.item]), key)) {
            return s.item;
        }
    }
}

std::string_view ProfileText::NewLine() const {
    if (newline_begin_ == kNone) {
        return "\r\n";
    }
    return std::string_view(bytes_).substr(newline_begin_, newline_size_);
}

}  // namespace zq::platform::internal
