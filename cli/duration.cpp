#include "cli/duration.h"

#include <charconv>
#include <cmath>

namespace rolu {
namespace {

struct Unit {
  std::string_view name;
  double seconds;
};

constexpr Unit kUnits[] = {{"ms", 0.001}, {"s", 1}, {"m", 60}, {"min", 60}, {"h", 3600}};

}  // namespace

std::optional<std::chrono::milliseconds> ParseDuration(std::string_view text,
                                                       std::chrono::milliseconds longest) {
  double number = 0;
  const auto [end, error] =
      std::from_chars(text.data(), text.data() + text.size(), number, std::chars_format::fixed);
  if (error != std::errc()) return std::nullopt;
  text.remove_prefix(static_cast<std::size_t>(end - text.data()));
  for (const Unit& unit : kUnits) {
    if (text == unit.name) return DurationFromSeconds(number * unit.seconds, longest);
  }
  return std::nullopt;
}

std::optional<std::chrono::milliseconds> DurationFromSeconds(double seconds,
                                                             std::chrono::milliseconds longest) {
  const double milliseconds = std::round(seconds * 1000);
  // What is not a number is not in the range either.
  if (!(milliseconds >= 0 && milliseconds <= static_cast<double>(longest.count()))) return std::nullopt;
  return std::chrono::milliseconds(std::llround(milliseconds));
}

std::string FormatDuration(std::chrono::milliseconds duration) {
  const auto milliseconds = duration.count();
  if (milliseconds % 1000 != 0) return std::to_string(milliseconds) + "ms";
  const auto seconds = milliseconds / 1000;
  if (seconds == 0 || seconds % 60 != 0) return std::to_string(seconds) + "s";
  if (seconds % 3600 != 0) return std::to_string(seconds / 60) + "min";
  return std::to_string(seconds / 3600) + "h";
}

}  // namespace rolu
