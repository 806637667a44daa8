#include "tools/change.h"
#include "tools/command.h"

namespace rolu {
namespace {

ExitStatus RunBacklight(const std::string& level, const CommonOptions& common) {
  Session session(common);
  if (level.empty()) return ReadAndPrint(session, "display.backlight", common);
  std::vector<Change> changes = {ParseChange("display.backlight", level)};
  return ApplyAndPrint(session, changes, common.json);
}

}  // namespace

void AddBacklightCommand(CLI::App& app, Invocation& invocation) {
  auto level = std::make_shared<std::string>();
  CLI::App* const command =
      NewCommand(app, "backlight", "Show or set the backlight", "  rolu backlight\n  rolu backlight 7");
  command->add_option("LEVEL", *level, "0 to 10; without it the level is shown");
  OnRun(command, invocation, RunBacklight, level);
}

}  // namespace rolu
