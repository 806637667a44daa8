#include "simulator/desk/parameter.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <regex>

#include "cli/duration.h"
#include "cli/nearest_name.h"
#include "simulator/desk/trace.h"
#include "simulator/mcu/battery.h"

namespace rolu_sim {
namespace {

// The value as the user wrote it.
std::string AsText(const Json& given) {
  return given.is_string() ? given.get<std::string>() : given.dump();
}

// Reads the whole of `text` as a number.
template <typename Value, typename... Form>
std::optional<Value> FromText(std::string_view text, Form... form) {
  Value number{};
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, number, form...);
  return error == std::errc{} && stop == end ? std::optional(number) : std::nullopt;
}

std::optional<double> ParseNumber(const Json& given) {
  if (given.is_number()) return given.get<double>();
  return given.is_string() ? FromText<double>(given.get_ref<const std::string&>()) : std::nullopt;
}

std::optional<std::int64_t> ParseInteger(const Json& given) {
  const std::string text = AsText(given);
  if (text.starts_with("0x") || text.starts_with("0X")) {
    const auto number = FromText<std::uint32_t>(std::string_view(text).substr(2), 16);
    return number ? std::optional<std::int64_t>(*number) : std::nullopt;
  }
  const std::optional<double> number = ParseNumber(given);
  constexpr double kExact = 9007199254740992.0;
  if (!number || std::trunc(*number) != *number || std::abs(*number) > kExact) return std::nullopt;
  return static_cast<std::int64_t>(*number);
}

std::optional<ClockText> ParseClockText(const std::string& text) {
  static const std::regex kForm(R"((?:20(\d\d)-(\d\d)-(\d\d)[ T])?(\d?\d):(\d\d)(?::(\d\d))?)");
  std::smatch fields;
  if (!std::regex_match(text, fields, kForm)) return std::nullopt;
  const auto field = [&](std::size_t index) {
    return static_cast<std::uint8_t>(fields[index].matched ? std::stoi(fields[index]) : 0);
  };
  const bool has_date = fields[1].matched;
  ClockTime time{.hour = field(4), .minute = field(5), .second = field(6)};
  if (has_date) {
    time.year = field(1);
    time.month = field(2);
    time.day = field(3);
  }
  if (!IsValid(time)) return std::nullopt;
  if (has_date) {
    const std::chrono::year_month_day date(std::chrono::year(2000 + time.year),
                                           std::chrono::month(time.month), std::chrono::day(time.day));
    time.weekday = static_cast<std::uint8_t>(std::chrono::weekday(date).c_encoding());
  }
  return ClockText{has_date, time};
}

}  // namespace

Argument Parameter::Check(const Json& given) const {
  try {
    if (std::optional<Argument> argument = parse(given)) return std::move(*argument);
  } catch (const std::invalid_argument& problem) {
    throw UsageError(fmt::format("\"{}\": {}", name, problem.what()));
  }
  const std::string text = AsText(given);
  throw UsageError(
      fmt::format(R"("{}" must be {}, not "{}"{})", name, range, text, rolu::Suggestion(text, choices)));
}

Parameter Integer(std::string name, long least, long most, std::string help) {
  return {.name = std::move(name),
          .range = fmt::format("a whole number from {} to {}", least, most),
          .help = std::move(help),
          .parse = [least, most](const Json& given) -> std::optional<Argument> {
            const std::optional<std::int64_t> number = ParseInteger(given);
            if (!number || *number < least || *number > most) return std::nullopt;
            return Argument{*number, std::to_string(*number)};
          }};
}

Parameter Number(std::string name, double least, double most, std::string_view unit, std::string help) {
  return {.name = std::move(name),
          .range = fmt::format("a number from {} to {}{}{}", least, most, unit.empty() ? "" : " ", unit),
          .help = std::move(help),
          .parse = [least, most](const Json& given) -> std::optional<Argument> {
            const std::optional<double> number = ParseNumber(given);
            if (!number || !(*number >= least && *number <= most)) return std::nullopt;
            return Argument{*number, Json(*number).dump()};
          }};
}

Parameter Choice(std::string name, Choices choices, std::string help) {
  std::vector<std::string> texts;
  for (const auto& [text, value] : choices) texts.push_back(text);
  const std::vector<std::string> but_last(texts.begin(), texts.end() - 1);
  return {
      .name = std::move(name),
      .range = fmt::format("{}{}{}", fmt::join(but_last, ", "), but_last.empty() ? "" : " or ", texts.back()),
      .help = std::move(help),
      .parse = [choices = std::move(choices)](const Json& given) -> std::optional<Argument> {
        // JSON writes the two positions of a switch as true and false.
        const std::string text = given.is_boolean() ? (given.get<bool>() ? "on" : "off") : AsText(given);
        const auto found = std::ranges::find(choices, text, &Choices::value_type::first);
        if (found == choices.end()) return std::nullopt;
        return Argument{found->second, text};
      },
      .choices = texts};
}

Parameter OneOf(std::string name, const std::vector<std::string>& texts, std::string help) {
  Choices choices;
  for (const std::string& text : texts) choices.emplace_back(text, text);
  return Choice(std::move(name), std::move(choices), std::move(help));
}

Parameter Switch(std::string name, std::string help) {
  return Choice(std::move(name), {{"on", true}, {"off", false}}, std::move(help));
}

Parameter Text(std::string name, std::string help) {
  return {.name = std::move(name),
          .range = "a text",
          .help = std::move(help),
          .parse = [](const Json& given) -> std::optional<Argument> {
            if (!given.is_string()) return std::nullopt;
            return Argument{given.get<std::string>(), given.get<std::string>()};
          },
          .takes_rest = true};
}

Parameter Duration(std::string name, std::string help) {
  return {.name = std::move(name),
          .range = fmt::format("a time of at most a week, such as {}", rolu::kDurationExamples),
          .help = std::move(help),
          .parse = [](const Json& given) -> std::optional<Argument> {
            const auto duration = given.is_number()
                                      ? rolu::DurationFromSeconds(given.get<double>(), kLongestTime)
                                      : rolu::ParseDuration(AsText(given), kLongestTime);
            if (!duration) return std::nullopt;
            return Argument{*duration, rolu::FormatDuration(*duration)};
          }};
}

Parameter HexBytes(std::string name, std::string help) {
  return {.name = std::move(name),
          .range = "bytes as pairs of hexadecimal digits, such as 01FF",
          .help = std::move(help),
          .parse = [](const Json& given) -> std::optional<Argument> {
            if (!given.is_string()) return std::nullopt;
            std::string digits = given.get<std::string>();
            std::erase(digits, ' ');
            const std::optional<std::string> bytes = BytesFromHex(digits);
            if (!bytes || bytes->empty()) return std::nullopt;
            return Argument{*bytes, digits};
          },
          .takes_rest = true};
}

Parameter Curve(std::string name, std::string help) {
  return {.name = std::move(name),
          .range = "times and volts, such as \"0s=12.6 2s=11.0\"",
          .help = std::move(help),
          .parse = [](const Json& given) -> std::optional<Argument> {
            return Argument{VoltageCurve::Parse(AsText(given)), AsText(given)};
          },
          .takes_rest = true};
}

Parameter TimeOfClock(std::string name, std::string help) {
  return {.name = std::move(name),
          .range = R"(a time such as "2024-05-31 22:00:00", "7:30" or "07:30:15", from 2000 to 2099)",
          .help = std::move(help),
          .parse = [](const Json& given) -> std::optional<Argument> {
            const std::optional<ClockText> time = ParseClockText(AsText(given));
            if (!time) return std::nullopt;
            return Argument{*time, AsText(given)};
          },
          .takes_rest = true};
}

std::string FormatClockTime(const ClockTime& time) {
  return fmt::format("20{:02}-{:02}-{:02} {:02}:{:02}:{:02}", time.year, time.month, time.day, time.hour,
                     time.minute, time.second);
}

Parameter Optional(Parameter parameter, Json fallback) {
  parameter.required = false;
  parameter.fallback = std::move(fallback);
  return parameter;
}

}  // namespace rolu_sim
