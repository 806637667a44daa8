#include "simulator/mcu/calendar.h"

#include <array>

namespace rolu_sim {
namespace {

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

}  // namespace rolu_sim
