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
  if (!unsent_.empty()) return now;
  const std::optional<McuTimePoint> next = NextStep();
  if (!next) return std::nullopt;
  return time.RealTimeOf(*next);
}

// What became due meanwhile happens in its order.
AnswerLines McuModel::TakeDueLines(TimePoint now) {
  const McuTimePoint mcu_now = time.At(now);
  for (auto next = NextStep(); next && *next < mcu_now; next = NextStep())
    Step(std::max(*next, followed_to_));
  Step(mcu_now);
  return std::exchange(unsent_, {});
}

void McuModel::Step(McuTimePoint now) {
  followed_to_ = now;
  FollowConditions();
  if (ordered_cut_ && *ordered_cut_ <= now) CutPower("ordered", 0);
  const auto acts = DelayedActs(time.RealTimeOf(now));
  for (std::size_t index = 0; index < acts.size(); ++index) {
    if (conditions_[index].TakeDue(time.Units(acts[index].units), now)) Act(acts[index]);
  }
  if (const auto bite = BiteDue(); bite && *bite <= now) {
    watchdog.enabled = false;
    const bool ends_programs = !computer.survives_bite;
    Note(McuEventKind::kWatchdogBite, {}, watchdog.time, ends_programs);
    if (ends_programs) Restart();
  }
  for (auto alarm = NextAlarm(); alarm && *alarm <= now; alarm = NextAlarm()) {
    alarm_followed_to_ = *alarm;
    power_sources.last_wakeup_code = rolu_protocol::WakeupCodeOf(rolu_protocol::kAlarmSource);
    Note(McuEventKind::kAlarmWakeup);
    WakeComputer(rolu_protocol::kAlarmSource);
  }
  alarm_followed_to_ = std::max(alarm_followed_to_, now);
  FollowConditions();
}

std::optional<McuTimePoint> McuModel::NextStep() const {
  const TimePoint now = time.RealTimeOf(followed_to_);
  std::optional<McuTimePoint> next = Sooner(NextAlarm(), BiteDue());
  next = Sooner(next, ordered_cut_);
  const auto acts = DelayedActs(now);
  for (std::size_t index = 0; index < acts.size(); ++index) {
    next = Sooner(next, conditions_[index].Due(time.Units(acts[index].units)));
  }
  for (const Protection protection : {Protection::kPreboot, Protection::kLowBattery}) {
    if (const auto change = battery.NextLowBatteryChange(protection, now))
      next = Sooner(next, time.At(*change));
  }
  return next;
}

std::optional<McuTimePoint> McuModel::NextAlarm() const {
  if (!power_sources.wakeup_enabled[rolu_protocol::kAlarmSource]) return std::nullopt;
  return clock.NextAlarm(alarm_followed_to_);
}

}  // namespace rolu_sim
