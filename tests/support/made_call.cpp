#include "tests/support/made_call.h"

#include <algorithm>
#include <cstdio>

#include "tests/support/wire_model.h"

namespace rolu_test {
namespace {

constexpr unsigned char kUnwritten = 0xA5;

std::string Hexadecimal(unsigned int value, int digits) {
  char text[16];
  snprintf(text, sizeof text, "%0*X", digits, value);
  return text;
}

std::string Difference(const char* subject, const std::string& found, const std::string& wanted) {
  if (found == wanted) return "";
  return std::string(subject) + " is '" + found + "', not '" + wanted + "'; ";
}

std::string WireUpTo(const OddAnswer& answer) {
  const std::vector<std::string> commands = CommandsOf(answer.operation->wire);
  std::string wire;
  for (size_t i = 0; i <= answer.command; ++i) wire += commands[i];
  return wire;
}

Bytes OutputOfFailure(const OddAnswer& answer) {
  return answer.command > 0 ? answer.operation->first_output : Bytes{};
}

// The call made something of a line that is no answer of the MCU's.
std::string FaultOfInterpretation(const Made& made, const OddAnswer& answer) {
  const CallRow& row = *answer.operation;
  const bool is_order = row.output.empty() && answer.command + 1 == row.answers.size();
  if (is_order) return Difference("the wire", made.traffic, row.wire);
  const auto behind = made.output.begin() + static_cast<std::ptrdiff_t>(row.output.size());
  const bool too_much =
      std::any_of(behind, made.output.end(), [](unsigned char byte) { return byte != kUnwritten; });
  return too_much ? "written beyond the result: " + BytesText(made.output, row.output.size()) : "";
}

}  // namespace

std::string StatusText(ROLU_STATUS status) {
  return "0x" + Hexadecimal(status, 4);
}

std::string BytesText(const OutputMemory& memory, size_t length) {
  const auto last =
      std::find_if(memory.rbegin(), memory.rend(), [](unsigned char byte) { return byte != kUnwritten; });
  const auto end = std::max(memory.begin() + static_cast<std::ptrdiff_t>(length), last.base());
  std::string text;
  for (auto byte = memory.begin(); byte < end; ++byte) text += Hexadecimal(*byte, 2) + " ";
  return text;
}

OutputMemory MemoryWith(const Bytes& bytes) {
  OutputMemory memory;
  memory.fill(kUnwritten);
  std::copy_n(bytes.begin(), std::min(bytes.size(), memory.size()), memory.begin());
  return memory;
}

std::string BytesOf(const Answer& answer) {
  std::string bytes;
  for (const rolu_sim::ReplyChunk& chunk : answer.reply.chunks()) bytes += chunk.bytes;
  return bytes;
}

ROLU_STATUS OddAnswer::Status() const {
  const size_t wanted = ReplyLines(BytesOf(operation->answers[command])).size();
  const std::vector<std::string> lines = ReplyLines(sent);
  if (lines.size() < wanted) return ROLU_STATUS_VPM_NO_REPLY;
  return StatusOfReply(lines[wanted - 1]);
}

std::string FaultOf(const Made& made, ROLU_STATUS status, const Bytes& output, const std::string& wire) {
  return Difference("the status", StatusText(made.status), StatusText(status)) +
         Difference("the output", BytesText(made.output, output.size()),
                    BytesText(MemoryWith(output), output.size())) +
         Difference("the wire", made.traffic, wire);
}

std::string FaultOf(const Made& made, const OddAnswer& answer) {
  const CallRow& row = *answer.operation;
  const bool is_indifferent = std::count(row.indifferent.begin(), row.indifferent.end(), answer.command) != 0;
  if (!is_indifferent && answer.Status() != ROLU_STATUS_SUCCESS) {
    return FaultOf(made, answer.Status(), OutputOfFailure(answer), WireUpTo(answer));
  }

  const std::vector<std::string> healthy = ReplyLines(BytesOf(row.answers[answer.command]));
  if (is_indifferent || ReplyLines(answer.sent)[healthy.size() - 1] == healthy.back()) {
    return FaultOf(made, ROLU_STATUS_SUCCESS, row.output, row.wire);
  }
  if (made.status == ROLU_STATUS_SUCCESS) return FaultOfInterpretation(made, answer);
  return FaultOf(made, row.unreadable, OutputOfFailure(answer), WireUpTo(answer));
}

}  // namespace rolu_test
