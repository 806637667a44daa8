#include "tools/command_line.h"

#include <fmt/format.h>

#include <algorithm>

#include "tools/documentation.h"
#include "tools/exit_status.h"
#include "tools/nearest.h"

namespace rolu {
namespace {

std::string ExitStatusHelp() {
  std::string text = "Exit status:\n";
  for (const ExitStatusText& status : kExitStatusTexts) {
    text += fmt::format("  {:<8}  {}\n", status.number, status.meaning);
  }
  return text;
}

// The innermost subcommand that was given.
const CLI::App& Innermost(const CLI::App& app) {
  const CLI::App* at = &app;
  while (!at->get_subcommands().empty()) at = at->get_subcommands().front();
  return *at;
}

std::vector<std::string> SubcommandNames(const CLI::App& app) {
  std::vector<std::string> names;
  for (const CLI::App* const command : ShownSubcommands(app)) names.push_back(command->get_name());
  return names;
}

// For the build, which installs what they print.
void AddGenerators(CLI::App& app) {
  app.add_flag_callback("--generate-man", [&app] { throw CLI::CallForVersion(ManPage(app), 0); })->group("");
  app.add_flag_callback("--generate-completion",
                        [&app] { throw CLI::CallForVersion(BashCompletion(app), 0); })
      ->group("");
}

// Those of the command and, as they may stand anywhere, of the commands around it.
std::vector<std::string> OptionNames(const CLI::App& app) {
  std::vector<std::string> names;
  for (const CLI::App* at = &app; at != nullptr; at = at->get_parent()) {
    for (const CLI::Option* const option : at->get_options()) {
      for (const std::string& name : option->get_lnames()) names.push_back("--" + name);
    }
  }
  return names;
}

}  // namespace

std::string GivenCommand(const CLI::App& app) {
  std::string name = "rolu";
  const CLI::App* at = &app;
  while (!at->get_subcommands().empty()) {
    at = at->get_subcommands().front();
    name += " " + at->get_name();
  }
  return name;
}

std::string ParseProblem(const CLI::App& app, const CLI::ParseError& error) {
  const CLI::App& command = Innermost(app);
  const std::vector<std::string> unexpected = app.remaining(true);
  if (unexpected.empty()) {
    const bool lacks_command = &command == &app || !SubcommandNames(command).empty();
    return lacks_command && error.get_name() == "RequiredError" ? "a command is missing" : error.what();
  }
  const std::string& word = unexpected.front();
  if (word.rfind('-', 0) == 0) {
    return fmt::format("there is no option '{}'{}", word, Suggestion(word, OptionNames(command)));
  }
  const std::vector<std::string> subcommands = SubcommandNames(command);
  if (subcommands.empty()) return fmt::format("'{}' is one word too many", word);
  return fmt::format("there is no command '{}'{}", word, Suggestion(word, subcommands));
}

void BuildCommandLine(CLI::App& app, Invocation& invocation) {
  app.name("rolu");
  app.description("The board from a shell: reads, sets and watches the in-vehicle computer's hardware.");
  app.set_version_flag("--version", "rolu " ROLU_VERSION);
  app.add_flag("--json", invocation.common.json, "Print results as JSON, with units");
  app.add_flag("--force", invocation.common.force, "Go on although another process holds the MCU's port");
  app.add_flag("-y,--yes", invocation.common.yes,
               "Do not ask before what cuts power, switches a protection off or resets");
  AddGenerators(app);
  app.require_subcommand(1);
  app.footer(
      "Examples:\n"
      "  rolu status\n"
      "  rolu set ignition.off-event-delay=20\n"
      "  rolu watch --on ignition-off 'logger ignition off'\n"
      "  rolu doctor\n"
      "\n" +
      ExitStatusHelp() +
      "\n'rolu COMMAND --help' says more about a command; 'rolu list' lists the settings.");
  AddStatusCommand(app, invocation);
  AddGetCommand(app, invocation);
  AddSetCommand(app, invocation);
  AddListCommand(app, invocation);
  AddSaveCommand(app, invocation);
  AddLoadCommand(app, invocation);
  AddWatchCommand(app, invocation);
  AddDoctorCommand(app, invocation);
  AddClockCommand(app, invocation);
  AddAlarmCommand(app, invocation);
  AddWatchdogCommand(app, invocation);
  AddI2cCommand(app, invocation);
  AddPinsCommand(app, invocation);
  AddLightCommand(app, invocation);
  AddBacklightCommand(app, invocation);
  AddDefaultsCommand(app, invocation);
  AddResetCommand(app, invocation);
  AddForceShutdownCommand(app, invocation);
}

}  // namespace rolu
