#pragma once

#include "tools/command.h"

namespace rolu {

// Gives `app` all subcommands, options and texts. `invocation` must live as long as `app`.
void BuildCommandLine(CLI::App& app, Invocation& invocation);

// The message for a command line that could not be parsed; it names the nearest known subcommand or
// option.
std::string ParseProblem(const CLI::App& app, const CLI::ParseError& error);

// The subcommand that was given, "rolu alarm daily"; "rolu" when there was none.
std::string GivenCommand(const CLI::App& app);

}  // namespace rolu
