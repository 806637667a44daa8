#include "kavo_rolu.h"
#include "tests/vpm/vpm_family.h"

namespace rolu_test {
namespace {

constexpr ROLU_STATUS kDone = ROLU_STATUS_SUCCESS;

struct Delay {
  const char* name;
  ROLU_STATUS (*set)(unsigned short);
  ROLU_STATUS (*get)(unsigned short*);
  const char* set_code;  // followed by four digits
  const char* get_command;
};

constexpr Delay kDelays[] = {
    {"low battery", KAVO_ROLU_VPM_SetLBPLowDelay, KAVO_ROLU_VPM_GetLBPLowDelay, "MCUS0", "MCUG0\r"},
    {"low battery, hard", KAVO_ROLU_VPM_SetLBPLowHardDelay, KAVO_ROLU_VPM_GetLBPLowHardDelay, "MCUS1",
     "MCUG1\r"},
    {"ignition on", KAVO_ROLU_VPM_SetIgnOnDelay, KAVO_ROLU_VPM_GetIgnOnDelay, "MCUS2", "MCUG2\r"},
    {"ignition off", KAVO_ROLU_VPM_SetIgnOffEventDelay, KAVO_ROLU_VPM_GetIgnOffEventDelay, "MCUS3",
     "MCUG3\r"},
    {"ignition off, hard", KAVO_ROLU_VPM_SetIgnHardOffDelay, KAVO_ROLU_VPM_GetIgnHardOffDelay, "MCUS4",
     "MCUG4\r"},
    {"suspended, hard", KAVO_ROLU_VPM_SetIgnSuspendHardOffDelay, KAVO_ROLU_VPM_GetIgnSuspendHardOffDelay,
     "MCUS6", "MCUG6\r"},
    {"warning", KAVO_ROLU_VPM_SetPrePowerOffAlarmDelay, KAVO_ROLU_VPM_GetPrePowerOffAlarmDelay, "MCUS7",
     "MCUG7\r"},
    {"forced shutdown", KAVO_ROLU_VPM_SetForceShutDownDelay, KAVO_ROLU_VPM_GetForceShutDownDelay, "MSDS",
     "MSDG\r"},
};

Bytes Value(unsigned short value) {
  return Written(value);
}

std::vector<CallRow> Operations() {
  std::vector<CallRow> rows = {
      {"force shutdown on", With(KAVO_ROLU_VPM_SetForceShutDown, 1), {"OK"}, kDone, {}, "MSSS1\r", 50},
      {"force shutdown off", With(KAVO_ROLU_VPM_SetForceShutDown, 0), {"OK"}, kDone, {}, "MSSS0\r", 50},
      {"get force shutdown", Into(KAVO_ROLU_VPM_GetForceShutDown), {"1"}, kDone, Written('\x01'), "MSSG\r"},
      {"power off", Plain(KAVO_ROLU_VPM_ForceShutdown), {"OK"}, kDone, {}, "ATPO\r"},
  };
  for (const Delay& delay : kDelays) {
    const std::string set_wire = std::string(delay.set_code) + "003C\r";
    rows.push_back({std::string("set ") + delay.name, With(delay.set, 60), {"OK"}, kDone, {}, set_wire, 50});
    rows.push_back(
        {std::string("get ") + delay.name, Into(delay.get), {"012C"}, kDone, Value(300), delay.get_command});
  }
  return rows;
}

TEST_F(VpmTest, DownFamilyRefusesEveryDelayCall) {
  Run(Refused(Operations(), ROLU_STATUS_NOT_INITIALIZED));
  Run(RefusedForNullOutput(Operations(), ROLU_STATUS_NOT_INITIALIZED));
}

TEST_F(VpmTest, DelayCallsSayWhatTheyMean) {
  BringUp();
  Run(Operations());
  Run(RefusedForNullOutput(Operations(), ROLU_STATUS_INVALID_PARAMETER));
  for (const Delay& delay : kDelays)
    Run({{delay.name, With(delay.set, 0), {}, ROLU_STATUS_INVALID_PARAMETER}});
}

TEST_F(VpmTest, ErrorRepliesEndADelayCall) {
  BringUp();
  Run(WithErrorReplies(Operations()));
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
