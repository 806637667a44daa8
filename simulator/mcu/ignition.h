#pragma once

#include <cstdint>
#include <vector>

#include "simulator/mcu/mcu_command.h"

namespace rolu_sim {

struct IgnitionState {
  bool on = true;  // the key, which no command turns

  std::uint8_t mode = 1;            // 1 or 2
  bool pre_power_off_alarm = true;  // warn before the power goes because the ignition is off
  std::uint8_t keep_alive_mode = 0;
  std::uint8_t at_mode = 0;

  void RestoreDefaults();
};

// IGNG, IGMS, IGMG, MPAS, MPAG, MCAS, MCAG.
std::vector<McuCommand> IgnitionCommands();

}  // namespace rolu_sim
