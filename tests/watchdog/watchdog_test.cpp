#include "kavo_rolu.h"
#include "tests/support/call_table.h"

namespace rolu_test {
namespace {

class WatchdogTest : public CallTableTest {
 protected:
  WatchdogTest() : CallTableTest({[] { return KAVO_ROLU_WD_Initialize(0); }, KAVO_ROLU_WD_Deinitialize}) {}
};

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

TEST_F(WatchdogTest, OddArguments) {
  // These answer the same whether the family is up or down.
  const std::vector<CallRow> stateless = {
      Fails("version", With(KAVO_ROLU_WD_GetLibVersion, nullptr), {}, ROLU_STATUS_NOT_SUPPORTED),
      Fails("version into a buffer", Into(KAVO_ROLU_WD_GetLibVersion), {}, ROLU_STATUS_NOT_SUPPORTED),
      Gives("range", GetRange, {}, Written(1UL, 65535UL)),
      Fails("range without a minimum", GetMaximum, {}, ROLU_STATUS_NULL_POINTER),
      Fails("range without a maximum", GetMinimum, {}, ROLU_STATUS_NULL_POINTER),
  };
  Run(stateless);
  Run({Fails("time 0 while down", SetTime(0), {}, ROLU_STATUS_NOT_INITIALIZED)});
  BringUp();
  Run(stateless);
  Run({Orders("smallest time", SetTime(1), {"OK"}, "WDTS0001\r"),
       Orders("largest time", SetTime(65535), {"OK"}, "WDTSFFFF\r"),
       Fails("time 0", SetTime(0), {}, ROLU_STATUS_INVALID_PARAMETER)});
}

TEST_F(WatchdogTest, AnswerToTheGreetingDoesNotMatter) {
  board().mcu().Script(rolu_sim::CommandMatch::Any(), rolu_sim::Reply::Line("ERR-M08"));
  board().mcu().Script(rolu_sim::CommandMatch::Any(), rolu_sim::Reply::Silence());
  BringUp();
  EXPECT_EQ(KAVO_ROLU_WD_Deinitialize(), ROLU_STATUS_SUCCESS);
  BringUp();
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
