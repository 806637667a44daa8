#include "tools/setting.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <optional>

#include "cli/nearest_name.h"
#include "tools/status_words.h"

namespace rolu {
namespace {

constexpr double kSameNumber = 0.0005;  // the values are rounded to three decimals

std::string Refusal(const Setting& setting, const std::string& got) {
  return fmt::format("{} must be {}, not {}", setting.name, RangeText(setting), got);
}

// Reads the whole of `text`. Nothing when it is not a number or is too large.
template <typename Number>
std::optional<Number> ParseNumber(std::string_view text) {
  Number number{};
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return number;
}

// Reads digits with a point. Exponents, signs and names of numbers are not allowed.
std::optional<double> Decimal(std::string_view text) {
  if (text.empty() || text.find_first_not_of("0123456789.") != std::string_view::npos) return std::nullopt;
  return ParseNumber<double>(text);
}

// Null when the text does not have the form of the setting's values.
Value Typed(const Setting& setting, std::string_view text) {
  switch (setting.kind) {
    case Kind::kNumber:
      if (const auto number = ParseNumber<std::int64_t>(text)) return *number;
      break;
    case Kind::kVolts:
    case Kind::kCelsius:
      if (const auto number = Decimal(text)) return *number;
      break;
    case Kind::kFlag:
      if (text == "on" || text == "off") return text == "on";
      break;
    default:
      return Normalised(setting, std::string(text));
  }
  return nullptr;
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
      return value.is_string() && std::ranges::count(setting.choices, value.get<std::string>()) > 0;
    case Kind::kTimeOfDay:
      return value.is_string() && ParseTimeOfDay(value.get_ref<const std::string&>());
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

std::vector<std::string> SettingNames() {
  std::vector<std::string> names;
  for (const Setting& setting : Settings()) names.emplace_back(setting.name);
  return names;
}

}  // namespace

const Setting* FindSetting(std::string_view name) {
  const auto named = std::ranges::find(Settings(), name, &Setting::name);
  return named == Settings().end() ? nullptr : &*named;
}

const Setting& SettingNamed(std::string_view name) {
  if (const Setting* const setting = FindSetting(name)) return *setting;
  throw CommandError(kWrongUse, NoSetting(name));
}

std::vector<const Setting*> SettingsNamed(const std::vector<std::string>& names) {
  std::vector<const Setting*> found;
  if (names.empty()) {
    for (const Setting& setting : Settings()) found.push_back(&setting);
  }
  for (const std::string& name : names) {
    const std::size_t before = found.size();
    for (const Setting& setting : Settings()) {
      if (setting.name == name || GroupOf(setting) == name) found.push_back(&setting);
    }
    if (found.size() > before) continue;
    std::vector<std::string> known = SettingNames();
    for (const SettingGroup& group : SettingGroups()) known.emplace_back(group.name);
    throw CommandError(kWrongUse,
                       fmt::format("there is no setting or group \"{}\"{}", name, Suggestion(name, known)));
  }
  return found;
}

std::string NoSetting(std::string_view name) {
  return fmt::format("there is no setting \"{}\"{}", name, Suggestion(name, SettingNames()));
}

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
  if (IsTaken(setting, value)) return value;
  throw CommandError(kWrongUse, Refusal(setting, fmt::format("\"{}\"", text)));
}

Value Normalised(const Setting& setting, const Value& value) {
  if (setting.kind != Kind::kTimeOfDay || !value.is_string()) return value;
  const std::optional<TimeOfDay> time = ParseTimeOfDay(value.get_ref<const std::string&>());
  return time ? Value(fmt::format("{:02}:{:02}", time->hour, time->minute)) : value;
}

std::string WhyNotTaken(const Setting& setting, const Value& value) {
  if (IsTaken(setting, value)) return "";
  return Refusal(setting, value.dump(-1, ' ', true, Value::error_handler_t::replace));
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

std::optional<TimeOfDay> ParseTimeOfDay(std::string_view text) {
  const std::size_t colon = text.find(':');
  if (colon < 1 || colon > 2 || text.size() != colon + 3) return std::nullopt;
  const auto hour = ParseNumber<std::uint8_t>(text.substr(0, colon));
  const auto minute = ParseNumber<std::uint8_t>(text.substr(colon + 1));
  if (!hour || !minute || *hour > 23 || *minute > 59) return std::nullopt;
  return TimeOfDay{*hour, *minute};
}

std::string ClockText(const VPM_RTC_TIME& time) {
  return fmt::format("20{:02}-{:02}-{:02} {:02}:{:02}:{:02}", time.year, time.month, time.day, time.hour,
                     time.minute, time.second);
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
