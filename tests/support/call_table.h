// Runs tables of calls against a simulated board, and checks each row.
#ifndef TESTS_SUPPORT_CALL_TABLE_H
#define TESTS_SUPPORT_CALL_TABLE_H

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "simulator/board.h"
#include "tests/oracle/made_call.h"
#include "tests/oracle/operations.h"

namespace rolu_test {

struct NamedCall {
  std::string name;
  Call call;
};

// A private board and one family. The family is down at the start.
class CallTable {
 public:
  explicit CallTable(Family family);
  virtual ~CallTable() = default;

  rolu_sim::Board& board() { return board_; }
  const Family& family() const { return family_; }

  void BringUp();
  void Run(const std::vector<CallRow>& rows);
  // Each call must send and write nothing, and end with `status`.
  void Refuse(ROLU_STATUS status, const std::vector<NamedCall>& calls);
  // Makes a row's call, returns the result, and undoes the call if the row says how.
  Made Make(const CallRow& row);

 protected:
  // Prepare sets up the board for a row; Traffic returns what the row sent. A family that uses device files
  // instead of the MCU returns its log of them.
  virtual void Prepare(const CallRow& row);
  virtual std::string Traffic();

 private:
  Family family_;
  rolu_sim::Board board_;
};

// A new table for each test. The end of the test takes the family down.
class CallTableTest : public testing::Test, protected CallTable {
 protected:
  using CallTable::CallTable;
  using CallTable::Refuse;
  using CallTable::Run;
  void TearDown() override { family().deinitialize(); }
};

// The same for one family that talks to the MCU.
template <size_t kIndex>
class FamilyTest : public CallTableTest {
 protected:
  FamilyTest() : CallTableTest(McuFamilies().at(kIndex).switches) {}
};
using VpmTest = FamilyTest<0>;
using WatchdogTest = FamilyTest<1>;
using GSensorTest = FamilyTest<2>;
using PeripheralTest = FamilyTest<3>;

}  // namespace rolu_test

#endif  // TESTS_SUPPORT_CALL_TABLE_H
