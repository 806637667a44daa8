#include "tools/order.h"

namespace rolu {

void AddDefaultsCommand(CLI::App& app, Invocation& invocation) {
  AddOrderCommand(
      app, invocation,
      {.name = "defaults",
       .help = "Restore all of the MCU's default settings; asks first",
       .consequence = "replaces all settings of the MCU by its defaults ('rolu save FILE' keeps them)",
       .family = Family::kVpm,
       .give = KAVO_ROLU_VPM_LoadDefaultValue,
       .done = "the MCU has restored its defaults"});
}

}  // namespace rolu
