#include "kavo_rolu.h"
#include "tests/oracle/operations.h"
#include "tests/support/call_table.h"

namespace rolu_test {
namespace {

class WatchdogTest : public CallTableTest {
 protected:
  WatchdogTest() : CallTableTest({[] { return KAVO_ROLU_WD_Initialize(0); }, KAVO_ROLU_WD_Deinitialize}) {}
};

const Call kGetTime = Into(KAVO_ROLU_WD_GetTime);

Call SetTime(unsigned short time) {
  return With(KAVO_ROLU_WD_SetTime, time);
}

ROLU_STATUS GetRange(void* output) {
  auto* limits = static_cast<unsigned long*>(output);
  return KAVO_ROLU_WD_GetRange(limits, limits + 1);
}

ROLU_STATUS GetMinimum(void* output) {
  return KAVO_ROLU_WD_GetRange(static_cast<unsigned long*>(output), nullptr);
}

ROLU_STATUS GetMaximum(void* output) {
  return KAVO_ROLU_WD_GetRange(nullptr, static_cast<unsigned long*>(output));
}

Bytes Time(unsigned short time) {
  return Written(time);
}

// What answers the same whether the family is up or down.
const std::vector<CallRow>& StatelessRows() {
  static const std::vector<CallRow> rows = {
      Fails("version", With(KAVO_ROLU_WD_GetLibVersion, nullptr), {}, ROLU_STATUS_NOT_SUPPORTED),
      Fails("version into a buffer", Into(KAVO_ROLU_WD_GetLibVersion), {}, ROLU_STATUS_NOT_SUPPORTED),
      Gives("range", GetRange, {}, Written(1UL, 65535UL)),
      Fails("range without a minimum", GetMaximum, {}, ROLU_STATUS_NULL_POINTER),
      Fails("range without a maximum", GetMinimum, {}, ROLU_STATUS_NULL_POINTER),
  };
  return rows;
}

TEST_F(WatchdogTest, FamilyComesUpAndGoesDown) {
  RunLifecycle("Hello\r");
}

TEST_F(WatchdogTest, AnswerToTheGreetingDoesNotMatter) {
  board().mcu().Script(rolu_sim::CommandMatch::Any(), rolu_sim::Reply::Line("ERR-M08"));
  board().mcu().Script(rolu_sim::CommandMatch::Any(), rolu_sim::Reply::Silence());
  BringUp();
  EXPECT_EQ(KAVO_ROLU_WD_Deinitialize(), ROLU_STATUS_SUCCESS);
  BringUp();
}

TEST_F(WatchdogTest, DownFamilyRefusesEverythingElse) {
  Run(Refused(WatchdogOperations(), ROLU_STATUS_NOT_INITIALIZED));
  Run({Fails("time 0", SetTime(0), {}, ROLU_STATUS_NOT_INITIALIZED)});
  Run(RefusedForNullOutput(WatchdogOperations(), ROLU_STATUS_NULL_POINTER));
  Run(StatelessRows());
}

TEST_F(WatchdogTest, CallsSayWhatTheyMean) {
  BringUp();
  Run(WatchdogOperations());
  Run(StatelessRows());
  Run(RefusedForNullOutput(WatchdogOperations(), ROLU_STATUS_NULL_POINTER));
  Run({
      Orders("smallest time", SetTime(1), {"OK"}, "WDTS0001\r"),
      Orders("largest time", SetTime(65535), {"OK"}, "WDTSFFFF\r"),
      Fails("time 0", SetTime(0), {}, ROLU_STATUS_INVALID_PARAMETER),
      Orders("answer of another kind", SetTime(1), {"later"}, "WDTS0001\r"),
      Gives("hexadecimal prefix", kGetTime, {"0x12C"}, Time(300), "WDTG\r"),
      Gives("five digits", kGetTime, {"12345"}, Time(0x2345), "WDTG\r"),
      Gives("33 bits", kGetTime, {"123456789"}, Time(0xFFFF), "WDTG\r"),
      Gives("sign", kGetTime, {"-1"}, Time(0xFFFF), "WDTG\r"),
      Gives("text after the number", kGetTime, {" 12,345"}, Time(0x12), "WDTG\r"),
      Gives("no number", kGetTime, {"OK"}, Time(0), "WDTG\r"),
      Gives("unknown error", kGetTime, {"-ERR-W09"}, Time(0xFFF2), "WDTG\r"),
  });
}

TEST_F(WatchdogTest, McuKeepsWhatItIsTold) {
  const auto watchdog = [this] {
    return board().mcu().WithModel([](const rolu_sim::McuModel& mcu) { return mcu.watchdog; });
  };
  BringUp();
  EXPECT_FALSE(watchdog().enabled);
  EXPECT_EQ(KAVO_ROLU_WD_SetTime(0xABCD), ROLU_STATUS_SUCCESS);
  unsigned short time = 0;
  EXPECT_EQ(KAVO_ROLU_WD_GetTime(&time), ROLU_STATUS_SUCCESS);
  EXPECT_EQ(time, 0xABCD);
  EXPECT_EQ(KAVO_ROLU_WD_Enabled(true), ROLU_STATUS_SUCCESS);
  EXPECT_EQ(KAVO_ROLU_WD_Trigger(), ROLU_STATUS_SUCCESS);
  EXPECT_EQ(watchdog().trigger_count, 1U);

  EXPECT_EQ(KAVO_ROLU_WD_Deinitialize(), ROLU_STATUS_SUCCESS);
  EXPECT_TRUE(watchdog().enabled) << "a watchdog that is on stays on";
  BringUp();
  EXPECT_EQ(KAVO_ROLU_WD_Enabled(false), ROLU_STATUS_SUCCESS);
  EXPECT_FALSE(watchdog().enabled);
}

TEST_F(WatchdogTest, AnyByteButZeroSwitchesOn) {
  BringUp();
  for (const unsigned int byte : {1U, 2U, 0x80U, 0xFFU}) {
    Run({Orders("on", WithByte(KAVO_ROLU_WD_Enabled, byte), {"OK"}, "WDTE\r", 0)});
  }
  Run({Orders("off", WithByte(KAVO_ROLU_WD_Enabled, 0), {"OK"}, "WDTD\r", 0)});
}

}  // namespace
}  // namespace rolu_test
