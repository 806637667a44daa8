#include "tools/wall_time.h"

#include <fmt/format.h>
#include <time.h>

#include <array>
#include <cstdint>
#include <stdexcept>

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
  std::string given(text);
  if (const std::size_t mark = given.find('T'); mark != std::string::npos) given[mark] = ' ';
  std::tm fields{};
  const bool is_read = strptime(given.c_str(), "%Y-%m-%d %H:%M:%S", &fields) != nullptr;
  // timegm turns the 31st of April into the 1st of May, and strptime takes "7:3" for 07:03. So the text is
  // written again and compared.
  timegm(&fields);
  const VPM_RTC_TIME time = ClockOf(fields);
  if (is_read && ClockText(time) == given) return time;
  throw std::invalid_argument(fmt::format(
      "must be a time that exists, from the years 2000 to 2099, like \"2026-11-24 21:38:15\", not \"{}\"",
      text));
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

}  // namespace rolu
