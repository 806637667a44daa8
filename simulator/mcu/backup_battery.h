#pragma once

#include <cstdint>
#include <vector>

#include "simulator/mcu/mcu_command.h"

namespace rolu_sim {

// A full and idle battery; the owner sets what else it is to be.
struct BackupBatteryState {
  std::uint16_t millivolts = 4200;
  std::uint16_t temperature_tenths_kelvin = 2982;  // 25.05 degrees Celsius
  std::uint16_t percent = 100;
  std::uint16_t remaining_capacity = 2000;
  std::uint16_t remaining_time = 120;
  std::uint16_t time_to_full = 0;
  std::uint16_t info = 0;
  std::uint16_t status_bits = 0;
};

// B03, B04, B05, B08, B09, B11, B12, B22.
std::vector<McuCommand> BackupBatteryCommands();

}  // namespace rolu_sim
