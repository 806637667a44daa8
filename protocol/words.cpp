#include "protocol/words.h"

#include <fmt/args.h>
#include <fmt/format.h>

#include "protocol/commands.h"
#include "protocol/values.h"

namespace rolu_protocol {
namespace {

constexpr std::string_view kErrorPrefix = "ERR-";

std::string Fill(std::string_view words, const Values& values) {
  fmt::dynamic_format_arg_store<fmt::format_context> arguments;
  for (const Value& value : values) arguments.push_back(value.words);
  return fmt::vformat(words, arguments);
}

std::string ErrorText(std::string_view line) {
  const std::string_view code = line.substr(line.find(kErrorPrefix), kErrorPrefix.size() + 3);
  if (code == kRefusedParameterReply) return "refused: a parameter is out of its range";
  if (code == kUnknownCommandReply) return "refused: the MCU does not know the command";
  return fmt::format("refused: the MCU answers with the error {}", code);
}

std::string MessageText(std::string_view line) {
  if (line.starts_with(kAlarmMessage)) {
    const auto sample = ParseFields(line.substr(kAlarmMessage.size(), 12), {kSigned, kSigned, kSigned});
    return sample ? Fill("G-sensor alarm: x {}, y {}, z {}", *sample)
                  : "a G-sensor alarm sample that is cut short";
  }
  if (line.starts_with(kIgnitionWarning.substr(0, 5))) {
    return "warning: the power goes off, the ignition is off";
  }
  if (line.starts_with(kLowBatteryWarning.substr(0, 5))) {
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
  return values ? Fill(known->words, *values) : fmt::format("{} with fields that do not fit", known->code);
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
  return values ? Fill(known->answer_words, *values)
                : fmt::format("an answer to {} that does not fit", known->code);
}

}  // namespace rolu_protocol
