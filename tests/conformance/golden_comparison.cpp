#include "golden_comparison.h"

#include <algorithm>

namespace zq::conformance {

namespace {

bool StartsWith(std::string_view s, std::string_view prefix) {
    return s.substr(0, prefix.size()) == prefix;
}

// The text after a one-character marker and its blank ("- x" -> "x").
std::string Payload(std::string_view line) {
    return std::string(line.size() > 2 ? line.substr(2) : std::string_view());
}

void CutLines(std::vector<std::string>& lines, const std::vector<std::string>& markers) {
    for (std::string& line : lines) {
        for (const std::string& marker : markers) {
            const size_t at = line.find(marker);
            if (at != std::string::npos) {
                line.resize(at);
            }
        }
    }
}

void SkipWords(std::vector<std::string>& lines, const std::vector<std::string>& markers) {
    for (std::string& line : lines) {
        for (const std::string& marker : markers) {
            size_t at = 0;
            while (!marker.empty() && (at = line.find(marker, at)) != std::string::npos) {
                if (at > 0 && line[at - 1] != ' ') {
                    at += marker.size();
                    continue;
                }
                size_t end = line.find(' ', at);
                if (end == std::string::npos) {
                    end = line.size();
                }
                const size_t begin = at > 0 ? at - 1 : at;
                line.erase(begin, end - begin);
                at = begin;
            }
        }
    }
}

// Positions where `block` occurs in `lines`.
std::vector<size_t> FindBlock(const std::vector<std::string>& lines,
                              const std::vector<std::string>& block) {
    std::vector<size_t> found;
    if (block.empty() || block.size() > lines.size()) {
        return found;
    }
    for (size_t i = 0; i + block.size() <= lines.size(); ++i) {
        if (std::equal(block.begin(), block.end(), lines.begin() + static_cast<long>(i))) {
            found.push_back(i);
        }
    }
    return found;
}

// Lines of a diff between the expected and the actual lines: "-" for a
// line missing from the output, "+" for one that should not be there, each
// with its line number in its own text. Longest common subsequence; large
// inputs fall back to a line-by-line comparison.
std::vector<std::string> DiffLines(const std::vector<std::string>& a,
                                   const std::vector<std::string>& b) {
    std::vector<std::string> out;
    const size_t n = a.size(), m = b.size();
    if (n * m > 16u * 1024 * 1024) {
        for (size_t i = 0; i < std::max(n, m); ++i) {
            if (i >= n || i >= m || a[i] != b[i]) {
                if (i < n)
                    out.push_back("-" + std::to_string(i + 1) + ": " + a[i]);
                if (i < m)
                    out.push_back("+" + std::to_string(i + 1) + ": " + b[i]);
            }
        }
        return out;
    }
    // lcs[i][j]: length of the common subsequence of a[i..] and b[j..].
    std::vector<std::vector<unsigned>> lcs(n + 1, std::vector<unsigned>(m + 1, 0));
    for (size_t i = n; i-- > 0;) {
        for (size_t j = m; j-- > 0;) {
            lcs[i][j] =
                a[i] == b[j] ? lcs[i + 1][j + 1] + 1 : std::max(lcs[i + 1][j], lcs[i][j + 1]);
        }
    }
    size_t i = 0, j = 0;
    while (i < n || j < m) {
        if (i < n && j < m && a[i] == b[j]) {
            ++i;
            ++j;
        } else if (i < n && (j == m || lcs[i + 1][j] >= lcs[i][j + 1])) {
            out.push_back("-" + std::to_string(i + 1) + ": " + a[i]);
            ++i;
        } else {
            out.push_back("+" + std::to_string(j + 1) + ": " + b[j]);
            ++j;
        }
    }
    return out;
}

}  // namespace

std::vector<std::string> SplitLines(std::string_view text) {
    std::vector<std::string> lines;
    size_t start = 0;
    while (start < text.size()) {
        size_t end = text.find('\n', start);
        if (end == std::string_view::npos) {
            end = text.size();
        }
        lines.emplace_back(text.substr(start, end - start));
        start = end + 1;
    }
    return lines;
}

bool ParseKnownDifferences(std::string_view text, std::vector<KnownDifference>* out,
                           std::string* error) {
    out->clear();
    int number = 0;
    auto fail = [&](const std::string& what) {
        *error = "line " + std::to_string(number) + ": " + what;
        return false;
    };
    for (const std::string& line : SplitLines(text)) {
        ++number;
        if (line.empty() || line[0] == '#') {
            continue;
        }
        if (StartsWith(line, "reason:")) {
            KnownDifference entry;
            entry.reason = line.substr(line.find_first_not_of(' ', 7) == std::string::npos
                                           ? line.size()
                                           : line.find_first_not_of(' ', 7));
            entry.line = number;
            if (entry.reason.empty()) {
                return fail("empty reason");
            }
            out->push_back(std::move(entry));
            continue;
        }
        if (out->empty()) {
            return fail("an entry must start with \"reason:\"");
        }
        KnownDifference& entry = out->back();
        if (StartsWith(line, "cut: ")) {
            entry.cuts.push_back(line.substr(5));
        } else if (StartsWith(line, "skip: ")) {
            entry.skips.push_back(line.substr(6));
        } else if (line == "-" || StartsWith(line, "- ")) {
            if (!entry.ours.empty()) {
                return fail("\"-\" lines must come before the \"+\" lines");
            }
            entry.golden.push_back(Payload(line));
        } else if (line == "+" || StartsWith(line, "+ ")) {
            entry.ours.push_back(Payload(line));
        } else {
            return fail("unknown line: " + line);
        }
    }
    for (const KnownDifference& entry : *out) {
        if (entry.cuts.empty() && entry.skips.empty() && entry.golden.empty()) {
            number = entry.line;
            return fail("entry has no \"cut:\", \"skip:\" or \"-\" lines");
        }
    }
    return true;
}

std::vector<std::string> CompareWithGolden(std::string_view golden, std::string_view actual,
                                           const std::vector<KnownDifference>& differences) {
    std::vector<std::string> problems;
    std::vector<std::string> expected = SplitLines(golden);
    std::vector<std::string> got = SplitLines(actual);

    std::vector<std::string> markers;
    std::vector<std::string> skips;
    for (const KnownDifference& entry : differences) {
        markers.insert(markers.end(), entry.cuts.begin(), entry.cuts.end());
        skips.insert(skips.end(), entry.skips.begin(), entry.skips.end());
    }
    CutLines(expected, markers);
    CutLines(got, markers);
    SkipWords(expected, skips);
    SkipWords(got, skips);

    for (const KnownDifference& entry : differences) {
        if (entry.golden.empty()) {
            continue;
        }
        const std::vector<size_t> at = FindBlock(expected, entry.golden);
        if (at.size() != 1) {
            problems.push_back("known difference at line " + std::to_string(entry.line) + " (" +
                               entry.reason + ") matches the golden text " +
                               std::to_string(at.size()) + " times, not once");
            continue;
        }
        const auto first = expected.begin() + static_cast<long>(at[0]);
        expected.erase(first, first + static_cast<long>(entry.golden.size()));
        expected.insert(expected.begin() + static_cast<long>(at[0]), entry.ours.begin(),
                        entry.ours.end());
    }

    for (std::string& line : DiffLines(expected, got)) {
        problems.push_back(std::move(line));
    }
    return problems;
}

}  // namespace zq::conformance
