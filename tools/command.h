#pragma once

#include <CLI/CLI.hpp>
#include <functional>
#include <memory>
#include <string>

#include "tools/session.h"

namespace rolu {

// What the command line asks for.
struct Invocation {
  CommonOptions common;
  std::function<int()> action;  // returns the exit status
};

// Adds a subcommand. `examples` holds whole command lines, one per line.
inline CLI::App* NewCommand(CLI::App& parent, const std::string& name, const std::string& help,
                            const std::string& examples) {
  CLI::App* const command = parent.add_subcommand(name, help);
  // The common options may also stand behind the subcommand.
  command->fallthrough();
  if (!examples.empty()) command->footer("Examples:\n" + examples);
  return command;
}

// Lists on standard error what `command` can do.
void SaySubcommands(const CLI::App& command);

// Runs `run(*options, common options)` when `command` was given without one of its subcommands.
template <typename Run, typename... Options>
void OnRun(CLI::App* command, Invocation& invocation, Run run, std::shared_ptr<Options>... options) {
  command->callback([=, &invocation] {
    if (!command->get_subcommands().empty()) return;
    invocation.action = [=, &invocation] { return static_cast<int>(run(*options..., invocation.common)); };
  });
}

// The same for a command with subcommands, of which it then says the names on standard error.
template <typename Run, typename... Options>
void OnBareRun(CLI::App* command, Invocation& invocation, Run run, std::shared_ptr<Options>... options) {
  command->require_subcommand(0, 1);
  OnRun(
      command, invocation,
      [=](const auto&... arguments) {
        const ExitStatus status = run(arguments...);
        const CommonOptions& common = std::get<sizeof...(Options)>(std::tie(arguments...));
        if (!common.json) SaySubcommands(*command);
        return status;
      },
      options...);
}

// Each function adds its subcommand to `app`.
void AddStatusCommand(CLI::App& app, Invocation& invocation);
void AddGetCommand(CLI::App& app, Invocation& invocation);
void AddSetCommand(CLI::App& app, Invocation& invocation);
void AddListCommand(CLI::App& app, Invocation& invocation);
void AddSaveCommand(CLI::App& app, Invocation& invocation);
void AddLoadCommand(CLI::App& app, Invocation& invocation);
void AddVerifyCommand(CLI::App& app, Invocation& invocation);
void AddWatchCommand(CLI::App& app, Invocation& invocation);
void AddClockCommand(CLI::App& app, Invocation& invocation);
void AddAlarmCommand(CLI::App& app, Invocation& invocation);
void AddWatchdogCommand(CLI::App& app, Invocation& invocation);
void AddExplainCommand(CLI::App& app, Invocation& invocation);
void AddRawCommand(CLI::App& app, Invocation& invocation);
void AddI2cCommand(CLI::App& app, Invocation& invocation);
void AddPinsCommand(CLI::App& app, Invocation& invocation);
void AddLightCommand(CLI::App& app, Invocation& invocation);
void AddBacklightCommand(CLI::App& app, Invocation& invocation);
void AddDoctorCommand(CLI::App& app, Invocation& invocation);
void AddDefaultsCommand(CLI::App& app, Invocation& invocation);
void AddResetCommand(CLI::App& app, Invocation& invocation);
void AddForceShutdownCommand(CLI::App& app, Invocation& invocation);
void AddHelpCommand(CLI::App& app, Invocation& invocation);

// rolu(1) as roff, and the completion for bash. Both are made from the definitions of the commands and the
// table of settings.
std::string RoluManPage(const CLI::App& app);
std::string RoluCompletion(const CLI::App& app);

}  // namespace rolu
