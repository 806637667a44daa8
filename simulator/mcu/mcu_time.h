#pragma once

#include <chrono>

namespace rolu_sim {

// The real time: that of the programs, the wire and the car battery.
using TimePoint = std::chrono::steady_clock::time_point;

// The MCU's time, in which its delays, its watchdog and its clock count. It may run faster than the real one.
struct McuTimeline {};
using McuTimePoint = std::chrono::time_point<McuTimeline, std::chrono::nanoseconds>;

// Converts the one into the other.
class McuTime {
 public:
  static constexpr double kLeastSpeed = 0.01;
  static constexpr double kMostSpeed = 10000;
  static constexpr std::chrono::milliseconds kShortestUnit{1};
  static constexpr std::chrono::milliseconds kLongestUnit = std::chrono::hours(1);

  McuTimePoint At(TimePoint now) const;

  // The first moment at which the MCU's time has reached `time`.
  TimePoint RealTimeOf(McuTimePoint time) const;

  // From `now` on the MCU's time runs `speed` times as fast as the real one. What has passed so far stays.
  void SetSpeed(double speed, TimePoint now);
  double speed() const { return speed_; }

  // The length of one MCU unit: the unit of the delays and of the watchdog's time.
  std::chrono::milliseconds unit{1000};
  std::chrono::nanoseconds Units(int count) const { return std::chrono::nanoseconds(unit) * count; }

 private:
  double speed_ = 1;
  TimePoint real_change_{};  // when the speed changed last, in both times
  McuTimePoint mcu_change_{};
};

}  // namespace rolu_sim
