// Changes to the bytes of a profile file, as WritePrivateProfileString and
// WritePrivateProfileSection make them.
//
// Each function returns the complete new bytes of the file, or nothing when
// the file would stay as it is. Every line the change does not concern is
// kept byte for byte (blanks, comments, line ends, bytes before the first
// section); new lines use the file's own line end (ProfileText::NewLine).
//
// Placement follows Windows: a new key goes after the last key (or bare
// text) line of the first section of that name, or right after its header
// when it has none; a new section goes to the end of the file. A changed key
// keeps its line up to the value; the old value and any blanks after it are
// replaced. New names and values lose their leading blanks and keep trailing
// ones, as Windows writes them.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/posix/profile/profile_text.h"

namespace zq::platform::internal {

// Sets `key` of `section` to `value`, adding the key or the section as needed.
std::optional<std::string> WithValue(const ProfileText& text, std::string_view section,
                                     std::string_view key, std::string_view value);

// Removes the line of `key` in `section` (the first one when the key is
// there twice). The section header stays, also when it is left empty.
std::optional<std::string> WithoutKey(const ProfileText& text, std::string_view section,
                                      std::string_view key);

// Removes the first section called `section`: its header and every line up
// to the next header.
std::optional<std::string> WithoutSection(const ProfileText& text, std::string_view section);

// Replaces the lines of `section` (up to its last non-blank line) by
// `lines`, one per line and as given; adds the section when it is missing.
std::optional<std::string> WithSectionLines(const ProfileText& text, std::string_view section,
                                            const std::vector<std::string_view>& lines);

}  // namespace zq::platform::internal
