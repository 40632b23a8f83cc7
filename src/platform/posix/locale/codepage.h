// Windows code pages over ICU converters.
//
// A CodePage turns bytes of one Windows code page into UTF-16 and back with
// Windows' rules: single-byte pages decode every byte (bytes the page
// leaves undefined become the C1 control or U+FFFD), double-byte pages and
// UTF-8 may meet invalid sequences, and characters without a mapping are
// replaced by the default character after an optional best-fit attempt.
// Instances are created once per code page and live for the whole process;
// all members are const and safe to call from any thread.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/win32.h"

namespace zq::platform::internal {

class CodePage {
public:
    // The code page for a Windows number, CP_ACP and friends resolved
    // through the system locale; nullptr when it is not supported.
    static const CodePage* Get(UINT code_page);
    // The ANSI code page of the system locale (never nullptr).
    static const CodePage& Ansi();

    UINT Id() const { return id_; }
    bool IsUtf8() const { return id_ == CP_UTF8; }
    bool IsSingleByte() const { return single_byte_; }
    bool IsLeadByte(unsigned char byte) const { return lead_bytes_[byte]; }

    // Decodes `bytes`. Returns false when `strict` and a sequence is invalid
    // (`out` then holds what was decoded before it).
    bool Decode(std::string_view bytes, std::u16string& out, bool strict = false) const;
    std::u16string Decode(std::string_view bytes) const {
        std::u16string out;
        Decode(bytes, out);
        return out;
    }

    struct EncodeOptions {
        bool best_fit = true;                // try the unaccented letter first
        const char* default_char = nullptr;  // nullptr: the page's own ('?')
        bool strict = false;                 // fail on lone surrogates (UTF-8)
    };
    // Encodes `text`; `used_default` (optional) tells whether a character
    // had no mapping. Returns false only for `strict` failures.
    bool Encode(std::u16string_view text, std::string& out, const EncodeOptions& options,
                bool* used_default = nullptr) const;
    std::string Encode(std::u16string_view text) const {
        std::string out;
        Encode(text, out, EncodeOptions{});
        return out;
    }

    // Single-byte pages: the UTF-16 unit of a byte.
    char16_t DecodeByte(unsigned char byte) const { return to_unicode_[byte]; }
    // Single-byte pages: the byte of a UTF-16 unit, or -1 without a mapping.
    int EncodeUnit(char16_t unit) const;

    ~CodePage();
    CodePage(const CodePage&) = delete;
    CodePage& operator=(const CodePage&) = delete;

private:
    CodePage(UINT id, std::string icu_name);
    bool Load();
    bool DecodeMultiByte(std::string_view bytes, std::u16string& out, bool strict) const;
    bool EncodeMultiByte(std::u16string_view text, std::string& out, const EncodeOptions& options,
                         bool* used_default) const;
    std::string EncodeOneMultiByte(char32_t c) const;

    UINT id_;
    std::string icu_name_;
    bool single_byte_ = true;
    std::array<bool, 256> lead_bytes_{};
    std::array<char16_t, 256> to_unicode_{};
    std::vector<int16_t> from_unicode_;  // single-byte pages: 65536 entries
};

// Best-fit candidate for a character without a mapping: the base letter of
// its canonical decomposition (U+0101 'ā' -> 'a'), the letter under a
// stroke (U+0142 'ł' -> 'l'), or 0 when there is none.
char16_t BestFitBase(char16_t unit);

}  // namespace zq::platform::internal
