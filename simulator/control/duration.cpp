#include "simulator/control/duration.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

namespace rolu_sim {
namespace {

struct TimeUnit {
  std::string_view name;
  double seconds;
};

constexpr std::array<TimeUnit, 4> kTimeUnits = {{{"ms", 0.001}, {"s", 1}, {"min", 60}, {"h", 3600}}};

}  // namespace

std::optional<std::chrono::milliseconds> ParseDuration(std::string_view text) {
  double number = 0;
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, number);
  if (error != std::errc{}) return std::nullopt;
  const std::string_view unit(stop, static_cast<std::size_t>(end - stop));
  const auto* const known = std::find_if(kTimeUnits.begin(), kTimeUnits.end(),
                                         [&](const TimeUnit& entry) { return entry.name == unit; });
  if (known == kTimeUnits.end()) return std::nullopt;
  return DurationFromSeconds(number * known->seconds);
}

std::optional<std::chrono::milliseconds> DurationFromSeconds(double seconds) {
  const double longest = std::chrono::duration<double>(kLongestDuration).count();
  if (!(seconds >= 0 && seconds <= longest)) return std::nullopt;
  return std::chrono::milliseconds(std::llround(seconds * 1000));
}

std::string FormatDuration(std::chrono::milliseconds duration) {
  const auto milliseconds = duration.count();
  if (milliseconds % 1000 != 0) return fmt::format("{}ms", milliseconds);
  const auto seconds = milliseconds / 1000;
  if (seconds == 0 || seconds % 60 != 0) return fmt::format("{}s", seconds);
  if (seconds % 3600 != 0) return fmt::format("{}min", seconds / 60);
  return fmt::format("{}h", seconds / 3600);
}

}  // namespace rolu_sim
