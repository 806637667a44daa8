#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "simulator/mcu/calendar.h"
#include "simulator/mcu/mcu_command.h"

namespace rolu_sim {

// The alarm comes at second 0 of each minute at which the fields that are to match do; without any
// it never comes.
struct AlarmSetting {
  std::uint8_t weekday = 0;
  std::uint8_t hour = 0;
  std::uint8_t minute = 0;
  bool match_weekday = false;
  bool match_hour = false;
  bool match_minute = false;
};

// The clock runs on from the time that it was last set to. The alarm's switch is one of the wake-up
// sources.
struct ClockState {
  static constexpr ClockTime kFactoryTime = {14, 7, 25, 5, 12, 0, 0};

  AlarmSetting alarm;

  void Set(const ClockTime& time, TimePoint now);
  ClockTime TimeAt(TimePoint now) const;

  // When the alarm's fields next match, later than `after`.
  std::optional<TimePoint> NextAlarm(TimePoint after) const;

  void RestoreDefaults() { alarm = {}; }

 private:
  ClockTime set_time_ = kFactoryTime;
  TimePoint set_at_{};
};

// RTCS, RTCG, RTAS, RTAG.
std::vector<McuCommand> ClockCommands();

}  // namespace rolu_sim
