#include "simulator/trace/wire_field.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <utility>

namespace rolu_sim {
namespace {

std::optional<unsigned> ParseNumber(std::string_view digits, int base) {
  unsigned number = 0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number, base);
  if (digits.empty() || error != std::errc{} || end != digits.data() + digits.size()) return std::nullopt;
  return number;
}

std::optional<unsigned> TakeHex(std::string_view& text, std::size_t digits) {
  if (text.size() < digits) return std::nullopt;
  const std::optional<unsigned> number = ParseNumber(text.substr(0, digits), 16);
  text.remove_prefix(digits);
  return number;
}

std::optional<unsigned> TakeRest(std::string_view& text, int base) {
  return ParseNumber(std::exchange(text, {}), base);
}

std::optional<std::string> InDecimal(std::optional<unsigned> number) {
  if (!number) return std::nullopt;
  return std::to_string(*number);
}

struct Meaning {
  unsigned number;
  std::string_view words;
};

template <std::size_t N>
std::optional<std::string> Lookup(const std::array<Meaning, N>& meanings, std::optional<unsigned> number) {
  const auto found = std::find_if(meanings.begin(), meanings.end(),
                                  [&](const Meaning& meaning) { return meaning.number == number; });
  if (found == meanings.end()) return std::nullopt;
  return std::string(found->words);
}

std::optional<unsigned> TakeDigit(std::string_view& text) {
  if (text.empty()) return std::nullopt;
  const std::optional<unsigned> number = ParseNumber(text.substr(0, 1), 10);
  text.remove_prefix(1);
  return number;
}

constexpr std::array<Meaning, 2> kSystems = {{{2, "24 V"}, {3, "12 V"}}};

constexpr std::array<Meaning, 7> kDelayTypes = {{
    {0, "delay from a low car battery to the power-off warning"},
    {1, "delay from a low car battery to the power being cut"},
    {2, "delay from the ignition going on to the computer starting"},
    {3, "delay from the ignition going off to the power-off warning"},
    {4, "delay from the ignition going off to the power being cut"},
    {6, "delay from the ignition going off to the power of a suspended computer being cut"},
    {7, "delay from the power-off warning to the power-off"},
}};

constexpr std::array<Meaning, 11> kWakeupCodes = {{
    {0x00, "none"},
    {0x10, "source 0"},
    {0x01, "source 1"},
    {0x02, "source 1"},
    {0x03, "source 1"},
    {0x60, "source 2"},
    {0x50, "source 3"},
    {0x20, "source 4"},
    {0x21, "source 5"},
    {0x30, "the clock's alarm"},
    {0x40, "source 10"},
}};

// One byte of the alarm: binary-coded decimal with its bits in reverse order. Bit 0 says whether the
// field must match the clock.
unsigned AlarmValue(unsigned byte) {
  constexpr std::array<unsigned, 8> kWeights = {0, 40, 20, 10, 8, 4, 2, 1};
  unsigned value = 0;
  for (std::size_t bit = 1; bit < kWeights.size(); ++bit) {
    if ((byte >> bit & 1U) != 0) value += kWeights[bit];
  }
  return value;
}

bool AlarmMatches(unsigned byte) {
  return (byte & 1U) != 0;
}

template <std::size_t N>
std::optional<std::array<unsigned, N>> TakeBytes(std::string_view& text) {
  std::array<unsigned, N> bytes{};
  for (unsigned& byte : bytes) {
    const std::optional<unsigned> taken = TakeHex(text, 2);
    if (!taken) return std::nullopt;
    byte = *taken;
  }
  return bytes;
}

std::string JoinNumbers(const std::vector<std::size_t>& numbers) {
  return numbers.empty() ? "none" : fmt::format("{}", fmt::join(numbers, ", "));
}

}  // namespace

std::optional<std::vector<std::string>> ReadFields(std::string_view text,
                                                   const std::vector<FieldReader>& readers) {
  std::vector<std::string> fields;
  for (const FieldReader read : readers) {
    std::optional<std::string> field = read(text);
    if (!field) return std::nullopt;
    fields.push_back(std::move(*field));
  }
  if (!text.empty()) return std::nullopt;
  return fields;
}

std::optional<std::string> ReadHex2(std::string_view& text) {
  return InDecimal(TakeHex(text, 2));
}

std::optional<std::string> ReadHex4(std::string_view& text) {
  return InDecimal(TakeHex(text, 4));
}

std::optional<std::string> ReadSigned16(std::string_view& text) {
  const std::optional<unsigned> number = TakeHex(text, 4);
  if (!number) return std::nullopt;
  return std::to_string(static_cast<std::int16_t>(*number));
}

std::optional<std::string> ReadHexNumber(std::string_view& text) {
  return InDecimal(TakeRest(text, 16));
}

std::optional<std::string> ReadDecimalNumber(std::string_view& text) {
  return InDecimal(TakeRest(text, 10));
}

std::optional<std::string> ReadText(std::string_view& text) {
  return std::string(std::exchange(text, {}));
}

std::optional<std::string> ReadCharacter(std::string_view& text) {
  if (text.empty()) return std::nullopt;
  std::string character(text.substr(0, 1));
  text.remove_prefix(1);
  return character;
}

std::optional<std::string> ReadSwitch(std::string_view& text) {
  constexpr std::array<Meaning, 2> kPositions = {{{0, "off"}, {1, "on"}}};
  return Lookup(kPositions, TakeDigit(text));
}

std::optional<std::string> ReadProtection(std::string_view& text) {
  constexpr std::array<Meaning, 2> kProtections = {{{0, "pre-boot"}, {1, "low-battery"}}};
  return Lookup(kProtections, TakeDigit(text));
}

std::optional<std::string> ReadSystem(std::string_view& text) {
  return Lookup(kSystems, TakeDigit(text));
}

std::optional<std::string> ReadDelayType(std::string_view& text) {
  return Lookup(kDelayTypes, TakeDigit(text));
}

std::optional<std::string> ReadSystemByte(std::string_view& text) {
  return Lookup(kSystems, TakeHex(text, 2));
}

// The last character is the switch, all before it the number.
std::optional<std::string> ReadWakeupSource(std::string_view& text) {
  if (text.size() < 2) return std::nullopt;
  const std::optional<unsigned> source = ParseNumber(text.substr(0, text.size() - 1), 10);
  text.remove_prefix(text.size() - 1);
  if (source == 6) return "6 (the clock's alarm)";
  return InDecimal(source);
}

std::optional<std::string> ReadWakeupCode(std::string_view& text) {
  return Lookup(kWakeupCodes, TakeRest(text, 16));
}

std::optional<std::string> ReadSourceMask(std::string_view& text) {
  const std::string_view mask = std::exchange(text, {});
  if (mask.empty() || mask.find_first_not_of("01") != std::string_view::npos) return std::nullopt;
  std::vector<std::size_t> sources;
  for (std::size_t source = 0; source < mask.size(); ++source) {
    if (mask[source] == '1') sources.push_back(source);
  }
  return JoinNumbers(sources);
}

std::optional<std::string> ReadIgnition(std::string_view& text) {
  const std::string_view answer = std::exchange(text, {});
  if (answer.substr(0, 2) == "ON") return "on";
  if (answer.substr(0, 2) == "OF") return "off";
  return std::nullopt;
}

std::optional<std::string> ReadClockTime(std::string_view& text) {
  const std::optional<std::array<unsigned, 7>> fields = TakeBytes<7>(text);
  if (!fields) return std::nullopt;
  const auto [year, month, day, weekday, hour, minute, second] = *fields;
  return fmt::format("20{:02}-{:02}-{:02} (weekday {}) {:02}:{:02}:{:02}", year, month, day, weekday, hour,
                     minute, second);
}

std::optional<std::string> ReadAlarmTime(std::string_view& text) {
  const std::optional<std::array<unsigned, 3>> fields = TakeBytes<3>(text);
  if (!fields) return std::nullopt;
  const auto [weekday, hour, minute] = *fields;
  // Bit 1 of the hour is the afternoon, not a ten.
  constexpr unsigned kAfternoonBit = 2;
  const std::string time = fmt::format("{:02}:{:02}", AlarmValue(hour & ~kAfternoonBit), AlarmValue(minute));
  if (AlarmMatches(weekday)) return fmt::format("every week on weekday {} at {}", AlarmValue(weekday), time);
  if (AlarmMatches(hour)) return "every day at " + time;
  if (AlarmMatches(minute)) return fmt::format("every hour at minute {}", AlarmValue(minute));
  return "never (" + time + ")";
}

std::optional<std::string> ReadMillivolts(std::string_view& text) {
  const std::optional<unsigned> millivolts = TakeRest(text, 16);
  if (!millivolts) return std::nullopt;
  return fmt::format("{:.3f} V", *millivolts / 1000.0);
}

std::optional<std::string> ReadTenthsOfKelvin(std::string_view& text) {
  const std::optional<unsigned> tenths = TakeRest(text, 16);
  if (!tenths) return std::nullopt;
  return fmt::format("{:.2f} degrees Celsius", *tenths / 10.0 - 273.15);
}

std::optional<std::string> ReadStatusBits(std::string_view& text) {
  const std::optional<unsigned> word = TakeRest(text, 2);
  if (!word) return std::nullopt;
  std::vector<std::size_t> bits;
  for (std::size_t bit = 0; bit < 16; ++bit) {
    if ((*word >> bit & 1U) != 0) bits.push_back(bit);
  }
  return JoinNumbers(bits);
}

}  // namespace rolu_sim
