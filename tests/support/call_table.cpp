#include "tests/support/call_table.h"

#include <algorithm>
#include <chrono>
#include <cstdio>

namespace rolu_test {
namespace {

using rolu_sim::CommandMatch;
using rolu_sim::Direction;
using rolu_sim::WireEvent;
using std::chrono::steady_clock;

// The memory that a call is given: room for any result, filled so that a byte that was written
// shows, and so does one too many.
constexpr unsigned char kUnwritten = 0xA5;
using OutputMemory = std::array<unsigned char, 96>;

std::string Hexadecimal(unsigned int value, int digits) {
  char text[16];
  snprintf(text, sizeof text, "%0*X", digits, value);
  return text;
}
std::string StatusText(ROLU_STATUS status) {
  return "0x" + Hexadecimal(status, 4);
}

// The written part in hexadecimal, at least `length` bytes.
std::string BytesText(const OutputMemory& memory, size_t length) {
  const auto last =
      std::find_if(memory.rbegin(), memory.rend(), [](unsigned char byte) { return byte != kUnwritten; });
  const auto end = std::max(memory.begin() + static_cast<std::ptrdiff_t>(length), last.base());
  std::string text;
  for (auto byte = memory.begin(); byte < end; ++byte) text += Hexadecimal(*byte, 2) + " ";
  return text;
}

std::vector<std::string> CommandsOf(const std::string& wire) {
  std::vector<std::string> commands;
  for (size_t start = 0; start < wire.size();) {
    const size_t end = wire.find('\r', start) + 1;
    commands.push_back(wire.substr(start, end - start));
    start = end;
  }
  return commands;
}

}  // namespace

CallRow Orders(std::string name, Call call, std::vector<Answer> answers, std::string wire,
               int post_delay_ms) {
  return {std::move(name), std::move(call), std::move(answers), ROLU_STATUS_SUCCESS, {},
          std::move(wire), post_delay_ms};
}

CallRow Gives(std::string name, Call call, std::vector<Answer> answers, Bytes output, std::string wire) {
  return {std::move(name),     std::move(call),   std::move(answers),
          ROLU_STATUS_SUCCESS, std::move(output), std::move(wire)};
}

CallRow Fails(std::string name, Call call, std::vector<Answer> answers, ROLU_STATUS status,
              std::string wire) {
  return {std::move(name), std::move(call), std::move(answers), status, {}, std::move(wire)};
}

Bytes Characters(std::string_view text, size_t size) {
  Bytes bytes(text.begin(), text.end());
  bytes.resize(size);
  return bytes;
}

std::vector<CallRow> Refused(const std::vector<CallRow>& operations, ROLU_STATUS status) {
  std::vector<CallRow> rows;
  for (const CallRow& operation : operations) {
    rows.push_back(Fails(operation.name + ", refused", operation.call, {}, status));
  }
  return rows;
}

std::vector<CallRow> RefusedForNullOutput(const std::vector<CallRow>& operations, ROLU_STATUS status) {
  std::vector<CallRow> rows;
  for (const CallRow& operation : operations) {
    if (operation.output.empty()) continue;
    rows.push_back(Fails(operation.name + ", null output", operation.call, {}, status));
    rows.back().output_is_null = true;
  }
  return rows;
}

std::vector<CallRow> WithErrorReplies(const std::vector<CallRow>& operations) {
  struct ErrorReply {
    const char* line;
    ROLU_STATUS status;
  };
  constexpr ErrorReply kErrorReplies[] = {{"ERR-M08", ROLU_STATUS_INVALID_PARAMETER},
                                          {"1ERR-W02.", ROLU_STATUS_VPM_ERROR_REPLY}};
  std::vector<CallRow> rows;
  for (const CallRow& operation : operations) {
    std::vector<Answer> answers;
    std::string wire;
    for (const std::string& command : CommandsOf(operation.wire)) {
      wire += command;
      for (const ErrorReply& error : kErrorReplies) {
        std::vector<Answer> with_error = answers;
        with_error.emplace_back(error.line);
        const std::string name = operation.name + ", " + error.line + " to " + command;
        rows.push_back(Fails(name, operation.call, with_error, error.status, wire));
      }
      answers.push_back(operation.answers.at(answers.size()));
    }
  }
  return rows;
}

CallTableTest::CallTableTest(Family family) : family_(std::move(family)) {
  board_.AttachThisProcess();
}

void CallTableTest::TearDown() {
  family_.deinitialize();
}

void CallTableTest::BringUp() {
  ASSERT_EQ(StatusText(family_.initialize()), StatusText(ROLU_STATUS_SUCCESS));
}

void CallTableTest::Prepare(const CallRow& row) {
  board_.mcu().Log().Clear();
  board_.mcu().ClearScript();
  for (const Answer& answer : row.answers) board_.mcu().Script(CommandMatch::Any(), answer.reply);
}

std::string CallTableTest::Traffic() {
  std::string bytes;
  for (const WireEvent& chunk : board_.mcu().Log().Chunks()) {
    if (chunk.direction == Direction::kToMcu) bytes += chunk.bytes;
  }
  return bytes;
}

void CallTableTest::Run(const std::vector<CallRow>& rows) {
  ASSERT_FALSE(rows.empty());
  for (const CallRow& row : rows) RunRow(row);
}

void CallTableTest::RunRow(const CallRow& row) {
  SCOPED_TRACE("row: " + row.name);
  Prepare(row);
  alignas(std::max_align_t) OutputMemory output;
  output.fill(kUnwritten);
  OutputMemory expected = output;
  ASSERT_LT(row.output.size(), expected.size());
  std::copy(row.output.begin(), row.output.end(), expected.begin());

  const steady_clock::time_point start = steady_clock::now();
  const ROLU_STATUS status = row.call(row.output_is_null ? nullptr : output.data());
  const auto duration = std::chrono::duration_cast<std::chrono::milliseconds>(steady_clock::now() - start);

  EXPECT_EQ(StatusText(status), StatusText(row.status));
  EXPECT_EQ(BytesText(output, row.output.size()), BytesText(expected, row.output.size()));
  EXPECT_EQ(Traffic(), row.wire);
  EXPECT_GE(duration.count(), row.post_delay_ms);
}

void CallTableTest::RunLifecycle(const std::string& start_up_wire) {
  const auto initialize = [this](void*) { return family_.initialize(); };
  const auto deinitialize = [this](void*) { return family_.deinitialize(); };
  board_.RemoveSerialDevice();
  Run({Fails("down before up", deinitialize, {}, ROLU_STATUS_NOT_INITIALIZED),
       Fails("up without a port", initialize, {}, ROLU_STATUS_VPM_OPEN_FAILED),
       Fails("down after a failed up", deinitialize, {}, ROLU_STATUS_NOT_INITIALIZED)});
  board_.RestoreSerialDevice();
  for (const char* round : {"first", "second"}) {
    SCOPED_TRACE(round);
    Run({Orders("up", initialize, {}, start_up_wire, 0),
         Fails("up while up", initialize, {}, ROLU_STATUS_ALREADY_INITIALIZED),
         Orders("down", deinitialize, {}, "", 0),
         Fails("down while down", deinitialize, {}, ROLU_STATUS_NOT_INITIALIZED)});
    EXPECT_TRUE(board_.mcu().WaitForHostClosed(std::chrono::seconds(20)));
  }
}

}  // namespace rolu_test
