// Names and paths of registry keys and values.
//
// Names compare without regard to case, as Windows compares them: each
// Windows-1252 character is taken as its Unicode character and upper-cased.
// FoldName writes that upper-cased name as UTF-8, so that comparing folded
// names byte by byte gives the order of the upper-cased names, the order in
// which Windows NT lists subkeys (an underscore, 0x5F, sorts after the
// letters).
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/win32.h"

namespace zq::platform::internal {

// Windows' documented limits, in characters without the terminator.
inline constexpr size_t kMaxKeyNameChars = 255;
inline constexpr size_t kMaxValueNameChars = 16383;

// Appends the folded form of `name` to `out`.
void AppendFoldedName(std::string_view name, std::string& out);
std::string FoldName(std::string_view name);

// A subkey path split at its backslashes.
struct KeyPath {
    std::vector<std::string_view> names;  // the components as given (views into the caller's text)
    std::vector<std::string_view> folds;  // the same, folded (views into `folded`)
    std::string folded;                   // folded components joined by backslashes
};

// Splits `path` (NULL or "" give no components). Empty components, from
// doubled or trailing backslashes, are skipped. A leading backslash gives
// ERROR_BAD_PATHNAME, a component over kMaxKeyNameChars characters
// ERROR_INVALID_PARAMETER; `out` is then unspecified.
LONG SplitKeyPath(const char* path, KeyPath& out);

}  // namespace zq::platform::internal
