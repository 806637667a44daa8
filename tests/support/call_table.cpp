#include "tests/support/call_table.h"

#include <chrono>

namespace rolu_test {
namespace {

using rolu_sim::CommandMatch;
using rolu_sim::Direction;
using rolu_sim::WireEvent;
using std::chrono::steady_clock;

}  // namespace

CallTable::CallTable(Family family) : family_(std::move(family)) {
  board_.AttachThisProcess();
}

void CallTable::BringUp() {
  ASSERT_EQ(StatusText(family_.initialize()), StatusText(ROLU_STATUS_SUCCESS));
}

void CallTable::Prepare(const CallRow& row) {
  board_.mcu().Log().Clear();
  board_.mcu().ClearScript();
  for (const Answer& answer : row.answers) board_.mcu().Script(CommandMatch::Any(), answer.reply);
}

std::string CallTable::Traffic() {
  std::string bytes;
  for (const WireEvent& chunk : board_.mcu().Log().Chunks()) {
    if (chunk.direction == Direction::kToMcu) bytes += chunk.bytes;
  }
  return bytes;
}

void CallTable::Run(const std::vector<CallRow>& rows) {
  ASSERT_FALSE(rows.empty());
  for (const CallRow& row : rows) RunRow(row);
}

Made CallTable::Make(const CallRow& row) {
  Prepare(row);
  alignas(std::max_align_t) OutputMemory output = MemoryWith({});
  const steady_clock::time_point start = steady_clock::now();
  const ROLU_STATUS status = row.call(row.output_is_null ? nullptr : output.data());
  const auto duration = std::chrono::duration_cast<std::chrono::milliseconds>(steady_clock::now() - start);
  Made made = {status, output, Traffic(), duration};
  if (row.undo && status == ROLU_STATUS_SUCCESS) {
    board_.mcu().ClearScript();
    EXPECT_EQ(StatusText(row.undo(nullptr)), StatusText(ROLU_STATUS_SUCCESS)) << row.name << ", undone";
  }
  return made;
}

void CallTable::RunRow(const CallRow& row) {
  SCOPED_TRACE("row: " + row.name);
  const Made made = Make(row);
  EXPECT_EQ(FaultOf(made, row.status, row.output, row.wire), "");
  EXPECT_GE(made.duration.count(), row.post_delay_ms);
}

}  // namespace rolu_test
