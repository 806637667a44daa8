#pragma once

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <optional>
#include <type_traits>

#include "protocol/values.h"
#include "simulator/mcu/mcu_time.h"

namespace rolu_sim {

template <typename Time>
std::optional<Time> Sooner(std::optional<Time> one, std::type_identity_t<std::optional<Time>> other) {
  if (!one || !other) return one ? one : other;
  return std::min(*one, *other);
}

// A time of the MCU's clock as it goes over the wire: years since 2000, and a weekday. The MCU counts the
// weekday by itself, so it need not fit the date.
struct ClockTime {
  std::uint8_t year = 0;
  std::uint8_t month = 1;
  std::uint8_t day = 1;
  std::uint8_t weekday = 0;
  std::uint8_t hour = 0;
  std::uint8_t minute = 0;
  std::uint8_t second = 0;
};

// Whether the fields are a valid time from 2000 to 2099.
bool IsValid(const ClockTime& time);

// The time `seconds` after the valid `time`; after 2099 comes 2000.
ClockTime AddSeconds(const ClockTime& time, std::int64_t seconds);

// The seven bytes on the wire as one number. The reverse gives nothing when they are not a valid time.
std::uint64_t NumberOf(const ClockTime& time);
std::optional<ClockTime> ClockTimeOf(std::uint64_t number);

// Nothing when the bytes on the wire are not decimal digits, or exceed their units.
std::optional<rolu_protocol::AlarmTime> ValidAlarmTimeOf(std::uint64_t number);

// The clock runs on from the time that was last set. The alarm comes at second 0 of each minute in which all
// fields that must match do match. An alarm without such a field never comes. One of the wake-up sources is
// the alarm's switch.
struct ClockState {
  static constexpr ClockTime kFactoryTime = {14, 7, 25, 5, 12, 0, 0};

  rolu_protocol::AlarmTime alarm;

  void Set(const ClockTime& time, McuTimePoint now);
  ClockTime TimeAt(McuTimePoint now) const;

  // The next time after `after` when the alarm's fields match.
  std::optional<McuTimePoint> NextAlarm(McuTimePoint after) const;

 private:
  ClockTime set_time_ = kFactoryTime;
  McuTimePoint set_at_{};
};

}  // namespace rolu_sim
