#pragma once

#include <CLI/CLI.hpp>
#include <string>

namespace rolu {

// Both are written from the command line's own definitions and the table of settings.

// rolu(1) as roff.
std::string ManPage(const CLI::App& app);

// The completion for bash.
std::string BashCompletion(const CLI::App& app);

// The subcommands of `app` that --help shows, in its order.
std::vector<const CLI::App*> ShownSubcommands(const CLI::App& app);

}  // namespace rolu
