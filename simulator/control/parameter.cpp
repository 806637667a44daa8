#include "simulator/control/parameter.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <utility>

#include "cli/duration.h"
#include "cli/nearest_name.h"
#include "simulator/control/clock_text.h"
#include "simulator/mcu/battery.h"

namespace rolu_sim {
namespace {

// As the user wrote it.
std::string AsText(const Json& given) {
  return given.is_string() ? given.get<std::string>() : given.dump();
}

[[noreturn]] void Refuse(const std::string& name, const Json& given, const std::string& range) {
  throw UsageError(fmt::format(R"("{}" must be {}, not "{}")", name, range, AsText(given)));
}

std::optional<double> ParseNumber(const Json& given) {
  if (given.is_number()) return given.get<double>();
  if (!given.is_string()) return std::nullopt;
  const std::string& text = given.get_ref<const std::string&>();
  double number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc{} || end != text.data() + text.size()) return std::nullopt;
  return number;
}

std::optional<std::int64_t> ParseHexadecimal(const std::string& text) {
  if (text.size() < 3 || text[0] != '0' || (text[1] != 'x' && text[1] != 'X')) return std::nullopt;
  std::int64_t number = 0;
  const auto [end, error] = std::from_chars(text.data() + 2, text.data() + text.size(), number, 16);
  if (error != std::errc{} || end != text.data() + text.size() || number < 0) return std::nullopt;
  return number;
}

std::optional<std::int64_t> ParseInteger(const Json& given) {
  if (given.is_string()) {
    if (const auto number = ParseHexadecimal(given.get_ref<const std::string&>())) return number;
  }
  const std::optional<double> number = ParseNumber(given);
  constexpr double kExact = 9007199254740992.0;
  if (!number || std::trunc(*number) != *number || std::abs(*number) > kExact) return std::nullopt;
  return static_cast<std::int64_t>(*number);
}

std::string JoinChoices(const std::vector<std::string>& choices) {
  if (choices.size() == 1) return choices.front();
  const std::vector<std::string> but_last(choices.begin(), choices.end() - 1);
  return fmt::format("{} or {}", fmt::join(but_last, ", "), choices.back());
}

// JSON has names of its own for the two positions of a switch.
std::string ChoiceText(const Json& given, const std::vector<std::string>& choices) {
  const bool is_switch = std::find(choices.begin(), choices.end(), "on") != choices.end();
  if (given.is_boolean() && is_switch) return given.get<bool>() ? "on" : "off";
  return AsText(given);
}

std::string HexDigitsOf(const std::string& text) {
  std::string digits;
  std::copy_if(text.begin(), text.end(), std::back_inserter(digits), [](char c) { return c != ' '; });
  return digits;
}

}  // namespace

Parameter Integer(std::string name, long least, long most, std::string help) {
  Parameter parameter;
  parameter.name = std::move(name);
  parameter.range = fmt::format("a whole number from {} to {}", least, most);
  parameter.help = std::move(help);
  parameter.check = [name = parameter.name, range = parameter.range, least, most](const Json& given) {
    const std::optional<std::int64_t> number = ParseInteger(given);
    if (!number || *number < least || *number > most) Refuse(name, given, range);
    return Json(*number);
  };
  return parameter;
}

Parameter Number(std::string name, double least, double most, std::string_view unit, std::string help) {
  Parameter parameter;
  parameter.name = std::move(name);
  parameter.range = fmt::format("a number from {} to {}{}{}", least, most, unit.empty() ? "" : " ", unit);
  parameter.help = std::move(help);
  parameter.check = [name = parameter.name, range = parameter.range, least, most](const Json& given) {
    const std::optional<double> number = ParseNumber(given);
    if (!number || !(*number >= least && *number <= most)) Refuse(name, given, range);
    return Json(*number);
  };
  return parameter;
}

Parameter Choice(std::string name, std::vector<std::string> choices, std::string help) {
  Parameter parameter;
  parameter.name = std::move(name);
  parameter.range = JoinChoices(choices);
  parameter.help = std::move(help);
  parameter.choices = std::move(choices);
  parameter.check = [name = parameter.name, range = parameter.range,
                     choices = parameter.choices](const Json& given) {
    std::string text = ChoiceText(given, choices);
    if (std::find(choices.begin(), choices.end(), text) == choices.end()) {
      throw UsageError(
          fmt::format(R"("{}" must be {}, not "{}"{})", name, range, text, rolu::Suggestion(text, choices)));
    }
    return Json(std::move(text));
  };
  return parameter;
}

Parameter Text(std::string name, std::string help) {
  Parameter parameter;
  parameter.name = std::move(name);
  parameter.takes_rest = true;
  parameter.range = "a text";
  parameter.help = std::move(help);
  parameter.check = [name = parameter.name](const Json& given) {
    if (!given.is_string()) Refuse(name, given, "a text");
    return given;
  };
  return parameter;
}

Parameter Duration(std::string name, std::string help) {
  Parameter parameter;
  parameter.name = std::move(name);
  parameter.range = fmt::format("a time of at most a week, as {}", rolu::kDurationExamples);
  parameter.help = std::move(help);
  parameter.check = [name = parameter.name, range = parameter.range](const Json& given) {
    const auto duration = given.is_number() ? rolu::DurationFromSeconds(given.get<double>(), kLongestTime)
                                            : rolu::ParseDuration(AsText(given), kLongestTime);
    if (!duration) Refuse(name, given, range);
    return Json(rolu::FormatDuration(*duration));
  };
  return parameter;
}

Parameter HexBytes(std::string name, std::string help) {
  Parameter parameter;
  parameter.name = std::move(name);
  parameter.takes_rest = true;
  parameter.range = "bytes as pairs of hexadecimal digits, as 01FF";
  parameter.help = std::move(help);
  parameter.check = [name = parameter.name, range = parameter.range](const Json& given) {
    const std::string digits = given.is_string() ? HexDigitsOf(given.get<std::string>()) : "";
    if (digits.empty() || digits.size() % 2 != 0 ||
        digits.find_first_not_of("0123456789abcdefABCDEF") != std::string::npos) {
      Refuse(name, given, range);
    }
    return Json(digits);
  };
  return parameter;
}

Parameter Curve(std::string name, std::string help) {
  Parameter parameter;
  parameter.name = std::move(name);
  parameter.takes_rest = true;
  parameter.range = "times and volts, as \"0s=12.6 2s=11.0\"";
  parameter.help = std::move(help);
  parameter.check = [name = parameter.name](const Json& given) {
    try {
      VoltageCurve::Parse(AsText(given));
    } catch (const std::invalid_argument& problem) {
      throw UsageError(fmt::format("\"{}\": {}", name, problem.what()));
    }
    return Json(AsText(given));
  };
  return parameter;
}

Parameter TimeOfClock(std::string name, std::string help) {
  Parameter parameter;
  parameter.name = std::move(name);
  parameter.takes_rest = true;
  parameter.range = R"(a time as "2024-05-31 22:00:00", "07:30" or "07:30:15", from 2000 to 2099)";
  parameter.help = std::move(help);
  parameter.check = [name = parameter.name, range = parameter.range](const Json& given) {
    if (!ParseClockText(AsText(given))) Refuse(name, given, range);
    return Json(AsText(given));
  };
  return parameter;
}

Parameter Optional(Parameter parameter, Json fallback) {
  parameter.required = false;
  parameter.fallback = std::move(fallback);
  return parameter;
}

}  // namespace rolu_sim
