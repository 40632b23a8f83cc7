// zq: the library's facilities from the shell. Subcommands register
// themselves (command.h); this file parses, applies the prefix, prepares a
// new installation and dispatches.
#include <CLI/CLI.hpp>

#include <algorithm>
#include <iostream>
#include <string>

#include "command.h"
#include "console.h"
#include "installation.h"
#include "platform/win32.h"

namespace zq::app {
std::vector<RegisteredCommand>& Commands() {
    static std::vector<RegisteredCommand> commands;
    return commands;
}
}  // namespace zq::app

int main(int argc, char** argv) {
    using namespace zq::app;
    CLI::App app{"zq - settings, dialing and diagnostics of the communication suite"};
    app.require_subcommand(0, 1);
    app.fallthrough();
    app.footer(
        "State lives below the prefix: --prefix DIR, else $ZQ_PREFIX, else\n"
        "$XDG_DATA_HOME/zq or ~/.local/share/zq. Exit status: 0 done, 1 the\n"
        "operation failed (the reason on standard error), 2 the command line\n"
        "is wrong.\n\n"
        "Example:\n"
        "  zq --prefix /tmp/zq reg query 'HKCU\\Software'");
    std::string prefix;
    app.add_option("--prefix", prefix,
                   "Folder holding the emulated system's state (overrides ZQ_PREFIX)");

    std::vector<RegisteredCommand> commands = Commands();
    std::stable_sort(
        commands.begin(), commands.end(),
        [](const RegisteredCommand& a, const RegisteredCommand& b) { return a.order < b.order; });
    Runner run;
    for (const RegisteredCommand& command : commands) {
        command.setup(app, run);
    }
    try {
        app.parse(argc, argv);
    } catch (const CLI::CallForHelp& e) {
        return app.exit(e);
    } catch (const CLI::CallForAllHelp& e) {
        return app.exit(e);
    } catch (const CLI::ParseError& e) {
        app.exit(e);
        return kExitUsage;
    }

    if (!prefix.empty()) {
        SetEnvironmentVariableA("ZQ_PREFIX", prefix.c_str());
    }
    if (!run) {
        // No subcommand: the same as "info".
        app.clear();
        app.parse(std::string("info"), false);
    }
    PrepareInstallation();
    return run ? run() : kExitOk;
}
