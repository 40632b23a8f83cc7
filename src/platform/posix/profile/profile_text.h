// The bytes of one profile (INI) file, parsed into lines and indexed for
// lookups by section and key name.
//
// Syntax, as Windows reads it:
// - Lines end with CR LF, LF or a lone CR; the last line may have no end.
// - Leading blanks of a line are skipped. A line is then blank, a comment
//   (';' first), a section header ('[' name ']'; text after the last ']' is
//   ignored, a '[' without ']' is ordinary text), an entry (name '=' value,
//   split at the first '='), or bare text without '='. Bare text is listed
//   by GetPrivateProfileSection but is never found as a key. A comment
//   with '=' has a key and value like an entry and is found by its exact
//   key (";name"), but it is never listed.
// - Names and values are trimmed of blanks (space, tab, CR, LF, VT, FF and
//   Ctrl-Z); quotes around values are kept here (the API layer strips them).
// - A NUL byte ends the readable text of its line, as it ends a C string.
// - A UTF-8 byte-order mark at the start of the file is skipped.
// - Lines before the first header belong to no section.
// - Names are compared without regard to case (Windows-1252 letters). When
//   a section name occurs twice, only its first occurrence is looked up;
//   within it, the first of two equal keys is the one found.
//
// A ProfileText never changes after construction, so one instance may be
// shared by any number of threads. Offsets are 32-bit: the store refuses
// files of kMaxBytes or more.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace zq::platform::internal {

class ProfileText {
public:
    static constexpr uint32_t kNone = UINT32_MAX;
    static constexpr uint32_t kMaxBytes = 64u << 20;

    enum class LineKind : uint8_t { kBlank, kComment, kSection, kEntry, kBare };

    struct Line {
        uint32_t begin;  // first byte of the line
        uint32_t end;    // one past the last byte before the line end
        uint32_t next;   // first byte of the next line (end + 0, 1 or 2)
        // Section name (kSection), key (kEntry, kComment with '=') or the
        // text (kBare), trimmed.
        uint32_t name_begin;
        uint32_t name_end;
        // Value of a line with a key, trimmed, quotes kept; value_begin is
        // just after the blanks that follow '='.
        uint32_t value_begin;
        uint32_t value_end;
        LineKind kind;
    };

    // Whether lookups find `line` by a key.
    static bool HasKey(const Line& line) {
        return (line.kind == LineKind::kEntry || line.kind == LineKind::kComment) &&
               line.name_end > line.name_begin;
    }

    struct Section {
        uint32_t header;  // index of the header line
        uint32_t end;     // one past the last line of the section
    };

    // Parses `bytes` (any content: binary garbage gives some lines, never a
    // failure). Files of kMaxBytes or more must not be passed.
    explicit ProfileText(std::string bytes = {});

    // The same result as ProfileText(bytes), found faster when `bytes`
    // differs from `base` only inside the value of one entry (the usual
    // write): the lines are shifted and the index is shared with `base`.
    ProfileText(const ProfileText& base, std::string bytes);

    ProfileText(const ProfileText&) = delete;
    ProfileText& operator=(const ProfileText&) = delete;

    const std::string& bytes() const { return bytes_; }
    const std::vector<Line>& lines() const { return lines_; }
    // In file order, duplicates included.
    const std::vector<Section>& sections() const { return *sections_; }

    std::string_view Name(const Line& line) const {
        return std::string_view(bytes_).substr(line.name_begin, line.name_end - line.name_begin);
    }
    std::string_view Value(const Line& line) const {
        return std::string_view(bytes_).substr(line.value_begin, line.value_end - line.value_begin);
    }
    std::string_view Name(const Section& section) const { return Name(lines_[section.header]); }

    // Whether this text was derived from a base by shifting (for tests).
    bool shares_index_with(const ProfileText& other) const { return index_ == other.index_; }

    // Index into sections() of the first section called `name` (blanks
    // around `name` ignored, case ignored), or kNone.
    uint32_t FindSection(std::string_view name) const;

    // Index into lines() of the first line with a key called `key`
    // (trimmed, case ignored) in section `section` (an index from
    // FindSection), or kNone.
    // An empty key is never found.
    uint32_t FindEntry(uint32_t section, std::string_view key) const;

    // The line end for lines this file does not have yet: the end of its
    // first ended line, CR LF when it has none.
    std::string_view NewLine() const;

private:
    struct Slot {
        uint32_t hash;
        uint32_t item;  // kNone when empty
    };
    // Open addressing, sizes powers of two. Items are indices (of sections,
    // of lines), not offsets, so a value edit leaves the index valid.
    struct Index {
        std::vector<Slot> sections;
        std::vector<Slot> entries;
    };

    void Parse(std::vector<Section>& sections);
    void ParseLine(Line& line) const;
    void BuildIndex();
    bool ShiftFrom(const ProfileText& base);

    std::string bytes_;
    std::vector<Line> lines_;
    std::shared_ptr<const std::vector<Section>> sections_;
    std::shared_ptr<const Index> index_;
    uint32_t newline_begin_ = kNone;
    uint32_t newline_size_ = 0;
};

// Blanks as the profile parser trims them.
bool IsProfileBlank(char c);

// `text` without leading/trailing profile blanks.
std::string_view TrimProfileBlanks(std::string_view text);

// Windows-1252 case folding (to upper case) and comparison without case.
char FoldCase(char c);
bool EqualNoCase(std::string_view a, std::string_view b);

}  // namespace zq::platform::internal
