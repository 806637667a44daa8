// The one table of the MCU's commands: the fields of a command, the MCU's answer, and the words for both.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace rolu_protocol {

// A part of a command behind its code, or a part of an answer line.
enum Field : std::uint8_t {
  kNone,
  // These have a fixed width.
  kDone,        // "OK"
  kByte,        // 2 hexadecimal digits
  kWord,        // 4 hexadecimal digits
  kSigned,      // 4 hexadecimal digits, the two's complement
  kDigit,       // a decimal digit
  kCharacter,   // any
  kSwitch,      // '1' is on, '0' is off
  kSwitchByte,  // the same as 2 hexadecimal digits
  kSwitchNumber,
  kProtection,
  kSystem,      // the number of a battery system
  kSystemByte,  // the same number as 2 hexadecimal digits
  kDelayType,
  kClock,  // 7 bytes: year, month, day, weekday, hour, minute, second
  kAlarm,  // 3 bytes: weekday, hour, minute; see AlarmTime
  // These are as wide as the rest of the line allows; a line has at most one of them.
  kDecimal,
  kWakeupSource,
  kNumber,  // hexadecimal
  kWakeupCode,
  kMillivolts,
  kTenthsOfKelvin,
  kStatusBits,  // the highest bit first
  kSwitches,    // one character for each switch, beginning with number 0
  kIgnition,
  kText,
};

// Unused places hold kNone.
using Fields = std::array<Field, 4>;

struct Command {
  std::string_view code;
  std::string_view words;  // {} stands for the fields in their order, {1} for the second one
  Fields fields;
  std::string_view answer_words;
  Fields answer_fields;  // of the last line
  bool is_question;      // the command changes nothing
  int answer_lines = 1;
  int post_delay_ms = 0;                 // how long to leave the MCU alone after the answer
  std::string_view factory_answer = {};  // for a question whose answer never changes
};

constexpr Command Question(std::string_view code, std::string_view words, Fields fields,
                           std::string_view answer_words, Fields answer_fields,
                           std::string_view factory_answer = {}) {
  return {code, words, fields, answer_words, answer_fields, true, 1, 0, factory_answer};
}

constexpr Command Order(std::string_view code, std::string_view words, Fields fields, int post_delay_ms,
                        int answer_lines = 1) {
  return {code, words, fields, "{}", {kDone}, false, answer_lines, post_delay_ms};
}

inline constexpr int kUsualDelayMs = 50;

inline constexpr Command kCommands[] = {
    Question("Hello", "greet the MCU", {}, "{}", {kDone}, "OK"),
    // "*VER:" major "." minor "*", three columns each; five characters and the twelve of the name.
    Question("ATF0", "read the firmware version", {}, "firmware {}", {kText}, "*VER:  1. 26*"),
    Question("ATF1", "read the platform's name", {}, "platform {}", {kText}, "*PLT:KAVO-ROLU-30*"),
    Order("ATPO", "power off now", {}, 0),
    Order("EEDF", "restore the MCU's default settings", {}, 1250),

    Question("MCVG", "measure the car battery's voltage", {}, "{} units", {kWord}),
    Question("MCVU", "read the volts per unit of the {} system", {kSystem}, "{} V per unit", {kText}),
    Question("MCPR", "read the threshold range of the {} system", {kSystem},
             "from {0} to {2} units, {1} in the middle", {kWord, kWord, kWord}),
    Question("MCBG", "read the battery mode", {}, "{} system", {kSystemByte}),
    Order("MCBS", "set the battery mode to the {} system", {kSystemByte}, kUsualDelayMs),
    Question("MCCG", "read which protections are on", {}, "pre-boot protection {}, low-battery protection {}",
             {kSwitch, kSwitch}),
    Order("MCCS", "switch the pre-boot protection {} and the low-battery protection {}", {kSwitch, kSwitch},
          kUsualDelayMs),
    Question("MCPG", "read the {1} threshold of the {0} system", {kSystem, kProtection}, "{} units", {kWord}),
    Order("MCPS", "set the {1} threshold of the {0} system to {2} units", {kSystem, kProtection, kWord},
          kUsualDelayMs),

    Question("MCUG", "read the {}", {kDelayType}, "{} MCU units", {kNumber}),
    Order("MCUS", "set the {} to {} MCU units", {kDelayType, kWord}, kUsualDelayMs),
    Question("MSDG", "read the delay of the forced shutdown", {}, "{} MCU units", {kNumber}),
    Order("MSDS", "set the delay of the forced shutdown to {} MCU units", {kWord}, kUsualDelayMs),
    Question("MSSG", "read whether the forced shutdown is on", {}, "forced shutdown {}", {kSwitch}),
    Order("MSSS", "switch the forced shutdown {}", {kSwitch}, kUsualDelayMs),

    Question("IGNG", "read the ignition", {}, "ignition {}", {kIgnition}),
    Question("IGMG", "read the ignition mode", {}, "mode {}", {kCharacter}),
    Order("IGMS", "set the ignition mode to {}", {kDigit}, kUsualDelayMs),
    Question("MPAG", "read whether the power-off alarm is on", {}, "power-off alarm {}", {kSwitch}),
    Order("MPAS", "switch the power-off alarm {}", {kSwitch}, kUsualDelayMs),
    Question("MCAG", "read the keep-alive mode and the AT mode", {}, "keep-alive mode {}, AT mode {}",
             {kCharacter, kCharacter}),
    Order("MCAS", "set the keep-alive mode to {} and the AT mode to {}", {kDigit, kDecimal}, kUsualDelayMs),

    Question("SDMG", "read the shutdown sources", {}, "switched on: {}", {kSwitches}),
    Order("SDMS", "switch shutdown source {} {}", {kDigit, kSwitch}, kUsualDelayMs),
    Question("WKMG", "read the wake-up sources", {}, "switched on: {}", {kSwitches}),
    Order("WKMS", "switch wake-up source {} {}", {kWakeupSource, kSwitch}, kUsualDelayMs),
    Question("WKSG", "read what woke the computer last", {}, "woken by: {}", {kWakeupCode}),

    Question("RTCG", "read the clock", {}, "{}", {kClock}),
    Order("RTCS", "set the clock to {}", {kClock}, kUsualDelayMs, 2),
    Question("RTAG", "read the wake-up alarm", {}, "{}", {kAlarm}),
    Order("RTAS", "set the wake-up alarm to {}", {kAlarm}, 150),

    Question("B03", "read the backup battery's temperature", {}, "{}", {kTenthsOfKelvin}),
    Question("B04", "read the backup battery's voltage", {}, "{}", {kMillivolts}),
    Question("B05", "read the backup battery's status bits", {}, "bits set: {}", {kStatusBits}),
    Question("B08", "read the backup battery's remaining capacity", {}, "{}", {kNumber}),
    Question("B09", "read the backup battery's information value", {}, "{}", {kNumber}),
    Question("B11", "read the backup battery's remaining time", {}, "{}", {kNumber}),
    Question("B12", "read the backup battery's time to full", {}, "{}", {kNumber}),
    Question("B22", "read the backup battery's charge", {}, "{} %", {kNumber}),

    Order("WDTE", "switch the watchdog on", {}, 0),
    Order("WDTD", "switch the watchdog off", {}, 0),
    Order("WDTR", "trigger the watchdog", {}, 0),
    Question("WDTG", "read the watchdog's time", {}, "{} MCU units", {kNumber}),
    Order("WDTS", "set the watchdog's time to {} MCU units", {kWord}, kUsualDelayMs),

    Order("GSO", "switch the G-sensor on", {}, 0),
    Order("GSF", "switch the G-sensor off", {}, 0),
    Question("GSV", "read a G-sensor sample", {}, "status {}, x {}, y {}, z {}",
             {kCharacter, kSigned, kSigned, kSigned}),
    Question("GSRG", "read the G-sensor's resolution code", {}, "code {}", {kByte}),
    Order("GSRS", "set the G-sensor's resolution code to {}", {kByte}, kUsualDelayMs),
    Order("ARGI", "switch the G-sensor alarm {}", {kSwitchByte}, 0),
    Question("GSIG", "read the G-sensor's alarm threshold", {}, "{} steps of 62.5", {kByte}),
    Order("GSIS", "set the G-sensor's alarm threshold to {} steps of 62.5", {kByte}, kUsualDelayMs),
    Question("GSWG", "read the G-sensor's wake-up threshold", {}, "{} steps of 62.5", {kByte}),
    Order("GSWS", "set the G-sensor's wake-up threshold to {} steps of 62.5", {kByte}, kUsualDelayMs),

    Question("MCG", "read the MCU's peripheral switch", {}, "switch {}", {kSwitch}),
    Order("MCS", "set the MCU's peripheral switch to {1}", {kSwitchNumber, kDecimal}, 500),
};

// The index of a command in the table. In a constant expression an unknown code does not compile, so a
// `switch` over commands cannot name a command that does not exist.
constexpr std::size_t IndexOf(std::string_view code) {
  std::size_t index = 0;
  for (const Command& command : kCommands) {
    if (command.code == code) return index;
    ++index;
  }
  throw "no command has this code";
}

inline std::size_t IndexOf(const Command& command) {
  return static_cast<std::size_t>(&command - kCommands);
}

// The command with the longest code that the line begins with: one code may begin with another. Null when
// there is none.
const Command* FindCommand(std::string_view line);

struct Value {
  std::string_view text;     // as it is on the wire
  std::uint64_t number = 0;  // for a field with a number
  std::string words;         // in words
};
using Values = std::array<Value, std::tuple_size_v<Fields>>;

// Reads the fields of a text; they must fill the whole text. Nothing when a field is malformed or has no
// meaning. Whether the MCU accepts a value, for example a delay, is for the MCU to decide.
std::optional<Values> ParseFields(std::string_view text, const Fields& fields);

// Reads the fields behind a command's code. The MCU knows upper-case digits only.
std::optional<Values> ParseCommandFields(std::string_view line, const Command& command);

}  // namespace rolu_protocol
