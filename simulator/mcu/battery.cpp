#include "simulator/mcu/battery.h"

#include <algorithm>
#include <cmath>

namespace rolu_sim {
namespace {

constexpr std::array<ThresholdRange, 2> kRanges = {{{0x052F, 0x05AE, 0x05ED}, {0x02AA, 0x02EB, 0x030C}}};

// The place of a system in tables.
std::size_t IndexOf(BatteryMode mode) {
  return mode == BatteryMode::k24V ? 0 : 1;
}

}  // namespace

const rolu_protocol::BatterySystem& SystemOf(BatteryMode mode) {
  return rolu_protocol::kBatterySystems[IndexOf(mode)];
}

const ThresholdRange& RangeOf(BatteryMode mode) {
  return kRanges[IndexOf(mode)];
}

std::uint16_t& BatteryState::Threshold(BatteryMode of, Protection protection) {
  return thresholds_[IndexOf(of)][static_cast<std::size_t>(protection)];
}

std::uint16_t BatteryState::Threshold(BatteryMode of, Protection protection) const {
  return thresholds_[IndexOf(of)][static_cast<std::size_t>(protection)];
}

std::uint16_t BatteryState::RawAt(TimePoint now) const {
  const double units = std::round(VoltsAt(now) / SystemOf(mode).volts_per_unit);
  return static_cast<std::uint16_t>(std::clamp(units, 0.0, 65535.0));
}

double BatteryState::LowVolts() const {
  return (Threshold(mode, Protection::kLowBattery) - 0.5) * SystemOf(mode).volts_per_unit;
}

bool BatteryState::IsProtectedAndLow(TimePoint now) const {
  return protection_enabled[static_cast<std::size_t>(Protection::kLowBattery)] && VoltsAt(now) < LowVolts();
}

std::optional<TimePoint> BatteryState::NextLowBatteryChange(TimePoint now) const {
  // A curve that is all but level may still be on the same side at the computed time: whoever waits
  // for it then waits a little longer, and does not spin.
  constexpr std::chrono::milliseconds kLeast(1);
  const std::optional<std::chrono::nanoseconds> crossing = curve.NextCrossing(LowVolts(), now - curve_start);
  if (!crossing) return std::nullopt;
  return std::max(curve_start + *crossing, now + kLeast);
}

}  // namespace rolu_sim
