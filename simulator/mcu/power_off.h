#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "simulator/mcu/mcu_command.h"

namespace rolu_sim {

// The delays, with the numbers that the wire uses; there is no number 5.
enum class DelayType : std::uint8_t {
  kLowBattery = 0,
  kLowBatteryHard = 1,
  kIgnitionOn = 2,
  kIgnitionOffEvent = 3,
  kIgnitionHardOff = 4,
  kIgnitionSuspendHardOff = 6,
  kPrePowerOffAlarm = 7,
};

struct PowerOffState {
  bool forced_shutdown = false;
  std::uint16_t forced_shutdown_delay = 120;

  // In seconds. Two of them act in the model: kIgnitionOffEvent and kLowBattery run before a warning.
  std::uint16_t& Delay(DelayType type) { return delays_[static_cast<std::size_t>(type)]; }
  std::uint16_t Delay(DelayType type) const { return delays_[static_cast<std::size_t>(type)]; }

  void RestoreDefaults() { *this = {}; }

 private:
  std::array<std::uint16_t, 8> delays_{30, 60, 5, 30, 180, 0, 180, 60};  // by DelayType
};

// MCUS, MCUG, MSDS, MSDG, MSSS, MSSG, ATPO.
std::vector<McuCommand> PowerOffCommands();

}  // namespace rolu_sim
