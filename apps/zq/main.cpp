// zq: the library's facilities from the shell. Subcommands register
// themselves (command.h); this file only parses and dispatches.
#include <CLI/CLI.hpp>

#include <string>

#include "command.h"
#include "platform/win32.h"

namespace zq::app {
std::vector<CommandSetup>& Commands() {
    static std::vector<CommandSetup> commands;
    return commands;
}
}  // namespace zq::app

int main(int argc, char** argv) {
    CLI::App app{"zq - settings, dialing and diagnostics of the communication suite"};
    app.require_subcommand(0, 1);
    std::string prefix;
    app.add_option("--prefix", prefix,
                   "Folder holding the emulated system's state (overrides ZQ_PREFIX)");

    zq::app::Runner run;
    for (zq::app::CommandSetup setup : zq::app::Commands())
        setup(app, run);
    CLI11_PARSE(app, argc, argv);

    if (!prefix.empty()) {
        SetEnvironmentVariableA("ZQ_PREFIX", prefix.c_str());
    }
    if (!run) {
        // No subcommand: the same as "info".
        app.clear();
        app.parse(std::string("info"), false);
    }
    return run ? run() : 0;
}
