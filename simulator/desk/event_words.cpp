#include "simulator/desk/event_words.h"

#include <fmt/format.h>

namespace rolu_sim {
namespace {

// Why something happened to the power.
std::string ReasonOf(const McuEvent& event) {
  const std::string units = fmt::format("{} MCU unit{}", event.units, event.units == 1 ? "" : "s");
  if (event.kind == McuEventKind::kPowerCut) {
    if (event.cause == "ignition") return "the ignition was off for " + units;
    if (event.cause == "suspend") return "suspended, and the ignition was off for " + units;
    if (event.cause == "low-battery") return "the car battery was low for " + units;
    if (event.cause == "forced-shutdown") return "the forced shutdown was on for " + units;
    return "a program ordered it";
  }
  if (event.cause == "ignition") return "the ignition was on for " + units;
  return event.cause == "alarm" ? "the clock's alarm woke it" : event.cause + " woke it";
}

}  // namespace

std::string WordsFor(const McuEvent& event, double seconds) {
  const auto loud = [&](const std::string& what, const std::string& why, const char* consequence = "") {
    return fmt::format("*** {} at {:.3f} s: {}{} ***", what, seconds, why,
                       event.ends_programs ? consequence : ", but the computer goes on");
  };
  switch (event.kind) {
    case McuEventKind::kPowerCut:
      return loud("POWER CUT", ReasonOf(event));
    case McuEventKind::kReset:
      return loud("RESET", "a program ordered it");
    case McuEventKind::kWatchdogBite:
      return loud("WATCHDOG BITE", "it was not triggered in time", ", the computer is reset");
    case McuEventKind::kPowerOn:
      return fmt::format("the computer is switched on at {:.3f} s: {}", seconds, ReasonOf(event));
    case McuEventKind::kStartRefused:
      return fmt::format("the computer does not start at {:.3f} s: the car battery is too low", seconds);
    case McuEventKind::kAlarmWakeup:
      return fmt::format("the clock's alarm wakes the computer at {:.3f} s", seconds);
    case McuEventKind::kSuspend:
      return fmt::format("the computer is suspended at {:.3f} s", seconds);
    case McuEventKind::kResume:
      return fmt::format("the computer resumes at {:.3f} s: {}", seconds, ReasonOf(event));
    case McuEventKind::kIgnitionWarning:
    case McuEventKind::kLowBatteryWarning:
      return {};
  }
  return {};
}

}  // namespace rolu_sim
