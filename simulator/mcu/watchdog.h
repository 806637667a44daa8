#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "simulator/mcu/mcu_command.h"

namespace rolu_sim {

struct WatchdogState {
  bool enabled = false;
  std::uint16_t time = 60;  // in seconds
  std::uint32_t trigger_count = 0;
  TimePoint last_trigger{};  // of the last WDTR or WDTE

  // When it bites unless it is triggered before.
  std::optional<TimePoint> BiteDue() const;

  void RestoreDefaults();
};

// WDTE, WDTD, WDTR, WDTS, WDTG.
std::vector<McuCommand> WatchdogCommands();

}  // namespace rolu_sim
