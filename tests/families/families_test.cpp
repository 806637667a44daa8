// Every family that talks to the MCU. The rows come from the oracle's table of operations.
#include "tests/support/call_table.h"
#include "tests/support/process_state.h"

namespace rolu_test {

void PrintTo(const McuFamily& family, std::ostream* stream) {
  *stream << family.prefix;
}

namespace {

class EachFamily : public testing::TestWithParam<McuFamily>, protected CallTable {
 protected:
  using CallTable::Run;
  EachFamily() : CallTable(GetParam().switches) {}
  void TearDown() override { family().deinitialize(); }

  static bool TakesDown(const CallRow& row) { return row.name == GetParam().prefix + "Deinitialize"; }

  // All calls except bringing the family up or down are refused before anything is sent.
  void ExpectRefusals(ROLU_STATUS status, ROLU_STATUS status_of_null_output) {
    for (const CallRow& row : GetParam().operations) {
      if (row.brings_up || TakesDown(row)) continue;
      if (status != ROLU_STATUS_SUCCESS) Run({Fails(row.name, row.call, {}, status)});
      if (!row.output.empty())
        Run({Fails(row.name + ", null output", OnNull(row.call), {}, status_of_null_output)});
    }
  }
};

TEST_P(EachFamily, ComesUpAndGoesDown) {
  std::string up_wire;
  std::string down_wire;
  for (const CallRow& row : GetParam().operations) {
    if (row.brings_up) up_wire = row.wire;
    if (TakesDown(row)) down_wire = row.wire;
  }
  const auto up = [this](void*) { return family().initialize(); };
  const auto down = [this](void*) { return family().deinitialize(); };
  board().RemoveSerialDevice();
  Run({Fails("down before up", down, {}, ROLU_STATUS_NOT_INITIALIZED),
       Fails("up without a port", up, {}, ROLU_STATUS_VPM_OPEN_FAILED),
       Fails("down after a failed up", down, {}, ROLU_STATUS_NOT_INITIALIZED)});
  board().RestoreSerialDevice();
  for (const char* round : {"first", "second"}) {
    SCOPED_TRACE(round);
    Run({Orders("up", up, {}, up_wire, 0), Fails("up while up", up, {}, ROLU_STATUS_ALREADY_INITIALIZED),
         Orders("down", down, {}, down_wire, 0),
         Fails("down while down", down, {}, ROLU_STATUS_NOT_INITIALIZED)});
    EXPECT_TRUE(board().mcu().WaitForHostClosed(kGenerous));
  }
}

TEST_P(EachFamily, RefusesEveryCallWhileItIsDownAndEveryNullOutput) {
  ExpectRefusals(ROLU_STATUS_NOT_INITIALIZED, GetParam().null_while_down);
  BringUp();
  ExpectRefusals(ROLU_STATUS_SUCCESS, GetParam().null_while_up);
}

std::string NameOf(const testing::TestParamInfo<McuFamily>& info) {
  return info.param.prefix.substr(0, info.param.prefix.size() - 1);
}

INSTANTIATE_TEST_SUITE_P(Of, EachFamily, testing::ValuesIn(McuFamilies()), NameOf);

}  // namespace
}  // namespace rolu_test
