#include "kavo_rolu.h"
#include "tests/oracle/operations.h"
#include "tests/vpm/vpm_family.h"

namespace rolu_test {
namespace {

constexpr ROLU_STATUS kDone = ROLU_STATUS_SUCCESS;

Bytes Value(unsigned short value) {
  return Written(value);
}

TEST_F(VpmTest, DownFamilyRefusesEveryDelayCall) {
  Run(Refused(PowerOffDelayOperations(), ROLU_STATUS_NOT_INITIALIZED));
  Run(RefusedForNullOutput(PowerOffDelayOperations(), ROLU_STATUS_NOT_INITIALIZED));
}

TEST_F(VpmTest, DelayCallsSayWhatTheyMean) {
  BringUp();
  Run(PowerOffDelayOperations());
  Run(RefusedForNullOutput(PowerOffDelayOperations(), ROLU_STATUS_INVALID_PARAMETER));
  for (ROLU_STATUS (*set)(unsigned short) :
       {KAVO_ROLU_VPM_SetLBPLowDelay, KAVO_ROLU_VPM_SetLBPLowHardDelay, KAVO_ROLU_VPM_SetIgnOnDelay,
        KAVO_ROLU_VPM_SetIgnOffEventDelay, KAVO_ROLU_VPM_SetIgnHardOffDelay,
        KAVO_ROLU_VPM_SetIgnSuspendHardOffDelay, KAVO_ROLU_VPM_SetPrePowerOffAlarmDelay,
        KAVO_ROLU_VPM_SetForceShutDownDelay}) {
    Run({Fails("no delay", With(set, 0), {}, ROLU_STATUS_INVALID_PARAMETER)});
  }
}

TEST_F(VpmTest, OddDelaysAndFlags) {
  const Call get = Into(KAVO_ROLU_VPM_GetIgnHardOffDelay);
  const Call get_flag = Into(KAVO_ROLU_VPM_GetForceShutDown);
  BringUp();
  Run({
      {"longest", With(KAVO_ROLU_VPM_SetIgnOnDelay, 65535), {"OK"}, kDone, {}, "MCUS2FFFF\r", 50},
      {"17 bits", get, {"12345"}, kDone, Value(0x2345), "MCUG4\r"},
      {"no number", get, {"OK"}, kDone, Value(0), "MCUG4\r"},
      {"any flag is on", With(KAVO_ROLU_VPM_SetForceShutDown, -3), {"OK"}, kDone, {}, "MSSS1\r", 50},
      {"only '1' is on", get_flag, {"2"}, kDone, Written('\0'), "MSSG\r"},
      {"what follows is not looked at", get_flag, {"1OK"}, kDone, Written('\x01'), "MSSG\r"},
  });
}

}  // namespace
}  // namespace rolu_test
