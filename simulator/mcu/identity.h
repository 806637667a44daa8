#pragma once

#include <string>
#include <vector>

#include "simulator/mcu/mcu_command.h"

namespace rolu_sim {

struct IdentityState {
  std::string firmware = "*VER:  1. 26*";       // "*VER:" major "." minor "*", three columns each
  std::string platform = "*PLT:KAVO-ROLU-30*";  // five characters, then twelve of the name
};

// Hello, ATF0 (firmware), ATF1 (platform).
std::vector<McuCommand> IdentityCommands();

}  // namespace rolu_sim
