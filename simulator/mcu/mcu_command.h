#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace rolu_sim {

class McuModel;

using TimePoint = std::chrono::steady_clock::time_point;

// The lines that the MCU answers to one command, without their line ends. Most commands have one.
using AnswerLines = std::vector<std::string>;

// Two of the MCU's error replies; the model gives no others by itself.
inline constexpr std::string_view kUnknownCommandReply = "ERR-C01";
inline constexpr std::string_view kRefusedParameterReply = "ERR-M08";

// One command of the MCU: its code, how many characters of fields may follow it, and its work.
// Fewer or more characters are refused before `execute` runs.
struct McuCommand {
  std::string_view code;
  std::size_t min_field_characters;
  std::size_t max_field_characters;
  AnswerLines (*execute)(McuModel& model, std::string_view fields, TimePoint now);
};

AnswerLines AnswerOk();
AnswerLines RefuseParameter();

// A number as the wire carries it: exactly `digits` upper-case hexadecimal digits (at most 4).
std::string FormatHex(std::uint16_t value, std::size_t digits);

// The whole of `field` as upper-case hexadecimal digits, one to four of them.
std::optional<std::uint16_t> ParseHex(std::string_view field);

// A flag is exactly the character '0' or '1'.
std::optional<bool> ParseFlag(char field);
std::string FormatFlag(bool flag);

// Sets a flag to what a field says, or refuses the field.
AnswerLines SetFlag(bool& flag, char field);

}  // namespace rolu_sim
