#include "tools/wall_time.h"

#include <fmt/format.h>
#include <time.h>

#include <array>
#include <charconv>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <stdexcept>
#include <tuple>

namespace rolu {
namespace {

std::tm SystemTime(bool utc, std::time_t seconds) {
  std::tm fields{};
  utc ? gmtime_r(&seconds, &fields) : localtime_r(&seconds, &fields);
  return fields;
}

VPM_RTC_TIME ClockOf(const std::tm& fields) {
  const auto byte = [](int number) { return static_cast<std::uint8_t>(number); };
  return {byte(fields.tm_year % 100), byte(fields.tm_mon + 1), byte(fields.tm_mday), byte(fields.tm_wday),
          byte(fields.tm_hour),       byte(fields.tm_min),     byte(fields.tm_sec)};
}

std::time_t AsUtcSeconds(const VPM_RTC_TIME& time) {
  std::tm fields{};
  fields.tm_year = 100 + time.year;
  fields.tm_mon = time.month - 1;
  fields.tm_mday = time.day;
  fields.tm_hour = time.hour;
  fields.tm_min = time.minute;
  fields.tm_sec = time.second;
  return timegm(&fields);
}

}  // namespace

std::string ClockText(const VPM_RTC_TIME& time) {
  return fmt::format("20{:02}-{:02}-{:02} {:02}:{:02}:{:02}", time.year, time.month, time.day, time.hour,
                     time.minute, time.second);
}

VPM_RTC_TIME ParseClock(std::string_view text) {
  constexpr std::string_view kForm = "dddd-dd-dd dd:dd:dd";
  bool well_formed = text.size() == kForm.size();
  for (std::size_t i = 0; well_formed && i < kForm.size(); ++i) {
    const bool digit = text[i] >= '0' && text[i] <= '9';
    well_formed = kForm[i] == 'd' ? digit : text[i] == kForm[i] || (kForm[i] == ' ' && text[i] == 'T');
  }
  const auto field = [&](std::size_t at, std::size_t length) {
    int number = -1;
    std::from_chars(text.data() + at, text.data() + at + length, number);
    return number;
  };
  if (!well_formed) {
    throw std::invalid_argument(fmt::format("must be like '2026-11-24 21:38:15', not '{}'", text));
  }
  std::tm fields{};
  fields.tm_year = field(0, 4) - 1900;
  fields.tm_mon = field(5, 2) - 1;
  fields.tm_mday = field(8, 2);
  fields.tm_hour = field(11, 2);
  fields.tm_min = field(14, 2);
  fields.tm_sec = field(17, 2);
  // The calendar carries a 31st of April over to May.
  std::tm carried = fields;
  timegm(&carried);
  const auto parts = [](const std::tm& of) {
    return std::make_tuple(of.tm_year, of.tm_mon, of.tm_mday, of.tm_hour, of.tm_min, of.tm_sec);
  };
  if (parts(carried) != parts(fields)) {
    throw std::invalid_argument(fmt::format("must be a time that exists, not '{}'", text));
  }
  if (fields.tm_year < 100 || fields.tm_year > 199) {
    throw std::invalid_argument(fmt::format("must be from the years 2000 to 2099, not '{}'", text));
  }
  return ClockOf(carried);
}

VPM_RTC_TIME SystemClock(bool utc) {
  return ClockOf(SystemTime(utc, time(nullptr)));
}

long SecondsBetween(const VPM_RTC_TIME& from, const VPM_RTC_TIME& to) {
  return static_cast<long>(AsUtcSeconds(to) - AsUtcSeconds(from));
}

std::string TimeStamp() {
  timespec now{};
  clock_gettime(CLOCK_REALTIME, &now);
  const std::tm fields = SystemTime(false, now.tv_sec);
  std::array<char, 32> text{};
  std::array<char, 8> offset{};
  strftime(text.data(), text.size(), "%Y-%m-%dT%H:%M:%S", &fields);
  strftime(offset.data(), offset.size(), "%z", &fields);
  return fmt::format("{}.{:03}{:.3}:{}", text.data(), now.tv_nsec / 1'000'000, offset.data(),
                     offset.data() + 3);
}

std::chrono::milliseconds ParseDuration(std::string_view text) {
  struct Unit {
    std::string_view name;
    std::int64_t milliseconds;
  };
  constexpr Unit kUnits[] = {{"ms", 1}, {"s", 1000}, {"min", 60'000}, {"h", 3'600'000}};
  constexpr std::int64_t kLongest = std::int64_t{366} * 24 * 3'600'000;
  std::int64_t number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  const std::string_view suffix = text.substr(static_cast<std::size_t>(end - text.data()));
  for (const Unit& unit : kUnits) {
    if (error != std::errc() || suffix != unit.name || number < 1) continue;
    if (number > kLongest / unit.milliseconds) throw std::invalid_argument("must be a year at most");
    return std::chrono::milliseconds(number * unit.milliseconds);
  }
  throw std::invalid_argument(fmt::format(
      "must be a whole number of 1 or more with its unit (ms, s, min, h), like 20s, not '{}'", text));
}

}  // namespace rolu
