#include "simulator/mcu/mcu_model.h"

#include <fmt/format.h>

#include <utility>

namespace rolu_sim {
namespace {

// The state as it left the factory, but for these members.
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

}  // namespace rolu_sim
