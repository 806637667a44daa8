#include "protocol/commands.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <initializer_list>
#include <system_error>
#include <vector>

#include "protocol/values.h"

namespace rolu_protocol {
namespace {

constexpr unsigned kLongestLine = 63;
constexpr int kNoNumber = 0;

struct Form {
  Field field;
  unsigned least;
  unsigned most;
  int base = kNoNumber;
};

constexpr Form kForms[] = {
    {kNone, 0, 0},
    {kDone, 2, 2},
    {kByte, 2, 2, 16},
    {kWord, 4, 4, 16},
    {kSigned, 4, 4, 16},
    {kDigit, 1, 1, 10},
    {kCharacter, 1, 1},
    {kSwitch, 1, 1, 10},
    {kSwitchByte, 2, 2, 16},
    {kSwitchNumber, 1, 1, 10},
    {kProtection, 1, 1, 10},
    {kSystem, 1, 1, 10},
    {kSystemByte, 2, 2, 16},
    {kDelayType, 1, 1, 10},
    {kClock, 14, 14, 16},
    {kAlarm, 6, 6, 16},
    {kDecimal, 1, 3, 10},
    {kWakeupSource, 1, 3, 10},
    {kNumber, 1, 8, 16},
    {kWakeupCode, 1, 8, 16},
    {kMillivolts, 1, 8, 16},
    {kTenthsOfKelvin, 1, 8, 16},
    {kStatusBits, 1, 32, 2},
    {kSwitches, 1, 32, 2},
    {kIgnition, 2, kLongestLine},
    {kText, 1, kLongestLine},
};

constexpr const Form& FormOf(Field field) {
  return *std::ranges::find(kForms, field, &Form::field);
}

std::string NameOf(std::uint64_t number, std::initializer_list<std::string_view> names) {
  return number < names.size() ? std::string(names.begin()[number]) : "";
}

std::string AlarmText(const AlarmTime& alarm) {
  const std::string time = fmt::format("{:02}:{:02}", alarm.hour, alarm.minute);
  if (alarm.match_weekday) return fmt::format("every week on weekday {} at {}", alarm.weekday, time);
  if (alarm.match_hour) return "every day at " + time;
  if (alarm.match_minute) return fmt::format("every hour at minute {}", alarm.minute);
  return "never (" + time + ")";
}

std::string WakeupText(std::uint64_t code) {
  const auto* const known = std::ranges::find(kWakeupCodes, code, &WakeupCode::code);
  if (known == kWakeupCodes.end()) return {};
  if (known->source == kNoSource) return "none";
  return known->source == kAlarmSource ? "the clock's alarm" : fmt::format("source {}", known->source);
}

// The positions of the '1' characters, counted from `begin`.
template <typename Iterator>
std::string PlacesOfOnes(Iterator begin, Iterator end) {
  std::vector<std::ptrdiff_t> places;
  for (Iterator at = begin; at != end; ++at) {
    if (*at == '1') places.push_back(at - begin);
  }
  return places.empty() ? "none" : fmt::format("{}", fmt::join(places, ", "));
}

// The words for a field; empty when the value has no meaning.
std::string WordsFor(Field field, std::string_view text, std::uint64_t number) {
  switch (field) {
    case kNone:
    case kCharacter:
    case kText:
      return std::string(text);
    case kDone:
      return text == kDoneReply ? "done" : "";
    case kByte:
    case kWord:
    case kNumber:
    case kDigit:
    case kDecimal:
      return std::to_string(number);
    case kSigned:
      return std::to_string(static_cast<std::int16_t>(number));
    case kSwitch:
    case kSwitchByte:
      return NameOf(number, {"off", "on"});
    case kSwitchNumber:
      return NameOf(number, {"0"});
    case kProtection:
      return NameOf(number, {"pre-boot", "low-battery"});
    case kSystem:
    case kSystemByte: {
      const auto* const known = std::ranges::find(kBatterySystems, number, &BatterySystem::number);
      return known == kBatterySystems.end() ? "" : fmt::format("{} V", known->volts);
    }
    case kDelayType:
      return NameOf(number,
                    {"delay from a low car battery to the power-off warning",
                     "delay from a low car battery to the power being cut",
                     "delay from the ignition going on to the computer starting",
                     "delay from the ignition going off to the power-off warning",
                     "delay from the ignition going off to the power being cut", "",
                     "delay from the ignition going off to the power of a suspended computer being cut",
                     "delay from the power-off warning to the power-off"});
    case kClock: {
      const auto byte = [number](unsigned place) { return number >> 8U * (6 - place) & 0xFFU; };
      return fmt::format("20{:02}-{:02}-{:02} (weekday {}) {:02}:{:02}:{:02}", byte(0), byte(1), byte(2),
                         byte(3), byte(4), byte(5), byte(6));
    }
    case kAlarm:
      return AlarmText(AlarmTimeOf(number));
    case kWakeupSource:
      return number == kAlarmSource ? "6 (the clock's alarm)" : std::to_string(number);
    case kWakeupCode:
      return WakeupText(number);
    case kMillivolts:
      return fmt::format("{:.3f} V", static_cast<double>(number) / 1000.0);
    case kTenthsOfKelvin:
      return fmt::format("{:.2f} degrees Celsius", static_cast<double>(number) / 10.0 - kZeroCelsiusInKelvin);
    case kStatusBits:
      return PlacesOfOnes(text.rbegin(), text.rend());
    case kSwitches:
      return PlacesOfOnes(text.begin(), text.end());
    case kIgnition:
      return text.starts_with("OF") ? "off" : text.starts_with("ON") ? "on" : "";
  }
  return {};
}

// The C library would also take a sign, blanks and "0x".
bool ParseNumber(Value& value, int base) {
  const char* const end = value.text.data() + value.text.size();
  const auto [stop, error] = std::from_chars(value.text.data(), end, value.number, base);
  if (error != std::errc{} || stop != end || value.text.front() == '-') return false;
  return base != 10 || value.text.size() == 1 || value.text.front() != '0';
}

}  // namespace

const Command* FindCommand(std::string_view line) {
  const Command* found = nullptr;
  for (const Command& command : kCommands) {
    if (!line.starts_with(command.code)) continue;
    if (found == nullptr || command.code.size() > found->code.size()) found = &command;
  }
  return found;
}

std::optional<Values> ParseFields(std::string_view text, const Fields& fields) {
  std::size_t least = 0;
  for (const Field field : fields) least += FormOf(field).least;
  if (text.size() < least) return std::nullopt;
  std::size_t spare = text.size() - least;
  Values values{};
  for (std::size_t i = 0; i < fields.size() && fields[i] != kNone; ++i) {
    const Form& form = FormOf(fields[i]);
    const std::size_t width = std::min<std::size_t>(form.least + spare, form.most);
    spare -= width - form.least;
    values[i].text = text.substr(0, width);
    text.remove_prefix(width);
    if (form.base != kNoNumber && !ParseNumber(values[i], form.base)) return std::nullopt;
    values[i].words = WordsFor(form.field, values[i].text, values[i].number);
    if (values[i].words.empty()) return std::nullopt;
  }
  if (!text.empty()) return std::nullopt;
  return values;
}

std::optional<Values> ParseCommandFields(std::string_view line, const Command& command) {
  const std::string_view text = line.substr(command.code.size());
  if (text.find_first_of("abcdef") != std::string_view::npos) return std::nullopt;
  return ParseFields(text, command.fields);
}

}  // namespace rolu_protocol
