#include "tools/command.h"
#include "tools/report.h"

namespace rolu {

void AddLightCommand(CLI::App& app, Invocation& invocation) {
  OnRun(NewCommand(app, "light", "Read the ambient light", "  rolu light --json"), invocation,
        [](const CommonOptions& common) {
          Session session(common);
          return ReadAndPrint(session, "light.level", common);
        });
}

}  // namespace rolu
