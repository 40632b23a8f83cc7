// Case mapping and character classes of the ANSI code page, as 256-entry
// tables built once from ICU's Unicode properties (Windows-1252: 0xE9 'é'
// is a lower-case letter whose upper case is 0xC9, 0xFF 'ÿ' maps to 0x9F
// 'Ÿ', 0xDF 'ß' has no single-byte upper case and stays). In a double-byte
// code page the tables describe the single-byte characters only.
// Immutable after construction; safe on any thread.
#pragma once

#include <array>
#include <cstdint>

namespace zq::platform::internal {

class CharClass {
public:
    // Tables of the current ANSI code page.
    static const CharClass& Ansi();

    unsigned char Upper(unsigned char c) const { return upper_[c]; }
    unsigned char Lower(unsigned char c) const { return lower_[c]; }
    bool IsAlpha(unsigned char c) const { return flags_[c] & kAlpha; }
    bool IsDigit(unsigned char c) const { return flags_[c] & kDigit; }
    bool IsUpper(unsigned char c) const { return flags_[c] & kUpper; }
    bool IsLower(unsigned char c) const { return flags_[c] & kLower; }
    bool IsLeadByte(unsigned char c) const { return flags_[c] & kLead; }

private:
    explicit CharClass(unsigned code_page);
    enum : uint8_t { kAlpha = 1, kDigit = 2, kUpper = 4, kLower = 8, kLead = 16 };
    std::array<unsigned char, 256> upper_{};
    std::array<unsigned char, 256> lower_{};
    std::array<uint8_t, 256> flags_{};
};

}  // namespace zq::platform::internal
