#pragma once

#include <vector>

#include "simulator/mcu/mcu_command.h"

namespace rolu_sim {

// The switch of a peripheral that the MCU holds.
struct PeripheralSwitchState {
  bool on = false;
};

// MCS, MCG.
std::vector<McuCommand> PeripheralSwitchCommands();

}  // namespace rolu_sim
