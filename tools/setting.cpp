#include "tools/setting.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <optional>
#include <stdexcept>

#include "cli/nearest_name.h"

namespace rolu {
namespace {

constexpr double kSameNumber = 0.0005;  // values are rounded to three decimals

[[noreturn]] void Refuse(const Setting& setting, const std::string& got) {
  throw std::invalid_argument(fmt::format("must be {}, not {}", RangeText(setting), got));
}

std::optional<std::int64_t> WholeNumber(std::string_view text) {
  std::int64_t number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return number;
}

// Digits with a point; no exponents, signs or names of numbers.
std::optional<double> Decimal(std::string_view text) {
  if (text.empty() || text.find_first_not_of("0123456789.") != std::string_view::npos) return std::nullopt;
  double number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return number;
}

bool IsTimeOfDay(std::string_view text) {
  const auto two_digits_below = [](std::string_view field, int limit) {
    if (field.size() != 2 || field.find_first_not_of("0123456789") != std::string_view::npos) return false;
    return *WholeNumber(field) < limit;
  };
  return text.size() == 5 && text[2] == ':' && two_digits_below(text.substr(0, 2), 24) &&
         two_digits_below(text.substr(3), 60);
}

Value Typed(const Setting& setting, std::string_view text) {
  switch (setting.kind) {
    case Kind::kNumber:
      if (const auto number = WholeNumber(text)) return *number;
      break;
    case Kind::kVolts:
    case Kind::kCelsius:
      if (const auto number = Decimal(text)) return *number;
      break;
    case Kind::kFlag:
      if (text == "on" || text == "off") return text == "on";
      break;
    default:
      return std::string(text);
  }
  Refuse(setting, fmt::format("\"{}\"", text));
}

bool IsChoice(const Setting& setting, const std::string& word) {
  return std::find(setting.choices.begin(), setting.choices.end(), word) != setting.choices.end();
}

bool IsTaken(const Setting& setting, const Value& value) {
  switch (setting.kind) {
    case Kind::kNumber:
      return value.is_number_integer() && value.get<double>() >= setting.minimum &&
             value.get<double>() <= setting.maximum;
    case Kind::kVolts:
    case Kind::kCelsius:
      return value.is_number() && value.get<double>() >= setting.minimum &&
             value.get<double>() <= setting.maximum;
    case Kind::kFlag:
      return value.is_boolean();
    case Kind::kChoice:
      return value.is_string() && IsChoice(setting, value.get_ref<const std::string&>());
    case Kind::kTimeOfDay:
      return value.is_string() && IsTimeOfDay(value.get_ref<const std::string&>());
    default:
      return false;
  }
}

std::string ChoicesText(const Setting& setting) {
  std::string text;
  for (std::size_t i = 0; i < setting.choices.size(); ++i) {
    if (i > 0) text += i + 1 == setting.choices.size() ? " or " : ", ";
    text += setting.choices[i];
  }
  return text;
}

}  // namespace

std::string_view GroupOf(const Setting& setting) {
  return setting.name.substr(0, setting.name.find('.'));
}

std::string RangeText(const Setting& setting) {
  switch (setting.kind) {
    case Kind::kNumber:
      if (!setting.IsWritable()) return "a whole number";
      return fmt::format("a whole number from {:.0f} to {:.0f}", setting.minimum, setting.maximum);
    case Kind::kVolts:
      if (!setting.IsWritable()) return "volts";
      return fmt::format("volts from {:g} to {:g}, within the MCU's range", setting.minimum, setting.maximum);
    case Kind::kCelsius:
      return "degrees Celsius";
    case Kind::kFlag:
      return "on or off";
    case Kind::kChoice:
      return ChoicesText(setting);
    case Kind::kTimeOfDay:
      return "a time of day from 00:00 to 23:59";
    case Kind::kText:
      return "a text";
    default:
      return "numbers";
  }
}

Value ParseValue(const Setting& setting, std::string_view text) {
  Value value = Typed(setting, text);
  if (!IsTaken(setting, value)) Refuse(setting, fmt::format("\"{}\"", text));
  return value;
}

void CheckValue(const Setting& setting, const Value& value) {
  if (!IsTaken(setting, value)) Refuse(setting, value.dump(-1, ' ', true, Value::error_handler_t::replace));
}

std::string ValueText(const Setting& setting, const Value& value) {
  if (value.is_boolean()) return value.get<bool>() ? "on" : "off";
  if (value.is_string()) return value.get<std::string>();
  if (value.is_array()) {
    std::string text;
    for (const Value& element : value) {
      if (!text.empty()) text += ' ';
      text += element.is_number_float() ? VoltsText(element.get<double>()) : element.dump();
    }
    return text;
  }
  if (setting.kind == Kind::kVolts) return VoltsText(value.get<double>());
  if (setting.kind == Kind::kCelsius) return fmt::format("{:.1f}", value.get<double>());
  return value.dump();
}

double Thousandths(float volts) {
  return std::round(static_cast<double>(volts) * 1000.0) / 1000.0;
}

std::string VoltsText(double volts) {
  return fmt::format("{:.3f}", volts);
}

bool IsSame(const Value& wanted, const Value& found, double allowance) {
  if (!wanted.is_number() || !found.is_number()) return wanted == found;
  return std::abs(wanted.get<double>() - found.get<double>()) <= allowance + kSameNumber;
}

bool MustAsk(const Setting& setting, const Value& value) {
  switch (setting.asks) {
    case AsksFirst::kAlways:
      return true;
    case AsksFirst::kSwitchingOff:
      return value == false;
    case AsksFirst::kSwitchingOn:
      return value == true;
    default:
      return false;
  }
}

}  // namespace rolu
