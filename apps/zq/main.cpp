// zq: the library's facilities from the shell.
#include <CLI/CLI.hpp>

#include <cstdio>
#include <string>

#include "frame/library_info.h"
#include "platform/win32.h"

int main(int argc, char** argv) {
    CLI::App app{"zq - settings, dialing and diagnostics of the communication suite"};
    app.require_subcommand(0, 1);
    std::string prefix;
    app.add_option("--prefix", prefix, "Folder holding the emulated system's state (overrides ZQ_PREFIX)");

    auto* info = app.add_subcommand("info", "Show the library version and the platform");
    auto* tour = app.add_subcommand("tour", "A short tour of what the library does");
    CLI11_PARSE(app, argc, argv);

    if (!prefix.empty()) {
        SetEnvironmentVariableA("ZQ_PREFIX", prefix.c_str());
    }
    if (*info || *tour || app.get_subcommands().empty()) {
        std::printf("zqgbl %s on %s\n", zq::LibraryVersion(), zq::BuildPlatform());
    }
    return 0;
}
