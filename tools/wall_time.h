#pragma once

#include <string>
#include <string_view>

#include "kavo_rolu.h"

namespace rolu {

// "2026-11-24 21:38:15", as the MCU's clock tells it.
std::string ClockText(const VPM_RTC_TIME& time);

// A date and time, "2026-11-24 21:38:15" or with a T between; the weekday is worked out (Sunday
// is 0). Throws std::invalid_argument with the reason.
VPM_RTC_TIME ParseClock(std::string_view text);

// The system's clock, in local time or UTC.
VPM_RTC_TIME SystemClock(bool utc);

// Seconds from the first to the second; negative when the second is earlier.
long SecondsBetween(const VPM_RTC_TIME& from, const VPM_RTC_TIME& to);

// Now, with milliseconds and the offset from UTC: "2026-11-24T21:38:15.123+01:00".
std::string TimeStamp();

}  // namespace rolu
