// What the MCU does by itself as time passes.

#include <algorithm>
#include <utility>

#include "simulator/mcu/mcu_model.h"

namespace rolu_sim {
namespace {

std::chrono::seconds IgnitionDelay(const McuModel& model) {
  return std::chrono::seconds(model.power_off.Delay(DelayType::kIgnitionOffEvent));
}

std::chrono::seconds LowBatteryDelay(const McuModel& model) {
  return std::chrono::seconds(model.power_off.Delay(DelayType::kLowBattery));
}

std::optional<TimePoint> Sooner(std::optional<TimePoint> one, std::optional<TimePoint> other) {
  if (!one || !other) return one ? one : other;
  return std::min(*one, *other);
}

}  // namespace

std::optional<TimePoint> McuModel::NextDue(TimePoint now) const {
  std::optional<TimePoint> due;
  if (!unsent_.empty()) due = now;
  due = Sooner(due, ignition_off_.Due(IgnitionDelay(*this)));
  due = Sooner(due, battery_low_.Due(LowBatteryDelay(*this)));
  due = Sooner(due, battery.NextLowBatteryChange(now));
  due = Sooner(due, watchdog.BiteDue());
  return Sooner(due, NextAlarm());
}

AnswerLines McuModel::TakeDueLines(TimePoint now) {
  FollowPowerOffConditions(now);
  FollowWatchdog(now);
  FollowAlarm(now);
  return std::exchange(unsent_, {});
}

void McuModel::FollowPowerOffConditions(TimePoint now) {
  ignition_off_.Follow(!ignition.on, now);
  if (ignition_off_.TakeDue(IgnitionDelay(*this), now) && ignition.pre_power_off_alarm) {
    WarnOfPowerOff(PowerOffWarning::kIgnition);
  }
  battery_low_.Follow(battery.IsProtectedAndLow(now), now);
  if (battery_low_.TakeDue(LowBatteryDelay(*this), now)) WarnOfPowerOff(PowerOffWarning::kLowVoltage);
}

// A reset computer starts without the watchdog.
void McuModel::FollowWatchdog(TimePoint now) {
  const std::optional<TimePoint> bite = watchdog.BiteDue();
  if (!bite || *bite > now) return;
  watchdog.enabled = false;
  RecordEvent(McuEventKind::kWatchdogBite, *bite);
}

std::optional<TimePoint> McuModel::NextAlarm() const {
  if (!power_sources.wakeup_enabled[rolu_protocol::kAlarmSource]) return std::nullopt;
  return clock.NextAlarm(alarm_followed_to_);
}

void McuModel::FollowAlarm(TimePoint now) {
  for (auto alarm = NextAlarm(); alarm && *alarm <= now; alarm = NextAlarm()) {
    power_sources.last_wakeup_code = rolu_protocol::WakeupCodeOf(rolu_protocol::kAlarmSource);
    RecordEvent(McuEventKind::kAlarmWakeup, *alarm);
    alarm_followed_to_ = *alarm;
  }
  alarm_followed_to_ = std::max(alarm_followed_to_, now);
}

}  // namespace rolu_sim
