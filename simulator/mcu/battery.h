#pragma once

#include <array>
#include <chrono>
#include <cstdint>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

#include "protocol/values.h"
#include "simulator/mcu/clock.h"

namespace rolu_sim {

// The car battery's voltage over time: linear between its points, constant before the first and
// after the last.
class VoltageCurve {
 public:
  struct Point {
    std::chrono::milliseconds at{0};
    double volts = 0.0;
  };

  static constexpr double kMaxVolts = 100.0;

  // A battery that stays at `volts` for all time.
  explicit VoltageCurve(double volts) : points_{Point{{}, volts}} {}

  // Reads points from a text like "0s=12.6 2500ms=11.0 5s=12.8". The times have units and must increase; the
  // volts are from 0 to kMaxVolts. Throws std::invalid_argument with a sentence for the user.
  static VoltageCurve Parse(std::string_view text);

  // A negative `elapsed` gives the first point's voltage.
  double VoltsAt(std::chrono::nanoseconds elapsed) const;

  // The first time after `elapsed` when the voltage falls below `volts` or stops being below it.
  std::optional<std::chrono::nanoseconds> NextCrossing(double volts, std::chrono::nanoseconds elapsed) const;

 private:
  explicit VoltageCurve(std::vector<Point> points) : points_(std::move(points)) {}

  std::vector<Point> points_;
};

// The vehicle's electrical systems, with their numbers on the wire.
enum class BatteryMode : std::uint8_t { k24V = 2, k12V = 3 };

// The two low-battery protections, with their numbers on the wire.
enum class Protection : std::uint8_t { kPreboot = 0, kLowBattery = 1 };

const rolu_protocol::BatterySystem& SystemOf(BatteryMode mode);

struct BatteryState {
  BatteryMode mode = BatteryMode::k12V;
  VoltageCurve curve{12.6};
  TimePoint curve_start{};
  std::array<bool, 2> protection_enabled{true, true};  // indexed by Protection

  // The threshold of a protection in raw units. Each electrical system has its own.
  std::uint16_t& Threshold(BatteryMode of, Protection protection);
  std::uint16_t Threshold(BatteryMode of, Protection protection) const;

  double VoltsAt(TimePoint now) const { return curve.VoltsAt(now - curve_start); }

  // The reading that the MCU reports: the voltage in units of the present mode, rounded to the nearest,
  // limited to 16 bits.
  std::uint16_t RawAt(TimePoint now) const;

  // Whether the protection is on and the reading is below its threshold for the present mode. The second call
  // says when the battery next crosses that threshold, up or down, if nothing is set meanwhile.
  bool IsProtectedAndLow(Protection protection, TimePoint now) const;
  std::optional<TimePoint> NextLowBatteryChange(Protection protection, TimePoint now) const;

 private:
  // The voltage below which the reading rounds to less than the threshold.
  double LowVolts(Protection protection) const;

  std::array<std::array<std::uint16_t, 2>, 2> thresholds_{{{1454, 1454}, {747, 747}}};
};

}  // namespace rolu_sim
