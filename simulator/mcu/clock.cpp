#include "simulator/mcu/clock.h"

#include <array>

namespace rolu_sim {
namespace {

// The fields in their order on the wire.
constexpr std::array<std::uint8_t ClockTime::*, 7> kFields = {
    &ClockTime::year, &ClockTime::month,  &ClockTime::day,   &ClockTime::weekday,
    &ClockTime::hour, &ClockTime::minute, &ClockTime::second};

constexpr int kMinutesPerHour = 60;
constexpr int kMinutesPerDay = 24 * kMinutesPerHour;
constexpr int kMinutesPerWeek = 7 * kMinutesPerDay;

constexpr int kCentury = 2000;
constexpr std::chrono::days kDaysOfCentury(36525);

std::chrono::year_month_day DateOf(const ClockTime& time) {
  return {std::chrono::year(kCentury + time.year), std::chrono::month(time.month),
          std::chrono::day(time.day)};
}

}  // namespace

bool IsValid(const ClockTime& time) {
  return time.year <= 99 && DateOf(time).ok() && time.weekday <= 6 && time.hour <= 23 && time.minute <= 59 &&
         time.second <= 59;
}

ClockTime AddSeconds(const ClockTime& time, std::int64_t seconds) {
  using namespace std::chrono;
  const sys_days start = DateOf(time);
  const sys_seconds sum =
      start + hours(time.hour) + minutes(time.minute) + std::chrono::seconds(time.second + seconds);
  const sys_days day = floor<days>(sum);
  const hh_mm_ss time_of_day(sum - day);
  const sys_days century = year(kCentury) / January / 1;
  const year_month_day date(century + (day - century) % kDaysOfCentury);
  const auto byte = [](auto number) { return static_cast<std::uint8_t>(number); };
  return {.year = byte(static_cast<int>(date.year()) % 100),
          .month = byte(static_cast<unsigned>(date.month())),
          .day = byte(static_cast<unsigned>(date.day())),
          .weekday = byte((weekday(time.weekday) + (day - start)).c_encoding()),
          .hour = byte(time_of_day.hours().count()),
          .minute = byte(time_of_day.minutes().count()),
          .second = byte(time_of_day.seconds().count())};
}

std::uint64_t NumberOf(const ClockTime& time) {
  std::uint64_t number = 0;
  for (const auto field : kFields) number = number << 8U | time.*field;
  return number;
}

std::optional<ClockTime> ClockTimeOf(std::uint64_t number) {
  ClockTime time;
  unsigned shift = 8 * kFields.size();
  for (const auto field : kFields) time.*field = static_cast<std::uint8_t>(number >> (shift -= 8));
  if (!IsValid(time)) return std::nullopt;
  return time;
}

std::optional<rolu_protocol::AlarmTime> ValidAlarmTimeOf(std::uint64_t number) {
  const rolu_protocol::AlarmTime time = rolu_protocol::AlarmTimeOf(number);
  // A byte with a digit above 9 does not convert back to itself. The afternoon bit is left out: the hour
  // already tells it.
  constexpr std::uint64_t kAfternoon = rolu_protocol::alarm::kAfternoon << 8U;
  const bool is_decimal = (rolu_protocol::NumberOf(time) | kAfternoon) == (number | kAfternoon);
  if (!is_decimal || time.weekday > 6 || time.hour > 23 || time.minute > 59) return std::nullopt;
  return time;
}

void ClockState::Set(const ClockTime& time, McuTimePoint now) {
  set_time_ = time;
  set_at_ = now;
}

ClockTime ClockState::TimeAt(McuTimePoint now) const {
  return AddSeconds(set_time_, std::chrono::floor<std::chrono::seconds>(now - set_at_).count());
}

std::optional<McuTimePoint> ClockState::NextAlarm(McuTimePoint after) const {
  if (!alarm.match_weekday && !alarm.match_hour && !alarm.match_minute) return std::nullopt;
  const ClockTime start = TimeAt(after);
  const int start_minute = start.weekday * kMinutesPerDay + start.hour * kMinutesPerHour + start.minute;
  int minute = start_minute + 1;
  while (minute <= start_minute + kMinutesPerWeek) {
    // If a unit does not match, the next possible match is in the next such unit.
    if (alarm.match_weekday && minute / kMinutesPerDay % 7 != alarm.weekday) {
      minute += kMinutesPerDay - minute % kMinutesPerDay;
    } else if (alarm.match_hour && minute / kMinutesPerHour % 24 != alarm.hour) {
      minute += kMinutesPerHour - minute % kMinutesPerHour;
    } else if (alarm.match_minute && minute % kMinutesPerHour != alarm.minute) {
      ++minute;
    } else {
      const auto second = set_at_ + std::chrono::floor<std::chrono::seconds>(after - set_at_);
      return second - std::chrono::seconds(start.second) + std::chrono::minutes(minute - start_minute);
    }
  }
  return std::nullopt;
}

}  // namespace rolu_sim
