#include "simulator/mcu/clock.h"

#include <array>
#include <chrono>
#include <cstddef>

namespace rolu_sim {
namespace {

// The order of the fields on the wire.
constexpr std::array<std::uint8_t ClockTime::*, 7> kFields = {
    &ClockTime::year, &ClockTime::month,  &ClockTime::day,   &ClockTime::weekday,
    &ClockTime::hour, &ClockTime::minute, &ClockTime::second};

constexpr int kMinutesPerHour = 60;
constexpr int kMinutesPerDay = 24 * kMinutesPerHour;
constexpr int kMinutesPerWeek = 7 * kMinutesPerDay;

constexpr std::int64_t kSecondsPerDay = 86400;
constexpr std::int64_t kDaysPerCentury = 36525;

// Within the century every fourth year is a leap year, 2000 among them.
int DaysInYear(int year) {
  return year % 4 == 0 ? 366 : 365;
}

int DaysInMonth(int year, int month) {
  static constexpr std::array<int, 12> kDays = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  if (month == 2 && DaysInYear(year) == 366) return 29;
  return kDays[static_cast<std::size_t>(month - 1)];
}

std::int64_t DaysSince2000(const ClockTime& time) {
  std::int64_t days = time.day - 1;
  for (int year = 0; year < time.year; ++year) days += DaysInYear(year);
  for (int month = 1; month < time.month; ++month) days += DaysInMonth(time.year, month);
  return days;
}

void SetDate(ClockTime& time, std::int64_t days_since_2000) {
  int year = 0;
  for (; days_since_2000 >= DaysInYear(year); ++year) days_since_2000 -= DaysInYear(year);
  int month = 1;
  for (; days_since_2000 >= DaysInMonth(year, month); ++month) days_since_2000 -= DaysInMonth(year, month);
  time.year = static_cast<std::uint8_t>(year);
  time.month = static_cast<std::uint8_t>(month);
  time.day = static_cast<std::uint8_t>(days_since_2000 + 1);
}

std::int64_t Modulo(std::int64_t number, std::int64_t divisor) {
  const std::int64_t rest = number % divisor;
  return rest < 0 ? rest + divisor : rest;
}

}  // namespace

bool IsValid(const ClockTime& time) {
  return time.year <= 99 && time.month >= 1 && time.month <= 12 && time.day >= 1 &&
         time.day <= DaysInMonth(time.year, time.month) && time.weekday <= 6 && time.hour <= 23 &&
         time.minute <= 59 && time.second <= 59;
}

ClockTime AddSeconds(const ClockTime& time, std::int64_t seconds) {
  const std::int64_t sum = (time.hour * 60 + time.minute) * 60 + time.second + seconds;
  const std::int64_t second_of_day = Modulo(sum, kSecondsPerDay);
  const std::int64_t days = (sum - second_of_day) / kSecondsPerDay;
  ClockTime later;
  SetDate(later, Modulo(DaysSince2000(time) + days, kDaysPerCentury));
  later.weekday = static_cast<std::uint8_t>(Modulo(time.weekday + days, 7));
  later.hour = static_cast<std::uint8_t>(second_of_day / 3600);
  later.minute = static_cast<std::uint8_t>(second_of_day / 60 % 60);
  later.second = static_cast<std::uint8_t>(second_of_day % 60);
  return later;
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
  // Digits above 9 do not come back as they were. Whether it is the afternoon the hour tells.
  constexpr std::uint64_t kAfternoon = rolu_protocol::alarm::kAfternoon << 8U;
  const bool is_decimal = (rolu_protocol::NumberOf(time) | kAfternoon) == (number | kAfternoon);
  if (!is_decimal || time.weekday > 6 || time.hour > 23 || time.minute > 59) return std::nullopt;
  return time;
}

void ClockState::Set(const ClockTime& time, TimePoint now) {
  set_time_ = time;
  set_at_ = now;
}

ClockTime ClockState::TimeAt(TimePoint now) const {
  return AddSeconds(set_time_, std::chrono::floor<std::chrono::seconds>(now - set_at_).count());
}

std::optional<TimePoint> ClockState::NextAlarm(TimePoint after) const {
  if (!alarm.match_weekday && !alarm.match_hour && !alarm.match_minute) return std::nullopt;
  const ClockTime start = TimeAt(after);
  const int start_minute = start.weekday * kMinutesPerDay + start.hour * kMinutesPerHour + start.minute;
  int minute = start_minute + 1;
  while (minute <= start_minute + kMinutesPerWeek) {
    // What does not match cannot match before its unit has passed.
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
