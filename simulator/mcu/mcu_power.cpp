// What the MCU does to the computer's power.

#include <fmt/format.h>

#include "simulator/mcu/mcu_model.h"

namespace rolu_sim {

using rolu_protocol::kNoSource;

std::array<McuModel::DelayedAct, McuModel::kDelayedActs> McuModel::DelayedActs(TimePoint now) const {
  using Kind = McuEventKind;
  const bool is_off = computer.power == ComputerPower::kOff;
  const bool is_suspended = computer.power == ComputerPower::kSuspended;
  const bool ignition_is_off = !is_off && !ignition.on;
  const bool battery_is_low = !is_off && battery.IsProtectedAndLow(Protection::kLowBattery, now);
  const bool ignition_came_on = computer.power != ComputerPower::kOn && ignition.on && ignition_was_off_;
  const auto delay = [&](DelayType type) { return power_off.Delay(type); };
  const std::uint16_t hard_off =
      delay(is_suspended ? DelayType::kIgnitionSuspendHardOff : DelayType::kIgnitionHardOff);
  return {{
      {Kind::kIgnitionWarning, {}, ignition_is_off, delay(DelayType::kIgnitionOffEvent)},
      {Kind::kLowBatteryWarning, {}, battery_is_low, delay(DelayType::kLowBattery)},
      {Kind::kPowerCut, is_suspended ? "suspend" : "ignition", ignition_is_off, hard_off},
      {Kind::kPowerCut, "low-battery", battery_is_low, delay(DelayType::kLowBatteryHard)},
      {Kind::kPowerCut, "forced-shutdown", !is_off && power_off.forced_shutdown,
       power_off.forced_shutdown_delay},
      // A start that the battery does not allow is tried again when the battery is good.
      {is_suspended ? Kind::kResume : Kind::kPowerOn, "ignition", ignition_came_on && !IsTooLowToStart(now),
       delay(DelayType::kIgnitionOn)},
      {Kind::kStartRefused, "ignition", ignition_came_on && IsTooLowToStart(now),
       delay(DelayType::kIgnitionOn)},
  }};
}

bool McuModel::IsTooLowToStart(TimePoint now) const {
  return computer.power == ComputerPower::kOff && battery.IsProtectedAndLow(Protection::kPreboot, now);
}

void McuModel::FollowConditions() {
  if (!ignition.on) ignition_was_off_ = true;
  const auto acts = DelayedActs(time.RealTimeOf(followed_to_));
  for (std::size_t index = 0; index < acts.size(); ++index) {
    conditions_[index].Follow(acts[index].holds, followed_to_);
  }
}

std::vector<McuModel::Countdown> McuModel::Countdowns(TimePoint now) const {
  std::vector<Countdown> countdowns;
  const auto acts = DelayedActs(now);
  for (std::size_t index = 0; index < acts.size(); ++index) {
    const DelayedAct& act = acts[index];
    if (act.kind == McuEventKind::kIgnitionWarning && !ignition.pre_power_off_alarm) continue;
    if (const auto due = conditions_[index].Due(time.Units(act.units))) {
      countdowns.push_back({act.kind, act.cause, time.RealTimeOf(*due)});
    }
  }
  return countdowns;
}

void McuModel::Act(const DelayedAct& act) {
  switch (act.kind) {
    case McuEventKind::kIgnitionWarning:
      if (ignition.pre_power_off_alarm) WarnOfPowerOff(PowerOffWarning::kIgnition);
      break;
    case McuEventKind::kLowBatteryWarning:
      WarnOfPowerOff(PowerOffWarning::kLowVoltage);
      break;
    case McuEventKind::kPowerCut:
      CutPower(act.cause, act.units);
      break;
    default:
      Wake(act.cause, kNoSource, act.units);
  }
}

void McuModel::WarnOfPowerOff(PowerOffWarning warning) {
  const bool is_ignition = warning == PowerOffWarning::kIgnition;
  unsent_.emplace_back(is_ignition ? rolu_protocol::kIgnitionWarning : rolu_protocol::kLowBatteryWarning);
  Note(is_ignition ? McuEventKind::kIgnitionWarning : McuEventKind::kLowBatteryWarning);
}

void McuModel::CutPower(std::string_view cause, std::uint16_t units) {
  const bool ends_programs = !computer.survives_power_cut;
  Note(McuEventKind::kPowerCut, cause, units, ends_programs);
  ordered_cut_.reset();
  if (cause == "forced-shutdown") power_off.forced_shutdown = false;  // it is carried out
  if (!ends_programs) return;
  computer.power = ComputerPower::kOff;
  ignition_was_off_ = !ignition.on;
  conditions_ = {};
}

void McuModel::ResetComputer() {
  if (computer.power == ComputerPower::kOff) return;
  const bool ends_programs = !computer.survives_power_cut;
  Note(McuEventKind::kReset, {}, 0, ends_programs);
  if (ends_programs) Restart();
}

void McuModel::SuspendComputer() {
  Note(McuEventKind::kSuspend);
  computer.power = ComputerPower::kSuspended;
  ignition_was_off_ = !ignition.on;
}

void McuModel::WakeComputer(int source) {
  if (computer.power == ComputerPower::kOn) return;
  Wake(source == rolu_protocol::kAlarmSource ? "alarm" : fmt::format("source-{}", source), source, 0);
}

void McuModel::Wake(std::string_view cause, int source, std::uint16_t units) {
  const bool was_off = computer.power == ComputerPower::kOff;
  if (IsTooLowToStart(time.RealTimeOf(followed_to_))) {
    Note(McuEventKind::kStartRefused, cause);
    return;
  }
  power_sources.last_wakeup_code = rolu_protocol::WakeupCodeOf(source);
  if (was_off) {
    Restart();
  } else {
    computer.power = ComputerPower::kOn;
    conditions_ = {};
  }
  Note(was_off ? McuEventKind::kPowerOn : McuEventKind::kResume, cause, units);
}

std::optional<McuTimePoint> McuModel::BiteDue() const {
  if (!watchdog.enabled || computer.power == ComputerPower::kOff) return std::nullopt;
  return watchdog.last_trigger + time.Units(watchdog.time);
}

// The computer starts without the watchdog, and all that the MCU counts begins again.
void McuModel::Restart() {
  computer.power = ComputerPower::kOn;
  conditions_ = {};
  ordered_cut_.reset();
  watchdog.enabled = false;
}

void McuModel::Note(McuEventKind kind, std::string_view cause, std::uint16_t units, bool ends_programs) {
  events_.push_back({kind, time.RealTimeOf(followed_to_), std::string(cause), units, ends_programs});
}

}  // namespace rolu_sim
