#include "platform/posix/system/command_line.h"

namespace zq::platform::internal {

namespace {

bool IsBlank(char c) {
    return c == ' ' || c == '\t';
}

}  // namespace

std::string ParseProgramName(std::string_view line, size_t* end) {
    size_t i = 0;
    while (i < line.size() && IsBlank(line[i])) {
        ++i;
    }
    std::string name;
    bool quoted = false;
    for (; i < line.size(); ++i) {
        char c = line[i];
        if (c == '"') {
            quoted = !quoted;
        } else if (!quoted && IsBlank(c)) {
            break;
        } else {
            name += c;
        }
    }
    *end = i;
    return name;
}

std::vector<std::string> SplitArguments(std::string_view text) {
    std::vector<std::string> args;
    size_t i = 0;
    for (;;) {
        while (i < text.size() && IsBlank(text[i])) {
            ++i;
        }
        if (i == text.size()) {
            return args;
        }
        std::string arg;
        bool quoted = false;
        while (i < text.size()) {
            char c = text[i];
            if (!quoted && IsBlank(c)) {
                break;
            }
            if (c == '\\') {
                size_t count = 0;
                while (i < text.size() && text[i] == '\\') {
                    ++count;
                    ++i;
                }
                if (i < text.size() && text[i] == '"') {
                    arg.append(count / 2, '\\');
                    if (count % 2 == 1) {
                        arg += '"';
                        ++i;
                    }
                } else {
                    arg.append(count, '\\');
                }
                continue;
            }
            if (c == '"') {
                if (quoted && i + 1 < text.size() && text[i + 1] == '"') {
                    arg += '"';  // "" inside quotes: a quote, and the quoted part ends
                    ++i;
                }
                quoted = !quoted;
                ++i;
                continue;
            }
            arg += c;
            ++i;
        }
        args.push_back(std::move(arg));
    }
}

std::vector<std::string> SplitCommandLine(std::string_view line) {
    size_t end = 0;
    std::vector<std::string> args{ParseProgramName(line, &end)};
    std::vector<std::string> rest = SplitArguments(line.substr(end));
    args.insert(args.end(), rest.begin(), rest.end());
    return args;
}

std::string JoinCommandLine(const std::vector<std::string>& args) {
    std::string line;
    for (size_t a = 0; a < args.size(); ++a) {
        const std::string& arg = args[a];
        if (a > 0) {
            line += ' ';
        }
        if (a == 0) {
            std::string name;
            for (char c : arg) {
                if (c != '"') {
                    name += c;
                }
            }
            bool blanks = name.empty() || name.find_first_of(" \t") != std::string::npos;
            line += blanks ? "\"" + name + "\"" : name;
            continue;
        }
        if (!arg.empty() && arg.find_first_of(" \t\"") == std::string::npos) {
            line += arg;
            continue;
        }
        line += '"';
        size_t backslashes = 0;
        for (char c : arg) {
            if (c == '\\') {
                ++backslashes;
                continue;
            }
            if (c == '"') {
                line.append(backslashes * 2 + 1, '\\');
            } else {
                line.append(backslashes, '\\');
            }
            backslashes = 0;
            line += c;
        }
        line.append(backslashes * 2, '\\');
        line += '"';
    }
    return line;
}

}  // namespace zq::platform::internal
