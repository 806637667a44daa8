#include "protocol/words.h"

#include <fmt/args.h>
#include <fmt/format.h>

#include <optional>
#include <vector>

#include "protocol/commands.h"
#include "protocol/values.h"

namespace rolu_protocol {
namespace {

constexpr std::string_view kErrorPrefix = "ERR-";

constexpr std::string_view kDelays[] = {
    "delay from a low car battery to the power-off warning",
    "delay from a low car battery to the power being cut",
    "delay from the ignition going on to the computer starting",
    "delay from the ignition going off to the power-off warning",
    "delay from the ignition going off to the power being cut",
    "",
    "delay from the ignition going off to the power of a suspended computer being cut",
    "delay from the power-off warning to the power-off",
};

std::string SourceText(int source) {
  if (source == kNoSource) return "none";
  return source == kAlarmSource ? "the clock's alarm" : fmt::format("source {}", source);
}

std::string ClockText(std::uint64_t number) {
  const auto byte = [number](unsigned place) { return number >> 8U * (6 - place) & 0xFFU; };
  return fmt::format("20{:02}-{:02}-{:02} (weekday {}) {:02}:{:02}:{:02}", byte(0), byte(1), byte(2), byte(3),
                     byte(4), byte(5), byte(6));
}

std::string AlarmText(const AlarmTime& alarm) {
  const std::string time = fmt::format("{:02}:{:02}", alarm.hour, alarm.minute);
  if (alarm.match_weekday) return fmt::format("every week on weekday {} at {}", alarm.weekday, time);
  if (alarm.match_hour) return "every day at " + time;
  if (alarm.match_minute) return fmt::format("every hour at minute {}", alarm.minute);
  return "never (" + time + ")";
}

std::string WakeupText(std::uint64_t code) {
  for (const WakeupCode& known : kWakeupCodes) {
    if (known.code == code) return SourceText(known.source);
  }
  return {};
}

// The places of the ones, counted from an end of the text.
template <typename Iterator>
std::string PlacesOfOnes(Iterator begin, Iterator end) {
  std::vector<std::ptrdiff_t> places;
  for (Iterator at = begin; at != end; ++at) {
    if (*at == '1') places.push_back(at - begin);
  }
  return places.empty() ? "none" : fmt::format("{}", fmt::join(places, ", "));
}

std::string FieldText(Field field, const Value& value) {
  const std::uint64_t number = value.number;
  switch (field) {
    case kNone:
      return {};
    case kDone:
      return "done";
    case kByte:
    case kWord:
    case kNumber:
    case kDigit:
    case kDecimal:
    case kSwitchNumber:
      return fmt::format("{}", number);
    case kSigned:
      return fmt::format("{}", static_cast<std::int16_t>(number));
    case kSwitch:
    case kSwitchByte:
      return number == 1 ? "on" : "off";
    case kProtection:
      return number == 1 ? "low-battery" : "pre-boot";
    case kSystem:
    case kSystemByte:
      return fmt::format("{} V", kBatterySystems[number == kBatterySystems[0].number ? 0 : 1].volts);
    case kDelayType:
      return std::string(kDelays[static_cast<std::size_t>(number)]);
    case kClock:
      return ClockText(number);
    case kAlarm:
      return AlarmText(AlarmTimeOf(number));
    case kWakeupSource:
      return static_cast<int>(number) == kAlarmSource ? "6 (the clock's alarm)" : fmt::format("{}", number);
    case kWakeupCode:
      return WakeupText(number);
    case kMillivolts:
      return fmt::format("{:.3f} V", static_cast<double>(number) / 1000.0);
    case kTenthsOfKelvin:
      return fmt::format("{:.2f} degrees Celsius", static_cast<double>(number) / 10.0 - kZeroCelsiusInKelvin);
    case kStatusBits:
      return PlacesOfOnes(value.text.rbegin(), value.text.rend());
    case kSwitches:
      return PlacesOfOnes(value.text.begin(), value.text.end());
    case kIgnition:
      return value.text.substr(0, 2) == "ON" ? "on" : "off";
    case kCharacter:
    case kText:
      return std::string(value.text);
  }
  return {};
}

std::string Fill(std::string_view words, const Fields& fields, const Values& values) {
  fmt::dynamic_format_arg_store<fmt::format_context> arguments;
  for (std::size_t i = 0; i < fields.size(); ++i) arguments.push_back(FieldText(fields[i], values[i]));
  return fmt::vformat(words, arguments);
}

std::string ErrorText(std::string_view line) {
  const std::string_view code = line.substr(line.find(kErrorPrefix), kErrorPrefix.size() + 3);
  if (code == kRefusedParameterReply) return "refused: a parameter is out of its range";
  if (code == kUnknownCommandReply) return "refused: the MCU does not know the command";
  return fmt::format("refused: the MCU answers with the error {}", code);
}

bool BeginsWith(std::string_view line, std::string_view begin) {
  return line.substr(0, begin.size()) == begin;
}

std::string MessageText(std::string_view line) {
  if (BeginsWith(line, kAlarmMessage)) {
    constexpr Fields kSample = {kSigned, kSigned, kSigned};
    const auto sample = ParseFields(line.substr(kAlarmMessage.size(), 12), kSample);
    if (!sample) return "a G-sensor alarm sample that is cut short";
    return Fill("G-sensor alarm: x {}, y {}, z {}", kSample, *sample);
  }
  if (BeginsWith(line, kIgnitionWarning.substr(0, 5))) {
    return "warning: the power goes off, the ignition is off";
  }
  if (BeginsWith(line, kLowBatteryWarning.substr(0, 5))) {
    return "warning: the power goes off, the car battery is low";
  }
  return "a message that nobody asked for";
}

}  // namespace

std::string Words::OfCommand(std::string_view line) {
  const Command* const known = FindCommand(line);
  pending_ = line;
  answers_due_ = known == nullptr ? 1 : known->answer_lines;
  if (known == nullptr) return "a command that is not known";
  const auto values = ParseCommandFields(line, *known);
  if (!values) return fmt::format("{} with fields that do not fit", known->code);
  return Fill(known->words, known->fields, *values);
}

std::string Words::OfAnswer(std::string_view line) {
  if (IsMessage(line)) return MessageText(line);
  if (answers_due_ == 0) return "a line that no command waits for";
  --answers_due_;
  if (line.find(kErrorPrefix) != std::string_view::npos) return ErrorText(line);
  if (line == kDoneReply) return "done";
  const Command* const known = FindCommand(pending_);
  if (known == nullptr) return fmt::format("an answer to {}", pending_);
  const auto values = ParseFields(line, known->answer_fields);
  if (!values) return fmt::format("an answer to {} that does not fit", known->code);
  return Fill(known->answer_words, known->answer_fields, *values);
}

}  // namespace rolu_protocol
