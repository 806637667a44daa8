#include "protocol/commands.h"

#include <algorithm>
#include <charconv>
#include <system_error>

#include "protocol/values.h"

namespace rolu_protocol {
namespace {

constexpr std::size_t kLongestLine = 63;
constexpr int kNoNumber = 0;

struct Form {
  std::size_t least;
  std::size_t most;
  int base = kNoNumber;
};

constexpr Form FormOf(Field field) {
  switch (field) {
    case kNone:
      return {0, 0};
    case kDone:
      return {2, 2};
    case kByte:
    case kSwitchByte:
    case kSystemByte:
      return {2, 2, 16};
    case kWord:
    case kSigned:
      return {4, 4, 16};
    case kDigit:
    case kSwitch:
    case kSwitchNumber:
    case kProtection:
    case kSystem:
    case kDelayType:
      return {1, 1, 10};
    case kCharacter:
      return {1, 1};
    case kClock:
      return {14, 14, 16};
    case kAlarm:
      return {6, 6, 16};
    case kDecimal:
    case kWakeupSource:
      return {1, 3, 10};
    case kNumber:
    case kWakeupCode:
    case kMillivolts:
    case kTenthsOfKelvin:
      return {1, 8, 16};
    case kStatusBits:
    case kSwitches:
      return {1, 32, 2};
    case kIgnition:
    case kText:
      return {0, kLongestLine};
  }
  return {0, 0};
}

// The C library would also take a sign, blanks and "0x".
bool ParseNumber(Value& value, int base) {
  const char* const end = value.text.data() + value.text.size();
  const auto [stop, error] = std::from_chars(value.text.data(), end, value.number, base);
  if (error != std::errc{} || stop != end || value.text.front() == '-') return false;
  return base != 10 || value.text.size() == 1 || value.text.front() != '0';
}

bool StandsForSomething(Field field, const Value& value) {
  switch (field) {
    case kDone:
      return value.text == kDoneReply;
    case kSwitch:
    case kSwitchByte:
    case kProtection:
      return value.number <= 1;
    case kSwitchNumber:
      return value.number == 0;
    case kSystem:
    case kSystemByte:
      return value.number == kBatterySystems[0].number || value.number == kBatterySystems[1].number;
    case kDelayType:
      return value.number <= 7 && value.number != 5;
    case kWakeupCode:
      return std::any_of(kWakeupCodes.begin(), kWakeupCodes.end(),
                         [&](const WakeupCode& known) { return known.code == value.number; });
    case kIgnition:
      return value.text.substr(0, 2) == "ON" || value.text.substr(0, 2) == "OF";
    default:
      return true;
  }
}

}  // namespace

const Command* FindCommand(std::string_view line) {
  const Command* found = nullptr;
  for (const Command& command : kCommands) {
    if (line.substr(0, command.code.size()) != command.code) continue;
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
  for (std::size_t i = 0; i < fields.size(); ++i) {
    const Form form = FormOf(fields[i]);
    const std::size_t width = std::min(form.least + spare, form.most);
    spare -= width - form.least;
    values[i].text = text.substr(0, width);
    text.remove_prefix(width);
    if (form.base != kNoNumber && !ParseNumber(values[i], form.base)) return std::nullopt;
    if (!StandsForSomething(fields[i], values[i])) return std::nullopt;
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
