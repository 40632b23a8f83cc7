// Subcommands of the zq tool.
//
// Each subcommand lives in a file of its own and registers itself once, at
// namespace scope:
//
//     ZQ_COMMAND(AddVersionCommand);
//
// where AddVersionCommand(CLI::App& app, zq::app::Runner& run) adds the
// subcommand to `app` and, in the subcommand's callback, stores in `run`
// the work to do. main parses the command line, applies the global options
// (the prefix) and then calls `run`, whose result is the exit status.
#pragma once

#include <CLI/CLI.hpp>

#include <functional>
#include <vector>

namespace zq::app {

using Runner = std::function<int()>;
using CommandSetup = void (*)(CLI::App& app, Runner& run);

// The registered subcommands, in registration order.
std::vector<CommandSetup>& Commands();

struct CommandRegistrar {
    explicit CommandRegistrar(CommandSetup setup) { Commands().push_back(setup); }
};

}  // namespace zq::app

#define ZQ_COMMAND(setup) static ::zq::app::CommandRegistrar zq_command_registrar_##setup(setup)
