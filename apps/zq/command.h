// Subcommands of the zq tool.
//
// Each subcommand lives in a file of its own and registers itself once, at
// namespace scope:
//
//     ZQ_COMMAND(AddVersionCommand, 70);
//
// The number places the subcommand in the help's list (smaller first).
// where AddVersionCommand(CLI::App& app, zq::app::Runner& run) adds the
// subcommand to `app` and, in the subcommand's callback, stores in `run`
// the work to do. main parses the command line, applies the global options
// (the prefix) and then calls `run`, whose result is the exit status:
// kExitOk, kExitFailed when the library reported a failure, kExitUsage when
// the command line was wrong.
#pragma once

#include <CLI/CLI.hpp>

#include <functional>
#include <vector>

namespace zq::app {

constexpr int kExitOk = 0;
constexpr int kExitFailed = 1;
constexpr int kExitUsage = 2;

using Runner = std::function<int()>;
using CommandSetup = void (*)(CLI::App& app, Runner& run);

struct RegisteredCommand {
    int order;
    CommandSetup setup;
};

// The registered subcommands, in registration order.
std::vector<RegisteredCommand>& Commands();

struct CommandRegistrar {
    CommandRegistrar(CommandSetup setup, int order) { Commands().push_back({order, setup}); }
};

}  // namespace zq::app

#define ZQ_COMMAND(setup, order) \
    static ::zq::app::CommandRegistrar zq_command_registrar_##setup(setup, order)
