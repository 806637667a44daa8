#pragma once

#include <CLI/CLI.hpp>
#include <functional>
#include <memory>
#include <string>
#include <utility>

#include "tools/common_options.h"

namespace rolu {

// What the command line asks for, once it is parsed.
struct Invocation {
  CommonOptions common;
  std::function<int()> action;  // gives the exit status
};

// A subcommand. `examples` are whole command lines, one to a line.
inline CLI::App* NewCommand(CLI::App& parent, const std::string& name, const std::string& help,
                            const std::string& examples) {
  CLI::App* const command = parent.add_subcommand(name, help);
  // The common options may stand behind the subcommand.
  command->fallthrough();
  if (!examples.empty()) command->footer("Examples:\n" + examples);
  return command;
}

// Runs `run(common options)` when `command` is the one that was given.
template <typename Run>
void OnRun(CLI::App* command, Invocation& invocation, Run run) {
  command->callback([&invocation, run] {
    invocation.action = [&invocation, run] { return static_cast<int>(run(invocation.common)); };
  });
}

// Each adds its subcommand to `app`.
void AddStatusCommand(CLI::App& app, Invocation& invocation);
void AddGetCommand(CLI::App& app, Invocation& invocation);
void AddSetCommand(CLI::App& app, Invocation& invocation);
void AddListCommand(CLI::App& app, Invocation& invocation);
void AddSaveCommand(CLI::App& app, Invocation& invocation);
void AddLoadCommand(CLI::App& app, Invocation& invocation);

}  // namespace rolu
