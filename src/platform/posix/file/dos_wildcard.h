// DOS wildcard patterns and 8.3 short names, as FindFirstFileA uses them.
//
// Matching follows the DOS rules that Windows keeps for its file listings,
// without regard to case (Windows-1252 letters):
//   '*'        any run of characters;
//   '*' before a '.'  any run that does not pass the name's last dot, so
//              "*.txt" does not match "a.txt.bak" and "*." matches only
//              names without a dot;
//   '?'        one character, or none at a dot or at the end of the name
//              ("a??" matches "a", "ab" and "abc"; '?' never matches a dot);
//   '.' before a wildcard or at the end: a dot, or nothing at the end of the
//              name ("abc.*" matches "abc");
//   "*.*"      everything, names without a dot included.
#pragma once

#include <set>
#include <string>
#include <string_view>

namespace zq::platform::internal {

bool MatchesDosPattern(std::string_view pattern, std::string_view name);

// True when `name` is a valid 8.3 name by itself (case does not matter).
bool IsShortName(std::string_view name);

// The 8.3 name Windows would give `name` ("LONGFI~1.TXT"): "" when the name
// is a short name already. The number after '~' is the smallest one not in
// `taken`; the result is added to `taken`.
std::string MakeShortName(std::string_view name, std::set<std::string>* taken);

}  // namespace zq::platform::internal
