// Command lines split into arguments and joined again, by the rules of the
// Windows C run-time start-up code:
//   - blanks and tabs separate arguments; "..." groups, also inside a word;
//   - backslashes are literal unless they precede a quote: 2n of them then
//     give n and the quote groups, 2n + 1 give n and a literal quote;
//   - inside quotes "" gives one literal quote and ends the quoted part;
//   - an unterminated quote runs to the end of the line;
//   - the program name (first argument) takes quotes but no escapes.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace zq::platform::internal {

// The program name at the start of `line` (leading blanks skipped, quotes
// removed) and the position just after it.
std::string ParseProgramName(std::string_view line, size_t* end);

// The arguments of `text` by the rules for every argument after the first.
std::vector<std::string> SplitArguments(std::string_view text);

// The whole command line: program name, then the arguments.
std::vector<std::string> SplitCommandLine(std::string_view line);

// A command line that SplitCommandLine turns back into `args` (quoting only
// where needed). The program name cannot hold a quote; one is dropped.
std::string JoinCommandLine(const std::vector<std::string>& args);

}  // namespace zq::platform::internal
