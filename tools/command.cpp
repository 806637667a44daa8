#include "tools/command.h"

namespace rolu {

CLI::App* NewCommand(CLI::App& parent, const std::string& name, const std::string& help,
                     const std::string& examples) {
  CLI::App* const command = parent.add_subcommand(name, help);
  // The common options may stand behind the subcommand.
  command->fallthrough();
  if (!examples.empty()) command->footer("Examples:\n" + examples);
  return command;
}

}  // namespace rolu
