#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <string_view>

namespace rolu_sim {

inline constexpr std::chrono::milliseconds kLongestDuration = std::chrono::hours(24 * 7);

// A time as people write it: "2s", "500ms", "1.5min", "2h". Nothing when it is none, or longer than a
// week.
std::optional<std::chrono::milliseconds> ParseDuration(std::string_view text);

// The same from seconds.
std::optional<std::chrono::milliseconds> DurationFromSeconds(double seconds);

// The shortest of those texts.
std::string FormatDuration(std::chrono::milliseconds duration);

}  // namespace rolu_sim
