#include "simulator/trace/wire_words.h"

#include <fmt/args.h>
#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <optional>
#include <vector>

#include "simulator/trace/wire_field.h"

namespace rolu_sim {
namespace {

// One command: its code, what it and its answer say ({} stands for the fields in their order, {0}
// and so on for any other order), and the fields of both. A setting has no words for its answer,
// which is "OK".
struct CommandWords {
  std::string_view code;
  std::string_view command;
  std::vector<FieldReader> fields;
  std::string_view answer;
  std::vector<FieldReader> answer_fields;
  std::size_t answer_lines = 1;
};

const std::vector<CommandWords>& Table() {
  static const std::vector<CommandWords> table = {
      {"Hello", "greet the MCU", {}, "", {}},
      {"ATF0", "read the firmware version", {}, "firmware {}", {ReadText}},
      {"ATF1", "read the platform's name", {}, "platform {}", {ReadText}},
      {"ATPO", "power off now", {}, "", {}},
      {"EEDF", "restore the MCU's default settings", {}, "", {}},

      {"MCVG", "measure the car battery's voltage", {}, "{} units", {ReadHex4}},
      {"MCVU", "read the volts per unit of the {} system", {ReadSystem}, "{} V per unit", {ReadText}},
      {"MCPR",
       "read the threshold range of the {} system",
       {ReadSystem},
       "from {0} to {2} units, {1} in the middle",
       {ReadHex4, ReadHex4, ReadHex4}},
      {"MCBG", "read the battery mode", {}, "{} system", {ReadSystemByte}},
      {"MCBS", "set the battery mode to the {} system", {ReadSystemByte}, "", {}},
      {"MCCG",
       "read which protections are on",
       {},
       "pre-boot protection {}, low-battery protection {}",
       {ReadSwitch, ReadSwitch}},
      {"MCCS",
       "switch the pre-boot protection {} and the low-battery protection {}",
       {ReadSwitch, ReadSwitch},
       "",
       {}},
      {"MCPG",
       "read the {1} threshold of the {0} system",
       {ReadSystem, ReadProtection},
       "{} units",
       {ReadHex4}},
      {"MCPS",
       "set the {1} threshold of the {0} system to {2} units",
       {ReadSystem, ReadProtection, ReadHex4},
       "",
       {}},

      {"MCUG", "read the {}", {ReadDelayType}, "{}, in the MCU's unit", {ReadHexNumber}},
      {"MCUS", "set the {} to {}, in the MCU's unit", {ReadDelayType, ReadHex4}, "", {}},
      {"MSDG", "read the delay of the forced shutdown", {}, "{}, in the MCU's unit", {ReadHexNumber}},
      {"MSDS", "set the delay of the forced shutdown to {}, in the MCU's unit", {ReadHex4}, "", {}},
      {"MSSG", "read whether the forced shutdown is on", {}, "forced shutdown {}", {ReadSwitch}},
      {"MSSS", "switch the forced shutdown {}", {ReadSwitch}, "", {}},

      {"IGNG", "read the ignition", {}, "ignition {}", {ReadIgnition}},
      {"IGMG", "read the ignition mode", {}, "mode {}", {ReadCharacter}},
      {"IGMS", "set the ignition mode to {}", {ReadCharacter}, "", {}},
      {"MPAG", "read whether the power-off alarm is on", {}, "power-off alarm {}", {ReadSwitch}},
      {"MPAS", "switch the power-off alarm {}", {ReadSwitch}, "", {}},
      {"MCAG",
       "read the keep-alive mode and the AT mode",
       {},
       "keep-alive mode {}, AT mode {}",
       {ReadCharacter, ReadCharacter}},
      {"MCAS",
       "set the keep-alive mode to {} and the AT mode to {}",
       {ReadCharacter, ReadDecimalNumber},
       "",
       {}},

      {"SDMG", "read the shutdown sources", {}, "switched on: {}", {ReadSourceMask}},
      {"SDMS", "switch shutdown source {} {}", {ReadCharacter, ReadSwitch}, "", {}},
      {"WKMG", "read the wake-up sources", {}, "switched on: {}", {ReadSourceMask}},
      {"WKMS", "switch wake-up source {} {}", {ReadWakeupSource, ReadSwitch}, "", {}},
      {"WKSG", "read what woke the computer last", {}, "woken by: {}", {ReadWakeupCode}},

      {"RTCG", "read the clock", {}, "{}", {ReadClockTime}},
      {"RTCS", "set the clock to {}", {ReadClockTime}, "", {}, 2},
      {"RTAG", "read the wake-up alarm", {}, "{}", {ReadAlarmTime}},
      {"RTAS", "set the wake-up alarm to {}", {ReadAlarmTime}, "", {}},

      {"B03", "read the backup battery's temperature", {}, "{}", {ReadTenthsOfKelvin}},
      {"B04", "read the backup battery's voltage", {}, "{}", {ReadMillivolts}},
      {"B05", "read the backup battery's status bits", {}, "bits set: {}", {ReadStatusBits}},
      {"B08", "read the backup battery's remaining capacity", {}, "{}", {ReadHexNumber}},
      {"B09", "read the backup battery's information value", {}, "{}", {ReadHexNumber}},
      {"B11", "read the backup battery's remaining time", {}, "{}", {ReadHexNumber}},
      {"B12", "read the backup battery's time to full", {}, "{}", {ReadHexNumber}},
      {"B22", "read the backup battery's charge", {}, "{} %", {ReadHexNumber}},

      {"WDTE", "switch the watchdog on", {}, "", {}},
      {"WDTD", "switch the watchdog off", {}, "", {}},
      {"WDTR", "trigger the watchdog", {}, "", {}},
      {"WDTG", "read the watchdog's time", {}, "{}, in the MCU's unit", {ReadHexNumber}},
      {"WDTS", "set the watchdog's time to {}, in the MCU's unit", {ReadHex4}, "", {}},

      {"GSO", "switch the G-sensor on", {}, "", {}},
      {"GSF", "switch the G-sensor off", {}, "", {}},
      {"GSV",
       "read a G-sensor sample",
       {},
       "status {}, x {}, y {}, z {}",
       {ReadCharacter, ReadSigned16, ReadSigned16, ReadSigned16}},
      {"GSRG", "read the G-sensor's resolution code", {}, "code {}", {ReadHex2}},
      {"GSRS", "set the G-sensor's resolution code to {}", {ReadHex2}, "", {}},
      {"GSIG", "read the G-sensor's alarm threshold", {}, "{} steps of 62.5", {ReadHex2}},
      {"GSIS", "set the G-sensor's alarm threshold to {} steps of 62.5", {ReadHex2}, "", {}},
      {"GSWG", "read the G-sensor's wake-up threshold", {}, "{} steps of 62.5", {ReadHex2}},
      {"GSWS", "set the G-sensor's wake-up threshold to {} steps of 62.5", {ReadHex2}, "", {}},
      {"ARGI0", "switch the G-sensor alarm {}", {ReadSwitch}, "", {}},

      {"MCG", "read the MCU's peripheral switch", {}, "switch {}", {ReadSwitch}},
      {"MCS0", "set the MCU's peripheral switch to {}", {ReadDecimalNumber}, "", {}},
  };
  return table;
}

// The longest code wins, as it does at the MCU.
const CommandWords* FindCommand(std::string_view line) {
  const CommandWords* found = nullptr;
  for (const CommandWords& entry : Table()) {
    if (line.substr(0, entry.code.size()) != entry.code) continue;
    if (found == nullptr || entry.code.size() > found->code.size()) found = &entry;
  }
  return found;
}

std::string Fill(std::string_view words, const std::vector<std::string>& fields) {
  fmt::dynamic_format_arg_store<fmt::format_context> arguments;
  for (const std::string& field : fields) arguments.push_back(field);
  return fmt::vformat(words, arguments);
}

constexpr std::string_view kErrorPrefix = "ERR-";

std::string OfError(std::string_view line) {
  const std::size_t at = line.find(kErrorPrefix);
  const std::string_view code = line.substr(at, kErrorPrefix.size() + 3);
  if (code == "ERR-M08") return "refused: a parameter is out of its range";
  if (code == "ERR-C01") return "refused: the MCU does not know the command";
  return fmt::format("refused: the MCU answers with the error {}", code);
}

std::string OfMessage(std::string_view line) {
  constexpr std::string_view kSample = "[GI:";
  if (line.substr(0, kSample.size()) == kSample) {
    const std::string_view digits = line.substr(kSample.size(), 12);
    const auto fields = ReadFields(digits, {ReadSigned16, ReadSigned16, ReadSigned16});
    if (!fields) return "a G-sensor alarm sample that is cut short";
    return Fill("G-sensor alarm: x {}, y {}, z {}", *fields);
  }
  constexpr std::size_t kClassAndKind = 5;
  const std::string_view head = line.substr(0, kClassAndKind);
  if (head == "[0000") return "warning: the power goes off, the ignition is off";
  if (head == "[0001") return "warning: the power goes off, the car battery is low";
  return "a message that nobody asked for";
}

}  // namespace

bool IsBracketedMessage(std::string_view line) {
  return !line.empty() && (line.front() == '[' || line.back() == ']');
}

std::string WireWords::OfCommand(std::string_view line) {
  const CommandWords* const known = FindCommand(line);
  pending_ = line;
  answers_due_ = known == nullptr ? 1 : known->answer_lines;
  if (known == nullptr) return "a command that is not known";
  const auto fields = ReadFields(line.substr(known->code.size()), known->fields);
  if (!fields) return fmt::format("{} with fields that do not fit", known->code);
  return Fill(known->command, *fields);
}

std::string WireWords::OfAnswer(std::string_view line) {
  if (IsBracketedMessage(line)) return OfMessage(line);
  if (answers_due_ == 0) return "a line that no command waits for";
  --answers_due_;
  if (line.find(kErrorPrefix) != std::string_view::npos) return OfError(line);
  if (line == "OK") return "done";
  const CommandWords* const known = FindCommand(pending_);
  if (known == nullptr || known->answer.empty()) return fmt::format("an answer to {}", pending_);
  const auto fields = ReadFields(line, known->answer_fields);
  if (!fields) return fmt::format("an answer to {} that does not fit", known->code);
  return Fill(known->answer, *fields);
}

}  // namespace rolu_sim
