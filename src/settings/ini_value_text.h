// Text conversions behind the typed profile-file entries: the number
// readers and writers, the white-space trimmer and the field splitter that
// CZqIniFile and CZqMemIniFile apply to the text of one entry. All functions take any byte sequence
// (a value may come from a file full of garbage) and never read beyond the view they are given.
#pragma once

#include <cstddef>
#include <string_view>

#include "platform/win32.h"

namespace zq::settings {

// Reads as the C runtime's atoi/atol do: leading white space (blank, tab,
// CR, LF, VT, FF), an optional sign, decimal digits up to the first other
// character; no digits read as 0. The value accumulates modulo 2^32 (no
// saturation), so "4294967295" reads back as 0xFFFFFFFF when taken as a
// DWORD.
INT ParseDecimal(std::string_view text);

// Writes the "%d" text of value into text (size bytes, terminator
// included; cut to fit). kDecimalTextSize bytes hold any value.
inline constexpr size_t kDecimalTextSize = 12;
void FormatDecimal(INT value, char* text, size_t size);

// text without its leading and trailing white space: the characters
// ParseDecimal skips (blank, tab, CR, LF, VT, FF).
std::string_view TrimWhiteSpace(std::string_view text);

// The entries' own hexadecimal reader: leading blanks and tabs skipped;
// then '0'-'9', 'A'-'F', 'a'-'f' shift in a digit (32 bits, so only the
// last eight digits count), 'X' or 'x' restarts at 0 ("0x1F" is 31, "12x34"
// is 0x34), any other character ends the value.
DWORD ParseHexadecimal(std::string_view text);

// TRUE when the first seven characters of text equal, without regard to
// ASCII case, one of "1", "TRUE", "SET", "YES", "ON", "OK"; FALSE for
// anything else ("2", "-1", "Y", "enabled").
BOOL ParseBooleanWord(std::string_view text);

// Splits a text into the runs between delimiter characters, as strtok
// does, but without writing into the text: runs of delimiters produce no
// empty fields. In multibyte mode a lead byte of the ANSI code page and its
// trail byte form one character that is compared as a whole with the
// characters of the delimiter set.
class FieldSplitter {
public:
    FieldSplitter(std::string_view text, std::string_view delimiters, bool multibyte = false);

    // The next field; false (field untouched) when there is none left.
    bool Next(std::string_view& field);

private:
    // Length in bytes of the character at pos (1, or 2 for a lead byte
    // followed by a trail byte in multibyte mode).
    size_t CharLength(std::string_view text, size_t pos) const;
    bool IsDelimiter(size_t pos, size_t length) const;

    std::string_view text_;
    std::string_view delimiters_;
    bool multibyte_;
    size_t pos_ = 0;
};

// The delimiter set of the record kinds (time, rectangle, colour,
// accelerator, window placement): blank , : ; / | and backslash.
inline constexpr std::string_view kRecordDelimiters = " ,:;/|\\";

}  // namespace zq::settings
