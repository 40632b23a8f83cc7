#include "platform/posix/profile/profile_text.h"

#include <algorithm>
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
    auto sections = std::make_shared<std::vector<Section>>();
    Parse(*sections);
    sections_ = std::move(sections);
    BuildIndex();
}

ProfileText::ProfileText(const ProfileText& base, std::string bytes) : bytes_(std::move(bytes)) {
    if (!ShiftFrom(base)) {
        lines_.clear();
        newline_begin_ = kNone;
        newline_size_ = 0;
        auto sections = std::make_shared<std::vector<Section>>();
        Parse(*sections);
        sections_ = std::move(sections);
        BuildIndex();
    }
}

bool ProfileText::ShiftFrom(const ProfileText& base) {
    const std::string& old = base.bytes_;
    const size_t shorter = std::min(old.size(), bytes_.size());
    // Common head and tail, compared a block at a time first.
    constexpr size_t kBlock = 64;
    size_t prefix = 0;
    while (prefix + kBlock <= shorter &&
           std::memcmp(old.data() + prefix, bytes_.data() + prefix, kBlock) == 0) {
        prefix += kBlock;
    }
    while (prefix < shorter && old[prefix] == bytes_[prefix]) {
        ++prefix;
    }
    const size_t tail_limit = shorter - prefix;
    size_t suffix = 0;
    while (suffix + kBlock <= tail_limit &&
           std::memcmp(old.data() + old.size() - suffix - kBlock,
                       bytes_.data() + bytes_.size() - suffix - kBlock, kBlock) == 0) {
        suffix += kBlock;
    }
    while (suffix < tail_limit &&
           old[old.size() - 1 - suffix] == bytes_[bytes_.size() - 1 - suffix]) {
        ++suffix;
    }
    const size_t old_end = old.size() - suffix;  // changed: old [prefix, old_end)
    const size_t new_end = bytes_.size() - suffix;
    if (base.lines_.empty() || prefix == 0) {
        return false;
    }
    // The line holding the first changed byte.
    auto after =
        std::upper_bound(base.lines_.begin(), base.lines_.end(), prefix,
                         [](size_t offset, const Line& line) { return offset < line.begin; });
    const size_t l = static_cast<size_t>(after - base.lines_.begin()) - 1;
    const Line& old_line = base.lines_[l];
    if (!HasKey(old_line) || prefix <= old_line.name_end || old_end > old_line.end ||
        std::memchr(bytes_.data() + prefix, '\r', new_end - prefix) ||
        std::memchr(bytes_.data() + prefix, '\n', new_end - prefix)) {
        return false;
    }
    const int64_t delta = static_cast<int64_t>(bytes_.size()) - static_cast<int64_t>(old.size());
    Line line = old_line;
    line.end = static_cast<uint32_t>(line.end + delta);
    line.next = static_cast<uint32_t>(line.next + delta);
    line.name_begin =
        old_line.begin == 0 && bytes_.compare(0, 3, "\xEF\xBB\xBF") == 0 ? 3 : old_line.begin;
    ParseLine(line);
    if (line.kind != old_line.kind || !HasKey(line) || line.name_begin != old_line.name_begin ||
        line.name_end != old_line.name_end) {
        return false;  // the change reached the key: its index entry may differ
    }
    lines_ = base.lines_;
    lines_[l] = line;
    for (size_t i = l + 1; i < lines_.size(); ++i) {
        Line& shifted = lines_[i];
        shifted.begin = static_cast<uint32_t>(shifted.begin + delta);
        shifted.end = static_cast<uint32_t>(shifted.end + delta);
        shifted.next = static_cast<uint32_t>(shifted.next + delta);
        shifted.name_begin = static_cast<uint32_t>(shifted.name_begin + delta);
        shifted.name_end = static_cast<uint32_t>(shifted.name_end + delta);
        shifted.value_begin = static_cast<uint32_t>(shifted.value_begin + delta);
        shifted.value_end = static_cast<uint32_t>(shifted.value_end + delta);
    }
    newline_begin_ = base.newline_begin_;
    newline_size_ = base.newline_size_;
    if (newline_begin_ != kNone && newline_begin_ >= prefix) {
        newline_begin_ = static_cast<uint32_t>(newline_begin_ + delta);
    }
    sections_ = base.sections_;
    index_ = base.index_;
    return true;
}

void ProfileText::Parse(std::vector<Section>& sections) {
    const char* data = bytes_.data();
    const uint32_t size = static_cast<uint32_t>(bytes_.size());
    uint32_t pos = 0;
    if (size >= 3 && std::memcmp(data, "\xEF\xBB\xBF", 3) == 0) {
        pos = 3;  // the mark stays in the bytes, outside every line's text
    }
    // Next CR and next LF at or after the current position (size: none).
    auto find = [&](char c, uint32_t from) {
        const void* hit = std::memchr(data + from, c, size - from);
        return hit ? static_cast<uint32_t>(static_cast<const char*>(hit) - data) : size;
    };
    uint32_t next_cr = find('\r', 0);
    uint32_t next_lf = find('\n', 0);
    uint32_t line_start = 0;
    lines_.reserve(size / 24 + 1);
    while (line_start < size) {
        if (next_cr < pos) {
            next_cr = find('\r', pos);
        }
        if (next_lf < pos) {
            next_lf = find('\n', pos);
        }
        const uint32_t end = next_cr < next_lf ? next_cr : next_lf;
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
            if (!sections.empty()) {
                sections.back().end = static_cast<uint32_t>(lines_.size());
            }
            sections.push_back(Section{static_cast<uint32_t>(lines_.size()), 0});
        }
        lines_.push_back(line);
        line_start = next;
        pos = next;
    }
    if (!sections.empty()) {
        sections.back().end = static_cast<uint32_t>(lines_.size());
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
    const bool comment = data[begin] == ';';
    const void* equals = std::memchr(data + begin, '=', end - begin);
    if (comment && !equals) {
        line.kind = LineKind::kComment;
        return;
    }
    if (!equals) {
        line.kind = LineKind::kBare;
        line.name_begin = begin;
        line.name_end = end;
        trim(line.name_begin, line.name_end);
        return;
    }
    const uint32_t eq = static_cast<uint32_t>(static_cast<const char*>(equals) - data);
    line.kind = comment ? LineKind::kComment : LineKind::kEntry;
    line.name_begin = begin;
    line.name_end = eq;
    trim(line.name_begin, line.name_end);
    line.value_begin = eq + 1;
    line.value_end = end;
    trim(line.value_begin, line.value_end);
}

void ProfileText::BuildIndex() {
    auto index = std::make_shared<Index>();
    index->sections.assign(SlotCount(sections_->size()), Slot{0, kNone});
    const size_t section_mask = index->sections.size() - 1;
    size_t entries = 0;
    for (const Line& line : lines_) {
        entries += HasKey(line);
    }
    index->entries.assign(SlotCount(entries), Slot{0, kNone});
    const size_t entry_mask = index->entries.size() - 1;

    for (uint32_t s = 0; s < sections_->size(); ++s) {
        const std::string_view name = Name((*sections_)[s]);
        const uint32_t hash = HashName(name);
        size_t slot = hash & section_mask;
        while (index->sections[slot].item != kNone &&
               !(index->sections[slot].hash == hash &&
                 EqualNoCase(Name((*sections_)[index->sections[slot].item]), name))) {
            slot = (slot + 1) & section_mask;
        }
        if (index->sections[slot].item == kNone) {  // the first of equal names wins
            index->sections[slot] = Slot{hash, s};
        }
        for (uint32_t l = (*sections_)[s].header + 1; l < (*sections_)[s].end; ++l) {
            const Line& line = lines_[l];
            if (!HasKey(line)) {
                continue;
            }
            const std::string_view key = Name(line);
            const uint32_t key_hash = MixSection(HashName(key), s);
            size_t entry = key_hash & entry_mask;
            // Slots of this section hold lines before `l`: a match is an
            // earlier key of the same name, which wins.
            while (index->entries[entry].item != kNone &&
                   !(index->entries[entry].hash == key_hash &&
                     index->entries[entry].item > (*sections_)[s].header &&
                     EqualNoCase(Name(lines_[index->entries[entry].item]), key))) {
                entry = (entry + 1) & entry_mask;
            }
            if (index->entries[entry].item == kNone) {
                index->entries[entry] = Slot{key_hash, l};
            }
        }
    }
    index_ = std::move(index);
}

uint32_t ProfileText::FindSection(std::string_view name) const {
    name = TrimProfileBlanks(name);
    const uint32_t hash = HashName(name);
    const size_t mask = index_->sections.size() - 1;
    for (size_t slot = hash & mask;; slot = (slot + 1) & mask) {
        const Slot& s = index_->sections[slot];
        if (s.item == kNone) {
            return kNone;
        }
        if (s.hash == hash && EqualNoCase(Name((*sections_)[s.item]), name)) {
            return s.item;
        }
    }
}

uint32_t ProfileText::FindEntry(uint32_t section, std::string_view key) const {
    key = TrimProfileBlanks(key);
    if (key.empty() || section >= sections_->size()) {
        return kNone;
    }
    const uint32_t hash = MixSection(HashName(key), section);
    const size_t mask = index_->entries.size() - 1;
    const Section& range = (*sections_)[section];
    for (size_t slot = hash & mask;; slot = (slot + 1) & mask) {
        const Slot& s = index_->entries[slot];
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
