// Runs tables of calls against a simulated board and checks each row.
#ifndef TESTS_SUPPORT_CALL_TABLE_H
#define TESTS_SUPPORT_CALL_TABLE_H

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "simulator/board.h"
#include "tests/oracle/made_call.h"

namespace rolu_test {

// A board of its own, and one family, which is down at the start.
class CallTable {
 public:
  explicit CallTable(Family family);
  virtual ~CallTable() = default;

  rolu_sim::Board& board() { return board_; }
  const Family& family() const { return family_; }

  void BringUp();
  void Run(const std::vector<CallRow>& rows);
  // Makes a row's call, says what came of it, and undoes it where the row says how.
  Made Make(const CallRow& row);

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
