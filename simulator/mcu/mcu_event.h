#pragma once

#include <cstdint>

#include "simulator/mcu/mcu_command.h"

namespace rolu_sim {

// What the MCU does to the computer; nothing of it shows on the wire. A simulated computer runs on.
enum class McuEventKind : std::uint8_t {
  kPowerOff,      // the power is cut, as ATPO ordered
  kAlarmWakeup,   // the clock's alarm woke the computer
  kWatchdogBite,  // the watchdog was not triggered in time: the computer is reset
};

struct McuEvent {
  McuEventKind kind;
  TimePoint time;
};

}  // namespace rolu_sim
