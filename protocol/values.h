// The meaning of single values on the wire and at the board's devices.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>

namespace rolu_protocol {

inline constexpr std::string_view kDoneReply = "OK";
inline constexpr std::string_view kUnknownCommandReply = "ERR-C01";
inline constexpr std::string_view kRefusedParameterReply = "ERR-M08";
inline constexpr std::string_view kSensorOffReply = "ERR-G01";

inline constexpr std::array<std::string_view, 23> kErrorReplies = {
    "ERR-C01", "ERR-R01", "ERR-M01", "ERR-M02", "ERR-M03", "ERR-M04", "ERR-M06", "ERR-M08",
    "ERR-W01", "ERR-W02", "ERR-B01", "ERR-B02", "ERR-E01", "ERR-E02", "ERR-E03", "ERR-E04",
    "ERR-L01", "ERR-G01", "ERR-G02", "ERR-A01", "ERR-T01", "ERR-Q01", "ERR-Q02"};

// A message that no command asked for.
constexpr bool IsMessage(std::string_view line) {
  return !line.empty() && (line.front() == '[' || line.back() == ']');
}
inline constexpr std::string_view kAlarmMessage = "[GI:";  // a sample follows, and "]"
inline constexpr std::string_view kIgnitionWarning = "[0000]";
inline constexpr std::string_view kLowBatteryWarning = "[0001]";

// The sources that can wake the computer.
inline constexpr int kNoSource = -1;
inline constexpr int kAlarmSource = 6;          // the clock's alarm
inline constexpr unsigned kWakeupSources = 11;  // the numbers 7 to 9 are not sources
constexpr bool IsWakeupSource(std::uint64_t number) {
  return number < kWakeupSources && (number < 7 || number > 9);
}
struct WakeupCode {
  std::uint8_t code;
  int source;
};
inline constexpr std::array<WakeupCode, 11> kWakeupCodes = {{{0x00, kNoSource},
                                                             {0x10, 0},
                                                             {0x01, 1},
                                                             {0x02, 1},
                                                             {0x03, 1},
                                                             {0x60, 2},
                                                             {0x50, 3},
                                                             {0x20, 4},
                                                             {0x21, 5},
                                                             {0x30, kAlarmSource},
                                                             {0x40, 10}}};

// The code that the simulated MCU reports for a source.
constexpr std::uint8_t WakeupCodeOf(int source) {
  for (const WakeupCode& known : kWakeupCodes) {
    if (known.source == source) return known.code;
  }
  throw "no code stands for this source";
}

// The low-battery thresholds that the MCU accepts, in units of its readings.
struct ThresholdRange {
  std::uint16_t least;
  std::uint16_t middle;
  std::uint16_t most;
};

// The vehicle's electrical systems, each with its number on the wire.
struct BatterySystem {
  unsigned number;
  int volts;
  double volts_per_unit;
  std::string_view scale_text;  // as the MCU tells it
  ThresholdRange thresholds;
};
inline constexpr std::array<BatterySystem, 2> kBatterySystems = {
    {{2, 24, 0.01582, "0.01582", {0x052F, 0x05AE, 0x05ED}},
     {3, 12, 0.015385, "0.015385", {0x02AA, 0x02EB, 0x030C}}}};

inline constexpr double kZeroCelsiusInKelvin = 273.15;

// The wake-up alarm's time. The alarm comes when all fields that must match do match.
struct AlarmTime {
  std::uint8_t weekday = 0;
  std::uint8_t hour = 0;
  std::uint8_t minute = 0;
  bool match_weekday = false;
  bool match_hour = false;
  bool match_minute = false;
};

// Each of the three bytes is a binary-coded decimal with its bits in reverse order. Bit 0 says whether the
// field must match the clock. Bit 1 of the hour is the afternoon; it does not count as a digit's weight.
namespace alarm {
inline constexpr unsigned kMatch = 1;
inline constexpr unsigned kAfternoon = 2;

constexpr unsigned ValueOf(unsigned byte) {
  constexpr unsigned kWeights[] = {0, 40, 20, 10, 8, 4, 2, 1};
  unsigned value = 0;
  for (unsigned bit = 0; bit < 8; ++bit) {
    if ((byte >> bit & 1U) != 0) value += kWeights[bit];
  }
  return value;
}

constexpr unsigned ByteOf(unsigned value) {
  const unsigned decimal = value / 10 * 16 + value % 10;
  unsigned byte = 0;
  for (unsigned bit = 0; bit < 8; ++bit) byte |= (decimal >> bit & 1U) << (7U - bit);
  return byte;
}
}  // namespace alarm

// Reads the number of a kAlarm field.
constexpr AlarmTime AlarmTimeOf(std::uint64_t number) {
  const auto weekday = static_cast<unsigned>(number >> 16U & 0xFFU);
  const auto hour = static_cast<unsigned>(number >> 8U & 0xFFU);
  const auto minute = static_cast<unsigned>(number & 0xFFU);
  const auto value = [](unsigned byte) { return static_cast<std::uint8_t>(alarm::ValueOf(byte)); };
  return {value(weekday),
          value(hour & ~alarm::kAfternoon),
          value(minute),
          (weekday & alarm::kMatch) != 0,
          (hour & alarm::kMatch) != 0,
          (minute & alarm::kMatch) != 0};
}

constexpr std::uint64_t NumberOf(const AlarmTime& time) {
  const auto byte = [](unsigned value, bool match) {
    return alarm::ByteOf(value) | (match ? alarm::kMatch : 0U);
  };
  const unsigned afternoon = time.hour >= 12 ? alarm::kAfternoon : 0U;
  return byte(time.weekday, time.match_weekday) << 16U |
         (byte(time.hour, time.match_hour) | afternoon) << 8U | byte(time.minute, time.match_minute);
}

// The board's GPIO lines.
inline constexpr int kGpsPowerLine = 45;
inline constexpr std::array<int, 5> kGpioLines = {34, 35, 36, 37, kGpsPowerLine};

}  // namespace rolu_protocol
