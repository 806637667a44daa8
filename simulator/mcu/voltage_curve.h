#pragma once

#include <chrono>
#include <optional>
#include <string_view>
#include <vector>

namespace rolu_sim {

// The car battery's voltage over time: linear between its points, constant before the first and
// after the last. A value type; copies are independent.
class VoltageCurve {
 public:
  struct Point {
    std::chrono::milliseconds at{0};
    double volts = 0.0;
  };

  static constexpr double kMaxVolts = 100.0;

  // A battery that stays at `volts`.
  explicit VoltageCurve(double volts);

  // Reads points as "0s=12.6 2500ms=11.0 5s=12.8": times with their units that grow from point to point,
  // volts from 0 to kMaxVolts. Throws std::invalid_argument with a sentence for the user.
  static VoltageCurve Parse(std::string_view text);

  // `elapsed` may be negative: the first point's voltage then.
  double VoltsAt(std::chrono::nanoseconds elapsed) const;

  // When, later than `elapsed`, the voltage first changes from below `volts` to not below, or back.
  std::optional<std::chrono::nanoseconds> NextCrossing(double volts, std::chrono::nanoseconds elapsed) const;

 private:
  explicit VoltageCurve(std::vector<Point> points);

  std::vector<Point> points_;
};

}  // namespace rolu_sim
