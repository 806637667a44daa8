#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "simulator/mcu/mcu_command.h"

namespace rolu_sim {

struct PowerSourcesState {
  static constexpr std::size_t kWakeupSources = 11;  // the numbers 7 to 9 stand for none
  static constexpr std::size_t kAlarmSource = 6;
  static constexpr std::uint8_t kNoWakeupCode = 0x00;
  static constexpr std::uint8_t kAlarmWakeupCode = 0x30;

  std::array<bool, 2> shutdown_enabled{true, true};
  std::array<bool, kWakeupSources> wakeup_enabled{true, true};  // the others are off
  std::uint8_t last_wakeup_code = kNoWakeupCode;                // what WKSG reports

  void RestoreDefaults();
};

// SDMS, SDMG, WKMS, WKMG, WKSG.
std::vector<McuCommand> PowerSourceCommands();

}  // namespace rolu_sim
