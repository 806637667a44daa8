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

  // A battery that stays at `volts`.
  explicit VoltageCurve(double volts) : points_{Point{{}, volts}} {}

  // Reads points as "0s=12.6 2500ms=11.0 5s=12.8": times with their units that grow from point to point,
  // volts from 0 to kMaxVolts. Throws std::invalid_argument with a sentence for the user.
  static VoltageCurve Parse(std::string_view text);

  // `elapsed` may be negative: the first point's voltage then.
  double VoltsAt(std::chrono::nanoseconds elapsed) const;

  // When, later than `elapsed`, the voltage first changes from below `volts` to not below, or back.
  std::optional<std::chrono::nanoseconds> NextCrossing(double volts, std::chrono::nanoseconds elapsed) const;

 private:
  explicit VoltageCurve(std::vector<Point> points) : points_(std::move(points)) {}

  std::vector<Point> points_;
};

// The vehicle's electrical system, with the numbers that the wire uses.
enum class BatteryMode : std::uint8_t { k24V = 2, k12V = 3 };

// The two low-battery protections, with the numbers that the wire uses.
enum class Protection : std::uint8_t { kPreboot = 0, kLowBattery = 1 };

const rolu_protocol::BatterySystem& SystemOf(BatteryMode mode);

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
