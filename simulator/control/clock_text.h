#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "simulator/mcu/clock.h"

namespace rolu_sim {

// A time that a user wrote for the MCU's clock.
struct ClockText {
  bool has_date = false;
  ClockTime time;  // without a date, its time of the day counts; with one, the weekday is the date's, 0 is
                   // Sunday
};

// "2024-05-31 22:00:00" (a T may stand for the blank), "07:30" or "07:30:15"; nothing for any other text.
std::optional<ClockText> ParseClockText(std::string_view text);

// The next time from `present` on at which the clock shows the time of the day of `text`.
ClockTime NextTimeOfDay(const ClockTime& present, const ClockTime& time_of_day);

std::string FormatClockTime(const ClockTime& time);

}  // namespace rolu_sim
