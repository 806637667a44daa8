#include "cli/exit_status.h"

#include <fmt/format.h>

namespace rolu {

std::string ExitStatusHelp() {
  std::string text = "Exit status:\n";
  for (const ExitStatusText& status : kExitStatusTexts) {
    text += fmt::format("  {:<8}  {}\n", status.number, status.meaning);
  }
  return text;
}

}  // namespace rolu
