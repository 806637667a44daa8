#pragma once

#include <any>
#include <chrono>
#include <functional>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "simulator/desk/json.h"
#include "simulator/mcu/clock.h"

namespace rolu_sim {

// The user asked for something impossible. The text says why, and what is possible.
class UsageError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// The user's value for a parameter: the value in the parameter's type, and the text that shows it.
struct Argument {
  std::any value;
  std::string text;
};

// A value that a verb takes.
struct Parameter {
  std::string name;
  std::string range;  // in words: "0 to 100 V", "on or off"
  std::string help;
  // Reads a member of a JSON object; a word of a command line comes as a JSON string. Returns nothing when
  // the value is out of range; throws std::invalid_argument when there is more to say.
  std::function<std::optional<Argument>(const Json& given)> parse{};
  std::vector<std::string> choices{};  // the allowed texts, if the parameter has a fixed list of them
  bool takes_rest = false;             // may hold blanks: takes the remaining words of a command line
  bool required = true;
  Json fallback{};  // the default of an optional parameter; null: none

  // Throws UsageError.
  Argument Check(const Json& given) const;
};

// A whole number (std::int64_t) from `least` to `most`; also written in hexadecimal with 0x.
Parameter Integer(std::string name, long least, long most, std::string help);

// A double.
Parameter Number(std::string name, double least, double most, std::string_view unit, std::string help);

// The texts to choose from, each with the value that it stands for.
using Choices = std::vector<std::pair<std::string, std::any>>;
Parameter Choice(std::string name, Choices choices, std::string help);

// One of several texts (std::string).
Parameter OneOf(std::string name, const std::vector<std::string>& texts, std::string help);

// A bool, as on or off.
Parameter Switch(std::string name, std::string help);

// A std::string.
Parameter Text(std::string name, std::string help);

// The longest time that a user may give.
inline constexpr std::chrono::milliseconds kLongestTime = std::chrono::hours(7 * 24);

// A std::chrono::milliseconds; a plain number is in seconds.
Parameter Duration(std::string name, std::string help);

// Bytes (std::string) as hexadecimal digits in pairs, with or without blanks between them.
Parameter HexBytes(std::string name, std::string help);

// A VoltageCurve, "0s=12.6 2s=11.0".
Parameter Curve(std::string name, std::string help);

// A time that a user wrote for the MCU's clock. Without a date only the time of day counts; with a date, the
// weekday is that of the date (0 is Sunday).
struct ClockText {
  bool has_date = false;
  ClockTime time;
};

// A ClockText: "2024-05-31 22:00:00" (a T may stand for the blank), "07:30" or "07:30:15".
Parameter TimeOfClock(std::string name, std::string help);

std::string FormatClockTime(const ClockTime& time);

// The same parameter as an optional one.
Parameter Optional(Parameter parameter, Json fallback = nullptr);

// The names of parameters, verbs or readings.
template <typename Named>
std::vector<std::string> NamesOf(const std::vector<Named>& all) {
  std::vector<std::string> names;
  names.reserve(all.size());
  for (const Named& one : all) names.push_back(one.name);
  return names;
}

}  // namespace rolu_sim
