#pragma once

#include <CLI/CLI.hpp>
#include <chrono>
#include <string>
#include <vector>

#include "cli/duration.h"

namespace rolu {

// An option that takes a duration from `shortest` to `longest`.
CLI::Option* AddDurationOption(CLI::App& command, const std::string& name,
                               std::chrono::milliseconds& duration, const std::string& help,
                               std::chrono::milliseconds shortest = std::chrono::milliseconds(1),
                               std::chrono::milliseconds longest = kLongestDuration);

// Says on standard error what is wrong with a command line, suggests the nearest known command or option, and
// returns the exit status. If `stop` is --help or --version, prints the text instead.
int Conclude(const CLI::App& app, const CLI::ParseError& stop);

// The subcommands of `app` that --help shows, in its order.
std::vector<const CLI::App*> ShownSubcommands(const CLI::App& app);

// The full name of a command, for example "rolu alarm daily".
std::string PathOf(const CLI::App& app);

// The options of this command alone: "--help", "--json" and so on.
std::vector<std::string> LongOptions(const CLI::App& app);

}  // namespace rolu
