#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <string>
#include <string_view>

#include "simulator/mcu/mcu_time.h"

namespace rolu_sim {

// What the MCU does to the computer, and what happens to the computer's power.
enum class McuEventKind {
  kIgnitionWarning,    // the MCU warned that it cuts the power because of the ignition
  kLowBatteryWarning,  // the same because of the car battery
  kPowerCut,
  kPowerOn,
  kStartRefused,  // the car battery is too low for a power-on
  kReset,         // a program ordered it
  kWatchdogBite,  // the watchdog was not triggered in time: the computer is reset
  kAlarmWakeup,   // the clock's alarm came, and may wake the computer
  kSuspend,
  kResume,
};

struct McuEventName {
  McuEventKind kind;
  std::string_view name;
};

// The names of the events, for readings, traces and scenarios alike.
inline constexpr std::array<McuEventName, 10> kMcuEventNames = {{
    {McuEventKind::kIgnitionWarning, "ignition-warning"},
    {McuEventKind::kLowBatteryWarning, "low-battery-warning"},
    {McuEventKind::kPowerCut, "power-cut"},
    {McuEventKind::kPowerOn, "power-on"},
    {McuEventKind::kStartRefused, "start-refused"},
    {McuEventKind::kReset, "reset"},
    {McuEventKind::kWatchdogBite, "watchdog-bite"},
    {McuEventKind::kAlarmWakeup, "alarm-wakeup"},
    {McuEventKind::kSuspend, "suspend"},
    {McuEventKind::kResume, "resume"},
}};

constexpr std::string_view NameOf(McuEventKind kind) {
  return std::ranges::find(kMcuEventNames, kind, &McuEventName::kind)->name;
}

struct McuEvent {
  McuEventKind kind;
  TimePoint time;
  // Why the power was cut (ignition, low-battery, forced-shutdown, suspend, ordered), and why it came on or
  // the computer resumed (ignition, alarm, source-2). If a delay had passed before, it had these MCU units.
  std::string cause{};
  std::uint16_t units = 0;
  // Whether the programs on the computer have ended with it.
  bool ends_programs = false;
};

}  // namespace rolu_sim
