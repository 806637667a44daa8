// The values that the power manager reads from the MCU when it comes up.
#include "tests/oracle/start_up.h"

#include "tests/support/call_table.h"
#include "tests/support/process_state.h"

namespace rolu_test {
namespace {

Call GetRange(int mode) {
  return [mode](void* output) {
    return KAVO_ROLU_VPM_GetLBPThresholdInfo(static_cast<CAR_BATTERY_MODE>(mode),
                                             static_cast<BATTERY_INFO*>(output));
  };
}

// This must be the first test of its program: no other test may have filled the ranges before.
TEST_F(VpmTest, RangesAreZeroFromLoadAndStayAfterTheFamilyIsDown) {
  StartUp learned;
  const auto expect_ranges = [&] {
    Run({Gives("mode 0", GetRange(0), {}, Written(BATTERY_INFO{})),
         Gives("mode 1", GetRange(1), {}, Written(BATTERY_INFO{})),
         Gives("24 V", GetRange(2), {}, Written(learned.range_24v)),
         Gives("12 V", GetRange(3), {}, Written(learned.range_12v))});
    for (const int mode : {-1, 4}) {
      Run({Fails("no mode", GetRange(mode), {}, ROLU_STATUS_NOT_SUPPORTED),
           Fails("no mode, null output", OnNull(GetRange(mode)), {}, ROLU_STATUS_NOT_SUPPORTED)});
    }
    for (const int mode : {0, 3})
      Run({Fails("null output", OnNull(GetRange(mode)), {}, ROLU_STATUS_INVALID_PARAMETER)});
  };
  expect_ranges();
  const CallRow& start_up = McuFamilies().front().operations.front();
  Run({start_up});
  learned.Learn(HealthyReplies(start_up));
  expect_ranges();
  EXPECT_EQ(KAVO_ROLU_VPM_Deinitialize(), ROLU_STATUS_SUCCESS);
  expect_ranges();
}

using Answers = std::vector<std::string>;

// Each row brings the family up once. Before that, the family was up with other scales and ranges and with
// the longest version. So a value that a row does not write shows up.
TEST_F(VpmTest, StartUpReadsFirmwareScalesAndRanges) {
  const Answers before = {"OK", std::string(31, '9'), "0.125", "0.0625", "001000110012", "001300140015"};
  const Answers rows[] = {
      {"OK", "*VER:  1. 26*", "0.5", "0.25", "000100020003", "000400050006"},
      {"ERR-M08", "*VER:123.4567*", "ERR-W01", "ERR-M08", "000100020003", "000400050006"},
      {"OK", "*VER:7", "volts", "-", "000100020003", "000400050006"},
      {"OK", "VER:1.9", " 15e-1V", "0.75,1", "00010002", "4"},
      {"OK", std::string(63, 'v'), "0.5", "0.25", "0x1F -2GFFFFF", "xxxxxxxx"},
      {"OK", "ERR-M08", "0.5", "0.25", "000100020003", "000400050006"},
      {"OK", "ERR-E04", "0.5", "0.25", "000100020003", "000400050006"},
      {"OK", "*", "0.5", "0.25", "ERR-Q02", "000400050006"},
      {"OK", "*VER:1.9*", "0.5", "0.25", "000100020003", "ERR-M08"},
  };
  StartUp learned;
  const auto come_up = [&](const Answers& answers) {
    CallRow row = McuFamilies().front().operations.front();
    row.answers.assign(answers.begin(), answers.end());
    const Replies replies(answers.begin(), answers.end());
    learned.Learn(replies);
    testing::internal::CaptureStdout();
    const Made made = Make(row);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), learned.printed);
    const Ending ending = MeaningOf(row, replies);
    EXPECT_EQ(FaultOf(made, ending), "");
    const bool is_up = ending.status == ROLU_STATUS_SUCCESS;
    EXPECT_EQ(learned.FaultOfLibrary(is_up), "");
    EXPECT_EQ(KAVO_ROLU_VPM_Deinitialize(), is_up ? ROLU_STATUS_SUCCESS : ROLU_STATUS_NOT_INITIALIZED);
    EXPECT_TRUE(board().mcu().WaitForHostClosed(kGenerous));
  };
  for (const Answers& answers : rows) {
    SCOPED_TRACE(answers[1]);
    come_up(before);
    come_up(answers);
  }
}

}  // namespace
}  // namespace rolu_test
