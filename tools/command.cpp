#include "tools/command.h"

#include <stdexcept>

#include "tools/wall_time.h"

namespace rolu {

CLI::App* NewCommand(CLI::App& parent, const std::string& name, const std::string& help,
                     const std::string& examples) {
  CLI::App* const command = parent.add_subcommand(name, help);
  // The common options may stand behind the subcommand.
  command->fallthrough();
  if (!examples.empty()) command->footer("Examples:\n" + examples);
  return command;
}

void AddDurationOption(CLI::App* command, const std::string& name, std::chrono::milliseconds& time,
                       const std::string& help) {
  const auto parse = [&time, name](const std::string& text) {
    try {
      time = ParseDuration(text);
    } catch (const std::invalid_argument& problem) {
      throw CLI::ValidationError(name, problem.what());
    }
  };
  command->add_option_function<std::string>(name, parse, help)->type_name("DURATION");
}

}  // namespace rolu
