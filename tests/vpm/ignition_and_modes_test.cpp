#include <pthread.h>

#include "kavo_rolu.h"
#include "tests/oracle/operations.h"
#include "tests/vpm/vpm_family.h"

namespace rolu_test {
namespace {

constexpr ROLU_STATUS kDone = ROLU_STATUS_SUCCESS;
constexpr ROLU_STATUS kUnknown = ROLU_STATUS_VPM_ERROR_REPLY;

const Call kGetIgnition = Into(KAVO_ROLU_VPM_GetIgnitionStatus);
const Call kGetMode = Into(KAVO_ROLU_VPM_GetIgnitionMode);
const Call kGetAt = Into(KAVO_ROLU_VPM_GetATMode);
const Call kGetKeepAlive = Into(KAVO_ROLU_VPM_GetKeepAliveMode);

Call SetMode(int mode) {
  return With(KAVO_ROLU_VPM_SetIgnitionMode, mode);
}
Call SetAt(int mode) {
  return With(KAVO_ROLU_VPM_SetATMode, mode);
}
Call SetKeepAlive(int mode) {
  return With(KAVO_ROLU_VPM_SetKeepAliveMode, mode);
}
Bytes Char(int value) {
  return Written(static_cast<char>(value));
}
TEST_F(VpmTest, DownFamilyRefusesEveryModeCall) {
  Run(Refused(IgnitionAndModeOperations(), ROLU_STATUS_NOT_INITIALIZED));
  Run(RefusedForNullOutput(IgnitionAndModeOperations(), ROLU_STATUS_NOT_INITIALIZED));
  Run({{"mode 3 while down", SetMode(3), {}, ROLU_STATUS_NOT_INITIALIZED}});
}

TEST_F(VpmTest, ModeCallsSayWhatTheyMean) {
  BringUp();
  Run(IgnitionAndModeOperations());
  Run(RefusedForNullOutput(IgnitionAndModeOperations(), ROLU_STATUS_INVALID_PARAMETER));
}

TEST_F(VpmTest, OddModesAndAnswers) {
  BringUp();
  Run({
      {"two letters count", kGetIgnition, {"ONLY"}, kDone, Char(1), "IGNG\r"},
      {"lower case", kGetIgnition, {"on"}, kUnknown, {}, "IGNG\r"},
      {"one letter", kGetIgnition, {"O"}, kUnknown, {}, "IGNG\r"},
      {"neither", kGetIgnition, {"ERR"}, kUnknown, {}, "IGNG\r"},
      {"set mode 0", SetMode(0), {}, ROLU_STATUS_INVALID_PARAMETER},
      {"set mode 3", SetMode(3), {}, ROLU_STATUS_INVALID_PARAMETER},
      {"get mode 3", kGetMode, {"3"}, kUnknown, {}, "IGMG\r"},
      {"AT of an answer without digits", SetAt(1), {"OK", "OK"}, kDone, {}, "MCAG\rMCAS01\r", 50},
      {"two digits", SetAt(12), {"01", "OK"}, kDone, {}, "MCAG\rMCAS012\r", 50},
      {"char is unsigned", SetKeepAlive(-1), {"01", "OK"}, kDone, {}, "MCAG\rMCAS2551\r", 50},
      {"AT of a short answer", kGetAt, {"7"}, kDone, Char(0), "MCAG\r"},
      {"keep-alive of no digit", kGetKeepAlive, {"OK"}, kDone, Char(0), "MCAG\r"},
      {"only '1' is on", Into(KAVO_ROLU_VPM_GetPrePowerOffAlarm), {"OK"}, kDone, Char(0), "MPAG\r"},
  });
}

TEST_F(VpmTest, EventRegistrationTestsItsPointerFirst) {
  static pthread_cond_t event = PTHREAD_COND_INITIALIZER;
  for (ROLU_STATUS (*set)(void*) : {KAVO_ROLU_VPM_SetIgnPowerOffEvent, KAVO_ROLU_VPM_SetLBPPowerOffEvent}) {
    Run({{"null while down", With(set, nullptr), {}, ROLU_STATUS_NULL_POINTER},
         {"while down", With(set, &event), {}, ROLU_STATUS_NOT_INITIALIZED}});
    BringUp();
    Run({{"null while up", With(set, nullptr), {}, ROLU_STATUS_NULL_POINTER},
         {"while up", With(set, &event), {}, kDone}});
    EXPECT_EQ(KAVO_ROLU_VPM_Deinitialize(), kDone);
  }
}

}  // namespace
}  // namespace rolu_test
