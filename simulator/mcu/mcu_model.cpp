#include "simulator/mcu/mcu_model.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

namespace rolu_sim {
namespace {

// Resets a state to its factory values, except for these members.
template <typename State, typename... Member>
void RestoreAllBut(State& state, Member State::*... members) {
  State factory;
  ((factory.*members = std::move(state.*members)), ...);
  state = std::move(factory);
}

}  // namespace

std::string FormatSample(const GSensorSample& sample) {
  const auto word = [](std::int16_t axis) { return static_cast<std::uint16_t>(axis); };
  return fmt::format("{:04X}{:04X}{:04X}", word(sample.x), word(sample.y), word(sample.z));
}

void McuModel::SetVehicle(BatteryMode mode) {
  constexpr double kGoodVoltsOf12V = 12.6;
  battery.mode = mode;
  SetBatteryVolts(mode == BatteryMode::k24V ? 2 * kGoodVoltsOf12V : kGoodVoltsOf12V);
}

void McuModel::SetBatteryCurve(VoltageCurve curve, TimePoint start) {
  battery.curve = std::move(curve);
  battery.curve_start = start;
}

bool McuModel::ShakeTo(const GSensorSample& sample) {
  gsensor.sample = sample;
  if (!gsensor.RaisesAlarm()) return false;
  unsent_.push_back(fmt::format("{}{}]", rolu_protocol::kAlarmMessage, FormatSample(sample)));
  return true;
}

void McuModel::WarnOfPowerOff(PowerOffWarning warning) {
  unsent_.emplace_back(warning == PowerOffWarning::kIgnition ? rolu_protocol::kIgnitionWarning
                                                             : rolu_protocol::kLowBatteryWarning);
}

void McuModel::RestoreDefaults() {
  RestoreAllBut(battery, &BatteryState::curve, &BatteryState::curve_start);
  clock.alarm = {};
  RestoreAllBut(gsensor, &GSensorState::on, &GSensorState::sample);
  RestoreAllBut(ignition, &IgnitionState::on);
  peripheral_switch = {};
  power_off = {};
  RestoreAllBut(power_sources, &PowerSourcesState::last_wakeup_code);
  RestoreAllBut(watchdog, &WatchdogState::trigger_count, &WatchdogState::last_trigger);
}

std::optional<TimePoint> McuModel::NextDue(TimePoint now) const {
  std::optional<TimePoint> due;
  if (!unsent_.empty()) due = now;
  due = Sooner(due, ignition_off_.Due(power_off.Delay(DelayType::kIgnitionOffEvent)));
  due = Sooner(due, battery_low_.Due(power_off.Delay(DelayType::kLowBattery)));
  due = Sooner(due, battery.NextLowBatteryChange(now));
  due = Sooner(due, watchdog.BiteDue());
  return Sooner(due, NextAlarm());
}

AnswerLines McuModel::TakeDueLines(TimePoint now) {
  ignition_off_.Follow(!ignition.on, now);
  if (ignition_off_.TakeDue(power_off.Delay(DelayType::kIgnitionOffEvent), now) &&
      ignition.pre_power_off_alarm) {
    WarnOfPowerOff(PowerOffWarning::kIgnition);
  }
  battery_low_.Follow(battery.IsProtectedAndLow(now), now);
  if (battery_low_.TakeDue(power_off.Delay(DelayType::kLowBattery), now)) {
    WarnOfPowerOff(PowerOffWarning::kLowVoltage);
  }

  const std::optional<TimePoint> bite = watchdog.BiteDue();
  if (bite && *bite <= now) {
    watchdog.enabled = false;  // after the reset the computer starts without the watchdog
    events_.push_back({McuEventKind::kWatchdogBite, *bite});
  }

  for (auto alarm = NextAlarm(); alarm && *alarm <= now; alarm = NextAlarm()) {
    power_sources.last_wakeup_code = rolu_protocol::WakeupCodeOf(rolu_protocol::kAlarmSource);
    events_.push_back({McuEventKind::kAlarmWakeup, *alarm});
    alarm_followed_to_ = *alarm;
  }
  alarm_followed_to_ = std::max(alarm_followed_to_, now);
  return std::exchange(unsent_, {});
}

std::optional<TimePoint> McuModel::NextAlarm() const {
  if (!power_sources.wakeup_enabled[rolu_protocol::kAlarmSource]) return std::nullopt;
  return clock.NextAlarm(alarm_followed_to_);
}

}  // namespace rolu_sim
