#include "cli/duration.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>

namespace rolu {
namespace {

constexpr struct {
  std::string_view name;
  std::int64_t milliseconds;
} kUnits[] = {{"h", 3'600'000}, {"min", 60'000}, {"m", 60'000}, {"s", 1000}, {"ms", 1}};

// Rounds to the nearest millisecond.
std::optional<std::chrono::milliseconds> AtMost(std::chrono::milliseconds longest, double milliseconds) {
  const double rounded = std::round(milliseconds);
  // This form also rejects NaN.
  if (!(rounded >= 0 && rounded <= static_cast<double>(longest.count()))) return std::nullopt;
  return std::chrono::milliseconds(std::llround(rounded));
}

}  // namespace

std::optional<std::chrono::milliseconds> ParseDuration(std::string_view text,
                                                       std::chrono::milliseconds longest) {
  double number = 0;
  const auto [end, error] =
      std::from_chars(text.data(), text.data() + text.size(), number, std::chars_format::fixed);
  if (error != std::errc()) return std::nullopt;
  text.remove_prefix(static_cast<std::size_t>(end - text.data()));
  for (const auto& unit : kUnits) {
    if (text == unit.name) return AtMost(longest, number * static_cast<double>(unit.milliseconds));
  }
  return std::nullopt;
}

std::optional<std::chrono::milliseconds> DurationFromSeconds(double seconds,
                                                             std::chrono::milliseconds longest) {
  return AtMost(longest, seconds * 1000);
}

std::string FormatDuration(std::chrono::milliseconds duration) {
  if (duration.count() == 0) return "0s";
  const auto* const unit = std::ranges::find_if(
      kUnits, [&](const auto& each) { return duration.count() % each.milliseconds == 0; });
  return std::to_string(duration.count() / unit->milliseconds) + std::string(unit->name);
}

}  // namespace rolu
