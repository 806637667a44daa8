#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <string_view>

namespace rolu {

// The one grammar of a duration: a number, which may have decimals, and its unit: ms, s, m or min, h.
inline constexpr char kDurationExamples[] = "500ms, 2s, 1.5min or 2h";

inline constexpr std::chrono::milliseconds kLongestDuration = std::chrono::hours(366 * 24);

// To the nearest millisecond. Nothing when `text` is no duration, or one beyond `longest`.
std::optional<std::chrono::milliseconds> ParseDuration(std::string_view text,
                                                       std::chrono::milliseconds longest = kLongestDuration);

// The same from a number of seconds.
std::optional<std::chrono::milliseconds> DurationFromSeconds(
    double seconds, std::chrono::milliseconds longest = kLongestDuration);

// In the largest unit that divides it: "90s", "2h".
std::string FormatDuration(std::chrono::milliseconds duration);

}  // namespace rolu
