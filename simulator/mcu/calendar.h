#pragma once

#include <cstdint>

namespace rolu_sim {

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

// The valid `time`, `seconds` later; 2099 ends in 2000. The C library's calendar is no help: on the
// board its time ends in 2038.
ClockTime AddSeconds(const ClockTime& time, std::int64_t seconds);

}  // namespace rolu_sim
