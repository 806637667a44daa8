#include "cli/command_line.h"

#include <fmt/format.h>

#include "cli/exit_status.h"
#include "cli/help_text.h"
#include "cli/messages.h"
#include "cli/nearest_name.h"

namespace rolu {
namespace {

// The innermost subcommand that was given.
const CLI::App& Innermost(const CLI::App& app) {
  const CLI::App* at = &app;
  while (!at->get_subcommands().empty()) at = at->get_subcommands().front();
  return *at;
}

// The options of the command and of the commands around it.
std::vector<std::string> UsableOptions(const CLI::App& command) {
  std::vector<std::string> names;
  for (const CLI::App* app = &command; app != nullptr; app = app->get_parent()) {
    std::ranges::move(LongOptions(*app), std::back_inserter(names));
  }
  return names;
}

std::string ProblemOf(const CLI::App& app, const CLI::ParseError& error) {
  const bool is_extra = error.get_exit_code() == static_cast<int>(CLI::ExitCodes::ExtrasError);
  const bool is_missing = error.get_exit_code() == static_cast<int>(CLI::ExitCodes::RequiredError);
  const CLI::App& command = Innermost(app);
  std::vector<std::string> subcommands;
  for (const CLI::App* const each : ShownSubcommands(command)) subcommands.push_back(each->get_name());
  const std::vector<std::string> unexpected = app.remaining(true);
  if (unexpected.empty() || !(is_extra || is_missing)) {
    return is_missing && !subcommands.empty() ? "a command is missing" : error.what();
  }
  const std::string& word = unexpected.front();
  if (word.starts_with('-')) {
    return fmt::format("there is no option \"{}\"{}", word, Suggestion(word, UsableOptions(command)));
  }
  if (subcommands.empty()) return fmt::format("\"{}\" is one word too many", word);
  return fmt::format("there is no command \"{}\"{}", word, Suggestion(word, subcommands));
}

}  // namespace

CLI::Option* AddDurationOption(CLI::App& command, const std::string& name,
                               std::chrono::milliseconds& duration, const std::string& help,
                               std::chrono::milliseconds shortest, std::chrono::milliseconds longest) {
  const auto parse = [&duration, name, shortest, longest](const std::string& text) {
    const auto parsed = ParseDuration(text, longest);
    if (!parsed || *parsed < shortest) {
      throw CLI::ValidationError(
          name, fmt::format("must be a time from {} to {}, such as {}, not \"{}\"", FormatDuration(shortest),
                            FormatDuration(longest), kDurationExamples, text));
    }
    duration = *parsed;
  };
  return command.add_option_function<std::string>(name, parse, help)->type_name("DURATION");
}

int Conclude(const CLI::App& app, const CLI::ParseError& stop) {
  if (dynamic_cast<const CLI::CallForHelp*>(&stop) != nullptr) {
    PrintHelp(HelpOf(Innermost(app)), app.get_name());
    return kDone;
  }
  if (stop.get_exit_code() == 0) return app.exit(stop);
  SayProblem(ProblemOf(app, stop));
  Say(fmt::format("try '{} --help'", PathOf(Innermost(app))));
  return kWrongUse;
}

std::vector<const CLI::App*> ShownSubcommands(const CLI::App& app) {
  return app.get_subcommands([](const CLI::App* command) { return !command->get_group().empty(); });
}

std::string PathOf(const CLI::App& app) {
  const std::string& name = app.get_name();
  return app.get_parent() == nullptr ? name : PathOf(*app.get_parent()) + " " + name;
}

std::vector<std::string> LongOptions(const CLI::App& app) {
  std::vector<std::string> names;
  for (const CLI::Option* const option : app.get_options()) {
    for (const std::string& name : option->get_lnames()) names.push_back("--" + name);
  }
  return names;
}

}  // namespace rolu
