#pragma once

#include <cstdint>
#include <vector>

#include "simulator/mcu/mcu_command.h"

namespace rolu_sim {

struct WatchdogState {
  bool enabled = false;
  std::uint16_t time = 60;  // in the MCU's own unit
  std::uint32_t trigger_count = 0;
  TimePoint last_trigger{};  // of the last WDTR or WDTE
};

// WDTE, WDTD, WDTR, WDTS, WDTG.
std::vector<McuCommand> WatchdogCommands();

}  // namespace rolu_sim
