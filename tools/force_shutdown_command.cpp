#include "tools/order.h"

namespace rolu {

void AddForceShutdownCommand(CLI::App& app, Invocation& invocation) {
  AddOrderCommand(app, invocation,
                  {.name = "force-shutdown",
                   .help = "Have the MCU cut the computer's power; asks first",
                   .consequence = "cuts the computer's power at once, without a shutdown",
                   .family = Family::kVpm,
                   .give = KAVO_ROLU_VPM_ForceShutdown,
                   .done = "the MCU has the order to cut the power"});
}

}  // namespace rolu
