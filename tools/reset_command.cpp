#include "tools/order.h"

namespace rolu {

void AddResetCommand(CLI::App& app, Invocation& invocation) {
  AddOrderCommand(app, invocation,
                  {.name = "reset",
                   .help = "Reset the board; asks first",
                   .consequence = "resets the board at once",
                   .family = Family::kCore,
                   .give = KAVO_ROLU_CORE_Reset,
                   .done = "the board has the order to reset"});
}

}  // namespace rolu
