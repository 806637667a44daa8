#include "simulator/control/clock_text.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdint>

namespace rolu_sim {
namespace {

constexpr int kSecondsOfDay = 24 * 60 * 60;

// A pattern has a 0 for each digit; all else stands for itself.
bool HasForm(std::string_view text, std::string_view pattern) {
  return std::equal(text.begin(), text.end(), pattern.begin(), pattern.end(), [](char given, char wanted) {
    return wanted == '0' ? std::isdigit(static_cast<unsigned char>(given)) != 0 : given == wanted;
  });
}

std::uint8_t TwoDigits(std::string_view text, std::size_t at) {
  return static_cast<std::uint8_t>((text[at] - '0') * 10 + (text[at + 1] - '0'));
}

// By the rule that January and February belong to the year before.
std::uint8_t WeekdayOf(const ClockTime& date) {
  constexpr std::array<int, 12> kMonthShift = {0, 3, 2, 5, 0, 3, 5, 1, 4, 6, 2, 4};
  const int year = 2000 + date.year - (date.month < 3 ? 1 : 0);
  const int days = year + year / 4 - year / 100 + year / 400 + kMonthShift[date.month - 1U] + date.day;
  return static_cast<std::uint8_t>(days % 7);
}

int SecondOfDay(const ClockTime& time) {
  return (time.hour * 60 + time.minute) * 60 + time.second;
}

}  // namespace

std::optional<ClockText> ParseClockText(std::string_view text) {
  ClockText result;
  std::string_view time = text;
  if (HasForm(text.substr(0, 10), "2000-00-00") && text.size() > 10 && (text[10] == ' ' || text[10] == 'T')) {
    if (text.substr(0, 2) != "20") return std::nullopt;
    result.has_date = true;
    result.time.year = TwoDigits(text, 2);
    result.time.month = TwoDigits(text, 5);
    result.time.day = TwoDigits(text, 8);
    time = text.substr(11);
  }
  const bool has_seconds = HasForm(time, "00:00:00");
  if (!has_seconds && !HasForm(time, "00:00")) return std::nullopt;
  result.time.hour = TwoDigits(time, 0);
  result.time.minute = TwoDigits(time, 3);
  result.time.second = has_seconds ? TwoDigits(time, 6) : std::uint8_t{0};
  if (!IsValid(result.time)) return std::nullopt;
  if (result.has_date) result.time.weekday = WeekdayOf(result.time);
  return result;
}

ClockTime NextTimeOfDay(const ClockTime& present, const ClockTime& time_of_day) {
  const int ahead = SecondOfDay(time_of_day) - SecondOfDay(present);
  return AddSeconds(present, ahead >= 0 ? ahead : ahead + kSecondsOfDay);
}

std::string FormatClockTime(const ClockTime& time) {
  return fmt::format("20{:02}-{:02}-{:02} {:02}:{:02}:{:02}", time.year, time.month, time.day, time.hour,
                     time.minute, time.second);
}

}  // namespace rolu_sim
