#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <string_view>

namespace rolu {

// The grammar of all durations: a number, which may have decimals, and a unit: ms, s, m or min, h.
inline constexpr char kDurationExamples[] = "500ms, 2s, 1.5min or 2h";

inline constexpr std::chrono::milliseconds kLongestDuration = std::chrono::hours(366 * 24);

// Rounds to the nearest millisecond. Nothing when `text` is not a duration or is longer than `longest`.
std::optional<std::chrono::milliseconds> ParseDuration(std::string_view text,
                                                       std::chrono::milliseconds longest = kLongestDuration);

// The same for a number of seconds.
std::optional<std::chrono::milliseconds> DurationFromSeconds(
    double seconds, std::chrono::milliseconds longest = kLongestDuration);

// Writes the duration in the largest unit that divides it: "90s", "2h".
std::string FormatDuration(std::chrono::milliseconds duration);

}  // namespace rolu
