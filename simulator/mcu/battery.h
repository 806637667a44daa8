#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>

#include "protocol/values.h"
#include "simulator/mcu/time_point.h"
#include "simulator/mcu/voltage_curve.h"

namespace rolu_sim {

// The vehicle's electrical system, with the numbers that the wire uses.
enum class BatteryMode : std::uint8_t { k24V = 2, k12V = 3 };

// The two low-battery protections, with the numbers that the wire uses.
enum class Protection : std::uint8_t { kPreboot = 0, kLowBattery = 1 };

// The thresholds that the MCU accepts, in raw units.
struct ThresholdRange {
  std::uint16_t start;
  std::uint16_t mid;
  std::uint16_t end;
};

const rolu_protocol::BatterySystem& SystemOf(BatteryMode mode);
const ThresholdRange& RangeOf(BatteryMode mode);

struct BatteryState {
  BatteryMode mode = BatteryMode::k12V;
  VoltageCurve curve{12.6};
  TimePoint curve_start{};
  std::array<bool, 2> protection_enabled{true, true};  // by Protection

  // Threshold of a protection in raw units, kept apart for each electrical system.
  std::uint16_t& Threshold(BatteryMode of, Protection protection);
  std::uint16_t Threshold(BatteryMode of, Protection protection) const;

  double VoltsAt(TimePoint now) const { return curve.VoltsAt(now - curve_start); }

  // The reading that the MCU reports: volts in units of the present mode, nearest, within 16 bits.
  std::uint16_t RawAt(TimePoint now) const;

  // Whether the reading is below the low-battery threshold of the present mode and that protection
  // is on; and when, as things are, the battery next passes that threshold, up or down.
  bool IsProtectedAndLow(TimePoint now) const;
  std::optional<TimePoint> NextLowBatteryChange(TimePoint now) const;

 private:
  // Below it a reading is nearer to a number below the low-battery threshold.
  double LowVolts() const;

  std::array<std::array<std::uint16_t, 2>, 2> thresholds_{{{1454, 1454}, {747, 747}}};
};

}  // namespace rolu_sim
