// zq info / zq tour: the library version and the platform.
#include <cstdio>

#include "command.h"
#include "frame/library_info.h"

namespace {

void AddInfoCommands(CLI::App& app, zq::app::Runner& run) {
    auto show = [&run] {
        run = [] {
            std::printf("zqgbl %s on %s\n", zq::LibraryVersion(), zq::BuildPlatform());
            return 0;
        };
    };
    app.add_subcommand("info", "Show the library version and the platform")->callback(show);
    app.add_subcommand("tour", "A short tour of what the library does")->callback(show);
}

}  // namespace

ZQ_COMMAND(AddInfoCommands);
