#pragma once

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <optional>

#include "protocol/values.h"

namespace rolu_sim {

// The time that goes on by itself, whatever the MCU's clock shows.
using TimePoint = std::chrono::steady_clock::time_point;

inline std::optional<TimePoint> Sooner(std::optional<TimePoint> one, std::optional<TimePoint> other) {
  if (!one || !other) return one ? one : other;
  return std::min(*one, *other);
}

// A time of the MCU's clock, as it goes over the wire: years since 2000, and a weekday that counts
// on its own and need not belong to the date.
struct ClockTime {
  std::uint8_t year = 0;
  std::uint8_t month = 1;
  std::uint8_t day = 1;
  std::uint8_t weekday = 0;
  std::uint8_t hour = 0;
  std::uint8_t minute = 0;
  std::uint8_t second = 0;
};

// Whether the fields are a time from 2000 to 2099.
bool IsValid(const ClockTime& time);

// The valid `time`, `seconds` later; 2099 ends in 2000.
ClockTime AddSeconds(const ClockTime& time, std::int64_t seconds);

// The seven bytes of the wire as a number. Nothing when they are no valid time.
std::uint64_t NumberOf(const ClockTime& time);
std::optional<ClockTime> ClockTimeOf(std::uint64_t number);

// Nothing when the bytes of the wire are no decimals, or beyond their units.
std::optional<rolu_protocol::AlarmTime> ValidAlarmTimeOf(std::uint64_t number);

// The clock runs on from the time that it was last set to. Its alarm comes at second 0 of each minute at
// which the fields that are to match do; without any it never comes. The alarm's switch is one of the
// wake-up sources.
struct ClockState {
  static constexpr ClockTime kFactoryTime = {14, 7, 25, 5, 12, 0, 0};

  rolu_protocol::AlarmTime alarm;

  void Set(const ClockTime& time, TimePoint now);
  ClockTime TimeAt(TimePoint now) const;

  // When the alarm's fields next match, later than `after`.
  std::optional<TimePoint> NextAlarm(TimePoint after) const;

 private:
  ClockTime set_time_ = kFactoryTime;
  TimePoint set_at_{};
};

}  // namespace rolu_sim
