#pragma once

#include <chrono>
#include <functional>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "simulator/json.h"

namespace rolu_sim {

// What a user asked for cannot be; the text says why and what could be.
class UsageError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// A value that a verb takes: how it is called, what it may be, and the check that turns what a user
// gave (a member of a JSON object, or a word of a command line as a JSON string) into its one form.
struct Parameter {
  std::string name;
  std::string range;  // in words: "0 to 100 V", "on or off"
  std::string help;
  std::function<Json(const Json& given)> check;  // throws UsageError
  std::vector<std::string> choices;              // where there are only these
  bool takes_rest = false;                       // may hold blanks: takes the words left on a command line
  bool required = true;
  Json fallback;  // of one that is not required; null is none
};

// From `least` to `most`; also written in hexadecimal with 0x.
Parameter Integer(std::string name, long least, long most, std::string help);
Parameter Number(std::string name, double least, double most, std::string_view unit, std::string help);
Parameter Choice(std::string name, std::vector<std::string> choices, std::string help);
Parameter Text(std::string name, std::string help);

// The longest time that a board waits for anything.
inline constexpr std::chrono::milliseconds kLongestTime = std::chrono::hours(7 * 24);

// In its one form as FormatDuration has it; a plain number is in seconds.
Parameter Duration(std::string name, std::string help);

// Hexadecimal digits in pairs, with or without blanks between them.
Parameter HexBytes(std::string name, std::string help);

// A voltage over time, "0s=12.6 2s=11.0".
Parameter Curve(std::string name, std::string help);

// "2024-05-31 22:00:00", or a time of the day "07:30" or "07:30:15".
Parameter TimeOfClock(std::string name, std::string help);

// The same parameter, which may be left out.
Parameter Optional(Parameter parameter, Json fallback = nullptr);

}  // namespace rolu_sim
