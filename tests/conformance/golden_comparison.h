// Comparing a probe's output with its golden file, allowing for the
// documented differences.
//
// known_differences/<probe>.txt lists where we knowingly differ from the
// recorded output, each entry with the reason:
//
//   # comment
//   reason: why this entry exists (one line)
//   cut: <marker>        every line of both texts ends before <marker>
//   skip: <marker>       every line of both texts loses the words that
//                        start with <marker> (up to the next blank), and
//                        the blank before each
//   - <golden line>      these consecutive golden lines ...
//   + <our line>         ... are expected as these lines instead
//
// An entry has a reason and cuts, skips or a "-" block (the "+" block may
// be empty: the lines are then not expected at all). Text after "- ",
// "+ ", "cut: " and "skip: " is taken verbatim, leading blanks included.
// Cuts and skips apply before the blocks, so blocks are written without
// what they remove. A "-" block must match the golden text exactly once,
// so stale entries are noticed.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace zq::conformance {

struct KnownDifference {
    std::string reason;
    std::vector<std::string> cuts;
    std::vector<std::string> skips;
    std::vector<std::string> golden;
    std::vector<std::string> ours;
    int line = 0;  // where the entry starts in its file
};

// Parses a known-differences file; false with a message on a syntax error.
bool ParseKnownDifferences(std::string_view text, std::vector<KnownDifference>* out,
                           std::string* error);

std::vector<std::string> SplitLines(std::string_view text);

// Everything that keeps `actual` from matching `golden` after the known
// differences are applied: entries that match the golden text other than
// once, then a diff ("-<line>: text" expected but missing, "+<line>: text"
// printed but not expected). Empty when they match.
std::vector<std::string> CompareWithGolden(std::string_view golden, std::string_view actual,
                                           const std::vector<KnownDifference>& differences);

}  // namespace zq::conformance
