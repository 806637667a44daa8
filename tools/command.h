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
CLI::App* NewCommand(CLI::App& parent, const std::string& name, const std::string& help,
                     const std::string& examples);

// Runs `run(common options)` when `command` is the one that was given, and none of its subcommands.
template <typename Run>
void OnRun(CLI::App* command, Invocation& invocation, Run run) {
  command->callback([command, &invocation, run] {
    if (!command->get_subcommands().empty()) return;
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
void AddWatchCommand(CLI::App& app, Invocation& invocation);
void AddClockCommand(CLI::App& app, Invocation& invocation);
void AddAlarmCommand(CLI::App& app, Invocation& invocation);
void AddWatchdogCommand(CLI::App& app, Invocation& invocation);
void AddI2cCommand(CLI::App& app, Invocation& invocation);
void AddPinsCommand(CLI::App& app, Invocation& invocation);
void AddLightCommand(CLI::App& app, Invocation& invocation);
void AddBacklightCommand(CLI::App& app, Invocation& invocation);
void AddDoctorCommand(CLI::App& app, Invocation& invocation);
void AddDefaultsCommand(CLI::App& app, Invocation& invocation);
void AddResetCommand(CLI::App& app, Invocation& invocation);
void AddForceShutdownCommand(CLI::App& app, Invocation& invocation);

}  // namespace rolu
