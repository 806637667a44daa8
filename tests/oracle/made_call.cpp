#include "tests/oracle/made_call.h"

#include <algorithm>
#include <cstdio>

#include "tests/oracle/meaning.h"
#include "tests/oracle/plain_reading.h"

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

// The line that answers the command; nothing when the command gets no answer.
std::optional<std::string> ReplyOf(const OddAnswer& answer) {
  const size_t wanted = ReplyLines(BytesOf(answer.operation->answers[answer.command])).size();
  const std::vector<std::string> lines = ReplyLines(answer.sent);
  if (lines.size() < wanted) return std::nullopt;
  return lines[wanted - 1];
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

Made MakeCall(const Call& call) {
  Made made = {.output = MemoryWith({})};
  const auto start = std::chrono::steady_clock::now();
  made.status = call(made.output.data());
  made.duration =
      std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - start);
  return made;
}

void ScriptAnswers(rolu_sim::McuSerial& mcu, const CallRow& row) {
  mcu.Log().Clear();
  mcu.ClearScript();
  for (const Answer& answer : row.answers) mcu.Script(rolu_sim::CommandMatch::Any(), answer.reply);
}

std::string TrafficTo(rolu_sim::McuSerial& mcu) {
  std::string bytes;
  for (const rolu_sim::WireEvent& chunk : mcu.Log().Chunks()) {
    if (chunk.direction == rolu_sim::Direction::kToMcu) bytes += chunk.bytes;
  }
  return bytes;
}

std::string BytesOf(const Answer& answer) {
  std::string bytes;
  for (const rolu_sim::ReplyChunk& chunk : answer.reply.chunks()) bytes += chunk.bytes;
  return bytes;
}

ROLU_STATUS OddAnswer::Status() const {
  const std::optional<std::string> reply = ReplyOf(*this);
  if (!reply) return ROLU_STATUS_VPM_NO_REPLY;
  return StatusOfReply(*reply);
}

std::string FaultOf(const Made& made, const Ending& ending) {
  std::string wrong;
  if (made.status != ending.status) {
    wrong += Difference("the status", StatusText(made.status), StatusText(ending.status));
  }
  if (made.output != ending.output) {
    wrong += Difference("the output", BytesText(made.output, 0), BytesText(ending.output, 0));
  }
  return wrong + Difference("the wire", made.traffic, ending.wire);
}

std::string FaultOf(const Made& made, const OddAnswer& answer) {
  Replies replies = HealthyReplies(*answer.operation);
  replies[answer.command] = ReplyOf(answer);
  return FaultOf(made, MeaningOf(*answer.operation, replies));
}

std::string FaultOf(const Made& made, ROLU_STATUS status, const Bytes& output, const std::string& wire) {
  return FaultOf(made, Ending{status, MemoryWith(output), wire});
}

}  // namespace rolu_test
