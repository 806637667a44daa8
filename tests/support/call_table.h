// Runs tables of calls against a simulated board and checks each row.
#ifndef TESTS_SUPPORT_CALL_TABLE_H
#define TESTS_SUPPORT_CALL_TABLE_H

#include <gtest/gtest.h>

#include <array>
#include <chrono>
#include <string>
#include <vector>

#include "simulator/board.h"
#include "tests/support/call_row.h"

namespace rolu_test {

// The rows that follow from a table of operations in their normal course.
//
// Each call is refused before anything is sent.
std::vector<CallRow> Refused(const std::vector<CallRow>& operations, ROLU_STATUS status);
// The same for a null output, of the operations that have one.
std::vector<CallRow> RefusedForNullOutput(const std::vector<CallRow>& operations, ROLU_STATUS status);

// The memory that a call is given: room for any result, filled so that a byte that was written
// shows, and so does one too many.
using OutputMemory = std::array<unsigned char, 96>;

// Memory that holds these bytes, and otherwise what it held before the call.
OutputMemory MemoryWith(const Bytes& bytes);

// The memory in hexadecimal up to the last byte that was written, at least `length` bytes.
std::string BytesText(const OutputMemory& memory, size_t length);

std::string StatusText(ROLU_STATUS status);

// What came of one call.
struct Made {
  ROLU_STATUS status;
  OutputMemory output;
  std::string traffic;
  std::chrono::milliseconds duration;
};

// A board of its own, and one family, which is down at the start.
class CallTable {
 public:
  explicit CallTable(Family family);
  virtual ~CallTable() = default;

  rolu_sim::Board& board() { return board_; }
  const Family& family() const { return family_; }

  void BringUp();
  void Run(const std::vector<CallRow>& rows);
  // Makes a row's call, and says what came of it.
  Made Make(const CallRow& row);

  // Brings the family down and up in every order that matters; `start_up_wire` is what it sends
  // when it comes up.
  void RunLifecycle(const std::string& start_up_wire);

 protected:
  // What a row meets. A family that uses device files instead of the MCU gives its log of them.
  virtual void Prepare(const CallRow& row);
  virtual std::string Traffic();

 private:
  void RunRow(const CallRow& row);

  Family family_;
  rolu_sim::Board board_;
};

// A table for each test; the end of the test takes the family down.
class CallTableTest : public testing::Test, protected CallTable {
 protected:
  using CallTable::CallTable;
  using CallTable::Run;
  void TearDown() override { family().deinitialize(); }
};

}  // namespace rolu_test

#endif  // TESTS_SUPPORT_CALL_TABLE_H
