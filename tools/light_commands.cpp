// light and backlight: short forms of get and set.

#include "tools/change.h"
#include "tools/command.h"

namespace rolu {
namespace {

ExitStatus RunLight(const CommonOptions& common) {
  Session session(common);
  return ReadAndPrint(session, "light.level", common);
}

ExitStatus RunBacklight(const std::string& level, const CommonOptions& common) {
  Session session(common);
  if (level.empty()) return ReadAndPrint(session, "display.backlight", common);
  std::vector<Change> changes = {ParseChange("display.backlight", level)};
  return ApplyAndPrint(session, changes, common.json);
}

}  // namespace

void AddLightCommands(CLI::App& app, Invocation& invocation) {
  OnRun(NewCommand(app, "light", "Read the ambient light", "  rolu light --json"), invocation, RunLight);
  auto level = std::make_shared<std::string>();
  CLI::App* const backlight =
      NewCommand(app, "backlight", "Show or set the backlight", "  rolu backlight\n  rolu backlight 7");
  backlight->add_option("LEVEL", *level, "0 to 10; without it the level is shown");
  OnRun(backlight, invocation, RunBacklight, level);
}

}  // namespace rolu
