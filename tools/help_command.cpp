#include <fmt/format.h>

#include "cli/command_line.h"
#include "cli/help_text.h"
#include "cli/nearest_name.h"
#include "tools/command.h"
#include "tools/status_words.h"

namespace rolu {
namespace {

const CLI::App& FindSubcommand(const CLI::App& parent, const std::string& name) {
  std::vector<std::string> known;
  for (const CLI::App* const command : ShownSubcommands(parent)) {
    if (command->get_name() == name) return *command;
    known.push_back(command->get_name());
  }
  throw CommandError(kWrongUse, fmt::format("there is no command \"{}\"{}", name, Suggestion(name, known)));
}

}  // namespace

void SaySubcommands(const CLI::App& command) {
  for (const CLI::App* const each : ShownSubcommands(command)) {
    fmt::print(stderr, "  {:<20}  {}\n", PathOf(*each), each->get_description());
  }
}

void AddHelpCommand(CLI::App& app, Invocation& invocation) {
  auto names = std::make_shared<std::vector<std::string>>();
  CLI::App* const command = NewCommand(app, "help", "Show this help, or the help of a command",
                                       "  rolu help\n  rolu help alarm daily");
  command->add_option("COMMAND", *names, "A command, and a command of that");
  OnRun(
      command, invocation,
      [&app](const std::vector<std::string>& words, const CommonOptions&) {
        const CLI::App* at = &app;
        for (const std::string& word : words) at = &FindSubcommand(*at, word);
        PrintHelp(HelpOf(*at), app.get_name());
        return kDone;
      },
      names);
}

}  // namespace rolu
