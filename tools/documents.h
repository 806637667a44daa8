#pragma once

#include <CLI/CLI.hpp>
#include <string>

namespace rolu {

// Both are written from the command line's own definitions and the table of settings.

// rolu(1) as roff.
std::string RoluManPage(const CLI::App& app);

// The completion for bash.
std::string RoluCompletion(const CLI::App& app);

}  // namespace rolu
