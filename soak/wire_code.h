// The commands that the soak brings about, and answers to them that nobody can mistake: each is drawn
// anew for each command, and each command belongs to one thread.
#ifndef SOAK_WIRE_CODE_H
#define SOAK_WIRE_CODE_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace rolu_soak {

enum class AnswerForm {
  kOk,
  kTwoOks,
  kWord,        // 16 bits: the number of the command's row and a running one
  kByte,        // 8 bits
  kResolution,  // 2 bits, as a byte
  kBit,
  kTwoBits,  // lowest first, as all lists of switches
  kElevenBits,
  kSixteenBits,  // highest first
  kTwoDigits,
  kOneOrTwo,
  kOnOrOff,
  kBatteryMode,
  kWakeupCode,  // an index into kWakeupCodes
  kClock,       // 7 bytes
  kAlarm,       // minute, hour and weekday, a byte each
  kSample,      // 3 words
  kPlatform,    // 12 digits
  kFirmware,
  kScale24V,
  kScale12V,
  kRange
};

// The MCU's codes of wake-ups, in the order of WAKEUP_SOURCE.
inline constexpr std::array<std::string_view, 9> kWakeupCodes = {"00", "10", "01", "60", "50",
                                                                 "20", "21", "30", "40"};

// Threads by what they own on the wire.
enum LaneNumber : std::size_t {
  kLaneDelays,
  kLaneModes,
  kLaneBattery,
  kLaneClock,
  kLaneWatchdog,
  kLaneSensor,
  kLaneThresholds,
  kLanePeripherals,
  kLanes
};
inline constexpr std::size_t kAnyLane = kLanes;

struct WireCode {
  std::string_view code;
  std::size_t lane;
  AnswerForm form;
  bool decides = true;      // whether its outcome is the call's
  bool distortable = true;  // whether a wrong answer spoils no later call
};

// Null when the soak brings no such command about.
const WireCode* FindWireCode(std::string_view command);

// The number that answers the command which is the `running`th of all.
std::uint64_t DrawNumber(const WireCode& code, std::uint64_t running);

// The answer line that carries the number.
std::string AnswerText(AnswerForm form, std::uint64_t number);

}  // namespace rolu_soak

#endif  // SOAK_WIRE_CODE_H
